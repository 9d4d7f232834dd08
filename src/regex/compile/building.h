// What instructions hold only while a program is being built. The emitter's last step removes all of it.
//
// Notes about where an instruction came from stand in its `text`, so that they travel with it. The opener of
// a dissolved group stays behind as a vacant slot, which saves moving its body once per enclosing group.
#pragma once

#include "regex/match/program.h"

namespace tav::regex::compiler {

/// No operation: a: length of the dissolved body; b: the slots that it takes; c: the instructions among them.
inline constexpr uint32_t vacantSlot = 0;

/// An OP_CHAR from a run of plain characters.
inline constexpr char plainLiteral = 0;
/// An item inside a class.
inline constexpr char classMember = 0;
/// An OP_GREEDY made by collapsing, not yet joined by a written quantifier.
inline constexpr char ownRepeat = 0;

inline bool hasNote(const Instruction& instruction, const char& note) {
    return instruction.text == &note;
}

} // namespace tav::regex::compiler
