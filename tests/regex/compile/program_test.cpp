// Small patterns with the programs that they compile to, construct by construct.
#include "regex/compile/expect_programs.h"

#include <gtest/gtest.h>

namespace {

using tavtest::expectPrograms;

TEST(Program, OfLiteralRuns) {
    expectPrograms({
        {"", ""},
        {"a", "CHAR 'a'"},
        {"ab", "STRING \"ab\""},
        {"a]b}c{d", "STRING \"a]b}c{d\""},
        {"caf\xC3\xA9", "STRING \"caf\\xC3\\xA9\""},
        {"a", "CHAR 'a' o=5", "si"},
        {"abc", "STRING \"abc\" o=31", "gimsx"},
        {"a{x}", "STRING \"a{x}\""},
        {"a{1,2,3}", "STRING \"a{1,2,3}\""},
        {"a{1", "STRING \"a{1\""},
        {"a{-1}", "STRING \"a{-1}\""},
        {"{", "CHAR '{'"},
    });
}

TEST(Program, GivesAQuantifierTheLastCharacterOfARun) {
    expectPrograms({
        {"a*", "CHAR 'a' | GREEDY 0..inf"},
        {"ab+", "CHAR 'a' | CHAR 'b' | GREEDY 1..inf"},
        {"abc?", "STRING \"ab\" | CHAR 'c' | GREEDY 0..1"},
        {"abcd*?e", "STRING \"abc\" | CHAR 'd' | LAZY 0..inf | CHAR 'e'"},
        {"abc*", "STRING \"ab\" o=4 | CHAR 'c' o=4 | GREEDY 0..inf", "i"},
    });
}

TEST(Program, OfQuantifiers) {
    expectPrograms({
        {"a{3}", "CHAR 'a' | GREEDY 3..3"},
        {"a{3}?", "CHAR 'a' | LAZY 3..3"},
        {"a{3,}", "CHAR 'a' | GREEDY 3..inf"},
        {"a{3,5}", "CHAR 'a' | GREEDY 3..5"},
        {"a{,3}", "CHAR 'a' | GREEDY 0..3"},
        {"a{}", "CHAR 'a' | GREEDY 0..0"},
        {"a{,}", "CHAR 'a' | GREEDY 0..inf"},
        {"a{0}", "CHAR 'a' | GREEDY 0..0"},
        {"a{65535}", "CHAR 'a' | GREEDY 65535..65535"},
        {"a{000000000003}", "CHAR 'a' | GREEDY 3..3"},
        {"a??", "CHAR 'a' | LAZY 0..1"},
        {"a+?", "CHAR 'a' | LAZY 1..inf"},
        {"^*", "ASSERT ^ | GREEDY 0..inf"},
        {"\\b+?", "ASSERT b | LAZY 1..inf"},
        {"[ab]{2}", "SET 2 | CHAR 'a' | CHAR 'b' | GREEDY 2..2"},
        {"a{x}*", "STRING \"a{x\" | CHAR '}' | GREEDY 0..inf"},
        {"\\**", "CHAR '*' | GREEDY 0..inf"},
        {"\\}+", "CHAR '}' | GREEDY 1..inf"},
        {"[*]?", "CHAR '*' | GREEDY 0..1"},
        {"\\Q*\\E*", "CHAR '*' | GREEDY 0..inf"},
        {"(a)+", "CAPTURE id=1 body=1 slot=1 | CHAR 'a' | GROUP_END id=1 | GREEDY 1..inf"},
    });
}

TEST(Program, OfAssertionsAndTypes) {
    expectPrograms({
        {"^$", "ASSERT ^ | ASSERT $"},
        {"\\b\\B\\A\\Z\\z\\G", "ASSERT b | ASSERT B | ASSERT A | ASSERT Z | ASSERT z | ASSERT G"},
        {".\\d\\D\\s\\S\\w\\W", "TYPE . | TYPE d | TYPE D | TYPE s | TYPE S | TYPE w | TYPE W"},
        {"\\C\\X", "ANYBYTE | EXTSEQ"},
        {"\\C\\C", "ANYBYTE | ANYBYTE"},
    });
}

TEST(Program, BeginsWithALineStartAnchorWhenThePatternTakesAWholeLine) {
    expectPrograms({
        {".*", "ASSERT line-start | TYPE . | GREEDY 0..inf"},
        {".+", "ASSERT line-start | TYPE . | GREEDY 1..inf"},
        {".*a", "ASSERT line-start | TYPE . | GREEDY 0..inf | CHAR 'a'"},
        {".*?", "TYPE . | LAZY 0..inf"},
        {".+?a", "TYPE . | LAZY 1..inf | CHAR 'a'"},
        {"(?:.*)", "ASSERT line-start | GROUP id=1 body=2 | TYPE . | GREEDY 0..inf | GROUP_END id=1 c=1"},
        {"(?:.+)*", "ASSERT line-start | GROUP id=1 body=2 | TYPE . | GREEDY 1..inf | GROUP_END id=1 c=-1 | "
                    "GREEDY 0..inf"},
        {"(?:.*?)", "GROUP id=1 body=2 | TYPE . | LAZY 0..inf | GROUP_END id=1"},
        {"(.*)", "CAPTURE id=1 body=2 slot=1 | TYPE . | GREEDY 0..inf | GROUP_END id=1 c=1"},
        {"..*", "TYPE . | GREEDY 1..inf"},
        {" .*", "TYPE . | GREEDY 0..inf", "x"},
        {".{0,}", "TYPE . | GREEDY 0..inf"},
        {".*|a", "ASSERT line-start | TYPE . | GREEDY 0..inf | ALT_END id=0 | CHAR 'a'"},
    });
}

TEST(Program, CollapsesEqualTypesInARow) {
    expectPrograms({
        {"..", "TYPE . | GREEDY 2..2"},
        {"...", "TYPE . | GREEDY 3..3"},
        {"....", "TYPE . | GREEDY 4..4"},
        {"\\d\\d\\d", "TYPE d | GREEDY 3..3"},
        {"\\d\\D", "TYPE d | TYPE D"},
        {"\\d\\d\\D\\D", "TYPE d | GREEDY 2..2 | TYPE D | GREEDY 2..2"},
        {".\\d.", "TYPE . | TYPE d | TYPE ."},
        {".|.", "TYPE . | ALT_END id=0 | TYPE ."},
        {"(.).", "CAPTURE id=1 body=1 slot=1 | TYPE . | GROUP_END id=1 | TYPE ."},
    });
}

TEST(Program, MergesAQuantifierIntoACollapsedRepeat) {
    expectPrograms({
        {"..*", "TYPE . | GREEDY 1..inf"},
        {"...+", "TYPE . | GREEDY 3..inf"},
        {"..?", "TYPE . | GREEDY 1..2"},
        {"\\w\\w{2,3}", "TYPE w | GREEDY 3..4"},
        {"..{0}", "TYPE . | GREEDY 1..1"},
        {"...{65535}", "TYPE . | GREEDY 65537..65537"},
        {"..{0,65535}", "TYPE . | GREEDY 1..65536"},
    });
}

TEST(Program, OfGroups) {
    expectPrograms({
        {"()", "CAPTURE id=1 body=0 slot=1 | GROUP_END id=1"},
        {"(a)(b)", "CAPTURE id=1 body=1 slot=1 | CHAR 'a' | GROUP_END id=1 | CAPTURE id=2 body=1 slot=2 | "
                   "CHAR 'b' | GROUP_END id=2"},
        {"((a)b)", "CAPTURE id=1 body=4 slot=1 | CAPTURE id=2 body=1 slot=2 | CHAR 'a' | GROUP_END id=2 | "
                   "CHAR 'b' | GROUP_END id=1"},
        {"(?=a)", "LOOKAHEAD id=-1 body=1 | CHAR 'a' | GROUP_END id=-1"},
        {"(?!a)", "NLOOKAHEAD id=-1 body=1 | CHAR 'a' | GROUP_END id=-1"},
        {"(?<=ab)", "LOOKBEHIND id=-1 body=1 chars=2 | STRING \"ab\" | GROUP_END id=-1"},
        {"(?<!a.)", "NLOOKBEHIND id=-1 body=2 chars=2 | CHAR 'a' | TYPE . | GROUP_END id=-1"},
        {"(?>a)(b)", "ATOMIC id=-1 body=1 | CHAR 'a' | GROUP_END id=-1 | CAPTURE id=2 body=1 slot=1 | "
                     "CHAR 'b' | GROUP_END id=2"},
        {"(?i:a)", "GROUP_OPTS id=1 body=1 o=4 | CHAR 'a' | GROUP_END id=1"},
        {"(?-i:a)", "GROUP_OPTS id=1 body=1 o=1 | CHAR 'a' | GROUP_END id=1 o=5", "si"},
        {"(?:)", "GROUP id=1 body=0 | GROUP_END id=1"},
        {"(a)\\1", "CAPTURE id=1 body=1 slot=1 | CHAR 'a' | GROUP_END id=1 | BACKREF 1"},
        {"\\1(a)", "BACKREF 1 | CAPTURE id=1 body=1 slot=1 | CHAR 'a' | GROUP_END id=1"},
        {"(?#a(b[c)d", "CHAR 'd'"},
    });
}

TEST(Program, OfAlternatives) {
    expectPrograms({
        {"a|b", "CHAR 'a' | ALT_END id=0 | CHAR 'b'"},
        {"|", "ALT_END id=0"},
        {"a||b", "CHAR 'a' | ALT_END id=0 | ALT_END id=0 | CHAR 'b'", ""},
        {"(a|b|c)", "CAPTURE id=1 body=5 slot=1 | CHAR 'a' | ALT_END id=1 | CHAR 'b' | ALT_END id=1 | "
                    "CHAR 'c' | GROUP_END id=1"},
        {"(?>a|(?=b|c)d|e)",
         "ATOMIC id=-1 body=10 | CHAR 'a' | ALT_END id=-1 | LOOKAHEAD id=-2 body=3 | CHAR 'b' | ALT_END "
         "id=-2 | "
         "CHAR 'c' | GROUP_END id=-2 | CHAR 'd' | ALT_END id=-1 | CHAR 'e' | GROUP_END id=-1"},
        {"(?:a|b)", "GROUP id=1 body=3 | CHAR 'a' | ALT_END id=1 | CHAR 'b' | GROUP_END id=1"},
    });
}

TEST(Program, OfOptionSettings) {
    expectPrograms({
        {"(?i)a", "OPTIONS o=4 | CHAR 'a' o=4"},
        {"(?-i)a", "OPTIONS o=3 | CHAR 'a' o=3", "ims"},
        {"(?im-s)a", "OPTIONS o=6 | CHAR 'a' o=6", "s"},
        {"(?i-s-m)a", "OPTIONS o=4 | CHAR 'a' o=4", "ms"},
        {"(a(?i)b)c",
         "CAPTURE id=1 body=3 slot=1 | CHAR 'a' | OPTIONS o=4 | CHAR 'b' | GROUP_END id=1 | CHAR 'c'"},
        {"(?i)a(?s:b(?m)c)d",
         "OPTIONS o=4 | CHAR 'a' o=4 | GROUP_OPTS id=1 body=3 o=5 | CHAR 'b' | OPTIONS o=7 | "
         "CHAR 'c' | GROUP_END id=1 o=4 | CHAR 'd' o=4"},
        {"(?)a", "CHAR 'a'"},
        {"(?x) a", "CHAR 'a' o=8"},
        {"(?-x) a", "STRING \" a\"", "x"},
        {"(?x:a b) c", "GROUP_OPTS id=1 body=2 o=8 | CHAR 'a' | CHAR 'b' | GROUP_END id=1 | STRING \" c\""},
    });
}

TEST(Program, OfConditionals) {
    expectPrograms({
        {"(a)(?(1)b|c)",
         "CAPTURE id=1 body=1 slot=1 | CHAR 'a' | GROUP_END id=1 | COND id=2 body=4 | BACKREF 1 | "
         "CHAR 'b' | ALT_END id=2 | CHAR 'c' | GROUP_END id=2"},
        {"(?(?=a)b)", "COND id=1 body=4 | LOOKAHEAD id=-2 body=1 | CHAR 'a' | GROUP_END id=-2 | CHAR 'b' | "
                      "GROUP_END id=1"},
        {"(?(?<!a)b|)", "COND id=1 body=5 | NLOOKBEHIND id=-2 body=1 chars=1 | CHAR 'a' | GROUP_END id=-2 | "
                        "CHAR 'b' | ALT_END id=1 | GROUP_END id=1"},
        {"(?(1))", "COND id=1 body=1 | BACKREF 1 | GROUP_END id=1"},
    });
}

TEST(Program, OfClasses) {
    expectPrograms({
        {"[ab]", "SET 2 | CHAR 'a' | CHAR 'b'"},
        {"[^ab]", "SET not 2 | CHAR 'a' | CHAR 'b'"},
        {"[a-z0-9_]", "SET 3 | RANGE 'a'-'z' | RANGE '0'-'9' | CHAR '_'"},
        {"[]a]", "SET 2 | CHAR ']' | CHAR 'a'"},
        {"[^]a]", "SET not 2 | CHAR ']' | CHAR 'a'"},
        {"[-a]", "SET 2 | CHAR '-' | CHAR 'a'"},
        {"[^-a]", "SET not 2 | CHAR '-' | CHAR 'a'"},
        {"[a-]", "SET 2 | CHAR 'a' | CHAR '-'"},
        {"[a-c-e]", "SET 3 | RANGE 'a'-'c' | CHAR '-' | CHAR 'e'"},
        {"[+--]", "SET 1 | RANGE '+'-'-'"},
        {"[--/]", "SET 1 | RANGE '-'-'/'"},
        {"[a-a]", "SET 1 | RANGE 'a'-'a'"},
        {"[^a]", "SET not 1 | CHAR 'a'"},
        {"[^^]", "SET not 1 | CHAR '^'"},
        {"[a^]", "SET 2 | CHAR 'a' | CHAR '^'"},
        {"[\\d.]", "SET 2 | TYPE d | CHAR '.'"},
        {"[a|b(c)*+?{2}$#]",
         "SET 14 | CHAR 'a' | CHAR '|' | CHAR 'b' | CHAR '(' | CHAR 'c' | CHAR ')' | CHAR '*' | "
         "CHAR '+' | CHAR '?' | CHAR '{' | CHAR '2' | CHAR '}' | CHAR '$' | CHAR '#'"},
        {"[a b]", "SET 3 | CHAR 'a' | CHAR ' ' | CHAR 'b'", "x"},
        {"[[]a]", "CHAR '[' | STRING \"a]\""},
        {"[[a]", "SET 2 | CHAR '[' | CHAR 'a'"},
        {"[\\p{Lu}\\x{100}-\\x{17F}\\PL]", "SET 3 | UPROP 82 | RANGE 100-17F | UPROP not 80"},
        {"[a\xC3\xA9\xD0\x96]", "SET 3 | CHAR 'a' | CHAR E9 | UCHAR 416"},
        {"[a-\xD0\x96]", "SET 1 | RANGE 'a'-416"},
    });
}

TEST(Program, ReplacesAClassOfOneMember) {
    expectPrograms({
        {"[a]", "CHAR 'a'"},
        {"[.]", "CHAR '.'"},
        {"[]]", "CHAR ']'"},
        {"[-]", "CHAR '-'"},
        {"[\\d]", "TYPE d"},
        {"[\\x{61}]", "UCHAR 61"},
        {"[\xD0\x96]", "UCHAR 416"},
        {"[a]*", "CHAR 'a' | GREEDY 0..inf"},
        {"[[:word:]]", "TYPE w"},
        {"[[:^word:]]", "TYPE W not"},
        {"[[:digit:]]", "SET 1 | RANGE '0'-'9'"},
        {"[\\pL]", "SET 1 | UPROP 80"},
    });
}

TEST(Program, OfPosixClasses) {
    expectPrograms({
        {"[[:alnum:]]", "SET 3 | RANGE 'a'-'z' | RANGE 'A'-'Z' | RANGE '0'-'9'"},
        {"[[:alpha:]]", "SET 2 | RANGE 'a'-'z' | RANGE 'A'-'Z'"},
        {"[[:ascii:]]", "SET 1 | RANGE 0-7F"},
        {"[[:blank:]]", "SET 2 | CHAR ' ' | CHAR 9"},
        {"[[:cntrl:]]", "SET 1 | RANGE 0-1F"},
        {"[[:digit:]]", "SET 1 | RANGE '0'-'9'"},
        {"[[:graph:]]", "SET 1 | RANGE '!'-FF"},
        {"[[:lower:]]", "SET 1 | RANGE 'a'-'z'"},
        {"[[:print:]]", "SET 1 | RANGE ' '-FF"},
        {"[[:punct:]]", "SET 4 | RANGE ' '-'/' | RANGE ':'-'@' | RANGE '['-'`' | RANGE '{'-FF"},
        {"[[:space:]]", "SET 2 | RANGE 9-D | CHAR ' '"},
        {"[[:upper:]]", "SET 1 | RANGE 'A'-'Z'"},
        {"[[:xdigit:]]", "SET 3 | RANGE 'a'-'f' | RANGE 'A'-'F' | RANGE '0'-'9'"},
        {"[_[:word:]]", "SET 2 | CHAR '_' | TYPE w"},
    });
}

TEST(Program, OfEscapedCharacters) {
    expectPrograms({
        {"\\a\\e\\f\\n\\r\\t\\v", "CHAR 7 | CHAR 1B | CHAR C | CHAR A | CHAR D | CHAR 9 | CHAR B"},
        {"\\0\\01\\012\\0123", "CHAR 0 | CHAR 1 | CHAR A | CHAR A | CHAR '3'"},
        {"\\cA\\ca\\c@\\c`\\c{\\c1\\c?", "CHAR 1 | CHAR 1 | CHAR 0 | CHAR 0 | CHAR ';' | CHAR 'q' | CHAR 7F"},
        {"\\c\x01\\c\xFF", "CHAR C1 | CHAR BF"},
        {"\\x41\\x4\\x4g\\xfF", "CHAR 'A' | CHAR 4 | CHAR 4 | CHAR 'g' | CHAR FF"},
        {"\\x{41}\\x{1F600}\\x{0}", "UCHAR 41 | UCHAR 1F600 | UCHAR 0"},
        {"\\.\\*\\[\\\\\\-\\y", "CHAR '.' | CHAR '*' | CHAR '[' | CHAR '\\' | CHAR '-' | CHAR 'y'"},
        {"a\\.b", "CHAR 'a' | CHAR '.' | CHAR 'b'"},
        {"\\Qa.b\\Ec", "STRING \"a.b\" | CHAR 'c'"},
        {"x\\Q(*", "CHAR 'x' | STRING \"(*\""},
        {"a\\Eb", "CHAR 'a' | CHAR 'b'"},
        {"\\11", "CHAR 9"},
        {"\\123", "CHAR 'S'"},
    });
}

TEST(Program, OfUnicodeProperties) {
    expectPrograms({
        {"\\pL\\pM\\pN\\pP\\pS\\pZ\\pC",
         "UPROP 80 | UPROP 100 | UPROP 800 | UPROP 1000 | UPROP 400 | UPROP 200 | "
         "UPROP 2000"},
        {"\\PL\\p{^L}\\P{L}", "UPROP not 80 | UPROP not 80 | UPROP not 80"},
        {"\\p{Lu}\\p{L&}\\p{Co}\\p{Pc}", "UPROP 82 | UPROP 87 | UPROP 2004 | UPROP 1020"},
        {"\\p{Any}\\P{Any}\\p{^Any}", "URANGE 0-10FFFF | URANGE not 0-10FFFF | URANGE not 0-10FFFF"},
        {"\\p{Latin}\\P{Cherokee}", "ULIST 42 from 41-5A | ULIST not 1 from 13A0-13F4"},
        {"\\p{InCyrillic}\\p{InLatin}", "ULIST 1 from 400-4FF | ULIST 1 from 80-FF"},
    });
}

} // namespace
