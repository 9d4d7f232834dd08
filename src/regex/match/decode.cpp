#include "regex/match/decode.h"

#include "regex/match/characters.h"

namespace tav::regex {

Program programFrom(const tavRegExpContext& context) {
    return {programOf(context), context.codeLength, context.groupCount, context.options};
}

int32_t behind(const Program& program, int32_t pc) {
    const Instruction& at = program.code[pc];
    if (isBracket(at.op)) return pc + at.b + 2;
    return at.op == OP_SET ? pc + at.b + 1 : pc + 1;
}

int32_t nextAlternative(const Program& program, int32_t pc, int32_t stop, int32_t id) {
    while (pc < stop) {
        const Instruction& at = program.code[pc];
        if (at.op == OP_ALT_END && at.a == id) return pc;
        pc = behind(program, pc);
    }
    return noNode;
}

uint32_t optionsBehind(const Instruction& instruction, uint32_t options) {
    switch (instruction.op) {
    case OP_OPTIONS:
        return static_cast<uint32_t>(instruction.a);
    case OP_ALT_END:
    case OP_GROUP_END:
        return static_cast<uint32_t>(instruction.b);
    case OP_GROUP_OPTS:
        return static_cast<uint32_t>(instruction.c);
    default:
        return options;
    }
}

namespace {

const Instruction* quantifierAt(const Program& program, int32_t pc) {
    if (pc >= program.length || !isQuantifier(program.code[pc].op)) return nullptr;
    return &program.code[pc];
}

uint16_t optionTraits(uint32_t options) {
    uint32_t traits = 0;
    if (options & optionCaseless) traits |= traitCaseless;
    if (options & optionDotAll) traits |= traitDotAll;
    if (options & optionMultiLine) traits |= traitMultiLine;
    return static_cast<uint16_t>(traits);
}

void addTrait(Node& node, Trait trait) {
    node.traits = static_cast<uint16_t>(node.traits | trait);
}

/// The kind of a single item, and whether all its characters are one byte long.
void decodeItem(const Instruction& at, Node& node) {
    switch (at.op) {
    case OP_CHAR:
        node.byte = static_cast<uint8_t>(at.a);
        node.item = Item::byte;
        if (node.has(traitCaseless) && isAsciiLetter(node.byte)) {
            node.byte = foldAscii(node.byte);
            node.item = Item::byteCaseless;
        }
        addTrait(node, traitSingle);
        break;
    case OP_ANYBYTE:
        node.item = Item::anyByte;
        addTrait(node, traitSingle);
        break;
    case OP_BACKREF:
        node.item = Item::backReference;
        node.slot = static_cast<int16_t>(at.a);
        break;
    case OP_EXTSEQ:
        node.item = Item::extended;
        break;
    default:
        node.item = Item::tested;
        break;
    }
}

/// A back-reference to a slot that no group can fill never matches.
bool slotExists(const Program& program, int32_t slot) {
    return slot > 0 && slot < program.groupCount;
}

void decodeSingle(const Program& program, int32_t pc, Node& node) {
    const Instruction& at = program.code[pc];
    decodeItem(at, node);
    if (at.op == OP_BACKREF && !slotExists(program, at.a)) node.slot = 0;
    node.next = behind(program, pc);
    if (const Instruction* quantifier = quantifierAt(program, node.next)) {
        node.kind = quantifier->op == OP_GREEDY ? Kind::greedy : Kind::lazy;
        node.min = quantifier->a < 0 ? 0 : quantifier->a;
        node.max = quantifier->b;
        if (node.max < node.min) node.kind = Kind::fail;
        ++node.next;
        return;
    }
    switch (node.item) {
    case Item::byte:
        node.kind = Kind::byte;
        break;
    case Item::byteCaseless:
        node.kind = Kind::byteCaseless;
        break;
    default:
        node.kind = Kind::item;
        break;
    }
}

/// A lazy repeat of bytes or of a group's text passes over every place where the literal behind it does not
/// stand, deliberately also when that literal is optional.
void decodeLazySkip(const Program& program, int32_t pc, Node& node) {
    const uint32_t op = program.code[pc].op;
    if (node.kind != Kind::lazy || (op != OP_ANYBYTE && op != OP_CHAR && op != OP_BACKREF)) return;
    if (node.has(traitCaseless) || node.next >= program.length) return;
    const Instruction& literal = program.code[node.next];
    if (literal.op == OP_CHAR) node.follows = static_cast<uint8_t>(literal.a);
}

void decodeString(const Instruction& at, int32_t pc, Node& node) {
    node.kind = node.has(traitCaseless) ? Kind::stringCaseless : Kind::string;
    node.min = at.b;
    node.next = pc + 1;
}

void decodeAssertion(const Program& program, int32_t pc, Node& node) {
    node.kind = Kind::assertion;
    node.byte = static_cast<uint8_t>(program.code[pc].a);
    node.next = pc + 1;
    if (const Instruction* quantifier = quantifierAt(program, node.next)) {
        ++node.next;
        if (quantifier->a == 0) node.kind = Kind::pass;
    }
}

/// Whether the body of the bracket at `pc` holds a capturing group.
bool holdsCaptures(const Program& program, int32_t pc) {
    const int32_t close = pc + program.code[pc].b + 1;
    for (++pc; pc < close; pc = program.code[pc].op == OP_SET ? behind(program, pc) : pc + 1)
        if (program.code[pc].op == OP_CAPTURE) return true;
    return false;
}

void decodeGroup(const Program& program, int32_t pc, Node& node) {
    const Instruction& at = program.code[pc];
    const int32_t close = pc + at.b + 1;
    const bool isAtomic = at.op == OP_ATOMIC;
    node.kind = isAtomic ? Kind::atomic : Kind::group;
    node.next = close + 1;
    if (at.op != OP_COND) node.link = nextAlternative(program, pc + 1, close, at.a);
    if (at.op == OP_CAPTURE) {
        node.slot = static_cast<int16_t>(at.c);
        // Saved at both ends, unless the analysis of the whole program finds that nothing can tell.
        addTrait(node, static_cast<Trait>(traitCapture | traitSaveOpen | traitSaveEnd));
    }
    if (isAtomic) {
        addTrait(node, traitKeep);
        if (holdsCaptures(program, pc)) addTrait(node, traitInner);
    }
    const Instruction* quantifier = quantifierAt(program, node.next);
    if (quantifier == nullptr) return;
    ++node.next;
    if (quantifier->a == 1 && quantifier->b == 1) return;
    node.kind = isAtomic ? Kind::atomicLoop : Kind::loop;
    node.min = quantifier->a < 0 ? 0 : quantifier->a;
    node.max = quantifier->b < node.min ? node.min : quantifier->b;
    if (quantifier->op == OP_LAZY) addTrait(node, traitLazy);
}

/// Where the branches of the conditional at `opener` begin; without a second branch its closing position.
struct Branches {
    int32_t yes;
    int32_t no;
};

Branches branchesOf(const Program& program, int32_t opener) {
    const Instruction& conditional = program.code[opener];
    const int32_t close = opener + conditional.b + 1;
    const int32_t yes = behind(program, opener + 1);
    const int32_t marker = nextAlternative(program, yes, close, conditional.a);
    return {yes, marker == noNode ? close : marker + 1};
}

void decodeLook(const Program& program, int32_t pc, bool condition, Node& node) {
    const Instruction& at = program.code[pc];
    const bool positive = at.op == OP_LOOKAHEAD || at.op == OP_LOOKBEHIND;
    Branches branches = {behind(program, pc), noNode};
    if (condition) branches = branchesOf(program, pc - 1);
    node.kind = Kind::look;
    node.next = positive ? branches.yes : branches.no;
    node.other = positive ? branches.no : branches.yes;
    node.link = nextAlternative(program, pc + 1, pc + at.b + 1, at.a);
    node.min = at.c;
    if (isLookbehind(at.op)) addTrait(node, traitBehind);
    if (positive) addTrait(node, traitKeep);
    if (holdsCaptures(program, pc)) addTrait(node, traitInner);
}

void decodeConditionGroup(const Program& program, int32_t pc, Node& node) {
    const Branches branches = branchesOf(program, pc - 1);
    const int32_t slot = program.code[pc].a;
    node.kind = Kind::conditionGroup;
    node.slot = static_cast<int16_t>(slotExists(program, slot) ? slot : 0);
    node.next = branches.yes;
    node.other = branches.no;
}

/// OP_GROUP_END, and an OP_ALT_END that leads there: both do what ends the bracket.
void decodeClosing(const Program& program, int32_t opener, Node& node) {
    Node open;
    if (isLookaround(program.code[opener].op)) {
        open.kind = Kind::look;
    } else {
        decodeGroup(program, opener, open);
    }
    node.other = opener;
    switch (open.kind) {
    case Kind::group:
        node.kind = Kind::groupEnd;
        break;
    case Kind::loop:
        node.kind = Kind::loopEnd;
        break;
    default:
        node.kind = Kind::bodyEnd;
        break;
    }
    const uint16_t options = node.traits;
    node.traits = static_cast<uint16_t>(open.traits | options);
    node.slot = open.slot;
    node.next = open.next;
    node.min = open.min;
    node.max = open.max;
}

uint16_t bracketIndex(const Instruction& at) {
    return static_cast<uint16_t>(at.a < 0 ? -at.a : at.a);
}

void decodeAlternativeEnd(const Program& program, int32_t pc, const Place& place, Node& node) {
    const Instruction& at = program.code[pc];
    int32_t stop = program.length;
    node.kind = Kind::alternativeEnd;
    if (place.opener != noNode) {
        decodeClosing(program, place.opener, node);
        node.index = bracketIndex(at);
        stop = place.opener + program.code[place.opener].b + 1;
    }
    node.link = nextAlternative(program, pc + 1, stop, at.a);
}

} // namespace

Node decode(const Program& program, int32_t pc, const Place& place) {
    Node node;
    node.traits = optionTraits(place.options);
    if (pc == program.length) {
        node.kind = Kind::matchEnd;
        return node;
    }
    const Instruction& at = program.code[pc];
    if (place.condition && at.op == OP_BACKREF) {
        decodeConditionGroup(program, pc, node);
        return node;
    }
    switch (at.op) {
    case OP_CHAR:
    case OP_BACKREF:
    case OP_SET:
    case OP_TYPE:
    case OP_ANYBYTE:
    case OP_UCHAR:
    case OP_UPROP:
    case OP_URANGE:
    case OP_ULIST:
    case OP_EXTSEQ:
        decodeSingle(program, pc, node);
        decodeLazySkip(program, pc, node);
        break;
    case OP_STRING:
        decodeString(at, pc, node);
        break;
    case OP_ASSERT:
        decodeAssertion(program, pc, node);
        break;
    case OP_OPTIONS:
        node.kind = Kind::pass;
        node.next = pc + 1;
        break;
    case OP_LOOKBEHIND:
    case OP_NLOOKBEHIND:
    case OP_LOOKAHEAD:
    case OP_NLOOKAHEAD:
        decodeLook(program, pc, place.condition, node);
        node.index = bracketIndex(at);
        break;
    case OP_GROUP_OPTS:
    case OP_COND:
    case OP_CAPTURE:
    case OP_GROUP:
    case OP_ATOMIC:
        decodeGroup(program, pc, node);
        node.index = bracketIndex(at);
        break;
    case OP_ALT_END:
        decodeAlternativeEnd(program, pc, place, node);
        break;
    case OP_GROUP_END:
        if (place.opener == noNode) break;
        decodeClosing(program, place.opener, node);
        node.index = bracketIndex(at);
        break;
    default:
        break; // OP_RANGE, OP_LAZY, OP_GREEDY and unknown operations fail when reached
    }
    return node;
}

} // namespace tav::regex
