// Insertion, removal, joining of two, replacement of one element: settings line (wide, shift, position,
// count, old value, new value), inserted text on a line, text.
#include "input.h"
#include "strings/api.h"

#include <algorithm>

namespace {

using namespace tavfuzz;
using tavtest::Api;

template <class E>
using Text = std::vector<E>;

template <class E>
Text<E> withInserted(Text<E> text, const Text<E>& inserted, int32_t at) {
    text.insert(text.begin() + at, inserted.begin(), inserted.end());
    return text;
}

template <class E>
void checkInsert(const Text<E>& text, const Text<E>& inserted, int32_t at, std::size_t shift) {
    const std::size_t grown = text.size() + inserted.size();
    Exact<E> src(text, shift);
    Exact<E> piece(inserted);
    Exact<E> dst(grown, shift);
    const bool fits = at >= 0 && at <= src.length();
    const tavStatus expected = fits ? tavStsNoError : tavStsNegativeLength;
    const Text<E> before = dst.all();
    const Text<E> wanted = fits && !inserted.empty() ? withInserted(text, inserted, at) : before;
    TAV_REQUIRE(Api<E>::insert(src.get(), src.length(), piece.get(), piece.length(), dst.get(), at) ==
                expected);
    TAV_REQUIRE(dst.all() == wanted);

    Exact<E> place(joined(text, Text<E>(inserted.size(), E{'~'})), shift);
    int32_t length = src.length();
    TAV_REQUIRE(Api<E>::insertInPlace(piece.get(), piece.length(), place.get(), &length, at) == expected);
    TAV_REQUIRE(length == src.length() + (fits ? piece.length() : 0));
    TAV_REQUIRE(place.taken(static_cast<std::size_t>(length)) ==
                (fits ? withInserted(text, inserted, at) : text));
}

template <class E>
void checkRemove(const Text<E>& text, int32_t at, int32_t count, std::size_t shift) {
    const bool fits = at >= 0 && count >= 0 && at + count <= static_cast<int32_t>(text.size());
    Text<E> wanted = text;
    if (fits) wanted.erase(wanted.begin() + at, wanted.begin() + at + count);
    const tavStatus expected = fits ? tavStsNoError : tavStsNegativeLength;
    Exact<E> src(text, shift);
    Exact<E> dst(wanted.size(), shift);
    TAV_REQUIRE(Api<E>::remove(src.get(), src.length(), dst.get(), at, count) == expected);
    if (fits) TAV_REQUIRE(dst.all() == wanted);
    int32_t length = src.length();
    TAV_REQUIRE(Api<E>::removeInPlace(src.get(), &length, at, count) == expected);
    TAV_REQUIRE(src.taken(static_cast<std::size_t>(length)) == wanted);
    if (fits) TAV_REQUIRE(length == static_cast<int32_t>(wanted.size()));
    for (std::size_t i = wanted.size(); i < text.size(); ++i)
        TAV_REQUIRE(src.get()[i] == text[i]);
}

template <class E>
void checkRest(const Text<E>& text, const Text<E>& second, E oldValue, E newValue, std::size_t shift) {
    Exact<E> src(text, shift);
    Exact<E> other(second);
    Exact<E> dst(text.size() + second.size(), shift);
    TAV_REQUIRE(Api<E>::concat(src.get(), src.length(), other.get(), other.length(), dst.get()) ==
                tavStsNoError);
    TAV_REQUIRE(dst.all() == joined(text, second));

    Text<E> wanted = text;
    std::replace(wanted.begin(), wanted.end(), oldValue, newValue);
    Exact<E> copy(text.size(), shift);
    TAV_REQUIRE(Api<E>::replace(src.get(), copy.get(), src.length(), oldValue, newValue) == tavStsNoError);
    TAV_REQUIRE(copy.all() == wanted);
    TAV_REQUIRE(Api<E>::replace(src.get(), src.get(), src.length(), oldValue, newValue) == tavStsNoError);
    TAV_REQUIRE(src.all() == wanted);

    // A destination inside the source: element by element, each read before it is written.
    if (text.empty()) return;
    Exact<E> overlapping(joined(text, {E{'~'}}), shift);
    Text<E> byHand = overlapping.all();
    for (std::size_t i = 0; i < text.size(); ++i)
        byHand[i + 1] = byHand[i] == oldValue ? newValue : byHand[i];
    E* const from = overlapping.get();
    TAV_REQUIRE(Api<E>::replace(from, from + 1, src.length(), oldValue, newValue) == tavStsNoError);
    TAV_REQUIRE(overlapping.all() == byHand);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    const Settings all(input.line());
    const std::string piece = input.line();
    const std::string text = input.rest();
    forBothWidths([&](auto e) {
        using E = decltype(e);
        Settings settings = all;
        const bool wide = settings.flag();
        const uint32_t shift = settings.below(16);
        const auto at = static_cast<int32_t>(settings.below(256)) - 1;
        const auto count = static_cast<int32_t>(settings.below(256)) - 1;
        const E oldValue = static_cast<E>(settings.below(256));
        const E newValue = static_cast<E>(settings.below(256));
        const Text<E> subject = elements<E>(text, wide);
        checkInsert(subject, elements<E>(piece, wide), at, shift);
        checkRemove(subject, at, count, shift);
        checkRest(subject, elements<E>(piece, wide), subject.empty() ? oldValue : subject[0], newValue,
                  shift);
        checkRest(subject, elements<E>(piece, wide), oldValue, newValue, shift);
    });
    return 0;
}
