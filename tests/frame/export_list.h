// The export list as the tests read it, and the names that every ordinal has for good, written out here a
// second time on purpose: the list may lack a function, but never give an ordinal to another name.
#pragma once

#include <string_view>

namespace tav::test {

struct Export {
    int ordinal;
    std::string_view name;
    std::string_view implementation;
};

inline constexpr Export exportList[] = {
#define TAV_EXPORT(ordinal, result, name, parameters, arguments, implementation)                             \
    {ordinal, #name, #implementation},
#define TAV_VACANT(ordinal)
#include "frame/exports.def"
#undef TAV_EXPORT
#undef TAV_VACANT
};

inline constexpr std::string_view nameOfOrdinal[] = {
    "tavchGetLibVersion",
    "tavsCompareIgnoreCaseLatin_16u",
    "tavsCompareIgnoreCaseLatin_8u",
    "tavsCompareIgnoreCase_16u",
    "tavsCompare_16u",
    "tavsCompare_8u",
    "tavsConcatC_16u_D2L",
    "tavsConcatC_8u_D2L",
    "tavsConcat_16u",
    "tavsConcat_16u_D2L",
    "tavsConcat_8u",
    "tavsConcat_8u_D2L",
    "tavsConvertUTF_16u8u",
    "tavsConvertUTF_8u16u",
    "tavsEqual_16u",
    "tavsEqual_8u",
    "tavsFindCAny_16u",
    "tavsFindCAny_8u",
    "tavsFindC_16u",
    "tavsFindC_8u",
    "tavsFindC_Z_16u",
    "tavsFindC_Z_8u",
    "tavsFindRevCAny_16u",
    "tavsFindRevCAny_8u",
    "tavsFindRevC_16u",
    "tavsFindRevC_8u",
    "tavsFindRev_16u",
    "tavsFindRev_8u",
    "tavsFind_16u",
    "tavsFind_8u",
    "tavsFind_Z_16u",
    "tavsFind_Z_8u",
    "tavsHashMSCS_16u32u",
    "tavsHashMSCS_8u32u",
    "tavsHashSJ2_16u32u",
    "tavsHashSJ2_8u32u",
    "tavsHash_16u32u",
    "tavsHash_8u32u",
    "tavsInsert_16u",
    "tavsInsert_16u_I",
    "tavsInsert_8u",
    "tavsInsert_8u_I",
    "tavsLowercaseLatin_16u",
    "tavsLowercaseLatin_16u_I",
    "tavsLowercaseLatin_8u",
    "tavsLowercaseLatin_8u_I",
    "tavsLowercase_16u",
    "tavsLowercase_16u_I",
    "tavsRegExpFind_8u",
    "tavsRegExpFree",
    "tavsRegExpGetSize",
    "tavsRegExpInit",
    "tavsRegExpInitAlloc",
    "tavsRegExpMultiAdd",
    "tavsRegExpMultiDelete",
    "tavsRegExpMultiFind_8u",
    "tavsRegExpMultiFree",
    "tavsRegExpMultiGetSize",
    "tavsRegExpMultiInit",
    "tavsRegExpMultiInitAlloc",
    "tavsRegExpMultiModify",
    "tavsRegExpReplaceGetSize",
    "tavsRegExpReplaceInit",
    "tavsRegExpReplace_8u",
    "tavsRegExpSetFormat",
    "tavsRegExpSetMatchLimit",
    "tavsRemove_16u",
    "tavsRemove_16u_I",
    "tavsRemove_8u",
    "tavsRemove_8u_I",
    "tavsReplaceC_16u",
    "tavsReplaceC_8u",
    "tavsSplitC_16u_D2L",
    "tavsSplitC_8u_D2L",
    "tavsTrimCAny_16u",
    "tavsTrimCAny_8u",
    "tavsTrimC_16u",
    "tavsTrimC_16u_I",
    "tavsTrimC_8u",
    "tavsTrimC_8u_I",
    "tavsTrimEndCAny_16u",
    "tavsTrimEndCAny_8u",
    "tavsTrimStartCAny_16u",
    "tavsTrimStartCAny_8u",
    "tavsUppercaseLatin_16u",
    "tavsUppercaseLatin_16u_I",
    "tavsUppercaseLatin_8u",
    "tavsUppercaseLatin_8u_I",
    "tavsUppercase_16u",
    "tavsUppercase_16u_I",
};

} // namespace tav::test
