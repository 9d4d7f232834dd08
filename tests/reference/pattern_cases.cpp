#include "reference/pattern_cases.h"

#include "reference/pattern_case_files.h"

#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace tav::reference {
namespace {

/// Reads one line from left to right.
class LineReader {
public:
    LineReader(std::string_view file, int number, std::string_view line)
        : file_(file), number_(number), line_(line) {}

    PatternCase read() {
        PatternCase result;
        result.file = file_;
        result.line = number_;
        result.source = line_;
        readPattern(result);
        readSubject(result);
        readSettings(result);
        readAnswer(result);
        return result;
    }

private:
    [[noreturn]] void fail(const char* what) const {
        std::fprintf(stderr, "%s:%d: %s\n  %s\n", file_.c_str(), number_, what, std::string(line_).c_str());
        std::exit(2);
    }
    std::string_view rest() const { return line_.substr(at_); }
    bool skip(std::string_view text) {
        if (!rest().starts_with(text)) return false;
        at_ += text.size();
        return true;
    }
    void skipBlanks() {
        while (skip(" ")) {
        }
    }
    int32_t number() {
        std::size_t used = 0;
        const std::string text(rest().substr(0, 12));
        char* end = nullptr;
        const long value = std::strtol(text.c_str(), &end, 10);
        used = static_cast<std::size_t>(end - text.c_str());
        if (used == 0) fail("a number is missing");
        at_ += used;
        return static_cast<int32_t>(value);
    }
    uint8_t hexByte(std::size_t at) const {
        const std::string digits(line_.substr(at, 2));
        char* end = nullptr;
        const long value = std::strtol(digits.c_str(), &end, 16);
        if (digits.size() != 2 || *end != '\0') fail("two hexadecimal digits are missing");
        return static_cast<uint8_t>(value);
    }

    void readPattern(PatternCase& result) {
        const std::size_t column = line_.find("  '");
        const std::size_t slash = column == line_.npos ? line_.npos : line_.rfind('/', column);
        if (slash == line_.npos || slash == 0) fail("not /pattern/options and a subject");
        for (std::size_t i = 1; i < slash; ++i) {
            const bool escaped = line_[i] == '%';
            result.pattern += escaped ? static_cast<char>(hexByte(i + 1)) : line_[i];
            if (escaped) i += 2;
        }
        at_ = slash + 1;
        while (!rest().empty() && rest()[0] != ' ')
            result.options += line_[at_++];
        skipBlanks();
    }

    char readEscape() {
        const char letter = line_[at_++];
        switch (letter) {
        case 'n':
            return '\n';
        case 'r':
            return '\r';
        case 't':
            return '\t';
        case 'x':
            at_ += 2;
            return static_cast<char>(hexByte(at_ - 2));
        case '\\':
        case '\'':
            return letter;
        default:
            fail("unknown escape in the subject");
        }
    }

    void readSubject(PatternCase& result) {
        if (!skip("'")) fail("the subject is missing");
        while (!rest().empty() && rest()[0] != '\'') {
            const char c = line_[at_++];
            result.subject += c == '\\' ? readEscape() : c;
        }
        if (!skip("'")) fail("the subject has no end");
        if (skip("{")) {
            const std::string piece = result.subject;
            for (int32_t left = number() - 1; left > 0; --left)
                result.subject += piece;
            if (!skip("}")) fail("a brace is missing");
        }
        skipBlanks();
    }

    void readSettings(PatternCase& result) {
        while (!skip("=>")) {
            if (skip("limit="))
                result.limit = number();
            else if (skip("format="))
                result.format = number();
            else if (skip("slots="))
                result.slots = number();
            else if (skip("behind=") && !rest().empty())
                result.behind = line_[at_++];
            else
                fail("unknown setting");
            skipBlanks();
        }
        skipBlanks();
    }

    void readAnswer(PatternCase& result) {
        if (skip("error ")) {
            result.refused = true;
            result.status = number();
            if (!skip(" at ")) fail("the offset of the error is missing");
            result.errorOffset = skip("*") ? -1 : number();
        } else if (skip("status ")) {
            result.status = number();
        } else if (!skip("none")) {
            while (skip("("))
                result.spans.push_back(readSpan());
            if (result.spans.empty()) fail("unknown answer");
            result.truncated = skip(" truncated");
        }
        if (!rest().empty()) fail("text behind the answer");
    }

    Span readSpan() {
        if (skip("-)")) return {};
        const int32_t start = number();
        if (!skip(",")) fail("a comma is missing");
        const int32_t end = number();
        if (!skip(")")) fail("a parenthesis is missing");
        return {start, end - start};
    }

    std::string file_;
    int number_;
    std::string_view line_;
    std::size_t at_ = 0;
};

} // namespace

std::vector<Section> readPatternCases() {
    std::vector<Section> sections;
    for (const PatternCaseFile& file : patternCaseFiles) {
        std::string_view text = file.text;
        for (int number = 1; !text.empty(); ++number) {
            const std::string_view line = text.substr(0, text.find('\n'));
            text.remove_prefix(line.size() < text.size() ? line.size() + 1 : line.size());
            if (line.empty() || line[0] == '#') continue;
            if (line[0] == '[')
                sections.push_back({std::string(line.substr(1, line.size() - 2)), {}});
            else
                sections.back().cases.push_back(LineReader(file.name, number, line).read());
        }
    }
    return sections;
}

} // namespace tav::reference
