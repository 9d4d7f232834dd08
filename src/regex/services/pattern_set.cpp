#include "regex/services/pattern_set.h"

#include "base/arguments.h"
#include "regex/match/required.h"
#include "regex/match/search.h"
#include "regex/services/byte_pairs.h"
#include "tavcore.h"

#include <cstddef>
#include <cstring>
#include <limits>

namespace tav::regex {

static_assert(sizeof(tavRegExpMultiContext) == 24, "the pattern pointers stand directly behind");
static_assert(offsetof(tavRegExpMultiContext, capacity) == 0);
static_assert(offsetof(tavRegExpMultiContext, patterns) == 8);
static_assert(offsetof(tavRegExpMultiContext, ids) == 16);
static_assert(sizeof(tavRegExpMultiFindResult) == 24);
static_assert(offsetof(tavRegExpMultiFindResult, searched) == 0);
static_assert(offsetof(tavRegExpMultiFindResult, id) == 4);
static_assert(offsetof(tavRegExpMultiFindResult, numFind) == 8);
static_assert(offsetof(tavRegExpMultiFindResult, status) == 12);
static_assert(offsetof(tavRegExpMultiFindResult, finds) == 16);

namespace {

constexpr uint64_t bytesPerSlot = sizeof(tavRegExpContext*) + sizeof(uint32_t);
static_assert(bytesPerSlot == 12);

constexpr uint64_t blockSize(uint32_t maxPatterns) {
    return sizeof(tavRegExpMultiContext) + bytesPerSlot * maxPatterns;
}

/// No slot at all, or so many that the block's size is no 32-bit number.
constexpr bool isBadCount(uint32_t maxPatterns) {
    return maxPatterns == 0 || blockSize(maxPatterns) > uint64_t{std::numeric_limits<int32_t>::max()};
}

constexpr int32_t noSlot = -1;

/// The lowest slot that qualifies. A negative capacity, which no initialiser makes, deliberately gives slot 0
/// unseen: blocks put together by hand use it as a set of one slot that is overwritten without a search.
template <class Qualifies>
int32_t firstSlot(const tavRegExpMultiContext& set, Qualifies qualifies) {
    if (set.capacity < 0) return 0;
    for (int32_t slot = 0; slot < set.capacity; ++slot)
        if (qualifies(slot)) return slot;
    return noSlot;
}

int32_t firstFree(const tavRegExpMultiContext& set) {
    return firstSlot(set, [&](int32_t slot) { return set.patterns[slot] == nullptr; });
}

int32_t firstWithId(const tavRegExpMultiContext& set, uint32_t id) {
    return firstSlot(set, [&](int32_t slot) { return set.ids[slot] == id; });
}

/// Patterns that the pairs of a text can rule out.
int32_t countFilterable(const tavRegExpMultiContext& set) {
    int32_t count = 0;
    for (int32_t slot = 0; slot < set.capacity; ++slot)
        count += set.patterns[slot] != nullptr && set.patterns[slot]->tag == contextTag &&
                 requiredLiteral(*set.patterns[slot]).length > 1;
    return count;
}

/// Is one pass over the text cheaper than what it may save? A search that fails for want of its literal takes
/// about as long as the pass over 20 to 30 bytes, plus one more byte in 16.
bool filterPays(const tavRegExpMultiContext& set, int32_t length) {
    constexpr int32_t longest = 1024; // a long text holds nearly every pair
    if (set.capacity < 1 || length > longest) return false;
    const int32_t needed = 2 * (32 + length) / (24 + length / 16);
    return set.capacity > needed && countFilterable(set) > needed;
}

/// A search would answer "no match" because the literal that the pattern requires does not occur. Patterns
/// for which a search has something else to tell are left to it.
bool isRuledOut(const tavRegExpContext& pattern, const tavRegExpMultiFindResult& result,
                const BytePairs& pairs) {
    if (result.finds == nullptr || result.numFind < 1) return false;
    if (pattern.tag != contextTag || pattern.matchLimit < 0) return false;
    const RequiredLiteral literal = requiredLiteral(pattern);
    return !pairs.mayHold(literal.text, literal.length);
}

} // namespace

tavStatus multiGetSize(uint32_t maxPatterns, int32_t* size) {
    if (const auto bad = Arguments::pointers(size); bad.failed()) return bad.status;
    if (isBadCount(maxPatterns)) return tavStsBadCount;
    *size = static_cast<int32_t>(blockSize(maxPatterns));
    return tavStsNoError;
}

tavStatus multiInit(tavRegExpMultiContext* set, uint32_t maxPatterns) {
    if (const auto bad = Arguments::pointers(set); bad.failed()) return bad.status;
    if (isBadCount(maxPatterns)) return tavStsBadCount;
    set->capacity = static_cast<int32_t>(maxPatterns);
    set->patterns = reinterpret_cast<tavRegExpContext**>(set + 1);
    set->ids = reinterpret_cast<uint32_t*>(set->patterns + maxPatterns);
    std::memset(set->patterns, 0, bytesPerSlot * maxPatterns);
    return tavStsNoError;
}

tavStatus multiInitAlloc(tavRegExpMultiContext** setOut, uint32_t maxPatterns) {
    if (const auto bad = Arguments::pointers(setOut); bad.failed()) return bad.status;
    if (isBadCount(maxPatterns)) return tavStsBadCount;
    *setOut = static_cast<tavRegExpMultiContext*>(tavMalloc(blockSize(maxPatterns)));
    return multiInit(*setOut, maxPatterns);
}

tavStatus multiAdd(tavRegExpContext* pattern, uint32_t id, tavRegExpMultiContext* set) {
    if (const auto bad = Arguments::pointers(pattern, set); bad.failed()) return bad.status;
    if (id == 0) return tavStsBadArgument;
    const int32_t slot = firstFree(*set);
    if (slot == noSlot) return tavStsSetFull;
    set->patterns[slot] = pattern;
    set->ids[slot] = id;
    return tavStsNoError;
}

tavStatus multiDelete(uint32_t id, tavRegExpMultiContext* set) {
    if (const auto bad = Arguments::pointers(set); bad.failed()) return bad.status;
    if (id == 0) return tavStsBadArgument;
    const int32_t slot = firstWithId(*set, id);
    if (slot == noSlot) return tavStsNotFound;
    set->patterns[slot] = nullptr;
    set->ids[slot] = 0;
    return tavStsNoError;
}

tavStatus multiModify(tavRegExpContext* pattern, uint32_t id, tavRegExpMultiContext* set) {
    if (const auto bad = Arguments::pointers(pattern, set); bad.failed()) return bad.status;
    if (id == 0) return tavStsBadArgument;
    const int32_t slot = firstWithId(*set, id);
    if (slot == noSlot) return tavStsNotFound;
    set->patterns[slot] = pattern;
    return tavStsNoError;
}

tavStatus multiFind(const uint8_t* src, int32_t len, tavRegExpMultiFindResult* results,
                    tavRegExpMultiContext* set) {
    if (const auto bad = Arguments::pointers(src, set, results).counts(len); bad.failed()) return bad.status;
    BytePairs pairs;
    const bool filtered = filterPays(*set, len);
    if (filtered) pairs.collect(src, len);
    for (int32_t slot = 0; slot < set->capacity; ++slot) {
        tavRegExpContext* const pattern = set->patterns[slot];
        if (pattern == nullptr) continue;
        tavRegExpMultiFindResult& result = results[slot];
        if (filtered && isRuledOut(*pattern, result, pairs)) {
            result = {1, set->ids[slot], 0, tavStsNoError, result.finds};
            continue;
        }
        result.searched = 0;
        result.id = 0;
        result.status = tavStsNoError;
        result.status = find(src, len, pattern, result.finds, &result.numFind);
        result.id = set->ids[slot];
        result.searched = 1;
    }
    return tavStsNoError;
}

} // namespace tav::regex
