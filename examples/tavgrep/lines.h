// Reads a file line by line in blocks: lines may be of any length up to 2 GiB and hold any bytes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <vector>

namespace tavgrep {

/// A line without its line feed. One byte behind its end can be read (the line feed, or a zero behind the
/// last line): the word-boundary assertion looks at it.
struct Line {
    const std::uint8_t* text = nullptr;
    std::int32_t length = 0;
};

class LineReader {
public:
    enum class Next { Line, End, TooLong, Failed };

    explicit LineReader(std::FILE* file);

    /// Gives the next line, valid until the next call. A line of 2 GiB or more is passed over: TooLong.
    Next next(Line& line);

private:
    bool fill();
    Next take(std::size_t lineEnd, std::size_t after, Line& line);

    std::FILE* file_;
    std::vector<std::uint8_t> buffer_; ///< one byte longer than what may be read into it
    std::size_t begin_ = 0;            ///< start of the line being gathered
    std::size_t scanned_ = 0;          ///< no line feed lies between begin_ and here
    std::size_t end_ = 0;              ///< end of the bytes read
    bool passingOver_ = false;         ///< the start of an overlong line has been dropped
    bool ended_ = false;
    bool failed_ = false;
};

} // namespace tavgrep
