// Search for one element, any element of a set, or a substring, forward and backward.
//
// The routines that return an index are for use inside the library; an answer of -1 means "not found". The
// functions that return a status are the exported ones. Any length may be 0; none may be negative.
#pragma once

#include "tavch.h"

namespace tav {

/// The plain loops that define the results below; the tests hold the vector loops equal to them.
namespace plain {

template <class E>
int32_t indexOf(const E* src, int32_t len, E value) {
    for (int32_t i = 0; i < len; ++i) {
        if (src[i] == value) return i;
    }
    return -1;
}

template <class E>
int32_t lastIndexOf(const E* src, int32_t len, E value) {
    for (int32_t i = len; i-- > 0;) {
        if (src[i] == value) return i;
    }
    return -1;
}

template <class E>
int32_t indexOfAny(const E* src, int32_t len, const E* set, int32_t lenSet) {
    for (int32_t i = 0; i < len; ++i) {
        if (indexOf(set, lenSet, src[i]) >= 0) return i;
    }
    return -1;
}

template <class E>
int32_t lastIndexOfAny(const E* src, int32_t len, const E* set, int32_t lenSet) {
    for (int32_t i = len; i-- > 0;) {
        if (indexOf(set, lenSet, src[i]) >= 0) return i;
    }
    return -1;
}

template <class E>
bool startsWith(const E* src, const E* find, int32_t lenFind) {
    for (int32_t i = 0; i < lenFind; ++i) {
        if (src[i] != find[i]) return false;
    }
    return true;
}

template <class E>
int32_t indexOf(const E* src, int32_t len, const E* find, int32_t lenFind) {
    if (lenFind == 0) return -1;
    for (int32_t i = 0; i <= len - lenFind; ++i) {
        if (startsWith(src + i, find, lenFind)) return i;
    }
    return -1;
}

template <class E>
int32_t lastIndexOf(const E* src, int32_t len, const E* find, int32_t lenFind) {
    if (lenFind == 0) return -1;
    for (int32_t i = len - lenFind; i >= 0; --i) {
        if (startsWith(src + i, find, lenFind)) return i;
    }
    return -1;
}

} // namespace plain

/// The first and the last index of `value`.
template <class E>
int32_t indexOf(const E* src, int32_t len, E value);
template <class E>
int32_t lastIndexOf(const E* src, int32_t len, E value);

/// The first and the last index whose element is in `set`.
template <class E>
int32_t indexOfAny(const E* src, int32_t len, const E* set, int32_t lenSet);
template <class E>
int32_t lastIndexOfAny(const E* src, int32_t len, const E* set, int32_t lenSet);

/// The lowest and the highest start of an occurrence of `find`. Deliberate: an empty `find` occurs nowhere.
/// The cost is linear in the lengths, whatever the texts hold.
template <class E>
int32_t indexOf(const E* src, int32_t len, const E* find, int32_t lenFind);
template <class E>
int32_t lastIndexOf(const E* src, int32_t len, const E* find, int32_t lenFind);

// What the exported functions do, for each element type.

template <class E>
tavStatus find(const E* pSrc, int32_t len, const E* pFind, int32_t lenFind, int32_t* pIndex);
template <class E>
tavStatus findRev(const E* pSrc, int32_t len, const E* pFind, int32_t lenFind, int32_t* pIndex);
template <class E>
tavStatus findZ(const E* pSrcZ, const E* pFindZ, int32_t* pIndex);
template <class E>
tavStatus findC(const E* pSrc, int32_t len, E valFind, int32_t* pIndex);
template <class E>
tavStatus findRevC(const E* pSrc, int32_t len, E valFind, int32_t* pIndex);
template <class E>
tavStatus findCZ(const E* pSrcZ, E valFind, int32_t* pIndex);
template <class E>
tavStatus findCAny(const E* pSrc, int32_t len, const E* pAnyOf, int32_t lenAnyOf, int32_t* pIndex);
template <class E>
tavStatus findRevCAny(const E* pSrc, int32_t len, const E* pAnyOf, int32_t lenAnyOf, int32_t* pIndex);

} // namespace tav
