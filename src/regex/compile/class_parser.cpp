#include "regex/compile/class_parser.h"

#include "regex/compile/escapes.h"
#include "regex/compile/items.h"
#include "unicode/utf8.h"

namespace tav::regex::compiler {

Outcome ClassParser::parse() {
    openBracket();
    while (at_ < text_.length()) {
        if (text_.at(at_) == ']') return close();
        if (const Outcome outcome = parseMember(); outcome.failed()) return outcome;
    }
    return classError(text_.length());
}

/// Passes "[" or "[^" and the "]" that directly follows it as a member.
void ClassParser::openBracket() {
    const bool negated = text_.at(++at_) == '^';
    if (negated) ++at_;
    emitter_.openClass(negated);
    if (text_.at(at_) == ']') (void)parsePlain();
}

Outcome ClassParser::parseMember() {
    if (text_.at(at_) == '\\') return parseEscape();
    if (ClassItems::opensAt(text_, at_)) return parseItem();
    if (text_.at(at_) == '-' && before_ == Before::character) {
        ++at_;
        before_ = Before::openRange;
        return {};
    }
    return parsePlain();
}

/// "[:name:]" or "[:^name:]". Other items are refused when they are closed anywhere further right; otherwise
/// their two opening bytes are ordinary members.
Outcome ClassParser::parseItem() {
    const int delimiter = text_.at(at_ + 1);
    if (delimiter == ':') {
        const bool negated = text_.at(at_ + 2) == '^';
        const Offset name = at_ + (negated ? 3 : 2);
        if (const PosixClass* posixClass = findPosixClass(text_, name); posixClass != nullptr) {
            addPosix(*posixClass, negated);
            at_ = name + static_cast<Offset>(posixClass->name.size()) + 2;
            return {};
        }
    }
    const Offset last = text_.length() - 1;
    const bool closed = items_.findClose(text_, delimiter, at_ + 2) < text_.length() ||
                        (last >= at_ + 2 && text_.at(last) == delimiter);
    if (closed) return classError(at_);
    return parsePlain();
}

Outcome ClassParser::parseEscape() {
    const Offset start = at_;
    const int letter = text_.at(at_ + 1);
    if (letter == endOfText) return classError(text_.length());
    const Escape escape = escapeInsideClass(letter);
    at_ += 2;
    switch (escape.kind) {
    case EscapeKind::character:
        return addCharacter(characterItem(escape.character), start);
    case EscapeKind::type:
        addOther(typeItem(letter));
        return {};
    case EscapeKind::octal:
        --at_;
        return addCharacter(characterItem(readOctal(text_, at_)), start);
    case EscapeKind::control:
        return addCharacter(characterItem(readControl(text_, at_)), start);
    case EscapeKind::hexadecimal: {
        HexadecimalValue hexadecimal;
        if (const Outcome outcome = readHexadecimal(text_, at_, hexadecimal); outcome.failed())
            return outcome;
        return addCharacter(hexadecimalItem(hexadecimal), start);
    }
    case EscapeKind::property: {
        Instruction item;
        const Outcome outcome = readProperty(text_, at_, letter == 'P', item);
        if (!outcome.failed()) addOther(item);
        return outcome;
    }
    case EscapeKind::quote:
        return parseQuote();
    case EscapeKind::ignored:
        return {};
    default:
        return addCharacter(characterItem(static_cast<uint8_t>(letter)), start);
    }
}

Outcome ClassParser::parseQuote() {
    const Offset end = text_.findPair('\\', 'E', at_);
    if (end == text_.length()) return classError(end);
    while (at_ < end) {
        if (const Outcome outcome = parsePlain(); outcome.failed()) return outcome;
    }
    at_ = end + 2;
    return {};
}

/// A byte or a UTF-8 sequence as it stands. A malformed sequence counts as its first byte alone.
Outcome ClassParser::parsePlain() {
    const Offset start = at_;
    const unicode::Utf8Sequence sequence = unicode::decodeUtf8(text_.pointer(at_), text_.end());
    at_ += sequence.length;
    const bool byte = sequence.value <= 0xFF;
    return addCharacter(
        byte ? characterItem(static_cast<uint8_t>(sequence.value)) : codePointItem(sequence.value), start);
}

Outcome ClassParser::close() {
    keepOpenDash();
    if (!emitter_.closeClass()) return syntaxError(at_);
    ++at_;
    return {};
}

/// Adds a single character, which may be the low end of a range, or completes an open range with it.
Outcome ClassParser::addCharacter(const Instruction& item, Offset offset) {
    const auto value = static_cast<uint32_t>(item.a);
    if (before_ != Before::openRange) {
        emitter_.member(item);
        before_ = Before::character;
        low_ = value;
        return {};
    }
    if (value < low_) return classError(offset);
    emitter_.extendToRange(value);
    before_ = Before::nothingToExtend;
    return {};
}

void ClassParser::addOther(const Instruction& item) {
    keepOpenDash();
    emitter_.member(item);
    before_ = Before::nothingToExtend;
}

void ClassParser::addPosix(const PosixClass& posixClass, bool negated) {
    const auto add = [&](Instruction item) {
        item.c = negation(negated);
        addOther(item);
    };
    if (isWordClass(posixClass)) add(typeItem(negated ? 'W' : 'w'));
    for (int32_t i = 0; i < posixClass.count; ++i) {
        const auto [low, high] = posixClass.members[i];
        add(low == high ? characterItem(low) : rangeItem(low, high));
    }
}

/// A "-" that found no upper end is a member like any other.
void ClassParser::keepOpenDash() {
    if (before_ == Before::openRange) emitter_.member(characterItem('-'));
}

} // namespace tav::regex::compiler
