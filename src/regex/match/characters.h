// What one character of the subject is, and which items of a program it matches.
//
// These are the plain rules, asked item by item. The matcher asks them for characters beyond ASCII and builds
// its tables for bytes from them.
#pragma once

#include "regex/match/program.h"
#include "unicode/utf8.h"

namespace tav::regex {

using unicode::Utf8Sequence;

constexpr bool isAsciiLetter(uint32_t c) {
    return (c | 0x20) - 'a' < 26;
}
constexpr bool isDigit(uint32_t c) {
    return c - '0' < 10;
}
constexpr bool isWordByte(uint32_t c) {
    return isAsciiLetter(c) || isDigit(c) || c == '_';
}

/// Byte 11 is deliberately not a space.
constexpr bool isSpaceByte(uint32_t c) {
    return c == 9 || c == 10 || c == 12 || c == 13 || c == 32;
}

constexpr uint8_t foldAscii(uint8_t c) {
    return isAsciiLetter(c) ? c | 0x20 : c;
}

/// Are two bytes equal, under the caseless option up to the case of ASCII letters?
constexpr bool sameByte(uint8_t a, uint8_t b, bool caseless) {
    return a == b || (caseless && foldAscii(a) == foldAscii(b));
}

/// Does OP_TYPE `letter` match a character whose first byte is `lead`? Of a multi-byte character only the
/// lead byte is looked at, so "." "D" "S" "W" accept every such character and "d" "s" "w" none.
bool typeMatches(int32_t letter, uint8_t lead, bool dotAll);

/// Does the single item (OP_TYPE, OP_UCHAR, OP_UPROP, OP_URANGE, OP_ULIST) match? A malformed byte matches no
/// plain code-point item.
bool itemMatches(const Instruction& item, const Utf8Sequence& character, uint32_t options);

/// Does the class (OP_SET and the items behind it) match?
bool classMatches(const Instruction* set, const Utf8Sequence& character, uint32_t options);

/// The start of the character that holds the byte before `p`; never before `floor`, which `p` lies behind.
const uint8_t* previousCharacter(const uint8_t* p, const uint8_t* floor, const uint8_t* limit);

/// The end of the extended character at `p` (a character that is no combining mark, and the marks behind it),
/// or null when there is none. Reads nothing at or behind `limit`; `end` is where matching must stop.
const uint8_t* extendedCharacterEnd(const uint8_t* p, const uint8_t* end, const uint8_t* limit);

} // namespace tav::regex
