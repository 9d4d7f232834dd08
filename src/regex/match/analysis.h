// Facts about a decoded program that let the matcher leave out work without changing any result: which bytes
// a match can start with, where a repeat need not give back, which captures need no restoring.
//
// Every fact errs on the safe side. Leaving out a start position or a branch is exact only when it would have
// failed in any case; the depth budget can only remove matches, so it never makes such a branch succeed.
#pragma once

#include "regex/match/plan.h"

namespace tav::regex {

void analyse(Plan& plan);

} // namespace tav::regex
