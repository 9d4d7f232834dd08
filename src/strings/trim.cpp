// Trimming: find the first and the last element that stays, then copy what lies between.
#include "strings/trim.h"

#include "base/arguments.h"
#include "strings/copy.h"
#include "strings/element_set.h"
#include "strings/scan.h"

#include <algorithm>

namespace tav {

namespace {

/// The part of a text that stays: from `first` to before `end`.
struct Kept {
    int32_t first;
    int32_t end;

    int32_t length() const { return end - first; }
};

/// Most texts have nothing or little to strip: so many elements at an end are tested without vectors.
constexpr int32_t plainSteps = 4;

/// How many of the first elements, at most plainSteps, are members.
template <class E, class Member>
int32_t plainLeading(const E* src, int32_t len, const Member& isMember) {
    const int32_t end = std::min(len, plainSteps);
    int32_t i = 0;
    while (i < end && isMember(src[i])) {
        ++i;
    }
    return i;
}

/// The same from the end.
template <class E, class Member>
int32_t plainTrailing(const E* src, int32_t len, const Member& isMember) {
    const int32_t end = std::min(len, plainSteps);
    int32_t i = 0;
    while (i < end && isMember(src[len - 1 - i])) {
        ++i;
    }
    return i;
}

/// The first element that differs from `odd`, or -1; out of line, so that the plain steps save no registers.
template <Way way, class E>
TAV_FLATTEN [[gnu::noinline]] int32_t scanForOther(const E* src, int32_t len, E odd) {
    const auto odds = Vector<E>::splat(odd);
    return static_cast<int32_t>(
        scan<way, Seek::miss, E>(len, [=](auto block) { return block.load(src).equal(odds); }));
}

template <class E>
Kept keptWithout(const E* src, int32_t len, E odd) {
    const auto isOdd = [=](E element) { return element == odd; };
    Kept kept{plainLeading(src, len, isOdd), len};
    if (kept.first == plainSteps) kept.first = scanForOther<Way::forward>(src, len, odd);
    if (kept.first < 0 || kept.first == len) return {0, 0};
    kept.end -= plainTrailing(src, len, isOdd);
    if (len - kept.end == plainSteps) kept.end = scanForOther<Way::backward>(src, kept.end, odd) + 1;
    return kept;
}

/// The length of the run of members that the text starts with.
template <class E>
int32_t leadingMembers(const E* src, int32_t len, const E* set, int32_t lenSet) {
    const int32_t first =
        plainLeading(src, len, [=](E element) { return plain::indexOf(set, lenSet, element) >= 0; });
    if (first < plainSteps) return first;
    const int32_t more = scanForSet<Way::forward, Seek::miss>(src + first, len - first, set, lenSet);
    return more < 0 ? len : first + more;
}

/// The same for its end.
template <class E>
int32_t trailingMembers(const E* src, int32_t len, const E* set, int32_t lenSet) {
    const int32_t last =
        plainTrailing(src, len, [=](E element) { return plain::indexOf(set, lenSet, element) >= 0; });
    if (last < plainSteps) return last;
    return len - 1 - scanForSet<Way::backward, Seek::miss>(src, len - last, set, lenSet);
}

enum class Ends { start, end, both };

template <Ends ends, class E>
TAV_FLATTEN tavStatus trimSet(const E* pSrc, int32_t len, const E* pTrim, int32_t trimLen, E* pDst,
                              int32_t* pDstLen) {
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
