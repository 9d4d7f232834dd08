// UTF-16 to UTF-8. convertCharacter is the definition, one character at a time. Beside it stand vector paths
// for ASCII, for any text without surrogates, for long runs of three-byte characters and for runs of pairs;
// everything else, and the ends of both buffers, is left to the definition.
//
// A path may store a few bytes that later steps overwrite, but only where the rest of the source and of the
// capacity is sure to fill them: nothing stays stored behind the reported count.
#include "unicode/convert.h"

#include "base/arguments.h"
#include "base/vector.h"
#include "unicode/patience.h"
#include "unicode/utf8.h"

#include <cstring>

namespace tav::unicode {

namespace {

using Units = Vector<uint16_t>;

struct Position {
    const uint16_t* source;
    const uint16_t* const sourceEnd;
    uint8_t* out;
    uint8_t* const outEnd;

    bool has(std::ptrdiff_t units, std::ptrdiff_t bytes) const {
        return sourceEnd - source >= units && outEnd - out >= bytes;
    }
    void advance(std::ptrdiff_t units, std::ptrdiff_t bytes) {
        source += units;
        out += bytes;
    }
};

template <bool bigEndian>
uint32_t readUnit(const uint16_t* p) {
    return static_cast<uint16_t>(bigEndian ? *p << 8 | *p >> 8 : *p);
}

constexpr bool isHighSurrogate(uint32_t unit) {
    return (unit & 0xFC00) == 0xD800;
}

constexpr bool isLowSurrogate(uint32_t unit) {
    return (unit & 0xFC00) == 0xDC00;
}

/// Stores the shortest form of `value` (below 0x110000), which has `length` bytes.
void encode(uint32_t value, int32_t length, uint8_t* out) {
    constexpr uint8_t marks[] = {0x00, 0x00, 0xC0, 0xE0, 0xF0};
    for (int32_t i = length - 1; i > 0; --i) {
        out[i] = static_cast<uint8_t>(0x80 | (value & 0x3F));
        value >>= 6;
    }
    out[0] = static_cast<uint8_t>(value | marks[length]);
}

/// Converts one character, an unpaired surrogate being one; false when it does not fit, and then nothing of
/// it is stored.
template <bool bigEndian>
bool convertCharacter(Position& at) {
    uint32_t value = readUnit<bigEndian>(at.source);
    int units = 1;
    if (isHighSurrogate(value) && at.sourceEnd - at.source > 1) {
        const uint32_t next = readUnit<bigEndian>(at.source + 1);
        if (isLowSurrogate(next)) {
            value = ((value & 0x3FF) << 10 | (next & 0x3FF)) + 0x10000;
            units = 2;
        }
    }
    const int32_t length = utf8Length(value);
    if (at.outEnd - at.out < length) return false;
    encode(value, length, at.out);
    at.advance(units, length);
    return true;
}

template <bool bigEndian>
Units loadUnits(const uint16_t* p) {
    const Units units = Units::load(p);
    if constexpr (!bigEndian) return units;
    return {_mm_or_si128(_mm_slli_epi16(units.raw, 8), _mm_srli_epi16(units.raw, 8))};
}

constexpr std::ptrdiff_t blockUnits = 11; // eight, and three whose forms fill what is stored too far
constexpr std::ptrdiff_t blockBytes = 32; // eight forms of three bytes, and room for the next ones

void convertAscii(Position& at, Units block) {
    _mm_storel_epi64(reinterpret_cast<__m128i*>(at.out), _mm_packus_epi16(block.raw, block.raw));
    at.advance(8, 8);
}

/// The three-byte forms of four units in 32-bit lanes, first byte lowest, the fourth byte zero.
__m128i encodeThreeBytes(__m128i values) {
    const __m128i first = _mm_srli_epi32(values, 12);
    const __m128i second = _mm_slli_epi32(_mm_and_si128(values, _mm_set1_epi32(0xFC0)), 2);
    const __m128i third = _mm_slli_epi32(_mm_and_si128(values, _mm_set1_epi32(0x3F)), 16);
    return _mm_or_si128(_mm_or_si128(first, second), _mm_or_si128(third, _mm_set1_epi32(0x8080E0)));
}

__m128i encodeTwoBytes(__m128i values) {
    const __m128i first = _mm_srli_epi32(values, 6);
    const __m128i second = _mm_slli_epi32(_mm_and_si128(values, _mm_set1_epi32(0x3F)), 8);
    return _mm_or_si128(_mm_or_si128(first, second), _mm_set1_epi32(0x80C0));
}

__m128i select(__m128i condition, __m128i yes, __m128i no) {
    return _mm_or_si128(_mm_and_si128(condition, yes), _mm_andnot_si128(condition, no));
}

/// The form of each of four values below 0x10000, whatever its length.
__m128i encodeUpToThreeBytes(__m128i values) {
    const __m128i isAscii = _mm_cmplt_epi32(values, _mm_set1_epi32(0x80));
    const __m128i isTwoBytes = _mm_cmplt_epi32(values, _mm_set1_epi32(0x800));
    return select(isAscii, values, select(isTwoBytes, encodeTwoBytes(values), encodeThreeBytes(values)));
}

__m128i lowHalf(Units block) {
    return _mm_unpacklo_epi16(block.raw, _mm_setzero_si128());
}

__m128i highHalf(Units block) {
    return _mm_unpackhi_epi16(block.raw, _mm_setzero_si128());
}

/// Converts eight units of any length but surrogates: stores four bytes for each, and advances by its length.
void convertUpToThreeBytes(Position& at, Units block) {
    alignas(16) uint32_t forms[8];
    alignas(16) uint16_t lengths[8];
    _mm_store_si128(reinterpret_cast<__m128i*>(forms), encodeUpToThreeBytes(lowHalf(block)));
    _mm_store_si128(reinterpret_cast<__m128i*>(forms + 4), encodeUpToThreeBytes(highHalf(block)));
    const Units shorter = block.atMost(Units::splat(0x7F)) + block.atMost(Units::splat(0x7FF)); // 0 to -2
    (Units::splat(3) + shorter).store(lengths);
    uint8_t* out = at.out;
    for (int i = 0; i < 8; ++i) {
        std::memcpy(out, &forms[i], 4);
        out += lengths[i];
    }
    at.source += 8;
    at.out = out;
}

/// Stores four forms of three bytes each, from 32-bit lanes; touches two bytes behind them.
void storeThreeBytes(uint8_t* out, __m128i forms) {
    const __m128i even = _mm_and_si128(forms, _mm_set1_epi64x(0xFFFFFF));
    const __m128i odd = _mm_srli_epi64(_mm_andnot_si128(_mm_set1_epi64x(0xFFFFFFFF), forms), 8);
    const __m128i packed = _mm_or_si128(even, odd);
    _mm_storel_epi64(reinterpret_cast<__m128i*>(out), packed);
    _mm_storel_epi64(reinterpret_cast<__m128i*>(out + 6), _mm_unpackhi_epi64(packed, packed));
}

void convertThreeBytes(Position& at, Units block) {
    storeThreeBytes(at.out, encodeThreeBytes(lowHalf(block)));
    storeThreeBytes(at.out + 12, encodeThreeBytes(highHalf(block)));
    at.advance(8, 24);
}

/// Converts four pairs; false when the block is not that.
bool convertPairs(Position& at, Units block) {
    const __m128i lanes = block.raw; // the high surrogate in the low half
    const __m128i form = _mm_cmpeq_epi32(_mm_and_si128(lanes, _mm_set1_epi32(static_cast<int>(0xFC00FC00))),
                                         _mm_set1_epi32(static_cast<int>(0xDC00D800)));
    if (_mm_movemask_epi8(form) != 0xFFFF) return false;
    const __m128i high = _mm_slli_epi32(_mm_and_si128(lanes, _mm_set1_epi32(0x3FF)), 10);
    const __m128i low = _mm_and_si128(_mm_srli_epi32(lanes, 16), _mm_set1_epi32(0x3FF));
    const __m128i values = _mm_add_epi32(_mm_or_si128(high, low), _mm_set1_epi32(0x10000));
    const __m128i first = _mm_srli_epi32(values, 18);
    const __m128i second = _mm_srli_epi32(_mm_and_si128(values, _mm_set1_epi32(0x3F000)), 4);
    const __m128i third = _mm_slli_epi32(_mm_and_si128(values, _mm_set1_epi32(0xFC0)), 10);
    const __m128i fourth = _mm_slli_epi32(values, 24);
    const __m128i bits = _mm_or_si128(_mm_or_si128(first, second),
                                      _mm_or_si128(third, _mm_and_si128(fourth, _mm_set1_epi32(0x3F000000))));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(at.out),
                     _mm_or_si128(bits, _mm_set1_epi32(static_cast<int>(0x808080F0))));
    at.advance(8, 16);
    return true;
}

/// Takes the vector path that suits the next eight units; false when there is none.
template <bool bigEndian>
bool convertBlock(Position& at) {
    const Units block = loadUnits<bigEndian>(at.source);
    if (block.atMost(Units::splat(0x7F)).lanes().all()) {
        convertAscii(at, block);
        return true;
    }
    if (VectorRange<uint16_t>(0xD800, 0xDFFF).contains(block).lanes().any()) return convertPairs(at, block);
    if (block.atMost(Units::splat(0x7FF)).lanes().any()) {
        convertUpToThreeBytes(at, block);
    } else {
        convertThreeBytes(at, block);
    }
    return true;
}

template <bool bigEndian>
void convertAll(Position& at) {
    Patience patience;
    while (at.has(blockUnits, blockBytes)) {
        if (convertBlock<bigEndian>(at)) {
            patience.afterSuccess();
            continue;
        }
        for (int left = patience.afterFailure(); left > 0 && at.source != at.sourceEnd; --left)
            if (!convertCharacter<bigEndian>(at)) return;
    }
    while (at.source != at.sourceEnd && convertCharacter<bigEndian>(at)) {
    }
}

} // namespace

tavStatus convertUtf16To8(const uint16_t* src, uint32_t* srcLen, uint8_t* dst, uint32_t* dstLen,
                          int32_t bigEndian) {
    if (const auto bad = Arguments::pointers(src, srcLen, dst, dstLen); bad.failed()) return bad.status;
    Position at = {src, src + *srcLen, dst, dst + *dstLen};
    bigEndian != 0 ? convertAll<true>(at) : convertAll<false>(at);
    *srcLen = static_cast<uint32_t>(at.source - src);
    *dstLen = static_cast<uint32_t>(at.out - dst);
    return tavStsNoError;
}

} // namespace tav::unicode
