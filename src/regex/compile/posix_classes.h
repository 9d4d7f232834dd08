// The POSIX classes "[:name:]": their names and the members that they stand for.
#pragma once

#include "regex/compile/pattern_text.h"

namespace tav::regex::compiler {

/// Bytes low..high; low equals high for a single character.
struct ByteRange {
    uint8_t low;
    uint8_t high;
};

struct PosixClass {
    std::string_view name;
    int32_t count;
    ByteRange members[4];
};

/// "word" is the character type "w" and has no members of its own.
constexpr bool isWordClass(const PosixClass& posixClass) {
    return posixClass.count == 0;
}

/// The class whose name, followed by ":]", stands at `offset`; null when there is none.
const PosixClass* findPosixClass(const PatternText& text, Offset offset);

} // namespace tav::regex::compiler
