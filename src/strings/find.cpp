// The exported search functions: argument tests around the search routines.
#include "strings/find.h"

#include "base/arguments.h"
#include "strings/element_set.h"
#include "strings/scan.h"
#include "strings/substring.h"
#include "strings/zero_terminated.h"

namespace tav {

template <class E>
TAV_FLATTEN int32_t indexOf(const E* src, int32_t len, E value) {
    const auto wanted = Vector<E>::splat(value);
    const auto isWanted = [=](auto block) { return block.load(src).equal(wanted); };
    return static_cast<int32_t>(scanForward<Seek::hit, E>(len, isWanted));
}

template <class E>
TAV_FLATTEN int32_t lastIndexOf(const E* src, int32_t len, E value) {
    const auto wanted = Vector<E>::splat(value);
    const auto isWanted = [=](auto block) { return block.load(src).equal(wanted); };
    return static_cast<int32_t>(scanBackward<Seek::hit, E>(len, isWanted));
}

template <class E>
TAV_FLATTEN int32_t indexOfAny(const E* src, int32_t len, const E* set, int32_t lenSet) {
    return scanForSet<Way::forward, Seek::hit>(src, len, set, lenSet);
}

template <class E>
TAV_FLATTEN int32_t lastIndexOfAny(const E* src, int32_t len, const E* set, int32_t lenSet) {
    return scanForSet<Way::backward, Seek::hit>(src, len, set, lenSet);
}

template <class E>
TAV_FLATTEN int32_t indexOf(const E* src, int32_t len, const E* find, int32_t lenFind) {
    if (lenFind < 1 || lenFind > len) return -1;
    if (lenFind == 1) return indexOf(src, len, find[0]);
    if (len - lenFind < substring::choicePays) {
        return substring::searchFewStarts<Way::forward>(src, len, find, lenFind);
    }
    return substring::search<Way::forward>(src, len, find, lenFind);
}

template <class E>
TAV_FLATTEN int32_t lastIndexOf(const E* src, int32_t len, const E* find, int32_t lenFind) {
    if (lenFind < 1 || lenFind > len) return -1;
    if (lenFind == 1) return lastIndexOf(src, len, find[0]);
    if (len - lenFind < substring::choicePays) {
        return substring::searchFewStarts<Way::backward>(src, len, find, lenFind);
    }
    return substring::search<Way::backward>(src, len, find, lenFind);
}

template <class E>
TAV_FLATTEN tavStatus find(const E* pSrc, int32_t len, const E* pFind, int32_t lenFind, int32_t* pIndex) {
    if (const auto bad = Arguments::pointers(pSrc, pFind, pIndex).lengths(len, lenFind); bad.failed()) {
        return bad.status;
    }
    *pIndex = indexOf(pSrc, len, pFind, lenFind);
    return tavStsNoError;
}

template <class E>
TAV_FLATTEN tavStatus findRev(const E* pSrc, int32_t len, const E* pFind, int32_t lenFind, int32_t* pIndex) {
    if (const auto bad = Arguments::pointers(pSrc, pFind, pIndex).lengths(len, lenFind); bad.failed()) {
        return bad.status;
    }
    *pIndex = lastIndexOf(pSrc, len, pFind, lenFind);
    return tavStsNoError;
}

template <class E>
TAV_FLATTEN tavStatus findZ(const E* pSrcZ, const E* pFindZ, int32_t* pIndex) {
    if (const auto bad = Arguments::pointers(pSrcZ, pFindZ, pIndex); bad.failed()) return bad.status;
    *pIndex = indexInZeroTerminated(pSrcZ, pFindZ, static_cast<int32_t>(zeroTerminatedLength(pFindZ)));
    return tavStsNoError;
}

template <class E>
TAV_FLATTEN tavStatus findC(const E* pSrc, int32_t len, E valFind, int32_t* pIndex) {
    if (const auto bad = Arguments::pointers(pSrc, pIndex).lengths(len); bad.failed()) return bad.status;
    *pIndex = indexOf(pSrc, len, valFind);
    return tavStsNoError;
}

template <class E>
TAV_FLATTEN tavStatus findRevC(const E* pSrc, int32_t len, E valFind, int32_t* pIndex) {
    if (const auto bad = Arguments::pointers(pSrc, pIndex).lengths(len); bad.failed()) return bad.status;
    *pIndex = lastIndexOf(pSrc, len, valFind);
    return tavStsNoError;
}

template <class E>
TAV_FLATTEN tavStatus findCZ(const E* pSrcZ, E valFind, int32_t* pIndex) {
    if (const auto bad = Arguments::pointers(pSrcZ); bad.failed()) return bad.status;
    // Deliberate: a search for the terminator is the length, and does not test pIndex.
    if (valFind == 0) {
        *pIndex = static_cast<int32_t>(zeroTerminatedLength(pSrcZ));
        return tavStsNoError;
    }
    if (const auto bad = Arguments::pointers(pIndex); bad.failed()) return bad.status;
    *pIndex = indexInZeroTerminated(pSrcZ, valFind);
    return tavStsNoError;
}

template <class E>
TAV_FLATTEN tavStatus findCAny(const E* pSrc, int32_t len, const E* pAnyOf, int32_t lenAnyOf,
                               int32_t* pIndex) {
    if (const auto bad = Arguments::pointers(pSrc, pAnyOf, pIndex).lengths(len, lenAnyOf); bad.failed()) {
        return bad.status;
    }
    *pIndex = indexOfAny(pSrc, len, pAnyOf, lenAnyOf);
    return tavStsNoError;
}

template <class E>
TAV_FLATTEN tavStatus findRevCAny(const E* pSrc, int32_t len, const E* pAnyOf, int32_t lenAnyOf,
                                  int32_t* pIndex) {
    if (const auto bad = Arguments::pointers(pSrc, pAnyOf, pIndex).lengths(len, lenAnyOf); bad.failed()) {
        return bad.status;
    }
    *pIndex = lastIndexOfAny(pSrc, len, pAnyOf, lenAnyOf);
    return tavStsNoError;
}

#define TAV_INSTANTIATE(E)                                                                                   \
    template int32_t indexOf(const E*, int32_t, E);                                                          \
    template int32_t lastIndexOf(const E*, int32_t, E);                                                      \
    template int32_t indexOfAny(const E*, int32_t, const E*, int32_t);                                       \
    template int32_t lastIndexOfAny(const E*, int32_t, const E*, int32_t);                                   \
    template int32_t indexOf(const E*, int32_t, const E*, int32_t);                                          \
    template int32_t lastIndexOf(const E*, int32_t, const E*, int32_t);                                      \
    template tavStatus find(const E*, int32_t, const E*, int32_t, int32_t*);                                 \
    template tavStatus findRev(const E*, int32_t, const E*, int32_t, int32_t*);                              \
    template tavStatus findZ(const E*, const E*, int32_t*);                                                  \
    template tavStatus findC(const E*, int32_t, E, int32_t*);                                                \
    template tavStatus findRevC(const E*, int32_t, E, int32_t*);                                             \
    template tavStatus findCZ(const E*, E, int32_t*);                                                        \
    template tavStatus findCAny(const E*, int32_t, const E*, int32_t, int32_t*);                             \
    template tavStatus findRevCAny(const E*, int32_t, const E*, int32_t, int32_t*);
TAV_INSTANTIATE(uint8_t)
TAV_INSTANTIATE(uint16_t)
#undef TAV_INSTANTIATE

} // namespace tav
