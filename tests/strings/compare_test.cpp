// Comparison and equality: stated results, argument tests, and the vector scans against the plain loop.
#include "strings/compare.h"
#include "strings/support.h"

using namespace tavtest;

namespace {

template <class E>
class CompareTest : public ::testing::Test {
protected:
    using A = Api<E>;

    static int32_t compare(const std::vector<E>& one, const std::vector<E>& two) {
        return run(A::compare, one, two);
    }
    static int32_t ignoringCase(const std::vector<E>& one, const std::vector<E>& two) {
        return run(A::compareIgnoreCaseLatin, one, two);
    }
    static int32_t equal(const std::vector<E>& one, const std::vector<E>& two) {
        uint32_t result = untouched;
        EXPECT_EQ(A::equal(one.data(), two.data(), length(one), &result), tavStsNoError);
        return static_cast<int32_t>(result);
    }

private:
    template <class Function>
    static int32_t run(Function function, const std::vector<E>& one, const std::vector<E>& two) {
        int32_t result = untouched;
        EXPECT_EQ(function(one.data(), two.data(), length(one), &result), tavStsNoError);
        return result;
    }
};
TYPED_TEST_SUITE(CompareTest, Elements);

template <class E>
std::vector<E> values(std::initializer_list<int> list) {
    std::vector<E> elements;
    for (const int value : list) {
        elements.push_back(static_cast<E>(value));
    }
    return elements;
}

} // namespace

TYPED_TEST(CompareTest, EmptyStringsAreEqual) {
    const TypeParam element = 1;
    int32_t order = untouched, folded = untouched;
    uint32_t same = untouched;
    EXPECT_EQ(Api<TypeParam>::compare(&element, &element, 0, &order), tavStsNoError);
    EXPECT_EQ(Api<TypeParam>::compareIgnoreCaseLatin(&element, &element, 0, &folded), tavStsNoError);
    EXPECT_EQ(Api<TypeParam>::equal(&element, &element, 0, &same), tavStsNoError);
    EXPECT_EQ(order, 0);
    EXPECT_EQ(folded, 0);
    EXPECT_EQ(same, 1U);
}

TYPED_TEST(CompareTest, TheFirstDifferenceDecidesAndIsUnsigned) {
    using E = TypeParam;
    EXPECT_EQ(this->compare(values<E>({0x01}), values<E>({0xFF})), -254);
    EXPECT_EQ(this->compare(values<E>({0xFF}), values<E>({0x01})), 254);
    EXPECT_EQ(this->compare(values<E>({5, 9, 1}), values<E>({5, 7, 200})), 2);
    const int top = sizeof(E) == 1 ? 255 : 65535;
    EXPECT_EQ(this->compare(values<E>({0}), values<E>({top})), -top);
    EXPECT_EQ(this->compare(values<E>({top}), values<E>({0})), top);
}

TYPED_TEST(CompareTest, LatinFoldingEndsAtTheLettersAToZ) {
    using E = TypeParam;
    EXPECT_EQ(this->ignoringCase(text<E>("ABC"), text<E>("abd")), -1);
    EXPECT_EQ(this->ignoringCase(text<E>("AZ"), text<E>("az")), 0);
    EXPECT_EQ(this->ignoringCase(text<E>("A"), text<E>("_")), 2);
    EXPECT_EQ(this->ignoringCase(values<E>({0xC0}), values<E>({0xE0})), -32);
    EXPECT_EQ(this->ignoringCase(text<E>("@"), text<E>("`")), -32);
    EXPECT_EQ(this->ignoringCase(text<E>("["), text<E>("{")), -32);
    EXPECT_EQ(this->ignoringCase(text<E>("aBxQ"), text<E>("AbXy")), 'q' - 'y');
}

TEST(Compare, SixteenBitUnitsFoldByTheirWholeValue) {
    const uint16_t one[] = {0x0141}, two[] = {0x0161};
    int32_t result = untouched;
    EXPECT_EQ(tavsCompareIgnoreCaseLatin_16u(one, two, 1, &result), tavStsNoError);
    EXPECT_EQ(result, -32);
}

TYPED_TEST(CompareTest, EqualSeesADifferenceAtTheLastPosition) {
    using E = TypeParam;
    for (std::size_t count = 1; count < 100; ++count) {
        std::vector<E> one(count, 7), two(count, 7);
        EXPECT_EQ(this->equal(one, two), 1);
        two.back() = 8;
        EXPECT_EQ(this->equal(one, two), 0) << count;
    }
}

TYPED_TEST(CompareTest, PointersAreTestedBeforeTheLengthAndNothingIsWritten) {
    using E = TypeParam;
    const E element = 1;
    for (int nulls = 0; nulls < 8; ++nulls) {
        for (const int32_t len : {-1, 0, 1}) {
            const E* one = nulls & 1 ? nullptr : &element;
            const E* two = nulls & 2 ? nullptr : &element;
            const tavStatus expected = expectedStatus(nulls != 0, len < 0);
            int32_t order = untouched, folded = untouched;
            uint32_t same = untouched;
            EXPECT_EQ(Api<TypeParam>::compare(one, two, len, nulls & 4 ? nullptr : &order), expected);
            EXPECT_EQ(Api<TypeParam>::compareIgnoreCaseLatin(one, two, len, nulls & 4 ? nullptr : &folded),
                      expected);
            EXPECT_EQ(Api<TypeParam>::equal(one, two, len, nulls & 4 ? nullptr : &same), expected);
            const bool written = expected == tavStsNoError;
            EXPECT_EQ(order == untouched, !written);
            EXPECT_EQ(folded == untouched, !written);
            EXPECT_EQ(same == untouched, !written);
        }
    }
}

TYPED_TEST(CompareTest, EveryLengthAndAlignmentAgreesWithThePlainLoop) {
    using E = TypeParam;
    Random random(1);
    GuardedBuffer<E> left(400), right(400);
    for (std::size_t count = 0; count <= 300; ++count) {
        std::vector<E> one = random.text<E>(count, 60, 'A');
        std::vector<E> two = one;
        // From "equal" over "equal but for case" to "differs at a random place".
        if (count % 3 != 0) {
            for (E& element : two) {
                if (random.below(2) == 0) element = tav::latin::toLower(element);
            }
        }
        if (count != 0 && random.below(2) == 0) two[random.below(static_cast<uint32_t>(count))] = 0xFE;
        const auto len = static_cast<int32_t>(count);
        const int32_t raw = tav::plain::mismatch(one.data(), two.data(), len);
        const int32_t folded = tav::plain::mismatchIgnoreCaseLatin(one.data(), two.data(), len);
        const E* twoAt = right.copyToTail(two.data(), count);
        atEveryPlace(one, left, [&](const E* oneAt) {
            int32_t result = untouched;
            uint32_t same = untouched;
            Api<TypeParam>::compare(oneAt, twoAt, len, &result);
            ASSERT_EQ(result, raw < 0 ? 0 : one[std::size_t(raw)] - two[std::size_t(raw)]) << count;
            Api<TypeParam>::equal(oneAt, twoAt, len, &same);
            ASSERT_EQ(same, raw < 0 ? 1U : 0U) << count;
            Api<TypeParam>::compareIgnoreCaseLatin(oneAt, twoAt, len, &result);
            ASSERT_EQ(result, folded < 0 ? 0
                                         : tav::latin::toLower(one[std::size_t(folded)]) -
                                               tav::latin::toLower(two[std::size_t(folded)]))
                << count;
        });
        if (this->HasFatalFailure()) return;
    }
}

TYPED_TEST(CompareTest, ADifferenceAtAnyPlaceIsFound) {
    using E = TypeParam;
    for (std::size_t count = 1; count <= 150; ++count) {
        std::vector<E> one(count, 'x'), two(count, 'X');
        for (std::size_t at = 0; at < count; ++at) {
            two[at] = '-';
            ASSERT_EQ(this->ignoringCase(one, two), 'x' - '-') << count << " at " << at;
            two[at] = 'X';
        }
    }
}
