#include "tavcore.h"

#include <cstdlib>

#if defined(_WIN32)
#define TAV_VISIBLE
#else
#define TAV_VISIBLE __attribute__((visibility("default")))
#endif

extern "C" {

TAV_VISIBLE void* tavMalloc(size_t size) {
    return std::malloc(size);
}

TAV_VISIBLE void tavFree(void* block) {
    std::free(block);
}

TAV_VISIBLE uint64_t tavGetEnabledCpuFeatures(void) {
    constexpr uint64_t sse = 1, sse2 = 2;
    return sse | sse2;
}
}
