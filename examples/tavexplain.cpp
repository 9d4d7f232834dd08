// tavexplain: why does a pattern not match, or why is it slow?
//
//     tavexplain [-o OPTIONS] [-l LIMIT] PATTERN [SUBJECT]
//
// Prints the program that the pattern became, what the search knows about it, and shapes that may take long.
// With a subject: the match with every group and how many levels of the limit it took. For a bad pattern:
// where the error is.
// "-" as the subject reads the standard input.
//
// The program's form is no part of the public interface: this example reads it with the library's own header.
#include "regex/match/program.h"
#include "tavch.hpp"

#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <iterator>
#include <string>
#include <vector>

#if defined(_WIN32)
#include <fcntl.h>
#include <io.h>
#endif

namespace {

using namespace tav::regex;

constexpr const char usage[] = "usage: tavexplain [-o OPTIONS] [-l LIMIT] PATTERN [SUBJECT]\n"
                               "  OPTIONS  letters of \"imsx\"\n"
                               "  LIMIT    levels that a search may use, instead of 10000\n"
                               "  SUBJECT  a text to search; - reads the standard input\n";

// ---- texts

std::string hexadecimal(std::uint32_t value) {
    char digits[16];
    std::snprintf(digits, sizeof digits, "%02X", static_cast<unsigned>(value));
    return digits;
}

std::string quoted(std::string_view text) {
    std::string out = "\"";
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\') out += '\\';
        out += byte >= 0x20 && byte < 0x7F ? std::string(1, c)
               : c == '\n'                 ? "\\n"
                                           : "\\x" + hexadecimal(byte);
    }
    return out + '"';
}

/// Enough of a long text to know it by.
std::string beginning(std::string_view text) {
    constexpr std::size_t enough = 60;
    return text.size() <= enough ? quoted(text) : quoted(text.substr(0, enough)) + "...";
}

std::string character(std::int32_t value) {
    if (value > 0x20 && value < 0x7F) return std::string(1, static_cast<char>(value));
    return "U+" + std::string(value < 0x1000 ? value < 0x100 ? 2 : 1 : 0, '0') +
           hexadecimal(static_cast<std::uint32_t>(value));
}

std::string letters(std::int32_t bits) {
    const auto options = static_cast<std::uint32_t>(bits);
    std::string out;
    if (options & optionDotAll) out += 's';
    if (options & optionMultiLine) out += 'm';
    if (options & optionCaseless) out += 'i';
    return out.empty() ? "none" : out;
}

std::string plural(std::size_t count, const std::string& what) {
    return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

// ---- the program

std::string times(const Instruction& quantifier) {
    std::string out = std::to_string(quantifier.a);
    if (quantifier.b == unboundedRepeat)
        out += " or more times";
    else if (quantifier.a == quantifier.b)
        out += quantifier.a == 1 ? " time" : " times";
    else
        out += " to " + std::to_string(quantifier.b) + " times";
    return out + (quantifier.op == OP_LAZY ? ", as few as possible" : "");
}

const char* assertion(std::int32_t what) {
    switch (what) {
    case '^':
        return "start (of a line, with m)";
    case '$':
        return "end (of a line, with m)";
    case 'A':
    case 'G':
        return "start of the subject";
    case 'Z':
        return "end, or before the last line feed";
    case 'z':
        return "end of the subject";
    case 'b':
        return "word boundary";
    case 'B':
        return "no word boundary";
    default:
        return "start of a line";
    }
}

/// One item without its repeat.
std::string item(const Instruction& at) {
    switch (at.op) {
    case OP_CHAR:
        return "literal " + quoted(std::string(1, static_cast<char>(at.a)));
    case OP_STRING:
        return "literal " + quoted({static_cast<const char*>(at.text), static_cast<std::size_t>(at.b)});
    case OP_BACKREF:
        return "what group " + std::to_string(at.a) + " matched";
    case OP_SET:
        return at.a == -1 ? "any character but" : "one of";
    case OP_TYPE:
        return (at.c == -1 ? "not " : "") + (at.a == '.' ? std::string("any character (.)")
                                                         : "\\" + std::string(1, static_cast<char>(at.a)));
    case OP_ASSERT:
        return assertion(at.a);
    case OP_ALT_END:
        return "or else";
    case OP_RANGE:
    case OP_URANGE:
        return (at.c != 0 ? "not " : "") + character(at.a) + " to " + character(at.b);
    case OP_LOOKBEHIND:
        return "behind, " + plural(static_cast<std::size_t>(at.c), "character") + " back, matches";
    case OP_NLOOKBEHIND:
        return "behind, " + plural(static_cast<std::size_t>(at.c), "character") + " back, does not match";
    case OP_LOOKAHEAD:
        return "ahead matches";
    case OP_NLOOKAHEAD:
        return "ahead does not match";
    case OP_GROUP_OPTS:
        return "plain group with options " + letters(at.c);
    case OP_COND:
        return "when";
    case OP_CAPTURE:
        return "group " + std::to_string(at.c);
    case OP_GROUP:
        return "plain group";
    case OP_ATOMIC:
        return "atomic group";
    case OP_OPTIONS:
        return "options " + letters(at.a);
    case OP_ANYBYTE:
        return "any byte";
    case OP_UCHAR:
        return "character " + character(at.a);
    case OP_UPROP:
        return at.b != 0 ? "a character without the property" : "a character with the property";
    case OP_ULIST:
        return (at.b != 0 ? "not in a script or block of " : "a script or block of ") +
               plural(static_cast<std::size_t>(at.c), "range");
    case OP_EXTSEQ:
        return "a character with its marks";
    default:
        return "end";
    }
}

void print(std::size_t pc, int depth, const std::string& text) {
    std::printf("%5zu  %s%s\n", pc, std::string(static_cast<std::size_t>(2 * depth), ' ').c_str(),
                text.c_str());
}

void printProgram(const Instruction* code, std::int32_t length) {
    int depth = 0;
    for (std::int32_t pc = 0; pc < length; pc++) {
        const Instruction& at = code[pc];
        if (isQuantifier(at.op)) continue;
        // The members of a class follow it, and its repeat follows them.
        const std::int32_t last = at.op == OP_SET ? pc + at.b : isBracket(at.op) ? pc + at.b + 1 : pc;
        const bool isCondition = at.op == OP_BACKREF && pc > 0 && code[pc - 1].op == OP_COND;
        std::string text = isCondition ? "group " + std::to_string(at.a) + " has taken part" : item(at);
        for (std::int32_t member = pc + 1; at.op == OP_SET && member <= last; member++)
            text += (member > pc + 1 ? ", " : " ") + item(code[member]);
        if (last + 1 < length && isQuantifier(code[last + 1].op) && at.op != OP_ALT_END &&
            at.op != OP_GROUP_END)
            text += ", " + times(code[last + 1]);
        if (at.op == OP_GROUP_END) depth--;
        print(static_cast<std::size_t>(pc), at.op == OP_ALT_END && depth > 0 ? depth - 1 : depth, text);
        if (isBracket(at.op)) depth++;
        if (at.op == OP_SET) pc = last;
    }
}

// ---- what is known of it

void printHints(const tavRegExpContext& context, const Instruction* code) {
    std::puts("hints");
    if (context.lastLiteral >= 0)
        std::printf("  %s is required: the subject counts up to its last occurrence\n",
                    item(code[context.lastLiteral]).c_str());
    else
        std::puts(context.lastLiteral == -1 ? "  no literal is required at the end"
                                            : "  no literal is required, because of the alternatives");
    if (context.searchHint == 1) std::puts("  the pattern begins with a literal");
    if (context.searchHint == 2) std::puts("  the pattern is a list of literals");
    bool alternatives = false;
    for (std::int32_t pc = 0; pc < context.codeLength; pc++)
        alternatives = alternatives || (code[pc].op == OP_ALT_END && code[pc].a == 0);
    if (context.codeLength > 0 && code[0].op == OP_ASSERT && !alternatives)
        std::printf("  every match begins at: %s\n", assertion(code[0].a));
}

bool isOpen(const Instruction& quantifier) {
    return isQuantifier(quantifier.op) && quantifier.b > 1 && quantifier.a != quantifier.b;
}

/// A repeat of varying length inside a repeated group: the group can divide a text in many ways.
void printWarnings(const Instruction* code, std::int32_t length) {
    // Without these the search remembers what has failed.
    bool readsGroups = false;
    for (std::int32_t pc = 0; pc < length; pc++)
        readsGroups = readsGroups || code[pc].op == OP_BACKREF || code[pc].op == OP_COND;
    for (std::int32_t pc = 0; pc < length; pc++) {
        if (!isBracket(code[pc].op) || isLookaround(code[pc].op)) continue;
        const std::int32_t end = pc + code[pc].b + 1;
        if (end + 1 >= length || !isOpen(code[end + 1])) continue;
        bool warned = false;
        std::int32_t atomicUntil = -1;
        for (std::int32_t inner = pc + 1; inner < end && !warned; inner++) {
            if (code[inner].op == OP_ATOMIC) atomicUntil = inner + code[inner].b + 1;
            if (!isOpen(code[inner]) || inner <= atomicUntil || code[pc].op == OP_ATOMIC) continue;
            std::printf(
                "warning: a repeat (%d) inside the repeated group at %d: where what follows does not match, "
                "the time may\n  %s\n",
                static_cast<int>(inner - 1), static_cast<int>(pc),
                readsGroups ? "double with each character, because of the back-reference or condition"
                            : "grow with the square of the length");
            warned = true;
        }
        if (!warned && code[pc].op != OP_ATOMIC && code[end + 1].b == unboundedRepeat)
            std::printf(
                "note: each iteration of the group at %d takes levels of the limit; a repeated single item "
                "takes two in all\n",
                static_cast<int>(pc));
    }
}

// ---- a search

using Spans = std::vector<std::pair<std::size_t, std::size_t>>;

Spans search(tav::Pattern& pattern, std::string_view subject, std::int32_t limit) {
    pattern.setMatchLimit(limit);
    const auto match = pattern.find<1000>(subject);
    Spans spans;
    for (std::size_t group = 0; group < match.size(); group++)
        spans.emplace_back(match.position(group), match.end(group));
    return spans;
}

/// The smallest limit under which the search finds the same.
std::int32_t levelsFor(tav::Pattern& pattern, std::string_view subject, const Spans& found,
                       std::int32_t limit) {
    std::int32_t low = 0, high = limit;
    while (low < high) {
        const std::int32_t middle = low + (high - low) / 2;
        if (search(pattern, subject, middle) == found)
            high = middle;
        else
            low = middle + 1;
    }
    return low;
}

void explainSearch(tav::Pattern& pattern, std::string_view subject, std::int32_t limit) {
    std::printf("search in %s\n", plural(subject.size(), "byte").c_str());
    const Spans found = search(pattern, subject, limit);
    for (std::size_t group = 0; group < found.size(); group++) {
        const auto [start, end] = found[group];
        const std::string name = group == 0 ? "match" : "group " + std::to_string(group);
        if (start == tav::npos)
            std::printf("  %s took no part\n", name.c_str());
        else
            std::printf("  %s at %zu to %zu: %s\n", name.c_str(), start, end,
                        beginning(subject.substr(start, end - start)).c_str());
    }
    if (found.empty()) std::puts("  no match");
    constexpr std::int32_t deep = 1000000;
    if (limit < deep && search(pattern, subject, deep) != found)
        std::printf("  the limit of %d levels was reached: with %d the search finds %s match\n",
                    static_cast<int>(limit), static_cast<int>(deep), found.empty() ? "a" : "another");
    else if (!found.empty())
        std::printf("  %d of %d levels used\n", static_cast<int>(levelsFor(pattern, subject, found, limit)),
                    static_cast<int>(limit));
    else
        std::puts("  more levels would not change that");
}

/// The line of a pattern that an offset is in, and a caret below: a column for each character, tabs as they
/// are.
void printPlace(const std::string& text, std::size_t offset) {
    const std::size_t begin = offset == 0 ? 0 : text.rfind('\n', offset - 1) + 1;
    const std::string line = text.substr(begin, text.find('\n', offset) - begin);
    std::string indent;
    for (const char c : text.substr(begin, offset - begin)) {
        const bool continues = (static_cast<unsigned char>(c) & 0xC0U) == 0x80U;
        if (!continues) indent += c == '\t' ? '\t' : ' ';
    }
    std::printf("  %s\n  %s^\n", line.c_str(), indent.c_str());
}

int explain(const std::string& text, const std::string& options, std::int32_t limit,
            const std::string* subject) {
    tav::Pattern pattern(text, options);
    if (!pattern) {
        const tav::Error& error = pattern.error();
        std::printf("error %s (%d) at byte %d: %s\n", std::string(error.name()).c_str(),
                    static_cast<int>(error.status), static_cast<int>(error.offset),
                    std::string(error.text()).c_str());
        if (error.status != tavStsBadOption) printPlace(text, static_cast<std::size_t>(error.offset));
        return 2;
    }
    const tavRegExpContext& context = *pattern.context();
    const Instruction* const code = programOf(context);
    const std::size_t groups = pattern.resultCount() - 1;
    std::printf("program: %s, %s, %zu bytes\n",
                plural(static_cast<std::size_t>(context.codeLength), "instruction").c_str(),
                plural(groups, "group").c_str(), 24 * text.size() + 48056);
    printProgram(code, context.codeLength);
    printHints(context, code);
    printWarnings(code, context.codeLength);
    std::fflush(stdout); // What has been said is to be read while a slow search goes on.
    if (subject) explainSearch(pattern, *subject, limit);
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    std::string options;
    std::int32_t limit = 10000;
    int at = 1;
    for (; at + 1 < argc && argv[at][0] == '-' && argv[at][1] != '\0'; at += 2) {
        const std::string_view option = argv[at];
        if (option == "--") {
            at++;
            break;
        }
        char* end = nullptr;
        if (option == "-o") {
            options = argv[at + 1];
        } else if (option == "-l") {
            const long value = std::strtol(argv[at + 1], &end, 10);
            if (*end != '\0' || value < 0 || value > 100000000) at = argc;
            limit = static_cast<std::int32_t>(value);
        } else {
            break;
        }
    }
    if (argc - at < 1 || argc - at > 2) {
        std::fputs(usage, stderr);
        return 2;
    }
    if (argc - at == 1) return explain(argv[at], options, limit, nullptr);
    std::string subject = argv[at + 1];
    if (subject == "-") {
#if defined(_WIN32)
        _setmode(_fileno(stdin), _O_BINARY);
#endif
        subject.assign(std::istreambuf_iterator<char>(std::cin), {});
    }
    return explain(argv[at], options, limit, &subject);
}
