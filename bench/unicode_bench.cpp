// Compares the UTF conversions and the case functions with ICU, iconv and plain loops on the same texts in
// one run.
//
//   unicode_bench [--filter=REGEX] [--json=FILE] [--check] [--quick]
//
// A case is family/size/kind of text. "n8" to "n64" are strings of 8 to 64 characters, many of them one
// after the other, so that a branch predictor cannot learn them; "4K" to "1M" are bytes of UTF-8. First the
// outputs are compared; then every function takes its turn for some 50 us, round after round, and the median
// of its rounds counts. The table gives the library's time per pass and, for each peer, the library's time as
// a part of the peer's: below 1 the library is the faster one. The means are taken over the best peer of each
// case. Kinds of text made to fail vector code stand apart, and there the peer is the plain loop.
#include "tavch.h"

#include "bench/unicode_peers.h"
#include "bench/unicode_texts.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <functional>
#include <map>
#include <regex>
#include <string>
#include <vector>

namespace {

using namespace tav::bench;

struct Settings {
    std::string filter = ".";
    std::string json;
    bool checkOnly = false;
    bool quick = false;
};

// --------------------------------------------------------------------------------------------- the library

std::size_t tavchToUnits(const uint8_t* src, std::size_t srcLen, uint16_t* dst, std::size_t dstLen) {
    auto consumed = static_cast<uint32_t>(srcLen), written = static_cast<uint32_t>(dstLen);
    tavsConvertUTF_8u16u(src, &consumed, dst, &written, 0);
    return written;
}

std::size_t tavchToBytes(const uint16_t* src, std::size_t srcLen, uint8_t* dst, std::size_t dstLen) {
    auto consumed = static_cast<uint32_t>(srcLen), written = static_cast<uint32_t>(dstLen);
    tavsConvertUTF_16u8u(src, &consumed, dst, &written, 0);
    return written;
}

std::size_t tavchLower(const uint16_t* src, std::size_t srcLen, uint16_t* dst) {
    tavsLowercase_16u(src, dst, static_cast<int32_t>(srcLen));
    return srcLen;
}

std::size_t tavchUpper(const uint16_t* src, std::size_t srcLen, uint16_t* dst) {
    tavsUppercase_16u(src, dst, static_cast<int32_t>(srcLen));
    return srcLen;
}

int32_t tavchCompare(const uint16_t* left, const uint16_t* right, std::size_t len) {
    int32_t result = 0;
    tavsCompareIgnoreCase_16u(left, right, static_cast<int32_t>(len), &result);
    return result;
}

// ------------------------------------------------------------------------------------------------- the cases

/// The loop over one table of all units is shown, but stands apart from the means: it keeps 128 KiB for
/// itself.
constexpr const char* table = "table";

/// One function on all the strings of a case.
struct Runner {
    const char* name;
    std::function<void()> pass;
    bool exact = true; ///< its results must be the library's
    std::function<std::vector<std::vector<uint8_t>>()> results;
};

struct Case {
    std::string family, size, kind;
    bool small = false;
    Nature nature = Nature::OneScript;
    std::vector<Runner> runners; ///< the library first, the plain loop second
    std::vector<double> nanoseconds;

    std::string name() const { return family + "/" + size + "/" + kind; }

    bool adverse() const { return nature == Nature::Adverse || nature == Nature::Malformed; }

    double ratio() const {
        double best = nanoseconds[1];
        for (std::size_t i = 2; i < runners.size() && !adverse(); ++i)
            if (runners[i].name != table) best = std::min(best, nanoseconds[i]);
        return nanoseconds[0] / best;
    }
};

template <class In, class Out>
struct Texts {
    std::vector<std::vector<In>> strings;
    std::vector<Out> out;
};

// The function is a template's argument, so that what adapts the library's signature is inlined: each
// function is called directly, as a user calls it.
template <auto function, class In, class Out>
Runner conversion(const char* name, Texts<In, Out>& texts, bool exact = true) {
    const auto call = [&texts](const std::vector<In>& text) {
        if constexpr (std::is_same_v<decltype(function), MapUnits>)
            return function(text.data(), text.size(), texts.out.data());
        else
            return function(text.data(), text.size(), texts.out.data(), texts.out.size());
    };
    return {name,
            [&texts, call] {
                for (const auto& text : texts.strings)
                    call(text);
            },
            exact,
            [&texts, call] {
                std::vector<std::vector<uint8_t>> results;
                for (const auto& text : texts.strings) {
                    const auto* bytes = reinterpret_cast<const uint8_t*>(texts.out.data());
                    const std::size_t size = call(text) * sizeof(Out);
                    results.emplace_back(bytes, bytes + size);
                }
                return results;
            }};
}

struct Pairs {
    std::vector<Units> left, right;
};

template <auto function>
Runner comparison(const char* name, Pairs& pairs, bool exact = true) {
    const auto call = [&pairs](std::size_t i) {
        return function(pairs.left[i].data(), pairs.right[i].data(), pairs.left[i].size());
    };
    return {name,
            [&pairs, call] {
                for (std::size_t i = 0; i < pairs.left.size(); ++i)
                    call(i);
            },
            exact,
            [&pairs, call] {
                std::vector<std::vector<uint8_t>> results;
                for (std::size_t i = 0; i < pairs.left.size(); ++i)
                    results.push_back({static_cast<uint8_t>(call(i) != 0)});
                return results;
            }};
}

/// All that the runners of one size and kind work on.
struct Material {
    Texts<uint8_t, uint16_t> bytes;
    Texts<uint16_t, uint8_t> units;
    Texts<uint16_t, uint16_t> cased;
    Pairs same, otherCase;
};

Units mapped(MapUnits map, const Units& text) {
    Units result(text.size());
    map(text.data(), text.size(), result.data());
    return result;
}

void fill(Material& material, const Kind& kind, std::size_t characters, std::size_t total) {
    if (characters != 0)
        material.bytes.strings = makeStrings(kind, characters, total);
    else
        material.bytes.strings = {makeText(kind, total)};
    std::size_t longest = 0;
    for (const Bytes& text : material.bytes.strings) {
        longest = std::max(longest, text.size());
        const Units units = toUnits(text);
        material.units.strings.push_back(units);
        material.cased.strings.push_back(units);
        const Units lower = mapped(tableLower, units);
        material.same.left.push_back(units);
        material.same.right.push_back(units);
        material.otherCase.left.push_back(lower);
        material.otherCase.right.push_back(mapped(tableUpper, lower));
    }
    material.bytes.out.resize(longest + 1);
    material.units.out.resize(longest * 3 + 8);
    material.cased.out.resize(longest * 2);
}

std::vector<Runner> runnersOf(const std::string& family, Material& material, const Kind& kind) {
    const bool wellFormed = kind.nature != Nature::Malformed;
    std::vector<Runner> runners;
    if (family == "8to16") {
        runners = {conversion<tavchToUnits>("tavch", material.bytes),
                   conversion<plainToUnits>("plain", material.bytes),
                   conversion<icuToUnits>("icu", material.bytes, wellFormed)};
        if (wellFormed) runners.push_back(conversion<iconvToUnits>("iconv", material.bytes));
    } else if (family == "16to8") {
        runners = {conversion<tavchToBytes>("tavch", material.units),
                   conversion<plainToBytes>("plain", material.units),
                   conversion<icuToBytes>("icu", material.units, wellFormed)};
        if (wellFormed) runners.push_back(conversion<iconvToBytes>("iconv", material.units));
    } else if (family == "lower") {
        runners = {conversion<tavchLower>("tavch", material.cased),
                   conversion<stagesLower>("stages", material.cased),
                   conversion<icuUnitsLower>("icu-units", material.cased, false),
                   conversion<icuStringLower>("icu", material.cased, false),
                   conversion<tableLower>(table, material.cased)};
    } else if (family == "upper") {
        runners = {conversion<tavchUpper>("tavch", material.cased),
                   conversion<stagesUpper>("stages", material.cased),
                   conversion<icuUnitsUpper>("icu-units", material.cased, false),
                   conversion<icuStringUpper>("icu", material.cased, false),
                   conversion<tableUpper>(table, material.cased)};
    } else {
        Pairs& pairs = family == "compare-same" ? material.same : material.otherCase;
        runners = {comparison<tavchCompare>("tavch", pairs), comparison<stagesCompare>("stages", pairs),
                   comparison<icuCompare>("icu", pairs, false), comparison<tableCompare>(table, pairs)};
    }
    return runners;
}

// ------------------------------------------------------------------------------------------------- measuring

bool agree(const Case& one) {
    const auto expected = one.runners[0].results();
    for (const Runner& runner : one.runners)
        if (runner.exact && runner.results() != expected) {
            std::printf("%s: %s has other results\n", one.name().c_str(), runner.name);
            return false;
        }
    return true;
}

double timeOf(const std::function<void()>& pass, int passes) {
    // What a peer's wide vectors left behind must not slow the next function down.
    if (__builtin_cpu_supports("avx")) asm volatile("vzeroupper" ::: "memory");
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < passes; ++i)
        pass();
    return std::chrono::duration<double, std::nano>(std::chrono::steady_clock::now() - start).count() /
           passes;
}

void measure(Case& one, bool quick) {
    constexpr double slice = 50'000; // ns: shorter than the scheduler's, so that few rounds are disturbed
    std::vector<int> passes;
    for (const Runner& runner : one.runners) {
        timeOf(runner.pass, 1);
        passes.push_back(1 + static_cast<int>(slice / timeOf(runner.pass, 1)));
    }
    std::vector<std::vector<double>> rounds(one.runners.size());
    for (int round = 0; round < (quick ? 9 : 41); ++round)
        for (std::size_t i = 0; i < one.runners.size(); ++i)
            rounds[i].push_back(timeOf(one.runners[i].pass, passes[i]));
    one.nanoseconds.clear();
    for (auto& times : rounds) {
        std::sort(times.begin(), times.end());
        one.nanoseconds.push_back(times[times.size() / 2]);
    }
}

void printRow(const Case& one) {
    std::printf("%-34s %10.2f us", one.name().c_str(), one.nanoseconds[0] / 1000);
    for (std::size_t i = 1; i < one.runners.size(); ++i)
        std::printf("  %s %.2f", one.runners[i].name, one.nanoseconds[0] / one.nanoseconds[i]);
    std::printf("\n");
    std::fflush(stdout);
}

// --------------------------------------------------------------------------------------------------- results

struct Mark {
    const char* title;
    std::vector<std::string> families;
    double small, large;
};

const std::array<Mark, 4> marks = {{{"UTF-8 to 16", {"8to16"}, 0.60, 0.25},
                                    {"UTF-16 to 8", {"16to8"}, 0.45, 0.22},
                                    {"Unicode case", {"lower", "upper"}, 0.40, 0.25},
                                    {"caseless comparison", {"compare-same", "compare-other"}, 0.26, 0.15}}};

bool belongs(const Case& one, const Mark& mark) {
    return std::find(mark.families.begin(), mark.families.end(), one.family) != mark.families.end();
}

struct Summary {
    double sum = 0, worst = 0;
    int count = 0;
    std::string worstCase;

    void add(const Case& one) {
        sum += std::log(one.ratio());
        ++count;
        if (one.ratio() > worst) worst = one.ratio(), worstCase = one.name();
    }
    void print(const std::string& title, double mark) const {
        if (count == 0) return;
        std::printf("%-36s %5.2f  mark %4.2f  worst %5.2f  %s\n", title.c_str(), std::exp(sum / count), mark,
                    worst, worstCase.c_str());
    }
};

void printMeans(const std::vector<Case>& cases) {
    std::printf("\ngeometric means against the best peer of each case\n");
    for (const Mark& mark : marks) {
        Summary one[2], mixed[2], adverse[2]; // large, small
        for (const Case& each : cases)
            if (belongs(each, mark))
                (each.adverse() ? adverse : each.nature == Nature::Mixed ? mixed : one)[each.small].add(each);
        const std::string title = mark.title;
        one[1].print(title + ", small", mark.small);
        one[0].print(title + ", large", mark.large);
        mixed[1].print(title + ", mixed, small", mark.small);
        mixed[0].print(title + ", mixed, large", mark.large);
        adverse[1].print(title + ", adverse, small", 1);
        adverse[0].print(title + ", adverse, large", 1);
    }
}

void writeJson(const std::vector<Case>& cases, const std::string& path) {
    std::ofstream out(path);
    out << "[";
    for (const Case& one : cases) {
        out << (&one == &cases.front() ? "\n" : ",\n") << R"({"family": ")" << one.family << R"(", "size": ")"
            << one.size << R"(", "text": ")" << one.kind << R"(", "adverse": )"
            << (one.adverse() ? "true" : "false");
        for (std::size_t i = 0; i < one.runners.size(); ++i)
            out << ", \"" << one.runners[i].name << "\": " << one.nanoseconds[i];
        out << "}";
    }
    out << "\n]\n";
}

bool readArguments(int argc, char** argv, Settings& settings) {
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        if (argument.starts_with("--filter=")) {
            settings.filter = argument.substr(9);
        } else if (argument.starts_with("--json=")) {
            settings.json = argument.substr(7);
        } else if (argument == "--check") {
            settings.checkOnly = true;
        } else if (argument == "--quick") {
            settings.quick = true;
        } else {
            std::fprintf(stderr, "usage: unicode_bench [--filter=REGEX] [--json=FILE] [--check] [--quick]\n");
            return false;
        }
    }
    return true;
}

/// Case functions know nothing of malformed bytes; and emoji have no case.
bool makesSense(const std::string& family, const Kind& kind) {
    return family == "8to16" || family == "16to8" || kind.nature != Nature::Malformed;
}

} // namespace

int main(int argc, char** argv) {
    Settings settings;
    if (!readArguments(argc, argv, settings)) return 2;
    const struct {
        const char* name;
        std::size_t characters, total;
    } sizes[] = {{"n8", 8, 16384},   {"n16", 16, 16384}, {"n24", 24, 16384}, {"n32", 32, 32768},
                 {"n64", 64, 65536}, {"4K", 0, 4096},    {"64K", 0, 65536},  {"1M", 0, 1048576}};
    const std::regex filter(settings.filter);
    std::vector<Case> measured;
    int differed = 0;
    for (const auto& family : {"8to16", "16to8", "lower", "upper", "compare-same", "compare-other"})
        for (const auto& size : sizes)
            for (const Kind& kind : textKinds()) {
                Case one = {family, size.name, kind.name, size.characters != 0, kind.nature, {}, {}};
                if (!makesSense(family, kind) || !std::regex_search(one.name(), filter)) continue;
                Material material;
                fill(material, kind, size.characters, size.total);
                one.runners = runnersOf(family, material, kind);
                if (!agree(one)) {
                    ++differed;
                    continue;
                }
                if (settings.checkOnly) continue;
                measure(one, settings.quick);
                printRow(one);
                measured.push_back(one);
            }
    if (!measured.empty()) printMeans(measured);
    if (!settings.json.empty()) writeJson(measured, settings.json);
    std::printf("%d cases differ\n", differed);
    return differed == 0 ? 0 : 1;
}
