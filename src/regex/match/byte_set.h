// Sets of byte values, and their approximation by a few ranges for vector scans.
#pragma once

#include <cstdint>

namespace tav::regex {

class ByteSet {
public:
    void add(uint8_t byte) { words_[byte / 64] |= uint64_t{1} << (byte % 64); }
    void add(const ByteSet& other) {
        for (int i = 0; i < 4; ++i)
            words_[i] |= other.words_[i];
    }
    void addAll() {
        for (uint64_t& word : words_)
            word = ~uint64_t{0};
    }
    /// The first bytes of well-formed sequences beyond ASCII.
    void addLeads() { words_[3] |= (~uint64_t{0} << 2) & (~uint64_t{0} >> 2); }

    ByteSet complement() const {
        ByteSet others;
        for (int i = 0; i < 4; ++i)
            others.words_[i] = ~words_[i];
        return others;
    }

    bool has(uint8_t byte) const { return (words_[byte / 64] >> (byte % 64) & 1) != 0; }
    bool meets(const ByteSet& other) const {
        for (int i = 0; i < 4; ++i)
            if (words_[i] & other.words_[i]) return true;
        return false;
    }

private:
    uint64_t words_[4] = {};
};

/// A set that contains another one, as a few ranges of neighbouring values.
struct ByteRanges {
    static constexpr int32_t maximum = 8;
    uint8_t count = 0;
    bool exact = true; // no more than the other set
    uint8_t first[maximum] = {};
    uint8_t last[maximum] = {};

    /// The closest such set of at most `limit` ranges: the gaps given up are those least common in text.
    static ByteRanges covering(const ByteSet& set, int32_t limit);

    bool isOneValue() const { return count == 1 && first[0] == last[0]; }

    /// How common the values are in text and data; the lower, the better a scan for them pays.
    int32_t commonness() const;
};

} // namespace tav::regex
