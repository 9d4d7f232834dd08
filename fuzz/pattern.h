// Patterns in the fuzz targets: compiled from text of exact size into a block of exact size.
#pragma once

#include "input.h"
#include "regex/compile/well_formed.h"

#include <algorithm>

namespace tavfuzz {

/// The first `length` letters of a settings line that are options of a pattern.
inline std::string optionLetters(const std::string& line) {
    std::string letters;
    for (const char c : line) {
        if (std::strchr("smixg", c) != nullptr && c != '\0') letters += c;
    }
    return letters;
}

class CompiledPattern {
public:
    CompiledPattern(const std::string& pattern, const std::string& options,
                    uint64_t garbage = 0xA5A5A5A5A5A5A5A5)
        : length_(std::strlen(pattern.c_str())), block_((24 * length_ + 48056) / 8, 0, garbage) {
        Exact<char> text(std::vector<char>(pattern.c_str(), pattern.c_str() + length_ + 1));
        Exact<char> letters(std::vector<char>(options.c_str(), options.c_str() + options.size() + 1));
        int32_t size = 0;
        TAV_REQUIRE(tavsRegExpGetSize(pattern.c_str(), &size) == tavStsNoError);
        TAV_REQUIRE(static_cast<std::size_t>(size) == 8 * (block_.all().size()));
        status_ = compile(text, letters);
    }

    bool compiled() const { return status_ == tavStsNoError; }
    tavStatus status() const { return status_; }
    int32_t errOffset() const { return errOffset_; }
    std::size_t length() const { return length_; }
    const uint8_t* bytes() { return reinterpret_cast<const uint8_t*>(block_.get()); }
    tavRegExpContext& context() { return *reinterpret_cast<tavRegExpContext*>(block_.get()); }

    /// Aborts unless the block is what the matcher takes for granted, or the error what callers are told.
    void requireSound() {
        if (compiled()) {
            const std::string fault = tavtest::faultOf(context(), length_);
            if (!fault.empty()) broken("the block is well formed", __FILE__, __LINE__, fault.c_str());
        } else {
            TAV_REQUIRE((status_ <= tavStsBadEscape && status_ >= tavStsRepeatLimit) ||
                        (status_ == tavStsBadOption && errOffset_ == 0));
            TAV_REQUIRE(errOffset_ >= 0 && errOffset_ <= static_cast<int32_t>(length_));
        }
    }

private:
    tavStatus compile(Exact<char>& text, Exact<char>& letters) {
        return tavsRegExpInit(text.get(), letters.get(), &context(), &errOffset_);
    }

    std::size_t length_;
    Exact<uint64_t> block_;
    tavStatus status_ = tavStsNoError;
    int32_t errOffset_ = -1;
};

} // namespace tavfuzz
