// Linux tells the bounds of a stack in /proc/self/maps. The text is read with plain system calls, since the C
// library's own query allocates memory.
#include "regex/match/stack_room.h"

#include <cstdint>

#if defined(_WIN32)

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

namespace tav::regex {

std::size_t stackRoom() {
    ULONG_PTR low = 0, high = 0;
    GetCurrentThreadStackLimits(&low, &high);
    const auto here = reinterpret_cast<ULONG_PTR>(__builtin_frame_address(0));
    return here > low ? static_cast<std::size_t>(here - low) : 0;
}

} // namespace tav::regex

#else

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

namespace tav::regex {

namespace {

/// Reads a file byte by byte through a small buffer.
class Bytes {
public:
    explicit Bytes(int file) : file_(file) {}

    int next() {
        if (at_ == filled_) {
            filled_ = read(file_, buffer_, sizeof buffer_);
            at_ = 0;
            if (filled_ <= 0) return filled_ = 0, -1;
        }
        return static_cast<unsigned char>(buffer_[at_++]);
    }

private:
    int file_;
    ssize_t filled_ = 0;
    ssize_t at_ = 0;
    char buffer_[1024];
};

int hexDigit(int c) {
    if (c >= '0' && c <= '9') return c - '0';
    return c >= 'a' && c <= 'f' ? c - 'a' + 10 : -1;
}

uintptr_t readAddress(Bytes& bytes) {
    uintptr_t value = 0;
    for (int digit; (digit = hexDigit(bytes.next())) >= 0;)
        value = value << 4 | static_cast<uintptr_t>(digit);
    return value;
}

/// Passes over the rest of a line; true when it names the stack of the main thread, which grows on demand.
bool endsLineInStack(Bytes& bytes) {
    bool bracket = false, stack = false;
    for (int c = bytes.next(); c != '\n' && c >= 0; c = bytes.next()) {
        stack = stack || (bracket && c == 's');
        bracket = c == '[';
    }
    return stack;
}

/// The lowest address that the stack around `here` may reach, 0 when unknown.
uintptr_t lowestAddress(int file, uintptr_t here) {
    constexpr uintptr_t guardGap = 1 << 20; // the system keeps this far from the mapping below
    Bytes bytes(file);
    uintptr_t below = 0;
    for (;;) {
        const uintptr_t low = readAddress(bytes);
        const uintptr_t high = readAddress(bytes);
        if (high == 0) return 0;
        const bool grows = endsLineInStack(bytes);
        if (here < low || here >= high) {
            below = high;
            continue;
        }
        rlimit limit{};
        if (!grows || getrlimit(RLIMIT_STACK, &limit) != 0) return low;
        const uintptr_t byGap = below + guardGap;
        const uintptr_t byLimit = limit.rlim_cur < high ? high - limit.rlim_cur : 0;
        return byLimit > byGap ? byLimit : byGap;
    }
}

} // namespace

std::size_t stackRoom() {
    const int file = open("/proc/self/maps", O_RDONLY | O_CLOEXEC);
    if (file < 0) return 0;
    const auto here = reinterpret_cast<uintptr_t>(__builtin_frame_address(0));
    const uintptr_t low = lowestAddress(file, here);
    close(file);
    return low != 0 && here > low ? here - low : 0;
}

} // namespace tav::regex

#endif
