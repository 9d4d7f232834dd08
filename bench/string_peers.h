// What a user would write himself instead of calling the string functions: plain loops for both element
// widths, in a file of their own, so that a call of one costs what a call of any function costs.
#pragma once

#include <cstddef>
#include <cstdint>

namespace tav::bench::peers {

template <class E>
int32_t compare(const E* one, const E* two, int32_t len);
template <class E>
int32_t compareIgnoreCaseLatin(const E* one, const E* two, int32_t len);

// Searches give the index, or -1.
template <class E>
int32_t find(const E* src, int32_t len, E value);
template <class E>
int32_t findRev(const E* src, int32_t len, E value);
template <class E>
int32_t lengthZ(const E* src);
template <class E>
int32_t findZ(const E* src, E value);
template <class E>
int32_t findString(const E* src, int32_t len, const E* find, int32_t lenFind);
template <class E>
int32_t findStringRev(const E* src, int32_t len, const E* find, int32_t lenFind);
template <class E>
int32_t findStringZ(const E* src, const E* find);
template <class E>
int32_t findAny(const E* src, int32_t len, const E* set, int32_t lenSet);
template <class E>
int32_t findAnyRev(const E* src, int32_t len, const E* set, int32_t lenSet);

/// The same by a table of the set's values below 256.
template <class E>
int32_t findAnyByTable(const E* src, int32_t len, const E* set, int32_t lenSet);
template <class E>
int32_t findAnyRevByTable(const E* src, int32_t len, const E* set, int32_t lenSet);

template <class E>
void insert(const E* src, int32_t len, const E* piece, int32_t lenPiece, E* dst, int32_t at);
template <class E>
void remove(const E* src, int32_t len, E* dst, int32_t at, int32_t lenPiece);
template <class E>
void insertInPlace(const E* piece, int32_t lenPiece, E* text, int32_t* len, int32_t at);
template <class E>
void removeInPlace(E* text, int32_t* len, int32_t at, int32_t lenPiece);
template <class E>
void concat(const E* one, int32_t lenOne, const E* two, int32_t lenTwo, E* dst);
template <class E>
void concatList(const E* const* srcs, const int32_t* lens, int32_t count, E* dst);
template <class E>
void join(const E* const* srcs, const int32_t* lens, int32_t count, E delim, E* dst);

/// Fields longer than their slot are cut. The number of fields.
template <class E>
int32_t split(const E* src, int32_t len, E delim, E* const* dsts, int32_t* dstLens, int32_t slots);
template <class E>
void replace(const E* src, E* dst, int32_t len, E oldValue, E newValue);
template <class E>
void lowercase(const E* src, E* dst, int32_t len);
template <class E>
void uppercase(const E* src, E* dst, int32_t len);

// The kept length.
template <class E>
int32_t trim(const E* src, int32_t len, E odd, E* dst);
template <class E>
int32_t trimAny(const E* src, int32_t len, const E* set, int32_t lenSet, E* dst);

template <class E>
uint32_t hashShiftXor(const E* src, int32_t len);
template <class E>
uint32_t hashTimes31(const E* src, int32_t len);
template <class E>
uint32_t hashTimes33(const E* src, int32_t len);

} // namespace tav::bench::peers
