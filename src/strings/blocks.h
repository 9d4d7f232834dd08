// How loops over texts take sixteen bytes of elements at once without touching a byte outside the text.
//
// A whole block is sixteen neighbouring bytes. A text shorter than that is covered at once by two overlapping
// smaller loads (or, below four bytes, by its first, middle and last element), so that a loop body written
// for vectors serves short texts too. Each block knows which position a lane stands for.
#pragma once

#include "base/vector.h"

#include <cstring>

namespace tav {

/// Sixteen bytes of neighbouring positions.
template <class E>
struct WholeBlock {
    int64_t at;

    Vector<E> load(const E* text) const { return Vector<E>::load(text + at); }
    int64_t position(int32_t lane) const { return at + lane; }
    static LaneMask<E> valid(LaneMask<E> mask) { return mask; }
    void store(E* to, Vector<E> values) const { values.store(to + at); }
};

/// All positions of a text of 8 to 15 bytes: its first and its last 8 bytes, which may overlap. A position
/// that appears twice is harmless: both lanes give the same answer.
template <class E>
struct HalfBlocks {
    static constexpr int32_t half = 8 / sizeof(E);
    int32_t count;

    Vector<E> load(const E* text) const {
        const __m128i head = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(text));
        const __m128i tail = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(text + count - half));
        return {_mm_unpacklo_epi64(head, tail)};
    }
    int64_t position(int32_t lane) const { return lane < half ? lane : lane - 2 * half + count; }
    static LaneMask<E> valid(LaneMask<E> mask) { return mask; }
    void store(E* to, Vector<E> values) const {
        _mm_storel_epi64(reinterpret_cast<__m128i*>(to), values.raw);
        _mm_storel_epi64(reinterpret_cast<__m128i*>(to + count - half), _mm_srli_si128(values.raw, 8));
    }
};

/// The same for 4 to 7 bytes.
template <class E>
struct QuarterBlocks {
    static constexpr int32_t quarter = 4 / sizeof(E);
    int32_t count;

    Vector<E> load(const E* text) const {
        return {_mm_unpacklo_epi32(word(text), word(text + count - quarter))};
    }
    int64_t position(int32_t lane) const { return lane < quarter ? lane : lane - 2 * quarter + count; }
    static LaneMask<E> valid(LaneMask<E> mask) { return mask.below(2 * quarter); }
    void store(E* to, Vector<E> values) const {
        const int32_t head = _mm_cvtsi128_si32(values.raw);
        const int32_t tail = _mm_cvtsi128_si32(_mm_srli_si128(values.raw, 4));
        std::memcpy(to, &head, sizeof head);
        std::memcpy(to + count - quarter, &tail, sizeof tail);
    }

private:
    static __m128i word(const E* from) {
        int32_t bits;
        std::memcpy(&bits, from, sizeof bits);
        return _mm_cvtsi32_si128(bits);
    }
};

/// The same for 1 to 3 bytes (one 16-bit unit): first, middle and last element.
template <class E>
struct SingleElements {
    int32_t count;

    Vector<E> load(const E* text) const {
        if constexpr (sizeof(E) == 2) {
            return {_mm_cvtsi32_si128(text[0])};
        } else {
            return {_mm_cvtsi32_si128(text[0] | text[count / 2] << 8 | text[count - 1] << 16)};
        }
    }
    int64_t position(int32_t lane) const { return lane == 0 ? 0 : lane == 1 ? count / 2 : count - 1; }
    static LaneMask<E> valid(LaneMask<E> mask) { return mask.below(sizeof(E) == 2 ? 1 : 3); }
    void store(E* to, Vector<E> values) const {
        const int32_t elements = _mm_cvtsi128_si32(values.raw);
        to[0] = static_cast<E>(elements);
        if constexpr (sizeof(E) == 1) {
            to[count / 2] = static_cast<E>(elements >> 8);
            to[count - 1] = static_cast<E>(elements >> 16);
        }
    }
};

/// Hands a count of 1 or more, but less than a whole block, to the fitting kind of block.
template <class E, class Body>
auto withShortBlock(int32_t count, const Body& body) {
    const int32_t bytes = count * static_cast<int32_t>(sizeof(E));
    if (bytes >= 8) return body(HalfBlocks<E>{count});
    if (bytes >= 4) return body(QuarterBlocks<E>{count});
    return body(SingleElements<E>{count});
}

} // namespace tav
