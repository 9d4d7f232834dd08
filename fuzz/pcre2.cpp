// The language that PCRE2 shares: settings (option letters i m s, u for UTF-8), the choices that make the
// pattern, the subject.
#include "input.h"
#include "reference/shared_patterns.h"

namespace {

using namespace tav::reference;

/// Takes every choice from the input; all zeros behind its end, so that every pattern comes to an end.
class Choices {
public:
    explicit Choices(std::string bytes) : bytes_(std::move(bytes)) {}

    uint32_t below(uint32_t bound) { return byte() % bound; }
    bool oneIn(uint32_t n) { return byte() % n == 1; }
    template <class List>
    auto pick(const List& list) {
        return list[below(static_cast<uint32_t>(std::size(list)))];
    }

private:
    uint32_t byte() { return next_ < bytes_.size() ? static_cast<uint8_t>(bytes_[next_++]) : 0; }

    std::string bytes_;
    std::size_t next_ = 0;
};

std::string show(const std::vector<Span>& spans) {
    std::string text;
    for (const Span& span : spans)
        text += join({"(", std::to_string(span.start), ",", std::to_string(span.start + span.length), ")"});
    return text;
}

bool isAscii(const std::string& text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return c > 0; });
}

bool isUtf8Letters(const std::string& text) {
    const std::string letters[] = {"a", "b", "1", "\xc3\xa9", "\xe2\x82\xac"};
    for (std::size_t at = 0; at < text.size();) {
        const auto next =
            std::find_if(std::begin(letters), std::end(letters), [&](const std::string& letter) {
                return text.compare(at, letter.size(), letter) == 0;
            });
        if (next == std::end(letters)) return false;
        at += next->size();
    }
    return true;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    tavfuzz::Input input(data, size);
    const std::string settings = input.line();
    const bool unicode = settings.find('u') != std::string::npos;
    Choices choices(input.line());
    Trial trial;
    for (const char letter : settings) {
        const bool known = letter == 'm' || letter == 's' || (letter == 'i' && !unicode);
        if (known && trial.options.find(letter) == std::string::npos) trial.options += letter;
    }
    trial.pattern = SharedPatterns<Choices>(choices, unicode).make();
    trial.subject = input.rest().substr(0, 40);
    if (unicode ? !isUtf8Letters(trial.subject) : !isAscii(trial.subject)) return 0;
    const Compiled compiled = compile(trial.pattern, trial.options);
    std::vector<Span> expected;
    if (!compiled || !byPeer(trial, unicode, compiled.block->groupCount, expected)) return 0;

    SearchSettings reference;
    reference.capacity = compiled.block->groupCount;
    reference.stepLimit = 20000;
    compiled.block->matchLimit = 2000;
    const auto* const bytes = reinterpret_cast<const uint8_t*>(trial.subject.c_str());
    const Subject subject = {bytes, static_cast<int32_t>(trial.subject.size())};
    const SearchResult judged = search(programIn(*compiled.block), subject, reference);
    if (judged.gaveUp) return 0;
    std::vector<tavRegExpFindResult> found(static_cast<std::size_t>(compiled.block->groupCount));
    int32_t count = compiled.block->groupCount;
    TAV_REQUIRE(tavsRegExpFind_8u(bytes, subject.length, compiled.block.get(), found.data(), &count) ==
                tavStsNoError);
    std::vector<Span> spans;
    for (int32_t i = 0; i < count; ++i) {
        const tavRegExpFindResult& one = found[static_cast<std::size_t>(i)];
        spans.push_back({one.start ? static_cast<int32_t>(one.start - bytes) : -1, one.length});
    }
    if (spans != expected) {
        const std::string report = join({describe(trial), "\n  PCRE2 ", show(expected), "\n  the library ",
                                         show(spans), "\n  the reference ", show(judged.entries), "\n"});
        tavfuzz::broken("the library finds what PCRE2 finds", __FILE__, __LINE__, report.c_str());
    }
    return 0;
}
