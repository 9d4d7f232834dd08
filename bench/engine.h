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
    Replace,  ///< every match in each subject put in angle brackets
    Set,      ///< which of several patterns, one per line of the pattern text, match each subject
    Compile,  ///< prepare the pattern, search each subject once, release everything
};

/// What a run found; engines that answer alike give equal tallies.
struct Tally {
    std::uint64_t matches = 0;
    std::uint64_t bytes = 0; ///< the lengths of all reported spans, or of all results, together
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
    virtual Tally replace(const Subjects&) = 0;
};

/// Several patterns, and which of them match: a set where the library has one, else one after the other.
class SetEngine {
public:
    virtual ~SetEngine() = default;
    virtual Tally matching(const Subjects&) = 0;
};

/// Prepares a pattern; null when the engine's language cannot express it.
using MakeEngine = std::unique_ptr<Engine> (*)(const PatternText&);

std::unique_ptr<Engine> makeTavch(const PatternText&);
std::unique_ptr<Engine> makePcre2Interpreter(const PatternText&);
std::unique_ptr<Engine> makePcre2Jit(const PatternText&);
std::unique_ptr<Engine> makeRe2(const PatternText&);

/// Prepares the patterns; null when the engine's language cannot express them all.
using MakeSetEngine = std::unique_ptr<SetEngine> (*)(const std::vector<PatternText>&);

std::unique_ptr<SetEngine> makeTavchSet(const std::vector<PatternText>&);
std::unique_ptr<SetEngine> makePcre2InterpreterLoop(const std::vector<PatternText>&);
std::unique_ptr<SetEngine> makePcre2JitLoop(const std::vector<PatternText>&);
std::unique_ptr<SetEngine> makeRe2Set(const std::vector<PatternText>&);

/// A set as one engine among the others; null when `make` gives none.
std::unique_ptr<Engine> asEngine(MakeSetEngine make, const PatternText& patterns);

struct EngineEntry {
    const char* name;
    MakeEngine make;
    MakeSetEngine makeSet;
};

/// The library first: the others are its peers.
inline constexpr EngineEntry engines[] = {
    {"tavch", makeTavch, makeTavchSet},
    {"pcre2", makePcre2Interpreter, makePcre2InterpreterLoop},
    {"pcre2-jit", makePcre2Jit, makePcre2JitLoop},
    {"re2", makeRe2, makeRe2Set},
};

inline Tally run(Work work, MakeEngine make, Engine& engine, const PatternText& pattern,
                 const Subjects& subjects) {
    switch (work) {
    case Work::All:
        return engine.all(subjects);
    case Work::Captures:
        return engine.captures(subjects);
    case Work::First:
    case Work::Set:
        return engine.first(subjects);
    case Work::Replace:
        return engine.replace(subjects);
    case Work::Compile:
        return make(pattern)->first(subjects);
    }
    return {};
}

} // namespace tav::bench
