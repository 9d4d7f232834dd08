#include "replacement.h"

#include <algorithm>
#include <cstring>

namespace tavgrep {

namespace {

constexpr std::size_t maxLength = INT32_MAX;

} // namespace

Replacement::Replacement(const std::string& pattern, const std::string& options,
                         const std::string& templateText, CompileError& error)
    : pattern_(pattern, options + "g", error), templateText_(templateText) {
    if (error.status != tavStsNoError) return;
    std::int32_t size = 0;
    error.status = tavsRegExpReplaceGetSize(templateText_.c_str(), &size);
    if (error.status != tavStsNoError) return;
    block_.resize((static_cast<std::size_t>(size) + 7) / 8);
    items_ = reinterpret_cast<tavRegExpReplaceContext*>(block_.data());
    error.status = tavsRegExpReplaceInit(templateText_.c_str(), items_);
    results_.resize(64 * pattern_.resultsPerMatch());
}

Line Replacement::apply(Line line) {
    if (line.length == 0) return applyToEmptyLine(line);
    output_.resize(std::max(output_.size(), static_cast<std::size_t>(line.length) + 64));
    for (;;) {
        std::int32_t used = line.length;
        auto written = static_cast<std::int32_t>(std::min(output_.size(), maxLength));
        auto count = static_cast<std::int32_t>(results_.size());
        const tavStatus status = tavsRegExpReplace_8u(line.text, &used, output_.data(), &written,
                                                      results_.data(), &count, pattern_.context(), items_);
        // Full results may hide further matches, and an unused rest had no room: try again with more.
        const bool allFound = static_cast<std::size_t>(count) < results_.size();
        const bool allWritten = used == line.length || output_.size() >= maxLength;
        if (allFound && allWritten) {
            matched_ = status >= 0 && count > 0;
            return {output_.data(), written};
        }
        if (!allFound) results_.resize(2 * results_.size());
        if (!allWritten) output_.resize(2 * output_.size());
    }
}

/// Replacements take no empty text. A match in it is empty, and so is every group: the literals remain.
Line Replacement::applyToEmptyLine(Line line) {
    std::size_t length = 0;
    output_.resize(std::max(output_.size(), templateText_.size() + 1));
    matched_ = pattern_.matchesIn(line);
    for (std::int32_t i = 0; matched_ && i < items_->itemCount; i++) {
        const tavRegExpReplaceItem& item = items_->items[i];
        if (item.kind != tavReplaceLiteral) continue;
        std::memcpy(output_.data() + length, item.text, item.value);
        length += item.value;
    }
    return {output_.data(), static_cast<std::int32_t>(length)};
}

} // namespace tavgrep
