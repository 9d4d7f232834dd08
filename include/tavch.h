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
/* Comparison                                                                                              */

/**
 * Compares two strings of one length, element by element.
 *
 * @param pSrc1    first string
 * @param pSrc2    second string
 * @param len      number of elements compared; both strings have at least this many
 * @param pResult  receives 0 when all elements are equal, else pSrc1[i] - pSrc2[i] at the first index i that
 *                 differs, both elements taken as unsigned: -255 to 255
 * @return tavStsNullPointer: a pointer is null; tavStsNegativeLength: len is negative; tavStsNoError.
 * @note   *pResult is written on success only. An empty comparison (len 0) gives 0.
 *
 *     int32_t order;
 *     tavsCompare_8u(key1, key2, keyLength, &order);   // order < 0: key1 sorts before key2
 */
tavStatus tavsCompare_8u(const uint8_t* pSrc1, const uint8_t* pSrc2, int32_t len, int32_t* pResult);
/** tavsCompare_8u for 16-bit units; the difference lies in -65535 to 65535. Orders by code unit. */
tavStatus tavsCompare_16u(const uint16_t* pSrc1, const uint16_t* pSrc2, int32_t len, int32_t* pResult);

/**
 * Compares two strings like tavsCompare_8u, but takes A to Z and a to z as equal.
 *
 * Folding turns the 26 letters A to Z into lower case and changes nothing else: accented letters and all
 * other values above 127 compare as they are. Since both sides fold to lower case, an upper-case letter
 * sorts behind the six characters between Z and a ("A" sorts after "_").
 *
 * @param pSrc1    first string
 * @param pSrc2    second string
 * @param len      number of elements compared; both strings have at least this many
 * @param pResult  receives 0 when the folded strings are equal, else the difference of the folded elements at
 *                 the first index at which these differ
 * @return tavStsNullPointer: a pointer is null; tavStsNegativeLength: len is negative; tavStsNoError.
 * @note   *pResult is written on success only.
 */
tavStatus tavsCompareIgnoreCaseLatin_8u(const uint8_t* pSrc1, const uint8_t* pSrc2, int32_t len,
                                        int32_t* pResult);
/** tavsCompareIgnoreCaseLatin_8u for 16-bit units. tavsCompareIgnoreCase_16u knows all letters. */
tavStatus tavsCompareIgnoreCaseLatin_16u(const uint16_t* pSrc1, const uint16_t* pSrc2, int32_t len,
                                         int32_t* pResult);

/**
 * Tells whether two strings of one length are equal.
 *
 * @param pSrc1    first string
 * @param pSrc2    second string
 * @param len      number of elements compared; both strings have at least this many
 * @param pResult  receives 1 when all elements are equal (also for len 0), else 0
 * @return tavStsNullPointer: a pointer is null; tavStsNegativeLength: len is negative; tavStsNoError.
 * @note   *pResult is written on success only.
 */
tavStatus tavsEqual_8u(const uint8_t* pSrc1, const uint8_t* pSrc2, int32_t len, uint32_t* pResult);
/** tavsEqual_8u for 16-bit units. */
tavStatus tavsEqual_16u(const uint16_t* pSrc1, const uint16_t* pSrc2, int32_t len, uint32_t* pResult);

/* ------------------------------------------------------------------------------------------------------- */
/* Search                                                                                                  */

/*
 * All searches report a position through pIndex, -1 when there is none; "not found" is tavStsNoError.
 * *pIndex is left as it was when an argument is refused. The cost of every search is linear in the lengths,
 * whatever the strings hold (for a set: length of the text times length of the set at worst).
 */

/**
 * Finds the first occurrence of a string inside another.
 *
 * @param pSrc     string searched
 * @param len      its length
 * @param pFind    string sought
 * @param lenFind  its length
 * @param pIndex   receives the start of the first occurrence, or -1
 * @return tavStsNullPointer: a pointer is null; tavStsNegativeLength: len or lenFind is negative;
 *         tavStsNoError, found or not.
 * @note   An empty string (lenFind 0) occurs nowhere: the answer is -1, not 0.
 *
 *     int32_t at;
 *     tavsFind_8u(text, textLength, (const uint8_t*)"://", 3, &at);
 *     if (at >= 0) schemeLength = at;
 */
tavStatus tavsFind_8u(const uint8_t* pSrc, int32_t len, const uint8_t* pFind, int32_t lenFind,
                      int32_t* pIndex);
/** tavsFind_8u for 16-bit units. */
tavStatus tavsFind_16u(const uint16_t* pSrc, int32_t len, const uint16_t* pFind, int32_t lenFind,
                       int32_t* pIndex);

/**
 * Finds the last occurrence of a string inside another: arguments and statuses of tavsFind_8u, and pIndex
 * receives the highest start of an occurrence ("aa" in "aaa": 1), or -1.
 */
tavStatus tavsFindRev_8u(const uint8_t* pSrc, int32_t len, const uint8_t* pFind, int32_t lenFind,
                         int32_t* pIndex);
/** tavsFindRev_8u for 16-bit units. */
tavStatus tavsFindRev_16u(const uint16_t* pSrc, int32_t len, const uint16_t* pFind, int32_t lenFind,
                          int32_t* pIndex);

/**
 * Finds the first occurrence of a zero-terminated string inside another.
 *
 * @param pSrcZ   string searched, up to its first zero element
 * @param pFindZ  string sought, up to its first zero element
 * @param pIndex  receives the start of the first occurrence, or -1 (also when pFindZ is empty)
 * @return tavStsNullPointer: a pointer is null; tavStsNoError, found or not.
 * @note   The whole 16-byte aligned blocks that hold the strings may be read. A string has fewer than 2^31
 *         elements.
 */
tavStatus tavsFind_Z_8u(const uint8_t* pSrcZ, const uint8_t* pFindZ, int32_t* pIndex);
/** tavsFind_Z_8u for 16-bit units, aligned to 2 bytes. Only a whole zero unit terminates. */
tavStatus tavsFind_Z_16u(const uint16_t* pSrcZ, const uint16_t* pFindZ, int32_t* pIndex);

/**
 * Finds the first element with a given value.
 *
 * @param pSrc     string searched
 * @param len      its length
 * @param valFind  element sought
 * @param pIndex   receives the index of the first such element, or -1
 * @return tavStsNullPointer: a pointer is null; tavStsNegativeLength: len is negative; tavStsNoError, found
 *         or not.
 */
tavStatus tavsFindC_8u(const uint8_t* pSrc, int32_t len, uint8_t valFind, int32_t* pIndex);
/** tavsFindC_8u for 16-bit units. */
tavStatus tavsFindC_16u(const uint16_t* pSrc, int32_t len, uint16_t valFind, int32_t* pIndex);

/** Finds the last element with a given value: arguments and statuses of tavsFindC_8u. */
tavStatus tavsFindRevC_8u(const uint8_t* pSrc, int32_t len, uint8_t valFind, int32_t* pIndex);
/** tavsFindRevC_8u for 16-bit units. */
tavStatus tavsFindRevC_16u(const uint16_t* pSrc, int32_t len, uint16_t valFind, int32_t* pIndex);

/**
 * Finds the first element with a given value in a zero-terminated string.
 *
 * @param pSrcZ    string searched, up to its first zero element
 * @param valFind  element sought; 0 asks for the terminator, so that the answer is the string's length
 * @param pIndex   receives the index, or -1
 * @return tavStsNullPointer: a pointer is null; tavStsNoError, found or not.
 * @warning With valFind 0 the pointer pIndex is not tested: it must be valid.
 * @note   The whole 16-byte aligned blocks that hold the string may be read.
 */
tavStatus tavsFindC_Z_8u(const uint8_t* pSrcZ, uint8_t valFind, int32_t* pIndex);
/** tavsFindC_Z_8u for 16-bit units, aligned to 2 bytes. Only a whole zero unit terminates. */
tavStatus tavsFindC_Z_16u(const uint16_t* pSrcZ, uint16_t valFind, int32_t* pIndex);

/**
 * Finds the first element that is in a set.
 *
 * @param pSrc      string searched
 * @param len       its length
 * @param pAnyOf    the set: its elements in any order, duplicates allowed
 * @param lenAnyOf  number of elements in pAnyOf; an empty set has no members
 * @param pIndex    receives the index of the first member found, or -1
 * @return tavStsNullPointer: a pointer is null (pAnyOf also when lenAnyOf is 0); tavStsNegativeLength: len or
 *         lenAnyOf is negative; tavStsNoError, found or not.
 *
 *     tavsFindCAny_8u(line, lineLength, (const uint8_t*)" \t\r\n", 4, &endOfWord);
 */
tavStatus tavsFindCAny_8u(const uint8_t* pSrc, int32_t len, const uint8_t* pAnyOf, int32_t lenAnyOf,
                          int32_t* pIndex);
/** tavsFindCAny_8u for 16-bit units. */
tavStatus tavsFindCAny_16u(const uint16_t* pSrc, int32_t len, const uint16_t* pAnyOf, int32_t lenAnyOf,
                           int32_t* pIndex);

/** Finds the last element that is in a set: arguments and statuses of tavsFindCAny_8u. */
tavStatus tavsFindRevCAny_8u(const uint8_t* pSrc, int32_t len, const uint8_t* pAnyOf, int32_t lenAnyOf,
                             int32_t* pIndex);
/** tavsFindRevCAny_8u for 16-bit units. */
tavStatus tavsFindRevCAny_16u(const uint16_t* pSrc, int32_t len, const uint16_t* pAnyOf, int32_t lenAnyOf,
                              int32_t* pIndex);

/* ------------------------------------------------------------------------------------------------------- */
/* Editing                                                                                                 */

/*
 * Output lengths of the functions without _I are not reported: the caller knows them. No function tests the
 * room of a destination unless its description says so. Source and destination must not overlap, except
 * where a description allows it.
 */

/**
 * Inserts a string into another: pDst receives the first startIndex elements of pSrc, then pInsert, then the
 * rest of pSrc; srcLen + insertLen elements in all.
 *
 * @param pSrc        string to insert into
 * @param srcLen      its length
 * @param pInsert     string to insert
 * @param insertLen   its length
 * @param pDst        receives the result; may be pSrc itself, with room for the longer string
 * @param startIndex  where to insert, 0 to srcLen (srcLen appends)
 * @return tavStsNullPointer: a pointer is null; tavStsNegativeLength: a length or startIndex is negative, or
 *         startIndex exceeds srcLen; tavStsNoError.
 * @warning With insertLen 0 nothing at all is written to pDst, not even a copy of pSrc.
 */
tavStatus tavsInsert_8u(const uint8_t* pSrc, int32_t srcLen, const uint8_t* pInsert, int32_t insertLen,
                        uint8_t* pDst, int32_t startIndex);
/** tavsInsert_8u for 16-bit units. */
tavStatus tavsInsert_16u(const uint16_t* pSrc, int32_t srcLen, const uint16_t* pInsert, int32_t insertLen,
                         uint16_t* pDst, int32_t startIndex);

/**
 * Inserts a string in place.
 *
 * @param pInsert     string to insert; it must not lie in pSrcDst
 * @param insertLen   its length
 * @param pSrcDst     string to insert into, with room for insertLen more elements
 * @param pSrcDstLen  in: its length; out: the length grown by insertLen
 * @param startIndex  where to insert, 0 to *pSrcDstLen
 * @return tavStsNullPointer: a pointer is null; tavStsNegativeLength: a length or startIndex is negative,
 *         startIndex exceeds *pSrcDstLen, or the grown length exceeds 2147483647; tavStsNoError.
 * @note   With insertLen 0 nothing changes.
 *
 *     uint8_t name[32] = "report.txt";
 *     int32_t length = 10;
 *     tavsInsert_8u_I((const uint8_t*)"-2", 2, name, &length, 6);   // "report-2.txt", length 12
 */
tavStatus tavsInsert_8u_I(const uint8_t* pInsert, int32_t insertLen, uint8_t* pSrcDst, int32_t* pSrcDstLen,
                          int32_t startIndex);
/** tavsInsert_8u_I for 16-bit units. */
tavStatus tavsInsert_16u_I(const uint16_t* pInsert, int32_t insertLen, uint16_t* pSrcDst, int32_t* pSrcDstLen,
                           int32_t startIndex);

/**
 * Copies a string without a run of its elements; pDst receives srcLen - removeLen elements.
 *
 * @param pSrc        source
 * @param srcLen      its length
 * @param pDst        receives the result
 * @param startIndex  first element left out
 * @param removeLen   number of elements left out; 0 copies the whole string
 * @return tavStsNullPointer: a pointer is null; tavStsNegativeLength: removeLen or startIndex is negative, or
 *         srcLen is below startIndex + removeLen; tavStsNoError.
 */
tavStatus tavsRemove_8u(const uint8_t* pSrc, int32_t srcLen, uint8_t* pDst, int32_t startIndex,
                        int32_t removeLen);
/** tavsRemove_8u for 16-bit units. */
tavStatus tavsRemove_16u(const uint16_t* pSrc, int32_t srcLen, uint16_t* pDst, int32_t startIndex,
                         int32_t removeLen);

/**
 * Removes a run of elements in place.
 *
 * @param pSrcDst     string
 * @param pSrcDstLen  in: its length; out: the length less removeLen
 * @param startIndex  first element removed
 * @param removeLen   number of elements removed
 * @return tavStsNullPointer: a pointer is null; tavStsNegativeLength: removeLen, *pSrcDstLen or startIndex is
 *         negative, or startIndex + removeLen exceeds *pSrcDstLen; tavStsNoError.
 * @note   Elements behind the new length stay as they were.
 */
tavStatus tavsRemove_8u_I(uint8_t* pSrcDst, int32_t* pSrcDstLen, int32_t startIndex, int32_t removeLen);
/** tavsRemove_8u_I for 16-bit units. */
tavStatus tavsRemove_16u_I(uint16_t* pSrcDst, int32_t* pSrcDstLen, int32_t startIndex, int32_t removeLen);

/**
 * Joins two strings: pDst receives pSrc1 followed by pSrc2, len1 + len2 elements.
 *
 * @param pSrc1  first string
 * @param len1   its length
 * @param pSrc2  second string
 * @param len2   its length
 * @param pDst   receives the result
 * @return tavStsNullPointer: a pointer is null; tavStsNegativeLength: a length is negative; tavStsNoError.
 */
tavStatus tavsConcat_8u(const uint8_t* pSrc1, int32_t len1, const uint8_t* pSrc2, int32_t len2,
                        uint8_t* pDst);
/** tavsConcat_8u for 16-bit units. */
tavStatus tavsConcat_16u(const uint16_t* pSrc1, int32_t len1, const uint16_t* pSrc2, int32_t len2,
                         uint16_t* pDst);

/**
 * Joins a list of strings.
 *
 * @param pSrcs    the strings
 * @param srcLens  their lengths
 * @param numSrc   number of strings, 1 or more
 * @param pDst     receives the strings one after the other
 * @return tavStsNullPointer: a pointer is null; tavStsBadCount: numSrc is below 1; tavStsNullPointer or
 *         tavStsNegativeLength: an entry of pSrcs is null or its length negative; tavStsNoError.
 * @note   An entry is tested when its turn comes: the strings before a refused one have been written.
 */
tavStatus tavsConcat_8u_D2L(const uint8_t* const* pSrcs, const int32_t* srcLens, int32_t numSrc,
                            uint8_t* pDst);
/** tavsConcat_8u_D2L for 16-bit units. */
tavStatus tavsConcat_16u_D2L(const uint16_t* const* pSrcs, const int32_t* srcLens, int32_t numSrc,
                             uint16_t* pDst);

/**
 * Joins a list of strings with a separator between each two: arguments and statuses of tavsConcat_8u_D2L.
 *
 * @param delim  element written before every string but the first, once that string has been accepted
 */
tavStatus tavsConcatC_8u_D2L(const uint8_t* const* pSrcs, const int32_t* srcLens, int32_t numSrc,
                             uint8_t delim, uint8_t* pDst);
/** tavsConcatC_8u_D2L for 16-bit units. */
tavStatus tavsConcatC_16u_D2L(const uint16_t* const* pSrcs, const int32_t* srcLens, int32_t numSrc,
                              uint16_t delim, uint16_t* pDst);

/**
 * Splits a string at every separator into a list of buffers; the separator itself is not copied.
 *
 * Separators next to each other, and one at the start, give empty fields; one at the very end gives no empty
 * field behind it; an empty string has no fields.
 *
 * @param pSrc     string to split
 * @param len      its length
 * @param delim    separator
 * @param pDsts    one buffer per slot
 * @param dstLens  in: the capacity of each buffer; out: the length of each field written
 * @param pNumDst  in: number of slots, 1 or more; out: number of fields written
 * @return tavStsNullPointer: a pointer is null; tavStsNegativeLength: len is negative; tavStsBadCount:
 *         *pNumDst is below 1; tavStsNullPointer or tavStsNegativeLength: an entry of pDsts is null or its
 *         capacity negative; tavStsSplitUnfinished (warning): all slots are filled and text remains;
 *         tavStsFieldTruncated (warning): a field was cut to its buffer's capacity; tavStsNoError.
 * @note   A slot is tested when a field for it has been reached: slots before a refused one are filled,
 *         *pNumDst then stays as it was. tavStsSplitUnfinished outranks tavStsFieldTruncated.
 *
 *     uint8_t key[64], value[256];
 *     uint8_t* parts[2] = {key, value};
 *     int32_t lengths[2] = {64, 256}, count = 2;
 *     tavsSplitC_8u_D2L(line, lineLength, '=', parts, lengths, &count);
 */
tavStatus tavsSplitC_8u_D2L(const uint8_t* pSrc, int32_t len, uint8_t delim, uint8_t* const* pDsts,
                            int32_t* dstLens, int32_t* pNumDst);
/** tavsSplitC_8u_D2L for 16-bit units. */
tavStatus tavsSplitC_16u_D2L(const uint16_t* pSrc, int32_t len, uint16_t delim, uint16_t* const* pDsts,
                             int32_t* dstLens, int32_t* pNumDst);

/**
 * Copies a string, replacing every element of one value by another.
 *
 * @param pSrc    source
 * @param pDst    receives len elements; may be pSrc itself
 * @param len     number of elements
 * @param oldVal  value replaced
 * @param newVal  value written instead
 * @return tavStsNullPointer: a pointer is null; tavStsNegativeLength: len is negative; tavStsNoError.
 * @note   Each element is read before its result is written, and that before the next is read; this order
 *         holds for overlapping buffers too.
 */
tavStatus tavsReplaceC_8u(const uint8_t* pSrc, uint8_t* pDst, int32_t len, uint8_t oldVal, uint8_t newVal);
/** tavsReplaceC_8u for 16-bit units. */
tavStatus tavsReplaceC_16u(const uint16_t* pSrc, uint16_t* pDst, int32_t len, uint16_t oldVal,
                           uint16_t newVal);

/* ------------------------------------------------------------------------------------------------------- */
/* Trimming                                                                                                */

/**
 * Strips every leading and trailing element of one value.
 *
 * @param pSrc     source
 * @param len      its length
 * @param odd      value stripped
 * @param pDst     receives what remains, at most len elements; may be pSrc itself
 * @param pDstLen  receives its length
 * @return tavStsNullPointer: a pointer is null; tavStsNegativeLength: len is negative; tavStsNoError.
 * @note   Nothing is written behind the reported length.
 */
tavStatus tavsTrimC_8u(const uint8_t* pSrc, int32_t len, uint8_t odd, uint8_t* pDst, int32_t* pDstLen);
/** tavsTrimC_8u for 16-bit units. */
tavStatus tavsTrimC_16u(const uint16_t* pSrc, int32_t len, uint16_t odd, uint16_t* pDst, int32_t* pDstLen);

/**
 * Strips every leading and trailing element of one value in place: what remains moves to the front.
 *
 * @param pSrcDst     string
 * @param pSrcDstLen  in: its length; out: the length of what remains
 * @param odd         value stripped
 * @return tavStsNullPointer: a pointer is null; tavStsNegativeLength: *pSrcDstLen is negative; tavStsNoError.
 * @note   Elements behind the new length stay as they were.
 */
tavStatus tavsTrimC_8u_I(uint8_t* pSrcDst, int32_t* pSrcDstLen, uint8_t odd);
/** tavsTrimC_8u_I for 16-bit units. */
tavStatus tavsTrimC_16u_I(uint16_t* pSrcDst, int32_t* pSrcDstLen, uint16_t odd);

/**
 * Strips every leading and trailing element that is in a set.
 *
 * @param pSrc     source
 * @param len      its length
 * @param pTrim    the set: its elements in any order, duplicates allowed
 * @param trimLen  number of elements in pTrim; with an empty set nothing is stripped
 * @param pDst     receives what remains, at most len elements
 * @param pDstLen  receives its length
 * @return tavStsNullPointer: a pointer is null (pTrim also when trimLen is 0); tavStsNegativeLength: len or
 *         trimLen is negative; tavStsNoError.
 */
tavStatus tavsTrimCAny_8u(const uint8_t* pSrc, int32_t len, const uint8_t* pTrim, int32_t trimLen,
                          uint8_t* pDst, int32_t* pDstLen);
/** tavsTrimCAny_8u for 16-bit units. */
tavStatus tavsTrimCAny_16u(const uint16_t* pSrc, int32_t len, const uint16_t* pTrim, int32_t trimLen,
                           uint16_t* pDst, int32_t* pDstLen);

/** Strips leading elements in a set only: arguments and statuses of tavsTrimCAny_8u. */
tavStatus tavsTrimStartCAny_8u(const uint8_t* pSrc, int32_t len, const uint8_t* pTrim, int32_t trimLen,
                               uint8_t* pDst, int32_t* pDstLen);
/** tavsTrimStartCAny_8u for 16-bit units. */
tavStatus tavsTrimStartCAny_16u(const uint16_t* pSrc, int32_t len, const uint16_t* pTrim, int32_t trimLen,
                                uint16_t* pDst, int32_t* pDstLen);

/** Strips trailing elements in a set only: arguments and statuses of tavsTrimCAny_8u. */
tavStatus tavsTrimEndCAny_8u(const uint8_t* pSrc, int32_t len, const uint8_t* pTrim, int32_t trimLen,
                             uint8_t* pDst, int32_t* pDstLen);
/** tavsTrimEndCAny_8u for 16-bit units. */
tavStatus tavsTrimEndCAny_16u(const uint16_t* pSrc, int32_t len, const uint16_t* pTrim, int32_t trimLen,
                              uint16_t* pDst, int32_t* pDstLen);

/* ------------------------------------------------------------------------------------------------------- */
/* Hashing                                                                                                 */

/*
 * All hashes are unsigned 32-bit numbers, computed modulo 2^32 over the elements' unsigned values in order;
 * the 8-bit and the 16-bit functions agree on equal sequences of values. None resists deliberate collisions.
 */

/**
 * Shift-and-xor hash: from 0, h = (h << 1) ^ e for each element e. Only the last 32 elements count, so that
 * the cost does not grow with the length.
 *
 * @param pSrc      string
 * @param len       its length
 * @param pHashVal  receives the hash; 0 for an empty string
 * @return tavStsNullPointer: a pointer is null; tavStsNegativeLength: len is negative; tavStsNoError.
 */
tavStatus tavsHash_8u32u(const uint8_t* pSrc, int32_t len, uint32_t* pHashVal);
/** tavsHash_8u32u for 16-bit units. */
tavStatus tavsHash_16u32u(const uint16_t* pSrc, int32_t len, uint32_t* pHashVal);

/** Multiplicative hash: from 0, h = h * 31 + e; arguments and statuses of tavsHash_8u32u. */
tavStatus tavsHashSJ2_8u32u(const uint8_t* pSrc, int32_t len, uint32_t* pHashVal);
/** tavsHashSJ2_8u32u for 16-bit units. */
tavStatus tavsHashSJ2_16u32u(const uint16_t* pSrc, int32_t len, uint32_t* pHashVal);

/**
 * Multiply-and-xor hash: from 5381, h = (h * 33) ^ e; arguments and statuses of tavsHash_8u32u.
 * @note  Ends before the first zero element. The hash of an empty string is 5381.
 */
tavStatus tavsHashMSCS_8u32u(const uint8_t* pSrc, int32_t len, uint32_t* pHashVal);
/** tavsHashMSCS_8u32u for 16-bit units. */
tavStatus tavsHashMSCS_16u32u(const uint16_t* pSrc, int32_t len, uint32_t* pHashVal);

/* ------------------------------------------------------------------------------------------------------- */
/* Latin case                                                                                              */

/**
 * Copies a string with the letters A to Z in lower case. Every other element is copied as it is, accented
 * letters included, whatever the code page.
 *
 * @param pSrc  source
 * @param pDst  receives len elements; may be pSrc itself
 * @param len   number of elements; with 0 nothing is written
 * @return tavStsNullPointer: a pointer is null; tavStsNegativeLength: len is negative; tavStsNoError.
 */
tavStatus tavsLowercaseLatin_8u(const uint8_t* pSrc, uint8_t* pDst, int32_t len);
/** tavsLowercaseLatin_8u for 16-bit units. tavsLowercase_16u knows all letters. */
tavStatus tavsLowercaseLatin_16u(const uint16_t* pSrc, uint16_t* pDst, int32_t len);
/**
 * Turns the letters A to Z of a string into lower case, in place.
 *
 * @param pSrcDst  string
 * @param len      number of elements; with 0 nothing is written
 * @return tavStsNullPointer: pSrcDst is null; tavStsNegativeLength: len is negative; tavStsNoError.
 */
tavStatus tavsLowercaseLatin_8u_I(uint8_t* pSrcDst, int32_t len);
/** tavsLowercaseLatin_8u_I for 16-bit units. */
tavStatus tavsLowercaseLatin_16u_I(uint16_t* pSrcDst, int32_t len);

/** Copies a string with the letters a to z in upper case: arguments and statuses of tavsLowercaseLatin_8u. */
tavStatus tavsUppercaseLatin_8u(const uint8_t* pSrc, uint8_t* pDst, int32_t len);
/** tavsUppercaseLatin_8u for 16-bit units. tavsUppercase_16u knows all letters. */
tavStatus tavsUppercaseLatin_16u(const uint16_t* pSrc, uint16_t* pDst, int32_t len);
/** Turns the letters a to z of a string into upper case, in place: arguments and statuses of
 *  tavsLowercaseLatin_8u_I. */
tavStatus tavsUppercaseLatin_8u_I(uint8_t* pSrcDst, int32_t len);
/** tavsUppercaseLatin_8u_I for 16-bit units. */
tavStatus tavsUppercaseLatin_16u_I(uint16_t* pSrcDst, int32_t len);

/* ------------------------------------------------------------------------------------------------------- */
/* UTF-8 and UTF-16                                                                                        */

/*
 * Both conversions take as much text as fits and report through their in/out counts how far they got; to go
 * on after a full destination, call again with what lies behind the consumed part. Text is never refused:
 * what is malformed passes through by the rules below, so every input has exactly one output. No element
 * outside the given counts is read, and nothing behind the written count is changed.
 *
 * Counts are unsigned, in elements, so there is no negative length. The source and the destination must not
 * overlap. The cost is linear in the length of the source.
 *
 * bigEndian 0 means 16-bit units in the machine's (little-endian) order. For any other value, units are
 * exchanged with a big-endian partner:
 *   - from UTF-16, the bytes of every unit are swapped before it is looked at;
 *   - to UTF-16, the bytes of every unit are swapped, but a surrogate pair is stored low surrogate first,
 *     both in the machine's order. A caller who needs plain UTF-16BE converts with 0 and swaps the bytes of
 *     the result.
 */

/**
 * Converts UTF-8 to UTF-16.
 *
 * A character is a sequence of one to six bytes in the shortest form of its value. Anything else is taken
 * byte by byte: when a sequence is cut off, not in its shortest form, or interrupted by a byte that is not a
 * continuation byte, its first byte becomes the unit of the same value (0x80 to 0xFF) and conversion goes on
 * at the byte behind it. That holds at the end of the source too; a caller who converts in blocks therefore
 * keeps back a sequence that a block cuts off (at most five bytes) and puts it before the next block.
 *
 * Three-byte forms of surrogates (U+D800 to U+DFFF) become single units. Values from 0x10000 become a pair;
 * those above U+10FFFF keep only the low 20 bits of their distance from 0x10000.
 *
 * @param src        UTF-8 text
 * @param srcLen     in: number of bytes at src; out: number of bytes consumed
 * @param dst        receives the units
 * @param dstLen     in: capacity of dst in units; out: number of units written
 * @param bigEndian  0, or another value for the mode described above
 * @return tavStsNullPointer: a pointer is null (the counts are left alone); tavStsNoError, however much
 *         fitted.
 * @note   A capacity of srcLen units is always enough. A pair that does not fit is neither written nor
 *         consumed, so a full destination may report one unit less than its capacity. When either count is 0
 *         on entry, both are 0 on return.
 *
 *     uint32_t bytes = textLength, units = CAPACITY;
 *     tavsConvertUTF_8u16u(text, &bytes, wide, &units, 0);
 *     if (bytes < textLength) continueAt(text + bytes);   // wide is full
 */
tavStatus tavsConvertUTF_8u16u(const uint8_t* src, uint32_t* srcLen, uint16_t* dst, uint32_t* dstLen,
                               int32_t bigEndian);

/**
 * Converts UTF-16 to UTF-8.
 *
 * A surrogate pair becomes four bytes, every other unit its form of one to three bytes; that includes a
 * surrogate without partner, also a high surrogate that is the last unit of the source. A caller who converts
 * in blocks therefore keeps back a high surrogate at a block's end and puts it before the next block.
 *
 * @param src        UTF-16 text
 * @param srcLen     in: number of units at src; out: number of units consumed
 * @param dst        receives the bytes
 * @param dstLen     in: capacity of dst in bytes; out: number of bytes written
 * @param bigEndian  0, or another value when every unit of src has its bytes swapped
 * @return tavStsNullPointer: a pointer is null (the counts are left alone); tavStsNoError, however much
 *         fitted.
 * @note   A capacity of three bytes a unit is always enough. Conversion stops before the first character that
 *         does not fit whole: up to three bytes of the capacity may stay unused. When either count is 0 on
 *         entry, both are 0 on return.
 */
tavStatus tavsConvertUTF_16u8u(const uint16_t* src, uint32_t* srcLen, uint8_t* dst, uint32_t* dstLen,
                               int32_t bigEndian);

/* ------------------------------------------------------------------------------------------------------- */
/* Case of all letters                                                                                     */

/*
 * These map one 16-bit unit to one unit, by the simple case mappings of Unicode 2.0: no context (a final
 * sigma), no language, no result of two units. Units without a mapping stay as they are, among them all
 * surrogates - and so all characters outside the Basic Multilingual Plane - and every character that
 * Unicode 2.0 did not have. Some letters known to have a partner stay as well: U+00B5 and U+03C2 have no
 * upper case, U+2126, U+212A and U+212B no lower case. U+0130 has the lower case "i", U+0131 the upper
 * case "I", and neither way back exists. tavsLowercaseLatin_16u and its family change ASCII letters only.
 */

/**
 * Writes the lower case of a string.
 *
 * @param src  string
 * @param dst  receives len units; may be equal to src, but must not overlap it otherwise
 * @param len  number of units
 * @return tavStsNullPointer: a pointer is null; tavStsNegativeLength: len is negative; tavStsNoError.
 */
tavStatus tavsLowercase_16u(const uint16_t* src, uint16_t* dst, int32_t len);
/**
 * Turns a string into lower case, in place.
 *
 * @param srcDst  string
 * @param len     number of units
 * @return tavStsNullPointer: srcDst is null; tavStsNegativeLength: len is negative; tavStsNoError.
 */
tavStatus tavsLowercase_16u_I(uint16_t* srcDst, int32_t len);
/** Writes the upper case of a string: arguments and statuses of tavsLowercase_16u. */
tavStatus tavsUppercase_16u(const uint16_t* src, uint16_t* dst, int32_t len);
/** Turns a string into upper case, in place: arguments and statuses of tavsLowercase_16u_I. */
tavStatus tavsUppercase_16u_I(uint16_t* srcDst, int32_t len);

/**
 * Compares two strings of one length by the lower case of their units.
 *
 * @param src1    first string
 * @param src2    second string
 * @param len     number of units compared; both strings have at least this many, zeros are units like others
 * @param result  receives 0 when the lower cases are equal, else their difference at the first index at which
 *                they differ: the unit of src1 minus that of src2, -65535 to 65535
 * @return tavStsNullPointer: a pointer is null; tavStsNegativeLength: len is negative; tavStsNoError.
 * @note   *result is written on success only; len 0 gives 0. Letters that share only their upper case (s and
 *         U+017F, i and U+0131) differ.
 */
tavStatus tavsCompareIgnoreCase_16u(const uint16_t* src1, const uint16_t* src2, int32_t len, int32_t* result);

/* ------------------------------------------------------------------------------------------------------- */
/* Regular expressions: the objects                                                                        */

/**
 * A compiled pattern: this header, then the program and its literals, in one block of the caller's.
 *
 * tavsRegExpGetSize tells the size of the whole block, which is larger than this structure; the block must
 * be aligned to 8 bytes. It is prepared by tavsRegExpInit or tavsRegExpInitAlloc and holds no pointer to the
 * pattern's text. The header fields may be read at any time; only the setters and the compiler write them.
 * One exception: between searches the owner may set and clear bit 16 of `options`, so that one pattern looks
 * now for one match, now for all.
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

/** One piece of a replacement template. */
typedef struct tavRegExpReplaceItem {
    uint32_t kind;    /**< tavReplaceLiteral or tavReplaceGroup */
    uint32_t value;   /**< literal: number of bytes; group reference: group number, 0 the whole match */
    const char* text; /**< literal: its first byte, inside the caller's template; else not used */
} tavRegExpReplaceItem;

/** The values of tavRegExpReplaceItem.kind. */
enum { tavReplaceLiteral = 0x10000001, tavReplaceGroup = 0x10000002 };

/**
 * A replacement template cut into items: this header, then the items, in one block of the caller's.
 *
 * tavsRegExpReplaceGetSize tells the size of the block, which must be aligned to 8 bytes;
 * tavsRegExpReplaceInit prepares it. Literal items point into the template text: it must stay as it is while
 * the context is in use. A replacement only reads the context, so any number of threads may share it.
 */
typedef struct tavRegExpReplaceContext {
    int32_t itemCount;           /**< number of items */
    tavRegExpReplaceItem* items; /**< the items, directly behind this header; null for a null template */
} tavRegExpReplaceContext;

/**
 * A set of patterns under identifiers: this header, then its two arrays, in one block of the caller's.
 *
 * tavsRegExpMultiGetSize tells the size of the block, which must be aligned to 8 bytes. The set holds
 * pointers to the patterns and nothing of theirs: the caller keeps them alive while they are members, and
 * releases them. A free slot has a null pattern and the identifier 0.
 */
typedef struct tavRegExpMultiContext {
    int32_t capacity;            /**< number of slots */
    tavRegExpContext** patterns; /**< the pattern of each slot, null in a free one */
    uint32_t* ids;               /**< the identifier of each slot, 0 in a free one */
} tavRegExpMultiContext;

/** What the search of one slot of a set gave; entry i of an array belongs to slot i. */
typedef struct tavRegExpMultiFindResult {
    int32_t searched;           /**< 1: the slot held a pattern and was searched; untouched for a free slot */
    uint32_t id;                /**< the slot's identifier */
    int32_t numFind;            /**< in: the number of elements of finds; out: the number written */
    tavStatus status;           /**< what tavsRegExpFind_8u answered for this slot */
    tavRegExpFindResult* finds; /**< the caller's result array for this slot */
} tavRegExpMultiFindResult;

/* ------------------------------------------------------------------------------------------------------- */
/* Regular expressions: compiling                                                                          */

/*
 * A pattern is compiled once, into one block of memory, and searched for many times:
 *
 *     int32_t size, errOffset;
 *     tavsRegExpGetSize("a(b+)c", &size);
 *     tavRegExpContext* pattern = malloc(size);
 *     if (tavsRegExpInit("a(b+)c", "i", pattern, &errOffset) != tavStsNoError)
 *         fprintf(stderr, "error in the pattern at byte %d\n", (int)errOffset);
 *     ...                          searches
 *     free(pattern);
 *
 * Compiling allocates nothing, needs less than 64 KiB of machine stack and takes time in proportion to the
 * pattern's length. The block is the caller's, aligned to 8 bytes; it must not be moved or copied, since the
 * program holds the addresses of its literals. The pattern's text is not needed afterwards.
 *
 * The pattern language
 * --------------------
 * A pattern is a zero-terminated string of bytes. Every byte stands for itself but . ^ $ | ( ) [ * + ? \
 * and a "{" that begins a quantifier. Outside classes a UTF-8 character is simply its bytes, so a quantifier
 * behind one takes its last byte only: group it, or write it as \x{...}.
 *
 *   .                    any character but a line feed; with option "s" any character
 *   ^  $                 start and end of the subject; with option "m" of a line
 *   x|y                  x, or else y
 *
 *   (x)                  capturing group, numbered by its "(" from 1. A pattern may have 999 groups of
 *                        all kinds, up to 999 deep (plain groups around single items do not count)
 *   (?:x)  (?>x)         plain group; atomic group: once x has matched it is not entered again
 *   (?=x)  (?!x)         lookahead, negative lookahead
 *   (?<=x) (?<!x)        lookbehind: every way through x must have the same number of characters, and a
 *                        literal counts by its bytes: write characters from U+0080 on as \x{...}
 *   (?(n)x|y)            x when group n has taken part, else y; n is 1 to 9 (see the notes)
 *   (?(?=c)x|y)          x when the lookaround holds, else y; all four kinds of lookaround
 *   (?imsx-imsx)         sets options, behind "-" clears them, up to the end of the enclosing group
 *   (?imsx-imsx:x)       plain group with options of its own
 *   (?#text)             comment up to the next ")"
 *
 *   * + ?                0 or more, 1 or more, 0 or 1 times, as often as possible
 *   {n} {n,} {n,m} {,m}  exactly n, at least n, n to m, at most m times, up to 65535; {} is {0}, {,} is *
 *   *? +? ?? {n,m}?      the same, as rarely as possible
 *                        A quantifier right after a quantifier, "|", a group's opener or an option
 *                        setting, or with nothing before it, is an error.
 *
 *   [abc] [^abc]         one character of a class, or one that is not in it. Members are characters (UTF-8
 *                        characters too), ranges a-z, \d \D \s \S \w \W, \p{...}, \Q...\E, escaped characters
 *                        (\b is the backspace) and [:name:] or [:^name:] with the names alnum alpha
 *                        ascii blank cntrl digit graph lower print punct space upper word xdigit. "]" and
 *                        "-" stand for themselves at the start, "-" also where it is not between two
 *                        characters.
 *
 *   \a \e \f \n \r \t \v the characters 7, 27, 12, 10, 13, 9, 11
 *   \cX                  a control character
 *   \0 \012 \123         an octal value: \0 and up to two digits, or two to three digits that are no
 *                        group's number
 *   \x41                 a byte, by up to two hexadecimal digits
 *   \x{20AC}             a character, by up to eight hexadecimal digits
 *   \1 to \999           what group n has matched, when the pattern has that many groups anywhere in it
 *   \d \s \w             digit, white space, word character;  \D \S \W  anything else
 *   \b \B                word boundary, no word boundary
 *   \A \G \z \Z          start of the subject (both); its end; its end or before its final line feed
 *   \C \X                any single byte; a character with its combining marks
 *   \pL \p{Lu} \p{Greek} a character with a property of Unicode 5.1: C L M N P S Z, or in braces a general
 *   \p{InArrows} \p{Any} category, a script, "In" and how a block's name begins (the first such), or Any
 *   \PL \P{Lu} \p{^Lu}   one without it
 *   \Q...\E              everything in between stands for itself; a \E alone is ignored
 *   \ and any other      that byte itself
 *
 * Options, in the options string or (but "g") inline:
 *
 *   i  letters match in either case               x  white space and "#" to the end of the line are ignored
 *   m  "^" and "$" also match at line breaks          in the pattern, outside classes and \Q...\E
 *   s  "." also matches a line feed               g  search and replace for every match, not only the first
 *
 * Notes: properties of the language that patterns in use rely on.
 * - In "(?(digits)" the digits add up as 11 * n + digit: "(?(12)" asks for group 13, "(?(10)" for group 11.
 * - A quantifier after a lookaround removes it when its minimum is 0, and is ignored otherwise.
 * - "[\^]", a class of "^" alone, is an error: write "\^". \p{InCJKUnifiedIdeographs} is their Extension A.
 * - [:punct:] holds the space and the bytes from 0x7B on, [:graph:] and [:print:] run up to byte 0xFF.
 * - \p{InName} selects the first block, in code point order, whose name begins with InName: \p{InLatin} is
 *   InLatin1Supplement, and \p{InCJKUnifiedIdeographs} is InCJKUnifiedIdeographsExtensionA, which precedes
 *   its namesake (write [\x{4E00}-\x{9FFF}] for that one).
 * - A class of one character becomes that character: one of U+0080 to U+00FF then matches its byte value.
 * - When the last of several alternatives outside groups has a quantifier before its final literal, that
 *   literal is required for the others too: "a|b*c" is not found in "a". "(?:a|b*c)" is.
 */

/**
 * The size of the block that a pattern needs. Only the pattern's length counts; it is not parsed.
 *
 * @param pattern  zero-terminated pattern
 * @param size     receives the size in bytes: 24 * strlen(pattern) + 48056
 * @return tavStsNullPointer: a pointer is null; tavStsNegativeLength: the size does not fit *size, which
 *         stays untouched (patterns of 89,476,483 bytes and more); tavStsNoError.
 */
tavStatus tavsRegExpGetSize(const char* pattern, int32_t* size);

/**
 * Compiles a pattern into a block of the caller's. The block's former content does not matter; after a
 * failure it is no pattern and must not be searched with.
 *
 * @param pattern    zero-terminated pattern; not needed any more when the call has returned
 * @param options    zero-terminated letters of "gimsx" in any order, repetitions allowed; or null for none
 * @param state      the block: aligned to 8 bytes, at least of the size that tavsRegExpGetSize tells;
 *                   its match limit becomes 10000, its format 1; the work area is not written
 * @param errOffset  receives the byte offset in the pattern at which an error was found, 0 for a bad option;
 *                   untouched on success
 * @return tavStsNullPointer: pattern, state or errOffset is null (nothing is written);
 *         tavStsBadOption: an option letter other than g, i, m, s, x;
 *         then the first error of the pattern, where groups, comments and the \Q in classes are checked for
 *         the whole pattern before anything else:
 *         tavStsPatternSyntax: unbalanced parentheses, an unclosed comment, more than 999 groups or levels,
 *         an unknown form behind "(?", a condition that is neither a number nor a lookaround, a conditional
 *         with more than two alternatives, a lookbehind without a fixed length, a class without members or
 *         with "^" alone;
 *         tavStsBadGroupReference: a back-reference to a group that does not exist, a condition on group 0;
 *         tavStsBadClass: a class without end, a reversed range, an unknown [:name:], any [.x.] or [=x=],
 *         "\Q" without "\E" in a class;
 *         tavStsBadEscape: an unknown property, "\p{" or "\x{" without "}";
 *         tavStsRepeatLimit: a quantifier that is too large, reversed, or has nothing to repeat;
 *         tavStsNoError.
 */
tavStatus tavsRegExpInit(const char* pattern, const char* options, tavRegExpContext* state,
                         int32_t* errOffset);

/**
 * Allocates a block with tavMalloc and compiles a pattern into it.
 *
 * @param pattern    as for tavsRegExpInit
 * @param options    as for tavsRegExpInit
 * @param state      receives the block, which is to be released with tavsRegExpFree; null on every failure
 *                   (but untouched when pattern is null)
 * @param errOffset  as for tavsRegExpInit
 * @return tavStsNullPointer: pattern or state is null, the allocation failed, or errOffset is null; else
 *         the answer of tavsRegExpInit.
 *
 *     tavRegExpContext* words;
 *     int32_t errOffset;
 *     if (tavsRegExpInitAlloc("\\w+", NULL, &words, &errOffset) == tavStsNoError) {
 *         ...
 *         tavsRegExpFree(words);
 *     }
 */
tavStatus tavsRegExpInitAlloc(const char* pattern, const char* options, tavRegExpContext** state,
                              int32_t* errOffset);

/**
 * Releases a block from tavsRegExpInitAlloc or tavsRegExpMultiInitAlloc, as tavsRegExpMultiFree does. Null is
 * allowed.
 *
 * @param state  the block, or null
 * @return tavStsNoError.
 */
tavStatus tavsRegExpFree(void* state);

/**
 * Sets the depth budget of searches with a pattern: a match that would go deeper is not found. May be called
 * at any time between searches.
 *
 * @param limit  the budget, 0 or more; 10000 after compilation
 * @param state  the compiled pattern; its tag is not tested
 * @return tavStsNullPointer: state is null; tavStsNegativeLength: limit is negative; tavStsNoError.
 */
tavStatus tavsRegExpSetMatchLimit(int32_t limit, tavRegExpContext* state);

/**
 * Sets how the start of an attempt moves on: by whole characters or by bytes. May be called at any time
 * between searches.
 *
 * @param format  1, as after compilation: by UTF-8 characters; 0: by bytes
 * @param state   the compiled pattern; its tag is not tested
 * @return tavStsNullPointer: state is null; tavStsOutOfRange: format is neither 0 nor 1 (nothing is stored);
 *         tavStsNoError.
 */
tavStatus tavsRegExpSetFormat(int32_t format, tavRegExpContext* state);

/* ------------------------------------------------------------------------------------------------------- */
/* Regular expressions: search                                                                             */

/**
 * Finds the first match of a compiled pattern in a subject, or, when the pattern was compiled with the option
 * "g", successive matches.
 *
 * Without "g": element 0 of `pFind` receives the whole match, element i the i-th capturing group, as many as
 * `*pNumFind` and the pattern's groupCount allow. With "g": the matches stand behind each other in `pFind`;
 * of each, only the capturing groups are stored (groupCount - 1 elements), or the whole match (one element)
 * when the pattern has no capturing group. The search ends when `pFind` is full.
 *
 * After an empty match under "g" the search first tries for a match that is not empty at the same place, with
 * just the one next byte in sight, and then goes on at the next byte.
 *
 * A pattern that requires a literal at its end (lastLiteral of 0 or more) uses the subject only up to the end
 * of that literal's last occurrence: a lookahead or "$" cannot see beyond it. A path that needs more nested
 * levels than the match limit fails like any mismatch, so a limit that is too low looks like "no match".
 *
 * @param pSrc          the subject; with "\b" or "\B" in the pattern the byte behind it must be readable
 * @param srcLen        its length in bytes
 * @param pRegExpState  the compiled pattern; its work area is written, so one search at a time
 * @param pFind         the result array
 * @param pNumFind      in: the number of elements of pFind; out: the number written, 0 when nothing was found
 * @return tavStsNullPointer: an argument is null; tavStsNegativeLength: srcLen is negative; tavStsBadCount:
 *         *pNumFind is below 1; tavStsBadContext: not a compiled pattern (in these cases nothing is written);
 *         tavStsRepeatLimit: the match limit in the context is negative (*pNumFind keeps its value);
 *         tavStsResultsTruncated: found, but pFind has fewer elements than one match fills; else
 *         tavStsNoError, found or not.
 *
 * Nothing is allocated. Machine stack: at most 256 KiB under the default match limit, a few KiB as a rule.
 * More is used, as far as the thread's stack has it, under a raised limit and where a group repeats captures
 * inside atomic groups or positive lookarounds; what the stack cannot hold fails as if the limit were
 * reached.
 *
 * @code
 * tavRegExpFindResult found[2];
 * int32_t count = 2;
 * if (tavsRegExpFind_8u(text, length, pattern, found, &count) >= 0 && count > 0)
 *     printf("%.*s", (int)found[0].length, (const char*)found[0].start);
 * @endcode
 */
tavStatus tavsRegExpFind_8u(const uint8_t* pSrc, int32_t srcLen, tavRegExpContext* pRegExpState,
                            tavRegExpFindResult* pFind, int32_t* pNumFind);

/* ------------------------------------------------------------------------------------------------------- */
/* Regular expressions: replacement                                                                        */

/*
 * A template is text with references:
 *
 *     $&     the whole match
 *     $1     the first capturing group; a group that took no part in the match stands for nothing
 *     \      vanishes; the byte behind it keeps its meaning, so "\$1" is still a reference
 *
 * Every digit behind "$" belongs to the number, and each one multiplies what stands before it by eleven, not
 * by ten: $12 is group 13 (11 * 1 + 2), $10 is group 11, and group 10 cannot be named. Numbers wrap at 32
 * bits. There is no way to write a literal "$" or "\".
 */

/**
 * The size of the block that tavsRegExpReplaceInit needs for a template.
 *
 * @param templateText  zero-terminated template; null counts as empty
 * @param size          receives the size in bytes: 16 * strlen(templateText) + 16
 * @return tavStsNullPointer: size is null; tavStsNegativeLength: the size does not fit *size (templates of
 *         134,217,727 bytes and more), which is left untouched; tavStsNoError.
 */
tavStatus tavsRegExpReplaceGetSize(const char* templateText, int32_t* size);

/**
 * Cuts a template into items.
 *
 * @param templateText  zero-terminated template, or null: no items. It must outlive the context.
 * @param context       the block, aligned to 8 bytes, at least as large as tavsRegExpReplaceGetSize says
 * @return tavStsNullPointer: context is null; tavStsBadGroupReference: a "$" that neither "&" nor a digit
 *         follows, or a group number of 0 ($0, $00), see the note; tavStsNoError.
 * @note   After tavStsBadGroupReference the items before the fault are written, but itemCount keeps the
 *         value that the block had before: such a context must not be used.
 */
tavStatus tavsRegExpReplaceInit(const char* templateText, tavRegExpReplaceContext* context);

/**
 * Copies a text and replaces its first match, or every match when the pattern was compiled with the option
 * "g".
 *
 * The search is that of tavsRegExpFind_8u, with one difference: under "g" every match stores groupCount
 * elements in `results`, the whole match first. Only matches stored with all their elements are replaced, so
 * `results` limits the number of replacements: give it groupCount elements for each.
 *
 * A destination that is too small is no error: the two lengths tell how far the work went. Except for a text
 * without a match, a part is copied only when at least one byte of the capacity stays free behind it.
 *
 *   no match (or a search that failed): as much of the source as fits is copied; both lengths tell how much.
 *   with "g": the work stops before the first part that does not fit. Before a match: *srcLen is the end of
 *     the previous match. Inside a replacement: *srcLen is the start of that match and its replacement does
 *     not count. Before the rest behind the last match: *srcLen is the end of the last match. *dstLen tells
 *     what is complete. Bytes of an incomplete replacement may stand behind it.
 *   without "g", with p the offset of the match:
 *     *dstLen is p or less: nothing is written, both lengths become 0;
 *     the replacement does not fit: both lengths become p;
 *     the rest behind the match does not fit: *srcLen is the end of the match, *dstLen ends with the
 *       replacement;
 *     an empty template: the match is removed and *srcLen stays, but *dstLen becomes p: the rest is written
 *       and not counted.
 *
 * @warning Without "g" the destination must be larger than *dstLen says. The replacement is measured as if
 *          it stood at the start of the destination: provide room for p + *dstLen - 1 bytes, at most twice
 *          the capacity. With an empty template the rest is copied whatever the capacity: once *dstLen
 *          exceeds p, provide room for the whole source without its match. Under "g" nothing is written
 *          outside the capacity.
 *
 * @param src         the text; with "\b" or "\B" in the pattern the byte behind it must be readable
 * @param srcLen      in: its length in bytes, 1 or more; out: the number of bytes used
 * @param dst         the destination; it does not overlap the source
 * @param dstLen      in: its capacity in bytes, 1 or more; out: the number of bytes written
 * @param results     array for the matches
 * @param numResults  in: the number of elements of results; out: the number written
 * @param pattern     the compiled pattern; its work area is written, so one search at a time
 * @param context     the template
 * @return tavStsNullPointer: an argument is null; tavStsBadCount: *srcLen or *dstLen is below 1 (in these
 *         cases nothing is written); else the status of the search, whatever was replaced. With a failure of
 *         the search (tavStsBadCount: *numResults is below 1; tavStsBadContext; tavStsRepeatLimit) the
 *         source is copied as for no match.
 *
 * @code
 * // "2026-11-20" -> "20.11.2026", for every date in the text: pattern "(\d+)-(\d+)-(\d+)", options "g"
 * tavsRegExpReplaceInit("$3.$2.$1", template);
 * int32_t used = textLength, written = capacity, count = maxMatches * 4;
 * tavsRegExpReplace_8u(text, &used, out, &written, results, &count, pattern, template);
 * @endcode
 */
tavStatus tavsRegExpReplace_8u(const uint8_t* src, int32_t* srcLen, uint8_t* dst, int32_t* dstLen,
                               tavRegExpFindResult* results, int32_t* numResults, tavRegExpContext* pattern,
                               const tavRegExpReplaceContext* context);

/* ------------------------------------------------------------------------------------------------------- */
/* Regular expressions: sets of patterns                                                                   */

/*
 * One call searches a text with every pattern of a set. Identifiers are the caller's, any number but 0; one
 * identifier may stand in several slots, and the functions that look for it take the lowest. A set may be
 * searched by one thread at a time, and no pattern of it by another search meanwhile.
 */

/**
 * The size of the block of a set.
 *
 * @param maxPatterns  number of slots, 1 to 178,956,968
 * @param size         receives the size in bytes: 24 + 12 * maxPatterns
 * @return tavStsNullPointer: size is null; tavStsBadCount: maxPatterns is 0 or so large that the size does
 *         not fit *size, which is left untouched; tavStsNoError.
 */
tavStatus tavsRegExpMultiGetSize(uint32_t maxPatterns, int32_t* size);

/**
 * Makes an empty set in a block of the caller's.
 *
 * @param set          the block, aligned to 8 bytes, at least as large as tavsRegExpMultiGetSize says
 * @param maxPatterns  number of slots, as for tavsRegExpMultiGetSize
 * @return tavStsNullPointer: set is null; tavStsBadCount: as tavsRegExpMultiGetSize; tavStsNoError.
 */
tavStatus tavsRegExpMultiInit(tavRegExpMultiContext* set, uint32_t maxPatterns);

/**
 * Allocates a block with tavMalloc, makes an empty set in it and stores it in *setOut. Release it with
 * tavsRegExpMultiFree.
 *
 * @param setOut       receives the set
 * @param maxPatterns  number of slots, as for tavsRegExpMultiGetSize
 * @return tavStsNullPointer: setOut is null, or the allocation failed (*setOut is then null);
 *         tavStsBadCount: as tavsRegExpMultiGetSize (nothing is written); tavStsNoError.
 */
tavStatus tavsRegExpMultiInitAlloc(tavRegExpMultiContext** setOut, uint32_t maxPatterns);

/**
 * Releases a block from tavsRegExpMultiInitAlloc, not the patterns in the set. Null is allowed. It is the
 * same function as tavsRegExpFree.
 *
 * @param set  the block, or null
 * @return tavStsNoError.
 */
tavStatus tavsRegExpMultiFree(void* set);

/**
 * Puts a pattern into the lowest free slot.
 *
 * @param pattern  a compiled pattern (its tag is tested by the search only); it must outlive its membership
 * @param id       its identifier, not 0; one that is already in the set fills another slot
 * @param set      the set
 * @return tavStsNullPointer: pattern or set is null; tavStsBadArgument: id is 0; tavStsSetFull: no slot is
 *         free; tavStsNoError. Nothing changes on a failure.
 */
tavStatus tavsRegExpMultiAdd(tavRegExpContext* pattern, uint32_t id, tavRegExpMultiContext* set);

/**
 * Frees the lowest slot with an identifier.
 *
 * @param id   the identifier, not 0
 * @param set  the set
 * @return tavStsNullPointer: set is null; tavStsBadArgument: id is 0; tavStsNotFound: no slot has it;
 *         tavStsNoError. Nothing changes on a failure.
 */
tavStatus tavsRegExpMultiDelete(uint32_t id, tavRegExpMultiContext* set);

/**
 * Puts another pattern into the lowest slot with an identifier, which it keeps.
 *
 * @param pattern  the pattern that takes the place; it must outlive its membership
 * @param id       the identifier, not 0
 * @param set      the set
 * @return tavStsNullPointer: pattern or set is null; tavStsBadArgument: id is 0; tavStsNotFound: no slot has
 *         it; tavStsNoError. Nothing changes on a failure.
 * @note   A capacity below 0, which no initialiser makes, is not searched: tavsRegExpMultiAdd fills slot 0,
 *         tavsRegExpMultiDelete clears it and tavsRegExpMultiModify replaces its pattern, whatever it holds.
 */
tavStatus tavsRegExpMultiModify(tavRegExpContext* pattern, uint32_t id, tavRegExpMultiContext* set);

/**
 * Searches a text with every pattern of a set, as tavsRegExpFind_8u does with one.
 *
 * @param src      the text
 * @param len      its length in bytes, 1 or more
 * @param results  one entry per slot: the caller sets `finds` and `numFind`, and `searched` to 0; the entry
 *                 of a slot with a pattern receives `numFind`, `status`, `id`, and 1 in `searched`; the
 *                 entry of a free slot is left as it is
 * @param set      the set; the work areas of its patterns are written
 * @return tavStsNullPointer: src, set or results is null; tavStsBadCount: len is below 1; else
 *         tavStsNoError, whatever the single searches answered: that stands in their entries.
 *
 * @code
 * for (i = 0; i < set->capacity; i++) {
 *     results[i].searched = 0;
 *     results[i].finds = &match[i];
 *     results[i].numFind = 1;
 * }
 * tavsRegExpMultiFind_8u(line, lineLength, results, set);
 * for (i = 0; i < set->capacity; i++)
 *     if (results[i].searched && results[i].numFind > 0) count[results[i].id]++;
 * @endcode
 */
tavStatus tavsRegExpMultiFind_8u(const uint8_t* src, int32_t len, tavRegExpMultiFindResult* results,
                                 tavRegExpMultiContext* set);

#ifdef __cplusplus
}
#endif

#endif /* TAVCH_H */
