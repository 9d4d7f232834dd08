#include "regex/match/run_test.h"

#include <cstring>

namespace tav::regex {

void RunTest::prepare(const ByteSet& members) {
    ByteRanges ranges = ByteRanges::covering(members, maximum);
    members_ = LaneMask<uint8_t>::every;
    if (!ranges.exact || ranges.count > maximum / 2) {
        const ByteRanges others = ByteRanges::covering(members.complement(), maximum);
        if (others.exact && (!ranges.exact || others.count < ranges.count)) {
            ranges = others;
            members_ = 0;
        }
    }
    count_ = ranges.exact ? ranges.count : 0;
    for (int32_t i = 0; i < count_; ++i) {
        std::memset(first_[i], ranges.first[i], sizeof first_[i]);
        std::memset(span_[i], ranges.last[i] - ranges.first[i], sizeof span_[i]);
    }
}

} // namespace tav::regex
