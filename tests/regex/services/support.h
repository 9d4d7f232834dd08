// What the tests of replacement and of pattern sets share: compiled patterns and templates in blocks of
// exactly the stated size that end where a forbidden page begins.
#pragma once

#include "base/guarded_buffer.h"
#include "tavch.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

namespace tavtest {

inline const uint8_t* bytesOf(std::string_view text) {
    return reinterpret_cast<const uint8_t*>(text.data());
}

inline int32_t lengthOf(std::string_view text) {
    return static_cast<int32_t>(text.size());
}

/// The same requests at every run, or those of TAVCH_TEST_SEED.
inline uint32_t testSeed() {
    const char* const chosen = std::getenv("TAVCH_TEST_SEED");
    return chosen == nullptr ? 20261120 : static_cast<uint32_t>(std::strtoul(chosen, nullptr, 10));
}

class CompiledPattern {
public:
    explicit CompiledPattern(const std::string& pattern, const std::string& options = "")
        : block_((24 * pattern.size() + 48056) / 8), context_(nullptr) {
        int32_t errOffset = -1;
        context_ = reinterpret_cast<tavRegExpContext*>(block_.tail(block_.capacity()));
        status_ = tavsRegExpInit(pattern.c_str(), options.c_str(), context_, &errOffset);
        EXPECT_EQ(status_, tavStsNoError) << "pattern " << pattern << ", offset " << errOffset;
    }

    tavRegExpContext* get() { return context_; }
    tavRegExpContext* operator->() { return context_; }

private:
    GuardedBuffer<uint64_t> block_;
    tavRegExpContext* context_;
    tavStatus status_ = tavStsNoError;
};

/// A template and the block it is compiled into.
class CompiledTemplate {
public:
    explicit CompiledTemplate(std::string_view text) : text_(text), block_(2 * (text_.size() + 1)) {
        context_ = reinterpret_cast<tavRegExpReplaceContext*>(block_.tail(block_.capacity()));
        *context_ = {staleCount, nullptr};
        status_ = tavsRegExpReplaceInit(text_.c_str(), context_);
    }

    tavStatus status() const { return status_; }
    tavRegExpReplaceContext* get() { return context_; }
    tavRegExpReplaceContext* operator->() { return context_; }
    const char* text() const { return text_.c_str(); }

    /// The items in words: "lit@0:x" (offset in the template, bytes), "ref:1".
    std::vector<std::string> items() const {
        std::vector<std::string> all;
        for (int32_t i = 0; i < context_->itemCount; i++)
            all.push_back(describe(context_->items[i]));
        return all;
    }

    std::string describe(const tavRegExpReplaceItem& item) const {
        if (item.kind != tavReplaceLiteral) return "ref:" + std::to_string(item.value);
        return "lit@" + std::to_string(item.text - text()) + ":" + std::string(item.text, item.value);
    }

    static constexpr int32_t staleCount = 4711;

private:
    std::string text_;
    GuardedBuffer<uint64_t> block_;
    tavRegExpReplaceContext* context_ = nullptr;
    tavStatus status_ = tavStsNoError;
};

} // namespace tavtest
