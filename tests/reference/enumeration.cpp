#include "reference/enumeration.h"

namespace tav::reference {
namespace {

/// What an expression is made of decides where it needs parentheses.
enum class Shape { item, repeated, sequence, alternation };

struct Expression {
    std::string text;
    Shape shape;
};

using Expressions = std::vector<Expression>;

std::string grouped(const Expression& expression, Shape highest) {
    if (expression.shape <= highest) return expression.text;
    std::string text = "(?:";
    return (text += expression.text) += ')';
}

class Enumerator {
public:
    explicit Enumerator(const Family& family)
        : family_(family), bySize_(static_cast<std::size_t>(family.size) + 1) {
        for (const std::string& atom : family.atoms)
            bySize_[1].push_back({atom, Shape::item});
        for (std::size_t size = 2; size < bySize_.size(); ++size) {
            unary(size);
            for (std::size_t left = 1; left + 1 < size; ++left)
                binary(size, left, size - 1 - left);
        }
    }

    std::vector<std::string> patterns() const {
        std::vector<std::string> result = {""};
        for (std::size_t size = 1; size < bySize_.size(); ++size) {
            const std::size_t step =
                size + 1 == bySize_.size() ? static_cast<std::size_t>(family_.everySize) : 1;
            for (std::size_t i = 0; i < bySize_[size].size(); i += step)
                result.push_back(bySize_[size][i].text);
        }
        return result;
    }

private:
    void unary(std::size_t size) {
        for (const Expression& inner : bySize_[size - 1]) {
            for (const std::string& repeat : family_.repeats)
                bySize_[size].push_back({grouped(inner, Shape::item) += repeat, Shape::repeated});
            for (const std::string& bracket : family_.brackets) {
                std::string text = bracket;
                text.replace(text.find('X'), 1, inner.text);
                bySize_[size].push_back({text, Shape::item});
            }
        }
    }

    void binary(std::size_t size, std::size_t leftSize, std::size_t rightSize) {
        for (const Expression& left : bySize_[leftSize]) {
            for (const Expression& right : bySize_[rightSize]) {
                bySize_[size].push_back(
                    {grouped(left, Shape::sequence) += grouped(right, Shape::sequence), Shape::sequence});
                std::string either = left.text;
                (either += '|') += right.text;
                bySize_[size].push_back({either, Shape::alternation});
            }
        }
    }

    const Family& family_;
    std::vector<Expressions> bySize_;
};

} // namespace

const std::vector<Family>& families() {
    static const std::vector<Family> all = {
        {"repeats and groups",
         {"a", "b", "."},
         {"*", "+?", "??", "{2}", "{0,1}"},
         {"(X)", "(?>X)", "(?=X)", "(?!X)"},
         6,
         {"", "g"},
         {"a", "b"},
         5,
         40},
        {"back-references and conditions",
         {"a", "b", "\\1"},
         {"*", "+", "??"},
         {"(X)", "(?(1)X|b)", "(?(1)b|X)", "(?(?=a)X)", "(?:|X)", "(X)?", "(?>X)"},
         6,
         {""},
         {"a", "b"},
         5,
         40},
        {"assertions",
         {"a", "\\n", "^", "$", "\\b", "\\B", "\\z", "\\Z", "\\A"},
         {"*", "?"},
         {"(X)", "(?<=X)", "(?<!X)", "(?m:X)"},
         4,
         {"", "m", "g", "mg"},
         {"a", "\n", " "},
         4,
         1},
        {"characters of several bytes",
         {".", "\\x{e9}", "\\xc3", "[^a]", "\\X", "\\C", "\\W", "\\P{L}", "\\x{301}"},
         {"*", "+?", "{2}"},
         {"(X)", "(?<=X)", "(?>X)"},
         4,
         {"", "g"},
         {"\xc3\xa9", "\xff", "a", "\xcc\x81"},
         3,
         1},
        {"options",
         {"a", "B", "(?i)", "(?-i)", "\\x{e9}", "[ab]"},
         {"+", "*?"},
         {"(?i:X)", "(X)", "(?-i:X)"},
         4,
         {"", "i"},
         {"a", "B", "A", "\xc3\x89"},
         3,
         1},
        {"classes",
         {"[[:alpha:]]", "[[:^alpha:]b]", "\\d", "\\D", "\\s", "\\w", "[a-c\\x{e9}]", "[^\\W]", "..", "a"},
         {"*", "+", "?", "{2}", "{1,2}?"},
         {"(X)"},
         4,
         {"", "s"},
         {"a", "1", " ", "\xc3\xa9"},
         3,
         7},
    };
    return all;
}

std::vector<std::string> patternsOf(const Family& family) {
    return Enumerator(family).patterns();
}

std::vector<std::string> subjectsOf(const Family& family) {
    std::vector<std::string> words = {""};
    std::size_t first = 0;
    for (int length = 1; length <= family.longest; ++length) {
        const std::size_t end = words.size();
        for (; first < end; ++first)
            for (const std::string& letter : family.letters)
                words.push_back(std::string(words[first]) += letter);
    }
    return words;
}

EnumerationCount compareEnumerated(Comparison& comparison, int stride, int offset) {
    EnumerationCount count;
    int64_t turn = 0;
    for (const Family& family : families()) {
        const std::vector<std::string> patterns = patternsOf(family);
        const std::vector<std::string> subjects = subjectsOf(family);
        for (std::size_t i = static_cast<std::size_t>(offset); i < patterns.size();
             i += static_cast<std::size_t>(stride)) {
            Trial trial;
            trial.pattern = patterns[i];
            for (const std::string& options : family.optionSets) {
                trial.options = options;
                const Compiled compiled = compile(trial.pattern, options);
                count.refused += !compiled;
                if (!compiled) break;
                count.patterns += &options == &family.optionSets.front();
                for (const std::string& subject : subjects) {
                    trial.subject = subject;
                    trial.limit = ++turn % 3 == 0 ? static_cast<int32_t>(turn / 3 % 24) : 10000;
                    trial.format = turn % 7 == 0 ? 0 : 1;
                    comparison.compare(*compiled.block, trial);
                }
            }
        }
    }
    return count;
}

} // namespace tav::reference
