// Sets of patterns among the other engines: the patterns are the lines of one text.
#include "bench/engine.h"

#include <algorithm>
#include <utility>

namespace tav::bench {

namespace {

class SetAsEngine final : public Engine {
public:
    explicit SetAsEngine(std::unique_ptr<SetEngine> set) : set_(std::move(set)) {}

    /// How many patterns match, over all subjects; where they do is not compared.
    Tally first(const Subjects& subjects) override { return set_->matching(subjects); }

    Tally all(const Subjects&) override { return {}; }
    Tally captures(const Subjects&) override { return {}; }
    Tally replace(const Subjects&) override { return {}; }

private:
    std::unique_ptr<SetEngine> set_;
};

std::vector<PatternText> cut(const PatternText& patterns) {
    std::vector<PatternText> all;
    for (std::size_t from = 0; from <= patterns.text.size();) {
        const std::size_t end = std::min(patterns.text.find('\n', from), patterns.text.size());
        all.push_back({patterns.text.substr(from, end - from), patterns.options, patterns.utf8});
        from = end + 1;
    }
    return all;
}

} // namespace

std::unique_ptr<Engine> asEngine(MakeSetEngine make, const PatternText& patterns) {
    auto set = make(cut(patterns));
    if (!set) return nullptr;
    return std::make_unique<SetAsEngine>(std::move(set));
}

} // namespace tav::bench
