// The two routines through which the editing and trimming functions copy.
#pragma once

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
    std::memmove(destination, source, static_cast<std::size_t>(count) * sizeof(E));
    return tavStsNoError;
}

/// The same for ranges that do not overlap. It moves all the same: that costs no more, and a caller who
/// breaks the rule by passing one buffer twice gets what he meant.
template <class E>
tavStatus copyElements(const E* source, E* destination, int32_t count) {
    return moveElements(source, destination, count);
}

} // namespace tav
