// Substring search: look for three elements of the needle at their distances, sixteen bytes of start
// positions at a time, and compare the rest only where all three are found.
//
// In long texts two of these anchors are the needle's rarest elements by a fixed ranking, and as long as the
// first is rare indeed, the others are loaded only where it is found. In short texts the anchors are the
// needle's ends and middle, because choosing would cost more than it saves. What the comparisons may cost is
// limited in proportion to the text searched so far; a text that exceeds it is finished by the two-way
// algorithm, so that the whole search stays linear.
#pragma once

#include "strings/compare.h"
#include "strings/find.h"
#include "strings/scan.h"
#include "strings/two_way.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace tav::substring {

/// How common each byte value is in text and data, by a rough order: the higher, the more common.
inline constexpr std::array<uint8_t, 256> commonness = [] {
    std::array<uint8_t, 256> table = {};
    const auto fill = [&](int from, int to, uint8_t rank) {
        for (int value = from; value <= to; ++value) {
            table[static_cast<std::size_t>(value)] = rank;
        }
    };
    fill(0x01, 0x1F, 10);
    fill(0x21, 0x7E, 30);
    fill('A', 'Z', 50);
    fill('0', '9', 117);
    table['\t'] = 118;
    table['\r'] = table['\n'] = 125;
    fill(0x80, 0xBF, 118); // continuation bytes of UTF-8
    fill(0xC3, 0xC3, 118);
    fill(0xD0, 0xD1, 120); // lead bytes of Cyrillic
    fill(0xE2, 0xE9, 118);
    table[0xFF] = 40;
    table[0] = 200; // fills binary data
    constexpr std::string_view rising = "zqjxk_/;:-='\"()vbyp,.gwfmucdlhrsinoate ";
    for (std::size_t i = 0; i < rising.size(); ++i) {
        table[static_cast<uint8_t>(rising[i])] = static_cast<uint8_t>(110 + 2 * i);
    }
    return table;
}();

template <class E>
uint8_t commonnessOf(E value) {
    constexpr uint8_t ofHigherUnits = 118;
    return value < 256 ? commonness[value] : ofHigherUnits;
}

/// An element above this is in most stretches of 64 positions, so that it alone tells little.
inline constexpr uint8_t rarelySeen = 150;

/// Offsets of elements of the needle: different ones, but for a needle of two.
struct Anchors {
    int32_t first;
    int32_t second;
    int32_t third;
    bool firstIsRare;
};

inline Anchors withThird(int32_t first, int32_t second, int32_t lenFind, bool firstIsRare) {
    int32_t third = lenFind / 2;
    while (lenFind > 2 && (third == first || third == second)) {
        third = third + 1 < lenFind ? third + 1 : 0;
    }
    return {first, second, third, firstIsRare};
}

inline Anchors endsAndMiddle(int32_t lenFind) {
    return {0, lenFind - 1, lenFind / 2, false};
}

/// The two rarest elements, of different value where there are two values, and one in the middle. A long
/// needle is sampled evenly. Elements are ranked by numbers that end in their place, without branches.
template <class E>
Anchors rarestAnchors(const E* find, int32_t lenFind) {
    constexpr int32_t maxSamples = 64, sameValue = 1 << 16;
    const int32_t step = 1 + (lenFind - 1) / maxSamples, samples = 1 + (lenFind - 1) / step;
    const auto rank = [=](int32_t i) { return commonnessOf(find[i * step]) * maxSamples + i; };
    int32_t lowest = rank(0);
    for (int32_t i = 1; i < samples; ++i) {
        lowest = std::min(lowest, rank(i));
    }
    const int32_t rarest = lowest % maxSamples * step;
    const int32_t end = rarest == lenFind - 1 ? 0 : lenFind - 1;
    int32_t second = 2 * sameValue;
    for (int32_t i = 0; i < samples; ++i) {
        second = std::min(second, rank(i) + (find[i * step] == find[rarest] ? sameValue : 0));
    }
    return withThird(rarest, second < sameValue ? second % maxSamples * step : end, lenFind,
                     commonnessOf(find[rarest]) <= rarelySeen);
}

/// The anchors as tests of blocks of start positions.
template <class E>
class AnchorTests {
public:
    AnchorTests(const E* src, const E* find, const Anchors& anchors)
        : firstAt_(src + anchors.first), secondAt_(src + anchors.second), thirdAt_(src + anchors.third),
          first_(Vector<E>::splat(find[anchors.first])), second_(Vector<E>::splat(find[anchors.second])),
          third_(Vector<E>::splat(find[anchors.third])) {}

    template <class Block>
    Vector<E> hasFirst(Block block) const {
        return block.load(firstAt_).equal(first_);
    }
    template <class Block>
    Vector<E> hasAll(Block block) const {
        return hasFirst(block) & block.load(secondAt_).equal(second_) & block.load(thirdAt_).equal(third_);
    }

private:
    const E* firstAt_;
    const E* secondAt_;
    const E* thirdAt_;
    Vector<E> first_, second_, third_;
};

/// Compares candidates with the needle and keeps account of what that costs.
template <Way way, class E>
class Verifier {
public:
    Verifier(const E* src, int64_t starts, const E* find, int32_t lenFind)
        : src_(src), find_(find), starts_(starts), lenFind_(lenFind) {}

    /// Whether to end the scan at this start: it is an occurrence, or the budget is used up.
    bool operator()(int64_t start) {
        if (spent_ > allowance + walked(start) / 4) {
            gaveUp_ = true;
            return true;
        }
        const int32_t matched = mismatch(src_ + start, find_, lenFind_);
        spent_ += 1 + matched / Vector<E>::size;
        return matched < 0;
    }

    bool gaveUp() const { return gaveUp_; }

private:
    static constexpr int64_t allowance = 64;

    int64_t walked(int64_t start) const { return way == Way::forward ? start : starts_ - start; }

    const E* src_;
    const E* find_;
    int64_t starts_;
    int64_t spent_ = 0; ///< vectors compared
    int32_t lenFind_;
    bool gaveUp_ = false;
};

/// Goes on by the two-way algorithm from a start where the comparisons had cost too much.
template <Way way, class E>
int64_t searchLinearly(int64_t from, const E* src, int32_t len, const E* find, int32_t lenFind) {
    if constexpr (way == Way::backward) {
        return two_way::search<way>(src, from + lenFind, find, lenFind);
    } else {
        const int64_t later = two_way::search<way>(src + from, len - from, find, lenFind);
        return later < 0 ? -1 : from + later;
    }
}

/// Below so many starts the needle's ends and middle serve as anchors.
inline constexpr int64_t choicePays = 512;

/// Counts the blocks in which an anchor taken for rare is met all the same.
template <Way way>
class Rarity {
public:
    explicit Rarity(int64_t starts) : starts_(starts) {}

    /// Whether, with one more block met at this position, the anchor is still rare.
    bool metAt(int64_t position) {
        const int64_t walked = way == Way::forward ? position : starts_ - position;
        refuted_ = ++met_ > allowance + walked / onePer;
        return !refuted_;
    }
    bool refuted() const { return refuted_; }

private:
    static constexpr int64_t allowance = 8, onePer = 512;
    int64_t starts_;
    int64_t met_ = 0;
    bool refuted_ = false;
};

/// The lowest or the highest start of an occurrence, or -1; 2 <= lenFind <= len.
template <Way way, class E>
[[gnu::noinline]] int32_t search(const E* src, int32_t len, const E* find, int32_t lenFind) {
    const int64_t starts = int64_t{len} - lenFind + 1;
    const Anchors anchors = starts < choicePays ? endsAndMiddle(lenFind) : rarestAnchors(find, lenFind);
    Verifier<way, E> verifier(src, starts, find, lenFind);
    const auto outcome = [&](int64_t found) {
        return static_cast<int32_t>(verifier.gaveUp() ? searchLinearly<way>(found, src, len, find, lenFind)
                                                      : found);
    };
    int64_t begin = 0, end = starts;
    if (anchors.firstIsRare) {
        const AnchorTests<E> tests(src, find, anchors);
        Rarity<way> rarity(starts);
        const auto hasFirst = [=](auto block) { return tests.hasFirst(block); };
        // Once the anchor is not rare after all, the scan is ended by a position that is no occurrence.
        const auto hasAllIfRare = [=, &rarity](auto block) {
            return rarity.metAt(block.position(0)) ? tests.hasAll(block)
                                                   : Vector<E>::zero().equal(Vector<E>::zero());
        };
        const int64_t found = scan<way, Seek::hit, E>(starts, hasFirst, hasAllIfRare, [&](int64_t start) {
            return rarity.refuted() || verifier(start);
        });
        if (!rarity.refuted()) return outcome(found);
        (way == Way::forward ? begin : end) = way == Way::forward ? found : found + 1;
    }
    const AnchorTests<E> tests(src + begin, find, anchors);
    const int64_t found = scan<way, Seek::hit, E>(
        end - begin, [=](auto block) { return tests.hasAll(block); },
        [=](auto block) { return tests.hasAll(block); },
        [&](int64_t start) { return verifier(begin + start); });
    return found < 0 ? -1 : outcome(begin + found);
}

/// The same, for a text of which it is known that no occurrence comes before `candidate` in the direction of
/// the search.
template <Way way, class E>
[[gnu::noinline]] int32_t searchFrom(int32_t candidate, const E* src, int32_t len, const E* find,
                                     int32_t lenFind) {
    if (mismatch(src + candidate, find, lenFind) < 0) return candidate;
    if constexpr (way == Way::backward) {
        const int32_t rest = candidate + lenFind - 1;
        return rest < lenFind ? -1 : search<way>(src, rest, find, lenFind);
    }
    const int32_t next = candidate + 1;
    if (len - next < lenFind) return -1;
    const int32_t later = search<way>(src + next, len - next, find, lenFind);
    return later < 0 ? -1 : next + later;
}

/// The same where there are few starts: most such searches end without a candidate.
template <Way way, class E>
int32_t searchFewStarts(const E* src, int32_t len, const E* find, int32_t lenFind) {
    constexpr int32_t vectorsPay = 5;
    const int32_t starts = len - lenFind + 1;
    int32_t candidate;
    if (starts >= vectorsPay) {
        const AnchorTests<E> tests(src, find, endsAndMiddle(lenFind));
        candidate = static_cast<int32_t>(
            scan<way, Seek::hit, E>(starts, [=](auto block) { return tests.hasAll(block); }));
    } else if constexpr (way == Way::forward) {
        candidate = plain::indexOf(src, starts, find[0]);
    } else {
        candidate = plain::lastIndexOf(src, starts, find[0]);
    }
    return candidate < 0 ? -1 : searchFrom<way>(candidate, src, len, find, lenFind);
}

} // namespace tav::substring
