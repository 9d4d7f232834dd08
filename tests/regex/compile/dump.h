// Writes a compiled program as text, so that tests can state the program they expect:
//
// One instruction per entry, separated by " | ", the operands that are always 0 left out.
#pragma once

#include "regex/match/program.h"

#include <string>

namespace tavtest {

std::string dumpInstruction(const tav::regex::Instruction& instruction);
std::string dumpProgram(const tavRegExpContext& context);

} // namespace tavtest
