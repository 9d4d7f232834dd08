// How the compiler's steps answer: a failure is a status and a byte offset into the pattern, handed upward as
// a value until the one place that writes both to the caller.
#pragma once

#include "tavch.h"

#include <cstddef>

namespace tav::regex::compiler {

struct [[nodiscard]] Outcome {
    tavStatus status = tavStsNoError;
    std::ptrdiff_t offset = 0;

    constexpr bool failed() const { return status != tavStsNoError; }
};

constexpr Outcome syntaxError(std::ptrdiff_t offset) {
    return {tavStsPatternSyntax, offset};
}
constexpr Outcome repeatError(std::ptrdiff_t offset) {
    return {tavStsRepeatLimit, offset};
}
constexpr Outcome referenceError(std::ptrdiff_t offset) {
    return {tavStsBadGroupReference, offset};
}
constexpr Outcome classError(std::ptrdiff_t offset) {
    return {tavStsBadClass, offset};
}
constexpr Outcome escapeError(std::ptrdiff_t offset) {
    return {tavStsBadEscape, offset};
}

} // namespace tav::regex::compiler
