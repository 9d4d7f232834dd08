// UTF-16 to UTF-8: settings line (wide, big endian, shift, how much less room than is enough, in two digits
// of 62), text.
#include "input.h"
#include "tavch.h"
#include "unicode/conversion_reference.h"

#include <algorithm>

namespace {

using namespace tavfuzz;

void check(const std::vector<uint16_t>& source, std::size_t capacity, std::size_t shift, bool bigEndian) {
    const auto wanted = tavtest::referenceUtf16To8(source, capacity, bigEndian);
    Exact<uint16_t> src(source, shift);
    Exact<uint8_t> dst(capacity, shift);
    auto consumed = static_cast<uint32_t>(source.size());
    auto written = static_cast<uint32_t>(capacity);
    TAV_REQUIRE(tavsConvertUTF_16u8u(src.get(), &consumed, dst.get(), &written, bigEndian ? -1 : 0) ==
                tavStsNoError);
    const bool nothing = source.empty() || capacity == 0;
    TAV_REQUIRE(consumed == (nothing ? 0 : wanted.consumed));
    TAV_REQUIRE(written == (nothing ? 0 : wanted.output.size()));
    TAV_REQUIRE(dst.taken(written) == wanted.output);
    for (std::size_t i = written; i < capacity; ++i)
        TAV_REQUIRE(dst.get()[i] == '~');
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    Settings settings(input.line());
    const bool wide = settings.flag();
    const bool bigEndian = settings.flag();
    const uint32_t shift = settings.below(16);
    const std::size_t less = settings.below(62) * 62 + settings.below(62);
    const std::vector<uint16_t> source = elements<uint16_t>(input.rest(), wide);
    const std::size_t enough = 3 * source.size();
    check(source, enough, shift, bigEndian);
    check(source, enough - std::min(less, enough), shift, bigEndian);
    return 0;
}
