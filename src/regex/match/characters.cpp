#include "regex/match/characters.h"

#include "unicode/properties.h"

namespace tav::regex {

bool typeMatches(int32_t letter, uint8_t lead, bool dotAll) {
    switch (letter) {
    case '.':
        return dotAll || lead != '\n';
    case 'd':
        return isDigit(lead);
    case 'D':
        return !isDigit(lead);
    case 's':
        return isSpaceByte(lead);
    case 'S':
        return !isSpaceByte(lead);
    case 'w':
        return isWordByte(lead);
    case 'W':
        return !isWordByte(lead);
    default:
        return false;
    }
}

namespace {

bool inList(const Instruction& item, uint32_t codePoint) {
    const auto* ranges = static_cast<const unicode::CodePointRange*>(item.text);
    int32_t low = 0, high = item.c; // the lists are sorted and free of overlaps
    while (low < high) {
        const int32_t middle = low + (high - low) / 2;
        if (codePoint > ranges[middle].last) {
            low = middle + 1;
        } else {
            high = middle;
        }
    }
    return low < item.c && ranges[low].first <= codePoint;
}

bool between(const Instruction& range, uint32_t codePoint) {
    return codePoint >= static_cast<uint32_t>(range.a) && codePoint <= static_cast<uint32_t>(range.b);
}

/// Both cases of a code point: the ASCII rule below 0x80, the Unicode mappings above.
struct Cases {
    uint32_t lower;
    uint32_t upper;
};

Cases casesOf(uint32_t codePoint) {
    if (codePoint < 0x80) {
        if (!isAsciiLetter(codePoint)) return {codePoint, codePoint};
        return {codePoint | 0x20, codePoint & ~0x20u};
    }
    return {unicode::simpleLowercase(codePoint), unicode::simpleUppercase(codePoint)};
}

bool rangeMatches(const Instruction& range, const Utf8Sequence& character, bool caseless) {
    if (between(range, character.value)) return true;
    if (!caseless || character.malformed) return false;
    const Cases cases = casesOf(character.value);
    return between(range, cases.lower) || between(range, cases.upper);
}

bool characterMatches(uint32_t wanted, uint32_t codePoint, bool caseless) {
    if (wanted == codePoint) return true;
    return caseless && unicode::simpleUppercase(wanted) == unicode::simpleUppercase(codePoint);
}

bool byteMemberMatches(const Instruction& item, const Utf8Sequence& character, bool caseless) {
    const auto wanted = static_cast<uint32_t>(item.a);
    if (wanted == character.value) return true;
    return caseless && isAsciiLetter(wanted) && (wanted ^ character.value) == 0x20;
}

bool typeItemMatches(int32_t letter, const Utf8Sequence& character, uint32_t options) {
    const auto lead = static_cast<uint8_t>(character.length == 1 ? character.value : 0xFF);
    return typeMatches(letter, lead, (options & optionDotAll) != 0);
}

bool memberMatches(const Instruction& item, const Utf8Sequence& character, uint32_t options) {
    const bool caseless = (options & optionCaseless) != 0;
    switch (item.op) {
    case OP_CHAR:
        return byteMemberMatches(item, character, caseless);
    case OP_RANGE:
        return rangeMatches(item, character, caseless);
    case OP_TYPE: // "W" counts as "w" in a negated item
        return typeItemMatches(item.c == -1 && item.a == 'W' ? 'w' : item.a, character, options);
    default:
        return !character.malformed && itemMatches(item, character, options);
    }
}

} // namespace

bool itemMatches(const Instruction& item, const Utf8Sequence& character, uint32_t options) {
    switch (item.op) {
    case OP_TYPE:
        return typeItemMatches(item.a, character, options);
    case OP_UCHAR:
        return !character.malformed && characterMatches(static_cast<uint32_t>(item.a), character.value,
                                                        (options & optionCaseless) != 0);
    case OP_UPROP:
        return !character.malformed &&
               unicode::categoryTest(character.value, static_cast<uint32_t>(item.a), item.b != 0);
    case OP_URANGE:
        return (!character.malformed && between(item, character.value)) == (item.c == 0);
    case OP_ULIST:
        return (!character.malformed && inList(item, character.value)) == (item.b == 0);
    default:
        return false;
    }
}

bool classMatches(const Instruction* set, const Utf8Sequence& character, uint32_t options) {
    const bool negated = set->a < 0;
    const Instruction* item = set + 1;
    const Instruction* const behind = item + set->b;
    while (item != behind) {
        if (item->c != -1 || item->op == OP_URANGE || item->op == OP_ULIST) {
            if (memberMatches(*item++, character, options)) return !negated;
            continue;
        }
        // A run of members of a negated POSIX item is one complement: none of them may match.
        bool any = false;
        for (; item != behind && item->c == -1 && item->op != OP_URANGE && item->op != OP_ULIST; ++item)
            any = any || memberMatches(*item, character, options);
        if (!any) return !negated;
    }
    return negated;
}

const uint8_t* previousCharacter(const uint8_t* p, const uint8_t* floor, const uint8_t* limit) {
    const uint8_t* lead = p - 1;
    if ((*lead & 0xC0) != 0x80) return lead;
    for (int back = 0; back < 5 && lead != floor && (*lead & 0xC0) == 0x80; ++back)
        --lead;
    if (*lead < 0xC0) return p - 1;
    return lead + unicode::decodeUtf8(lead, limit).length >= p ? lead : p - 1;
}

const uint8_t* extendedCharacterEnd(const uint8_t* p, const uint8_t* end, const uint8_t* limit) {
    if (p >= end) return nullptr;
    const Utf8Sequence base = unicode::decodeUtf8(p, limit);
    if (base.malformed || !unicode::isListed(base.value) || unicode::isCombiningMark(base.value))
        return nullptr;
    p += base.length;
    while (p < end) {
        const Utf8Sequence mark = unicode::decodeUtf8(p, limit);
        if (mark.malformed || !unicode::isCombiningMark(mark.value)) break;
        p += mark.length;
    }
    return p;
}

} // namespace tav::regex
