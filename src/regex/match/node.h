// A node is an instruction made ready for the matcher: its kind with the options in force folded in, its
// quantifier, and every link that the program only implies, looked up. There is one node per instruction,
// under the same index; the members of a class and the quantifiers have nodes that are never reached.
#pragma once

#include "regex/match/program.h"

namespace tav::regex {

enum class Kind : uint8_t {
    fail,           // an operation that never succeeds when reached
    matchEnd,       // the end of the program
    alternativeEnd, // OP_ALT_END at top level: the match is complete
    byte,           // one byte, exactly
    byteCaseless,   // one ASCII letter in either case
    string,         // several bytes, exactly
    stringCaseless, //
    charClass,      // one character of a class with tables
    item,           // one item of the sort in `item`
    classRun,       // a greedy repeat of a class whose characters are all one byte long
    takenRun,       // the same when it never gives back
    takenBytes,     // a greedy repeat that never gives back, of a class that bytes decide
    greedy,         // a greedy repeat of `item`
    lazy,           // a lazy repeat of `item`
    assertion,      // a zero-width test
    pass,           // nothing to do here: an option setting, an assertion made optional
    group,          // opening of a group that is entered once
    groupEnd,       //
    captureStart,   // opening and end of a capturing group that is entered once, has one alternative and
    captureEnd,     // needs no restoring
    loop,           // opening of a group with a quantifier
    loopEnd,        //
    look,           // lookaround; also the condition of a conditional
    atomic,         // atomic group that is entered once
    atomicLoop,     // atomic group with a quantifier
    bodyEnd,        // end of a lookaround's or atomic group's body
    conditionGroup, // condition: is a group set?
};

enum class Item : uint8_t {
    byte,
    byteCaseless,
    anyByte,
    charClass,     // a class with tables (index: its number)
    tested,        // a character tested against the instruction itself
    backReference, // text of a group
    extended,      // an extended character
};

/// Some bits mean one thing for items and another for brackets.
enum Trait : uint16_t {
    traitCapture = 1 << 0,     // a capturing group: `slot`
    traitSaveOpen = 1 << 1,    // the slot must be restored when the group's opening is undone
    traitSaveEnd = 1 << 2,     // the slot must be restored when the group's end is undone
    traitLazy = 1 << 3,        // the group's quantifier is lazy
    traitCaseless = 1 << 4,    // option "i" is in force here
    traitDotAll = 1 << 5,      // option "s"
    traitMultiLine = 1 << 6,   // option "m"
    traitKeep = 1 << 7,        // captures of the body stay when it has matched
    traitBehind = 1 << 8,      // the lookaround's body starts `min` characters to the left
    traitInner = 1 << 9,       // the body holds capturing groups
    traitSingle = 1 << 10,     // every character of the item is one byte long
    traitMultiAll = 1 << 11,   // the class accepts every well-formed character beyond ASCII
    traitMultiTest = 1 << 12,  // such characters must be tested one by one
    traitPossessive = 1 << 13, // giving back what the repeat took can never help
    traitLeading = 1 << 14,    // when the attempt fails, so do those that begin inside this repeat's run;
                               // lookahead: it begins with such a repeat, as long as it has not matched
    traitVector = 1 << 7,      // item: the class has a test for the ends of its runs
    traitBytewise = 1 << 8,    // item: an unbounded repeat of all bytes but some below 0x80
};

inline constexpr int32_t noNode = -1;

struct Node {
    Kind kind = Kind::fail;
    Item item = Item::byte;
    uint8_t byte = 0;      // the literal byte (lower case when caseless); the assertion's letter
    uint8_t mask = 0;      // class: its bit in the table of eight classes
    uint16_t traits = 0;   //
    uint16_t index = 0;    // class: number; bracket: |id|
    int32_t next = noNode; // where matching goes on behind the item (and its quantifier), group or lookaround
    int32_t min = 1;       // quantifier; characters looked behind
    int32_t max = 1;       //
    int32_t link = noNode; // opener: first OP_ALT_END of the body; OP_ALT_END: the following one
    int32_t other = noNode; // closing: the opener; lookaround and condition: where failure leads
    int16_t slot = 0;       // result slot; class: 1 + the number of its wide pages, 0 none
    int16_t follows = -1;   // repeat: the byte that must stand where the repeat ends, -1 unknown; in front of
                            // an alternative: the table of its first bytes (its bit is `mask`), -1 none

    constexpr bool has(Trait trait) const { return (traits & trait) != 0; }
};

static_assert(sizeof(Node) == 32);

constexpr bool isGreedy(const Node& node) {
    return node.kind == Kind::greedy || node.kind == Kind::classRun;
}
constexpr bool isSingleItem(const Node& node) {
    return node.kind == Kind::item || node.kind == Kind::charClass;
}

} // namespace tav::regex
