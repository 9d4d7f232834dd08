// Search: stated results, argument tests, guard pages, and the vector searches against the plain loops.
#include "strings/find.h"
#include "strings/support.h"

using namespace tavtest;

namespace {

template <class E>
class FindTest : public ::testing::Test {
protected:
    using A = Api<E>;
    using Text = std::vector<E>;

    static int32_t find(const Text& src, const Text& sought) { return withStrings(A::find, src, sought); }
    static int32_t findRev(const Text& src, const Text& sought) {
        return withStrings(A::findRev, src, sought);
    }
    static int32_t findCAny(const Text& src, const Text& set) { return withStrings(A::findCAny, src, set); }
    static int32_t findRevCAny(const Text& src, const Text& set) {
        return withStrings(A::findRevCAny, src, set);
    }
    static int32_t findC(const Text& src, char value) { return withElement(A::findC, src, value); }
    static int32_t findRevC(const Text& src, char value) { return withElement(A::findRevC, src, value); }

    static int32_t findZ(std::string_view src, std::string_view sought) {
        int32_t index = untouched;
        EXPECT_EQ(A::findZ(textZ<E>(src).data(), textZ<E>(sought).data(), &index), tavStsNoError);
        return index;
    }
    static int32_t findCZ(std::string_view src, char value) {
        int32_t index = untouched;
        EXPECT_EQ(A::findCZ(textZ<E>(src).data(), static_cast<E>(value), &index), tavStsNoError);
        return index;
    }

private:
    template <class Function>
    static int32_t withStrings(Function function, const Text& src, const Text& other) {
        static const E nothing = 0;
        int32_t index = untouched;
        EXPECT_EQ(function(src.empty() ? &nothing : src.data(), length(src),
                           other.empty() ? &nothing : other.data(), length(other), &index),
                  tavStsNoError);
        return index;
    }
    template <class Function>
    static int32_t withElement(Function function, const Text& src, char value) {
        static const E nothing = 0;
        int32_t index = untouched;
        EXPECT_EQ(function(src.empty() ? &nothing : src.data(), length(src), static_cast<E>(value), &index),
                  tavStsNoError);
        return index;
    }
};
TYPED_TEST_SUITE(FindTest, Elements);

} // namespace

// ---- Stated results

TYPED_TEST(FindTest, AnEmptyNeedleIsNotFoundAnywhere) {
    using E = TypeParam;
    EXPECT_EQ(this->find(text<E>("abc"), {}), -1);
    EXPECT_EQ(this->find({}, {}), -1);
    EXPECT_EQ(this->findRev(text<E>("abc"), {}), -1);
    EXPECT_EQ(this->findRev({}, {}), -1);
    EXPECT_EQ(this->findZ("abc", ""), -1);
    EXPECT_EQ(this->findZ("", ""), -1);
}

TYPED_TEST(FindTest, OverlappingOccurrencesAreToldApart) {
    using E = TypeParam;
    EXPECT_EQ(this->find(text<E>("aaa"), text<E>("aa")), 0);
    EXPECT_EQ(this->findRev(text<E>("aaa"), text<E>("aa")), 1);
    EXPECT_EQ(this->findZ("aaa", "aa"), 0);
}

TYPED_TEST(FindTest, ANeedleLongerThanTheSourceIsNotFound) {
    using E = TypeParam;
    EXPECT_EQ(this->find(text<E>("ab"), text<E>("abc")), -1);
    EXPECT_EQ(this->findRev(text<E>("ab"), text<E>("abc")), -1);
    EXPECT_EQ(this->find({}, text<E>("a")), -1);
    EXPECT_EQ(this->findRev({}, text<E>("a")), -1);
    EXPECT_EQ(this->findZ("ab", "abc"), -1);
}

TYPED_TEST(FindTest, TheWholeSourceIsAnOccurrence) {
    using E = TypeParam;
    EXPECT_EQ(this->find(text<E>("abc"), text<E>("abc")), 0);
    EXPECT_EQ(this->findRev(text<E>("abc"), text<E>("abc")), 0);
    EXPECT_EQ(this->findZ("abc", "abc"), 0);
}

TYPED_TEST(FindTest, ASingleElementIsFoundFirstOrLast) {
    using E = TypeParam;
    EXPECT_EQ(this->findC(text<E>("abca"), 'a'), 0);
    EXPECT_EQ(this->findRevC(text<E>("abca"), 'a'), 3);
    EXPECT_EQ(this->findC(text<E>("abca"), 'x'), -1);
    EXPECT_EQ(this->findRevC(text<E>("abca"), 'x'), -1);
    EXPECT_EQ(this->findC({}, 'a'), -1);
    EXPECT_EQ(this->findRevC({}, 'a'), -1);
}

TYPED_TEST(FindTest, AZeroTerminatedSearchForTheTerminatorGivesTheLength) {
    EXPECT_EQ(this->findCZ("abc", '\0'), 3);
    EXPECT_EQ(this->findCZ("abc", 'c'), 2);
    EXPECT_EQ(this->findCZ("abc", 'x'), -1);
    EXPECT_EQ(this->findCZ("", '\0'), 0);
    EXPECT_EQ(this->findCZ("", 'x'), -1);
}

TYPED_TEST(FindTest, NothingBehindTheTerminatorIsFound) {
    using E = TypeParam;
    const auto src = text<E>(std::string_view("ab\0cd", 6)), sought = textZ<E>("c");
    int32_t index = untouched;
    EXPECT_EQ(Api<TypeParam>::findCZ(src.data(), 'c', &index), tavStsNoError);
    EXPECT_EQ(index, -1);
    EXPECT_EQ(Api<TypeParam>::findZ(src.data(), sought.data(), &index), tavStsNoError);
    EXPECT_EQ(index, -1);
}

TEST(Find, AHalfZeroUnitDoesNotTerminate) {
    const uint16_t src[] = {0x6100, 0x0062, 0x6300, 'x', 0};
    int32_t index = untouched;
    EXPECT_EQ(tavsFindC_Z_16u(src, 0, &index), tavStsNoError);
    EXPECT_EQ(index, 4);
    EXPECT_EQ(tavsFindC_Z_16u(src, 'x', &index), tavStsNoError);
    EXPECT_EQ(index, 3);
}

TEST(Find, SixteenBitUnitsAreFoundAtUnitPositionsOnly) {
    const uint16_t src[] = {0x4142, 0x4341, 0x4241, 0x1141};
    const uint16_t sought[] = {0x4241};
    int32_t index = untouched;
    EXPECT_EQ(tavsFindC_16u(src, 4, 0x4241, &index), tavStsNoError);
    EXPECT_EQ(index, 2);
    EXPECT_EQ(tavsFind_16u(src, 4, sought, 1, &index), tavStsNoError);
    EXPECT_EQ(index, 2);
}

TYPED_TEST(FindTest, AnySetMemberIsFoundFirstOrLast) {
    using E = TypeParam;
    EXPECT_EQ(this->findCAny(text<E>("hello, world"), text<E>(" ,")), 5);
    EXPECT_EQ(this->findRevCAny(text<E>("hello, world"), text<E>(" ,")), 6);
    EXPECT_EQ(this->findCAny(text<E>("hello"), text<E>("xyz")), -1);
    EXPECT_EQ(this->findRevCAny(text<E>("hello"), text<E>("xyz")), -1);
    EXPECT_EQ(this->findCAny(text<E>("hello"), text<E>("llll")), 2) << "duplicates change nothing";
    EXPECT_EQ(this->findRevCAny(text<E>("hello"), text<E>("llll")), 3);
}

TYPED_TEST(FindTest, AnEmptySetOrSourceGivesNothing) {
    using E = TypeParam;
    EXPECT_EQ(this->findCAny(text<E>("abc"), {}), -1);
    EXPECT_EQ(this->findRevCAny(text<E>("abc"), {}), -1);
    EXPECT_EQ(this->findCAny({}, text<E>("abc")), -1);
    EXPECT_EQ(this->findRevCAny({}, text<E>("abc")), -1);
    EXPECT_EQ(this->findCAny(std::vector<E>(1000, 'a'), {}), -1);
}

// ---- Arguments

TYPED_TEST(FindTest, PointersAreTestedBeforeLengthsAndTheIndexStaysAsItWas) {
    using E = TypeParam;
    using Function = decltype(Api<E>::find);
    const E element = 1;
    for (const Function function : {Api<TypeParam>::find, Api<TypeParam>::findRev, Api<TypeParam>::findCAny,
                                    Api<TypeParam>::findRevCAny}) {
        for (int nulls = 0; nulls < 8; ++nulls) {
            for (const int32_t len : {-1, 0, 1}) {
                for (const int32_t lenOther : {-1, 0, 1}) {
                    int32_t index = untouched;
                    const tavStatus expected = expectedStatus(nulls != 0, len < 0 || lenOther < 0);
                    EXPECT_EQ(function(nulls & 1 ? nullptr : &element, len, nulls & 2 ? nullptr : &element,
                                       lenOther, nulls & 4 ? nullptr : &index),
                              expected);
                    EXPECT_EQ(index == untouched, expected != tavStsNoError);
                }
            }
        }
    }
}

TYPED_TEST(FindTest, TheElementFormsTestPointersBeforeTheLength) {
    using E = TypeParam;
    const E element = 1;
    for (const auto function : {Api<TypeParam>::findC, Api<TypeParam>::findRevC}) {
        for (int nulls = 0; nulls < 4; ++nulls) {
            for (const int32_t len : {-1, 0, 1}) {
                int32_t index = untouched;
                const tavStatus expected = expectedStatus(nulls != 0, len < 0);
                EXPECT_EQ(function(nulls & 1 ? nullptr : &element, len, 1, nulls & 2 ? nullptr : &index),
                          expected);
                EXPECT_EQ(index == untouched, expected != tavStsNoError);
            }
        }
    }
}

TYPED_TEST(FindTest, TheZeroTerminatedFormsTestTheirPointers) {
    using E = TypeParam;
    const E src[] = {'a', 0};
    for (int nulls = 1; nulls < 8; ++nulls) {
        int32_t index = untouched;
        EXPECT_EQ(Api<TypeParam>::findZ(nulls & 1 ? nullptr : src, nulls & 2 ? nullptr : src,
                                        nulls & 4 ? nullptr : &index),
                  tavStsNullPointer);
        EXPECT_EQ(index, untouched);
    }
    int32_t index = untouched;
    EXPECT_EQ(Api<TypeParam>::findCZ(nullptr, 'a', &index), tavStsNullPointer);
    EXPECT_EQ(Api<TypeParam>::findCZ(nullptr, 0, &index), tavStsNullPointer);
    EXPECT_EQ(Api<TypeParam>::findCZ(src, 'a', nullptr), tavStsNullPointer);
    EXPECT_EQ(index, untouched);
}

// ---- Agreement with the plain loops

TYPED_TEST(FindTest, AnElementIsFoundAtEveryPlaceOfEveryLength) {
    using E = TypeParam;
    GuardedBuffer<E> buffer(400);
    Random random(2);
    for (std::size_t count = 0; count <= 300; ++count) {
        std::vector<E> src = random.text<E>(count, 20, 'a');
        for (int hits = static_cast<int>(random.below(3)); hits > 0 && count != 0; --hits) {
            src[random.below(static_cast<uint32_t>(count))] = '!';
        }
        const auto len = static_cast<int32_t>(count);
        const int32_t first = tav::plain::indexOf<E>(src.data(), len, '!');
        const int32_t last = tav::plain::lastIndexOf<E>(src.data(), len, '!');
        atEveryPlace(src, buffer, [&](const E* place) {
            int32_t index = untouched;
            Api<TypeParam>::findC(place, len, '!', &index);
            ASSERT_EQ(index, first) << count;
            Api<TypeParam>::findRevC(place, len, '!', &index);
            ASSERT_EQ(index, last) << count;
        });
        if (this->HasFatalFailure()) return;
    }
}

TYPED_TEST(FindTest, ALoneElementIsFoundAtEveryPosition) {
    using E = TypeParam;
    for (std::size_t count = 1; count <= 150; ++count) {
        std::vector<E> src(count, 'a');
        for (std::size_t at = 0; at < count; ++at) {
            src[at] = '!';
            ASSERT_EQ(this->findC(src, '!'), static_cast<int32_t>(at)) << count;
            ASSERT_EQ(this->findRevC(src, '!'), static_cast<int32_t>(at)) << count;
            ASSERT_EQ(this->findCAny(src, text<E>("!?")), static_cast<int32_t>(at)) << count;
            ASSERT_EQ(this->findRevCAny(src, text<E>("!?")), static_cast<int32_t>(at)) << count;
            src[at] = 'a';
        }
    }
}

TYPED_TEST(FindTest, ZeroTerminatedTextsEndAtEveryPlace) {
    using E = TypeParam;
    GuardedBuffer<E> buffer(400);
    Random random(3);
    const auto sought = textZ<E>("bc");
    for (std::size_t count = 0; count <= 300; ++count) {
        std::vector<E> src = random.text<E>(count, 20, 'd');
        if (count >= 2 && random.below(2) == 0) {
            const std::size_t at = random.below(static_cast<uint32_t>(count - 1));
            src[at] = 'b';
            src[at + 1] = 'c';
        }
        const auto len = static_cast<int32_t>(count);
        const int32_t element = tav::plain::indexOf<E>(src.data(), len, 'b');
        const int32_t string = tav::plain::indexOf<E>(src.data(), len, sought.data(), 2);
        src.push_back(0);
        atEveryPlace(src, buffer, [&](const E* place) {
            int32_t index = untouched;
            Api<TypeParam>::findCZ(place, 0, &index);
            ASSERT_EQ(index, len);
            Api<TypeParam>::findCZ(place, 'b', &index);
            ASSERT_EQ(index, element);
            Api<TypeParam>::findZ(place, sought.data(), &index);
            ASSERT_EQ(index, string);
        });
        if (this->HasFatalFailure()) return;
    }
}

TYPED_TEST(FindTest, AZeroTerminatedSearchCrossesItsMeasuringWindows) {
    using E = TypeParam;
    const auto needle = text<E>("needle");
    for (const std::size_t around : {512U, 2560U, 10752U}) {
        for (std::size_t at = around - 8; at <= around + 3; ++at) {
            for (const std::size_t tail : {0U, 1U, 3000U}) {
                std::vector<E> src(at, 'e');
                src.insert(src.end(), needle.begin(), needle.end());
                src.insert(src.end(), tail, 'e');
                src.push_back(0);
                auto soughtZ = needle;
                soughtZ.push_back(0);
                int32_t index = untouched;
                Api<TypeParam>::findZ(src.data(), soughtZ.data(), &index);
                ASSERT_EQ(index, static_cast<int32_t>(at));
            }
        }
    }
}

TYPED_TEST(FindTest, StringsOfEveryLengthAgreeWithThePlainLoopAtGuardPages) {
    using E = TypeParam;
    GuardedBuffer<E> buffer(400), needleBuffer(400);
    Random random(4);
    for (std::size_t count = 1; count <= 300; ++count) {
        for (int round = 0; round < 12; ++round) {
            // Few values: many near misses; the needle is cut from the text or made like it.
            const uint32_t alphabet = 1 + random.below(4);
            const std::vector<E> src = random.text<E>(count, alphabet, 'a');
            const std::size_t needleCount =
                1 + random.below(static_cast<uint32_t>(std::min<std::size_t>(count, 70)));
            std::vector<E> needle = random.text<E>(needleCount, alphabet, 'a');
            if (round % 2 == 0) {
                const std::size_t from = random.below(static_cast<uint32_t>(count - needleCount + 1));
                needle.assign(src.begin() + static_cast<std::ptrdiff_t>(from),
                              src.begin() + static_cast<std::ptrdiff_t>(from + needleCount));
            }
            const auto len = length(src), lenFind = length(needle);
            const int32_t first = tav::plain::indexOf(src.data(), len, needle.data(), lenFind);
            const int32_t last = tav::plain::lastIndexOf(src.data(), len, needle.data(), lenFind);
            const E* sought = round % 3 == 0 ? needleBuffer.copyToHead(needle.data(), needleCount)
                                             : needleBuffer.copyToTail(needle.data(), needleCount);
            for (const E* place :
                 {buffer.copyToTail(src.data(), count), buffer.copyToHead(src.data(), count)}) {
                int32_t index = untouched;
                Api<TypeParam>::find(place, len, sought, lenFind, &index);
                ASSERT_EQ(index, first) << count << ", needle of " << needleCount << ", round " << round;
                Api<TypeParam>::findRev(place, len, sought, lenFind, &index);
                ASSERT_EQ(index, last) << count << ", needle of " << needleCount << ", round " << round;
            }
        }
    }
}

TYPED_TEST(FindTest, EverySetAgreesWithThePlainLoop) {
    using E = TypeParam;
    GuardedBuffer<E> buffer(2000), setBuffer(400);
    Random random(5);
    for (int round = 0; round < 3000; ++round) {
        const std::size_t count = random.below(round % 4 == 0 ? 1500 : 200);
        const std::size_t setCount = 1 + random.below(round % 3 == 0 ? 200 : 20);
        // Text and set from two ranges of values that hardly meet, so that long walks happen too.
        const uint32_t textFrom = sizeof(E) == 1 ? 100 : 0x2F0, setFrom = textFrom - random.below(100);
        const std::vector<E> src = random.text<E>(count, 100, textFrom);
        const std::vector<E> set = random.text<E>(setCount, 1 + random.below(100), setFrom);
        const auto len = length(src), lenSet = length(set);
        const E* setAt = setBuffer.copyToTail(set.data(), setCount);
        for (const E* place : {buffer.copyToTail(src.data(), count), buffer.copyToHead(src.data(), count)}) {
            int32_t index = untouched;
            Api<TypeParam>::findCAny(place, len, setAt, lenSet, &index);
            ASSERT_EQ(index, tav::plain::indexOfAny(place, len, setAt, lenSet)) << "round " << round;
            Api<TypeParam>::findRevCAny(place, len, setAt, lenSet, &index);
            ASSERT_EQ(index, tav::plain::lastIndexOfAny(place, len, setAt, lenSet)) << "round " << round;
        }
    }
}

TYPED_TEST(FindTest, EveryKindOfSetFindsItsMembersFarInALongText) {
    using E = TypeParam;
    const auto repeat = [](std::string_view pattern, E step) {
        std::vector<E> set = text<E>(pattern);
        for (int i = 0; i < 30; ++i) {
            set.push_back(static_cast<E>(1 + i * step));
        }
        return set;
    };
    const std::vector<std::vector<E>> sets = {
        text<E>("!"),                // one value
        text<E>("!?"),               // two values
        text<E>("!?;"),              // up to four
        text<E>("0123456789"),       // one range
        text<E>("ABCxyz"),           // two ranges
        text<E>("ABCXYZ!"),          // two ranges and a value
        text<E>("0123ABCXYZ!"),      // three ranges and a value
        text<E>("ABCXYZ!#%"),        // too many to be taken for ranges
        text<E>("!#%')+-/13579;=?"), // as many values as vectors are used for
        repeat("", 2),               // a table
        repeat("0123456789", 1),     // more elements than tests, but few ranges
    };
    for (const auto& set : sets) {
        for (const std::size_t count : {319U, 320U, 321U, 1000U, 4099U}) {
            std::vector<E> src(count, 'd');
            ASSERT_EQ(this->findCAny(src, set), -1);
            ASSERT_EQ(this->findRevCAny(src, set), -1);
            for (const std::size_t at : {std::size_t{0}, std::size_t{63}, count / 2, count - 65, count - 1}) {
                for (const E member : set) {
                    src[at] = member;
                    ASSERT_EQ(this->findCAny(src, set), static_cast<int32_t>(at)) << +member;
                    ASSERT_EQ(this->findRevCAny(src, set), static_cast<int32_t>(at)) << +member;
                }
                src[at] = 'd';
            }
        }
    }
}

TYPED_TEST(FindTest, ARunThatGoesOnFromTheGreatestValueAtZeroIsOneSet) {
    using E = TypeParam;
    const E greatest = static_cast<E>(~E{0});
    const auto above = [&](int32_t from, int32_t count) {
        std::vector<E> set;
        for (int32_t i = 0; i < count; ++i) {
            set.push_back(static_cast<E>(greatest + from + i));
        }
        return set;
    };
    // The longest one has every value, and some of them twice.
    for (const auto& set :
         {above(-3, 10), above(-100, 200), above(-5, greatest + 1), above(-5, greatest + 9)}) {
        for (const uint32_t value : {0U, 1U, 2U, 3U, 5U, 6U, 7U, 50U, 99U, 100U, 150U, greatest - 101U,
                                     greatest - 100U, greatest - 4U, greatest - 3U, greatest - 0U}) {
            const std::vector<E> src(40, static_cast<E>(value));
            const bool member = std::find(set.begin(), set.end(), src[0]) != set.end();
            ASSERT_EQ(this->findCAny(src, set), member ? 0 : -1) << value << " of " << set.size();
            ASSERT_EQ(this->findRevCAny(src, set), member ? 39 : -1) << value << " of " << set.size();
        }
    }
}

TEST(Find, AUnitWhoseLowByteIsInTheSetIsNotAMember) {
    std::vector<uint16_t> set;
    for (uint16_t value = 0x3000; value < 0x3100; value = static_cast<uint16_t>(value + 3)) {
        set.push_back(value);
    }
    std::vector<uint16_t> src(1000, 0x0530);
    for (std::size_t i = 0; i < src.size(); ++i) {
        src[i] = static_cast<uint16_t>(0x5000 + i % 256);
    }
    int32_t index = untouched;
    EXPECT_EQ(tavsFindCAny_16u(src.data(), 1000, set.data(), static_cast<int32_t>(set.size()), &index), 0);
    EXPECT_EQ(index, -1);
    src[900] = 0x3003;
    EXPECT_EQ(tavsFindCAny_16u(src.data(), 1000, set.data(), static_cast<int32_t>(set.size()), &index), 0);
    EXPECT_EQ(index, 900);
}
