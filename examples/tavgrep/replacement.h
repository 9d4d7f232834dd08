// Lines with the matches of a pattern replaced by a template.
#pragma once

#include "pattern.h"

#include <memory>

namespace tavgrep {

class Replacement {
public:
    /// Compiles both; on failure `error` says why (with tavStsBadGroupReference and no offset for the
    /// template), and the object must not be used.
    Replacement(const std::string& pattern, const std::string& options, const std::string& templateText,
                CompileError& error);

    /// The line with every match replaced. Valid until the next call.
    Line apply(Line line);

    /// Did the pattern match in the last line?
    bool matched() const { return matched_; }

private:
    Line applyToEmptyLine(Line line);

    Pattern pattern_;
    std::string templateText_;         ///< the items point into it
    std::vector<std::uint64_t> block_; ///< 8-byte aligned
    tavRegExpReplaceContext* items_ = nullptr;
    std::vector<Span> results_;
    std::vector<std::uint8_t> output_;
    bool matched_ = false;
};

} // namespace tavgrep
