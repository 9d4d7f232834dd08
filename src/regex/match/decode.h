// From instructions to nodes, one at a time. What an instruction means where it stands (options in force, the
// bracket around it) is found by reading the program, so that a program too long to be decoded as a whole can
// still be matched.
#pragma once

#include "regex/match/node.h"

namespace tav::regex {

/// The program of a context, as the matcher sees it.
struct Program {
    const Instruction* code;
    int32_t length;
    int32_t groupCount;
    uint32_t options;
};

Program programFrom(const tavRegExpContext& context);

/// The index of the quantifier's or next instruction behind the single item or bracket at `pc`.
int32_t behind(const Program& program, int32_t pc);

/// The next OP_ALT_END with `id` from `pc` up to `stop`, nested brackets passed over; noNode when there is
/// none.
int32_t nextAlternative(const Program& program, int32_t pc, int32_t stop, int32_t id);

/// Where an instruction stands.
struct Place {
    uint32_t options; // in force at the instruction
    int32_t opener;   // OP_ALT_END, OP_GROUP_END: the opener of their bracket; noNode at top level
    bool condition;   // the instruction is the condition of the OP_COND before it
};

Node decode(const Program& program, int32_t pc, const Place& place);

/// The options in force behind an instruction, when it sets them; otherwise `options` unchanged.
uint32_t optionsBehind(const Instruction& instruction, uint32_t options);

} // namespace tav::regex
