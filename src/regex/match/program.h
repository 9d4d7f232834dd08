// The compiled program: the one definition that the compiler and the matcher share.
//
// A program is an array of instructions of 24 bytes, walked by index; links are index differences. A bracket
// (group or lookaround) is laid out as
//
//     p            p+1 .. p+b      p+b+1          p+b+2
//     opener (b)   body            OP_GROUP_END   optional quantifier
//
// with alternatives inside the body separated by OP_ALT_END. A class is OP_SET followed by its `b` items and
// an optional quantifier; any other single item may be followed by its quantifier at once.
#pragma once

#include "tavch.h"

#include <cstddef>
#include <cstdint>

namespace tav::regex {

// TAV_OPCODE(name, code): every operation; what the operands mean stands beside each.
#define TAV_OPCODES(TAV_OPCODE)                                                                              \
    TAV_OPCODE(OP_CHAR, 0x10000000)       /* a: the byte; c: option bits when at top level */                \
    TAV_OPCODE(OP_STRING, 0x10000001)     /* b: length; text: its bytes; c: option bits when at top level */ \
    TAV_OPCODE(OP_BACKREF, 0x10000002)    /* a: group number; first in OP_COND: is that group set? */        \
    TAV_OPCODE(OP_SET, 0x10000003)        /* a: -1 negated, else 0; b: number of items that follow */        \
    TAV_OPCODE(OP_TYPE, 0x10000004)       /* a: one of . d D s S w W; c: -1 in a negated POSIX item */       \
    TAV_OPCODE(OP_ASSERT, 0x10000005)     /* a: one of ^ $ A B G Z b z, or anchorLineStart */                \
    TAV_OPCODE(OP_ALT_END, 0x10000006)    /* a: bracket id, 0 at top level; b: options of what follows */    \
    TAV_OPCODE(OP_RANGE, 0x10000007)      /* a: low; b: high; c: -1 in a negated POSIX item; class only */   \
    TAV_OPCODE(OP_LAZY, 0x10000008)       /* a: minimum; b: maximum; stands after what it repeats */         \
    TAV_OPCODE(OP_GREEDY, 0x10000009)     /* a: minimum; b: maximum; stands after what it repeats */         \
    TAV_OPCODE(OP_LOOKBEHIND, 0x1000000A) /* a: bracket id; b: body length; c: characters looked behind */   \
    TAV_OPCODE(OP_NLOOKBEHIND, 0x1000000B) /* as OP_LOOKBEHIND */                                            \
    TAV_OPCODE(OP_LOOKAHEAD, 0x1000000C)   /* a: bracket id; b: body length */                               \
    TAV_OPCODE(OP_NLOOKAHEAD, 0x1000000D)  /* as OP_LOOKAHEAD */                                             \
    TAV_OPCODE(OP_GROUP_OPTS, 0x1000000E)  /* a: bracket id; b: body length; c: the body's option bits */    \
    TAV_OPCODE(OP_COND, 0x1000000F)        /* a: bracket id; b: body length; body: condition, yes | no */    \
    TAV_OPCODE(OP_CAPTURE, 0x10000010)     /* a: bracket id; b: body length; c: result slot */               \
    TAV_OPCODE(OP_GROUP, 0x10000011)       /* a: bracket id; b: body length */                               \
    TAV_OPCODE(OP_ATOMIC, 0x10000012)      /* a: bracket id; b: body length */                               \
    TAV_OPCODE(OP_GROUP_END, 0x10000013)   /* a: bracket id; b: options to restore; c: 1, -1 or 0 */         \
    TAV_OPCODE(OP_OPTIONS, 0x10000014)     /* a: new option bits */                                          \
    TAV_OPCODE(OP_ANYBYTE, 0x10000015)     /* no operands */                                                 \
    TAV_OPCODE(OP_UCHAR, 0x10000016)       /* a: code point */                                               \
    TAV_OPCODE(OP_UPROP, 0x10000017)       /* a: category value; b: -1 negated, else 0 */                    \
    TAV_OPCODE(OP_URANGE, 0x10000018)      /* a: low; b: high; c: -1 negated, else 0 */                      \
    TAV_OPCODE(OP_ULIST, 0x10000019)       /* b: -1 negated, else 0; c: number of pairs; text: the pairs */  \
    TAV_OPCODE(OP_EXTSEQ, 0x1000001A)      /* no operands */

enum Opcode : uint32_t {
#define TAV_OPCODE(name, code) name = code,
    TAV_OPCODES(TAV_OPCODE)
#undef TAV_OPCODE
};

inline constexpr uint32_t firstOpcode = OP_CHAR;
inline constexpr uint32_t lastOpcode = OP_EXTSEQ;

struct Instruction {
    uint32_t op;
    int32_t a;
    int32_t b;
    int32_t c;
    const void*
        text; // OP_STRING: bytes in the literal pool; OP_ULIST: pairs in the constant tables; else null
};

static_assert(sizeof(Instruction) == 24 && offsetof(Instruction, text) == 16);

enum Option : uint32_t {
    optionDotAll = 0x01,    // "s"
    optionMultiLine = 0x02, // "m"
    optionCaseless = 0x04,  // "i"
    optionExtended = 0x08,  // "x", read by the compiler only
    optionGlobal = 0x10,    // "g", read by the drivers only
};

inline constexpr int32_t anchorLineStart = 0x80;       // OP_ASSERT: at the start or after a line feed
inline constexpr int32_t unboundedRepeat = 0x3FFFFFFF; // the maximum of "*" and "+"
inline constexpr int32_t bracketLimit = 1000;          // bracket ids and result slots stay below it

/// The block of a compiled pattern: header, work area, program, literal pool.
inline constexpr uint32_t contextTag = 0x78456772; // "rgEx" in memory
inline constexpr std::size_t programOffset = sizeof(tavRegExpContext);
static_assert(offsetof(tavRegExpContext, workArea) == 32 && programOffset == 48032);

// Before its first search a block holds whatever its memory held: to recognise a plan is to look at that, and
// nothing is taken from it unless everything agrees. MemorySanitizer cannot know.
#if defined(__has_feature)
#if __has_feature(memory_sanitizer)
#define TAV_READS_FORMER_CONTENTS __attribute__((no_sanitize("memory")))
#endif
#endif
#if !defined(TAV_READS_FORMER_CONTENTS)
#define TAV_READS_FORMER_CONTENTS
#endif

/// The first word of the work area once a search has left its plan there.
inline constexpr uint64_t planSignature = 0x31'6E'61'6C'70'76'61'74; // "tavplan1"

/// A plan that an earlier search left is not to be recognised after a compilation, even of the same pattern:
/// in between the memory may have served for something else, in parts. The work area is left alone otherwise.
TAV_READS_FORMER_CONTENTS inline void forgetPlan(tavRegExpContext& context) {
    if (context.workArea[0] == planSignature) context.workArea[0] = 0;
}

inline const Instruction* programOf(const tavRegExpContext& context) {
    return reinterpret_cast<const Instruction*>(reinterpret_cast<const uint8_t*>(&context) + programOffset);
}
inline Instruction* programOf(tavRegExpContext& context) {
    return reinterpret_cast<Instruction*>(reinterpret_cast<uint8_t*>(&context) + programOffset);
}

constexpr bool isQuantifier(uint32_t op) {
    return op == OP_LAZY || op == OP_GREEDY;
}
constexpr bool isBracket(uint32_t op) {
    return op >= OP_LOOKBEHIND && op <= OP_ATOMIC;
}
constexpr bool isLookbehind(uint32_t op) {
    return op == OP_LOOKBEHIND || op == OP_NLOOKBEHIND;
}
constexpr bool isLookaround(uint32_t op) {
    return op >= OP_LOOKBEHIND && op <= OP_NLOOKAHEAD;
}

} // namespace tav::regex
