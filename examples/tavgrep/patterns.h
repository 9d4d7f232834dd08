// The patterns of one run, one or several: which of them match in a line, and where.
#pragma once

#include "pattern.h"

#include <memory>

namespace tavgrep {

/// A match: the whole, then the groups of its pattern.
struct Match {
    const Span* spans;
    std::size_t count;

    const Span& whole() const { return spans[0]; }
};

/// Several patterns are searched as a set of the library: one call per line answers for all of them.
class Patterns {
public:
    /// Compiles; on failure `error` says why, `failed` names the pattern, and the object must not be used.
    Patterns(const std::vector<std::string>& texts, const std::string& options, CompileError& error,
             std::string& failed);

    bool matchesIn(Line line);

    /// The patterns that matched in the last line asked about, numbered from 1 in ascending order.
    const std::vector<std::size_t>& matching() const { return matching_; }

    /// All matches of the line from left to right. Where matches of several patterns overlap, the leftmost
    /// counts, of those at one place the longest. Valid until the next call.
    const std::vector<Match>& allMatches(Line line);

private:
    struct Free {
        void operator()(tavRegExpMultiContext* set) const { tavsRegExpMultiFree(set); }
    };

    void searchSet(Line line);
    void dropOverlaps();

    std::vector<std::unique_ptr<Pattern>> patterns_;
    std::unique_ptr<tavRegExpMultiContext, Free> set_; ///< holds pointers into patterns_
    std::vector<Span> firsts_;
    std::vector<tavRegExpMultiFindResult> results_;
    std::vector<std::size_t> matching_;
    std::vector<Match> matches_;
};

} // namespace tavgrep
