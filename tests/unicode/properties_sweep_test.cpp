// Walks all code points, and some values above them, against a literal reading of the category rule over
// records built from the test data; likewise every mapping, script line and block.
#include "unicode/data/unicode_5_1.h"
#include "unicode/properties.h"
#include "unicode/property_tables.h"

#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <string>
#include <vector>

namespace {

using namespace tav::unicode;

struct Record {
    uint32_t codePoint;
    CategoryValue category;
    uint32_t upper, lower; // 0 when there is none
};

struct ListedRange {
    uint32_t first, last;
    CategoryValue category;
};

constexpr ListedRange listedRanges[] = {
    {0x3400, 0x4DB5, 0x90},       {0x4E00, 0x9FC3, 0x90},   {0xAC00, 0xD7A3, 0x90},
    {0xD800, 0xDB7F, 0x2008},     {0xDB80, 0xDBFF, 0x2008}, {0xDC00, 0xDFFF, 0x2008},
    {0xE000, 0xF8FF, 0x2004},     {0x20000, 0x2A6D6, 0x90}, {0xF0000, 0xFFFFD, 0x2004},
    {0x100000, 0x10FFFD, 0x2004},
};

const std::map<std::string, CategoryValue> categoryValues = {
    {"L", 0x80},    {"Ll", 0x81},   {"Lu", 0x82},   {"Lt", 0x84},   {"Lm", 0x88},   {"Lo", 0x90},
    {"L&", 0x87},   {"M", 0x100},   {"Mn", 0x101},  {"Mc", 0x102},  {"Me", 0x104},  {"Z", 0x200},
    {"Zs", 0x201},  {"Zl", 0x202},  {"Zp", 0x204},  {"S", 0x400},   {"Sm", 0x401},  {"Sc", 0x402},
    {"Sk", 0x404},  {"So", 0x408},  {"N", 0x800},   {"Nd", 0x801},  {"Nl", 0x802},  {"No", 0x804},
    {"P", 0x1000},  {"Pd", 0x1001}, {"Ps", 0x1002}, {"Pe", 0x1004}, {"Pi", 0x1008}, {"Pf", 0x1010},
    {"Pc", 0x1020}, {"Po", 0x1040}, {"C", 0x2000},  {"Cc", 0x2001}, {"Cf", 0x2002}, {"Co", 0x2004},
    {"Cs", 0x2008}, {"Cn", 0x2010},
};

template <std::size_t count>
std::map<uint32_t, uint32_t> mappingsOf(const MappingRun (&runs)[count]) {
    std::map<uint32_t, uint32_t> mappings;
    for (const MappingRun& run : runs)
        for (uint32_t codePoint = run.first; codePoint <= run.last; codePoint += run.step)
            mappings[codePoint] = codePoint + static_cast<uint32_t>(run.difference);
    return mappings;
}

bool inListedRange(uint32_t codePoint) {
    for (const ListedRange& range : listedRanges)
        if (range.first <= codePoint && codePoint <= range.last) return true;
    return false;
}

std::vector<Record> readRecords() {
    const auto upper = mappingsOf(unicode_5_1::toUpper);
    const auto lower = mappingsOf(unicode_5_1::toLower);
    const auto mapped = [](const std::map<uint32_t, uint32_t>& mappings, uint32_t codePoint) {
        const auto found = mappings.find(codePoint);
        return found == mappings.end() ? 0 : found->second;
    };
    std::vector<Record> records;
    for (const CategoryRun& run : unicode_5_1::categories)
        for (uint32_t codePoint = run.first; codePoint <= run.last; ++codePoint)
            if (!inListedRange(codePoint))
                records.push_back({codePoint, categoryValues.at(run.category), mapped(upper, codePoint),
                                   mapped(lower, codePoint)});
    return records;
}

const std::vector<Record>& records() {
    static const std::vector<Record> all = readRecords();
    return all;
}

/// The rule word for word; `next` is the first record whose code point is not below c, null when there is
/// none.
bool referenceTest(uint32_t c, CategoryValue v, bool negated, const Record* next) {
    for (const ListedRange& range : listedRanges) {
        if (c < range.first || c > range.last) continue;
        if (!negated && (range.category & v) == v) return true;
        if (negated && (v & ~range.category) != 0) return true;
    }
    if (next == nullptr) return false;
    if (next->codePoint != c) return v == 0x2010;
    const uint32_t r = next->category;
    const bool sameMajorClass = (r & ~0x7Fu) == (v & ~0x7Fu);
    if (!negated) {
        if (!sameMajorClass) return false;
        return (v & 0x7F) == 0 || (v & r & 0x7F) != 0;
    }
    if (!sameMajorClass) return true;
    if ((v & 0x7F) == 0) return false;
    return (v & r & 0x7F) == 0;
}

TEST(PropertyRecords, AreAsManyAsUnicode51Assigns) {
    EXPECT_EQ(records().size(), 19316u);
    EXPECT_EQ(records().back().codePoint, 0xE01EFu);
    int upper = 0, lower = 0, both = 0;
    for (const Record& record : records()) {
        upper += record.upper != 0;
        lower += record.lower != 0;
        both += record.upper != 0 && record.lower != 0;
    }
    EXPECT_EQ(upper, 1031);
    EXPECT_EQ(lower, 1023);
    EXPECT_EQ(both, 4);
}

TEST(PropertyRecords, TheLibraryListsThemAndTheTenRanges) {
    auto next = records().begin();
    int listed = 0;
    for (uint32_t codePoint = 0; codePoint <= 0x110FFF; ++codePoint) {
        const bool isRecord = next != records().end() && next->codePoint == codePoint;
        ASSERT_EQ(isListed(codePoint), isRecord || inListedRange(codePoint)) << std::hex << codePoint;
        listed += isRecord && isListed(codePoint);
        if (isRecord) ++next;
    }
    EXPECT_EQ(listed, 19316);
}

TEST(CategoryTest, AgreesWithTheLiteralRuleForAllCodePointsAndCategories) {
    const Record* next = records().data();
    const Record* const end = next + records().size();
    for (uint32_t codePoint = 0; codePoint <= 0x110FFF; ++codePoint) {
        if (next != end && next->codePoint < codePoint) ++next;
        const Record* const notBelow = next == end ? nullptr : next;
        for (const auto& [name, value] : categoryValues)
            for (const bool negated : {false, true})
                ASSERT_EQ(categoryTest(codePoint, value, negated),
                          referenceTest(codePoint, value, negated, notBelow))
                    << std::hex << codePoint << " " << name << (negated ? " negated" : "");
    }
}

TEST(CategoryTest, AgreesWithTheLiteralRuleForArbitraryValuesAndVeryLargeCodePoints) {
    for (const uint32_t codePoint :
         {0x110000u, 0x1FFFFFu, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFF80u, 0xFFFFFFFFu})
        for (const CategoryValue value : {0u, 0x7Fu, 0x80u, 0x3FFFu, 0x2010u, 0xFFFFFFFFu})
            for (const bool negated : {false, true})
                EXPECT_EQ(categoryTest(codePoint, value, negated),
                          referenceTest(codePoint, value, negated, nullptr))
                    << std::hex << codePoint << " " << value;
}

TEST(CategoryTest, MarksAreTheRecordsOfClassM) {
    auto next = records().begin();
    for (uint32_t codePoint = 0; codePoint <= 0x110FFF; ++codePoint) {
        const bool isRecord = next != records().end() && next->codePoint == codePoint;
        ASSERT_EQ(isCombiningMark(codePoint), isRecord && (next->category & 0x100) != 0)
            << std::hex << codePoint;
        if (isRecord) ++next;
    }
}

TEST(SimpleCaseMappings, AreThoseOfTheRecordsForAllCodePoints) {
    auto next = records().begin();
    for (uint32_t codePoint = 0; codePoint <= 0x110FFF; ++codePoint) {
        const bool isRecord = next != records().end() && next->codePoint == codePoint;
        const uint32_t upper = isRecord && next->upper != 0 ? next->upper : codePoint;
        const uint32_t lower = isRecord && next->lower != 0 ? next->lower : codePoint;
        ASSERT_EQ(simpleUppercase(codePoint), upper) << std::hex << codePoint;
        ASSERT_EQ(simpleLowercase(codePoint), lower) << std::hex << codePoint;
        if (isRecord) ++next;
    }
}

// -------------------------------------------------------------------------------------------------- scripts

struct ScriptCount {
    const char* name;
    int32_t lines;
};

constexpr ScriptCount scriptCounts[] = {
    {"Common", 530},    {"Latin", 42},      {"Greek", 51},        {"Cyrillic", 18},
    {"Armenian", 6},    {"Hebrew", 22},     {"Arabic", 36},       {"Syriac", 7},
    {"Thaana", 3},      {"Devanagari", 17}, {"Bengali", 25},      {"Gurmukhi", 21},
    {"Gujarati", 21},   {"Oriya", 25},      {"Tamil", 24},        {"Telugu", 18},
    {"Kannada", 20},    {"Malayalam", 18},  {"Sinhala", 13},      {"Thai", 10},
    {"Lao", 22},        {"Tibetan", 34},    {"Myanmar", 33},      {"Georgian", 4},
    {"Hangul", 12},     {"Ethiopic", 31},   {"Cherokee", 1},      {"Canadian_Aboriginal", 3},
    {"Ogham", 4},       {"Runic", 2},       {"Khmer", 17},        {"Mongolian", 13},
    {"Hiragana", 3},    {"Katakana", 8},    {"Bopomofo", 2},      {"Han", 15},
    {"Yi", 4},          {"Old_Italic", 2},  {"Gothic", 4},        {"Deseret", 1},
    {"Inherited", 22},  {"Tagalog", 3},     {"Hanunoo", 2},       {"Buhid", 2},
    {"Tagbanwa", 3},    {"Limbu", 12},      {"Tai_Le", 2},        {"Linear_B", 7},
    {"Ugaritic", 2},    {"Shavian", 1},     {"Osmanya", 2},       {"Cypriot", 6},
    {"Braille", 1},     {"Buginese", 4},    {"Coptic", 6},        {"New_Tai_Lue", 6},
    {"Glagolitic", 2},  {"Tifinagh", 2},    {"Syloti_Nagri", 11}, {"Old_Persian", 4},
    {"Kharoshthi", 11}, {"Balinese", 17},   {"Cuneiform", 3},     {"Phoenician", 3},
    {"Phags_Pa", 2},    {"Nko", 7},         {"Sundanese", 10},    {"Lepcha", 8},
    {"Ol_Chiki", 4},    {"Vai", 6},         {"Saurashtra", 6},    {"Kayah_Li", 4},
    {"Rejang", 4},      {"Lycian", 1},      {"Carian", 1},        {"Lydian", 2},
    {"Cham", 13},
};

TEST(Scripts, AllHaveTheLineCountsOfTheScriptData) {
    ASSERT_EQ(std::size(scriptCounts), 77u);
    for (const ScriptCount& script : scriptCounts)
        EXPECT_EQ(findScript((std::string(script.name) + "}").c_str()).count, script.lines) << script.name;
}

TEST(Scripts, AreStoredInLookUpOrder) {
    for (std::size_t i = 0; i < std::size(scriptCounts); ++i)
        EXPECT_EQ(tables::scripts[i].name, std::string(scriptCounts[i].name) + "}");
}

/// What keeps two code points on one line of the script data: their category, with cased letters as one.
std::string lineKind(const char* category) {
    const bool cased = category[0] == 'L' && std::strchr("lut", category[1]) != nullptr;
    return cased ? "L&" : category;
}

std::vector<std::string> lineKinds() {
    std::vector<std::string> kinds(0x110000);
    for (const CategoryRun& run : unicode_5_1::categories)
        for (uint32_t codePoint = run.first; codePoint <= run.last; ++codePoint)
            kinds[codePoint] = lineKind(run.category);
    return kinds;
}

TEST(Scripts, EveryPairIsOneLineOfTheScriptData) {
    const std::vector<std::string> kinds = lineKinds();
    std::map<std::string, std::vector<CodePointRange>> expected;
    for (const ScriptRun& run : unicode_5_1::scripts) {
        auto& lines = expected[run.script];
        for (uint32_t codePoint = run.first; codePoint <= run.last; ++codePoint) {
            const bool goesOn = codePoint > run.first && kinds[codePoint] == kinds[codePoint - 1];
            if (!goesOn) lines.push_back({codePoint, codePoint});
            lines.back().last = codePoint;
        }
    }
    ASSERT_EQ(expected.size(), 77u);
    for (const auto& [name, lines] : expected) {
        const RangeList found = findScript((name + "}").c_str());
        ASSERT_EQ(static_cast<std::size_t>(found.count), lines.size()) << name;
        for (std::size_t i = 0; i < lines.size(); ++i) {
            EXPECT_EQ(found.ranges[i].first, lines[i].first) << name << " " << i;
            EXPECT_EQ(found.ranges[i].last, lines[i].last) << name << " " << i;
        }
    }
}

// --------------------------------------------------------------------------------------------------- blocks

constexpr const char* blockNames[] = {
    "InBasicLatin",
    "InLatin1Supplement",
    "InLatinExtendedA",
    "InLatinExtendedB",
    "InIPAExtensions",
    "InSpacingModifierLetters",
    "InCombiningDiacriticalMarks",
    "InGreekandCoptic",
    "InCyrillic",
    "InCyrillicSupplement",
    "InArmenian",
    "InHebrew",
    "InArabic",
    "InSyriac",
    "InArabicSupplement",
    "InThaana",
    "InNKo",
    "InDevanagari",
    "InBengali",
    "InGurmukhi",
    "InGujarati",
    "InOriya",
    "InTamil",
    "InTelugu",
    "InKannada",
    "InMalayalam",
    "InSinhala",
    "InThai",
    "InLao",
    "InTibetan",
    "InMyanmar",
    "InGeorgian",
    "InHangulJamo",
    "InEthiopic",
    "InEthiopicSupplement",
    "InCherokee",
    "InUnifiedCanadianAboriginalSyllabics",
    "InOgham",
    "InRunic",
    "InTagalog",
    "InHanunoo",
    "InBuhid",
    "InTagbanwa",
    "InKhmer",
    "InMongolian",
    "InLimbu",
    "InTaiLe",
    "InNewTaiLue",
    "InKhmerSymbols",
    "InBuginese",
    "InBalinese",
    "InSundanese",
    "InLepcha",
    "InOlChiki",
    "InPhoneticExtensions",
    "InPhoneticExtensionsSupplement",
    "InCombiningDiacriticalMarksSupplement",
    "InLatinExtendedAdditional",
    "InGreekExtended",
    "InGeneralPunctuation",
    "InSuperscriptsandSubscripts",
    "InCurrencySymbols",
    "InCombiningDiacriticalMarksforSymbols",
    "InLetterlikeSymbols",
    "InNumberForms",
    "InArrows",
    "InMathematicalOperators",
    "InMiscellaneousTechnical",
    "InControlPictures",
    "InOpticalCharacterRecognition",
    "InEnclosedAlphanumerics",
    "InBoxDrawing",
    "InBlockElements",
    "InGeometricShapes",
    "InMiscellaneousSymbols",
    "InDingbats",
    "InMiscellaneousMathematicalSymbolsA",
    "InSupplementalArrowsA",
    "InBraillePatterns",
    "InSupplementalArrowsB",
    "InMiscellaneousMathematicalSymbolsB",
    "InSupplementalMathematicalOperators",
    "InMiscellaneousSymbolsandArrows",
    "InGlagolitic",
    "InLatinExtendedC",
    "InCoptic",
    "InGeorgianSupplement",
    "InTifinagh",
    "InEthiopicExtended",
    "InCyrillicExtendedA",
    "InSupplementalPunctuation",
    "InCJKRadicalsSupplement",
    "InKangxiRadicals",
    "InIdeographicDescriptionCharacters",
    "InCJKSymbolsandPunctuation",
    "InHiragana",
    "InKatakana",
    "InBopomofo",
    "InHangulCompatibilityJamo",
    "InKanbun",
    "InBopomofoExtended",
    "InCJKStrokes",
    "InKatakanaPhoneticExtensions",
    "InEnclosedCJKLettersandMonths",
    "InCJKCompatibility",
    "InCJKUnifiedIdeographsExtensionA",
    "InYijingHexagramSymbols",
    "InCJKUnifiedIdeographs",
    "InYiSyllables",
    "InYiRadicals",
    "InVai",
    "InCyrillicExtendedB",
    "InModifierToneLetters",
    "InLatinExtendedD",
    "InSylotiNagri",
    "InPhagspa",
    "InSaurashtra",
    "InKayahLi",
    "InRejang",
    "InCham",
    "InHangulSyllables",
    "InHighSurrogates",
    "InHighPrivateUseSurrogates",
    "InLowSurrogates",
    "InPrivateUseArea",
    "InCJKCompatibilityIdeographs",
    "InAlphabeticPresentationForms",
    "InArabicPresentationFormsA",
    "InVariationSelectors",
    "InVerticalForms",
    "InCombiningHalfMarks",
    "InCJKCompatibilityForms",
    "InSmallFormVariants",
    "InArabicPresentationFormsB",
    "InHalfwidthandFullwidthForms",
    "InSpecials",
    "InLinearBSyllabary",
    "InLinearBIdeograms",
    "InAegeanNumbers",
    "InAncientGreekNumbers",
    "InAncientSymbols",
    "InPhaistosDisc",
    "InLycian",
    "InCarian",
    "InOldItalic",
    "InGothic",
    "InUgaritic",
    "InOldPersian",
    "InDeseret",
    "InShavian",
    "InOsmanya",
    "InCypriotSyllabary",
    "InPhoenician",
    "InLydian",
    "InKharoshthi",
    "InCuneiform",
    "InCuneiformNumbersandPunctuation",
    "InByzantineMusicalSymbols",
    "InMusicalSymbols",
    "InAncientGreekMusicalNotation",
    "InTaiXuanJingSymbols",
    "InCountingRodNumerals",
    "InMathematicalAlphanumericSymbols",
    "InMahjongTiles",
    "InDominoTiles",
    "InCJKUnifiedIdeographsExtensionB",
    "InCJKCompatibilityIdeographsSupplement",
    "InTags",
    "InVariationSelectorsSupplement",
    "InSupplementaryPrivateUseAreaA",
    "InSupplementaryPrivateUseAreaB",
};

TEST(Blocks, AreThoseOfUnicode51InCodePointOrder) {
    ASSERT_EQ(std::size(blockNames), 171u);
    ASSERT_EQ(std::size(unicode_5_1::blocks), 171u);
    for (std::size_t i = 0; i < std::size(blockNames); ++i) {
        EXPECT_STREQ(tables::blocks[i].name, blockNames[i]);
        EXPECT_EQ(tables::blocks[i].range.first, unicode_5_1::blocks[i].first) << blockNames[i];
        EXPECT_EQ(tables::blocks[i].range.last, unicode_5_1::blocks[i].last) << blockNames[i];
    }
}

TEST(Blocks, EveryBeginningOfEveryNameSelectsTheFirstBlockWithIt) {
    for (const char* name : blockNames) {
        for (std::size_t length = 0; length <= std::strlen(name); ++length) {
            std::size_t first = 0;
            while (std::strncmp(blockNames[first], name, length) != 0)
                ++first;
            const RangeList found = findBlock(name, length);
            ASSERT_EQ(found.count, 1) << name << " " << length;
            EXPECT_EQ(found.ranges->first, unicode_5_1::blocks[first].first) << name << " " << length;
        }
        EXPECT_EQ(findBlock(name, std::strlen(name) + 1).count, 0)
            << name; // its terminating zero is no match
    }
}

} // namespace
