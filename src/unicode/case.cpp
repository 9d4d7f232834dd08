// Case mapping of UTF-16 text. The definition is the two-stage table of records; what the loops use is
// derived from it at compile time: the same stages with a difference per unit, and the mapping itself for the
// first scripts. Blocks of ASCII and of scripts without case are mapped by vector.
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

struct Lower {
    static constexpr Deltas deltas = makeDeltas(lowerDelta);
    static constexpr Direct direct = makeDirect(deltas);
    static Units mapAscii(Units block) { return block + (within(block, 'A', 'Z') & Units::splat(32)); }
};

struct Upper {
    static constexpr Deltas deltas = makeDeltas(upperDelta);
    static constexpr Direct direct = makeDirect(deltas);
    static Units mapAscii(Units block) { return block - (within(block, 'a', 'z') & Units::splat(32)); }
};

bool isAscii(Units block) {
    return (block & Units::splat(0xFF80)).equal(Units::zero()).lanes().all();
}

/// Are all units ASCII or in the largest range without case mappings (kana, ideographs, Hangul, surrogates,
/// private use)?
bool isAsciiOrCaseless(Units block) {
    return (within(block, 0, 0x7F) | within(block, 0x24EA, 0xFF20)).lanes().all();
}

bool isDirect(Units block) {
    return block.atMost(Units::splat(directEnd - 1)).lanes().all();
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

/// Maps blocks of ASCII and caseless units as far as they go.
template <class Case>
Place mapVectors(Place at, const uint16_t* end) {
    for (; end - at.src >= Units::size; at = {at.src + Units::size, at.dst + Units::size}) {
        const Units block = Units::load(at.src);
        if (!isAscii(block) && !isAsciiOrCaseless(block)) break;
        Case::mapAscii(block).store(at.dst);
    }
    return at;
}

/// Maps blocks of the first scripts as far as they go, or until two in succession are ASCII.
template <class Case>
Place mapFirstScripts(Place at, const uint16_t* end) {
    int asciiBlocks = 0;
    for (; end - at.src >= Units::size && asciiBlocks < 2;
         at = {at.src + Units::size, at.dst + Units::size}) {
        const Units block = Units::load(at.src);
        if (!isDirect(block)) break;
        asciiBlocks = (asciiBlocks + 1) * isAscii(block); // no branch: it could not be predicted
        mapDirectly<Case>(at.src, at.dst);
    }
    return at;
}

template <class Case>
Place mapPlainly(Place at, const uint16_t* end, std::ptrdiff_t units) {
    const uint16_t* const stop = end - at.src > units ? at.src + units : end;
    while (at.src != stop)
        *at.dst++ = mapUnit<Case>(*at.src++);
    return at;
}

template <class Case>
void mapAll(const uint16_t* src, uint16_t* dst, int32_t len) {
    const uint16_t* const end = src + len;
    Place at = {src, dst};
    Patience patience;
    while (end - at.src >= Units::size) {
        const uint16_t* const before = at.src;
        at = mapVectors<Case>(at, end);
        at = mapFirstScripts<Case>(at, end);
        if (at.src != before) {
            patience.afterSuccess(at.src - before);
        } else {
            at = mapPlainly<Case>(at, end, patience.afterFailure());
        }
    }
    mapPlainly<Case>(at, end, end - at.src);
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

/// Do the lower cases of eight pairs differ?
bool differFolded(const uint16_t* src1, const uint16_t* src2) {
    const Units left = Units::load(src1);
    const Units right = Units::load(src2);
    if (left.equal(right).lanes().all()) return false;
    if (isAscii(left | right)) return !Lower::mapAscii(left).equal(Lower::mapAscii(right)).lanes().all();
    const bool direct = isDirect(left.max(right));
    int differences = 0;
    for (int i = 0; i < Units::size; ++i)
        differences |= direct ? Lower::direct[src1[i]] ^ Lower::direct[src2[i]]
                              : mapUnit<Lower>(src1[i]) ^ mapUnit<Lower>(src2[i]);
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

tavStatus lowercase(const uint16_t* src, uint16_t* dst, int32_t len) {
    return map<Lower>(src, dst, len);
}

tavStatus lowercaseInPlace(uint16_t* srcDst, int32_t len) {
    return map<Lower>(srcDst, srcDst, len);
}

tavStatus uppercase(const uint16_t* src, uint16_t* dst, int32_t len) {
    return map<Upper>(src, dst, len);
}

tavStatus uppercaseInPlace(uint16_t* srcDst, int32_t len) {
    return map<Upper>(srcDst, srcDst, len);
}

tavStatus compareIgnoreCase(const uint16_t* src1, const uint16_t* src2, int32_t len, int32_t* result) {
    if (const auto bad = Arguments::pointers(src1, src2, result).lengths(len); bad.failed())
        return bad.status;
    *result = compareAll(src1, src2, len);
    return tavStsNoError;
}

} // namespace tav::unicode
