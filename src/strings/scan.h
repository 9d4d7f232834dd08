// The one loop behind every search: walk over positions 0 to count - 1, forward or backward, sixteen bytes
// at a time, until a test holds.
//
// A test is a function of a block. It loads what it needs through the block (`block.load(text)` gives the
// elements of `text` at the block's positions, and a test may load from several texts) and answers with a
// vector whose lanes are all ones where its condition holds. Seek tells whether the walk looks for positions
// where the condition holds (hit) or where it does not (miss). What the walk finds goes to `accept`, which
// may refuse a position; then the walk goes on.
//
// No byte outside the positions is read: a last, partial block overlaps the one before it, and a count
// below one block is covered by two overlapping smaller loads.
#pragma once

#include "base/vector.h"

#include <cstring>

namespace tav {

enum class Seek { hit, miss };
enum class Way { forward, backward };

namespace scanning {

/// Sixteen bytes of neighbouring positions.
template <class E>
struct WholeBlock {
    int64_t at;

    Vector<E> load(const E* text) const { return Vector<E>::load(text + at); }
    int64_t position(int32_t lane) const { return at + lane; }
    static LaneMask<E> valid(LaneMask<E> mask) { return mask; }
};

/// All positions of a text of 8 to 15 bytes: its first and its last 8 bytes, which may overlap. A position
/// that appears twice is harmless: both lanes give the same answer.
template <class E>
struct HalfBlocks {
    static constexpr int32_t half = 8 / sizeof(E);
    int32_t count;

    Vector<E> load(const E* text) const {
        const __m128i head = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(text));
        const __m128i tail = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(text + count - half));
        return {_mm_unpacklo_epi64(head, tail)};
    }
    int64_t position(int32_t lane) const { return lane < half ? lane : lane - 2 * half + count; }
    static LaneMask<E> valid(LaneMask<E> mask) { return mask; }
};

/// The same for 4 to 7 bytes.
template <class E>
struct QuarterBlocks {
    static constexpr int32_t quarter = 4 / sizeof(E);
    int32_t count;

    Vector<E> load(const E* text) const {
        return {_mm_unpacklo_epi32(word(text), word(text + count - quarter))};
    }
    int64_t position(int32_t lane) const { return lane < quarter ? lane : lane - 2 * quarter + count; }
    static LaneMask<E> valid(LaneMask<E> mask) { return mask.below(2 * quarter); }

private:
    static __m128i word(const E* from) {
        int32_t bits;
        std::memcpy(&bits, from, sizeof bits);
        return _mm_cvtsi32_si128(bits);
    }
};

/// The same for 1 to 3 bytes (one 16-bit unit): first, middle and last element.
template <class E>
struct SingleElements {
    int32_t count;

    Vector<E> load(const E* text) const {
        if constexpr (sizeof(E) == 2) return {_mm_cvtsi32_si128(text[0])};
        return {_mm_cvtsi32_si128(text[0] | text[count / 2] << 8 | text[count - 1] << 16)};
    }
    int64_t position(int32_t lane) const { return lane == 0 ? 0 : lane == 1 ? count / 2 : count - 1; }
    static LaneMask<E> valid(LaneMask<E> mask) { return mask.below(sizeof(E) == 2 ? 1 : 3); }
};

template <Seek seek, class E>
LaneMask<E> sought(Vector<E> holds) {
    return seek == Seek::hit ? holds.lanes() : holds.lanes().inverse();
}

/// Whether any of the four neighbouring blocks from `at` on has a sought lane.
template <Seek seek, class E, class Test>
bool anyInFour(int64_t at, const Test& test) {
    constexpr int64_t size = Vector<E>::size;
    const Vector<E> a = test(WholeBlock<E>{at}), b = test(WholeBlock<E>{at + size});
    const Vector<E> c = test(WholeBlock<E>{at + 2 * size}), d = test(WholeBlock<E>{at + 3 * size});
    if constexpr (seek == Seek::hit) return ((a | b) | (c | d)).lanes().any();
    return !((a & b) & (c & d)).lanes().all();
}

template <Seek seek, class E, class Block, class Test, class Accept>
int64_t firstInBlock(Block block, const Test& test, Accept& accept) {
    for (LaneMask<E> mask = Block::valid(sought<seek, E>(test(block))); mask.any();
         mask = mask.withoutFirst()) {
        const int64_t position = block.position(mask.first());
        if (accept(position)) return position;
    }
    return -1;
}

template <Seek seek, class E, class Block, class Test, class Accept>
int64_t lastInBlock(Block block, const Test& test, Accept& accept) {
    for (LaneMask<E> mask = Block::valid(sought<seek, E>(test(block))); mask.any();
         mask = mask.withoutLast()) {
        const int64_t position = block.position(mask.last());
        if (accept(position)) return position;
    }
    return -1;
}

/// Hands a count below one whole block to the fitting kind of block.
template <class E, class InBlock>
int64_t inShortText(int32_t count, const InBlock& inBlock) {
    const int32_t bytes = count * static_cast<int32_t>(sizeof(E));
    if (bytes >= 8) return inBlock(HalfBlocks<E>{count});
    if (bytes >= 4) return inBlock(QuarterBlocks<E>{count});
    if (bytes > 0) return inBlock(SingleElements<E>{count});
    return -1;
}

inline constexpr auto acceptAny = [](int64_t) { return true; };

} // namespace scanning

/// The first accepted position, or -1. `rough` is a cheaper test that holds (hit) or fails (miss) wherever
/// `exact` does; where it finds nothing in four blocks, `exact` is not asked.
template <Seek seek, class E, class Rough, class Exact, class Accept>
int64_t scanForward(int64_t count, const Rough& rough, const Exact& exact, Accept accept) {
    using namespace scanning;
    constexpr int64_t size = Vector<E>::size;
    if (count < size) {
        return inShortText<E>(static_cast<int32_t>(count),
                              [&](auto block) { return firstInBlock<seek, E>(block, exact, accept); });
    }
    int64_t at = 0;
    while (at + 4 * size <= count) {
        const int64_t next = at + 4 * size;
        if (anyInFour<seek, E>(at, rough)) {
            for (; at < next; at += size) {
                const int64_t found = firstInBlock<seek, E>(WholeBlock<E>{at}, exact, accept);
                if (found >= 0) return found;
            }
        }
        at = next;
    }
    for (; at + size <= count; at += size) {
        const int64_t found = firstInBlock<seek, E>(WholeBlock<E>{at}, exact, accept);
        if (found >= 0) return found;
    }
    return at == count ? -1 : firstInBlock<seek, E>(WholeBlock<E>{count - size}, exact, accept);
}

/// The last accepted position, or -1; otherwise as scanForward.
template <Seek seek, class E, class Rough, class Exact, class Accept>
int64_t scanBackward(int64_t count, const Rough& rough, const Exact& exact, Accept accept) {
    using namespace scanning;
    constexpr int64_t size = Vector<E>::size;
    if (count < size) {
        return inShortText<E>(static_cast<int32_t>(count),
                              [&](auto block) { return lastInBlock<seek, E>(block, exact, accept); });
    }
    int64_t end = count;
    while (end >= 4 * size) {
        const int64_t next = end - 4 * size;
        if (anyInFour<seek, E>(next, rough)) {
            for (; end > next; end -= size) {
                const int64_t found = lastInBlock<seek, E>(WholeBlock<E>{end - size}, exact, accept);
                if (found >= 0) return found;
            }
        }
        end = next;
    }
    for (; end >= size; end -= size) {
        const int64_t found = lastInBlock<seek, E>(WholeBlock<E>{end - size}, exact, accept);
        if (found >= 0) return found;
    }
    return end == 0 ? -1 : lastInBlock<seek, E>(WholeBlock<E>{0}, exact, accept);
}

/// The first and the last position at which `test` has the sought outcome, or -1.
template <Seek seek, class E, class Test>
int64_t scanForward(int64_t count, const Test& test) {
    return scanForward<seek, E>(count, test, test, scanning::acceptAny);
}
template <Seek seek, class E, class Test>
int64_t scanBackward(int64_t count, const Test& test) {
    return scanBackward<seek, E>(count, test, test, scanning::acceptAny);
}

/// The same for a direction that a template chooses.
template <Way way, Seek seek, class E, class Rough, class Exact, class Accept>
int64_t scan(int64_t count, const Rough& rough, const Exact& exact, Accept accept) {
    if constexpr (way == Way::forward) return scanForward<seek, E>(count, rough, exact, accept);
    return scanBackward<seek, E>(count, rough, exact, accept);
}
template <Way way, Seek seek, class E, class Test>
int64_t scan(int64_t count, const Test& test) {
    return scan<way, seek, E>(count, test, test, scanning::acceptAny);
}

} // namespace tav
