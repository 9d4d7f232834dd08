// Finds the ends of "[:", "[." and "[=" items inside classes. A search that found nothing need not be
// repeated further right, so a pattern full of unclosed items still costs one search per delimiter.
#pragma once

#include "regex/compile/pattern_text.h"

namespace tav::regex::compiler {

class ClassItems {
public:
    /// Does an item open at `offset`?
    static bool opensAt(const PatternText& text, Offset offset) {
        return text.at(offset) == '[' && isDelimiter(text.at(offset + 1));
    }

    /// The delimiter of the first `delimiter + "]"` at or behind `from`, or the text's length.
    Offset findClose(const PatternText& text, int delimiter, Offset from) {
        const uint64_t bit = uint64_t{1} << delimiter; // all three lie below 64
        if ((noneFurther_ & bit) != 0) return text.length();
        const Offset close = text.findPair(static_cast<char>(delimiter), ']', from);
        if (close == text.length()) noneFurther_ |= bit;
        return close;
    }

private:
    static bool isDelimiter(int c) { return c == ':' || c == '.' || c == '='; }

    uint64_t noneFurther_ = 0;
};

} // namespace tav::regex::compiler
