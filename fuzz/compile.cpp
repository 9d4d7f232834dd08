// Compilation: options on the first line, the pattern in the rest. The block's garbage must not show in the
// program; a refused pattern is refused in the same way whatever the block held.
#include "pattern.h"

namespace {

using namespace tavfuzz;
using tav::regex::Instruction;

/// The same instruction in two blocks: a text in one lies where it lies in the other, or in the tables.
bool same(tavRegExpContext& a, tavRegExpContext& b, int32_t at) {
    const Instruction& one = tav::regex::programOf(a)[at];
    const Instruction& other = tav::regex::programOf(b)[at];
    const bool inPool = one.op == tav::regex::OP_STRING;
    const auto place = [&](const Instruction& i, const tavRegExpContext& block) {
        return reinterpret_cast<uintptr_t>(i.text) - (inPool ? reinterpret_cast<uintptr_t>(&block) : 0);
    };
    return one.op == other.op && one.a == other.a && one.b == other.b && one.c == other.c &&
           place(one, a) == place(other, b) &&
           (!inPool || std::memcmp(one.text, other.text, static_cast<std::size_t>(one.b)) == 0);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    const std::string options = input.line();
    const std::string pattern = input.rest();
    CompiledPattern compiled(pattern, options.c_str());
    compiled.requireSound();
    CompiledPattern again(pattern, options.c_str(), 0x0102030405060708);
    TAV_REQUIRE(again.status() == compiled.status());
    TAV_REQUIRE(again.errOffset() == compiled.errOffset());
    if (!compiled.compiled()) return 0;
    tavRegExpContext& a = compiled.context();
    tavRegExpContext& b = again.context();
    TAV_REQUIRE(std::memcmp(&a, &b, offsetof(tavRegExpContext, workArea)) == 0);
    for (int32_t i = 0; i < a.codeLength; ++i)
        TAV_REQUIRE(same(a, b, i));
    return 0;
}
