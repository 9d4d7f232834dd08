// Escapes: which letter means what, outside and inside classes, and the reading of those that carry operands.
#pragma once

#include "regex/compile/outcome.h"
#include "regex/compile/pattern_text.h"
#include "regex/match/program.h"

namespace tav::regex::compiler {

enum class EscapeKind : uint8_t {
    literal,     // the escaped byte itself
    character,   // a control character with a letter of its own: `character`
    type,        // a character type
    assertion,   // outside classes only
    octal,       // an octal value
    reference,   // a back-reference or an octal value; outside classes only
    control,     // "\cX"
    hexadecimal, // "\xhh" or "\x{...}"
    property,    // "\p" or "\P"
    anyByte,     // outside classes only
    extended,    // outside classes only
    quote,       // "\Q"
    ignored,     // "\E"
};

struct Escape {
    EscapeKind kind;
    uint8_t character;
};

Escape escapeOutsideClass(int letter);
Escape escapeInsideClass(int letter);

/// The character of up to three octal digits at `at` (none: character 0), which moves behind them.
/// Deliberately only the low byte of a larger value is kept.
uint8_t readOctal(const PatternText& text, Offset& at);

/// The character of "\c" with its operand at `at`, which moves behind it; the letter "c" at the text's end.
uint8_t readControl(const PatternText& text, Offset& at);

/// A value written in hexadecimal: "\xhh" is a byte, "\x{...}" a code point whatever its value.
struct HexadecimalValue {
    uint32_t value = 0;
    bool codePoint = false;
};

/// Reads what follows "\x" at `at`, which moves behind it.
Outcome readHexadecimal(const PatternText& text, Offset& at, HexadecimalValue& result);

/// Reads what follows "\p" (or "\P": `negated`) at `at`, which moves behind it; `item` becomes the item that
/// tests the property.
Outcome readProperty(const PatternText& text, Offset& at, bool negated, Instruction& item);

} // namespace tav::regex::compiler
