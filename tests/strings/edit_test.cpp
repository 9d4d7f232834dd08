// Editing: stated results, early returns, partial writes, argument tests, in-place and list forms, and random
// edits against std::vector.
#include "strings/copy.h"
#include "strings/support.h"
#include "strings/transform.h"

#include <limits>

using namespace tavtest;

namespace {

constexpr int32_t maximum = std::numeric_limits<int32_t>::max();

template <class E>
class EditTest : public ::testing::Test {
protected:
    /// A destination full of fillers.
    std::vector<E> out = std::vector<E>(64, E{filler});

    /// Its first elements, after checking that everything behind them was left alone.
    std::string written(std::size_t count) {
        for (std::size_t i = count; i < out.size(); ++i) {
            EXPECT_EQ(out[i], filler) << "written at " << i;
        }
        return shown(out.data(), static_cast<int32_t>(count));
    }

    /// Splits into slots of the given capacities.
    struct Fields {
        tavStatus status;
        int32_t count;
        std::vector<std::string> fields;
        std::vector<int32_t> lengths;
    };
    static Fields split(std::string_view characters, std::vector<int32_t> capacities) {
        const auto src = textZ<E>(characters);
        std::vector<std::vector<E>> buffers(capacities.size(), std::vector<E>(40, E{filler}));
        std::vector<E*> slots;
        for (auto& buffer : buffers) {
            slots.push_back(buffer.data());
        }
        Fields result{0, static_cast<int32_t>(capacities.size()), {}, std::move(capacities)};
        result.status = Api<E>::split(src.data(), static_cast<int32_t>(characters.size()), ',', slots.data(),
                                      result.lengths.data(), &result.count);
        for (std::size_t k = 0; k < static_cast<std::size_t>(result.count); ++k) {
            result.fields.push_back(shown(buffers[k].data(), result.lengths[k]));
            EXPECT_EQ(buffers[k][static_cast<std::size_t>(result.lengths[k])], filler)
                << "nothing behind a field";
        }
        return result;
    }
};
TYPED_TEST_SUITE(EditTest, Elements);

using Strings = std::vector<std::string>;

} // namespace

// ---- Insert

TYPED_TEST(EditTest, InsertPutsTheStringBeforeTheStartIndex) {
    using E = TypeParam;
    const auto src = text<E>("abcd"), piece = text<E>("XY");
    const struct {
        int32_t start;
        const char* expected;
    } cases[] = {{0, "XYabcd"}, {1, "aXYbcd"}, {3, "abcXYd"}, {4, "abcdXY"}};
    for (const auto& c : cases) {
        std::fill(this->out.begin(), this->out.end(), E{filler});
        EXPECT_EQ(Api<E>::insert(src.data(), 4, piece.data(), 2, this->out.data(), c.start), tavStsNoError);
        EXPECT_EQ(this->written(6), c.expected);
        auto inPlace = text<E>("abcd##");
        int32_t len = 4;
        EXPECT_EQ(Api<E>::insertInPlace(piece.data(), 2, inPlace.data(), &len, c.start), tavStsNoError);
        EXPECT_EQ(len, 6);
        EXPECT_EQ(shown(inPlace.data(), 6), c.expected);
    }
}

TYPED_TEST(EditTest, InsertOneBeyondTheEndIsRefused) {
    using E = TypeParam;
    const auto src = text<E>("abcd"), piece = text<E>("XY");
    EXPECT_EQ(Api<E>::insert(src.data(), 4, piece.data(), 2, this->out.data(), 5), tavStsNegativeLength);
    this->written(0);
    int32_t len = 4;
    EXPECT_EQ(Api<E>::insertInPlace(piece.data(), 2, this->out.data(), &len, 5), tavStsNegativeLength);
    EXPECT_EQ(len, 4);
    this->written(0);
}

TYPED_TEST(EditTest, InsertOfNothingDeliberatelyWritesNothing) {
    using E = TypeParam;
    const auto src = text<E>("abcd"), piece = text<E>("XY");
    EXPECT_EQ(Api<E>::insert(src.data(), 4, piece.data(), 0, this->out.data(), 2), tavStsNoError);
    this->written(0);
    EXPECT_EQ(Api<E>::insert(src.data(), 4, piece.data(), 0, this->out.data(), 5), tavStsNegativeLength)
        << "the arguments are tested all the same";
    int32_t len = 4;
    EXPECT_EQ(Api<E>::insertInPlace(piece.data(), 0, this->out.data(), &len, 2), tavStsNoError);
    EXPECT_EQ(len, 4);
    this->written(0);
}

TYPED_TEST(EditTest, InsertMayWriteIntoItsSource) {
    using E = TypeParam;
    for (int32_t start = 0; start <= 30; ++start) {
        auto buffer = text<E>("abcdefghijklmnopqrstuvwxyz0123##########");
        const auto piece = text<E>("-=+*");
        std::string expected = shown(buffer.data(), 30);
        expected.insert(static_cast<std::size_t>(start), "-=+*");
        EXPECT_EQ(Api<E>::insert(buffer.data(), 30, piece.data(), 4, buffer.data(), start), tavStsNoError);
        EXPECT_EQ(shown(buffer.data(), 40), expected + "######");
    }
}

TYPED_TEST(EditTest, InsertTestsPointersThenLengths) {
    using E = TypeParam;
    const E a[4] = {1, 2, 3, 4};
    for (int nulls = 0; nulls < 8; ++nulls) {
        for (const int32_t srcLen : {-1, 0, 2}) {
            for (const int32_t insertLen : {-1, 0, 1}) {
                for (const int32_t start : {-1, 0, 1, 2, 3}) {
                    const E* src = nulls & 1 ? nullptr : a;
                    const E* piece = nulls & 2 ? nullptr : a;
                    const bool bad = srcLen < 0 || insertLen < 0 || start < 0 || start > srcLen;
                    std::vector<E> dst(8, E{filler});
                    EXPECT_EQ(Api<E>::insert(src, srcLen, piece, insertLen, nulls & 4 ? nullptr : dst.data(),
                                             start),
                              expectedStatus(nulls != 0, bad));
                    const bool done = nulls == 0 && !bad && insertLen > 0;
                    EXPECT_EQ(dst != std::vector<E>(8, E{filler}), done);

                    std::vector<E> inPlace(8, E{filler});
                    int32_t len = srcLen;
                    EXPECT_EQ(Api<E>::insertInPlace(piece, insertLen, nulls & 1 ? nullptr : inPlace.data(),
                                                    nulls & 4 ? nullptr : &len, start),
                              expectedStatus(nulls != 0, bad));
                    EXPECT_EQ(len, done ? srcLen + insertLen : srcLen);
                    EXPECT_EQ(inPlace != std::vector<E>(8, E{filler}), done);
                }
            }
        }
    }
}

TYPED_TEST(EditTest, InsertInPlaceRefusesALengthThatNoLongerFits) {
    using E = TypeParam;
    const E piece[1] = {1};
    int32_t len = maximum;
    EXPECT_EQ(Api<E>::insertInPlace(piece, 1, this->out.data(), &len, maximum), tavStsNegativeLength);
    EXPECT_EQ(len, maximum);
    this->written(0);
}

// ---- Remove

TYPED_TEST(EditTest, RemoveLeavesOutTheRun) {
    using E = TypeParam;
    const auto src = text<E>("abcdef");
    const struct {
        int32_t start, count;
        const char* expected;
    } cases[] = {{0, 2, "cdef"},   {2, 3, "abf"},    {4, 2, "abcd"},
                 {3, 0, "abcdef"}, {6, 0, "abcdef"}, {0, 6, ""}};
    for (const auto& c : cases) {
        const std::string expected = c.expected;
        std::fill(this->out.begin(), this->out.end(), E{filler});
        EXPECT_EQ(Api<E>::remove(src.data(), 6, this->out.data(), c.start, c.count), tavStsNoError);
        EXPECT_EQ(this->written(expected.size()), expected);
        auto inPlace = src;
        int32_t len = 6;
        EXPECT_EQ(Api<E>::removeInPlace(inPlace.data(), &len, c.start, c.count), tavStsNoError);
        EXPECT_EQ(shown(inPlace.data(), len), expected);
    }
}

TYPED_TEST(EditTest, RemoveInPlaceOfTheTailCutsTheLength) {
    using E = TypeParam;
    auto inPlace = text<E>("abcdef");
    int32_t len = 6;
    EXPECT_EQ(Api<E>::removeInPlace(inPlace.data(), &len, 2, 4), tavStsNoError);
    EXPECT_EQ(len, 2);
    EXPECT_EQ(shown(inPlace.data(), 6), "abcdef") << "nothing behind the new length is touched";
}

TYPED_TEST(EditTest, RemoveTestsPointersThenLengths) {
    using E = TypeParam;
    const E a[4] = {1, 2, 3, 4};
    for (int nulls = 0; nulls < 4; ++nulls) {
        for (const int32_t srcLen : {-5, -1, 0, 3}) {
            for (const int32_t start : {-1, 0, 1, 3, maximum}) {
                for (const int32_t count : {-1, 0, 1, 2, maximum}) {
                    const bool bad =
                        count < 0 || start < 0 || int64_t{srcLen} < int64_t{start} + count || srcLen < 0;
                    const tavStatus expected = expectedStatus(nulls != 0, bad);
                    std::vector<E> dst(4, E{filler});
                    EXPECT_EQ(Api<E>::remove(nulls & 1 ? nullptr : a, srcLen,
                                             nulls & 2 ? nullptr : dst.data(), start, count),
                              expected)
                        << srcLen << ' ' << start << ' ' << count;
                    EXPECT_EQ(dst != std::vector<E>(4, E{filler}), expected == 0 && srcLen - count > 0);
                    int32_t len = srcLen;
                    EXPECT_EQ(Api<E>::removeInPlace(nulls & 1 ? nullptr : dst.data(),
                                                    nulls & 2 ? nullptr : &len, start, count),
                              expected);
                    EXPECT_EQ(len, expected == 0 ? srcLen - count : srcLen);
                }
            }
        }
    }
}

TYPED_TEST(EditTest, RemoveComputesThePositionInSixtyFourBits) {
    using E = TypeParam;
    const auto src = text<E>("abcdef");
    int32_t len = 6;
    EXPECT_EQ(Api<E>::remove(src.data(), 6, this->out.data(), maximum, maximum), tavStsNegativeLength);
    EXPECT_EQ(Api<E>::removeInPlace(this->out.data(), &len, 1, maximum), tavStsNegativeLength);
    EXPECT_EQ(len, 6);
    this->written(0);
}

// ---- Concat

TYPED_TEST(EditTest, ConcatWritesOneBehindTheOther) {
    using E = TypeParam;
    const auto one = text<E>("abc"), two = text<E>("de");
    EXPECT_EQ(Api<E>::concat(one.data(), 3, two.data(), 2, this->out.data()), tavStsNoError);
    EXPECT_EQ(this->written(5), "abcde");
    EXPECT_EQ(Api<E>::concat(one.data(), 0, two.data(), 0, this->out.data() + 5), tavStsNoError);
    EXPECT_EQ(this->written(5), "abcde");
    EXPECT_EQ(Api<E>::concat(one.data(), 0, two.data(), 2, this->out.data()), tavStsNoError);
    EXPECT_EQ(this->written(5), "decde");
}

TYPED_TEST(EditTest, ConcatTestsPointersThenLengths) {
    using E = TypeParam;
    const E a[1] = {1};
    for (int nulls = 0; nulls < 8; ++nulls) {
        for (const int32_t len1 : {-1, 0, 1}) {
            for (const int32_t len2 : {-1, 0, 1}) {
                std::vector<E> dst(4, E{filler});
                const tavStatus expected = expectedStatus(nulls != 0, len1 < 0 || len2 < 0);
                EXPECT_EQ(Api<E>::concat(nulls & 1 ? nullptr : a, len1, nulls & 2 ? nullptr : a, len2,
                                         nulls & 4 ? nullptr : dst.data()),
                          expected);
                EXPECT_EQ(dst != std::vector<E>(4, E{filler}), expected == 0 && len1 + len2 > 0);
            }
        }
    }
}

TYPED_TEST(EditTest, ConcatOfAListJoinsAllStrings) {
    using E = TypeParam;
    const auto a = text<E>("ab"), b = text<E>("c"), c = text<E>("def");
    const E* strings[] = {a.data(), b.data(), b.data(), c.data()};
    const int32_t lengths[] = {2, 1, 0, 3};
    EXPECT_EQ(Api<E>::concatList(strings, lengths, 4, this->out.data()), tavStsNoError);
    EXPECT_EQ(this->written(6), "abcdef");
    EXPECT_EQ(Api<E>::concatListWithDelimiter(strings, lengths, 4, '-', this->out.data()), tavStsNoError);
    EXPECT_EQ(this->written(9), "ab-c--def");
}

TYPED_TEST(EditTest, ConcatOfOneStringWritesNoSeparator) {
    using E = TypeParam;
    const auto a = text<E>("ab");
    const E* strings[] = {a.data()};
    const int32_t lengths[] = {2};
    EXPECT_EQ(Api<E>::concatListWithDelimiter(strings, lengths, 1, '-', this->out.data()), tavStsNoError);
    EXPECT_EQ(this->written(2), "ab");
}

TYPED_TEST(EditTest, ConcatOfAListTestsPointersThenTheCount) {
    using E = TypeParam;
    const E a[1] = {1};
    const E* strings[] = {a};
    const int32_t lengths[] = {1};
    for (int nulls = 0; nulls < 8; ++nulls) {
        for (const int32_t count : {-1, 0, 1}) {
            const auto pSrcs = nulls & 1 ? nullptr : strings;
            const auto srcLens = nulls & 2 ? nullptr : lengths;
            const auto pDst = nulls & 4 ? nullptr : this->out.data();
            const tavStatus expected = nulls != 0  ? tavStsNullPointer
                                       : count < 1 ? tavStsBadCount
                                                   : tavStsNoError;
            EXPECT_EQ(Api<E>::concatList(pSrcs, srcLens, count, pDst), expected);
            EXPECT_EQ(Api<E>::concatListWithDelimiter(pSrcs, srcLens, count, '-', pDst), expected);
        }
    }
}

TYPED_TEST(EditTest, ConcatOfAListKeepsWhatItWroteBeforeARefusedString) {
    using E = TypeParam;
    const auto a = text<E>("ab"), b = text<E>("cd");
    const E* withNull[] = {a.data(), b.data(), nullptr, a.data()};
    const E* allGood[] = {a.data(), b.data(), a.data(), a.data()};
    const int32_t lengths[] = {2, 2, 2, 2}, withNegative[] = {2, 2, -1, 2};
    EXPECT_EQ(Api<E>::concatList(withNull, lengths, 4, this->out.data()), tavStsNullPointer);
    EXPECT_EQ(this->written(4), "abcd");
    EXPECT_EQ(Api<E>::concatList(withNull, withNegative, 4, this->out.data()), tavStsNullPointer)
        << "the pointer is tested before its length";
    EXPECT_EQ(Api<E>::concatList(allGood, withNegative, 4, this->out.data()), tavStsNegativeLength);
    EXPECT_EQ(this->written(4), "abcd");

    EXPECT_EQ(Api<E>::concatListWithDelimiter(withNull, lengths, 4, '-', this->out.data()),
              tavStsNullPointer);
    EXPECT_EQ(this->written(5), "ab-cd") << "no separator before the refused string";
    EXPECT_EQ(Api<E>::concatListWithDelimiter(allGood, withNegative, 4, '-', this->out.data()),
              tavStsNegativeLength);
    EXPECT_EQ(this->written(5), "ab-cd");
}

TYPED_TEST(EditTest, AnEmptyListEntryMustStillHaveAPointer) {
    using E = TypeParam;
    const E* strings[] = {nullptr};
    const int32_t lengths[] = {0};
    EXPECT_EQ(Api<E>::concatList(strings, lengths, 1, this->out.data()), tavStsNullPointer);
}

// ---- Split

TYPED_TEST(EditTest, SplitCutsAtEverySeparator) {
    const struct {
        const char* src;
        Strings fields;
    } cases[] = {
        {"a,,b", {"a", "", "b"}}, // neighbouring separators: an empty field
        {"a,b,", {"a", "b"}},     // a separator at the very end: no field behind it
        {",a", {"", "a"}},        // one at the start: an empty field
        {"", {}},                 // no fields
        {",", {""}},
        {",,", {"", ""}},
        {"abc", {"abc"}},
        {"a,b,c,d", {"a", "b", "c", "d"}}, // as many fields as slots: no warning
        {"a,b,c,d,", {"a", "b", "c", "d"}},
    };
    for (const auto& c : cases) {
        const auto got = this->split(c.src, {30, 30, 30, 30});
        EXPECT_EQ(got.status, tavStsNoError) << c.src;
        EXPECT_EQ(got.fields, c.fields) << c.src;
    }
}

TYPED_TEST(EditTest, SplitWithTooFewSlotsIsUnfinished) {
    const auto got = this->split("a,,b", {30, 30});
    EXPECT_EQ(got.status, tavStsSplitUnfinished);
    EXPECT_EQ(got.fields, (Strings{"a", ""}));
}

TYPED_TEST(EditTest, SplitCutsAFieldToItsCapacity) {
    const auto got = this->split("abcde,f", {3, 30, 30});
    EXPECT_EQ(got.status, tavStsFieldTruncated);
    EXPECT_EQ(got.fields, (Strings{"abc", "f"}));
    EXPECT_EQ(got.lengths, (std::vector<int32_t>{3, 1, 30})) << "an unused slot keeps its capacity";
    EXPECT_EQ(this->split("abcde", {0}).status, tavStsFieldTruncated);
    EXPECT_EQ(this->split("abc,d", {3, 1}).status, tavStsNoError) << "a field that just fits";
}

TYPED_TEST(EditTest, SplitUnfinishedOutranksTruncated) {
    EXPECT_EQ(this->split("abcde,f,g", {3, 30}).status, tavStsSplitUnfinished);
    EXPECT_EQ(this->split("abcde,f", {3, 30}).status, tavStsFieldTruncated);
    EXPECT_EQ(this->split("abcde,f,", {3, 30}).status, tavStsFieldTruncated)
        << "a separator at the end is no remaining text";
}

TYPED_TEST(EditTest, SplitTestsPointersThenLengthThenCount) {
    using E = TypeParam;
    const auto src = text<E>("a,b");
    for (int nulls = 0; nulls < 16; ++nulls) {
        for (const int32_t len : {-1, 0, 3}) {
            for (const int32_t slots : {-1, 0, 1}) {
                E field[4] = {filler, filler, filler, filler};
                E* fields[] = {field};
                int32_t lengths[] = {4}, count = slots;
                const tavStatus expected = nulls != 0  ? tavStsNullPointer
                                           : len < 0   ? tavStsNegativeLength
                                           : slots < 1 ? tavStsBadCount
                                           : len == 0  ? tavStsNoError
                                                       : tavStsSplitUnfinished;
                EXPECT_EQ(Api<E>::split(nulls & 1 ? nullptr : src.data(), len, ',',
                                        nulls & 2 ? nullptr : fields, nulls & 4 ? nullptr : lengths,
                                        nulls & 8 ? nullptr : &count),
                          expected);
                if (expected < 0) {
                    EXPECT_EQ(count, slots);
                    EXPECT_EQ(lengths[0], 4);
                    EXPECT_EQ(field[0], filler);
                }
            }
        }
    }
}

TYPED_TEST(EditTest, SplitTestsASlotOnlyWhenAFieldReachesIt) {
    using E = TypeParam;
    const auto src = text<E>("a,b");
    E first[2] = {filler, filler};
    {
        E* fields[] = {first, nullptr};
        int32_t lengths[] = {2, 0}, count = 2;
        EXPECT_EQ(Api<E>::split(src.data(), 3, ',', fields, lengths, &count), tavStsNullPointer)
            << "a null slot is refused whatever its capacity";
        EXPECT_EQ(count, 2) << "the count stays as it was";
        EXPECT_EQ(lengths[0], 1) << "what was filled stays filled";
        EXPECT_EQ(first[0], 'a');
    }
    {
        E* fields[] = {first, first};
        int32_t lengths[] = {2, -1}, count = 2;
        EXPECT_EQ(Api<E>::split(src.data(), 3, ',', fields, lengths, &count), tavStsNegativeLength);
        EXPECT_EQ(count, 2);
        EXPECT_EQ(lengths[1], -1);
    }
    {
        E* fields[] = {first, nullptr};
        int32_t lengths[] = {2, -1}, count = 2;
        EXPECT_EQ(Api<E>::split(src.data(), 2, ',', fields, lengths, &count), tavStsNoError)
            << "the second slot is never reached";
        EXPECT_EQ(count, 1);
    }
    {
        E* fields[] = {nullptr};
        int32_t lengths[] = {-1}, count = 1;
        EXPECT_EQ(Api<E>::split(src.data(), 0, ',', fields, lengths, &count), tavStsNoError)
            << "an empty source reaches no slot";
        EXPECT_EQ(count, 0);
    }
}

TYPED_TEST(EditTest, SplitAndConcatAreInverse) {
    using E = TypeParam;
    Random random(11);
    for (int round = 0; round < 500; ++round) {
        auto src = random.text<E>(1 + random.below(200), 4, '*'); // "*+,-"
        src.push_back('x');                                       // a separator at the end would be lost
        std::vector<std::vector<E>> buffers(src.size() + 1, std::vector<E>(src.size()));
        std::vector<E*> slots;
        std::vector<const E*> strings;
        for (auto& buffer : buffers) {
            slots.push_back(buffer.data());
            strings.push_back(buffer.data());
        }
        std::vector<int32_t> lengths(buffers.size(), length(src));
        auto count = static_cast<int32_t>(buffers.size());
        ASSERT_EQ(Api<E>::split(src.data(), length(src), ',', slots.data(), lengths.data(), &count),
                  tavStsNoError);
        std::vector<E> joined(src.size());
        ASSERT_EQ(Api<E>::concatListWithDelimiter(strings.data(), lengths.data(), count, ',', joined.data()),
                  tavStsNoError);
        ASSERT_EQ(joined, src);
    }
}

// ---- Replace

TYPED_TEST(EditTest, ReplaceChangesEveryOccurrence) {
    using E = TypeParam;
    const auto src = text<E>("a-b--c");
    EXPECT_EQ(Api<E>::replace(src.data(), this->out.data(), 6, '-', '+'), tavStsNoError);
    EXPECT_EQ(this->written(6), "a+b++c");
    auto inPlace = src;
    EXPECT_EQ(Api<E>::replace(inPlace.data(), inPlace.data(), 6, '-', '+'), tavStsNoError);
    EXPECT_EQ(shown(inPlace.data(), 6), "a+b++c");
    EXPECT_EQ(Api<E>::replace(src.data(), inPlace.data(), 0, '-', '*'), tavStsNoError);
    EXPECT_EQ(shown(inPlace.data(), 6), "a+b++c") << "length 0 writes nothing";
}

TYPED_TEST(EditTest, ReplaceTestsPointersThenTheLength) {
    using E = TypeParam;
    const E a[1] = {'-'};
    for (int nulls = 0; nulls < 4; ++nulls) {
        for (const int32_t len : {-1, 0, 1}) {
            E dst[1] = {filler};
            EXPECT_EQ(Api<E>::replace(nulls & 1 ? nullptr : a, nulls & 2 ? nullptr : dst, len, '-', '+'),
                      expectedStatus(nulls != 0, len < 0));
            EXPECT_EQ(dst[0], nulls == 0 && len == 1 ? '+' : filler);
        }
    }
}

TYPED_TEST(EditTest, ReplaceAgreesWithThePlainLoopAtEveryLengthAndPlace) {
    using E = TypeParam;
    Random random(12);
    GuardedBuffer<E> from(400), to(400);
    for (std::size_t count = 0; count <= 300; ++count) {
        const auto src = random.text<E>(count, 3, 0xFE); // 16-bit values here cross the byte's range
        const E oldVal = static_cast<E>(0xFE + random.below(3)),
                newVal = static_cast<E>(0xFE + random.below(3));
        std::vector<E> expected = src;
        std::replace(expected.begin(), expected.end(), oldVal, newVal);
        atEveryPlace(src, from, [&](E* place) {
            for (E* dst : {to.tail(count), to.head(), to.head() + 1, place}) {
                ASSERT_EQ(Api<E>::replace(place, dst, static_cast<int32_t>(count), oldVal, newVal),
                          tavStsNoError);
                ASSERT_TRUE(std::equal(expected.begin(), expected.end(), dst)) << count;
            }
        });
        if (this->HasFatalFailure()) return;
    }
}

TYPED_TEST(EditTest, ReplaceKeepsTheElementOrderInOverlappingBuffers) {
    using E = TypeParam;
    // Writing one element ahead of the reading repeats the first result through the whole text.
    auto buffer = text<E>("-bcdefghijklmnopqrstuvwxyz0123456789");
    EXPECT_EQ(Api<E>::replace(buffer.data(), buffer.data() + 1, length(buffer) - 1, '-', '+'), tavStsNoError);
    EXPECT_EQ(shown(buffer.data(), length(buffer)), "-" + std::string(35, '+'));
    // Writing behind the reading is a move.
    buffer = text<E>("abc-efg-ijk-mno-qrs-uvw-yz0-234-678-");
    EXPECT_EQ(Api<E>::replace(buffer.data() + 2, buffer.data(), 34, '-', '+'), tavStsNoError);
    EXPECT_EQ(shown(buffer.data(), 36), "c+efg+ijk+mno+qrs+uvw+yz0+234+678+8-");
}

// ---- Random edits

TYPED_TEST(EditTest, RandomEditsAgreeWithVectors) {
    using E = TypeParam;
    Random random(13);
    GuardedBuffer<E> from(700), piece(400), to(1200);
    for (int round = 0; round < 3000; ++round) {
        const auto src = random.text<E>(random.below(300), 1000, 0);
        const auto inserted = random.text<E>(random.below(round % 2 == 0 ? 8 : 300), 1000, 0);
        const auto start = static_cast<int32_t>(random.below(static_cast<uint32_t>(src.size()) + 1));
        const E* pieceAt = piece.copyToTail(inserted.data(), inserted.size());
        auto expected = src;
        expected.insert(expected.begin() + start, inserted.begin(), inserted.end());
        const E* srcAt = from.copyToTail(src.data(), src.size());
        if (!inserted.empty()) {
            E* dst = to.tail(expected.size());
            ASSERT_EQ(Api<E>::insert(srcAt, length(src), pieceAt, length(inserted), dst, start),
                      tavStsNoError);
            ASSERT_TRUE(std::equal(expected.begin(), expected.end(), dst));
        }
        E* inPlace = to.tail(expected.size());
        if (!src.empty()) std::memcpy(inPlace, src.data(), src.size() * sizeof(E));
        int32_t len = length(src);
        ASSERT_EQ(Api<E>::insertInPlace(pieceAt, length(inserted), inPlace, &len, start), tavStsNoError);
        ASSERT_EQ(len, length(expected));
        ASSERT_TRUE(std::equal(expected.begin(), expected.end(), inPlace));

        ASSERT_EQ(Api<E>::removeInPlace(inPlace, &len, start, length(inserted)), tavStsNoError);
        ASSERT_EQ(len, length(src));
        ASSERT_TRUE(std::equal(src.begin(), src.end(), inPlace));
        E* removed = from.tail(src.size());
        std::fill_n(removed, src.size(), E{0});
        const E* whole = to.copyToTail(expected.data(), expected.size());
        ASSERT_EQ(Api<E>::remove(whole, length(expected), removed, start, length(inserted)), tavStsNoError);
        ASSERT_TRUE(std::equal(src.begin(), src.end(), removed));

        E* joined = to.tail(src.size() + inserted.size());
        const E* first = from.copyToHead(src.data(), src.size());
        ASSERT_EQ(Api<E>::concat(first, length(src), pieceAt, length(inserted), joined), tavStsNoError);
        ASSERT_TRUE(std::equal(src.begin(), src.end(), joined));
        ASSERT_TRUE(std::equal(inserted.begin(), inserted.end(), joined + src.size()));
    }
}

// ---- The shared copying routines

TYPED_TEST(EditTest, TheCopyingRoutinesTestTheirOwnArguments) {
    using E = TypeParam;
    const E src[2] = {1, 2};
    E dst[2] = {filler, filler};
    for (const auto routine : {tav::copyElements<E>, tav::moveElements<E>}) {
        EXPECT_EQ(routine(nullptr, dst, 1), tavStsNullPointer);
        EXPECT_EQ(routine(src, nullptr, 1), tavStsNullPointer);
        EXPECT_EQ(routine(nullptr, dst, -1), tavStsNullPointer);
        EXPECT_EQ(routine(src, dst, 0), tavStsBadCount);
        EXPECT_EQ(routine(src, dst, -1), tavStsBadCount);
        EXPECT_EQ(dst[0], filler);
        EXPECT_EQ(routine(src, dst, 2), tavStsNoError);
        EXPECT_EQ(dst[1], 2);
        dst[0] = dst[1] = filler;
    }
}

TYPED_TEST(EditTest, AMoveIsSafeInBothDirections) {
    using E = TypeParam;
    auto buffer = text<E>("abcdefgh");
    EXPECT_EQ(tav::moveElements(buffer.data(), buffer.data() + 2, 6), tavStsNoError);
    EXPECT_EQ(shown(buffer.data(), 8), "ababcdef");
    EXPECT_EQ(tav::moveElements(buffer.data() + 2, buffer.data(), 6), tavStsNoError);
    EXPECT_EQ(shown(buffer.data(), 8), "abcdefef");
}

TYPED_TEST(EditTest, TextMovesByAnyDistanceInBothDirections) {
    using E = TypeParam;
    // Distances below, at and beyond a vector and a step of vectors; lengths up to where copies change
    // methods.
    Random random(19);
    constexpr int32_t unit = 16 / sizeof(E);
    GuardedBuffer<E> buffer(6000 / sizeof(E));
    for (const int32_t distance :
         {1, 2, 3, unit - 1, unit, unit + 1, 3 * unit, 4 * unit, 4 * unit + 1, 9 * unit}) {
        for (int32_t count = 0; count < 4000 / static_cast<int32_t>(sizeof(E));
             count += count < 150 ? 1 : 61) {
            const auto src = random.text<E>(static_cast<std::size_t>(count), 0x10000, 0);
            const auto piece = random.text<E>(static_cast<std::size_t>(distance), 0x10000, 0);
            auto expected = piece;
            expected.insert(expected.end(), src.begin(), src.end());
            E* const place = buffer.tail(expected.size());
            std::copy(src.begin(), src.end(), place);
            int32_t len = count;
            ASSERT_EQ(Api<E>::insertInPlace(piece.data(), distance, place, &len, 0), tavStsNoError);
            ASSERT_TRUE(std::equal(expected.begin(), expected.end(), place)) << count << ' ' << distance;
            ASSERT_EQ(Api<E>::removeInPlace(place, &len, 0, distance), tavStsNoError);
            ASSERT_EQ(len, count);
            ASSERT_TRUE(std::equal(src.begin(), src.end(), place)) << count << ' ' << distance;
        }
    }
}

TYPED_TEST(EditTest, CopiesOfEveryLengthWriteNothingElse) {
    using E = TypeParam;
    Random random(20);
    GuardedBuffer<E> from(12000), to(5000); // room for two copies of the source
    for (std::size_t count = 0; count < 5000 / sizeof(E); count += count < 300 ? 1 : 97) {
        const auto src = random.text<E>(count, 0x10000, 0);
        const E none = 0;
        for (const E* place : {from.copyToTail(src.data(), count), from.copyToHead(src.data(), count)}) {
            E* const dst = to.tail(count + 1);
            std::fill_n(dst, count + 1, E{filler});
            ASSERT_EQ(Api<E>::concat(place, length(src), &none, 0, dst), tavStsNoError);
            ASSERT_TRUE(std::equal(src.begin(), src.end(), dst)) << count;
            ASSERT_EQ(dst[count], filler) << count;
        }
    }
}
