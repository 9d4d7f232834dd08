// What every fuzz target uses: the input as lines, elements of either width, memory of exact size, and the
// check that ends the program.
//
// An input is text: a first line of settings, further lines or the rest for the strings. So the seeds can be
// written by hand, and a mutation of one line leaves the others alone. Everything that a target hands to the
// library lies in a heap block of exactly the size that the function may touch: AddressSanitizer sees the
// first byte beyond.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

// Each target's entry point; in the program that replays the corpora they stand side by side.
#if defined(TAVCH_FUZZ_ENTRY)
#define LLVMFuzzerTestOneInput TAVCH_FUZZ_ENTRY
#endif
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace tavfuzz {

/// Ends the program with a report when the library did not keep what it promises.
#define TAV_REQUIRE(condition)                                                                               \
    ((condition) ? static_cast<void>(0) : tavfuzz::broken(#condition, __FILE__, __LINE__))

[[noreturn]] inline void broken(const char* condition, const char* file, int line, const char* more = "") {
    std::fprintf(stderr, "%s:%d: does not hold: %s\n%s", file, line, condition, more);
    std::fflush(stderr);
    std::abort();
}

class Input {
public:
    Input(const uint8_t* data, std::size_t size) : next_(data), end_(data + size) {}

    bool done() const { return next_ == end_; }

    /// The bytes up to the next line feed, which is consumed, or all that is left.
    std::string line() {
        const auto* const feed = done() ? nullptr
                                        : static_cast<const uint8_t*>(std::memchr(
                                              next_, '\n', static_cast<std::size_t>(end_ - next_)));
        const uint8_t* const stop = feed != nullptr ? feed : end_;
        std::string text(next_, stop);
        next_ = feed != nullptr ? feed + 1 : end_;
        return text;
    }

    std::string rest() {
        std::string text(next_, end_);
        next_ = end_;
        return text;
    }

private:
    const uint8_t* next_;
    const uint8_t* end_;
};

/// The settings of an input: numbers from the characters of its first line, 0 behind its end.
class Settings {
public:
    explicit Settings(std::string line) : line_(std::move(line)) {}

    /// A number below `limit`: digits and letters stand for their places in 0-9a-zA-Z.
    uint32_t below(uint32_t limit) { return limit < 2 ? 0 : number() % limit; }
    bool flag() { return below(2) != 0; }

private:
    uint32_t number() {
        if (next_ == line_.size()) return 0;
        const auto c = static_cast<uint8_t>(line_[next_++]);
        if (c >= '0' && c <= '9') return c - uint32_t{'0'};
        if (c >= 'a' && c <= 'z') return c - uint32_t{'a'} + 10;
        if (c >= 'A' && c <= 'Z') return c - uint32_t{'A'} + 36;
        return c;
    }

    std::string line_;
    std::size_t next_ = 0;
};

/// Elements from bytes: each byte one element, or, when `wide`, two bytes one 16-bit unit.
template <class E>
std::vector<E> elements(const std::string& bytes, bool wide) {
    std::vector<E> all;
    if (sizeof(E) == 1 || !wide) {
        for (const char c : bytes)
            all.push_back(static_cast<E>(static_cast<uint8_t>(c)));
    } else {
        for (std::size_t i = 0; i + 1 < bytes.size(); i += 2)
            all.push_back(
                static_cast<E>(static_cast<uint8_t>(bytes[i]) | static_cast<uint8_t>(bytes[i + 1]) << 8));
    }
    return all;
}

/// A heap block of exactly `count` elements, the first `shift` elements unused: any alignment, no byte more.
template <class E>
class Exact {
public:
    explicit Exact(std::size_t count, std::size_t shift = 0, E fill = E{'~'})
        : block_(new E[count + shift]), count_(count), shift_(shift) {
        for (std::size_t i = 0; i < count + shift; ++i)
            block_[i] = fill;
    }
    explicit Exact(const std::vector<E>& from, std::size_t shift = 0) : Exact(from.size(), shift) {
        for (std::size_t i = 0; i < count_; ++i)
            block_[shift_ + i] = from[i];
    }

    E* get() { return block_.get() + shift_; }
    int32_t length() const { return static_cast<int32_t>(count_); }
    std::vector<E> taken(std::size_t count) const {
        return std::vector<E>(block_.get() + shift_, block_.get() + shift_ + count);
    }
    std::vector<E> all() const { return taken(count_); }

private:
    std::unique_ptr<E[]> block_;
    std::size_t count_;
    std::size_t shift_;
};

template <class E>
std::vector<E> joined(std::vector<E> first, const std::vector<E>& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

/// Calls `check` for both element widths.
template <class Check>
void forBothWidths(const Check& check) {
    check(uint8_t{});
    check(uint16_t{});
}

} // namespace tavfuzz
