// Searches that remember failed states from the first one on, against the reference: on the patterns that ask
// most of the memory, with limits that are reached in the middle of things, and with hardly any room.
#include "reference/comparison.h"
#include "reference/enumeration.h"
#include "reference/random_patterns.h"

#include <gtest/gtest.h>

namespace {

using namespace tav::reference;

class FailedStates : public testing::TestWithParam<Way> {};

INSTANTIATE_TEST_SUITE_P(Library, FailedStates,
                         testing::Values(remembering, rememberingLittle, rememberingDirectly,
                                         rememberingAlone),
                         [](const testing::TestParamInfo<Way>& test) { return test.param.name(); });

void expectSame(const Way& way, int (*trials)(Random&, Comparison&), int patterns) {
    Comparison comparison;
    comparison.way = way;
    comparison.stepLimit = 100'000;
    withLargeStack([&] {
        Random random(1);
        for (int done = 0; done < patterns && comparison.differences < 10; ++done)
            trials(random, comparison);
    });
    EXPECT_EQ(comparison.differences, 0) << comparison.report;
    EXPECT_GT(comparison.pairs, patterns);
}

TEST_P(FailedStates, AreTheSameWhereRepeatsAreNested) {
    expectSame(GetParam(), nestedTrials, 3000);
}

TEST_P(FailedStates, ChangeNothingOnRandomPatterns) {
    expectSame(GetParam(), randomTrials, 2000);
}

TEST_P(FailedStates, ChangeNothingOnASampleOfAllSmallPatterns) {
    Comparison comparison;
    comparison.way = GetParam();
    withLargeStack([&] { compareEnumerated(comparison, 400, 7); });
    EXPECT_EQ(comparison.differences, 0) << comparison.report;
    EXPECT_GT(comparison.pairs, 10000);
}

} // namespace
