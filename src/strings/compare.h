// Comparison of two strings of one length: ordering, equality, and ordering that ignores Latin case.
#pragma once

#include "strings/latin.h"
#include "tavch.h"

namespace tav {

/// The plain loops that define the results below; the tests hold the vector loops equal to them.
namespace plain {

template <class E>
int32_t mismatch(const E* one, const E* two, int32_t len) {
    for (int32_t i = 0; i < len; ++i) {
        if (one[i] != two[i]) return i;
    }
    return -1;
}

template <class E>
int32_t mismatchIgnoreCaseLatin(const E* one, const E* two, int32_t len) {
    for (int32_t i = 0; i < len; ++i) {
        if (latin::toLower(one[i]) != latin::toLower(two[i])) return i;
    }
    return -1;
}

} // namespace plain

/// The first index at which the strings differ, or -1.
template <class E>
int32_t mismatch(const E* one, const E* two, int32_t len);

/// The same after folding A to Z to lower case.
template <class E>
int32_t mismatchIgnoreCaseLatin(const E* one, const E* two, int32_t len);

// What the exported functions do, for each element type.

template <class E>
tavStatus compare(const E* pSrc1, const E* pSrc2, int32_t len, int32_t* pResult);

template <class E>
tavStatus equal(const E* pSrc1, const E* pSrc2, int32_t len, uint32_t* pResult);

template <class E>
tavStatus compareIgnoreCaseLatin(const E* pSrc1, const E* pSrc2, int32_t len, int32_t* pResult);

} // namespace tav
