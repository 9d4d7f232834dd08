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

enum class Ends { start, end, both };

/// What stays of a text shorter than a vector, of which one block covers all.
template <Ends ends, class E, class Block, class Test>
Kept keptInBlock(Block block, int32_t len, const Test& isOdd) {
    const LaneMask<E> stays = Block::valid(isOdd(block).lanes().inverse());
    if (!stays.any()) return {0, 0};
    Kept kept{0, len};
    if constexpr (ends != Ends::end) kept.first = static_cast<int32_t>(block.position(stays.first()));
    if constexpr (ends != Ends::start) kept.end = static_cast<int32_t>(block.position(stays.last())) + 1;
    return kept;
}

/// What stays when the elements for which `isOdd` holds are stripped from the ends: `isOdd` is a test of
/// blocks, as for a scan. Most texts have little to strip, so the outermost blocks are looked at by
/// themselves.
template <Ends ends, class E, class Test>
Kept keptWhere(int32_t len, const Test& isOdd) {
    constexpr int32_t size = Vector<E>::size;
    if (len == 0) return {0, 0};
    if (len < size) {
        return withShortBlock<E>(len, [&](auto block) { return keptInBlock<ends, E>(block, len, isOdd); });
    }
    Kept kept{0, len};
    if constexpr (ends != Ends::end) {
        const LaneMask<E> stays = isOdd(WholeBlock<E>{0}).lanes().inverse();
        kept.first =
            stays.any() ? stays.first() : static_cast<int32_t>(scanForward<Seek::miss, E>(len, isOdd));
        if (kept.first < 0) return {0, 0};
    }
    if constexpr (ends != Ends::start) {
        const LaneMask<E> stays = isOdd(WholeBlock<E>{len - size}).lanes().inverse();
        kept.end = 1 + (stays.any() ? len - size + stays.last()
                                    : static_cast<int32_t>(scanBackward<Seek::miss, E>(len, isOdd)));
    }
    return kept;
}

template <class E>
Kept keptWithout(const E* src, int32_t len, E odd) {
    if (len > 0 && src[0] != odd && src[len - 1] != odd) return {0, len}; // most texts
    const auto odds = Vector<E>::splat(odd);
    return keptWhere<Ends::both, E>(len, [=](auto block) { return block.load(src).equal(odds); });
}

/// The same for a set of any size.
template <Ends ends, class E>
Kept keptWithoutSet(const E* src, int32_t len, const E* set, int32_t lenSet) {
    if (lenSet == 0) return {0, len};
    if (lenSet <= FewValues<E>::most) {
        const FewValues<E> members(set, lenSet);
        return keptWhere<ends, E>(len, [=](auto block) { return members.hits(block.load(src)); });
    }
    Kept kept{0, len};
    if constexpr (ends != Ends::end) {
        kept.first = element_set::scanForLargerSet<Way::forward, Seek::miss>(src, len, set, lenSet);
        if (kept.first < 0) return {0, 0};
    }
    if constexpr (ends != Ends::start) {
        kept.end = 1 + element_set::scanForLargerSet<Way::backward, Seek::miss>(src, len, set, lenSet);
    }
    return kept;
}

template <Ends ends, class E>
TAV_FLATTEN tavStatus trimSet(const E* pSrc, int32_t len, const E* pTrim, int32_t trimLen, E* pDst,
                              int32_t* pDstLen) {
    if (const auto bad = Arguments::pointers(pSrc, pTrim, pDst, pDstLen).lengths(len, trimLen);
        bad.failed()) {
        return bad.status;
    }
    const Kept kept = keptWithoutSet<ends>(pSrc, len, pTrim, trimLen);
    *pDstLen = kept.length();
    copyElements(pSrc + kept.first, pDst, kept.length());
    return tavStsNoError;
}

} // namespace

template <class E>
TAV_FLATTEN tavStatus trim(const E* pSrc, int32_t len, E odd, E* pDst, int32_t* pDstLen) {
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
TAV_FLATTEN tavStatus trimInPlace(E* pSrcDst, int32_t* pSrcDstLen, E odd) {
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
