#include "regex/match/inner_literal.h"

#include "strings/find.h"

namespace tav::regex {

namespace {

/// The place of the run that every attempt begins with.
int32_t leadingRun(const Plan& plan) {
    int32_t pc = 0;
    while (opensOnce(plan, pc) || plan.nodes[pc].kind == Kind::assertion)
        pc = isBracket(plan.program.code[pc].op) ? pc + 1 : plan.nodes[pc].next;
    return pc;
}

/// Are there so many members that looking for one does not pay?
bool isCommon(const ByteSet& members) {
    constexpr int32_t common = 1000;
    constexpr int32_t ranges = 8;
    return ByteRanges::covering(members, ranges).commonness() >= common;
}

} // namespace

void findInnerLiteral(Plan& plan) {
    if (plan.firstAlternative != noNode || plan.mode != StartMode::every) return;
    if (plan.start == StartFilter::classRun || plan.isClassRun) return;
    const Node& run = plan.nodes[leadingRun(plan)];
    if (!isGreedy(run) || run.item != Item::charClass || run.max != unboundedRepeat || run.min > 1) return;
    const ByteSet& members = plan.members[run.index];
    const bool takesAllBeyondAscii =
        run.has(traitMultiAll) && !members.complement().meets(ByteSet::between(0x80, 0xFF));
    if ((!run.has(traitSingle) && !takesAllBeyondAscii) || !isCommon(members)) return;
    if (plan.start == StartFilter::lineStart && members.has('\n')) return;
    int32_t next = run.next;
    while (plan.nodes[next].kind == Kind::groupEnd)
        next = plan.nodes[next].next;
    const Node& literal = plan.nodes[next];
    if (literal.kind != Kind::byte && (literal.kind != Kind::string || literal.min < 1)) return;
    plan.innerLiteral = next;
    plan.innerMinimum = run.min < 0 ? 0 : run.min;
    plan.innerRun = run.index;
    plan.start = StartFilter::innerLiteral;
}

const uint8_t* InnerLiteralStarts::literalFrom(const uint8_t* p, const uint8_t* end) {
    if (end == end_ && p >= searched_ && p <= found_) return found_;
    const Node& node = plan_.nodes[plan_.innerLiteral];
    const auto left = static_cast<int32_t>(end - p);
    const auto* const text = static_cast<const uint8_t*>(plan_.program.code[plan_.innerLiteral].text);
    const int32_t at =
        node.kind == Kind::byte ? indexOf(p, left, node.byte) : indexOf(p, left, text, node.min);
    searched_ = p;
    found_ = at < 0 ? end : p + at;
    end_ = end;
    return found_;
}

const uint8_t* InnerLiteralStarts::next(const uint8_t* p, const uint8_t* end) {
    const ByteSet& members = plan_.members[plan_.innerRun];
    for (const uint8_t* from = p; end - from > plan_.innerMinimum;) {
        const uint8_t* const literal = literalFrom(from + plan_.innerMinimum, end);
        if (literal == end) return nullptr;
        const uint8_t* start = literal;
        while (start != p && members.has(start[-1]))
            --start;
        if (literal - start >= plan_.innerMinimum) return start;
        from = literal;
    }
    return nullptr;
}

} // namespace tav::regex
