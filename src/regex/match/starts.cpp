#include "regex/match/starts.h"

#include "regex/match/characters.h"
#include "regex/match/class_runs.h"
#include "regex/match/range_test.h"
#include "strings/find.h"

#include <bit>

namespace tav::regex {

const uint8_t* Starts::from(const uint8_t* p, const uint8_t* end) {
    if (plan_.mode != StartMode::every) return rulesOut(p, end) ? after(p, p, end) : p;
    switch (plan_.start) {
    case StartFilter::prefix:
        return nextPrefix(p, end);
    case StartFilter::classRun:
        return nextClassRun(p, end);
    case StartFilter::innerLiteral:
        return innerLiteral_.next(p, end);
    case StartFilter::lineStart:
        return nextLineStart(p, end);
    case StartFilter::none:
        break;
    }
    return p;
}

const uint8_t* Starts::after(const uint8_t* p, const uint8_t* known, const uint8_t* end) {
    if (plan_.mode == StartMode::only || p >= end) return nullptr;
    if (plan_.mode == StartMode::lines) {
        do
            p = nextLine(p, end);
        while (p != nullptr && p != end && rulesOut(p, end));
        return p != nullptr && rulesOut(p, end) ? nullptr : p;
    }
    // Begun inside a character, the same bytes may make other characters.
    const bool skip = p < known && (wholeCharacters_ || plan_.leadingIsBytewise);
    p = skip ? known : advance(p);
    return p <= end ? from(p, end) : nullptr;
}

/// Does the prefix rule out a match at `p`?
bool Starts::rulesOut(const uint8_t* p, const uint8_t* end) const {
    return plan_.start == StartFilter::prefix && (end - p < plan_.prefix.length || !mayBegin(p));
}

bool Starts::mayBegin(const uint8_t* q) const {
    const Prefix& prefix = plan_.prefix;
    if (prefix.afterNonWord && q != subject_.begin && isWordByte(q[-1])) return false;
    return prefix.accepts(q);
}

const uint8_t* Starts::advance(const uint8_t* p) const {
    return wholeCharacters_ ? p + unicode::decodeUtf8(p, subject_.limit).length : p + 1;
}

/// Can an attempt begin at `q`, given that one could begin at `floor`, at or before it?
bool Starts::isStart(const uint8_t* q, const uint8_t* floor) const {
    if (!wholeCharacters_ || q == subject_.limit || (*q & 0xC0) != 0x80) return true;
    return previousCharacter(q + 1, floor, subject_.limit) == q;
}

/// The position behind the next line feed from `p` on, or the very end.
const uint8_t* Starts::nextLine(const uint8_t* p, const uint8_t* end) const {
    const int32_t lineFeed = indexOf<uint8_t>(p, static_cast<int32_t>(end - p), '\n');
    if (lineFeed >= 0) return p + lineFeed + 1;
    return isStart(end, p) ? end : nullptr;
}

const uint8_t* Starts::nextLineStart(const uint8_t* p, const uint8_t* end) const {
    if (p == subject_.begin || p[-1] == '\n') return p;
    const int32_t lineFeed = indexOf<uint8_t>(p, static_cast<int32_t>(end - p), '\n');
    return lineFeed < 0 ? nullptr : p + lineFeed + 1;
}

/// The first accepted candidate from `p` on. `fill` gives the first block with candidates from some position
/// on; what is left of a block serves the calls that follow.
template <class Fill, class Accept>
const uint8_t* Starts::next(const uint8_t* p, const uint8_t* last, Fill fill, Accept accept) {
    if (p < handedOut_ || p > block_.end || last != blockLast_) {
        block_ = {p, p, 0};
        blockLast_ = last;
    } else if (p > block_.begin) {
        const std::ptrdiff_t passed = p - block_.begin;
        block_.bits &= passed < 64 ? ~uint64_t{0} << passed : 0;
    }
    for (;;) {
        for (; block_.bits != 0; block_.bits &= block_.bits - 1) {
            const uint8_t* const found = accept(block_.begin + std::countr_zero(block_.bits));
            if (found == nullptr) continue;
            handedOut_ = block_.begin + std::countr_zero(block_.bits) + 1;
            block_.bits &= block_.bits - 1;
            return found;
        }
        handedOut_ = block_.end;
        if (block_.end > last) return nullptr;
        block_ = fill(block_.end, last);
    }
}

const uint8_t* Starts::nextPrefix(const uint8_t* p, const uint8_t* end) {
    if (plan_.prefix.anchors == 0) return nullptr;
    return next(
        p, end - plan_.prefix.length,
        [&](const uint8_t* from, const uint8_t* last) { return prefixBlock(from, last); },
        [&](const uint8_t* q) { return mayBegin(q) && isStart(q, p) ? q : nullptr; });
}

PositionBlock Starts::prefixBlock(const uint8_t* p, const uint8_t* last) const {
    using Bytes = Vector<uint8_t>;
    const Prefix& prefix = plan_.prefix;
    const std::ptrdiff_t rarer = prefix.offset[0], other = prefix.offset[1];
    const auto blockBy = [&](const auto& test) {
        return nextBlock(p, last, subject_.begin, test, [&](const uint8_t* q) { return mayBegin(q); });
    };
    const auto blockWith = [&](const auto& first) {
        if (prefix.anchors == 1)
            return blockBy([&](const uint8_t* q) { return first(Bytes::load(q + rarer)); });
        const RangeTest second(prefix.ranges[1]);
        return blockBy(
            [&](const uint8_t* q) { return first(Bytes::load(q + rarer)) & second(Bytes::load(q + other)); });
    };
    if (prefix.pairs.count > 0) return blockBy(PairTest(prefix.pairs));
    if (prefix.isOneValue) return blockWith(ValueTest(prefix.value));
    const RangeTest first(prefix.ranges[0]);
    if (!prefix.afterNonWord) return blockWith(first);
    if (p == subject_.begin) return {p, p + 1, mayBegin(p)};
    const WordTest word;
    return nextBlock(
        p, last, subject_.begin + 1,
        [&](const uint8_t* q) { return first(Bytes::load(q + rarer)).without(word(Bytes::load(q - 1))); },
        [&](const uint8_t* q) { return mayBegin(q); });
}

/// The candidates are the ends of runs; each leads back to the beginning of its run.
const uint8_t* Starts::nextClassRun(const uint8_t* p, const uint8_t* end) {
    const auto accept = [&](const uint8_t* q) { return beginningOfRun(plan_, p, q); };
    const auto fill = [&](const uint8_t* from, const uint8_t* last) {
        return nextRunEnd(plan_, subject_.begin, from, last);
    };
    if (p == end) return nullptr;
    const uint8_t(&isMember)[256] = plan_.prefix.table[0];
    const bool runBegins = isMember[*p] && (p == subject_.begin || !isMember[p[-1]]);
    if (runBegins && plan_.classRunMinimum == 1) return p; // often this run is the one sought
    const uint8_t* const start = next(p, end - 1, fill, accept);
    return start != nullptr ? start : beginningOfRun(plan_, p, end);
}

} // namespace tav::regex
