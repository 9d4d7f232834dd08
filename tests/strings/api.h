// The exported string functions of both element widths under one name, for templates over the width.
#pragma once

#include "tavch.h"

namespace tavtest {

/// The exported functions of one element width: Api<uint8_t>::find is tavsFind_8u.
template <class E>
struct Api;

#define TAV_API(E, S)                                                                                        \
    template <>                                                                                              \
    struct Api<E> {                                                                                          \
        static constexpr auto compare = tavsCompare_##S;                                                     \
        static constexpr auto compareIgnoreCaseLatin = tavsCompareIgnoreCaseLatin_##S;                       \
        static constexpr auto equal = tavsEqual_##S;                                                         \
        static constexpr auto find = tavsFind_##S;                                                           \
        static constexpr auto findRev = tavsFindRev_##S;                                                     \
        static constexpr auto findZ = tavsFind_Z_##S;                                                        \
        static constexpr auto findC = tavsFindC_##S;                                                         \
        static constexpr auto findRevC = tavsFindRevC_##S;                                                   \
        static constexpr auto findCZ = tavsFindC_Z_##S;                                                      \
        static constexpr auto findCAny = tavsFindCAny_##S;                                                   \
        static constexpr auto findRevCAny = tavsFindRevCAny_##S;                                             \
        static constexpr auto insert = tavsInsert_##S;                                                       \
        static constexpr auto insertInPlace = tavsInsert_##S##_I;                                            \
        static constexpr auto remove = tavsRemove_##S;                                                       \
        static constexpr auto removeInPlace = tavsRemove_##S##_I;                                            \
        static constexpr auto concat = tavsConcat_##S;                                                       \
        static constexpr auto concatList = tavsConcat_##S##_D2L;                                             \
        static constexpr auto concatListWithDelimiter = tavsConcatC_##S##_D2L;                               \
        static constexpr auto split = tavsSplitC_##S##_D2L;                                                  \
        static constexpr auto replace = tavsReplaceC_##S;                                                    \
        static constexpr auto trim = tavsTrimC_##S;                                                          \
        static constexpr auto trimInPlace = tavsTrimC_##S##_I;                                               \
        static constexpr auto trimAny = tavsTrimCAny_##S;                                                    \
        static constexpr auto trimStartAny = tavsTrimStartCAny_##S;                                          \
        static constexpr auto trimEndAny = tavsTrimEndCAny_##S;                                              \
        static constexpr auto hash = tavsHash_##S##32u;                                                      \
        static constexpr auto hashSJ2 = tavsHashSJ2_##S##32u;                                                \
        static constexpr auto hashMSCS = tavsHashMSCS_##S##32u;                                              \
        static constexpr auto lowercaseLatin = tavsLowercaseLatin_##S;                                       \
        static constexpr auto lowercaseLatinInPlace = tavsLowercaseLatin_##S##_I;                            \
        static constexpr auto uppercaseLatin = tavsUppercaseLatin_##S;                                       \
        static constexpr auto uppercaseLatinInPlace = tavsUppercaseLatin_##S##_I;                            \
    };
TAV_API(uint8_t, 8u)
TAV_API(uint16_t, 16u)
#undef TAV_API

} // namespace tavtest
