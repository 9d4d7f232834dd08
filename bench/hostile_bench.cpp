// Hostile patterns: those on which a plain backtracker takes exponential time, by the length of the subject,
// beside PCRE2 (interpreter and JIT, with a match limit) and RE2.
//
// A table of microseconds. "limit" stands where PCRE2 gave up, "-" where an engine has not the construct or
// was too slow one length before; so every cell ends in bounded time.
#include "tavch.h"

#define PCRE2_CODE_UNIT_WIDTH 8
#include <pcre2.h>
#include <re2/re2.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace {

struct Hostile {
    const char* pattern;
    const char* unit; // repeated to the length
    const char* tail;
};

constexpr Hostile hostile[] = {
    {"(a+)+$", "a", "b"},
    {"(a*)*$", "a", "b"},
    {"(a+)+b", "a", "cb"},
    {"(a|aa)+$", "a", "b"},
    {"(a|a)*$", "a", "b"},
    {"(a|a?)+$", "a", "b"},
    {"(a|a?)+b$", "a", "bc"},
    {"(a|b|ab)*$", "ab", "c"},
    {"(.*)*x$", "x", "y"},
    {"(.*?)*?x$", "x", "y"},
    {"(.+)+[0-9]$", "a", "b"},
    {"((a*?)*?)*?$", "a", "b"},
    {"((a*)*)*$", "a", "b"},
    {"(a+a+)+$", "a", "b"},
    {"(x+x+)+y$", "x", "yz"},
    {"a*a*a*a*a*$", "a", "b"},
    {"(\\w+\\s?)+$", "word ", "!"},
    {"^(\\w+\\s?)+$", "word ", "!"},
    {"^(([a-z])+.)+[A-Z]([a-z])+$", "a", ""},
    {"^(a|aa)+$", "a", "b"},
    {"^([a-zA-Z0-9])(([\\-.]|[_]+)?([a-zA-Z0-9]+))*(@){1}[a-z0-9]+$", "a", "@"},
    {"(?:(?:a{2,5})+)+$", "a", "b"},
    {"(a|a){1,30}$", "a", "b"},
    {"(?:a?){12}a{12}$", "a", "b"},
    {"(?:(?:.|\\n)*?)*end$", "a", "bend!"},
    {"^(.*?,){11}P", "1,", "xP"},
    {"(\"(?:[^\"\\\\]|\\\\.)*\"\\s*)+;$", "\"a\" ", "x"},
    {"^(?=(a|aa)+$)\\w", "a", "b"},
    {"(?=.*\\bof\\b)(?=.*\\bthe\\b)", "some of us ", ""},
    {"^(?!(a|aa)+$)ac", "a", "b"},
};

constexpr int lengths[] = {25, 1000, 10000};

struct Outcome {
    double microseconds = 0;
    bool limited = false;
    bool found = false;
};

class Engine {
public:
    virtual ~Engine() = default;
    virtual Outcome search(std::string_view subject) = 0;
};

class Tavch final : public Engine {
public:
    explicit Tavch(const char* pattern) {
        int32_t offset = 0;
        ready_ = tavsRegExpInitAlloc(pattern, nullptr, &context_, &offset) == tavStsNoError;
    }
    ~Tavch() override {
        if (ready_) tavsRegExpFree(context_);
    }
    Tavch(const Tavch&) = delete;
    Tavch& operator=(const Tavch&) = delete;
    bool isReady() const { return ready_; }
    Outcome search(std::string_view subject) override {
        tavRegExpFindResult results[10];
        int32_t found = 10;
        tavsRegExpFind_8u(reinterpret_cast<const uint8_t*>(subject.data()),
                          static_cast<int32_t>(subject.size()), context_, results, &found);
        return {.found = found > 0};
    }

private:
    tavRegExpContext* context_ = nullptr;
    bool ready_ = false;
};

class Pcre2 final : public Engine {
public:
    Pcre2(const char* pattern, bool jit) : jit_(jit) {
        int error = 0;
        PCRE2_SIZE offset = 0;
        code_ = pcre2_compile(reinterpret_cast<PCRE2_SPTR>(pattern), PCRE2_ZERO_TERMINATED, 0, &error,
                              &offset, nullptr);
        if (code_ == nullptr) return;
        if (jit_ && pcre2_jit_compile(code_, PCRE2_JIT_COMPLETE) != 0) return;
        data_ = pcre2_match_data_create_from_pattern(code_, nullptr);
        context_ = pcre2_match_context_create(nullptr);
        stack_ = pcre2_jit_stack_create(32 * 1024, 1024 * 1024, nullptr);
        pcre2_jit_stack_assign(context_, nullptr, stack_);
        pcre2_set_match_limit(context_, jit ? 50'000 : 1'000'000); // the JIT counts far larger steps
    }
    ~Pcre2() override {
        pcre2_jit_stack_free(stack_);
        pcre2_match_context_free(context_);
        pcre2_match_data_free(data_);
        pcre2_code_free(code_);
    }
    Pcre2(const Pcre2&) = delete;
    Pcre2& operator=(const Pcre2&) = delete;
    bool isReady() const { return data_ != nullptr; }
    Outcome search(std::string_view subject) override {
        const auto* text = reinterpret_cast<PCRE2_SPTR>(subject.data());
        const int result = jit_ ? pcre2_jit_match(code_, text, subject.size(), 0, 0, data_, context_)
                                : pcre2_match(code_, text, subject.size(), 0, PCRE2_NO_JIT, data_, context_);
        return {.limited = result < PCRE2_ERROR_NOMATCH, .found = result >= 0};
    }

private:
    pcre2_code* code_ = nullptr;
    pcre2_match_data* data_ = nullptr;
    pcre2_match_context* context_ = nullptr;
    pcre2_jit_stack* stack_ = nullptr;
    bool jit_;
};

class Re2 final : public Engine {
public:
    explicit Re2(const char* pattern) : re_(pattern, quiet()) {}
    bool isReady() const { return re_.ok(); }
    Outcome search(std::string_view subject) override {
        re2::StringPiece groups[10];
        const int count = re_.NumberOfCapturingGroups() < 9 ? re_.NumberOfCapturingGroups() + 1 : 10;
        return {.found = re_.Match({subject.data(), subject.size()}, 0, subject.size(), RE2::UNANCHORED,
                                   groups, count)};
    }

private:
    static RE2::Options quiet() {
        RE2::Options options;
        options.set_log_errors(false);
        options.set_encoding(RE2::Options::EncodingLatin1);
        return options;
    }
    RE2 re_;
};

std::string subjectOf(const Hostile& one, int length) {
    std::string subject;
    while (static_cast<int>(subject.size()) < length)
        subject += one.unit;
    return subject + one.tail;
}

/// The median of a few searches; a single one where it takes long.
Outcome measure(Engine& engine, const std::string& subject) {
    using Clock = std::chrono::steady_clock;
    constexpr int most = 15;
    constexpr double enough = 20'000;
    std::vector<double> times;
    Outcome outcome;
    double total = 0;
    while (times.size() < most && total < enough) {
        const auto begin = Clock::now();
        outcome = engine.search(subject);
        times.push_back(std::chrono::duration<double, std::micro>(Clock::now() - begin).count());
        total += times.back();
    }
    const auto middle = times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2);
    std::nth_element(times.begin(), middle, times.end());
    outcome.microseconds = *middle;
    return outcome;
}

template <class Peer, class... More>
std::unique_ptr<Engine> make(const char* pattern, More... more) {
    auto engine = std::make_unique<Peer>(pattern, more...);
    if (!engine->isReady()) return nullptr;
    return engine;
}

/// One engine on one pattern, by length. False when it finds something else than `expected` says.
bool printRow(const Hostile& one, const char* name, Engine* engine,
              std::vector<std::optional<bool>>& expected) {
    constexpr double tooSlow = 200'000;
    bool agrees = true, slow = false;
    std::printf("    %-10s", name);
    for (std::size_t i = 0; i < std::size(lengths); ++i) {
        if (engine == nullptr || slow) {
            std::printf(" %14s", "-");
            continue;
        }
        const Outcome outcome = measure(*engine, subjectOf(one, lengths[i]));
        slow = outcome.microseconds > tooSlow;
        if (outcome.limited) {
            std::printf(" %14s", "limit");
            continue;
        }
        std::printf(" %14.1f", outcome.microseconds);
        if (!expected[i]) expected[i] = outcome.found;
        if (*expected[i] != outcome.found) agrees = false;
    }
    std::printf("%s\n", agrees ? "" : "  finds something else");
    std::fflush(stdout);
    return agrees;
}

} // namespace

int main() {
    std::printf("microseconds for one search, by the length of the subject\n%-14s", "");
    for (const int length : lengths)
        std::printf(" %14d", length);
    std::printf("\n");
    int differences = 0;
    for (const Hostile& one : hostile) {
        std::printf("%s on %s...%s\n", one.pattern, one.unit, one.tail);
        std::vector<std::optional<bool>> expected(std::size(lengths));
        differences += !printRow(one, "tavch", make<Tavch>(one.pattern).get(), expected);
        differences += !printRow(one, "pcre2", make<Pcre2>(one.pattern, false).get(), expected);
        differences += !printRow(one, "pcre2-jit", make<Pcre2>(one.pattern, true).get(), expected);
        differences += !printRow(one, "re2", make<Re2>(one.pattern).get(), expected);
    }
    return differences == 0 ? 0 : 1;
}
