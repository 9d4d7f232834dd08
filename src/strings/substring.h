// Substring search: look for two elements of the needle at their distance, sixteen bytes of start positions
// at a time, and compare the rest only where both are found.
//
// In long texts the two anchors are the needle's rarest elements by a fixed ranking; in short ones its first
// and last, because choosing would cost more than it saves. What the comparisons may cost is limited in
// proportion to the text searched so far; a text that exceeds it is finished by the two-way algorithm, so
// that the whole search stays linear.
#pragma once

#include "strings/compare.h"
#include "strings/scan.h"
#include "strings/two_way.h"

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
    fill(0x80, 0xBF, 60); // continuation bytes of UTF-8
    fill('A', 'Z', 50);
    fill('0', '9', 90);
    fill(0xC3, 0xC3, 60);
    fill(0xD0, 0xD1, 120); // lead bytes of Cyrillic
    fill(0xE2, 0xE9, 70);
    table[0xFF] = 40;
    table['\r'] = table['\n'] = 100;
    table['\t'] = 80;
    table[0] = 200; // fills binary data
    constexpr std::string_view rising = "zqjxk_/;:-='\"()vbyp,.gwfmucdlhrsinoate ";
    for (std::size_t i = 0; i < rising.size(); ++i) {
        table[static_cast<uint8_t>(rising[i])] = static_cast<uint8_t>(110 + 2 * i);
    }
    return table;
}();

template <class E>
uint8_t commonnessOf(E value) {
    constexpr uint8_t ofHigherUnits = 100;
    return value < 256 ? commonness[value] : ofHigherUnits;
}

/// Offsets of two different elements of the needle.
struct Anchors {
    int32_t first;
    int32_t second;
};

/// The two rarest elements, of different value where there are two values. A long needle is sampled evenly.
template <class E>
Anchors rarestAnchors(const E* find, int32_t lenFind) {
    constexpr int32_t maxSamples = 64;
    const int32_t step = 1 + (lenFind - 1) / maxSamples;
    int32_t rarest = 0;
    for (int32_t i = step; i < lenFind; i += step) {
        if (commonnessOf(find[i]) < commonnessOf(find[rarest])) rarest = i;
    }
    int32_t second = rarest == lenFind - 1 ? 0 : lenFind - 1;
    for (int32_t i = 0; i < lenFind; i += step) {
        if (find[i] == find[rarest]) continue;
        if (find[second] == find[rarest] || commonnessOf(find[i]) < commonnessOf(find[second])) second = i;
    }
    return {rarest, second};
}

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

/// The lowest or the highest start of an occurrence, or -1; 2 <= lenFind <= len.
template <Way way, class E>
int32_t search(const E* src, int32_t len, const E* find, int32_t lenFind) {
    using V = Vector<E>;
    constexpr int64_t choicePays = 8 * V::size;
    const int64_t starts = int64_t{len} - lenFind + 1;
    const Anchors anchors = starts < choicePays ? Anchors{0, lenFind - 1} : rarestAnchors(find, lenFind);

    const V first = V::splat(find[anchors.first]), second = V::splat(find[anchors.second]);
    const E* const firstAt = src + anchors.first;
    const E* const secondAt = src + anchors.second;
    const auto hasFirst = [=](auto block) { return block.load(firstAt).equal(first); };
    const auto hasBoth = [=](auto block) {
        return block.load(firstAt).equal(first) & block.load(secondAt).equal(second);
    };

    Verifier<way, E> verifier(src, starts, find, lenFind);
    const int64_t found =
        scan<way, Seek::hit, E>(starts, hasFirst, hasBoth, [&](int64_t start) { return verifier(start); });
    if (!verifier.gaveUp()) return static_cast<int32_t>(found);

    if constexpr (way == Way::backward) {
        return static_cast<int32_t>(two_way::search<way>(src, found + lenFind, find, lenFind));
    }
    const int64_t later = two_way::search<way>(src + found, len - found, find, lenFind);
    return later < 0 ? -1 : static_cast<int32_t>(found + later);
}

} // namespace tav::substring
