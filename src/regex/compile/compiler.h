// Compiles a pattern: options, pre-scan, main pass, analyses, in this order, into the caller's block.
#pragma once

#include "regex/compile/outcome.h"

namespace tav::regex::compiler {

/// The size in bytes of the block for a pattern of `length` bytes: the header and length + 1 instruction
/// slots, which the literal pool shares.
constexpr int64_t blockSize(int64_t length) {
    return static_cast<int64_t>(sizeof(tavRegExpContext)) + 24 * (length + 1);
}

/// `options` may be null. Writes the block's header and program, never its work area.
Outcome compile(const char* pattern, const char* options, tavRegExpContext& context);

} // namespace tav::regex::compiler
