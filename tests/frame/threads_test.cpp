// Distinct patterns on distinct threads share nothing: eight threads compile, search and replace at once,
// each with blocks of its own, on the same subjects, templates and options; each finds what one thread finds
// alone.
#include "tavch.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <thread>
#include <vector>

namespace {

const char* const patterns[] = {"needle",
                                "(a|ab)(c|bcd)*(d*)",
                                "(?i)\\x{e9}+|[a-c]+",
                                "(\\w+)\\s(\\w+)",
                                "(?<=a)b|\\p{Lu}",
                                "(a+)+b",
                                ".*z",
                                "foo|bar"};
const char* const subjects[] = {"hay needle hay", "abcdabcbcdd",     "\xC3\xA9\xC3\x89 abc",
                                "two words ABz",  "aaaaaaaaaaaaaac", "xx bar foo"};
const char replacementText[] = "<$1|$&>";

std::string everything() {
    std::string all;
    for (const char* const pattern : patterns) {
        std::vector<uint64_t> block((24 * std::strlen(pattern) + 48056) / 8);
        std::vector<uint64_t> items(2 * sizeof replacementText);
        auto* const context = reinterpret_cast<tavRegExpContext*>(block.data());
        auto* const replacement = reinterpret_cast<tavRegExpReplaceContext*>(items.data());
        int32_t errOffset = 0;
        all += std::to_string(tavsRegExpInit(pattern, "g", context, &errOffset));
        all += std::to_string(tavsRegExpReplaceInit(replacementText, replacement));
        for (const char* const subject : subjects) {
            tavRegExpFindResult found[40];
            uint8_t out[200] = {};
            int32_t count = 40, read = static_cast<int32_t>(std::strlen(subject)), written = 200, index = 0;
            const auto* const text = reinterpret_cast<const uint8_t*>(subject);
            all += std::to_string(tavsRegExpFind_8u(text, read, context, found, &count));
            all.append(":").append(std::to_string(count));
            count = 40;
            tavsFind_8u(text, read, text + read / 2, 2, &index);
            tavsRegExpReplace_8u(text, &read, out, &written, found, &count, context, replacement);
            all.append(reinterpret_cast<const char*>(out), static_cast<std::size_t>(written));
            all.append(std::to_string(index));
        }
    }
    return all;
}

} // namespace

TEST(Threads, WithPatternsOfTheirOwnFindWhatOneThreadFinds) {
    const std::string expected = everything();
    std::vector<std::string> results(8);
    std::vector<std::thread> threads;
    for (std::string& result : results) {
        threads.emplace_back([&result, &expected] {
            for (int round = 0; round < 20; ++round) {
                result = everything();
                if (result != expected) return;
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    for (const std::string& result : results)
        EXPECT_EQ(result, expected);
}
