// Compiles a pattern for a test in surroundings that catch every step outside: the pattern and the options
// end where a forbidden page begins, the block has exactly the stated size and ends at one too, and all of it
// is filled beforehand, so that a test can tell what was written.
#pragma once

#include "base/guarded_buffer.h"
#include "regex/match/program.h"

#include <algorithm>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace tavtest {

/// A guarded buffer of at least `count` elements. Ordinary sizes are kept for the next user: mapping pages is
/// slow.
template <class E>
class ReusedBuffer {
public:
    explicit ReusedBuffer(std::size_t count) {
        if (count <= ordinary && !idle().empty()) {
            buffer_ = std::move(idle().back());
            idle().pop_back();
        } else {
            buffer_ = std::make_unique<GuardedBuffer<E>>(std::max(count, ordinary));
        }
    }
    ~ReusedBuffer() {
        if (buffer_->capacity() == ordinary) idle().push_back(std::move(buffer_));
    }
    ReusedBuffer(const ReusedBuffer&) = delete;
    ReusedBuffer& operator=(const ReusedBuffer&) = delete;

    GuardedBuffer<E>* operator->() { return buffer_.get(); }

private:
    static constexpr std::size_t ordinary = 64 * 1024 / sizeof(E);
    static std::vector<std::unique_ptr<GuardedBuffer<E>>>& idle() {
        static std::vector<std::unique_ptr<GuardedBuffer<E>>> buffers;
        return buffers;
    }

    std::unique_ptr<GuardedBuffer<E>> buffer_;
};

inline std::string repeated(std::size_t count, const std::string& text) {
    std::string all;
    all.reserve(count * text.size());
    for (std::size_t i = 0; i < count; ++i)
        all += text;
    return all;
}

class Pattern {
public:
    explicit Pattern(const std::string& pattern, const char* options = nullptr)
        : wordCount_((24 * pattern.size() + 48056) / 8), block_(wordCount_) {
        ReusedBuffer<char> patternText(pattern.size() + 1);
        const std::size_t optionSize = options != nullptr ? std::strlen(options) + 1 : 0;
        ReusedBuffer<char> optionText(optionSize);
        std::fill_n(words(), wordCount_, filler);
        status_ = tavsRegExpInit(patternText->copyToTail(pattern.c_str(), pattern.size() + 1),
                                 options != nullptr ? optionText->copyToTail(options, optionSize) : nullptr,
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
        return std::all_of(words(), words() + wordCount_, [](uint64_t word) { return word == filler; });
    }

    static constexpr int32_t noOffset = -77;
    static constexpr uint64_t filler = 0xA5C3A5C3A5C3A5C3u;

private:
    uint64_t* words() { return block_->tail(wordCount_); }

    std::size_t wordCount_;
    ReusedBuffer<uint64_t> block_;
    tavStatus status_ = tavStsNoError;
    int32_t errOffset_ = noOffset;
};

} // namespace tavtest
