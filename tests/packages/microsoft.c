/* A Windows program without a C run-time library, so that a linker of Microsoft's kind needs import libraries
 * only. */
#include <tavch.h>

__declspec(dllimport) __attribute__((noreturn)) void ExitProcess(unsigned status);

void start(void) {
    int32_t at = -1;
    tavStatus status = tavsFind_8u((const uint8_t*)"import library", 14, (const uint8_t*)"lib", 3, &at);
    ExitProcess(status == tavStsNoError && at == 7 && tavchGetLibVersion()->versionMajor == 8 ? 0 : 1);
}
