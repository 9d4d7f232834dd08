// How the matcher's work grows with the subject, in steps rather than in time: patterns that take exponential
// time where each way to a place is tried anew take as many steps here as the subject is long, times a
// constant. (Scans inside a step, along a run or along remembered failures, may still make the time
// quadratic.) The matcher is compiled into this test with a counter of its steps.
#include "regex/match/steps.h"
#include "tavch.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

namespace {

struct Hostile {
    const char* pattern;
    const char* unit;    // repeated to the length
    const char* tail;    // so that nothing matches, or only in the end
    bool isLong = false; // also on long subjects: each step is short
};

const Hostile hostile[] = {
    {"(a+)+$", "a", "b"},
    {"(a*)*$", "a", "b"},
    {"(a+)+?$", "a", "b"},
    {"(a|aa)+$", "a", "b", true},
    {"(a|a)*$", "a", "b", true},
    {"(a|a?)+$", "a", "b", true},
    {"(a|b|ab)*$", "ab", "c", true},
    {"(.*)*x$", "x", "y"},
    {"(.*?)*?x$", "x", "y"},
    {"((a*?)*?)*?$", "a", "b"},
    {"((a*)*)*$", "a", "b"},
    {"(a+a+)+$", "a", "b"},
    {"a*a*a*a*a*$", "a", "b"},
    {"(\\w+\\s?)+$", "word ", "!", true},
    {"^(\\w+\\s?)+$", "word ", "!", true},
    {"^(([a-z])+.)+[A-Z]([a-z])+$", "a", ""},
    {"(x+x+)+y$", "x", "yz"},
    {"(?:(?:a{2,5})+)+$", "a", "b", true},
    {"(a|a){1,30}$", "a", "b"},
    {"(?:a?){20}a{20}$", "a", "b", true},
    {"(?:(?:.|\\n)*?)*end$", "a", "bend!", true},
    {"^(?=(a|aa)+$)a", "a", "b"},
    {"^(?!(a|aa)+$)a", "a", "b"},
    {"(?>(?:a|aa)+$|b+c)", "a", "b"},
};

int64_t stepsOn(const Hostile& one, int length) {
    tavRegExpContext* pattern = nullptr;
    int32_t offset = 0;
    EXPECT_EQ(tavsRegExpInitAlloc(one.pattern, nullptr, &pattern, &offset), tavStsNoError);
    std::string subject;
    while (static_cast<int>(subject.size()) < length)
        subject += one.unit;
    subject += one.tail;
    tavRegExpFindResult results[10];
    int32_t found = 10;
    tav::regex::steps = 0;
    EXPECT_GE(tavsRegExpFind_8u(reinterpret_cast<const uint8_t*>(subject.c_str()),
                                static_cast<int32_t>(subject.size()), pattern, results, &found),
              tavStsNoError);
    tavsRegExpFree(pattern);
    return tav::regex::steps;
}

class Growth : public testing::TestWithParam<Hostile> {};

INSTANTIATE_TEST_SUITE_P(Matcher, Growth, testing::ValuesIn(hostile));

TEST_P(Growth, OfTheStepsIsThatOfTheSubject) {
    const Hostile& one = GetParam();
    SCOPED_TRACE(one.pattern);
    const int64_t few = stepsOn(one, 200);
    const int64_t many = stepsOn(one, 1600);
    std::printf("%-32s %8lld %8lld\n", one.pattern, static_cast<long long>(few),
                static_cast<long long>(many));
    EXPECT_GT(few, 0) << "the counter does not count";
    EXPECT_LE(many, 10 * few);
}

// Some 3000 repetitions exhaust the usual limit, so that failures depend on the levels that were left.
TEST(GrowthBeyondTheLimit, StaysLinear) {
    for (const Hostile& one : hostile) {
        if (!one.isLong) continue;
        SCOPED_TRACE(one.pattern);
        const int64_t few = stepsOn(one, 15'000);
        const int64_t many = stepsOn(one, 30'000);
        std::printf("%-32s %8lld %8lld\n", one.pattern, static_cast<long long>(few),
                    static_cast<long long>(many));
        EXPECT_LE(many, 3 * few + 1000);
    }
}

} // namespace
