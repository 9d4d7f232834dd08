// Sets of compiled patterns under the caller's identifiers. A set holds pointers only.
//
//     block:  tavRegExpMultiContext | pattern pointer per slot | identifier per slot
//
// A set is released like a pattern: tavsRegExpMultiFree is regex::release.
#pragma once

#include "tavch.h"

namespace tav::regex {

tavStatus multiGetSize(uint32_t maxPatterns, int32_t* size);
tavStatus multiInit(tavRegExpMultiContext* set, uint32_t maxPatterns);
tavStatus multiInitAlloc(tavRegExpMultiContext** setOut, uint32_t maxPatterns);
tavStatus multiAdd(tavRegExpContext* pattern, uint32_t id, tavRegExpMultiContext* set);
tavStatus multiDelete(uint32_t id, tavRegExpMultiContext* set);
tavStatus multiModify(tavRegExpContext* pattern, uint32_t id, tavRegExpMultiContext* set);
tavStatus multiFind(const uint8_t* src, int32_t len, tavRegExpMultiFindResult* results,
                    tavRegExpMultiContext* set);

} // namespace tav::regex
