// Sixteen bytes at once: which of them lie in a few ranges?
#pragma once

#include "base/vector.h"
#include "regex/match/byte_set.h"

namespace tav::regex {

class RangeTest {
public:
    explicit RangeTest(const ByteRanges& ranges) : count_(ranges.count) {
        for (int32_t i = 0; i < ByteRanges::maximum; ++i) {
            const int32_t used = i < count_ ? i : 0;
            range_[i] = VectorRange<uint8_t>(ranges.first[used], ranges.last[used]);
        }
    }

    /// All ones where a byte lies in one of the ranges.
    Vector<uint8_t> operator()(Vector<uint8_t> bytes) const {
        Vector<uint8_t> in = range_[0].contains(bytes);
        for (int32_t i = 1; i < count_; ++i)
            in = in | range_[i].contains(bytes);
        return in;
    }

private:
    int32_t count_;
    VectorRange<uint8_t> range_[ByteRanges::maximum] = {{0, 0}, {0, 0}, {0, 0}, {0, 0}};
};

} // namespace tav::regex
