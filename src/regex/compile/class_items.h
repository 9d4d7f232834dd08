// Finds the ends of "[:", "[." and "[=" items inside classes. A search that found nothing need not be
// repeated further right, so a pattern full of unclosed items still costs one search per delimiter.
#pragma once

#include "regex/compile/pattern_text.h"

namespace tav::regex::compiler {

class ClassItems {
public:
    /// Does an item open at `offset`?
    static bool opensAt(const PatternText& text, Offset offset) {
        return text.at(offset) == '[' && indexOf(text.at(offset + 1)) >= 0;
    }

    /// The delimiter of the first `delimiter + "]"` at or behind `from`, or the text's length.
    Offset findClose(const PatternText& text, int delimiter, Offset from) {
        bool& none = noneFurther_[indexOf(delimiter)];
        if (none) return text.length();
        const Offset close = text.findPair(static_cast<char>(delimiter), ']', from);
        none = close == text.length();
        return close;
    }

private:
    static int indexOf(int delimiter) {
        return delimiter == ':' ? 0 : delimiter == '.' ? 1 : delimiter == '=' ? 2 : -1;
    }

    bool noneFurther_[3] = {};
};

} // namespace tav::regex::compiler
