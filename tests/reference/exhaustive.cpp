// The long comparison of the library with the reference: all small patterns, then random ones.
//
//   exhaustive [seconds of random patterns] [seed]
//
// Ends with 1 when anything differs.
#include "reference/comparison.h"
#include "reference/enumeration.h"
#include "reference/random_patterns.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>

namespace {

using namespace tav::reference;
using Clock = std::chrono::steady_clock;

void print(const char* what, int64_t patterns, const Comparison& comparison) {
    std::printf("%s: %lld patterns, %lld pairs (%lld with a match, %lld skipped), %lld differences\n", what,
                static_cast<long long>(patterns), static_cast<long long>(comparison.pairs),
                static_cast<long long>(comparison.matches), static_cast<long long>(comparison.skipped),
                static_cast<long long>(comparison.differences));
    std::fputs(comparison.report.c_str(), stdout);
    std::fflush(stdout);
}

int64_t compareAll(Way way, const char* what) {
    Comparison comparison;
    comparison.way = way;
    const EnumerationCount count = compareEnumerated(comparison, 1, 0);
    print(what, count.patterns, comparison);
    return comparison.differences;
}

int64_t compareRandom(int seconds, uint64_t seed, Way way, const char* what) {
    Comparison comparison;
    comparison.way = way;
    Random random(seed);
    int64_t patterns = 0;
    for (const auto stop = Clock::now() + std::chrono::seconds(seconds); Clock::now() < stop;)
        patterns += randomTrials(random, comparison);
    print(what, patterns, comparison);
    return comparison.differences;
}

/// Repeats of repeats, with failed states remembered from the first one on.
int64_t compareNested(int seconds, uint64_t seed, const Way& way) {
    Comparison comparison;
    comparison.way = way;
    comparison.stepLimit = 400'000;
    Random random(seed);
    int64_t patterns = 0;
    for (const auto stop = Clock::now() + std::chrono::seconds(seconds); Clock::now() < stop;)
        patterns += nestedTrials(random, comparison);
    print("nested repeats, remembering", patterns, comparison);
    return comparison.differences;
}

/// Large programs or subjects: their differences are shown as they are.
int64_t compareLarge(int seconds, uint64_t seed, int (*trials)(Random&, Comparison&), const char* what) {
    Comparison comparison;
    comparison.shrinks = false;
    comparison.stepLimit = 500'000;
    Random random(seed);
    int64_t patterns = 0;
    for (const auto stop = Clock::now() + std::chrono::seconds(seconds); Clock::now() < stop;)
        patterns += trials(random, comparison);
    print(what, patterns, comparison);
    return comparison.differences;
}

} // namespace

int main(int count, char** arguments) {
    const int seconds = count > 1 ? std::atoi(arguments[1]) : 120;
    const uint64_t seed = count > 2 ? std::strtoull(arguments[2], nullptr, 10)
                                    : static_cast<uint64_t>(Clock::now().time_since_epoch().count());
    int64_t differences = 0;
    withLargeStack([&] {
        differences = compareAll(usually, "small patterns");
        differences += compareAll(directly, "small patterns, directly");
        differences += compareAll(withoutShortcuts, "small patterns, without shortcuts");
        std::printf("seed %llu\n", static_cast<unsigned long long>(seed));
        differences += compareRandom(seconds, seed, usually, "random patterns");
        differences += compareRandom(seconds / 4, seed, directly, "random patterns, directly");
        differences +=
            compareRandom(seconds / 4, seed, withoutShortcuts, "random patterns, without shortcuts");
        differences += compareRandom(seconds / 4, seed, remembering, "random patterns, remembering");
        for (const Way& way : {remembering, rememberingLittle, rememberingDirectly})
            differences += compareNested(1 + seconds / 8, seed, way);
        differences += compareLarge(1 + seconds / 8, seed, deepTrials, "deep repetitions");
        differences += compareLarge(1 + seconds / 8, seed, longTrials, "long programs");
    });
    return differences == 0 ? 0 : 1;
}
