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

#include "strings/blocks.h"

namespace tav {

enum class Seek { hit, miss };
enum class Way { forward, backward };

namespace scanning {

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
    if constexpr (seek == Seek::hit) {
        return ((a | b) | (c | d)).lanes().any();
    } else {
        return !((a & b) & (c & d)).lanes().all();
    }
}

template <Seek seek, class E, class Block, class Rough, class Exact, class Accept>
int64_t firstInBlock(Block block, const Rough& rough, const Exact& exact, Accept& accept) {
    if (!sought<seek, E>(rough(block)).any()) return -1;
    for (LaneMask<E> mask = Block::valid(sought<seek, E>(exact(block))); mask.any();
         mask = mask.withoutFirst()) {
        const int64_t position = block.position(mask.first());
        if (accept(position)) return position;
    }
    return -1;
}

template <Seek seek, class E, class Block, class Rough, class Exact, class Accept>
int64_t lastInBlock(Block block, const Rough& rough, const Exact& exact, Accept& accept) {
    if (!sought<seek, E>(rough(block)).any()) return -1;
    for (LaneMask<E> mask = Block::valid(sought<seek, E>(exact(block))); mask.any();
         mask = mask.withoutLast()) {
        const int64_t position = block.position(mask.last());
        if (accept(position)) return position;
    }
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
        if (count == 0) return -1;
        return withShortBlock<E>(static_cast<int32_t>(count), [&](auto block) {
            return firstInBlock<seek, E>(block, rough, exact, accept);
        });
    }
    int64_t at = 0;
    while (at + 4 * size <= count) {
        const int64_t next = at + 4 * size;
        if (anyInFour<seek, E>(at, rough)) {
            for (; at < next; at += size) {
                const int64_t found = firstInBlock<seek, E>(WholeBlock<E>{at}, rough, exact, accept);
                if (found >= 0) return found;
            }
        }
        at = next;
    }
    for (; at + size <= count; at += size) {
        const int64_t found = firstInBlock<seek, E>(WholeBlock<E>{at}, rough, exact, accept);
        if (found >= 0) return found;
    }
    return at == count ? -1 : firstInBlock<seek, E>(WholeBlock<E>{count - size}, rough, exact, accept);
}

/// The last accepted position, or -1; otherwise as scanForward.
template <Seek seek, class E, class Rough, class Exact, class Accept>
int64_t scanBackward(int64_t count, const Rough& rough, const Exact& exact, Accept accept) {
    using namespace scanning;
    constexpr int64_t size = Vector<E>::size;
    if (count < size) {
        if (count == 0) return -1;
        return withShortBlock<E>(static_cast<int32_t>(count), [&](auto block) {
            return lastInBlock<seek, E>(block, rough, exact, accept);
        });
    }
    int64_t end = count;
    while (end >= 4 * size) {
        const int64_t next = end - 4 * size;
        if (anyInFour<seek, E>(next, rough)) {
            for (; end > next; end -= size) {
                const int64_t found = lastInBlock<seek, E>(WholeBlock<E>{end - size}, rough, exact, accept);
                if (found >= 0) return found;
            }
        }
        end = next;
    }
    for (; end >= size; end -= size) {
        const int64_t found = lastInBlock<seek, E>(WholeBlock<E>{end - size}, rough, exact, accept);
        if (found >= 0) return found;
    }
    return end == 0 ? -1 : lastInBlock<seek, E>(WholeBlock<E>{0}, rough, exact, accept);
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
    if constexpr (way == Way::forward) {
        return scanForward<seek, E>(count, rough, exact, accept);
    } else {
        return scanBackward<seek, E>(count, rough, exact, accept);
    }
}
template <Way way, Seek seek, class E, class Test>
int64_t scan(int64_t count, const Test& test) {
    return scan<way, seek, E>(count, test, test, scanning::acceptAny);
}

} // namespace tav
