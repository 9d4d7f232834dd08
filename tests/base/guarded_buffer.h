// A buffer with an inaccessible page directly before it and directly behind it: the first read or write
// outside it ends the test program. Any length may be placed against either guard.
//
//   GuardedBuffer<uint16_t> text(300);
//   uint16_t* atEnd = text.tail(17);   // 17 elements that end where the rear guard begins
//   uint16_t* atStart = text.head();   // elements that begin where the front guard ends
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#if defined(_WIN32)
#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>
#else
#include <sys/mman.h>
#include <unistd.h>
#endif

namespace tavtest {

/// Whole pages of readable and writable memory between two pages that may not be touched.
class GuardedPages {
public:
    explicit GuardedPages(std::size_t bytes)
        : page_(pageSize()), usable_((bytes + page_ - 1) / page_ * page_ + (bytes == 0 ? page_ : 0)) {
        const std::size_t all = usable_ + 2 * page_;
#if defined(_WIN32)
        base_ = static_cast<uint8_t*>(VirtualAlloc(nullptr, all, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE));
        DWORD before = 0;
        if (base_ == nullptr || !VirtualProtect(base_, page_, PAGE_NOACCESS, &before) ||
            !VirtualProtect(end(), page_, PAGE_NOACCESS, &before)) {
            fail();
        }
#else
        void* mapped = mmap(nullptr, all, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (mapped == MAP_FAILED) fail();
        base_ = static_cast<uint8_t*>(mapped);
        if (mprotect(base_, page_, PROT_NONE) != 0 || mprotect(end(), page_, PROT_NONE) != 0) fail();
#endif
    }

    ~GuardedPages() {
#if defined(_WIN32)
        VirtualFree(base_, 0, MEM_RELEASE);
#else
        munmap(base_, usable_ + 2 * page_);
#endif
    }

    GuardedPages(const GuardedPages&) = delete;
    GuardedPages& operator=(const GuardedPages&) = delete;

    uint8_t* begin() {
        return base_ + page_;
    }
    uint8_t* end() {
        return base_ + page_ + usable_;
    }

private:
    static std::size_t pageSize() {
#if defined(_WIN32)
        SYSTEM_INFO info;
        GetSystemInfo(&info);
        return info.dwPageSize;
#else
        return static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
#endif
    }

    [[noreturn]] static void fail() {
        std::fputs("no memory for guarded pages\n", stderr);
        std::abort();
    }

    std::size_t page_;
    std::size_t usable_;
    uint8_t* base_ = nullptr;
};

/// The same in elements.
template <class E>
class GuardedBuffer {
public:
    explicit GuardedBuffer(std::size_t capacity) : pages_(capacity * sizeof(E)), capacity_(capacity) {}

    /// The first elements, directly behind the front guard.
    E* head() { return reinterpret_cast<E*>(pages_.begin()); }

    /// The last `count` elements, directly before the rear guard.
    E* tail(std::size_t count) { return reinterpret_cast<E*>(pages_.end()) - count; }

    /// A copy of `count` elements directly before the rear guard.
    E* copyToTail(const E* from, std::size_t count) {
        if (count != 0) std::memcpy(tail(count), from, count * sizeof(E));
        return tail(count);
    }

    /// A copy of `count` elements directly behind the front guard.
    E* copyToHead(const E* from, std::size_t count) {
        if (count != 0) std::memcpy(head(), from, count * sizeof(E));
        return head();
    }

    std::size_t capacity() const { return capacity_; }

private:
    GuardedPages pages_;
    std::size_t capacity_;
};

} // namespace tavtest
