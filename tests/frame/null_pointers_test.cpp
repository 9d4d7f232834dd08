// A null pointer is the first failure that a function reports, whatever its other arguments are. The table of
// functions and their parameters is derived from the export list: for each pointer parameter the function is
// called with that one null, every other pointer on zeroed memory and every number negative.
#include "frame/export_list.h"
#include "tavch.h"

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>

namespace {

constexpr std::size_t maxParameters = 12;
constexpr std::size_t areaSize = 64 * 1024; // room for a compiled empty pattern

/// One zeroed area per parameter, as far from each other as separate buffers are.
std::byte* area(std::size_t parameter) {
    alignas(16) static std::array<std::array<std::byte, areaSize>, maxParameters> areas;
    return areas[parameter].data();
}

[[maybe_unused]] void clearAreas() {
    for (std::size_t i = 0; i < maxParameters; i++)
        std::memset(area(i), 0, areaSize);
}

/// Parameters for which null has a meaning of its own.
[[maybe_unused]] bool mayBeNull(std::string_view function, std::size_t parameter) {
    const bool options = parameter == 1;
    const bool templateText = parameter == 0;
    return function == "tavsRegExpFree" || function == "tavsRegExpMultiFree" ||
           ((function == "tavsRegExpInit" || function == "tavsRegExpInitAlloc") && options) ||
           ((function == "tavsRegExpReplaceGetSize" || function == "tavsRegExpReplaceInit") && templateText);
}

template <class T>
T argument(std::size_t parameter, bool null) {
    if constexpr (std::is_pointer_v<T>)
        return null ? nullptr : reinterpret_cast<T>(area(parameter));
    else
        return static_cast<T>(-1);
}

template <class... T, std::size_t... I>
void expectNullIsRefused(std::string_view name, tavStatus (*function)(T...), std::index_sequence<I...>) {
    static_assert(sizeof...(T) <= maxParameters);
    constexpr bool isPointer[] = {std::is_pointer_v<T>..., false};
    for (std::size_t null = 0; null < sizeof...(T); null++) {
        if (!isPointer[null] || mayBeNull(name, null)) continue;
        clearAreas();
        EXPECT_EQ(function(argument<T>(I, I == null)...), tavStsNullPointer)
            << name << ", parameter " << null + 1;
    }
}

template <class... T>
void expectNullIsRefused(std::string_view name, tavStatus (*function)(T...)) {
    expectNullIsRefused(name, function, std::index_sequence_for<T...>{});
}

/// The version query alone returns no status and takes nothing.
void expectNullIsRefused(std::string_view name, const tavVersionRecord* (*function)()) {
    EXPECT_NE(function(), nullptr) << name;
}

} // namespace

TEST(NullPointers, AreReportedBeforeAnyOtherFault) {
#define TAV_EXPORT(ordinal, result, name, parameters, arguments, implementation)                             \
    expectNullIsRefused(#name, name);
#define TAV_VACANT(ordinal)
#include "frame/exports.def"
#undef TAV_EXPORT
#undef TAV_VACANT
}
