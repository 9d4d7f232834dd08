// A compiled pattern and its matches in a line.
#pragma once

#include "lines.h"
#include "tavch.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace tavgrep {

using Span = tavRegExpFindResult;

struct CompileError {
    tavStatus status = tavStsNoError;
    std::int32_t offset = 0;
};

/// The name of a status as the header spells it.
const char* statusName(tavStatus status);

class Pattern {
public:
    /// Compiles; on failure `error` says why and the pattern must not be used.
    Pattern(const std::string& text, const std::string& options, CompileError& error);

    /// Number of results per match: the whole match and the capturing groups.
    std::size_t resultsPerMatch() const { return resultsPerMatch_; }

    tavRegExpContext* context() { return single_.get(); }

    bool matchesIn(Line line);

    /// All matches of the line from left to right, resultsPerMatch() spans for each: first the whole match,
    /// then its groups (length -1: took no part). Valid until the next call.
    ///
    /// The library's global search does this in one call and knows the whole line at every match, but reports
    /// the groups alone when there are any. Such a pattern is therefore compiled as one group more:
    /// "(PATTERN)". That would renumber the groups that the pattern itself refers to. A pattern with
    /// back-references or conditions is instead searched anew behind each match; to "^", "\b" and look-behind
    /// the line then begins there.
    const std::vector<Span>& allMatches(Line line);

private:
    struct Free {
        void operator()(tavRegExpContext* context) const { tavsRegExpFree(context); }
    };
    using Context = std::unique_ptr<tavRegExpContext, Free>;

    static Context compile(const std::string& text, const std::string& options, CompileError& error);
    std::size_t find(tavRegExpContext& context, Line line, std::size_t room);
    void findAllAtOnce(Line line);
    void findOneByOne(Line line);

    Context single_;
    Context global_; ///< null when the matches must be found one by one
    std::size_t resultsPerMatch_ = 1;
    std::vector<Span> results_;
    std::vector<Span> matches_;
};

} // namespace tavgrep
