// UTF-8 to UTF-16. convertCharacter is the definition, one character at a time. Beside it stand vector paths
// for text of one to three bytes a character, for runs of three-byte and of four-byte characters; each takes
// only well-formed text and leaves everything else, and the ends of both buffers, to the definition.
//
// A path may store units that later steps overwrite, but only where the rest of the source is sure to fill
// them: three bytes or fewer give a unit, and the last unit of the capacity may stay empty before a pair.
#include "unicode/convert.h"

#include "base/arguments.h"
#include "base/vector.h"
#include "unicode/patience.h"
#include "unicode/utf8.h"

namespace tav::unicode {

namespace {

using Bytes = Vector<uint8_t>;
using Units = Vector<uint16_t>;

struct Position {
    const uint8_t* source;
    const uint8_t* const sourceEnd;
    uint16_t* out;
    uint16_t* const outEnd;

    bool has(std::ptrdiff_t bytes, std::ptrdiff_t units) const {
        return sourceEnd - source >= bytes && outEnd - out >= units;
    }
    void advance(std::ptrdiff_t bytes, std::ptrdiff_t units) {
        source += bytes;
        out += units;
    }
};

template <bool bigEndian>
uint16_t inOrder(uint32_t unit) {
    return static_cast<uint16_t>(bigEndian ? unit << 8 | unit >> 8 : unit);
}

/// Converts one character; false when it does not fit.
template <bool bigEndian>
bool convertCharacter(Position& at) {
    if (at.out == at.outEnd) return false;
    const Utf8Sequence sequence = decodeUtf8(at.source, at.sourceEnd);
    if (sequence.value <= 0xFFFF) {
        *at.out = inOrder<bigEndian>(sequence.value);
        at.advance(sequence.length, 1);
        return true;
    }
    if (at.outEnd - at.out < 2) return false;
    const uint32_t value = sequence.value - 0x10000;
    const auto high = static_cast<uint16_t>(0xD800 | (value >> 10 & 0x3FF)); // values above U+10FFFF wrap
    const auto low = static_cast<uint16_t>(0xDC00 | (value & 0x3FF));
    at.out[0] = bigEndian ? low : high; // deliberate: a big-endian pair changes places and keeps its bytes
    at.out[1] = bigEndian ? high : low;
    at.advance(sequence.length, 2);
    return true;
}

template <bool bigEndian>
Units inOrder(Units units) {
    if constexpr (!bigEndian) return units;
    return {_mm_or_si128(_mm_slli_epi16(units.raw, 8), _mm_srli_epi16(units.raw, 8))};
}

Units lowHalf(Bytes bytes) {
    return {_mm_unpacklo_epi8(bytes.raw, _mm_setzero_si128())};
}

Units highHalf(Bytes bytes) {
    return {_mm_unpackhi_epi8(bytes.raw, _mm_setzero_si128())};
}

constexpr std::ptrdiff_t blockBytes = 16;
constexpr std::ptrdiff_t blockUnits = 17; // and one that a pair may leave empty

template <bool bigEndian>
void convertAscii(Position& at, Bytes block) {
    inOrder<bigEndian>(lowHalf(block)).store(at.out);
    inOrder<bigEndian>(highHalf(block)).store(at.out + 8);
    at.advance(16, 16);
}

/// Bits of the sixteen bytes of a block.
struct ByteClasses {
    uint32_t continuations, leads2, leads3;
    uint32_t ends; // last bytes of characters, when the block is well formed
};

/// Converts a block of characters of one, two and three bytes: forms, at each byte, the unit that would end
/// there, then stores all of them in order and keeps those that do. False when something else is in the
/// block. A character that the block cuts off is left; it overwrites the unit that was stored last.
template <bool bigEndian>
bool convertUpToThreeBytes(Position& at, Bytes block) {
    const auto splat = [](int value) { return Bytes::splat(static_cast<uint8_t>(value)); };
    const Bytes continuation = {_mm_cmplt_epi8(block.raw, _mm_set1_epi8(-64))}; // 0x80 to 0xBF
    const Bytes before = {_mm_slli_si128(block.raw, 1)};                        // the byte before each
    const Bytes before2 = {_mm_slli_si128(block.raw, 2)};
    const Bytes third = continuation & Bytes{_mm_slli_si128(continuation.raw, 1)}; // behind a continuation

    const uint32_t continuations = continuation.lanes().bits;
    const uint32_t leads3 = (block & splat(0xF0)).equal(splat(0xE0)).lanes().bits;
    const uint32_t leads2 = VectorRange<uint8_t>(0xC2, 0xDF).contains(block).lanes().bits;
    const uint32_t nonAscii = block.lanes().bits;
    const uint32_t expected = ((leads2 | leads3) << 1 | leads3 << 2) & 0xFFFF;
    const Bytes overlong = before.equal(splat(0xE0)) & block.atMost(splat(0x9F));
    const uint32_t wrong = (continuations ^ expected) | (nonAscii ^ (continuations | leads2 | leads3)) |
                           (overlong & continuation).lanes().bits;
    if (wrong != 0) return false;

    const Bytes low = block.without(continuation & splat(0xC0));
    const Bytes middle = before & continuation & splat(0x3F).without(splat(0x20).without(third));
    const Bytes high = before2 & third & splat(0x0F);
    const auto join = [](Units l, Units m, Units h) {
        return Units{_mm_or_si128(l.raw, _mm_or_si128(_mm_slli_epi16(m.raw, 6), _mm_slli_epi16(h.raw, 12)))};
    };
    alignas(16) uint16_t units[16];
    inOrder<bigEndian>(join(lowHalf(low), lowHalf(middle), lowHalf(high))).store(units);
    inOrder<bigEndian>(join(highHalf(low), highHalf(middle), highHalf(high))).store(units + 8);

    const uint32_t ends = (nonAscii ^ 0xFFFF) | leads2 << 1 | leads3 << 2;
    uint16_t* out = at.out;
    for (int i = 0; i < 16; ++i) {
        *out = units[i];
        out += ends >> i & 1;
    }
    at.out = out;
    const uint32_t cutOff = leads2 >> 15 | leads3 >> 15 | (leads3 >> 14 & 1) << 1;
    at.source += 16 - cutOff;
    return true;
}

__m128i load4(const uint8_t* p) {
    int32_t value;
    __builtin_memcpy(&value, p, 4);
    return _mm_cvtsi32_si128(value);
}

/// Four three-byte characters as 32-bit lanes, the fourth byte of each being the next character's.
__m128i loadThreeByteLanes(const uint8_t* p) {
    return _mm_unpacklo_epi64(_mm_unpacklo_epi32(load4(p), load4(p + 3)),
                              _mm_unpacklo_epi32(load4(p + 6), load4(p + 9)));
}

struct Lanes {
    __m128i values;
    __m128i valid;
};

Lanes decodeThreeBytes(__m128i lanes) {
    const __m128i form =
        _mm_cmpeq_epi32(_mm_and_si128(lanes, _mm_set1_epi32(0x00C0C0F0)), _mm_set1_epi32(0x008080E0));
    const __m128i high = _mm_slli_epi32(_mm_and_si128(lanes, _mm_set1_epi32(0x0F)), 12);
    const __m128i middle = _mm_srli_epi32(_mm_and_si128(lanes, _mm_set1_epi32(0x3F00)), 2);
    const __m128i low = _mm_and_si128(_mm_srli_epi32(lanes, 16), _mm_set1_epi32(0x3F));
    const __m128i values = _mm_or_si128(high, _mm_or_si128(middle, low));
    return {values, _mm_and_si128(form, _mm_cmpgt_epi32(values, _mm_set1_epi32(0x7FF)))};
}

/// Units of eight 32-bit values below 0x10000.
Units narrow(__m128i first, __m128i second) {
    const auto signExtended = [](__m128i values) { return _mm_srai_epi32(_mm_slli_epi32(values, 16), 16); };
    return {_mm_packs_epi32(signExtended(first), signExtended(second))};
}

constexpr std::ptrdiff_t threeByteRun = 25; // eight characters, and one byte that a load of four takes along

template <bool bigEndian>
bool convertThreeByteRun(Position& at) {
    const Lanes first = decodeThreeBytes(loadThreeByteLanes(at.source));
    const Lanes second = decodeThreeBytes(loadThreeByteLanes(at.source + 12));
    if (_mm_movemask_epi8(_mm_and_si128(first.valid, second.valid)) != 0xFFFF) return false;
    inOrder<bigEndian>(narrow(first.values, second.values)).store(at.out);
    at.advance(24, 8);
    return true;
}

/// Converts four characters of four bytes; false when there is anything else.
template <bool bigEndian>
bool convertFourByteRun(Position& at, Bytes block) {
    const __m128i lanes = block.raw;
    const __m128i mask6 = _mm_set1_epi32(0x3F);
    const __m128i form = _mm_cmpeq_epi32(_mm_and_si128(lanes, _mm_set1_epi32(static_cast<int>(0xC0C0C0F8))),
                                         _mm_set1_epi32(static_cast<int>(0x808080F0)));
    const __m128i bits18 = _mm_slli_epi32(_mm_and_si128(lanes, _mm_set1_epi32(0x07)), 18);
    const __m128i bits12 = _mm_slli_epi32(_mm_and_si128(lanes, _mm_set1_epi32(0x3F00)), 4);
    const __m128i bits6 = _mm_srli_epi32(_mm_and_si128(lanes, _mm_set1_epi32(0x3F0000)), 10);
    const __m128i bits0 = _mm_and_si128(_mm_srli_epi32(lanes, 24), mask6);
    const __m128i values = _mm_sub_epi32(
        _mm_or_si128(_mm_or_si128(bits18, bits12), _mm_or_si128(bits6, bits0)), _mm_set1_epi32(0x10000));
    const __m128i valid = _mm_andnot_si128(_mm_srai_epi32(values, 31), form);
    if (_mm_movemask_epi8(valid) != 0xFFFF) return false;
    const __m128i mask10 = _mm_set1_epi32(0x3FF);
    const __m128i high =
        _mm_or_si128(_mm_and_si128(_mm_srli_epi32(values, 10), mask10), _mm_set1_epi32(0xD800));
    const __m128i low = _mm_or_si128(_mm_and_si128(values, mask10), _mm_set1_epi32(0xDC00));
    Units{bigEndian ? _mm_or_si128(low, _mm_slli_epi32(high, 16))
                    : _mm_or_si128(high, _mm_slli_epi32(low, 16))}
        .store(at.out);
    at.advance(16, 8);
    return true;
}

/// Tries the vector path that the block's bytes suggest.
template <bool bigEndian>
bool convertBlock(Position& at) {
    const Bytes block = Bytes::load(at.source);
    if (!block.lanes().any()) {
        convertAscii<bigEndian>(at, block);
        return true;
    }
    const uint8_t lead = *at.source;
    if (lead >= 0xF0) return convertFourByteRun<bigEndian>(at, block);
    if (lead >= 0xE0 && at.has(threeByteRun, 8) && convertThreeByteRun<bigEndian>(at)) return true;
    return convertUpToThreeBytes<bigEndian>(at, block);
}

template <bool bigEndian>
void convertAll(Position& at) {
    Patience patience;
    while (at.has(blockBytes, blockUnits)) {
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

tavStatus convertUtf8To16(const uint8_t* src, uint32_t* srcLen, uint16_t* dst, uint32_t* dstLen,
                          int32_t bigEndian) {
    if (const auto bad = Arguments::pointers(src, srcLen, dst, dstLen); bad.failed()) return bad.status;
    Position at = {src, src + *srcLen, dst, dst + *dstLen};
    bigEndian != 0 ? convertAll<true>(at) : convertAll<false>(at);
    *srcLen = static_cast<uint32_t>(at.source - src);
    *dstLen = static_cast<uint32_t>(at.out - dst);
    return tavStsNoError;
}

} // namespace tav::unicode
