// Compiles a pattern for a test in surroundings that catch every step outside: the pattern and the options
// end where a forbidden page begins, the block has exactly the stated size and ends at one too, and its work
// area is watched.
#pragma once

#include "base/guarded_buffer.h"
#include "regex/match/program.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <string>

namespace tavtest {

class Pattern {
public:
    /// `options` absent: a null pointer is passed.
    explicit Pattern(const std::string& pattern, const std::optional<std::string>& options = std::nullopt)
        : block_((24 * pattern.size() + 48056) / 8) {
        GuardedBuffer<char> patternText(pattern.size() + 1);
        GuardedBuffer<char> optionText(options ? options->size() + 1 : 1);
        std::fill_n(words(), wordCount(), filler);
        status_ =
            tavsRegExpInit(patternText.copyToTail(pattern.c_str(), pattern.size() + 1),
                           options ? optionText.copyToTail(options->c_str(), options->size() + 1) : nullptr,
                           &context(), &errOffset_);
    }

    tavStatus status() const { return status_; }
    int32_t errOffset() const { return errOffset_; }
    bool compiled() const { return status_ == tavStsNoError; }
    tavRegExpContext& context() { return *reinterpret_cast<tavRegExpContext*>(words()); }

    const tav::regex::Instruction& at(int32_t index) { return tav::regex::programOf(context())[index]; }

    bool workAreaUntouched() {
        const auto& area = context().workArea;
        return std::all_of(std::begin(area), std::end(area), [](uint64_t word) { return word == filler; });
    }
    bool untouched() {
        return std::all_of(words(), words() + wordCount(), [](uint64_t word) { return word == filler; });
    }

    static constexpr int32_t noOffset = -77;
    static constexpr uint64_t filler = 0xA5C3A5C3A5C3A5C3u;

private:
    std::size_t wordCount() const { return block_.capacity(); }
    uint64_t* words() { return block_.tail(block_.capacity()); }

    GuardedBuffer<uint64_t> block_;
    tavStatus status_ = tavStsNoError;
    int32_t errOffset_ = noOffset;
};

} // namespace tavtest
