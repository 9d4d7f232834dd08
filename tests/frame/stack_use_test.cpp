// The machine stack that calls take: every string function within 1 KiB whatever the lengths, the deepest
// compilations within 64 KiB, the deepest searches under the default limit within 256 KiB.
#include "base/stack_use.h"
#include "frame/export_list.h"
#include "strings/api.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#if !defined(TAVTEST_FRAMES_ARE_WIDENED)

namespace {

using tavtest::Api;
using tavtest::ownStackUseOf;

constexpr std::size_t stringBound = 1024;
constexpr std::size_t compileBound = 64 * 1024;
constexpr std::size_t searchBound = 256 * 1024;
constexpr std::size_t longest = 4096;

/// Arguments that fit every string function.
template <class E>
struct Arguments {
    std::vector<E> first, second, dst, set;
    std::array<E*, 2> list;
    std::array<int32_t, 2> lengths;
    int32_t n = 0;
    int32_t number = 0;
    uint32_t hash = 0;

    explicit Arguments(int32_t length)
        : first(2 * longest, E{'a'}), second(2 * longest, E{'a'}), dst(4 * longest), set(40), n(length) {
        const auto count = static_cast<std::size_t>(length);
        for (std::size_t i = 0; i < count; ++i)
            first[i] = second[i] = static_cast<E>('a' + i * i % 23);
        first[count] = second[count] = 0;
        for (std::size_t i = 0; i < set.size(); ++i)
            set[i] = static_cast<E>('A' + i);
        list = {first.data(), second.data()};
        lengths = {length, length};
    }
    int32_t setSize() const { return static_cast<int32_t>(set.size()); }
};

using Uses = std::map<std::string_view, std::size_t>;

#define TAV_USE(name, ...)                                                                                   \
    uses[name] = std::max(uses[name], ownStackUseOf(                                                         \
                                          [&] {                                                              \
                                              a.number = a.n;                                                \
                                              a.lengths = {a.n, a.n};                                        \
                                              __VA_ARGS__;                                                   \
                                          },                                                                 \
                                          8 * stringBound))

#define TAV_USES(E, S)                                                                                       \
    TAV_USE("tavsCompare_" #S, Api<E>::compare(x, y, a.n, &a.number));                                       \
    TAV_USE("tavsCompareIgnoreCaseLatin_" #S, Api<E>::compareIgnoreCaseLatin(x, y, a.n, &a.number));         \
    TAV_USE("tavsEqual_" #S, Api<E>::equal(x, y, a.n, &a.hash));                                             \
    TAV_USE("tavsFind_" #S, Api<E>::find(x, a.n, y, a.n / 2, &a.number));                                    \
    TAV_USE("tavsFind_" #S, Api<E>::find(x, a.n, set, a.setSize(), &a.number));                              \
    TAV_USE("tavsFindRev_" #S, Api<E>::findRev(x, a.n, y, a.n / 2, &a.number));                              \
    TAV_USE("tavsFindRev_" #S, Api<E>::findRev(x, a.n, set, a.setSize(), &a.number));                        \
    TAV_USE("tavsFind_Z_" #S, Api<E>::findZ(x, y, &a.number));                                               \
    TAV_USE("tavsFindC_" #S, Api<E>::findC(x, a.n, '!', &a.number));                                         \
    TAV_USE("tavsFindRevC_" #S, Api<E>::findRevC(x, a.n, '!', &a.number));                                   \
    TAV_USE("tavsFindC_Z_" #S, Api<E>::findCZ(x, '!', &a.number));                                           \
    TAV_USE("tavsFindCAny_" #S, Api<E>::findCAny(x, a.n, set, a.setSize(), &a.number));                      \
    TAV_USE("tavsFindCAny_" #S, Api<E>::findCAny(x, a.n, set, 3, &a.number));                                \
    TAV_USE("tavsFindRevCAny_" #S, Api<E>::findRevCAny(x, a.n, set, a.setSize(), &a.number));                \
    TAV_USE("tavsInsert_" #S, Api<E>::insert(x, a.n, y, a.n, dst, a.n / 2));                                 \
    TAV_USE("tavsInsert_" #S "_I", Api<E>::insertInPlace(y, a.n, dst, &a.number, a.n / 2));                  \
    TAV_USE("tavsRemove_" #S, Api<E>::remove(x, a.n, dst, a.n / 3, a.n / 2));                                \
    TAV_USE("tavsRemove_" #S "_I", Api<E>::removeInPlace(dst, &a.number, a.n / 3, a.n / 2));                 \
    TAV_USE("tavsConcat_" #S, Api<E>::concat(x, a.n, y, a.n, dst));                                          \
    TAV_USE("tavsConcat_" #S "_D2L", Api<E>::concatList(list, a.lengths.data(), 2, dst));                    \
    TAV_USE("tavsConcatC_" #S "_D2L", Api<E>::concatListWithDelimiter(list, a.lengths.data(), 2, ',', dst)); \
    TAV_USE("tavsSplitC_" #S "_D2L", int32_t fields = 1; E* const field = dst;                               \
            Api<E>::split(x, a.n, 'w', &field, a.lengths.data(), &fields));                                  \
    TAV_USE("tavsReplaceC_" #S, Api<E>::replace(x, dst, a.n, 'a', 'b'));                                     \
    TAV_USE("tavsTrimC_" #S, Api<E>::trim(x, a.n, 'a', dst, &a.number));                                     \
    TAV_USE("tavsTrimC_" #S "_I", Api<E>::trimInPlace(dst, &a.number, 'a'));                                 \
    TAV_USE("tavsTrimCAny_" #S, Api<E>::trimAny(x, a.n, set, a.setSize(), dst, &a.number));                  \
    TAV_USE("tavsTrimStartCAny_" #S, Api<E>::trimStartAny(x, a.n, set, a.setSize(), dst, &a.number));        \
    TAV_USE("tavsTrimEndCAny_" #S, Api<E>::trimEndAny(x, a.n, set, a.setSize(), dst, &a.number));            \
    TAV_USE("tavsHash_" #S "32u", Api<E>::hash(x, a.n, &a.hash));                                            \
    TAV_USE("tavsHashSJ2_" #S "32u", Api<E>::hashSJ2(x, a.n, &a.hash));                                      \
    TAV_USE("tavsHashMSCS_" #S "32u", Api<E>::hashMSCS(x, a.n, &a.hash));                                    \
    TAV_USE("tavsLowercaseLatin_" #S, Api<E>::lowercaseLatin(x, dst, a.n));                                  \
    TAV_USE("tavsLowercaseLatin_" #S "_I", Api<E>::lowercaseLatinInPlace(dst, a.n));                         \
    TAV_USE("tavsUppercaseLatin_" #S, Api<E>::uppercaseLatin(x, dst, a.n));                                  \
    TAV_USE("tavsUppercaseLatin_" #S "_I", Api<E>::uppercaseLatinInPlace(dst, a.n))

void measureBytes(Uses& uses, int32_t length) {
    Arguments<uint8_t> a(length);
    const uint8_t *const x = a.first.data(), *const y = a.second.data(), *const set = a.set.data();
    const uint8_t* const* const list = a.list.data();
    uint8_t* const dst = a.dst.data();
    TAV_USES(uint8_t, 8u);
    std::vector<uint16_t> wide(longest);
    TAV_USE("tavsConvertUTF_8u16u", uint32_t in = static_cast<uint32_t>(a.n); uint32_t out = longest;
            tavsConvertUTF_8u16u(x, &in, wide.data(), &out, 1));
}

void measureUnits(Uses& uses, int32_t length) {
    Arguments<uint16_t> a(length);
    const uint16_t *const x = a.first.data(), *const y = a.second.data(), *const set = a.set.data();
    const uint16_t* const* const list = a.list.data();
    uint16_t* const dst = a.dst.data();
    TAV_USES(uint16_t, 16u);
    std::vector<uint8_t> narrow(3 * longest);
    TAV_USE("tavsConvertUTF_16u8u", uint32_t in = static_cast<uint32_t>(a.n); uint32_t out = 3 * longest;
            tavsConvertUTF_16u8u(x, &in, narrow.data(), &out, 1));
    TAV_USE("tavsCompareIgnoreCase_16u", tavsCompareIgnoreCase_16u(x, y, a.n, &a.number));
    TAV_USE("tavsLowercase_16u", tavsLowercase_16u(x, dst, a.n));
    TAV_USE("tavsLowercase_16u_I", tavsLowercase_16u_I(dst, a.n));
    TAV_USE("tavsUppercase_16u", tavsUppercase_16u(x, dst, a.n));
    TAV_USE("tavsUppercase_16u_I", tavsUppercase_16u_I(dst, a.n));
}

} // namespace

TEST(StackUse, OfEveryStringFunctionIsWithin1KiB) {
    Uses uses;
    for (const int32_t length : {0, 1, 15, 16, 33, 130, static_cast<int32_t>(longest) - 1}) {
        measureBytes(uses, length);
        measureUnits(uses, length);
    }
    std::size_t most = 0;
    for (const tav::test::Export& one : tav::test::exportList) {
        if (one.name.substr(0, 10) == "tavsRegExp" || one.name == "tavchGetLibVersion") continue;
        const auto use = uses.find(one.name);
        if (use == uses.end()) {
            ADD_FAILURE() << one.name << " is not measured";
            continue;
        }
        EXPECT_LE(use->second, stringBound) << one.name;
        most = std::max(most, use->second);
    }
    std::printf("at most %zu bytes\n", most);
}

namespace {

std::string repeated(std::size_t count, const std::string& text) {
    std::string all;
    for (std::size_t i = 0; i < count; ++i)
        all += text;
    return all;
}

/// openers, body, closers
std::string nested(std::size_t depth, const std::string& opener, const std::string& body) {
    std::string all = repeated(depth, opener);
    all += body;
    all.append(depth, ')');
    return all;
}

} // namespace

TEST(StackUse, OfTheDeepestCompilationsIsWithin64KiB) {
    std::size_t most = 0;
    for (const std::string& pattern :
         {std::string("a"), nested(999, "(", "a"), nested(999, "(?<=", "a"),
          nested(1, "(?<=", nested(998, "(", "a")), nested(1, "(?<=", nested(498, "(?:a(?i)", "")),
          nested(499, "(?(?=a)", "b"), repeated(3000, "[[:alpha:]\\p{Lu}]"), repeated(3000, "(?:ab)")}) {
        std::vector<uint64_t> block((24 * pattern.size() + 48056) / 8);
        tavStatus status = -1;
        const std::size_t use = ownStackUseOf(
            [&] {
                int32_t errOffset = 0;
                status = tavsRegExpInit(pattern.c_str(), "i",
                                        reinterpret_cast<tavRegExpContext*>(block.data()), &errOffset);
            },
            2 * compileBound);
        EXPECT_EQ(status, tavStsNoError) << pattern.substr(0, 20);
        EXPECT_LE(use, compileBound) << pattern.substr(0, 20);
        most = std::max(most, use);
    }
    std::printf("at most %zu bytes\n", most);
}

TEST(StackUse, OfTheDeepestSearchesIsWithin256KiB) {
    const struct {
        const char* pattern;
        const char* unit;
    } deepest[] = {{"(a|b)*", "ab"},           {"(?:a|b)*?c", "ab"},         {"((a)|(b))*", "ab"},
                   {"(a*b)*", "aab"},          {"(?>a|b)*", "ab"},           {"(?:(?(?=a)a|b))*", "ab"},
                   {"(((a)|b))*", "ab"},       {"(?i:a|(b))*", "aB"},        {"(.)*", "ab"},
                   {"(?:(?<=b)a|b|a)*", "ab"}, {"(?:(?=(a)|(b))\\w)*", "ab"}};
    std::size_t most = 0;
    for (const auto& deep : deepest) {
        const std::string subject = repeated(12000, deep.unit);
        const std::string pattern = deep.pattern;
        std::vector<uint64_t> block((24 * pattern.size() + 48056) / 8);
        auto* const context = reinterpret_cast<tavRegExpContext*>(block.data());
        int32_t errOffset = 0;
        ASSERT_EQ(tavsRegExpInit(deep.pattern, nullptr, context, &errOffset), tavStsNoError);
        const std::size_t use = ownStackUseOf(
            [&] {
                tavRegExpFindResult found[8];
                int32_t count = 8;
                tavsRegExpFind_8u(reinterpret_cast<const uint8_t*>(subject.c_str()),
                                  static_cast<int32_t>(subject.size()), context, found, &count);
            },
            2 * searchBound);
        EXPECT_LE(use, searchBound) << deep.pattern;
        most = std::max(most, use);
    }
    std::printf("at most %zu bytes\n", most);
}

#endif
