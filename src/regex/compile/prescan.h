// The first pass over a pattern: checks that groups and quotes are well formed and counts the capturing
// groups, so that the main pass can tell a back-reference from an octal escape before it has seen every
// group.
#pragma once

#include "regex/compile/outcome.h"
#include "regex/compile/pattern_text.h"

namespace tav::regex::compiler {

/// Scans `text` under the given options. On success `groupCount` is the number of capturing groups plus one.
Outcome prescan(const PatternText& text, uint32_t options, int32_t& groupCount);

} // namespace tav::regex::compiler
