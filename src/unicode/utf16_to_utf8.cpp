// UTF-16 to UTF-8. convertPlainly is the definition, one character at a time. Beside it stand vector paths
// that take eight units or more a step: for ASCII, for runs of three-byte characters and of surrogate pairs,
// and for any mixture, surrogates without partner included. convertFar chooses among them while much is left;
// near the end, where nothing may be stored too far, convertNear and convertShort take what pays at once and
// leave the rest to the definition.
#include "unicode/convert.h"

#include "base/arguments.h"
#include "base/vector.h"

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

// A path takes eight units a step. Where the source goes on for long enough it stores up to 24 bytes too far:
// they are overwritten later, as a unit becomes at least a byte, and at most three bytes of the capacity stay
// empty (before a pair). At the end of the source exactly as many bytes are stored as there are.
constexpr std::ptrdiff_t farUnits = 8 + 24;
constexpr std::ptrdiff_t farBytes = 24 + 4 + 3;

Units splat(int value) {
    return Units::splat(static_cast<uint16_t>(value));
}

template <int count>
Units shiftedLeft(Units units) {
    return {_mm_slli_epi16(units.raw, count)};
}

template <int count>
Units shiftedRight(Units units) {
    return {_mm_srli_epi16(units.raw, count)};
}

Units select(Units condition, Units yes, Units no) {
    return (yes & condition) | no.without(condition);
}

template <bool bigEndian>
Units inOrder(Units units) {
    if constexpr (bigEndian) {
        return shiftedLeft<8>(units) | shiftedRight<8>(units);
    } else {
        return units;
    }
}

template <bool bigEndian>
Units loadUnits(const uint16_t* p) {
    return inOrder<bigEndian>(Units::load(p));
}

bool isAscii(Units block) {
    return (block & splat(0xFF80)).equal(Units::zero()).lanes().all();
}

Units surrogatesOf(Units block) {
    return (block & splat(0xF800)).equal(splat(0xD800));
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

uint64_t low64(__m128i vector) {
    return static_cast<uint64_t>(_mm_cvtsi128_si64(vector));
}

template <class Value>
void storeBytes(uint8_t* to, uint64_t value) {
    const auto bytes = static_cast<Value>(value);
    std::memcpy(to, &bytes, sizeof bytes);
}

/// The first `size` (0 to 8) of the bytes, by two parts that overlap.
void storeFirst(uint8_t* to, uint64_t bytes, std::ptrdiff_t size) {
    if (size >= 4) {
        storeBytes<uint32_t>(to, bytes);
        storeBytes<uint32_t>(to + size - 4, bytes >> (8 * (size - 4)));
    } else if (size >= 2) {
        storeBytes<uint16_t>(to, bytes);
        storeBytes<uint16_t>(to + size - 2, bytes >> (8 * (size - 2)));
    } else if (size == 1) {
        storeBytes<uint8_t>(to, bytes);
    }
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

/// The forms of eight units below 0x800: four in each half, without gaps from the half's start.
struct ShortForms {
    __m128i bytes;
    std::ptrdiff_t firstSize, secondSize;

    void store(uint8_t* to) const {
        store8(to, bytes);
        store8(to + firstSize, highToLow(bytes));
    }

    /// The same but for the last `less` (0 to 4) bytes, and nothing behind the others.
    void storeExactly(uint8_t* to, std::ptrdiff_t less) const {
        storeFirst(to, low64(bytes), firstSize);
        storeFirst(to + firstSize, low64(highToLow(bytes)), secondSize - less);
    }
};

ShortForms encodeUpToTwoBytes(Units block) {
    const Units ascii = {_mm_cmplt_epi16(block.raw, _mm_set1_epi16(0x80))}; // none is negative
    const Units forms = shiftedRight<6>(block) | shiftedLeft<8>(block & splat(0x3F)) | splat(0x80C0);
    __m128i bytes = select(ascii, block, forms).raw;

    const auto asciiLanes =
        static_cast<uint32_t>(_mm_movemask_epi8(_mm_packs_epi16(ascii.raw, _mm_setzero_si128())));
    const Packing& first = packings[asciiLanes & 15];
    const Packing& second = packings[asciiLanes >> 4];
    const auto move = [&](__m128i shifted, int step) {
        const auto load = [](const uint64_t& mask) {
            return _mm_loadl_epi64(reinterpret_cast<const __m128i*>(&mask));
        };
        const __m128i mask = _mm_unpacklo_epi64(load(first.moves[step]), load(second.moves[step]));
        bytes = _mm_xor_si128(bytes, _mm_and_si128(_mm_xor_si128(bytes, shifted), mask));
    };
    move(_mm_srli_epi64(bytes, 8), 0);
    move(_mm_srli_epi64(bytes, 16), 1);
    return {bytes, first.size, second.size};
}

/// The first two and the other bytes of the three-byte forms of eight units.
Units threeByteFronts(Units block) {
    return shiftedRight<12>(block) | (shiftedLeft<2>(block) & splat(0x3F00)) | splat(0x80E0);
}

Units threeByteBacks(Units block) {
    return (block & splat(0x3F)) | splat(0x80);
}

/// Four forms of three bytes each in 12 bytes: the first eight of them and the last eight.
struct TwelveBytes {
    uint64_t first, last;
};

TwelveBytes packThreeBytes(__m128i forms) {
    const __m128i even = _mm_and_si128(forms, _mm_set1_epi64x(0xFFFFFF));
    const __m128i odd = _mm_srli_epi64(_mm_andnot_si128(_mm_set1_epi64x(0xFFFFFFFF), forms), 8);
    const __m128i packed = _mm_or_si128(even, odd);
    const uint64_t low = low64(packed), high = low64(highToLow(packed));
    return {low | high << 48, low >> 32 | high << 16};
}

/// Stores the three-byte forms of eight units, 24 bytes.
void storeThreeBytes(uint8_t* to, Units block) {
    const Units fronts = threeByteFronts(block), backs = threeByteBacks(block);
    const TwelveBytes first = packThreeBytes(_mm_unpacklo_epi16(fronts.raw, backs.raw));
    const TwelveBytes second = packThreeBytes(_mm_unpackhi_epi16(fronts.raw, backs.raw));
    storeBytes<uint64_t>(to, first.first);
    storeBytes<uint32_t>(to + 8, first.last >> 32);
    storeBytes<uint64_t>(to + 12, second.first);
    storeBytes<uint32_t>(to + 20, second.last >> 32);
}

/// The forms of eight units, four bytes for each whatever its length.
struct Forms {
    alignas(16) uint32_t forms[8];
    alignas(16) uint16_t lengths[8];

    Forms(Units fronts, Units backs, Units sizes) {
        _mm_store_si128(reinterpret_cast<__m128i*>(forms), _mm_unpacklo_epi16(fronts.raw, backs.raw));
        _mm_store_si128(reinterpret_cast<__m128i*>(forms + 4), _mm_unpackhi_epi16(fronts.raw, backs.raw));
        sizes.store(lengths);
    }

    /// Stores the first `count` one after the other, and up to three bytes more; returns their end.
    uint8_t* store(uint8_t* to, int count) const {
        for (int i = 0; i < count; ++i) {
            std::memcpy(to, &forms[i], 4);
            to += lengths[i];
        }
        return to;
    }

    /// Stores the first `count` (7 or 8) and nothing behind them.
    uint8_t* storeExactly(uint8_t* to, int count) const {
        to = store(to, count - 3); // three bytes follow at least, four behind an empty form
        for (int i = count - 3; i < count; ++i) {
            if (lengths[i] == 0) continue;
            if (lengths[i] == 4) {
                std::memcpy(to, &forms[i], 4);
            } else {
                for (const int byte : {0, lengths[i] / 2, lengths[i] - 1})
                    storeBytes<uint8_t>(to + byte, forms[i] >> (8 * byte));
            }
            to += lengths[i];
        }
        return to;
    }
};

struct UnitForms {
    Units fronts, backs, sizes;
};

/// Of a unit that is no surrogate, or one without partner.
UnitForms encodeAlone(Units block) {
    const Units one = block.atMost(splat(0x7F)), two = block.atMost(splat(0x7FF));
    const Units twoByteFronts =
        shiftedRight<6>(block) | (shiftedLeft<8>(block) & splat(0x3F00)) | splat(0x80C0);
    return {select(one, block, select(two, twoByteFronts, threeByteFronts(block))), threeByteBacks(block),
            splat(3) + one + two};
}

/// A pair's form stands where its low surrogate does, and that of its high surrogate is empty.
UnitForms encodeWithPairs(Units block) {
    const Units alone = block & splat(0xFC00);
    const Units highBefore = {_mm_slli_si128(alone.equal(splat(0xD800)).raw, 2)};
    const Units lowOfPair = alone.equal(splat(0xDC00)) & highBefore;
    const Units highOfPair = {_mm_srli_si128(lowOfPair.raw, 2)};
    const Units upper =
        Units{_mm_slli_si128(block.raw, 2)} - splat(0xD800 - 0x40); // the value's bits from 10 up
    const Units fronts = shiftedRight<8>(upper) | (shiftedLeft<6>(upper) & splat(0x3F00)) | splat(0x80F0);
    const Units backs = (shiftedLeft<4>(upper) & splat(0x30)) | (shiftedRight<6>(block) & splat(0x0F)) |
                        (shiftedLeft<8>(block) & splat(0x3F00)) | splat(0x8080);
    const UnitForms others = encodeAlone(block);
    return {select(lowOfPair, fronts, others.fronts), select(lowOfPair, backs, others.backs),
            (others.sizes - lowOfPair).without(highOfPair)};
}

/// Converts units whose forms have up to `longest` bytes, until others turn up or some blocks in succession
/// would suit a faster path.
template <bool bigEndian, int longest>
Position convertMixed(Position at, Position end) {
    int unmixed = 0;
    while (has(at, end, farUnits, farBytes) && unmixed < (longest == 2 ? 4 : 2)) {
        const Units block = loadUnits<bigEndian>(at.source);
        if (longest == 4 && isAscii(block)) { // between emoji: worth a branch
            store8(at.out, _mm_packus_epi16(block.raw, block.raw));
            at = {at.source + 8, at.out + 8};
            continue;
        }
        const auto shorter = block.atMost(splat(0x7FF)).lanes();
        bool suitsAnother;
        if constexpr (longest == 2) {
            if (!shorter.all()) break;
            suitsAnother = isAscii(block);
            const ShortForms forms = encodeUpToTwoBytes(block);
            forms.store(at.out);
            at = {at.source + 8, at.out + forms.firstSize + forms.secondSize};
        } else {
            const auto surrogates = surrogatesOf(block).lanes();
            suitsAnother = shorter.all() || !shorter.any();
            int count = 8;
            if constexpr (longest == 3) {
                if (surrogates.any()) break;
            } else {
                suitsAnother = !surrogates.any() || surrogates.all();
                count -= isHighSurrogate(readUnit<bigEndian>(at.source + 7)); // its partner may come
            }
            const UnitForms forms = longest == 3 ? encodeAlone(block) : encodeWithPairs(block);
            at.out = Forms(forms.fronts, forms.backs, forms.sizes).store(at.out, count);
            at.source += count;
        }
        unmixed = (unmixed + 1) * suitsAnother; // no branch: it could not be predicted
    }
    return at;
}

/// Eight units of three bytes a step.
struct ThreeByteRun {
    static constexpr std::ptrdiff_t bytes = 24, units = 8, characters = 8;
    static bool suits(uint32_t unit) { return unit >= 0x800 && !isSurrogate(unit); }

    /// Stores the forms; returns two bits for each unit, set if it was right.
    template <bool bigEndian>
    static uint32_t convert(Position at) {
        const Units block = loadUnits<bigEndian>(at.source);
        storeThreeBytes(at.out, block);
        return (block.atMost(splat(0x7FF)) | surrogatesOf(block)).lanes().inverse().bits;
    }
};

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

/// Four pairs a step.
struct PairRun {
    static constexpr std::ptrdiff_t bytes = 16, units = 8, characters = 4;
    static bool suits(uint32_t unit) { return isHighSurrogate(unit); }

    /// Stores the forms; returns two bits for each unit, set if it was right.
    template <bool bigEndian>
    static uint32_t convert(Position at) {
        const __m128i lanes = loadUnits<bigEndian>(at.source).raw;
        Vector<uint8_t>{encodePairs(lanes)}.store(at.out);
        const __m128i valid = _mm_cmpeq_epi32(bitsOf(lanes, static_cast<int>(0xFC00FC00)),
                                              _mm_set1_epi32(static_cast<int>(0xDC00D800)));
        return static_cast<uint32_t>(_mm_movemask_epi8(valid));
    }
};

/// Goes on behind what a step converted, which `right` tells.
template <class Run>
Position behindStep(Position at, uint32_t right) {
    const std::ptrdiff_t count = std::countr_one(right) * Run::characters / 16;
    return {at.source + count * (Run::units / Run::characters),
            at.out + count * (Run::bytes / Run::characters)};
}

/// Converts characters of one length, and a stray one between two long stretches of them. What a step stores
/// too far, up to 24 bytes, is overwritten later.
template <bool bigEndian, class Run>
Position convertRun(Position at, Position end) {
    const uint16_t* stretch = at.source;
    while (has(at, end, farUnits, farBytes)) {
        const uint32_t right = Run::template convert<bigEndian>(at);
        if (right == 0xFFFF) [[likely]] { // a predicted branch: the next step need not wait for this one
            at = {at.source + Run::units, at.out + Run::bytes};
            continue;
        }
        at = behindStep<Run>(at, right);
        if (at.source - stretch < 8) break;
        at = convertPlainly<bigEndian>(at, end, 1);
        stretch = at.source;
        if (at.source == end.source || !Run::suits(readUnit<bigEndian>(at.source))) break;
    }
    return at;
}

// ------------------------------------------------------------------------------------------------ the driver

/// Takes one path after the other, each from where the one before it stopped, while the end is far.
template <bool bigEndian>
TAV_FLATTEN [[gnu::noinline]] Position convertFar(Position at, Position end) {
    while (true) {
        at = convertAsciiRun<bigEndian>(at, end);
        if (!has(at, end, farUnits, farBytes)) return at;
        const uint16_t* const start = at.source;
        const Units block = loadUnits<bigEndian>(at.source);
        const auto shorter = block.atMost(splat(0x7FF)).lanes();
        const auto surrogates = surrogatesOf(block).lanes();
        if (shorter.bits == 0 && !surrogates.any()) at = convertRun<bigEndian, ThreeByteRun>(at, end);
        if (surrogates.all()) at = convertRun<bigEndian, PairRun>(at, end);
        if (at.source == start)
            at = shorter.all()      ? convertMixed<bigEndian, 2>(at, end)
                 : surrogates.any() ? convertMixed<bigEndian, 4>(at, end)
                                    : convertMixed<bigEndian, 3>(at, end);
    }
}

/// Converts eight units at a time for as long as it pays at once: what is left is short, and the plain loop
/// is quick with it.
template <bool bigEndian>
Position convertNear(Position at, Position end) {
    while (has(at, end, 8, 24)) {
        const Units block = loadUnits<bigEndian>(at.source);
        const auto shorter = block.atMost(splat(0x7FF)).lanes();
        if (isAscii(block)) {
            store8(at.out, _mm_packus_epi16(block.raw, block.raw));
            at = {at.source + 8, at.out + 8};
        } else if (shorter.all()) {
            const ShortForms forms = encodeUpToTwoBytes(block);
            forms.storeExactly(at.out, 0);
            at = {at.source + 8, at.out + forms.firstSize + forms.secondSize};
        } else if (const auto surrogates = surrogatesOf(block).lanes(); surrogates.any()) {
            if (surrogates.all()) {
                // What a wrong step stores too far is overwritten: two surrogates become four bytes or more.
                const uint32_t right = PairRun::convert<bigEndian>(at);
                at = behindStep<PairRun>(at, right);
                if (right == 0xFFFF) continue;
                if (!has(at, end, 8, 24)) break;
            }
            const int count = 8 - isHighSurrogate(readUnit<bigEndian>(at.source + 7)); // its partner may come
            const UnitForms forms = encodeWithPairs(loadUnits<bigEndian>(at.source));
            at = {at.source + count,
                  Forms(forms.fronts, forms.backs, forms.sizes).storeExactly(at.out, count)};
        } else if (!shorter.any()) {
            storeThreeBytes(at.out, block);
            at = {at.source + 8, at.out + 24};
        } else {
            const UnitForms forms = encodeAlone(block);
            at = {at.source + 8, Forms(forms.fronts, forms.backs, forms.sizes).storeExactly(at.out, 8)};
        }
    }
    return at;
}

/// Converts the rest of the source, 4 to 7 units, when none needs more than two bytes.
template <bool bigEndian>
[[gnu::always_inline]] inline Position convertShort(Position at, Position end) {
    const std::ptrdiff_t size = end.source - at.source;
    if (size < 4 || size > 7 || end.out - at.out < 2 * size) return at;
    const auto load4 = [](const uint16_t* p) {
        uint64_t units;
        std::memcpy(&units, p, sizeof units);
        return units;
    };
    const uint64_t behindFirst =
        load4(end.source - 4) >> 1 >> (127 - 16 * size); // together the shift may be 64
    const auto vector = [](uint64_t value) { return _mm_cvtsi64_si128(static_cast<int64_t>(value)); };
    const Units block =
        inOrder<bigEndian>({_mm_unpacklo_epi64(vector(load4(at.source)), vector(behindFirst))});
    if (!block.atMost(splat(0x7FF)).lanes().all()) return at;
    const ShortForms forms = encodeUpToTwoBytes(block);
    forms.storeExactly(at.out, 8 - size); // without the zeros
    return {end.source, at.out + forms.firstSize + forms.secondSize - (8 - size)};
}

template <bool bigEndian>
TAV_FLATTEN [[gnu::noinline]] Position convertRest(Position at, Position end) {
    at = convertNear<bigEndian>(at, end);
    at = convertShort<bigEndian>(at, end);
    return at.source == end.source ? at : convertPlainly<bigEndian>(at, end, end.source - at.source);
}

/// Converts ASCII from the start of the source, all of it if it is 8 units or more.
template <bool bigEndian>
[[gnu::always_inline]] inline Position convertAsciiStart(const Position start, const Position end) {
    const std::ptrdiff_t size = end.source - start.source;
    if (size < 8 || size > end.out - start.out) return start;
    const auto convert16 = [](Units first, Units second, uint8_t* out) {
        if (!isAscii(first | second)) return false;
        Vector<uint8_t>{_mm_packus_epi16(first.raw, second.raw)}.store(out);
        return true;
    };
    const auto load = [](const uint16_t* p) { return loadUnits<bigEndian>(p); };
    if (size < 16) { // two blocks that overlap
        const Units first = load(start.source), last = load(end.source - 8);
        if (!isAscii(first | last)) return start;
        store8(start.out, _mm_packus_epi16(first.raw, first.raw));
        store8(start.out + size - 8, _mm_packus_epi16(last.raw, last.raw));
        return {end.source, start.out + size};
    }
    Position at = start;
    for (; end.source - at.source >= 16; at = {at.source + 16, at.out + 16})
        if (!convert16(load(at.source), load(at.source + 8), at.out)) return at;
    // A last block, of which a part has been converted.
    const std::ptrdiff_t left = end.source - at.source;
    if (left > 0 && !convert16(load(end.source - 16), load(end.source - 8), at.out + left - 16)) return at;
    return {end.source, at.out + left};
}

template <bool bigEndian>
Position convertAll(Position at, Position end) {
    at = convertAsciiStart<bigEndian>(at, end);
    if (at.source == end.source) return at;
    if (end.source - at.source < 4) return convertPlainly<bigEndian>(at, end, 4);
    if (has(at, end, farUnits, farBytes)) at = convertFar<bigEndian>(at, end);
    return convertRest<bigEndian>(at, end);
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
