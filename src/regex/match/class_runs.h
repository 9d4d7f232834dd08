// Patterns that are, or begin with, a run of one class whose members single bytes tell: the subject is read
// 64 bytes at a time as bits, and its stretches of members are read off the bits.
//
// A pattern that is nothing but such a run, like \w+, needs no machine at all. One that begins with a run and
// cannot go on with one of its members, like \w+@, can only match where a stretch ends in front of a byte
// that may follow.
#pragma once

#include "regex/match/machine.h"
#include "regex/match/position_blocks.h"
#include "regex/match/results.h"

namespace tav::regex {

/// Recognises such programs and prepares the plan for them.
void findClassRun(Plan& plan);

/// Stores every stretch of at least the class run's minimum, as long as there is room.
void storeClassRuns(const Plan& plan, const Subject& subject, Results& results);

/// The next positions from `p` up to `last` where a run ends in front of a byte that may follow it. `begin`
/// is the beginning of the subject.
PositionBlock nextRunEnd(const Plan& plan, const uint8_t* begin, const uint8_t* p, const uint8_t* last);

/// The beginning, at or behind `floor`, of the run that ends at `end`; null when there is none long enough.
const uint8_t* beginningOfRun(const Plan& plan, const uint8_t* floor, const uint8_t* end);

} // namespace tav::regex
