#include "regex/match/byte_set.h"

#include "strings/substring.h"

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
    uint8_t first[128];
    uint8_t last[128];

    explicit AllRanges(const ByteSet& set) {
        for (int32_t byte = 0; byte < 256; ++byte) {
            if (!set.has(static_cast<uint8_t>(byte))) continue;
            first[count] = static_cast<uint8_t>(byte);
            while (byte < 255 && set.has(static_cast<uint8_t>(byte + 1)))
                ++byte;
            last[count++] = static_cast<uint8_t>(byte);
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
