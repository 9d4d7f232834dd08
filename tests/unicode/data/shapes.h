// The shapes of the generated test data: runs of code points, first and last included.
#pragma once

#include <cstdint>

struct CategoryRun {
    uint32_t first, last;
    const char* category;
};

/// Each code point from first to last in steps of `step` maps to itself plus `difference`.
struct MappingRun {
    uint32_t first, last, step;
    int32_t difference;
};

struct ScriptRun {
    const char* script;
    uint32_t first, last;
};

struct BlockRun {
    uint32_t first, last;
};
