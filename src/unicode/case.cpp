// Case mapping of UTF-16 text. mapUnit is the definition: a look-up in the two-stage table. Beside it stand
// vector paths for ASCII and for the scripts whose letters lie a fixed distance from their partners or have
// none: Latin-1, Cyrillic and the caseless ranges, freely mixed.
#include "unicode/case.h"

#include "base/arguments.h"
#include "base/vector.h"
#include "unicode/case_tables.h"
#include "unicode/patience.h"

namespace tav::unicode {

namespace {

using Units = Vector<uint16_t>;

uint32_t caseRecord(uint32_t unit) {
    return tables::caseRecords[tables::caseStage2[tables::caseStage1[unit >> 6] | (unit & 63)]];
}

int32_t caseDelta(uint32_t record) {
    return static_cast<int32_t>(record) >> tables::caseDeltaShift;
}

/// `distance` in the lanes whose unit lies in first..last.
Units shiftOf(Units block, uint16_t first, uint16_t last, uint16_t distance) {
    return VectorRange<uint16_t>(first, last).contains(block) & Units::splat(distance);
}

Units isUnit(Units block, uint16_t unit) {
    return block.equal(Units::splat(unit));
}

struct Lower {
    static uint16_t mapUnit(uint32_t unit) {
        const uint32_t record = caseRecord(unit);
        if ((record & tables::caseHasLower) == 0) return static_cast<uint16_t>(unit);
        return static_cast<uint16_t>(static_cast<int32_t>(unit) + caseDelta(record));
    }

    static Units mapAscii(Units block) { return block + shiftOf(block, 'A', 'Z', 32); }

    /// For the units that inFixedDistance accepts.
    static Units mapFixedDistance(Units block) {
        const Units latin = shiftOf(block, 0xC0, 0xDE, 32).without(isUnit(block, 0xD7));
        const Units cyrillic = shiftOf(block, 0x410, 0x42F, 32);
        const Units extended = shiftOf(block, 0x401, 0x40F, 80).without(isUnit(block, 0x40D));
        return mapAscii(block) + (latin | cyrillic | extended);
    }
};

struct Upper {
    static uint16_t mapUnit(uint32_t unit) {
        const uint32_t record = caseRecord(unit);
        if ((record & tables::caseHasUpper) == 0) return static_cast<uint16_t>(unit);
        return static_cast<uint16_t>(static_cast<int32_t>(unit) - caseDelta(record));
    }

    static Units mapAscii(Units block) { return block - shiftOf(block, 'a', 'z', 32); }

    static Units mapFixedDistance(Units block) {
        const Units latin = shiftOf(block, 0xE0, 0xFE, 32).without(isUnit(block, 0xF7));
        const Units yDiaeresis = isUnit(block, 0xFF) & Units::splat(static_cast<uint16_t>(0xFF - 0x178));
        const Units cyrillic = shiftOf(block, 0x430, 0x44F, 32);
        const Units extended = shiftOf(block, 0x451, 0x45F, 80).without(isUnit(block, 0x45D));
        return mapAscii(block) - (latin | yDiaeresis | cyrillic | extended);
    }
};

/// Are all units Latin-1, basic Cyrillic, or in one of the large ranges without case?
bool inFixedDistance(Units block) {
    const Units latin = block.atMost(Units::splat(0xFF));
    const Units cyrillic = VectorRange<uint16_t>(0x400, 0x45F).contains(block);
    const Units punctuation = VectorRange<uint16_t>(0x2000, 0x20FF).contains(block);
    const Units asian = VectorRange<uint16_t>(0x2E80, 0xFEFF).contains(block); // to the surrogates and beyond
    return (latin | cyrillic | punctuation | asian).lanes().all();
}

/// Maps eight units by vector; false when some of them need the table.
template <class Case>
bool mapBlock(Units block, Units& mapped) {
    if (block.atMost(Units::splat(0x7F)).lanes().all()) {
        mapped = Case::mapAscii(block);
        return true;
    }
    if (!inFixedDistance(block)) return false;
    mapped = Case::mapFixedDistance(block);
    return true;
}

template <class Case>
void mapAll(const uint16_t* src, uint16_t* dst, int32_t len) {
    Patience patience;
    int32_t i = 0;
    while (len - i >= Units::size) {
        Units mapped;
        if (mapBlock<Case>(Units::load(src + i), mapped)) {
            mapped.store(dst + i);
            i += Units::size;
            patience.afterSuccess(8);
            continue;
        }
        for (int left = patience.afterFailure(); left > 0 && i < len; --left, ++i)
            dst[i] = Case::mapUnit(src[i]);
    }
    for (; i < len; ++i)
        dst[i] = Case::mapUnit(src[i]);
}

template <class Case>
tavStatus map(const uint16_t* src, uint16_t* dst, int32_t len) {
    if (const auto bad = Arguments::pointers(src, dst).lengths(len); bad.failed()) return bad.status;
    mapAll<Case>(src, dst, len);
    return tavStsNoError;
}

int32_t foldedDifference(uint16_t left, uint16_t right) {
    return Lower::mapUnit(left) - Lower::mapUnit(right);
}

/// The index of the first pair at or after `i` that still differs in lower case, or `len`.
int32_t findFoldedDifference(const uint16_t* src1, const uint16_t* src2, int32_t i, int32_t len) {
    while (i < len && foldedDifference(src1[i], src2[i]) == 0)
        ++i;
    return i;
}

/// The same for the eight pairs from `i` on; `i + 8` when they are equal.
int32_t compareBlock(const uint16_t* src1, const uint16_t* src2, int32_t i) {
    const Units left = Units::load(src1 + i);
    const Units right = Units::load(src2 + i);
    if (left.equal(right).lanes().all()) return i + Units::size;
    Units foldedLeft, foldedRight;
    if (!mapBlock<Lower>(left, foldedLeft) || !mapBlock<Lower>(right, foldedRight))
        return findFoldedDifference(src1, src2, i, i + Units::size);
    const auto differing = foldedLeft.equal(foldedRight).lanes().inverse();
    return i + (differing.any() ? differing.first() : Units::size);
}

int32_t compareAll(const uint16_t* src1, const uint16_t* src2, int32_t len) {
    int32_t i = 0;
    while (len - i >= Units::size) {
        const int32_t next = compareBlock(src1, src2, i);
        if (next != i + Units::size) return foldedDifference(src1[next], src2[next]);
        i = next;
    }
    i = findFoldedDifference(src1, src2, i, len);
    return i == len ? 0 : foldedDifference(src1[i], src2[i]);
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
