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
    for (const uint8_t bits : plan.malformed[node.index])
        if (bits != 0xFF) return false;
    return true;
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

uint64_t membersAmong64(const uint8_t* p, const RangeTest& test) {
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

} // namespace

void findClassRun(Plan& plan) {
    const Node& node = plan.nodes[0];
    plan.isClassRun = false;
    if (!isGreedy(node) || node.item != Item::charClass || node.min < 1 || node.max != unboundedRepeat)
        return;
    if (node.next != plan.program.length || plan.program.groupCount != 1 || plan.firstAlternative != noNode)
        return;
    if (plan.start != StartFilter::prefix || !speaksOfBytes(plan, node)) return;
    ByteSet members;
    addItem(plan, node, members);
    plan.classRun = ByteRanges::covering(members);
    plan.isClassRun = plan.classRun.exact;
}

void storeClassRuns(const Plan& plan, const Subject& subject, Results& results) {
    const RangeTest test(plan.classRun);
    Stretches stretches(plan.nodes[0].min, results);
    const uint8_t* p = subject.begin;
    for (; subject.end - p >= 64; p += 64)
        if (!stretches.take(p, membersAmong64(p, test))) return;
    const int64_t left = subject.end - p;
    if (left > 0 && !stretches.take(p, membersAmong(p, left, plan.prefix.table[0]))) return;
    stretches.end(subject.end);
}

} // namespace tav::regex
