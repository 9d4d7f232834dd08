#include "options.h"

#include "platform.h"

namespace tavgrep {

const char* const usageText =
    "usage: tavgrep [OPTION...] PATTERN [FILE...]\n"
    "       tavgrep [OPTION...] -e PATTERN... [FILE...]\n"
    "Prints the lines of the files (of the standard input without files) in which PATTERN, or any\n"
    "of several patterns, matches.\n"
    "\n"
    "  -i            letters match in either case\n"
    "  -s            a dot also matches a line break\n"
    "  -m            ^ and $ also match at line breaks inside the text\n"
    "  -x            white space and # comments in the pattern are ignored\n"
    "\n"
    "  -e PATTERN    a pattern to search for; may be given several times\n"
    "  --ids         print before each line the numbers of the patterns that match in it, the first -e is 1\n"
    "  -r TEMPLATE   print the whole text with all matches replaced: $& stands for the match, $1 for its\n"
    "                first group; each further digit multiplies by eleven, so $12 is group 13\n"
    "  -n            number the lines\n"
    "  -o            print the matched text only, each match on a line of its own\n"
    "  -c            print the number of lines instead of the lines\n"
    "  -v            select the lines in which the pattern does not match\n"
    "  --groups      list the groups of every match under its line\n"
    "  --color=WHEN  highlight matches: always, never, or auto (when printing to a terminal)\n"
    "  --            what follows is no option\n"
    "  --help, --version\n"
    "\n"
    "Exit status: 0 a line was selected, 1 none was, 2 an error occurred.\n";

namespace {

/// One option of a single letter; false when there is no such letter.
bool takeLetter(char letter, Options& options) {
    switch (letter) {
    case 'i':
    case 's':
    case 'm':
    case 'x':
        options.patternOptions += letter;
        return true;
    case 'n':
        return options.lineNumbers = true;
    case 'o':
        return options.onlyMatches = true;
    case 'c':
        return options.countOnly = true;
    case 'v':
        return options.invert = true;
    default:
        return false;
    }
}

bool takeColor(const std::string& when, Options& options) {
    if (when == "auto")
        options.color = outputIsTerminal();
    else if (when == "always")
        options.color = true;
    else if (when == "never")
        options.color = false;
    else
        return false;
    return true;
}

/// An option of a whole word; false when there is no such word.
bool takeWord(const std::string& word, Options& options) {
    if (word == "--groups") return options.groups = true;
    if (word == "--ids") return options.ids = true;
    if (word == "--color") return takeColor("auto", options);
    const std::string color = "--color=";
    return word.compare(0, color.size(), color) == 0 && takeColor(word.substr(color.size()), options);
}

/// The options that a word of letters holds. `value` is what stands behind the word, null when nothing does.
class LetterReader {
public:
    LetterReader(const std::string& word, const std::string* value, Options& options, std::string& mistake)
        : word_(word), value_(value), options_(options), mistake_(mistake) {}

    bool read() {
        for (std::size_t i = 1; i < word_.size(); i++) {
            const char letter = word_[i];
            if (letter == 'e' || letter == 'r') return takeValued(letter, word_.substr(i + 1));
            if (takeLetter(letter, options_)) continue;
            mistake_ = std::string("unknown option -") + letter;
            return false;
        }
        return true;
    }

    bool tookValue() const { return tookValue_; }

private:
    /// The value stands directly behind the letter or is the next word.
    bool takeValued(char letter, std::string value) {
        if (value.empty()) {
            if (value_ == nullptr) {
                mistake_ = std::string("nothing behind -") + letter;
                return false;
            }
            value = *value_;
            tookValue_ = true;
        }
        if (letter == 'e') {
            options_.patterns.push_back(value);
        } else {
            options_.replace = true;
            options_.replacement = value;
        }
        return true;
    }

    const std::string& word_;
    const std::string* value_;
    Options& options_;
    std::string& mistake_;
    bool tookValue_ = false;
};

/// Options that have no meaning together; empty when all is well.
std::string contradiction(const Options& options) {
    if (!options.replace) return "";
    if (options.patterns.size() > 1) return "-r replaces the matches of one pattern";
    if (options.onlyMatches || options.countOnly || options.invert || options.groups || options.ids)
        return "-r prints the whole text: it cannot be combined with -o, -c, -v, --groups or --ids";
    return "";
}

} // namespace

Request readArguments(const std::vector<std::string>& arguments, Options& options, std::string& mistake) {
    std::vector<std::string> operands;
    bool optionsOver = false;
    for (std::size_t i = 0; i < arguments.size(); i++) {
        const std::string& argument = arguments[i];
        if (optionsOver || argument.size() < 2 || argument[0] != '-') {
            operands.push_back(argument);
        } else if (argument == "--") {
            optionsOver = true;
        } else if (argument == "--help") {
            return Request::Help;
        } else if (argument == "--version") {
            return Request::Version;
        } else if (argument[1] == '-') {
            if (takeWord(argument, options)) continue;
            mistake = "unknown option " + argument;
            return Request::Mistake;
        } else {
            const bool isLast = i + 1 == arguments.size();
            LetterReader letters(argument, isLast ? nullptr : &arguments[i + 1], options, mistake);
            if (!letters.read()) return Request::Mistake;
            if (letters.tookValue()) i++;
        }
    }
    if (options.patterns.empty()) {
        if (operands.empty()) {
            mistake = "no pattern";
            return Request::Mistake;
        }
        options.patterns.push_back(operands.front());
        operands.erase(operands.begin());
    }
    mistake = contradiction(options);
    if (!mistake.empty()) return Request::Mistake;
    options.files = operands;
    options.showNames = options.files.size() > 1;
    if (options.files.empty()) options.files.emplace_back("-");
    return Request::Search;
}

} // namespace tavgrep
