#include "regex/match/first_bytes.h"

#include "regex/match/characters.h"
#include "unicode/properties.h"

namespace tav::regex {

namespace {

uint8_t leadOf(uint32_t codePoint) {
    const int32_t length = unicode::utf8Length(codePoint);
    const int32_t shift = 6 * (length - 1);
    return static_cast<uint8_t>((0xFF00u >> length & 0xFF) | codePoint >> shift);
}

void addLeadsBetween(int32_t low, int32_t high, ByteSet& bytes) {
    if (high < 0x80 || low > high || low < 0) return;
    const uint8_t last = leadOf(static_cast<uint32_t>(high));
    for (uint32_t lead = leadOf(low < 0x80 ? 0x80 : static_cast<uint32_t>(low)); lead <= last; ++lead)
        bytes.add(static_cast<uint8_t>(lead));
}

/// The first bytes of the characters beyond ASCII that an item lists one by one or as ranges; false for
/// others.
bool addListed(const Instruction& item, ByteSet& bytes) {
    switch (item.op) {
    case OP_CHAR:
    case OP_UCHAR:
        addLeadsBetween(item.a, item.a, bytes);
        return item.c == 0;
    case OP_RANGE:
    case OP_URANGE:
        addLeadsBetween(item.a, item.b, bytes);
        return item.c == 0;
    case OP_TYPE:
        return item.c == 0 && !typeMatches(item.a, 0xFF, false);
    case OP_ULIST: {
        const auto* ranges = static_cast<const unicode::CodePointRange*>(item.text);
        for (int32_t i = 0; i < item.c; ++i)
            addLeadsBetween(static_cast<int32_t>(ranges[i].first), static_cast<int32_t>(ranges[i].last),
                            bytes);
        return item.b == 0;
    }
    default:
        return false;
    }
}

bool addLeadsOf(const Plan& plan, const Node& node, ByteSet& bytes) {
    if (node.has(traitCaseless)) return false;
    const Instruction& item = plan.program.code[&node - plan.nodes];
    if (item.op != OP_SET) return addListed(item, bytes);
    if (item.a < 0) return false;
    for (int32_t i = 1; i <= item.b; ++i)
        if (!addListed((&item)[i], bytes)) return false;
    return true;
}

void addClass(const Plan& plan, const Node& node, ByteSet& bytes) {
    bytes.add(plan.members[node.index]);
    if (node.has(traitMultiAll) || (node.has(traitMultiTest) && !addLeadsOf(plan, node, bytes)))
        bytes.addLeads();
}

/// Walks all paths from an instruction to the first byte consumed, with a bound on the work.
class FirstBytes {
public:
    FirstBytes(const Plan& plan, int32_t fuel) : plan_(plan), fuel_(fuel) {}

    First from(int32_t pc) {
        walk(pc);
        return first_;
    }

private:
    void walk(int32_t pc) {
        while (pc != noNode) {
            if (--fuel_ < 0) {
                first_.giveUp();
                return;
            }
            pc = step(pc);
        }
    }

    /// Adds what the node consumes; the next node when it may consume nothing, else noNode.
    int32_t step(int32_t pc) {
        const Node& node = plan_.nodes[pc];
        switch (node.kind) {
        case Kind::fail:
            return noNode;
        case Kind::byte:
        case Kind::byteCaseless:
            addItem(plan_, node, first_.bytes);
            return noNode;
        case Kind::string:
        case Kind::stringCaseless:
            return addString(pc, node);
        case Kind::charClass:
        case Kind::item:
        case Kind::classRun:
        case Kind::takenRun:
        case Kind::takenBytes:
        case Kind::greedy:
        case Kind::lazy:
            return addRepeat(node);
        case Kind::pass:
            return node.next;
        case Kind::assertion:
            return pastAssertion(node);
        case Kind::group:
        case Kind::loop:
        case Kind::atomic:
        case Kind::atomicLoop:
            return enter(pc, node);
        case Kind::groupEnd:
            return node.next;
        case Kind::loopEnd:
            return leaveLoop(node);
        case Kind::look:
        case Kind::conditionGroup:
            return branch(pc, node);
        case Kind::captureStart:
        case Kind::captureEnd: // they come into being after the walk
        case Kind::bodyEnd:    // the body has succeeded here, whatever stands behind it
        case Kind::matchEnd:
        case Kind::alternativeEnd:
            first_.canBeEmpty = true;
            break;
        }
        return noNode;
    }

    int32_t addString(int32_t pc, const Node& node) {
        const Instruction& string = plan_.program.code[pc];
        if (string.b == 0) return node.next;
        const uint8_t byte = *static_cast<const uint8_t*>(string.text);
        first_.bytes.add(byte);
        if (node.kind == Kind::stringCaseless && isAsciiLetter(byte)) first_.bytes.add(byte ^ 0x20);
        return noNode;
    }

    int32_t addRepeat(const Node& node) {
        if (node.max > 0) addItem(plan_, node, first_.bytes);
        if (node.item == Item::backReference) return node.next;
        return !isSingleItem(node) && node.min <= 0 ? node.next : noNode;
    }

    int32_t enter(int32_t pc, const Node& node) {
        if ((node.kind == Kind::loop || node.kind == Kind::atomicLoop) && node.min <= 0) walk(node.next);
        addAlternatives(pc, node);
        return noNode;
    }

    void addAlternatives(int32_t pc, const Node& node) {
        walk(pc + 1);
        for (int32_t marker = node.link; marker != noNode; marker = plan_.nodes[marker].link)
            walk(marker + 1);
    }

    /// Another iteration or what follows. The body is looked into once per loop: entered again, it adds
    /// nothing.
    int32_t leaveLoop(const Node& node) {
        const int32_t opener = node.other;
        if (isWithin(opener)) return node.next;
        if (depth_ == maximumDepth) {
            first_.giveUp();
            return noNode;
        }
        loops_[depth_++] = opener;
        addAlternatives(opener, plan_.nodes[opener]);
        --depth_;
        return node.next;
    }

    bool isWithin(int32_t opener) const {
        for (int32_t i = 0; i < depth_; ++i)
            if (loops_[i] == opener) return true;
        return false;
    }

    /// Where a byte is left, an end of the subject or line is in front of a line feed or nowhere.
    int32_t pastAssertion(const Node& node) {
        switch (node.byte) {
        case '$':
        case 'Z':
            first_.bytes.add('\n');
            return noNode;
        case 'z':
            return noNode;
        default:
            return node.next;
        }
    }

    /// A lookaround consumes nothing, but a lookahead may tell more of the next byte than what follows it. A
    /// condition leads to either branch.
    int32_t branch(int32_t pc, const Node& node) {
        if (node.kind == Kind::look && node.other == noNode && !node.has(traitBehind)) {
            FirstBytes body(plan_, fuel_ / 2);
            body.addAlternatives(pc, node);
            fuel_ /= 2;
            if (!body.first_.canBeEmpty) {
                first_.bytes.add(body.first_.bytes);
                return noNode;
            }
        }
        if (node.other != noNode) walk(node.other);
        return node.next;
    }

    static constexpr int32_t maximumDepth = 8;
    const Plan& plan_;
    int32_t fuel_;
    First first_;
    int32_t loops_[maximumDepth] = {};
    int32_t depth_ = 0;
};

constexpr int32_t workBound = 60;

} // namespace

void addItem(const Plan& plan, const Node& node, ByteSet& bytes) {
    switch (node.item) {
    case Item::byte:
        bytes.add(node.byte);
        break;
    case Item::byteCaseless:
        bytes.add(node.byte);
        bytes.add(node.byte & 0xDF);
        break;
    case Item::charClass:
        addClass(plan, node, bytes);
        break;
    default:
        bytes.addAll();
        break;
    }
}

First firstBytesFrom(const Plan& plan, int32_t pc) {
    return FirstBytes(plan, workBound).from(pc);
}

} // namespace tav::regex
