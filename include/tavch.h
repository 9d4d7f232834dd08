/*
 * tavch - string primitives and regular expressions for 8-bit and 16-bit strings.
 *
 * One header, valid C99 and C++. Link with libtavch (Linux) or tavch-8.2.dll (Windows).
 *
 * Conventions of every function
 * -----------------------------
 * - Elements: the suffix names them. 8u: bytes; 16u: UTF-16 code units; 32u: unsigned 32-bit hash values.
 *   Further suffixes: _I in place, _Z zero-terminated (no length is passed), _D2L a list of strings given as
 *   an array of pointers and an array of lengths; C one element, CAny a set of elements given as a string.
 * - Lengths, positions and counts are signed 32-bit numbers of elements (not bytes); positions start at 0.
 *   A length of 0 is an ordinary, empty case.
 * - Every function but tavchGetLibVersion returns a tavStatus: 0 success, negative an error, positive a
 *   warning (the work was done, with the reservation that the name states).
 * - Arguments are tested in one order, and the first failure is the answer: all pointers
 *   (tavStsNullPointer), then lengths for being negative (tavStsNegativeLength), then counts below 1
 *   (tavStsBadCount), then what the function itself asks for. Nothing is written when a test fails, unless
 *   the function says otherwise.
 * - A search that finds nothing is not an error: the answer is the index -1, the status tavStsNoError.
 * - All memory is the caller's. Nothing is allocated but by the two functions named ...InitAlloc.
 * - No function keeps state or takes a lock: calls on different buffers may run on any number of threads.
 *   A compiled pattern serves one search at a time; give each thread a pattern of its own.
 */
#ifndef TAVCH_H
#define TAVCH_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ------------------------------------------------------------------------------------------------------- */
/* Statuses                                                                                                */

/** The result of every function: 0 success, negative an error, positive a warning. */
typedef int32_t tavStatus;

/** The values of tavStatus. */
enum {
    /** Warning: a split field was cut to the capacity given for it. */
    tavStsFieldTruncated = 27,
    /** Warning: all output slots of a split were filled while source text remained. */
    tavStsSplitUnfinished = 26,
    /** Warning: a search found a match but was given fewer result slots than the pattern has results. */
    tavStsResultsTruncated = 12,
    /** Success. */
    tavStsNoError = 0,
    /** The identifier given to a multi-pattern operation is not in the set. */
    tavStsNotFound = -2,
    /** An argument that is not a length has a forbidden value (a pattern identifier of 0). */
    tavStsBadArgument = -5,
    /** A count (number of strings, number of result slots) is below 1. */
    tavStsBadCount = -6,
    /** An enumerated argument is outside its allowed values. */
    tavStsOutOfRange = -7,
    /** A required pointer is null; also: the allocation of an ...InitAlloc function failed. */
    tavStsNullPointer = -8,
    /** A multi-pattern set has no free entry. */
    tavStsSetFull = -9,
    /** A length is negative (also a negative match limit). */
    tavStsNegativeLength = -119,
    /** Pattern: an unknown or malformed Unicode property, or "\x{" without its "}". */
    tavStsBadEscape = -183,
    /** Pattern: a bad character class (reversed range, unknown POSIX name, unterminated class). */
    tavStsBadClass = -184,
    /** Pattern or replacement template: a reference to a group that is malformed or does not exist. */
    tavStsBadGroupReference = -185,
    /** Pattern: wrong group structure or syntax (unbalanced parentheses, too many groups, unknown group
     *  form, lookbehind without fixed length, empty class). */
    tavStsPatternSyntax = -186,
    /** Pattern: a quantifier is malformed or too large; search: the match limit was negative. */
    tavStsRepeatLimit = -187,
    /** The context is not a compiled pattern. */
    tavStsBadContext = -188,
    /** The options string of a pattern holds an unknown letter. */
    tavStsBadOption = -190
};

/* ------------------------------------------------------------------------------------------------------- */
/* Version                                                                                                 */

/** What this library is. */
typedef struct tavVersionRecord {
    int32_t versionMajor;    /**< 8 */
    int32_t versionMinor;    /**< 2 */
    int32_t versionPatch;    /**< 3 */
    int32_t buildNumber;     /**< 48108 */
    char cpuVariant[4];      /**< "mx" and two zero bytes: generic processor, 64 bit */
    const char* libraryName; /**< "tavCH PX (mx)" */
    const char* versionText; /**< "8.2.3 (r48108)" */
    const char* buildDate;   /**< "Jul 23 2015" */
} tavVersionRecord;

/**
 * The version of the library.
 * @return the one constant record; never null, the same at every call, not to be written to or freed.
 */
const tavVersionRecord* tavchGetLibVersion(void);

/* ------------------------------------------------------------------------------------------------------- */
/* Regular expressions: the objects                                                                        */

/**
 * A compiled pattern: this header, then the program and its literals, in one block of the caller's.
 *
 * tavsRegExpGetSize tells the size of the whole block, which is larger than this structure; the block must
 * be aligned to 8 bytes. It is prepared by tavsRegExpInit or tavsRegExpInitAlloc and holds no pointer to the
 * pattern's text. The header fields may be read at any time; only the setters and the compiler write them.
 * A search writes into the work area: one search at a time per pattern, distinct patterns are independent.
 */
typedef struct tavRegExpContext {
    uint32_t tag;     /**< 0x78456772 once the pattern's structure has been accepted */
    uint32_t options; /**< option bits in force at the pattern's start: 1 "s", 2 "m", 4 "i", 8 "x", 16 "g" */
    int32_t codeLength;  /**< number of instructions of the program */
    int32_t groupCount;  /**< number of capturing groups plus one: slot 0 is the whole match */
    int32_t lastLiteral; /**< index of the instruction with the required final literal; -1 none,
                              -2 none because of a top-level alternation */
    int32_t matchLimit;  /**< depth budget of a search, 10000 after compilation */
    int32_t format;      /**< 1 (after compilation): start positions advance by whole UTF-8 characters;
                              0: by bytes */
    int32_t searchHint;  /**< 1: starts with a literal; 2: a list of literal alternatives; 0: anything else */
    uint64_t workArea[6000]; /**< private to the search */
} tavRegExpContext;

/** One result of a search: element 0 is the whole match, element i the i-th capturing group. */
typedef struct tavRegExpFindResult {
    const uint8_t* start; /**< first byte inside the subject; null for a group that took no part */
    int32_t length;       /**< length in bytes; -1 for a group that took no part in the match */
} tavRegExpFindResult;

#ifdef __cplusplus
}
#endif

#endif /* TAVCH_H */
