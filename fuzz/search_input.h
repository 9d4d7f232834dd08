// A search as an input: settings, pattern and subject.
//
// The settings are letters in any order: options of the pattern (s m i x g), and d: without a plan,
// w: without shortcuts, k and a digit: without that one, 0: by bytes, b: a letter behind the subject, l and a
// digit: a small match limit, r and a digit: so many result slots.
#pragma once

#include "pattern.h"
#include "reference/comparison.h"

namespace tavfuzz {

struct SearchInput {
    tav::reference::Trial trial;
    tav::reference::Way way = tav::reference::usually;
};

/// The reference recurses once per level: what the stack of a sanitized program holds.
inline constexpr int32_t levelsOnTheStack = 1500;

inline SearchInput readSearch(Input& input) {
    SearchInput search;
    const std::string line = input.line();
    search.trial.options = optionLetters(line);
    search.trial.limit = levelsOnTheStack;
    for (std::size_t i = 0; i < line.size(); ++i) {
        const int digit = i + 1 < line.size() ? (line[i + 1] - '0') & 31 : 0;
        switch (line[i]) {
        case 'd':
            search.way = tav::reference::directly;
            break;
        case 'w':
            search.way = tav::reference::withoutShortcuts;
            break;
        case 'k':
            search.way.shortcuts &= ~(1U << digit);
            break;
        case '0':
            search.trial.format = 0;
            break;
        case 'b':
            search.trial.behind = 'a';
            break;
        case 'l':
            search.trial.limit = digit * digit;
            break;
        case 'r':
            search.trial.slots = digit;
            break;
        default:
            break;
        }
    }
    search.trial.pattern = input.line().c_str();
    search.trial.subject = input.rest();
    return search;
}

/// The library and the reference engine on one search; aborts when they differ.
inline void compareWithReference(const SearchInput& search) {
    tav::reference::Comparison comparison;
    comparison.way = search.way;
    comparison.compare(search.trial);
    if (comparison.differences != 0)
        broken("the library finds what the reference finds", __FILE__, __LINE__, comparison.report.c_str());
}

} // namespace tavfuzz
