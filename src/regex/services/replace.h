// Replacement: the source with its first match, or under the option "g" every match, replaced by a template.
#pragma once

#include "tavch.h"

namespace tav::regex {

tavStatus replace(const uint8_t* src, int32_t* srcLen, uint8_t* dst, int32_t* dstLen,
                  tavRegExpFindResult* results, int32_t* numResults, tavRegExpContext* pattern,
                  const tavRegExpReplaceContext* context);

} // namespace tav::regex
