// Comparison and equality, plain and with Latin and Unicode case: settings line (wide, shift, shift), first
// string on a line, second string.
#include "input.h"
#include "strings/api.h"
#include "unicode/case_reference.h"

#include <algorithm>

namespace {

using namespace tavfuzz;
using tavtest::Api;

template <class E>
int32_t lower(E e) {
    return e >= 'A' && e <= 'Z' ? e + 32 : e;
}

template <class E, class Fold>
int32_t plainOrder(const std::vector<E>& a, const std::vector<E>& b, std::size_t count, Fold fold) {
    for (std::size_t i = 0; i < count; ++i) {
        if (fold(a[i]) != fold(b[i])) return fold(a[i]) - fold(b[i]);
    }
    return 0;
}

template <class E>
void check(Settings settings, const std::string& firstText, const std::string& secondText) {
    const bool wide = settings.flag();
    std::vector<E> a = elements<E>(firstText, wide);
    std::vector<E> b = elements<E>(secondText, wide);
    const std::size_t count = std::min(a.size(), b.size());
    a.resize(count);
    b.resize(count);
    Exact<E> first(a, settings.below(16));
    Exact<E> second(b, settings.below(16));
    const int32_t length = first.length();

    int32_t order = 1;
    TAV_REQUIRE(Api<E>::compare(first.get(), second.get(), length, &order) == tavStsNoError);
    TAV_REQUIRE(order == plainOrder(a, b, count, [](E e) { return int32_t{e}; }));
    uint32_t equal = 7;
    TAV_REQUIRE(Api<E>::equal(first.get(), second.get(), length, &equal) == tavStsNoError);
    TAV_REQUIRE(equal == (order == 0 ? 1u : 0u));
    TAV_REQUIRE(Api<E>::compareIgnoreCaseLatin(first.get(), second.get(), length, &order) == tavStsNoError);
    TAV_REQUIRE(order == plainOrder(a, b, count, lower<E>));
    if constexpr (sizeof(E) == 2) {
        TAV_REQUIRE(tavsCompareIgnoreCase_16u(first.get(), second.get(), length, &order) == tavStsNoError);
        TAV_REQUIRE(order ==
                    plainOrder(a, b, count, [](E e) { return int32_t{tavtest::caseReference().lower(e)}; }));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    const Settings settings(input.line());
    const std::string first = input.line();
    const std::string second = input.rest();
    forBothWidths([&](auto e) { check<decltype(e)>(settings, first, second); });
    return 0;
}
