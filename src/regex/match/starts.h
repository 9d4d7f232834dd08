// Where matches may begin: the start positions of a search, in order, without those that the plan rules out.
#pragma once

#include "regex/match/machine.h"

namespace tav::regex {

class Starts {
public:
    /// `wholeCharacters`: positions advance by UTF-8 characters, otherwise by bytes.
    Starts(const Plan& plan, const Subject& subject, bool wholeCharacters)
        : plan_(plan), subject_(subject), wholeCharacters_(wholeCharacters) {}

    /// The first position from `p` on, itself included, that may begin a match ending by `end`; null when
    /// none.
    const uint8_t* from(const uint8_t* p, const uint8_t* end) const;

    /// The position to go on with when the attempt at `p` has failed and those before `known` would fail too;
    /// null when there is none.
    const uint8_t* after(const uint8_t* p, const uint8_t* known, const uint8_t* end) const;

private:
    bool rulesOut(const uint8_t* p, const uint8_t* end) const;
    const uint8_t* advance(const uint8_t* p) const;
    const uint8_t* nextLine(const uint8_t* p, const uint8_t* end) const;
    const uint8_t* nextPrefix(const uint8_t* p, const uint8_t* end) const;
    const uint8_t* scanForPrefix(const uint8_t* p, const uint8_t* floor, const uint8_t* end) const;
    const uint8_t* nextLiteral(const uint8_t* p, const uint8_t* end) const;
    const uint8_t* nextLineStart(const uint8_t* p, const uint8_t* end) const;
    bool isStart(const uint8_t* q, const uint8_t* floor) const;

    const Plan& plan_;
    const Subject& subject_;
    bool wholeCharacters_;
};

} // namespace tav::regex
