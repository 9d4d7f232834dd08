#include "regex/match/analysis.h"

#include "regex/match/characters.h"

#include <cstring>

namespace tav::regex {

namespace {

/// A set of byte values.
class ByteSet {
public:
    void add(uint8_t byte) { words_[byte / 64] |= uint64_t{1} << (byte % 64); }
    void addAll() {
        for (uint64_t& word : words_)
            word = ~uint64_t{0};
    }
    void addLeads() { // of well-formed sequences beyond ASCII
        for (uint32_t byte = 0xC2; byte <= 0xFD; ++byte)
            add(static_cast<uint8_t>(byte));
    }
    bool has(uint8_t byte) const { return (words_[byte / 64] >> (byte % 64) & 1) != 0; }
    bool meets(const ByteSet& other) const {
        for (int i = 0; i < 4; ++i)
            if (words_[i] & other.words_[i]) return true;
        return false;
    }

private:
    uint64_t words_[4] = {};
};

/// The bytes that matching can consume first from some place, and whether it can end without consuming any.
struct First {
    ByteSet bytes;
    bool canBeEmpty = false;

    void giveUp() {
        bytes.addAll();
        canBeEmpty = true;
    }
};

/// Walks all paths from an instruction to the first byte consumed, with a bound on the work.
class FirstBytes {
public:
    FirstBytes(const Plan& plan, int32_t fuel) : plan_(plan), fuel_(fuel) {}

    First from(int32_t pc) {
        walk(pc);
        return first_;
    }

    void addItem(const Node& node, ByteSet& bytes) const {
        switch (node.item) {
        case Item::byte:
            bytes.add(node.byte);
            break;
        case Item::byteCaseless:
            bytes.add(node.byte);
            bytes.add(node.byte & 0xDF);
            break;
        case Item::charClass:
            addClass(node, bytes);
            break;
        default:
            bytes.addAll();
            break;
        }
    }

private:
    void addClass(const Node& node, ByteSet& bytes) const {
        const ClassTable& table = plan_.ascii[node.index / 8];
        for (uint32_t byte = 0; byte < 0x80; ++byte)
            if (table[byte] & node.mask) bytes.add(static_cast<uint8_t>(byte));
        for (uint32_t byte = 0x80; byte < 0x100; ++byte)
            if (hasMalformed(plan_.malformed[node.index], static_cast<uint8_t>(byte)))
                bytes.add(static_cast<uint8_t>(byte));
        if (node.has(traitMultiAll) || node.has(traitMultiTest)) bytes.addLeads();
    }

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
            addItem(node, first_.bytes);
            return noNode;
        case Kind::string:
        case Kind::stringCaseless:
            return addString(pc, node);
        case Kind::item:
        case Kind::greedy:
        case Kind::lazy:
            return addRepeat(node);
        case Kind::assertion:
        case Kind::pass:
            return node.next;
        case Kind::group:
        case Kind::loop:
        case Kind::atomic:
        case Kind::atomicLoop:
            return enter(pc, node);
        case Kind::groupEnd:
            return node.next;
        case Kind::loopEnd:
            return leaveLoop(node);
        case Kind::bodyEnd:
            return leaveBody(node);
        case Kind::look:
        case Kind::conditionGroup:
            return branch(node);
        case Kind::matchEnd:
        case Kind::alternativeEnd:
            first_.canBeEmpty = true;
            return noNode;
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
        if (node.max > 0) addItem(node, first_.bytes);
        if (node.item == Item::backReference) return node.next;
        return node.kind != Kind::item && node.min <= 0 ? node.next : noNode;
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

    int32_t leaveBody(const Node& node) {
        const Node& opener = plan_.nodes[node.other];
        if (opener.kind == Kind::atomic) return node.next;
        if (opener.kind == Kind::atomicLoop) return leaveLoop(node);
        first_.canBeEmpty = true; // from inside a lookaround: what follows is not known here
        return noNode;
    }

    /// A lookaround consumes nothing; a condition leads to either branch.
    int32_t branch(const Node& node) {
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

constexpr int32_t startFuel = 1000;
constexpr int32_t repeatFuel = 60;

bool isRepeat(const Node& node) {
    return node.kind == Kind::greedy || node.kind == Kind::lazy;
}

/// The byte that must stand at `pc`, or -1.
int16_t literalAt(const Plan& plan, int32_t pc) {
    const Node& node = plan.nodes[pc];
    if (node.kind == Kind::byte) return node.byte;
    if (node.kind == Kind::greedy && node.item == Item::byte && node.min > 0) return node.byte;
    if (node.kind == Kind::string && node.min > 0)
        return *static_cast<const uint8_t*>(plan.program.code[pc].text);
    return -1;
}

void analyseRepeat(const Plan& plan, Node& node) {
    if (node.follows < 0) node.follows = literalAt(plan, node.next);
    if (node.kind != Kind::greedy || node.max <= node.min || node.item > Item::charClass) return;
    ByteSet taken;
    FirstBytes(plan, 0).addItem(node, taken);
    const First rest = FirstBytes(plan, repeatFuel).from(node.next);
    if (!rest.canBeEmpty && !rest.bytes.meets(taken))
        node.traits = static_cast<uint16_t>(node.traits | traitPossessive);
}

void analyseStart(Plan& plan) {
    std::memset(plan.firstBytes, 1, sizeof plan.firstBytes);
    const Node& node = plan.nodes[0];
    const bool alternatives = plan.firstAlternative != noNode;
    if (!alternatives && node.kind == Kind::assertion && node.byte == anchorLineStart) {
        plan.start = StartFilter::lineStart;
        return;
    }
    if (!alternatives && (node.kind == Kind::byte || (node.kind == Kind::string && node.min > 0))) {
        plan.start = StartFilter::literal;
        return;
    }
    FirstBytes all(plan, startFuel);
    First first = all.from(0);
    for (int32_t marker = plan.firstAlternative; marker != noNode; marker = plan.nodes[marker].link)
        first = all.from(marker + 1);
    if (first.canBeEmpty) return;
    bool every = true;
    for (uint32_t byte = 0; byte < 256; ++byte) {
        plan.firstBytes[byte] = first.bytes.has(static_cast<uint8_t>(byte));
        every = every && plan.firstBytes[byte] != 0;
    }
    if (!every) plan.start = StartFilter::firstBytes;
}

/// A capture that every match passes through is set anew by whatever path succeeds, so undoing it is not
/// needed unless something reads it on the way.
void analyseCaptures(Plan& plan) {
    const int32_t length = plan.program.length;
    int32_t optional = plan.firstAlternative == noNode ? 0 : length; // up to here captures may be passed by
    for (int32_t pc = 0; pc < length; ++pc) {
        Node& node = plan.nodes[pc];
        const int32_t close =
            isBracket(plan.program.code[pc].op) && node.index != 0 ? pc + plan.program.code[pc].b + 1 : pc;
        if (node.kind == Kind::group && node.has(traitCapture)) {
            if (plan.hasBackReferences || pc < optional) {
                node.traits = static_cast<uint16_t>(node.traits | traitSaveOpen);
            } else {
                plan.capturesStay = true;
            }
        }
        const bool passable = node.kind == Kind::loop || node.kind == Kind::look ||
                              node.kind == Kind::atomic || node.kind == Kind::atomicLoop ||
                              plan.program.code[pc].op == OP_COND ||
                              (node.kind == Kind::group && node.link != noNode);
        if (passable && close > optional) optional = close;
    }
    if (!plan.hasBackReferences) return;
    for (int32_t pc = 0; pc < length; ++pc) {
        Node& node = plan.nodes[pc];
        if ((node.kind == Kind::groupEnd || node.kind == Kind::loopEnd) && node.has(traitCapture))
            node.traits = static_cast<uint16_t>(node.traits | traitSaveEnd);
    }
}

bool readsEnd(const Node& node) {
    switch (node.kind) {
    case Kind::look:
    case Kind::atomic:
    case Kind::atomicLoop:
        return true;
    case Kind::assertion:
        return node.byte != 'A' && node.byte != 'G' && node.byte != 'b' && node.byte != 'B';
    default:
        return false;
    }
}

} // namespace

void analyse(Plan& plan) {
    plan.seesEnd = false;
    for (int32_t pc = 0; pc < plan.program.length; ++pc) {
        Node& node = plan.nodes[pc];
        if (isRepeat(node)) analyseRepeat(plan, node);
        if (readsEnd(node)) plan.seesEnd = true;
    }
    analyseCaptures(plan);
    analyseStart(plan);
}

} // namespace tav::regex
