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

    /// The values from `first` to `last`.
    static ByteSet between(uint8_t first, uint8_t last) {
        ByteSet set;
        for (int i = 0; i < 4; ++i) {
            const int low = first - 64 * i, high = last - 64 * i;
            if (low > 63 || high < 0) continue;
            set.words_[i] = ~uint64_t{0} << (low > 0 ? low : 0);
            if (high < 63) set.words_[i] &= (uint64_t{2} << high) - 1;
        }
        return set;
    }

    void keep(const ByteSet& other) {
        for (int i = 0; i < 4; ++i)
            words_[i] &= other.words_[i];
    }

    /// The first value from `from` on that is in the set (or not in it); 256 when there is none.
    int32_t next(int32_t from, bool present) const;

    /// Sets a bit in the table's places of all members.
    void writeTo(uint8_t (&table)[256], uint8_t bit) const;

    ByteSet complement() const {
        ByteSet others;
        for (int i = 0; i < 4; ++i)
            others.words_[i] = ~words_[i];
        return others;
    }

    bool has(uint8_t byte) const { return (words_[byte / 64] >> (byte % 64) & 1) != 0; }
    bool isEmpty() const { return (words_[0] | words_[1] | words_[2] | words_[3]) == 0; }
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
