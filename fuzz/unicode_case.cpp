// Case of all letters: settings line (wide, shift), text.
#include "input.h"
#include "tavch.h"
#include "unicode/case_reference.h"

#include <algorithm>

namespace {

using namespace tavfuzz;
using Text = std::vector<uint16_t>;

template <class Map, class Copy, class InPlace>
void check(const Text& text, std::size_t shift, Map map, Copy copy, InPlace inPlace) {
    Text wanted = text;
    std::transform(text.begin(), text.end(), wanted.begin(), map);
    Exact<uint16_t> src(text, shift);
    Exact<uint16_t> dst(text.size(), shift);
    TAV_REQUIRE(copy(src.get(), dst.get(), src.length()) == tavStsNoError);
    TAV_REQUIRE(dst.all() == wanted);
    TAV_REQUIRE(src.all() == text);
    TAV_REQUIRE(inPlace(src.get(), src.length()) == tavStsNoError);
    TAV_REQUIRE(src.all() == wanted);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    Settings settings(input.line());
    const bool wide = settings.flag();
    const uint32_t shift = settings.below(16);
    const Text text = elements<uint16_t>(input.rest(), wide);
    const auto& reference = tavtest::caseReference();
    check(
        text, shift, [&](uint16_t u) { return reference.lower(u); }, tavsLowercase_16u, tavsLowercase_16u_I);
    check(
        text, shift, [&](uint16_t u) { return reference.upper(u); }, tavsUppercase_16u, tavsUppercase_16u_I);
    return 0;
}
