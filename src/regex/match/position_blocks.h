// Positions of a text for which a test holds, as bits of up to 64 neighbouring positions at a time.
//
// A test is a function of an address that answers for the sixteen positions from there on, with a vector
// whose lanes are all ones where it holds. Where fewer than sixteen positions are left, the last sixteen are
// asked again, or the positions one by one.
#pragma once

#include "base/vector.h"

namespace tav::regex {

struct PositionBlock {
    const uint8_t* begin = nullptr;
    const uint8_t* end = nullptr; // the positions before it are decided
    uint64_t bits = 0;            // bit i: the test holds at begin + i
};

namespace blocks {

template <class Test>
uint64_t sixteen(const uint8_t* p, const Test& test) {
    return test(p).lanes().bits;
}

} // namespace blocks

/// The first block from `p` on with such a position, `last` being the last position; when there is none, an
/// empty one behind `last`. Vectors may be loaded from `floor` on; `one` asks for a single position.
template <class Test, class One>
PositionBlock nextBlock(const uint8_t* p, const uint8_t* last, const uint8_t* floor, const Test& test,
                        One one) {
    using blocks::sixteen;
    if (last - p >= 15) {
        if (const uint64_t bits = sixteen(p, test)) return {p, p + 16, bits};
        p += 16;
        for (; last - p >= 63; p += 64) {
            const auto a = test(p), b = test(p + 16), c = test(p + 32), d = test(p + 48);
            if (!((a | b) | (c | d)).lanes().any()) continue;
            const uint64_t low = a.lanes().bits | b.lanes().bits << 16;
            const uint64_t high = c.lanes().bits | d.lanes().bits << 16;
            return {p, p + 64, low | high << 32};
        }
        for (; last - p >= 15; p += 16)
            if (const uint64_t bits = sixteen(p, test)) return {p, p + 16, bits};
    }
    if (p > last) return {p, p, 0};
    if (last - floor >= 15) {
        const uint8_t* const block = last - 15;
        return {p, last + 1, sixteen(block, test) >> (p - block)};
    }
    uint64_t bits = 0;
    for (const uint8_t* q = p; q <= last; ++q)
        bits |= static_cast<uint64_t>(one(q)) << (q - p);
    return {p, last + 1, bits};
}

} // namespace tav::regex
