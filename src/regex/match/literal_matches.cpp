#include "regex/match/literal_matches.h"

#include "regex/match/characters.h"
#include "regex/match/plan.h"
#include "regex/match/position_blocks.h"
#include "strings/find.h"
#include "strings/substring.h"

#include <bit>
#include <cstring>

namespace tav::regex {

bool isLiteralAlone(const tavRegExpContext& context, const RequiredLiteral& literal) {
    constexpr int32_t levelsOfLiteral = 2;
    const bool caseless = (context.options & optionCaseless) != 0;
    const bool beginsCharacter = (*literal.text & 0xC0) != 0x80;
    return context.codeLength == 1 && context.groupCount == 1 && context.matchLimit >= levelsOfLiteral &&
           caseless == literal.caseless && beginsCharacter && mayUse(context, shortcutLiteralMatches);
}

namespace {

template <class Word>
Word wordAt(const uint8_t* p) {
    Word word;
    std::memcpy(&word, p, sizeof word);
    return word;
}

/// Equality by words that overlap at the end; `length` is at least the size of one.
template <class Word>
bool sameWords(const uint8_t* a, const uint8_t* b, int32_t length) {
    constexpr int32_t size = sizeof(Word);
    for (int32_t at = 0; at + size < length; at += size)
        if (wordAt<Word>(a + at) != wordAt<Word>(b + at)) return false;
    return wordAt<Word>(a + length - size) == wordAt<Word>(b + length - size);
}

bool sameText(const uint8_t* a, const uint8_t* b, int32_t length) {
    if (length >= 8) return sameWords<uint64_t>(a, b, length);
    if (length >= 4) return sameWords<uint32_t>(a, b, length);
    return sameWords<uint8_t>(a, b, length);
}

bool sameCaseless(const uint8_t* a, const uint8_t* b, int32_t length) {
    for (int32_t i = 0; i < length; ++i)
        if (!sameByte(a[i], b[i], true)) return false;
    return true;
}

/// Which of sixteen bytes are one value, up to the case of a letter where that does not count?
class Anchor {
    using Bytes = Vector<uint8_t>;

public:
    Anchor(const RequiredLiteral& literal, int32_t offset) : offset_(offset) {
        const uint8_t byte = literal.text[offset];
        if (literal.caseless && isAsciiLetter(byte)) caseBit_ = 0x20;
        value_ = byte | caseBit_;
        caseBits_ = Bytes::splat(caseBit_);
        values_ = Bytes::splat(value_);
    }

    int32_t commonness() const {
        const int32_t other = caseBit_ != 0 ? substring::commonness[value_ ^ 0x20] : 0;
        return substring::commonness[value_] + other;
    }

    bool isAt(const uint8_t* start) const { return (start[offset_] | caseBit_) == value_; }

    Bytes operator()(const uint8_t* start) const {
        return (Bytes::load(start + offset_) | caseBits_).equal(values_);
    }

private:
    std::ptrdiff_t offset_;
    uint8_t caseBit_ = 0;
    uint8_t value_;
    Bytes caseBits_;
    Bytes values_;
};

/// Two offsets to look at: in long texts those of the rarest bytes.
substring::Anchors anchorsOf(const RequiredLiteral& literal, std::ptrdiff_t length) {
    constexpr std::ptrdiff_t choicePays = 128;
    if (length < choicePays) return substring::endsAndMiddle(literal.length);
    return substring::rarestAnchors(literal.text, literal.length);
}

/// Lists occurrences, and keeps account of what the comparisons in vain have cost.
class LiteralMatches {
public:
    LiteralMatches(const RequiredLiteral& literal, Results& results) : literal_(literal), results_(results) {}

    /// Takes the candidates of a block; the end of the last occurrence or the block.
    const uint8_t* take(const PositionBlock& block, const uint8_t* from) {
        for (uint64_t bits = block.bits; bits != 0 && !results_.isFull(); bits &= bits - 1) {
            const uint8_t* const q = block.begin + std::countr_zero(bits);
            if (q < from) continue; // inside the occurrence before
            if (!standsAt(q)) {
                wasted_ += literal_.length;
                continue;
            }
            results_.add(q, literal_.length);
            from = q + literal_.length;
        }
        return from > block.end ? from : block.end;
    }

    /// Have comparisons in vain cost far more than reading the text?
    bool isTooCostly(std::ptrdiff_t walked) const { return wasted_ > 1024 + 4 * walked; }

    /// The rest by the search that stays linear on any text.
    void takeRest(const uint8_t* p, const uint8_t* limit) {
        while (!results_.isFull()) {
            const int32_t at = firstOccurrence(literal_, p, static_cast<int32_t>(limit - p));
            if (at < 0) return;
            results_.add(p + at, literal_.length);
            p += at + literal_.length;
        }
    }

private:
    bool standsAt(const uint8_t* p) const {
        return literal_.caseless ? sameCaseless(p, literal_.text, literal_.length)
                                 : sameText(p, literal_.text, literal_.length);
    }

    const RequiredLiteral& literal_;
    Results& results_;
    std::ptrdiff_t wasted_ = 0; // bytes
};

} // namespace

void storeLiterals(const RequiredLiteral& literal, const uint8_t* subject, int32_t length, Results& results) {
    constexpr int32_t severalBlocks = 48; // below them the plain search costs less
    constexpr int32_t rareEnough = 118;   // up to here the second anchor costs more than it saves
    if (length < literal.length) return;
    const uint8_t* const limit = subject + length;
    LiteralMatches matches(literal, results);
    if (!literal.caseless && length < severalBlocks) return matches.takeRest(subject, limit);
    const uint8_t* const last = limit - literal.length;
    const substring::Anchors anchors = anchorsOf(literal, length);
    const Anchor first(literal, anchors.first), second(literal, anchors.second);
    const auto rough = [&](const uint8_t* q) { return first(q); };
    const auto both = [&](const uint8_t* q) { return first(q) & second(q); };
    const auto one = [&](const uint8_t* q) { return first.isAt(q); };
    const bool isRare = first.commonness() <= rareEnough;
    for (const uint8_t* p = subject; p <= last && !results.isFull();) {
        const PositionBlock block =
            isRare ? nextBlock(p, last, subject, rough, one) : nextBlock(p, last, subject, both, one);
        p = matches.take(block, p);
        if (!literal.caseless && matches.isTooCostly(p - subject)) return matches.takeRest(p, limit);
    }
}

} // namespace tav::regex
