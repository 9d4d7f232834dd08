// Programs that no pattern compiles to, searched by the library: the odd ones answer as the format says,
// the broken ones at least leave the memory alone.
#include "reference/comparison.h"
#include "reference/hand_made.h"
#include "reference/random_patterns.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

namespace {

using namespace tav::reference;
using namespace tav::regex;

struct HandMade {
    const char* what;
    Code code;
    int32_t groupCount;
    const char* subject;
    std::vector<Span> expected; // empty: no match
};

std::vector<Span> find(tavRegExpContext& block, const std::string& subject) {
    std::vector<tavRegExpFindResult> results(static_cast<std::size_t>(block.groupCount));
    int32_t found = block.groupCount;
    const uint8_t* bytes = reinterpret_cast<const uint8_t*>(subject.c_str());
    const tavStatus status =
        tavsRegExpFind_8u(bytes, static_cast<int32_t>(subject.size()), &block, results.data(), &found);
    EXPECT_EQ(status, tavStsNoError);
    std::vector<Span> spans;
    for (int32_t i = 0; i < found; ++i) {
        const tavRegExpFindResult& result = results[static_cast<std::size_t>(i)];
        spans.push_back({result.start ? static_cast<int32_t>(result.start - bytes) : -1, result.length});
    }
    return spans;
}

void expect(const HandMade& one) {
    SCOPED_TRACE(one.what);
    const Program program = programOfCode(one.code, one.groupCount);
    const Block block = blockOf(program);
    EXPECT_EQ(find(*block, one.subject), one.expected) << "by the library";
    const std::string subject = one.subject;
    SearchSettings settings;
    settings.capacity = one.groupCount;
    EXPECT_EQ(
        search(program,
               {reinterpret_cast<const uint8_t*>(subject.c_str()), static_cast<int32_t>(subject.size())},
               settings)
            .entries,
        one.expected)
        << "by the reference";
}

const Instruction unknown = make(0x1000001B);
const Instruction farUnknown = make(0xFFFFFFFF);

TEST(HandMadePrograms, AnUnknownOperationFailsOnlyThePathThatReachesIt) {
    const HandMade cases[] = {
        {"alone", {unknown}, 1, "a", {}},
        {"first alternative", {unknown, alternative(0), byte('a')}, 1, "ba", {{1, 1}}},
        {"behind an alternative", {byte('a'), alternative(0), farUnknown}, 1, "ba", {{1, 1}}},
        {"zero", {byte('a'), make(0), byte('b')}, 1, "ab", {}},
        {"in a group that is optional",
         bracket(OP_CAPTURE, 1, {unknown}, 1) + Code{greedy(0, 1), byte('a')},
         2,
         "a",
         {{0, 1}, {-1, -1}}},
        {"in a negative lookahead",
         bracket(OP_NLOOKAHEAD, -1, {unknown}) + Code{byte('a')},
         1,
         "a",
         {{0, 1}}},
        {"in a lookahead", bracket(OP_LOOKAHEAD, -1, {unknown}) + Code{byte('a')}, 1, "a", {}},
        {"below all codes", {make(0x0FFFFFFF), alternative(0), byte('a')}, 1, "a", {{0, 1}}},
    };
    for (const HandMade& one : cases)
        expect(one);
}

TEST(HandMadePrograms, OperationsOutOfPlaceFail) {
    const HandMade cases[] = {
        {"a quantifier alone", {greedy(0)}, 1, "a", {}},
        {"a lazy quantifier behind a string", {text("ab"), lazy(0)}, 1, "ab", {}},
        {"a range", {make(OP_RANGE, 'a', 'z')}, 1, "a", {}},
        {"a group's end", {make(OP_GROUP_END, 1), alternative(0), byte('a')}, 1, "a", {{0, 1}}},
    };
    for (const HandMade& one : cases)
        expect(one);
}

// A marker directly before the end cannot be told from an empty last alternative, so it means that.
TEST(HandMadePrograms, AMarkerBehindTheLastAlternativeAddsAnEmptyOne) {
    const HandMade cases[] = {
        {"at top level", {byte('a'), alternative(0), byte('b'), alternative(0)}, 1, "b", {{0, 1}}},
        {"behind a single alternative", {byte('a'), alternative(0)}, 1, "xa", {{0, 0}}},
        {"in a group",
         bracket(OP_CAPTURE, 1, {byte('a'), alternative(1), byte('b'), alternative(1)}, 1) + Code{byte('c')},
         2,
         "bc",
         {{0, 2}, {0, 1}}},
        {"in a lookahead",
         bracket(OP_LOOKAHEAD, -1, {byte('a'), alternative(-1), byte('b'), alternative(-1)}) +
             Code{make(OP_ANYBYTE)},
         1,
         "cb",
         {{0, 1}}},
        {"in an atomic group",
         bracket(OP_ATOMIC, -1, {byte('a'), alternative(-1), byte('b'), alternative(-1)}) +
             Code{greedy(1), byte('c')},
         1,
         "abc",
         {{0, 3}}},
    };
    for (const HandMade& one : cases)
        expect(one);
}

TEST(HandMadePrograms, ALeadingMarkerMatchesTheEmptyStringAtTheFirstPosition) {
    expect({"alone", {alternative(0)}, 1, "ab", {{0, 0}}});
    expect({"before a letter", {alternative(0), byte('b')}, 1, "ab", {{0, 0}}});
}

TEST(HandMadePrograms, AnOptionalAssertionNeverFails) {
    expect({"z", {make(OP_ASSERT, 'z'), greedy(0, 1), byte('a')}, 1, "aa", {{0, 1}}});
    expect({"an unknown assertion", {make(OP_ASSERT, 'q'), lazy(0, 1), byte('a')}, 1, "a", {{0, 1}}});
    expect({"an unknown assertion without a quantifier", {make(OP_ASSERT, 'q'), byte('a')}, 1, "a", {}});
}

TEST(HandMadePrograms, AClassOfByteRangesTakesCharactersByTheirCodePoint) {
    const Code wide = {make(OP_SET, 0, 1), make(OP_RANGE, 0x80, 0xFF)};
    expect({"U+00E9", wide, 1, "\xC3\xA9", {{0, 2}}});
    expect({"U+20AC", wide, 1, "\xE2\x82\xAC", {}});
    expect({"an empty class", {make(OP_SET, 0, 0)}, 1, "a", {}});
    expect({"the complement of an empty class", {make(OP_SET, -1, 0)}, 1, "a", {{0, 1}}});
}

TEST(HandMadePrograms, ANegativeBudgetIsReportedByTheSingleSearch) {
    const Code code = {byte('a')};
    Program program = programOfCode(code);
    program.matchLimit = -1;
    const Block block = blockOf(program);
    tavRegExpFindResult result;
    int32_t found = 1;
    EXPECT_EQ(tavsRegExpFind_8u(reinterpret_cast<const uint8_t*>("a"), 1, block.get(), &result, &found),
              tavStsRepeatLimit);
    EXPECT_EQ(found, 1);
}

// ---------------------------------------------------------------------------------------------------------
// Broken programs

int32_t randomOperand(Random& random) {
    static const int32_t values[] = {0,   1,    -1,   2,     3,          5,         40,        255,  256,
                                     999, 1000, 1001, 65535, 0x3FFFFFFF, INT32_MAX, INT32_MIN, -1000};
    return random.oneIn(3) ? static_cast<int32_t>(random.below(12)) : random.pick(values);
}

/// Damages up to four operands or operation codes. The text pointers of strings and lists, with their
/// lengths, are the compiler's alone and stay as they are.
void damage(Random& random, tavRegExpContext& block) {
    Instruction* const code = programOf(block);
    for (uint32_t changes = 1 + random.below(4); changes > 0 && block.codeLength > 0; --changes) {
        Instruction& one = code[random.below(static_cast<uint32_t>(block.codeLength))];
        if (one.op == OP_STRING || one.op == OP_ULIST) continue;
        switch (random.below(5)) {
        case 0:
            one.a = randomOperand(random);
            break;
        case 1:
            one.b = randomOperand(random);
            break;
        case 2:
            one.c = randomOperand(random);
            break;
        case 3: {
            const uint32_t op = firstOpcode + random.below(lastOpcode - firstOpcode + 3);
            if (op != OP_STRING && op != OP_ULIST) one.op = op;
            break;
        }
        default:
            std::swap(one, code[random.below(static_cast<uint32_t>(block.codeLength))]);
            break;
        }
    }
}

TEST(BrokenPrograms, NeverReadOrWriteOutsideTheirMemory) {
    const char* const chosen = std::getenv("TAVCH_TEST_SEED");
    Random random(chosen ? std::strtoull(chosen, nullptr, 10) : 1);
    for (int programs = 0; programs < 100'000;) {
        const Alphabet& alphabet = randomAlphabet(random);
        const std::string pattern = randomPattern(random, alphabet, 6);
        const Compiled compiled = compile(pattern, randomOptions(random));
        if (!compiled) continue;
        damage(random, *compiled.block);
        ++programs;
        for (int i = 0; i < 3; ++i) {
            const std::string subject = randomSubject(random, alphabet, 6);
            std::vector<uint8_t> memory(subject.begin(), subject.end());
            memory.push_back(0);
            memory.shrink_to_fit();
            tavRegExpFindResult results[7];
            int32_t found = 7;
            compiled.block->matchLimit = static_cast<int32_t>(random.below(60));
            const int32_t length = static_cast<int32_t>(subject.size());
            tavsRegExpFind_8u(memory.data(), length, compiled.block.get(), results, &found);
            ASSERT_GE(found, 0);
            ASSERT_LE(found, 7);
        }
    }
}

} // namespace
