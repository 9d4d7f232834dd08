// A call of every exported function on buffers of exact size: the table that tests of all exports walk.
#pragma once

#include "base/guarded_buffer.h"
#include "tavch.h"

#include <algorithm>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tavtest {

/// Where the buffers of one call lie: against the rear page, or `shift` bytes behind the front page.
struct Place {
    bool rear;
    std::size_t shift;
};

/// One call: hands out buffers of exact size and collects everything that the call wrote.
class Call {
public:
    Call(std::size_t length, Place place) : length_(length), place_(place) {}

    std::size_t size() const { return length_; }
    int32_t length() const { return static_cast<int32_t>(length_); }

    /// A buffer for reading.
    template <class T>
    T* in(const std::vector<T>& from) {
        T* const memory = place<T>(from.size());
        std::copy(from.begin(), from.end(), memory);
        return memory;
    }

    const char* text(std::string_view from) {
        std::vector<char> terminated(from.begin(), from.end());
        terminated.push_back('\0');
        return in(terminated);
    }

    /// A buffer for writing: what stands in it afterwards belongs to the results.
    template <class T>
    T* out(std::size_t count, T initial) {
        T* const memory = place<T>(count);
        std::fill_n(memory, count, initial);
        rooms_.push_back({reinterpret_cast<const uint8_t*>(memory), count * sizeof(T)});
        return memory;
    }
    template <class T>
    T* inOut(const std::vector<T>& from) {
        T* const memory = out<T>(from.size(), T{});
        std::copy(from.begin(), from.end(), memory);
        return memory;
    }

    /// A buffer for writing whose bytes depend on addresses, so that they are no result.
    uint64_t* block(std::size_t bytes) {
        uint64_t* const memory = place<uint64_t>(bytes / 8);
        std::fill_n(memory, bytes / 8, uint64_t{0xA5A5A5A5A5A5A5A5});
        return memory;
    }
    template <class T>
    T* array(std::size_t count, T initial) {
        T* const memory = place<T>(count);
        std::fill_n(memory, count, initial);
        return memory;
    }

    void value(int64_t number) { results_ += std::to_string(number) + " "; }
    void expect(tavStatus status, tavStatus expected = tavStsNoError) {
        if (status != expected) value(status);
        faults_ += status != expected;
    }

    /// How many statuses were not the expected ones.
    int faults() const { return faults_; }

    std::string results() {
        for (const Room& room : rooms_)
            results_.append(reinterpret_cast<const char*>(room.start), room.bytes);
        return results_;
    }

private:
    struct Room {
        const uint8_t* start;
        std::size_t bytes;
    };

    template <class T>
    T* place(std::size_t count) {
        static std::vector<std::unique_ptr<GuardedPages>> pages;
        while (pages.size() <= used_)
            pages.push_back(std::make_unique<GuardedPages>(std::size_t{1} << 16));
        GuardedPages& page = *pages[used_++];
        const std::size_t aligned = place_.shift / alignof(T) * alignof(T);
        uint8_t* const start = place_.rear ? page.end() - count * sizeof(T) : page.begin() + aligned;
        return reinterpret_cast<T*>(start);
    }

    std::size_t length_;
    Place place_;
    std::size_t used_ = 0;
    std::vector<Room> rooms_;
    std::string results_;
    int faults_ = 0;
};

using Row = std::function<void(Call&)>;
using Table = std::map<std::string_view, Row>;

/// A row for each export. What a row's call writes does not depend on where its buffers lie.
Table everyExport();

/// A pattern compiled into a block of exact size.
tavRegExpContext* compiled(Call& call, const std::string& pattern, const char* options);

/// A hash for texts and results, the same on every system.
uint64_t hashOf(std::string_view bytes);

} // namespace tavtest
