// Trimming: strip one element, or any element of a set, from the start, the end or both ends.
#pragma once

#include "tavch.h"

namespace tav {

template <class E>
tavStatus trim(const E* pSrc, int32_t len, E odd, E* pDst, int32_t* pDstLen);
template <class E>
tavStatus trimInPlace(E* pSrcDst, int32_t* pSrcDstLen, E odd);
template <class E>
tavStatus trimAny(const E* pSrc, int32_t len, const E* pTrim, int32_t trimLen, E* pDst, int32_t* pDstLen);
template <class E>
tavStatus trimStartAny(const E* pSrc, int32_t len, const E* pTrim, int32_t trimLen, E* pDst,
                       int32_t* pDstLen);
template <class E>
tavStatus trimEndAny(const E* pSrc, int32_t len, const E* pTrim, int32_t trimLen, E* pDst, int32_t* pDstLen);

} // namespace tav
