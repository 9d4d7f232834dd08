// One pattern, one subject, both engines: do they give the same answer?
#pragma once

#include "reference/hand_made.h"
#include "reference/reference_engine.h"
#include "regex/match/shortcuts.h"

#include <set>
#include <string>
#include <vector>

namespace tav::reference {

/// A bitwise mixer with a counter: the same numbers on every system.
class Random {
public:
    explicit Random(uint64_t seed) : state_(seed) {}
    uint64_t next() {
        uint64_t z = (state_ += 0x9E3779B97F4A7C15u);
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
        return z ^ (z >> 31);
    }
    /// 0 .. bound-1
    uint32_t below(uint32_t bound) { return static_cast<uint32_t>((next() >> 32) * bound >> 32); }
    bool oneIn(uint32_t n) { return below(n) == 0; }
    template <class Choices>
    auto pick(const Choices& choices) {
        return choices[below(static_cast<uint32_t>(std::size(choices)))];
    }

private:
    uint64_t state_;
};

/// A search with everything that it depends on.
struct Trial {
    std::string pattern;
    std::string options;
    std::string subject;
    char behind = '\0';
    int32_t limit = 10000;
    int32_t format = 1;
    int32_t slots = 0; // 0: as many as the pattern has results, or many in global mode
};

/// A pattern compiled by the library; empty when it is refused.
struct Compiled {
    Block block;
    explicit operator bool() const { return block != nullptr; }
};
Compiled compile(const std::string& pattern, const std::string& options);

/// How the library is to find its answer. The shortcuts must not show in any answer.
struct Way {
    uint32_t shortcuts = regex::everyShortcut;
    bool direct = false;      // instructions decoded as they are reached, as for programs too long for a plan
    bool remembering = false; // failed states are remembered from the first one on
    bool cramped = false;     // there is hardly room for remembering them

    std::string name() const;
};

inline const Way usually{};
inline const Way directly{0, true};
inline const Way withoutShortcuts{0};
inline const Way remembering{.remembering = true};
inline const Way rememberingLittle{.remembering = true, .cramped = true};
inline const Way rememberingDirectly{regex::shortcutFailedStates, true, true};
inline const Way rememberingAlone{.shortcuts = regex::shortcutFailedStates, .remembering = true};

enum class Verdict { same, different, skipped };

/// Counts what was compared and remembers the first differences in their smallest form.
class Comparison {
public:
    Way way = usually;
    int64_t stepLimit = 20000; // pairs that need more steps are skipped
    bool shrinks = true;       // look for the smallest form of a difference
    int64_t pairs = 0;
    int64_t matches = 0;
    int64_t skipped = 0;
    int64_t differences = 0;
    std::string report;

    /// Runs both engines on a compiled block (whose limit and format are set here).
    Verdict compare(tavRegExpContext& block, const Trial& trial);
    /// Compiles and compares; a refused pattern is `skipped`.
    Verdict compare(const Trial& trial);

private:
    void remember(const Trial& trial);

    std::set<std::string> reported_;
};

/// The trial as a line of a pattern case file, with the reference's answer.
std::string describe(const Trial& trial);

} // namespace tav::reference
