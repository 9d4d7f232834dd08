// Conversion between UTF-8 and UTF-16 that never fails: malformed text passes through by fixed rules, and the
// in/out counts tell how far the work got.
#pragma once

#include "tavch.h"

namespace tav::unicode {

tavStatus convertUtf8To16(const uint8_t* src, uint32_t* srcLen, uint16_t* dst, uint32_t* dstLen,
                          int32_t bigEndian);

tavStatus convertUtf16To8(const uint16_t* src, uint32_t* srcLen, uint8_t* dst, uint32_t* dstLen,
                          int32_t bigEndian);

} // namespace tav::unicode
