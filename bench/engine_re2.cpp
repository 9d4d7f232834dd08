// libre2. Its language has neither look-around nor back-references: such patterns give no engine.
#include "bench/engine.h"

#include <re2/re2.h>
#include <re2/set.h>

namespace tav::bench {

namespace {

class Re2 final : public Engine {
public:
    Re2(const std::string& pattern, const RE2::Options& options)
        : re_(pattern, options), groups_(static_cast<std::size_t>(re_.NumberOfCapturingGroups() + 1)) {}

    bool ok() const { return re_.ok(); }

    Tally all(const Subjects& subjects) override {
        Tally tally;
        for (std::string_view subject : subjects) {
            re2::StringPiece span;
            for (std::size_t from = 0; from <= subject.size();) {
                if (!match(subject, from, &span, 1)) break;
                tally.matches++;
                tally.bytes += span.size();
                from =
                    static_cast<std::size_t>(span.data() - subject.data()) + (span.empty() ? 1 : span.size());
            }
        }
        return tally;
    }

    Tally captures(const Subjects& subjects) override {
        return firstMatches(subjects, static_cast<int>(groups_.size()));
    }

    Tally first(const Subjects& subjects) override { return firstMatches(subjects, 1); }

    Tally replace(const Subjects& subjects) override {
        Tally tally;
        for (std::string_view subject : subjects) {
            replaced_.assign(subject);
            tally.matches += static_cast<std::uint64_t>(RE2::GlobalReplace(&replaced_, re_, "<\\0>"));
            tally.bytes += replaced_.size();
        }
        return tally;
    }

private:
    bool match(std::string_view subject, std::size_t from, re2::StringPiece* spans, int count) const {
        return re_.Match({subject.data(), subject.size()}, from, subject.size(), RE2::UNANCHORED, spans,
                         count);
    }

    Tally firstMatches(const Subjects& subjects, int count) {
        Tally tally;
        for (std::string_view subject : subjects) {
            if (!match(subject, 0, groups_.data(), count)) continue;
            tally.matches++;
            for (int i = 0; i < count; i++)
                tally.bytes += groups_[static_cast<std::size_t>(i)].size();
        }
        return tally;
    }

    RE2 re_;
    std::vector<re2::StringPiece> groups_;
    std::string replaced_;
};

RE2::Options optionsFor(const PatternText& pattern) {
    RE2::Options options;
    options.set_log_errors(false);
    options.set_encoding(pattern.utf8 ? RE2::Options::EncodingUTF8 : RE2::Options::EncodingLatin1);
    return options;
}

std::string textFor(const PatternText& pattern) {
    return pattern.options.empty() ? pattern.text : "(?" + pattern.options + ")" + pattern.text;
}

/// Tells which patterns match, not where.
class Re2Set final : public SetEngine {
public:
    explicit Re2Set(const RE2::Options& options) : set_(options, RE2::UNANCHORED) {}

    bool add(const std::vector<PatternText>& patterns) {
        for (const PatternText& pattern : patterns)
            if (set_.Add(textFor(pattern), nullptr) < 0) return false;
        return set_.Compile();
    }

    Tally matching(const Subjects& subjects) override {
        Tally tally;
        for (std::string_view subject : subjects) {
            set_.Match({subject.data(), subject.size()}, &which_);
            tally.matches += which_.size();
            which_.clear();
        }
        return tally;
    }

private:
    RE2::Set set_;
    std::vector<int> which_;
};

} // namespace

std::unique_ptr<SetEngine> makeRe2Set(const std::vector<PatternText>& patterns) {
    auto set = std::make_unique<Re2Set>(optionsFor(patterns.front()));
    if (!set->add(patterns)) return nullptr;
    return set;
}

std::unique_ptr<Engine> makeRe2(const PatternText& pattern) {
    auto engine = std::make_unique<Re2>(textFor(pattern), optionsFor(pattern));
    if (!engine->ok()) return nullptr;
    return engine;
}

} // namespace tav::bench
