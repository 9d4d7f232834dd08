// The searches of all kinds: settings line (wide, shift, shift), needle or set on a line, haystack.
#include "input.h"
#include "strings/api.h"

#include <algorithm>

namespace {

using namespace tavfuzz;
using tavtest::Api;

template <class E>
using Text = std::vector<E>;

template <class E>
bool occursAt(const Text<E>& text, const Text<E>& needle, std::size_t at) {
    return at + needle.size() <= text.size() &&
           std::equal(needle.begin(), needle.end(), text.begin() + static_cast<std::ptrdiff_t>(at));
}

template <class Test>
int32_t firstIndex(std::size_t count, Test test) {
    for (std::size_t i = 0; i < count; ++i) {
        if (test(i)) return static_cast<int32_t>(i);
    }
    return -1;
}

template <class Test>
int32_t lastIndex(std::size_t count, Test test) {
    for (std::size_t i = count; i-- > 0;) {
        if (test(i)) return static_cast<int32_t>(i);
    }
    return -1;
}

template <class E>
void checkStrings(const Text<E>& text, const Text<E>& needle, std::size_t shift, std::size_t needleShift) {
    Exact<E> src(text, shift);
    Exact<E> find(needle, needleShift);
    const auto occurs = [&](std::size_t at) { return !needle.empty() && occursAt(text, needle, at); };
    int32_t index = -2;
    TAV_REQUIRE(Api<E>::find(src.get(), src.length(), find.get(), find.length(), &index) == tavStsNoError);
    TAV_REQUIRE(index == firstIndex(text.size(), occurs));
    TAV_REQUIRE(Api<E>::findRev(src.get(), src.length(), find.get(), find.length(), &index) == tavStsNoError);
    TAV_REQUIRE(index == lastIndex(text.size(), occurs));

    const auto isMember = [&](std::size_t at) {
        return std::find(needle.begin(), needle.end(), text[at]) != needle.end();
    };
    TAV_REQUIRE(Api<E>::findCAny(src.get(), src.length(), find.get(), find.length(), &index) ==
                tavStsNoError);
    TAV_REQUIRE(index == firstIndex(text.size(), isMember));
    TAV_REQUIRE(Api<E>::findRevCAny(src.get(), src.length(), find.get(), find.length(), &index) ==
                tavStsNoError);
    TAV_REQUIRE(index == lastIndex(text.size(), isMember));

    const E value = needle.empty() ? E{0} : needle[0];
    const auto isValue = [&](std::size_t at) { return text[at] == value; };
    TAV_REQUIRE(Api<E>::findC(src.get(), src.length(), value, &index) == tavStsNoError);
    TAV_REQUIRE(index == firstIndex(text.size(), isValue));
    TAV_REQUIRE(Api<E>::findRevC(src.get(), src.length(), value, &index) == tavStsNoError);
    TAV_REQUIRE(index == lastIndex(text.size(), isValue));
}

/// Zero-terminated: what stands behind the first zero does not count.
template <class E>
void checkTerminated(Text<E> text, Text<E> needle, std::size_t shift, std::size_t needleShift) {
    text.push_back(0);
    needle.push_back(0);
    text.resize(static_cast<std::size_t>(std::find(text.begin(), text.end(), 0) - text.begin()) + 1);
    needle.resize(static_cast<std::size_t>(std::find(needle.begin(), needle.end(), 0) - needle.begin()) + 1);
    Exact<E> src(text, shift);
    Exact<E> find(needle, needleShift);
    const E value = needle[0];
    needle.pop_back();
    const Text<E> plain(text.begin(), text.end() - 1);
    int32_t index = -2;
    TAV_REQUIRE(Api<E>::findZ(src.get(), find.get(), &index) == tavStsNoError);
    TAV_REQUIRE(index == firstIndex(plain.size(), [&](std::size_t at) {
                    return !needle.empty() && occursAt(plain, needle, at);
                }));
    TAV_REQUIRE(Api<E>::findCZ(src.get(), value, &index) == tavStsNoError);
    TAV_REQUIRE(index == firstIndex(text.size(), [&](std::size_t at) { return text[at] == value; }));
    TAV_REQUIRE(Api<E>::findCZ(src.get(), 0, &index) == tavStsNoError);
    TAV_REQUIRE(index == static_cast<int32_t>(plain.size()));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    const Settings all(input.line());
    const std::string needle = input.line();
    const std::string text = input.rest();
    forBothWidths([&](auto e) {
        using E = decltype(e);
        Settings settings = all;
        const bool wide = settings.flag();
        const uint32_t shift = settings.below(16);
        const uint32_t needleShift = settings.below(16);
        checkStrings(elements<E>(text, wide), elements<E>(needle, wide), shift, needleShift);
        checkTerminated(elements<E>(text, wide), elements<E>(needle, wide), shift, needleShift);
    });
    return 0;
}
