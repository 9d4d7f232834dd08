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

RequiredLiteral requiredLiteral(const tavRegExpContext& context) {
    if (context.lastLiteral < 0 || context.lastLiteral >= context.codeLength) return {};
    const Instruction& literal = programOf(context)[context.lastLiteral];
    const bool caseless = (static_cast<uint32_t>(literal.c) & optionCaseless) != 0;
    // The byte of an OP_CHAR is the first one in memory of its operand.
    if (literal.op == OP_CHAR) return {reinterpret_cast<const uint8_t*>(&literal.a), 1, caseless};
    if (literal.op == OP_STRING) return {static_cast<const uint8_t*>(literal.text), literal.b, caseless};
    return {};
}

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
