#include "regex/match/analysis.h"

#include "regex/match/alternatives.h"
#include "regex/match/class_runs.h"
#include "regex/match/first_bytes.h"
#include "regex/match/inner_literal.h"

#include "strings/substring.h"

#include <algorithm>

namespace tav::regex {

namespace {

bool isRepeat(const Node& node) {
    return isGreedy(node) || node.kind == Kind::lazy;
}

/// The byte that must stand at `pc`, or -1.
int16_t literalAt(const Plan& plan, int32_t pc) {
    const Node& node = plan.nodes[pc];
    if (node.kind == Kind::byte) return node.byte;
    if (isGreedy(node) && node.item == Item::byte && node.min > 0) return node.byte;
    if (node.kind == Kind::string && node.min > 0)
        return *static_cast<const uint8_t*>(plan.program.code[pc].text);
    return -1;
}

void addTrait(Node& node, Trait trait) {
    node.traits = static_cast<uint16_t>(node.traits | trait);
}

void dropTrait(Node& node, Trait trait) {
    node.traits = static_cast<uint16_t>(node.traits & ~trait);
}

void analyseRepeat(const Plan& plan, Node& node) {
    if (node.follows < 0 && uses(plan, shortcutFollows)) node.follows = literalAt(plan, node.next);
    if (!uses(plan, shortcutPossessive)) return;
    if (!isGreedy(node) || node.max <= node.min || node.item > Item::charClass) return;
    ByteSet taken;
    addItem(plan, node, taken);
    const First rest = firstBytesFrom(plan, node.next);
    if (!rest.canBeEmpty && !rest.bytes.meets(taken)) addTrait(node, traitPossessive);
}

void analyseStart(Plan& plan) {
    const Node& node = plan.nodes[0];
    const bool alternatives = plan.firstAlternative != noNode;
    if (!alternatives && node.kind == Kind::assertion && node.byte == anchorLineStart) {
        plan.start = StartFilter::lineStart;
    } else {
        findPrefix(plan);
        if (plan.prefix.length > 0) plan.start = StartFilter::prefix;
    }
}

/// Does every attempt that passes the node at `pc` go on with the one behind it, having consumed nothing?
bool leadsOn(const Plan& plan, int32_t pc) {
    const Kind kind = plan.nodes[pc].kind;
    return kind == Kind::assertion || kind == Kind::pass || opensOnce(plan, pc);
}

bool isLeadingRun(const Node& node) {
    return isGreedy(node) && node.max == unboundedRepeat && node.item <= Item::tested;
}

/// The unbounded repeat that every attempt begins with, if nothing behind it can tell where it began: when
/// the attempt at its first character fails, those inside the run fail too. The same holds of the repeat that
/// a lookahead at the beginning begins with, when it is the lookahead that fails.
void analyseLeadingRun(Plan& plan) {
    if (plan.firstAlternative != noNode || plan.hasBackReferences) return;
    plan.leadingIsBytewise = true;
    const auto mark = [&](Node& run) {
        addTrait(run, traitLeading);
        if (!run.has(traitSingle)) plan.leadingIsBytewise = false;
    };
    int32_t pc = 0;
    for (;;) {
        Node& node = plan.nodes[pc];
        if (node.kind == Kind::look) {
            const bool isSimple = plan.program.code[pc].op == OP_LOOKAHEAD && node.link == noNode;
            if (isSimple && isLeadingRun(plan.nodes[pc + 1])) {
                addTrait(node, traitLeading);
                mark(plan.nodes[pc + 1]);
            }
            pc = behind(plan.program, pc);
        } else if (leadsOn(plan, pc)) {
            pc = isBracket(plan.program.code[pc].op) ? pc + 1 : node.next;
        } else {
            break;
        }
    }
    if (isLeadingRun(plan.nodes[pc])) mark(plan.nodes[pc]);
}

/// Can a match do without what the bracket at `pc` holds, or without some of it?
bool mayBePassedBy(const Plan& plan, int32_t pc) {
    const Node& node = plan.nodes[pc];
    switch (node.kind) {
    case Kind::loop:
    case Kind::look:
    case Kind::atomic:
    case Kind::atomicLoop:
        return true;
    case Kind::group:
        return node.link != noNode || plan.program.code[pc].op == OP_COND;
    default:
        return false;
    }
}

/// A capture that every match passes through is set anew by whatever path succeeds, so undoing it is not
/// needed unless something reads it on the way.
void analyseCaptures(Plan& plan) {
    if (plan.hasBackReferences) return;
    const int32_t length = plan.program.length;
    int32_t optional = plan.firstAlternative == noNode ? 0 : length; // up to here captures may be passed by
    for (int32_t pc = 0; pc < length; ++pc) {
        Node& node = plan.nodes[pc];
        dropTrait(node, traitSaveEnd);
        if (node.kind == Kind::group && node.has(traitCapture) && pc >= optional) {
            dropTrait(node, traitSaveOpen);
            plan.capturesStay = true;
        }
        if (mayBePassedBy(plan, pc)) optional = std::max(optional, pc + plan.program.code[pc].b + 1);
    }
}

/// The rarest byte that every match must contain behind its first item, -1 when there is none worth looking
/// for.
int32_t requiredByte(const Plan& plan) {
    constexpr int32_t tooCommon = 150;
    if (plan.firstAlternative != noNode) return -1;
    int32_t rarest = -1, rank = tooCommon;
    const auto consider = [&](uint8_t byte) {
        if (substring::commonness[byte] >= rank) return;
        rank = substring::commonness[byte];
        rarest = byte;
    };
    bool first = true;
    for (int32_t pc = 0; pc != plan.program.length && pc != noNode;) {
        const Node& node = plan.nodes[pc];
        const bool isRepeat = isGreedy(node) || node.kind == Kind::lazy;
        if (!first && (node.kind == Kind::byte || (isRepeat && node.item == Item::byte && node.min > 0)))
            consider(node.byte);
        if (!first && node.kind == Kind::string)
            for (int32_t i = 0; i < node.min; ++i)
                consider(static_cast<const uint8_t*>(plan.program.code[pc].text)[i]);
        first = first && leadsOn(plan, pc);
        // A lookaround is passed over whole; so is any bracket that may be matched in several ways.
        pc = opensOnce(plan, pc) ? pc + 1 : node.kind == Kind::look ? behind(plan.program, pc) : node.next;
    }
    return rarest;
}

/// Can the node tell where the usable part of the subject ends?
bool readsEnd(const Node& node) {
    switch (node.kind) {
    case Kind::look:
    case Kind::atomic:
    case Kind::atomicLoop:
        return true;
    case Kind::assertion:
        return node.byte == '^' || node.byte == '$' || node.byte == 'z' || node.byte == 'Z';
    default:
        return false;
    }
}

/// Do the bytes of the class tell where a run of its characters ends, though they may be longer than a byte?
/// They do when every byte from 0x80 up belongs to some member.
bool takesAllBeyondAscii(const Plan& plan, const Node& node) {
    return node.has(traitMultiAll) &&
           !plan.members[node.index].complement().meets(ByteSet::between(0x80, 0xFF));
}

/// Prepares the search for the ends of long runs by vectors.
void findRunEnds(Plan& plan) {
    constexpr int32_t longRun = 8;
    for (int32_t number = 0; number < plan.runTestCount; ++number)
        plan.runTests[number] = RunTest();
    for (int32_t pc = 0; pc < plan.program.length; ++pc) {
        Node& node = plan.nodes[pc];
        if (!isGreedy(node) || node.item != Item::charClass || node.index >= plan.runTestCount) continue;
        const bool bytewise = node.max == unboundedRepeat && node.min <= 1 && takesAllBeyondAscii(plan, node);
        if (!node.has(traitSingle) && !bytewise) continue;
        RunTest& test = plan.runTests[node.index];
        ByteSet members;
        addItem(plan, node, members);
        if (!test.isPresent()) test.prepare(members);
        if (!test.isPresent() || node.max < longRun) continue;
        addTrait(node, traitVector);
        if (bytewise) addTrait(node, traitBytewise);
    }
}

/// Gives the classes that must test characters beyond ASCII one by one a memory of what they said.
void giveWidePages(Plan& plan) {
    constexpr int32_t classes = 128;
    int16_t pagesOf[classes] = {};
    int32_t count = 0;
    for (int32_t pc = 0; pc < plan.program.length; ++pc) {
        Node& node = plan.nodes[pc];
        if (node.item != Item::charClass || !node.has(traitMultiTest) || node.index >= classes) continue;
        if (pagesOf[node.index] == 0) {
            if (count == plan.widePagesCount) return;
            plan.widePages[count].clear();
            pagesOf[node.index] = static_cast<int16_t>(++count);
        }
        node.slot = pagesOf[node.index];
    }
}

/// The commonest repeats and groups, in their simplest forms, have nodes of their own.
void usePlainNodes(Plan& plan) {
    for (int32_t pc = 0; pc < plan.program.length; ++pc) {
        Node& node = plan.nodes[pc];
        if (node.kind == Kind::classRun && (node.has(traitPossessive) || node.min == node.max))
            node.kind = Kind::takenRun;
        if (node.kind == Kind::greedy && node.has(traitPossessive) && node.has(traitBytewise))
            node.kind = Kind::takenBytes;
        if (node.kind == Kind::group && node.link == noNode && !node.has(traitSaveOpen)) {
            node.kind = node.has(traitCapture) ? Kind::captureStart : Kind::pass;
            node.next = pc + 1;
        }
        if (node.kind == Kind::groupEnd && !node.has(traitSaveEnd))
            node.kind = node.has(traitCapture) ? Kind::captureEnd : Kind::pass;
    }
}

} // namespace

void analyse(Plan& plan) {
    // Only the last of several alternatives need end with the required literal.
    plan.seesEnd = plan.firstAlternative != noNode;
    int32_t choices = 0;
    for (int32_t pc = 0; pc < plan.program.length; ++pc) {
        Node& node = plan.nodes[pc];
        if (isRepeat(node)) analyseRepeat(plan, node);
        if (isRepeat(node) && node.max > node.min && !node.has(traitPossessive)) ++choices;
        if (node.kind == Kind::loop || node.link != noNode) choices = 2;
        if (readsEnd(node)) plan.seesEnd = true;
    }
    // Where choices multiply, more subject can mean much more work, so there the end counts as well.
    if (choices > 1) plan.seesEnd = true;
    if (!uses(plan, shortcutWholeSubject)) plan.seesEnd = true;
    if (uses(plan, shortcutKeptCaptures)) analyseCaptures(plan);
    if (uses(plan, shortcutStartFilters)) analyseStart(plan);
    if (uses(plan, shortcutLeadingRun)) analyseLeadingRun(plan);
    if (uses(plan, shortcutRequiredByte)) plan.requiredByte = requiredByte(plan);
    if (uses(plan, shortcutClassRuns)) findClassRun(plan);
    if (uses(plan, shortcutInnerLiteral)) findInnerLiteral(plan);
    if (uses(plan, shortcutVectorRuns)) findRunEnds(plan);
    if (uses(plan, shortcutAlternatives)) findAlternatives(plan);
    if (uses(plan, shortcutWidePages)) giveWidePages(plan);
    if (uses(plan, shortcutPlainNodes)) usePlainNodes(plan);
}

} // namespace tav::regex
