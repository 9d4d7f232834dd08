// tavch.hpp where neither exceptions nor run-time type information exist: compiles without a warning, and
// works.
#include "tavch.hpp"

#include <cstdio>
#include <string>

int main() {
    static tav::PatternRoom<32> room;
    tav::Pattern pattern("a(b+)c", "i", room);
    const tav::Match match = pattern.find("xxABBBcyy");
    const auto replaced = pattern.replaceAll("abc-abbc", "<$1>");
    std::size_t matches = 0;
    for (const tav::MatchView each : pattern.matches("abc abbc abbbc"))
        matches += each[1].size();
    tav::PatternSet set(2);
    const bool added = !set.add(pattern, 7);
    const auto hits = set.find("zabcz");
    const bool good = pattern && match[1] == "BBB" && match.position() == 2 && *replaced == "<b>-<bb>" &&
                      matches == 6 && added && hits->size() == 1 && hits->front().id == 7 &&
                      tav::trim("  x ", " ") == "x" && tav::uppercase(u"\u00E9") == u"\u00C9";
    if (!good) std::puts("tavch.hpp gives a wrong answer");
    return good ? 0 : 1;
}
