// Every failure of the compiler with its status and the byte offset that it reports.
#include "regex/compile/pattern.h"

#include <gtest/gtest.h>

namespace {

using tavtest::Pattern;
using tavtest::repeated;

struct Case {
    std::string pattern;
    int32_t offset;
    const char* options = "";
};

void expectErrors(tavStatus status, std::initializer_list<Case> cases) {
    for (const Case& c : cases) {
        Pattern pattern(c.pattern, c.options);
        EXPECT_EQ(pattern.status(), status) << c.pattern.substr(0, 60);
        EXPECT_EQ(pattern.errOffset(), c.offset) << c.pattern.substr(0, 60);
    }
}

void expectCompiles(std::initializer_list<std::string> patterns, const char* options = "") {
    for (const std::string& p : patterns) {
        Pattern pattern(p, options);
        EXPECT_EQ(pattern.status(), tavStsNoError) << p.substr(0, 60) << " at " << pattern.errOffset();
    }
}

// Options

TEST(Errors, OptionLettersOtherThanGimsx) {
    for (const char* options : {"I", "gimsxq", "i ", "\xFF", "-", "0"}) {
        Pattern pattern("(", options);
        EXPECT_EQ(pattern.status(), tavStsBadOption) << options;
        EXPECT_EQ(pattern.errOffset(), 0) << options;
        EXPECT_TRUE(pattern.untouched()) << options;
    }
}

TEST(Errors, AllOptionLettersInAnyOrderAreAccepted) {
    for (const char* options : {"gimsx", "xsmig", "iiiiggxx", ""}) {
        Pattern pattern("a", options);
        EXPECT_EQ(pattern.status(), tavStsNoError) << options;
    }
}

// Quantifiers

TEST(Errors, QuantifierBoundsThatAreTooLargeOrReversed) {
    expectErrors(tavStsRepeatLimit, {
                                        {"a{65536}", 2},
                                        {"ab{70000}", 3},
                                        {"a{65536,}", 2},
                                        {"a{65536,70000}", 8},
                                        {"a{1,65536}", 4},
                                        {"a{,65536}", 3},
                                        {"a{3,2}", 2},
                                        {"abc{10,9}", 4},
                                        {"a{1,0}", 2},
                                        {"a{99999999999999999999}", 2},
                                        {"a{1,99999999999999999999}", 4},
                                        {"a{4294967297}", 2},
                                    });
    expectCompiles({"a{65535}", "a{0,65535}", "a{65535,}", "a{2,2}", "a{0000065535}"});
}

TEST(Errors, QuantifierSizeIsReportedBeforeItsPlaceAndItsUpperBoundFirst) {
    expectErrors(tavStsRepeatLimit, {
                                        {"{70000}", 1},
                                        {"a*{70000}", 3},
                                        {"|{3,2}", 2},
                                        {"a{70000,80000}", 8},
                                    });
}

TEST(Errors, QuantifierWithNothingBeforeIt) {
    expectErrors(tavStsRepeatLimit, {
                                        {"*", 0},
                                        {"+a", 0},
                                        {"?", 0},
                                        {"{3}", 0},
                                        {"{}", 0},
                                        {"(?#c)*", 5},
                                        {"\\E*", 2},
                                        {"\\Q\\E*", 4},
                                        {" *", 1, "x"},
                                        {"#c\n*", 3, "x"},
                                    });
}

TEST(Errors, QuantifierAfterAQuantifier) {
    expectErrors(tavStsRepeatLimit, {
                                        {"a**", 2},
                                        {"a*+", 2},
                                        {"a++", 2},
                                        {"a*??", 3},
                                        {"a???", 3},
                                        {"a{2}{3}", 4},
                                        {"a{2}?+", 5},
                                        {"a*{2}", 2},
                                        {"..**", 3},
                                        {"(?=a)**", 6},
                                        {"(?=a){0}*", 8},
                                        {"a*(?#c)*", 7},
                                        {"a*\\E+", 4},
                                        {"a* ?", 3, "x"},
                                    });
}

TEST(Errors, QuantifierAfterAnAlternationAnOpenerOrAnOptionSetting) {
    expectErrors(tavStsRepeatLimit, {
                                        {"a|*", 2},
                                        {"a|(?#c)+", 7},
                                        {"(*a)", 1},
                                        {"(?:+a)", 3},
                                        {"(?=?a)", 3},
                                        {"(?<=+a)", 4},
                                        {"(?>+a)", 3},
                                        {"(?i:+a)", 4},
                                        {"( +)", 2, "x"},
                                        {"a(?i)*", 5},
                                        {"a(?x)*", 5},
                                        {"a(?-x)*", 6},
                                        {"a(?)*", 4},
                                        {"a(?)(?#c)*", 9},
                                        {"a(?x) *", 6},
                                        {"(?(1)|*)", 6},
                                    });
    expectCompiles({"^*", "\\b+", "$?", "a(?#c)*", "a\\E*", "\\Qab\\E*", "a\\Q\\E*", "()*", "(?:)*"});
    expectCompiles({"a *", "a#c\n*", "a \\E (?#c) *"}, "x");
}

// Group structure

TEST(Errors, UnbalancedGroups) {
    expectErrors(tavStsPatternSyntax, {
                                          {")", 0},
                                          {"a)", 1},
                                          {"(a))", 3},
                                          {"(", 1},
                                          {"(a", 2},
                                          {"((a)", 4},
                                          {"(?:a", 4},
                                          {"(\\)", 3},
                                          {"([)]", 4},
                                          {"(\\Q)", 4},
                                          {"(#)", 3, "x"},
                                          {"(a#)\nb", 6, "x"},
                                          {"(?x)(#)", 7},
                                          {"(?x:(#)\n)", 9},
                                      });
    expectCompiles({"\\(", "\\)", "[)]", "[(]", "\\Q)\\E", "\\c(", "\\c)", "[\\)(]", "(?#()", "(#)"});
    expectCompiles({"(#)\n)", "(?-x:(#))", "(?-x)(#)", "((?-x)#)#)"}, "x");
}

TEST(Errors, PatternsThatEndInsideAGroupOpener) {
    expectErrors(tavStsPatternSyntax, {
                                          {"(?", 2},
                                          {"(?:", 3},
                                          {"(?<", 3},
                                          {"(?i", 3},
                                          {"(?i-", 4},
                                          {"(?i:", 4},
                                          {"(?(", 3},
                                          {"(?()", 4},
                                          {"(?(1", 4},
                                          {"(?(1)", 5},
                                          {"a(?>", 4},
                                      });
}

TEST(Errors, CommentsWithoutAnEnd) {
    expectErrors(tavStsPatternSyntax, {{"(?#", 3}, {"a(?#bc", 6}, {"(?#\\", 4}});
    expectCompiles({"(?#)", "(?#\\)", "a(?#[)b"});
}

TEST(Errors, UnknownGroupForms) {
    expectErrors(tavStsPatternSyntax, {
                                          {"(?a)", 2},
                                          {"(?P<n>a)", 2},
                                          {"(?+a)", 2},
                                          {"(?1)", 2},
                                          {"(?I)", 2},
                                          {"(?g)", 2},
                                          {"(?ig)", 3},
                                          {"(?i-g:a)", 4},
                                          {"(?is a)", 4},
                                          {"(?<a>b)", 3},
                                          {"(?<)", 3},
                                          {"a(?\\))", 3},
                                      });
}

TEST(Errors, TooManyGroups) {
    expectErrors(tavStsPatternSyntax,
                 {
                     {repeated(1000, "(a)"), 999 * 3},
                     {repeated(1001, "(a)"), 1000 * 3}, // counted before anything is parsed
                     {repeated(1000, "(?=a)"), 999 * 5},
                     {repeated(1500, "(?i:a)"), 999 * 6},
                     {repeated(999, "(a)") + "(?:ab)", 999 * 3},
                     {repeated(998, "(a)") + "((a))", 998 * 3 + 1},
                 });
    expectCompiles({repeated(999, "(a)"), repeated(999, "(?=a)"), repeated(5000, "(?#a)"),
                    repeated(5000, "(?i)"), repeated(998, "(a)") + "(?(1)b)"});
}

TEST(Errors, TooDeepGroups) {
    expectErrors(tavStsPatternSyntax, {
                                          {repeated(1000, "(") + repeated(1000, ")"), 999},
                                          {repeated(1000, "(?:") + repeated(1000, ")"), 999 * 3},
                                          {repeated(999, "(?:") + "(?#c)", 999 * 3},
                                          {repeated(999, "(?:") + "(?i)", 999 * 3},
                                          {repeated(998, "(?:") + "(?(1)a)", 998 * 3 + 2},
                                      });
    expectCompiles({repeated(999, "(") + repeated(999, ")"), repeated(999, "(?:") + "a" + repeated(999, ")"),
                    repeated(998, "(?:") + "(?#c)" + repeated(998, ")"),
                    repeated(997, "(?:") + "(?(1)a)" + repeated(997, ")")});
}

TEST(Errors, BadConditions) {
    expectErrors(tavStsBadGroupReference, {
                                              {"(?())", 3},
                                              {"a(?()b|c)", 4},
                                              {"(?(0)a)", 4},
                                              {"(?(000)a)", 6},
                                          });
    expectErrors(tavStsPatternSyntax, {
                                          {"(?(a)b)", 3},
                                          {"(?(1a)b)", 4},
                                          {"(?(12 )b)", 5},
                                          {"(?(1234)a)", 6},
                                          {"(?(0000)a)", 6},
                                          {"(?(-1)a)", 3},
                                      });
    expectCompiles({"(?(1)a)", "(?(99)a)", "(?(999)a)", "(?(001)a)", "(?(10)a)"});
}

TEST(Errors, BadConditionals) {
    expectErrors(tavStsPatternSyntax, {
                                          {"(?(1)a|b|c)", 10},
                                          {"(?(?=a)b|c|d)x", 12},
                                          {"(?(?:a)b)", 8},
                                          {"(?(?>a)b)", 8},
                                          {"(?(?i)a)", 7},
                                          {"(?(?i:a)b)", 9},
                                          {"(?(?#c)b)", 8},
                                          {"(?(?#c)(?=a)b)", 13},
                                          {"(?(?i)(?=a)b)", 12},
                                          {"(?(?)(?=a)b)", 11},
                                          {"(?(1)*a)", 7},
                                          {"(?(1)(?#c)+a)", 12},
                                          {"(?(?=a)*b)", 9},
                                          {"(?(?=a)+b)", 9},
                                          {"(?(?!a){2}b)", 11},
                                          {"(?(?<=a){0}(?=c)b)", 17},
                                          {"(?(?=a)(?#c)*b)", 14},
                                      });
    expectCompiles(
        {"(?(1)a*)", "(?(1)(?=a)*b)", "(?(?=a)b*)", "(?(?=a)(?=b)+c)", "(?(1)a|b)+", "(?(?<=a)(b|c|d)|e)"});
}

TEST(Errors, LookbehindsWithoutAFixedLength) {
    expectErrors(tavStsPatternSyntax,
                 {
                     {"(?<=a*)", 6},
                     {"(?<=a|bc)", 8},
                     {"(?<!a|bc)", 8},
                     {"(?<=ab|c|de)", 11},
                     {"(?<=a?)x", 6},
                     {"(?<=a{1,2})", 10},
                     {"(?<=a{1,2}?)", 11},
                     {"(?<=..*)", 7},
                     {"(a)(?<=\\1)", 9},
                     {"(?<=(a|bc))", 10},
                     {"(?<=(?:a+))", 10},
                     {"(?<=(?>a+))", 10},
                     {"(?<=(?i:a+))", 11},
                     {"(?<=(?(1)a))", 11},
                     {"(?<=(?(1)a|b))", 13},
                     {"(?<=^*a)", 7},
                     {"(?<=()*a)", 8},
                     {"(?<=(ab){1,2})", 13},
                     {"(?<=(|a))", 8},
                     {"(?<=(?:(?:a{65535}){65535}))", 27},
                     {"(?<=(?:(?:(?:(?:(?:(?:a{65535}b){65535}c){65535}d){65535}e){65535}f){65535}))", 76},
                 });
    expectCompiles({"(?<=a)", "(?<=ab|cd)", "(?<!ab|cd)", "(?<=)", "(?<=a{3})", "(?<=a{3}|bcd)",
                    "(?<=(ab){2}|cdef)", "(?<=(a|b)c)", "(?<=[a-z]\\d\\pL)", "(?<=(?=a*)b)",
                    "(?<=(?<=ab|cd)e)", "(?<=(?=a|bc)d)"},
                   "x");
}

// References

TEST(Errors, BackReferencesToGroupsThatDoNotExist) {
    expectErrors(tavStsBadGroupReference, {
                                              {"\\1", 1},
                                              {"a\\9", 2},
                                              {"(a)\\2", 4},
                                              {"\\2(a)", 1},
                                              {"(?:a)\\1", 6},
                                              {"\\8a", 1},
                                          });
    expectCompiles({"\\1(a)", "(a)\\1", "(a)(b)\\2", "\\12", "\\89", "[\\1]", "(a\\1)"});
}

// Classes

TEST(Errors, ReversedRangesInClasses) {
    expectErrors(tavStsBadClass, {
                                     {"[z-a]", 3},
                                     {"a[b-a]", 4},
                                     {"[z-\\x41]", 3},
                                     {"[z-\\Qa\\E]", 5},
                                     {"[\xD0\x96-a]", 4},
                                     {"[a--]", 3},
                                     {"[\\x{80000000}-\\x{1}]", 14},
                                     {"[^b-a]", 4},
                                     {"[a-[:x]", 3},
                                 });
    expectCompiles({"[a-a]", "[\\x{1}-\\x{80000000}]", "[ -~]", "[\\t-\\x20]"});
}

TEST(Errors, ClassesWithoutAnEnd) {
    expectErrors(tavStsBadClass, {
                                     {"[", 1},
                                     {"[]", 2},
                                     {"[^]", 3},
                                     {"[^", 2},
                                     {"[a", 2},
                                     {"[a\\]", 4},
                                     {"[a\\", 3},
                                     {"[a-", 3},
                                     {"[a\\c]", 5},
                                     {"[[:alpha:]", 10},
                                     {"[\\x", 3},
                                 });
    expectErrors(tavStsPatternSyntax, {{"([a", 3}}); // the open group is found first
}

TEST(Errors, QuotesWithoutAnEndInClasses) {
    expectErrors(tavStsBadClass, {{"[\\Qa]", 5}, {"[a\\Q", 4}, {"([\\Q])", 6}});
    expectCompiles({"[\\Q]\\E]", "[\\Q[:\\E]", "\\Q[a", "[\\Qa\\E]"});
}

TEST(Errors, UnknownItemsInClasses) {
    expectErrors(tavStsBadClass, {
                                     {"[[:foo:]]", 1},
                                     {"[a[:ALPHA:]]", 2},
                                     {"[[:^:]]", 1},
                                     {"[[::]]", 1},
                                     {"[[:alpha ]x:]", 1},
                                     {"[[:alpha]]x[y:]", 1}, // closed "anywhere later in the pattern"
                                     {"[[:alpha:", 1},       // closed by the end of the pattern
                                     {"[[:x] y:", 1},
                                     {"[[.a.]]", 1},
                                     {"[[=a=]]", 1},
                                     {"[x[.a]b.]", 2},
                                     {"[[=a] =", 1},
                                     {"[[:^foo:]]", 1},
                                     {"[[:^^alpha:]]", 1},
                                     {"[[:alphax:]]", 1},
                                     {"[[:alph:]]", 1},
                                 });
    expectCompiles({"[[:alpha]", "[[.a]", "[[=]", "[[:]", "[[.]", "[[:a=]", "[[:alpha:]]", "[[:^alpha:]x]"});
}

TEST(Errors, ClassesWithoutMembers) {
    expectErrors(tavStsPatternSyntax, {
                                          {"[\\E]", 3},
                                          {"[^\\E]", 4},
                                          {"[\\Q\\E]", 5},
                                          {"ab[\\E\\E]", 7},
                                      });
}

TEST(Errors, DeliberatelyAClassThatHoldsOnlyACaret) {
    expectErrors(tavStsPatternSyntax, {
                                          {"[\\^]", 3},
                                          {"[\\Q^\\E]", 6},
                                          {"[\\x5e]", 5},
                                          {"[\\x{5e}]", 7},
                                          {"[\\136]", 5},
                                          {"[\\E^]", 4},
                                      });
    expectCompiles({"[^^]", "[\\^\\^]", "[\\^a]", "[\\^-\\^]"});
}

// Escapes

TEST(Errors, UnknownOrMalformedProperties) {
    expectErrors(tavStsBadEscape,
                 {
                     {"\\p", 2},      {"\\P", 2},        {"\\pA", 2},       {"\\pl", 2},
                     {"a\\p^", 3},    {"\\p{Foo}", 6},   {"\\p{Lux}", 6},   {"\\p{Lu", 5},
                     {"\\p{", 3},     {"\\p{^", 4},      {"\\p{latin}", 8}, {"\\p{Latin }", 9},
                     {"\\P{^Lu}", 3}, {"[\\p{Foo}]", 7}, {"[a\\pQ]", 4},    {"[\\P{^L}]", 4},
                     {"\\p{any}", 6}, {"\\p{Any", 6},    {"\\p\xFF", 2},
                 });
    expectCompiles(
        {"\\p{Lu}", "\\p{L}", "\\p{L&}", "\\p{Latin}", "\\p{InLatin}", "\\p{Any}", "\\p{}", "\\p{In}"});
}

TEST(Errors, HexadecimalEscapesWithoutTheirBrace) {
    expectErrors(tavStsBadEscape, {
                                      {"\\x{", 3},
                                      {"\\x{41", 3},
                                      {"a\\x{4g}", 4},
                                      {"\\x{g}", 3},
                                      {"\\x{123456789}", 3},
                                      {"[\\x{41]", 4},
                                  });
    expectCompiles({"\\x{12345678}", "\\x{}", "\\x", "\\xg", "[\\x]"});
}

// The first error wins, and the pre-scan reads the whole pattern before the main pass begins.

TEST(Errors, StructureIsReportedBeforeEverythingElse) {
    expectErrors(tavStsPatternSyntax, {{"*(", 2}, {"[z-a])", 5}, {"\\1(", 3}});
    expectErrors(tavStsRepeatLimit, {{"*[z-a]", 0}});
    expectErrors(tavStsBadClass, {{"[z-a]\\1**", 3}});
}

TEST(Errors, OfTheTwoPassesDisagreeingAreStillFound) {
    // The pre-scan takes the condition for text, the main pass for an option setting that starts a comment.
    expectErrors(tavStsPatternSyntax, {{"(?(?x)#)", 8}});
}

TEST(Errors, LeaveAnUnscannedBlockUntouchedAndAScannedOneWithAnEmptyProgram) {
    for (const char* text : {"(", ")", "[\\Q", "(?#", "(?(("}) {
        Pattern pattern(text);
        EXPECT_NE(pattern.status(), tavStsNoError) << text;
        EXPECT_TRUE(pattern.untouched()) << text;
    }
    for (const char* text : {"*", "a(b)*+", "[z-a]", "(a)(?<=a*)", "\\p{Foo}"}) {
        Pattern pattern(text);
        EXPECT_NE(pattern.status(), tavStsNoError) << text;
        EXPECT_EQ(pattern.context().tag, 0x78456772u) << text;
        EXPECT_EQ(pattern.context().codeLength, 0) << text;
        EXPECT_TRUE(pattern.workAreaUntouched()) << text;
    }
}

} // namespace
