#include "pattern.h"

#include <cctype>

namespace tavgrep {

namespace {

/// Whether the pattern may hold a back-reference or a condition; a false alarm does no harm.
bool mayReferToGroups(const std::string& text) {
    if (text.find("(?(") != std::string::npos) return true;
    for (std::size_t i = 0; i + 1 < text.size(); i++)
        if (text[i] == '\\' && text[i + 1] >= '1' && text[i + 1] <= '9') return true;
    return false;
}

} // namespace

const char* statusName(tavStatus status) {
    switch (status) {
    case tavStsNullPointer:
        return "tavStsNullPointer (out of memory)";
    case tavStsNegativeLength:
        return "tavStsNegativeLength";
    case tavStsBadEscape:
        return "tavStsBadEscape";
    case tavStsBadClass:
        return "tavStsBadClass";
    case tavStsBadGroupReference:
        return "tavStsBadGroupReference";
    case tavStsPatternSyntax:
        return "tavStsPatternSyntax";
    case tavStsRepeatLimit:
        return "tavStsRepeatLimit";
    case tavStsBadContext:
        return "tavStsBadContext";
    case tavStsBadOption:
        return "tavStsBadOption";
    default:
        return "unknown status";
    }
}

Pattern::Context Pattern::compile(const std::string& text, const std::string& options, CompileError& error) {
    tavRegExpContext* context = nullptr;
    error.status = tavsRegExpInitAlloc(text.c_str(), options.c_str(), &context, &error.offset);
    return Context(context);
}

Pattern::Pattern(const std::string& text, const std::string& options, CompileError& error)
    : single_(compile(text, options, error)) {
    if (!single_) return;
    resultsPerMatch_ = static_cast<std::size_t>(single_->groupCount);
    results_.resize(64 * resultsPerMatch_);
    // Wrapping fails to compile where the pattern's end swallows the parenthesis (a comment, an open
    // quotation).
    CompileError ignored;
    if (resultsPerMatch_ == 1)
        global_ = compile(text, options + "g", ignored);
    else if (!mayReferToGroups(text))
        global_ = compile("(" + text + ")", options + "g", ignored);
}

/// Fills results_, at most `room` of them; gives their number.
std::size_t Pattern::find(tavRegExpContext& context, Line line, std::size_t room) {
    auto count = static_cast<std::int32_t>(room);
    const tavStatus status = tavsRegExpFind_8u(line.text, line.length, &context, results_.data(), &count);
    return status < 0 ? 0 : static_cast<std::size_t>(count);
}

bool Pattern::matchesIn(Line line) {
    return find(*single_, line, 1) > 0;
}

const std::vector<Span>& Pattern::allMatches(Line line) {
    matches_.clear();
    if (global_)
        findAllAtOnce(line);
    else
        findOneByOne(line);
    return matches_;
}

/// The global search stops when the results are full: then it is repeated with more room.
void Pattern::findAllAtOnce(Line line) {
    std::size_t count;
    while ((count = find(*global_, line, results_.size())) == results_.size())
        results_.resize(2 * results_.size());
    matches_.assign(results_.begin(), results_.begin() + static_cast<std::ptrdiff_t>(count));
}

void Pattern::findOneByOne(Line line) {
    const std::uint8_t* const end = line.text + line.length;
    for (Line rest = line;;) {
        if (find(*single_, rest, resultsPerMatch_) == 0) return;
        matches_.insert(matches_.end(), results_.begin(),
                        results_.begin() + static_cast<std::ptrdiff_t>(resultsPerMatch_));
        const std::uint8_t* next = results_[0].start + results_[0].length;
        if (results_[0].length == 0) next++;
        if (next > end) return;
        rest = {next, static_cast<std::int32_t>(end - next)};
    }
}

} // namespace tavgrep
