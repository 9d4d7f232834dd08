// What the string tests share: both element widths under one name, texts, and placements in memory.
#pragma once

#include "base/guarded_buffer.h"
#include "strings/api.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace tavtest {

using Elements = ::testing::Types<uint8_t, uint16_t>;

/// The characters of a literal as elements.
template <class E>
std::vector<E> text(std::string_view characters) {
    std::vector<E> elements;
    for (const char c : characters) {
        elements.push_back(static_cast<E>(static_cast<unsigned char>(c)));
    }
    return elements;
}

/// The same with its terminating zero.
template <class E>
std::vector<E> textZ(std::string_view characters) {
    std::vector<E> elements = text<E>(characters);
    elements.push_back(0);
    return elements;
}

template <class E>
int32_t length(const std::vector<E>& elements) {
    return static_cast<int32_t>(elements.size());
}

/// A status or length that no function writes: shows whether an output was touched.
inline constexpr int32_t untouched = 77777;

/// Fills buffers that a function should leave alone.
inline constexpr int filler = '#';

/// The elements as characters, for readable expectations.
template <class E>
std::string shown(const E* elements, int32_t count) {
    return std::string(elements, elements + count);
}

/// What the shared rule of argument tests answers: pointers before lengths.
inline tavStatus expectedStatus(bool anyNull, bool anyNegative) {
    return anyNull ? tavStsNullPointer : anyNegative ? tavStsNegativeLength : tavStsNoError;
}

/// Random texts, repeatable: the seed is printed with every failure inside its scope.
class Random {
public:
    explicit Random(uint32_t seed) : engine_(seed) {}

    /// A number below `limit`.
    uint32_t below(uint32_t limit) { return static_cast<uint32_t>(engine_() % limit); }

    /// Elements from an alphabet of `alphabet` neighbouring values that starts at `from`.
    template <class E>
    std::vector<E> text(std::size_t count, uint32_t alphabet, uint32_t from) {
        std::vector<E> elements(count);
        std::generate(elements.begin(), elements.end(),
                      [&] { return static_cast<E>(from + below(alphabet)); });
        return elements;
    }

private:
    std::mt19937 engine_;
};

/// Runs `check(place, count)` with `place` pointing at a copy of the elements: directly before an
/// inaccessible page, directly behind one, and at every alignment.
template <class E, class Check>
void atEveryPlace(const std::vector<E>& elements, GuardedBuffer<E>& buffer, const Check& check) {
    check(buffer.copyToTail(elements.data(), elements.size()));
    check(buffer.copyToHead(elements.data(), elements.size()));
    for (std::size_t shift = 1; shift < 16 / sizeof(E); ++shift) {
        E* place = buffer.head() + shift;
        if (!elements.empty()) std::memcpy(place, elements.data(), elements.size() * sizeof(E));
        check(place);
    }
}

} // namespace tavtest
