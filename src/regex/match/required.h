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

RequiredLiteral requiredLiteral(const tavRegExpContext& context);

/// The index of the literal's first or last occurrence in a subject, -1 when there is none.
int32_t firstOccurrence(const RequiredLiteral& literal, const uint8_t* subject, int32_t length);
int32_t lastOccurrence(const RequiredLiteral& literal, const uint8_t* subject, int32_t length);

} // namespace tav::regex
