// The shape of the generated Unicode 5.1 tables. Only properties.cpp reads them.
#pragma once

#include "unicode/properties.h"

#include <cstddef>
#include <cstdint>

namespace tav::unicode::tables {

/// Where a code point comes from: a record of its own, one of the ten ranges listed by first and last,
/// nowhere.
enum class Origin : uint8_t { none, record, listedRange };

/// What is known of a code point. A difference of 0 is no mapping.
struct Properties {
    CategoryValue category;
    int32_t toUpper;
    int32_t toLower;
    Origin origin;
};

/// A script: its name, ending in "}", and the lines of the script data.
struct NamedRanges {
    const char* name;
    RangeList list;
};

struct NamedRange {
    const char* name;
    CodePointRange range;
};

inline constexpr std::size_t scriptCount = 77;
inline constexpr std::size_t blockCount = 171;
inline constexpr int propertyBlockBits = 7;
inline constexpr uint32_t lastCodePoint = 0x10FFFF;
inline constexpr uint32_t lastRecord = 0xE01EF;

extern const NamedRanges scripts[scriptCount]; // in look-up order
extern const NamedRange blocks[blockCount];    // in code point order
extern const Properties properties[];
extern const uint8_t propertyStage1[(lastCodePoint + 1) >> propertyBlockBits]; // code point's block
extern const uint8_t propertyStage2[];                                         // indices of properties

} // namespace tav::unicode::tables
