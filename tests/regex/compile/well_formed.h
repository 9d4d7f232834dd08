// What the matcher takes for granted of a block whose compilation succeeded. One check for the tests and the
// fuzzers: counts within the block, every operand in its range, every text where it may lie, ids and slots
// unique and below their limit, bodies nested, the header's summaries as the program has them.
#pragma once

#include "regex/match/program.h"

#include <string>

namespace tavtest {

/// Empty for a well-formed block; else what is wrong, and where. `patternLength` is that of the pattern's
/// text, which settles the size of the block. Header fields that setters change are not looked at.
std::string faultOf(const tavRegExpContext& context, std::size_t patternLength);

} // namespace tavtest
