// The literal that every match of a pattern must end with, up to repetitions of its last character: it bounds
// the part of the subject that matching may use.
#pragma once

#include "regex/match/plan.h"

namespace tav::regex {

/// The literal itself; without text when the pattern requires none.
struct RequiredLiteral {
    const uint8_t* text = nullptr;
    int32_t length = 0;
    bool caseless = false;
};

RequiredLiteral requiredLiteral(const tavRegExpContext& context);

/// The length of the subject up to the end of the last occurrence of the required final literal; the whole
/// length when the pattern requires none; -1 when the literal does not occur.
int32_t usableLength(const tavRegExpContext& context, const uint8_t* subject, int32_t length);

} // namespace tav::regex
