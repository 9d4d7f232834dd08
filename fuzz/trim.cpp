// Trimming: settings line (wide, shift), the set on a line, text.
#include "input.h"
#include "strings/api.h"

#include <algorithm>

namespace {

using namespace tavfuzz;
using tavtest::Api;

template <class E>
using Text = std::vector<E>;

template <class E>
Text<E> trimmed(const Text<E>& text, const Text<E>& set, bool start, bool end) {
    const auto odd = [&](E e) { return std::find(set.begin(), set.end(), e) != set.end(); };
    auto from = text.begin();
    auto to = text.end();
    while (start && from != to && odd(*from))
        ++from;
    while (end && from != to && odd(to[-1]))
        --to;
    return Text<E>(from, to);
}

template <class E>
using TrimAny = tavStatus (*)(const E*, int32_t, const E*, int32_t, E*, int32_t*);

template <class E>
void checkAny(TrimAny<E> function, const Text<E>& text, const Text<E>& set, bool start, bool end,
              std::size_t shift) {
    const Text<E> wanted = trimmed(text, set, start, end);
    Exact<E> src(text, shift);
    Exact<E> members(set);
    Exact<E> dst(wanted.size(), shift);
    int32_t length = -1;
    TAV_REQUIRE(function(src.get(), src.length(), members.get(), members.length(), dst.get(), &length) ==
                tavStsNoError);
    TAV_REQUIRE(length == static_cast<int32_t>(wanted.size()));
    TAV_REQUIRE(dst.all() == wanted);
}

template <class E>
void checkOne(const Text<E>& text, E odd, std::size_t shift) {
    const Text<E> wanted = trimmed(text, {odd}, true, true);
    Exact<E> src(text, shift);
    Exact<E> dst(wanted.size(), shift);
    int32_t length = -1;
    TAV_REQUIRE(Api<E>::trim(src.get(), src.length(), odd, dst.get(), &length) == tavStsNoError);
    TAV_REQUIRE(length == static_cast<int32_t>(wanted.size()));
    TAV_REQUIRE(dst.all() == wanted);
    length = src.length();
    TAV_REQUIRE(Api<E>::trimInPlace(src.get(), &length, odd) == tavStsNoError);
    TAV_REQUIRE(length == static_cast<int32_t>(wanted.size()));
    TAV_REQUIRE(src.taken(wanted.size()) == wanted);
    for (std::size_t i = wanted.size(); i < text.size(); ++i)
        TAV_REQUIRE(src.get()[i] == text[i]);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    const Settings all(input.line());
    const std::string setText = input.line();
    const std::string text = input.rest();
    forBothWidths([&](auto e) {
        using E = decltype(e);
        Settings settings = all;
        const bool wide = settings.flag();
        const uint32_t shift = settings.below(16);
        const Text<E> subject = elements<E>(text, wide);
        const Text<E> set = elements<E>(setText, wide);
        checkAny<E>(Api<E>::trimAny, subject, set, true, true, shift);
        checkAny<E>(Api<E>::trimStartAny, subject, set, true, false, shift);
        checkAny<E>(Api<E>::trimEndAny, subject, set, false, true, shift);
        checkOne<E>(subject, set.empty() ? E{' '} : set[0], shift);
    });
    return 0;
}
