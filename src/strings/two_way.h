// Substring search in linear time and constant space whatever the texts hold: the two-way algorithm of
// Crochemore and Perrin. It takes about a nanosecond per element, so it serves where the vector search has
// met a text made to defeat it. Backward searches see both texts mirrored.
#pragma once

#include "strings/scan.h"

#include <algorithm>

namespace tav::two_way {

/// A text read in the direction of the search.
template <Way way, class E>
struct View {
    const E* text;
    int64_t length;

    E operator[](int64_t i) const { return way == Way::forward ? text[i] : text[length - 1 - i]; }
};

/// Where a needle's greatest suffix begins, less one, and the period of that suffix.
struct Suffix {
    int64_t before;
    int64_t period;
};

/// The greatest suffix under an order of elements.
template <Way way, class E, class Less>
Suffix greatestSuffix(View<way, E> needle, Less less) {
    int64_t suffix = -1, candidate = 0, offset = 1, period = 1;
    while (candidate + offset < needle.length) {
        const E a = needle[candidate + offset], b = needle[suffix + offset];
        if (less(a, b)) {
            candidate += offset;
            offset = 1;
            period = candidate - suffix;
        } else if (a == b) {
            if (offset == period) {
                candidate += period;
                offset = 1;
            } else {
                ++offset;
            }
        } else {
            suffix = candidate++;
            offset = period = 1;
        }
    }
    return {suffix, period};
}

/// The needle cut at a critical position: the later of its greatest suffixes under the two orders.
template <Way way, class E>
Suffix criticalCut(View<way, E> needle) {
    const Suffix rising = greatestSuffix(needle, [](E a, E b) { return a < b; });
    const Suffix falling = greatestSuffix(needle, [](E a, E b) { return a > b; });
    return rising.before > falling.before ? rising : falling;
}

template <Way way, class E>
bool repeatsItself(View<way, E> needle, Suffix cut) {
    for (int64_t i = 0; i <= cut.before; ++i) {
        if (needle[i] != needle[i + cut.period]) return false;
    }
    return true;
}

/// The first occurrence in the direction of the search, or -1; the needle has an element or more.
template <Way way, class E>
int64_t firstOccurrence(View<way, E> text, View<way, E> needle) {
    const Suffix cut = criticalCut(needle);
    const bool periodic = repeatsItself(needle, cut);
    const int64_t shift =
        periodic ? cut.period : std::max(cut.before + 1, needle.length - cut.before - 1) + 1;
    int64_t known = -1; // a periodic needle's elements up to this one agree already
    for (int64_t at = 0; at <= text.length - needle.length;) {
        int64_t i = std::max(cut.before, known) + 1;
        while (i < needle.length && needle[i] == text[at + i]) {
            ++i;
        }
        if (i < needle.length) {
            at += i - cut.before;
            known = -1;
            continue;
        }
        i = cut.before;
        while (i > known && needle[i] == text[at + i]) {
            --i;
        }
        if (i <= known) return at;
        at += shift;
        if (periodic) known = needle.length - cut.period - 1;
    }
    return -1;
}

/// The start of the first (forward) or last (backward) occurrence, or -1.
template <Way way, class E>
[[gnu::noinline]] int64_t search(const E* src, int64_t len, const E* find, int64_t lenFind) {
    const int64_t found = firstOccurrence<way, E>({src, len}, {find, lenFind});
    return found < 0 || way == Way::forward ? found : len - lenFind - found;
}

} // namespace tav::two_way
