// Case mapping of UTF-16 text. The definition is the two-stage table of records; what the loops use is
// derived from it at compile time: the same stages with a difference per unit, and the mapping itself for the
// first scripts. Blocks of Latin-1 and of scripts without case are mapped by vector.
#include "unicode/case.h"

#include "base/arguments.h"
#include "base/vector.h"
#include "unicode/case_tables.h"
#include "unicode/patience.h"

#include <array>
#include <iterator>

namespace tav::unicode {

namespace {

using Units = Vector<uint16_t>;

// ------------------------------------------------------------------------------------------- the definition

consteval int32_t caseDelta(uint32_t record) {
    return static_cast<int32_t>(record) >> tables::caseDeltaShift;
}

/// The difference from a unit with this record to its lower and to its upper case.
consteval int32_t lowerDelta(uint32_t record) {
    return (record & tables::caseHasLower) != 0 ? caseDelta(record) : 0;
}

consteval int32_t upperDelta(uint32_t record) {
    return (record & tables::caseHasUpper) != 0 ? -caseDelta(record) : 0;
}

// --------------------------------------------------------------------------------------- the derived tables

/// Stage 2 with a difference in the place of each index of a record.
using Deltas = std::array<int16_t, std::size(tables::caseStage2)>;

template <class DeltaOf>
consteval Deltas makeDeltas(DeltaOf deltaOf) {
    Deltas deltas = {};
    for (std::size_t i = 0; i < deltas.size(); ++i)
        deltas[i] = static_cast<int16_t>(deltaOf(tables::caseRecords[tables::caseStage2[i]]));
    return deltas;
}

constexpr uint16_t mapByDelta(const Deltas& deltas, uint32_t unit) {
    const int16_t delta = deltas[tables::caseStage1[unit >> 6] | (unit & 63)];
    return static_cast<uint16_t>(unit + static_cast<uint32_t>(delta));
}

/// The mapping itself for the units below a bound: Latin, Greek, Cyrillic, Armenian, Hebrew.
constexpr uint16_t directEnd = 0x600;
using Direct = std::array<uint16_t, directEnd>;

consteval Direct makeDirect(const Deltas& deltas) {
    Direct direct = {};
    for (uint32_t unit = 0; unit < directEnd; ++unit)
        direct[unit] = mapByDelta(deltas, unit);
    return direct;
}

// ---------------------------------------------------------------------------------------------- eight units

/// All ones in the lanes whose unit lies in first..last.
Units within(Units block, uint16_t first, uint16_t last) {
    const auto bias = static_cast<uint16_t>(0x8000 - first); // takes the range to the smallest signed numbers
    const auto limit = static_cast<short>(last - first + 1 - 0x8000);
    return {_mm_cmplt_epi16((block + Units::splat(bias)).raw, _mm_set1_epi16(limit))};
}

/// The letters of Latin-1 and ASCII that have their partner 32 further on, and those that have it before
/// them.
Units capitals(Units block) {
    return within(block, 'A', 'Z') | within(block, 0xC0, 0xDE).without(block.equal(Units::splat(0xD7)));
}

Units smallLetters(Units block) {
    return within(block, 'a', 'z') | within(block, 0xE0, 0xFE).without(block.equal(Units::splat(0xF7)));
}

struct Lower {
    static constexpr Deltas deltas = makeDeltas(lowerDelta);
    static constexpr Direct direct = makeDirect(deltas);
    static constexpr uint16_t lastLatin = 0xFF;
    static Units mapAscii(Units block) { return block + (within(block, 'A', 'Z') & Units::splat(32)); }
    static Units mapLatin(Units block) { return block + (capitals(block) & Units::splat(32)); }
};

struct Upper {
    static constexpr Deltas deltas = makeDeltas(upperDelta);
    static constexpr Direct direct = makeDirect(deltas);
    static constexpr uint16_t lastLatin = 0xFE; // y with diaeresis has its partner elsewhere
    static Units mapAscii(Units block) { return block - (within(block, 'a', 'z') & Units::splat(32)); }
    static Units mapLatin(Units block) { return block - (smallLetters(block) & Units::splat(32)); }
};

bool allWithin(Units block, uint16_t first, uint16_t last) {
    return within(block, first, last).lanes().all();
}

template <class Case>
bool isLatin(Units block) {
    return allWithin(block, 0, Case::lastLatin);
}

/// The largest range without case mappings: kana, ideographs, Hangul, surrogates, private use.
constexpr uint16_t firstCaseless = 0x24EA, lastCaseless = 0xFF20;

/// Are all units Latin, general punctuation (which has no case either) or in that range?
template <class Case>
bool isLatinOrCaseless(Units block) {
    return (within(block, 0, Case::lastLatin) | within(block, 0x2000, 0x215F) |
            within(block, firstCaseless, lastCaseless))
        .lanes()
        .all();
}

template <class Case>
void mapDirectly(const uint16_t* from, uint16_t* to) {
    for (int i = 0; i < Units::size; ++i)
        to[i] = Case::direct[from[i]];
}

template <class Case>
uint16_t mapUnit(uint16_t unit) {
    return mapByDelta(Case::deltas, unit);
}

// --------------------------------------------------------------------------------------------- whole strings

/// Where work goes on.
struct Place {
    const uint16_t* src;
    uint16_t* dst;
};

/// Maps four blocks at a time as long as they are ASCII or without case.
template <class Case>
[[gnu::always_inline]] inline Place mapFourBlocks(Place at, const uint16_t* end) {
    constexpr std::ptrdiff_t size = Units::size;
    for (; end - at.src >= 4 * size; at = {at.src + 4 * size, at.dst + 4 * size}) {
        const auto load = [&at](std::ptrdiff_t i) { return Units::load(at.src + i * size); };
        const Units blocks[] = {load(0), load(1), load(2), load(3)};
        const auto within4 = [&blocks](uint16_t first, uint16_t last) {
            return (within(blocks[0], first, last) & within(blocks[1], first, last) &
                    within(blocks[2], first, last) & within(blocks[3], first, last))
                .lanes()
                .all();
        };
        const bool ascii = allWithin(blocks[0] | blocks[1] | blocks[2] | blocks[3], 0, 0x7F);
        if (!ascii && !within4(firstCaseless, lastCaseless)) break;
        for (std::ptrdiff_t i = 0; i < 4; ++i)
            (ascii ? Case::mapAscii(blocks[i]) : blocks[i]).store(at.dst + i * size);
    }
    return at;
}

/// Maps blocks of Latin and caseless units, a few before another kind may be tried again.
template <class Case>
[[gnu::always_inline]] inline Place mapLatinAndCaseless(Place at, const uint16_t* end) {
    constexpr std::ptrdiff_t size = Units::size;
    for (int i = 0; i < 16 && end - at.src >= size; ++i, at = {at.src + size, at.dst + size}) {
        const Units block = Units::load(at.src);
        if (!isLatinOrCaseless<Case>(block)) break;
        Case::mapLatin(block).store(at.dst);
    }
    return at;
}

/// Maps blocks as far as their units are Latin or caseless, or all of the first scripts.
template <class Case>
[[gnu::always_inline]] inline Place mapBlocks(Place at, const uint16_t* end) {
    constexpr std::ptrdiff_t size = Units::size;
    while (true) {
        at = mapFourBlocks<Case>(at, end);
        for (int i = 0; i < 16; ++i) {
            if (end - at.src < size) return at;
            const Units block = Units::load(at.src);
            if (isLatin<Case>(block)) {
                Case::mapLatin(block).store(at.dst);
                at = {at.src + size, at.dst + size};
            } else if (allWithin(block, 0, directEnd - 1)) {
                mapDirectly<Case>(at.src, at.dst);
                at = {at.src + size, at.dst + size};
            } else if (isLatinOrCaseless<Case>(block)) {
                Case::mapLatin(block).store(at.dst);
                at = {at.src + size, at.dst + size};
                if (end - at.src >= 4 * size) at = mapLatinAndCaseless<Case>(at, end);
            } else {
                return at;
            }
        }
    }
}

template <class Case>
Place mapPlainly(Place at, const uint16_t* end, std::ptrdiff_t units) {
    const uint16_t* const stop = end - at.src > units ? at.src + units : end;
    for (; stop - at.src >= Units::size; at = {at.src + Units::size, at.dst + Units::size})
        for (int i = 0; i < Units::size; ++i)
            at.dst[i] = mapUnit<Case>(at.src[i]);
    while (at.src != stop)
        *at.dst++ = mapUnit<Case>(*at.src++);
    return at;
}

/// What the vectors leave: the end, and whatever does not suit them.
template <class Case>
[[gnu::noinline]] void mapRest(Place at, const uint16_t* end) {
    Patience patience;
    while (end - at.src >= Units::size) {
        at = mapPlainly<Case>(at, end, patience.afterFailure());
        const uint16_t* const before = at.src;
        at = mapBlocks<Case>(at, end);
        if (at.src != before) patience.afterSuccess(at.src - before);
    }
    mapPlainly<Case>(at, end, end - at.src);
}

template <class Case>
void mapAll(const uint16_t* src, uint16_t* dst, int32_t len) {
    const uint16_t* const end = src + len;
    const Place at = mapBlocks<Case>({src, dst}, end);
    if (at.src != end) mapRest<Case>(at, end);
}

template <class Case>
tavStatus map(const uint16_t* src, uint16_t* dst, int32_t len) {
    if (const auto bad = Arguments::pointers(src, dst).lengths(len); bad.failed()) return bad.status;
    mapAll<Case>(src, dst, len);
    return tavStsNoError;
}

int32_t foldedDifference(uint16_t left, uint16_t right) {
    return mapUnit<Lower>(left) - mapUnit<Lower>(right);
}

/// All ones in the lanes of Latin units that have the same lower case: equal ones, and letters 32 apart.
Units equalFoldedLatin(Units left, Units right) {
    const Units small = left | Units::splat(32);
    const Units letters =
        within(small, 'a', 'z') | within(small, 0xE0, 0xFE).without(small.equal(Units::splat(0xF7)));
    const Units difference = left ^ right;
    return difference.equal(Units::zero()) | (difference.equal(Units::splat(32)) & letters);
}

/// Do the lower cases of eight pairs differ?
bool differFolded(const uint16_t* src1, const uint16_t* src2) {
    const Units left = Units::load(src1);
    const Units right = Units::load(src2);
    if (left.equal(right).lanes().all()) return false;
    if (isLatin<Lower>(left | right)) return !equalFoldedLatin(left, right).lanes().all();
    int differences = 0;
    if (allWithin(left, 0, directEnd - 1) && allWithin(right, 0, directEnd - 1)) {
        for (int i = 0; i < Units::size; ++i)
            differences |= Lower::direct[src1[i]] ^ Lower::direct[src2[i]];
    } else {
        for (int i = 0; i < Units::size; ++i)
            differences |= mapUnit<Lower>(src1[i]) ^ mapUnit<Lower>(src2[i]);
    }
    return differences != 0;
}

int32_t compareAll(const uint16_t* src1, const uint16_t* src2, int32_t len) {
    int32_t i = 0;
    while (len - i >= Units::size && !differFolded(src1 + i, src2 + i))
        i += Units::size;
    for (; i < len; ++i)
        if (const int32_t difference = foldedDifference(src1[i], src2[i]); difference != 0) return difference;
    return 0;
}

} // namespace

TAV_FLATTEN tavStatus lowercase(const uint16_t* src, uint16_t* dst, int32_t len) {
    return map<Lower>(src, dst, len);
}

tavStatus lowercaseInPlace(uint16_t* srcDst, int32_t len) {
    return lowercase(srcDst, srcDst, len);
}

TAV_FLATTEN tavStatus uppercase(const uint16_t* src, uint16_t* dst, int32_t len) {
    return map<Upper>(src, dst, len);
}

tavStatus uppercaseInPlace(uint16_t* srcDst, int32_t len) {
    return uppercase(srcDst, srcDst, len);
}

TAV_FLATTEN tavStatus compareIgnoreCase(const uint16_t* src1, const uint16_t* src2, int32_t len,
                                        int32_t* result) {
    if (const auto bad = Arguments::pointers(src1, src2, result).lengths(len); bad.failed())
        return bad.status;
    *result = compareAll(src1, src2, len);
    return tavStsNoError;
}

} // namespace tav::unicode
