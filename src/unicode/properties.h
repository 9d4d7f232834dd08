// Unicode 5.1 properties for patterns: category, script and block names, and the tests of code points.
#pragma once

#include <cstddef>
#include <cstdint>

namespace tav::unicode {

/// Code points first..last, both included.
struct CodePointRange {
    uint32_t first;
    uint32_t last;
};

/// A list of ranges in the constant tables; `count` 0 when a name is not known.
struct RangeList {
    const CodePointRange* ranges;
    int32_t count;
};

/// A general category as a set of bits: bits 7 to 13 the major class, bits 0 to 6 the subcategories in it.
using CategoryValue = uint32_t;
inline constexpr CategoryValue categoryUnknown = 0; // no category has this value
inline constexpr CategoryValue categoryMark = 0x100;
inline constexpr CategoryValue categoryUnassigned = 0x2010;

/// The first block whose name begins with the `length` bytes at `name`, as a list of one range.
RangeList findBlock(const char* name, std::size_t length);

/// The script whose name is the text at `name` up to the next "}"; reads nothing behind a terminating zero.
RangeList findScript(const char* name);

/// The category named by the text at `name` up to the next "}", or categoryUnknown. "Any" is not among them.
CategoryValue findCategory(const char* name);

/// Does `codePoint` match `value`, or its negation? Deliberately asymmetric for unassigned code points: they
/// match Cn whether negated or not, and nothing else.
bool categoryTest(uint32_t codePoint, CategoryValue value, bool negated);

/// Simple case mappings; a code point without one stands for itself.
uint32_t simpleUppercase(uint32_t codePoint);
uint32_t simpleLowercase(uint32_t codePoint);

/// Is the code point a combining mark (category M)?
bool isCombiningMark(uint32_t codePoint);

/// Is the code point in the tables at all: assigned, or inside one of the ranges listed as first and last?
bool isListed(uint32_t codePoint);

} // namespace tav::unicode
