// Patterns that begin with a run of one class up to a literal, like \w+ing or .*whisper: a match can only
// begin in a run that holds the literal, so the literal is looked for and the run walked back.
#pragma once

#include "regex/match/plan.h"

namespace tav::regex {

/// Recognises such programs and prepares the plan for them.
void findInnerLiteral(Plan& plan);

/// The search for such starts, with the literal found last.
class InnerLiteralStarts {
public:
    explicit InnerLiteralStarts(const Plan& plan) : plan_(plan) {}

    /// The first position from `p` on from where a run leads to the literal; null when there is none.
    const uint8_t* next(const uint8_t* p, const uint8_t* end);

private:
    const uint8_t* literalFrom(const uint8_t* p, const uint8_t* end);

    const Plan& plan_;
    const uint8_t* searched_ = nullptr; // between here and `found_` there is no literal
    const uint8_t* found_ = nullptr;
    const uint8_t* end_ = nullptr;
};

} // namespace tav::regex
