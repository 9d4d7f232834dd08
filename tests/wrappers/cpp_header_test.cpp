// The C++ header against what the C functions answer.
#include "tavch.hpp"

#include <gtest/gtest.h>

#include <random>
#include <set>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

using namespace std::string_literals;
using namespace std::string_view_literals;

namespace {

std::vector<std::string> textsOf(const tav::Matches& matches) {
    std::vector<std::string> texts;
    for (const tav::MatchView match : matches)
        texts.emplace_back(match.text());
    return texts;
}

using Texts = std::vector<std::string>;

} // namespace

TEST(CppStatus, EveryStatusOfTheHeaderHasItsNameOnce) {
    std::set<tavStatus> seen;
    for (const tav::StatusText& status : tav::statusTexts) {
        EXPECT_TRUE(seen.insert(status.status).second) << status.name;
        EXPECT_EQ(tav::statusText(status.status).name, status.name);
        EXPECT_FALSE(status.text.empty());
    }
    EXPECT_EQ(seen.size(), 18U);
    EXPECT_EQ(tav::statusText(tavStsBadClass).name, "tavStsBadClass");
    EXPECT_EQ(tav::statusText(-1000).name, "unknown");
    static_assert(tav::statusText(tavStsNoError).status == 0);
}

TEST(CppPattern, FindsTheMatchAndItsGroups) {
    tav::Pattern pattern("a(b+)(x)?c", "i");
    ASSERT_TRUE(pattern);
    EXPECT_EQ(pattern.resultCount(), 3U);
    const tav::Match match = pattern.find("xxABBBcyy");
    ASSERT_TRUE(match);
    EXPECT_EQ(match.size(), 3U);
    EXPECT_EQ(match[0], "ABBBc");
    EXPECT_EQ(match[1], "BBB");
    EXPECT_EQ(match.position(), 2U);
    EXPECT_EQ(match.position(1), 3U);
    EXPECT_EQ(match.end(1), 6U);
    EXPECT_FALSE(match.matched(2));
    EXPECT_EQ(match[2], "");
    EXPECT_EQ(match.position(2), tav::npos);
    EXPECT_FALSE(match.matched(3));
    EXPECT_EQ(match.status(), tavStsNoError);
}

TEST(CppPattern, NotFindingAnythingIsNoError) {
    tav::Pattern pattern("b");
    const tav::Match match = pattern.find("aaa");
    EXPECT_FALSE(match);
    EXPECT_EQ(match.size(), 0U);
    EXPECT_EQ(match[0], "");
    EXPECT_EQ(match.position(), tav::npos);
    EXPECT_EQ(match.status(), tavStsNoError);
    EXPECT_TRUE(pattern.matches("aaa").empty());
}

TEST(CppPattern, SearchesAnEmptyViewWithoutAnAddress) {
    tav::Pattern pattern("a*");
    EXPECT_TRUE(pattern.find(std::string_view()));
    EXPECT_EQ(pattern.matches(std::string_view()).size(), 1U);
    EXPECT_EQ(*pattern.replaceAll(std::string_view(), "<$&>"), "<>");
}

TEST(CppPattern, TellsWhereThePatternIsWrong) {
    struct Case {
        std::string_view pattern, options;
        tavStatus status;
        std::int32_t offset;
    };
    for (const Case& bad :
         {Case{"ab(c", "", tavStsPatternSyntax, 4}, Case{"ab**", "", tavStsRepeatLimit, 3},
          Case{"x[z-a]", "", tavStsBadClass, 4}, Case{"ab", "iq", tavStsBadOption, 0},
          Case{"a\0b"sv, "", tavStsBadArgument, 1}, Case{"ab", "i\0"sv, tavStsBadOption, 0}}) {
        tav::Pattern pattern(bad.pattern, bad.options);
        EXPECT_FALSE(pattern);
        EXPECT_EQ(pattern.error().status, bad.status) << bad.pattern;
        EXPECT_EQ(pattern.error().offset, bad.offset) << bad.pattern;
        EXPECT_EQ(pattern.find("abc").status(), bad.status);
        EXPECT_EQ(pattern.matches("abc").error().status, bad.status);
        EXPECT_EQ(pattern.replaceAll("abc", "x").error().status, bad.status);
        EXPECT_EQ(pattern.resultCount(), 0U);
    }
    EXPECT_EQ(tav::Pattern("a)").error().name(), "tavStsPatternSyntax");
}

TEST(CppPattern, TakesEveryOptionAnyNumberOfTimes) {
    tav::Pattern pattern("A b . $", "xxiissmmggxism");
    ASSERT_TRUE(pattern);
    EXPECT_EQ(pattern.find("zab\n\nc")[0], "ab\n");
    EXPECT_EQ(pattern.context()->options & 16U, 0U) << "the search for one match stays that";
}

TEST(CppPattern, IsMovedAndNotCopied) {
    static_assert(!std::is_copy_constructible_v<tav::Pattern>);
    static_assert(std::is_nothrow_move_constructible_v<tav::Pattern>);
    static_assert(std::is_nothrow_move_assignable_v<tav::Pattern>);
    tav::Pattern first("a(b+)");
    tav::Pattern second(std::move(first));
    EXPECT_EQ(second.find("abb")[1], "bb");
    EXPECT_FALSE(first); // NOLINT(bugprone-use-after-move): what is left is not a pattern, and says so
    EXPECT_EQ(first.find("abb").status(), tavStsBadContext);
    first = std::move(second);
    EXPECT_EQ(first.find("abb")[1], "bb");
}

TEST(CppHeader, WhatIsLeftOfAMovedValueIsEmptyAndSaysSo) {
    static_assert(!std::is_copy_constructible_v<tav::PatternSet>, "the block of a set points into itself");
    tav::Pattern pattern("a");
    tav::Template first("<$&>");
    tav::Template second(std::move(first));
    EXPECT_FALSE(first); // NOLINT(bugprone-use-after-move)
    EXPECT_EQ(pattern.replaceAll("", first).error().status, tavStsBadContext);
    EXPECT_EQ(pattern.replaceAll("a", first).error().status, tavStsBadContext);
    EXPECT_EQ(*pattern.replaceAll("ba", second), "b<a>");

    tav::Matches all = pattern.matches("aaa");
    const tav::Matches moved(std::move(all));
    EXPECT_EQ(moved.size(), 3U);
    EXPECT_TRUE(all.empty()); // NOLINT(bugprone-use-after-move)

    tav::PatternSet set(2);
    ASSERT_FALSE(set.add(pattern, 7));
    tav::PatternSet other(std::move(set));
    EXPECT_FALSE(set); // NOLINT(bugprone-use-after-move)
    EXPECT_EQ(set.find("a").error().status, tavStsBadContext);
    EXPECT_EQ(other.find("a")->size(), 1U);
}

TEST(CppPattern, UsesRoomOfTheCallers) {
    static tav::PatternRoom<8> room;
    tav::Pattern pattern("a(b+)cd", "", room);
    ASSERT_TRUE(pattern);
    tav::Pattern moved(std::move(pattern));
    EXPECT_EQ(moved.find("xabbcd")[1], "bb");
    EXPECT_EQ(tav::Pattern("a(b+)cde", "", room).find("abcde").size(), 2U);
    EXPECT_EQ(tav::Pattern("a(b+)cdef", "", room).error().status, tavStsNegativeLength);
}

TEST(CppPattern, KeepsAsManyResultsAsAskedFor) {
    tav::Pattern pattern("(a)(b)(c)");
    EXPECT_EQ(pattern.find<4>("abc").status(), tavStsNoError);
    EXPECT_EQ(pattern.find<2>("abc").status(), tavStsResultsTruncated);
    EXPECT_EQ(pattern.find<2>("abc").size(), 2U);
    EXPECT_TRUE(pattern.matchesIn("abc"));
}

TEST(CppPattern, HonoursLimitAndFormat) {
    tav::Pattern pattern("(?:ab)*$");
    EXPECT_EQ(pattern.find("ababab").end(), 6U);
    EXPECT_FALSE(pattern.setMatchLimit(1));
    EXPECT_FALSE(pattern.find("ababab"));
    EXPECT_EQ(pattern.setMatchLimit(-1).status, tavStsNegativeLength);
    tav::Pattern byte("\\C$");
    EXPECT_FALSE(byte.find("\xE2\x82\xAC"));
    EXPECT_FALSE(byte.setWholeCharacters(false));
    EXPECT_EQ(byte.find("\xE2\x82\xAC").position(), 2U);
}

TEST(CppMatches, GiveWholeMatchesAndGroups) {
    tav::Pattern pattern("(\\w)(\\d)?");
    const tav::Matches matches = pattern.matches("a1 b c3");
    ASSERT_EQ(matches.size(), 3U);
    EXPECT_EQ(textsOf(matches), (Texts{"a1", "b", "c3"}));
    EXPECT_EQ(matches[1][1], "b");
    EXPECT_FALSE(matches[1].matched(2));
    EXPECT_EQ(matches[2].position(2), 6U);
}

TEST(CppMatches, KnowTheWholeSubjectAtEachMatch) {
    tav::Pattern starts("^(a)");
    EXPECT_EQ(starts.matches("aaa").size(), 1U);
    tav::Pattern inner("(?<=a)(a)");
    EXPECT_EQ(inner.matches("aaa").size(), 2U);
    tav::Pattern twice("(\\w)\\1");
    EXPECT_EQ(textsOf(twice.matches("aabbcd")), (Texts{"aa", "bb"}));
}

TEST(CppMatches, AreAllFoundHoweverMany) {
    for (const char* text : {"a", "(a)"}) {
        tav::Pattern pattern(text);
        for (std::size_t count : {15U, 16U, 17U, 63U, 64U, 65U, 1000U})
            EXPECT_EQ(pattern.matches(std::string(count, 'a')).size(), count) << text;
    }
}

TEST(CppMatches, AreThoseOfAPatternCompiledForAllMatches) {
    const std::string subject = "one two, three four five\nsix 7 8\n";
    for (const char* text : {"\\w+", "o*", "e?", "^\\w", "\\b", "[aeiou]{1,2}", "x", "$", "\\w*?"}) {
        tav::Pattern pattern(text);
        tavRegExpContext* global = nullptr;
        std::int32_t offset = 0, count = 200;
        std::vector<tavRegExpFindResult> expected(200);
        ASSERT_EQ(tavsRegExpInitAlloc(text, "g", &global, &offset), tavStsNoError);
        ASSERT_EQ(tavsRegExpFind_8u(reinterpret_cast<const std::uint8_t*>(subject.data()),
                                    static_cast<std::int32_t>(subject.size()), global, expected.data(),
                                    &count),
                  tavStsNoError);
        tavsRegExpFree(global);
        const tav::Matches matches = pattern.matches(subject);
        ASSERT_EQ(matches.size(), static_cast<std::size_t>(count)) << text;
        for (std::size_t i = 0; i < matches.size(); i++) {
            EXPECT_EQ(matches[i].entries()[0].start, expected[i].start) << text;
            EXPECT_EQ(matches[i].entries()[0].length, expected[i].length) << text;
        }
    }
}

TEST(CppReplace, ReplacesTheFirstOrEveryMatch) {
    tav::Pattern date("(\\d+)-(\\d+)-(\\d+)");
    const std::string_view text = "2026-11-20 and 2027-01-02";
    EXPECT_EQ(*date.replaceAll(text, "$3.$2.$1"), "20.11.2026 and 02.01.2027");
    EXPECT_EQ(*date.replaceFirst(text, "$3.$2.$1"), "20.11.2026 and 2027-01-02");
    EXPECT_EQ(*date.replaceAll(text, ""), " and ");
    EXPECT_EQ(*date.replaceFirst(text, ""), " and 2027-01-02");
    EXPECT_EQ(*date.replaceFirst("no date", "$3"), "no date");
}

TEST(CppReplace, SizesTheResultForAnyGrowth) {
    tav::Pattern pattern("(a)");
    const tav::Template longer(std::string(50, 'x') + "$1");
    for (std::size_t count : {1U, 15U, 16U, 17U, 100U, 1000U}) {
        std::string expected;
        for (std::size_t i = 0; i < count; i++)
            expected += std::string(50, 'x') + "a";
        EXPECT_EQ(*pattern.replaceAll(std::string(count, 'a'), longer), expected) << count;
        EXPECT_EQ(*pattern.replaceFirst(std::string(count, 'a'), longer),
                  std::string(50, 'x') + std::string(count, 'a'));
    }
}

TEST(CppReplace, TellsWhereTheTemplateIsWrong) {
    struct Case {
        std::string_view text;
        tavStatus status;
        std::int32_t offset;
    };
    for (const Case& bad :
         {Case{"ab$", tavStsBadGroupReference, 2}, Case{"$1$&$x", tavStsBadGroupReference, 4},
          Case{"\\$0", tavStsBadGroupReference, 1}, Case{"a$00b", tavStsBadGroupReference, 1},
          Case{"a\0b"sv, tavStsBadArgument, 1}}) {
        const tav::Template parsed(bad.text);
        EXPECT_FALSE(parsed);
        EXPECT_EQ(parsed.error().status, bad.status) << bad.text;
        EXPECT_EQ(parsed.error().offset, bad.offset) << bad.text;
        EXPECT_EQ(tav::Pattern("a").replaceAll("a", parsed).error().offset, bad.offset);
    }
    EXPECT_TRUE(tav::Template("$12 $& \\x"));
    EXPECT_TRUE(tav::Template(""));
}

TEST(CppReplace, FindsTheFaultOfATemplateExactlyWhereItsPrefixBecomesBad) {
    std::mt19937 random(11);
    for (int round = 0; round < 2000; round++) {
        std::string text;
        for (auto length = random() % 8; text.size() < length;)
            text += "$$0019&\\a"[random() % 9];
        const tav::Template parsed(text);
        if (parsed) continue;
        // All before the fault is good, and whatever follows "$" and its digits cannot mend it.
        const auto offset = static_cast<std::size_t>(parsed.error().offset);
        EXPECT_TRUE(tav::Template(text.substr(0, offset))) << text;
        EXPECT_EQ(text[offset], '$') << text;
        const std::size_t end = text.find_first_not_of("0123456789", offset + 1);
        EXPECT_FALSE(tav::Template(text.substr(0, end))) << text;
    }
}

TEST(CppPatternSet, TellsWhichPatternsMatch) {
    tav::Pattern digits("(\\d)(\\d)"), words("[a-z]+"), other("!");
    tav::PatternSet set(3, 3);
    ASSERT_TRUE(set);
    EXPECT_FALSE(set.add(digits, 10));
    EXPECT_FALSE(set.add(words, 20));
    EXPECT_FALSE(set.add(other, 30));
    EXPECT_EQ(set.add(other, 40).status, tavStsSetFull);
    EXPECT_EQ(set.remove(40).status, tavStsNotFound);
    const auto hits = set.find("ab 12");
    ASSERT_TRUE(hits);
    ASSERT_EQ(hits->size(), 2U);
    EXPECT_EQ((*hits)[0].id, 10U);
    EXPECT_EQ((*hits)[0].match[2], "2");
    EXPECT_EQ((*hits)[1].id, 20U);
    EXPECT_EQ((*hits)[1].match.position(), 0U);
    EXPECT_FALSE(set.remove(20));
    EXPECT_FALSE(set.replace(words, 30));
    EXPECT_EQ(set.find("ab")->size(), 1U);
    EXPECT_TRUE(set.find("")->empty());
    EXPECT_EQ(tav::PatternSet(0).error().status, tavStsBadCount);
}

TEST(CppPatternSet, MayBeSearchedInTheHeadOfALoop) {
    tav::Pattern digit("\\d");
    tav::PatternSet set(1);
    ASSERT_FALSE(set.add(digit, 5));
    int hits = 0;
    for (const auto& hit : *set.find("a1"))
        hits += hit.id == 5 && hit.match[0] == "1";
    EXPECT_EQ(hits, 1);
}

TEST(CppStrings, AnswerForBothWidths) {
    EXPECT_EQ(tav::find("banana", "an"), 1U);
    EXPECT_EQ(tav::find(u"banana", u"an"), 1U);
    EXPECT_EQ(tav::findLast("banana", "an"), 3U);
    EXPECT_EQ(tav::find("banana", 'n'), 2U);
    EXPECT_EQ(tav::findLast(u"banana", u'n'), 4U);
    EXPECT_EQ(tav::find("banana", ""), tav::npos);
    EXPECT_EQ(tav::findAny("banana", "xn"), 2U);
    EXPECT_EQ(tav::findLastAny("banana", "xb"), 0U);
    EXPECT_EQ(tav::find(std::string_view(), "a"), tav::npos);
    EXPECT_TRUE(tav::equal("ab", "ab"));
    EXPECT_FALSE(tav::equal("ab", "abc"));
    EXPECT_LT(tav::compare("ab", "b"), 0);
    EXPECT_GT(tav::compare("abc", "ab"), 0);
    EXPECT_EQ(tav::compareIgnoreCaseLatin("ABC", "abc"), 0);
    EXPECT_EQ(tav::compareIgnoreCase(u"\u00C9", u"\u00E9"), 0);
    EXPECT_EQ(tav::insert("report.txt", 6, "-2"), "report-2.txt");
    EXPECT_EQ(tav::insert("ab", 9, "c"), "abc");
    EXPECT_EQ(tav::remove("abcdef", 1, 2), "adef");
    EXPECT_EQ(tav::remove("abc", 1, 99), "a");
    EXPECT_EQ(tav::replace(u"a-b", u'-', u'+'), u"a+b");
    EXPECT_EQ(tav::trim("--a-b--", "-"), "a-b");
    EXPECT_EQ(tav::trimStart("--a--", "-"), "a--");
    EXPECT_EQ(tav::trimEnd("--a--", "-"), "--a");
    EXPECT_EQ(tav::concat("ab", "cd"), "abcd");
    EXPECT_EQ(tav::lowercaseLatin("AbC\xC9"), "abc\xC9");
    EXPECT_EQ(tav::uppercaseLatin("aBc"), "ABC");
    EXPECT_EQ(tav::uppercase(u"\u00E9a"), u"\u00C9A");
    EXPECT_EQ(tav::lowercase(u"\u00C9A"), u"\u00E9a");
    EXPECT_EQ(tav::hashTimes31("ab"), 97U * 31 + 98);
    EXPECT_EQ(tav::hashTimes33(""), 5381U);
    EXPECT_EQ(tav::hash("\x01\x02"), 0U);
    EXPECT_EQ(tav::hash(u"ab"), tav::hash("ab"));
}

TEST(CppStrings, SplitAndJoinFields) {
    using Fields = std::vector<std::string_view>;
    EXPECT_EQ(tav::split("a,,b,", ','), (Fields{"a", "", "b"}));
    EXPECT_EQ(tav::split("", ','), Fields{});
    EXPECT_EQ(tav::split(",", ','), Fields{""});
    EXPECT_EQ(tav::join(Fields{"a", "", "b"}, ','), "a,,b");
    EXPECT_EQ(tav::join(Fields{}, ','), "");
}

TEST(CppStrings, ConvertBetweenUtf8AndUtf16) {
    const std::string utf8 = "\xE2\x82\xAC \xF0\x9F\x98\x80 a";
    EXPECT_EQ(tav::toUtf16(utf8), u"\u20AC \U0001F600 a");
    EXPECT_EQ(tav::toUtf8(tav::toUtf16(utf8)), utf8);
    EXPECT_EQ(tav::toUtf8(u""), "");
}
