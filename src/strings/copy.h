// The two routines through which the editing and trimming functions copy.
#pragma once

#include "strings/blocks.h"
#include "tavch.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace tav {

namespace copying {

/// Copies one to two words of elements by their first and their last word.
template <class Word, class E>
void moveEnds(const E* source, E* destination, int32_t count) {
    constexpr int32_t wordBytes = sizeof(Word), elementBytes = sizeof(E);
    const int32_t tailAt = count - wordBytes / elementBytes;
    Word head, tail;
    std::memcpy(&head, source, sizeof head);
    std::memcpy(&tail, source + tailAt, sizeof tail);
    std::memcpy(destination, &head, sizeof head);
    std::memcpy(destination + tailAt, &tail, sizeof tail);
}

/// Copies less than a vector. That there may be nothing to copy is tested last: it is the rarest case.
template <class E>
tavStatus moveShort(const E* source, E* destination, int32_t count) {
    const int64_t bytes = count * static_cast<int64_t>(sizeof(E));
    if (bytes >= 8) {
        moveEnds<uint64_t>(source, destination, count);
    } else if (bytes >= 4) {
        moveEnds<uint32_t>(source, destination, count);
    } else if (bytes >= 2) {
        moveEnds<uint16_t>(source, destination, count);
    } else if (bytes == 1) {
        *destination = *source;
    } else {
        return tavStsBadCount;
    }
    return tavStsNoError;
}

/// Four neighbouring vectors, loaded together before any of them is stored.
template <class E>
struct FourBlocks {
    static constexpr int32_t size = 4 * Vector<E>::size;
    Vector<E> a, b, c, d;

    static FourBlocks load(const E* from) {
        constexpr int32_t one = Vector<E>::size;
        return {Vector<E>::load(from), Vector<E>::load(from + one), Vector<E>::load(from + 2 * one),
                Vector<E>::load(from + 3 * one)};
    }
    void store(E* to) const {
        constexpr int32_t one = Vector<E>::size;
        a.store(to);
        b.store(to + one);
        c.store(to + 2 * one);
        d.store(to + 3 * one);
    }
};

/// Copies more than four vectors in the direction in which nothing is overwritten that is still to be read.
/// The last, partial step is loaded first. The C library's routine wins for long texts, unless they overlap:
/// then it may copy byte by byte.
template <class E>
[[gnu::noinline]] void moveMany(const E* source, E* destination, int64_t count) {
    using Four = FourBlocks<E>;
    if (count <= 2 * Four::size) {
        const Four head = Four::load(source), tail = Four::load(source + count - Four::size);
        head.store(destination);
        tail.store(destination + count - Four::size);
        return;
    }
    constexpr std::size_t libraryPays = 2048;
    const std::size_t bytes = static_cast<std::size_t>(count) * sizeof(E);
    const auto ahead = reinterpret_cast<uintptr_t>(destination) - reinterpret_cast<uintptr_t>(source);
    const bool disjoint = ahead >= bytes && 0 - ahead >= bytes;
    if (disjoint && bytes >= libraryPays) {
        std::memcpy(destination, source, bytes);
    } else if (ahead >= bytes) { // not inside the source, or before it
        const Four tail = Four::load(source + count - Four::size);
        for (int64_t at = 0; at < count - Four::size; at += Four::size) {
            Four::load(source + at).store(destination + at);
        }
        tail.store(destination + count - Four::size);
    } else {
        const Four head = Four::load(source);
        for (int64_t at = count - Four::size; at > 0; at -= Four::size) {
            Four::load(source + at).store(destination + at);
        }
        head.store(destination);
    }
}

} // namespace copying

/// Copies `count` elements, also between ranges that overlap. A null pointer is refused, and so is a count
/// below 1; callers ignore that, so that an empty piece copies nothing.
template <class E>
tavStatus moveElements(const E* source, E* destination, int32_t count) {
    if (source == nullptr || destination == nullptr) return tavStsNullPointer;
    constexpr int32_t size = Vector<E>::size;
    // Small pieces are the common ones and a call would be most of their cost. All is loaded before anything
    // is stored.
    if (count > 4 * size) {
        copying::moveMany(source, destination, count);
    } else if (count < size) {
        return copying::moveShort(source, destination, count);
    } else {
        const WholeBlock<E> head{0}, tail{count - size};
        const Vector<E> first = head.load(source), last = tail.load(source);
        if (count > 2 * size) {
            const WholeBlock<E> second{size}, third{count - 2 * size};
            const Vector<E> b = second.load(source), c = third.load(source);
            second.store(destination, b);
            third.store(destination, c);
        }
        head.store(destination, first);
        tail.store(destination, last);
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
