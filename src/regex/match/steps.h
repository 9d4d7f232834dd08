// Counts the steps of the matcher where TAVCH_COUNT_STEPS is defined, in a test; elsewhere it is nothing.
#pragma once

#include <cstdint>

namespace tav::regex {

#if defined(TAVCH_COUNT_STEPS)
inline int64_t steps = 0;
inline void countStep() {
    ++steps;
}
#else
inline void countStep() {}
#endif

} // namespace tav::regex
