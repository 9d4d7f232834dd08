// What tavch.hpp costs over the C calls that it makes: each row in both ways. Rows are named request/way.
#include "tavch.hpp"

#include <benchmark/benchmark.h>

#include <memory>
#include <string_view>
#include <vector>

namespace {

constexpr std::string_view line = "2026-11-20T08:03:17Z login[420]: user alice logged in from 10.1.4.77";
constexpr std::string_view address = "(\\d+)\\.(\\d+)\\.(\\d+)\\.(\\d+)";

const std::uint8_t* bytes(std::string_view text) {
    return reinterpret_cast<const std::uint8_t*>(text.data());
}

struct Free {
    void operator()(tavRegExpContext* context) const { tavsRegExpFree(context); }
};

std::unique_ptr<tavRegExpContext, Free> compiled(const char* options) {
    tavRegExpContext* context = nullptr;
    std::int32_t offset = 0;
    tavsRegExpInitAlloc(address.data(), options, &context, &offset);
    return std::unique_ptr<tavRegExpContext, Free>(context);
}

void findC(benchmark::State& state) {
    const auto pattern = compiled("");
    for (auto _ : state) {
        tavRegExpFindResult found[10];
        std::int32_t count = 10;
        benchmark::DoNotOptimize(tavsRegExpFind_8u(bytes(line), static_cast<std::int32_t>(line.size()),
                                                   pattern.get(), found, &count));
        benchmark::DoNotOptimize(found[4].length);
    }
}

void findCpp(benchmark::State& state) {
    tav::Pattern pattern(address);
    for (auto _ : state) {
        const tav::Match match = pattern.find(line);
        benchmark::DoNotOptimize(match[4].size());
    }
}

void positionC(benchmark::State& state) {
    for (auto _ : state) {
        std::int32_t at;
        tavsFind_8u(bytes(line), static_cast<std::int32_t>(line.size()), bytes("from"), 4, &at);
        benchmark::DoNotOptimize(at);
    }
}

void positionCpp(benchmark::State& state) {
    for (auto _ : state)
        benchmark::DoNotOptimize(tav::find(line, "from"));
}

void replaceC(benchmark::State& state) {
    const auto pattern = compiled("g");
    std::uint64_t block[64];
    auto* const items = reinterpret_cast<tavRegExpReplaceContext*>(block);
    tavsRegExpReplaceInit("<$&>", items);
    for (auto _ : state) {
        // The same memory that the C++ call takes: a text and room for 16 matches.
        auto used = static_cast<std::int32_t>(line.size()), written = used + used / 4 + 64, count = 16 * 5;
        std::string out(static_cast<std::size_t>(written), '\0');
        const std::unique_ptr<tavRegExpFindResult[]> found(new tavRegExpFindResult[16 * 5]);
        tavsRegExpReplace_8u(bytes(line), &used, reinterpret_cast<std::uint8_t*>(out.data()), &written,
                             found.get(), &count, pattern.get(), items);
        out.resize(static_cast<std::size_t>(written));
        benchmark::DoNotOptimize(out.data());
    }
}

void replaceCpp(benchmark::State& state) {
    tav::Pattern pattern(address);
    const tav::Template items("<$&>");
    for (auto _ : state) {
        const auto out = pattern.replaceAll(line, items);
        benchmark::DoNotOptimize(out->data());
    }
}

} // namespace

BENCHMARK(findC)->Name("find/C");
BENCHMARK(findCpp)->Name("find/C++");
BENCHMARK(positionC)->Name("position/C");
BENCHMARK(positionCpp)->Name("position/C++");
BENCHMARK(replaceC)->Name("replace/C");
BENCHMARK(replaceCpp)->Name("replace/C++");

BENCHMARK_MAIN();
