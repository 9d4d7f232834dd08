// tavgrep: prints the lines of files in which a pattern matches. It uses the library's public header alone
// and is there to be read as an example and to be used; `tavgrep --help` lists what it can do.
//
// A file is read in blocks and searched line by line. Lines may hold any bytes and are printed as they are.
#include "lines.h"
#include "options.h"
#include "pattern.h"
#include "platform.h"
#include "tavch.h"

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

namespace tavgrep {

namespace {

enum ExitStatus { foundStatus = 0, noneStatus = 1, errorStatus = 2 };

// Colours as terminals know them, the same that other tools of this kind use.
constexpr const char* matchColor = "\33[1;31m";
constexpr const char* nameColor = "\33[35m";
constexpr const char* numberColor = "\33[32m";
constexpr const char* plainColor = "\33[m";

void complain(const std::string& about, const std::string& what) {
    std::fflush(stdout);
    std::fprintf(stderr, "tavgrep: %s: %s\n", about.c_str(), what.c_str());
}

/// Shows the pattern with a caret under the byte at which compilation stopped.
void complainAboutPattern(const std::string& pattern, CompileError error) {
    std::string padding;
    for (std::size_t i = 0; i < pattern.size() && i < static_cast<std::size_t>(error.offset); i++) {
        const bool continuesCharacter = (pattern[i] & 0xC0) == 0x80;
        if (!continuesCharacter) padding += pattern[i] == '\t' ? '\t' : ' ';
    }
    std::fprintf(stderr, "tavgrep: %s (%d) at offset %d of the pattern\n  %s\n  %s^\n",
                 statusName(error.status), static_cast<int>(error.status), static_cast<int>(error.offset),
                 pattern.c_str(), padding.c_str());
}

class Printer {
public:
    explicit Printer(const Options& options) : options_(options) {}

    void startFile(const std::string& name) { name_ = name == "-" ? "(standard input)" : name; }
    const std::string& fileName() const { return name_; }

    /// A selected line with its matches, `perMatch` spans each; none when the selection is inverted.
    void line(Line line, std::uint64_t number, const std::vector<Span>& matches, std::size_t perMatch) const {
        if (!options_.onlyMatches) {
            prefix(number);
            highlighted(line, matches, perMatch);
            std::putchar('\n');
        }
        for (std::size_t i = 0; i < matches.size(); i += perMatch) {
            if (options_.onlyMatches) onlyMatch(number, matches[i]);
            if (options_.groups) groups(line, &matches[i], perMatch);
        }
    }

    void count(std::uint64_t lines) const {
        fileNamePrefix();
        std::printf("%llu\n", static_cast<unsigned long long>(lines));
    }

private:
    static void bytes(const void* text, std::size_t length) { std::fwrite(text, 1, length, stdout); }

    void colored(const char* color, const void* text, std::size_t length) const {
        if (options_.color) std::fputs(color, stdout);
        bytes(text, length);
        if (options_.color) std::fputs(plainColor, stdout);
    }

    void fileNamePrefix() const {
        if (!options_.showNames) return;
        colored(nameColor, name_.data(), name_.size());
        std::putchar(':');
    }

    void prefix(std::uint64_t number) const {
        fileNamePrefix();
        if (!options_.lineNumbers) return;
        const std::string digits = std::to_string(number);
        colored(numberColor, digits.data(), digits.size());
        std::putchar(':');
    }

    void onlyMatch(std::uint64_t number, const Span& match) const {
        if (match.length == 0) return; // nothing to see
        prefix(number);
        colored(matchColor, match.start, static_cast<std::size_t>(match.length));
        std::putchar('\n');
    }

    void highlighted(Line line, const std::vector<Span>& matches, std::size_t perMatch) const {
        const std::uint8_t* at = line.text;
        for (std::size_t i = 0; options_.color && i < matches.size(); i += perMatch) {
            const Span& match = matches[i];
            if (match.length == 0) continue;
            bytes(at, static_cast<std::size_t>(match.start - at));
            colored(matchColor, match.start, static_cast<std::size_t>(match.length));
            at = match.start + match.length;
        }
        bytes(at, static_cast<std::size_t>(line.text + line.length - at));
    }

    static void groups(Line line, const Span* match, std::size_t perMatch) {
        for (std::size_t i = 0; i < perMatch; i++) {
            if (match[i].length < 0) {
                std::printf("  %zu unset\n", i);
                continue;
            }
            std::printf("  %zu at %td: ", i, match[i].start - line.text);
            bytes(match[i].start, static_cast<std::size_t>(match[i].length));
            std::putchar('\n');
        }
    }

    const Options& options_;
    std::string name_;
};

class Search {
public:
    Search(const Options& options, Pattern& pattern)
        : options_(options), pattern_(pattern), printer_(options),
          needsMatches_(!options.countOnly && !options.invert &&
                        (options.onlyMatches || options.groups || options.color)) {}

    void file(const std::string& name) {
        printer_.startFile(name);
        std::FILE* const file = name == "-" ? stdin : openForReading(name);
        if (file == nullptr) {
            failed(name, std::strerror(errno));
            return;
        }
        lines(file);
        if (file != stdin) std::fclose(file);
    }

    ExitStatus result() const { return hadError_ ? errorStatus : found_ ? foundStatus : noneStatus; }

private:
    void failed(const std::string& name, const std::string& reason) {
        complain(name, reason);
        hadError_ = true;
    }

    void lines(std::FILE* file) {
        LineReader reader(file);
        std::uint64_t number = 0, selected = 0;
        for (Line line;;) {
            const LineReader::Next next = reader.next(line);
            if (next == LineReader::Next::End) break;
            if (next == LineReader::Next::Failed) {
                failed(printer_.fileName(), std::strerror(errno));
                break;
            }
            number++;
            if (next == LineReader::Next::TooLong)
                failed(printer_.fileName(),
                       "line " + std::to_string(number) + " is longer than 2 GiB: not searched");
            else if (select(line, number))
                selected++;
        }
        if (options_.countOnly) printer_.count(selected);
        found_ = found_ || selected > 0;
    }

    bool select(Line line, std::uint64_t number) {
        static const std::vector<Span> none;
        if (pattern_.matchesIn(line) == options_.invert) return false;
        if (options_.countOnly) return true;
        const bool nothingToShow = options_.onlyMatches && options_.invert;
        if (!nothingToShow)
            printer_.line(line, number, needsMatches_ ? pattern_.allMatches(line) : none,
                          pattern_.resultsPerMatch());
        return true;
    }

    const Options& options_;
    Pattern& pattern_;
    Printer printer_;
    const bool needsMatches_;
    bool found_ = false;
    bool hadError_ = false;
};

ExitStatus search(const Options& options) {
    CompileError error;
    Pattern pattern(options.pattern, options.patternOptions, error);
    if (error.status != tavStsNoError) {
        complainAboutPattern(options.pattern, error);
        return errorStatus;
    }
    Search search(options, pattern);
    for (const std::string& name : options.files)
        search.file(name);
    if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
        complain("standard output", std::strerror(errno));
        return errorStatus;
    }
    return search.result();
}

} // namespace

int run(const std::vector<std::string>& arguments) {
    useBinaryStreams();
    Options options;
    std::string mistake;
    switch (readArguments(arguments, options, mistake)) {
    case Request::Help:
        std::fputs(usageText, stdout);
        return foundStatus;
    case Request::Version:
        std::printf("tavgrep with %s %s\n", tavchGetLibVersion()->libraryName,
                    tavchGetLibVersion()->versionText);
        return foundStatus;
    case Request::Mistake:
        std::fprintf(stderr, "tavgrep: %s\n%s", mistake.c_str(), usageText);
        return errorStatus;
    case Request::Search:
        return search(options);
    }
    return errorStatus;
}

} // namespace tavgrep
