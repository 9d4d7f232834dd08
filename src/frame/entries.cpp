// The exported functions: each is a jump through its own slot and nothing else.
#include "frame/slots.h"

#if defined(_WIN32)
#define TAV_VISIBLE // the module definition file names the exports
#else
#define TAV_VISIBLE __attribute__((visibility("default")))
#endif

extern "C" {
#define TAV_EXPORT(ordinal, result, name, parameters, arguments, implementation)                             \
    TAV_VISIBLE result name parameters {                                                                     \
        return tav::exportSlots.name arguments;                                                              \
    }
#define TAV_VACANT(ordinal)
#include "frame/exports.def"
#undef TAV_EXPORT
#undef TAV_VACANT
}
