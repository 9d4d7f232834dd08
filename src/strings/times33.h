// The hash h = (h * 33) ^ e of long byte texts, with its chain of dependent steps broken.
//
// A byte changes the low byte of h * 33 alone: what it adds there is a difference that depends on the low
// byte's value and on nothing above. So the low bytes form a chain of their own, and given that chain the
// hash is linear: a stretch of n bytes takes h to h * 33^n plus a sum that depends on the low byte before
// the stretch only. Eight neighbouring stretches are therefore walked side by side as soon as the low byte
// before each is known.
//
// That byte is found in two parts. h * 33 is h + (h << 5): it leaves the five lowest bits as they are and
// adds bit 0 to bit 5 without a carry, so these six bits are exclusive ors of bytes seen so far. Bits 6 and 7
// take carries. For them a first walk starts with both as zeros, and its outcome is put right afterwards:
// were bit 7 one, it would be inverted at every step and change nothing else; were bit 6 one, it would be
// inverted likewise, and bit 7 also at each step where the carry out of bit 6 is not the same for either
// value. The number of these steps is odd or even, which is read off the values at the ends.
#pragma once

#include <cstdint>
#include <cstring>
#include <emmintrin.h>

namespace tav::times33 {

inline constexpr int32_t stretches = 8;
inline constexpr int32_t granule = 8; ///< a stretch is a multiple of so many bytes

/// The states of eight stretches.
struct States {
    uint32_t of[stretches];
};

/// The next four bytes of four stretches, a 32-bit lane each.
inline __m128i fourOfFour(const uint8_t* src, int64_t stretch) {
    const auto four = [=](int64_t k) {
        int32_t bytes;
        std::memcpy(&bytes, src + k * stretch, sizeof bytes);
        return _mm_cvtsi32_si128(bytes);
    };
    return _mm_unpacklo_epi64(_mm_unpacklo_epi32(four(0), four(1)), _mm_unpacklo_epi32(four(2), four(3)));
}

/// The states behind the stretches, given those before.
inline States walk(const uint8_t* src, int64_t stretch, const States& before) {
    const __m128i lowByte = _mm_set1_epi32(0xFF);
    const auto step = [=](__m128i h, __m128i bytes) {
        const __m128i times33 = _mm_add_epi32(h, _mm_slli_epi32(h, 5));
        return _mm_xor_si128(times33, _mm_and_si128(bytes, lowByte));
    };
    __m128i a = _mm_loadu_si128(reinterpret_cast<const __m128i*>(before.of));
    __m128i b = _mm_loadu_si128(reinterpret_cast<const __m128i*>(before.of + 4));
    for (int64_t i = 0; i < stretch; i += 4) {
        __m128i bytesOfA = fourOfFour(src + i, stretch);
        __m128i bytesOfB = fourOfFour(src + i + 4 * stretch, stretch);
        for (int k = 0; k < 4; ++k) {
            a = step(a, bytesOfA);
            b = step(b, bytesOfB);
            bytesOfA = _mm_srli_epi32(bytesOfA, 8);
            bytesOfB = _mm_srli_epi32(bytesOfB, 8);
        }
    }
    States behind;
    _mm_storeu_si128(reinterpret_cast<__m128i*>(behind.of), a);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(behind.of + 4), b);
    return behind;
}

/// The exclusive or of the bytes at even indices, and of those at odd ones.
struct Parities {
    uint32_t even;
    uint32_t odd;
};

inline Parities paritiesOf(const uint8_t* src, int64_t count) {
    uint64_t all = 0;
    for (int64_t i = 0; i < count; i += 8) {
        uint64_t bytes;
        std::memcpy(&bytes, src + i, sizeof bytes);
        all ^= bytes;
    }
    all ^= all >> 32;
    all ^= all >> 16;
    return {static_cast<uint32_t>(all & 0xFF), static_cast<uint32_t>(all >> 8 & 0xFF)};
}

/// The low byte of the hash before each stretch, given the one before the first.
inline States lowBytes(const uint8_t* src, int64_t stretch, uint32_t first) {
    constexpr uint32_t linear = 0x3F, bit6 = 0x40;
    uint32_t sums[stretches]; // exclusive ors of all bytes
    States assumed;           // bits 6 and 7 are zeros but before the first stretch
    assumed.of[0] = first;
    for (int s = 0; s < stretches; ++s) {
        const Parities bytes = paritiesOf(src + s * stretch, stretch);
        sums[s] = bytes.even ^ bytes.odd;
        // Over an even number of steps bit 5 has bit 0 of every other byte added.
        if (s + 1 < stretches) assumed.of[s + 1] = (assumed.of[s] ^ sums[s] ^ (bytes.even & 1) << 5) & linear;
    }
    const States behind = walk(src, stretch, assumed);
    States exact;
    exact.of[0] = first;
    for (int s = 0; s + 1 < stretches; ++s) {
        const uint32_t amiss = exact.of[s] ^ assumed.of[s];
        const uint32_t carriesThatDiffer = behind.of[s] ^ assumed.of[s] ^ sums[s];
        exact.of[s + 1] = (behind.of[s] ^ amiss ^ (amiss & carriesThatDiffer & bit6) << 1) & 0xFF;
    }
    return exact;
}

inline uint32_t powerOf33(int64_t exponent) {
    uint32_t power = 1;
    for (uint32_t square = 33; exponent != 0; exponent >>= 1, square *= square) {
        if ((exponent & 1) != 0) power *= square;
    }
    return power;
}

/// Continues the hash over eight stretches of bytes.
[[gnu::noinline]] inline uint32_t overStretches(const uint8_t* src, int64_t stretch, uint32_t h) {
    const States before = lowBytes(src, stretch, h & 0xFF);
    const States behind = walk(src, stretch, before);
    const uint32_t factor = powerOf33(stretch);
    for (int s = 0; s < stretches; ++s) {
        h = (h - before.of[s]) * factor + behind.of[s];
    }
    return h;
}

} // namespace tav::times33
