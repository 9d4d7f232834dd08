// Patterns that are, or begin with, a run of one class whose members single bytes tell: the subject is read
// 64 bytes at a time as bits, and its stretches of members are read off the bits.
//
// A pattern that is nothing but such a run, like \w+, needs no machine at all. One that begins with a run and
// cannot go on with one of its members, like \w+@, can only match where a stretch ends in front of a byte
// that may follow.
#pragma once

#include "regex/match/machine.h"
#include "regex/match/results.h"

namespace tav::regex {

/// Recognises such programs and prepares the plan for them.
void findClassRun(Plan& plan);

/// Stores every stretch of at least the class run's minimum, as long as there is room.
void storeClassRuns(const Plan& plan, const Subject& subject, Results& results);

/// The beginning, at or behind `p`, of the next stretch that ends in front of a byte that may follow it, or
/// at `end`; null when there is none.
const uint8_t* nextClassRun(const Plan& plan, const uint8_t* p, const uint8_t* end);

} // namespace tav::regex
