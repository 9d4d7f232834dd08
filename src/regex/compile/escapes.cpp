#include "regex/compile/escapes.h"

#include "regex/compile/items.h"

#include <array>

namespace tav::regex::compiler {

namespace {

using EscapeTable = std::array<Escape, 128>;

consteval void set(EscapeTable& table, std::string_view letters, EscapeKind kind) {
    for (const char letter : letters)
        table[static_cast<std::size_t>(letter)].kind = kind;
}

consteval void setCharacter(EscapeTable& table, char letter, uint8_t character) {
    table[static_cast<std::size_t>(letter)] = {EscapeKind::character, character};
}

consteval EscapeTable commonEscapes() {
    EscapeTable table{};
    setCharacter(table, 'a', 7);
    setCharacter(table, 'e', 27);
    setCharacter(table, 'f', 12);
    setCharacter(table, 'n', 10);
    setCharacter(table, 'r', 13);
    setCharacter(table, 't', 9);
    setCharacter(table, 'v', 11);
    set(table, "dDsSwW", EscapeKind::type);
    set(table, "c", EscapeKind::control);
    set(table, "x", EscapeKind::hexadecimal);
    set(table, "pP", EscapeKind::property);
    set(table, "Q", EscapeKind::quote);
    set(table, "E", EscapeKind::ignored);
    return table;
}

consteval EscapeTable outsideEscapes() {
    EscapeTable table = commonEscapes();
    set(table, "bBAZzG", EscapeKind::assertion);
    set(table, "0", EscapeKind::octal);
    set(table, "123456789", EscapeKind::reference);
    set(table, "C", EscapeKind::anyByte);
    set(table, "X", EscapeKind::extended);
    return table;
}

consteval EscapeTable insideEscapes() {
    EscapeTable table = commonEscapes();
    setCharacter(table, 'b', 8);
    set(table, "01234567", EscapeKind::octal);
    return table;
}

constexpr EscapeTable outside = outsideEscapes();
constexpr EscapeTable inside = insideEscapes();

constexpr Escape lookUp(const EscapeTable& table, int letter) {
    constexpr Escape itself = {EscapeKind::literal, 0};
    return letter >= 0 && letter < static_cast<int>(table.size()) ? table[static_cast<std::size_t>(letter)]
                                                                  : itself;
}

constexpr int hexadecimalDigit(int c) {
    return isDigit(c)             ? c - '0'
           : c >= 'a' && c <= 'f' ? c - 'a' + 10
           : c >= 'A' && c <= 'F' ? c - 'A' + 10
                                  : -1;
}

uint32_t readHexadecimalDigits(const PatternText& text, Offset& at, int limit) {
    uint32_t value = 0;
    for (; limit > 0 && hexadecimalDigit(text.at(at)) >= 0; --limit, ++at) {
        value = value << 4 | static_cast<uint32_t>(hexadecimalDigit(text.at(at)));
    }
    return value;
}

/// The major class of "\pX", or categoryUnknown.
constexpr unicode::CategoryValue majorCategory(int letter) {
    switch (letter) {
    case 'L':
        return 0x80;
    case 'M':
        return 0x100;
    case 'Z':
        return 0x200;
    case 'S':
        return 0x400;
    case 'N':
        return 0x800;
    case 'P':
        return 0x1000;
    case 'C':
        return 0x2000;
    default:
        return unicode::categoryUnknown;
    }
}

/// The property called by the name that begins at `name` and ends before the "}" at `close`. Categories come
/// first, then blocks (any prefix of a block's name selects the first such block), then scripts.
bool findProperty(const PatternText& text, Offset name, Offset close, bool negated, Instruction& item) {
    const char* const characters = reinterpret_cast<const char*>(text.pointer(name));
    const auto length = static_cast<std::size_t>(close - name);
    if (std::string_view(characters, length) == "Any") {
        item = anyCodePointItem(negated);
        return true;
    }
    if (const auto category = unicode::findCategory(characters); category != unicode::categoryUnknown) {
        item = categoryItem(category, negated);
        return true;
    }
    unicode::RangeList list = unicode::findBlock(characters, length);
    if (list.count == 0) list = unicode::findScript(characters);
    item = rangeListItem(list, negated);
    return list.count != 0;
}

} // namespace

Escape escapeOutsideClass(int letter) {
    return lookUp(outside, letter);
}

Escape escapeInsideClass(int letter) {
    return lookUp(inside, letter);
}

uint8_t readOctal(const PatternText& text, Offset& at) {
    int value = 0;
    for (int digits = 0; digits < 3 && isOctalDigit(text.at(at)); ++digits)
        value = value * 8 + (text.at(at++) - '0');
    return static_cast<uint8_t>(value);
}

uint8_t readControl(const PatternText& text, Offset& at) {
    const int c = text.at(at);
    if (c == endOfText) return 'c';
    ++at;
    if (c >= 0x20 && c <= 0x3F) return static_cast<uint8_t>(c + 0x40);
    const bool lowerCase = c >= '`' && c <= 'z';
    return static_cast<uint8_t>(c - (lowerCase ? 0x60 : 0x40));
}

Outcome readHexadecimal(const PatternText& text, Offset& at, HexadecimalValue& result) {
    result.codePoint = text.at(at) == '{';
    if (!result.codePoint) {
        result.value = readHexadecimalDigits(text, at, 2);
        return {};
    }
    const Offset firstDigit = ++at;
    result.value = readHexadecimalDigits(text, at, 8);
    return text.at(at++) == '}' ? Outcome{} : escapeError(firstDigit);
}

Outcome readProperty(const PatternText& text, Offset& at, bool negated, Instruction& item) {
    if (text.at(at) != '{') {
        const auto category = majorCategory(text.at(at));
        if (category == unicode::categoryUnknown) return escapeError(at);
        item = categoryItem(category, negated);
        ++at;
        return {};
    }
    Offset name = at + 1;
    if (text.at(name) == '^') {
        if (negated) return escapeError(name);
        negated = true;
        ++name;
    }
    at = text.find('}', name);
    if (at == text.length() || !findProperty(text, name, at, negated, item)) return escapeError(at);
    ++at;
    return {};
}

} // namespace tav::regex::compiler
