#include "lines.h"

#include <cstring>
#include <limits>

namespace tavgrep {

namespace {

constexpr std::size_t blockSize = std::size_t{256} * 1024;
constexpr std::size_t longestLine = std::numeric_limits<std::int32_t>::max();

} // namespace

LineReader::LineReader(std::FILE* file) : file_(file), buffer_(blockSize + 1) {
    std::setvbuf(file_, nullptr, _IONBF, 0); // the blocks are read into our own buffer
}

LineReader::Next LineReader::next(Line& line) {
    for (;;) {
        const void* feed = std::memchr(buffer_.data() + scanned_, '\n', end_ - scanned_);
        if (feed != nullptr) {
            const auto at = static_cast<std::size_t>(static_cast<const std::uint8_t*>(feed) - buffer_.data());
            return take(at, at + 1, line);
        }
        scanned_ = end_;
        if (end_ - begin_ > longestLine) {
            passingOver_ = true;
            begin_ = end_;
        }
        if (fill()) continue;
        if (begin_ == end_ && !passingOver_) return failed_ ? Next::Failed : Next::End;
        buffer_[end_] = 0;
        return take(end_, end_, line);
    }
}

LineReader::Next LineReader::take(std::size_t lineEnd, std::size_t after, Line& line) {
    const std::size_t length = lineEnd - begin_;
    const bool tooLong = passingOver_ || length > longestLine;
    if (!tooLong) line = {buffer_.data() + begin_, static_cast<std::int32_t>(length)};
    passingOver_ = false;
    begin_ = scanned_ = after;
    return tooLong ? Next::TooLong : Next::Line;
}

/// Reads more bytes behind those that are there, which move to the front first; false at the end of the file.
bool LineReader::fill() {
    if (ended_) return false;
    if (begin_ > 0) {
        std::memmove(buffer_.data(), buffer_.data() + begin_, end_ - begin_);
        scanned_ -= begin_;
        end_ -= begin_;
        begin_ = 0;
    }
    if (buffer_.size() - 1 - end_ < blockSize / 2) buffer_.resize(2 * buffer_.size());
    const std::size_t count = std::fread(buffer_.data() + end_, 1, buffer_.size() - 1 - end_, file_);
    end_ += count;
    ended_ = count == 0;
    failed_ = ended_ && std::ferror(file_) != 0;
    return !ended_;
}

} // namespace tavgrep
