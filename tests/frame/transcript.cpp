// Prints what the library does, one line for each export and each pattern: the same text from every compiler,
// at every level of optimisation, on every system. The committed transcript is compared with it in every
// build.
#include "frame/every_export.h"
#include "frame/export_list.h"
#include "regex/match/program.h"

#include <cstdio>
#include <cstring>

namespace {

using namespace tavtest;
using tav::regex::Instruction;

constexpr std::size_t longest = 130;

void printExports() {
    for (const auto& [name, row] : everyExport()) {
        std::string all;
        for (std::size_t length = 0; length <= longest; ++length) {
            Call call(length, {true, 0});
            row(call);
            all += call.results();
        }
        std::printf("%-32s %016llx\n", std::string(name).c_str(),
                    static_cast<unsigned long long>(hashOf(all)));
    }
}

const char* const patterns[] = {
    "",
    "needle",
    "foo|bar|b\\w+",
    "(a|ab)(c|bcd)*(d*)",
    "(?i)stra\\x{df}e|\\x{c4}+",
    "^(\\d{1,3})\\.(\\d+)$",
    "\\b\\w+\\b",
    "(?<=\\$)\\d+(?!\\d|\\.)",
    "(?>a+)b|(a)?(?(1)c|d)",
    "[[:upper:]][^[:digit:]\\n]*?\\.",
    "\\p{Lu}\\p{Ll}+|\\P{L}{2}",
    "[\\x{3b1}-\\x{3c9}]+\\X",
    ".*z",
    "(.+?)\\1",
    "(?m)^.*$",
    "((a{1,2}){2,3}b){1,2}",
    "(?x) a # comment\n b",
    "\\Qa.b\\E+",
    "(a",
    "[b-a]",
    "a{3,2}",
    "\\p{Nowhere}",
    "(?<=a*)b",
    "(?z)",
    "\\x{41",
};

const char* const subjects[] = {
    "",
    "hay needle hay needle",
    "xx baz bar foo",
    "abcdabcbcdd",
    "STRA\xC3\x9F"
    "E stra\xC3\xA4\xC3\x84",
    "10.20 192.168",
    "cost $42 or $7.50",
    "aaab ac d",
    "Some sentence. Another 1.",
    "\xCE\x91\xCE\xB2\xCE\xB3\xCC\x81 \xD0\x94\xD0\xB0",
    "one\ntwo\n\nthree z\n",
    "\xFF\xC3\xE2\x82"
    "aaaabaaaab",
};

/// The program without the addresses of its texts.
std::string programText(const tavRegExpContext& context) {
    std::string text;
    for (int32_t i = 0; i < context.codeLength; ++i) {
        const Instruction& one = tav::regex::programOf(context)[i];
        for (const int64_t operand : {int64_t{one.op}, int64_t{one.a}, int64_t{one.b}, int64_t{one.c}})
            text.append(std::to_string(operand)).append(" ");
        if (one.op == tav::regex::OP_STRING)
            text.append(static_cast<const char*>(one.text), static_cast<std::size_t>(one.b));
    }
    return text;
}

void append(std::string& text, const tavRegExpFindResult* found, int32_t count, const uint8_t* subject) {
    for (int32_t i = 0; i < count; ++i) {
        text +=
            std::to_string(found[i].start == nullptr ? -1 : static_cast<int64_t>(found[i].start - subject));
        text.append("+").append(std::to_string(found[i].length)).append(" ");
    }
    text += "; ";
}

void printPattern(const char* pattern, const char* options) {
    std::vector<uint64_t> block((24 * std::strlen(pattern) + 48056) / 8);
    auto* const context = reinterpret_cast<tavRegExpContext*>(block.data());
    int32_t errOffset = -1;
    const tavStatus status = tavsRegExpInit(pattern, options, context, &errOffset);
    std::printf("status %d", static_cast<int>(status));
    if (status != tavStsNoError) {
        std::printf(" at %d\n", static_cast<int>(errOffset));
        return;
    }
    std::string matches;
    for (const char* const text : subjects) {
        tavRegExpFindResult found[30];
        int32_t count = 30;
        const auto* const subject = reinterpret_cast<const uint8_t*>(text);
        matches += std::to_string(
            tavsRegExpFind_8u(subject, static_cast<int32_t>(std::strlen(text)), context, found, &count));
        append(matches, found, count, subject);
    }
    std::printf(" groups %d last %d hint %d program %016llx matches %016llx\n",
                static_cast<int>(context->groupCount), static_cast<int>(context->lastLiteral),
                static_cast<int>(context->searchHint),
                static_cast<unsigned long long>(hashOf(programText(*context))),
                static_cast<unsigned long long>(hashOf(matches)));
}

} // namespace

int main() {
    printExports();
    int number = 0;
    for (const char* const pattern : patterns) {
        ++number;
        for (const char* const options : {"", "g", "ims"}) {
            std::printf("pattern %d/%s: ", number, options);
            printPattern(pattern, options);
        }
    }
    return 0;
}
