// The Unicode 5.1 properties behind patterns: names, and telling code points, each stated literally.
// properties_sweep_test.cpp walks all code points.
#include "unicode/properties.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

namespace {

using namespace tav::unicode;

constexpr CategoryValue L = 0x80, Ll = 0x81, Lu = 0x82, Lt = 0x84, casedLetter = 0x87, Lm = 0x88, Lo = 0x90;
constexpr CategoryValue C = 0x2000, Co = 0x2004, Cs = 0x2008, Cn = categoryUnassigned;

bool matches(uint32_t codePoint, CategoryValue value) {
    return categoryTest(codePoint, value, false);
}

bool matchesNegated(uint32_t codePoint, CategoryValue value) {
    return categoryTest(codePoint, value, true);
}

bool contains(RangeList list, uint32_t codePoint) {
    for (int32_t i = 0; i < list.count; ++i)
        if (list.ranges[i].first <= codePoint && codePoint <= list.ranges[i].last) return true;
    return false;
}

RangeList block(const char* name) {
    return findBlock(name, std::strlen(name));
}

// ---------------------------------------------------------------------------------------------- categories

TEST(Category, EveryNameHasItsValue) {
    const struct {
        const char* name;
        CategoryValue value;
    } cases[] = {
        {"L", 0x80},    {"Ll", 0x81},   {"Lu", 0x82},   {"Lt", 0x84},   {"Lm", 0x88},   {"Lo", 0x90},
        {"L&", 0x87},   {"M", 0x100},   {"Mn", 0x101},  {"Mc", 0x102},  {"Me", 0x104},  {"Z", 0x200},
        {"Zs", 0x201},  {"Zl", 0x202},  {"Zp", 0x204},  {"S", 0x400},   {"Sm", 0x401},  {"Sc", 0x402},
        {"Sk", 0x404},  {"So", 0x408},  {"N", 0x800},   {"Nd", 0x801},  {"Nl", 0x802},  {"No", 0x804},
        {"P", 0x1000},  {"Pd", 0x1001}, {"Ps", 0x1002}, {"Pe", 0x1004}, {"Pi", 0x1008}, {"Pf", 0x1010},
        {"Pc", 0x1020}, {"Po", 0x1040}, {"C", 0x2000},  {"Cc", 0x2001}, {"Cf", 0x2002}, {"Co", 0x2004},
        {"Cs", 0x2008}, {"Cn", 0x2010},
    };
    for (const auto& [name, value] : cases) {
        EXPECT_EQ(findCategory((std::string(name) + "}").c_str()), value) << name;
        EXPECT_EQ(findCategory((std::string(name) + "}+abc").c_str()), value) << name;
    }
}

TEST(Category, NamesOfOtherTextsAreUnknown) {
    for (const char* name :
         {"", "}", "Lux}", "lu}", "LU}", "Any}", "L&x}", "Xx}", "L", "Lu", "Co", " L}", "L }", "Letter}"})
        EXPECT_EQ(findCategory(name), categoryUnknown) << name;
}

TEST(Category, TheValueOfMarksIsTheSharedConstant) {
    EXPECT_EQ(findCategory("M}"), categoryMark);
    EXPECT_EQ(findCategory("Cn}"), categoryUnassigned);
}

TEST(Category, AsciiLettersMatchTheirCategoryAndItsClass) {
    EXPECT_TRUE(matches('A', Lu));
    EXPECT_TRUE(matches('A', L));
    EXPECT_TRUE(matches('A', casedLetter));
    EXPECT_FALSE(matches('A', Ll));
    EXPECT_FALSE(matches('A', 0x801));
    EXPECT_FALSE(matchesNegated('A', Lu));
    EXPECT_FALSE(matchesNegated('A', L));
    EXPECT_TRUE(matchesNegated('A', Ll));
    EXPECT_TRUE(matchesNegated('A', 0x801));
}

TEST(Category, CasedLetterMatchesLlLuLtAndNotLmLo) {
    EXPECT_TRUE(matches('a', casedLetter));
    EXPECT_TRUE(matches('A', casedLetter));
    EXPECT_TRUE(matches(0x1C5, casedLetter));
    EXPECT_FALSE(matches(0x2B0, casedLetter)); // Lm
    EXPECT_FALSE(matches(0x5D0, casedLetter)); // Lo
    EXPECT_TRUE(matchesNegated(0x2B0, casedLetter));
    EXPECT_TRUE(matchesNegated(0x5D0, casedLetter));
    EXPECT_TRUE(matches(0x1C5, Lt));
    EXPECT_TRUE(matches(0x2B0, Lm));
}

TEST(Category, AnIdeographMatchesLoThroughTheRangesAndNotLu) {
    EXPECT_TRUE(matches(0x4E00, Lo));
    EXPECT_TRUE(matches(0x9FC3, Lo));
    EXPECT_TRUE(matches(0x4E00, L));
    EXPECT_FALSE(matches(0x4E00, Lu));
    EXPECT_FALSE(matches(0x9FC4, Lo));
}

TEST(Category, NegatedAgainstARangeAsksForABitThatTheRangeLacks) {
    EXPECT_TRUE(matchesNegated(0x4E00, Lu));
    EXPECT_TRUE(matchesNegated(0x4E00, casedLetter));
    EXPECT_TRUE(matchesNegated(0x4E00, 0x100));
    EXPECT_FALSE(matchesNegated(0x4E00, Lo));
    EXPECT_FALSE(matchesNegated(0x4E00, L));
    EXPECT_FALSE(matchesNegated(0xD800, C));
    EXPECT_FALSE(matchesNegated(0xD800, Cs));
    EXPECT_TRUE(matchesNegated(0xD800, Co));
}

TEST(Category, ACodePointOfARangeAlsoMatchesUnassignedDeliberately) {
    for (const uint32_t codePoint :
         {0x3400u, 0x4E00u, 0xD7A3u, 0xD800u, 0xDFFFu, 0xE000u, 0xF8FFu, 0x2A6D6u}) {
        EXPECT_TRUE(matches(codePoint, Cn)) << std::hex << codePoint;
        EXPECT_TRUE(matchesNegated(codePoint, Cn)) << std::hex << codePoint;
    }
}

TEST(Category, ThePrivatePlanesMatchOfUnassignedTheNegatedFormOnly) {
    for (const uint32_t codePoint : {0xF0000u, 0xFFFFDu, 0x100000u, 0x10FFFDu}) {
        EXPECT_TRUE(matches(codePoint, Co)) << std::hex << codePoint;
        EXPECT_TRUE(matches(codePoint, C)) << std::hex << codePoint;
        EXPECT_FALSE(matches(codePoint, Cn)) << std::hex << codePoint;
        EXPECT_TRUE(matchesNegated(codePoint, Cn)) << std::hex << codePoint;
        EXPECT_FALSE(matchesNegated(codePoint, Co)) << std::hex << codePoint;
        EXPECT_FALSE(matchesNegated(codePoint, C)) << std::hex << codePoint;
    }
}

TEST(Category, AnUnassignedCodePointMatchesCnPlainAndNegatedAndNothingElseDeliberately) {
    for (const uint32_t codePoint : {0x378u, 0xFFFEu, 0xFFFFu, 0x9FC4u, 0x2A6D7u, 0xE0000u}) {
        EXPECT_TRUE(matches(codePoint, Cn)) << std::hex << codePoint;
        EXPECT_TRUE(matchesNegated(codePoint, Cn)) << std::hex << codePoint;
        for (const CategoryValue value : {Lu, L, C, Co, categoryMark})
            for (const bool negated : {false, true})
                EXPECT_FALSE(categoryTest(codePoint, value, negated))
                    << std::hex << codePoint << " " << value;
    }
}

TEST(Category, NothingAboveTheLastRecordMatchesButThePrivatePlanes) {
    EXPECT_TRUE(matches(0xE01EF, 0x101));
    for (const uint32_t codePoint : {0xE01F0u, 0xEFFFFu, 0xFFFFEu, 0x10FFFEu, 0x10FFFFu, 0x110000u,
                                     0x7FFFFFFFu, 0x80000000u, 0xFFFFFF80u, 0xFFFFFFFFu})
        for (const CategoryValue value : {Cn, C, Co, Lu, L})
            for (const bool negated : {false, true})
                EXPECT_FALSE(categoryTest(codePoint, value, negated))
                    << std::hex << codePoint << " " << value;
}

TEST(Category, MarksAreTheCodePointsOfCategoryM) {
    for (const uint32_t codePoint : {0x300u, 0x488u, 0x903u, 0x20DDu, 0xE01EFu})
        EXPECT_TRUE(isCombiningMark(codePoint)) << std::hex << codePoint;
    for (const uint32_t codePoint : {0x41u, 0x378u, 0x4E00u, 0x10FFFFu, 0x110000u, 0xFFFFFFFFu})
        EXPECT_FALSE(isCombiningMark(codePoint)) << std::hex << codePoint;
}

TEST(Category, ListedAreRecordsAndRanges) {
    for (const uint32_t codePoint : {0x0u, 0x41u, 0x4E00u, 0xD800u, 0xE01EFu, 0x10FFFDu})
        EXPECT_TRUE(isListed(codePoint)) << std::hex << codePoint;
    for (const uint32_t codePoint : {0x378u, 0x9FC4u, 0xE01F0u, 0xFFFFEu, 0x10FFFFu, 0x110000u, 0xFFFFFFFFu})
        EXPECT_FALSE(isListed(codePoint)) << std::hex << codePoint;
}

// -------------------------------------------------------------------------------------------- case mappings

TEST(SimpleCase, TellingCodePoints) {
    const struct {
        uint32_t codePoint, upper, lower;
    } cases[] = {
        {'A', 'A', 'a'},
        {'a', 'A', 'a'},
        {'1', '1', '1'},
        {0xB5, 0x39C, 0xB5},
        {0x1C5, 0x1C4, 0x1C6},
        {0x1C8, 0x1C7, 0x1C9},
        {0x1CB, 0x1CA, 0x1CC},
        {0x1F2, 0x1F1, 0x1F3},
        {0x3C2, 0x3A3, 0x3C2},
        {0x212A, 0x212A, 0x6B},
        {0x1D79, 0xA77D, 0x1D79},
        {0xA77D, 0xA77D, 0x1D79},
        {0x10400, 0x10400, 0x10428},
        {0x10428, 0x10400, 0x10428},
        {0x4E00, 0x4E00, 0x4E00},
        {0x10FFFF, 0x10FFFF, 0x10FFFF},
        {0x110000, 0x110000, 0x110000},
        {0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF},
    };
    for (const auto& [codePoint, upper, lower] : cases) {
        EXPECT_EQ(simpleUppercase(codePoint), upper) << std::hex << codePoint;
        EXPECT_EQ(simpleLowercase(codePoint), lower) << std::hex << codePoint;
    }
}

// --------------------------------------------------------------------------------------------------- blocks

TEST(Block, TellingRows) {
    const struct {
        const char* name;
        uint32_t first, last;
    } cases[] = {
        {"InBasicLatin", 0x0, 0x7F},
        {"InHangulSyllables", 0xAC00, 0xD7AF},
        {"InHighSurrogates", 0xD800, 0xDB7F},
        {"InSupplementaryPrivateUseAreaB", 0x100000, 0x10FFFF},
    };
    for (const auto& [name, first, last] : cases) {
        const RangeList found = block(name);
        ASSERT_EQ(found.count, 1) << name;
        EXPECT_EQ(found.ranges->first, first) << name;
        EXPECT_EQ(found.ranges->last, last) << name;
    }
}

TEST(Block, APrefixSelectsTheFirstBlockThatBeginsWithIt) {
    EXPECT_EQ(block("InLatin").ranges->first, 0x80u); // InLatin1Supplement, though InBasicLatin comes first
    EXPECT_EQ(block("InLatin").ranges->last, 0xFFu);
    EXPECT_EQ(block("In").ranges->first, 0x0u);
    EXPECT_EQ(block("InSupplementaryPrivateUseArea").ranges->first, 0xF0000u);
    EXPECT_EQ(block("InCyrillic").ranges->last, 0x4FFu);
}

TEST(Block, AWholeNameThatBeginsAnEarlierOneSelectsTheEarlierOneDeliberately) {
    EXPECT_EQ(block("InCJKUnifiedIdeographs").ranges->first, 0x3400u); // ...ExtensionA comes before it
    EXPECT_EQ(block("InCyrillic").ranges->first, 0x400u);
}

TEST(Block, TheEmptyNameSelectsTheFirstBlock) {
    const RangeList found = findBlock("", 0);
    ASSERT_EQ(found.count, 1);
    EXPECT_EQ(found.ranges->last, 0x7Fu);
}

TEST(Block, OnlyTheGivenBytesAreCompared) {
    EXPECT_EQ(findBlock("InGreekXYZ", 7).ranges->first, 0x370u);
    EXPECT_EQ(findBlock("InGreekXYZ", 8).count, 0);
}

TEST(Block, LongerAndOtherNamesAreUnknown) {
    for (const char* name : {"InBasicLatinX", "inBasicLatin", "BasicLatin", "InBasic_Latin", "InPhagsPa",
                             "InLatin1Supplement}", "X"})
        EXPECT_EQ(block(name).count, 0) << name;
}

// -------------------------------------------------------------------------------------------------- scripts

TEST(Script, TellingCodePoints) {
    EXPECT_TRUE(contains(findScript("Latin}"), 0xAA));
    EXPECT_FALSE(contains(findScript("Latin}"), 0xD7));
    EXPECT_TRUE(contains(findScript("Common}"), 0xD7));
    EXPECT_TRUE(contains(findScript("Han}"), 0x4E00));
    EXPECT_TRUE(contains(findScript("Greek}"), 0x3B1));
}

TEST(Script, TheLinesOfLatinAreNotMerged) {
    const RangeList latin = findScript("Latin}");
    ASSERT_EQ(latin.count, 42);
    const CodePointRange expected[] = {{0x41, 0x5A}, {0x61, 0x7A}, {0xAA, 0xAA}, {0xBA, 0xBA}, {0xC0, 0xD6}};
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(latin.ranges[i].first, expected[i].first);
        EXPECT_EQ(latin.ranges[i].last, expected[i].last);
    }
}

TEST(Script, TextBehindTheBraceIsNotLookedAt) {
    EXPECT_EQ(findScript("Latin}+x").count, 42);
}

TEST(Script, OtherNamesAreUnknown) {
    for (const char* name :
         {"", "}", "Latin", "Lat}", "latin}", "LATIN}", "Latinx}", "Unknown}", "Common", "Old Italic}"})
        EXPECT_EQ(findScript(name).count, 0) << name;
}

// ---------------------------------------------------------------------------------------- terminating zeros

/// Every proper beginning of every name, in a heap block that ends with its terminating zero: address
/// sanitizer sees a read behind it.
TEST(Names, NothingBehindTheTerminatingZeroIsRead) {
    for (const std::string name :
         {"Common}", "Canadian_Aboriginal}", "Lu}", "Co}", "L&}", "InBasicLatin}", "Nko}"})
        for (std::size_t length = 0; length < name.size(); ++length) {
            std::vector<char> text(name.begin(), name.begin() + static_cast<std::ptrdiff_t>(length));
            text.push_back('\0');
            text.shrink_to_fit();
            EXPECT_EQ(findScript(text.data()).count, 0) << text.data();
            EXPECT_EQ(findCategory(text.data()), categoryUnknown) << text.data();
            findBlock(text.data(), length);
        }
}

} // namespace
