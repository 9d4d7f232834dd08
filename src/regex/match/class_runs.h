// All matches of a pattern that is nothing but a run of one class, such as \w+ or [^,]+: they are the
// stretches of its members, read off the subject 64 bytes at a time without the machine.
#pragma once

#include "regex/match/machine.h"
#include "regex/match/results.h"

namespace tav::regex {

/// Recognises such a program and prepares the plan for it.
void findClassRun(Plan& plan);

/// Stores every stretch of at least the class run's minimum, as long as there is room.
void storeClassRuns(const Plan& plan, const Subject& subject, Results& results);

} // namespace tav::regex
