#include "regex/match/prefix.h"

#include "regex/match/characters.h"
#include "regex/match/first_bytes.h"
#include "regex/match/plan.h"

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
            if ((used_ & bit) == 0) continue;
            for (uint32_t byte = 0; byte < 256; ++byte)
                if (sets_[offset][bucket].has(static_cast<uint8_t>(byte))) table[byte] |= bit;
        }
    }

private:
    static constexpr int32_t buckets = 8;

    void stopAt(int32_t offset) {
        if (offset < limit_) limit_ = offset;
    }

    void add(int32_t offset, const Node& node) {
        addItem(plan_, node, sets_[offset][bucket_]);
        addItem(plan_, node, bytes_[offset]);
        used_ |= 1u << bucket_;
    }

    void addByte(int32_t offset, uint8_t byte) {
        sets_[offset][bucket_].add(byte);
        bytes_[offset].add(byte);
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
        for (int32_t before = 0; before < offset; ++before)
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
    ByteSet sets_[Prefix::maximum][buckets];
};

/// Scanning pays for bytes that are not too common; beyond this nearly every block has a hit.
constexpr int32_t tooCommon = 2000;

/// Bytes so rare that looking for others beside them does not pay.
constexpr int32_t rareEnough = 60;

constexpr int32_t rangesOfAnchor = 3;

void chooseAnchors(const PrefixWalk& walk, Prefix& prefix) {
    int32_t cost[2] = {tooCommon, tooCommon};
    prefix.anchors = 0;
    for (int32_t offset = 0; offset < prefix.length; ++offset) {
        const ByteRanges ranges = ByteRanges::covering(walk.bytes(offset), rangesOfAnchor);
        const int32_t commonness = ranges.commonness();
        if (ranges.count == 0 || commonness >= cost[1]) continue;
        const int32_t place = commonness < cost[0] ? 0 : 1;
        if (place == 0) {
            cost[1] = cost[0];
            prefix.offset[1] = prefix.offset[0];
            prefix.ranges[1] = prefix.ranges[0];
        }
        cost[place] = commonness;
        prefix.offset[place] = offset;
        prefix.ranges[place] = ranges;
        if (prefix.anchors < 2) ++prefix.anchors;
    }
    if (prefix.anchors == 2 && cost[0] <= rareEnough) prefix.anchors = 1;
}

} // namespace

void findPrefix(Plan& plan) {
    PrefixWalk walk(plan);
    walk.run();
    Prefix& prefix = plan.prefix;
    prefix.length = walk.length();
    for (int32_t offset = 0; offset < prefix.length; ++offset)
        walk.writeTable(offset, prefix.table[offset]);
    chooseAnchors(walk, prefix);
}

} // namespace tav::regex
