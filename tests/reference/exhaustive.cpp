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

int64_t compareAll() {
    Comparison comparison;
    const EnumerationCount count = compareEnumerated(comparison, 1, 0);
    print("small patterns", count.patterns, comparison);
    return comparison.differences;
}

int64_t compareRandom(int seconds, uint64_t seed) {
    std::printf("seed %llu\n", static_cast<unsigned long long>(seed));
    Comparison comparison;
    Random random(seed);
    int64_t patterns = 0;
    for (const auto stop = Clock::now() + std::chrono::seconds(seconds); Clock::now() < stop;)
        patterns += randomTrials(random, comparison);
    print("random patterns", patterns, comparison);
    return comparison.differences;
}

int64_t compareDeep(int seconds, uint64_t seed) {
    Comparison comparison;
    comparison.shrinks = false;
    comparison.stepLimit = 500'000;
    Random random(seed);
    int64_t patterns = 0;
    for (const auto stop = Clock::now() + std::chrono::seconds(seconds); Clock::now() < stop;)
        patterns += deepTrials(random, comparison);
    print("deep repetitions", patterns, comparison);
    return comparison.differences;
}

} // namespace

int main(int count, char** arguments) {
    const int seconds = count > 1 ? std::atoi(arguments[1]) : 120;
    const uint64_t seed = count > 2 ? std::strtoull(arguments[2], nullptr, 10)
                                    : static_cast<uint64_t>(Clock::now().time_since_epoch().count());
    int64_t differences = 0;
    withLargeStack([&] {
        differences = compareAll();
        differences += compareRandom(seconds, seed);
        differences += compareDeep(1 + seconds / 8, seed);
    });
    return differences == 0 ? 0 : 1;
}
