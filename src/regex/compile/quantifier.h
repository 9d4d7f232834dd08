// Quantifiers as text: "*", "+", "?", "{n}", "{n,}", "{,m}", "{n,m}", each with an optional "?" for lazy.
// Also the text that the compiler ignores, because it may stand between an item and its quantifier.
#pragma once

#include "regex/compile/outcome.h"
#include "regex/compile/pattern_text.h"

namespace tav::regex::compiler {

struct Quantifier {
    int32_t minimum = 0;
    int32_t maximum = 0;
    bool lazy = false;
};

/// Does a quantifier begin at `offset`? A "{" of any other shape is an ordinary character.
bool isQuantifierAt(const PatternText& text, Offset offset);

/// Reads the quantifier at `at`, which moves behind it; fails when a bound is too large or they are reversed.
Outcome readQuantifier(const PatternText& text, Offset& at, Quantifier& quantifier);

/// The first place at or behind `offset` that is not ignored text: comments "(?#...)", "\E", an empty quote,
/// and under option "x" white space and "#" comments. A "(?#" without its ")" is not ignored.
Offset skipIgnoredText(const PatternText& text, Offset offset, uint32_t options);

} // namespace tav::regex::compiler
