// The independent judge of the matcher: a slow, obvious backtracker over compiled programs, and the search
// driver around it. It shares with the library only the program's format and the Unicode properties, keeps
// no work area, takes no shortcut, and says of every path how many levels of the depth budget it needs.
#pragma once

#include "regex/match/program.h"

#include <cstdint>
#include <vector>

namespace tav::reference {

/// A program and the header fields that a search reads; `code` may be a compiled block's or hand-made.
struct Program {
    const regex::Instruction* code = nullptr;
    int32_t codeLength = 0;
    uint32_t options = 0;
    int32_t groupCount = 1;
    int32_t lastLiteral = -1;
    int32_t matchLimit = 10000;
    int32_t format = 1;
};

/// The program in a compiled block, with the header as it stands now.
Program programIn(const tavRegExpContext& context);

/// The bytes searched. The byte behind the last one must be readable: the word-boundary test looks at it.
struct Subject {
    const uint8_t* bytes;
    int32_t length;
};

/// A piece of the subject as offset and length; an unset group is {-1, -1}.
struct Span {
    int32_t start = -1;
    int32_t length = -1;
    bool operator==(const Span&) const = default;
};

/// What one search answers. `numFind` is the capacity's value on return, unchanged when `status` is negative.
struct SearchResult {
    tavStatus status = tavStsNoError;
    int32_t numFind = 0;
    std::vector<Span> entries;
    bool gaveUp = false; // more than `stepLimit` steps: nothing else in here means anything
    int64_t steps = 0;
};

struct SearchSettings {
    int32_t capacity = 1;          // *pNumFind on entry
    bool global = false;           // successive matches
    bool storeAllEntries = false;  // the whole match before the groups, as replacements need it
    int64_t stepLimit = INT64_MAX; // levels entered in all; guards random tests against exponential patterns
};

/// The whole search, with a positive capacity. Recursion is as deep as the match limit: see withLargeStack.
SearchResult search(const Program& program, Subject subject, const SearchSettings& settings);

/// Runs `work` on a thread whose stack holds 100,000 levels of recursion, and waits for it.
void withLargeStack(void (*work)(void*), void* argument);

template <class Work>
void withLargeStack(Work work) {
    withLargeStack([](void* argument) { (*static_cast<Work*>(argument))(); }, &work);
}

} // namespace tav::reference
