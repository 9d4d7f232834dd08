// Comparison: find the first index that differs, then subtract there. The caseless scan looks for raw
// differences first and folds only the blocks that have one.
#include "strings/compare.h"

#include "base/arguments.h"
#include "strings/scan.h"

namespace tav {

template <class E>
TAV_FLATTEN int32_t mismatch(const E* one, const E* two, int32_t len) {
    const auto same = [=](auto block) { return block.load(one).equal(block.load(two)); };
    return static_cast<int32_t>(scanForward<Seek::miss, E>(len, same));
}

template <class E>
TAV_FLATTEN int32_t mismatchIgnoreCaseLatin(const E* one, const E* two, int32_t len) {
    const auto same = [=](auto block) { return block.load(one).equal(block.load(two)); };
    const auto sameFolded = [=](auto block) {
        return latin::toLower(block.load(one)).equal(latin::toLower(block.load(two)));
    };
    return static_cast<int32_t>(scanForward<Seek::miss, E>(len, same, sameFolded, scanning::acceptAny));
}

template <class E>
TAV_FLATTEN tavStatus compare(const E* pSrc1, const E* pSrc2, int32_t len, int32_t* pResult) {
    if (const auto bad = Arguments::pointers(pSrc1, pSrc2, pResult).lengths(len); bad.failed())
        return bad.status;
    const int32_t i = mismatch(pSrc1, pSrc2, len);
    *pResult = i < 0 ? 0 : pSrc1[i] - pSrc2[i];
    return tavStsNoError;
}

template <class E>
TAV_FLATTEN tavStatus equal(const E* pSrc1, const E* pSrc2, int32_t len, uint32_t* pResult) {
    if (const auto bad = Arguments::pointers(pSrc1, pSrc2, pResult).lengths(len); bad.failed())
        return bad.status;
    *pResult = mismatch(pSrc1, pSrc2, len) < 0 ? 1 : 0;
    return tavStsNoError;
}

template <class E>
TAV_FLATTEN tavStatus compareIgnoreCaseLatin(const E* pSrc1, const E* pSrc2, int32_t len, int32_t* pResult) {
    if (const auto bad = Arguments::pointers(pSrc1, pSrc2, pResult).lengths(len); bad.failed())
        return bad.status;
    const int32_t i = mismatchIgnoreCaseLatin(pSrc1, pSrc2, len);
    *pResult = i < 0 ? 0 : latin::toLower(pSrc1[i]) - latin::toLower(pSrc2[i]);
    return tavStsNoError;
}

#define TAV_INSTANTIATE(E)                                                                                   \
    template int32_t mismatch(const E*, const E*, int32_t);                                                  \
    template int32_t mismatchIgnoreCaseLatin(const E*, const E*, int32_t);                                   \
    template tavStatus compare(const E*, const E*, int32_t, int32_t*);                                       \
    template tavStatus equal(const E*, const E*, int32_t, uint32_t*);                                        \
    template tavStatus compareIgnoreCaseLatin(const E*, const E*, int32_t, int32_t*);
TAV_INSTANTIATE(uint8_t)
TAV_INSTANTIATE(uint16_t)
#undef TAV_INSTANTIATE

} // namespace tav
