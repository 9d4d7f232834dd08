// The five Unicode case functions: literal expectations, all 65,536 units in several surroundings, every
// length between guard pages, in place, and comparison against a reading of the rule.
#include "tavch.h"

#include "base/guarded_buffer.h"
#include "unicode/case_reference.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iostream>
#include <random>
#include <vector>

using tavtest::caseReference;
using tavtest::GuardedBuffer;

namespace {

using Units = std::vector<uint16_t>;

int32_t length(const Units& text) {
    return static_cast<int32_t>(text.size());
}

Units lowercase(const Units& text) {
    Units mapped(text.size());
    EXPECT_EQ(tavsLowercase_16u(text.data(), mapped.data(), length(text)), tavStsNoError);
    return mapped;
}

Units uppercase(const Units& text) {
    Units mapped(text.size());
    EXPECT_EQ(tavsUppercase_16u(text.data(), mapped.data(), length(text)), tavStsNoError);
    return mapped;
}

Units lowercaseInPlace(Units text) {
    EXPECT_EQ(tavsLowercase_16u_I(text.data(), length(text)), tavStsNoError);
    return text;
}

Units uppercaseInPlace(Units text) {
    EXPECT_EQ(tavsUppercase_16u_I(text.data(), length(text)), tavStsNoError);
    return text;
}

int32_t compare(const Units& left, const Units& right) {
    int32_t result = 12345;
    EXPECT_EQ(tavsCompareIgnoreCase_16u(left.data(), right.data(), length(left), &result), tavStsNoError);
    return result;
}

Units expectedLower(Units text) {
    for (uint16_t& unit : text)
        unit = caseReference().lower(unit);
    return text;
}

Units expectedUpper(Units text) {
    for (uint16_t& unit : text)
        unit = caseReference().upper(unit);
    return text;
}

/// The rule: the difference of the first lower cases that differ.
int32_t expectedComparison(const Units& left, const Units& right) {
    for (std::size_t i = 0; i < left.size(); ++i) {
        const int32_t difference = caseReference().lower(left[i]) - caseReference().lower(right[i]);
        if (difference != 0) return difference;
    }
    return 0;
}

// ------------------------------------------------------------------------------------- literal expectations

TEST(Case, TellingUnits) {
    const struct {
        const char* what;
        uint16_t unit, lower, upper;
    } cases[] = {
        {"A", 0x41, 0x61, 0x41},
        {"a", 0x61, 0x61, 0x41},
        {"before A and behind Z", 0x40, 0x40, 0x40},
        {"[", 0x5B, 0x5B, 0x5B},
        {"A with grave", 0xC0, 0xE0, 0xC0},
        {"multiplication sign", 0xD7, 0xD7, 0xD7},
        {"division sign", 0xF7, 0xF7, 0xF7},
        {"sharp s has no single upper case", 0xDF, 0xDF, 0xDF},
        {"y with diaeresis leaves Latin-1", 0xFF, 0xFF, 0x178},
        {"Y with diaeresis enters Latin-1", 0x178, 0xFF, 0x178},
        {"micro sign stays", 0xB5, 0xB5, 0xB5},
        {"I with dot", 0x130, 0x69, 0x130},
        {"dotless i", 0x131, 0x131, 0x49},
        {"long s", 0x17F, 0x17F, 0x53},
        {"reversed E of 2.0", 0x18E, 0x258, 0x18E},
        {"reversed e of 2.0", 0x258, 0x258, 0x18E},
        {"turned e without partner in 2.0", 0x1DD, 0x1DD, 0x1DD},
        {"titlecase Dz with caron", 0x1C5, 0x1C6, 0x1C4},
        {"titlecase Lj", 0x1C8, 0x1C9, 0x1C7},
        {"titlecase Nj", 0x1CB, 0x1CC, 0x1CA},
        {"titlecase Dz", 0x1F2, 0x1F3, 0x1F1},
        {"final sigma stays", 0x3C2, 0x3C2, 0x3C2},
        {"sigma", 0x3C3, 0x3C3, 0x3A3},
        {"theta symbol", 0x3D1, 0x3D1, 0x398},
        {"Cyrillic Io", 0x401, 0x451, 0x401},
        {"Cyrillic Ie with grave came later", 0x400, 0x400, 0x400},
        {"Cyrillic I with grave came later", 0x40D, 0x40D, 0x40D},
        {"Cyrillic A", 0x410, 0x430, 0x410},
        {"Cyrillic ya", 0x44F, 0x44F, 0x42F},
        {"Georgian capital", 0x10A0, 0x10D0, 0x10A0},
        {"Georgian letter has no way back", 0x10D0, 0x10D0, 0x10D0},
        {"Greek with prosgegrammeni", 0x1F80, 0x1F80, 0x1F88},
        {"euro sign came later", 0x20AC, 0x20AC, 0x20AC},
        {"ohm sign is too far", 0x2126, 0x2126, 0x2126},
        {"kelvin sign is too far", 0x212A, 0x212A, 0x212A},
        {"angstrom sign is too far", 0x212B, 0x212B, 0x212B},
        {"roman numeral", 0x2160, 0x2170, 0x2160},
        {"circled letter", 0x24B6, 0x24D0, 0x24B6},
        {"ideograph", 0x4E00, 0x4E00, 0x4E00},
        {"private use", 0xE000, 0xE000, 0xE000},
        {"fullwidth A", 0xFF21, 0xFF41, 0xFF21},
        {"last unit", 0xFFFF, 0xFFFF, 0xFFFF},
    };
    for (const auto& [what, unit, lower, upper] : cases) {
        EXPECT_EQ(lowercase({unit}), Units{lower}) << what;
        EXPECT_EQ(uppercase({unit}), Units{upper}) << what;
        EXPECT_EQ(lowercaseInPlace({unit}), Units{lower}) << what;
        EXPECT_EQ(uppercaseInPlace({unit}), Units{upper}) << what;
    }
}

TEST(Case, ASurrogatePairIsLeftUnchanged) {
    const Units deseret = {0xD801, 0xDC00, 0xD801, 0xDC28}; // a capital and its small letter
    EXPECT_EQ(lowercase(deseret), deseret);
    EXPECT_EQ(uppercase(deseret), deseret);
    EXPECT_EQ(lowercaseInPlace(deseret), deseret);
    EXPECT_EQ(uppercaseInPlace(deseret), deseret);
}

TEST(CompareIgnoreCase, TellingPairs) {
    EXPECT_EQ(compare({0x61, 0x62}, {0x41, 0x43}), 0x62 - 0x63);
    EXPECT_EQ(compare({0x130}, {0x69}), 0);
    EXPECT_EQ(compare({0x131}, {0x69}), 0x131 - 0x69);
    EXPECT_EQ(compare({0x212A}, {0x6B}), 0x212A - 0x6B);
    EXPECT_EQ(compare({0x17F}, {0x53}), 0x17F - 0x73);
    EXPECT_EQ(compare({0xFFFF}, {0}), 0xFFFF);
    EXPECT_EQ(compare({0}, {0xFFFF}), -0xFFFF);
    EXPECT_EQ(compare({0x3A3}, {0x3C3}), 0);
    EXPECT_EQ(compare({0x5F}, {0x41}), 0x5F - 0x61); // folded to lower case
}

TEST(CompareIgnoreCase, AZeroUnitHasNoSpecialMeaning) {
    EXPECT_EQ(compare({0x41, 0, 0x42}, {0x61, 0, 0x43}), 0x62 - 0x63);
}

// ------------------------------------------------------------------------------------------------ arguments

TEST(Case, ArgumentsAreTestedPointersFirst) {
    uint16_t text[] = {0x41};
    uint16_t mapped[] = {0x55};
    for (const int32_t len : {1, 0, -1}) {
        EXPECT_EQ(tavsLowercase_16u(nullptr, mapped, len), tavStsNullPointer);
        EXPECT_EQ(tavsLowercase_16u(text, nullptr, len), tavStsNullPointer);
        EXPECT_EQ(tavsUppercase_16u(nullptr, mapped, len), tavStsNullPointer);
        EXPECT_EQ(tavsUppercase_16u(text, nullptr, len), tavStsNullPointer);
        EXPECT_EQ(tavsLowercase_16u_I(nullptr, len), tavStsNullPointer);
        EXPECT_EQ(tavsUppercase_16u_I(nullptr, len), tavStsNullPointer);
        int32_t result = 7;
        EXPECT_EQ(tavsCompareIgnoreCase_16u(nullptr, text, len, &result), tavStsNullPointer);
        EXPECT_EQ(tavsCompareIgnoreCase_16u(text, nullptr, len, &result), tavStsNullPointer);
        EXPECT_EQ(tavsCompareIgnoreCase_16u(text, text, len, nullptr), tavStsNullPointer);
        EXPECT_EQ(result, 7);
    }
    int32_t result = 7;
    EXPECT_EQ(tavsLowercase_16u(text, mapped, -1), tavStsNegativeLength);
    EXPECT_EQ(tavsUppercase_16u(text, mapped, INT32_MIN), tavStsNegativeLength);
    EXPECT_EQ(tavsLowercase_16u_I(text, -1), tavStsNegativeLength);
    EXPECT_EQ(tavsUppercase_16u_I(text, -1), tavStsNegativeLength);
    EXPECT_EQ(tavsCompareIgnoreCase_16u(text, text, -1, &result), tavStsNegativeLength);
    EXPECT_EQ(text[0], 0x41);
    EXPECT_EQ(mapped[0], 0x55);
    EXPECT_EQ(result, 7);
}

TEST(Case, ALengthOfZeroWritesNothingAndComparesEqual) {
    uint16_t text[] = {0x41};
    uint16_t mapped[] = {0x55};
    int32_t result = 7;
    EXPECT_EQ(tavsLowercase_16u(text, mapped, 0), tavStsNoError);
    EXPECT_EQ(tavsUppercase_16u(text, mapped, 0), tavStsNoError);
    EXPECT_EQ(tavsLowercase_16u_I(text, 0), tavStsNoError);
    EXPECT_EQ(tavsUppercase_16u_I(text, 0), tavStsNoError);
    EXPECT_EQ(tavsCompareIgnoreCase_16u(text, mapped, 0, &result), tavStsNoError);
    EXPECT_EQ(text[0], 0x41);
    EXPECT_EQ(mapped[0], 0x55);
    EXPECT_EQ(result, 0);
}

// ------------------------------------------------------------------------------------------------ all units

void expectMappings(const Units& text) {
    const Units lower = expectedLower(text), upper = expectedUpper(text);
    ASSERT_EQ(lowercase(text), lower);
    ASSERT_EQ(uppercase(text), upper);
    ASSERT_EQ(lowercaseInPlace(text), lower);
    ASSERT_EQ(uppercaseInPlace(text), upper);
}

TEST(Case, AllUnitsInOrderThroughAllFourMappings) {
    Units text(0x10000);
    for (std::size_t i = 0; i < text.size(); ++i)
        text[i] = static_cast<uint16_t>(i);
    expectMappings(text);
}

TEST(Case, EveryUnitAloneAndInEverySurroundingThroughAllFourMappings) {
    for (uint32_t i = 0; i < 0x10000; ++i) {
        const auto unit = static_cast<uint16_t>(i);
        expectMappings({unit});
        expectMappings(Units(8, unit));
        expectMappings({unit, 'A', 'z', unit, 0x42F, 0x451, 0xFF, unit, unit});
        expectMappings({'A', 'b', 'C', 'd', 'E', 'f', 'G', unit});
        if (HasFatalFailure()) FAIL() << std::hex << unit;
    }
}

TEST(CompareIgnoreCase, EveryUnitAgainstItsPartnersAndNeighbours) {
    for (uint32_t i = 0; i < 0x10000; ++i) {
        const auto unit = static_cast<uint16_t>(i);
        const Units others = {unit,
                              caseReference().lower(unit),
                              caseReference().upper(unit),
                              static_cast<uint16_t>(unit + 1),
                              static_cast<uint16_t>(unit ^ 0x20),
                              'k'};
        for (const uint16_t other : others) {
            const int32_t expected = caseReference().lower(unit) - caseReference().lower(other);
            ASSERT_EQ(compare({unit}, {other}), expected) << std::hex << unit << " " << other;
            Units left(9, 'A'), right(9, 'a');
            left[5] = unit;
            right[5] = other;
            right[7] = 'b'; // a later difference must not show
            ASSERT_EQ(compare(left, right), expected != 0 ? expected : -1)
                << std::hex << unit << " " << other;
        }
    }
}

TEST(CompareIgnoreCase, EveryTwoUnitsOfTheFirstScriptsInABlockOfTheirOwn) {
    for (uint32_t left = 0; left < 0x180; ++left)
        for (uint32_t right = 0; right < 0x180; ++right) {
            const auto l = static_cast<uint16_t>(left), r = static_cast<uint16_t>(right);
            ASSERT_EQ(compare(Units(8, l), Units(8, r)), caseReference().lower(l) - caseReference().lower(r))
                << std::hex << left << " " << right;
        }
}

// ------------------------------------------------------------------------------------- lengths and mixtures

constexpr uint32_t seed = 19960701;

class Random {
public:
    explicit Random(uint32_t from) : engine_(from) {}
    uint32_t operator()() { return static_cast<uint32_t>(engine_()); }

private:
    std::mt19937 engine_;
};

/// Runs of units out of the ranges that the mappings treat apart, some of them as long as several blocks.
Units mixture(Random& random, std::size_t size) {
    const struct {
        uint16_t first, last;
    } ranges[] = {{0x20, 0x7E},     {0x20, 0x7E},     {0x80, 0xFF},     {0x100, 0x24F},   {0x370, 0x3FF},
                  {0x400, 0x45F},   {0x460, 0x4FF},   {0x530, 0x5FF},   {0x10A0, 0x10FF}, {0x1E00, 0x1FFF},
                  {0x2000, 0x21FF}, {0x2480, 0x24FF}, {0x4E00, 0x9FFF}, {0xD800, 0xDFFF}, {0xFE00, 0xFFFF}};
    Units text;
    while (text.size() < size) {
        const auto& range = ranges[random() % std::size(ranges)];
        for (uint32_t run = 1 + random() % (random() % 8 == 0 ? 120 : 20); run > 0; --run)
            text.push_back(static_cast<uint16_t>(range.first + random() % (range.last - range.first + 1u)));
    }
    text.resize(size);
    return text;
}

template <class Map>
void expectGuardedMapping(const Units& text, const Units& expected, Map map) {
    static GuardedBuffer<uint16_t> sources(240), destinations(240);
    const std::size_t size = text.size();
    const int32_t len = length(text);
    const uint16_t* fromTail = sources.copyToTail(text.data(), size);
    ASSERT_EQ(map(fromTail, destinations.tail(size), len), tavStsNoError);
    ASSERT_EQ(Units(destinations.tail(size), destinations.tail(size) + size), expected);
    const uint16_t* fromHead = sources.copyToHead(text.data(), size);
    destinations.head()[size] = 0xA5A5;
    ASSERT_EQ(map(fromHead, destinations.head(), len), tavStsNoError);
    ASSERT_EQ(Units(destinations.head(), destinations.head() + size), expected);
    ASSERT_EQ(destinations.head()[size], 0xA5A5);
    uint16_t* same = destinations.copyToTail(text.data(), size);
    ASSERT_EQ(map(same, same, len), tavStsNoError);
    ASSERT_EQ(Units(same, same + size), expected);
}

TEST(Case, EveryLengthBetweenGuardPagesSeparatelyAndInPlace) {
    Random random(seed);
    for (std::size_t size = 0; size <= 200; ++size)
        for (int round = 0; round < 8; ++round) {
            const Units text = mixture(random, size);
            expectGuardedMapping(text, expectedLower(text), tavsLowercase_16u);
            expectGuardedMapping(text, expectedUpper(text), tavsUppercase_16u);
            expectGuardedMapping(text, expectedLower(text),
                                 [](const uint16_t* src, uint16_t* dst, int32_t len) {
                                     std::copy_n(src, len, dst);
                                     return tavsLowercase_16u_I(dst, len);
                                 });
            expectGuardedMapping(text, expectedUpper(text),
                                 [](const uint16_t* src, uint16_t* dst, int32_t len) {
                                     std::copy_n(src, len, dst);
                                     return tavsUppercase_16u_I(dst, len);
                                 });
            if (HasFatalFailure()) FAIL() << "seed " << seed << ", length " << size << ", round " << round;
        }
}

TEST(Case, LongMixturesThroughAllFourMappings) {
    Random random(seed + 1);
    for (int round = 0; round < 40; ++round) {
        expectMappings(mixture(random, 5000));
        if (HasFatalFailure()) FAIL() << "seed " << seed + 1 << ", round " << round;
    }
}

Units withOtherCase(Units text, Random& random) {
    for (uint16_t& unit : text) {
        const uint32_t choice = random() % 3;
        if (choice == 1) unit = caseReference().lower(unit);
        if (choice == 2 && caseReference().lower(caseReference().upper(unit)) == caseReference().lower(unit))
            unit = caseReference().upper(unit);
    }
    return text;
}

TEST(CompareIgnoreCase, TextsInOtherCaseAreEqualAndOneDifferenceIsFoundAtEveryPlace) {
    Random random(seed + 2);
    GuardedBuffer<uint16_t> lefts(100), rights(100);
    for (std::size_t size = 1; size <= 70; ++size) {
        const Units text = mixture(random, size);
        Units other = withOtherCase(text, random);
        const uint16_t* left = lefts.copyToTail(text.data(), size);
        int32_t result = 7;
        ASSERT_EQ(
            tavsCompareIgnoreCase_16u(left, rights.copyToTail(other.data(), size), length(text), &result),
            tavStsNoError);
        ASSERT_EQ(result, 0) << "seed " << seed + 2 << ", length " << size;
        for (std::size_t i = 0; i < size; ++i) {
            Units changed = other;
            changed[i] = static_cast<uint16_t>(changed[i] ^ (random() % 2 == 0 ? 1 : 0x4000));
            ASSERT_EQ(tavsCompareIgnoreCase_16u(left, rights.copyToTail(changed.data(), size), length(text),
                                                &result),
                      tavStsNoError);
            ASSERT_EQ(result, expectedComparison(text, changed))
                << "seed " << seed + 2 << ", length " << size;
        }
    }
}

} // namespace
