// Trimming: stated results, argument tests, aliasing, and every length against a plain loop.
#include "strings/support.h"

using namespace tavtest;

namespace {

template <class E>
class TrimTest : public ::testing::Test {
protected:
    using SetForm = decltype(Api<E>::trimAny);

    static std::string trim(std::string_view characters, char odd) {
        const auto src = textZ<E>(characters);
        std::vector<E> dst(characters.size() + 1, E{filler});
        int32_t len = untouched;
        EXPECT_EQ(Api<E>::trim(src.data(), static_cast<int32_t>(characters.size()), static_cast<E>(odd),
                               dst.data(), &len),
                  tavStsNoError);
        return shownTrimmed(dst, len);
    }
    static std::string trimSet(SetForm form, std::string_view characters, std::string_view set) {
        const auto src = textZ<E>(characters), members = textZ<E>(set);
        std::vector<E> dst(characters.size() + 1, E{filler});
        int32_t len = untouched;
        EXPECT_EQ(form(src.data(), static_cast<int32_t>(characters.size()), members.data(),
                       static_cast<int32_t>(set.size()), dst.data(), &len),
                  tavStsNoError);
        return shownTrimmed(dst, len);
    }

private:
    static std::string shownTrimmed(const std::vector<E>& dst, int32_t len) {
        EXPECT_EQ(dst[static_cast<std::size_t>(len)], filler) << "nothing is written behind the result";
        return shown(dst.data(), len);
    }
};
TYPED_TEST_SUITE(TrimTest, Elements);

/// The rule itself: how many leading and trailing elements are members.
template <class E>
std::pair<std::size_t, std::size_t> membersAtEnds(const std::vector<E>& src, const std::vector<E>& set) {
    const auto member = [&](E element) { return std::find(set.begin(), set.end(), element) != set.end(); };
    std::size_t leading = 0, trailing = 0;
    while (leading < src.size() && member(src[leading])) {
        ++leading;
    }
    while (trailing < src.size() && member(src[src.size() - 1 - trailing])) {
        ++trailing;
    }
    return {leading, trailing};
}

} // namespace

TYPED_TEST(TrimTest, OneElementIsStrippedFromBothEnds) {
    EXPECT_EQ(this->trim("  ab  ", ' '), "ab");
    EXPECT_EQ(this->trim("    ", ' '), "");
    EXPECT_EQ(this->trim("", ' '), "");
    EXPECT_EQ(this->trim(" a b", ' '), "a b");
    EXPECT_EQ(this->trim("ab", ' '), "ab");
    EXPECT_EQ(this->trim("a", 'a'), "");
}

TYPED_TEST(TrimTest, OneElementIsStrippedInPlaceToo) {
    using E = TypeParam;
    for (const bool sameBuffer : {false, true}) {
        auto buffer = text<E>("  ab  ");
        int32_t len = 6;
        if (sameBuffer) {
            len = untouched;
            EXPECT_EQ(Api<E>::trim(buffer.data(), 6, ' ', buffer.data(), &len), tavStsNoError);
        } else {
            EXPECT_EQ(Api<E>::trimInPlace(buffer.data(), &len, ' '), tavStsNoError);
        }
        EXPECT_EQ(len, 2);
        EXPECT_EQ(shown(buffer.data(), 6), "abab  ") << "elements behind the new length stay";
    }
    auto blanks = text<E>("    ");
    int32_t len = 4;
    EXPECT_EQ(Api<E>::trimInPlace(blanks.data(), &len, ' '), tavStsNoError);
    EXPECT_EQ(len, 0);
    EXPECT_EQ(Api<E>::trimInPlace(blanks.data(), &len, ' '), tavStsNoError);
    EXPECT_EQ(len, 0);
}

TYPED_TEST(TrimTest, ASetIsStrippedFromTheChosenEnds) {
    using E = TypeParam;
    EXPECT_EQ(this->trimSet(Api<E>::trimStartAny, "xxyaxy", "xy"), "axy");
    EXPECT_EQ(this->trimSet(Api<E>::trimEndAny, "xxyaxy", "xy"), "xxya");
    EXPECT_EQ(this->trimSet(Api<E>::trimAny, "xxyaxy", "xy"), "a");
    for (const auto form : {Api<E>::trimAny, Api<E>::trimStartAny, Api<E>::trimEndAny}) {
        EXPECT_EQ(this->trimSet(form, "xyxyx", "xy"), "") << "all stripped";
        EXPECT_EQ(this->trimSet(form, "abc", "xy"), "abc") << "nothing to strip";
        EXPECT_EQ(this->trimSet(form, "", "xy"), "") << "empty source";
        EXPECT_EQ(this->trimSet(form, "xaybx", ""), "xaybx") << "an empty set copies the whole string";
        EXPECT_EQ(this->trimSet(form, "", ""), "");
    }
}

TYPED_TEST(TrimTest, TheElementFormTestsPointersThenTheLength) {
    using E = TypeParam;
    const E a[1] = {'a'};
    for (int nulls = 0; nulls < 8; ++nulls) {
        for (const int32_t len : {-1, 0, 1}) {
            const tavStatus expected = expectedStatus(nulls != 0, len < 0);
            E dst[1] = {filler};
            int32_t dstLen = untouched, inPlaceLen = len;
            EXPECT_EQ(Api<E>::trim(nulls & 1 ? nullptr : a, len, ' ', nulls & 2 ? nullptr : dst,
                                   nulls & 4 ? nullptr : &dstLen),
                      expected);
            EXPECT_EQ(dstLen, expected == 0 ? len : untouched);
            EXPECT_EQ(dst[0], expected == 0 && len == 1 ? 'a' : filler);
            if (nulls < 4) {
                EXPECT_EQ(
                    Api<E>::trimInPlace(nulls & 1 ? nullptr : dst, nulls & 2 ? nullptr : &inPlaceLen, ' '),
                    expected);
                EXPECT_EQ(inPlaceLen, len);
            }
        }
    }
    E buffer[1] = {'a'};
    int32_t dstLen = untouched;
    EXPECT_EQ(Api<E>::trim(buffer, -1, ' ', buffer, &dstLen), tavStsNegativeLength);
    EXPECT_EQ(dstLen, untouched) << "the length is tested before it is handed over";
}

TYPED_TEST(TrimTest, TheSetFormsTestPointersThenLengths) {
    using E = TypeParam;
    const E a[1] = {'a'}, blank[1] = {' '};
    for (const auto form : {Api<E>::trimAny, Api<E>::trimStartAny, Api<E>::trimEndAny}) {
        for (int nulls = 0; nulls < 16; ++nulls) {
            for (const int32_t len : {-1, 0, 1}) {
                for (const int32_t trimLen : {-1, 0, 1}) {
                    const tavStatus expected = expectedStatus(nulls != 0, len < 0 || trimLen < 0);
                    E dst[1] = {filler};
                    int32_t dstLen = untouched;
                    EXPECT_EQ(form(nulls & 1 ? nullptr : a, len, nulls & 2 ? nullptr : blank, trimLen,
                                   nulls & 4 ? nullptr : dst, nulls & 8 ? nullptr : &dstLen),
                              expected);
                    EXPECT_EQ(dstLen, expected == 0 ? len : untouched);
                    EXPECT_EQ(dst[0], expected == 0 && len == 1 ? 'a' : filler);
                }
            }
        }
    }
}

TYPED_TEST(TrimTest, EveryLengthAndPlaceAgreesWithThePlainLoop) {
    using E = TypeParam;
    Random random(21);
    GuardedBuffer<E> from(400), to(400), setBuffer(100);
    for (std::size_t count = 0; count <= 300; ++count) {
        const auto set = random.text<E>(random.below(count % 5 == 0 ? 40 : 5), 50, '0');
        // Runs of members at both ends, of any length up to the whole, around something else.
        std::vector<E> src(count);
        const std::size_t leading = random.below(static_cast<uint32_t>(count) + 1);
        const std::size_t trailing = random.below(static_cast<uint32_t>(count - leading) + 1);
        for (std::size_t i = 0; i < count; ++i) {
            const bool inRun = i < leading || i >= count - trailing;
            src[i] = inRun && !set.empty() ? set[random.below(static_cast<uint32_t>(set.size()))]
                                           : static_cast<E>('!' + random.below(30));
        }
        const E* setAt = setBuffer.copyToTail(set.data(), set.size());
        const auto ends = membersAtEnds(src, set);
        const std::size_t first = ends.first, last = ends.second;
        const std::size_t both = first == count ? count : first + last;
        const struct {
            decltype(Api<E>::trimAny) form;
            std::size_t skip, stripped;
        } forms[] = {{Api<E>::trimAny, first, both},
                     {Api<E>::trimStartAny, first, first},
                     {Api<E>::trimEndAny, 0, last}};
        atEveryPlace(src, from, [&](const E* place) {
            for (const auto& [form, skip, stripped] : forms) {
                const std::size_t kept = count - stripped;
                E* dst = to.tail(kept);
                int32_t dstLen = untouched;
                ASSERT_EQ(form(place, static_cast<int32_t>(count), setAt, length(set), dst, &dstLen),
                          tavStsNoError);
                ASSERT_EQ(dstLen, static_cast<int32_t>(kept)) << count;
                ASSERT_TRUE(std::equal(dst, dst + kept, src.data() + (kept == 0 ? 0 : skip)));
            }
        });
        if (this->HasFatalFailure()) return;
    }
}

TYPED_TEST(TrimTest, EveryMarginUpToThreeVectorsIsStripped) {
    using E = TypeParam;
    constexpr std::size_t most = 3 * 16 / sizeof(E) + 1;
    GuardedBuffer<E> from(200), to(200);
    for (const char* characters : {" ", " \t", " \t\r\n", " \t\r\n;", "0123456789", "!#%')+-/1"}) {
        const auto set = text<E>(characters);
        for (std::size_t leading = 0; leading <= most; ++leading) {
            for (std::size_t trailing = 0; trailing <= most; ++trailing) {
                for (const std::size_t middle : {0U, 1U, 2U, 17U}) {
                    std::vector<E> src(leading + middle + trailing, set.back());
                    std::fill_n(src.begin() + static_cast<std::ptrdiff_t>(leading), middle, E{'x'});
                    const E* place = from.copyToTail(src.data(), src.size());
                    E* dst = to.tail(middle);
                    int32_t dstLen = untouched;
                    Api<E>::trimAny(place, length(src), set.data(), length(set), dst, &dstLen);
                    ASSERT_EQ(dstLen, static_cast<int32_t>(middle)) << leading << ' ' << trailing;
                    ASSERT_EQ(shown(dst, dstLen), std::string(middle, 'x'));
                    if (set.size() > 1) continue;
                    dstLen = untouched;
                    Api<E>::trim(place, length(src), set[0], dst, &dstLen);
                    ASSERT_EQ(dstLen, static_cast<int32_t>(middle)) << leading << ' ' << trailing;
                    ASSERT_EQ(shown(dst, dstLen), std::string(middle, 'x'));
                }
            }
        }
    }
}

TYPED_TEST(TrimTest, LongRunsOfOneElementAgreeWithThePlainLoop) {
    using E = TypeParam;
    Random random(22);
    GuardedBuffer<E> from(400), to(400);
    for (std::size_t count = 0; count <= 300; ++count) {
        std::vector<E> src(count, ' ');
        for (uint32_t others = random.below(4); others > 0 && count != 0; --others) {
            src[random.below(static_cast<uint32_t>(count))] = 0x20 + 1;
        }
        const auto ends = membersAtEnds(src, text<E>(" "));
        const std::size_t first = ends.first, last = ends.second;
        const std::size_t kept = first == count ? 0 : count - first - last;
        atEveryPlace(src, from, [&](E* place) {
            int32_t dstLen = untouched;
            E* dst = to.tail(kept);
            ASSERT_EQ(Api<E>::trim(place, static_cast<int32_t>(count), ' ', dst, &dstLen), tavStsNoError);
            ASSERT_EQ(dstLen, static_cast<int32_t>(kept)) << count;
            ASSERT_TRUE(std::equal(dst, dst + kept, src.data() + (kept == 0 ? 0 : first)));
            int32_t len = static_cast<int32_t>(count);
            ASSERT_EQ(Api<E>::trimInPlace(place, &len, ' '), tavStsNoError);
            ASSERT_EQ(len, static_cast<int32_t>(kept));
            ASSERT_TRUE(std::equal(place, place + kept, src.data() + (kept == 0 ? 0 : first)));
        });
        if (this->HasFatalFailure()) return;
    }
}
