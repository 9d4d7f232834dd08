#include "regex/compile/quantifier.h"

#include "regex/match/program.h"

namespace tav::regex::compiler {

namespace {

constexpr int32_t largestBound = 65535;

/// Where the parts of "{n,m}" lie; `comma` equals `close` when there is none.
struct Braces {
    Offset first;
    Offset comma;
    Offset close;
};

Offset skipDigits(const PatternText& text, Offset offset) {
    while (isDigit(text.at(offset)))
        ++offset;
    return offset;
}

bool findBraces(const PatternText& text, Offset offset, Braces& braces) {
    if (text.at(offset) != '{') return false;
    braces.first = offset + 1;
    braces.comma = skipDigits(text, braces.first);
    braces.close = text.at(braces.comma) == ',' ? skipDigits(text, braces.comma + 1) : braces.comma;
    return text.at(braces.close) == '}';
}

/// The decimal number in [from, to), anything beyond the largest bound as the first value beyond it.
int32_t readBound(const PatternText& text, Offset from, Offset to) {
    int32_t value = 0;
    for (; from < to && value <= largestBound; ++from)
        value = value * 10 + (text.at(from) - '0');
    return value <= largestBound ? value : largestBound + 1;
}

Outcome readBraces(const PatternText& text, const Braces& braces, Quantifier& quantifier) {
    quantifier.minimum = readBound(text, braces.first, braces.comma);
    quantifier.maximum = quantifier.minimum;
    if (braces.comma != braces.close) {
        const Offset second = braces.comma + 1;
        const bool bounded = second != braces.close;
        quantifier.maximum = bounded ? readBound(text, second, braces.close) : unboundedRepeat;
        if (bounded && quantifier.maximum > largestBound) return repeatError(second);
    }
    const bool reversed = quantifier.maximum < quantifier.minimum;
    return quantifier.minimum > largestBound || reversed ? repeatError(braces.first) : Outcome{};
}

} // namespace

bool isQuantifierAt(const PatternText& text, Offset offset) {
    const int c = text.at(offset);
    Braces braces;
    return c == '*' || c == '+' || c == '?' || findBraces(text, offset, braces);
}

Outcome readQuantifier(const PatternText& text, Offset& at, Quantifier& quantifier) {
    Braces braces;
    if (findBraces(text, at, braces)) {
        if (const Outcome outcome = readBraces(text, braces, quantifier); outcome.failed()) return outcome;
        at = braces.close + 1;
    } else {
        const int symbol = text.at(at++);
        quantifier.minimum = symbol == '+' ? 1 : 0;
        quantifier.maximum = symbol == '?' ? 1 : unboundedRepeat;
    }
    quantifier.lazy = text.at(at) == '?';
    if (quantifier.lazy) ++at;
    return {};
}

namespace {

/// One piece of ignored text at `offset`; `offset` itself when there is none.
Offset skipIgnoredPiece(const PatternText& text, Offset offset, uint32_t options) {
    const int c = text.at(offset);
    if ((options & optionExtended) != 0) {
        if (isExtendedSpace(c)) return offset + 1;
        if (c == '#') return text.find('\n', offset);
    }
    if (text.startsWith("\\E", offset)) return offset + 2;
    if (text.startsWith("\\Q\\E", offset)) return offset + 4;
    if (text.startsWith("(?#", offset)) {
        const Offset close = text.find(')', offset);
        return close < text.length() ? close + 1 : offset;
    }
    return offset;
}

} // namespace

Offset skipIgnoredText(const PatternText& text, Offset offset, uint32_t options) {
    for (;;) {
        const Offset next = skipIgnoredPiece(text, offset, options);
        if (next == offset) return offset;
        offset = next;
    }
}

} // namespace tav::regex::compiler
