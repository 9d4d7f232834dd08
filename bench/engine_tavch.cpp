// The library under test, through its exported functions.
#include "bench/engine.h"
#include "tavch.h"

#include <algorithm>
#include <cstdio>

namespace tav::bench {

namespace {

tavRegExpContext* compile(const PatternText& pattern, const std::string& options) {
    tavRegExpContext* context = nullptr;
    std::int32_t offset = 0;
    const tavStatus status = tavsRegExpInitAlloc(pattern.text.c_str(), options.c_str(), &context, &offset);
    if (status != tavStsNoError)
        std::fprintf(stderr, "tavch refuses %s: status %d at offset %d\n", pattern.text.c_str(), status,
                     offset);
    else
        tavsRegExpSetFormat(pattern.utf8, context);
    return context;
}

/// The template "<$&>".
struct Bracketed {
    tavRegExpReplaceContext context{};
    tavRegExpReplaceItem items[4]{};

    Bracketed() { tavsRegExpReplaceInit("<$&>", &context); }
};

class Tavch final : public Engine {
public:
    Tavch(const PatternText& pattern, tavRegExpContext* once)
        : pattern_(pattern), once_(once), groups_(static_cast<std::size_t>(once->groupCount)) {}
    ~Tavch() override {
        tavsRegExpFree(once_);
        tavsRegExpFree(global_);
    }
    Tavch(const Tavch&) = delete;
    Tavch& operator=(const Tavch&) = delete;

    /// The global search stores a match's capturing groups when there are any, else the whole match; it goes
    /// on behind the last match when the slots were too few.
    Tally all(const Subjects& subjects) override {
        if (global_ == nullptr) {
            global_ = compile(pattern_, pattern_.options + "g");
            matches_.resize(matchSlots / entriesPerMatch() * entriesPerMatch());
        }
        Tally tally;
        for (std::string_view subject : subjects) {
            for (;;) {
                const std::size_t found = find(global_, subject, matches_);
                for (std::size_t i = 0; i < found; i++)
                    tally.bytes += static_cast<std::uint64_t>(matches_[i].length);
                tally.matches += found / entriesPerMatch();
                if (found < matches_.size()) break;
                const auto& last = matches_[found - 1];
                const auto* next = reinterpret_cast<const char*>(last.start) + last.length;
                subject.remove_prefix(static_cast<std::size_t>(next - subject.data()));
            }
        }
        return tally;
    }

    Tally captures(const Subjects& subjects) override { return firstMatches(subjects, groups_); }

    /// The result array and the destination grow until every match and the whole result fit.
    Tally replace(const Subjects& subjects) override {
        if (global_ == nullptr) global_ = compile(pattern_, pattern_.options + "g");
        if (matches_.empty()) matches_.resize(matchSlots);
        Tally tally;
        for (std::string_view subject : subjects) {
            destination_.resize(std::max(destination_.size(), subject.size() + 16));
            for (;;) {
                auto length = static_cast<std::int32_t>(subject.size());
                auto written = static_cast<std::int32_t>(destination_.size());
                auto entries = static_cast<std::int32_t>(matches_.size());
                if (length == 0) break;
                tavsRegExpReplace_8u(reinterpret_cast<const std::uint8_t*>(subject.data()), &length,
                                     destination_.data(), &written, matches_.data(), &entries, global_,
                                     &bracketed_.context);
                const bool allFound = static_cast<std::size_t>(entries) < matches_.size();
                if (allFound && static_cast<std::size_t>(length) == subject.size()) {
                    tally.matches += static_cast<std::uint64_t>(entries / global_->groupCount);
                    tally.bytes += static_cast<std::uint64_t>(written);
                    break;
                }
                if (!allFound)
                    matches_.resize(2 * matches_.size());
                else
                    destination_.resize(2 * destination_.size());
            }
        }
        return tally;
    }

    Tally first(const Subjects& subjects) override {
        groups_.erase(groups_.begin() + 1, groups_.end());
        return firstMatches(subjects, groups_);
    }

private:
    using Results = std::vector<tavRegExpFindResult>;
    static constexpr std::size_t matchSlots = 4096;

    std::size_t entriesPerMatch() const {
        return once_->groupCount > 1 ? static_cast<std::size_t>(once_->groupCount - 1) : 1;
    }

    static std::size_t find(tavRegExpContext* context, std::string_view subject, Results& results) {
        auto count = static_cast<std::int32_t>(results.size());
        const tavStatus status =
            tavsRegExpFind_8u(reinterpret_cast<const std::uint8_t*>(subject.data()),
                              static_cast<std::int32_t>(subject.size()), context, results.data(), &count);
        return status < 0 ? 0 : static_cast<std::size_t>(count);
    }

    Tally firstMatches(const Subjects& subjects, Results& results) {
        Tally tally;
        for (std::string_view subject : subjects) {
            const std::size_t found = find(once_, subject, results);
            tally.matches += found > 0;
            for (std::size_t i = 0; i < found; i++)
                tally.bytes += results[i].length > 0 ? static_cast<std::uint64_t>(results[i].length) : 0;
        }
        return tally;
    }

    PatternText pattern_;
    tavRegExpContext* once_;
    tavRegExpContext* global_ = nullptr; ///< made when first needed
    Results groups_;
    Results matches_;
    std::vector<std::uint8_t> destination_;
    Bracketed bracketed_;
};

class TavchSet final : public SetEngine {
public:
    explicit TavchSet(std::size_t patterns) : matches_(patterns), results_(patterns) {
        tavsRegExpMultiInitAlloc(&set_, static_cast<std::uint32_t>(patterns));
    }
    ~TavchSet() override {
        for (std::int32_t i = 0; i < set_->capacity; i++)
            tavsRegExpFree(set_->patterns[i]);
        tavsRegExpMultiFree(set_);
    }
    TavchSet(const TavchSet&) = delete;
    TavchSet& operator=(const TavchSet&) = delete;

    bool add(tavRegExpContext* pattern) {
        return pattern != nullptr && tavsRegExpMultiAdd(pattern, ++id_, set_) == tavStsNoError;
    }

    Tally matching(const Subjects& subjects) override {
        Tally tally;
        for (std::string_view subject : subjects) {
            if (subject.empty()) continue;
            for (std::size_t i = 0; i < results_.size(); i++)
                results_[i] = {0, 0, 1, 0, &matches_[i]};
            tavsRegExpMultiFind_8u(reinterpret_cast<const std::uint8_t*>(subject.data()),
                                   static_cast<std::int32_t>(subject.size()), results_.data(), set_);
            for (const auto& result : results_)
                tally.matches += result.numFind > 0;
        }
        return tally;
    }

private:
    tavRegExpMultiContext* set_ = nullptr;
    std::uint32_t id_ = 0;
    std::vector<tavRegExpFindResult> matches_;
    std::vector<tavRegExpMultiFindResult> results_;
};

} // namespace

std::unique_ptr<Engine> makeTavch(const PatternText& pattern) {
    tavRegExpContext* once = compile(pattern, pattern.options);
    if (once == nullptr) return nullptr;
    return std::make_unique<Tavch>(pattern, once);
}

std::unique_ptr<SetEngine> makeTavchSet(const std::vector<PatternText>& patterns) {
    auto set = std::make_unique<TavchSet>(patterns.size());
    for (const PatternText& pattern : patterns)
        if (!set->add(compile(pattern, pattern.options))) return nullptr;
    return set;
}

} // namespace tav::bench
