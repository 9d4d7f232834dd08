// The library against the reference: random patterns on random subjects, and programs that no pattern
// compiles to. The budget of levels is part of the answer, so it must agree exactly.
#include "reference/comparison.h"
#include "reference/enumeration.h"
#include "reference/join.h"
#include "reference/random_patterns.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <vector>

namespace {

using namespace tav::reference;
namespace regex = tav::regex;

/// The same trials at every run, or those of TAVCH_TEST_SEED; script/exhaustive takes fresh ones.
uint64_t seedFromEnvironment() {
    const char* text = std::getenv("TAVCH_TEST_SEED");
    return text ? std::strtoull(text, nullptr, 10) : 1;
}

class Differential : public testing::TestWithParam<Way> {};

std::string nameOf(const testing::TestParamInfo<Way>& test) {
    return test.param.name();
}

INSTANTIATE_TEST_SUITE_P(Library, Differential, testing::Values(usually, directly, withoutShortcuts), nameOf);

TEST_P(Differential, RandomPatternsOnRandomSubjects) {
    const uint64_t seed = seedFromEnvironment();
    std::printf("TAVCH_TEST_SEED=%llu\n", static_cast<unsigned long long>(seed));
    Comparison comparison;
    comparison.way = GetParam();
    int64_t patterns = 0;
    withLargeStack([&] {
        Random random(seed);
        for (int trial = 0; trial < 10'000 && comparison.differences < 10; ++trial)
            patterns += randomTrials(random, comparison);
    });
    std::printf("%lld patterns, %lld pairs, %lld with a match, %lld skipped\n",
                static_cast<long long>(patterns), static_cast<long long>(comparison.pairs),
                static_cast<long long>(comparison.matches), static_cast<long long>(comparison.skipped));
    EXPECT_EQ(comparison.differences, 0) << comparison.report;
}

TEST_P(Differential, SampleOfAllSmallPatterns) {
    Comparison comparison;
    comparison.way = GetParam();
    EnumerationCount count;
    const int offset = static_cast<int>(seedFromEnvironment() % 120);
    withLargeStack([&] { count = compareEnumerated(comparison, 120, offset); });
    std::printf("offset %d: %lld patterns, %lld pairs\n", offset, static_cast<long long>(count.patterns),
                static_cast<long long>(comparison.pairs));
    EXPECT_EQ(comparison.differences, 0) << comparison.report;
    EXPECT_GT(comparison.pairs, 40000);
}

class EachShortcut : public testing::TestWithParam<Way> {};

std::vector<Way> waysByShortcut() {
    std::vector<Way> ways;
    for (uint32_t shortcut = 1; shortcut <= regex::everyShortcut; shortcut <<= 1) {
        ways.push_back({shortcut});
        ways.push_back({regex::everyShortcut & ~shortcut});
    }
    return ways;
}

INSTANTIATE_TEST_SUITE_P(Library, EachShortcut, testing::ValuesIn(waysByShortcut()), nameOf);

TEST_P(EachShortcut, ChangesNoResultAloneOrLeftOut) {
    Comparison comparison;
    comparison.way = GetParam();
    withLargeStack([&] {
        Random random(seedFromEnvironment());
        for (int patterns = 0; patterns < 1500; ++patterns)
            randomTrials(random, comparison);
    });
    EXPECT_EQ(comparison.differences, 0) << comparison.report;
    EXPECT_GT(comparison.pairs, 1000);
}

/// Lookaheads at the beginning that begin with a run: where one fails, the starts inside its run are skipped.
int lookaheadTrials(Random& random, Comparison& comparison) {
    using Strings = std::vector<std::string>;
    static const Strings fronts = {"", "", "\\b", "^", "(?!b)", "(?<=a)", "(", "(?:"};
    static const Strings runs = {".*", ".*", "a+", "[ab]*", "\\w{2,}", "[^b]*", ".*?", "a{2}", "\\x{e9}*"};
    static const Strings rests = {"b",     "\\b", "$",  "a|b",     "\\bb", "(b)",
                                  "(?=b)", "c+",  "bb", "(a|b)*c", "\\z"};
    static const Strings tails = {"", "a", ".*", "\\w+b", "[ab]+$", ".", "(a|b)c", "^", "\\b"};
    const std::string front = random.pick(fronts);
    std::string pattern = front;
    for (uint32_t looks = 1 + random.below(2); looks > 0; --looks)
        pattern =
            join({pattern, random.oneIn(6) ? "(?!" : "(?=", random.pick(runs), random.pick(rests), ")"});
    pattern += random.pick(tails);
    if (front == "(" || front == "(?:") pattern += random.oneIn(3) ? ")+" : ")";
    Trial trial;
    trial.pattern = pattern;
    trial.options = random.pick(Strings{"", "", "g", "s", "m", "gm"});
    const Compiled compiled = compile(trial.pattern, trial.options);
    if (!compiled) return 0;
    for (int subjects = 0; subjects < 8; ++subjects) {
        trial.subject.clear();
        for (uint32_t pieces = random.below(14); pieces > 0; --pieces)
            trial.subject += random.pick(Strings{"a", "a", "b", "c", "\n", " ", "\xc3\xa9", "\xa9"});
        trial.behind = random.oneIn(4) ? 'a' : '\0';
        trial.format = random.oneIn(3) ? 0 : 1;
        trial.limit = random.oneIn(3) ? static_cast<int32_t>(random.below(20)) : 10000;
        comparison.compare(*compiled.block, trial);
    }
    return 1;
}

TEST(LeadingLookaheads, SkipNoStartThatMatches) {
    Comparison comparison;
    withLargeStack([&] {
        Random random(seedFromEnvironment());
        for (int patterns = 0; patterns < 12'000 && comparison.differences < 10; ++patterns)
            lookaheadTrials(random, comparison);
    });
    EXPECT_EQ(comparison.differences, 0) << comparison.report;
    EXPECT_GT(comparison.matches, 5000);
}

// ---------------------------------------------------------------------------------------------------------
// Recompiling

TEST(Recompiling, InTheSameBlockIsNoticedByTheNextSearch) {
    const char* const subject = "__abc_abd_qqq";
    int32_t size = 0;
    ASSERT_EQ(tavsRegExpGetSize("abc|xyz", &size), tavStsNoError);
    const Block block = makeBlock(static_cast<std::size_t>(size));
    for (const char* const pattern : {"abc|xyz", "abd|xyz", "qqq|rrr", "q|[^q]", "b|[^b]"}) {
        int32_t offset = 0;
        ASSERT_EQ(tavsRegExpInit(pattern, "", block.get(), &offset), tavStsNoError);
        tavRegExpFindResult found{};
        int32_t count = 1;
        tavsRegExpFind_8u(reinterpret_cast<const uint8_t*>(subject), 13, block.get(), &found, &count);
        Trial trial;
        trial.pattern = pattern;
        trial.subject = subject;
        Comparison comparison;
        EXPECT_EQ(comparison.compare(*block, trial), Verdict::same) << comparison.report;
    }
}

// ---------------------------------------------------------------------------------------------------------
// Large programs and subjects

void expectSame(const Trial& trial) {
    Comparison comparison;
    comparison.stepLimit = 20'000'000;
    comparison.shrinks = false;
    Verdict verdict = Verdict::skipped;
    withLargeStack([&] { verdict = comparison.compare(trial); });
    EXPECT_EQ(verdict, Verdict::same) << trial.pattern.substr(0, 60) << " on " << trial.subject.substr(0, 60)
                                      << " with limit " << trial.limit;
}

void expectSame(const std::string& pattern, const std::string& subject, int32_t limit = 10000) {
    Trial trial;
    trial.pattern = pattern;
    trial.subject = subject;
    trial.limit = limit;
    expectSame(trial);
}

TEST(LargePrograms, ManyGroups) {
    for (const int groups : {100, 500, 998, 999}) {
        expectSame(times(groups, "(a)"), times(groups, "a"));
        expectSame(times(groups, "(a)?"), times(groups / 2, "a"));
        expectSame(times(groups, "(a|b)"), join({times(groups, "b"), "a"}));
        expectSame(join({times(groups, "(a)|"), "b"}), "b");
        expectSame(join({times(groups - 1, "()"), "(x)*?y"}), "xxxxy");
    }
}

TEST(LargePrograms, DeepNesting) {
    for (const int depth : {10, 100, 500, 998}) {
        expectSame(join({times(depth, "("), "a", times(depth, ")")}), "xa");
        expectSame(join({times(depth, "(?:"), "ab", times(depth, "|c)")}), "ab");
        expectSame(join({times(depth, "(?>"), "a", times(depth, ")")}), "a");
        expectSame(join({times(depth, "(?="), "a", times(depth, ")")}), "a");
        expectSame(join({times(depth, "(?:x|"), "a", times(depth, ")")}), "a");
    }
    // Nested repeats take exponential time in the reference.
    for (const int depth : {2, 4, 6})
        expectSame(join({times(depth, "("), "a", times(depth, ")*")}), "aaa");
}

TEST(LargePrograms, ManyAlternatives) {
    std::string words;
    for (int i = 0; i < 400; ++i)
        words += join({"w", std::to_string(i * 7919 % 1000), "|"});
    for (const char* const subject : {"w7", "xxw919yy", "w-w", "w0w1w2", "www999"}) {
        expectSame(join({words, "end"}), subject);
        expectSame(join({"(?:", words, "end)+"}), subject);
        expectSame(join({"(", words, "end)x?"}), subject);
    }
}

TEST(LargeSubjects, TheBudgetEndsAtTheSamePlace) {
    for (const int32_t limit : {100, 9999, 10000, 10001, 50000}) {
        expectSame("(a|b)*", times(5000, "ab"), limit);
        expectSame("(?:ab)*", times(5000, "ab"), limit);
        expectSame("(?:ab)*?c", join({times(2000, "ab"), "c"}), limit);
        expectSame("(?>a|b)*", times(6000, "ab"), limit);
        expectSame("(a(?=b)|b)*", times(3000, "ab"), limit);
        expectSame("([ab])*", times(3000, "ab"), limit);
        expectSame("(?:a*b)*", times(3000, "aab"), limit);
    }
}

void expectSameInTrials(int count, int (*trials)(Random&, Comparison&)) {
    const uint64_t seed = seedFromEnvironment();
    std::printf("TAVCH_TEST_SEED=%llu\n", static_cast<unsigned long long>(seed));
    Comparison comparison;
    comparison.stepLimit = 200'000;
    comparison.shrinks = false;
    withLargeStack([&] {
        Random random(seed);
        for (int i = 0; i < count && comparison.differences < 10; ++i)
            trials(random, comparison);
    });
    EXPECT_EQ(comparison.differences, 0) << comparison.report;
    EXPECT_GT(comparison.pairs, 0);
}

TEST(LargePrograms, RandomOnesOfHundredsOfInstructions) {
    expectSameInTrials(200, longTrials);
}

TEST(LargeSubjects, RandomRepetitionsThousandsOfLevelsDeep) {
    expectSameInTrials(40, deepTrials);
}

TEST(LargeSubjects, RunsOfThousandsOfCharacters) {
    for (const int length : {15, 16, 17, 63, 64, 65, 1000, 70000}) {
        expectSame("a*b", join({times(length, "a"), "b"}));
        expectSame("[^b]*b", join({times(length, "\xc3\xa9"), "b"}));
        expectSame(".*x", join({times(length, "ab"), "\n", times(length, "x")}));
        expectSame("\\w+@", join({times(length, "a"), "@"}));
        expectSame("needle", join({times(length, "needl"), "needle"}));
        expectSame("foo|bar|quux", join({times(length, "ba"), "quux"}));
        expectSame("\\x{e9}+?$", times(length, "\xc3\xa9"));
        expectSame("[a-c]{3,}d", join({times(length, "abc"), "d"}));
    }
}

TEST(LargeSubjects, GlobalSearchesWithManyMatches) {
    Trial trial;
    trial.options = "g";
    trial.slots = 3000;
    trial.subject = times(500, "ab c\xc3\xa9");
    for (const char* const pattern :
         {"a", "\\w+", "\\b", "x*", "[^ ]+", "(a)(b)?", ".", "b|c", "ab|c", "$", "(?=a)", "\\x{e9}"}) {
        trial.pattern = pattern;
        expectSame(trial);
    }
}

} // namespace
