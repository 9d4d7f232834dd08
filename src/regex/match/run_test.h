// Where a run of a class's bytes ends, sixteen bytes at a time: the class as a few ranges of byte values,
// laid out for vector comparison. Which bytes belong to the class is told by the table; this is the same
// knowledge in a form that finds the end of a run without a branch per byte.
#pragma once

#include "base/vector.h"
#include "regex/match/byte_set.h"

#include <bit>

namespace tav::regex {

class RunTest {
public:
    /// Prepares the test for runs of `members`; it stays absent when they are in too many pieces.
    void prepare(const ByteSet& members);

    bool isPresent() const { return count_ > 0; }

    /// The first byte from `p` up to `stop` that ends the run; `stop` when there is none. `lastBlock` is the
    /// last place in the subject where sixteen bytes can be read, and `stop` lies at most sixteen behind it.
    const uint8_t* end(const uint8_t* p, const uint8_t* stop, const uint8_t* lastBlock) const {
        while (p <= lastBlock) {
            const uint32_t ends = endsAmong(p);
            if (ends != 0) return earlier(p + std::countr_zero(ends), stop);
            p += 16;
            if (p >= stop) return stop;
        }
        if (p >= stop) return stop;
        const uint32_t ends = endsAmong(lastBlock) >> (p - lastBlock);
        return ends != 0 ? earlier(p + std::countr_zero(ends), stop) : stop;
    }

private:
    static constexpr int32_t maximum = 4;

    static const uint8_t* earlier(const uint8_t* p, const uint8_t* stop) { return p < stop ? p : stop; }

    /// Which of the sixteen bytes at `p` end the run, a bit each.
    uint32_t endsAmong(const uint8_t* p) const {
        const auto bytes = Vector<uint8_t>::load(p);
        Vector<uint8_t> in = contains(0, bytes);
        for (int32_t i = 1; i < count_; ++i)
            in = in | contains(i, bytes);
        return in.lanes().bits ^ members_;
    }

    Vector<uint8_t> contains(int32_t range, Vector<uint8_t> bytes) const {
        return (bytes - Vector<uint8_t>::load(first_[range])).atMost(Vector<uint8_t>::load(span_[range]));
    }

    int32_t count_ = 0;
    uint32_t members_ = 0; // all ones when the ranges are those of the members, 0 when of the other bytes
    uint8_t first_[maximum][16];
    uint8_t span_[maximum][16];
};

} // namespace tav::regex
