// Compares the string functions with what a user would call or write instead, in one run: the C and C++
// libraries where they have the function, and plain loops as the compiler makes them at -O3.
//
//   strings_bench [--filter=REGEX] [--json=FILE] [--quick] [--all-vectors]
//
// The filter is matched against family/width/case, e.g. --filter='^find/16u'. The table gives, for every row
// and size, the library's time and that of its best peer, and what is the library's share of it: below 1
// the library is the faster one. Geometric means per family, for small texts (up to 256 bytes) and large
// ones (4 KiB to 1 MiB), stand at the end beside the family's mark, the ratio that the library is to reach
// ("!" where it is missed).
//
// The library uses SSE2 and nothing newer. So that its peers do the same, the program starts itself again
// with the C library's newer vector code switched off, unless told --all-vectors.
#include "bench/contest.h"
#include "bench/string_peers.h"
#include "tavch.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <random>
#include <regex>
#include <string>
#include <string_view>
#include <vector>

#if defined(__GLIBC__)
#include <strings.h>
#include <unistd.h>
#endif

namespace {

using namespace tav::bench;

constexpr int32_t smallBytes = 256;

/// What the rows of one family are to reach, as shares of the best peer's time; 0 is no mark.
struct Family {
    const char* name;
    double markSmall;
    double markLarge;
};

constexpr Family families[] = {
    {"compare/8u", 1.2, 1.05},
    {"compare/16u", 0.55, 0.30},
    {"compareIgnoreCaseLatin/8u", 0.33, 0.12},
    {"compareIgnoreCaseLatin/16u", 0.50, 0.20},
    {"compareIgnoreCaseLatin beside strncasecmp/8u", 0, 0},
    {"equal/16u", 0, 0},
    {"findC/8u", 1.1, 0.80},
    {"findC/16u", 0.65, 0.30},
    {"findC_Z/8u", 1.2, 1.0},
    {"findC_Z/16u", 0.50, 0.20},
    {"find/8u", 0.40, 0.18},
    {"findRev/8u", 0.30, 0.06},
    {"find/16u", 0.50, 0.08},
    {"findRev/16u", 0.50, 0.08},
    {"find_Z/8u", 1.5, 1.1},
    {"find_Z/16u", 0.90, 0.28},
    {"findCAny/8u", 0.35, 0.15},
    {"findCAny/16u", 0.42, 0.22},
    {"insert, remove, concat/8u", 1.0, 0.85},
    {"insert, remove, concat/16u", 1.0, 0.85},
    {"lists/8u", 0.62, 0.52},
    {"lists/16u", 0.62, 0.52},
    {"splitC/8u", 0.85, 0.80},
    {"splitC/16u", 0.48, 0.24},
    {"replaceC, Latin case/8u", 0.90, 0.66},
    {"replaceC, Latin case/16u", 0.90, 0.66},
    {"trimC/8u", 0.60, 0.22},
    {"trimC/16u", 0.60, 0.22},
    {"trimCAny/8u", 0.60, 0.12},
    {"trimCAny/16u", 0.60, 0.12},
    {"hash/8u", 0.50, 0},
    {"hash/16u", 0.50, 0},
    {"hashSJ2/8u", 0.24, 0.08},
    {"hashSJ2/16u", 0.47, 0.14},
    {"hashMSCS/8u", 1.0, 0.46},
    {"hashMSCS/16u", 0, 0},
};

struct Settings {
    std::regex filter{"."};
    std::string json;
    bool quick = false;
    bool allVectors = false;
};

/// Measures contests and keeps what they gave.
class Table {
public:
    explicit Table(const Settings& settings) : settings_(settings) {}

    template <class E>
    void row(const std::string& family, const std::string& text, int32_t size, Contest& contest) {
        const std::string fullFamily = family + (sizeof(E) == 1 ? "/8u" : "/16u");
        if (!std::regex_search(fullFamily + "/" + text, settings_.filter)) return;
        if (const char* peer = contest.disagreeing()) {
            std::printf("%s/%s: tavch and %s disagree\n", fullFamily.c_str(), text.c_str(), peer);
            ++disagreements_;
            return;
        }
        const std::vector<Taken> taken =
            contest.measure(settings_.quick ? 5 : 15, settings_.quick ? 0.0001 : 0.0003);
        const Taken& peer =
            *std::min_element(taken.begin() + 1, taken.end(), [](const Taken& one, const Taken& two) {
                return one.nanoseconds < two.nanoseconds;
            });
        const double ratio = taken[0].nanoseconds / peer.nanoseconds;
        rows_.push_back({fullFamily, text, size, size * static_cast<int32_t>(sizeof(E)), taken, ratio});
        std::printf("%-44s %-16s %8d %11.1f %11.1f %6.2f  %s\n", fullFamily.c_str(), text.c_str(),
                    rows_.back().bytes, taken[0].nanoseconds, peer.nanoseconds, ratio, peer.way.c_str());
        std::fflush(stdout);
    }

    void printHead() const {
        std::printf("%-44s %-16s %8s %11s %11s %6s\n", "", "", "bytes", "tavch ns", "peer ns", "ratio");
    }

    void printMeans() const {
        std::printf("\n%-44s %8s %8s %8s   %8s %8s %8s\n", "geometric means", "small", "mark", "worst",
                    "large", "mark", "worst");
        for (const Family& family : families) {
            const Mean small = mean(family.name, true), large = mean(family.name, false);
            if (small.count + large.count == 0) continue;
            std::printf("%-44s", family.name);
            print(small, family.markSmall);
            std::printf("  ");
            print(large, family.markLarge);
            const double besideLoop = worstBesideLoop(family.name);
            std::printf(besideLoop > 0 ? "  %8.2f%c\n" : "\n", besideLoop, besideLoop > 1 ? '!' : ' ');
        }
        std::printf("* worst of 8 to 32 elements beside the plain loop alone\n");
    }

    void writeJson() const {
        if (settings_.json.empty()) return;
        std::ofstream out(settings_.json);
        out << "[";
        for (const Row& row : rows_) {
            out << (&row == &rows_.front() ? "\n" : ",\n") << R"({"family": ")" << row.family
                << R"(", "case": ")" << row.text << R"(", "bytes": )" << row.bytes;
            for (const Taken& one : row.taken) {
                out << ", \"" << one.way << "\": " << one.nanoseconds;
            }
            out << "}";
        }
        out << "\n]\n";
    }

    int disagreements() const { return disagreements_; }

private:
    struct Row {
        std::string family;
        std::string text;
        int32_t elements;
        int32_t bytes;
        std::vector<Taken> taken; ///< the library's time first
        double ratio;             ///< to the best peer
    };

    struct Mean {
        double value = 0;
        double worst = 0;
        int count = 0;
    };

    /// The worst share of the plain loop's time where texts are shortest; 0 where no row has such a loop.
    double worstBesideLoop(const char* family) const {
        double worst = 0;
        for (const Row& row : rows_) {
            if (row.family != family || row.elements > 32) continue;
            for (const Taken& one : row.taken) {
                if (one.way == "loop") worst = std::max(worst, row.taken[0].nanoseconds / one.nanoseconds);
            }
        }
        return worst;
    }

    Mean mean(const char* family, bool small) const {
        Mean mean;
        for (const Row& row : rows_) {
            if (row.family != family || (row.bytes <= smallBytes) != small) continue;
            mean.value += std::log(row.ratio);
            mean.worst = std::max(mean.worst, row.ratio);
            ++mean.count;
        }
        if (mean.count > 0) mean.value = std::exp(mean.value / mean.count);
        return mean;
    }

    static void print(const Mean& mean, double mark) {
        if (mean.count == 0) {
            std::printf(" %8s %8s %8s ", "-", "", "");
        } else if (mark == 0) {
            std::printf(" %8.2f %8s %8.2f ", mean.value, "-", mean.worst);
        } else {
            std::printf(" %8.2f %8.2f %8.2f%c", mean.value, mark, mean.worst, mean.value > mark ? '!' : ' ');
        }
    }

    const Settings& settings_;
    std::vector<Row> rows_;
    int disagreements_ = 0;
};

// The exported functions of one width.
template <class E>
struct Api;
#define TAV_API(E, S)                                                                                        \
    template <>                                                                                              \
    struct Api<E> {                                                                                          \
        static constexpr auto compare = tavsCompare_##S;                                                     \
        static constexpr auto equal = tavsEqual_##S;                                                         \
        static constexpr auto compareIgnoreCaseLatin = tavsCompareIgnoreCaseLatin_##S;                       \
        static constexpr auto find = tavsFind_##S;                                                           \
        static constexpr auto findRev = tavsFindRev_##S;                                                     \
        static constexpr auto findZ = tavsFind_Z_##S;                                                        \
        static constexpr auto findC = tavsFindC_##S;                                                         \
        static constexpr auto findRevC = tavsFindRevC_##S;                                                   \
        static constexpr auto findCZ = tavsFindC_Z_##S;                                                      \
        static constexpr auto findCAny = tavsFindCAny_##S;                                                   \
        static constexpr auto findRevCAny = tavsFindRevCAny_##S;                                             \
        static constexpr auto insert = tavsInsert_##S;                                                       \
        static constexpr auto insertInPlace = tavsInsert_##S##_I;                                            \
        static constexpr auto remove = tavsRemove_##S;                                                       \
        static constexpr auto removeInPlace = tavsRemove_##S##_I;                                            \
        static constexpr auto concat = tavsConcat_##S;                                                       \
        static constexpr auto concatList = tavsConcat_##S##_D2L;                                             \
        static constexpr auto join = tavsConcatC_##S##_D2L;                                                  \
        static constexpr auto split = tavsSplitC_##S##_D2L;                                                  \
        static constexpr auto replace = tavsReplaceC_##S;                                                    \
        static constexpr auto lowercase = tavsLowercaseLatin_##S;                                            \
        static constexpr auto uppercase = tavsUppercaseLatin_##S;                                            \
        static constexpr auto trim = tavsTrimC_##S;                                                          \
        static constexpr auto trimAny = tavsTrimCAny_##S;                                                    \
        static constexpr auto hash = tavsHash_##S##32u;                                                      \
        static constexpr auto hashSJ2 = tavsHashSJ2_##S##32u;                                                \
        static constexpr auto hashMSCS = tavsHashMSCS_##S##32u;                                              \
    };
TAV_API(uint8_t, 8u)
TAV_API(uint16_t, 16u)
#undef TAV_API

/// Calls a function whose last argument receives its answer.
template <class Function, class... Arguments>
int32_t answerOf(Function function, Arguments... arguments) {
    int32_t answer;
    function(arguments..., &answer);
    return answer;
}

/// English-like: letters by their frequency and blanks; no digit, capital or punctuation.
template <class E>
std::vector<E> prose(int32_t count) {
    static constexpr std::string_view letters =
        "eeeeeeeeeeeetttttttttaaaaaaaaoooooooiiiiiiinnnnnnnsssssshhhhhh"
        "rrrrrrddddllllcccuuummmwwffggyyppbbvk                    ";
    std::mt19937 random(7);
    std::vector<E> text(static_cast<std::size_t>(count));
    std::generate(text.begin(), text.end(),
                  [&] { return static_cast<E>(letters[random() % letters.size()]); });
    return text;
}

template <class E>
std::vector<E> elements(std::string_view text) {
    return std::vector<E>(text.begin(), text.end());
}

std::size_t toSize(int32_t count) {
    return static_cast<std::size_t>(count);
}

/// A text as the C++ library's strings see it.
template <class E>
auto view(const E* text, int32_t len) {
    using Character = std::conditional_t<sizeof(E) == 1, char, char16_t>;
    return std::basic_string_view<Character>(reinterpret_cast<const Character*>(text), toSize(len));
}

const char* chars(const uint8_t* text) {
    return reinterpret_cast<const char*>(text);
}

/// A pointer's index in the text, or -1 for null.
template <class E>
int32_t indexIn(const E* src, const void* found) {
    return found == nullptr ? -1 : static_cast<int32_t>(static_cast<const E*>(found) - src);
}

/// What a function with a length gives where C++ gives the end: -1.
template <class E>
int32_t indexOrNone(const E* src, const E* found, int32_t len) {
    return found == src + len ? -1 : static_cast<int32_t>(found - src);
}

template <class E>
void compareRows(Table& table, int32_t size) {
    const auto one = prose<E>(size), two = one;
    const E *a = one.data(), *b = two.data();
    const std::size_t bytes = toSize(size) * sizeof(E);
    Contest compare;
    compare.add("tavch", [=] { return answerOf(Api<E>::compare, opaque(a), b, size); });
    compare.add("loop", [=] { return peers::compare(opaque(a), b, size); });
    compare.add("string_view", [=] { return view(opaque(a), size).compare(view(b, size)); });
    if constexpr (sizeof(E) == 1) compare.add("memcmp", [=] { return std::memcmp(opaque(a), b, bytes); });
    table.row<E>("compare", "ordering", size, compare);

    Contest equal;
    const auto isEqual = [=](const E* x) {
        uint32_t same;
        Api<E>::equal(x, b, size, &same);
        return same != 0;
    };
    equal.add("tavch", [=] { return isEqual(opaque(a)); });
    equal.add("loop", [=] { return peers::compare(opaque(a), b, size) == 0; });
    equal.add("memcmp", [=] { return std::memcmp(opaque(a), b, bytes) == 0; });
    table.row<E>(sizeof(E) == 1 ? "compare" : "equal", "equality", size, equal);

    auto capitals = one;
    for (std::size_t i = 0; i < capitals.size(); i += 3) {
        capitals[i] = static_cast<E>(capitals[i] == ' ' ? ' ' : capitals[i] - 32);
    }
    for (const auto& [text, other] :
         {std::pair{"equal", b}, std::pair<const char*, const E*>{"capitals", capitals.data()}}) {
        const E* const c = other;
        Contest caseless;
        caseless.add("tavch", [=] { return answerOf(Api<E>::compareIgnoreCaseLatin, opaque(a), c, size); });
        caseless.add("loop", [=] { return peers::compareIgnoreCaseLatin(opaque(a), c, size); });
        table.row<E>("compareIgnoreCaseLatin", text, size, caseless);
#if defined(__GLIBC__)
        // A family of its own, because it is no full substitute: it ends at a zero and obeys the locale.
        if constexpr (sizeof(E) == 1) {
            caseless.add("strncasecmp",
                         [=] { return strncasecmp(chars(opaque(a)), chars(c), toSize(size)); });
            table.row<E>("compareIgnoreCaseLatin beside strncasecmp", text, size, caseless);
        }
#endif
    }
}

template <class E>
void elementRows(Table& table, int32_t size) {
    auto src = prose<E>(size);
    src.push_back(0);
    const E* const a = src.data();
    for (const char* text : {"absent", "present"}) {
        const bool present = *text == 'p';
        for (const bool forward : {true, false}) {
            const E value = 'Q';
            auto& place = src[toSize(forward ? size * 3 / 4 : size / 4)];
            const E before = std::exchange(place, present ? value : place);
            Contest contest;
            if (forward) {
                contest.add("tavch", [=] { return answerOf(Api<E>::findC, opaque(a), size, value); });
                contest.add("loop", [=] { return peers::find(opaque(a), size, value); });
                contest.add("find", [=] {
                    const E* const begin = opaque(a);
                    return indexOrNone(begin, std::find(begin, begin + size, value), size);
                });
                if constexpr (sizeof(E) == 1)
                    contest.add("memchr",
                                [=] { return indexIn(a, std::memchr(opaque(a), value, toSize(size))); });
            } else {
                contest.add("tavch", [=] { return answerOf(Api<E>::findRevC, opaque(a), size, value); });
                contest.add("loop", [=] { return peers::findRev(opaque(a), size, value); });
#if defined(__GLIBC__)
                if constexpr (sizeof(E) == 1)
                    contest.add("memrchr",
                                [=] { return indexIn(a, memrchr(opaque(a), value, toSize(size))); });
#endif
            }
            table.row<E>("findC", std::string(text) + (forward ? "" : ", back"), size, contest);
            if (forward) {
                Contest toZero;
                toZero.add("tavch", [=] { return answerOf(Api<E>::findCZ, opaque(a), value); });
                toZero.add("loop", [=] { return peers::findZ(opaque(a), value); });
                if constexpr (sizeof(E) == 1)
                    toZero.add("strchr", [=] { return indexIn(a, std::strchr(chars(opaque(a)), value)); });
                table.row<E>("findC_Z", text, size, toZero);
            }
            place = before;
        }
    }
    Contest length;
    length.add("tavch", [=] { return answerOf(Api<E>::findCZ, opaque(a), E{0}); });
    length.add("loop", [=] { return peers::lengthZ(opaque(a)); });
    if constexpr (sizeof(E) == 1)
        length.add("strlen", [=] { return static_cast<int32_t>(std::strlen(chars(opaque(a)))); });
    table.row<E>("findC_Z", "length", size, length);
}

template <class E>
void setRows(Table& table, int32_t size) {
    const auto src = prose<E>(size);
    const E* const a = src.data();
    const std::pair<const char*, std::string_view> sets[] = {{"four", "<>&\""},
                                                             {"digits", "0123456789"},
                                                             {"scattered", "!#%')+-/13579;=?"},
                                                             {"letters", "ABCDEFGHIJKLMNOPQRSTUVWXYZ_"}};
    for (const auto& [text, characters] : sets) {
        const auto set = elements<E>(characters);
        const E* const members = set.data();
        const auto lenSet = static_cast<int32_t>(set.size());
        auto srcZ = src;
        srcZ.push_back(0);
        const std::string setZ(characters);
        Contest forward;
        forward.add("tavch", [=] { return answerOf(Api<E>::findCAny, opaque(a), size, members, lenSet); });
        forward.add("loop", [=] { return peers::findAny(opaque(a), size, members, lenSet); });
        forward.add("table", [=] { return peers::findAnyByTable(opaque(a), size, members, lenSet); });
        forward.add("find_first_of", [=] {
            const E* const begin = opaque(a);
            return indexOrNone(begin, std::find_first_of(begin, begin + size, members, members + lenSet),
                               size);
        });
        if constexpr (sizeof(E) == 1) {
            forward.add("strpbrk", [=, z = srcZ.data(), accepted = setZ.c_str()] {
                return indexIn(z, std::strpbrk(chars(opaque(z)), accepted));
            });
        }
        table.row<E>("findCAny", text, size, forward);

        Contest backward;
        backward.add("tavch",
                     [=] { return answerOf(Api<E>::findRevCAny, opaque(a), size, members, lenSet); });
        backward.add("loop", [=] { return peers::findAnyRev(opaque(a), size, members, lenSet); });
        backward.add("table", [=] { return peers::findAnyRevByTable(opaque(a), size, members, lenSet); });
        table.row<E>("findCAny", std::string(text) + ", back", size, backward);
    }
}

template <class E>
void stringSearchRows(Table& table, int32_t size) {
    auto src = prose<E>(size);
    src.push_back(0);
    const E* const a = src.data();
    struct Case {
        const char* text;
        std::string_view needle;
    };
    for (const auto& [text, needle] :
         {Case{"rare", "quickly"}, Case{"common", "thereon"}, Case{"short", "the,"}}) {
        auto needleZ = elements<E>(needle);
        const auto lenFind = static_cast<int32_t>(needleZ.size());
        needleZ.push_back(0);
        const E* const find = needleZ.data();
        Contest forward;
        forward.add("tavch", [=] { return answerOf(Api<E>::find, opaque(a), size, find, lenFind); });
        forward.add("loop", [=] { return peers::findString(opaque(a), size, find, lenFind); });
        forward.add("search", [=] {
            const E* const begin = opaque(a);
            return indexOrNone(begin, std::search(begin, begin + size, find, find + lenFind), size);
        });
        forward.add("string_view",
                    [=] { return static_cast<int32_t>(view(opaque(a), size).find(view(find, lenFind))); });
#if defined(__GLIBC__)
        if constexpr (sizeof(E) == 1)
            forward.add("memmem",
                        [=] { return indexIn(a, memmem(opaque(a), toSize(size), find, toSize(lenFind))); });
#endif
        table.row<E>("find", text, size, forward);

        Contest backward;
        backward.add("tavch", [=] { return answerOf(Api<E>::findRev, opaque(a), size, find, lenFind); });
        backward.add("loop", [=] { return peers::findStringRev(opaque(a), size, find, lenFind); });
        backward.add("find_end", [=] {
            const E* const begin = opaque(a);
            return indexOrNone(begin, std::find_end(begin, begin + size, find, find + lenFind), size);
        });
        backward.add("string_view",
                     [=] { return static_cast<int32_t>(view(opaque(a), size).rfind(view(find, lenFind))); });
        table.row<E>("findRev", text, size, backward);

        Contest toZero;
        toZero.add("tavch", [=] { return answerOf(Api<E>::findZ, opaque(a), find); });
        toZero.add("loop", [=] { return peers::findStringZ(opaque(a), find); });
        if constexpr (sizeof(E) == 1)
            toZero.add("strstr", [=] { return indexIn(a, std::strstr(chars(opaque(a)), chars(find))); });
        table.row<E>("find_Z", text, size, toZero);
    }
}

template <class E>
void editRows(Table& table, int32_t size) {
    const std::string family = "insert, remove, concat";
    const auto src = prose<E>(size), piece = elements<E>("inserted");
    const E *a = src.data(), *p = piece.data();
    const int32_t half = size / 2, lenPiece = 4;
    std::vector<E> output(toSize(size + lenPiece));
    E* const dst = output.data();

    Contest concat;
    concat.writesTo(output);
    concat.add("tavch", [=] { return Api<E>::concat(opaque(a), half, a + half, half, dst); });
    concat.add("loop", [=] { return peers::concat(opaque(a), half, a + half, half, dst), 0; });
    table.row<E>(family, "concat", size, concat);

    Contest insert;
    insert.writesTo(output);
    insert.add("tavch", [=] { return Api<E>::insert(opaque(a), size, p, lenPiece, dst, half); });
    insert.add("loop", [=] { return peers::insert(opaque(a), size, p, lenPiece, dst, half), 0; });
    table.row<E>(family, "insert", size, insert);

    Contest remove;
    remove.writesTo(output);
    remove.add("tavch", [=] { return Api<E>::remove(opaque(a), size, dst, half, lenPiece); });
    remove.add("loop", [=] { return peers::remove(opaque(a), size, dst, half, lenPiece), 0; });
    table.row<E>(family, "remove", size, remove);

    Contest inPlace;
    inPlace.writesTo(output);
    inPlace.add("tavch", [=] {
        int32_t len = size;
        Api<E>::insertInPlace(p, lenPiece, opaque(dst), &len, 2);
        return Api<E>::removeInPlace(dst, &len, 2, lenPiece);
    });
    inPlace.add("loop", [=] {
        int32_t len = size;
        peers::insertInPlace(p, lenPiece, opaque(dst), &len, 2);
        return peers::removeInPlace(dst, &len, 2, lenPiece), 0;
    });
    table.row<E>(family, "in place", size, inPlace);
}

/// The words of a text.
template <class E>
struct Words {
    std::vector<const E*> texts;
    std::vector<int32_t> lens;

    explicit Words(const std::vector<E>& src) {
        for (auto at = src.begin(); at < src.end();) {
            const auto end = std::find(at, src.end(), E{' '});
            texts.push_back(&*at);
            lens.push_back(static_cast<int32_t>(end - at));
            at = end == src.end() ? end : end + 1;
        }
    }
    int32_t count() const { return static_cast<int32_t>(lens.size()); }
};

template <class E>
void listRows(Table& table, int32_t size) {
    const auto src = prose<E>(size);
    const Words<E> words(src);
    const E* const* texts = words.texts.data();
    const int32_t* lens = words.lens.data();
    const int32_t count = words.count();
    std::vector<E> output(toSize(size));
    E* const dst = output.data();

    Contest concat;
    concat.writesTo(output);
    concat.add("tavch", [=] { return Api<E>::concatList(opaque(texts), lens, count, dst); });
    concat.add("loop", [=] { return peers::concatList(opaque(texts), lens, count, dst), 0; });
    table.row<E>("lists", "concat", size, concat);

    Contest join;
    join.writesTo(output);
    join.add("tavch", [=] { return Api<E>::join(opaque(texts), lens, count, ',', dst); });
    join.add("loop", [=] { return peers::join<E>(opaque(texts), lens, count, ',', dst), 0; });
    table.row<E>("lists", "join", size, join);
}

/// Texts split into fields of about seven elements, and of about fifty.
template <class E>
void splitRows(Table& table, int32_t size) {
    for (const bool words : {true, false}) {
        auto src = prose<E>(size);
        if (!words) {
            std::replace(src.begin(), src.end(), E{' '}, E{'_'});
            for (std::size_t i = 30; i < src.size(); i += 31 + src[i - 1] % 40U) {
                src[i] = ' ';
            }
        }
        const std::size_t room = 128;
        const auto count = Words<E>(src).count();
        std::vector<E> fields(toSize(count) * room);
        std::vector<E*> slots;
        for (std::size_t k = 0; k < toSize(count); ++k) {
            slots.push_back(fields.data() + room * k);
        }
        std::vector<int32_t> fieldLens(toSize(count));
        const auto splitBy = [&](const auto& function) {
            std::fill(fieldLens.begin(), fieldLens.end(), static_cast<int32_t>(room));
            return function(opaque(src.data()), slots.data(), fieldLens.data());
        };
        Contest split;
        split.writesTo(fields);
        split.add("tavch", [&] {
            return splitBy([&](const E* text, E** dsts, int32_t* dstLens) {
                int32_t fieldCount = count;
                Api<E>::split(text, size, ' ', dsts, dstLens, &fieldCount);
                return fieldCount;
            });
        });
        split.add("loop", [&] {
            return splitBy([&](const E* text, E** dsts, int32_t* dstLens) {
                return peers::split<E>(text, size, ' ', dsts, dstLens, count);
            });
        });
        table.row<E>("splitC", words ? "words" : "lines", size, split);
    }
}

template <class E>
void changeRows(Table& table, int32_t size) {
    const std::string family = "replaceC, Latin case";
    const auto src = prose<E>(size);
    const E* const a = src.data();
    std::vector<E> output(src.size());
    E* const dst = output.data();

    Contest replace;
    replace.writesTo(output);
    replace.add("tavch", [=] { return Api<E>::replace(opaque(a), dst, size, 'e', 'E'); });
    replace.add("loop", [=] { return peers::replace<E>(opaque(a), dst, size, 'e', 'E'), 0; });
    table.row<E>(family, "replace", size, replace);

    Contest lower;
    lower.writesTo(output);
    lower.add("tavch", [=] { return Api<E>::lowercase(opaque(a), dst, size); });
    lower.add("loop", [=] { return peers::lowercase(opaque(a), dst, size), 0; });
    table.row<E>(family, "lower case", size, lower);

    Contest upper;
    upper.writesTo(output);
    upper.add("tavch", [=] { return Api<E>::uppercase(opaque(a), dst, size); });
    upper.add("loop", [=] { return peers::uppercase(opaque(a), dst, size), 0; });
    table.row<E>(family, "upper case", size, upper);
}

/// Texts with nothing to trim, little, and much. Where little is trimmed from a large text, all that there is
/// to measure is a copy: large sizes are rows for much only.
template <class E>
void trimRows(Table& table, int32_t size) {
    const bool large = size * static_cast<int32_t>(sizeof(E)) > smallBytes;
    const auto set = elements<E>(" \t\r\n");
    const E* const members = set.data();
    for (const std::string text : {"nothing", "two", "most"}) {
        if (large && text != "most") continue;
        auto src = prose<E>(size);
        std::replace(src.begin(), src.end(), E{' '}, E{'_'});
        const int32_t margin = text == "nothing" ? 0 : text == "two" ? 2 : size * 3 / 8;
        std::fill_n(src.begin(), margin, E{' '});
        std::fill_n(src.rbegin(), margin, E{' '});
        const E* const a = src.data();
        std::vector<E> output(src.size());
        E* const dst = output.data();

        Contest one;
        one.writesTo(output);
        one.add("tavch", [=] { return answerOf(Api<E>::trim, opaque(a), size, E{' '}, dst); });
        one.add("loop", [=] { return peers::trim<E>(opaque(a), size, ' ', dst); });
        table.row<E>("trimC", text, size, one);

        Contest any;
        any.writesTo(output);
        any.add("tavch", [=] { return answerOf(Api<E>::trimAny, opaque(a), size, members, 4, dst); });
        any.add("loop", [=] { return peers::trimAny(opaque(a), size, members, 4, dst); });
        table.row<E>("trimCAny", text, size, any);
    }
}

template <class E>
void hashRows(Table& table, int32_t size) {
    const auto src = prose<E>(size);
    const E* const a = src.data();
    struct Hash {
        const char* name;
        tavStatus (*own)(const E*, int32_t, uint32_t*);
        uint32_t (*loop)(const E*, int32_t);
    };
    for (const Hash& hash : {Hash{"hash", Api<E>::hash, peers::hashShiftXor<E>},
                             Hash{"hashSJ2", Api<E>::hashSJ2, peers::hashTimes31<E>},
                             Hash{"hashMSCS", Api<E>::hashMSCS, peers::hashTimes33<E>}}) {
        Contest contest;
        contest.add("tavch", [=] {
            uint32_t value;
            hash.own(opaque(a), size, &value);
            return value;
        });
        contest.add("loop", [=] { return hash.loop(opaque(a), size); });
        table.row<E>(hash.name, "prose", size, contest);
    }
}

template <class E>
void allRows(Table& table) {
    constexpr int32_t units = sizeof(E);
    for (const int32_t size :
         {8, 16, 32, 64, smallBytes / units, 4096 / units, 65536 / units, 1048576 / units}) {
        compareRows<E>(table, size);
        elementRows<E>(table, size);
        stringSearchRows<E>(table, size);
        setRows<E>(table, size);
        editRows<E>(table, size);
        listRows<E>(table, size);
        splitRows<E>(table, size);
        changeRows<E>(table, size);
        trimRows<E>(table, size);
        hashRows<E>(table, size);
    }
}

bool readArguments(int argc, char** argv, Settings& settings) {
    for (int i = 1; i < argc; i++) {
        const std::string argument = argv[i];
        if (argument.starts_with("--filter=")) {
            settings.filter = argument.substr(9);
        } else if (argument.starts_with("--json=")) {
            settings.json = argument.substr(7);
        } else if (argument == "--quick") {
            settings.quick = true;
        } else if (argument == "--all-vectors") {
            settings.allVectors = true;
        } else {
            std::fprintf(stderr,
                         "usage: strings_bench [--filter=REGEX] [--json=FILE] [--quick] [--all-vectors]\n");
            return false;
        }
    }
    return true;
}

/// Starts the program again with the C library kept to SSE2, unless that is so already.
void keepPeersToSse2([[maybe_unused]] char** argv) {
#if defined(__GLIBC__)
    if (std::getenv("GLIBC_TUNABLES") != nullptr) return;
    setenv("GLIBC_TUNABLES",
           "glibc.cpu.hwcaps=-AVX,-AVX2,-AVX512F,-AVX512VL,-AVX512BW,-AVX_Fast_Unaligned_Load,-SSE4_2,-SSE4_"
           "1,-SSSE3",
           1);
    execv("/proc/self/exe", argv);
#endif
}

} // namespace

int main(int argc, char** argv) {
    Settings settings;
    if (!readArguments(argc, argv, settings)) return 2;
    if (!settings.allVectors) keepPeersToSse2(argv);
    Table table(settings);
    table.printHead();
    allRows<uint8_t>(table);
    allRows<uint16_t>(table);
    table.printMeans();
    table.writeJson();
    return table.disagreements() == 0 ? 0 : 1;
}
