// tavgrep: prints the lines of files in which a pattern matches. It uses the library's public header alone
// and is there to be read as an example and to be used; `tavgrep --help` lists what it can do.
//
// A file is read in blocks and searched line by line. Lines may hold any bytes and are printed as they are.
#include "lines.h"
#include "options.h"
#include "patterns.h"
#include "platform.h"
#include "replacement.h"
#include "tavch.h"

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>
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

    /// A selected line with its matches, none when the selection is inverted, and the patterns that match.
    void line(Line line, std::uint64_t number, const std::vector<Match>& matches,
              const std::vector<std::size_t>& ids) const {
        if (!options_.onlyMatches) {
            prefix(number, ids);
            highlighted(line, matches);
            std::putchar('\n');
        }
        for (const Match& match : matches) {
            if (options_.onlyMatches) onlyMatch(number, ids, match.whole());
            if (options_.groups) groups(line, match);
        }
    }

    void replaced(Line text, std::uint64_t number) const {
        prefix(number, {});
        bytes(text.text, static_cast<std::size_t>(text.length));
        std::putchar('\n');
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

    void numberPrefix(const std::string& digits) const {
        colored(numberColor, digits.data(), digits.size());
        std::putchar(':');
    }

    void prefix(std::uint64_t number, const std::vector<std::size_t>& ids) const {
        fileNamePrefix();
        if (options_.lineNumbers) numberPrefix(std::to_string(number));
        if (options_.ids) numberPrefix(joined(ids));
    }

    static std::string joined(const std::vector<std::size_t>& ids) {
        std::string all;
        for (const std::size_t id : ids) {
            if (!all.empty()) all += ',';
            all += std::to_string(id);
        }
        return all;
    }

    void onlyMatch(std::uint64_t number, const std::vector<std::size_t>& ids, const Span& match) const {
        if (match.length == 0) return; // nothing to see
        prefix(number, ids);
        colored(matchColor, match.start, static_cast<std::size_t>(match.length));
        std::putchar('\n');
    }

    void highlighted(Line line, const std::vector<Match>& matches) const {
        const std::uint8_t* at = line.text;
        for (std::size_t i = 0; options_.color && i < matches.size(); i++) {
            const Span& match = matches[i].whole();
            if (match.length == 0) continue;
            bytes(at, static_cast<std::size_t>(match.start - at));
            colored(matchColor, match.start, static_cast<std::size_t>(match.length));
            at = match.start + match.length;
        }
        bytes(at, static_cast<std::size_t>(line.text + line.length - at));
    }

    static void groups(Line line, const Match& match) {
        for (std::size_t i = 0; i < match.count; i++) {
            const Span& span = match.spans[i];
            if (span.length < 0) {
                std::printf("  %zu unset\n", i);
                continue;
            }
            std::printf("  %zu at %td: ", i, span.start - line.text);
            bytes(span.start, static_cast<std::size_t>(span.length));
            std::putchar('\n');
        }
    }

    const Options& options_;
    std::string name_;
};

class Search {
public:
    /// `replacement` is null when lines are to be selected.
    Search(const Options& options, Patterns& patterns, Replacement* replacement)
        : options_(options), patterns_(patterns), replacement_(replacement), printer_(options),
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
            else if (replacement_ != nullptr ? replace(line, number) : select(line, number))
                selected++;
        }
        if (options_.countOnly) printer_.count(selected);
        found_ = found_ || selected > 0;
    }

    bool select(Line line, std::uint64_t number) {
        static const std::vector<Match> none;
        if (patterns_.matchesIn(line) == options_.invert) return false;
        if (options_.countOnly) return true;
        const bool nothingToShow = options_.onlyMatches && options_.invert;
        if (!nothingToShow)
            printer_.line(line, number, needsMatches_ ? patterns_.allMatches(line) : none,
                          patterns_.matching());
        return true;
    }

    bool replace(Line line, std::uint64_t number) {
        printer_.replaced(replacement_->apply(line), number);
        return replacement_->matched();
    }

    const Options& options_;
    Patterns& patterns_;
    Replacement* const replacement_;
    Printer printer_;
    const bool needsMatches_;
    bool found_ = false;
    bool hadError_ = false;
};

ExitStatus search(const Options& options) {
    CompileError error;
    std::string failed;
    Patterns patterns(options.patterns, options.patternOptions, error, failed);
    if (error.status != tavStsNoError) {
        complainAboutPattern(failed, error);
        return errorStatus;
    }
    std::unique_ptr<Replacement> replacement;
    if (options.replace)
        replacement = std::make_unique<Replacement>(options.patterns.front(), options.patternOptions,
                                                    options.replacement, error);
    if (error.status != tavStsNoError) {
        complain("template " + options.replacement, statusName(error.status));
        return errorStatus;
    }
    Search search(options, patterns, replacement.get());
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
