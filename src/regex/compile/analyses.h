// Facts about a program, each found by one walk over its instructions.
#pragma once

#include "regex/match/program.h"

namespace tav::regex::compiler {

inline constexpr int32_t noFixedLength = -1;

/// The number of characters that every match of the bracket at `opener` takes, or noFixedLength when it
/// varies, cannot be told, or does not fit. The program may be under construction, the bracket is closed.
int32_t fixedBodyLength(const Instruction* program, int32_t opener);

/// What the tracker of the required final literal may say instead of an index.
inline constexpr int32_t noFinalLiteral = -1;
inline constexpr int32_t topLevelAlternation = -2;

/// `tracked` when only quantifiers follow the instruction it names; topLevelAlternation stays; else none.
int32_t requiredFinalLiteral(const Instruction* program, int32_t length, int32_t tracked);

/// The header's summary of how the program starts.
int32_t searchHint(const Instruction* program, int32_t length, int32_t lastLiteral);

} // namespace tav::regex::compiler
