#include "regex/compile/context.h"

#include "base/arguments.h"
#include "regex/compile/compiler.h"
#include "tavcore.h"

#include <cstring>
#include <limits>

namespace tav::regex {

tavStatus getSize(const char* pattern, int32_t* size) {
    if (const auto bad = Arguments::pointers(pattern, size); bad.failed()) return bad.status;
    const int64_t bytes = compiler::blockSize(static_cast<int64_t>(std::strlen(pattern)));
    if (bytes > std::numeric_limits<int32_t>::max()) return tavStsNegativeLength;
    *size = static_cast<int32_t>(bytes);
    return tavStsNoError;
}

tavStatus init(const char* pattern, const char* options, tavRegExpContext* state, int32_t* errOffset) {
    if (const auto bad = Arguments::pointers(pattern, state, errOffset); bad.failed()) return bad.status;
    const compiler::Outcome outcome = compiler::compile(pattern, options, *state);
    if (outcome.failed()) *errOffset = static_cast<int32_t>(outcome.offset);
    return outcome.status;
}

tavStatus initAlloc(const char* pattern, const char* options, tavRegExpContext** state, int32_t* errOffset) {
    if (const auto bad = Arguments::pointers(pattern, state); bad.failed()) return bad.status;
    const int64_t bytes = compiler::blockSize(static_cast<int64_t>(std::strlen(pattern)));
    *state = static_cast<tavRegExpContext*>(tavMalloc(static_cast<std::size_t>(bytes)));
    if (*state == nullptr) return tavStsNullPointer;
    (*state)->workArea[0] = 0; // no plan: whoever watches memory need not see it looked for in a fresh block
    const tavStatus status = init(pattern, options, *state, errOffset);
    if (status != tavStsNoError) {
        tavFree(*state);
        *state = nullptr;
    }
    return status;
}

tavStatus release(void* block) {
    tavFree(block);
    return tavStsNoError;
}

tavStatus setMatchLimit(int32_t limit, tavRegExpContext* state) {
    if (const auto bad = Arguments::pointers(state).lengths(limit); bad.failed()) return bad.status;
    state->matchLimit = limit;
    return tavStsNoError;
}

tavStatus setFormat(int32_t format, tavRegExpContext* state) {
    if (const auto bad = Arguments::pointers(state); bad.failed()) return bad.status;
    if (format != 0 && format != 1) return tavStsOutOfRange;
    state->format = format;
    return tavStsNoError;
}

} // namespace tav::regex
