// The single-character items as instruction values. They are the same whether they stand alone or in a class.
#pragma once

#include "regex/compile/escapes.h"
#include "regex/match/program.h"
#include "unicode/properties.h"

namespace tav::regex::compiler {

constexpr int32_t negation(bool negated) {
    return negated ? -1 : 0;
}

constexpr Instruction characterItem(uint8_t byte) {
    return {OP_CHAR, byte, 0, 0, nullptr};
}
constexpr Instruction codePointItem(uint32_t value) {
    return {OP_UCHAR, static_cast<int32_t>(value), 0, 0, nullptr};
}
constexpr Instruction hexadecimalItem(const HexadecimalValue& hexadecimal) {
    return hexadecimal.codePoint ? codePointItem(hexadecimal.value)
                                 : characterItem(static_cast<uint8_t>(hexadecimal.value));
}
constexpr Instruction typeItem(int letter) {
    return {OP_TYPE, letter, 0, 0, nullptr};
}
constexpr Instruction rangeItem(uint8_t low, uint8_t high) {
    return {OP_RANGE, low, high, 0, nullptr};
}
constexpr Instruction categoryItem(unicode::CategoryValue value, bool negated) {
    return {OP_UPROP, static_cast<int32_t>(value), negation(negated), 0, nullptr};
}
constexpr Instruction anyCodePointItem(bool negated) {
    return {OP_URANGE, 0, 0x10FFFF, negation(negated), nullptr};
}
constexpr Instruction rangeListItem(unicode::RangeList list, bool negated) {
    return {OP_ULIST, 0, negation(negated), list.count, list.ranges};
}

} // namespace tav::regex::compiler
