#include "options.h"

#include "platform.h"

namespace tavgrep {

const char* const usageText =
    "usage: tavgrep [OPTION...] PATTERN [FILE...]\n"
    "Prints the lines of the files (of the standard input without files) in which PATTERN matches.\n"
    "\n"
    "  -i            letters match in either case\n"
    "  -s            a dot also matches a line break\n"
    "  -m            ^ and $ also match at line breaks inside the text\n"
    "  -x            white space and # comments in the pattern are ignored\n"
    "\n"
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
    if (word == "--color") return takeColor("auto", options);
    const std::string color = "--color=";
    return word.compare(0, color.size(), color) == 0 && takeColor(word.substr(color.size()), options);
}

bool takeLetters(const std::string& argument, Options& options, std::string& mistake) {
    for (const char letter : argument.substr(1)) {
        if (takeLetter(letter, options)) continue;
        mistake = std::string("unknown option -") + letter;
        return false;
    }
    return true;
}

} // namespace

Request readArguments(const std::vector<std::string>& arguments, Options& options, std::string& mistake) {
    std::vector<std::string> operands;
    bool optionsOver = false;
    for (const std::string& argument : arguments) {
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
        } else if (!takeLetters(argument, options, mistake)) {
            return Request::Mistake;
        }
    }
    if (operands.empty()) {
        mistake = "no pattern";
        return Request::Mistake;
    }
    options.pattern = operands.front();
    options.files.assign(operands.begin() + 1, operands.end());
    options.showNames = options.files.size() > 1;
    if (options.files.empty()) options.files.emplace_back("-");
    return Request::Search;
}

} // namespace tavgrep
