// UTF-8 to UTF-16 and back, written down step by step from the rules: slow, obvious, and sharing nothing with
// the library. The tests compare whole outputs with it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace tavtest {

template <class Out>
struct Converted {
    std::size_t consumed = 0;
    std::vector<Out> output;
};

/// The number of continuation bytes of a value: the first bound that it does not exceed.
inline int continuationsOf(int32_t value) {
    const int32_t bounds[] = {0x7F, 0x7FF, 0xFFFF, 0x1FFFFF, 0x3FFFFFF, 0x7FFFFFFF};
    int k = 0;
    while (value > bounds[k])
        ++k;
    return k;
}

inline uint16_t swapBytes(uint16_t unit) {
    return static_cast<uint16_t>((unit & 0xFF) * 256 + unit / 256);
}

/// One step from UTF-8: the value, and the bytes that it consumes.
inline uint32_t readUtf8(const std::vector<uint8_t>& source, std::size_t at, std::size_t& length) {
    const uint8_t lead = source[at];
    length = 1;
    if (lead < 0x80) return lead;
    int ones = 0;
    while (ones < 7 && (lead & (0x80 >> ones)) != 0)
        ++ones;
    const int k = ones - 1;
    if (k == 0 || k == 6) return lead;
    const uint8_t masks[] = {0, 0x1F, 0x0F, 0x07, 0x03, 0x01};
    uint32_t value = static_cast<uint32_t>(lead & masks[k]) << (6 * k);
    for (int i = 0; i < k; ++i) {
        const std::size_t position = at + 1 + static_cast<std::size_t>(i);
        if (position >= source.size() || (source[position] & 0xC0) != 0x80) return lead;
        value |= static_cast<uint32_t>(source[position] & 0x3F) << (6 * (k - 1 - i));
    }
    if (continuationsOf(static_cast<int32_t>(value)) != k) return lead;
    length = static_cast<std::size_t>(k) + 1;
    return value;
}

inline Converted<uint16_t> referenceUtf8To16(const std::vector<uint8_t>& source, std::size_t capacity,
                                             bool bigEndian) {
    Converted<uint16_t> result;
    while (result.consumed < source.size() && result.output.size() < capacity) {
        std::size_t length;
        const uint32_t value = readUtf8(source, result.consumed, length);
        if (value <= 0xFFFF) {
            const auto unit = static_cast<uint16_t>(value);
            result.output.push_back(bigEndian ? swapBytes(unit) : unit);
        } else {
            if (capacity - result.output.size() < 2) break;
            const uint32_t v = value - 0x10000;
            const auto high = static_cast<uint16_t>(0xD800 + v / 0x400 % 0x400);
            const auto low = static_cast<uint16_t>(0xDC00 + v % 0x400);
            result.output.push_back(bigEndian ? low : high);
            result.output.push_back(bigEndian ? high : low);
        }
        result.consumed += length;
    }
    return result;
}

inline Converted<uint8_t> referenceUtf16To8(const std::vector<uint16_t>& source, std::size_t capacity,
                                            bool bigEndian) {
    const auto read = [&](std::size_t at) { return bigEndian ? swapBytes(source[at]) : source[at]; };
    Converted<uint8_t> result;
    while (result.consumed < source.size() && result.output.size() < capacity) {
        uint32_t value = read(result.consumed);
        std::size_t units = 1;
        if (value >= 0xD800 && value <= 0xDBFF && result.consumed + 1 < source.size()) {
            const uint32_t next = read(result.consumed + 1);
            if (next >= 0xDC00 && next <= 0xDFFF) {
                value = (value - 0xD800) * 0x400 + (next - 0xDC00) + 0x10000;
                units = 2;
            }
        }
        const int k = continuationsOf(static_cast<int32_t>(value));
        if (capacity - result.output.size() < static_cast<std::size_t>(k) + 1) break;
        const uint8_t marks[] = {0x00, 0xC0, 0xE0, 0xF0};
        result.output.push_back(static_cast<uint8_t>(marks[k] | value >> (6 * k)));
        for (int i = k - 1; i >= 0; --i)
            result.output.push_back(static_cast<uint8_t>(0x80 | (value >> (6 * i) & 0x3F)));
        result.consumed += units;
    }
    return result;
}

} // namespace tavtest
