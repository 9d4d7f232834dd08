// Trimming: find the first and the last element that stays, then copy what lies between.
#include "strings/trim.h"

#include "base/arguments.h"
#include "strings/copy.h"
#include "strings/element_set.h"
#include "strings/scan.h"

namespace tav {

namespace {

/// The part of a text that stays: from `first` to before `end`.
struct Kept {
    int32_t first;
    int32_t end;

    int32_t length() const { return end - first; }
};

template <class E>
Kept keptWithout(const E* src, int32_t len, E odd) {
    const auto odds = Vector<E>::splat(odd);
    const auto isOdd = [=](auto block) { return block.load(src).equal(odds); };
    const auto first = static_cast<int32_t>(scanForward<Seek::miss, E>(len, isOdd));
    if (first < 0) return {0, 0};
    return {first, static_cast<int32_t>(scanBackward<Seek::miss, E>(len, isOdd)) + 1};
}

/// The length of the run of members that the text starts with. Most texts start with none: that is seen
/// without vectors.
template <class E>
int32_t leadingMembers(const E* src, int32_t len, const E* set, int32_t lenSet) {
    if (len == 0 || plain::indexOf(set, lenSet, src[0]) < 0) return 0;
    const int32_t first = scanForSet<Way::forward, Seek::miss>(src, len, set, lenSet);
    return first < 0 ? len : first;
}

/// The same for its end.
template <class E>
int32_t trailingMembers(const E* src, int32_t len, const E* set, int32_t lenSet) {
    if (len == 0 || plain::indexOf(set, lenSet, src[len - 1]) < 0) return 0;
    return len - 1 - scanForSet<Way::backward, Seek::miss>(src, len, set, lenSet);
}

enum class Ends { start, end, both };

template <Ends ends, class E>
tavStatus trimSet(const E* pSrc, int32_t len, const E* pTrim, int32_t trimLen, E* pDst, int32_t* pDstLen) {
    if (const auto bad = Arguments::pointers(pSrc, pTrim, pDst, pDstLen).lengths(len, trimLen);
        bad.failed()) {
        return bad.status;
    }
    Kept kept{0, len};
    if constexpr (ends != Ends::end) kept.first = leadingMembers(pSrc, len, pTrim, trimLen);
    if constexpr (ends != Ends::start) {
        kept.end -= trailingMembers(pSrc + kept.first, kept.length(), pTrim, trimLen);
    }
    *pDstLen = kept.length();
    copyElements(pSrc + kept.first, pDst, kept.length());
    return tavStsNoError;
}

} // namespace

template <class E>
tavStatus trim(const E* pSrc, int32_t len, E odd, E* pDst, int32_t* pDstLen) {
    if (const auto bad = Arguments::pointers(pSrc, pDst, pDstLen).lengths(len); bad.failed())
        return bad.status;
    if (pSrc == pDst) {
        *pDstLen = len;
        return trimInPlace(pDst, pDstLen, odd);
    }
    const Kept kept = keptWithout(pSrc, len, odd);
    *pDstLen = kept.length();
    copyElements(pSrc + kept.first, pDst, kept.length());
    return tavStsNoError;
}

template <class E>
tavStatus trimInPlace(E* pSrcDst, int32_t* pSrcDstLen, E odd) {
    if (const auto bad = Arguments::pointers(pSrcDst, pSrcDstLen); bad.failed()) return bad.status;
    if (*pSrcDstLen < 0) return tavStsNegativeLength;
    const Kept kept = keptWithout(pSrcDst, *pSrcDstLen, odd);
    if (kept.first > 0) moveElements(pSrcDst + kept.first, pSrcDst, kept.length());
    *pSrcDstLen = kept.length();
    return tavStsNoError;
}

template <class E>
tavStatus trimAny(const E* pSrc, int32_t len, const E* pTrim, int32_t trimLen, E* pDst, int32_t* pDstLen) {
    return trimSet<Ends::both>(pSrc, len, pTrim, trimLen, pDst, pDstLen);
}

template <class E>
tavStatus trimStartAny(const E* pSrc, int32_t len, const E* pTrim, int32_t trimLen, E* pDst,
                       int32_t* pDstLen) {
    return trimSet<Ends::start>(pSrc, len, pTrim, trimLen, pDst, pDstLen);
}

template <class E>
tavStatus trimEndAny(const E* pSrc, int32_t len, const E* pTrim, int32_t trimLen, E* pDst, int32_t* pDstLen) {
    return trimSet<Ends::end>(pSrc, len, pTrim, trimLen, pDst, pDstLen);
}

#define TAV_INSTANTIATE(E)                                                                                   \
    template tavStatus trim(const E*, int32_t, E, E*, int32_t*);                                             \
    template tavStatus trimInPlace(E*, int32_t*, E);                                                         \
    template tavStatus trimAny(const E*, int32_t, const E*, int32_t, E*, int32_t*);                          \
    template tavStatus trimStartAny(const E*, int32_t, const E*, int32_t, E*, int32_t*);                     \
    template tavStatus trimEndAny(const E*, int32_t, const E*, int32_t, E*, int32_t*);
TAV_INSTANTIATE(uint8_t)
TAV_INSTANTIATE(uint16_t)
#undef TAV_INSTANTIATE

} // namespace tav
