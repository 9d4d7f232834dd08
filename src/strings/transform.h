// One loop for functions that change each element by itself and keep its index (replace, case).
//
// A change is given as a function of a vector and the same function of one element. It must change nothing
// when applied a second time, because the last, partial block overlaps the one before it, and source and
// destination may be the same buffer.
#pragma once

#include "strings/blocks.h"

#include <cstdint>

namespace tav {

/// The plain loop that defines the result, for overlapping ranges too: element by element, each result
/// written before the next element is read.
template <class E, class Change>
void transformPlain(const E* src, E* dst, int64_t count, const Change& change) {
    for (int64_t i = 0; i < count; ++i) {
        dst[i] = change(src[i]);
    }
}

namespace transforming {

/// Whether the ranges share elements without being the same.
template <class E>
bool overlapPartly(const E* src, const E* dst, int64_t count) {
    const auto from = reinterpret_cast<uintptr_t>(src), to = reinterpret_cast<uintptr_t>(dst);
    const auto bytes = static_cast<uintptr_t>(count) * sizeof(E);
    return from != to && (from < to ? to - from : from - to) < bytes;
}

template <class E, class Block, class Change>
void inBlock(Block block, const E* src, E* dst, const Change& change) {
    block.store(dst, change(block.load(src)));
}

} // namespace transforming

template <class E, class Change>
void transform(const E* src, E* dst, int64_t count, const Change& change) {
    using namespace transforming;
    constexpr int64_t size = Vector<E>::size;
    if (count == 0) return;
    if (overlapPartly(src, dst, count)) return transformPlain(src, dst, count, change);
    if (count < size) {
        return withShortBlock<E>(static_cast<int32_t>(count),
                                 [&](auto block) { inBlock(block, src, dst, change); });
    }
    if (count <= 2 * size) { // both are loaded before either is stored
        const WholeBlock<E> head{0}, tail{count - size};
        const Vector<E> first = change(head.load(src)), last = change(tail.load(src));
        head.store(dst, first);
        tail.store(dst, last);
        return;
    }
    int64_t at = 0;
    for (; at + 4 * size <= count; at += 4 * size) {
        for (int64_t part = 0; part < 4 * size; part += size) {
            inBlock(WholeBlock<E>{at + part}, src, dst, change);
        }
    }
    for (; at + size <= count; at += size) {
        inBlock(WholeBlock<E>{at}, src, dst, change);
    }
    if (at < count) inBlock(WholeBlock<E>{count - size}, src, dst, change);
}

} // namespace tav
