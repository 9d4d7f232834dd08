// Templates: their size, their items, what is malformed.
#include "regex/services/support.h"

#include <cstdint>

using namespace tavtest;

namespace {

using Items = std::vector<std::string>;

struct Accepted {
    const char* name;
    const char* text;
    Items items;
};

const Accepted accepted[] = {
    {"AnEmptyTemplateHasNoItems", "", {}},
    {"PlainTextIsOneLiteral", "plain text", {"lit@0:plain text"}},
    {"TheWholeMatchBetweenTwoLiterals", "x$&y", {"lit@0:x", "ref:0", "lit@3:y"}},
    {"AnAmpersandAloneIsText", "a&b", {"lit@0:a&b"}},
    {"OneDigitIsTheGroup", "$1", {"ref:1"}},
    {"ABackslashBeforeADollarOnlyRemovesItself", "\\$1", {"ref:1"}},
    {"EachDigitMultipliesByEleven", "$12", {"ref:13"}},
    {"DollarTenIsGroupEleven", "$10", {"ref:11"}},
    {"DollarNineNine", "$99", {"ref:108"}},
    {"LeadingZerosChangeNothing", "$01", {"ref:1"}},
    {"ZerosBehindTheFirstDigitMultiply", "$100", {"ref:121"}},
    {"DigitsEndAtTheFirstOtherByte", "$1a2", {"ref:1", "lit@2:a2"}},
    {"ReferencesInARow", "$1$&$2", {"ref:1", "ref:0", "ref:2"}},
    {"TheAmpersandTakesNoDigits", "$&1", {"ref:0", "lit@2:1"}},
    {"ABackslashCutsTheLiteral", "a\\bc", {"lit@0:a", "lit@2:bc"}},
    {"TwoBackslashesVanish", "\\\\", {}},
    {"ABackslashAtTheEndVanishes", "ab\\", {"lit@0:ab"}},
    {"ABackslashAloneVanishes", "\\", {}},
    {"ABackslashBehindAReferenceEndsTheNumber", "$1\\2", {"ref:1", "lit@3:2"}},
    {"ABackslashBeforeAReferenceBehindText", "a\\$2", {"lit@0:a", "ref:2"}},
    {"BytesAbove127AreText", "\xC3\xA4$1\xFF", {"lit@0:\xC3\xA4", "ref:1", "lit@4:\xFF"}},
    // 11^9 + 11^8 + ... + 1 = 2593742460, which still fits; one digit more wraps.
    {"TenOnesStillFit", "$1111111111", {"ref:2593742460"}},
    {"ElevenOnesWrapAtThirtyTwoBits", "$11111111111", {"ref:2761363285"}},
};

struct Malformed {
    const char* name;
    const char* text;
    Items written; // the items before the fault
};

const Malformed malformed[] = {
    {"ADollarAtTheEnd", "$", {}},
    {"ADollarBeforeALetter", "$a", {}},
    {"GroupZeroByNumber", "$0", {}},
    {"GroupZeroByTwoDigits", "$00", {}},
    {"TwoDollars", "$$", {}},
    {"ADollarBeforeABackslash", "$\\1", {}},
    {"ADollarBehindABackslashAtTheEnd", "a\\$", {"lit@0:a"}},
    {"TheItemsBeforeTheFaultAreWritten", "ab$1cd$&$x", {"lit@0:ab", "ref:1", "lit@4:cd", "ref:0"}},
    {"TheBytesBehindNineAndZeroAreNoDigits", "$:", {}},
    {"TheByteBeforeZeroIsNoDigit", "$/", {}},
};

tavStatus sizeOf(const char* text, int32_t& size) {
    return tavsRegExpReplaceGetSize(text, &size);
}

} // namespace

TEST(ReplaceTemplate, IsCutIntoTheseItems) {
    for (const Accepted& one : accepted) {
        SCOPED_TRACE(one.name);
        CompiledTemplate compiled(one.text);
        EXPECT_EQ(compiled.status(), tavStsNoError);
        EXPECT_EQ(compiled.items(), one.items);
        EXPECT_EQ(compiled->items, reinterpret_cast<tavRegExpReplaceItem*>(compiled.get() + 1));
    }
}

TEST(ReplaceTemplate, IsMalformedAndKeepsTheCountThatTheBlockHad) {
    for (const Malformed& one : malformed) {
        SCOPED_TRACE(one.name);
        CompiledTemplate compiled(one.text);
        EXPECT_EQ(compiled.status(), tavStsBadGroupReference);
        EXPECT_EQ(compiled->itemCount, CompiledTemplate::staleCount);
        for (std::size_t i = 0; i < one.written.size(); i++)
            EXPECT_EQ(compiled.describe(compiled->items[i]), one.written[i]);
    }
}

TEST(ReplaceTemplate, ANumberThatWrapsToZeroIsMalformedToo) {
    CompiledTemplate compiled("$1904440554"); // 2^32 in base eleven
    EXPECT_EQ(compiled.status(), tavStsBadGroupReference);
    EXPECT_EQ(CompiledTemplate("$1904440555").items(), Items{"ref:1"});
}

TEST(ReplaceTemplate, LiteralItemsPointIntoTheCallersTemplate) {
    CompiledTemplate compiled("ab$1cd");
    ASSERT_EQ(compiled->itemCount, 3);
    EXPECT_EQ(compiled->items[0].text, compiled.text());
    EXPECT_EQ(compiled->items[2].text, compiled.text() + 4);
}

TEST(ReplaceTemplate, ANullTemplateGivesAContextWithoutItems) {
    tavRegExpReplaceItem item{};
    tavRegExpReplaceContext context = {5, &item};
    EXPECT_EQ(tavsRegExpReplaceInit(nullptr, &context), tavStsNoError);
    EXPECT_EQ(context.itemCount, 0);
    EXPECT_EQ(context.items, nullptr);
}

TEST(ReplaceTemplate, ANullContextIsRefused) {
    EXPECT_EQ(tavsRegExpReplaceInit("$x", nullptr), tavStsNullPointer);
    EXPECT_EQ(tavsRegExpReplaceInit(nullptr, nullptr), tavStsNullPointer);
}

TEST(ReplaceTemplate, NeedsSixteenBytesPerByteAndSixteen) {
    int32_t size = -1;
    EXPECT_EQ(sizeOf("abc", size), tavStsNoError);
    EXPECT_EQ(size, 64);
    EXPECT_EQ(sizeOf("", size), tavStsNoError);
    EXPECT_EQ(size, 16);
    EXPECT_EQ(sizeOf("$", size), tavStsNoError) << "the template is not read";
    EXPECT_EQ(size, 32);
}

TEST(ReplaceTemplate, ANullTemplateNeedsTheHeaderOnly) {
    int32_t size = -1;
    EXPECT_EQ(sizeOf(nullptr, size), tavStsNoError);
    EXPECT_EQ(size, 16);
    EXPECT_EQ(tavsRegExpReplaceGetSize(nullptr, nullptr), tavStsNullPointer);
    EXPECT_EQ(tavsRegExpReplaceGetSize("a", nullptr), tavStsNullPointer);
}

TEST(ReplaceTemplate, ASizeBeyondThirtyTwoBitsIsRefused) {
    constexpr std::size_t tooLong = 134217727;
    std::string text(tooLong, 'a');
    int32_t size = -7;
    EXPECT_EQ(sizeOf(text.c_str(), size), tavStsNegativeLength);
    EXPECT_EQ(size, -7);
    EXPECT_EQ(sizeOf(text.c_str() + 1, size), tavStsNoError);
    EXPECT_EQ(size, 2147483632);
}

TEST(ReplaceTemplate, NothingBehindTheTerminatorIsRead) {
    for (const char* text : {"", "$1", "abc", "$", "\\", "ab\\", "$12", "a$&"}) {
        const std::size_t bytes = std::strlen(text) + 1;
        GuardedBuffer<char> guarded(bytes);
        const char* const atEnd = guarded.copyToTail(text, bytes);
        int32_t size = 0;
        EXPECT_EQ(sizeOf(atEnd, size), tavStsNoError);
        std::vector<uint64_t> block(2 * bytes);
        const bool isMalformed = std::string_view(text) == "$";
        EXPECT_EQ(tavsRegExpReplaceInit(atEnd, reinterpret_cast<tavRegExpReplaceContext*>(block.data())),
                  isMalformed ? tavStsBadGroupReference : tavStsNoError);
    }
}
