// Latin case conversion: stated results, argument tests, aliasing, and every element value and length.
#include "strings/latin.h"
#include "strings/support.h"

using namespace tavtest;

namespace {

template <class E>
class LatinCaseTest : public ::testing::Test {
protected:
    using Function = decltype(Api<E>::lowercaseLatin);
    using InPlace = decltype(Api<E>::lowercaseLatinInPlace);

    struct Direction {
        Function copy;
        InPlace inPlace;
        E (*rule)(E);
    };
    static constexpr Direction directions[] = {
        {Api<E>::lowercaseLatin, Api<E>::lowercaseLatinInPlace,
         [](E e) { return static_cast<E>(e >= 65 && e <= 90 ? e + 32 : e); }},
        {Api<E>::uppercaseLatin, Api<E>::uppercaseLatinInPlace,
         [](E e) { return static_cast<E>(e >= 97 && e <= 122 ? e - 32 : e); }}};

    static std::string converted(Function function, std::string_view characters) {
        const auto src = text<E>(characters);
        std::vector<E> dst(src.size());
        EXPECT_EQ(function(src.data(), dst.data(), length(src)), tavStsNoError);
        return shown(dst.data(), length(dst));
    }
};
TYPED_TEST_SUITE(LatinCaseTest, Elements);

} // namespace

TYPED_TEST(LatinCaseTest, LettersChangeAndNothingElseDoes) {
    using E = TypeParam;
    EXPECT_EQ(this->converted(Api<E>::lowercaseLatin, "Hello, World!"), "hello, world!");
    EXPECT_EQ(this->converted(Api<E>::uppercaseLatin, "Hello, World!"), "HELLO, WORLD!");
    EXPECT_EQ(this->converted(Api<E>::uppercaseLatin, "@[`{"), "@[`{") << "just outside the letters";
    EXPECT_EQ(this->converted(Api<E>::lowercaseLatin, "@[`{"), "@[`{");
}

TYPED_TEST(LatinCaseTest, EveryElementValueFollowsTheRule) {
    using E = TypeParam;
    std::vector<E> all(sizeof(E) == 1 ? 256 : 65536), dst(all.size());
    for (std::size_t i = 0; i < all.size(); ++i) {
        all[i] = static_cast<E>(i);
    }
    for (const auto& direction : TestFixture::directions) {
        ASSERT_EQ(direction.copy(all.data(), dst.data(), length(all)), tavStsNoError);
        for (std::size_t i = 0; i < all.size(); ++i) {
            ASSERT_EQ(dst[i], direction.rule(static_cast<E>(i)));
        }
    }
}

TYPED_TEST(LatinCaseTest, PointersAreTestedBeforeTheLengthAndNothingIsWritten) {
    using E = TypeParam;
    for (const auto& direction : TestFixture::directions) {
        for (int nulls = 0; nulls < 4; ++nulls) {
            for (const int32_t len : {-1, 0, 1}) {
                const E src[1] = {'*'};
                E dst[1] = {filler}, inPlace[1] = {filler};
                const tavStatus expected = expectedStatus(nulls != 0, len < 0);
                EXPECT_EQ(direction.copy(nulls & 1 ? nullptr : src, nulls & 2 ? nullptr : dst, len),
                          expected);
                EXPECT_EQ(dst[0], expected == 0 && len == 1 ? '*' : filler);
                if (nulls < 2) {
                    EXPECT_EQ(direction.inPlace(nulls == 1 ? nullptr : inPlace, len), expected);
                }
            }
        }
    }
}

TYPED_TEST(LatinCaseTest, EveryLengthAndPlaceAgreesWithTheRuleInPlaceToo) {
    using E = TypeParam;
    Random random(41);
    GuardedBuffer<E> from(400), to(400);
    for (std::size_t count = 0; count <= 300; ++count) {
        const auto src = random.text<E>(count, 70, '<');
        const auto len = static_cast<int32_t>(count);
        for (const auto& direction : TestFixture::directions) {
            std::vector<E> expected = src;
            std::transform(expected.begin(), expected.end(), expected.begin(), direction.rule);
            atEveryPlace(src, from, [&](E* place) {
                for (E* dst : {to.tail(count), to.head(), to.head() + 3}) {
                    ASSERT_EQ(direction.copy(place, dst, len), tavStsNoError);
                    ASSERT_TRUE(std::equal(expected.begin(), expected.end(), dst)) << count;
                }
                ASSERT_EQ(count % 2 == 0 ? direction.copy(place, place, len) : direction.inPlace(place, len),
                          tavStsNoError);
                ASSERT_TRUE(std::equal(expected.begin(), expected.end(), place)) << count;
            });
            if (this->HasFatalFailure()) return;
        }
    }
}

TYPED_TEST(LatinCaseTest, OverlappingBuffersKeepTheElementOrder) {
    using E = TypeParam;
    std::string expected(41, 'a');
    expected[0] = 'A';
    auto buffer = text<E>(std::string(1, 'A') + std::string(40, 'Z'));
    EXPECT_EQ(Api<E>::lowercaseLatin(buffer.data(), buffer.data() + 1, 40), tavStsNoError);
    EXPECT_EQ(shown(buffer.data(), 41), expected);
    buffer = text<E>(std::string(1, 'z') + std::string(40, 'Q'));
    EXPECT_EQ(Api<E>::uppercaseLatin(buffer.data(), buffer.data() + 1, 40), tavStsNoError);
    expected.assign(41, 'Z')[0] = 'z';
    EXPECT_EQ(shown(buffer.data(), 41), expected);
    buffer = text<E>(std::string(1, '{') + std::string(40, 'a'));
    EXPECT_EQ(Api<E>::uppercaseLatin(buffer.data(), buffer.data() + 1, 40), tavStsNoError);
    EXPECT_EQ(shown(buffer.data(), 41), std::string(41, '{'));
}
