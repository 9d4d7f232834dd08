// UTF-16 to UTF-8. convertPlainly is the definition, one character at a time. Beside it stand vector paths
// for ASCII, for any text without surrogates, and for runs of surrogate pairs. A path converts as many units
// as suit it; what no path knows, and the ends of both buffers, are left to the definition.
#include "unicode/convert.h"

#include "base/arguments.h"
#include "base/vector.h"
#include "unicode/patience.h"

#include <array>
#include <cstring>

namespace tav::unicode {

namespace {

using Units = Vector<uint16_t>;

/// A place in the source and the one in the destination that belongs to it: where work goes on, or both ends.
struct Position {
    const uint16_t* source;
    uint8_t* out;
};

bool has(Position at, Position end, std::ptrdiff_t units, std::ptrdiff_t bytes) {
    return end.source - at.source >= units && end.out - at.out >= bytes;
}

// ------------------------------------------------------------------------------------------- the definition

template <bool bigEndian>
uint32_t readUnit(const uint16_t* p) {
    return static_cast<uint16_t>(bigEndian ? *p << 8 | *p >> 8 : *p);
}

constexpr bool isSurrogate(uint32_t unit) {
    return (unit & 0xF800) == 0xD800;
}

constexpr bool isHighSurrogate(uint32_t unit) {
    return (unit & 0xFC00) == 0xD800;
}

constexpr bool isLowSurrogate(uint32_t unit) {
    return (unit & 0xFC00) == 0xDC00;
}

/// Stores the form of `value` (below 0x110000) and returns its length; 0, and nothing stored, when it has no
/// room.
int32_t encode(uint32_t value, uint8_t* out, std::ptrdiff_t room) {
    const auto continuation = [value](int shift) {
        return static_cast<uint8_t>(0x80 | (value >> shift & 0x3F));
    };
    if (value <= 0x7F) {
        if (room < 1) return 0;
        out[0] = static_cast<uint8_t>(value);
        return 1;
    }
    if (value <= 0x7FF) {
        if (room < 2) return 0;
        out[0] = static_cast<uint8_t>(0xC0 | value >> 6);
        out[1] = continuation(0);
        return 2;
    }
    if (value <= 0xFFFF) {
        if (room < 3) return 0;
        out[0] = static_cast<uint8_t>(0xE0 | value >> 12);
        out[1] = continuation(6);
        out[2] = continuation(0);
        return 3;
    }
    if (room < 4) return 0;
    out[0] = static_cast<uint8_t>(0xF0 | value >> 18);
    out[1] = continuation(12);
    out[2] = continuation(6);
    out[3] = continuation(0);
    return 4;
}

/// Converts characters until they fill `units` units or more, the source ends, or the next one does not fit.
/// A surrogate without partner is a character of its own.
template <bool bigEndian>
[[gnu::noinline]] Position convertPlainly(Position at, Position end, std::ptrdiff_t units) {
    const uint16_t* const stop = end.source - at.source > units ? at.source + units : end.source;
    while (at.source < stop) {
        uint32_t value = readUnit<bigEndian>(at.source);
        int consumed = 1;
        if (isHighSurrogate(value) && end.source - at.source > 1) {
            const uint32_t next = readUnit<bigEndian>(at.source + 1);
            if (isLowSurrogate(next)) {
                value = ((value & 0x3FF) << 10 | (next & 0x3FF)) + 0x10000;
                consumed = 2;
            }
        }
        const int32_t length = encode(value, at.out, end.out - at.out);
        if (length == 0) break;
        at.source += consumed;
        at.out += length;
    }
    return at;
}

// ----------------------------------------------------------------------------------------- the vector paths

// A path stores straight to the destination where both ends are far. What it stores too far, up to 26 bytes
// from where it began, is overwritten later: a unit becomes at least a byte, and at most three bytes of the
// capacity stay empty (before a pair).
constexpr std::ptrdiff_t farUnits = 32;
constexpr std::ptrdiff_t farBytes = 32;
static_assert(farUnits >= 26 && farBytes >= 26 + 3);

template <bool bigEndian>
Units loadUnits(const uint16_t* p) {
    const Units units = Units::load(p);
    if constexpr (bigEndian) {
        return {_mm_or_si128(_mm_slli_epi16(units.raw, 8), _mm_srli_epi16(units.raw, 8))};
    } else {
        return units;
    }
}

bool isAscii(Units block) {
    return (block & Units::splat(0xFF80)).equal(Units::zero()).lanes().all();
}

__m128i bitsOf(__m128i lanes, int mask) {
    return _mm_and_si128(lanes, _mm_set1_epi32(mask));
}

void store8(uint8_t* to, __m128i low) {
    _mm_storel_epi64(reinterpret_cast<__m128i*>(to), low);
}

__m128i highToLow(__m128i vector) {
    return _mm_unpackhi_epi64(vector, vector);
}

/// Converts ASCII, 32 units and then 8 at a time, as far as it goes.
template <bool bigEndian>
Position convertAsciiRun(Position at, Position end) {
    const auto load = [&at](std::ptrdiff_t i) { return loadUnits<bigEndian>(at.source + 8 * i); };
    while (has(at, end, 32, 32)) {
        const Units blocks[] = {load(0), load(1), load(2), load(3)};
        if (!isAscii(blocks[0] | blocks[1] | blocks[2] | blocks[3])) break;
        Vector<uint8_t>{_mm_packus_epi16(blocks[0].raw, blocks[1].raw)}.store(at.out);
        Vector<uint8_t>{_mm_packus_epi16(blocks[2].raw, blocks[3].raw)}.store(at.out + 16);
        at = {at.source + 32, at.out + 32};
    }
    while (has(at, end, 8, 8)) {
        const Units block = load(0);
        if (!isAscii(block)) break;
        store8(at.out, _mm_packus_epi16(block.raw, block.raw));
        at = {at.source + 8, at.out + 8};
    }
    return at;
}

/// Converts what is left of the source when it is shorter than a block and ASCII, by a block that reaches
/// back into what was ASCII before it; else leaves it.
template <bool bigEndian>
Position convertAsciiTail(Position at, Position start, Position end) {
    const std::ptrdiff_t left = end.source - at.source;
    if (left == 0 || left > 8 || end.source - start.source < 8 || end.out - at.out < left) return at;
    const Units block = loadUnits<bigEndian>(end.source - 8);
    if (!isAscii(block)) return at;
    store8(at.out + left - 8,
           _mm_packus_epi16(block.raw, block.raw)); // a byte for each unit: the places agree
    return {end.source, at.out + left};
}

/// How to close the gaps in four two-byte forms of which some are one byte and a gap: bytes that go left by
/// an odd distance first go by one, then those with two in theirs by two.
struct Packing {
    uint64_t moves[2];
    int64_t size;
};

consteval Packing makePacking(uint32_t ascii) {
    Packing made = {};
    for (uint32_t place = 0; place < 8; ++place) {
        if (place % 2 == 1 && (ascii >> place / 2 & 1) != 0) continue;
        const uint32_t distance = place - static_cast<uint32_t>(made.size++);
        uint32_t target = place;
        for (uint32_t step = 0; step < 2; ++step) {
            if ((distance >> step & 1) == 0) continue;
            target -= 1u << step;
            made.moves[step] |= uint64_t{0xFF} << (8 * target);
        }
    }
    return made;
}

consteval std::array<Packing, 16> makePackings() {
    std::array<Packing, 16> made = {};
    for (uint32_t ascii = 0; ascii < 16; ++ascii)
        made[ascii] = makePacking(ascii);
    return made;
}

constexpr std::array<Packing, 16> packings = makePackings();

/// Stores the forms of eight units below 0x800; returns their size. Touches 16 bytes.
std::ptrdiff_t storeUpToTwoBytes(uint8_t* to, Units block) {
    const Units ascii = block.atMost(Units::splat(0x7F));
    const __m128i leads = _mm_srli_epi16(block.raw, 6);
    const __m128i continuations = _mm_slli_epi16((block & Units::splat(0x3F)).raw, 8);
    const Units forms = {_mm_or_si128(_mm_or_si128(leads, continuations), Units::splat(0x80C0).raw)};
    __m128i bytes = ((block & ascii) | forms.without(ascii)).raw;

    const auto asciiLanes =
        static_cast<uint32_t>(_mm_movemask_epi8(_mm_packs_epi16(ascii.raw, _mm_setzero_si128())));
    const Packing& first = packings[asciiLanes & 15];
    const Packing& second = packings[asciiLanes >> 4];
    const auto move = [&](__m128i shifted, int step) {
        const __m128i mask =
            _mm_set_epi64x(static_cast<int64_t>(second.moves[step]), static_cast<int64_t>(first.moves[step]));
        bytes = _mm_xor_si128(bytes, _mm_and_si128(_mm_xor_si128(bytes, shifted), mask));
    };
    move(_mm_srli_epi64(bytes, 8), 0);
    move(_mm_srli_epi64(bytes, 16), 1);
    store8(to, bytes);
    store8(to + first.size, highToLow(bytes));
    return first.size + second.size;
}

__m128i lowHalf(Units block) {
    return _mm_unpacklo_epi16(block.raw, _mm_setzero_si128());
}

__m128i highHalf(Units block) {
    return _mm_unpackhi_epi16(block.raw, _mm_setzero_si128());
}

/// The three-byte forms of four units in 32-bit lanes, first byte lowest, the fourth byte zero.
__m128i encodeThreeBytes(__m128i values) {
    const __m128i first = _mm_srli_epi32(values, 12);
    const __m128i second = _mm_slli_epi32(bitsOf(values, 0xFC0), 2);
    const __m128i third = _mm_slli_epi32(bitsOf(values, 0x3F), 16);
    return _mm_or_si128(_mm_or_si128(first, second), _mm_or_si128(third, _mm_set1_epi32(0x8080E0)));
}

/// Stores four forms of three bytes each from 32-bit lanes; touches 14 bytes.
void storeThreeBytes(uint8_t* to, __m128i forms) {
    const __m128i even = _mm_and_si128(forms, _mm_set1_epi64x(0xFFFFFF));
    const __m128i odd = _mm_srli_epi64(_mm_andnot_si128(_mm_set1_epi64x(0xFFFFFFFF), forms), 8);
    const __m128i packed = _mm_or_si128(even, odd);
    store8(to, packed);
    store8(to + 6, highToLow(packed));
}

__m128i encodeTwoBytes(__m128i values) {
    const __m128i first = _mm_srli_epi32(values, 6);
    const __m128i second = _mm_slli_epi32(bitsOf(values, 0x3F), 8);
    return _mm_or_si128(_mm_or_si128(first, second), _mm_set1_epi32(0x80C0));
}

__m128i select(__m128i condition, __m128i yes, __m128i no) {
    return _mm_or_si128(_mm_and_si128(condition, yes), _mm_andnot_si128(condition, no));
}

/// The form of each of four values below 0x10000, whatever its length.
__m128i encodeUpToThreeBytes(__m128i values) {
    const __m128i isOneByte = _mm_cmplt_epi32(values, _mm_set1_epi32(0x80));
    const __m128i isTwoBytes = _mm_cmplt_epi32(values, _mm_set1_epi32(0x800));
    return select(isOneByte, values, select(isTwoBytes, encodeTwoBytes(values), encodeThreeBytes(values)));
}

/// Stores the forms of the first `count` of eight units, none of them a surrogate: four bytes for each, a
/// form apart. Returns their size; touches a byte more.
std::ptrdiff_t storeUpToThreeBytes(uint8_t* const to, Units block, int32_t count) {
    alignas(16) uint32_t forms[8];
    alignas(16) uint16_t lengths[8];
    _mm_store_si128(reinterpret_cast<__m128i*>(forms), encodeUpToThreeBytes(lowHalf(block)));
    _mm_store_si128(reinterpret_cast<__m128i*>(forms + 4), encodeUpToThreeBytes(highHalf(block)));
    const Units shorter = block.atMost(Units::splat(0x7F)) + block.atMost(Units::splat(0x7FF)); // 0 to -2
    (Units::splat(3) + shorter).store(lengths);
    uint8_t* out = to;
    for (int32_t i = 0; i < count; ++i) {
        std::memcpy(out, &forms[i], 4);
        out += lengths[i];
    }
    return out - to;
}

/// Converts units of any length until surrogates turn up, or two blocks of ASCII in succession.
template <bool bigEndian>
Position convertBelowPairs(Position at, Position end) {
    int asciiBlocks = 0;
    while (has(at, end, farUnits, farBytes) && asciiBlocks < 2) {
        const Units block = loadUnits<bigEndian>(at.source);
        const auto surrogates = (block & Units::splat(0xF800)).equal(Units::splat(0xD800)).lanes();
        if (surrogates.any()) {
            at.out += storeUpToThreeBytes(at.out, block, surrogates.first());
            at.source += surrogates.first();
            break;
        }
        const auto shorter = block.atMost(Units::splat(0x7FF)).lanes();
        if (shorter.all()) {
            asciiBlocks = (asciiBlocks + 1) * isAscii(block); // no branch: it could not be predicted
            at.out += storeUpToTwoBytes(at.out, block);
        } else if (shorter.any()) {
            at.out += storeUpToThreeBytes(at.out, block, 8);
        } else {
            storeThreeBytes(at.out, encodeThreeBytes(lowHalf(block)));
            storeThreeBytes(at.out + 12, encodeThreeBytes(highHalf(block)));
            at.out += 24;
        }
        at.source += 8;
    }
    return at;
}

/// The forms of four pairs, the high surrogate in the low half of each lane.
__m128i encodePairs(__m128i lanes) {
    const __m128i high = _mm_slli_epi32(bitsOf(lanes, 0x3FF), 10);
    const __m128i low = bitsOf(_mm_srli_epi32(lanes, 16), 0x3FF);
    const __m128i values = _mm_add_epi32(_mm_or_si128(high, low), _mm_set1_epi32(0x10000));
    const __m128i first = _mm_srli_epi32(values, 18);
    const __m128i second = _mm_srli_epi32(bitsOf(values, 0x3F000), 4);
    const __m128i third = _mm_slli_epi32(bitsOf(values, 0xFC0), 10);
    const __m128i fourth = _mm_slli_epi32(bitsOf(values, 0x3F), 24);
    return _mm_or_si128(_mm_or_si128(_mm_or_si128(first, second), _mm_or_si128(third, fourth)),
                        _mm_set1_epi32(static_cast<int>(0x808080F0)));
}

/// Converts pairs, four at a time, as far as they go.
template <bool bigEndian>
Position convertPairRun(Position at, Position end) {
    while (has(at, end, farUnits, farBytes)) {
        const __m128i lanes = loadUnits<bigEndian>(at.source).raw;
        const __m128i valid = _mm_cmpeq_epi32(bitsOf(lanes, static_cast<int>(0xFC00FC00)),
                                              _mm_set1_epi32(static_cast<int>(0xDC00D800)));
        Vector<uint8_t>{encodePairs(lanes)}.store(at.out);
        const auto lanesValid = static_cast<uint32_t>(_mm_movemask_epi8(valid));
        if (lanesValid != 0xFFFF) {
            const std::ptrdiff_t count = std::countr_one(lanesValid) / 4;
            at = {at.source + 2 * count, at.out + 4 * count};
            break;
        }
        at = {at.source + 8, at.out + 16};
    }
    return at;
}

// ------------------------------------------------------------------------------------------------ the driver

/// Takes the paths in turn, each from where the one before it stopped.
template <bool bigEndian>
Position convertRun(Position at, Position end) {
    at = convertAsciiRun<bigEndian>(at, end);
    if (has(at, end, farUnits, farBytes) && !isSurrogate(readUnit<bigEndian>(at.source)))
        at = convertBelowPairs<bigEndian>(at, end);
    if (has(at, end, farUnits, farBytes) && isSurrogate(readUnit<bigEndian>(at.source)))
        at = convertPairRun<bigEndian>(at, end);
    return at;
}

constexpr std::ptrdiff_t worthwhile = 16; // units that the paths must convert to be taken again at once

template <bool bigEndian>
Position convertAll(const Position start, const Position end) {
    Position at = start;
    Patience patience;
    while (has(at, end, farUnits, farBytes)) {
        const uint16_t* const before = at.source;
        at = convertRun<bigEndian>(at, end);
        if (at.source - before >= worthwhile) {
            patience.afterSuccess(at.source - before);
        } else {
            at = convertPlainly<bigEndian>(at, end, patience.afterFailure());
        }
    }
    at = convertAsciiRun<bigEndian>(at, end);
    at = convertAsciiTail<bigEndian>(at, start, end);
    return convertPlainly<bigEndian>(at, end, end.source - at.source);
}

} // namespace

tavStatus convertUtf16To8(const uint16_t* src, uint32_t* srcLen, uint8_t* dst, uint32_t* dstLen,
                          int32_t bigEndian) {
    if (const auto bad = Arguments::pointers(src, srcLen, dst, dstLen); bad.failed()) return bad.status;
    const Position start = {src, dst};
    const Position end = {src + *srcLen, dst + *dstLen};
    const Position reached = bigEndian != 0 ? convertAll<true>(start, end) : convertAll<false>(start, end);
    *srcLen = static_cast<uint32_t>(reached.source - src);
    *dstLen = static_cast<uint32_t>(reached.out - dst);
    return tavStsNoError;
}

} // namespace tav::unicode
