// The memory of what has failed, for searches that come back to the same places again and again.
//
// A plain backtracker takes exponential time on patterns like (a+)+$ or (a|aa)*b, because it tries the same
// continuation at the same position once for every way that leads there. What a continuation can do depends
// on its state alone: the choice it stands behind, the position, and of each loop around it the number of the
// iteration, as far as the loop's bounds count it, and whether the iteration has consumed anything. A state
// that has failed once fails every time, so it is remembered and left out. Groups' texts are no part of a
// state: programs that read them, by back-references or conditions on groups, have no such memory.
//
// Levels. A failure in which no path ran out of levels (untouched by the limit) would be the same with more
// of them. With fewer of them it would be the same too, if fewer levels can only take matches away, which
// holds unless something in the program succeeds by failing or takes its first success for good (negative
// lookaround, conditions, atomic groups). So there are three ways to remember a failure with a number of
// levels:
//
//     untouched, levels only help     the state fails with any number
//     touched, levels only help       it fails with as many or fewer
//     untouched, otherwise            it fails with as many or more
//
// The memory is a hash table of lines in the spare part of the work area. A line is 64 positions of the first
// way, a bit each, or four positions of the others with their levels. Keys are exact; a line that finds no
// room takes the place of another, so that the memory may forget, but never errs.
#pragma once

#include "regex/match/plan.h"

namespace tav::regex {

class FailedStates {
public:
    /// Is there room for a memory in the spare part of the work area?
    static bool fits(const Plan& plan);

    /// An empty memory for searches of about `positions` positions, there.
    static FailedStates& create(const Plan& plan, int64_t positions, int32_t matchLimit);

    /// A loop as part of the states of the choices inside it.
    struct Loop {
        int32_t close;     // its closing position
        uint16_t bracket;  // its id
        uint16_t outer;    // the loop around it, 0 none
        uint16_t parent;   // the loop or body around it, 0 none
        uint16_t depth;    // loops around the choices inside it; 0: no loop but a body that is matched alone
        int32_t counted;   // iterations are told apart up to this number
        uint32_t contexts; // different ones inside it; 0: too many
    };

    /// The innermost loop around the choice at `pc` that its failure depends on; null when there is none.
    const Loop* loopAround(int32_t pc) const { return loopFrom(around_[pc]); }
    const Loop* outerLoop(const Loop& loop) const { return loopFrom(loop.outer); }

    /// Stands for a state that cannot be told from others.
    static constexpr uint64_t noState = ~uint64_t{0};

    /// The state of the choice at `pc`, by the number of its context.
    uint64_t state(int32_t pc, uint64_t context) const {
        return static_cast<uint64_t>(pc) << contextBits_ | context;
    }

    enum class Known : uint8_t { nothing, failed, failedByLimit };

    /// Has the state failed, so that it fails again with `levels`?
    Known lookUp(uint64_t state, int32_t at, int32_t levels) const;

    /// The last position from `at` back to `floor` where the state is not known to fail whatever the levels;
    /// floor - 1 when there is none.
    int32_t lastUnknown(uint64_t state, int32_t at, int32_t floor) const;

    /// The first one from `at` on below `ceiling`; `ceiling` when there is none.
    int32_t firstUnknown(uint64_t state, int32_t at, int32_t ceiling) const;

    /// May what fails in the loops be looked for from the end back to `start`? Later starts may ask again,
    /// for the memory forgets, but not so often that it takes more than its share of the time.
    bool mayLearn(int32_t start) const { return lessons_ < mostLessons && start >= nextLesson_; }
    void learns(int32_t start) {
        ++lessons_;
        nextLesson_ = start + betweenLessons;
    }

    /// Loops are numbered from 1. The outermost ones depend on nothing around them.
    int32_t loopCount() const { return loopCount_; }
    bool isOutermost(int32_t loop) const { return loops_[loop].depth == 1 && loops_[loop].parent == 0; }
    int32_t bracketOf(int32_t loop) const { return loops_[loop].bracket; }

    /// The state has failed with `levels`, touched by the limit or not.
    void add(uint64_t state, int32_t at, int32_t levels, bool touched);

private:
    struct Line {
        uint64_t key; // 0: unused
        union {
            uint64_t failed;    // one bit for each of 64 positions
            uint16_t levels[4]; // of each of four positions; 0: not known to fail
        };
    };
    static_assert(sizeof(Line) == 16);

    enum Sort : uint64_t { sortBits = 1, sortLevels = 3 }; // the key's last two bits

    static constexpr int mostLessons = 64;
    static constexpr int betweenLessons = 2048; // start positions
    static constexpr int probes = 8;
    static constexpr int fewestLines = 64;
    static constexpr int keyBits = 33; // of a state

    FailedStates() = default;
    void prepare(const Plan& plan, int64_t positions, int32_t matchLimit);
    const Loop* loopFrom(uint16_t number) const { return number == 0 ? nullptr : loops_ + number; }
    void findLoops(const Plan& plan);
    void enter(const Plan& plan, int32_t pc, uint16_t& current);
    void clear(uint32_t homes);
    Line* home(uint64_t key) const;
    const Line* find(uint64_t key) const;
    Line& claim(uint64_t key);

    static uint64_t bitsKey(uint64_t state, int32_t at) {
        return state << 31 | static_cast<uint64_t>(at >> 6) << 2 | sortBits;
    }
    static uint64_t levelsKey(uint64_t state, int32_t at) {
        return state << 31 | static_cast<uint64_t>(at >> 2) << 2 | sortLevels;
    }

    uint16_t* around_ = nullptr;
    Loop* loops_ = nullptr;
    uint16_t loopCount_ = 0;
    int contextBits_ = 0;
    int32_t matchLimit_ = 0;
    bool levelsOnlyHelp_ = true;
    bool hasLevels_ = false; // some line tells of levels
    int levelShift_ = 0;     // levels are kept in units of a power of two, so that they fit into 16 bits
    Line* lines_ = nullptr;
    uint32_t homes_ = 0;    // lines in use, without the last ones that only probing reaches
    uint32_t capacity_ = 0; // homes that there is room for
    uint32_t victim_ = 0;
    int lessons_ = 0;
    int32_t nextLesson_ = 0;
};

} // namespace tav::regex
