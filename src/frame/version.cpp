// The constant record that describes this build. The numbers come from the build system, their one home.
#include "frame/version.h"

#define TAV_TEXT_OF(number) #number
#define TAV_TEXT(number) TAV_TEXT_OF(number)

namespace tav {

namespace {

constexpr tavVersionRecord versionRecord = {
    TAVCH_VERSION_MAJOR,
    TAVCH_VERSION_MINOR,
    TAVCH_VERSION_PATCH,
    TAVCH_BUILD_NUMBER,
    {'m', 'x', '\0', '\0'},
    "tavCH PX (mx)",
    TAV_TEXT(TAVCH_VERSION_MAJOR) "." TAV_TEXT(TAVCH_VERSION_MINOR) "." TAV_TEXT(
        TAVCH_VERSION_PATCH) " (r" TAV_TEXT(TAVCH_BUILD_NUMBER) ")",
    "Jul 23 2015",
};

} // namespace

const tavVersionRecord* getLibVersion() {
    return &versionRecord;
}

} // namespace tav
