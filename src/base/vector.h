// Sixteen bytes at a time: the one place that names SSE2, which every x86-64 processor has.
//
// Vector<E> holds 16 / sizeof(E) unsigned elements of 8 or 16 bits. Comparisons give vectors whose lanes are
// all ones or all zeros; lanes() turns such a vector into a LaneMask, which answers "which lane first, which
// last". Loads and stores take any alignment and touch exactly 16 bytes: a caller who has fewer left steps
// back and overlaps, or goes on element by element. Every use stands beside the plain loop that defines it.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <emmintrin.h>

namespace tav {

/// Before an exported function whose calls of a few elements matter: everything that it calls and that is
/// visible is inlined, so that vectors and what a scan captures stay in registers.
#define TAV_FLATTEN [[gnu::flatten]]

/// The lanes in which a comparison held: sizeof(E) bits per lane, lane 0 lowest.
template <class E>
struct LaneMask {
    static constexpr int bitsPerLane = sizeof(E);
    static constexpr uint32_t every = 0xFFFF;

    uint32_t bits;

    bool any() const { return bits != 0; }
    bool all() const { return bits == every; }

    /// The lowest and highest lane of a mask that has any.
    int32_t first() const { return std::countr_zero(bits) / bitsPerLane; }
    int32_t last() const { return (31 - std::countl_zero(bits)) / bitsPerLane; }

    LaneMask withoutFirst() const { return {bits & ~((bits & -bits) * ((1U << bitsPerLane) - 1))}; }
    LaneMask withoutLast() const { return {bits & ~(((1U << bitsPerLane) - 1) << (last() * bitsPerLane))}; }
    LaneMask inverse() const { return {bits ^ every}; }

    /// Lanes from `lane` on (0 to the number of lanes), and lanes below it.
    LaneMask from(int32_t lane) const { return {bits & (every << (lane * bitsPerLane))}; }
    LaneMask below(int32_t lane) const { return {bits & ~(every << (lane * bitsPerLane))}; }

    LaneMask operator&(LaneMask other) const { return {bits & other.bits}; }
    LaneMask operator|(LaneMask other) const { return {bits | other.bits}; }
};

template <class E>
struct Vector {
    static_assert(sizeof(E) == 1 || sizeof(E) == 2, "bytes and 16-bit units only");
    static constexpr bool isByte = sizeof(E) == 1;
    static constexpr int32_t size = 16 / sizeof(E);

    __m128i raw;

    static Vector load(const E* from) { return {_mm_loadu_si128(reinterpret_cast<const __m128i*>(from))}; }
    static Vector loadAligned(const E* from) {
        return {_mm_load_si128(reinterpret_cast<const __m128i*>(from))};
    }
    void store(E* to) const { _mm_storeu_si128(reinterpret_cast<__m128i*>(to), raw); }

    /// Spread over 32 bits by a multiplication first: SSE2 would take a shuffle for each doubling.
    static Vector splat(E value) {
        return {_mm_set1_epi32(static_cast<int>(value * (isByte ? 0x01010101U : 0x00010001U)))};
    }
    static Vector zero() { return {_mm_setzero_si128()}; }

    Vector operator&(Vector other) const { return {_mm_and_si128(raw, other.raw)}; }
    Vector operator|(Vector other) const { return {_mm_or_si128(raw, other.raw)}; }
    Vector operator^(Vector other) const { return {_mm_xor_si128(raw, other.raw)}; }
    /// The bits of this vector that `mask` does not have.
    Vector without(Vector mask) const { return {_mm_andnot_si128(mask.raw, raw)}; }

    /// Sum and difference of the lanes, modulo the element's range.
    Vector operator+(Vector other) const {
        if constexpr (isByte) {
            return {_mm_add_epi8(raw, other.raw)};
        } else {
            return {_mm_add_epi16(raw, other.raw)};
        }
    }
    Vector operator-(Vector other) const {
        if constexpr (isByte) {
            return {_mm_sub_epi8(raw, other.raw)};
        } else {
            return {_mm_sub_epi16(raw, other.raw)};
        }
    }

    /// The difference, or 0 where it would be negative.
    Vector minusSaturated(Vector other) const {
        if constexpr (isByte) {
            return {_mm_subs_epu8(raw, other.raw)};
        } else {
            return {_mm_subs_epu16(raw, other.raw)};
        }
    }

    /// The smaller and the larger of each pair of lanes, as unsigned numbers.
    Vector min(Vector other) const {
        if constexpr (isByte) {
            return {_mm_min_epu8(raw, other.raw)};
        } else {
            return *this - minusSaturated(other); // SSE2 knows the signed minimum of 16-bit lanes only
        }
    }
    Vector max(Vector other) const {
        if constexpr (isByte) {
            return {_mm_max_epu8(raw, other.raw)};
        } else {
            return other + minusSaturated(other);
        }
    }

    /// All ones in the lanes that are equal.
    Vector equal(Vector other) const {
        if constexpr (isByte) {
            return {_mm_cmpeq_epi8(raw, other.raw)};
        } else {
            return {_mm_cmpeq_epi16(raw, other.raw)};
        }
    }

    /// All ones in the lanes that are at most the other's, as unsigned numbers.
    Vector atMost(Vector other) const { return minusSaturated(other).equal(zero()); }

    /// All ones in the lanes that are greater than the other's, as signed numbers.
    Vector greaterSigned(Vector other) const {
        if constexpr (isByte) {
            return {_mm_cmpgt_epi8(raw, other.raw)};
        } else {
            return {_mm_cmpgt_epi16(raw, other.raw)};
        }
    }

    /// The lanes of a comparison's result.
    LaneMask<E> lanes() const { return {static_cast<uint32_t>(_mm_movemask_epi8(raw))}; }
};

/// The range first..last of element values, prepared for testing many vectors.
template <class E>
struct VectorRange {
    Vector<E> first;
    Vector<E> span;

    VectorRange(E from, E to)
        : first(Vector<E>::splat(from)), span(Vector<E>::splat(static_cast<E>(to - from))) {}

    /// All ones in the lanes whose value lies in the range.
    Vector<E> contains(Vector<E> values) const { return (values - first).atMost(span); }
};

/// The same for a range that is not all values: moved to the lowest signed numbers it takes one comparison.
template <class E>
struct PartialRange {
    Vector<E> shift;
    Vector<E> behind;

    PartialRange(E from, E to)
        : shift(Vector<E>::splat(static_cast<E>(lowest - from))),
          behind(Vector<E>::splat(static_cast<E>(lowest + (to - from) + 1))) {}

    Vector<E> contains(Vector<E> values) const { return behind.greaterSigned(values + shift); }

private:
    static constexpr int lowest = 1 << (8 * sizeof(E) - 1);
};

} // namespace tav
