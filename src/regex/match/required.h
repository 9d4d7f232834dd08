// The literal that every match of a pattern must end with, up to repetitions of its last character: it bounds
// the part of the subject that matching may use.
#pragma once

#include "regex/match/program.h"

namespace tav::regex {

/// The literal itself; of length 0 when the pattern requires none.
struct RequiredLiteral {
    const uint8_t* text = nullptr;
    int32_t length = 0;
    bool caseless = false;

    bool isPresent() const { return length > 0; }
};

inline RequiredLiteral requiredLiteral(const tavRegExpContext& context) {
    if (context.lastLiteral < 0 || context.lastLiteral >= context.codeLength) return {};
    const Instruction& literal = programOf(context)[context.lastLiteral];
    const bool caseless = (static_cast<uint32_t>(literal.c) & optionCaseless) != 0;
    // The byte of an OP_CHAR is the first one in memory of its operand.
    if (literal.op == OP_CHAR) return {reinterpret_cast<const uint8_t*>(&literal.a), 1, caseless};
    if (literal.op == OP_STRING) return {static_cast<const uint8_t*>(literal.text), literal.b, caseless};
    return {};
}

/// The index of the literal's first or last occurrence in a subject, -1 when there is none.
int32_t firstOccurrence(const RequiredLiteral& literal, const uint8_t* subject, int32_t length);
int32_t lastOccurrence(const RequiredLiteral& literal, const uint8_t* subject, int32_t length);

} // namespace tav::regex
