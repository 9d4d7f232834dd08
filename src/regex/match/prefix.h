// The bytes that can stand at the first few offsets of any match: the filter that most start positions fail.
//
// Alternatives at the program's start are kept apart in up to eight buckets, one bit each: a position passes
// when some bucket accepts the bytes at all offsets. A scan looks for the two offsets with the rarest bytes,
// sixteen positions at a time, and asks the tables where both agree. A word boundary in front of everything
// is part of the filter.
#pragma once

#include "regex/match/byte_set.h"
#include "regex/match/node.h"
#include "regex/match/pair_test.h"
#include "regex/match/range_test.h"

namespace tav::regex {

struct Plan;

struct Prefix {
    static constexpr int32_t maximum = 24; // offsets looked at
    static constexpr int32_t tables = 6;   // offsets with a table
    int32_t length;                        // offsets known; 0: a match may begin anywhere
    int32_t tableCount;                    //
    int32_t anchors;                       // offsets scanned for: 1 or 2; 0 when no byte can begin a match
    int32_t offset[2];                     // where they are, the rarer first
    bool isOneValue;                       // the rarer anchor is one value: `value`
    bool afterNonWord;                     // a match begins at a word character behind another character
    uint8_t value;                         //
    PairTable pairs;                       // the bytes of few alternatives at two offsets
    RangeTable ranges[2];                  // what stands at the anchors, or more
    uint8_t table[tables][256];            // by offset and byte: the buckets that accept it

    bool accepts(const uint8_t* p) const {
        uint8_t buckets = table[0][*p];
        for (int32_t i = 1; buckets != 0 && i < tableCount; ++i)
            buckets &= table[i][p[i]];
        return buckets != 0;
    }
};

/// Finds the prefix of a decoded program.
void findPrefix(Plan& plan);

} // namespace tav::regex
