// Hashes and Latin case: settings line (wide, shift), text.
#include "input.h"
#include "strings/api.h"

#include <algorithm>

namespace {

using namespace tavfuzz;
using tavtest::Api;

template <class E>
using Text = std::vector<E>;

template <class E, class Step>
uint32_t plainHash(const Text<E>& text, uint32_t start, Step step) {
    uint32_t hash = start;
    for (const E e : text)
        hash = step(hash, e);
    return hash;
}

template <class E>
void checkHashes(const Text<E>& text, std::size_t shift) {
    Exact<E> src(text, shift);
    uint32_t hash = 0;
    TAV_REQUIRE(Api<E>::hash(src.get(), src.length(), &hash) == tavStsNoError);
    TAV_REQUIRE(hash == plainHash(text, 0, [](uint32_t h, E e) { return (h << 1) ^ e; }));
    TAV_REQUIRE(Api<E>::hashSJ2(src.get(), src.length(), &hash) == tavStsNoError);
    TAV_REQUIRE(hash == plainHash(text, 0, [](uint32_t h, E e) { return h * 31 + e; }));
    TAV_REQUIRE(Api<E>::hashMSCS(src.get(), src.length(), &hash) == tavStsNoError);
    const Text<E> untilZero(text.begin(), std::find(text.begin(), text.end(), 0));
    TAV_REQUIRE(hash == plainHash(untilZero, 5381, [](uint32_t h, E e) { return (h * 33) ^ e; }));
}

template <class E, class Copy, class InPlace>
void checkCase(const Text<E>& text, std::size_t shift, char from, int change, Copy copy, InPlace inPlace) {
    Text<E> wanted = text;
    for (E& e : wanted) {
        if (e >= static_cast<uint8_t>(from) && e < from + 26) e = static_cast<E>(e + change);
    }
    Exact<E> src(text, shift);
    Exact<E> dst(text.size(), shift);
    TAV_REQUIRE(copy(src.get(), dst.get(), src.length()) == tavStsNoError);
    TAV_REQUIRE(dst.all() == wanted);
    TAV_REQUIRE(copy(src.get(), src.get(), src.length()) == tavStsNoError);
    TAV_REQUIRE(src.all() == wanted);
    Exact<E> place(text, shift);
    TAV_REQUIRE(inPlace(place.get(), place.length()) == tavStsNoError);
    TAV_REQUIRE(place.all() == wanted);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    const Settings all(input.line());
    const std::string text = input.rest();
    forBothWidths([&](auto e) {
        using E = decltype(e);
        Settings settings = all;
        const bool wide = settings.flag();
        const uint32_t shift = settings.below(16);
        const Text<E> subject = elements<E>(text, wide);
        checkHashes(subject, shift);
        checkCase(subject, shift, 'A', 32, Api<E>::lowercaseLatin, Api<E>::lowercaseLatinInPlace);
        checkCase(subject, shift, 'a', -32, Api<E>::uppercaseLatin, Api<E>::uppercaseLatinInPlace);
    });
    return 0;
}
