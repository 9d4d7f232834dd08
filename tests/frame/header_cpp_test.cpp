// The public header on its own in C++17, an older language than the library's own: its functions have C
// linkage, and its objects are plain data.
#include "tavch.h"

#include "tavch.h"

#include <type_traits>

static_assert(__cplusplus < 202002L, "this file is there to be compiled as C++17");
static_assert(std::is_trivial<tavRegExpContext>::value && std::is_standard_layout<tavRegExpContext>::value,
              "");
static_assert(std::is_trivial<tavRegExpFindResult>::value, "");
static_assert(std::is_same<tavStatus, int32_t>::value, "");

int main() {
    const tavVersionRecord* (*query)() = tavchGetLibVersion;
    return query()->versionMajor == 8 ? 0 : 1;
}
