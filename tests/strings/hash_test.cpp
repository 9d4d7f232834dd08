// Hashes: stated values, argument tests, and every length against the one-element rules.
#include "strings/hash.h"
#include "strings/support.h"

using namespace tavtest;

namespace {

template <class E>
class HashTest : public ::testing::Test {
protected:
    using Function = decltype(Api<E>::hash);

    static uint32_t value(Function function, const std::vector<E>& elements) {
        static const E nothing = 9;
        uint32_t hash = untouched;
        EXPECT_EQ(function(elements.empty() ? &nothing : elements.data(), length(elements), &hash),
                  tavStsNoError);
        return hash;
    }
};
TYPED_TEST_SUITE(HashTest, Elements);

} // namespace

TYPED_TEST(HashTest, ShiftAndXor) {
    using E = TypeParam;
    EXPECT_EQ(this->value(Api<E>::hash, {0x01, 0x02}), 0U) << "1 shifted left is 2, and 2 xor 2 is 0";
    EXPECT_EQ(this->value(Api<E>::hash, {0x01, 0x06}), 4U);
    EXPECT_EQ(this->value(Api<E>::hash, {0xFF}), 255U) << "elements are unsigned";
    EXPECT_EQ(this->value(Api<E>::hash, {}), 0U);
}

TYPED_TEST(HashTest, TimesThirtyOne) {
    using E = TypeParam;
    EXPECT_EQ(this->value(Api<E>::hashSJ2, {'a', 'b'}), 3105U);
    EXPECT_EQ(this->value(Api<E>::hashSJ2, {0xFF}), 255U);
    EXPECT_EQ(this->value(Api<E>::hashSJ2, {}), 0U);
}

TYPED_TEST(HashTest, TimesThirtyThreeEndsAtAZero) {
    using E = TypeParam;
    EXPECT_EQ(this->value(Api<E>::hashMSCS, {'a'}), 177604U);
    EXPECT_EQ(this->value(Api<E>::hashMSCS, {'a', 0, 'b'}), 177604U);
    EXPECT_EQ(this->value(Api<E>::hashMSCS, {0, 'a'}), 5381U);
    EXPECT_EQ(this->value(Api<E>::hashMSCS, {}), 5381U);
    EXPECT_EQ(this->value(Api<E>::hashMSCS, {0xFF}), (5381U * 33) ^ 255U);
}

TYPED_TEST(HashTest, OnlyTheLastThirtyTwoElementsCountInShiftAndXor) {
    using E = TypeParam;
    Random random(31);
    for (std::size_t count = 32; count < 100; ++count) {
        auto one = random.text<E>(count, 256, 0), two = random.text<E>(count, 256, 0);
        std::copy(one.end() - 32, one.end(), two.end() - 32);
        EXPECT_EQ(this->value(Api<E>::hash, one), this->value(Api<E>::hash, two));
        two[count - 32] ^= 1;
        EXPECT_NE(this->value(Api<E>::hash, one), this->value(Api<E>::hash, two))
            << "the 32nd from the end counts";
    }
}

TEST(Hash, BothWidthsAgreeOnEqualValues) {
    Random random(32);
    for (std::size_t count = 0; count < 300; ++count) {
        const auto narrow = random.text<uint8_t>(count, count % 2 == 0 ? 256 : 255, 1);
        const std::vector<uint16_t> wide(narrow.begin(), narrow.end());
        uint32_t a = 0, b = 0;
        const uint8_t* bytes = count == 0 ? reinterpret_cast<const uint8_t*>("") : narrow.data();
        const uint16_t zero = 0, *units = count == 0 ? &zero : wide.data();
        const auto len = static_cast<int32_t>(count);
        EXPECT_EQ(tavsHash_8u32u(bytes, len, &a) + tavsHash_16u32u(units, len, &b), 0);
        EXPECT_EQ(a, b);
        EXPECT_EQ(tavsHashSJ2_8u32u(bytes, len, &a) + tavsHashSJ2_16u32u(units, len, &b), 0);
        EXPECT_EQ(a, b);
        EXPECT_EQ(tavsHashMSCS_8u32u(bytes, len, &a) + tavsHashMSCS_16u32u(units, len, &b), 0);
        EXPECT_EQ(a, b);
    }
}

TYPED_TEST(HashTest, PointersAreTestedBeforeTheLengthAndNothingIsWritten) {
    using E = TypeParam;
    const E a[1] = {1};
    for (const auto function : {Api<E>::hash, Api<E>::hashSJ2, Api<E>::hashMSCS}) {
        for (int nulls = 0; nulls < 4; ++nulls) {
            for (const int32_t len : {-1, 0, 1}) {
                uint32_t hash = untouched;
                const tavStatus expected = expectedStatus(nulls != 0, len < 0);
                EXPECT_EQ(function(nulls & 1 ? nullptr : a, len, nulls & 2 ? nullptr : &hash), expected);
                EXPECT_EQ(hash == untouched, expected != tavStsNoError);
            }
        }
    }
}

TYPED_TEST(HashTest, EveryLengthAndPlaceAgreesWithTheOneElementRule) {
    using E = TypeParam;
    Random random(33);
    GuardedBuffer<E> buffer(400);
    for (std::size_t count = 0; count <= 300; ++count) {
        // All values; the largest ones, where sums carry most; texts with and without a zero.
        const uint32_t alphabet = count % 3 == 0 ? 3 : 0x10000;
        auto src = random.text<E>(count, alphabet, count % 3 == 0 ? 0xFFFD : 0);
        if (count % 2 == 0) std::replace(src.begin(), src.end(), E{0}, E{1});
        const auto len = static_cast<int32_t>(count);
        const uint32_t shiftXor = tav::plain::hashShiftXor(src.data(), len);
        const uint32_t times31 = tav::plain::hashTimes31(src.data(), len);
        const uint32_t times33 = tav::plain::hashTimes33(src.data(), len);
        atEveryPlace(src, buffer, [&](const E* place) {
            uint32_t hash = untouched;
            Api<E>::hash(place, len, &hash);
            ASSERT_EQ(hash, shiftXor) << count;
            Api<E>::hashSJ2(place, len, &hash);
            ASSERT_EQ(hash, times31) << count;
            Api<E>::hashMSCS(place, len, &hash);
            ASSERT_EQ(hash, times33) << count;
        });
        if (this->HasFatalFailure()) return;
    }
}

TYPED_TEST(HashTest, LongTextsAgreeWithTheOneElementRule) {
    using E = TypeParam;
    Random random(34);
    for (int round = 0; round < 60; ++round) {
        const auto src = random.text<E>(5000 + random.below(5000), 0xFFFF, 1);
        EXPECT_EQ(this->value(Api<E>::hashSJ2, src), tav::plain::hashTimes31(src.data(), length(src)));
        EXPECT_EQ(this->value(Api<E>::hash, src), tav::plain::hashShiftXor(src.data(), length(src)));
        EXPECT_EQ(this->value(Api<E>::hashMSCS, src), tav::plain::hashTimes33(src.data(), length(src)));
    }
}

TYPED_TEST(HashTest, TimesThirtyThreeAgreesOnLongTextsOfEveryKindOfByte) {
    using E = TypeParam;
    // Long texts are walked in stretches whose size follows from the length: all lengths between two rounds
    // of stretches, and some beyond the longest stretch.
    Random random(35);
    const auto check = [&](std::size_t count, uint32_t alphabet, uint32_t from) {
        const auto src = random.text<E>(count, alphabet, from);
        ASSERT_EQ(this->value(Api<E>::hashMSCS, src), tav::plain::hashTimes33(src.data(), length(src)))
            << count << " elements of " << alphabet << " values from " << from;
    };
    for (std::size_t count = 300; count < 520; ++count) {
        check(count, 255, 1);
        check(count, 26, 'a');
    }
    for (uint32_t value = 1; value < 256; ++value) {
        check(1024 + value, 1, value);
        check(1024 + value, 256 - value, value);
    }
    for (const std::size_t count : {16383U, 16384U, 16385U, 16384U + 128U, 2 * 16384U + 77U, 50000U}) {
        check(count, 255, 1);
        check(count, 127, 128);
    }
}

TYPED_TEST(HashTest, TimesThirtyThreeMayMeetAGreaterUnitAnywhere) {
    using E = TypeParam;
    Random random(37);
    for (std::size_t count = 200; count < 5000; count += count < 700 ? 23 : 431) {
        for (std::size_t at = 0; at < count; at += 1 + random.below(static_cast<uint32_t>(count / 8))) {
            auto src = random.text<E>(count, 255, 1);
            src[at] = static_cast<E>(0x101 + random.below(0xFE00));
            if (src[at] == 0) src[at] = 0xFF;
            ASSERT_EQ(this->value(Api<E>::hashMSCS, src), tav::plain::hashTimes33(src.data(), length(src)))
                << count << ' ' << at;
        }
    }
}

TYPED_TEST(HashTest, TimesThirtyThreeTakesNothingFromBehindAZero) {
    using E = TypeParam;
    Random random(36);
    GuardedBuffer<E> buffer(700);
    for (std::size_t zero = 0; zero < 600; zero += zero < 300 ? 1 : 7) {
        auto src = random.text<E>(601, 255, 1);
        src[zero] = 0;
        const uint32_t expected = tav::plain::hashTimes33(src.data(), static_cast<int32_t>(zero));
        for (E* place :
             {buffer.copyToTail(src.data(), src.size()), buffer.copyToHead(src.data(), src.size())}) {
            uint32_t hash = untouched;
            Api<E>::hashMSCS(place, length(src), &hash);
            ASSERT_EQ(hash, expected) << zero;
        }
    }
}
