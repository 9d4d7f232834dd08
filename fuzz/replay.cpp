// Runs a target on every file of its corpus, without a fuzzer: replay TARGET FOLDER... An ordinary test of
// every build. A finding ends the program; the last name printed is its input's.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

#define TAV_TARGET(name) extern "C" int tavfuzz_##name(const uint8_t* data, size_t size);
#include "targets.inc"
#undef TAV_TARGET

namespace {

struct Target {
    const char* name;
    int (*run)(const uint8_t* data, size_t size);
};

constexpr Target targets[] = {
#define TAV_TARGET(name) {#name, tavfuzz_##name},
#include "targets.inc"
#undef TAV_TARGET
};

/// The bytes in memory of exactly their size; the empty input first of all.
void replay(const Target& target, const std::filesystem::path& path) {
    std::printf("%s\n", path.string().c_str());
    std::fflush(stdout);
    std::ifstream file(path, std::ios::binary);
    const std::vector<char> bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    target.run(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
}

} // namespace

int main(int count, char** arguments) {
    const auto* const target = std::find_if(std::begin(targets), std::end(targets), [&](const Target& one) {
        return count > 2 && std::strcmp(one.name, arguments[1]) == 0;
    });
    if (target == std::end(targets)) {
        std::fprintf(stderr, "usage: replay TARGET FOLDER...\n");
        return 2;
    }
    int inputs = 0;
    target->run(reinterpret_cast<const uint8_t*>(""), 0);
    for (int i = 2; i < count; ++i) {
        for (const auto& entry : std::filesystem::directory_iterator(arguments[i])) {
            replay(*target, entry.path());
            ++inputs;
        }
    }
    std::printf("%d inputs\n", inputs);
    return inputs > 0 ? 0 : 1;
}
