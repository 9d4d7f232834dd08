// Which alternatives can begin at a byte: a bit per alternative in tables by byte, eight alternatives to a
// table. The machine asks before it tries an alternative, enters a group or begins another iteration, so that
// what would fail at its first byte costs no record and no way back.
#pragma once

#include "regex/match/plan.h"

namespace tav::regex {

/// Fills the tables, as far as there is room, and gives the nodes in front of alternatives (the opener of the
/// first one, OP_ALT_END of the others) their place in them.
void findAlternatives(Plan& plan);

/// Can the alternative behind `node` begin with the byte?
inline bool mayBeginWith(const Plan& plan, const Node& node, uint8_t byte) {
    return node.follows < 0 || (plan.alternatives[node.follows][byte] & node.mask) != 0;
}

} // namespace tav::regex
