/* The public header in strict C99, on its own and twice: it must need nothing before it. The program links
 * every exported function with the signature of the export list and checks the layouts that C callers rely
 * on. Returns 0, or the number of the first check that failed. */
#include "tavch.h"

#include "tavch.h"

/* Each of these is a pointer of the list's type to the header's function: the two must agree. */
#define TAV_EXPORT(ordinal, result, name, parameters, arguments, implementation)                             \
    result(*const pointer_to_##name) parameters = name;
#define TAV_VACANT(ordinal)
#include "frame/exports.def"
#undef TAV_EXPORT
#undef TAV_VACANT

static int linked(void) {
    int missing = 0;
#define TAV_EXPORT(ordinal, result, name, parameters, arguments, implementation)                             \
    if (!pointer_to_##name) missing = ordinal;
#define TAV_VACANT(ordinal)
#include "frame/exports.def"
#undef TAV_EXPORT
#undef TAV_VACANT
    return !missing;
}

static int offset_in(const void* member, const void* object) {
    return (int)((const char*)member - (const char*)object);
}

int main(void) {
    static tavRegExpContext context;
    tavRegExpFindResult result;
    tavRegExpReplaceItem item;
    tavRegExpReplaceContext replacement;
    tavRegExpMultiContext set;
    tavRegExpMultiFindResult finding;
    const tavVersionRecord* version = tavchGetLibVersion();

    if (!linked()) return 1;
    if (!version || version->versionMajor != 8) return 2;
    if (version->versionMinor != 2 || version->versionPatch != 3) return 3;
    if (offset_in(&version->cpuVariant, version) != 16) return 4;
    if (sizeof(tavRegExpContext) != 48032) return 5;
    if (offset_in(&context.options, &context) != 4) return 6;
    if (offset_in(&context.searchHint, &context) != 28) return 7;
    if (offset_in(&context.workArea, &context) != 32) return 8;
    if (sizeof(tavRegExpFindResult) != 16) return 9;
    if (offset_in(&result.length, &result) != 8) return 10;
    if (sizeof(tavStatus) != 4 || tavStsNoError != 0) return 11;
    if (tavStsResultsTruncated <= 0 || tavStsNullPointer >= 0) return 12;
    if (sizeof(item) != 16 || offset_in(&item.text, &item) != 8) return 13;
    if (sizeof(replacement) != 16 || offset_in(&replacement.items, &replacement) != 8) return 14;
    if (sizeof(set) != 24 || offset_in(&set.patterns, &set) != 8 || offset_in(&set.ids, &set) != 16)
        return 15;
    if (sizeof(finding) != 24 || offset_in(&finding.numFind, &finding) != 8) return 16;
    if (offset_in(&finding.status, &finding) != 12 || offset_in(&finding.finds, &finding) != 16) return 17;
    if (tavReplaceLiteral != 0x10000001 || tavReplaceGroup != 0x10000002) return 18;
    return 0;
}
