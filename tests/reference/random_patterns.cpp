#include "reference/random_patterns.h"

#include "reference/join.h"

namespace tav::reference {
namespace {

using Strings = std::vector<std::string>;

const std::vector<Alphabet>& alphabets() {
    static const std::vector<Alphabet> all = {
        {{"a", "b"}, {"a", "b"}},
        {{"a", "b", "c"}, {"a", "b", "c"}},
        {{"a", "b", "A", "B", "k"}, {"a", "b", "A", "B", "k", "K", "\xe2\x84\xaa"}},
        {{"a", "b", "\\n", " "}, {"a", "b", "\n", " ", "_"}},
        {{"a", "\\x{e9}", "\\x{20ac}", "\xc3\xa9"}, {"a", "\xc3\xa9", "\xe2\x82\xac", "\xc3\x89"}},
        {{"a", "e", "\\x{301}", "\\x{e9}"}, {"a", "e", "\xcc\x81", "\xcc\x80", "\xc3\xa9"}},
        {{"a", "\\xff", "\\xc3", "\\xa9", "\\x{e9}"},
         {"a", "\xff", "\xc3", "\xa9", "\xc3\xa9", "\xe2\x82", "\x80"}},
        {{"a", "\\x{3c3}", "\\x{3a3}", "\\x{c9}"},
         {"a", "\xcf\x82", "\xcf\x83", "\xce\xa3", "\xc3\xa9", "\xc3\x89"}},
        {{"1", "a", "_", "-"}, {"1", "a", "_", "-", " ", "\t", "\v", "\xd9\xa3"}},
        {{"a", "b", "ab", "ba", "aab"}, {"a", "b", "ab", "aab", "ba"}},
        {{"foo", "bar", "fo", "b", "o"}, {"foo", "bar", "o", "f", "fo", " "}},
        {{"needle", "haystack", "n", "e", "edl", "hay"},
         {"needle", "hay", "stack", "need", "le", "x", " ", "\n"}},
        {{"q", "xq", "xyq", "x"}, {"x", "xx", "xxxxxxxxxxxxxxxx", "y", "q", "xy"}},
        {{"a", "\\x{4e00}", "\\x{1f600}"},
         {"a", "\xe4\xb8\x80", "\xf0\x9f\x98\x80", "\xcd\xb8", "\xf4\x90\x80\x80", "\xed\xa0\x80"}},
    };
    return all;
}

class PatternMaker {
public:
    PatternMaker(Random& random, const Alphabet& alphabet, int size)
        : random_(random), alphabet_(alphabet), left_(size) {}

    std::string make() {
        std::string pattern;
        if (random_.oneIn(25)) pattern = random_.pick(Strings{".*", ".+", "(?:.*)", "^*", "\\A?", "^+"});
        return pattern + alternatives(0, false);
    }

private:
    /// `fixed`: the inside of a lookbehind, where lengths must be equal.
    std::string alternatives(int depth, bool fixed) {
        std::string text = sequence(depth, fixed);
        for (int more = fixed              ? 0
                        : random_.oneIn(3) ? 1 + static_cast<int>(random_.below(2))
                                           : 0;
             more > 0; --more)
            text += join({"|", sequence(depth, fixed)});
        return text;
    }

    std::string sequence(int depth, bool fixed) {
        std::string text;
        for (uint32_t pieces = random_.below(4) + (random_.oneIn(8) ? 0 : 1); pieces > 0 && left_ > 0;
             --pieces)
            text += piece(depth, fixed);
        return text;
    }

    std::string piece(int depth, bool fixed) {
        --left_;
        if (random_.oneIn(20)) return join({"(?", optionLetters(), ")"});
        if (random_.oneIn(12)) return assertion() + (random_.oneIn(6) ? quantifier() : "");
        const std::string atom = depth < 4 && random_.oneIn(3) ? group(depth + 1) : item(fixed);
        if (fixed) return random_.oneIn(8) ? atom + "{2}" : atom;
        return random_.oneIn(2) ? atom + quantifier() : atom;
    }

    std::string item(bool fixed) {
        switch (random_.below(fixed ? 14 : 16)) {
        case 0:
            return ".";
        case 1:
            return random_.oneIn(3) ? "\\C" : ".";
        case 2:
            return random_.pick(Strings{"\\d", "\\D", "\\s", "\\S", "\\w", "\\W"});
        case 3:
            return random_.oneIn(2)
                       ? random_.pick(Strings{"\\X", "\\p{L}", "\\P{L}", "\\p{Lu}", "\\p{Any}", "\\P{Any}",
                                              "\\p{Latin}", "\\P{Latin}", "\\p{M}", "\\P{Cn}", "\\p{Cn}",
                                              "\\p{InLatin}", "\\P{InLatin}", "\\p{Han}"})
                       : literal();
        case 4:
        case 5:
            return set();
        case 14:
        case 15:
            return groups_ > 0
                       ? std::string("\\") +
                             std::to_string(1 + random_.below(static_cast<uint32_t>(std::min(groups_, 9))))
                       : literal();
        default:
            return literal();
        }
    }

    std::string literal() { return random_.pick(alphabet_.patternPieces); }

    std::string set() {
        std::string text = random_.oneIn(3) ? "[^" : "[";
        for (uint32_t members = 1 + random_.below(3); members > 0; --members) {
            switch (random_.below(8)) {
            case 0:
                text += random_.pick(Strings{"\\d", "\\D", "\\s", "\\S", "\\w", "\\W"});
                break;
            case 1:
                text += random_.pick(Strings{"a-b", "a-c", "b-z", "A-Z", "0-9", "\\x00-\\x20",
                                             "\\x{e0}-\\x{ff}", "\\x{80}-\\x{20ac}", "j-\\x{3c3}"});
                break;
            case 2:
                text += random_.pick(Strings{"[:alpha:]", "[:^alpha:]", "[:^word:]", "[:word:]", "[:punct:]",
                                             "[:^digit:]", "[:^blank:]", "[:^ascii:]", "[:upper:]"});
                break;
            case 3:
                text += random_.pick(Strings{"\\p{L}", "\\P{L}", "\\p{Latin}", "\\P{Latin}", "\\p{Any}",
                                             "\\P{Any}", "\\p{Lu}", "\\n", "\xc3\xa9", "\xe2\x82\xac"});
                break;
            default: {
                // A member of one piece: the pieces of an alphabet are literals or escapes of one character.
                text += literal();
            }
            }
        }
        return text + "]";
    }

    std::string group(int depth) {
        switch (random_.below(16)) {
        case 0:
        case 1:
        case 2:
        case 3:
            return join({"(?:", alternatives(depth, false), ")"});
        case 4:
            return join({"(?=", alternatives(depth, false), ")"});
        case 5:
            return join({"(?!", alternatives(depth, false), ")"});
        case 6:
            return join({"(?<=", alternatives(depth, true), ")"});
        case 7:
            return join({"(?<!", alternatives(depth, true), ")"});
        case 8:
        case 9:
            return join({"(?>", alternatives(depth, false), ")"});
        case 10:
            return join({"(?", optionLetters(), ":", alternatives(depth, false), ")"});
        case 11:
            return conditional(depth);
        default: {
            ++groups_;
            return join({"(", alternatives(depth, false), ")"});
        }
        }
    }

    std::string conditional(int depth) {
        std::string text = "(?";
        switch (random_.below(4)) {
        case 0:
            text += join({"(?=", sequence(depth, false), ")"});
            break;
        case 1:
            text += join({"(?!", sequence(depth, false), ")"});
            break;
        case 2:
            text += join({"(?<=", sequence(depth, true), ")"});
            break;
        default:
            text += join({"(", std::to_string(1 + random_.below(static_cast<uint32_t>(groups_) + 1)), ")"});
        }
        text += sequence(depth, false);
        if (random_.oneIn(2)) text += join({"|", sequence(depth, false)});
        return text + ")";
    }

    std::string assertion() {
        return random_.pick(Strings{"^", "$", "\\b", "\\B", "\\A", "\\z", "\\Z", "\\G", "^", "$", "\\b"});
    }

    std::string optionLetters() {
        return random_.pick(Strings{"i", "s", "m", "-i", "i-s", "x", "-m", "ims", "-ims"});
    }

    std::string quantifier() {
        std::string text = random_.pick(Strings{"*", "+", "?", "*", "+", "?", "{2}", "{0}", "{1,2}", "{,2}",
                                                "{2,}", "{0,1}", "{2,3}", "{1}", "{}"});
        if (random_.oneIn(3)) text += "?";
        return text;
    }

    Random& random_;
    const Alphabet& alphabet_;
    int left_;
    int groups_ = 0;
};

} // namespace

const Alphabet& randomAlphabet(Random& random) {
    return alphabets()[random.below(static_cast<uint32_t>(alphabets().size()))];
}

std::string randomPattern(Random& random, const Alphabet& alphabet, int size) {
    return PatternMaker(random, alphabet, size).make();
}

std::string randomOptions(Random& random) {
    std::string letters;
    for (const char letter : {'g', 'i', 'm', 's', 'x'})
        if (random.oneIn(letter == 'g' || letter == 'i' ? 3 : 6)) letters += letter;
    return letters;
}

std::string randomSubject(Random& random, const Alphabet& alphabet, int maximumPieces) {
    std::string text;
    if (random.oneIn(10)) { // mostly one piece, so that the others are rare
        const std::string filler = random.pick(alphabet.subjectPieces);
        for (uint32_t pieces = random.below(static_cast<uint32_t>(maximumPieces) * 2); pieces > 0; --pieces)
            text += random.oneIn(16) ? random.pick(alphabet.subjectPieces) : filler;
        return text;
    }
    for (uint32_t pieces = random.below(static_cast<uint32_t>(maximumPieces) + 1); pieces > 0; --pieces)
        text += random.pick(alphabet.subjectPieces);
    return text;
}

int randomTrials(Random& random, Comparison& comparison) {
    const Alphabet& alphabet = randomAlphabet(random);
    Trial trial;
    trial.pattern =
        randomPattern(random, alphabet, 1 + static_cast<int>(random.below(random.oneIn(4) ? 24 : 8)));
    trial.options = randomOptions(random);
    const Compiled compiled = compile(trial.pattern, trial.options);
    if (!compiled) return 0;
    const int longest = random.oneIn(8) ? 40 : random.oneIn(12) ? 300 : 8;
    for (int subjects = 0; subjects < 12; ++subjects) {
        trial.subject = randomSubject(random, alphabet, longest);
        trial.behind = random.oneIn(4) ? 'a' : '\0';
        trial.format = random.oneIn(4) ? 0 : 1;
        trial.slots = random.oneIn(3) ? 1 + static_cast<int32_t>(random.below(6)) : 0;
        trial.limit = random.oneIn(2) ? static_cast<int32_t>(random.below(41)) : 10000;
        comparison.compare(*compiled.block, trial);
    }
    return 1;
}

namespace {

/// Repeats of repeats: a choice at every turn.
class NestedMaker {
public:
    explicit NestedMaker(Random& random) : random_(random), left_(2 + static_cast<int>(random.below(9))) {}

    std::string make() {
        const std::string tail = random_.pick(Strings{"$", "b", "c", "\\b", "", "[^a]$", "(?=b)", "\\z"});
        return join({alternatives(0), tail});
    }

private:
    std::string alternatives(int depth) {
        std::string text = sequence(depth);
        while (random_.oneIn(3))
            text = join({text, "|", sequence(depth)});
        return text;
    }

    std::string sequence(int depth) {
        std::string text;
        for (uint32_t pieces = random_.below(3) + (random_.oneIn(5) ? 0 : 1); pieces > 0; --pieces)
            text += piece(depth);
        return text;
    }

    std::string piece(int depth) {
        --left_;
        if (left_ <= 0 || depth > 3 || random_.oneIn(3)) return item() + (random_.oneIn(2) ? repeat() : "");
        const char* const opener =
            random_.oneIn(4) ? random_.pick(std::vector<const char*>{"(?=", "(?>", "(?!", "(?<=a|",
                                                                     "(?=", "(?i:", "(?(?=a)", "(?(?!a+b)"})
                             : random_.pick(std::vector<const char*>{"(", "(?:"});
        const bool fixed = opener[1] == '?' && opener[2] == '<';
        const bool branches = opener[1] == '?' && opener[2] == '(';
        std::string body = fixed ? "b" : branches ? sequence(depth + 1) : alternatives(depth + 1);
        if (branches && random_.oneIn(2)) body = join({body, "|", sequence(depth + 1)});
        return join({opener, body, ")", random_.oneIn(4) ? "" : repeat()});
    }

    std::string item() {
        return random_.pick(
            Strings{"a", "a", "b", ".", "[ab]", "\\w", "[^b]", "\\x{e9}", "aa", "a", "^", "\\b"});
    }

    std::string repeat() {
        const std::string text = random_.pick(Strings{"*", "+", "?", "*", "+", "*", "+", "{2}", "{1,2}",
                                                      "{2,}", "{0,3}", "{3,5}", "{0}", "{2,3}"});
        return random_.oneIn(3) ? text + "?" : text;
    }

    Random& random_;
    int left_;
};

} // namespace

int nestedTrials(Random& random, Comparison& comparison) {
    Trial trial;
    trial.pattern = NestedMaker(random).make();
    trial.options = random.pick(Strings{"", "", "", "g", "s", "m", "i", "gs"});
    const Compiled compiled = compile(trial.pattern, trial.options);
    if (!compiled) return 0;
    static const Strings letters = {"a", "a", "a", "b", "\xc3\xa9"};
    for (int subjects = 0; subjects < 8; ++subjects) {
        trial.subject.clear();
        for (uint32_t pieces = random.below(random.oneIn(4) ? 24 : 9); pieces > 0; --pieces)
            trial.subject += random.pick(letters);
        trial.behind = random.oneIn(4) ? 'a' : '\0';
        trial.format = random.oneIn(4) ? 0 : 1;
        trial.limit = random.oneIn(2) ? static_cast<int32_t>(random.below(50)) : 10000;
        if (random.oneIn(8)) trial.limit = 70000 + static_cast<int32_t>(random.below(3)) * 500'000'000;
        comparison.compare(*compiled.block, trial);
    }
    return 1;
}

int deepTrials(Random& random, Comparison& comparison) {
    const Alphabet& alphabet = randomAlphabet(random);
    const char* const opener = random.pick(std::vector<const char*>{"(", "(?:", "(?>"});
    const char* const repeat =
        random.pick(std::vector<const char*>{")*", ")+", ")*?$", "){2,}", ")*?x", ")*(a)?"});
    Trial trial;
    trial.pattern =
        join({opener, randomPattern(random, alphabet, 1 + static_cast<int>(random.below(5))), repeat});
    const Compiled compiled = compile(trial.pattern, trial.options);
    if (!compiled) return 0;
    for (int subjects = 0; subjects < 4; ++subjects) {
        std::string unit;
        for (uint32_t pieces = 1 + random.below(3); pieces > 0; --pieces)
            unit += random.pick(alphabet.subjectPieces);
        trial.subject = times(3000 + static_cast<int>(random.below(8000)), unit);
        trial.limit = random.oneIn(2) ? 10000 : 9990 + static_cast<int32_t>(random.below(20));
        if (random.oneIn(4)) trial.limit = static_cast<int32_t>(random.below(30000));
        comparison.compare(*compiled.block, trial);
    }
    return 1;
}

int longTrials(Random& random, Comparison& comparison) {
    const Alphabet& alphabet = randomAlphabet(random);
    const bool alternatives = random.oneIn(2);
    const bool literals = random.oneIn(4);
    std::string body;
    for (uint32_t pieces = 60 + random.below(random.oneIn(4) ? 900 : 200); pieces > 0; --pieces) {
        const std::string piece =
            literals ? randomSubject(random, {{}, {"a", "b", "foo", "x", "y"}}, 5)
                     : randomPattern(random, alphabet, 1 + static_cast<int>(random.below(6)));
        if (piece.find('#') != std::string::npos) continue;
        body += alternatives ? join({piece, "|"}) : join({"(?:", piece, random.oneIn(2) ? ")?" : ")??"});
    }
    Trial trial;
    trial.options = randomOptions(random);
    trial.pattern = random.oneIn(2) ? join({"(", body, ")+"}) : join({body, "a"});
    const Compiled compiled = compile(trial.pattern, trial.options);
    if (!compiled) return 0;
    for (int subjects = 0; subjects < 8; ++subjects) {
        trial.subject = randomSubject(random, alphabet, random.oneIn(3) ? 60 : 8);
        trial.format = random.oneIn(4) ? 0 : 1;
        trial.slots = random.oneIn(3) ? 1 + static_cast<int32_t>(random.below(6)) : 0;
        static constexpr int32_t limits[] = {10000, 10000, 50, 300, 1000, 5000, 50000, 90000};
        trial.limit = random.pick(limits);
        comparison.compare(*compiled.block, trial);
    }
    return 1;
}

} // namespace tav::reference
