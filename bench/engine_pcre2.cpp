// libpcre2, interpreted and compiled to machine code. Match data, match context and the machine stack of the
// compiled code are made once per pattern.
#include "bench/engine.h"

#define PCRE2_CODE_UNIT_WIDTH 8
#include <pcre2.h>

#include <algorithm>

namespace tav::bench {

namespace {

struct Free {
    void operator()(pcre2_code* code) const { pcre2_code_free(code); }
    void operator()(pcre2_match_data* data) const { pcre2_match_data_free(data); }
    void operator()(pcre2_match_context* context) const { pcre2_match_context_free(context); }
    void operator()(pcre2_jit_stack* stack) const { pcre2_jit_stack_free(stack); }
};

template <class T>
using Owned = std::unique_ptr<T, Free>;

class Pcre2 final : public Engine {
public:
    Pcre2(Owned<pcre2_code> code, bool jit)
        : code_(std::move(code)), data_(pcre2_match_data_create_from_pattern(code_.get(), nullptr)),
          spanOnly_(pcre2_match_data_create(1, nullptr)), context_(pcre2_match_context_create(nullptr)),
          jit_(jit) {
        pcre2_set_match_limit(context_.get(), 1U << 30);
        if (!jit_) return;
        stack_.reset(pcre2_jit_stack_create(32 * 1024, 1024 * 1024, nullptr));
        pcre2_jit_stack_assign(context_.get(), nullptr, stack_.get());
    }

    Tally all(const Subjects& subjects) override {
        Tally tally;
        for (std::string_view subject : subjects) {
            for (std::size_t from = 0; from <= subject.size();) {
                if (match(subject, from, *spanOnly_) < 0) break;
                const PCRE2_SIZE* span = pcre2_get_ovector_pointer(spanOnly_.get());
                tally.matches++;
                tally.bytes += span[1] - span[0];
                from = span[1] > span[0] ? span[1] : span[1] + 1;
            }
        }
        return tally;
    }

    Tally captures(const Subjects& subjects) override { return firstMatches(subjects, *data_); }
    Tally first(const Subjects& subjects) override { return firstMatches(subjects, *spanOnly_); }
    bool matches(std::string_view subject) { return match(subject, 0, *spanOnly_) >= 0; }

    Tally replace(const Subjects& subjects) override {
        static const auto* const replacement = reinterpret_cast<PCRE2_SPTR>("<$0>");
        Tally tally;
        for (std::string_view subject : subjects) {
            replaced_.resize(std::max(replaced_.size(), 4 * subject.size() + 16));
            PCRE2_SIZE length = replaced_.size();
            const int count =
                pcre2_substitute(code_.get(), reinterpret_cast<PCRE2_SPTR>(subject.data()), subject.size(), 0,
                                 PCRE2_SUBSTITUTE_GLOBAL | PCRE2_NO_UTF_CHECK, data_.get(), context_.get(),
                                 replacement, 4, replaced_.data(), &length);
            if (count < 0) continue;
            tally.matches += static_cast<std::uint64_t>(count);
            tally.bytes += length;
        }
        return tally;
    }

private:
    /// The subjects are known to be valid UTF-8, so none of the engines spends time on checking that.
    int match(std::string_view subject, std::size_t from, pcre2_match_data& data) {
        const auto* text = reinterpret_cast<PCRE2_SPTR>(subject.data());
        if (jit_)
            return pcre2_jit_match(code_.get(), text, subject.size(), from, PCRE2_NO_UTF_CHECK, &data,
                                   context_.get());
        return pcre2_match(code_.get(), text, subject.size(), from, PCRE2_NO_UTF_CHECK, &data,
                           context_.get());
    }

    Tally firstMatches(const Subjects& subjects, pcre2_match_data& data) {
        Tally tally;
        for (std::string_view subject : subjects) {
            const int result = match(subject, 0, data);
            if (result < 0) continue;
            tally.matches++;
            const PCRE2_SIZE* spans = pcre2_get_ovector_pointer(&data);
            const std::uint32_t count = result == 0 ? 1 : static_cast<std::uint32_t>(result);
            for (std::uint32_t i = 0; i < count; i++)
                if (spans[2 * i] != PCRE2_UNSET) tally.bytes += spans[2 * i + 1] - spans[2 * i];
        }
        return tally;
    }

    Owned<pcre2_code> code_;
    Owned<pcre2_match_data> data_;
    Owned<pcre2_match_data> spanOnly_;
    Owned<pcre2_match_context> context_;
    Owned<pcre2_jit_stack> stack_;
    std::vector<PCRE2_UCHAR> replaced_;
    bool jit_;
};

std::unique_ptr<Pcre2> make(const PatternText& pattern, bool jit) {
    std::uint32_t options = pattern.utf8 ? PCRE2_UTF : 0;
    for (const char letter : pattern.options)
        options |= letter == 'i' ? PCRE2_CASELESS : letter == 'm' ? PCRE2_MULTILINE : PCRE2_DOTALL;
    int error = 0;
    PCRE2_SIZE offset = 0;
    Owned<pcre2_code> code(pcre2_compile(reinterpret_cast<PCRE2_SPTR>(pattern.text.data()),
                                         pattern.text.size(), options, &error, &offset, nullptr));
    if (!code) return nullptr;
    if (jit && pcre2_jit_compile(code.get(), PCRE2_JIT_COMPLETE) != 0) return nullptr;
    return std::make_unique<Pcre2>(std::move(code), jit);
}

/// The library has no sets: the patterns are tried one after the other.
class Pcre2Loop final : public SetEngine {
public:
    bool add(std::unique_ptr<Pcre2> pattern) {
        patterns_.push_back(std::move(pattern));
        return patterns_.back() != nullptr;
    }

    Tally matching(const Subjects& subjects) override {
        Tally tally;
        for (std::string_view subject : subjects)
            for (const auto& pattern : patterns_)
                tally.matches += pattern->matches(subject);
        return tally;
    }

private:
    std::vector<std::unique_ptr<Pcre2>> patterns_;
};

std::unique_ptr<SetEngine> makeLoop(const std::vector<PatternText>& patterns, bool jit) {
    auto loop = std::make_unique<Pcre2Loop>();
    for (const PatternText& pattern : patterns)
        if (!loop->add(make(pattern, jit))) return nullptr;
    return loop;
}

} // namespace

std::unique_ptr<Engine> makePcre2Interpreter(const PatternText& pattern) {
    return make(pattern, false);
}

std::unique_ptr<Engine> makePcre2Jit(const PatternText& pattern) {
    return make(pattern, true);
}

std::unique_ptr<SetEngine> makePcre2InterpreterLoop(const std::vector<PatternText>& patterns) {
    return makeLoop(patterns, false);
}

std::unique_ptr<SetEngine> makePcre2JitLoop(const std::vector<PatternText>& patterns) {
    return makeLoop(patterns, true);
}

} // namespace tav::bench
