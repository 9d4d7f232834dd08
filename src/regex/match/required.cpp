#include "regex/match/required.h"

#include "regex/match/characters.h"
#include "strings/find.h"

namespace tav::regex {

namespace {

bool sameText(const uint8_t* a, const uint8_t* b, int32_t length) {
    for (int32_t i = 0; i < length; ++i)
        if (foldAscii(a[i]) != foldAscii(b[i])) return false;
    return true;
}

int32_t lastIndexCaseless(const uint8_t* subject, int32_t length, const uint8_t* literal,
                          int32_t literalLength) {
    for (int32_t at = length - literalLength; at >= 0; --at)
        if (sameText(subject + at, literal, literalLength)) return at;
    return -1;
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

int32_t usableLength(const tavRegExpContext& context, const uint8_t* subject, int32_t length) {
    const RequiredLiteral literal = requiredLiteral(context);
    if (literal.length == 0) return length;
    int32_t at = -1;
    if (literal.caseless) {
        at = lastIndexCaseless(subject, length, literal.text, literal.length);
    } else if (literal.length == 1) {
        at = lastIndexOf(subject, length, *literal.text);
    } else {
        at = lastIndexOf(subject, length, literal.text, literal.length);
    }
    return at < 0 ? -1 : at + literal.length;
}

} // namespace tav::regex
