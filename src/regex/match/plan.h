// What the matcher knows about a program, kept in the context's work area.
//
// The plan is made by the first search and recognised by later ones: it carries a copy of the program and the
// literals that it was made from, and counts only while that copy, the context's address and the header
// fields that it depends on are still those of the context. The area's bytes may be anything when a search
// begins.
//
//     work area:  Plan | brackets | captures | copy of program and literals | nodes | class tables | run
//     tests
//
// A program too long for the area has no nodes and no tables; its instructions are decoded as they are
// reached.
#pragma once

#include "regex/match/decode.h"
#include "regex/match/prefix.h"
#include "regex/match/run_test.h"
#include "regex/match/shortcuts.h"
#include "regex/match/wide_pages.h"

namespace tav::regex {

/// What a search knows of a bracket, by its id.
struct Bracket {
    int32_t opener; // index of the opening instruction
    int32_t outer;  // id of the bracket around it
    int32_t record; // index on the choice stack of its newest record
};

/// The text of a group, as offsets into the subject; length -1 when the group is not set.
struct Capture {
    int32_t start;
    int32_t length;
};

/// Eight classes share one table of bytes, a bit each. It speaks of bytes below 0x80 only.
using ClassTable = uint8_t[256];

/// Which start positions a search tries at all.
enum class StartMode : uint8_t {
    every,
    lines, // the given one, then those behind a line feed and the very end
    only,  // the given one
};

/// Which start positions can begin a match.
enum class StartFilter : uint8_t {
    none,         // any
    prefix,       // those that `prefix` accepts
    classRun,     // those where a run of `classRun` begins that ends in front of one of `runFollows`
    innerLiteral, // those from where a run leads to a literal
    lineStart,    // the subject's start, or behind a line feed
};

enum class PlanState : uint8_t {
    malformed, // the brackets do not fit together: nothing matches
    direct,    // no nodes: the program is too long
    ready,
};

struct Plan {
    uint64_t signature;
    uint32_t shortcuts; // those that the plan may take
    const tavRegExpContext* context;
    Program program;
    int32_t lastLiteral;
    PlanState state;
    StartMode mode;
    StartFilter start;
    bool seesEnd;             // something in the program can tell where the usable subject ends
    bool capturesStay;        // some capture is not restored on backtracking: clear all before each start
    bool uniformOptions;      // no instruction changes the options that the matcher reads
    bool hasBackReferences;   //
    bool remembersFailures;   // searches may remember failed states
    bool levelsOnlyHelp;      // with more levels an attempt finds what it finds with fewer, or more
    int32_t bracketCount;     //
    int32_t classCount;       //
    int32_t choices;          // repeats and alternatives, at most
    int32_t patience;         // attempts come back this often before failed states are remembered
    int32_t requiredByte;     // a byte that every match contains, -1 none
    int32_t firstAlternative; // the first OP_ALT_END at top level
    Bracket* brackets;
    Capture* captures;
    uint8_t* copy; // of the program and the literals behind it, as one stretch of bytes
    std::size_t copySize;
    Node* nodes;
    ClassTable* ascii;
    ByteSet* members;  // by class: the bytes that it accepts as characters; from 0x80 up, as malformed ones
    RunTest* runTests; // of the first `runTestCount` classes
    int32_t runTestCount;
    ClassTable* alternatives; // by number and byte: the alternatives that can begin with the byte
    int32_t alternativeTableCount;
    WidePages* widePages; // of the first classes that must test characters beyond ASCII
    int32_t widePagesCount;
    Node firstNode;         // for the first alternative at top level, which no node stands in front of
    bool leadingIsBytewise; // the leading run consists of one-byte characters, whatever position it begins at
    bool isClassRun;        // the program is a run of one class: `classRun`
    int32_t classRunMinimum;
    int32_t innerLiteral; // StartFilter::innerLiteral: the literal's node
    int32_t innerMinimum; // the least length of the run before it
    int32_t innerRun;     // the run's class
    RangeTable classRun;
    RangeTable runFollows; // StartFilter::classRun: what may follow the run
    Prefix prefix;
    uint8_t* spare; // the rest of the work area
    std::size_t spareSize;
};

inline bool uses(const Plan& plan, Shortcut shortcut) {
    return (plan.shortcuts & shortcut) != 0;
}

/// Is the node at `pc` the opening of a group that every attempt enters once, with one alternative?
inline bool opensOnce(const Plan& plan, int32_t pc) {
    const Node& node = plan.nodes[pc];
    if (node.kind != Kind::group && node.kind != Kind::atomic) return false;
    return node.link == noNode && plan.program.code[pc].op != OP_COND;
}

static_assert(offsetof(Plan, signature) == 0, "compilation looks for the signature there");

/// Are two texts of at least sixteen bytes equal? Inlined, because every search compares the program with its
/// plan's copy.
inline bool sameBytes(const uint8_t* a, const uint8_t* b, std::size_t size) {
    using Bytes = Vector<uint8_t>;
    const auto differing = [&](std::size_t at) { return Bytes::load(a + at) ^ Bytes::load(b + at); };
    Bytes any = differing(size - 16);
    std::size_t at = 0;
    for (; at + 64 <= size; at += 64)
        any = any | ((differing(at) | differing(at + 16)) | (differing(at + 32) | differing(at + 48)));
    for (; at + 16 < size; at += 16)
        any = any | differing(at);
    return any.equal(Bytes::zero()).lanes().all();
}

/// A plan serves the search for one match and for all alike.
TAV_READS_FORMER_CONTENTS inline bool isPlanOf(const Plan& plan, const tavRegExpContext& context) {
    return plan.signature == planSignature && plan.context == &context &&
           plan.program.length == context.codeLength && plan.program.groupCount == context.groupCount &&
           ((plan.program.options ^ context.options) & ~uint32_t{optionGlobal}) == 0 &&
           plan.lastLiteral == context.lastLiteral &&
           (plan.copySize == 0 ||
            sameBytes(plan.copy, reinterpret_cast<const uint8_t*>(programOf(context)), plan.copySize));
}

/// May a search take a shortcut that needs no plan? It may unless a plan in the work area forbids it; what
/// stands there by chance can only cost time.
TAV_READS_FORMER_CONTENTS inline bool mayUse(const tavRegExpContext& context, Shortcut shortcut) {
    const Plan& plan = *reinterpret_cast<const Plan*>(context.workArea);
    return plan.signature != planSignature || uses(plan, shortcut);
}

/// A new plan for a context.
const Plan& makePlan(tavRegExpContext& context);

/// The plan in the context's work area when it is still valid, else null.
inline const Plan* knownPlan(const tavRegExpContext& context) {
    const Plan& plan = *reinterpret_cast<const Plan*>(context.workArea);
    return isPlanOf(plan, context) ? &plan : nullptr;
}

/// The plan of a context: the one in its work area when it is still valid, otherwise a new one.
inline const Plan& planFor(tavRegExpContext& context) {
    const Plan* const plan = knownPlan(context);
    return plan != nullptr ? *plan : makePlan(context);
}

/// A new plan with some of the shortcuts only; the following searches of the context recognise it.
Plan& planWith(tavRegExpContext& context, uint32_t shortcuts);

} // namespace tav::regex
