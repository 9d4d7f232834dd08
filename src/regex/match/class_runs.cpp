#include "regex/match/class_runs.h"

#include "regex/match/first_bytes.h"
#include "regex/match/range_test.h"

#include <bit>

namespace tav::regex {

namespace {

/// Do the class's members among single bytes tell all: does it take either no byte from 0x80 up or every one?
bool speaksOfBytes(const Plan& plan, const Node& node) {
    if (node.has(traitSingle)) return true;
    if (!node.has(traitMultiAll) || node.min > 1) return false;
    return !plan.members[node.index].complement().meets(ByteSet::between(0x80, 0xFF));
}

/// Gathers the stretches from blocks of members.
class Stretches {
public:
    Stretches(int32_t minimum, Results& results) : minimum_(minimum), results_(results) {}

    /// Takes the members among the 64 bytes at `block`; false when the results are full.
    bool take(const uint8_t* block, uint64_t members) {
        int from = 0;
        for (;;) {
            const uint64_t sought = (start_ == nullptr ? members : ~members) & (~uint64_t{0} << from);
            if (sought == 0) return true;
            from = std::countr_zero(sought);
            if (start_ == nullptr) {
                start_ = block + from;
            } else if (!end(block + from)) {
                return false;
            }
        }
    }

    /// The end of the stretch that has begun, if one has.
    bool end(const uint8_t* p) {
        const uint8_t* const start = start_;
        start_ = nullptr;
        if (start != nullptr && p - start >= minimum_) results_.add(start, static_cast<int32_t>(p - start));
        return !results_.isFull();
    }

private:
    int32_t minimum_;
    Results& results_;
    const uint8_t* start_ = nullptr;
};

uint64_t among64(const uint8_t* p, const RangeTest& test) {
    uint64_t members = 0;
    for (int i = 0; i < 4; ++i)
        members |= static_cast<uint64_t>(test(Vector<uint8_t>::load(p + 16 * i)).lanes().bits) << (16 * i);
    return members;
}

uint64_t membersAmong(const uint8_t* p, int64_t count, const uint8_t (&table)[256]) {
    uint64_t members = 0;
    for (int64_t i = 0; i < count; ++i)
        members |= static_cast<uint64_t>(table[p[i]] != 0) << i;
    return members;
}

/// The run that every attempt begins with, when nothing but opened groups stands before it; else null.
const Node* firstRun(const Plan& plan) {
    if (plan.firstAlternative != noNode || plan.start != StartFilter::prefix) return nullptr;
    int32_t pc = 0;
    while (opensOnce(plan, pc))
        ++pc;
    const Node& node = plan.nodes[pc];
    const bool fits =
        isGreedy(node) && node.item == Item::charClass && node.min >= 1 && node.max == unboundedRepeat;
    return fits && speaksOfBytes(plan, node) ? &node : nullptr;
}

/// What follows the run: behind an atomic group's end too, when the run is the whole group.
First followerOf(const Plan& plan, const Node& run) {
    int32_t next = run.next;
    const Node& node = plan.nodes[next];
    if (node.kind == Kind::bodyEnd && plan.nodes[node.other].kind == Kind::atomic) next = node.next;
    return firstBytesFrom(plan, next);
}

} // namespace

void findClassRun(Plan& plan) {
    plan.isClassRun = false;
    const Node* node = firstRun(plan);
    if (node == nullptr) return;
    ByteSet members;
    addItem(plan, *node, members);
    const ByteRanges ranges = ByteRanges::covering(members, ByteRanges::maximum);
    plan.classRun.set(ranges);
    plan.classRunMinimum = node->min;
    if (!ranges.exact || ranges.count == 0) return;
    if (node == plan.nodes && node->next == plan.program.length) {
        plan.isClassRun = plan.program.groupCount == 1;
        return;
    }
    const First follower = followerOf(plan, *node);
    if (!node->has(traitLeading) || follower.canBeEmpty || follower.bytes.meets(members)) return;
    const ByteRanges follows = ByteRanges::covering(follower.bytes, ByteRanges::maximum);
    if (follows.count == 0) return;
    plan.runFollows.set(follows);
    plan.start = StartFilter::classRun;
}

const uint8_t* beginningOfRun(const Plan& plan, const uint8_t* floor, const uint8_t* end) {
    const uint8_t* start = end;
    while (start != floor && plan.prefix.table[0][start[-1]])
        --start;
    return end - start >= plan.classRunMinimum ? start : nullptr;
}

PositionBlock nextRunEnd(const Plan& plan, const uint8_t* begin, const uint8_t* p, const uint8_t* last) {
    using Bytes = Vector<uint8_t>;
    if (p == begin) return {p, p + 1, 0}; // no run ends before the first byte
    const RangeTest isMember(plan.classRun);
    const RangeTest mayFollow(plan.runFollows);
    return nextBlock(
        p, last, begin + 1,
        [&](const uint8_t* q) { return isMember(Bytes::load(q - 1)) & mayFollow(Bytes::load(q)); },
        [&](const uint8_t* q) { return plan.prefix.table[0][q[-1]] != 0 && plan.prefix.table[0][*q] == 0; });
}

void storeClassRuns(const Plan& plan, const Subject& subject, Results& results) {
    const RangeTest test(plan.classRun);
    Stretches stretches(plan.classRunMinimum, results);
    const uint8_t* p = subject.begin;
    for (; subject.end - p >= 64; p += 64)
        if (!stretches.take(p, among64(p, test))) return;
    const int64_t left = subject.end - p;
    if (left > 0 && !stretches.take(p, membersAmong(p, left, plan.prefix.table[0]))) return;
    stretches.end(subject.end);
}

} // namespace tav::regex
