// The same in C++.
#include <cstdio>
#include <string_view>
#include <tavch.h>

int main() {
    constexpr std::string_view subject = "xxABBBcyy abc";
    tavRegExpContext* pattern = nullptr;
    std::int32_t errOffset = 0, count = 2;
    tavRegExpFindResult found[2];
    if (tavsRegExpInitAlloc("a(b+)c", "i", &pattern, &errOffset) != tavStsNoError) return 1;
    const tavStatus status =
        tavsRegExpFind_8u(reinterpret_cast<const std::uint8_t*>(subject.data()),
                          static_cast<std::int32_t>(subject.size()), pattern, found, &count);
    if (status != tavStsNoError || count != 2) return 1;
    std::printf("%.*s\n", static_cast<int>(found[1].length), reinterpret_cast<const char*>(found[1].start));
    tavsRegExpFree(pattern);
}
