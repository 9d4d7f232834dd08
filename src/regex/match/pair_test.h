// The start filter for a few alternatives: the pairs of bytes that stand at two offsets of each. Sixteen
// positions are compared with all pairs at once, so that words of common letters cost no more than others.
#pragma once

#include "base/vector.h"

namespace tav::regex {

struct PairTable {
    static constexpr int32_t maximum = 16;
    int32_t count; // 0: no such filter
    int32_t offset[2];
    uint8_t caseBit[2][16]; // what is added to a text's bytes before they are compared
    uint8_t value[2][maximum][16];
};

class PairTest {
    using Bytes = Vector<uint8_t>;

public:
    explicit PairTest(const PairTable& pairs) : pairs_(pairs) {}

    /// All ones in the lanes of the positions from `p` on where one of the pairs stands.
    Bytes operator()(const uint8_t* p) const {
        const Bytes first = Bytes::load(p + pairs_.offset[0]) | Bytes::load(pairs_.caseBit[0]);
        const Bytes second = Bytes::load(p + pairs_.offset[1]) | Bytes::load(pairs_.caseBit[1]);
        Bytes any = Bytes::zero();
        for (int32_t i = 0; i < pairs_.count; ++i)
            any = any | (first.equal(Bytes::load(pairs_.value[0][i])) &
                         second.equal(Bytes::load(pairs_.value[1][i])));
        return any;
    }

private:
    const PairTable& pairs_;
};

} // namespace tav::regex
