// Scans for the members (Seek::hit) or the non-members (Seek::miss) of a set given as a string of elements.
//
// Up to four elements are compared directly. Of a larger set the ascending runs are looked for (digits,
// letters): few runs are range tests. What is left are scattered sets: up to sixteen elements are compared
// directly too. In long texts a larger one is analysed, whatever its order, into values and ranges; when
// there are too many of them, or the text is short, a table of members is looked up.
#pragma once

#include "strings/find.h"
#include "strings/scan.h"

#include <algorithm>
#include <array>

namespace tav {

namespace element_set {

inline constexpr int32_t maxTests = 16; ///< a table beats more vector tests than this
inline constexpr int32_t analysisPays = 256;

/// The values below 256 of a set, as bits.
class LowValues {
public:
    void add(uint8_t value) { words_[value / 64] |= uint64_t{1} << (value % 64); }

    /// The first value from `from` on that is in the set (or is not); 256 when there is none.
    int32_t next(int32_t from, bool member) const {
        for (int32_t word = from / 64; word < 4; ++word, from = word * 64) {
            const uint64_t bits = (member ? words_[word] : ~words_[word]) >> (from % 64);
            if (bits != 0) return from + std::countr_zero(bits);
        }
        return 256;
    }

private:
    uint64_t words_[4] = {};
};

/// A set as single values and ranges, ready for vector tests.
template <class E>
class Analysis {
public:
    Analysis(const E* set, int32_t lenSet) {
        LowValues low;
        for (int32_t i = 0; i < lenSet; ++i) {
            if (set[i] < 256) {
                low.add(static_cast<uint8_t>(set[i]));
            } else {
                addSingle(set[i]);
            }
        }
        for (int32_t from = low.next(0, true); from < 256;) {
            const int32_t end = low.next(from, false);
            if (end - from == 1) {
                addSingle(static_cast<E>(from));
            } else {
                addRange(static_cast<E>(from), static_cast<E>(end - 1));
            }
            from = end < 256 ? low.next(end, true) : end;
        }
    }

    /// Whether all values and ranges found room.
    bool complete() const { return tests_ <= maxTests; }

    E single(int32_t i) const { return singleValues_[static_cast<std::size_t>(i)]; }
    int32_t singles() const { return singles_; }
    int32_t ranges() const { return ranges_; }
    VectorRange<E> range(int32_t i) const {
        const auto& [from, to] = rangeValues_[static_cast<std::size_t>(i)];
        return {from, to};
    }

private:
    void addSingle(E value) {
        if (++tests_ <= maxTests) singleValues_[static_cast<std::size_t>(singles_++)] = value;
    }
    void addRange(E from, E to) {
        if (++tests_ <= maxTests) rangeValues_[static_cast<std::size_t>(ranges_++)] = {from, to};
    }

    int32_t tests_ = 0, singles_ = 0, ranges_ = 0;
    std::array<E, maxTests> singleValues_;
    std::array<std::pair<E, E>, maxTests> rangeValues_;
};

/// A set of one to four elements.
template <class E>
struct FewValues {
    static constexpr int32_t most = 4;
    Vector<E> a, b, c, d;

    FewValues(const E* set, int32_t lenSet)
        : a(Vector<E>::splat(set[0])), b(Vector<E>::splat(set[lenSet > 1 ? 1 : 0])),
          c(Vector<E>::splat(set[lenSet > 2 ? 2 : 0])), d(Vector<E>::splat(set[lenSet > 3 ? 3 : 0])) {}

    Vector<E> hits(Vector<E> values) const {
        return (values.equal(a) | values.equal(b)) | (values.equal(c) | values.equal(d));
    }
};

/// How many elements from the first on are each one more than the one before.
template <class E>
[[gnu::noinline]] int32_t ascendingRun(const E* set, int32_t lenSet) {
    constexpr int32_t values = 1 << (8 * sizeof(E)); // a run may go on from the greatest value to 0
    const auto one = Vector<E>::splat(1);
    const auto ascends = [=](auto block) { return block.load(set + 1).equal(block.load(set) + one); };
    const int32_t most = std::min(lenSet, values - 1); // all values would be no PartialRange
    const auto end = static_cast<int32_t>(scanForward<Seek::miss, E>(most - 1, ascends));
    return end < 0 ? most : end + 1;
}

/// The stretches of a set in which each element is one more than the one before; no more than four of them
/// if the set is to be scanned for as runs.
template <class E>
class Runs {
public:
    Runs(const E* set, int32_t lenSet) {
        for (int32_t from = 0; from < lenSet;) {
            if (count_++ == most) return;
            const E first = set[from];
            const bool alone = from + 1 == lenSet || set[from + 1] != first + 1;
            const int32_t length = alone ? 1 : ascendingRun(set + from, lenSet - from);
            ranges_[static_cast<std::size_t>(count_ - 1)] = {first, static_cast<E>(first + length - 1)};
            from += length;
        }
    }

    bool few() const { return count_ <= most; }
    int32_t count() const { return count_; }

    /// The ranges of the runs; the first one again where there are fewer.
    PartialRange<E> range(int32_t i) const {
        const auto& [from, to] = ranges_[static_cast<std::size_t>(i < count_ ? i : 0)];
        return {from, to};
    }

private:
    static constexpr int32_t most = 4;
    int32_t count_ = 0;
    std::array<std::pair<E, E>, most> ranges_;
};

template <Way way, Seek seek, class E>
int64_t scanRuns(const E* src, int64_t count, const Runs<E>& runs) {
    const PartialRange<E> a = runs.range(0);
    if (runs.count() == 1) {
        return scan<way, seek, E>(count, [=](auto block) { return a.contains(block.load(src)); });
    }
    const PartialRange<E> b = runs.range(1);
    if (runs.count() == 2) {
        return scan<way, seek, E>(count, [=](auto block) {
            const Vector<E> values = block.load(src);
            return a.contains(values) | b.contains(values);
        });
    }
    const PartialRange<E> c = runs.range(2), d = runs.range(3);
    return scan<way, seek, E>(count, [=](auto block) {
        const Vector<E> values = block.load(src);
        return (a.contains(values) | b.contains(values)) | (c.contains(values) | d.contains(values));
    });
}

// The scans below have arrays of their own; each has its own frame, so that the stack holds one at a time.

/// By direct comparison with up to maxTests values.
template <Way way, Seek seek, class E>
TAV_FLATTEN [[gnu::noinline]] int64_t scanValues(const E* src, int64_t count, const E* set, int32_t lenSet) {
    Vector<E> members[maxTests];
    const int32_t tests = (lenSet + 3) / 4 * 4; // the last one some times again
    for (int32_t i = 0; i < tests; ++i) {
        members[i] = Vector<E>::splat(set[i < lenSet ? i : lenSet - 1]);
    }
    return scan<way, seek, E>(count, [&](auto block) {
        const Vector<E> values = block.load(src);
        Vector<E> hits = Vector<E>::zero();
        for (int32_t i = 0; i < tests; i += 4) {
            hits = hits | (values.equal(members[i]) | values.equal(members[i + 1])) |
                   (values.equal(members[i + 2]) | values.equal(members[i + 3]));
        }
        return hits;
    });
}

template <Way way, Seek seek, class E>
TAV_FLATTEN [[gnu::noinline]] int64_t scanAnalysis(const E* src, int64_t count, const Analysis<E>& set) {
    using V = Vector<E>;
    // The single values, then the ranges' first values: one array keeps the frame small.
    struct Tests {
        V first[maxTests], span[maxTests];
    } tests;
    const int32_t singles = set.singles(), all = singles + set.ranges();
    for (int32_t i = 0; i < singles; ++i) {
        tests.first[i] = V::splat(set.single(i));
    }
    for (int32_t i = singles; i < all; ++i) {
        const VectorRange<E> range = set.range(i - singles);
        tests.first[i] = range.first;
        tests.span[i] = range.span;
    }
    return scan<way, seek, E>(count, [&](auto block) {
        const V values = block.load(src);
        V hits = V::zero();
        for (int32_t i = 0; i < singles; ++i) {
            hits = hits | values.equal(tests.first[i]);
        }
        for (int32_t i = singles; i < all; ++i) {
            hits = hits | (values - tests.first[i]).atMost(tests.span[i]);
        }
        return hits;
    });
}

/// Element by element: the first position, or the last, for which `contains` has the sought answer.
template <Way way, Seek seek, class E, class Contains>
int64_t scanElements(const E* src, int64_t count, const Contains& contains) {
    constexpr bool sought = seek == Seek::hit;
    if constexpr (way == Way::forward) {
        for (int64_t i = 0; i < count; ++i) {
            if (contains(src[i]) == sought) return i;
        }
    } else {
        for (int64_t i = count; i-- > 0;) {
            if (contains(src[i]) == sought) return i;
        }
    }
    return -1;
}

/// By a table of the members' keys, a key being the exclusive or of a value's two bytes: exact for bytes, a
/// filter for 16-bit units.
template <Way way, Seek seek, class E>
TAV_FLATTEN [[gnu::noinline]] int64_t scanByTable(const E* src, int64_t count, const E* set, int32_t lenSet) {
    std::array<bool, 256> table = {};
    const auto key = [](E value) { return static_cast<uint8_t>(value ^ value >> 8); };
    for (int32_t i = 0; i < lenSet; ++i) {
        table[key(set[i])] = true;
    }
    return scanElements<way, seek>(src, count, [&](E value) {
        if (!table[key(value)]) return false;
        return sizeof(E) == 1 || indexOf(set, lenSet, value) >= 0;
    });
}

template <Way way, Seek seek, class E>
int64_t scanScattered(const E* src, int64_t count, const E* set, int32_t lenSet) {
    if (lenSet <= maxTests) return scanValues<way, seek>(src, count, set, lenSet);
    if (count >= analysisPays) {
        const Analysis<E> analysis(set, lenSet);
        if (analysis.complete()) return scanAnalysis<way, seek>(src, count, analysis);
    }
    return scanByTable<way, seek>(src, count, set, lenSet);
}

/// For sets that are not empty.
template <Way way, Seek seek, class E>
TAV_FLATTEN [[gnu::noinline]] int32_t scanForLargerSet(const E* src, int32_t len, const E* set,
                                                       int32_t lenSet) {
    const Runs<E> runs(set, lenSet);
    if (runs.few()) return static_cast<int32_t>(scanRuns<way, seek>(src, len, runs));
    return static_cast<int32_t>(scanScattered<way, seek>(src, len, set, lenSet));
}

} // namespace element_set

using element_set::FewValues;

/// The first or the last position whose element is in the set (hit) or is not (miss), or -1.
template <Way way, Seek seek, class E>
int32_t scanForSet(const E* src, int32_t len, const E* set, int32_t lenSet) {
    if (lenSet > FewValues<E>::most) return element_set::scanForLargerSet<way, seek>(src, len, set, lenSet);
    if (lenSet == 0) {
        if constexpr (seek == Seek::hit) return -1;
        return len == 0 ? -1 : way == Way::forward ? 0 : len - 1;
    }
    const FewValues<E> members(set, lenSet);
    return static_cast<int32_t>(
        scan<way, seek, E>(len, [=](auto block) { return members.hits(block.load(src)); }));
}

} // namespace tav
