// UTF-8 to UTF-16. convertPlainly is the definition, one character at a time. Beside it stand vector paths
// for ASCII, for any well-formed text of one to three bytes a character, and for runs of three-byte and of
// four-byte characters. A path converts the well-formed characters at the start of its bytes and tells how
// far that went; what it does not know, and the ends of both buffers, are left to the definition.
#include "unicode/convert.h"

#include "base/arguments.h"
#include "base/vector.h"
#include "unicode/patience.h"
#include "unicode/utf8.h"

#include <array>
#include <cstring>

namespace tav::unicode {

namespace {

using Bytes = Vector<uint8_t>;
using Units = Vector<uint16_t>;

/// A place in the source and the one in the destination that belongs to it: where work goes on, or both ends.
struct Position {
    const uint8_t* source;
    uint16_t* out;
};

bool has(Position at, Position end, std::ptrdiff_t bytes, std::ptrdiff_t units) {
    return end.source - at.source >= bytes && end.out - at.out >= units;
}

// ------------------------------------------------------------------------------------------- the definition

template <bool bigEndian>
uint16_t inOrder(uint32_t unit) {
    return static_cast<uint16_t>(bigEndian ? unit << 8 | unit >> 8 : unit);
}

/// Converts characters until they fill `bytes` bytes or more, the source ends, or the next one does not fit.
template <bool bigEndian>
[[gnu::noinline]] Position convertPlainly(Position at, Position end, std::ptrdiff_t bytes) {
    const uint8_t* const stop = end.source - at.source > bytes ? at.source + bytes : end.source;
    while (at.source < stop && at.out != end.out) {
        const Utf8Sequence sequence = decodeUtf8(at.source, end.source);
        if (sequence.value <= 0xFFFF) {
            *at.out++ = inOrder<bigEndian>(sequence.value);
        } else {
            if (end.out - at.out < 2) break;
            const uint32_t value = sequence.value - 0x10000;
            const auto high = static_cast<uint16_t>(0xD800 | (value >> 10 & 0x3FF)); // U+110000 wraps
            const auto low = static_cast<uint16_t>(0xDC00 | (value & 0x3FF));
            // Deliberate: of a big-endian pair the units change places and keep their bytes.
            *at.out++ = bigEndian ? low : high;
            *at.out++ = bigEndian ? high : low;
        }
        at.source += sequence.length;
    }
    return at;
}

// ----------------------------------------------------------------------------------------- the vector paths

// A path stores straight to the destination where both ends are far. What it stores too far, up to 16 units,
// is overwritten later: three bytes or fewer become a unit, and at most one unit of the capacity stays empty
// (before a pair).
constexpr std::ptrdiff_t farBytes = 48;
constexpr std::ptrdiff_t farUnits = 17;
static_assert(farBytes >= 48 && farUnits > 16);

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

template <bool bigEndian>
void storeAscii(Bytes block, uint16_t* to) {
    inOrder<bigEndian>(lowHalf(block)).store(to);
    inOrder<bigEndian>(highHalf(block)).store(to + 8);
}

/// How to move chosen lanes of eight to the front: lanes that go left by an odd distance first go by one,
/// then those with two in theirs by two, then by four. Each step takes a lane's right neighbour where its
/// mask says.
struct Compression {
    alignas(16) uint16_t moves[3][8];
    int32_t count;
};

constexpr Compression makeCompression(uint32_t keep) {
    Compression made = {};
    for (uint32_t lane = 0; lane < 8; ++lane) {
        if ((keep >> lane & 1) == 0) continue;
        const uint32_t distance = lane - static_cast<uint32_t>(made.count++);
        uint32_t place = lane;
        for (uint32_t step = 0; step < 3; ++step) {
            if ((distance >> step & 1) == 0) continue;
            place -= 1u << step;
            made.moves[step][place] = 0xFFFF;
        }
    }
    return made;
}

constexpr std::array<Compression, 256> makeCompressions() {
    std::array<Compression, 256> made = {};
    for (uint32_t keep = 0; keep < 256; ++keep)
        made[keep] = makeCompression(keep);
    return made;
}

constexpr std::array<Compression, 256> compressions = makeCompressions();

/// Stores the lanes that `keep` names, in order, and whatever behind them; returns their number.
int32_t storeCompressed(Units units, uint32_t keep, uint16_t* to) {
    const Compression& compression = compressions[keep];
    const auto move = [&](Units shifted, int step) {
        units = units ^ ((units ^ shifted) & Units::loadAligned(compression.moves[step]));
    };
    move({_mm_srli_si128(units.raw, 2)}, 0);
    move({_mm_srli_si128(units.raw, 4)}, 1);
    move({_mm_srli_si128(units.raw, 8)}, 2);
    units.store(to);
    return compression.count;
}

/// The sixteen bytes of a block, a bit for each.
struct Classes {
    uint32_t nonAscii, continuations, leads2, leads3;
};

Classes classesOf(Bytes block) {
    return {block.lanes().bits,
            static_cast<uint32_t>(_mm_movemask_epi8(_mm_cmplt_epi8(block.raw, _mm_set1_epi8(-64)))),
            VectorRange<uint8_t>(0xC2, 0xDF).contains(block).lanes().bits,
            (block & Bytes::splat(0xF0)).equal(Bytes::splat(0xE0)).lanes().bits};
}

/// What was converted of a block.
struct Progress {
    int32_t bytes;
    int32_t units;
    bool whole; // all of it but a character that it cuts off
};

/// Converts the characters of one, two and (when `three`) three bytes at the start of a block: forms, at each
/// byte, the unit of a character that ends there, and keeps those where one does. Stores up to 16 units.
///
/// Where the next block begins must be known early, or every block waits for the one before it. So a whole
/// block hangs on its last two bytes only, behind a branch that the processor predicts.
template <bool bigEndian, bool three>
[[gnu::always_inline]] inline Progress convertUpTo(const uint8_t* source, Bytes block, Classes classes,
                                                   uint16_t* to) {
    const auto splat = [](int value) { return Bytes::splat(static_cast<uint8_t>(value)); };
    const Bytes continuation = {_mm_cmplt_epi8(block.raw, _mm_set1_epi8(-64))}; // 0x80 to 0xBF
    const Bytes before = {_mm_slli_si128(block.raw, 1)};                        // the byte before each

    uint32_t expected = classes.leads2 << 1;
    uint32_t ends = ~classes.nonAscii | classes.leads2 << 1;
    uint32_t wrong = classes.nonAscii ^ (classes.continuations | classes.leads2);
    Bytes low = block.without(continuation & splat(0xC0));
    Bytes middle = before & continuation & splat(0x1F);
    Bytes high = Bytes::zero();
    if constexpr (three) {
        const Bytes third =
            continuation & Bytes{_mm_slli_si128(continuation.raw, 1)}; // behind a continuation
        const Bytes overlong = before.equal(splat(0xE0)) & block.atMost(splat(0x9F)) & continuation;
        expected |= classes.leads3 << 1 | classes.leads3 << 2;
        ends |= classes.leads3 << 2;
        wrong = (wrong ^ classes.leads3) | overlong.lanes().bits;
        middle = before & continuation & (splat(0x1F) | (third & splat(0x20)));
        high = Bytes{_mm_slli_si128(block.raw, 2)} & third & splat(0x0F);
    }
    wrong |= (classes.continuations ^ expected) & 0xFFFF;
    ends &= 0xFFFF;
    int32_t bytes =
        16 - (source[15] >= 0xC0) - (three ? 2 * (source[14] >= 0xE0) : 0); // less what is cut off
    if (wrong != 0) [[unlikely]] {
        ends &= (wrong - 1) & ~wrong; // no character ends at or behind the first byte that is wrong
        bytes = static_cast<int32_t>(std::bit_width(ends));
    }

    const auto join = [](Units l, Units m, Units h) {
        const Units units = {_mm_or_si128(l.raw, _mm_slli_epi16(m.raw, 6))};
        return inOrder<bigEndian>(three ? Units{_mm_or_si128(units.raw, _mm_slli_epi16(h.raw, 12))} : units);
    };
    int32_t units = storeCompressed(join(lowHalf(low), lowHalf(middle), lowHalf(high)), ends & 0xFF, to);
    units += storeCompressed(join(highHalf(low), highHalf(middle), highHalf(high)), ends >> 8, to + units);
    return {bytes, units, wrong == 0};
}

/// Converts blocks of characters of one and two bytes, or of one to three, until something else turns up or
/// two blocks in succession would suit a faster path.
template <bool bigEndian, bool three>
Position convertRunUpTo(Position at, Position end) {
    int unmixed = 0;
    while (has(at, end, farBytes, farUnits) && unmixed < 2) {
        const Bytes block = Bytes::load(at.source);
        const Classes classes = classesOf(block);
        const Progress progress = convertUpTo<bigEndian, three>(at.source, block, classes, at.out);
        at.source += progress.bytes;
        at.out += progress.units;
        if (!progress.whole) break;
        const bool suitsAnother =
            classes.nonAscii == 0 || (three && (classes.nonAscii == 0xFFFF || classes.leads3 == 0));
        unmixed = (unmixed + 1) * suitsAnother; // no branch: it could not be predicted
    }
    return at;
}

__m128i load4(const uint8_t* p) {
    int32_t value;
    std::memcpy(&value, p, sizeof value);
    return _mm_cvtsi32_si128(value);
}

/// Four three-byte characters as 32-bit lanes, the highest byte of each being the next character's.
__m128i loadThreeByteLanes(const uint8_t* p) {
    return _mm_unpacklo_epi64(_mm_unpacklo_epi32(load4(p), load4(p + 3)),
                              _mm_unpacklo_epi32(load4(p + 6), load4(p + 9)));
}

struct Decoded {
    __m128i values;
    __m128i valid;

    bool allValid() const { return _mm_movemask_epi8(valid) == 0xFFFF; }

    /// The valid lanes before the first that is not.
    std::ptrdiff_t count() const {
        return std::countr_one(static_cast<uint32_t>(_mm_movemask_epi8(valid))) / 4;
    }
};

__m128i bitsOf(__m128i lanes, int mask) {
    return _mm_and_si128(lanes, _mm_set1_epi32(mask));
}

Decoded decodeThreeBytes(__m128i lanes) {
    const __m128i form = _mm_cmpeq_epi32(bitsOf(lanes, 0x00C0C0F0), _mm_set1_epi32(0x008080E0));
    const __m128i high = _mm_slli_epi32(bitsOf(lanes, 0x0F), 12);
    const __m128i middle = _mm_srli_epi32(bitsOf(lanes, 0x3F00), 2);
    const __m128i low = bitsOf(_mm_srli_epi32(lanes, 16), 0x3F);
    const __m128i values = _mm_or_si128(high, _mm_or_si128(middle, low));
    return {values, _mm_and_si128(form, _mm_cmpgt_epi32(values, _mm_set1_epi32(0x7FF)))};
}

/// Four four-byte characters; the values are less 0x10000.
Decoded decodeFourBytes(__m128i lanes) {
    const __m128i form = _mm_cmpeq_epi32(bitsOf(lanes, static_cast<int>(0xC0C0C0F8)),
                                         _mm_set1_epi32(static_cast<int>(0x808080F0)));
    const __m128i upper =
        _mm_or_si128(_mm_slli_epi32(bitsOf(lanes, 0x07), 18), _mm_slli_epi32(bitsOf(lanes, 0x3F00), 4));
    const __m128i lower =
        _mm_or_si128(_mm_srli_epi32(bitsOf(lanes, 0x3F0000), 10), bitsOf(_mm_srli_epi32(lanes, 24), 0x3F));
    const __m128i values = _mm_sub_epi32(_mm_or_si128(upper, lower), _mm_set1_epi32(0x10000));
    const __m128i overlong = _mm_srai_epi32(values, 31);
    return {values, _mm_andnot_si128(overlong, form)};
}

/// Units of eight 32-bit values below 0x10000.
Units narrow(__m128i first, __m128i second) {
    const auto signExtended = [](__m128i values) { return _mm_srai_epi32(_mm_slli_epi32(values, 16), 16); };
    return {_mm_packs_epi32(signExtended(first), signExtended(second))};
}

/// Converts three-byte characters, eight at a time, as far as they go.
template <bool bigEndian>
Position convertThreeByteRun(Position at, Position end) {
    while (has(at, end, farBytes, farUnits)) {
        const Decoded first = decodeThreeBytes(loadThreeByteLanes(at.source));
        const Decoded second = decodeThreeBytes(loadThreeByteLanes(at.source + 12));
        inOrder<bigEndian>(narrow(first.values, second.values)).store(at.out);
        if (!first.allValid() || !second.allValid()) {
            const std::ptrdiff_t count = first.allValid() ? 4 + second.count() : first.count();
            at.source += 3 * count;
            at.out += count;
            break;
        }
        at.source += 24;
        at.out += 8;
    }
    return at;
}

/// Converts four-byte characters, four at a time, as far as they go.
template <bool bigEndian>
Position convertFourByteRun(Position at, Position end) {
    while (has(at, end, farBytes, farUnits)) {
        const Decoded decoded = decodeFourBytes(Bytes::load(at.source).raw);
        const __m128i high =
            _mm_or_si128(bitsOf(_mm_srli_epi32(decoded.values, 10), 0x3FF), _mm_set1_epi32(0xD800));
        const __m128i low = _mm_or_si128(bitsOf(decoded.values, 0x3FF), _mm_set1_epi32(0xDC00));
        Units{bigEndian ? _mm_or_si128(low, _mm_slli_epi32(high, 16))
                        : _mm_or_si128(high, _mm_slli_epi32(low, 16))}
            .store(at.out);
        if (!decoded.allValid()) {
            at.source += 4 * decoded.count();
            at.out += 2 * decoded.count();
            break;
        }
        at.source += 16;
        at.out += 8;
    }
    return at;
}

/// Converts ASCII, 64 bytes and then 16 at a time, as far as it goes.
template <bool bigEndian>
Position convertAsciiRun(Position at, Position end) {
    while (has(at, end, 64, 64)) {
        const Bytes blocks[] = {Bytes::load(at.source), Bytes::load(at.source + 16),
                                Bytes::load(at.source + 32), Bytes::load(at.source + 48)};
        if ((blocks[0] | blocks[1] | blocks[2] | blocks[3]).lanes().any()) break;
        for (std::ptrdiff_t i = 0; i < 4; ++i)
            storeAscii<bigEndian>(blocks[i], at.out + 16 * i);
        at.source += 64;
        at.out += 64;
    }
    while (has(at, end, 16, 16)) {
        const Bytes block = Bytes::load(at.source);
        if (block.lanes().any()) break;
        storeAscii<bigEndian>(block, at.out);
        at.source += 16;
        at.out += 16;
    }
    return at;
}

// ------------------------------------------------------------------------------------------------ the driver

template <bool bigEndian>
Position convertMixedRun(Position at, Position end) {
    const Bytes block = Bytes::load(at.source);
    return classesOf(block).leads3 == 0 ? convertRunUpTo<bigEndian, false>(at, end)
                                        : convertRunUpTo<bigEndian, true>(at, end);
}

/// Takes the paths in turn, each from where the one before it stopped, when the next byte suits it.
template <bool bigEndian>
Position convertRun(Position at, Position end) {
    const auto far = [&at, end] { return has(at, end, farBytes, farUnits); };
    at = convertAsciiRun<bigEndian>(at, end);
    if (far()) {
        if (*at.source < 0xE0) at = convertMixedRun<bigEndian>(at, end);
        if (far() && (*at.source & 0xF0) == 0xE0) at = convertThreeByteRun<bigEndian>(at, end);
        if (far() && *at.source >= 0xF0) at = convertFourByteRun<bigEndian>(at, end);
    }
    return at;
}

constexpr std::ptrdiff_t worthwhile = 32; // bytes that the paths must convert to be taken again at once

/// Converts what is left of the source when it is short and ASCII, by a block that reaches back into what was
/// ASCII before it; else leaves it.
template <bool bigEndian>
Position convertAsciiTail(Position at, Position start, Position end) {
    const std::ptrdiff_t left = end.source - at.source;
    if (left == 0 || left > 16 || end.source - start.source < 16 || end.out - at.out < left) return at;
    const Bytes block = Bytes::load(end.source - 16);
    if (block.lanes().any()) return at;
    // All of the block has a unit for each byte, so the places agree.
    storeAscii<bigEndian>(block, at.out + left - 16);
    return {end.source, at.out + left};
}

/// The same for a whole source of 8 to 16 bytes, by two halves that overlap.
template <bool bigEndian>
Position convertShortAscii(Position at, Position end) {
    const std::ptrdiff_t length = end.source - at.source;
    if (length < 8 || length > 16 || end.out - at.out < length) return at;
    const Bytes first = {_mm_loadl_epi64(reinterpret_cast<const __m128i*>(at.source))};
    const Bytes last = {_mm_loadl_epi64(reinterpret_cast<const __m128i*>(end.source - 8))};
    if ((first | last).lanes().any()) return at;
    inOrder<bigEndian>(lowHalf(first)).store(at.out);
    inOrder<bigEndian>(lowHalf(last)).store(at.out + length - 8);
    return {end.source, at.out + length};
}

template <bool bigEndian>
Position convertAll(const Position start, const Position end) {
    Position at = convertShortAscii<bigEndian>(start, end);
    Patience patience;
    while (has(at, end, farBytes, farUnits)) {
        const uint8_t* const before = at.source;
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

tavStatus convertUtf8To16(const uint8_t* src, uint32_t* srcLen, uint16_t* dst, uint32_t* dstLen,
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
