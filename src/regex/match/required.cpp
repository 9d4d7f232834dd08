#include "regex/match/required.h"

#include "regex/match/characters.h"
#include "strings/find.h"

namespace tav::regex {

namespace {

bool standsAt(const RequiredLiteral& literal, const uint8_t* p) {
    for (int32_t i = 0; i < literal.length; ++i)
        if (!sameByte(p[i], literal.text[i], literal.caseless)) return false;
    return true;
}

} // namespace

int32_t firstOccurrence(const RequiredLiteral& literal, const uint8_t* subject, int32_t length) {
    if (!literal.caseless)
        return literal.length == 1 ? indexOf(subject, length, *literal.text)
                                   : indexOf(subject, length, literal.text, literal.length);
    for (int32_t at = 0; at <= length - literal.length; ++at)
        if (standsAt(literal, subject + at)) return at;
    return -1;
}

int32_t lastOccurrence(const RequiredLiteral& literal, const uint8_t* subject, int32_t length) {
    if (!literal.caseless)
        return literal.length == 1 ? lastIndexOf(subject, length, *literal.text)
                                   : lastIndexOf(subject, length, literal.text, literal.length);
    for (int32_t at = length - literal.length; at >= 0; --at)
        if (standsAt(literal, subject + at)) return at;
    return -1;
}

} // namespace tav::regex
