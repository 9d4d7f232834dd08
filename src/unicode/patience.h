// When to try vectors again after text on which they did not pay.
#pragma once

#include <cstddef>

namespace tav::unicode {

/// Counts the elements to take one by one before the next attempt: twice as many after each failure, and
/// fewer after a success, the more the longer it was. Text that never suits the vectors costs little more
/// than the plain loop alone, and text in which they fail now and then is not punished for it.
class Patience {
public:
    int afterFailure() {
        if (burst_ < longest) burst_ *= 2;
        return burst_;
    }
    void afterSuccess(std::ptrdiff_t elements) {
        burst_ = elements >= 64 ? shortest : burst_ / 2 > shortest ? burst_ / 2 : shortest;
    }

private:
    static constexpr int shortest = 4;
    static constexpr int longest = 1024;
    int burst_ = shortest;
};

} // namespace tav::unicode
