// Compares the library's pattern search with PCRE2 (interpreter and JIT) and RE2 on the same work in one run.
//
//   regex_bench [--filter=REGEX] [--json=FILE] [--check] [--quick] [--text=FILE]
//
// For every case the engines first have to agree on what they find; then Google Benchmark measures them in
// random interleaving, several rounds each, and the median of the rounds counts. The table gives the
// library's own time and, for each peer, how many times as long the peer took: above 1 the library is the
// faster one.
#include "bench/regex_cases.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <regex>
#include <string>
#include <vector>

namespace {

using namespace tav::bench;

constexpr std::size_t engineCount = std::size(engines);

struct Settings {
    std::string filter = ".";
    std::string json;
    bool checkOnly = false;
    bool quick = false;
};

struct Row {
    const Case* what = nullptr;
    Tally tally;
    std::array<double, engineCount> nanoseconds{}; ///< per pass over the subjects; 0 where there is no engine
};

PatternText patternOf(const Case& one) {
    return {one.pattern, one.options, one.text == Text::Utf8};
}

const Subjects& subjectsOf(const Case& one) {
    static std::map<Text, Subjects> whole;
    static const Subjects few(shortStrings().begin(), shortStrings().begin() + 1);
    if (one.work == Work::Compile) return few;
    if (one.source == Source::Short) return shortStrings();
    if (one.source == Source::Lines) return lines(one.text);
    return whole.try_emplace(one.text, Subjects{text(one.text)}).first->second;
}

std::unique_ptr<Engine> makeEngine(const Case& one, std::size_t engine) {
    if (one.work == Work::Set) return asEngine(engines[engine].makeSet, patternOf(one));
    return engines[engine].make(patternOf(one));
}

/// Hands every round's time to a table of vectors, by benchmark name.
class Collector final : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context&) override { return true; }

    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs)
            if (run.run_type == Run::RT_Iteration)
                rounds_[run.run_name.function_name].push_back(run.GetAdjustedCPUTime());
    }

    double median(const std::string& name) {
        std::vector<double>& times = rounds_[name];
        if (times.empty()) return 0;
        std::sort(times.begin(), times.end());
        return times[times.size() / 2];
    }

private:
    std::map<std::string, std::vector<double>> rounds_;
};

/// False when the engines disagree, or the library itself refuses the pattern.
bool agree(const Case& one, std::array<std::unique_ptr<Engine>, engineCount>& made, Tally& tally) {
    const PatternText pattern = patternOf(one);
    bool same = made[0] != nullptr;
    for (std::size_t i = 0; i < engineCount; i++) {
        if (!made[i]) continue;
        const Tally found = run(one.work, engines[i].make, *made[i], pattern, subjectsOf(one));
        if (i == 0) tally = found;
        if (found == tally) continue;
        same = false;
        std::printf("%s/%s: %s finds %llu matches, %llu bytes; %s %llu matches, %llu bytes\n", one.group,
                    one.name, engines[0].name, static_cast<unsigned long long>(tally.matches),
                    static_cast<unsigned long long>(tally.bytes), engines[i].name,
                    static_cast<unsigned long long>(found.matches),
                    static_cast<unsigned long long>(found.bytes));
    }
    return same;
}

Row measure(const Case& one, std::array<std::unique_ptr<Engine>, engineCount>& made) {
    const PatternText pattern = patternOf(one);
    const Subjects& subjects = subjectsOf(one);
    benchmark::ClearRegisteredBenchmarks();
    for (std::size_t i = 0; i < engineCount; i++) {
        if (!made[i]) continue;
        benchmark::RegisterBenchmark(engines[i].name, [&, i](benchmark::State& state) {
            for (auto _ : state)
                benchmark::DoNotOptimize(run(one.work, engines[i].make, *made[i], pattern, subjects));
        });
    }
    Collector collector;
    benchmark::RunSpecifiedBenchmarks(&collector, ".");
    Row row{&one, {}, {}};
    for (std::size_t i = 0; i < engineCount; i++)
        row.nanoseconds[i] = collector.median(engines[i].name);
    return row;
}

void printHead() {
    std::printf("%-28s %10s %12s", "", "matches", "tavch");
    for (std::size_t i = 1; i < engineCount; i++)
        std::printf(" %10s", engines[i].name);
    std::printf("\n");
}

void printRow(const Row& row) {
    const std::string name = std::string(row.what->group) + "/" + row.what->name;
    std::printf("%-28s %10llu %9.2f us", name.c_str(), static_cast<unsigned long long>(row.tally.matches),
                row.nanoseconds[0] / 1000);
    for (std::size_t i = 1; i < engineCount; i++) {
        if (row.nanoseconds[i] > 0)
            std::printf(" %9.2fx", row.nanoseconds[i] / row.nanoseconds[0]);
        else
            std::printf(" %10s", "-");
    }
    std::printf("\n");
    std::fflush(stdout);
}

/// The geometric mean of a peer's ratios over the rows of a group (all rows for null); 0 when it took part in
/// none.
double mean(const std::vector<Row>& rows, const char* group, std::size_t engine) {
    double sum = 0;
    int count = 0;
    for (const Row& row : rows) {
        if (group != nullptr && std::strcmp(row.what->group, group) != 0) continue;
        if (row.nanoseconds[engine] <= 0) continue;
        sum += std::log(row.nanoseconds[engine] / row.nanoseconds[0]);
        count++;
    }
    return count == 0 ? 0 : std::exp(sum / count);
}

void printMeans(const std::vector<Row>& rows) {
    std::printf("\ngeometric means\n");
    std::vector<const char*> groups;
    for (const Row& row : rows)
        if (groups.empty() || std::strcmp(groups.back(), row.what->group) != 0)
            groups.push_back(row.what->group);
    groups.push_back(nullptr);
    for (const char* group : groups) {
        std::printf("%-52s", group != nullptr ? group : "all");
        for (std::size_t i = 1; i < engineCount; i++) {
            const double ratio = mean(rows, group, i);
            if (ratio > 0)
                std::printf(" %9.2fx", ratio);
            else
                std::printf(" %10s", "-");
        }
        std::printf("\n");
    }
}

void writeJson(const std::vector<Row>& rows, const std::string& path) {
    std::ofstream out(path);
    out << "[";
    for (const Row& row : rows) {
        out << (&row == &rows.front() ? "\n" : ",\n") << R"({"group": ")" << row.what->group
            << R"(", "name": ")" << row.what->name << R"(", "matches": )" << row.tally.matches;
        for (std::size_t i = 0; i < engineCount; i++)
            if (row.nanoseconds[i] > 0) out << ", \"" << engines[i].name << "\": " << row.nanoseconds[i];
        out << "}";
    }
    out << "\n]\n";
}

bool readArguments(int argc, char** argv, Settings& settings) {
    for (int i = 1; i < argc; i++) {
        const std::string argument = argv[i];
        if (argument.starts_with("--filter=")) {
            settings.filter = argument.substr(9);
        } else if (argument.starts_with("--json=")) {
            settings.json = argument.substr(7);
        } else if (argument == "--check") {
            settings.checkOnly = true;
        } else if (argument == "--quick") {
            settings.quick = true;
        } else if (argument.starts_with("--text=")) {
            std::ifstream in(argument.substr(7), std::ios::binary);
            useProse({std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()});
        } else {
            std::fprintf(
                stderr,
                "usage: regex_bench [--filter=REGEX] [--json=FILE] [--check] [--quick] [--text=FILE]\n");
            return false;
        }
    }
    return true;
}

void startBenchmark(const Settings& settings) {
    std::vector<std::string> flags = {"regex_bench", "--benchmark_enable_random_interleaving=true"};
    flags.emplace_back(settings.quick ? "--benchmark_repetitions=3" : "--benchmark_repetitions=7");
    flags.emplace_back(settings.quick ? "--benchmark_min_time=0.02" : "--benchmark_min_time=0.1");
    std::vector<char*> pointers;
    for (std::string& flag : flags)
        pointers.push_back(flag.data());
    int count = static_cast<int>(pointers.size());
    benchmark::Initialize(&count, pointers.data());
}

} // namespace

int main(int argc, char** argv) {
    Settings settings;
    if (!readArguments(argc, argv, settings)) return 2;
    startBenchmark(settings);

    const std::regex filter(settings.filter);
    std::vector<Row> rows;
    int agreed = 0, differed = 0;
    if (!settings.checkOnly) printHead();
    for (const Case& one : cases) {
        if (!std::regex_search(std::string(one.group) + "/" + one.name, filter)) continue;
        std::array<std::unique_ptr<Engine>, engineCount> made;
        for (std::size_t i = 0; i < engineCount; i++)
            made[i] = makeEngine(one, i);
        Tally tally;
        if (!agree(one, made, tally)) {
            differed++;
            continue;
        }
        agreed++;
        if (settings.checkOnly) continue;
        rows.push_back(measure(one, made));
        rows.back().tally = tally;
        printRow(rows.back());
    }
    if (!rows.empty()) printMeans(rows);
    if (!settings.json.empty()) writeJson(rows, settings.json);
    std::printf("%d cases on which the engines agree, %d on which they differ\n", agreed, differed);
    return differed == 0 ? 0 : 1;
}
