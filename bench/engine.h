// One regular-expression engine as the benchmarks see it: a pattern is prepared once, with every object that
// a careful user of that library would keep, and then run over subjects in one of a few kinds of work.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tav::bench {

using Subjects = std::vector<std::string_view>;

enum class Work {
    All,      ///< every match in each subject, whole matches only
    Captures, ///< the first match of each subject with all its groups
    First,    ///< the first match of each subject, its span only
    Compile,  ///< prepare the pattern, search each subject once, release everything
};

/// What a run found; engines that answer alike give equal tallies.
struct Tally {
    std::uint64_t matches = 0;
    std::uint64_t bytes = 0; ///< the lengths of all reported spans together
    bool operator==(const Tally&) const = default;
};

struct PatternText {
    std::string text;
    std::string options; ///< letters of "ims"
    bool utf8 = false;   ///< characters rather than bytes are the unit
};

class Engine {
public:
    virtual ~Engine() = default;
    virtual Tally all(const Subjects&) = 0;
    virtual Tally captures(const Subjects&) = 0;
    virtual Tally first(const Subjects&) = 0;
};

/// Prepares a pattern; null when the engine's language cannot express it.
using MakeEngine = std::unique_ptr<Engine> (*)(const PatternText&);

std::unique_ptr<Engine> makeTavch(const PatternText&);
std::unique_ptr<Engine> makePcre2Interpreter(const PatternText&);
std::unique_ptr<Engine> makePcre2Jit(const PatternText&);
std::unique_ptr<Engine> makeRe2(const PatternText&);

struct EngineEntry {
    const char* name;
    MakeEngine make;
};

/// The library first: the others are its peers.
inline constexpr EngineEntry engines[] = {
    {"tavch", makeTavch},
    {"pcre2", makePcre2Interpreter},
    {"pcre2-jit", makePcre2Jit},
    {"re2", makeRe2},
};

inline Tally run(Work work, MakeEngine make, Engine& engine, const PatternText& pattern,
                 const Subjects& subjects) {
    switch (work) {
    case Work::All:
        return engine.all(subjects);
    case Work::Captures:
        return engine.captures(subjects);
    case Work::First:
        return engine.first(subjects);
    case Work::Compile:
        return make(pattern)->first(subjects);
    }
    return {};
}

} // namespace tav::bench
