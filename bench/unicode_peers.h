// What the Unicode functions are measured against: the plain loop that a user would write, ICU and iconv.
// Every function returns what it wrote, or what it found. They stand in a file of their own, so that no call
// is inlined into the measurement: the library's are not either.
#pragma once

#include <cstddef>
#include <cstdint>

namespace tav::bench {

/// Both conversions pass malformed text through as the library does.
std::size_t plainToUnits(const uint8_t* src, std::size_t srcLen, uint16_t* dst, std::size_t dstLen);
std::size_t plainToBytes(const uint16_t* src, std::size_t srcLen, uint8_t* dst, std::size_t dstLen);
std::size_t icuToUnits(const uint8_t* src, std::size_t srcLen, uint16_t* dst, std::size_t dstLen);
std::size_t icuToBytes(const uint16_t* src, std::size_t srcLen, uint8_t* dst, std::size_t dstLen);
std::size_t iconvToUnits(const uint8_t* src, std::size_t srcLen, uint16_t* dst, std::size_t dstLen);
std::size_t iconvToBytes(const uint16_t* src, std::size_t srcLen, uint8_t* dst, std::size_t dstLen);

using MapUnits = std::size_t (*)(const uint16_t* src, std::size_t srcLen, uint16_t* dst);

/// A loop over one table of all 65,536 units, and one over a table of two stages.
std::size_t tableLower(const uint16_t* src, std::size_t srcLen, uint16_t* dst);
std::size_t tableUpper(const uint16_t* src, std::size_t srcLen, uint16_t* dst);
std::size_t stagesLower(const uint16_t* src, std::size_t srcLen, uint16_t* dst);
std::size_t stagesUpper(const uint16_t* src, std::size_t srcLen, uint16_t* dst);
/// A loop over ICU's mapping of one character, and ICU's mapping of whole strings.
std::size_t icuUnitsLower(const uint16_t* src, std::size_t srcLen, uint16_t* dst);
std::size_t icuUnitsUpper(const uint16_t* src, std::size_t srcLen, uint16_t* dst);
std::size_t icuStringLower(const uint16_t* src, std::size_t srcLen, uint16_t* dst);
std::size_t icuStringUpper(const uint16_t* src, std::size_t srcLen, uint16_t* dst);

int32_t tableCompare(const uint16_t* left, const uint16_t* right, std::size_t len);
int32_t stagesCompare(const uint16_t* left, const uint16_t* right, std::size_t len);
int32_t icuCompare(const uint16_t* left, const uint16_t* right, std::size_t len);

} // namespace tav::bench
