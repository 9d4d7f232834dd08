// What a class says of characters beyond ASCII, remembered as it is asked: a page for 64 neighbouring code
// points, found by number, so that classes, scripts and categories take the same few steps for each
// character. A page of another number takes the place of the one that was there.
#pragma once

#include <cstdint>

namespace tav::regex {

class WidePages {
public:
    void clear() {
        for (Page& page : pages_)
            page = {none, 0, 0};
    }

    /// Does the class have the code point? `test` tells when it has not been asked before.
    template <class Test>
    bool has(uint32_t codePoint, Test test) {
        const uint32_t number = codePoint / 64;
        const uint64_t bit = uint64_t{1} << (codePoint % 64);
        Page& page = pages_[number % count];
        if (page.number != number) page = {number, 0, 0};
        if ((page.known & bit) == 0) {
            page.known |= bit;
            if (test()) page.members |= bit;
        }
        return (page.members & bit) != 0;
    }

private:
    static constexpr uint32_t count = 32; // no two pages below U+0800 share a place
    static constexpr uint32_t none = ~uint32_t{0};

    struct Page {
        uint32_t number;
        uint64_t known; // code points asked for
        uint64_t members;
    };

    Page pages_[count];
};

} // namespace tav::regex
