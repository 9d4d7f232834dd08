// The reference engine against hand-made programs: it is judged by itself before it judges the library.
#include "reference/reference_engine.h"

#include "reference/hand_made.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace tav::reference;
using namespace tav::regex;

struct Outcome {
    bool found;
    std::vector<Span> slots;
};

Outcome find(const Program& program, const std::string& subject) {
    SearchSettings settings;
    settings.capacity = program.groupCount;
    SearchResult result;
    withLargeStack([&] {
        result = search(
            program, {reinterpret_cast<const uint8_t*>(subject.data()), static_cast<int32_t>(subject.size())},
            settings);
    });
    return {result.numFind > 0, result.entries};
}

/// The smallest match limit with which the program matches; -1 when no limit up to 50,000 is enough.
int levelsNeeded(const Code& code, const std::string& subject, int32_t groupCount = 1) {
    Program program = programOfCode(code, groupCount);
    int low = 0;
    int high = 50000;
    for (program.matchLimit = high; low < high;) {
        program.matchLimit = (low + high) / 2;
        if (find(program, subject).found)
            high = program.matchLimit;
        else
            low = program.matchLimit + 1;
    }
    return low == 50000 ? -1 : low;
}

Code starOfAOrB() {
    return bracket(OP_CAPTURE, 1, {byte('a'), alternative(1), byte('b')}, 1) + Code{greedy(0)};
}

TEST(ReferenceEngine, AStringAndTheEndNeedTwoLevels) {
    EXPECT_EQ(levelsNeeded({text("abc")}, "abc"), 2);
}

TEST(ReferenceEngine, ARepeatedItemNeedsOneLevelWhateverItsCount) {
    EXPECT_EQ(levelsNeeded({byte('a'), greedy(1)}, "a"), 2);
    EXPECT_EQ(levelsNeeded({byte('a'), greedy(1)}, std::string(1000, 'a')), 2);
    EXPECT_EQ(levelsNeeded({make(OP_SET, 0, 1), make(OP_RANGE, 'a', 'c'), lazy(1), byte('x')}, "abcx"), 3);
}

TEST(ReferenceEngine, ARepeatedGroupOfAlternativesNeedsThreeLevelsForEachIterationAndOneMore) {
    for (const int n : {1, 2, 3, 10, 100, 1000}) {
        std::string subject;
        for (int i = 0; i < n; ++i)
            subject += "ab"[i % 2];
        const Code anchored = Code{make(OP_ASSERT, 'A')} + starOfAOrB() + Code{make(OP_ASSERT, 'z')};
        EXPECT_EQ(levelsNeeded(anchored, subject, 2), 3 * n + 3) << n;
    }
    EXPECT_EQ(levelsNeeded(starOfAOrB(), "", 2), 2);
}

TEST(ReferenceEngine, LevelsOfLookaroundAndAtomicBodiesAreGivenBack) {
    EXPECT_EQ(levelsNeeded(bracket(OP_LOOKAHEAD, -1, {text("abcd")}) + Code{text("abcd")}, "abcd"), 3);
    EXPECT_EQ(levelsNeeded(bracket(OP_ATOMIC, -1, {byte('a'), byte('b'), byte('c')}), "abc"), 5);
    EXPECT_EQ(levelsNeeded(bracket(OP_ATOMIC, -1, {byte('a')}) + Code{greedy(0), byte('b')}, "aaaaab"), 3);
}

TEST(ReferenceEngine, ANegativeLookaheadWithoutALevelForItsBodyHolds) {
    Program program;
    const Code code = bracket(OP_NLOOKAHEAD, -1, {byte('a')});
    program = programOfCode(code);
    program.format = 0;
    EXPECT_EQ(find(program, "a").slots, (std::vector<Span>{{1, 0}}));
    program.matchLimit = 2;
    EXPECT_EQ(find(program, "a").slots, (std::vector<Span>{{0, 0}}));
}

TEST(ReferenceEngine, ALimitOfZeroMatchesNothing) {
    Program program;
    program.matchLimit = 0;
    EXPECT_FALSE(find(program, "").found);
    program.matchLimit = 1;
    EXPECT_TRUE(find(program, "").found);
}

TEST(ReferenceEngine, ACaptureShowsTheLastIteration) {
    const Code code = starOfAOrB();
    EXPECT_EQ(find(programOfCode(code, 2), "abba").slots, (std::vector<Span>{{0, 4}, {3, 1}}));
}

TEST(ReferenceEngine, AGroupThatIsEnteredIsSetAndEmptyForItself) {
    const Code code = bracket(OP_CAPTURE, 1, {make(OP_BACKREF, 1), byte('a')}, 1);
    EXPECT_EQ(find(programOfCode(code, 2), "a").slots, (std::vector<Span>{{0, 1}, {0, 1}}));
}

TEST(ReferenceEngine, AnEmptyIterationEndsARepetitionBelowItsMinimum) {
    const Code code = bracket(OP_CAPTURE, 1, {byte('a'), greedy(0)}, 1) + Code{greedy(5, 5), byte('b')};
    EXPECT_EQ(find(programOfCode(code, 2), "aab").slots, (std::vector<Span>{{0, 3}, {2, 0}}));
}

TEST(ReferenceEngine, ALazyRepeatSkipsCountsThatAnOptionalByteDoesNotFollow) {
    const Code code = {byte('a'), lazy(0), byte('b'), greedy(0, 1)};
    EXPECT_EQ(find(programOfCode(code), "aab").slots, (std::vector<Span>{{0, 3}}));
    EXPECT_FALSE(find(programOfCode(code), "aa").found);
}

TEST(ReferenceEngine, AWholeProgramCanBeALeadingMarker) {
    const Code code = {alternative(0), byte('a')};
    EXPECT_EQ(find(programOfCode(code), "a").slots, (std::vector<Span>{{0, 0}}));
}

TEST(ReferenceEngine, AnUnknownOperationFailsOnlyThePathThatReachesIt) {
    const Code code = {make(0x1000001B), alternative(0), byte('a'), alternative(0), make(7)};
    EXPECT_EQ(find(programOfCode(code), "ba").slots, (std::vector<Span>{{1, 1}}));
}

TEST(ReferenceEngine, ARepeatedAtomicGroupGivesBackWholeIterations) {
    const Code ab = bracket(OP_ATOMIC, -1, {byte('a'), byte('b'), greedy(0)});
    EXPECT_EQ(find(programOfCode(ab + Code{greedy(0), text("abc")}), "ababbabc").found, true);
    EXPECT_FALSE(find(programOfCode(ab + Code{text("bc")}), "abbbc").found);
}

TEST(ReferenceEngine, AFalseConditionWithoutASecondBranchMatchesTheEmptyString) {
    const Code optional = bracket(OP_CAPTURE, 1, {byte('a')}, 1) + Code{greedy(0, 1)};
    const Code code = optional + bracket(OP_COND, 2, {make(OP_BACKREF, 1), byte('b')});
    EXPECT_EQ(find(programOfCode(code, 2), "ab").slots, (std::vector<Span>{{0, 2}, {0, 1}}));
    EXPECT_EQ(find(programOfCode(code, 2), "b").slots, (std::vector<Span>{{0, 0}, {-1, -1}}));
    EXPECT_EQ(find(programOfCode(code, 2), "ac").slots, (std::vector<Span>{{0, 0}, {-1, -1}}));
}

TEST(ReferenceEngine, ALookbehindCountsCharacters) {
    const Code code = bracket(OP_LOOKBEHIND, -1, {make(OP_UCHAR, 0xE9)}, 1) + Code{byte('x')};
    EXPECT_EQ(find(programOfCode(code), "\xC3\xA9x").slots, (std::vector<Span>{{2, 1}}));
    EXPECT_FALSE(find(programOfCode(code), "\xE9x").found);
}

TEST(ReferenceSearch, TheRequiredLiteralBoundsWhatIsSeen) {
    const Code code = {byte('a'), text("bc")};
    Program program = programOfCode(code);
    program.lastLiteral = 1;
    EXPECT_TRUE(find(program, "abcabd").found);
    EXPECT_FALSE(find(program, "ab").found);
    const Code ahead = Code{byte('a')} + bracket(OP_LOOKAHEAD, -1, {text("bc")}) + Code{byte('b')};
    program = programOfCode(ahead);
    EXPECT_TRUE(find(program, "abc").found);
    program.lastLiteral = 4;
    EXPECT_FALSE(find(program, "abc").found);
}

TEST(ReferenceSearch, GlobalModeStoresTheGroupsOfEveryMatch) {
    const Code code = bracket(OP_CAPTURE, 1, {byte('a')}, 1);
    const Program program = programOfCode(code, 2);
    const std::string subject = "aba";
    const Subject bytes = {reinterpret_cast<const uint8_t*>(subject.data()), 3};
    SearchSettings settings;
    settings.capacity = 10;
    settings.global = true;
    EXPECT_EQ(search(program, bytes, settings).entries, (std::vector<Span>{{0, 1}, {2, 1}}));
    settings.storeAllEntries = true;
    EXPECT_EQ(search(program, bytes, settings).entries, (std::vector<Span>{{0, 1}, {0, 1}, {2, 1}, {2, 1}}));
    settings.capacity = 1;
    EXPECT_EQ(search(program, bytes, settings).status, tavStsResultsTruncated);
}

TEST(ReferenceSearch, AnEmptyMatchIsTriedAgainForASingleByte) {
    const Code code = {byte('a'), lazy(0)};
    const std::string subject = "aab";
    const Subject bytes = {reinterpret_cast<const uint8_t*>(subject.data()), 3};
    SearchSettings settings;
    settings.capacity = 10;
    settings.global = true;
    EXPECT_EQ(search(programOfCode(code), bytes, settings).entries,
              (std::vector<Span>{{0, 0}, {0, 1}, {1, 0}, {1, 1}, {2, 0}, {3, 0}}));
}

TEST(ReferenceSearch, AReferenceSearchCanBeThousandsOfLevelsDeep) {
    const std::string subject(30000, 'a');
    Program program;
    const Code code = starOfAOrB();
    program = programOfCode(code, 2);
    program.matchLimit = 3 * 30000 + 1;
    EXPECT_EQ(find(program, subject).slots, (std::vector<Span>{{0, 30000}, {29999, 1}}));
    program.matchLimit -= 1;
    EXPECT_EQ(find(program, subject).slots[0], (Span{0, 29999}));
}

} // namespace
