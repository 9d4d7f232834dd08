// The table through which every exported name reaches its implementation: slot i serves ordinal i + 1.
#pragma once

#include "tavch.h"

#include <cstddef>

namespace tav {

inline constexpr std::size_t exportCount = 90;

struct ExportSlots {
#define TAV_EXPORT(ordinal, result, name, parameters, arguments, implementation) result(*name) parameters;
#define TAV_VACANT(ordinal) void (*vacant##ordinal)(void);
#include "frame/exports.def"
#undef TAV_EXPORT
#undef TAV_VACANT
};

static_assert(sizeof(ExportSlots) == exportCount * sizeof(void (*)()), "one slot per ordinal");
#define TAV_EXPORT(ordinal, result, name, parameters, arguments, implementation)                             \
    static_assert(offsetof(ExportSlots, name) == ((ordinal)-1) * sizeof(void (*)()),                         \
                  #name " has its ordinal's slot");
#define TAV_VACANT(ordinal)
#include "frame/exports.def"
#undef TAV_EXPORT
#undef TAV_VACANT

/// Writable data by design; filled at build time and written by nothing at run time.
extern ExportSlots exportSlots;

} // namespace tav
