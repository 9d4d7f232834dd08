// Joins pieces of text; a chain of "+" over strings draws false warnings from some compilers.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

namespace tav::reference {

inline std::string join(std::initializer_list<std::string_view> pieces) {
    std::string text;
    for (const std::string_view piece : pieces)
        text += piece;
    return text;
}

inline std::string times(int count, std::string_view piece) {
    std::string text;
    for (int i = 0; i < count; ++i)
        text += piece;
    return text;
}

} // namespace tav::reference
