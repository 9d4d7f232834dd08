// The parser never touches an instruction. Each construct has one function, which leaves `at_` behind the
// text it read. Comments and other ignored text are passed over between constructs and change nothing else.
#include "regex/compile/parser.h"

#include "regex/compile/class_parser.h"
#include "regex/compile/items.h"
#include "regex/compile/option_letters.h"

#include <array>

namespace tav::regex::compiler {

namespace {

constexpr auto metacharacters = [] {
    std::array<bool, 256> table{};
    for (const char c : std::string_view(".^$|()[*+?\\"))
        table[static_cast<uint8_t>(c)] = true;
    return table;
}();

} // namespace

Outcome Parser::parse() {
    if (startsWithAnythingRepeated()) emitter_.assertion(anchorLineStart);
    while (at_ < text_.length()) {
        if (const Outcome outcome = parseConstruct(); outcome.failed()) return outcome;
    }
    return emitter_.depth() > 0 ? syntaxError(text_.length()) : Outcome{};
}

/// A pattern that begins by taking a whole line can only begin a match at a line's start.
bool Parser::startsWithAnythingRepeated() const {
    if (text_.startsWith("(?:.*)", 0) || text_.startsWith("(?:.+)", 0)) return true;
    return (text_.startsWith(".*", 0) || text_.startsWith(".+", 0)) && text_.at(2) != '?';
}

Outcome Parser::parseConstruct() {
    if (const Offset next = skipIgnoredText(text_, at_, emitter_.options()); next != at_) {
        at_ = next;
        return {};
    }
    if (isPlain(at_)) return parseLiteralRun();
    const int c = text_.at(at_);
    switch (c) {
    case '.':
        emitter_.type(c);
        ++at_;
        return completed();
    case '^':
    case '$':
        emitter_.assertion(c);
        ++at_;
        return completed();
    case '|':
        return parseAlternation();
    case '(':
        return parseGroup();
    case ')':
        return closeGroup();
    case '[':
        return parseClass();
    case '\\':
        return parseEscape();
    default:
        return parseQuantifier();
    }
}

// Literals, classes, quantifiers

bool Parser::isPlain(Offset offset) const {
    const int c = text_.at(offset);
    if (c == endOfText || metacharacters[static_cast<std::size_t>(c)]) return false;
    if (c == '{') return !isQuantifierAt(text_, offset);
    const bool extended = (emitter_.options() & optionExtended) != 0;
    return !(extended && (isExtendedSpace(c) || c == '#'));
}

Outcome Parser::parseLiteralRun() {
    const Offset start = at_;
    while (isPlain(at_))
        ++at_;
    emitter_.literalRun(text_.pointer(at_), static_cast<int32_t>(at_ - start));
    return completed();
}

Outcome Parser::parseClass() {
    ClassParser classParser(text_, emitter_, classItems_, at_);
    if (const Outcome outcome = classParser.parse(); outcome.failed()) return outcome;
    at_ = classParser.end();
    return completed();
}

Outcome Parser::parseQuantifier() {
    const Offset start = at_;
    Quantifier quantifier;
    if (const Outcome outcome = readQuantifier(text_, at_, quantifier); outcome.failed()) return outcome;
    if (!repeatable_) return repeatError(start);
    emitter_.quantifier(quantifier);
    repeatable_ = false;
    return {};
}

Outcome Parser::parseAlternation() {
    emitter_.alternation();
    ++at_;
    repeatable_ = false;
    return {};
}

// Groups

Outcome Parser::parseGroup() {
    const Offset open = at_;
    if (text_.at(open + 1) != '?') return openGroup(OP_CAPTURE, open, open + 1);
    switch (text_.at(open + 2)) {
    case ':':
        return openGroup(OP_GROUP, open, open + 3);
    case '=':
        return openGroup(OP_LOOKAHEAD, open, open + 3);
    case '!':
        return openGroup(OP_NLOOKAHEAD, open, open + 3);
    case '>':
        return openGroup(OP_ATOMIC, open, open + 3);
    case '<':
        return parseLookbehind(open);
    case '(':
        return parseConditional(open);
    case '#':
        return syntaxError(text_.length()); // a closed comment has been passed over before
    default:
        return parseOptionLetters(open);
    }
}

Outcome Parser::openGroup(Opcode op, Offset open, Offset body) {
    if (!emitter_.open(op)) return syntaxError(open);
    at_ = body;
    repeatable_ = false;
    return {};
}

Outcome Parser::parseLookbehind(Offset open) {
    const int form = text_.at(open + 3);
    if (form != '=' && form != '!') return syntaxError(open + 3);
    return openGroup(form == '=' ? OP_LOOKBEHIND : OP_NLOOKBEHIND, open, open + 4);
}

/// The condition is a group number, or the lookaround that directly follows and is parsed as any other.
Outcome Parser::parseConditional(Offset open) {
    const Offset condition = open + 3;
    if (const Outcome outcome = openGroup(OP_COND, open, condition); outcome.failed()) return outcome;
    if (text_.at(condition) != '?') return parseNumericCondition();
    --at_;
    const bool lookaround = text_.startsWith("?=", condition) || text_.startsWith("?!", condition) ||
                            text_.startsWith("?<", condition);
    if (!lookaround) emitter_.refuseCondition();
    return {};
}

/// Deliberate: the digits add up as 11 * n + digit, and patterns rely on "(?(12)" asking for group 13.
Outcome Parser::parseNumericCondition() {
    const Offset first = at_;
    int32_t group = 0;
    for (; at_ - first < 3 && isDigit(text_.at(at_)); ++at_)
        group = 11 * group + (text_.at(at_) - '0');
    if (text_.at(at_) != ')') return syntaxError(at_);
    if (group == 0) return referenceError(at_);
    ++at_;
    emitter_.condition(group);
    return completed();
}

/// "(?imsx-)", which sets options up to the end of the enclosing group, or "(?imsx-:", which opens one.
Outcome Parser::parseOptionLetters(Offset open) {
    InlineOptions inlineOptions(emitter_.options());
    const Offset letters = open + 2;
    Offset end = letters;
    for (; text_.at(end) != ')' && text_.at(end) != ':'; ++end) {
        if (!inlineOptions.apply(text_.at(end))) return syntaxError(end);
    }
    if (text_.at(end) == ':') {
        if (!emitter_.open(OP_GROUP_OPTS, inlineOptions.bits())) return syntaxError(open);
    } else if (end == letters || text_.startsWith("x)", letters) || text_.startsWith("-x)", letters)) {
        emitter_.setOptions(inlineOptions.bits());
    } else {
        emitter_.optionSetting(inlineOptions.bits());
    }
    at_ = end + 1;
    repeatable_ = false;
    return {};
}

Outcome Parser::closeGroup() {
    if (emitter_.depth() == 0) return syntaxError(at_);
    const Offset next = skipIgnoredText(text_, at_ + 1, emitter_.outerOptions());
    if (!emitter_.close(isQuantifierAt(text_, next))) return syntaxError(at_);
    ++at_;
    return completed();
}

// Escapes

Outcome Parser::parseEscape() {
    const int letter = text_.at(at_ + 1);
    if (letter == endOfText) {
        emitter_.escapedCharacter('\\');
        ++at_;
        return completed();
    }
    const Escape escape = escapeOutsideClass(letter);
    at_ += 2;
    switch (escape.kind) {
    case EscapeKind::character:
        emitter_.escapedCharacter(escape.character);
        break;
    case EscapeKind::type:
        emitter_.type(letter);
        break;
    case EscapeKind::assertion:
        emitter_.assertion(letter);
        break;
    case EscapeKind::octal:
        --at_;
        emitter_.escapedCharacter(readOctal(text_, at_));
        break;
    case EscapeKind::reference:
        --at_;
        return parseReference();
    case EscapeKind::control:
        emitter_.escapedCharacter(readControl(text_, at_));
        break;
    case EscapeKind::hexadecimal:
        return parseHexadecimal();
    case EscapeKind::property:
        return parseProperty(letter == 'P');
    case EscapeKind::anyByte:
        emitter_.item({OP_ANYBYTE, 0, 0, 0, nullptr});
        break;
    case EscapeKind::extended:
        emitter_.item({OP_EXTSEQ, 0, 0, 0, nullptr});
        break;
    case EscapeKind::quote:
        return parseQuote();
    default:
        emitter_.escapedCharacter(static_cast<uint8_t>(letter));
        break;
    }
    return completed();
}

/// One to three digits: a group that exists, or else an octal character when there is more than one digit.
Outcome Parser::parseReference() {
    const Offset first = at_;
    int32_t group = 0;
    Offset end = first;
    for (; end - first < 3 && isDigit(text_.at(end)); ++end)
        group = group * 10 + (text_.at(end) - '0');
    if (group < groupCount_) {
        at_ = end;
        emitter_.backReference(group);
        return completed();
    }
    if (end - first == 1) return referenceError(first);
    emitter_.escapedCharacter(readOctal(text_, at_));
    return completed();
}

Outcome Parser::parseHexadecimal() {
    HexadecimalValue hexadecimal;
    if (const Outcome outcome = readHexadecimal(text_, at_, hexadecimal); outcome.failed()) return outcome;
    if (hexadecimal.codePoint) {
        emitter_.item(hexadecimalItem(hexadecimal));
    } else {
        emitter_.escapedCharacter(static_cast<uint8_t>(hexadecimal.value));
    }
    return completed();
}

Outcome Parser::parseProperty(bool negated) {
    Instruction item;
    if (const Outcome outcome = readProperty(text_, at_, negated, item); outcome.failed()) return outcome;
    emitter_.item(item);
    return completed();
}

Outcome Parser::parseQuote() {
    const Offset end = text_.findPair('\\', 'E', at_);
    if (end > at_) {
        emitter_.literalRun(text_.pointer(end), static_cast<int32_t>(end - at_));
        repeatable_ = true;
    }
    at_ = end;
    return {};
}

} // namespace tav::regex::compiler
