#include "regex/match/byte_set.h"

#include "strings/substring.h"

#include <bit>
#include <cstring>

namespace tav::regex {

namespace {

int32_t commonnessBetween(int32_t from, int32_t to) {
    int32_t sum = 0;
    for (int32_t byte = from; byte <= to; ++byte)
        sum += substring::commonness[static_cast<uint8_t>(byte)];
    return sum;
}

/// All ranges of a set, in order.
struct AllRanges {
    int32_t count = 0;
    uint8_t first[128] = {};
    uint8_t last[128] = {};

    explicit AllRanges(const ByteSet& set) {
        for (int32_t byte = set.next(0, true); byte < 256;) {
            const int32_t end = set.next(byte, false);
            first[count] = static_cast<uint8_t>(byte);
            last[count++] = static_cast<uint8_t>(end - 1);
            byte = end < 256 ? set.next(end, true) : 256;
        }
    }

    void closeCheapestGap() {
        int32_t cheapest = 0, cost = INT32_MAX;
        for (int32_t i = 0; i + 1 < count; ++i) {
            const int32_t gap = commonnessBetween(last[i] + 1, first[i + 1] - 1);
            if (gap >= cost) continue;
            cheapest = i;
            cost = gap;
        }
        last[cheapest] = last[cheapest + 1];
        --count;
        for (int32_t i = cheapest + 1; i < count; ++i) {
            first[i] = first[i + 1];
            last[i] = last[i + 1];
        }
    }
};

} // namespace

int32_t ByteSet::next(int32_t from, bool present) const {
    for (int32_t i = from / 64; i < 4; ++i) {
        const uint64_t word = present ? words_[i] : ~words_[i];
        const uint64_t rest = i == from / 64 ? word >> (from % 64) << (from % 64) : word;
        if (rest != 0) return 64 * i + std::countr_zero(rest);
    }
    return 256;
}

void ByteSet::writeTo(uint8_t (&table)[256], uint8_t bit) const {
    constexpr uint64_t ones = 0x0101010101010101, oneEach = 0x8040201008040201, ceiling = 0x7F7F7F7F7F7F7F7F;
    for (int32_t at = 0; at < 256; at += 8) {
        // Eight neighbouring members become eight bytes of 0 or 1.
        const uint64_t eight = words_[at / 64] >> (at % 64) & 0xFF;
        const uint64_t present = (((eight * ones & oneEach) + ceiling) >> 7) & ones;
        uint64_t places;
        std::memcpy(&places, table + at, sizeof places);
        places |= present * bit;
        std::memcpy(table + at, &places, sizeof places);
    }
}

ByteRanges ByteRanges::covering(const ByteSet& set, int32_t limit) {
    AllRanges all(set);
    const bool exact = all.count <= limit;
    while (all.count > limit)
        all.closeCheapestGap();
    ByteRanges ranges;
    ranges.exact = exact;
    ranges.count = static_cast<uint8_t>(all.count);
    for (int32_t i = 0; i < all.count; ++i) {
        ranges.first[i] = all.first[i];
        ranges.last[i] = all.last[i];
    }
    return ranges;
}

int32_t ByteRanges::commonness() const {
    int32_t sum = 0;
    for (int32_t i = 0; i < count; ++i)
        sum += commonnessBetween(first[i], last[i]);
    return sum;
}

} // namespace tav::regex
