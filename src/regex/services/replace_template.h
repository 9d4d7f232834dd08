// Replacement templates: text with references to groups, cut once into items that a replacement runs through.
//
//     block:  tavRegExpReplaceContext | item 0 | item 1 | ...        literal items point into the template
#pragma once

#include "tavch.h"

namespace tav::regex {

tavStatus replaceGetSize(const char* templateText, int32_t* size);
tavStatus replaceInit(const char* templateText, tavRegExpReplaceContext* context);

} // namespace tav::regex
