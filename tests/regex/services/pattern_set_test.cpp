// Sets of patterns: slots, identifiers, statuses, and what a search writes.
#include "regex/services/support.h"

#include <algorithm>
#include <array>
#include <deque>
#include <random>

using namespace tavtest;

namespace {

/// A set in a block of exactly the stated size between forbidden pages, and what stands in its slots.
class Set {
public:
    explicit Set(uint32_t slots) : slots_(slots), block_((24 + 12 * slots + 7) / 8) {
        std::fill_n(block_.head(), block_.capacity(), 0x5A5A5A5A5A5A5A5Au);
        context_ = reinterpret_cast<tavRegExpMultiContext*>(block_.tail(block_.capacity()));
        EXPECT_EQ(tavsRegExpMultiInit(context_, slots), tavStsNoError);
    }

    tavRegExpMultiContext* get() { return context_; }
    tavRegExpMultiContext* operator->() { return context_; }

    tavStatus add(CompiledPattern& pattern, uint32_t id) {
        return tavsRegExpMultiAdd(pattern.get(), id, context_);
    }
    tavStatus modify(CompiledPattern& pattern, uint32_t id) {
        return tavsRegExpMultiModify(pattern.get(), id, context_);
    }
    tavStatus remove(uint32_t id) { return tavsRegExpMultiDelete(id, context_); }

    std::vector<uint32_t> ids() const { return {context_->ids, context_->ids + slots_}; }
    std::vector<tavRegExpContext*> patterns() const {
        return {context_->patterns, context_->patterns + slots_};
    }

private:
    uint32_t slots_;
    GuardedBuffer<uint64_t> block_;
    tavRegExpMultiContext* context_;
};

using Ids = std::vector<uint32_t>;
using Patterns = std::vector<tavRegExpContext*>;

constexpr int32_t untouched = -0x5A5A;

/// Result entries that tell whether they were written.
struct Results {
    static constexpr int32_t perSlot = 8;

    std::vector<std::array<tavRegExpFindResult, perSlot>> finds;
    std::vector<tavRegExpMultiFindResult> entries;

    explicit Results(std::size_t slots, int32_t numFind = perSlot) : finds(slots), entries(slots) {
        for (std::size_t i = 0; i < slots; i++)
            entries[i] = {untouched, 0xAAAAAAAAu, numFind, untouched, finds[i].data()};
    }

    bool isUntouched(std::size_t slot, int32_t numFind = perSlot) const {
        const tavRegExpMultiFindResult& entry = entries[slot];
        return entry.searched == untouched && entry.id == 0xAAAAAAAAu && entry.numFind == numFind &&
               entry.status == untouched && entry.finds == finds[slot].data();
    }
};

tavStatus findIn(Set& set, std::string_view text, Results& results) {
    return tavsRegExpMultiFind_8u(bytesOf(text), lengthOf(text), results.entries.data(), set.get());
}

} // namespace

TEST(PatternSet, NeedsTwelveBytesPerSlotAndTwentyFour) {
    int32_t size = -1;
    EXPECT_EQ(tavsRegExpMultiGetSize(3, &size), tavStsNoError);
    EXPECT_EQ(size, 60);
    EXPECT_EQ(tavsRegExpMultiGetSize(1, &size), tavStsNoError);
    EXPECT_EQ(size, 36);
    EXPECT_EQ(tavsRegExpMultiGetSize(178956968, &size), tavStsNoError);
    EXPECT_EQ(size, 2147483640);
}

TEST(PatternSet, NoSlotsOrTooManyAreABadCount) {
    for (const uint32_t bad : {0u, 178956969u, 0x80000000u, 0xFFFFFFFFu}) {
        int32_t size = -7;
        EXPECT_EQ(tavsRegExpMultiGetSize(bad, &size), tavStsBadCount);
        EXPECT_EQ(size, -7);

        tavRegExpMultiContext set = {77, nullptr, nullptr};
        EXPECT_EQ(tavsRegExpMultiInit(&set, bad), tavStsBadCount);
        EXPECT_EQ(set.capacity, 77);

        tavRegExpMultiContext* const before = &set;
        tavRegExpMultiContext* allocated = before;
        EXPECT_EQ(tavsRegExpMultiInitAlloc(&allocated, bad), tavStsBadCount);
        EXPECT_EQ(allocated, before);
    }
}

TEST(PatternSet, PointersAreTestedBeforeCountsAndIdentifiers) {
    CompiledPattern p("a");
    Set set(1);
    Results results(1);
    EXPECT_EQ(tavsRegExpMultiGetSize(0, nullptr), tavStsNullPointer);
    EXPECT_EQ(tavsRegExpMultiInit(nullptr, 0), tavStsNullPointer);
    EXPECT_EQ(tavsRegExpMultiInitAlloc(nullptr, 0), tavStsNullPointer);
    EXPECT_EQ(tavsRegExpMultiAdd(nullptr, 0, set.get()), tavStsNullPointer);
    EXPECT_EQ(tavsRegExpMultiAdd(p.get(), 0, nullptr), tavStsNullPointer);
    EXPECT_EQ(tavsRegExpMultiDelete(0, nullptr), tavStsNullPointer);
    EXPECT_EQ(tavsRegExpMultiModify(nullptr, 0, set.get()), tavStsNullPointer);
    EXPECT_EQ(tavsRegExpMultiModify(p.get(), 0, nullptr), tavStsNullPointer);
    EXPECT_EQ(tavsRegExpMultiFind_8u(nullptr, 0, results.entries.data(), set.get()), tavStsNullPointer);
    EXPECT_EQ(tavsRegExpMultiFind_8u(bytesOf("a"), 0, nullptr, set.get()), tavStsNullPointer);
    EXPECT_EQ(tavsRegExpMultiFind_8u(bytesOf("a"), 0, results.entries.data(), nullptr), tavStsNullPointer);
}

TEST(PatternSet, InitLaysTheArraysOutBehindTheHeaderAndClearsThem) {
    for (uint32_t slots = 1; slots < 20; slots++) {
        Set set(slots);
        EXPECT_EQ(set->capacity, static_cast<int32_t>(slots));
        EXPECT_EQ(reinterpret_cast<char*>(set->patterns), reinterpret_cast<char*>(set.get()) + 24);
        EXPECT_EQ(reinterpret_cast<char*>(set->ids), reinterpret_cast<char*>(set->patterns) + 8 * slots);
        EXPECT_EQ(set.patterns(), Patterns(slots));
        EXPECT_EQ(set.ids(), Ids(slots));
    }
}

TEST(PatternSet, InitWritesNothingBehindItsBlock) {
    std::vector<uint64_t> block(9, 0x1111111111111111u);
    ASSERT_EQ(tavsRegExpMultiInit(reinterpret_cast<tavRegExpMultiContext*>(block.data()), 3), tavStsNoError);
    EXPECT_EQ(block[7], 0x1111111100000000u) << "60 bytes and no more";
    EXPECT_EQ(block[8], 0x1111111111111111u);
}

TEST(PatternSet, InitAllocGivesAnEmptySet) {
    tavRegExpMultiContext* set = nullptr;
    ASSERT_EQ(tavsRegExpMultiInitAlloc(&set, 3), tavStsNoError);
    ASSERT_NE(set, nullptr);
    EXPECT_EQ(set->capacity, 3);
    for (int i = 0; i < 3; i++) {
        EXPECT_EQ(set->patterns[i], nullptr);
        EXPECT_EQ(set->ids[i], 0u);
    }
    EXPECT_EQ(tavsRegExpMultiFree(set), tavStsNoError);
}

TEST(PatternSet, EitherFreeReleasesEitherObject) {
    tavRegExpMultiContext* set = nullptr;
    tavRegExpContext* pattern = nullptr;
    int32_t errOffset = 0;
    ASSERT_EQ(tavsRegExpMultiInitAlloc(&set, 5), tavStsNoError);
    ASSERT_EQ(tavsRegExpInitAlloc("a", nullptr, &pattern, &errOffset), tavStsNoError);
    EXPECT_EQ(tavsRegExpFree(set), tavStsNoError);
    EXPECT_EQ(tavsRegExpMultiFree(pattern), tavStsNoError);
    EXPECT_EQ(tavsRegExpMultiFree(nullptr), tavStsNoError);
}

TEST(PatternSet, DuplicateIdentifiersFillSlotsAndLeaveOneByOne) {
    CompiledPattern p("p"), q("q"), r("r");
    Set set(2);
    EXPECT_EQ(set.add(p, 7), tavStsNoError);
    EXPECT_EQ(set.add(q, 7), tavStsNoError);
    EXPECT_EQ(set.add(r, 8), tavStsSetFull);
    EXPECT_EQ(set.ids(), (Ids{7, 7}));
    EXPECT_EQ(set.patterns(), (Patterns{p.get(), q.get()}));

    EXPECT_EQ(set.remove(7), tavStsNoError);
    EXPECT_EQ(set.ids(), (Ids{0, 7}));
    EXPECT_EQ(set.patterns(), (Patterns{nullptr, q.get()}));

    EXPECT_EQ(set.modify(r, 7), tavStsNoError);
    EXPECT_EQ(set.ids(), (Ids{0, 7}));
    EXPECT_EQ(set.patterns(), (Patterns{nullptr, r.get()}));

    EXPECT_EQ(set.remove(7), tavStsNoError);
    EXPECT_EQ(set.remove(7), tavStsNotFound);
}

TEST(PatternSet, AFreedSlotIsFilledAheadOfLaterOnes) {
    CompiledPattern p("p");
    Set set(4);
    set.add(p, 1);
    set.add(p, 2);
    EXPECT_EQ(set.remove(1), tavStsNoError);
    EXPECT_EQ(set.add(p, 3), tavStsNoError);
    EXPECT_EQ(set.ids(), (Ids{3, 2, 0, 0}));
    EXPECT_EQ(set.add(p, 4), tavStsNoError);
    EXPECT_EQ(set.ids(), (Ids{3, 2, 4, 0}));
}

TEST(PatternSet, OnePatternMayStandInSeveralSlots) {
    CompiledPattern p("b");
    Set set(2);
    set.add(p, 1);
    set.add(p, 2);
    Results results(2);
    EXPECT_EQ(findIn(set, "abc", results), tavStsNoError);
    EXPECT_EQ(results.entries[0].numFind, 1);
    EXPECT_EQ(results.entries[1].numFind, 1);
}

TEST(PatternSet, TheIdentifierZeroIsRefusedAndNothingChanges) {
    CompiledPattern p("p"), q("q");
    Set set(2);
    set.add(p, 5);
    EXPECT_EQ(set.add(q, 0), tavStsBadArgument);
    EXPECT_EQ(set.remove(0), tavStsBadArgument) << "a free slot's identifier";
    EXPECT_EQ(set.modify(q, 0), tavStsBadArgument);
    EXPECT_EQ(set.ids(), (Ids{5, 0}));
    EXPECT_EQ(set.patterns(), (Patterns{p.get(), nullptr}));
}

TEST(PatternSet, AnUnknownIdentifierIsNotFoundAndNothingChanges) {
    CompiledPattern p("p"), q("q");
    Set set(2);
    set.add(p, 5);
    EXPECT_EQ(set.remove(6), tavStsNotFound);
    EXPECT_EQ(set.modify(q, 6), tavStsNotFound);
    EXPECT_EQ(set.ids(), (Ids{5, 0}));
    EXPECT_EQ(set.patterns(), (Patterns{p.get(), nullptr}));
}

TEST(PatternSet, IdentifiersAreUnsigned) {
    CompiledPattern p("p");
    Set set(1);
    EXPECT_EQ(set.add(p, 0xFFFFFFFFu), tavStsNoError);
    EXPECT_EQ(set.remove(0xFFFFFFFFu), tavStsNoError);
}

TEST(PatternSet, WithoutCapacityEverythingIsFullOrNotFound) {
    CompiledPattern p("p");
    Set set(1);
    set.add(p, 5);
    set->capacity = 0;
    EXPECT_EQ(set.add(p, 5), tavStsSetFull);
    EXPECT_EQ(set.remove(5), tavStsNotFound);
    EXPECT_EQ(set.modify(p, 5), tavStsNotFound);
    EXPECT_EQ(set.add(p, 0), tavStsBadArgument) << "the identifier is tested before the capacity";
    EXPECT_EQ(set.remove(0), tavStsBadArgument);
    EXPECT_EQ(set.modify(p, 0), tavStsBadArgument);
    Results results(1);
    EXPECT_EQ(findIn(set, "p", results), tavStsNoError);
    EXPECT_TRUE(results.isUntouched(0));
}

TEST(PatternSet, ANegativeCapacityDeliberatelyActsOnSlotZeroUnseen) {
    CompiledPattern p("p"), q("q"), r("r");
    Set set(2);
    set.add(p, 5);
    set->capacity = -1;
    EXPECT_EQ(set.add(q, 6), tavStsNoError);
    EXPECT_EQ(set.ids(), (Ids{6, 0}));
    EXPECT_EQ(set.patterns(), (Patterns{q.get(), nullptr}));
    EXPECT_EQ(set.modify(r, 9), tavStsNoError);
    EXPECT_EQ(set.ids(), (Ids{6, 0}));
    EXPECT_EQ(set.patterns(), (Patterns{r.get(), nullptr}));
    EXPECT_EQ(set.remove(9), tavStsNoError);
    EXPECT_EQ(set.ids(), (Ids{0, 0}));
    EXPECT_EQ(set.patterns(), (Patterns{nullptr, nullptr}));
    EXPECT_EQ(set.add(q, 0), tavStsBadArgument);

    set.add(p, 5);
    Results results(2);
    EXPECT_EQ(findIn(set, "p", results), tavStsNoError);
    EXPECT_TRUE(results.isUntouched(0));
}

TEST(PatternSetFind, LeavesTheEntryOfAFreeSlotUntouched) {
    CompiledPattern p("b"), q("c");
    Set set(3);
    set.add(p, 10);
    set.add(p, 11);
    set.add(q, 12);
    set.remove(11);
    Results results(3);
    const std::string_view text = "abc";
    EXPECT_EQ(findIn(set, text, results), tavStsNoError);
    EXPECT_TRUE(results.isUntouched(1));
    for (const std::size_t slot : {0u, 2u}) {
        const tavRegExpMultiFindResult& entry = results.entries[slot];
        EXPECT_EQ(entry.searched, 1);
        EXPECT_EQ(entry.id, 10u + slot);
        EXPECT_EQ(entry.status, tavStsNoError);
        EXPECT_EQ(entry.numFind, 1);
        EXPECT_EQ(entry.finds[0].start, bytesOf(text) + (slot == 0 ? 1 : 2));
    }
}

TEST(PatternSetFind, ALengthBelowOneIsABadCount) {
    CompiledPattern p("b*");
    Set set(1);
    set.add(p, 1);
    Results results(1);
    for (const int32_t bad : {0, -1}) {
        EXPECT_EQ(tavsRegExpMultiFind_8u(bytesOf("b"), bad, results.entries.data(), set.get()),
                  tavStsBadCount);
        EXPECT_TRUE(results.isUntouched(0));
    }
}

TEST(PatternSetFind, SlotsFailOnTheirOwn) {
    CompiledPattern good("(b)(c)"), badTag("b"), badLimit("[b]"), noMatch("x");
    badTag->tag = 0;
    badLimit->matchLimit = -1;
    Set set(7);
    set.add(good, 1);
    set.add(badTag, 2);
    set.add(badLimit, 3);
    set.add(noMatch, 4);
    set.add(good, 5); // no room for results
    set.add(good, 6); // null result array
    set.add(good, 7); // fewer results than groups
    Results results(7);
    results.entries[4].numFind = 0;
    results.entries[5].finds = nullptr;
    results.entries[6].numFind = 2;
    EXPECT_EQ(findIn(set, "abc", results), tavStsNoError);

    const tavStatus statuses[] = {tavStsNoError,  tavStsBadContext,  tavStsRepeatLimit,     tavStsNoError,
                                  tavStsBadCount, tavStsNullPointer, tavStsResultsTruncated};
    const int32_t counts[] = {3, Results::perSlot, Results::perSlot, 0, 0, Results::perSlot, 2};
    for (std::size_t slot = 0; slot < 7; slot++) {
        EXPECT_EQ(results.entries[slot].status, statuses[slot]) << "slot " << slot;
        EXPECT_EQ(results.entries[slot].numFind, counts[slot]) << "slot " << slot;
        EXPECT_EQ(results.entries[slot].id, slot + 1);
        EXPECT_EQ(results.entries[slot].searched, 1);
    }
}

// In a set this large a short text is looked through once for all literals that the patterns require.
TEST(PatternSetFind, SlotsOfALargeSetFailOnTheirOwnToo) {
    constexpr std::size_t slots = 40;
    std::deque<CompiledPattern> absent, second;
    Set set(slots);
    for (std::size_t i = 0; i < slots; i++) {
        for (std::deque<CompiledPattern>* all : {&absent, &second}) {
            CompiledPattern& pattern =
                all->emplace_back(i % 5 == 4 ? "b(c)" : "zq" + std::to_string(i), i % 2 ? "i" : "");
            if (i == 3) pattern->tag = 0;
            if (i == 5) pattern->matchLimit = -1;
            if (i == 6) pattern->matchLimit = 0;
        }
        ASSERT_EQ(set.add(absent[i], static_cast<uint32_t>(i + 1)), tavStsNoError);
    }
    ASSERT_EQ(set.remove(12), tavStsNoError);
    Results results(slots);
    results.entries[0].numFind = 0;
    results.entries[1].finds = nullptr;
    results.entries[2].numFind = -3;
    Results single = results;
    const std::string_view text = "abc";
    ASSERT_EQ(findIn(set, text, results), tavStsNoError);
    for (std::size_t i = 0; i < slots; i++) {
        SCOPED_TRACE("slot " + std::to_string(i));
        if (i == 11) {
            EXPECT_TRUE(results.isUntouched(i));
            continue;
        }
        tavRegExpFindResult* const finds = i == 1 ? nullptr : single.finds[i].data();
        const tavStatus status = tavsRegExpFind_8u(bytesOf(text), lengthOf(text), second[i].get(), finds,
                                                   &single.entries[i].numFind);
        EXPECT_EQ(results.entries[i].status, status);
        EXPECT_EQ(results.entries[i].numFind, single.entries[i].numFind);
        EXPECT_EQ(results.entries[i].id, i + 1);
        EXPECT_EQ(results.entries[i].searched, 1);
        EXPECT_EQ(results.entries[i].finds, i == 1 ? nullptr : results.finds[i].data());
    }
}

TEST(PatternSetFind, GlobalPatternsGiveTheirGroups) {
    CompiledPattern p("(.)x", "g");
    Set set(1);
    set.add(p, 1);
    Results results(1);
    const std::string_view text = "axbxcx";
    EXPECT_EQ(findIn(set, text, results), tavStsNoError);
    ASSERT_EQ(results.entries[0].numFind, 3);
    for (std::size_t i = 0; i < 3; i++) {
        EXPECT_EQ(results.finds[0][i].start, bytesOf(text) + 2 * i);
        EXPECT_EQ(results.finds[0][i].length, 1);
    }
}

TEST(PatternSetFind, AnEmptySetSearchesNothing) {
    Set set(3);
    Results results(3);
    EXPECT_EQ(findIn(set, "abc", results), tavStsNoError);
    for (std::size_t slot = 0; slot < 3; slot++)
        EXPECT_TRUE(results.isUntouched(slot));
}

namespace {

struct Slot {
    int pattern; // index in the pool, -1 when free
    uint32_t id;
};

/// The plain twin of a set: a list of slots.
struct Twin {
    std::vector<Slot> slots;

    explicit Twin(std::size_t count) : slots(count, Slot{-1, 0}) {}

    tavStatus add(int pattern, uint32_t id) {
        if (id == 0) return tavStsBadArgument;
        const auto free =
            std::find_if(slots.begin(), slots.end(), [](const Slot& slot) { return slot.pattern < 0; });
        if (free == slots.end()) return tavStsSetFull;
        *free = {pattern, id};
        return tavStsNoError;
    }
    tavStatus replace(uint32_t id, bool clear, int pattern) {
        if (id == 0) return tavStsBadArgument;
        const auto match =
            std::find_if(slots.begin(), slots.end(), [id](const Slot& slot) { return slot.id == id; });
        if (match == slots.end()) return tavStsNotFound;
        *match = clear ? Slot{-1, 0} : Slot{pattern, id};
        return tavStsNoError;
    }
};

struct PoolEntry {
    const char* pattern;
    const char* options;
};

constexpr PoolEntry pool[] = {
    {"a", ""},      {"ab", ""},       {"b+c", "g"},    {"(a)|(b)", "g"}, {"^c", "m"},      {"x*", "g"},
    {"abca", "i"},  {"[^a]b$", ""},   {"(a)(b)?", ""}, {"", ""},         {"c.a", "s"},     {"A", "i"},
    {"bcab", ""},   {"\\bab\\b", ""}, {"a|zz", ""},    {"q", ""},        {"(?=c)", "g"},   {"ca(?!b)", ""},
    {"cc", ""},     {"acb", "g"},     {"bbb", ""},     {"z", ""},        {"(c)\\1", ""},   {"abcabc", ""},
    {"BCA", "i"},   {"cab", ""},      {"bbcc", ""},    {"acac", ""},     {"\\x{e9}b", ""}, {"ca\nb", ""},
    {"a{2,}b", ""}, {"B+C", "i"},     {"[ab]+c", ""},  {"aaaaaaaa", ""}, {"(?i)bCa", ""},  {".", "g"},
};

/// Every slot's entry is what a search with a second compilation of its pattern answers.
void expectSingleSearches(Set& set, const Twin& twin, std::deque<CompiledPattern>& second,
                          const std::string& text, int32_t capacity) {
    const std::size_t slots = twin.slots.size();
    Results results(slots, capacity);
    ASSERT_EQ(findIn(set, text, results), tavStsNoError);
    for (std::size_t i = 0; i < slots; i++) {
        const Slot& slot = twin.slots[i];
        if (slot.pattern < 0) {
            EXPECT_TRUE(results.isUntouched(i, capacity)) << "slot " << i;
            continue;
        }
        const auto index = static_cast<std::size_t>(slot.pattern);
        SCOPED_TRACE(pool[index].pattern);
        std::array<tavRegExpFindResult, Results::perSlot> expected{};
        int32_t numFind = capacity;
        const tavStatus status =
            tavsRegExpFind_8u(bytesOf(text), lengthOf(text), second[index].get(), expected.data(), &numFind);
        const tavRegExpMultiFindResult& entry = results.entries[i];
        EXPECT_EQ(entry.searched, 1);
        EXPECT_EQ(entry.id, slot.id);
        EXPECT_EQ(entry.status, status);
        ASSERT_EQ(entry.numFind, numFind) << "text " << text;
        for (int32_t k = 0; k < numFind && status >= 0; k++) {
            EXPECT_EQ(entry.finds[k].start, expected[static_cast<std::size_t>(k)].start);
            EXPECT_EQ(entry.finds[k].length, expected[static_cast<std::size_t>(k)].length);
        }
    }
}

std::string randomText(std::mt19937& random) {
    std::string text;
    const std::size_t length = 1 + (random() % 4 == 0 ? random() % 300 : random() % 12);
    while (text.size() < length)
        text += "aabbccABC \nx"[random() % (random() % 3 == 0 ? 12 : 6)];
    return text;
}

} // namespace

TEST(PatternSet, RandomHistoriesAgreeWithAPlainList) {
    const uint32_t seed = testSeed();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    std::deque<CompiledPattern> patterns, second;
    for (const PoolEntry& entry : pool) {
        patterns.emplace_back(entry.pattern, entry.options);
        second.emplace_back(entry.pattern, entry.options);
    }
    for (int history = 0; history < 60 && !::testing::Test::HasFailure(); history++) {
        const std::size_t slots = 1 + random() % (history % 4 == 0 ? 40 : 6);
        Set set(static_cast<uint32_t>(slots));
        Twin twin(slots);
        for (int step = 0; step < 60; step++) {
            const auto index = random() % std::size(pool);
            const uint32_t id = static_cast<uint32_t>(random() % (slots + 2));
            switch (random() % 4) {
            case 0:
            case 1:
                ASSERT_EQ(set.add(patterns[index], id), twin.add(static_cast<int>(index), id));
                break;
            case 2:
                ASSERT_EQ(set.remove(id), twin.replace(id, true, -1));
                break;
            case 3:
                ASSERT_EQ(set.modify(patterns[index], id), twin.replace(id, false, static_cast<int>(index)));
                break;
            }
            for (std::size_t i = 0; i < slots; i++) {
                const Slot& slot = twin.slots[i];
                ASSERT_EQ(set->ids[i], slot.id);
                ASSERT_EQ(set->patterns[i], slot.pattern < 0
                                                ? nullptr
                                                : patterns[static_cast<std::size_t>(slot.pattern)].get());
            }
            if (random() % 4 == 0)
                expectSingleSearches(set, twin, second, randomText(random),
                                     static_cast<int32_t>(1 + random() % Results::perSlot));
        }
    }
}
