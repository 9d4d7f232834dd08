#include "regex/match/prefix.h"

#include "regex/match/characters.h"
#include "regex/match/first_bytes.h"
#include "regex/match/plan.h"
#include "strings/substring.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace tav::regex {

namespace {

/// Follows every way from the program's start as long as it is known byte by byte.
class PrefixWalk {
public:
    explicit PrefixWalk(const Plan& plan) : plan_(plan) {}

    void run() {
        if (plan_.firstAlternative != noNode) {
            alternatives(0, plan_.firstAlternative, 0);
        } else {
            walk(0, 0);
        }
    }

    int32_t length() const { return limit_; }
    const ByteSet& bytes(int32_t offset) const { return bytes_[offset]; }
    int32_t alternatives() const { return mostAlternatives - std::countl_zero(used_); }
    const ByteSet& bytesOf(int32_t alternative, int32_t offset) const { return sets_[offset][alternative]; }

    void writeTable(int32_t offset, uint8_t (&table)[256]) const {
        constexpr int32_t buckets = 8;
        std::memset(table, 0, sizeof table);
        for (int32_t i = 0; i < alternatives(); ++i)
            sets_[offset][i].writeTo(table, static_cast<uint8_t>(1u << (i % buckets)));
    }

private:
    static constexpr int32_t mostAlternatives = 16; // what are more share the places

    void stopAt(int32_t offset) {
        if (offset < limit_) limit_ = offset;
    }

    void add(int32_t offset, const Node& node) {
        addItem(plan_, node, bytes_[offset]);
        if (offset < Prefix::tables) addItem(plan_, node, sets_[offset][current_]);
        use();
    }

    void addByte(int32_t offset, uint8_t byte) {
        bytes_[offset].add(byte);
        if (offset < Prefix::tables) sets_[offset][current_].add(byte);
        use();
    }

    void walk(int32_t pc, int32_t offset) {
        while (pc != noNode && offset < limit_) {
            if (--fuel_ < 0) return stopAt(offset);
            pc = step(pc, offset);
        }
    }

    /// Adds the node's bytes and moves the offset behind them; noNode when the way ends here.
    int32_t step(int32_t pc, int32_t& offset) {
        const Node& node = plan_.nodes[pc];
        switch (node.kind) {
        case Kind::fail:
            return noNode;
        case Kind::byte:
        case Kind::byteCaseless:
            add(offset++, node);
            return node.next;
        case Kind::string:
        case Kind::stringCaseless:
            return addString(pc, node, offset);
        case Kind::charClass:
        case Kind::item:
            return addOne(node, offset);
        case Kind::classRun:
        case Kind::takenRun:
        case Kind::takenBytes:
        case Kind::greedy:
        case Kind::lazy:
            return addRepeat(node, offset);
        case Kind::assertion:
        case Kind::pass:
        case Kind::groupEnd:
            return node.next;
        case Kind::group:
        case Kind::loop:
        case Kind::atomic:
        case Kind::atomicLoop:
            return enter(pc, node, offset);
        case Kind::bodyEnd:
            if (plan_.nodes[node.other].kind == Kind::atomic) return node.next;
            break;
        case Kind::look:
        case Kind::conditionGroup:
            if (node.other != noNode) walk(node.other, offset);
            return node.next;
        case Kind::loopEnd:
        case Kind::matchEnd:
        case Kind::alternativeEnd:
        case Kind::captureStart:
        case Kind::captureEnd:
            break;
        }
        stopAt(offset);
        return noNode;
    }

    int32_t addString(int32_t pc, const Node& node, int32_t& offset) {
        const auto* text = static_cast<const uint8_t*>(plan_.program.code[pc].text);
        for (int32_t i = 0; i < node.min && offset < limit_; ++i, ++offset) {
            addByte(offset, text[i]);
            if (node.kind == Kind::stringCaseless && isAsciiLetter(text[i])) addByte(offset, text[i] ^ 0x20);
        }
        return node.next;
    }

    /// One item whose first byte is known; how long it is, only when every character of it is one byte long.
    int32_t addOne(const Node& node, int32_t& offset) {
        if (node.item == Item::backReference) {
            stopAt(offset);
            return noNode;
        }
        add(offset++, node);
        if (node.has(traitSingle)) return node.next;
        stopAt(offset);
        return noNode;
    }

    int32_t addRepeat(const Node& node, int32_t& offset) {
        if (node.max <= 0) return node.next;
        if (node.min <= 0) {
            if (node.item == Item::backReference) {
                stopAt(offset);
                return noNode;
            }
            add(offset, node);
            stopAt(offset + 1);
            return node.next;
        }
        for (int32_t i = 0; i < node.min && offset < limit_; ++i)
            if (addOne(node, offset) == noNode) return noNode;
        if (node.min == node.max) return node.next;
        stopAt(offset);
        return noNode;
    }

    int32_t enter(int32_t pc, const Node& node, int32_t offset) {
        if (node.max <= 0) return node.next;
        if (node.min <= 0) {
            stopAt(offset + 1);
            walk(node.next, offset);
        }
        alternatives(pc + 1, node.link, offset);
        return noNode;
    }

    void use() { used_ = static_cast<uint16_t>(used_ | 1u << current_); }

    /// The alternatives of the first alternation met are kept apart.
    void alternatives(int32_t pc, int32_t marker, int32_t offset) {
        const bool apart = !apart_ && marker != noNode;
        apart_ = apart_ || apart;
        walk(pc, offset);
        for (; marker != noNode; marker = plan_.nodes[marker].link) {
            if (apart) nextAlternative(offset);
            walk(marker + 1, offset);
        }
        if (apart) current_ = 0;
    }

    /// What stands before the alternation stands before every alternative.
    void nextAlternative(int32_t offset) {
        current_ = (current_ + 1) % mostAlternatives;
        for (int32_t before = 0; before < std::min(offset, Prefix::tables); ++before)
            sets_[before][current_].add(sets_[before][0]);
        if (offset > 0) use();
    }

    const Plan& plan_;
    int32_t fuel_ = 2000;
    int32_t limit_ = Prefix::maximum;
    int32_t current_ = 0;
    uint16_t used_ = 0;
    bool apart_ = false;
    ByteSet bytes_[Prefix::maximum];
    ByteSet sets_[Prefix::tables][mostAlternatives];
};

/// Bytes so rare that looking for others beside them does not pay.
constexpr int32_t rareEnough = 60;

constexpr int32_t rangesOfAnchor = 3;

/// The two offsets whose bytes are rarest. Other ranges than those of the first are few, so that a scan stays
/// cheap.
void chooseAnchors(const PrefixWalk& walk, Prefix& prefix) {
    constexpr int32_t tooCommon = 2000; // beyond this nearly every sixteen positions have a hit
    int32_t cost[2] = {INT32_MAX, tooCommon};
    ByteRanges ranges[2];
    prefix.anchors = 0;
    for (int32_t offset = 0; offset < prefix.length; ++offset) {
        const ByteRanges here = ByteRanges::covering(walk.bytes(offset), rangesOfAnchor);
        const int32_t commonness = here.commonness();
        if (here.count == 0 || commonness >= cost[1]) continue;
        const int32_t place = commonness < cost[0] ? 0 : 1;
        if (place == 0) {
            cost[1] = std::min(cost[0], tooCommon);
            prefix.offset[1] = prefix.offset[0];
            ranges[1] = ranges[0];
        }
        cost[place] = commonness;
        prefix.offset[place] = offset;
        ranges[place] = here;
        if (prefix.anchors < 2) ++prefix.anchors;
    }
    if (prefix.anchors == 0) {
        prefix.offset[0] = 0;
        ranges[0] = ByteRanges::covering(walk.bytes(0), ByteRanges::maximum);
        prefix.anchors = ranges[0].count > 0 ? 1 : 0;
    }
    if (prefix.anchors == 2 && cost[0] <= rareEnough) prefix.anchors = 1;
    prefix.isOneValue = ranges[0].isOneValue();
    prefix.value = ranges[0].first[0];
    prefix.ranges[0].set(ranges[0]);
    prefix.ranges[1].set(ranges[1]);
}

/// A byte of an alternative as the pair test sees it: one value, or a letter in both cases.
struct PairByte {
    bool fits;
    uint8_t value;
    uint8_t caseBit;
};

PairByte pairByteOf(const ByteSet& bytes) {
    const ByteRanges ranges = ByteRanges::covering(bytes, 2);
    if (!ranges.exact || ranges.count == 0) return {false, 0, 0};
    const uint8_t last = ranges.last[ranges.count - 1];
    if (ranges.isOneValue()) return {true, last, 0};
    const bool isLetter = ranges.count == 2 && ranges.first[0] == ranges.last[0] && ranges.first[1] == last &&
                          (ranges.first[0] ^ last) == 0x20 && isAsciiLetter(last);
    return {isLetter, last, 0x20};
}

/// How common what an alternative has at an offset is; more than any byte where the pair test cannot use it.
int32_t commonnessAt(const PrefixWalk& walk, int32_t alternative, int32_t offset) {
    constexpr int32_t unusable = 10'000;
    const PairByte byte = pairByteOf(walk.bytesOf(alternative, offset));
    return byte.fits ? substring::commonness[byte.value] : unusable;
}

/// The two offsets at which the bytes of all alternatives together are rarest.
bool choosePairOffsets(const PrefixWalk& walk, int32_t length, int32_t (&offsets)[2]) {
    int32_t cost[2] = {INT32_MAX, INT32_MAX};
    for (int32_t offset = 0; offset < length; ++offset) {
        int32_t sum = 0;
        for (int32_t i = 0; i < walk.alternatives(); ++i)
            sum += commonnessAt(walk, i, offset);
        if (sum >= cost[1] || sum >= 10'000) continue;
        const int32_t place = sum < cost[0] ? 0 : 1;
        if (place == 0) {
            cost[1] = cost[0];
            offsets[1] = offsets[0];
        }
        cost[place] = sum;
        offsets[place] = offset;
    }
    return cost[1] < INT32_MAX;
}

void addPair(PairTable& pairs, uint8_t first, uint8_t second) {
    for (int32_t i = 0; i < pairs.count; ++i)
        if (pairs.value[0][i][0] == first && pairs.value[1][i][0] == second) return;
    std::memset(pairs.value[0][pairs.count], first, 16);
    std::memset(pairs.value[1][pairs.count], second, 16);
    ++pairs.count;
}

void findPairs(const PrefixWalk& walk, Prefix& prefix) {
    PairTable& pairs = prefix.pairs;
    pairs.count = 0;
    if (walk.alternatives() < 2 || !choosePairOffsets(walk, prefix.tableCount, pairs.offset)) return;
    uint8_t caseBits[2] = {0, 0};
    for (int32_t side = 0; side < 2; ++side) {
        for (int32_t i = 0; i < walk.alternatives(); ++i)
            caseBits[side] |= pairByteOf(walk.bytesOf(i, pairs.offset[side])).caseBit;
        std::memset(pairs.caseBit[side], caseBits[side], 16);
    }
    for (int32_t i = 0; i < walk.alternatives(); ++i) {
        const PairByte first = pairByteOf(walk.bytesOf(i, pairs.offset[0]));
        const PairByte second = pairByteOf(walk.bytesOf(i, pairs.offset[1]));
        addPair(pairs, first.value | caseBits[0], second.value | caseBits[1]);
    }
}

/// Does a word boundary stand in front of everything, and a word character behind it?
bool beginsWord(const Plan& plan, const ByteSet& first) {
    if (plan.firstAlternative != noNode) return false;
    int32_t pc = 0;
    while (opensOnce(plan, pc))
        ++pc;
    const Node& node = plan.nodes[pc];
    if (node.kind != Kind::assertion || node.byte != 'b') return false;
    for (uint32_t byte = 0; byte < 256; ++byte)
        if (first.has(static_cast<uint8_t>(byte)) && !isWordByte(byte)) return false;
    return true;
}

} // namespace

void findPrefix(Plan& plan) {
    PrefixWalk walk(plan);
    walk.run();
    Prefix& prefix = plan.prefix;
    prefix.length = walk.length();
    prefix.tableCount = std::min(prefix.length, Prefix::tables);
    for (int32_t offset = 0; offset < prefix.tableCount; ++offset)
        walk.writeTable(offset, prefix.table[offset]);
    if (prefix.length == 0) return;
    chooseAnchors(walk, prefix);
    findPairs(walk, prefix);
    prefix.afterNonWord = beginsWord(plan, walk.bytes(0));
}

} // namespace tav::regex
