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

int32_t usableLength(const tavRegExpContext& context, const uint8_t* subject, int32_t length) {
    if (context.lastLiteral < 0 || context.lastLiteral >= context.codeLength) return length;
    const Instruction& literal = programOf(context)[context.lastLiteral];
    const auto byte = static_cast<uint8_t>(literal.a);
    const bool isByte = literal.op == OP_CHAR;
    if (!isByte && literal.op != OP_STRING) return length;
    const uint8_t* text = isByte ? &byte : static_cast<const uint8_t*>(literal.text);
    const int32_t textLength = isByte ? 1 : literal.b;
    if (textLength == 0) return length;
    int32_t at = -1;
    if (static_cast<uint32_t>(literal.c) & optionCaseless) {
        at = lastIndexCaseless(subject, length, text, textLength);
    } else if (isByte) {
        at = lastIndexOf(subject, length, byte);
    } else {
        at = lastIndexOf(subject, length, text, textLength);
    }
    return at < 0 ? -1 : at + textLength;
}

} // namespace tav::regex
