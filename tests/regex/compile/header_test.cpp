// The header that compilation writes, and above all its two summaries: the required final literal and the
// search hint.
#include "regex/compile/pattern.h"

#include <gtest/gtest.h>

namespace {

using tavtest::Pattern;
using tavtest::repeated;

TEST(Header, OfTheEmptyPattern) {
    Pattern pattern("");
    const tavRegExpContext& context = pattern.context();
    EXPECT_EQ(context.tag, 0x78456772u);
    EXPECT_EQ(context.options, 0u);
    EXPECT_EQ(context.codeLength, 0);
    EXPECT_EQ(context.groupCount, 1);
    EXPECT_EQ(context.lastLiteral, -1);
    EXPECT_EQ(context.matchLimit, 10000);
    EXPECT_EQ(context.format, 1);
    EXPECT_EQ(context.searchHint, 0);
}

TEST(Header, HoldsTheOptionsOfTheOptionsStringOnly) {
    struct {
        const char* options;
        uint32_t bits;
    } const cases[] = {{"s", 1},  {"m", 2},      {"i", 4},    {"x", 8},
                       {"g", 16}, {"gimsx", 31}, {"iiss", 5}, {"", 0}};
    for (const auto& c : cases)
        EXPECT_EQ(Pattern("(?i)a(?-s)(?m:b)", c.options).context().options, c.bits) << c.options;
    EXPECT_EQ(Pattern("(?i)a").context().options, 0u) << "no options string at all";
}

TEST(Header, CountsTheCapturingGroupsPlusOne) {
    struct {
        const char* pattern;
        int32_t count;
        const char* options = "";
    } const cases[] = {
        {"a", 1},
        {"(a)", 2},
        {"((a)(b))", 4},
        {"(?:a)(?=b)(?>c)(?i:d)(?i)(?#(e)(?<=f)(?<!g)(?!h)", 1},
        {"\\((a)", 2},
        {"[(](a)", 2},
        {"\\Q(\\E(a)", 2},
        {"\\c((a)", 2},
        {"(?#(()a", 1},
        {"(?(1)a)", 1},
        {"(?(?=(a))b)", 2},
        {"(a)(?(1)(b)|(c))", 4},
        {"#(a)", 2},
        {"#(a)", 1, "x"},
        {"#(a)\n(b)", 2, "x"},
        {"(?x)#(a)", 1},
        {"(?x:#(\n)(b)#", 2},
        {"(?-x)#(a)", 2, "x"},
        {"[]()](a)", 2},
        {"[^](](a)", 2},
        {"[[:alpha:](](a)", 2},
        {"[\\Q](\\E](a)", 2},
        {"[[.(](a)", 2},
        {"[\\]((](a)", 2},
        {"(a){0}", 2},
        {"(?=(a)){0}b", 2},
    };
    for (const auto& c : cases) {
        Pattern pattern(c.pattern, c.options);
        EXPECT_EQ(pattern.status(), tavStsNoError) << c.pattern;
        EXPECT_EQ(pattern.context().groupCount, c.count) << c.pattern;
    }
}

TEST(Header, CountsUpTo999Groups) {
    EXPECT_EQ(Pattern(repeated(999, "(a)")).context().groupCount, 1000);
}

// The required final literal

struct Literal {
    const char* pattern;
    int32_t lastLiteral;
    const char* options = "";
};

void expectLastLiterals(std::initializer_list<Literal> cases) {
    for (const Literal& c : cases) {
        Pattern pattern(c.pattern, c.options);
        ASSERT_EQ(pattern.status(), tavStsNoError) << c.pattern;
        EXPECT_EQ(pattern.context().lastLiteral, c.lastLiteral) << c.pattern;
    }
}

TEST(LastLiteral, IsTheLiteralThatEndsThePattern) {
    expectLastLiterals({
        {"a", 0},
        {"abc", 0},
        {"\\dabc", 1},
        {".*abc", 3},
        {"(a)b", 3},
        {"[ab]c", 3},
        {"a\\.", 1},
        {"a\\n", 1},
        {"a\\012", 1},
        {"a\\x41", 1},
        {"a\\cA", 1},
        {"\\Qa.b\\E", 0},
        {"a b", 1, "x"},
        {"a\\", 1},
        {"^abc", 1},
    });
}

TEST(LastLiteral, IsNoneWhenSomethingElseThanAQuantifierFollows) {
    expectLastLiterals({
        {"", -1},
        {"a$", -1},
        {"a.", -1},
        {"a(b)", -1},
        {"a[bc]", -1},
        {"a(?i)", -1},
        {"a(?=b)", -1},
        {"a()", -1},
        {"ab\\x{100}", -1},
        {"a\\b", -1},
        {"(a)\\1", -1},
        {"a\\pL", -1},
        {"a(?:)", -1},
    });
    expectLastLiterals({{"a(?#comment)", 0}, {"a(?x)", 0}, {"a(?)", 0}, {"a\\E", 0}, {"a #c", 0, "x"}});
}

TEST(LastLiteral, IsARepeatedPlainCharacterWithAMinimumOfOneOrMore) {
    expectLastLiterals({
        {"ba+", 1},
        {"a{2,3}", 0},
        {"a+?", 0},
        {"ab{1}", 1},
        {"cba{5,}", 1},
        {"a*", -1},
        {"ab?", -1},
        {"ab{0,3}", -1},
        {"a{}", -1},
        {"\\n+", -1},
        {"\\.+", -1},
        {"\\x41+", -1},
        {"\\x{41}+", -1},
        {"[a]+", -1},
        {".+", -1},
        {"a(b)+", -1},
    });
}

TEST(LastLiteral, CountsQuotedSpacedAndUngroupedCharactersAsPlainOnes) {
    expectLastLiterals({
        {"\\Qa\\E+", 0},
        {"b\\Qca\\E+", 2},
        {"a +", 0, "x"},
        {"a(?#c)+", 0},
        {"(?:a)+", 0},
        {"b(?:a)+", 1},
        {"(?:(?:a))+", 0},
        {"(?:a)", -1}, // written inside a group, and no quantifier made it the tracked one
        {"(?:\\n)+", -1},
        {"(?:ab)", -1},
    });
}

TEST(LastLiteral, IsNoneBecauseOfATopLevelAlternation) {
    expectLastLiterals({{"a|b", -2}, {"|", -2}, {"a|bcd", -2}, {"a|b|", -2}, {"a|(b|c)", -2}, {"(a|b)c", 5}});
}

TEST(LastLiteral, DeliberatelyReturnsAfterATopLevelAlternationOnceAQuantifierResetTheTracker) {
    expectLastLiterals({
        {"a|b*c", 4},
        {"a|b+c", 4},
        {"a|b+", -1}, // reset, but not made the tracked one
        {"a|(b*)c", 6},
        {"a|.*", -1},
        {"a|..c", -2}, // a repeat of the compiler's own resets nothing
        {"a|..*c", 4},
        {"a|b*|c", -2},
        {"a|b*c|d", -2},
        {"a|(?=b){0}c", 2},
        {"a|(?=b)+c", 5},
    });
}

TEST(LastLiteral, IsResetByAQuantifierInsideAGroup) {
    expectLastLiterals({{"a(?=b){0}", -1}, {"a(?=b+){0}", -1}});
}

TEST(LastLiteral, HoldsTheOptionsInForceAtTheLiteral) {
    const auto literalOptions = [](const char* text, int32_t index) {
        return Pattern(text, "s").at(index).c;
    };
    EXPECT_EQ(literalOptions("abc", 0), 1);
    EXPECT_EQ(literalOptions("a(?i)bc", 2), 5);
    EXPECT_EQ(literalOptions("a(?i)b+", 2), 5);
    EXPECT_EQ(literalOptions("(?i)(?:b)+", 1), 5);
    EXPECT_EQ(literalOptions("(?i)\\n", 1), 5);
    EXPECT_EQ(literalOptions("(a)", 1), 0) << "not at top level";
    EXPECT_EQ(literalOptions("a|b", 2), 0) << "not tracked behind a top-level alternation";
    EXPECT_EQ(literalOptions("a|b*c", 4), 1) << "tracked again";
}

// The search hint

void expectHints(int32_t hint, std::initializer_list<const char*> patterns) {
    for (const char* text : patterns) {
        Pattern pattern(text);
        ASSERT_EQ(pattern.status(), tavStsNoError) << text;
        EXPECT_EQ(pattern.context().searchHint, hint) << text;
    }
}

TEST(SearchHint, OfAPatternThatStartsWithALiteral) {
    expectHints(1, {"a", "abc", "abc.*", "a+", "a{2}", "ab*", "a(b)c", "\\nb", "a*?b", "a{0}?", "(?:a)",
                    "(?:abc)d", "a[bc]", "\\Qab\\E+", "[a]b"});
}

TEST(SearchHint, OfAListOfLiteralAlternatives) {
    expectHints(2, {"a|b", "abc|def|ghi", "a|b|c", "\\n|b", "(?:ab)|c", "[a]|b"});
}

TEST(SearchHint, OfAllOtherPatterns) {
    expectHints(0,
                {"",  ".",   "a*",    "a?b",   "a{0,2}", "(a)",  "^a",      "a(b|c)", "a|b*", "a|",     "|a",
                 "|", "a|.", "a|bc+", "(a|b)", "(?i)a",  "a|b|", "\\x{41}", "[ab]",   "a||b", "(?:a|b)"});
}

TEST(SearchHint, IsOneAlsoWhenTheAlternationWasTakenBackByAQuantifierButNotForAnAlternationAnywhere) {
    expectHints(1, {"ab(?=c|d){0}"});
    expectHints(0, {"ab(?=c|d)", "a(?:b(?:c|d))"});
}

} // namespace
