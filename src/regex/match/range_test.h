// Sixteen bytes at once: which of them lie in a few ranges?
#pragma once

#include "base/vector.h"
#include "regex/match/byte_set.h"

namespace tav::regex {

class RangeTest {
public:
    explicit RangeTest(const ByteRanges& ranges) : count_(ranges.count) {
        for (int32_t i = 0; i < count_; ++i) {
            first_[i] = Vector<uint8_t>::splat(ranges.first[i]);
            span_[i] = Vector<uint8_t>::splat(static_cast<uint8_t>(ranges.last[i] - ranges.first[i]));
        }
    }

    /// All ones where a byte lies in one of the ranges.
    Vector<uint8_t> operator()(Vector<uint8_t> bytes) const {
        Vector<uint8_t> in = contains(0, bytes);
        for (int32_t i = 1; i < count_; ++i)
            in = in | contains(i, bytes);
        return in;
    }

private:
    Vector<uint8_t> contains(int32_t range, Vector<uint8_t> bytes) const {
        return (bytes - first_[range]).atMost(span_[range]);
    }

    int32_t count_;
    Vector<uint8_t> first_[ByteRanges::maximum];
    Vector<uint8_t> span_[ByteRanges::maximum];
};

} // namespace tav::regex
