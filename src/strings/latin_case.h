// Case conversion of the 26 Latin letters.
#pragma once

#include "tavch.h"

namespace tav {

template <class E>
tavStatus lowercaseLatin(const E* pSrc, E* pDst, int32_t len);
template <class E>
tavStatus lowercaseLatinInPlace(E* pSrcDst, int32_t len);
template <class E>
tavStatus uppercaseLatin(const E* pSrc, E* pDst, int32_t len);
template <class E>
tavStatus uppercaseLatinInPlace(E* pSrcDst, int32_t len);

} // namespace tav
