// Texts for the Unicode benchmark: random within their kind, so that a branch predictor finds in them only
// what it would find in real text.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace tav::bench {

using Bytes = std::vector<uint8_t>;
using Units = std::vector<uint16_t>;

class TextMaker;

enum class Nature {
    OneScript, ///< text as people write it
    Mixed,     ///< the same, of several scripts
    Adverse,   ///< made to fail vector code
    Malformed, ///< adverse, and refused by peers that check
};

struct Kind {
    const char* name;
    void (*make)(TextMaker&); ///< appends a word or so
    Nature nature;
};

const std::vector<Kind>& textKinds();

/// UTF-8 text of at least `size` bytes, ending with a whole word.
Bytes makeText(const Kind& kind, std::size_t size);

/// Strings of `characters` characters each, about `total` bytes together.
std::vector<Bytes> makeStrings(const Kind& kind, std::size_t characters, std::size_t total);

/// By the plain loop of the benchmark.
Units toUnits(const Bytes& text);

} // namespace tav::bench
