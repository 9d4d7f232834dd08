// Patterns that are nothing but a literal, exact or caseless: its occurrences are the matches, and neither a
// plan nor the machine is needed to list them.
#pragma once

#include "regex/match/required.h"
#include "regex/match/results.h"

namespace tav::regex {

/// Is the program the literal alone, so that its occurrences are the matches?
bool isLiteralAlone(const tavRegExpContext& context, const RequiredLiteral& literal);

/// Stores the occurrences in a subject, each behind the one before, as long as there is room.
void storeLiterals(const RequiredLiteral& literal, const uint8_t* subject, int32_t length, Results& results);

} // namespace tav::regex
