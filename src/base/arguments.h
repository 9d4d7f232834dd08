// The argument tests that every exported function runs before it writes anything.
// They come in one fixed order (pointers, lengths, counts, the function's own tests) and each entry
// function spells that order out, so that it reads like its documentation.
#pragma once

#include "tavch.h"

namespace tav {

template <class... T>
constexpr bool anyNull(const T*... pointers) {
    return ((pointers == nullptr) || ...);
}

template <class... T>
constexpr bool anyNegative(T... lengths) {
    return ((lengths < 0) || ...);
}

/// The tests that nearly every function shares: all pointers together, then all lengths.
struct Arguments {
    tavStatus status = tavStsNoError;

    template <class... T>
    static constexpr Arguments pointers(const T*... all) {
        return {anyNull(all...) ? tavStsNullPointer : tavStsNoError};
    }

    template <class... T>
    constexpr Arguments lengths(T... all) const {
        if (status != tavStsNoError) return *this;
        return {anyNegative(all...) ? tavStsNegativeLength : tavStsNoError};
    }

    template <class... T>
    constexpr Arguments counts(T... all) const {
        if (status != tavStsNoError) return *this;
        return {((all < 1) || ...) ? tavStsBadCount : tavStsNoError};
    }

    constexpr bool failed() const { return status != tavStsNoError; }
};

} // namespace tav
