// The scan for the end of a text whose length nobody knows, within a limit.
#include "strings/support.h"
#include "strings/zero_terminated.h"

using namespace tavtest;
using tav::Stop;

namespace {

template <class E>
class ZeroTerminatedTest : public ::testing::Test {};
TYPED_TEST_SUITE(ZeroTerminatedTest, Elements);

} // namespace

TYPED_TEST(ZeroTerminatedTest, TheFirstStopBelowTheLimitIsFoundAtEveryPlace) {
    using E = TypeParam;
    GuardedBuffer<E> buffer(300);
    // The value stands once before the zero and once behind it; half-zero units stop nothing.
    for (std::size_t zero = 0; zero < 180; zero += zero < 70 ? 1 : 9) {
        std::vector<E> src(zero + 1 + zero % 40, static_cast<E>(0x7F00 + 1));
        src[zero] = 0;
        src[zero / 2] = zero == 0 ? E{0} : E{'v'};
        src.back() = zero + 1 == src.size() ? E{0} : E{'v'};
        const auto len = static_cast<int64_t>(zero), value = len / 2;
        atEveryPlace(src, buffer, [&](const E* place) {
            for (const int64_t limit : {int64_t{0}, int64_t{1}, value, value + 1, len - 1, len, len + 1,
                                        len + 5, len + 200, tav::unlimited}) {
                if (limit < 0) continue;
                ASSERT_EQ(tav::indexOfStop<Stop::zero>(place, E{0}, limit), std::min(len, limit));
                ASSERT_EQ(tav::indexOfStop<Stop::zeroOrValue>(place, E{'v'}, limit), std::min(value, limit));
                ASSERT_EQ(tav::indexOfStop<Stop::zeroOrValue>(place, E{'x'}, limit), std::min(len, limit));
            }
        });
        if (this->HasFatalFailure()) return;
    }
}
