// The library under test, through its exported functions.
#include "bench/engine.h"
#include "tavch.h"

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

    Tally first(const Subjects& subjects) override {
        if (groups_.size() > 1) groups_.resize(1);
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
};

} // namespace

std::unique_ptr<Engine> makeTavch(const PatternText& pattern) {
    tavRegExpContext* once = compile(pattern, pattern.options);
    if (once == nullptr) return nullptr;
    return std::make_unique<Tavch>(pattern, once);
}

} // namespace tav::bench
