// The shape of the generated Unicode 2.0 case table: record(c) = records[stage2[stage1[c >> 6] | (c & 63)]].
#pragma once

#include <cstdint>

namespace tav::unicode::tables {

/// A case record: bits 0 to 19 are zero.
inline constexpr uint32_t caseHasUpper = 1u << 20;
inline constexpr uint32_t caseHasLower = 1u << 21;
inline constexpr int caseDeltaShift = 22; // bits 22 to 31: the signed difference, one for both directions

extern const uint16_t caseStage1[1024]; // start of the unit's block of 64 in stage 2
extern const uint8_t caseStage2[];      // indices of records
extern const uint32_t caseRecords[];

} // namespace tav::unicode::tables
