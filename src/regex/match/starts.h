// Where matches may begin: the start positions of a search, in order, without those that the plan rules out.
#pragma once

#include "regex/match/inner_literal.h"
#include "regex/match/machine.h"
#include "regex/match/position_blocks.h"

namespace tav::regex {

class Starts {
public:
    /// `wholeCharacters`: positions advance by UTF-8 characters, otherwise by bytes.
    Starts(const Plan& plan, const Subject& subject, bool wholeCharacters)
        : plan_(plan), subject_(subject), wholeCharacters_(wholeCharacters), innerLiteral_(plan) {}

    /// The first position from `p` on, itself included, that may begin a match ending by `end`; null when
    /// none.
    const uint8_t* from(const uint8_t* p, const uint8_t* end);

    /// The position to go on with when the attempt at `p` has failed and those before `known` would fail too;
    /// null when there is none.
    const uint8_t* after(const uint8_t* p, const uint8_t* known, const uint8_t* end);

private:
    bool rulesOut(const uint8_t* p, const uint8_t* end) const;
    const uint8_t* advance(const uint8_t* p) const;
    const uint8_t* nextLine(const uint8_t* p, const uint8_t* end) const;
    const uint8_t* nextPrefix(const uint8_t* p, const uint8_t* end);
    const uint8_t* nextClassRun(const uint8_t* p, const uint8_t* end);
    PositionBlock prefixBlock(const uint8_t* p, const uint8_t* last) const;
    template <class Fill, class Accept>
    const uint8_t* next(const uint8_t* p, const uint8_t* last, Fill fill, Accept accept);
    bool mayBegin(const uint8_t* q) const;
    const uint8_t* nextLineStart(const uint8_t* p, const uint8_t* end) const;
    bool isStart(const uint8_t* q, const uint8_t* floor) const;

    const Plan& plan_;
    const Subject& subject_;
    bool wholeCharacters_;
    InnerLiteralStarts innerLiteral_;
    PositionBlock block_;                // candidates found but not yet handed out
    const uint8_t* handedOut_ = nullptr; // candidates of the block before it are gone
    const uint8_t* blockLast_ = nullptr; // the last position when the block was made
};

} // namespace tav::regex
