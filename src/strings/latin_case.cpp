// Latin case conversion: one change per element, by the shared loop.
#include "strings/latin_case.h"

#include "base/arguments.h"
#include "strings/latin.h"
#include "strings/transform.h"

namespace tav {

template <class E>
TAV_FLATTEN tavStatus lowercaseLatin(const E* pSrc, E* pDst, int32_t len) {
    if (const auto bad = Arguments::pointers(pSrc, pDst).lengths(len); bad.failed()) return bad.status;
    transform(pSrc, pDst, len, [](auto elements) { return latin::toLower(elements); });
    return tavStsNoError;
}

template <class E>
tavStatus lowercaseLatinInPlace(E* pSrcDst, int32_t len) {
    return lowercaseLatin<E>(pSrcDst, pSrcDst, len);
}

template <class E>
TAV_FLATTEN tavStatus uppercaseLatin(const E* pSrc, E* pDst, int32_t len) {
    if (const auto bad = Arguments::pointers(pSrc, pDst).lengths(len); bad.failed()) return bad.status;
    transform(pSrc, pDst, len, [](auto elements) { return latin::toUpper(elements); });
    return tavStsNoError;
}

template <class E>
tavStatus uppercaseLatinInPlace(E* pSrcDst, int32_t len) {
    return uppercaseLatin<E>(pSrcDst, pSrcDst, len);
}

#define TAV_INSTANTIATE(E)                                                                                   \
    template tavStatus lowercaseLatin(const E*, E*, int32_t);                                                \
    template tavStatus lowercaseLatinInPlace(E*, int32_t);                                                   \
    template tavStatus uppercaseLatin(const E*, E*, int32_t);                                                \
    template tavStatus uppercaseLatinInPlace(E*, int32_t);
TAV_INSTANTIATE(uint8_t)
TAV_INSTANTIATE(uint16_t)
#undef TAV_INSTANTIATE

} // namespace tav
