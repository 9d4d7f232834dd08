// The search driver: finds the first match of a compiled pattern, or successive ones under the global option.
#pragma once

#include "tavch.h"

namespace tav::regex {

/// What a search under the global option stores of each match.
enum class GlobalEntries {
    groups, // the capturing groups; the whole match when the pattern has none
    all,    // the whole match, then each capturing group
};

/// The search behind tavsRegExpFind_8u and the services. Tests its arguments and reports as that function
/// does.
tavStatus search(const uint8_t* pSrc, int32_t srcLen, tavRegExpContext* pRegExpState,
                 tavRegExpFindResult* pFind, int32_t* pNumFind, GlobalEntries globalEntries);

tavStatus find(const uint8_t* pSrc, int32_t srcLen, tavRegExpContext* pRegExpState,
               tavRegExpFindResult* pFind, int32_t* pNumFind);

} // namespace tav::regex
