// The two routines through which the editing and trimming functions copy.
#pragma once

#include "strings/blocks.h"
#include "tavch.h"

#include <cstddef>
#include <cstring>

namespace tav {

/// Copies `count` elements, also between ranges that overlap. A null pointer is refused, and so is a count
/// below 1; callers ignore that, so that an empty piece copies nothing.
template <class E>
tavStatus moveElements(const E* source, E* destination, int32_t count) {
    if (source == nullptr || destination == nullptr) return tavStsNullPointer;
    if (count < 1) return tavStsBadCount;
    constexpr int32_t size = Vector<E>::size;
    // Small pieces are the common ones and the call would be most of their cost. All is loaded before
    // anything is stored.
    if (count < size) {
        withShortBlock<E>(count, [=](auto block) { block.store(destination, block.load(source)); });
    } else if (count <= 2 * size) {
        const WholeBlock<E> head{0}, tail{count - size};
        const Vector<E> first = head.load(source), last = tail.load(source);
        head.store(destination, first);
        tail.store(destination, last);
    } else if (count <= 4 * size) {
        const WholeBlock<E> head{0}, second{size}, third{count - 2 * size}, tail{count - size};
        const Vector<E> a = head.load(source), b = second.load(source);
        const Vector<E> c = third.load(source), d = tail.load(source);
        head.store(destination, a);
        second.store(destination, b);
        third.store(destination, c);
        tail.store(destination, d);
    } else {
        std::memmove(destination, source, static_cast<std::size_t>(count) * sizeof(E));
    }
    return tavStsNoError;
}

/// The same for ranges that do not overlap. It moves all the same: that costs no more, and a caller who
/// breaks the rule by passing one buffer twice gets what he meant.
template <class E>
tavStatus copyElements(const E* source, E* destination, int32_t count) {
    return moveElements(source, destination, count);
}

} // namespace tav
