// Editing: insert, remove, concatenate, split, replace.
#pragma once

#include "tavch.h"

namespace tav {

template <class E>
tavStatus insert(const E* pSrc, int32_t srcLen, const E* pInsert, int32_t insertLen, E* pDst,
                 int32_t startIndex);
template <class E>
tavStatus insertInPlace(const E* pInsert, int32_t insertLen, E* pSrcDst, int32_t* pSrcDstLen,
                        int32_t startIndex);
template <class E>
tavStatus remove(const E* pSrc, int32_t srcLen, E* pDst, int32_t startIndex, int32_t removeLen);
template <class E>
tavStatus removeInPlace(E* pSrcDst, int32_t* pSrcDstLen, int32_t startIndex, int32_t removeLen);
template <class E>
tavStatus concat(const E* pSrc1, int32_t len1, const E* pSrc2, int32_t len2, E* pDst);
template <class E>
tavStatus concatList(const E* const* pSrcs, const int32_t* srcLens, int32_t numSrc, E* pDst);
template <class E>
tavStatus concatListWithDelimiter(const E* const* pSrcs, const int32_t* srcLens, int32_t numSrc, E delim,
                                  E* pDst);
template <class E>
tavStatus split(const E* pSrc, int32_t len, E delim, E* const* pDsts, int32_t* dstLens, int32_t* pNumDst);
template <class E>
tavStatus replace(const E* pSrc, E* pDst, int32_t len, E oldVal, E newVal);

} // namespace tav
