// The pattern as the compiler reads it: bytes by offset, where everything at or behind the terminating zero
// reads as `endOfText`, and the few searches that both passes need. Nothing behind the zero is ever touched.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace tav::regex::compiler {

inline constexpr int endOfText = -1;

class PatternText {
public:
    using Offset = std::ptrdiff_t;

    explicit PatternText(const char* zeroTerminated)
        : bytes_(reinterpret_cast<const uint8_t*>(zeroTerminated)),
          length_(static_cast<Offset>(std::strlen(zeroTerminated))) {}

    Offset length() const { return length_; }
    const uint8_t* pointer(Offset offset) const { return bytes_ + offset; }
    const uint8_t* end() const { return bytes_ + length_; }

    /// The byte at `offset`, or endOfText.
    int at(Offset offset) const { return offset < length_ ? bytes_[offset] : endOfText; }

    /// Does the text at `offset` begin with `expected`?
    bool startsWith(std::string_view expected, Offset offset) const {
        const auto count = static_cast<Offset>(expected.size());
        return length_ - offset >= count &&
               std::memcmp(bytes_ + offset, expected.data(), expected.size()) == 0;
    }

    /// The first place at or behind `from` where `byte` stands, or length() when there is none.
    Offset find(char byte, Offset from) const {
        if (from >= length_) return length_;
        const void* found = std::memchr(bytes_ + from, byte, static_cast<std::size_t>(length_ - from));
        return found != nullptr ? static_cast<const uint8_t*>(found) - bytes_ : length_;
    }

    /// The first place at or behind `from` where `first` is followed by `second` (a byte or endOfText), or
    /// length() when there is none.
    Offset findPair(char first, int second, Offset from) const {
        Offset place = find(first, from);
        while (place < length_ && at(place + 1) != second)
            place = find(first, place + 1);
        return place;
    }

private:
    const uint8_t* bytes_;
    Offset length_;
};

using Offset = PatternText::Offset;

constexpr bool isDigit(int c) {
    return c >= '0' && c <= '9';
}
constexpr bool isOctalDigit(int c) {
    return c >= '0' && c <= '7';
}

/// The white space that the "x" option ignores: no vertical tab.
constexpr bool isExtendedSpace(int c) {
    return c == '\t' || c == '\n' || c == '\f' || c == '\r' || c == ' ';
}

} // namespace tav::regex::compiler
