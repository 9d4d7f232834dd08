// How much machine stack a call takes: paints the stack below the caller, makes the call, and looks how far
// the paint is gone. Works on the calling thread's own stack, on every system; a sanitizer widens frames, so
// that its figures mean nothing.
#pragma once

#include <cstddef>
#include <cstdint>

#if defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(memory_sanitizer) || __has_feature(thread_sanitizer)
#define TAVTEST_FRAMES_ARE_WIDENED
#endif
#endif
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define TAVTEST_FRAMES_ARE_WIDENED
#endif

namespace tavtest {

inline constexpr uint8_t stackPaint = 0xA5;

/// The lowest `bytes` of stack below the caller, the same in both functions because their frames are alike.
[[gnu::noinline]] inline void paintStack(std::size_t bytes) {
    auto* memory = static_cast<uint8_t*>(__builtin_alloca(bytes));
    asm volatile("" : "+r"(memory));
    for (std::size_t i = bytes; i-- > 0;) // downwards, as a stack grows
        static_cast<volatile uint8_t*>(memory)[i] = stackPaint;
}

[[gnu::noinline]] inline std::size_t usedStack(std::size_t bytes) {
    auto* memory = static_cast<uint8_t*>(__builtin_alloca(bytes));
    asm volatile("" : "+r"(memory));
    std::size_t untouched = 0;
    while (untouched < bytes && static_cast<volatile uint8_t*>(memory)[untouched] == stackPaint)
        ++untouched;
    return bytes - untouched;
}

template <class Work>
[[gnu::noinline]] std::size_t stackUseOf(const Work& work, std::size_t atMost) {
    work(); // what happens once, such as the binding of a symbol, is not the call's
    paintStack(atMost);
    work();
    return usedStack(atMost);
}

/// The same without what the measurement itself takes.
template <class Work>
std::size_t ownStackUseOf(const Work& work, std::size_t atMost) {
    const std::size_t nothing = stackUseOf([] { asm volatile(""); }, atMost);
    const std::size_t all = stackUseOf(work, atMost);
    return all > nothing ? all - nothing : 0;
}

} // namespace tavtest
