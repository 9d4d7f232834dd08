// Scans for the members (Seek::hit) or the non-members (Seek::miss) of a set given as a string of elements.
//
// The beginning of the text is compared with every element of the set directly, because most searches end
// there and looking at the set first would cost more than it saves. Only what lies behind is scanned with an
// analysed set: its values and ranges of neighbouring values as vectors, or, when these are too many, a
// table.
#pragma once

#include "strings/find.h"
#include "strings/scan.h"

#include <algorithm>
#include <array>

namespace tav {

namespace element_set {

inline constexpr int32_t maxDirect = 16; ///< larger sets are never compared element by element in vectors
inline constexpr int32_t maxTests = 16;  ///< a table beats more vector tests than this
inline constexpr int64_t analysisPays = 256;

/// Positions are relative to a part of the text; the wrapper brings them back.
inline int64_t shifted(int64_t found, int64_t by) {
    return found < 0 ? found : found + by;
}

/// The values below 256 of a set, as bits.
class LowValues {
public:
    void add(uint8_t value) { words_[value / 64] |= uint64_t{1} << (value % 64); }
    bool has(uint8_t value) const { return (words_[value / 64] >> (value % 64) & 1) != 0; }

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

    bool isOneRange() const { return tests_ == 1 && ranges_ == 1; }
    bool isFewValues() const { return tests_ == singles_ && singles_ <= 4; }

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

/// Compares with the set's elements one after the other, straight from the set.
template <Way way, Seek seek, class E>
int64_t scanDirect(const E* src, int64_t count, const E* set, int32_t lenSet) {
    return scan<way, seek, E>(count, [=](auto block) {
        const Vector<E> values = block.load(src);
        Vector<E> hits = Vector<E>::zero();
        for (int32_t i = 0; i < lenSet; ++i) {
            hits = hits | values.equal(Vector<E>::splat(set[i]));
        }
        return hits;
    });
}

template <Way way, Seek seek, class E>
int64_t scanFewValues(const E* src, int64_t count, const Analysis<E>& set) {
    using V = Vector<E>;
    const int32_t singles = set.singles();
    const auto value = [&](int32_t i) { return V::splat(set.single(i < singles ? i : 0)); };
    const V a = value(0), b = value(1), c = value(2), d = value(3);
    if (singles <= 2) {
        return scan<way, seek, E>(count, [=](auto block) {
            const V values = block.load(src);
            return values.equal(a) | values.equal(b);
        });
    }
    return scan<way, seek, E>(count, [=](auto block) {
        const V values = block.load(src);
        return (values.equal(a) | values.equal(b)) | (values.equal(c) | values.equal(d));
    });
}

template <Way way, Seek seek, class E>
int64_t scanRange(const E* src, int64_t count, const VectorRange<E>& range) {
    return scan<way, seek, E>(count, [=](auto block) { return range.contains(block.load(src)); });
}

template <Way way, Seek seek, class E>
int64_t scanManyTests(const E* src, int64_t count, const Analysis<E>& set) {
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
int64_t scanByTable(const E* src, int64_t count, const E* set, int32_t lenSet) {
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
int64_t scanAnalysed(const E* src, int64_t count, const E* set, int32_t lenSet) {
    const Analysis<E> analysis(set, lenSet);
    if (!analysis.complete()) return scanByTable<way, seek>(src, count, set, lenSet);
    if (analysis.isOneRange()) return scanRange<way, seek>(src, count, analysis.range(0));
    if (analysis.isFewValues()) return scanFewValues<way, seek>(src, count, analysis);
    return scanManyTests<way, seek>(src, count, analysis);
}

template <Way way, Seek seek, class E>
int64_t scanUnanalysed(const E* src, int64_t count, const E* set, int32_t lenSet) {
    if (lenSet <= maxDirect) return scanDirect<way, seek>(src, count, set, lenSet);
    return scanElements<way, seek>(src, count, [=](E value) { return indexOf(set, lenSet, value) >= 0; });
}

} // namespace element_set

/// The first or the last position whose element is in the set (hit) or is not (miss), or -1.
template <Way way, Seek seek, class E>
[[gnu::noinline]] int32_t scanForSet(const E* src, int32_t len, const E* set, int32_t lenSet) {
    using namespace element_set;
    constexpr int32_t beginning = 4 * Vector<E>::size;
    if (lenSet == 0) {
        if constexpr (seek == Seek::hit) return -1;
        return len == 0 ? -1 : way == Way::forward ? 0 : len - 1;
    }
    if (len < beginning + analysisPays) {
        return static_cast<int32_t>(scanUnanalysed<way, seek>(src, len, set, lenSet));
    }
    const int32_t rest = len - beginning;
    const int32_t restAt = way == Way::forward ? beginning : 0;
    const int32_t beginningAt = way == Way::forward ? 0 : rest;
    const int64_t early = scanUnanalysed<way, seek>(src + beginningAt, beginning, set, lenSet);
    if (early >= 0) return static_cast<int32_t>(early) + beginningAt;
    return static_cast<int32_t>(shifted(scanAnalysed<way, seek>(src + restAt, rest, set, lenSet), restAt));
}

} // namespace tav
