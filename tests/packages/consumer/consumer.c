/* The typical request: a pattern compiled in the caller's own memory, one search, one replacement. */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <tavch.h>

static int fail(const char* what, tavStatus status) {
    fprintf(stderr, "%s: %d\n", what, (int)status);
    return 1;
}

int main(void) {
    const char subject[] = "xxABBBcyy abc";
    int32_t size, errOffset, count = 3, used = sizeof subject - 1, written = 100, results = 20;
    tavRegExpFindResult found[3], all[20];
    uint64_t templateBlock[32];
    tavRegExpReplaceContext* replacement = (tavRegExpReplaceContext*)templateBlock;
    uint8_t out[100];
    tavRegExpContext* pattern;
    tavStatus status = tavsRegExpGetSize("a(b+)c", &size);
    if (status != tavStsNoError) return fail("tavsRegExpGetSize", status);
    pattern = (tavRegExpContext*)malloc((size_t)size);
    if (pattern == NULL) return 1;

    status = tavsRegExpInit("a(b+)c", "i", pattern, &errOffset);
    if (status != tavStsNoError) return fail("tavsRegExpInit", status);
    status = tavsRegExpFind_8u((const uint8_t*)subject, sizeof subject - 1, pattern, found, &count);
    if (status != tavStsNoError || count != 2) return fail("tavsRegExpFind_8u", status);
    printf("%.*s %.*s\n", (int)found[0].length, (const char*)found[0].start, (int)found[1].length,
           (const char*)found[1].start);

    tavsRegExpInit("a(b+)c", "ig", pattern, &errOffset);
    tavsRegExpReplaceGetSize("<$1>", &size);
    if ((size_t)size > sizeof templateBlock) return fail("tavsRegExpReplaceGetSize", size);
    tavsRegExpReplaceInit("<$1>", replacement);
    status = tavsRegExpReplace_8u((const uint8_t*)subject, &used, out, &written, all, &results, pattern,
                                  replacement);
    if (status != tavStsNoError) return fail("tavsRegExpReplace_8u", status);
    printf("%.*s\n", (int)written, (const char*)out);
    free(pattern);

    /* This one comes from the core library, which has to be found as well. */
    status = tavsRegExpInitAlloc("b", NULL, &pattern, &errOffset);
    if (status != tavStsNoError) return fail("tavsRegExpInitAlloc", status);
    tavsRegExpFree(pattern);
    printf("%s\n", tavchGetLibVersion()->versionText);
    return 0;
}
