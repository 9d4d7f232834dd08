// Writes a compiled program as text, so that tests can state the program they expect:
// a*(b|c) is
//
//   CHAR 'a' | GREEDY 0..inf | CAPTURE id=1 body=3 slot=1 | CHAR 'b' | ALT_END id=1 | CHAR 'c' | GROUP_END
//   id=1
//
// Operands that are 0 and mean nothing are left out; "o" stands for option bits, "not" for a negation.
#pragma once

#include "regex/match/program.h"

#include <string>

namespace tavtest {

std::string dumpInstruction(const tav::regex::Instruction& instruction);
std::string dumpProgram(const tavRegExpContext& context);

} // namespace tavtest
