// A block's former contents must not show: the same patterns in blocks that held zeros, ones, random bytes, a
// plan of another pattern or nothing known at all find the same. Without a test framework and without the C++
// run-time, so that MemorySanitizer sees every byte that the program reads: there the block is as malloc left
// it.
#include "tavch.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <initializer_list>

namespace {

const char* const patterns[] = {
    "",
    "needle",
    "a(b|c)*d",
    "(a|ab)(c|bcd)*(d*)",
    "(?i)stra\\x{df}e|[\\x{c4}-\\x{d6}]+",
    "^(\\d{1,3})\\.(\\d+)$",
    "\\w+?\\s(\\w+)",
    "(?<=\\$)\\d+(?!\\d|\\.)",
    "(?>a+)b|(a)?(?(1)c|d)",
    "[[:upper:]][^[:digit:]\\n]*?\\.",
    "\\p{Lu}\\p{Ll}+|\\P{L}{2}",
    ".*z",
    "(.+?)\\1",
    "(a+)+b",
    "(a|aa)+$",
    "((a{1,2}){2,3}b){1,2}",
    "foo|bar|baz",
    "[a-c]+x|\\X\\C",
    "(?:(a)|b)*?c(?=d)",
};

const char* const subjects[] = {
    "",
    "hay needle hay needle",
    "xx abcbcd baz bar foo d",
    "abcdabcbcdd aaaaaaaaaaaaaaaaaaaa",
    "STRA\xC3\x9F"
    "E stra\xC3\xA4\xC3\x84",
    "10.20 192.168",
    "cost $42 or $7.50",
    "aaab ac d Some sentence. Another 1.",
    "one\ntwo\n\nthree z\n",
    "\xFF\xC3\xE2\x82"
    "aaaabaaaab abbcd",
};

constexpr int32_t slots = 24;
constexpr int former = 6;

struct Outcome {
    tavStatus statuses[3];
    int32_t count;
    int64_t spans[2 * slots];
    int32_t written;
    uint8_t text[200];
};

void fill(uint8_t* block, std::size_t size, int kind) {
    static uint32_t random = 20261120;
    if (kind == 1) std::memset(block, 0, size);
    if (kind == 2) std::memset(block, 0xFF, size);
    if (kind == 3) {
        for (std::size_t i = 0; i < size; ++i)
            block[i] = static_cast<uint8_t>((random = random * 1664525 + 1013904223) >> 24);
    }
    if (kind < 4) return; // 0: whatever malloc gave
    // A plan made for another pattern in the same block, then one for the same pattern under other options.
    auto* const context = reinterpret_cast<tavRegExpContext*>(block);
    tavRegExpFindResult found[2];
    int32_t errOffset = 0, count = 2;
    tavsRegExpInit("", kind == 4 ? "g" : "ims", context, &errOffset);
    tavsRegExpFind_8u(reinterpret_cast<const uint8_t*>("abc"), 3, context, found, &count);
}

/// Compiles in a block of that kind and searches twice: with no plan in the block, and with the one just
/// made.
void run(const char* pattern, const char* options, const char* subject, int kind, Outcome& outcome) {
    const std::size_t size = 24 * std::strlen(pattern) + 48056;
    auto* const block = static_cast<uint8_t*>(std::malloc(size));
    if (block == nullptr) std::abort();
    fill(block, size, kind);
    auto* const context = reinterpret_cast<tavRegExpContext*>(block);
    int32_t errOffset = 0;
    if (tavsRegExpInit(pattern, options, context, &errOffset) != tavStsNoError) std::abort();
    std::memset(&outcome, 0, sizeof outcome);
    const auto* const text = reinterpret_cast<const uint8_t*>(subject);
    const auto length = static_cast<int32_t>(std::strlen(subject));
    tavRegExpFindResult found[slots];
    for (int round = 0; round < 2; ++round) {
        outcome.count = slots;
        outcome.statuses[round] = tavsRegExpFind_8u(text, length, context, found, &outcome.count);
        for (int32_t i = 0; i < outcome.count; ++i) {
            outcome.spans[2 * i] = found[i].start == nullptr ? -1 : found[i].start - text;
            outcome.spans[2 * i + 1] = found[i].length;
        }
    }
    alignas(8) uint8_t items[16 * 8];
    auto* const replacement = reinterpret_cast<tavRegExpReplaceContext*>(items);
    tavsRegExpReplaceInit("<$1>", replacement);
    int32_t read = length, count = slots;
    outcome.written = 100;
    outcome.statuses[2] = tavsRegExpReplace_8u(text, &read, outcome.text, &outcome.written, found, &count,
                                               context, replacement);
    std::free(block);
}

} // namespace

int main() {
    int runs = 0;
    for (const char* const pattern : patterns) {
        for (const char* const options : {"", "g", "is"}) {
            for (const char* const subject : subjects) {
                Outcome expected, outcome;
                run(pattern, options, subject, 1, expected);
                for (int kind = 0; kind < former; ++kind) {
                    run(pattern, options, subject, kind, outcome);
                    ++runs;
                    if (std::memcmp(&outcome, &expected, sizeof outcome) == 0) continue;
                    std::printf("/%s/%s on '%s': differs in a block of kind %d\n", pattern, options, subject,
                                kind);
                    return 1;
                }
            }
        }
    }
    std::printf("%d runs\n", runs);
    return 0;
}
