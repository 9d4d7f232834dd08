// Which pairs of neighbouring bytes a text holds, roughly: enough to rule out many literals after one pass.
//
// A pair counts as its ten lower bits, five of each byte. Letters keep theirs in either case, so one table
// serves caseless literals too; other bytes share entries, which costs certainty and never a match.
#pragma once

#include <cstdint>
#include <cstring>

namespace tav::regex {

class BytePairs {
public:
    void collect(const uint8_t* text, int32_t length) {
        std::memset(held_, 0, sizeof held_);
        for (int32_t i = 1; i < length; ++i)
            held_[entry(text + i - 1)] = 1;
    }

    /// False when the literal certainly does not occur in the text.
    bool mayHold(const uint8_t* literal, int32_t length) const {
        for (int32_t i = 1; i < length; ++i)
            if (held_[entry(literal + i - 1)] == 0) return false;
        return true;
    }

private:
    static uint32_t entry(const uint8_t* pair) { return (pair[0] & 31u) | (pair[1] & 31u) << 5; }

    uint8_t held_[1024]; // left as it is until a text is collected
};

} // namespace tav::regex
