// Checks that the brackets and classes of a program lie properly inside each other, so that whatever is
// matched stays inside the program and meets a bracket's end only after its opening. Compiled programs always
// pass.
#pragma once

#include "regex/match/plan.h"

namespace tav::regex {

/// The number of bracket ids in use, id 0 (the whole program) included.
int32_t countBrackets(const Program& program);

/// Checks the program and fills in the openers of its brackets.
bool structureHolds(const Program& program, Bracket* brackets, int32_t bracketCount);

/// The opener of the bracket that the OP_GROUP_END or OP_ALT_END at `pc` belongs to; noNode at top level, for
/// a closing that closes nothing, and for other instructions.
int32_t openerOf(const Program& program, const Bracket* brackets, int32_t bracketCount, int32_t pc);

} // namespace tav::regex
