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

#if defined(__SANITIZE_ADDRESS__)
#define TAV_READS_WHOLE_BLOCKS __attribute__((no_sanitize("address"), noinline))
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define TAV_READS_WHOLE_BLOCKS __attribute__((no_sanitize("address"), noinline))
#endif
#endif
#if !defined(TAV_READS_WHOLE_BLOCKS)
#define TAV_READS_WHOLE_BLOCKS
#endif

inline constexpr int64_t unlimited = std::numeric_limits<int64_t>::max() / 2;

/// What a scan stops at: zero, or zero and a value.
enum class Stop { zero, zeroOrValue };

/// The places in an aligned block at which a scan stops. It is read through a plain pointer, because the
/// helper for it would be checked by the sanitizer.
template <Stop stop, class E>
TAV_READS_WHOLE_BLOCKS LaneMask<E> stopsIn(const E* alignedBlock, Vector<E> value) {
    const Vector<E> elements{*reinterpret_cast<const __m128i*>(alignedBlock)};
    const Vector<E> zeros = elements.equal(Vector<E>::zero());
    return stop == Stop::zero ? zeros.lanes() : (zeros | elements.equal(value)).lanes();
}

/// The lanes before `limit`: what lies behind is not looked at, not even to be dropped later.
template <class E>
LaneMask<E> upTo(int64_t limit, LaneMask<E> lanes) {
    return limit < Vector<E>::size ? lanes.below(static_cast<int32_t>(limit)) : lanes;
}

/// The first index below `limit` whose element is zero or, if it is to stop there, `value`; `limit` when
/// there is none. One block is tested before the next is read, so that nothing is read of a block behind.
template <Stop stop, class E>
int64_t indexOfStop(const E* text, E value, int64_t limit) {
    constexpr int64_t size = Vector<E>::size;
    const auto values = Vector<E>::splat(value);
    if (limit <= 0) return 0;
    const auto misalignment = static_cast<int32_t>((reinterpret_cast<uintptr_t>(text) & 15) / sizeof(E));
    int64_t at = -misalignment;
    const LaneMask<E> first = upTo(limit - at, stopsIn<stop, E>(text + at, values)).from(misalignment);
    if (first.any()) return at + first.first();
    at += size;
    for (; at + 4 * size <= limit; at += 4 * size) {
        for (int64_t k = 0; k < 4 * size; k += size) {
            const LaneMask<E> stops = stopsIn<stop, E>(text + at + k, values);
            if (stops.any()) return at + k + stops.first();
        }
    }
    for (; at < limit; at += size) {
        const LaneMask<E> stops = upTo(limit - at, stopsIn<stop, E>(text + at, values));
        if (stops.any()) return at + stops.first();
    }
    return limit;
}
#undef TAV_READS_WHOLE_BLOCKS

/// The first index below `limit` whose element is zero, or `limit`.
template <class E>
int64_t zeroTerminatedLength(const E* text, int64_t limit = unlimited) {
    return indexOfStop<Stop::zero>(text, E{0}, limit);
}

/// The first index of `value`, which is not zero, or -1.
template <class E>
int32_t indexInZeroTerminated(const E* text, E value) {
    const int64_t found = indexOfStop<Stop::zeroOrValue>(text, value, unlimited);
    return text[found] == value ? static_cast<int32_t>(found) : -1;
}

/// Goes on with a search of which the text up to `measured` has no zero and no occurrence.
template <class E>
[[gnu::noinline]] int32_t indexBehind(int64_t measured, const E* text, const E* find, int32_t lenFind) {
    const int64_t largestWindow = std::max(int64_t{65536}, 4 * int64_t{lenFind});
    int64_t searched = 0; // no occurrence starts before this index
    for (int64_t window = 8 * measured;; window = std::min(window * 4, largestWindow)) {
        searched = std::max(searched, measured - lenFind + 1);
        const int64_t gained = zeroTerminatedLength(text + measured, window);
        measured += gained;
        const auto length = static_cast<int32_t>(measured - searched);
        const int32_t found = indexOf(text + searched, length, find, lenFind);
        if (found >= 0) return static_cast<int32_t>(searched + found);
        if (gained < window) return -1;
    }
}

/// The first index of the substring, or -1. The text is measured in growing windows, so that an early match
/// does not pay for the whole text. A window outgrows the substring, because each search may look at all of
/// the substring again: in smaller windows the whole would not be linear.
template <class E>
int32_t indexInZeroTerminated(const E* text, const E* find, int32_t lenFind) {
    constexpr int64_t firstWindow = 512;
    const int64_t measured = zeroTerminatedLength(text, firstWindow);
    const int32_t found = indexOf(text, static_cast<int32_t>(measured), find, lenFind);
    if (found >= 0 || measured < firstWindow || lenFind == 0) return found;
    return indexBehind(measured, text, find, lenFind);
}

} // namespace tav
