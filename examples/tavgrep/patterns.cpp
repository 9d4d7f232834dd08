#include "patterns.h"

#include <algorithm>

namespace tavgrep {

Patterns::Patterns(const std::vector<std::string>& texts, const std::string& options, CompileError& error,
                   std::string& failed)
    : firsts_(texts.size()), results_(texts.size()) {
    for (const std::string& text : texts) {
        patterns_.push_back(std::make_unique<Pattern>(text, options, error));
        if (error.status == tavStsNoError) continue;
        failed = text;
        return;
    }
    tavRegExpMultiContext* set = nullptr;
    error.status = tavsRegExpMultiInitAlloc(&set, static_cast<std::uint32_t>(patterns_.size()));
    set_.reset(set);
    for (std::size_t i = 0; error.status == tavStsNoError && i < patterns_.size(); i++)
        error.status = tavsRegExpMultiAdd(patterns_[i]->context(), static_cast<std::uint32_t>(i + 1), set);
}

bool Patterns::matchesIn(Line line) {
    matching_.clear();
    const bool searchedAsSet = patterns_.size() > 1 && line.length > 0; // sets take no empty text
    if (searchedAsSet) {
        searchSet(line);
    } else {
        for (std::size_t i = 0; i < patterns_.size(); i++)
            if (patterns_[i]->matchesIn(line)) matching_.push_back(i + 1);
    }
    return !matching_.empty();
}

void Patterns::searchSet(Line line) {
    for (std::size_t i = 0; i < results_.size(); i++)
        results_[i] = {0, 0, 1, tavStsNoError, &firsts_[i]};
    tavsRegExpMultiFind_8u(line.text, line.length, results_.data(), set_.get());
    for (const tavRegExpMultiFindResult& result : results_)
        if (result.searched && result.status >= 0 && result.numFind > 0) matching_.push_back(result.id);
}

const std::vector<Match>& Patterns::allMatches(Line line) {
    matches_.clear();
    for (const auto& pattern : patterns_) {
        const std::vector<Span>& spans = pattern->allMatches(line);
        for (std::size_t i = 0; i < spans.size(); i += pattern->resultsPerMatch())
            matches_.push_back({&spans[i], pattern->resultsPerMatch()});
    }
    if (patterns_.size() > 1) dropOverlaps();
    return matches_;
}

void Patterns::dropOverlaps() {
    std::stable_sort(matches_.begin(), matches_.end(), [](const Match& a, const Match& b) {
        if (a.whole().start != b.whole().start) return a.whole().start < b.whole().start;
        return a.whole().length > b.whole().length;
    });
    const std::uint8_t* end = nullptr;
    const auto overlaps = [&end](const Match& match) {
        if (end != nullptr && match.whole().start < end) return true;
        end = match.whole().start + match.whole().length;
        return false;
    };
    std::vector<Match> kept;
    for (const Match& match : matches_)
        if (!overlaps(match)) kept.push_back(match);
    matches_ = std::move(kept);
}

} // namespace tavgrep
