// The life of a pattern object: its size, its compilation into the caller's block, its two settings.
#pragma once

#include "tavch.h"

namespace tav::regex {

tavStatus getSize(const char* pattern, int32_t* size);
tavStatus init(const char* pattern, const char* options, tavRegExpContext* state, int32_t* errOffset);
tavStatus initAlloc(const char* pattern, const char* options, tavRegExpContext** state, int32_t* errOffset);
/// Releases a pattern or a set of patterns: the block is all that either owns.
tavStatus release(void* block);
tavStatus setMatchLimit(int32_t limit, tavRegExpContext* state);
tavStatus setFormat(int32_t format, tavRegExpContext* state);

} // namespace tav::regex
