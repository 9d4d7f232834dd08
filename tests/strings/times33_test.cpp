// The walk in stretches behind the times 33 hash: the low bytes it starts from, and what it comes to.
#include "strings/hash.h"
#include "strings/support.h"
#include "strings/times33.h"

using namespace tavtest;
namespace times33 = tav::times33;

TEST(Times33, TheLowByteBeforeEveryStretchIsExact) {
    Random random(41);
    for (uint32_t first = 0; first < 256; ++first) {
        for (int64_t stretch = times33::granule; stretch <= 80; stretch += times33::granule) {
            const auto src =
                random.text<uint8_t>(static_cast<std::size_t>(stretch * times33::stretches), 256, 0);
            const times33::States before = times33::lowBytes(src.data(), stretch, first);
            uint32_t h = first;
            for (int64_t i = 0; i < stretch * times33::stretches; ++i) {
                if (i % stretch == 0) {
                    ASSERT_EQ(before.of[i / stretch], h & 0xFF) << first << ' ' << stretch << ' ' << i;
                }
                h = (h * 33) ^ src[static_cast<std::size_t>(i)];
            }
        }
    }
}

TEST(Times33, AWalkIsTheChainOfEachStretch) {
    Random random(42);
    for (int round = 0; round < 300; ++round) {
        const int64_t stretch = times33::granule * (1 + random.below(20));
        const auto src = random.text<uint8_t>(static_cast<std::size_t>(stretch * times33::stretches), 256, 0);
        times33::States before;
        for (uint32_t& state : before.of) {
            state = random.below(0xFFFFFFFF);
        }
        const times33::States behind = times33::walk(src.data(), stretch, before);
        for (int s = 0; s < times33::stretches; ++s) {
            uint32_t h = before.of[s];
            for (int64_t i = s * stretch; i < (s + 1) * stretch; ++i) {
                h = (h * 33) ^ src[static_cast<std::size_t>(i)];
            }
            ASSERT_EQ(behind.of[s], h) << stretch << ' ' << s;
        }
    }
}

TEST(Times33, StretchesContinueAnyHash) {
    Random random(43);
    for (int round = 0; round < 2000; ++round) {
        const int64_t stretch = times33::granule * (1 + random.below(20));
        const uint32_t from = 1 + random.below(255);
        const auto src = random.text<uint8_t>(static_cast<std::size_t>(stretch * times33::stretches),
                                              1 + random.below(256 - from), from);
        const uint32_t h = random.below(0xFFFFFFFF);
        ASSERT_EQ(times33::overStretches(src.data(), stretch, h),
                  tav::plain::hashTimes33(src.data(), length(src), h))
            << stretch;
    }
}
