#include "regex/match/starts.h"

#include "regex/match/characters.h"
#include "strings/find.h"

namespace tav::regex {

StartMode startModeOf(const Program& program) {
    if (program.length == 0 || program.code[0].op != OP_ASSERT) return StartMode::every;
    if (nextAlternative(program, 0, program.length, 0) != noNode) return StartMode::every;
    const bool optional = program.length > 1 && isQuantifier(program.code[1].op) && program.code[1].a == 0;
    switch (program.code[0].a) {
    case '^':
        if (program.options & optionMultiLine) return StartMode::lines;
        [[fallthrough]];
    case 'A':
    case 'G':
        return optional ? StartMode::every : StartMode::only;
    default:
        return StartMode::every;
    }
}

const uint8_t* Starts::from(const uint8_t* p, const uint8_t* end) const {
    if (mode_ != StartMode::every) return p;
    switch (plan_.start) {
    case StartFilter::firstBytes:
        return nextFirstByte(p, end);
    case StartFilter::literal:
        return nextLiteral(p, end);
    case StartFilter::lineStart:
        return nextLineStart(p, end);
    case StartFilter::none:
        break;
    }
    return p;
}

const uint8_t* Starts::after(const uint8_t* p, const uint8_t* end) const {
    if (mode_ == StartMode::only || p >= end) return nullptr;
    if (mode_ == StartMode::lines) return nextLine(p, end);
    p = advance(p);
    return p <= end ? from(p, end) : nullptr;
}

const uint8_t* Starts::advance(const uint8_t* p) const {
    return wholeCharacters_ ? p + unicode::decodeUtf8(p, subject_.limit).length : p + 1;
}

/// Can an attempt begin at `q`, given that one could begin at `floor`, at or before it?
bool Starts::isStart(const uint8_t* q, const uint8_t* floor) const {
    if (!wholeCharacters_ || q == subject_.limit || (*q & 0xC0) != 0x80) return true;
    return previousCharacter(q + 1, floor, subject_.limit) == q;
}

/// The position behind the next line feed from `p` on, or the very end.
const uint8_t* Starts::nextLine(const uint8_t* p, const uint8_t* end) const {
    const int32_t lineFeed = indexOf<uint8_t>(p, static_cast<int32_t>(end - p), '\n');
    if (lineFeed >= 0) return p + lineFeed + 1;
    return isStart(end, p) ? end : nullptr;
}

const uint8_t* Starts::nextLineStart(const uint8_t* p, const uint8_t* end) const {
    if (p == subject_.begin || p[-1] == '\n' || p == end) return p;
    return nextLine(p, end);
}

const uint8_t* Starts::nextFirstByte(const uint8_t* p, const uint8_t* end) const {
    for (const uint8_t* q = p; q < end; ++q)
        if (plan_.firstBytes[*q] && isStart(q, p)) return q;
    return nullptr;
}

const uint8_t* Starts::nextLiteral(const uint8_t* p, const uint8_t* end) const {
    const Instruction& literal = plan_.program.code[0];
    for (const uint8_t* q = p; q < end; ++q) {
        const auto left = static_cast<int32_t>(end - q);
        const int32_t at = literal.op == OP_CHAR
                               ? indexOf(q, left, static_cast<uint8_t>(literal.a))
                               : indexOf(q, left, static_cast<const uint8_t*>(literal.text), literal.b);
        if (at < 0) return nullptr;
        q += at;
        if (isStart(q, p)) return q;
    }
    return nullptr;
}

} // namespace tav::regex
