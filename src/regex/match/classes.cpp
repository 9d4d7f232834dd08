#include "regex/match/classes.h"

#include "regex/match/characters.h"

#include <algorithm>
#include <cstring>

namespace tav::regex {

namespace {

uint8_t bitOf(int32_t number) {
    return static_cast<uint8_t>(1u << (number % 8));
}

/// Can the member of a class never match a well-formed character beyond ASCII?
bool isNarrow(const Instruction& member, uint32_t options) {
    if (member.c != 0) return false;
    switch (member.op) {
    case OP_CHAR:
        return member.a < 0x80;
    case OP_RANGE:
        return member.b < 0x80 && !(options & optionCaseless); // U+212A is a "k" without case
    case OP_TYPE:
        return !typeMatches(member.a, 0xFF, false);
    default:
        return false;
    }
}

/// How an item treats well-formed characters beyond ASCII: takes none (0), all, or must test each.
Trait wideTrait(const Instruction& item, uint32_t options) {
    constexpr auto none = Trait{};
    if (item.op == OP_TYPE) return typeMatches(item.a, 0xFF, false) ? traitMultiAll : none;
    if (item.op != OP_SET) return traitMultiTest;
    for (int32_t i = 1; i <= item.b; ++i)
        if (!isNarrow((&item)[i], options)) return traitMultiTest;
    return item.a < 0 ? traitMultiAll : none;
}

bool accepts(const Instruction& item, uint8_t byte, uint32_t options) {
    const Utf8Sequence character = {byte, 1, byte >= 0x80};
    return item.op == OP_SET ? classMatches(&item, character, options)
                             : itemMatches(item, character, options);
}

void addRange(int32_t low, int32_t high, ByteSet& members) {
    if (low <= high && low >= 0 && low <= 0xFF)
        members.add(ByteSet::between(static_cast<uint8_t>(low), static_cast<uint8_t>(std::min(high, 0xFF))));
}

void addType(int32_t letter, bool dotAll, ByteSet& members) {
    const ByteSet digits = ByteSet::between('0', '9');
    ByteSet spaces = ByteSet::between(9, 10), words = digits;
    addRange(12, 13, spaces);
    spaces.add(' ');
    addRange('A', 'Z', words);
    addRange('a', 'z', words);
    words.add('_');
    switch (letter) {
    case '.':
        return members.add(dotAll ? ByteSet::between(0, 0xFF) : ByteSet::between('\n', '\n').complement());
    case 'd':
        return members.add(digits);
    case 'D':
        return members.add(digits.complement());
    case 's':
        return members.add(spaces);
    case 'S':
        return members.add(spaces.complement());
    case 'w':
        return members.add(words);
    case 'W':
        return members.add(words.complement());
    default:
        return;
    }
}

/// Adds the bytes of one of the simple items; false for others.
bool addSimple(const Instruction& item, uint32_t options, ByteSet& members) {
    if (item.c != 0) return false;
    switch (item.op) {
    case OP_TYPE:
        addType(item.a, (options & optionDotAll) != 0, members);
        return true;
    case OP_CHAR:
        addRange(item.a, item.a, members);
        if ((options & optionCaseless) && isAsciiLetter(static_cast<uint32_t>(item.a)))
            addRange(item.a ^ 0x20, item.a ^ 0x20, members);
        return true;
    case OP_RANGE:
        addRange(item.a, item.b, members);
        return item.a >= 0 && !(options & optionCaseless);
    default:
        return false;
    }
}

bool addSimpleMembers(const Instruction& set, uint32_t options, ByteSet& members) {
    for (int32_t i = 1; i <= set.b; ++i)
        if (!addSimple((&set)[i], options, members)) return false;
    return true;
}

/// The bytes that an item accepts as characters of their own: added up where its parts are simple, else asked
/// one by one.
ByteSet membersOf(const Instruction& item, uint32_t options) {
    ByteSet members;
    if (item.op == OP_TYPE) {
        addType(item.a, (options & optionDotAll) != 0, members);
        return members;
    }
    if (item.op == OP_SET && addSimpleMembers(item, options, members))
        return item.a < 0 ? members.complement() : members;
    members = ByteSet();
    for (uint32_t byte = 0; byte < 0x100; ++byte)
        if (accepts(item, static_cast<uint8_t>(byte), options)) members.add(static_cast<uint8_t>(byte));
    return members;
}

} // namespace

void ClassBuilder::classify(int32_t pc, uint32_t options, Node& node) {
    const int32_t number = classOf(pc, options);
    if (number < 0) return;
    const Trait wide = wideTrait(program_.code[pc], options);
    node.item = Item::charClass;
    node.index = static_cast<uint16_t>(number);
    node.mask = bitOf(number);
    node.traits = static_cast<uint16_t>(node.traits | wide);
    const bool single = wide == Trait{} && !members_[number].meets(ByteSet::between(0x80, 0xFF));
    if (single) node.traits = static_cast<uint16_t>(node.traits | traitSingle);
    if (node.kind == Kind::item) node.kind = Kind::charClass;
    if (node.kind == Kind::greedy && single) node.kind = Kind::classRun;
}

/// The class of the item at `pc`: an earlier one with the same instructions and options, or a new one.
int32_t ClassBuilder::classOf(int32_t pc, uint32_t options) {
    const auto size = static_cast<std::size_t>(behind(program_, pc) - pc) * sizeof(Instruction);
    for (int32_t number = 0; number < count_; ++number) {
        const Source& source = sources_[number];
        if (source.options == options && source.size == size &&
            std::memcmp(&program_.code[source.pc], &program_.code[pc], size) == 0)
            return number;
    }
    if (count_ == capacity_) return -1;
    const int32_t number = count_++;
    sources_[number] = {pc, options, size};
    fill(number, program_.code[pc], options);
    return number;
}

void ClassBuilder::fill(int32_t number, const Instruction& item, uint32_t options) {
    ClassTable& table = ascii_[number / 8];
    ByteSet& members = members_[number];
    members = membersOf(item, options);
    if (number % 8 == 0) std::memset(table, 0, sizeof table);
    ByteSet ascii = members;
    ascii.keep(ByteSet::between(0, 0x7F));
    ascii.writeTo(table, bitOf(number));
}

} // namespace tav::regex
