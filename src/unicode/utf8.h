// Decodes one UTF-8 sequence, of up to six bytes, by the rules that patterns and conversions share: a
// sequence must be complete, its continuation bytes well formed, and the form the shortest for its value.
// Surrogates and values above U+10FFFF are not refused. What a malformed byte means is the caller's business.
#pragma once

#include <bit>
#include <cstdint>

namespace tav::unicode {

struct Utf8Sequence {
    uint32_t value; // the code point; of a malformed sequence the byte at its start
    int32_t length; // bytes consumed; 1 when malformed
    bool malformed;
};

/// The number of bytes of the shortest form of `value` (below 2^31).
constexpr int32_t utf8Length(uint32_t value) {
    return value <= 0x7F        ? 1
           : value <= 0x7FF     ? 2
           : value <= 0xFFFF    ? 3
           : value <= 0x1FFFFF  ? 4
           : value <= 0x3FFFFFF ? 5
                                : 6;
}

constexpr bool isContinuation(uint8_t byte) {
    return (byte & 0xC0) == 0x80;
}

/// The rule itself, for sequences of every length: the sequence at `p`, which lies before `end`; nothing at
/// or behind `end` is read.
[[gnu::noinline]] constexpr Utf8Sequence decodeUtf8ByRule(const uint8_t* p, const uint8_t* end) {
    const uint8_t lead = *p;
    if (lead < 0x80) return {lead, 1, false};
    const Utf8Sequence malformed = {lead, 1, true};
    const int length = std::countl_one(lead);
    if (length < 2 || length > 6 || end - p < length) return malformed;
    uint32_t value = lead & (0x7Fu >> length);
    for (int i = 1; i < length; ++i) {
        if (!isContinuation(p[i])) return malformed;
        value = value << 6 | (p[i] & 0x3Fu);
    }
    if (utf8Length(value) != length) return malformed;
    return {value, length, false};
}

/// The same, with the lengths up to four written out, for `take(value, length, malformed)`. Inlined with it
/// into each branch, so that where the next sequence begins follows from predicted branches and not from a
/// result.
template <class Take>
[[gnu::always_inline]] constexpr auto takeUtf8(const uint8_t* p, const uint8_t* end, Take take) {
    const uint32_t lead = *p;
    if (lead < 0x80) return take(lead, 1, false);
    const auto left = end - p;
    if (lead < 0xE0) {
        if (lead >= 0xC2 && left >= 2 && isContinuation(p[1]))
            return take((lead & 0x1Fu) << 6 | (p[1] & 0x3Fu), 2, false);
    } else if (lead < 0xF0) {
        if (left >= 3 && isContinuation(p[1]) && isContinuation(p[2]) && (lead != 0xE0 || p[1] >= 0xA0))
            return take((lead & 0x0Fu) << 12 | (p[1] & 0x3Fu) << 6 | (p[2] & 0x3Fu), 3, false);
    } else if (lead < 0xF8) {
        if (left >= 4 && isContinuation(p[1]) && isContinuation(p[2]) && isContinuation(p[3]) &&
            (lead != 0xF0 || p[1] >= 0x90))
            return take((lead & 0x07u) << 18 | (p[1] & 0x3Fu) << 12 | (p[2] & 0x3Fu) << 6 | (p[3] & 0x3Fu), 4,
                        false);
    } else if (left >= 5 && isContinuation(p[1])) {
        const Utf8Sequence sequence = decodeUtf8ByRule(p, end);
        return take(sequence.value, sequence.length, sequence.malformed);
    }
    return take(lead, 1, true);
}

[[gnu::always_inline]] constexpr Utf8Sequence decodeUtf8(const uint8_t* p, const uint8_t* end) {
    return takeUtf8(p, end, [](uint32_t value, int32_t length, bool malformed) {
        return Utf8Sequence{value, length, malformed};
    });
}

} // namespace tav::unicode
