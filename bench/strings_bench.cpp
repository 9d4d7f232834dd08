// The string functions beside what a user would call or write instead: the C and C++ libraries where they
// have the function, and the plain loop as the compiler makes it at -O3. Rows are named
// function/width/case/implementation/elements; throughput is in bytes of source.
//
// Every search runs through the whole text (what it looks for is not there), so that rows of one size
// compare. Sizes of a few elements show the cost of a call, which is what most callers pay.
#include "tavch.h"

#include "strings/compare.h"
#include "strings/find.h"
#include "strings/hash.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr int32_t sizes[] = {8, 16, 32, 64, 4096, 65536};

/// English-like: letters by their frequency, blanks, and no digit, capital or punctuation.
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

/// Keeps the compiler from knowing what it works on.
template <class T>
T opaque(T value) {
    benchmark::DoNotOptimize(value);
    return value;
}

/// Upper vector halves left in use by an earlier row (the C library's AVX code) slow SSE2 code down.
void clearUpperHalves() {
    if (__builtin_cpu_supports("avx")) asm volatile("vzeroupper" ::: "memory");
}

/// Registers one row: `call` is run on texts of `size` elements.
template <class E, class Call>
void add(const std::string& function, const std::string& text, const char* implementation, int32_t size,
         Call call) {
    const std::string name = function + (sizeof(E) == 1 ? "/8u/" : "/16u/") + text + "/" + implementation +
                             "/" + std::to_string(size);
    benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State& state) mutable {
        clearUpperHalves();
        for (auto _ : state) {
            benchmark::DoNotOptimize(call());
            benchmark::ClobberMemory();
        }
        state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * size *
                                static_cast<int64_t>(sizeof(E)));
    });
}

// The exported functions of one width.
template <class E>
struct Api;
#define TAV_API(E, S)                                                                                        \
    template <>                                                                                              \
    struct Api<E> {                                                                                          \
        static constexpr auto compare = tavsCompare_##S;                                                     \
        static constexpr auto compareIgnoreCaseLatin = tavsCompareIgnoreCaseLatin_##S;                       \
        static constexpr auto find = tavsFind_##S;                                                           \
        static constexpr auto findRev = tavsFindRev_##S;                                                     \
        static constexpr auto findZ = tavsFind_Z_##S;                                                        \
        static constexpr auto findC = tavsFindC_##S;                                                         \
        static constexpr auto findRevC = tavsFindRevC_##S;                                                   \
        static constexpr auto findCZ = tavsFindC_Z_##S;                                                      \
        static constexpr auto findCAny = tavsFindCAny_##S;                                                   \
        static constexpr auto concat = tavsConcat_##S;                                                       \
        static constexpr auto insertInPlace = tavsInsert_##S##_I;                                            \
        static constexpr auto removeInPlace = tavsRemove_##S##_I;                                            \
        static constexpr auto split = tavsSplitC_##S##_D2L;                                                  \
        static constexpr auto replace = tavsReplaceC_##S;                                                    \
        static constexpr auto trim = tavsTrimC_##S;                                                          \
        static constexpr auto trimAny = tavsTrimCAny_##S;                                                    \
        static constexpr auto hash = tavsHash_##S##32u;                                                      \
        static constexpr auto hashSJ2 = tavsHashSJ2_##S##32u;                                                \
        static constexpr auto hashMSCS = tavsHashMSCS_##S##32u;                                              \
        static constexpr auto lowercaseLatin = tavsLowercaseLatin_##S;                                       \
    };
TAV_API(uint8_t, 8u)
TAV_API(uint16_t, 16u)
#undef TAV_API

/// Calls a search function and gives its index.
template <class Function, class... Arguments>
int32_t indexBy(Function function, Arguments... arguments) {
    int32_t index;
    function(arguments..., &index);
    return index;
}

template <class E>
void addComparisons(int32_t size) {
    const auto one = prose<E>(size), two = one;
    add<E>("compare", "equal", "tavch", size,
           [=] { return indexBy(Api<E>::compare, opaque(one.data()), two.data(), size); });
    add<E>("compare", "equal", "loop", size,
           [=] { return tav::plain::mismatch(opaque(one.data()), two.data(), opaque(size)); });
    if constexpr (sizeof(E) == 1) {
        add<E>("compare", "equal", "memcmp", size, [=] {
            return std::memcmp(opaque(one.data()), two.data(), static_cast<std::size_t>(opaque(size)));
        });
    }
    auto capitals = one;
    for (std::size_t i = 0; i < capitals.size(); i += 3) {
        capitals[i] = static_cast<E>(capitals[i] == ' ' ? ' ' : capitals[i] - 32);
    }
    for (const auto& [text, other] : {std::pair{"equal", one}, std::pair{"capitals", capitals}}) {
        add<E>("compareIgnoreCaseLatin", text, "tavch", size, [=, other = other] {
            return indexBy(Api<E>::compareIgnoreCaseLatin, opaque(one.data()), other.data(), size);
        });
        add<E>("compareIgnoreCaseLatin", text, "loop", size, [=, other = other] {
            return tav::plain::mismatchIgnoreCaseLatin(opaque(one.data()), other.data(), opaque(size));
        });
    }
}

template <class E>
void addElementSearches(int32_t size) {
    const auto src = prose<E>(size);
    add<E>("findC", "absent", "tavch", size,
           [=] { return indexBy(Api<E>::findC, opaque(src.data()), size, E{'Q'}); });
    add<E>("findC", "absent", "loop", size,
           [=] { return tav::plain::indexOf<E>(opaque(src.data()), opaque(size), 'Q'); });
    add<E>("findRevC", "absent", "tavch", size,
           [=] { return indexBy(Api<E>::findRevC, opaque(src.data()), size, E{'Q'}); });
    add<E>("findRevC", "absent", "loop", size,
           [=] { return tav::plain::lastIndexOf<E>(opaque(src.data()), opaque(size), 'Q'); });
    if constexpr (sizeof(E) == 1) {
        add<E>("findC", "absent", "memchr", size,
               [=] { return std::memchr(opaque(src.data()), 'Q', static_cast<std::size_t>(opaque(size))); });
        add<E>("findRevC", "absent", "string_view", size, [=] {
            return std::string_view(reinterpret_cast<const char*>(opaque(src.data())),
                                    static_cast<std::size_t>(size))
                .rfind('Q');
        });
    }
    auto srcZ = src;
    srcZ.push_back(0);
    add<E>("findC_Z", "length", "tavch", size,
           [=] { return indexBy(Api<E>::findCZ, opaque(srcZ.data()), E{0}); });
    add<E>("findC_Z", "absent", "tavch", size,
           [=] { return indexBy(Api<E>::findCZ, opaque(srcZ.data()), E{'Q'}); });
    if constexpr (sizeof(E) == 1) {
        add<E>("findC_Z", "length", "strlen", size,
               [=] { return std::strlen(reinterpret_cast<const char*>(opaque(srcZ.data()))); });
        add<E>("findC_Z", "absent", "strchr", size,
               [=] { return std::strchr(reinterpret_cast<const char*>(opaque(srcZ.data())), 'Q'); });
    }
}

template <class E>
void addSetSearches(int32_t size) {
    const auto src = prose<E>(size);
    const std::pair<const char*, std::string_view> sets[] = {{"four", "<>&\""},
                                                             {"digits", "0123456789"},
                                                             {"scattered", "!#%')+-/13579;=?"},
                                                             {"letters", "ABCDEFGHIJKLMNOPQRSTUVWXYZ_"}};
    for (const auto& [text, characters] : sets) {
        const auto set = elements<E>(characters);
        const auto lenSet = static_cast<int32_t>(set.size());
        add<E>("findCAny", text, "tavch", size,
               [=] { return indexBy(Api<E>::findCAny, opaque(src.data()), size, set.data(), lenSet); });
        add<E>("findCAny", text, "find_first_of", size, [=] {
            const E* begin = opaque(src.data());
            return std::find_first_of(begin, begin + size, set.data(), set.data() + lenSet);
        });
    }
}

template <class E>
void addStringSearches(int32_t size) {
    const auto src = prose<E>(size);
    struct Case {
        const char* text;
        std::string_view needle;
    };
    for (const auto& [text, needle] : {Case{"rare", "the quick"}, Case{"common", "there on"}}) {
        const auto find = elements<E>(needle);
        const auto lenFind = static_cast<int32_t>(find.size());
        add<E>("find", text, "tavch", size,
               [=] { return indexBy(Api<E>::find, opaque(src.data()), size, find.data(), lenFind); });
        add<E>("findRev", text, "tavch", size,
               [=] { return indexBy(Api<E>::findRev, opaque(src.data()), size, find.data(), lenFind); });
        add<E>("find", text, "search", size, [=] {
            const E* begin = opaque(src.data());
            return std::search(begin, begin + size, find.begin(), find.end());
        });
        add<E>("findRev", text, "loop", size, [=] {
            return tav::plain::lastIndexOf(opaque(src.data()), opaque(size), find.data(), lenFind);
        });
        auto srcZ = src, findZ = find;
        srcZ.push_back(0);
        findZ.push_back(0);
        add<E>("find_Z", text, "tavch", size,
               [=] { return indexBy(Api<E>::findZ, opaque(srcZ.data()), findZ.data()); });
        if constexpr (sizeof(E) == 1) {
            add<E>("find", text, "string_view", size, [=] {
                return std::string_view(reinterpret_cast<const char*>(opaque(src.data())),
                                        static_cast<std::size_t>(size))
                    .find(std::string_view(reinterpret_cast<const char*>(find.data()), find.size()));
            });
#if defined(__GLIBC__)
            add<E>("find", text, "memmem", size, [=] {
                return memmem(opaque(src.data()), static_cast<std::size_t>(size), find.data(), find.size());
            });
#endif
            add<E>("find_Z", text, "strstr", size, [=] {
                return std::strstr(reinterpret_cast<const char*>(opaque(srcZ.data())),
                                   reinterpret_cast<const char*>(findZ.data()));
            });
        }
    }
}

template <class E>
void addEdits(int32_t size) {
    const auto src = prose<E>(size);
    const int32_t half = size / 2;
    const std::size_t bytes = static_cast<std::size_t>(half) * sizeof(E);
    std::vector<E> dst(static_cast<std::size_t>(size) + 8);
    add<E>("concat", "halves", "tavch", size, [=]() mutable {
        return Api<E>::concat(opaque(src.data()), half, src.data() + half, half, dst.data());
    });
    add<E>("concat", "halves", "memcpy", size, [=]() mutable {
        const std::size_t count = opaque(bytes);
        std::memcpy(dst.data(), opaque(src.data()), count);
        return std::memcpy(dst.data() + half, src.data() + half, count);
    });
    add<E>("insert+remove", "in place", "tavch", size, [=]() mutable {
        int32_t len = size;
        Api<E>::insertInPlace(opaque(src.data()), 4, dst.data(), &len, 2);
        return Api<E>::removeInPlace(dst.data(), &len, 2, 4);
    });
    add<E>("insert+remove", "in place", "memmove", size, [=]() mutable {
        const std::size_t tail = opaque(static_cast<std::size_t>(size - 2) * sizeof(E));
        std::memmove(dst.data() + 6, dst.data() + 2, tail);
        std::memcpy(dst.data() + 2, opaque(src.data()), 4 * sizeof(E));
        return std::memmove(dst.data() + 2, dst.data() + 6, tail);
    });
    add<E>("replaceC", "prose", "tavch", size,
           [=]() mutable { return Api<E>::replace(opaque(src.data()), dst.data(), size, 'e', 'E'); });
    add<E>("replaceC", "prose", "loop", size, [=]() mutable {
        const E* begin = opaque(src.data());
        return std::replace_copy(begin, begin + opaque(size), dst.data(), opaque(E{'e'}), opaque(E{'E'}));
    });
    add<E>("lowercaseLatin", "prose", "tavch", size,
           [=]() mutable { return Api<E>::lowercaseLatin(opaque(src.data()), dst.data(), size); });
    add<E>("lowercaseLatin", "prose", "loop", size, [=]() mutable {
        const E* begin = opaque(src.data());
        return std::transform(begin, begin + opaque(size), dst.data(),
                              [](E e) { return static_cast<E>(e >= 'A' && e <= 'Z' ? e + 32 : e); });
    });
}

/// Trimming by the rule itself.
template <class E, class Member>
int32_t trimLoop(const E* src, int32_t len, E* dst, Member member) {
    int32_t first = 0;
    while (first < len && member(src[first])) {
        ++first;
    }
    while (len > first && member(src[len - 1])) {
        --len;
    }
    std::memcpy(dst, src + first, static_cast<std::size_t>(len - first) * sizeof(E));
    return len - first;
}

template <class E>
void addTrims(int32_t size) {
    const auto set = elements<E>(" \t\r\n");
    for (const int32_t margin : {0, 2, 1000000}) {
        auto src = prose<E>(size);
        std::replace(src.begin(), src.end(), E{' '}, E{'_'});
        const auto blanks = std::min(margin, size / 2);
        std::fill_n(src.begin(), blanks, E{' '});
        std::fill_n(src.rbegin(), blanks, E{' '});
        std::vector<E> dst(src.size());
        const std::string text = margin == 0 ? "nothing" : margin == 2 ? "two" : "all";
        add<E>("trimC", text, "tavch", size,
               [=]() mutable { return indexBy(Api<E>::trim, opaque(src.data()), size, E{' '}, dst.data()); });
        add<E>("trimC", text, "loop", size, [=]() mutable {
            return trimLoop(opaque(src.data()), size, dst.data(), [](E e) { return e == ' '; });
        });
        add<E>("trimCAny", text, "tavch", size, [=]() mutable {
            return indexBy(Api<E>::trimAny, opaque(src.data()), size, set.data(), 4, dst.data());
        });
        add<E>("trimCAny", text, "loop", size, [=]() mutable {
            const E* members = opaque(set.data());
            return trimLoop(opaque(src.data()), size, dst.data(),
                            [=](E e) { return std::find(members, members + opaque(4), e) != members + 4; });
        });
    }
}

template <class E>
void addSplits(int32_t size) {
    const auto src = prose<E>(size);                                        // words of six letters or so
    const auto buffers = std::make_shared<std::vector<E>>(src.size() * 64); // the rows share and keep it
    std::vector<E*> slots;
    for (std::size_t k = 0; k < src.size(); ++k) {
        slots.push_back(buffers->data() + 64 * k);
    }
    const std::vector<int32_t> capacities(src.size(), 64);
    std::vector<int32_t> lengths(src.size());
    add<E>("splitC", "words", "tavch", size, [=, buffers = buffers]() mutable {
        std::copy(capacities.begin(), capacities.end(), lengths.begin());
        auto count = static_cast<int32_t>(slots.size());
        return Api<E>::split(opaque(src.data()), size, ' ', slots.data(), lengths.data(), &count);
    });
    add<E>("splitC", "words", "loop", size, [=, buffers = buffers]() mutable {
        std::copy(capacities.begin(), capacities.end(), lengths.begin());
        const E* at = opaque(src.data());
        const E* const end = at + size;
        std::size_t k = 0;
        for (; at < end && k < slots.size(); ++k) {
            const E* const stop = std::find(at, end, E{' '});
            lengths[k] = static_cast<int32_t>(std::min<std::ptrdiff_t>(stop - at, lengths[k]));
            std::copy(at, at + lengths[k], slots[k]);
            at = stop + 1;
        }
        return k;
    });
}

template <class E>
void addHashes(int32_t size) {
    const auto src = prose<E>(size);
    struct Hash {
        const char* name;
        tavStatus (*function)(const E*, int32_t, uint32_t*);
        uint32_t (*loop)(const E*, int32_t, uint32_t);
        uint32_t seed;
    };
    const Hash hashes[] = {{"hash", Api<E>::hash, tav::plain::hashShiftXor<E>, 0},
                           {"hashSJ2", Api<E>::hashSJ2, tav::plain::hashTimes31<E>, 0},
                           {"hashMSCS", Api<E>::hashMSCS, tav::plain::hashTimes33<E>, tav::times33Seed}};
    for (const Hash& hash : hashes) {
        add<E>(hash.name, "prose", "tavch", size, [=] {
            uint32_t value;
            hash.function(opaque(src.data()), size, &value);
            return value;
        });
        add<E>(hash.name, "prose", "loop", size,
               [=] { return hash.loop(opaque(src.data()), size, hash.seed); });
    }
}

template <class E>
void addAll() {
    for (const int32_t size : sizes) {
        addComparisons<E>(size);
        addElementSearches<E>(size);
        addSetSearches<E>(size);
        addStringSearches<E>(size);
        addEdits<E>(size);
        addTrims<E>(size);
        addSplits<E>(size);
        addHashes<E>(size);
    }
}

} // namespace

int main(int argc, char** argv) {
    addAll<uint8_t>();
    addAll<uint16_t>();
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
