// Searches in texts that end at their first zero element and whose length nobody knows.
//
// Reading goes by aligned 16-byte blocks, so it may look at bytes before the text and behind its terminator,
// but never at a block, hence never at a page, that holds nothing of the text.
#pragma once

#include "base/vector.h"
#include "strings/find.h"

#include <algorithm>
#include <limits>

namespace tav {

/// The first index below `limit` whose element is `value` or zero; `limit` when there is none.
template <class E>
#if defined(__SANITIZE_ADDRESS__) || defined(__clang__)
__attribute__((no_sanitize("address"), noinline))
#endif
int64_t
indexOfValueOrZero(const E* text, E value, int64_t limit) {
    using V = Vector<E>;
    const V wanted = V::splat(value), zero = V::zero();
    const auto misalignment = static_cast<int32_t>((reinterpret_cast<uintptr_t>(text) & 15) / sizeof(E));
    int64_t at = -misalignment;
    // Read through a plain pointer: a helper would be checked by the sanitizer.
    V block{*reinterpret_cast<const __m128i*>(text + at)};
    LaneMask<E> hits = (block.equal(wanted) | block.equal(zero)).lanes().from(misalignment);
    while (!hits.any()) {
        at += V::size;
        if (at >= limit) return limit;
        block = {*reinterpret_cast<const __m128i*>(text + at)};
        hits = (block.equal(wanted) | block.equal(zero)).lanes();
    }
    return std::min(at + hits.first(), limit);
}

template <class E>
int32_t zeroTerminatedLength(const E* text) {
    return static_cast<int32_t>(indexOfValueOrZero<E>(text, 0, std::numeric_limits<int64_t>::max()));
}

/// The first index of `value`, which is not zero, or -1.
template <class E>
int32_t indexInZeroTerminated(const E* text, E value) {
    const int64_t found = indexOfValueOrZero(text, value, std::numeric_limits<int64_t>::max());
    return text[found] == value ? static_cast<int32_t>(found) : -1;
}

/// The first index of the substring, or -1. The text is measured in growing windows, so that an early match
/// does not pay for the whole text. A window outgrows the substring, because each search may look at all of
/// the substring again: in smaller windows the whole would not be linear.
template <class E>
int32_t indexInZeroTerminated(const E* text, const E* find, int32_t lenFind) {
    constexpr int64_t firstWindow = 512;
    const int64_t largestWindow = std::max(int64_t{65536}, 4 * int64_t{lenFind});
    if (lenFind == 0) return -1;
    int64_t searched = 0; // no occurrence starts before this index
    int64_t measured = 0; // no zero before this index
    for (int64_t window = firstWindow;; window = std::min(window * 4, largestWindow)) {
        const int64_t gained = indexOfValueOrZero<E>(text + measured, 0, window);
        measured += gained;
        const auto length = static_cast<int32_t>(measured - searched);
        const int32_t found = indexOf(text + searched, length, find, lenFind);
        if (found >= 0) return static_cast<int32_t>(searched + found);
        if (gained < window) return -1;
        searched = std::max(searched, measured - lenFind + 1);
    }
}

} // namespace tav
