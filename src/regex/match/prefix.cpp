#include "regex/match/prefix.h"

#include "regex/match/characters.h"
#include "regex/match/first_bytes.h"
#include "regex/match/plan.h"

#include <algorithm>
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
    void writeTable(int32_t offset, uint8_t (&table)[256]) const {
        std::memset(table, 0, sizeof table);
        for (int32_t bucket = 0; bucket < buckets; ++bucket) {
            const auto bit = static_cast<uint8_t>(1u << bucket);
            if (used_ & bit) sets_[offset][bucket].writeTo(table, bit);
        }
    }

private:
    static constexpr int32_t buckets = 8;

    void stopAt(int32_t offset) {
        if (offset < limit_) limit_ = offset;
    }

    void add(int32_t offset, const Node& node) {
        addItem(plan_, node, bytes_[offset]);
        if (offset < Prefix::tables) addItem(plan_, node, sets_[offset][bucket_]);
        used_ |= 1u << bucket_;
    }

    void addByte(int32_t offset, uint8_t byte) {
        bytes_[offset].add(byte);
        if (offset < Prefix::tables) sets_[offset][bucket_].add(byte);
        used_ |= 1u << bucket_;
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

    /// The first alternation met fills the buckets.
    void alternatives(int32_t pc, int32_t marker, int32_t offset) {
        const bool apart = !apart_ && marker != noNode;
        apart_ = apart_ || apart;
        walk(pc, offset);
        for (; marker != noNode; marker = plan_.nodes[marker].link) {
            if (apart) nextBucket(offset);
            walk(marker + 1, offset);
        }
        if (apart) bucket_ = 0;
    }

    /// What stands before the alternation stands before every alternative.
    void nextBucket(int32_t offset) {
        bucket_ = (bucket_ + 1) % buckets;
        for (int32_t before = 0; before < std::min(offset, Prefix::tables); ++before)
            sets_[before][bucket_].add(sets_[before][0]);
        if (offset > 0) used_ |= 1u << bucket_;
    }

    const Plan& plan_;
    int32_t fuel_ = 2000;
    int32_t limit_ = Prefix::maximum;
    int32_t bucket_ = 0;
    uint32_t used_ = 0;
    bool apart_ = false;
    ByteSet bytes_[Prefix::maximum];
    ByteSet sets_[Prefix::tables][buckets];
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
    prefix.afterNonWord = beginsWord(plan, walk.bytes(0));
}

} // namespace tav::regex
