#include "regex/match/starts.h"

#include "regex/match/characters.h"
#include "regex/match/class_runs.h"
#include "regex/match/range_test.h"
#include "strings/find.h"
#include "strings/scan.h"

namespace tav::regex {

const uint8_t* Starts::from(const uint8_t* p, const uint8_t* end) const {
    if (plan_.mode != StartMode::every) return rulesOut(p, end) ? after(p, p, end) : p;
    switch (plan_.start) {
    case StartFilter::prefix:
        return nextPrefix(p, end);
    case StartFilter::classRun:
        return nextClassRun(plan_, p, end);
    case StartFilter::literal:
        return nextLiteral(p, end);
    case StartFilter::lineStart:
        return nextLineStart(p, end);
    case StartFilter::none:
        break;
    }
    return p;
}

const uint8_t* Starts::after(const uint8_t* p, const uint8_t* known, const uint8_t* end) const {
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
    return plan_.start == StartFilter::prefix && (end - p < plan_.prefix.length || !plan_.prefix.accepts(p));
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

const uint8_t* Starts::nextPrefix(const uint8_t* p, const uint8_t* end) const {
    constexpr std::ptrdiff_t near = 8; // a scan costs more to set up than to look at these one by one
    const Prefix& prefix = plan_.prefix;
    const uint8_t* const last = end - prefix.length;
    const uint8_t* const stop = prefix.anchors == 0 || last - p < near ? last : p + near;
    const uint8_t* q = p;
    for (; q <= stop; ++q)
        if (prefix.accepts(q) && isStart(q, p)) return q;
    return q <= last ? scanForPrefix(q, p, end) : nullptr;
}

namespace {

/// Which of sixteen bytes are one value?
struct ValueTest {
    Vector<uint8_t> value;
    explicit ValueTest(uint8_t byte) : value(Vector<uint8_t>::splat(byte)) {}
    Vector<uint8_t> operator()(Vector<uint8_t> bytes) const { return bytes.equal(value); }
};

/// The first accepted one of `count` positions from `p` on, where the anchors' bytes stand.
template <class Test, class Accept>
int64_t scanForAnchors(const Prefix& prefix, const uint8_t* p, int64_t count, const Test& rarest,
                       Accept accept) {
    const uint8_t* const rarestText = p + prefix.offset[0];
    const auto rough = [&](const auto& block) { return rarest(block.load(rarestText)); };
    if (prefix.anchors == 1) return scanForward<Seek::hit, uint8_t>(count, rough, rough, accept);
    const RangeTest second(prefix.ranges[1]);
    const uint8_t* const secondText = p + prefix.offset[1];
    const auto both = [&](const auto& block) { return rough(block) & second(block.load(secondText)); };
    return scanForward<Seek::hit, uint8_t>(count, both, both, accept);
}

} // namespace

const uint8_t* Starts::scanForPrefix(const uint8_t* p, const uint8_t* floor, const uint8_t* end) const {
    const Prefix& prefix = plan_.prefix;
    const ByteRanges& rarest = prefix.ranges[0];
    const int64_t count = end - p - prefix.length + 1;
    const auto accept = [&](int64_t at) { return prefix.accepts(p + at) && isStart(p + at, floor); };
    const int64_t found = rarest.isOneValue()
                              ? scanForAnchors(prefix, p, count, ValueTest(rarest.first[0]), accept)
                              : scanForAnchors(prefix, p, count, RangeTest(rarest), accept);
    return found < 0 ? nullptr : p + found;
}

const uint8_t* Starts::nextLiteral(const uint8_t* p, const uint8_t* end) const {
    const Instruction& literal = plan_.program.code[0];
    for (const uint8_t* q = p; q < end; ++q) {
        const auto left = static_cast<int32_t>(end - q);
        const int32_t at = literal.op == OP_CHAR
                               ? indexOf(q, left, static_cast<uint8_t>(literal.a))
                               : indexOf(q, left, static_cast<const uint8_t*>(literal.text), literal.b);
        if (at < 0) return nullptr;
        q += at;
        if (isStart(q, p)) return q;
    }
    return nullptr;
}

} // namespace tav::regex
