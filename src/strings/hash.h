// Three string hashes. The plain loops define the values; the library breaks their chains of dependent
// steps, and the tests hold both equal.
#pragma once

#include "tavch.h"

namespace tav {

inline constexpr uint32_t times33Seed = 5381;

namespace plain {

/// Continues the hash h over the elements.
template <class E>
uint32_t hashShiftXor(const E* src, int32_t len, uint32_t h = 0) {
    for (int32_t i = 0; i < len; ++i) {
        h = (h << 1) ^ src[i];
    }
    return h;
}

template <class E>
uint32_t hashTimes31(const E* src, int32_t len, uint32_t h = 0) {
    for (int32_t i = 0; i < len; ++i) {
        h = h * 31 + src[i];
    }
    return h;
}

template <class E>
uint32_t hashTimes33(const E* src, int32_t len, uint32_t h = times33Seed) {
    for (int32_t i = 0; i < len && src[i] != 0; ++i) {
        h = (h * 33) ^ src[i];
    }
    return h;
}

} // namespace plain

template <class E>
tavStatus hashShiftXor(const E* pSrc, int32_t len, uint32_t* pHashVal);
template <class E>
tavStatus hashTimes31(const E* pSrc, int32_t len, uint32_t* pHashVal);
template <class E>
tavStatus hashTimes33(const E* pSrc, int32_t len, uint32_t* pHashVal);

} // namespace tav
