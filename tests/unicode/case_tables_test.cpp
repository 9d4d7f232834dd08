// The generated case table itself: counts, distances, and the shape that the look-up relies on.
#include "unicode/case_tables.h"

#include "unicode/case_reference.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace {

using namespace tav::unicode::tables;
using tavtest::caseReference;

uint32_t recordOf(uint32_t unit) {
    return caseRecords[caseStage2[caseStage1[unit >> 6] | (unit & 63)]];
}

int32_t deltaOf(uint32_t unit) {
    return static_cast<int32_t>(recordOf(unit)) >> caseDeltaShift;
}

bool hasLower(uint32_t unit) {
    return (recordOf(unit) & caseHasLower) != 0;
}

bool hasUpper(uint32_t unit) {
    return (recordOf(unit) & caseHasUpper) != 0;
}

TEST(CaseTable, HasAsManyMappingsAsUnicode20InTheDistancesOfTenBits) {
    int lower = 0, upper = 0;
    int32_t smallest = 0, largest = 0;
    for (uint32_t unit = 0; unit < 0x10000; ++unit) {
        lower += hasLower(unit);
        upper += hasUpper(unit);
        smallest = std::min(smallest, deltaOf(unit));
        largest = std::max(largest, deltaOf(unit));
    }
    EXPECT_EQ(lower, 704);
    EXPECT_EQ(upper, 673);
    EXPECT_EQ(smallest, -199);
    EXPECT_EQ(largest, 300);
    EXPECT_EQ(deltaOf(0x130), -199);
    EXPECT_EQ(deltaOf(0x17F), 300);
}

TEST(CaseTable, HasTheMappingsOfItsSource) {
    for (uint32_t unit = 0; unit < 0x10000; ++unit) {
        ASSERT_EQ(hasLower(unit), caseReference().hasLower(unit)) << std::hex << unit;
        ASSERT_EQ(hasUpper(unit), caseReference().hasUpper(unit)) << std::hex << unit;
    }
}

TEST(CaseTable, LeavesTheOtherPropertiesZero) {
    for (uint32_t unit = 0; unit < 0x10000; ++unit) {
        ASSERT_EQ(recordOf(unit) & 0xFFFFF, 0u) << std::hex << unit;
        ASSERT_EQ(recordOf(unit) == 0, !hasLower(unit) && !hasUpper(unit)) << std::hex << unit;
    }
}

TEST(CaseTable, GoesBothWaysOnlyForTheFourTitlecaseLetters) {
    std::vector<uint32_t> both;
    for (uint32_t unit = 0; unit < 0x10000; ++unit)
        if (hasLower(unit) && hasUpper(unit)) both.push_back(unit);
    EXPECT_EQ(both, (std::vector<uint32_t>{0x1C5, 0x1C8, 0x1CB, 0x1F2}));
}

TEST(CaseTable, HasNoMappingForSurrogatesAndPrivateUse) {
    for (uint32_t unit = 0xD800; unit <= 0xF8FF; ++unit)
        ASSERT_EQ(recordOf(unit), 0u) << std::hex << unit;
}

TEST(CaseTable, EveryStageOneEntryStartsABlock) {
    for (const uint16_t start : caseStage1)
        EXPECT_EQ(start % 64, 0);
}

} // namespace
