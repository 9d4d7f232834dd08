// Case mapping of UTF-16 text, one unit at a time, by the simple mappings of Unicode 2.0.
#pragma once

#include "tavch.h"

namespace tav::unicode {

tavStatus lowercase(const uint16_t* src, uint16_t* dst, int32_t len);
tavStatus lowercaseInPlace(uint16_t* srcDst, int32_t len);
tavStatus uppercase(const uint16_t* src, uint16_t* dst, int32_t len);
tavStatus uppercaseInPlace(uint16_t* srcDst, int32_t len);
tavStatus compareIgnoreCase(const uint16_t* src1, const uint16_t* src2, int32_t len, int32_t* result);

} // namespace tav::unicode
