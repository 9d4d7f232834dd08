// Replacement: every rule about what is consumed, written and refused, by name.
#include "regex/services/support.h"

#include <limits>

using namespace tavtest;

namespace {

constexpr char filler = '~';

struct Case {
    const char* name;
    const char* pattern;
    const char* options;
    const char* templateText;
    const char* source;
    int32_t capacity;
    int32_t consumed;
    int32_t written;
    const char* image; // all that was written from the destination's start on, counted or not
    int32_t results = 40;
};

// Rows of one mode, with the capacity counted up over each boundary.
const Case first[] = {
    {"Cap3WritesPrefixAndItemButNotTheTail", "b", "", "X", "abc", 3, 2, 2, "aX"},
    {"Cap4WritesAll", "b", "", "X", "abc", 4, 3, 3, "aXc"},
    {"Cap1IsNotBeyondThePrefix", "b", "", "X", "abc", 1, 0, 0, ""},
    {"Cap2HasRoomForTheItem", "b", "", "X", "abc", 2, 2, 2, "aX"},
    {"ALargeCapacityChangesNothing", "b", "", "X", "abc", 100, 3, 3, "aXc"},

    {"AMatchBehindTheCapacityWritesNothing", "c", "", "X", "abc", 2, 0, 0, ""},
    {"TheItemIsMeasuredAgainstTheWholeCapacity", "d", "", "XY", "abcd", 4, 4, 5, "abcXY"},
    {"AnItemAsLargeAsTheCapacityDoesNotFit", "d", "", "WXYZ", "abcd", 4, 3, 3, "abc"},
    {"ItemsTogetherReachTheCapacity", "d", "", "XY\\Z", "abcd", 4, 4, 6, "abcXYZ"},
    {"TheItemsBeforeTheOneThatFailsStayUncounted", "d", "", "XY\\ZW", "abcd", 4, 3, 3, "abcXY"},

    {"AGroupIsWritten", "b(.)d", "", "[$1]", "abcde", 20, 5, 5, "a[c]e"},
    {"TheWholeMatchIsWritten", "b(.)d", "", "[$&]", "abcde", 20, 5, 7, "a[bcd]e"},
    {"AGroupThatFitsExactlyIsRefused", "bcd", "", "$&", "abcde", 3, 1, 1, "a"},
    {"AGroupWithAByteToSpareIsWritten", "bcd", "", "$&", "abcde", 4, 4, 4, "abcd"},
    {"AnUnsetGroupWritesNothing", "b(x)?", "", "<$1>", "abc", 20, 3, 4, "a<>c"},
    {"AnEmptyGroupWritesNothing", "b(x?)", "", "<$1>", "abc", 20, 3, 4, "a<>c"},
    {"AGroupThatDoesNotExistWritesNothing", "b", "", "<$7>", "abc", 20, 3, 4, "a<>c"},
    {"AWrappedNumberNeverIndexes", "b", "", "<$1111111111>", "abc", 20, 3, 4, "a<>c"},
    {"AGroupBehindTheResultArrayWritesNothing", "(a)(b)", "", "$2$1$&", "xaby", 20, 4, 5, "xaaby", 2},
    {"OnlyTheWholeMatchInTheResultArray", "(a)(b)", "", "$2$1$&", "xaby", 20, 4, 4, "xaby", 1},

    {"AnEmptyTemplateCountsThePrefixOnly", "b", "", "", "abc", 20, 3, 1, "ac"},
    {"AnEmptyTemplateCopiesTheTailWithoutARoomTest", "b", "", "", "abcdefgh", 2, 8, 1, "acdefgh"},
    {"AnEmptyTemplateStillNeedsThePrefix", "b", "", "", "abc", 1, 0, 0, ""},
    {"AnEmptyTemplateAtTheStart", "a", "", "", "abc", 1, 3, 0, "bc"},
    {"AVanishedBackslashIsAnEmptyTemplateToo", "b", "", "\\", "abc", 2, 3, 1, "ac"},
    {"AReferenceToNothingIsNotAnEmptyTemplate", "b", "", "$3", "abc", 2, 2, 1, "a"},
    {"AReferenceToNothingWithRoom", "b", "", "$3", "abc", 3, 3, 2, "ac"},

    {"AMatchAtTheStart", "a", "", "X", "abc", 4, 3, 3, "Xbc"},
    {"AMatchAtTheEnd", "c", "", "X", "abc", 4, 3, 3, "abX"},
    {"AnEmptyTailNeedsAByteToo", "c", "", "X", "abc", 3, 3, 3, "abX"},
    {"AnEmptyMatchInserts", "(?=c)", "", "X", "abcc", 20, 4, 5, "abXcc"},
    {"AnEmptyMatchAtTheEnd", "$", "", "X", "abc", 20, 3, 4, "abcX"},
    {"AnEmptyMatchAtTheEndBehindTheCapacity", "$", "", "X", "abc", 3, 0, 0, ""},
    {"TheWholeSource", "a.*", "", "X", "abc", 2, 3, 1, "X"},
    {"OnlyTheFirstMatch", "a", "", "X", "aaa", 20, 3, 3, "Xaa"},

    {"NoMatchCopiesTheSource", "x", "", "X", "abc", 20, 3, 3, "abc"},
    {"NoMatchMayFillTheCapacity", "x", "", "X", "abc", 3, 3, 3, "abc"},
    {"NoMatchCopiesWhatFits", "x", "", "X", "abc", 2, 2, 2, "ab"},
    {"NoMatchCopiesOneByte", "x", "", "X", "abc", 1, 1, 1, "a"},
};

const Case all[] = {
    {"EveryMatchIsReplaced", "a", "g", "XY", "aba", 20, 3, 5, "XYbXY"},
    {"WithAByteToSpare", "a", "g", "XY", "aba", 6, 3, 5, "XYbXY"},
    {"ASecondReplacementThatFillsTheRoomIsRefused", "a", "g", "XY", "aba", 5, 2, 3, "XYb"},
    {"AGapThatFillsTheRoomIsRefused", "a", "g", "XY", "aba", 3, 1, 2, "XY"},
    {"AFirstReplacementThatFillsTheRoomIsRefused", "a", "g", "XY", "aba", 2, 0, 0, ""},
    {"AGapBeforeTheFirstMatchIsRefused", "c", "g", "X", "abc", 2, 0, 0, ""},
    {"AGapBeforeTheFirstMatchFits", "c", "g", "X", "abc", 3, 2, 2, "ab"},
    {"APrefixAndAReplacement", "c", "g", "X", "abc", 4, 3, 3, "abX"},
    {"ATailThatFillsTheRoomIsRefused", "a", "g", "X", "abc", 3, 1, 1, "X"},
    {"ATailWithAByteToSpare", "a", "g", "X", "abc", 4, 3, 3, "Xbc"},
    {"TheItemsBeforeTheOneThatFailsStayUncounted", "c", "g", "X\\YZ", "abc", 5, 2, 2, "abX"},
    {"ItemsAreMeasuredAgainstTheRoomLeft", "d", "g", "XY", "abcd", 5, 3, 3, "abc"},

    {"AnEmptyTemplateRemovesEveryMatch", "b", "g", "", "abcbd", 20, 5, 3, "acd"},
    {"AnEmptyTemplateMeasuresTheTail", "b", "g", "", "abcdef", 4, 2, 1, "a"},
    {"ThePatternsGroupsAreReferred", "(.)(.)", "g", "$2$1", "abcd", 20, 4, 4, "badc"},
    {"UnsetGroupsWriteNothing", "(a)|(b)", "g", "<$1|$2>", "ab", 20, 2, 8, "<a|><|b>"},
    {"AGroupThatDoesNotExistWritesNothing", "a", "g", "<$4>", "aba", 20, 3, 5, "<>b<>"},

    {"TheResultArrayLimitsTheReplacements", "a", "g", "X", "aaaa", 20, 4, 4, "XXaa", 2},
    {"APartlyStoredMatchIsNotReplaced", "(a)(b)", "g", "X", "abab", 20, 4, 3, "Xab", 5},
    {"NoWholeMatchStoredCopiesTheSource", "(a)(b)", "g", "X", "abab", 20, 4, 4, "abab", 2},
    {"NoWholeMatchStoredNeedsRoomToSpare", "(a)(b)", "g", "X", "abab", 4, 0, 0, "", 2},
    {"TheSecondMatchBeginsAtItsGroupCount", "(a)(b)", "g", "$2$1", "abab", 20, 4, 4, "baba", 6},

    {"EmptyMatchesEverywhere", "(?=.)", "g", "-", "abc", 20, 3, 6, "-a-b-c"},
    {"AnEmptyMatchAndItsRetry", "x*?", "g", "-", "axb", 20, 3, 7, "-a---b-"},
    {"AnEmptyFirstAlternativeIsReportedTwicePerPlace", "|a", "g", "<$&>", "ba", 20, 2, 12, "<><>b<><>a<>"},
    {"AnEmptyMatchAtTheEndOnly", "$", "g", "X", "abc", 20, 3, 4, "abcX"},

    {"NoMatchCopiesTheSource", "x", "g", "X", "abc", 3, 3, 3, "abc"},
    {"NoMatchCopiesWhatFits", "x", "g", "X", "abc", 2, 2, 2, "ab"},
    {"TheReplacementIsNotSearchedAgain", "a", "g", "aa", "aa", 20, 2, 4, "aaaa"},
};

class Destination {
public:
    explicit Destination(std::size_t room) : buffer_(room), bytes_(buffer_.tail(room)), room_(room) {
        std::memset(bytes_, filler, room);
    }
    uint8_t* get() { return bytes_; }
    std::string image() const { return {reinterpret_cast<const char*>(bytes_), room_}; }

private:
    GuardedBuffer<uint8_t> buffer_;
    uint8_t* bytes_;
    std::size_t room_;
};

/// `room`: bytes in front of the forbidden page.
void check(const Case& one, std::size_t room) {
    SCOPED_TRACE(one.name);
    CompiledPattern pattern(one.pattern, one.options);
    CompiledTemplate compiled(one.templateText);
    const std::string source = one.source;
    Destination dst(room);
    std::vector<tavRegExpFindResult> results(static_cast<std::size_t>(one.results));
    int32_t srcLen = lengthOf(source);
    int32_t dstLen = one.capacity;
    int32_t numResults = one.results;
    const tavStatus status = tavsRegExpReplace_8u(bytesOf(source), &srcLen, dst.get(), &dstLen,
                                                  results.data(), &numResults, pattern.get(), compiled.get());
    EXPECT_GE(status, tavStsNoError);
    EXPECT_EQ(srcLen, one.consumed);
    EXPECT_EQ(dstLen, one.written);
    std::string expected = one.image;
    expected.resize(room, filler);
    EXPECT_EQ(dst.image(), expected);
}

/// A call in which everything is right; the tests below spoil one thing of it.
struct Call {
    CompiledPattern pattern;
    CompiledTemplate compiled;
    std::string source;
    std::string dst = std::string(20, filler);
    std::vector<tavRegExpFindResult> results = std::vector<tavRegExpFindResult>(20);
    int32_t srcLen;
    int32_t dstLen = 20;
    int32_t numResults = 20;

    explicit Call(const char* patternText = "b", const char* options = "", const char* templateText = "X",
                  const char* sourceText = "abc")
        : pattern(patternText, options), compiled(templateText), source(sourceText),
          srcLen(lengthOf(source)) {}

    tavStatus run() {
        return tavsRegExpReplace_8u(bytesOf(source), &srcLen, destination(), &dstLen, results.data(),
                                    &numResults, pattern.get(), compiled.get());
    }
    uint8_t* destination() { return reinterpret_cast<uint8_t*>(dst.data()); }
    std::string text() const { return dst.substr(0, static_cast<std::size_t>(dstLen)); }

    void expectUntouched(int32_t source0, int32_t dst0) const {
        EXPECT_EQ(srcLen, source0);
        EXPECT_EQ(dstLen, dst0);
        EXPECT_EQ(numResults, 20);
        EXPECT_EQ(dst, std::string(20, filler));
    }
};

} // namespace

TEST(ReplaceFirst, WritesExactlyWhatIsDocumented) {
    for (const Case& one : first)
        check(one, std::max(std::strlen(one.image), std::size_t{1}));
}

TEST(ReplaceAll, StaysInsideTheCapacity) {
    for (const Case& one : all)
        check(one, static_cast<std::size_t>(one.capacity));
}

TEST(ReplaceFirst, NeverLeavesTheRoomThatTheHeaderAsksFor) {
    // Match at offset 5: with items 5 + capacity - 1 bytes, with none the source without its match.
    const std::string source = "abcdeXfgh";
    for (int32_t capacity = 1; capacity <= 24; capacity++) {
        for (const char* templateText : {"", "1", "123", "12345\\678", "$&$&$&$&$&$&$&$&$&", "$&1234$&"}) {
            CompiledPattern pattern("X");
            CompiledTemplate compiled(templateText);
            const int32_t room = *templateText == '\0' ? std::max(8, capacity) : 5 + capacity - 1;
            Destination dst(static_cast<std::size_t>(room));
            tavRegExpFindResult result;
            int32_t srcLen = 9, dstLen = capacity, numResults = 1;
            EXPECT_EQ(tavsRegExpReplace_8u(bytesOf(source), &srcLen, dst.get(), &dstLen, &result, &numResults,
                                           pattern.get(), compiled.get()),
                      tavStsNoError);
            EXPECT_LE(srcLen, 9);
            EXPECT_LE(dstLen, room);
        }
    }
}

TEST(Replace, EachNullPointerIsReportedFirst) {
    for (int null = 0; null < 8; null++) {
        Call call;
        call.srcLen = 0;
        call.dstLen = 0;
        const auto unless = [null](int index, auto* pointer) { return index == null ? nullptr : pointer; };
        EXPECT_EQ(tavsRegExpReplace_8u(unless(0, bytesOf(call.source)), unless(1, &call.srcLen),
                                       unless(2, call.destination()), unless(3, &call.dstLen),
                                       unless(4, call.results.data()), unless(5, &call.numResults),
                                       unless(6, call.pattern.get()), unless(7, call.compiled.get())),
                  tavStsNullPointer)
            << "argument " << null;
        call.expectUntouched(0, 0);
    }
}

TEST(Replace, LengthsBelowOneAreBadCounts) {
    for (const int32_t bad : {0, -1, std::numeric_limits<int32_t>::min()}) {
        Call source;
        source.srcLen = bad;
        EXPECT_EQ(source.run(), tavStsBadCount);
        source.expectUntouched(bad, 20);

        Call room;
        room.dstLen = bad;
        EXPECT_EQ(room.run(), tavStsBadCount);
        room.expectUntouched(3, bad);
    }
}

TEST(Replace, LengthsAreTestedBeforeThePatternsTag) {
    Call call;
    call.pattern->tag = 0;
    call.srcLen = 0;
    EXPECT_EQ(call.run(), tavStsBadCount);
    call.expectUntouched(0, 20);
}

TEST(Replace, AWrongTagIsReportedAndTheSourceCopied) {
    Call call;
    call.pattern->tag ^= 1;
    EXPECT_EQ(call.run(), tavStsBadContext);
    EXPECT_EQ(call.text(), "abc");
    EXPECT_EQ(call.srcLen, 3);
    EXPECT_EQ(call.numResults, 20);
}

TEST(Replace, AWrongTagWithALittleRoomCopiesWhatFits) {
    Call call;
    call.pattern->tag = 0;
    call.dstLen = 2;
    EXPECT_EQ(call.run(), tavStsBadContext);
    EXPECT_EQ(call.text(), "ab");
    EXPECT_EQ(call.srcLen, 2);
}

TEST(Replace, ANegativeMatchLimitIsReportedAndTheSourceCopied) {
    Call call("[b]");
    call.pattern->matchLimit = -1;
    EXPECT_EQ(call.run(), tavStsRepeatLimit);
    EXPECT_EQ(call.text(), "abc");
    EXPECT_EQ(call.numResults, 20);
}

TEST(Replace, ALimitTooLowIsNoMatch) {
    Call call("[b]");
    call.pattern->matchLimit = 0;
    EXPECT_EQ(call.run(), tavStsNoError);
    EXPECT_EQ(call.text(), "abc");
    EXPECT_EQ(call.numResults, 0);
}

TEST(Replace, AnEmptyResultArrayIsReportedAndTheSourceCopied) {
    for (const int32_t count : {0, -3}) {
        Call call;
        call.numResults = count;
        EXPECT_EQ(call.run(), tavStsBadCount);
        EXPECT_EQ(call.text(), "abc");
        EXPECT_EQ(call.numResults, count);
    }
}

TEST(Replace, ReportsTheSearchsWarning) {
    Call call("(a)(b)", "", "X", "ab");
    call.numResults = 2;
    EXPECT_EQ(call.run(), tavStsResultsTruncated);
    EXPECT_EQ(call.text(), "X");
    EXPECT_EQ(call.numResults, 2);

    Call global("(a)(b)", "g", "X", "ab");
    global.numResults = 2;
    EXPECT_EQ(global.run(), tavStsResultsTruncated);
    EXPECT_EQ(global.text(), "ab");
}

TEST(Replace, ReportsTheSearchsStatusWhateverFits) {
    Call call("c", "", "X", "abc");
    call.dstLen = 2;
    EXPECT_EQ(call.run(), tavStsNoError);
    EXPECT_EQ(call.text(), "");
    EXPECT_EQ(call.numResults, 1);
    EXPECT_EQ(call.results[0].start, bytesOf(call.source) + 2);
}

TEST(ReplaceAll, StoresTheWholeMatchBeforeTheGroups) {
    Call call("(.)(x)?", "g", "$1", "ab");
    EXPECT_EQ(call.run(), tavStsNoError);
    ASSERT_EQ(call.numResults, 6);
    for (std::size_t match = 0; match < 2; match++) {
        const tavRegExpFindResult* const entries = &call.results[3 * match];
        EXPECT_EQ(entries[0].start, bytesOf(call.source) + match);
        EXPECT_EQ(entries[0].length, 1);
        EXPECT_EQ(entries[1].start, bytesOf(call.source) + match);
        EXPECT_EQ(entries[2].start, nullptr);
        EXPECT_EQ(entries[2].length, -1);
    }
}

TEST(Replace, ANullTemplateRemovesTheMatch) {
    tavRegExpReplaceContext none;
    ASSERT_EQ(tavsRegExpReplaceInit(nullptr, &none), tavStsNoError);
    Call call;
    EXPECT_EQ(tavsRegExpReplace_8u(bytesOf(call.source), &call.srcLen, call.destination(), &call.dstLen,
                                   call.results.data(), &call.numResults, call.pattern.get(), &none),
              tavStsNoError);
    EXPECT_EQ(call.dstLen, 1);
    EXPECT_EQ(call.srcLen, 3);
    EXPECT_EQ(call.dst.substr(0, 2), "ac");
}

TEST(Replace, TheTemplateIsReadAtEveryCall) {
    Call call;
    std::string text = "12";
    std::vector<uint64_t> block(6);
    auto* const context = reinterpret_cast<tavRegExpReplaceContext*>(block.data());
    ASSERT_EQ(tavsRegExpReplaceInit(text.c_str(), context), tavStsNoError);
    text = "34";
    EXPECT_EQ(tavsRegExpReplace_8u(bytesOf(call.source), &call.srcLen, call.destination(), &call.dstLen,
                                   call.results.data(), &call.numResults, call.pattern.get(), context),
              tavStsNoError);
    EXPECT_EQ(call.text(), "a34c");
}

TEST(Replace, CapacitiesBeyondTwoGigabytesInSumDoNotWrap) {
    Call call("c", "", "XYZ", "abc");
    call.dstLen = std::numeric_limits<int32_t>::max();
    EXPECT_EQ(call.run(), tavStsNoError);
    EXPECT_EQ(call.text(), "abXYZ");

    Call global("c", "g", "XYZ", "abc");
    global.dstLen = std::numeric_limits<int32_t>::max();
    EXPECT_EQ(global.run(), tavStsNoError);
    EXPECT_EQ(global.text(), "abXYZ");
}
