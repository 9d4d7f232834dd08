// The corners of the pattern language: what happens where two rules meet, and the deliberate oddities that
// existing patterns rely on.
#include "regex/compile/expect_programs.h"

#include <gtest/gtest.h>

namespace {

using tavtest::expectPrograms;
using tavtest::Pattern;

// Alternatives, groups and conditions

TEST(Quirks, OneMarkerPerAlternationSignAndNoneAfterTheLastAlternative) {
    expectPrograms({
        {"a|b|c", "CHAR 'a' | ALT_END id=0 | CHAR 'b' | ALT_END id=0 | CHAR 'c'"},
        {"(|)", "CAPTURE id=1 body=1 slot=1 | ALT_END id=1 | GROUP_END id=1"},
        {"||", "ALT_END id=0 | ALT_END id=0"},
    });
}

TEST(Quirks, AlternationMarkersHoldTheOptionsInForceAtTheirSign) {
    expectPrograms({
        {"(a(?i)b|c)", "CAPTURE id=1 body=5 slot=1 | CHAR 'a' | OPTIONS o=4 | CHAR 'b' | ALT_END id=1 o=4 | "
                       "CHAR 'c' | GROUP_END id=1"},
        {"a(?i)b|c", "CHAR 'a' | OPTIONS o=4 | CHAR 'b' o=4 | ALT_END id=0 o=4 | CHAR 'c'"},
        {"a|b", "CHAR 'a' o=26 | ALT_END id=0 o=26 | CHAR 'b'", "mgx"},
    });
}

TEST(Quirks, TheParenthesisOfANumericConditionIsNoGroup) {
    expectPrograms({
        {"(?(1)a)(b)",
         "COND id=1 body=2 | BACKREF 1 | CHAR 'a' | GROUP_END id=1 | CAPTURE id=2 body=1 slot=1 | "
         "CHAR 'b' | GROUP_END id=2"},
    });
    EXPECT_EQ(Pattern("(?(1)a)(b)").context().groupCount, 2);
}

TEST(Quirks, ConditionDigitsDeliberatelyAddUpToElevenTimesTheNumberSoFarPlusTheDigit) {
    expectPrograms({
        {"(?(12)a)", "COND id=1 body=2 | BACKREF 13 | CHAR 'a' | GROUP_END id=1"},
        {"(?(10)a)", "COND id=1 body=2 | BACKREF 11 | CHAR 'a' | GROUP_END id=1"},
        {"(?(01)a)", "COND id=1 body=2 | BACKREF 1 | CHAR 'a' | GROUP_END id=1"},
        {"(?(100)a)", "COND id=1 body=2 | BACKREF 121 | CHAR 'a' | GROUP_END id=1"},
        {"(?(999)a)", "COND id=1 body=2 | BACKREF 1197 | CHAR 'a' | GROUP_END id=1"},
    });
}

TEST(Quirks, AConditionOnAGroupThatDoesNotExistIsAccepted) {
    expectPrograms({{"(?(7)a|b)",
                     "COND id=1 body=4 | BACKREF 7 | CHAR 'a' | ALT_END id=1 | CHAR 'b' | GROUP_END id=1"}});
}

TEST(Quirks, OnlyWhatWritesAnOpenerTakesAnOrdinal) {
    expectPrograms({
        {"(?#c)(?i)(?)(?x)(?(1)a)(b)",
         "OPTIONS o=4 | COND id=1 body=2 | BACKREF 1 | CHAR 'a' | GROUP_END id=1 o=12 | "
         "CAPTURE id=2 body=1 slot=1 | CHAR 'b' | GROUP_END id=2 o=12"},
    });
}

TEST(Quirks, ADissolvedGroupGivesItsOrdinalBack) {
    expectPrograms({
        {"(?:ab)(c)", "STRING \"ab\" | CAPTURE id=1 body=1 slot=1 | CHAR 'c' | GROUP_END id=1"},
        {"(?:a)*(?:b)*(?>c)",
         "CHAR 'a' | GREEDY 0..inf | CHAR 'b' | GREEDY 0..inf | ATOMIC id=-1 body=1 | CHAR 'c' | "
         "GROUP_END id=-1"},
    });
    std::string many;
    for (int i = 0; i < 5000; ++i)
        many += "(?:ab)";
    EXPECT_TRUE(Pattern(many).compiled());
}

TEST(Quirks, PlainGroupsDissolveAroundOneItemOrWithoutAQuantifierAroundSeveral) {
    expectPrograms({
        {"(?:a)*", "CHAR 'a' | GREEDY 0..inf"},
        {"(?:.)+?", "TYPE . | LAZY 1..inf"},
        {"(?:\\x{100})*", "UCHAR 100 | GREEDY 0..inf"},
        {"(?:\\X)*", "EXTSEQ | GREEDY 0..inf"},
        {"(?:\\pL)*", "UPROP 80 | GREEDY 0..inf"},
        {"(?:[a])*", "CHAR 'a' | GREEDY 0..inf"},
        {"(?:ab)", "STRING \"ab\""},
        {"(?:ab)*", "GROUP id=1 body=1 | STRING \"ab\" | GROUP_END id=1 | GREEDY 0..inf"},
        {"(?:a*b)", "CHAR 'a' | GREEDY 0..inf | CHAR 'b'"},
        {"(?:a[bc]d)", "CHAR 'a' | SET 2 | CHAR 'b' | CHAR 'c' | CHAR 'd'"},
        {"(?:ab)(?#c)*", "GROUP id=1 body=1 | STRING \"ab\" | GROUP_END id=1 | GREEDY 0..inf"},
        {"(?:ab)\\Q\\E*", "GROUP id=1 body=1 | STRING \"ab\" | GROUP_END id=1 | GREEDY 0..inf"},
        {"(?:ab) *", "GROUP id=1 body=1 | STRING \"ab\" | GROUP_END id=1 o=8 | GREEDY 0..inf", "x"},
        {"(?:ab){x}", "STRING \"ab\" | STRING \"{x}\""},
        {"(?x:(?:ab) *)",
         "GROUP_OPTS id=1 body=4 o=8 | GROUP id=2 body=1 | STRING \"ab\" | GROUP_END id=2 o=8 | "
         "GREEDY 0..inf | GROUP_END id=1"},
        {"(?:(?x)ab) *", "STRING \"ab\" | CHAR ' ' | GREEDY 0..inf"},
    });
}

TEST(Quirks, PlainGroupsStayAroundEverythingElse) {
    expectPrograms({
        {"(?:)", "GROUP id=1 body=0 | GROUP_END id=1"},
        {"(?:a*)", "GROUP id=1 body=2 | CHAR 'a' | GREEDY 0..inf | GROUP_END id=1 c=1"},
        {"(?:[ab])", "GROUP id=1 body=3 | SET 2 | CHAR 'a' | CHAR 'b' | GROUP_END id=1"},
        {"(?:..)", "GROUP id=1 body=2 | TYPE . | GREEDY 2..2 | GROUP_END id=1 c=1"},
        {"(?:a*?b)", "GROUP id=1 body=3 | CHAR 'a' | LAZY 0..inf | CHAR 'b' | GROUP_END id=1"},
        {"(?:^ab)", "GROUP id=1 body=2 | ASSERT ^ | STRING \"ab\" | GROUP_END id=1"},
        {"(?:ab\\C)", "GROUP id=1 body=2 | STRING \"ab\" | ANYBYTE | GROUP_END id=1"},
        {"(?:\\C)", "GROUP id=1 body=1 | ANYBYTE | GROUP_END id=1"},
        {"(?:ab|c)", "GROUP id=1 body=3 | STRING \"ab\" | ALT_END id=1 | CHAR 'c' | GROUP_END id=1"},
        {"(?:a(?i)b)", "GROUP id=1 body=3 | CHAR 'a' | OPTIONS o=4 | CHAR 'b' | GROUP_END id=1"},
        {"(?:a(b))",
         "GROUP id=1 body=4 | CHAR 'a' | CAPTURE id=2 body=1 slot=1 | CHAR 'b' | GROUP_END id=2 | "
         "GROUP_END id=1"},
    });
}

TEST(Quirks, DissolvedGroupsNest) {
    expectPrograms({
        {"(?:(?:(?:a)))", "CHAR 'a'"},
        {"(?:(?:(?:a)))*", "CHAR 'a' | GREEDY 0..inf"},
        {"(?:a(?:b(?:cd)e)f)g", "CHAR 'a' | CHAR 'b' | STRING \"cd\" | CHAR 'e' | CHAR 'f' | CHAR 'g'"},
        {"((?:ab)(?:cd))", "CAPTURE id=1 body=2 slot=1 | STRING \"ab\" | STRING \"cd\" | GROUP_END id=1"},
        {"(a(?:b)*|(?:cd)(e))",
         "CAPTURE id=1 body=8 slot=1 | CHAR 'a' | CHAR 'b' | GREEDY 0..inf | ALT_END id=1 | "
         "STRING \"cd\" | CAPTURE id=2 body=1 slot=2 | CHAR 'e' | GROUP_END id=2 | "
         "GROUP_END id=1"},
        {"(?<=(?:ab)(?:c))d",
         "LOOKBEHIND id=-1 body=2 chars=3 | STRING \"ab\" | CHAR 'c' | GROUP_END id=-1 | CHAR 'd'"},
        {"(?<=(?=(?:ab))(?:cd))",
         "LOOKBEHIND id=-1 body=4 chars=2 | LOOKAHEAD id=-2 body=1 | STRING \"ab\" | "
         "GROUP_END id=-2 | STRING \"cd\" | GROUP_END id=-1"},
        {"(?:(?:ab))*", "GROUP id=1 body=1 | STRING \"ab\" | GROUP_END id=1 | GREEDY 0..inf"},
        {"(?=(?:ab)){0}c(?:de)f", "CHAR 'c' | STRING \"de\" | CHAR 'f'"},
        {"(?:ab)c|(?:de)", "STRING \"ab\" | CHAR 'c' o=16 | ALT_END id=0 o=16 | STRING \"de\"", "g"},
        {"((?:a)*)", "CAPTURE id=1 body=2 slot=1 | CHAR 'a' | GREEDY 0..inf | GROUP_END id=1 c=1"},
    });
}

TEST(Quirks, TheGroupEndTellsWhetherTheBodyIsOneRepeatedItem) {
    expectPrograms({
        {"(a*)", "CAPTURE id=1 body=2 slot=1 | CHAR 'a' | GREEDY 0..inf | GROUP_END id=1 c=1"},
        {"(a*)+",
         "CAPTURE id=1 body=2 slot=1 | CHAR 'a' | GREEDY 0..inf | GROUP_END id=1 c=-1 | GREEDY 1..inf"},
        {"([ab]+)",
         "CAPTURE id=1 body=4 slot=1 | SET 2 | CHAR 'a' | CHAR 'b' | GREEDY 1..inf | GROUP_END id=1 c=1"},
        {"(..)?", "CAPTURE id=1 body=2 slot=1 | TYPE . | GREEDY 2..2 | GROUP_END id=1 c=-1 | GREEDY 0..1"},
        {"(ab*)", "CAPTURE id=1 body=3 slot=1 | CHAR 'a' | CHAR 'b' | GREEDY 0..inf | GROUP_END id=1"},
        {"(a*?)", "CAPTURE id=1 body=2 slot=1 | CHAR 'a' | LAZY 0..inf | GROUP_END id=1"},
        {"(\\C*)", "CAPTURE id=1 body=2 slot=1 | ANYBYTE | GREEDY 0..inf | GROUP_END id=1"},
        {"(?>a*)", "ATOMIC id=-1 body=2 | CHAR 'a' | GREEDY 0..inf | GROUP_END id=-1"},
        {"(?i:a*)", "GROUP_OPTS id=1 body=2 o=4 | CHAR 'a' | GREEDY 0..inf | GROUP_END id=1"},
        {"(a)", "CAPTURE id=1 body=1 slot=1 | CHAR 'a' | GROUP_END id=1"},
        {"(a)*", "CAPTURE id=1 body=1 slot=1 | CHAR 'a' | GROUP_END id=1 | GREEDY 0..inf"},
    });
}

TEST(Quirks, AQuantifierDeliberatelyRemovesALookaroundOrIsIgnoredAfterIt) {
    expectPrograms({
        {"a(?=b)*c", "CHAR 'a' | CHAR 'c'"},
        {"a(?!b|c)?d", "CHAR 'a' | CHAR 'd'"},
        {"(?<=(a)|b){0,5}c", "CHAR 'c'"},
        {"(?<!a){0}?b", "CHAR 'b'"},
        {"(?=b)+c", "LOOKAHEAD id=-1 body=1 | CHAR 'b' | GROUP_END id=-1 | CHAR 'c'"},
        {"(?!b){3}c", "NLOOKAHEAD id=-1 body=1 | CHAR 'b' | GROUP_END id=-1 | CHAR 'c'"},
        {"(?<=b){1,}?c", "LOOKBEHIND id=-1 body=1 chars=1 | CHAR 'b' | GROUP_END id=-1 | CHAR 'c'"},
        {"(?=b)(?#c)*c", "CHAR 'c'"},
        {"((?=a)*)", "CAPTURE id=1 body=0 slot=1 | GROUP_END id=1"},
        {"(?=(?=a)*b)*", ""},
        {"(?=a)*(b)", "CAPTURE id=2 body=1 slot=1 | CHAR 'b' | GROUP_END id=2"},
        {"(?=a)(?=b)*c", "LOOKAHEAD id=-1 body=1 | CHAR 'a' | GROUP_END id=-1 | CHAR 'c'"},
    });
}

// Option settings

TEST(Quirks, OnlyExactlyXAndMinusXEmitNothing) {
    expectPrograms({
        {"(?x)a", "CHAR 'a' o=8"},
        {"(?-x)a", "CHAR 'a'", "x"},
        {"(?)a", "CHAR 'a'"},
        {"(?xx)a", "OPTIONS o=8 | CHAR 'a' o=8"},
        {"(?x-x)a", "OPTIONS o=0 | CHAR 'a'"},
        {"(?-)a", "OPTIONS o=0 | CHAR 'a'"},
        {"(?--x)a", "OPTIONS o=0 | CHAR 'a'", "x"},
        {"(?xi)a", "OPTIONS o=12 | CHAR 'a' o=12"},
        {"(?-:a)", "GROUP_OPTS id=1 body=1 o=0 | CHAR 'a' | GROUP_END id=1"},
    });
}

TEST(Quirks, OptionOperandsHoldAllBitsInForce) {
    expectPrograms({
        {"(?i)(a)(?s:b)",
         "OPTIONS o=28 | CAPTURE id=1 body=1 slot=1 | CHAR 'a' | GROUP_END id=1 o=28 | "
         "GROUP_OPTS id=2 body=1 o=29 | CHAR 'b' | GROUP_END id=2 o=28",
         "xg"},
    });
}

TEST(Quirks, ExtendedSyntaxIgnoresWhiteSpaceAndCommentsUpToTheGroupEnd) {
    expectPrograms({
        {"(?x)a b # c", "CHAR 'a' o=8 | CHAR 'b' o=8"},
        {"a\t\n\f\r b", "CHAR 'a' o=8 | CHAR 'b' o=8", "x"},
        {"a\vb", "STRING \"a\\xBb\" o=8", "x"},
        {"a#b\nc", "CHAR 'a' o=8 | CHAR 'c' o=8", "x"},
        {"a\\ b\\#", "CHAR 'a' o=8 | CHAR ' ' o=8 | CHAR 'b' o=8 | CHAR '#' o=8", "x"},
        {"\\Qa b#\\E", "STRING \"a b#\" o=8", "x"},
        {"((?x)a b)a b",
         "CAPTURE id=1 body=2 slot=1 | CHAR 'a' | CHAR 'b' | GROUP_END id=1 | STRING \"a b\""},
        {"ab cd", "STRING \"ab\" o=8 | STRING \"cd\" o=8", "x"},
        {"#a", "", "x"},
        {" ", "", "x"},
    });
}

// Quantifiers behind ignored text, and collapsing

TEST(Quirks, AQuantifierBehindIgnoredTextAppliesToWhatStandsBeforeIt) {
    expectPrograms({
        {"ab(?#c)+", "CHAR 'a' | CHAR 'b' | GREEDY 1..inf"},
        {"abc\\E*", "STRING \"ab\" | CHAR 'c' | GREEDY 0..inf"},
        {"ab +", "CHAR 'a' o=8 | CHAR 'b' o=8 | GREEDY 1..inf", "x"},
        {"ab#c\n {2}", "CHAR 'a' o=8 | CHAR 'b' o=8 | GREEDY 2..2", "x"},
        {"\\Qabc\\E+", "STRING \"ab\" | CHAR 'c' | GREEDY 1..inf"},
        {"ab\\Q\\E+", "CHAR 'a' | CHAR 'b' | GREEDY 1..inf"},
        {"..(?#c)*", "TYPE . | GREEDY 1..inf"},
        {"(a) \\E(?#c)*", "CAPTURE id=1 body=1 slot=1 | CHAR 'a' | GROUP_END id=1 o=8 | GREEDY 0..inf", "x"},
        {"a(?#c) ?", "CHAR 'a' o=8 | GREEDY 0..1", "x"},
    });
}

TEST(Quirks, ALazyQuantifierMakesTheCollapsedRepeatLazy) {
    expectPrograms({{"..*?", "TYPE . | LAZY 1..inf"},
                    {"...{2,3}?", "TYPE . | LAZY 4..5"},
                    {"\\d\\d??", "TYPE d | LAZY 1..2"}});
}

TEST(Quirks, OnlyARepeatOfTheCompilersOwnTakesInFurtherItems) {
    expectPrograms({
        {"..*.", "TYPE . | GREEDY 1..inf | TYPE ."},
        {"..*..", "TYPE . | GREEDY 1..inf | TYPE . | GREEDY 2..2"},
        {"a.*.", "CHAR 'a' | TYPE . | GREEDY 0..inf | TYPE ."},
        {"\\d{2}\\d", "TYPE d | GREEDY 2..2 | TYPE d"},
        {"\\d\\d.", "TYPE d | GREEDY 2..2 | TYPE ."},
        {"..\\d", "TYPE . | GREEDY 2..2 | TYPE d"},
        {"..(?i).", "TYPE . | GREEDY 2..2 | OPTIONS o=4 | TYPE ."},
        {".(?x).", "TYPE . | GREEDY 2..2"},
        {".(?#c).", "TYPE . | GREEDY 2..2"},
        {"..(?=a){0}.", "TYPE . | GREEDY 3..3"},
    });
}

TEST(Quirks, CollapsingJudgesThePredecessorByItsInstruction) {
    expectPrograms({
        {"[\\d]\\d", "TYPE d | GREEDY 2..2"},
        {"\\d[\\d]", "TYPE d | TYPE d"},
        {"[a\\d]\\d", "SET 2 | CHAR 'a' | TYPE d | TYPE d"},
        {"[^\\d]\\d", "SET not 1 | TYPE d | TYPE d"},
        {"(?:.).", "TYPE . | GREEDY 2..2"},
        {"(?:a.).", "CHAR 'a' | TYPE . | GREEDY 2..2"},
        {"(?:a..).", "CHAR 'a' | TYPE . | GREEDY 3..3"},
        {".(?:.)", "TYPE . | TYPE ."},
        {"[a\\d](?=[b\\d]){0}\\d", "SET 2 | CHAR 'a' | TYPE d | TYPE d"},
        {"[[:word:]]\\w", "TYPE w | GREEDY 2..2"},
    });
}

TEST(Quirks, MergedBoundsAreCapped) {
    expectPrograms({
        {"..{0,}", "TYPE . | GREEDY 1..inf"},
        {"...*", "TYPE . | GREEDY 2..inf"},
        {"....+", "TYPE . | GREEDY 4..inf"},
    });
}

// Escapes

TEST(Quirks, EscapesThatThePatternCutsShort) {
    expectPrograms({
        {"a\\", "CHAR 'a' | CHAR '\\'"},
        {"\\", "CHAR '\\'"},
        {"\\c", "CHAR 'c'"},
        {"a\\c", "CHAR 'a' | CHAR 'c'"},
        {"\\x", "CHAR 0"},
        {"\\xg", "CHAR 0 | CHAR 'g'"},
        {"\\x{}", "UCHAR 0"},
        {"\\Q", ""},
        {"\\Q\\E", ""},
        {"\\Qab\\", "STRING \"ab\\\""},
        {"\\E", ""},
        {"\\0", "CHAR 0"},
    });
}

TEST(Quirks, DigitsThatAreNoGroupAreAnOctalCharacter) {
    expectPrograms({
        {"\\89", "CHAR 0 | STRING \"89\""},
        {"\\89a", "CHAR 0 | STRING \"89a\""},
        {"\\128", "CHAR A | CHAR '8'"},
        {"\\777", "CHAR FF"},
        {"\\400", "CHAR 0"},
        {"(a)\\12", "CAPTURE id=1 body=1 slot=1 | CHAR 'a' | GROUP_END id=1 | CHAR A"},
        {"(a)\\1a", "CAPTURE id=1 body=1 slot=1 | CHAR 'a' | GROUP_END id=1 | BACKREF 1 | CHAR 'a'"},
        {"(a)\\01", "CAPTURE id=1 body=1 slot=1 | CHAR 'a' | GROUP_END id=1 | CHAR 1"},
        {"(a)\\1234", "CAPTURE id=1 body=1 slot=1 | CHAR 'a' | GROUP_END id=1 | CHAR 'S' | CHAR '4'"},
    });
}

TEST(Quirks, TwoDigitsAreAGroupWhenThereAreEnough) {
    std::string groups;
    for (int i = 0; i < 12; ++i)
        groups += "(a)";
    Pattern twelve(groups + "\\12");
    EXPECT_EQ(tavtest::dumpInstruction(twelve.at(36)), "BACKREF 12");
    Pattern tooFew(groups + "\\13");
    EXPECT_EQ(tavtest::dumpInstruction(tooFew.at(36)), "CHAR B");
    Pattern thirteen("(a)" + groups + "(?(12)b)");
    EXPECT_EQ(tavtest::dumpInstruction(thirteen.at(40)), "BACKREF 13");
}

TEST(Quirks, BackReferencesMayReferToGroupsThatOpenLater) {
    expectPrograms({{"\\2(a)(b)", "BACKREF 2 | CAPTURE id=1 body=1 slot=1 | CHAR 'a' | GROUP_END id=1 | "
                                  "CAPTURE id=2 body=1 slot=2 | CHAR 'b' | GROUP_END id=2"}});
}

TEST(Quirks, EveryBracedHexadecimalEscapeIsACodePoint) {
    expectPrograms({{"\\x{61}\\x{FFFFFFFF}", "UCHAR 61 | UCHAR FFFFFFFF"}, {"\\x{00000061}", "UCHAR 61"}});
}

TEST(Quirks, EscapedAndQuotedCharactersDoNotJoinRuns) {
    expectPrograms({
        {"ab\\-cd", "STRING \"ab\" | CHAR '-' | STRING \"cd\""},
        {"ab\\Qcd\\Eef", "STRING \"ab\" | STRING \"cd\" | STRING \"ef\""},
        {"\\Qa\\E\\Qb\\E", "CHAR 'a' | CHAR 'b'"},
        {"\\Qab\\\\E", "STRING \"ab\\\""},
        {"\\Qa\\Qb\\E", "STRING \"a\\Qb\""},
    });
}

// Properties

TEST(Quirks, PropertyNamesAreCategoriesThenBlocksByPrefixThenScripts) {
    expectPrograms({
        {"\\p{}", "ULIST 1 from 0-7F"},
        {"\\p{^}", "ULIST not 1 from 0-7F"},
        {"\\p{In}", "ULIST 1 from 0-7F"},
        {"\\p{I}", "ULIST 1 from 0-7F"},
        {"\\p{InLatin}", "ULIST 1 from 80-FF"},
        {"\\p{InCJKUnifiedIdeographs}", "ULIST 1 from 3400-4DBF"}, // ...ExtensionA precedes it
        {"\\p{L}", "UPROP 80"},
        {"\\p{Ll}", "UPROP 81"},
        {"\\p{Cherokee}", "ULIST 1 from 13A0-13F4"},
    });
}

// Classes

TEST(Quirks, ADashIsARangeOnlyBetweenSingleCharacters) {
    expectPrograms({
        {"[a-\\d]", "SET 3 | CHAR 'a' | CHAR '-' | TYPE d"},
        {"[a-[:digit:]]", "SET 3 | CHAR 'a' | CHAR '-' | RANGE '0'-'9'"},
        {"[a-\\pL]", "SET 3 | CHAR 'a' | CHAR '-' | UPROP 80"},
        {"[\\d-z]", "SET 3 | TYPE d | CHAR '-' | CHAR 'z'"},
        {"[[:blank:]-z]", "SET 4 | CHAR ' ' | CHAR 9 | CHAR '-' | CHAR 'z'"},
        {"[a\\E-z]", "SET 1 | RANGE 'a'-'z'"},
        {"[a-\\Ez]", "SET 1 | RANGE 'a'-'z'"},
        {"[a-\\E]", "SET 2 | CHAR 'a' | CHAR '-'"},
        {"[\\Qa\\E-z]", "SET 1 | RANGE 'a'-'z'"},
        {"[\\Qa-z\\E]", "SET 3 | CHAR 'a' | CHAR '-' | CHAR 'z'"},
        {"[a-\\Qz\\E]", "SET 1 | RANGE 'a'-'z'"},
        {"[\\a-\\r]", "SET 1 | RANGE 7-D"},
        {"[!-\\]]", "SET 1 | RANGE '!'-']'"},
        {"[a-c--e]", "SET 2 | RANGE 'a'-'c' | RANGE '-'-'e'"},
        {"[\\x{100}-\\x{80000000}]", "SET 1 | RANGE 100-80000000"},
        {"[a-z-]", "SET 2 | RANGE 'a'-'z' | CHAR '-'"},
        {"[A-[:x]", "SET 3 | RANGE 'A'-'[' | CHAR ':' | CHAR 'x'"},
    });
}

TEST(Quirks, UnclosedClassItemsAreMembers) {
    expectPrograms({
        {"[[.]", "SET 2 | CHAR '[' | CHAR '.'"},
        {"[[:]", "SET 2 | CHAR '[' | CHAR ':'"},
        {"[[=a]", "SET 3 | CHAR '[' | CHAR '=' | CHAR 'a'"},
        {"[[:alpha]", "SET 7 | CHAR '[' | CHAR ':' | CHAR 'a' | CHAR 'l' | CHAR 'p' | CHAR 'h' | CHAR 'a'"},
        {"[[:alpha.:x]",
         "SET 10 | CHAR '[' | CHAR ':' | CHAR 'a' | CHAR 'l' | CHAR 'p' | CHAR 'h' | CHAR 'a' | "
         "CHAR '.' | CHAR ':' | CHAR 'x'"},
    });
}

TEST(Quirks, NegatedPosixItemsMarkEveryMember) {
    expectPrograms({
        {"[[:^digit:]]", "SET 1 | RANGE '0'-'9' not"},
        {"[a[:^alpha:]]", "SET 3 | CHAR 'a' | RANGE 'a'-'z' not | RANGE 'A'-'Z' not"},
        {"[[:^word:]_]", "SET 2 | TYPE W not | CHAR '_'"},
        {"[^[:^digit:]]", "SET not 1 | RANGE '0'-'9' not"},
    });
    Pattern blank("[[:^blank:]]");
    EXPECT_EQ(blank.at(0).b, 2);
    EXPECT_EQ(blank.at(1).c, -1) << "single characters too";
    EXPECT_EQ(blank.at(2).c, -1);
}

TEST(Quirks, EscapesInClasses) {
    expectPrograms({
        {"[\\a\\b\\e\\f\\n\\r\\t\\v]",
         "SET 8 | CHAR 7 | CHAR 8 | CHAR 1B | CHAR C | CHAR A | CHAR D | CHAR 9 | CHAR B"},
        {"[\\X]", "CHAR 'X'"},
        {"[\\C\\A\\B\\Z\\G]", "SET 5 | CHAR 'C' | CHAR 'A' | CHAR 'B' | CHAR 'Z' | CHAR 'G'"},
        {"[\\1\\12\\777\\8]", "SET 4 | CHAR 1 | CHAR A | CHAR FF | CHAR '8'"},
        {"[\\0a\\0123]", "SET 4 | CHAR 0 | CHAR 'a' | CHAR A | CHAR '3'"},
        {"[\\cA\\c]]", "SET 2 | CHAR 1 | CHAR 1D"},
        {"[\\x\\x4z\\x{100}\\x{}]", "SET 5 | CHAR 0 | CHAR 4 | CHAR 'z' | UCHAR 100 | UCHAR 0"},
        {"[\\]\\[\\-\\\\]", "SET 4 | CHAR ']' | CHAR '[' | CHAR '-' | CHAR '\\'"},
    });
}

TEST(Quirks, BytesFrom0x80InClassesAreDecodedOrTakenSingly) {
    expectPrograms({
        {"[a\xFF]", "SET 2 | CHAR 'a' | CHAR FF"},
        {"[\xC3\xA9z]", "SET 2 | CHAR E9 | CHAR 'z'"},
        {"[\xC3z]", "SET 2 | CHAR C3 | CHAR 'z'"},
        {"[\xE2\x82z]", "SET 3 | CHAR E2 | CHAR 82 | CHAR 'z'"},
        {"[\xC0\x80z]", "SET 3 | CHAR C0 | CHAR 80 | CHAR 'z'"},
        {"[\xE2\x82\xACz]", "SET 2 | UCHAR 20AC | CHAR 'z'"},
        {"[\xF0\x9F\x98\x80z]", "SET 2 | UCHAR 1F600 | CHAR 'z'"},
        {"[\xED\xA0\x80z]", "SET 2 | UCHAR D800 | CHAR 'z'"},
        {"[\xF8\x88\x80\x80\x80z]", "SET 2 | UCHAR 200000 | CHAR 'z'"},
        {"[\xFD\xBF\xBF\xBF\xBF\xBFz]", "SET 2 | UCHAR 7FFFFFFF | CHAR 'z'"},
        {"[\\Q\xE2\x82\xAC\\Ez]", "SET 2 | UCHAR 20AC | CHAR 'z'"},
        {"[\\\xE2\x82\xACz]", "SET 4 | CHAR E2 | CHAR 82 | CHAR AC | CHAR 'z'"},
        {"[\xC2\x80-\xC3\xBF]", "SET 1 | RANGE 80-FF"},
        {"[\xE2\x82\xAC-\xF0\x9F\x98\x80]", "SET 1 | RANGE 20AC-1F600"},
        {"[\x80]", "CHAR 80"},
    });
}

// Lookbehind

TEST(Quirks, LookbehindLengths) {
    struct {
        const char* body;
        int32_t length;
    } const cases[] = {
        {"", 0},
        {"a", 1},
        {"abc", 3},
        {"a{3}", 3},
        {"a{3}?", 3},
        {"a{0}", 0},
        {"...", 3},
        {"..{2}", 3},
        {"[abc]d", 2},
        {"[a-z]{4}", 4},
        {"\\C\\X\\pL", 3},
        {"\\x{100}", 1},
        {"^a$\\b", 1},
        {"(?=abc)d", 1},
        {"(?<!ab)c", 1},
        {"(ab)(c)", 3},
        {"(?:ab){3}", 6},
        {"(?>ab|cd)", 2},
        {"(?i:abc)", 3},
        {"(?i)ab", 2},
        {"(a|b){2}c", 3},
        {"ab|cd|ef", 2},
        {"a(?:b|c)|de", 2},
        {"(|)", 0},
        {"\xC3\xA9", 2},
        {"(?=a)(?=b)c", 1},
        {"((((a))))", 1},
        {"(ab|cd){2}|efgh", 4},
        {"(?:(?:a{65535}){65535}){0}b", 1},
        {"(?:(?:(?:(?:(?:a{65535}){65535}){65535}){65535}){65535}){0}", 0},
        {"(?:a{32767}){65535}", 2147385345},
        {"\\p{Latin}\\p{Any}", 2},
        {"(?=a|bc)d", 1},
    };
    for (const auto& c : cases) {
        Pattern pattern(std::string("(?<=") + c.body + ")x");
        ASSERT_TRUE(pattern.compiled()) << c.body;
        EXPECT_EQ(pattern.at(0).c, c.length) << c.body;
    }
}

} // namespace
