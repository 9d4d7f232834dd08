// Times several ways of doing one thing in turn, so that what disturbs the machine disturbs them all alike.
//
// Before anything is timed all have to give the same answer. A round runs each way once, as many times over
// as take some tenths of a millisecond; the median of the rounds counts.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tav::bench {

/// Keeps the compiler from knowing what it works on.
template <class T>
T opaque(T value) {
    asm volatile("" : "+r"(value) : : "memory");
    return value;
}

/// Upper vector halves left in use by whoever ran before slow SSE2 code down.
inline void clearUpperHalves() {
    if (__builtin_cpu_supports("avx")) asm volatile("vzeroupper" ::: "memory");
}

/// How long one call of a way took.
struct Taken {
    std::string way;
    double nanoseconds;
};

class Contest {
public:
    /// Adds a way; `call` gives an answer that fits 64 bits. It may hold references: the contest is over
    /// before its data go.
    template <class Call>
    void add(const char* name, Call call) {
        ways_.push_back({name, [=]() mutable { return static_cast<uint64_t>(call()); },
                         [=](int64_t times) mutable {
                             clearUpperHalves();
                             while (times-- > 0) {
                                 opaque(call());
                             }
                         }});
    }

    /// What the ways write is part of their answers.
    template <class E>
    void writesTo(std::vector<E>& output) {
        clear_ = [&] { std::fill(output.begin(), output.end(), E{}); };
        digest_ = [&] {
            const auto* bytes = reinterpret_cast<const char*>(output.data());
            return std::hash<std::string_view>()({bytes, output.size() * sizeof(E)});
        };
    }

    /// The name of a way that disagrees with the first, or null.
    const char* disagreeing() {
        const uint64_t expected = answerOf(ways_.front());
        for (Way& way : ways_) {
            if (answerOf(way) != expected) return way.name.c_str();
        }
        return nullptr;
    }

    /// The medians, in the order in which the ways were added.
    std::vector<Taken> measure(int rounds, double secondsPerTurn) {
        std::vector<int64_t> counts;
        for (Way& way : ways_) {
            int64_t count = 1;
            while (seconds(way, count) < secondsPerTurn) {
                count *= 2;
            }
            counts.push_back(count);
        }
        std::vector<std::vector<double>> turns(ways_.size());
        for (int round = 0; round < rounds; ++round) {
            for (std::size_t i = 0; i < ways_.size(); ++i) {
                turns[i].push_back(seconds(ways_[i], counts[i]) * 1e9 / static_cast<double>(counts[i]));
            }
        }
        std::vector<Taken> medians;
        for (std::size_t i = 0; i < ways_.size(); ++i) {
            std::sort(turns[i].begin(), turns[i].end());
            medians.push_back({ways_[i].name, turns[i][turns[i].size() / 2]});
        }
        return medians;
    }

private:
    struct Way {
        std::string name;
        std::function<uint64_t()> once;
        std::function<void(int64_t)> times;
    };

    static double seconds(Way& way, int64_t count) {
        const auto begin = std::chrono::steady_clock::now();
        way.times(count);
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    }

    uint64_t answerOf(Way& way) {
        clear_();
        const uint64_t answer = way.once();
        return answer ^ digest_() << 1;
    }

    std::vector<Way> ways_;
    std::function<void()> clear_ = [] {};
    std::function<uint64_t()> digest_ = [] { return uint64_t{0}; };
};

} // namespace tav::bench
