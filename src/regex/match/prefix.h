// The bytes that can stand at the first few offsets of any match: the filter that most start positions fail.
//
// Alternatives at the program's start are kept apart in up to eight buckets, one bit each: a position passes
// when some bucket accepts the bytes at all offsets. A scan looks for the two offsets with the rarest bytes,
// sixteen positions at a time, and asks the tables where both agree.
#pragma once

#include "regex/match/byte_set.h"
#include "regex/match/node.h"

namespace tav::regex {

struct Plan;

struct Prefix {
    static constexpr int32_t maximum = 6;
    int32_t length;              // offsets known; 0: a match may begin anywhere
    int32_t anchors;             // offsets scanned for: 0, 1 or 2
    int32_t offset[2];           // where they are, the rarer first
    ByteRanges ranges[2];        // what stands there, or more
    uint8_t table[maximum][256]; // by offset and byte: the buckets that accept it

    bool accepts(const uint8_t* p) const {
        uint8_t buckets = table[0][*p];
        for (int32_t i = 1; buckets != 0 && i < length; ++i)
            buckets &= table[i][p[i]];
        return buckets != 0;
    }
};

/// Finds the prefix of a decoded program.
void findPrefix(Plan& plan);

} // namespace tav::regex
