// Sixteen bytes at once: which of them lie in a few ranges?
#pragma once

#include "base/vector.h"
#include "regex/match/byte_set.h"

#include <cstring>

namespace tav::regex {

/// Ranges laid out for vector loads, to be kept at any address.
struct RangeTable {
    int32_t count;
    uint8_t first[ByteRanges::maximum][16];
    uint8_t span[ByteRanges::maximum][16];

    void set(const ByteRanges& ranges) {
        count = ranges.count;
        for (int32_t i = 0; i < count; ++i) {
            std::memset(first[i], ranges.first[i], 16);
            std::memset(span[i], ranges.last[i] - ranges.first[i], 16);
        }
    }
};

class RangeTest {
public:
    explicit RangeTest(const RangeTable& ranges) : ranges_(ranges) {}

    /// All ones where a byte lies in one of the ranges, of which there is at least one.
    Vector<uint8_t> operator()(Vector<uint8_t> bytes) const {
        Vector<uint8_t> in = contains(0, bytes);
        for (int32_t i = 1; i < ranges_.count; ++i)
            in = in | contains(i, bytes);
        return in;
    }

private:
    using Bytes = Vector<uint8_t>;

    Bytes contains(int32_t range, Bytes bytes) const {
        return (bytes - Bytes::load(ranges_.first[range])).atMost(Bytes::load(ranges_.span[range]));
    }

    const RangeTable& ranges_;
};

/// Which of sixteen bytes are one value?
class ValueTest {
public:
    explicit ValueTest(uint8_t byte) : value_(Vector<uint8_t>::splat(byte)) {}
    Vector<uint8_t> operator()(Vector<uint8_t> bytes) const { return bytes.equal(value_); }

private:
    Vector<uint8_t> value_;
};

/// Which of sixteen bytes are word characters: ASCII letters, digits and the underscore?
class WordTest {
public:
    Vector<uint8_t> operator()(Vector<uint8_t> bytes) const {
        return letters_.contains(bytes | caseBit_) | digits_.contains(bytes) | bytes.equal(underscore_);
    }

private:
    Vector<uint8_t> caseBit_ = Vector<uint8_t>::splat(0x20);
    Vector<uint8_t> underscore_ = Vector<uint8_t>::splat('_');
    VectorRange<uint8_t> letters_{'a', 'z'};
    VectorRange<uint8_t> digits_{'0', '9'};
};

} // namespace tav::regex
