// Look-ups in the Unicode 5.1 tables: a code point's properties in constant time, names by comparison.
#include "unicode/properties.h"

#include "unicode/property_tables.h"

#include <cstring>

namespace tav::unicode {

namespace {

using tables::Origin;
using tables::Properties;

constexpr uint32_t subcategoryBits = 0x7F;

constexpr uint32_t majorClass(CategoryValue value) {
    return value & ~subcategoryBits;
}

const Properties& propertiesOf(uint32_t codePoint) {
    if (codePoint > tables::lastCodePoint) return tables::properties[0]; // as an unassigned one
    constexpr uint32_t inBlock = (1u << tables::propertyBlockBits) - 1;
    const uint32_t block = tables::propertyStage1[codePoint >> tables::propertyBlockBits];
    return tables::properties[tables::propertyStage2[block << tables::propertyBlockBits |
                                                     (codePoint & inBlock)]];
}

/// The test of a code point that has a record of its own.
bool recordMatches(CategoryValue category, CategoryValue value, bool negated) {
    if (majorClass(category) != majorClass(value)) return negated;
    const bool wholeClass = (value & subcategoryBits) == 0;
    return (wholeClass || (value & category & subcategoryBits) != 0) != negated;
}

bool rangeMatches(CategoryValue category, CategoryValue value, bool negated) {
    return negated ? (value & ~category) != 0 : (category & value) == value;
}

/// The rest of the test for code points without a record. Deliberate: unassigned code points match Cn whether
/// negated or not, and those above every record match nothing.
bool unrecordedMatches(uint32_t codePoint, CategoryValue value) {
    return value == categoryUnassigned && codePoint <= tables::lastRecord;
}

struct CategoryName {
    char name[4]; // with its closing brace
    CategoryValue value;
};

constexpr CategoryName categoryNames[] = {
    {"C}", 0x2000},  {"Cs}", 0x2008},      {"Cn}", categoryUnassigned},
    {"Co}", 0x2004}, {"Cf}", 0x2002},      {"Cc}", 0x2001},
    {"L}", 0x80},    {"L&}", 0x87},        {"Lo}", 0x90},
    {"Lm}", 0x88},   {"Lt}", 0x84},        {"Lu}", 0x82},
    {"Ll}", 0x81},   {"M}", categoryMark}, {"Me}", 0x104},
    {"Mc}", 0x102},  {"Mn}", 0x101},       {"N}", 0x800},
    {"No}", 0x804},  {"Nl}", 0x802},       {"Nd}", 0x801},
    {"P}", 0x1000},  {"Ps}", 0x1002},      {"Po}", 0x1040},
    {"Pi}", 0x1008}, {"Pf}", 0x1010},      {"Pe}", 0x1004},
    {"Pd}", 0x1001}, {"Pc}", 0x1020},      {"S}", 0x400},
    {"Sm}", 0x401},  {"So}", 0x408},       {"Sk}", 0x404},
    {"Sc}", 0x402},  {"Z}", 0x200},        {"Zs}", 0x201},
    {"Zp}", 0x204},  {"Zl}", 0x202},
};

/// Does the text begin with `prefix`? Stops at the first difference, so nothing behind the text's terminating
/// zero is read.
bool beginsWith(const char* text, const char* prefix) {
    for (; *prefix != '\0'; ++text, ++prefix)
        if (*text != *prefix) return false;
    return true;
}

} // namespace

RangeList findBlock(const char* name, std::size_t length) {
    for (const tables::NamedRange& block : tables::blocks)
        if (length <= std::strlen(block.name) && std::memcmp(block.name, name, length) == 0)
            return {&block.range, 1};
    return {nullptr, 0};
}

RangeList findScript(const char* name) {
    for (const tables::NamedRanges& script : tables::scripts)
        if (beginsWith(name, script.name)) return script.list;
    return {nullptr, 0};
}

CategoryValue findCategory(const char* name) {
    for (const CategoryName& category : categoryNames)
        if (beginsWith(name, category.name)) return category.value;
    return categoryUnknown;
}

bool categoryTest(uint32_t codePoint, CategoryValue value, bool negated) {
    const Properties& found = propertiesOf(codePoint);
    if (found.origin == Origin::record) return recordMatches(found.category, value, negated);
    if (found.origin == Origin::listedRange && rangeMatches(found.category, value, negated)) return true;
    return unrecordedMatches(codePoint, value);
}

uint32_t simpleUppercase(uint32_t codePoint) {
    return codePoint + static_cast<uint32_t>(propertiesOf(codePoint).toUpper);
}

uint32_t simpleLowercase(uint32_t codePoint) {
    return codePoint + static_cast<uint32_t>(propertiesOf(codePoint).toLower);
}

bool isCombiningMark(uint32_t codePoint) {
    return majorClass(propertiesOf(codePoint).category) == categoryMark;
}

bool isListed(uint32_t codePoint) {
    return propertiesOf(codePoint).origin != Origin::none;
}

} // namespace tav::unicode
