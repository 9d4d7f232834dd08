// The six functions of a pattern object, called as a user calls them.
#include "tavch.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <string>
#include <vector>

namespace {

constexpr int32_t unwritten = -77;

/// A block for `pattern`, compiled.
std::vector<uint64_t> compiledBlock(const char* pattern) {
    std::vector<uint64_t> block((24 * std::strlen(pattern) + 48056) / 8);
    int32_t errOffset = unwritten;
    EXPECT_EQ(tavsRegExpInit(pattern, nullptr, reinterpret_cast<tavRegExpContext*>(block.data()), &errOffset),
              tavStsNoError);
    return block;
}

TEST(Layout, OfTheHeaderIsFixed) {
    EXPECT_EQ(offsetof(tavRegExpContext, tag), 0u);
    EXPECT_EQ(offsetof(tavRegExpContext, options), 4u);
    EXPECT_EQ(offsetof(tavRegExpContext, codeLength), 8u);
    EXPECT_EQ(offsetof(tavRegExpContext, groupCount), 12u);
    EXPECT_EQ(offsetof(tavRegExpContext, lastLiteral), 16u);
    EXPECT_EQ(offsetof(tavRegExpContext, matchLimit), 20u);
    EXPECT_EQ(offsetof(tavRegExpContext, format), 24u);
    EXPECT_EQ(offsetof(tavRegExpContext, searchHint), 28u);
    EXPECT_EQ(offsetof(tavRegExpContext, workArea), 32u);
    EXPECT_EQ(sizeof(tavRegExpContext), 48032u);
}

TEST(Layout, TheTagReadsRgExInMemory) {
    const auto block = compiledBlock("a");
    EXPECT_EQ(std::memcmp(block.data(), "rgEx", 4), 0);
}

TEST(Layout, InstructionsOf24BytesBeginAtByte48032AndTheLiteralPoolFollowsThem) {
    const auto block = compiledBlock("a*bcd(ef)");
    const auto* const bytes = reinterpret_cast<const uint8_t*>(block.data());
    const auto word = [&](std::size_t instruction, std::size_t field) {
        uint32_t value = 0;
        std::memcpy(&value, bytes + 48032 + 24 * instruction + 4 * field, 4);
        return value;
    };
    EXPECT_EQ(word(0, 0), 0x10000000u);
    EXPECT_EQ(word(0, 1), static_cast<uint32_t>('a'));
    EXPECT_EQ(word(1, 0), 0x10000009u);
    EXPECT_EQ(word(1, 2), 0x3FFFFFFFu);
    EXPECT_EQ(word(2, 0), 0x10000001u);
    EXPECT_EQ(word(2, 2), 3u);
    EXPECT_EQ(word(3, 0), 0x10000010u);
    EXPECT_EQ(word(4, 0), 0x10000001u);
    EXPECT_EQ(word(5, 0), 0x10000013u);
    const uint8_t* const pool = bytes + 48032 + 24 * 6;
    EXPECT_EQ(std::memcmp(pool, "bcdef", 5), 0) << "in program order, without terminators";
    const uint8_t* text = nullptr;
    std::memcpy(&text, bytes + 48032 + 24 * 2 + 16, 8);
    EXPECT_EQ(text, pool);
    std::memcpy(&text, bytes + 48032 + 24 * 4 + 16, 8);
    EXPECT_EQ(text, pool + 3);
}

TEST(GetSize, Is24BytesPerPatternByteAnd48056More) {
    int32_t size = unwritten;
    EXPECT_EQ(tavsRegExpGetSize("", &size), tavStsNoError);
    EXPECT_EQ(size, 48056);
    EXPECT_EQ(tavsRegExpGetSize("a(b+)c", &size), tavStsNoError);
    EXPECT_EQ(size, 24 * 6 + 48056);
}

TEST(GetSize, DoesNotParseThePattern) {
    int32_t size = unwritten;
    EXPECT_EQ(tavsRegExpGetSize("((*", &size), tavStsNoError);
    EXPECT_EQ(size, 24 * 3 + 48056);
}

TEST(GetSize, RefusesNullPointers) {
    int32_t size = unwritten;
    EXPECT_EQ(tavsRegExpGetSize(nullptr, &size), tavStsNullPointer);
    EXPECT_EQ(tavsRegExpGetSize("a", nullptr), tavStsNullPointer);
    EXPECT_EQ(size, unwritten);
}

TEST(GetSize, RefusesAPatternWhoseBlockIsLargerThanItCanSay) {
    std::string pattern(89476482, 'a');
    int32_t size = unwritten;
    EXPECT_EQ(tavsRegExpGetSize(pattern.c_str(), &size), tavStsNoError);
    EXPECT_EQ(size, 2147483624);
    pattern += 'a';
    size = unwritten;
    EXPECT_EQ(tavsRegExpGetSize(pattern.c_str(), &size), tavStsNegativeLength);
    EXPECT_EQ(size, unwritten);
}

TEST(Init, RefusesNullPointersAndWritesNothing) {
    std::vector<uint64_t> block(48080 / 8, 7);
    const auto untouched = block;
    auto* const state = reinterpret_cast<tavRegExpContext*>(block.data());
    int32_t errOffset = unwritten;
    EXPECT_EQ(tavsRegExpInit(nullptr, "q", state, &errOffset), tavStsNullPointer);
    EXPECT_EQ(tavsRegExpInit("a", "q", nullptr, &errOffset), tavStsNullPointer);
    EXPECT_EQ(tavsRegExpInit("a", "q", state, nullptr), tavStsNullPointer);
    EXPECT_EQ(errOffset, unwritten);
    EXPECT_EQ(block, untouched);
}

TEST(Init, WritesTheErrorOffsetOnFailureOnly) {
    std::vector<uint64_t> block((24 * 3 + 48056) / 8);
    auto* const state = reinterpret_cast<tavRegExpContext*>(block.data());
    int32_t errOffset = unwritten;
    EXPECT_EQ(tavsRegExpInit("abc", nullptr, state, &errOffset), tavStsNoError);
    EXPECT_EQ(errOffset, unwritten);
    EXPECT_EQ(tavsRegExpInit("ab(", nullptr, state, &errOffset), tavStsPatternSyntax);
    EXPECT_EQ(errOffset, 3);
    EXPECT_EQ(tavsRegExpInit("ab(", "I", state, &errOffset), tavStsBadOption);
    EXPECT_EQ(errOffset, 0);
}

TEST(Init, MayBeRepeatedOnTheSameBlock) {
    std::vector<uint64_t> block((24 * 9 + 48056) / 8);
    auto* const state = reinterpret_cast<tavRegExpContext*>(block.data());
    int32_t errOffset = unwritten;
    ASSERT_EQ(tavsRegExpInit("(a)(b)|cd", "i", state, &errOffset), tavStsNoError);
    ASSERT_EQ(tavsRegExpSetMatchLimit(5, state), tavStsNoError);
    ASSERT_EQ(tavsRegExpSetFormat(0, state), tavStsNoError);
    ASSERT_EQ(tavsRegExpInit("e", nullptr, state, &errOffset), tavStsNoError);
    EXPECT_EQ(state->options, 0u);
    EXPECT_EQ(state->codeLength, 1);
    EXPECT_EQ(state->groupCount, 1);
    EXPECT_EQ(state->matchLimit, 10000);
    EXPECT_EQ(state->format, 1);
}

TEST(Init, NeedsThePatternNoLongerThanTheCall) {
    std::string pattern = "hello";
    std::vector<uint64_t> block((24 * 5 + 48056) / 8);
    auto* const state = reinterpret_cast<tavRegExpContext*>(block.data());
    int32_t errOffset = unwritten;
    ASSERT_EQ(tavsRegExpInit(pattern.c_str(), nullptr, state, &errOffset), tavStsNoError);
    pattern.assign(pattern.size(), 'X');
    const auto* const bytes = reinterpret_cast<const char*>(block.data());
    EXPECT_EQ(std::memcmp(bytes + 48032 + 24, "hello", 5), 0);
}

/// The memory of a released block may come back with parts overwritten, and the same pattern be compiled
/// there.
TEST(Init, DoesNotTrustWhatAFormerSearchLeftInTheBlock) {
    const char* const pattern = "(a|b[cd]+?)*x";
    const auto* const subject = reinterpret_cast<const uint8_t*>("--abcdbdx");
    std::vector<uint64_t> block = compiledBlock(pattern);
    auto* const context = reinterpret_cast<tavRegExpContext*>(block.data());
    const auto found = [&] {
        tavRegExpFindResult results[2] = {};
        int32_t count = 2;
        EXPECT_EQ(tavsRegExpFind_8u(subject, 9, context, results, &count), tavStsNoError);
        EXPECT_EQ(count, 2);
        return std::vector<int64_t>{results[0].start - subject, results[0].length, results[1].start - subject,
                                    results[1].length};
    };
    const std::vector<int64_t> expected = found();
    EXPECT_EQ(expected, (std::vector<int64_t>{2, 7, 6, 2}));
    for (std::size_t word = 0; word < 400; ++word) {
        context->workArea[word] = 0xA5A5A5A5A5A5A5A5;
        int32_t errOffset = 0;
        ASSERT_EQ(tavsRegExpInit(pattern, nullptr, context, &errOffset), tavStsNoError);
        ASSERT_EQ(found(), expected) << "word " << word;
    }
}

TEST(InitAlloc, CompilesIntoABlockOfItsOwn) {
    tavRegExpContext* state = nullptr;
    int32_t errOffset = unwritten;
    ASSERT_EQ(tavsRegExpInitAlloc("a(b+)c", "i", &state, &errOffset), tavStsNoError);
    ASSERT_NE(state, nullptr);
    EXPECT_EQ(errOffset, unwritten);
    EXPECT_EQ(state->tag, 0x78456772u);
    EXPECT_EQ(state->options, 4u);
    EXPECT_EQ(state->groupCount, 2);
    EXPECT_EQ(tavsRegExpFree(state), tavStsNoError);
}

TEST(InitAlloc, RefusesNullPointersBeforeItWritesAnything) {
    tavRegExpContext marker;
    tavRegExpContext* state = &marker;
    int32_t errOffset = unwritten;
    EXPECT_EQ(tavsRegExpInitAlloc(nullptr, nullptr, &state, &errOffset), tavStsNullPointer);
    EXPECT_EQ(state, &marker);
    EXPECT_EQ(tavsRegExpInitAlloc("a", nullptr, nullptr, &errOffset), tavStsNullPointer);
    EXPECT_EQ(errOffset, unwritten);
}

TEST(InitAlloc, FindsAMissingErrorOffsetOnlyAfterTheAllocationWhichItReleases) {
    tavRegExpContext marker;
    tavRegExpContext* state = &marker;
    EXPECT_EQ(tavsRegExpInitAlloc("a", nullptr, &state, nullptr), tavStsNullPointer);
    EXPECT_EQ(state, nullptr);
}

TEST(InitAlloc, LeavesNullForABadPatternOrOption) {
    tavRegExpContext marker;
    tavRegExpContext* state = &marker;
    int32_t errOffset = unwritten;
    EXPECT_EQ(tavsRegExpInitAlloc("a(", nullptr, &state, &errOffset), tavStsPatternSyntax);
    EXPECT_EQ(state, nullptr);
    EXPECT_EQ(errOffset, 2);
    state = &marker;
    EXPECT_EQ(tavsRegExpInitAlloc("a**", nullptr, &state, &errOffset), tavStsRepeatLimit);
    EXPECT_EQ(state, nullptr);
    EXPECT_EQ(errOffset, 2);
    state = &marker;
    EXPECT_EQ(tavsRegExpInitAlloc("a", "I", &state, &errOffset), tavStsBadOption);
    EXPECT_EQ(state, nullptr);
    EXPECT_EQ(errOffset, 0);
}

TEST(Free, AcceptsNull) {
    EXPECT_EQ(tavsRegExpFree(nullptr), tavStsNoError);
}

TEST(SetMatchLimit, StoresWhatIsNotNegative) {
    tavRegExpContext state{};
    for (const int32_t limit : {0, 1, 10000, 2147483647}) {
        EXPECT_EQ(tavsRegExpSetMatchLimit(limit, &state), tavStsNoError);
        EXPECT_EQ(state.matchLimit, limit);
    }
    for (const int32_t limit : {-1, -2147483647 - 1}) {
        EXPECT_EQ(tavsRegExpSetMatchLimit(limit, &state), tavStsNegativeLength);
        EXPECT_EQ(state.matchLimit, 2147483647);
    }
    EXPECT_EQ(state.tag, 0u) << "the tag is neither tested nor written";
    EXPECT_EQ(tavsRegExpSetMatchLimit(1, nullptr), tavStsNullPointer);
    EXPECT_EQ(tavsRegExpSetMatchLimit(-1, nullptr), tavStsNullPointer);
}

TEST(SetFormat, StoresZeroAndOneOnly) {
    tavRegExpContext state{};
    EXPECT_EQ(tavsRegExpSetFormat(1, &state), tavStsNoError);
    EXPECT_EQ(state.format, 1);
    for (const int32_t format : {2, -1, 256}) {
        EXPECT_EQ(tavsRegExpSetFormat(format, &state), tavStsOutOfRange);
        EXPECT_EQ(state.format, 1);
    }
    EXPECT_EQ(tavsRegExpSetFormat(0, &state), tavStsNoError);
    EXPECT_EQ(state.format, 0);
    EXPECT_EQ(tavsRegExpSetFormat(1, nullptr), tavStsNullPointer);
    EXPECT_EQ(tavsRegExpSetFormat(2, nullptr), tavStsNullPointer);
}

} // namespace
