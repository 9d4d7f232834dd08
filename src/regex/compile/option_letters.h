// The letters of pattern options: those of the options string, and those of inline settings such as "(?i-s)".
#pragma once

#include "regex/match/program.h"

namespace tav::regex::compiler {

/// The bit of an option letter that may be set inline, or 0. "g" concerns a whole search and is not among
/// them.
constexpr uint32_t inlineOptionBit(int letter) {
    switch (letter) {
    case 's':
        return optionDotAll;
    case 'm':
        return optionMultiLine;
    case 'i':
        return optionCaseless;
    case 'x':
        return optionExtended;
    default:
        return 0;
    }
}

/// The bit of a letter of the options string, or 0.
constexpr uint32_t optionBit(int letter) {
    return letter == 'g' ? optionGlobal : inlineOptionBit(letter);
}

/// Applies inline letters one by one: letters switch on until the first "-", and off behind it.
class InlineOptions {
public:
    explicit constexpr InlineOptions(uint32_t inForce) : bits_(inForce) {}

    constexpr uint32_t bits() const { return bits_; }

    /// False when `letter` is neither an inline option nor "-".
    constexpr bool apply(int letter) {
        if (letter == '-') {
            switchingOff_ = true;
            return true;
        }
        const uint32_t bit = inlineOptionBit(letter);
        bits_ = switchingOff_ ? bits_ & ~bit : bits_ | bit;
        return bit != 0;
    }

private:
    uint32_t bits_;
    bool switchingOff_ = false;
};

} // namespace tav::regex::compiler
