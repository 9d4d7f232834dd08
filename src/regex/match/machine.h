// The backtracking machine: matches a program at one start position.
//
// It walks the nodes with its registers (position, node, levels left) and keeps what it may have to come back
// to as records on a stack of its own, so the machine stack does not grow with the subject. Records that undo
// a change lie on the same stack, between the choices that they belong to.
//
// Depth budget. Every construct that the path passes through takes one level, and backtracking gives it back;
// a choice remembers the levels left where it was made. Without a level left a construct fails like a
// mismatch. On any path the records take at most 24 bytes per level, so the budget also bounds the memory.
#pragma once

#include "regex/match/characters.h"
#include "regex/match/failed_states.h"
#include "regex/match/plan.h"

#include <cstddef>

/// Parts of the machine's one loop: inlined, so that its registers stay in the processor's.
#define TAV_HOT [[gnu::always_inline]] inline

namespace tav::regex {

/// One record of the choice stack. A loop's iteration takes two: the one described here on top of one that
/// holds what the iteration replaced.
struct Record {
    uint32_t what;  // the sort of record and the node it belongs to
    int32_t at;     // subject offset to go on from; slot record: the group's former start
    int32_t bound;  // repeat: lowest offset, or repetitions left; alternatives: the next OP_ALT_END
    int32_t levels; // levels left at the choice
};

static_assert(sizeof(Record) == 16);

enum class Outcome : uint8_t {
    matched,
    failed,
    full,  // the choice stack must grow before the machine can go on
    tired, // the attempt came back so often that it must have passed through some states again
};

/// The subject of a search.
struct Subject {
    const uint8_t* begin;
    const uint8_t* end;   // of the usable part: what matching may consume
    const uint8_t* limit; // of the bytes that may be read
};

/// Nodes that the plan holds ready.
class PlannedNodes {
public:
    static constexpr bool remembers = false;
    explicit PlannedNodes(const Plan& plan) : nodes_(plan.nodes) {}
    const Node& operator[](int32_t pc) const { return nodes_[pc]; }

private:
    const Node* nodes_;
};

/// Nodes decoded as they are reached, for a program too long for the plan.
class DirectNodes {
public:
    static constexpr bool remembers = false;
    explicit DirectNodes(const Plan& plan) : plan_(plan) {}
    Node operator[](int32_t pc) const;

private:
    uint32_t optionsAt(int32_t pc) const;
    const Plan& plan_;
};

/// The same nodes for a machine that remembers failed states.
template <class Nodes>
class Remembering : public Nodes {
public:
    using Nodes::Nodes;
    // It hides that of the nodes without a memory on purpose.
    // cppcheck-suppress duplInheritedMember
    static constexpr bool remembers = true;
    FailedStates* failed = nullptr;
    std::ptrdiff_t touched = 0; // the choices up to this one have seen a path run out of levels
    bool outOfLevels = false;   // some path has
};

template <class Nodes>
class Machine {
public:
    Machine(const Plan& plan, const Subject& subject, int32_t matchLimit)
        : plan_(plan), nodes_(plan), begin_(subject.begin), end_(subject.end), limit_(subject.limit),
          lastBlock_(limit_ - begin_ < 16 ? nullptr : limit_ - 16), captures_(plan.captures),
          matchLimit_(matchLimit), stack_(firstStack_), stackEnd_(endOf(firstStack_, firstCapacity)) {}

    void rememberIn(FailedStates& failed) {
        if constexpr (Nodes::remembers) nodes_.failed = &failed;
    }

    /// Matches the whole program at `start`. When `notEmpty` is set, an empty match does not count.
    Outcome match(const uint8_t* start, const uint8_t* end, bool notEmpty) {
        start_ = start;
        failedUpTo_ = start;
        end_ = end;
        notEmpty_ = notEmpty;
        if (capturesDirty_ || plan_.capturesStay) clearCaptures();
        if constexpr (Nodes::remembers) nodes_.touched = 0;
        Registers r{start, 0, matchLimit_, stack_};
        if (plan_.firstAlternative != noNode && !beginAlternatives(r)) return Outcome::failed;
        patience_ = plan_.patience + static_cast<int64_t>(plan_.choices) * (end - start);
        Outcome outcome = run(r);
        if (outcome == Outcome::full) outcome = matchOnLargerStack();
        capturesDirty_ = outcome != Outcome::failed;
        return outcome;
    }

    /// Once levels have run out: remembers what fails in the loops, beginning at the end, so that each state
    /// finds those behind it known and needs few levels itself.
    void learn(const uint8_t* start, const uint8_t* end);

    /// The end of the match just found.
    const uint8_t* matchEnd() const { return matchEnd_; }

    /// After a failure: attempts that begin before this position would fail too.
    const uint8_t* failedUpTo() const { return failedUpTo_; }

private:
    struct Registers {
        const uint8_t* p;
        int32_t pc;
        int32_t levels;
        Record* top; // the newest record; the first one lies behind a spare place
    };

    enum class Step : uint8_t { go, fail, full, done };

    struct Run {
        const uint8_t* lowest; // where the least number of repetitions ends; null when there are fewer
        const uint8_t* end;
    };

    /// Where the alternatives to try begin: the first one behind `first`, the others behind `next` and the
    /// markers linked to it.
    struct Ways {
        int32_t first; // noAlternative when there are none
        int32_t next;
    };

    Outcome matchOnLargerStack();
    Outcome run(const Registers& from);
    template <class Part>
    TAV_HOT auto aside(Registers& r, Part part);
    Outcome resume() { return run(saved_); }
    std::size_t nextCapacity() const;
    void useStack(Record* memory, std::size_t capacity, std::size_t used);
    bool beginAlternatives(Registers& r) const;

    void clearCaptures() {
        for (int32_t slot = 0; slot < plan_.program.groupCount; ++slot)
            captures_[slot] = {0, -1};
    }

    /// Undoing may briefly need one record more than was there.
    static Record* endOf(Record* memory, std::size_t capacity) { return memory + capacity - 2; }

    TAV_HOT Step step(Registers& r, const Node& node);
    TAV_HOT Step classRun(Registers& r, const Node& node);
    TAV_HOT Step takenRun(Registers& r, const Node& node);
    TAV_HOT Step takenBytes(Registers& r, const Node& node);
    TAV_HOT const uint8_t* runEnd(const Node& node, const uint8_t* p, const uint8_t* stop) const;
    TAV_HOT Run takeBytes(const Node& node, int32_t pc, const uint8_t* p) const;
    TAV_HOT Step takeRunOf(Registers& r, const Node& node, const Run& run);
    TAV_HOT Step greedy(Registers& r, const Node& node);
    TAV_HOT Step lazy(Registers& r, const Node& node);
    TAV_HOT Step advanceLazily(Registers& r, const Node& node, int32_t pc, int32_t left);
    TAV_HOT Step enterGroup(Registers& r, const Node& node);
    TAV_HOT Step leaveGroup(Registers& r, const Node& node);
    TAV_HOT Step enterLoop(Registers& r, const Node& node);
    TAV_HOT Step leaveLoop(Registers& r, const Node& node);
    TAV_HOT Step endIteration(Registers& r, const Node& node, int32_t began, int32_t count);
    Step enterLook(Registers& r, const Node& node);
    TAV_HOT Step enterAtomic(Registers& r, const Node& node);
    Step leaveBody(Registers& r, const Node& node);
    Step leaveAtomicIteration(Registers& r, const Node& closing, Record* iteration);
    TAV_HOT bool beginIteration(Registers& r, const Node& node, int32_t opener, int32_t count);
    TAV_HOT bool beginIteration(Registers& r, const Node& node, int32_t opener, int32_t count,
                                const Ways& ways);

    TAV_HOT Ways waysAt(const uint8_t* p, const Node& opener, int32_t pc, int32_t marker) const;
    TAV_HOT int32_t wayFrom(int32_t marker, const uint8_t* p) const;
    TAV_HOT bool mayBegin(const Node& node, const uint8_t* p) const;

    TAV_HOT bool backtrack(Registers& r);
    TAV_HOT bool nextAlternative(Registers& r);
    TAV_HOT bool giveBack(Registers& r);
    TAV_HOT bool takeAnother(Registers& r);
    TAV_HOT bool retryIteration(Registers& r);
    TAV_HOT bool enterLazily(Registers& r);
    TAV_HOT bool iterateLazily(Registers& r);
    bool bodyFailed(Registers& r);
    bool giveUpIteration(Registers& r);

    TAV_HOT bool hasFailed(const Registers& r, int32_t pc, const uint8_t* p, int32_t levels);
    TAV_HOT void remember(const Registers& r, int32_t pc, int32_t at, int32_t levels);
    TAV_HOT void rememberPart(const Registers& r, int32_t pc, int32_t at, int32_t levels);
    uint64_t stateOf(int32_t pc, int32_t at) const;
    TAV_HOT void runOutOfLevels(const Registers& r);
    TAV_HOT bool isTired();
    const uint8_t* skipFailedAhead(const Node& node, int32_t pc, const uint8_t* p, int32_t most) const;
    const uint8_t* skipFailed(const Node& node, int32_t pc, const uint8_t* p, const uint8_t* lowest) const;

    TAV_HOT void restoreSlot(const Record& record);
    TAV_HOT void undo(Record*& top);
    void dropTo(Registers& r, Record* mark);
    void keepSlots(Registers& r, Record* base);

    TAV_HOT Run takeRun(const Node& node, int32_t pc, const uint8_t* p) const;
    Run takeClass(const Node& node, int32_t pc, const uint8_t* p) const;
    TAV_HOT const uint8_t* consume(const Node& node, int32_t pc, const uint8_t* p) const;
    TAV_HOT const uint8_t* wideEnd(const Node& node, int32_t pc, const uint8_t* p) const;
    TAV_HOT bool hasWide(const Node& node, int32_t pc, const Utf8Sequence& character) const;
    bool testsTrue(const Node& node, int32_t pc, const Utf8Sequence& character) const;
    const uint8_t* consumeWide(const Node& node, int32_t pc, const uint8_t* p) const;
    const uint8_t* consumeReference(const Node& node, const uint8_t* p) const;
    const uint8_t* lastFollowed(const Node& node, const uint8_t* q, const uint8_t* lowest) const;
    TAV_HOT const uint8_t* stepBack(const Node& node, const uint8_t* p, const uint8_t* lowest) const;
    TAV_HOT bool matchesString(const Node& node, int32_t pc, const uint8_t* p) const;
    bool holds(const Node& node, const uint8_t* p) const;
    bool isCondition(int32_t look) const;
    int32_t closeOf(int32_t opener) const { return opener + plan_.program.code[opener].b + 1; }
    TAV_HOT bool mayEndAt(const uint8_t* p, int32_t next) const;

    int32_t offset(const uint8_t* p) const { return static_cast<int32_t>(p - begin_); }
    bool hasRoom(const Registers& r, std::ptrdiff_t records) const { return stackEnd_ - r.top > records; }
    Bracket& bracket(const Node& node) const { return plan_.brackets[node.index]; }

    const Plan& plan_;
    Nodes nodes_;
    const uint8_t* begin_;
    const uint8_t* end_;
    const uint8_t* limit_;
    const uint8_t*
        lastBlock_; // where the last sixteen bytes begin that may be read; null when there are fewer
    const uint8_t* start_ = nullptr;
    const uint8_t* matchEnd_ = nullptr;
    const uint8_t* failedUpTo_ = nullptr;
    Capture* captures_;
    int32_t matchLimit_;
    int64_t patience_ = 0;
    bool notEmpty_ = false;
    bool capturesDirty_ = true;
    Registers saved_;
    Record* stack_;
    Record* stackEnd_;

    static constexpr std::size_t firstCapacity = 256;
    Record firstStack_[firstCapacity];
};

extern template class Machine<PlannedNodes>;
extern template class Machine<DirectNodes>;
extern template class Machine<Remembering<PlannedNodes>>;
extern template class Machine<Remembering<DirectNodes>>;

#undef TAV_HOT

} // namespace tav::regex
