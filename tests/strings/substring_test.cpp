// The inner workings of substring search: the two-way algorithm by itself, and texts that defeat anchors.
#include "strings/find.h"
#include "strings/substring.h"
#include "strings/support.h"

#include <chrono>

using namespace tavtest;
using tav::Way;

namespace {

template <class E>
class SubstringTest : public ::testing::Test {};
TYPED_TEST_SUITE(SubstringTest, Elements);

} // namespace

TYPED_TEST(SubstringTest, TwoWayAgreesWithThePlainLoopOnAllSmallTexts) {
    using E = TypeParam;
    // All texts of length 0 to 8 over two letters, all needles of length 1 to 5.
    const auto spell = [](uint32_t bits, int32_t count) {
        std::vector<E> elements(static_cast<std::size_t>(count));
        for (int32_t i = 0; i < count; ++i) {
            elements[static_cast<std::size_t>(i)] = static_cast<E>('a' + (bits >> i & 1));
        }
        return elements;
    };
    for (int32_t lenFind = 1; lenFind <= 5; ++lenFind) {
        for (uint32_t needleBits = 0; needleBits < 1U << lenFind; ++needleBits) {
            const auto needle = spell(needleBits, lenFind);
            for (int32_t len = lenFind; len <= 8; ++len) {
                for (uint32_t bits = 0; bits < 1U << len; ++bits) {
                    const auto src = spell(bits, len);
                    ASSERT_EQ(tav::two_way::search<Way::forward>(src.data(), len, needle.data(), lenFind),
                              tav::plain::indexOf(src.data(), len, needle.data(), lenFind));
                    ASSERT_EQ(tav::two_way::search<Way::backward>(src.data(), len, needle.data(), lenFind),
                              tav::plain::lastIndexOf(src.data(), len, needle.data(), lenFind));
                }
            }
        }
    }
}

TYPED_TEST(SubstringTest, TwoWayAgreesWithThePlainLoopOnPeriodicTexts) {
    using E = TypeParam;
    Random random(6);
    for (int round = 0; round < 3000; ++round) {
        const auto period = random.text<E>(1 + random.below(6), 2, 'a');
        std::vector<E> src(50 + random.below(200));
        for (std::size_t i = 0; i < src.size(); ++i) {
            src[i] = period[i % period.size()];
        }
        src[random.below(static_cast<uint32_t>(src.size()))] = 'c';
        const std::size_t count = 1 + random.below(40),
                          from = random.below(static_cast<uint32_t>(src.size() - count));
        std::vector<E> needle(src.begin() + static_cast<std::ptrdiff_t>(from),
                              src.begin() + static_cast<std::ptrdiff_t>(from + count));
        if (round % 3 == 0) needle[random.below(static_cast<uint32_t>(count))] = 'a';
        ASSERT_EQ(tav::two_way::search<Way::forward>(src.data(), length(src), needle.data(), length(needle)),
                  tav::plain::indexOf(src.data(), length(src), needle.data(), length(needle)));
        ASSERT_EQ(tav::two_way::search<Way::backward>(src.data(), length(src), needle.data(), length(needle)),
                  tav::plain::lastIndexOf(src.data(), length(src), needle.data(), length(needle)));
    }
}

TYPED_TEST(SubstringTest, TheAnchorsAreTwoRareDifferentElements) {
    using E = TypeParam;
    const auto needle = text<E>("the quick one");
    const tav::substring::Anchors anchors = tav::substring::rarestAnchors(needle.data(), length(needle));
    EXPECT_EQ(needle[static_cast<std::size_t>(anchors.first)], 'q');
    EXPECT_EQ(needle[static_cast<std::size_t>(anchors.second)], 'k');
}

TYPED_TEST(SubstringTest, AnchorsAreInsideTheNeedleAndApart) {
    using E = TypeParam;
    Random random(7);
    for (int round = 0; round < 5000; ++round) {
        const auto needle =
            random.text<E>(2 + random.below(round % 5 == 0 ? 500 : 20), 1 + random.below(3), 'a');
        for (const auto& anchors : {tav::substring::rarestAnchors(needle.data(), length(needle)),
                                    tav::substring::endsAndMiddle(length(needle))}) {
            const auto [first, second, third, rare] = anchors;
            ASSERT_TRUE(0 <= first && first < length(needle) && 0 <= second && second < length(needle));
            ASSERT_TRUE(0 <= third && third < length(needle));
            ASSERT_NE(first, second);
            ASSERT_TRUE(length(needle) == 2 || (third != first && third != second));
        }
    }
}

TYPED_TEST(SubstringTest, AnAnchorTakenForRareMayBeEverywhere) {
    using E = TypeParam;
    // "q" is rare by the ranking. The occurrence lies anywhere, so that it also lies around the place where
    // the search finds that it is not.
    Random random(8);
    for (int round = 0; round < 2000; ++round) {
        std::vector<E> src(520 + random.below(round % 10 == 0 ? 5000 : 300), 'e'), needle(16, 'e');
        const std::size_t dense = random.below(static_cast<uint32_t>(src.size()));
        for (std::size_t i = 0; i < src.size(); ++i) {
            if (random.below(i < dense ? 200 : 3) == 0) src[i] = 'q';
        }
        for (E& element : needle) {
            if (random.below(2) == 0) element = 'q';
        }
        needle[random.below(16)] = 'q';
        const auto len = length(src), lenFind = length(needle);
        for (int copies = 0; copies < 3; ++copies) {
            ASSERT_EQ(tav::indexOf(src.data(), len, needle.data(), lenFind),
                      tav::plain::indexOf(src.data(), len, needle.data(), lenFind));
            ASSERT_EQ(tav::lastIndexOf(src.data(), len, needle.data(), lenFind),
                      tav::plain::lastIndexOf(src.data(), len, needle.data(), lenFind));
            const auto at = static_cast<std::ptrdiff_t>(random.below(static_cast<uint32_t>(src.size() - 16)));
            std::copy(needle.begin(), needle.end(), src.begin() + at);
        }
    }
}

TYPED_TEST(SubstringTest, FewStartsAgreeWithThePlainLoopAtEveryPlace) {
    using E = TypeParam;
    Random random(9);
    GuardedBuffer<E> buffer(700), needleBuffer(100);
    for (int round = 0; round < 1500; ++round) {
        const auto needle = random.text<E>(1 + random.below(20), 2, 'a');
        const auto src = random.text<E>(random.below(round % 5 == 0 ? 600 : 60), 2, 'a');
        const E* find = needleBuffer.copyToTail(needle.data(), needle.size());
        const auto len = length(src), lenFind = length(needle);
        for (const E* place :
             {buffer.copyToTail(src.data(), src.size()), buffer.copyToHead(src.data(), src.size())}) {
            ASSERT_EQ(tav::indexOf(place, len, find, lenFind),
                      tav::plain::indexOf(place, len, find, lenFind));
            ASSERT_EQ(tav::lastIndexOf(place, len, find, lenFind),
                      tav::plain::lastIndexOf(place, len, find, lenFind));
        }
    }
}

TYPED_TEST(SubstringTest, TextsFullOfNearOccurrencesAgreeWithThePlainLoop) {
    using E = TypeParam;
    // a...a with one other element in the needle's middle, at either end, and in the text here and there.
    for (const std::size_t needleCount : {20U, 64U, 200U}) {
        for (const std::size_t odd : {std::size_t{0}, needleCount / 2, needleCount - 1}) {
            std::vector<E> needle(needleCount, 'a');
            needle[odd] = 'b';
            std::vector<E> src(5000, 'a');
            for (std::size_t i = 0; i < src.size(); i += needleCount - 1) {
                src[i] = 'b';
            }
            for (int round = 0; round < 2; ++round) {
                const auto len = length(src), lenFind = length(needle);
                ASSERT_EQ(tav::indexOf(src.data(), len, needle.data(), lenFind),
                          tav::plain::indexOf(src.data(), len, needle.data(), lenFind));
                ASSERT_EQ(tav::lastIndexOf(src.data(), len, needle.data(), lenFind),
                          tav::plain::lastIndexOf(src.data(), len, needle.data(), lenFind));
                std::copy(needle.begin(), needle.end(), src.begin() + 2500);
            }
        }
    }
}

TYPED_TEST(SubstringTest, TheLinearSearchTakesOverWhereComparisonsCostTooMuch) {
    using E = TypeParam;
    // Long needles are sampled for anchors; the one odd element is where no sample falls, so that every start
    // in a run of "a" is compared as far as it.
    for (const std::size_t needleCount : {150U, 700U}) {
        for (const std::size_t odd : {needleCount / 2 + 1, needleCount / 3}) {
            std::vector<E> needle(needleCount, 'a');
            needle[odd] = 'b';
            const auto [first, second, third, rare] =
                tav::substring::rarestAnchors(needle.data(), length(needle));
            ASSERT_EQ(needle[static_cast<std::size_t>(first)], 'a');
            ASSERT_EQ(needle[static_cast<std::size_t>(second)], 'a');
            std::vector<E> src(2000, 'a');
            const auto len = length(src), lenFind = length(needle);
            const auto checkWithNeedleAt = [&](int32_t at) {
                std::vector<E> withNeedle = src;
                std::copy(needle.begin(), needle.end(), withNeedle.begin() + at);
                ASSERT_EQ(tav::indexOf(withNeedle.data(), len, needle.data(), lenFind), at);
                ASSERT_EQ(tav::lastIndexOf(withNeedle.data(), len, needle.data(), lenFind), at);
            };
            ASSERT_EQ(tav::indexOf(src.data(), len, needle.data(), lenFind), -1);
            ASSERT_EQ(tav::lastIndexOf(src.data(), len, needle.data(), lenFind), -1);
            // The searches change over within the first starts: an occurrence at each of them is found.
            for (int32_t at = 0; at <= len - lenFind; at += at < 100 || at > len - lenFind - 100 ? 1 : 37) {
                checkWithNeedleAt(at);
                if (this->HasFatalFailure()) return;
            }
        }
    }
}

TYPED_TEST(SubstringTest, TheWorstTextsCostLinearTime) {
    using E = TypeParam;
    // Compared start by start these would cost more than 10^11 steps; linear search takes some milliseconds.
    const std::size_t count = 1U << 21, needleCount = 700001, odd = needleCount / 2;
    std::vector<E> src(count, 'a'), needle(needleCount, 'a');
    needle[odd] = 'b';
    const auto [first, second, third, rare] = tav::substring::rarestAnchors(needle.data(), length(needle));
    ASSERT_EQ(needle[static_cast<std::size_t>(first)], needle[static_cast<std::size_t>(second)]);
    for (const bool withOddElements : {false, true}) {
        if (withOddElements) {
            for (std::size_t i = 5; i < count; i += needleCount / 2) {
                src[i] = 'b';
            }
        }
        const auto begin = std::chrono::steady_clock::now();
        EXPECT_EQ(tav::indexOf(src.data(), length(src), needle.data(), length(needle)), -1);
        EXPECT_EQ(tav::lastIndexOf(src.data(), length(src), needle.data(), length(needle)), -1);
        const auto spent = std::chrono::steady_clock::now() - begin;
        EXPECT_LT(std::chrono::duration<double>(spent).count(), 2.0);
    }
}

TYPED_TEST(SubstringTest, AZeroTerminatedTextCostsNoMoreThanAFewTimesOneOfKnownLength) {
    using E = TypeParam;
    // The worst text again. Windows that do not grow with the needle would cost forty times as much here.
    const std::size_t count = 1U << 23, needleCount = count / 4 + 1;
    std::vector<E> src(count, 'a'), needle(needleCount, 'a');
    needle[needleCount / 2 + 1] = 'b';
    const auto len = length(src), lenFind = length(needle);
    src.push_back(0);
    needle.push_back(0);
    const auto shortestOfThree = [](const auto& search) {
        auto shortest = std::chrono::steady_clock::duration::max();
        for (int i = 0; i < 3; ++i) {
            int32_t index = 0;
            const auto begin = std::chrono::steady_clock::now();
            EXPECT_EQ(search(&index), tavStsNoError);
            shortest = std::min(shortest, std::chrono::steady_clock::now() - begin);
            EXPECT_EQ(index, -1);
        }
        return shortest;
    };
    const auto known = shortestOfThree(
        [&](int32_t* index) { return Api<E>::find(src.data(), len, needle.data(), lenFind, index); });
    const auto measured =
        shortestOfThree([&](int32_t* index) { return Api<E>::findZ(src.data(), needle.data(), index); });
    EXPECT_LT(measured, 10 * known);
}
