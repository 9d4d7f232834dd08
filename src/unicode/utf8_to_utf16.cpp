// UTF-8 to UTF-16. convertPlainly is the definition, one character at a time. Beside it stand vector paths
// that take sixteen bytes or more a step: for ASCII, for runs of three-byte and of four-byte characters, for
// any mixture of well-formed characters, and for malformed text. convertFar chooses among them while much is
// left; near the end, where nothing may be stored too far, convertNear and convertShort take what pays at
// once and leave the rest to the definition.
#include "unicode/convert.h"

#include "base/arguments.h"
#include "base/vector.h"
#include "unicode/utf8.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

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
    const auto store = [&at, end](uint32_t character, int32_t length, bool) {
        if (character <= 0xFFFF) {
            *at.out++ = inOrder<bigEndian>(character);
        } else {
            if (end.out - at.out < 2) return false;
            const uint32_t value = character - 0x10000;
            const auto high = static_cast<uint16_t>(0xD800 | (value >> 10 & 0x3FF)); // U+110000 wraps
            const auto low = static_cast<uint16_t>(0xDC00 | (value & 0x3FF));
            // Deliberate: of a big-endian pair the units change places and keep their bytes.
            at.out[0] = bigEndian ? low : high;
            at.out[1] = bigEndian ? high : low;
            at.out += 2;
        }
        at.source += length;
        return true;
    };
    while (at.source < stop && at.out != end.out && takeUtf8(at.source, end.source, store)) {
    }
    return at;
}

// ----------------------------------------------------------------------------------------- the vector paths

// A path stores whole vectors where the source goes on for long enough: what it stores too far, less than
// eight units, is overwritten later, as three bytes or fewer become a unit, and at most one unit of the
// capacity stays empty (before a pair). At the end of the source exactly as many units are stored as there
// are.
constexpr std::ptrdiff_t farBytes = 16 + 3 * 8;
constexpr std::ptrdiff_t farUnits = 16 + 1;

Bytes splat(int value) {
    return Bytes::splat(static_cast<uint8_t>(value));
}

/// All ones in the lanes whose byte is less than `bound` as a signed number.
Bytes below(Bytes bytes, int bound) {
    return {_mm_cmplt_epi8(bytes.raw, splat(bound).raw)};
}

/// The byte `distance` places before each, and zeros at the start.
template <int distance>
Bytes before(Bytes bytes) {
    return {_mm_slli_si128(bytes.raw, distance)};
}

template <int distance>
Bytes behind(Bytes bytes) {
    return {_mm_srli_si128(bytes.raw, distance)};
}

/// Shifts of the bytes' bits; those that come in from a neighbour are for the caller to mask.
template <int count>
Bytes shiftedLeft(Bytes bytes) {
    return {_mm_slli_epi16(bytes.raw, count)};
}

template <int count>
Bytes shiftedRight(Bytes bytes) {
    return {_mm_srli_epi16(bytes.raw, count)};
}

Bytes select(Bytes condition, Bytes yes, Bytes no) {
    return (yes & condition) | no.without(condition);
}

template <bool bigEndian>
Units inOrder(Units units) {
    if constexpr (bigEndian) {
        return {_mm_or_si128(_mm_slli_epi16(units.raw, 8), _mm_srli_epi16(units.raw, 8))};
    } else {
        return units;
    }
}

/// Sixteen units, not all of which need count.
struct UnitPair {
    Units first, second;
};

template <bool bigEndian>
UnitPair join(Bytes low, Bytes high) {
    if constexpr (bigEndian) std::swap(low, high);
    return {{_mm_unpacklo_epi8(low.raw, high.raw)}, {_mm_unpackhi_epi8(low.raw, high.raw)}};
}

template <bool bigEndian>
void storeAscii(Bytes block, uint16_t* to) {
    const UnitPair units = join<bigEndian>(block, Bytes::zero());
    units.first.store(to);
    units.second.store(to + 8);
}

/// How to move chosen lanes of eight to the front: lanes that go left by an odd distance first go by one,
/// then those with two in theirs by two, then by four. Each step takes a lane's right neighbour where its
/// mask says.
struct Compression {
    alignas(16) uint16_t moves[3][8];
    int32_t count;
};

consteval Compression makeCompression(uint32_t keep) {
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

consteval std::array<Compression, 256> makeCompressions() {
    std::array<Compression, 256> made = {};
    for (uint32_t keep = 0; keep < 256; ++keep)
        made[keep] = makeCompression(keep);
    return made;
}

constexpr std::array<Compression, 256> compressions = makeCompressions();

Units compress(Units units, const Compression& compression) {
    const auto move = [&](Units shifted, int step) {
        units = units ^ ((units ^ shifted) & Units::loadAligned(compression.moves[step]));
    };
    move({_mm_srli_si128(units.raw, 2)}, 0);
    move({_mm_srli_si128(units.raw, 4)}, 1);
    move({_mm_srli_si128(units.raw, 8)}, 2);
    return units;
}

/// The first `count` (0 to 8) of the units, by two parts that overlap.
void storeFirst(Units units, std::ptrdiff_t count, uint16_t* to) {
    const auto store8 = [](__m128i vector, uint16_t* place) {
        _mm_storel_epi64(reinterpret_cast<__m128i*>(place), vector);
    };
    if (count >= 4) {
        const auto bits = static_cast<int>(16 * (count - 4)); // a shift by 64 gives zeros
        const __m128i last =
            _mm_or_si128(_mm_srl_epi64(units.raw, _mm_cvtsi32_si128(bits)),
                         _mm_sll_epi64(_mm_srli_si128(units.raw, 8), _mm_cvtsi32_si128(64 - bits)));
        store8(units.raw, to);
        store8(last, to + count - 4);
    } else if (count > 0) {
        const auto value = static_cast<uint64_t>(_mm_cvtsi128_si64(units.raw));
        to[0] = static_cast<uint16_t>(value);
        to[count / 2] = static_cast<uint16_t>(value >> (16 * (count / 2)));
        to[count - 1] = static_cast<uint16_t>(value >> (16 * (count - 1)));
    }
}

/// What a block of sixteen bytes becomes: the units that `keep` names.
struct Block {
    UnitPair units;
    uint32_t keep;
    std::ptrdiff_t bytes; // less than 16 when the last character is cut off
    bool known;           // false: this is not the block's meaning, another function knows it

    const Compression& first() const { return compressions[keep & 0xFF]; }
    const Compression& second() const { return compressions[keep >> 8]; }
    std::ptrdiff_t count() const { return first().count + second().count; }

    /// Stores 8 units and, behind the kept ones of them, another 8.
    void store(uint16_t* to) const {
        compress(units.first, first()).store(to);
        compress(units.second, second()).store(to + first().count);
    }

    /// Stores the kept units and nothing else.
    void storeExactly(uint16_t* to) const {
        storeFirst(compress(units.first, first()), first().count, to);
        storeFirst(compress(units.second, second()), second().count, to + first().count);
    }
};

/// A unit of each lane as its two bytes.
struct UnitBytes {
    Bytes low, high;
};

UnitBytes select(Bytes condition, UnitBytes yes, UnitBytes no) {
    return {select(condition, yes.low, no.low), select(condition, yes.high, no.high)};
}

UnitBytes highSurrogates(Bytes lead, Bytes second, Bytes third) {
    // The bits from 16 up less one; those from 24 up are lost, so that U+110000 wraps.
    const Bytes upper = ((shiftedLeft<6>(lead) & splat(0xC0)) | (second & splat(0x3F))) - splat(0x10);
    return {(shiftedLeft<2>(upper) & splat(0xFC)) | (shiftedRight<4>(third) & splat(0x03)),
            (shiftedRight<6>(upper) & splat(0x03)) | splat(0xD8)};
}

/// At each byte the unit of a character that ends there. `continuation` are the bytes that end characters of
/// two bytes and more (others may be among them if their units do not count), `end3` and `end4` the ends of
/// three-byte and four-byte characters.
UnitBytes endingUnits(Bytes block, Bytes continuation, Bytes end3, Bytes end4) {
    const Bytes one = before<1>(block);
    const Bytes upper = continuation & splat(0xC0);
    return {(shiftedLeft<6>(one) & upper) | block.without(upper),
            (shiftedRight<2>(one) & continuation & splat(0x0F)) |
                (shiftedLeft<4>(before<2>(block)) & end3 & splat(0xF0)) | (end4 & splat(0xDC))};
}

/// Puts the high surrogates of four-byte characters beside the low ones that stand at their ends.
template <bool bigEndian>
UnitBytes withHighSurrogates(Bytes block, UnitBytes units, Bytes end4) {
    const Bytes third4 = behind<1>(end4);
    if constexpr (bigEndian) {
        // These units change places and keep their bytes, so here the bytes are exchanged.
        const UnitBytes high = highSurrogates(before<3>(block), before<2>(block), before<1>(block));
        const UnitBytes low = {behind<1>(units.low), behind<1>(units.high)};
        return select(third4, {low.high, low.low}, select(end4, {high.high, high.low}, units));
    } else {
        return select(third4, highSurrogates(before<2>(block), before<1>(block), block), units);
    }
}

uint32_t bitsOf(Bytes lanes) {
    return lanes.lanes().bits;
}

/// Decodes a block that begins with a character and whose characters have up to `longest` bytes. Of others it
/// knows nothing.
template <bool bigEndian, int longest>
[[gnu::always_inline]] inline Block decodeWellFormed(Bytes block, uint32_t nonAscii) {
    const Bytes continuation = below(block, 0xC0); // 0x80 to 0xBF
    const uint32_t continuations = bitsOf(continuation);
    const uint32_t leads2 = bitsOf(below(block + splat(0x80 - 0xC2), 0x80 + 0xE0 - 0xC2)); // 0xC2 to 0xDF
    uint32_t wanted = leads2 << 1;                                                         // continuations
    uint32_t ends = wanted;                             // bytes at which units stand
    uint32_t wrong = nonAscii ^ continuations ^ leads2; // to become leads that remain
    Bytes end3 = Bytes::zero(), end4 = Bytes::zero();
    if constexpr (longest >= 3) {
        const Bytes lead3 = (block & splat(0xF0)).equal(splat(0xE0));
        const uint32_t leads3 = bitsOf(lead3);
        end3 = before<2>(lead3);
        Bytes overlong = before<1>(block).equal(splat(0xE0)) & below(block, 0xA0);
        wanted |= leads3 << 1 | leads3 << 2;
        ends |= leads3 << 2;
        wrong ^= leads3;
        if constexpr (longest >= 4) {
            const Bytes lead4 = (block & splat(0xF8)).equal(splat(0xF0));
            const uint32_t leads4 = bitsOf(lead4);
            end4 = before<3>(lead4);
            overlong = overlong | (before<1>(block).equal(splat(0xF0)) & below(block, 0x90));
            wanted |= leads4 << 1 | leads4 << 2 | leads4 << 3;
            ends |= (leads4 & 0x1FFF) << 2 | leads4 << 3; // both units or, of a character cut off, none
            wrong ^= leads4;
        }
        wrong |= bitsOf(overlong);
    }
    wrong |= (continuations ^ wanted) & 0xFFFF;
    UnitBytes units = endingUnits(block, continuation, end3, end4);
    if constexpr (longest >= 4) units = withHighSurrogates<bigEndian>(block, units, end4);
    return {join<bigEndian>(units.low, units.high), (ends | ~nonAscii) & 0xFFFF, 16, wrong == 0};
}

/// The lead bytes of a block that is all three-byte or all four-byte characters.
constexpr uint32_t threeByteRun = 0x9249;
constexpr uint32_t fourByteRun = 0x1111;

/// The bytes of the character, of up to `longest` bytes, that the end of a well-formed block cuts off.
template <int longest>
std::ptrdiff_t cutOff(const uint8_t* block) {
    std::ptrdiff_t bytes = block[15] >= 0xC0;
    if constexpr (longest >= 3) bytes += 2 * (block[14] >= 0xE0);
    if constexpr (longest >= 4) bytes += 3 * (block[13] >= 0xF0);
    return bytes;
}

/// A block of which no byte is part of a longer character, but for a lead at its end: each is a unit.
bool isAllBytes(uint32_t nonAscii, uint32_t continuations) {
    return (continuations & (nonAscii ^ continuations) << 1) == 0;
}

bool isLead(uint8_t byte) {
    return byte >= 0xC2 && byte <= 0xFD;
}

/// Decodes any block that begins with a character or a malformed byte, up to the first lead of a form of five
/// or six bytes. Which bytes are a character does not depend on what stands before it, so all are found at
/// once; the others become a unit each.
template <bool bigEndian>
[[gnu::always_inline]] inline Block decodeAny(Bytes block) {
    const Bytes continuation = below(block, 0xC0);
    const Bytes one = before<1>(block);
    const Bytes lead2 = below(block + splat(0x80 - 0xC2), 0x80 + 0xE0 - 0xC2);
    const Bytes lead3 = (block & splat(0xF0)).equal(splat(0xE0));
    const Bytes lead4 = (block & splat(0xF8)).equal(splat(0xF0));
    const Bytes overlong3 = one.equal(splat(0xE0)) & below(block, 0xA0);
    const Bytes overlong4 = one.equal(splat(0xF0)) & below(block, 0x90);
    const Bytes end2 = continuation & before<1>(lead2);
    const Bytes end3 = continuation & before<1>(continuation & before<1>(lead3).without(overlong3));
    const Bytes third4 = continuation & before<1>(continuation & before<1>(lead4).without(overlong4));
    const Bytes end4 = continuation & before<1>(third4);
    const UnitBytes units =
        withHighSurrogates<bigEndian>(block, endingUnits(block, end2 | end3 | end4, end3, end4), end4);

    const uint32_t ends2 = bitsOf(end2), ends3 = bitsOf(end3), ends4 = bitsOf(end4);
    const uint32_t earlier = ends2 >> 1 | ends3 >> 1 | ends3 >> 2 | ends4 >> 2 | ends4 >> 3;

    // The last character is cut off when the block ends with the continuations of a lead that wants more.
    std::ptrdiff_t size = 16;
    if (const uint32_t others = ~bitsOf(continuation) & 0xFFFF; others != 0) {
        uint8_t bytes[16];
        block.store(bytes);
        const auto place = static_cast<int>(std::bit_width(others)) - 1;
        if (isLead(bytes[place]) && place + std::countl_one(bytes[place]) > 16) size = place;
    }
    const uint32_t longLeads = bitsOf(below(block, 0xFE).without(below(block, 0xF8))) & bitsOf(block);
    if (longLeads != 0 && std::countr_zero(longLeads) < size) size = std::countr_zero(longLeads);
    return {join<bigEndian>(units.low, units.high), ~earlier & ((1u << size) - 1), size, true};
}

/// Converts blocks of characters of up to `longest` bytes, until other characters turn up or two blocks in
/// succession would suit a faster path.
///
/// Where the next block begins must be known early, or every block waits for the one before it. So a whole
/// block hangs on its last bytes only, behind a branch that the processor predicts.
template <bool bigEndian, int longest>
Position convertMixed(Position at, Position end) {
    int unmixed = 0;
    while (has(at, end, farBytes, farUnits) && unmixed < 2) {
        const Bytes block = Bytes::load(at.source);
        const uint32_t nonAscii = bitsOf(block);
        if (longest == 4 && nonAscii == 0) { // between emoji: worth a branch
            storeAscii<bigEndian>(block, at.out);
            at = {at.source + 16, at.out + 16};
            continue;
        }
        const Block decoded = decodeWellFormed<bigEndian, longest>(block, nonAscii);
        if (!decoded.known) break;
        bool suitsAnother = nonAscii == 0;
        const uint32_t long3 = nonAscii & ~bitsOf(below(block, 0xE0));
        if constexpr (longest == 3) suitsAnother |= long3 == threeByteRun || long3 == 0;
        if constexpr (longest == 4) suitsAnother |= long3 == fourByteRun || long3 == 0;
        decoded.store(at.out);
        at.source += 16 - cutOff<longest>(at.source);
        at.out += decoded.count();
        unmixed = (unmixed + 1) * suitsAnother; // no branch: it could not be predicted
    }
    return at;
}

/// Converts malformed text, for a while or until two blocks in succession are ASCII.
template <bool bigEndian>
Position convertMalformed(Position at, Position end) {
    int asciiBlocks = 0;
    for (int i = 0; i < 8 && has(at, end, farBytes, farUnits) && asciiBlocks < 2; ++i) {
        const Bytes block = Bytes::load(at.source);
        const uint32_t nonAscii = bitsOf(block);
        asciiBlocks = (asciiBlocks + 1) * (nonAscii == 0);
        if (isAllBytes(nonAscii, bitsOf(below(block, 0xC0)))) {
            const std::ptrdiff_t size = 16 - isLead(at.source[15]);
            storeAscii<bigEndian>(block, at.out);
            at = {at.source + size, at.out + size};
            continue;
        }
        const Block decoded = decodeAny<bigEndian>(block);
        if (decoded.bytes == 0) return convertPlainly<bigEndian>(at, end, 1); // a form of five or six bytes
        decoded.store(at.out);
        at = {at.source + decoded.bytes, at.out + decoded.count()};
    }
    return at;
}

__m128i load4(const uint8_t* p) {
    int32_t value;
    std::memcpy(&value, p, sizeof value);
    return _mm_cvtsi32_si128(value);
}

/// Four three-byte characters as 32-bit lanes, with any byte as the highest of each.
__m128i loadThreeByteLanes(const uint8_t* p) {
    const __m128i last = _mm_srli_epi32(load4(p + 8), 8); // reads nothing behind it
    return _mm_unpacklo_epi64(_mm_unpacklo_epi32(load4(p), load4(p + 3)),
                              _mm_unpacklo_epi32(load4(p + 6), last));
}

struct Decoded {
    __m128i values;
    __m128i valid;
};

__m128i masked(__m128i lanes, int mask) {
    return _mm_and_si128(lanes, _mm_set1_epi32(mask));
}

Decoded decodeThreeBytes(__m128i lanes) {
    const __m128i form = _mm_cmpeq_epi32(masked(lanes, 0x00C0C0F0), _mm_set1_epi32(0x008080E0));
    const __m128i high = _mm_slli_epi32(masked(lanes, 0x0F), 12);
    const __m128i middle = _mm_srli_epi32(masked(lanes, 0x3F00), 2);
    const __m128i low = masked(_mm_srli_epi32(lanes, 16), 0x3F);
    const __m128i values = _mm_or_si128(high, _mm_or_si128(middle, low));
    return {values, _mm_and_si128(form, _mm_cmpgt_epi32(values, _mm_set1_epi32(0x7FF)))};
}

/// Four four-byte characters; the values are less 0x10000.
Decoded decodeFourBytes(__m128i lanes) {
    const __m128i form = _mm_cmpeq_epi32(masked(lanes, static_cast<int>(0xC0C0C0F8)),
                                         _mm_set1_epi32(static_cast<int>(0x808080F0)));
    const __m128i upper =
        _mm_or_si128(_mm_slli_epi32(masked(lanes, 0x07), 18), _mm_slli_epi32(masked(lanes, 0x3F00), 4));
    const __m128i lower =
        _mm_or_si128(_mm_srli_epi32(masked(lanes, 0x3F0000), 10), masked(_mm_srli_epi32(lanes, 24), 0x3F));
    const __m128i values = _mm_sub_epi32(_mm_or_si128(upper, lower), _mm_set1_epi32(0x10000));
    const __m128i overlong = _mm_srai_epi32(values, 31);
    return {values, _mm_andnot_si128(overlong, form)};
}

/// Units of eight 32-bit values below 0x10000.
Units narrow(__m128i first, __m128i second) {
    const auto signExtended = [](__m128i values) { return _mm_srai_epi32(_mm_slli_epi32(values, 16), 16); };
    return {_mm_packs_epi32(signExtended(first), signExtended(second))};
}

/// Eight three-byte characters a step.
struct ThreeByteRun {
    static constexpr std::ptrdiff_t bytes = 24, units = 8, characters = 8;
    static bool suits(uint8_t lead) { return (lead & 0xF0) == 0xE0; }

    /// Stores eight units; returns two bits for each, set if it is right.
    template <bool bigEndian>
    static uint32_t convert(Position at) {
        const Decoded first = decodeThreeBytes(loadThreeByteLanes(at.source));
        const Decoded second = decodeThreeBytes(loadThreeByteLanes(at.source + 12));
        inOrder<bigEndian>(narrow(first.values, second.values)).store(at.out);
        return bitsOf({_mm_packs_epi32(first.valid, second.valid)});
    }
};

/// Four four-byte characters a step.
struct FourByteRun {
    static constexpr std::ptrdiff_t bytes = 16, units = 8, characters = 4;
    static bool suits(uint8_t lead) { return lead >= 0xF0; }

    /// Stores eight units; returns two bits for each, set if it is right.
    template <bool bigEndian>
    static uint32_t convert(Position at) {
        const Decoded decoded = decodeFourBytes(Bytes::load(at.source).raw);
        const __m128i high =
            _mm_or_si128(masked(_mm_srli_epi32(decoded.values, 10), 0x3FF), _mm_set1_epi32(0xD800));
        const __m128i low = _mm_or_si128(masked(decoded.values, 0x3FF), _mm_set1_epi32(0xDC00));
        Units{bigEndian ? _mm_or_si128(low, _mm_slli_epi32(high, 16))
                        : _mm_or_si128(high, _mm_slli_epi32(low, 16))}
            .store(at.out);
        return bitsOf({decoded.valid});
    }
};

/// Goes on behind what a step converted, which `right` tells.
template <class Run>
Position behindStep(Position at, uint32_t right) {
    const std::ptrdiff_t count = std::countr_one(right) * Run::characters / 16;
    return {at.source + count * (Run::bytes / Run::characters),
            at.out + count * (Run::units / Run::characters)};
}

/// Converts characters of one length, and a stray one between two long stretches of them.
template <bool bigEndian, class Run>
Position convertRun(Position at, Position end) {
    const uint8_t* stretch = at.source;
    while (has(at, end, farBytes, farUnits)) {
        const uint32_t right = Run::template convert<bigEndian>(at);
        if (right == 0xFFFF) [[likely]] { // a predicted branch: the next step need not wait for this one
            at = {at.source + Run::bytes, at.out + Run::units};
            continue;
        }
        at = behindStep<Run>(at, right);
        if (at.source - stretch < 24) break;
        at = convertPlainly<bigEndian>(at, end, 1);
        stretch = at.source;
        if (at.source == end.source || !Run::suits(*at.source)) break;
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

/// Takes one path after the other, each from where the one before it stopped, while the end is far.
template <bool bigEndian>
TAV_FLATTEN [[gnu::noinline]] Position convertFar(Position at, Position end) {
    while (true) {
        at = convertAsciiRun<bigEndian>(at, end);
        if (!has(at, end, farBytes, farUnits)) return at;
        const Position start = at;
        const auto stuck = [&] { return at.source == start.source; };
        const Bytes block = Bytes::load(at.source);
        const uint32_t long3 = bitsOf(block) & ~bitsOf(below(block, 0xE0));
        const uint32_t long4 = bitsOf(block) & ~bitsOf(below(block, 0xF0));
        if (long3 == threeByteRun) at = convertRun<bigEndian, ThreeByteRun>(at, end);
        if (long4 == fourByteRun) at = convertRun<bigEndian, FourByteRun>(at, end);
        if (stuck())
            at = long4 != 0   ? convertMixed<bigEndian, 4>(at, end)
                 : long3 != 0 ? convertMixed<bigEndian, 3>(at, end)
                              : convertMixed<bigEndian, 2>(at, end);
        if (stuck()) at = convertMalformed<bigEndian>(at, end);
    }
}

uint64_t load8(const uint8_t* p) {
    uint64_t value;
    std::memcpy(&value, p, sizeof value);
    return value;
}

Bytes vectorOf(uint64_t low) {
    return {_mm_cvtsi64_si128(static_cast<int64_t>(low))};
}

/// Converts `size` bytes, less the character that the end of a whole block cuts off, if none of them is
/// longer than `longest`; else leaves them. Stores nothing behind their units.
template <bool bigEndian, int longest>
[[gnu::always_inline]] inline Position convertExactly(Position at, Bytes block, uint32_t nonAscii,
                                                      std::ptrdiff_t size) {
    Block decoded = decodeWellFormed<bigEndian, longest>(block, nonAscii);
    if (!decoded.known) return at;
    const std::ptrdiff_t bytes = size < 16 ? size : 16 - cutOff<longest>(at.source);
    decoded.keep &= (1u << bytes) - 1;
    decoded.storeExactly(at.out);
    return {at.source + bytes, at.out + decoded.count()};
}

/// Converts blocks while sixteen bytes and units are left, and then a shorter one, as far as they suit it.
/// Here it must pay at once: what is left is short, and the plain loop is quick with it.
template <bool bigEndian>
Position convertNear(Position at, Position end) {
    while (has(at, end, 16, 16)) {
        const Position start = at;
        const Bytes block = Bytes::load(at.source);
        const uint32_t nonAscii = bitsOf(block);
        const uint32_t long3 = nonAscii & ~bitsOf(below(block, 0xE0));
        const uint32_t long4 = nonAscii & ~bitsOf(below(block, 0xF0));
        if (isAllBytes(nonAscii, bitsOf(below(block, 0xC0))) && !isLead(at.source[15])) {
            storeAscii<bigEndian>(block, at.out);
            at = {at.source + 16, at.out + 16};
        } else if (long3 == 0) {
            at = convertExactly<bigEndian, 2>(at, block, nonAscii, 16);
        } else if (long3 == threeByteRun && long4 == 0 && end.source - at.source >= 24) {
            at = behindStep<ThreeByteRun>(at, ThreeByteRun::convert<bigEndian>(at));
        } else if (long4 == 0) {
            at = convertExactly<bigEndian, 3>(at, block, nonAscii, 16);
        } else if (long3 == fourByteRun) {
            // What a wrong step stores too far is overwritten: four bytes from such a lead on become two
            // units or more, whatever they are.
            at = behindStep<FourByteRun>(at, FourByteRun::convert<bigEndian>(at));
        } else {
            at = convertExactly<bigEndian, 4>(at, block, nonAscii, 16);
        }
        if (at.source == start.source) return at;
    }
    return at;
}

/// Converts the rest of the source, 8 to 15 bytes, when it is ASCII or text of up to two bytes a character.
template <bool bigEndian>
[[gnu::always_inline]] inline Position convertShort(Position at, Position end) {
    const std::ptrdiff_t size = end.source - at.source;
    if (size < 8 || size > 15 || end.out - at.out < size) return at;
    const uint64_t first = load8(at.source), last = load8(end.source - 8);
    constexpr uint64_t highBits = 0x8080808080808080;
    if (((first | last) & highBits) == 0) { // two parts that overlap
        join<bigEndian>(vectorOf(first), Bytes::zero()).first.store(at.out);
        join<bigEndian>(vectorOf(last), Bytes::zero()).first.store(at.out + size - 8);
        return {end.source, at.out + size};
    }
    const uint64_t behindFirst = last >> 1 >> (127 - 8 * size); // in two steps, as together they may be 64
    const Bytes block = {_mm_unpacklo_epi64(vectorOf(first).raw, vectorOf(behindFirst).raw)};
    const uint32_t nonAscii = bitsOf(block);
    const bool isolated = (nonAscii & nonAscii >> 2) == 0; // the plain loop is quicker with those
    if (isolated || (nonAscii & ~bitsOf(below(block, 0xE0))) != 0) return at;
    return convertExactly<bigEndian, 2>(at, block, nonAscii, size);
}

template <bool bigEndian>
TAV_FLATTEN [[gnu::noinline]] Position convertRest(Position at, Position end) {
    at = convertNear<bigEndian>(at, end);
    at = convertShort<bigEndian>(at, end);
    return at.source == end.source ? at : convertPlainly<bigEndian>(at, end, end.source - at.source);
}

template <bool bigEndian>
Position convertAll(Position at, Position end) {
    if (end.source - at.source >= 16) {
        if (has(at, end, farBytes, farUnits)) at = convertFar<bigEndian>(at, end);
        return convertRest<bigEndian>(at, end);
    }
    at = convertShort<bigEndian>(at, end);
    return at.source == end.source ? at : convertPlainly<bigEndian>(at, end, end.source - at.source);
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
