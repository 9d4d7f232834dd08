// The part of the language that is the same in PCRE2: patterns of it, and what PCRE2 finds. Left out, because
// syntax or meaning differ:
//   - "." and ".*" first, a literal last: both bound where a match may begin or what it may see (a group is
//     written in front and behind, which takes no part in either);
//   - repeats of what may be empty: an empty iteration ends a repetition here, also below its minimum;
//   - a lazily repeated literal byte: it skips counts that an optional literal behind does not follow;
//   - a back-reference or condition inside its own group: a group is set and empty from its opening on;
//   - {,n} {} and quantified lookarounds; \s (no vertical tab here), \X, \C, \p, POSIX items;
//   - caseless text above ASCII; malformed UTF-8; lookbehind other than one-character items;
//   - numbers of conditions above 9, and the depth budget.
// Captures that outer iterations keep, options inside alternatives, atomic groups, lookarounds, conditions
// and anchors are the same and are compared.
#pragma once

#define PCRE2_CODE_UNIT_WIDTH 8
#include <pcre2.h>

#include "reference/comparison.h"
#include "reference/join.h"

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

namespace tav::reference {

using Strings = std::vector<std::string>;

/// Patterns of the shared language. Every maker says whether its text may match the empty string. The choices
/// are those of a Random, or of whatever answers below(), oneIn() and pick() like one.
template <class Random>
class SharedPatterns {
public:
    SharedPatterns(Random& random, bool unicode) : random_(random), unicode_(unicode) {}

    std::string make() { return join({"()", alternatives(0).text, "()"}); }

private:
    struct Piece {
        std::string text;
        bool mayBeEmpty;
    };

    Piece alternatives(int depth) {
        Piece all = sequence(depth);
        for (uint32_t more = random_.oneIn(3) ? 1 + random_.below(2) : 0; more > 0; --more) {
            const Piece next = sequence(depth);
            all = {join({all.text, "|", next.text}), all.mayBeEmpty || next.mayBeEmpty};
        }
        return all;
    }

    Piece sequence(int depth) {
        Piece all = {"", true};
        for (uint32_t pieces = random_.below(5); pieces > 0; --pieces) {
            const Piece next = piece(depth);
            all = {all.text + next.text, all.mayBeEmpty && next.mayBeEmpty};
        }
        return all;
    }

    Piece piece(int depth) {
        if (random_.oneIn(10))
            return {random_.pick(Strings{"^", "$", "\\b", "\\B", "\\A", "\\z", "\\Z"}), true};
        if (!unicode_ && random_.oneIn(16))
            return {random_.pick(Strings{"(?i)", "(?-i)", "(?s)", "(?m)", "(?-m)"}), true};
        if (random_.oneIn(12)) return lookaround(depth);
        bool literal = false;
        Piece atom = depth < 4 && random_.oneIn(3) ? group(depth + 1) : item(literal);
        if (atom.mayBeEmpty || random_.oneIn(2)) return atom;
        return quantified(atom, literal);
    }

    Piece quantified(const Piece& atom, bool literal) {
        static const struct {
            const char* text;
            bool zero;
        } quantifiers[] = {{"*", true},     {"+", false},     {"?", true},     {"{2}", false},
                           {"{0,2}", true}, {"{1,3}", false}, {"{2,}", false}, {"{0}", true}};
        const auto& chosen = quantifiers[random_.below(8)];
        const bool lazy = !literal && random_.oneIn(3);
        return {join({atom.text, chosen.text, lazy ? "?" : ""}), chosen.zero};
    }

    Piece item(bool& literal) {
        switch (random_.below(8)) {
        case 0:
        case 1:
            return {".", false};
        case 2:
            return {random_.pick(Strings{"\\d", "\\D", "\\w", "\\W"}), false};
        case 3:
            return {random_.pick(Strings{"[ab]", "[^a]", "[a-c]", "[^\\w]", "[\\dx]", "[^b-c\\n]"}), false};
        case 4:
            if (closed_ > 0) return {join({"\\", std::to_string(1 + random_.below(closed_))}), true};
            [[fallthrough]];
        default:
            literal = true;
            return {letter(), false};
        }
    }

    std::string letter() {
        return unicode_ ? random_.pick(Strings{"a", "b", "\\x{e9}", "\\x{20ac}"})
                        : random_.pick(Strings{"a", "b", "c", "B", "\\n", "1"});
    }

    Piece lookaround(int depth) {
        const char* const lookbehind = random_.oneIn(2) ? "(?<=" : "(?<!";
        if (random_.oneIn(3))
            return {join({lookbehind, random_.pick(Strings{"a", "[ab]", ".", "\\w"}), ")"}), true};
        const uint32_t before = closed_;
        const bool negative = random_.oneIn(2);
        const Piece body = alternatives(depth + 1);
        if (negative) closed_ = std::min(closed_, before);
        return {join({negative ? "(?!" : "(?=", body.text, ")"}), true};
    }

    Piece group(int depth) {
        const uint32_t kind = random_.below(8);
        if (kind == 0 && closed_ > 0) return conditional(depth);
        // References go to groups of smaller number that are closed: numbers below the first open group's.
        const bool captures = kind >= 4 && opened_ < 8;
        const uint32_t before = closed_;
        const bool outermost = open_ == 0;
        if (captures) {
            ++opened_;
            ++open_;
        }
        const Piece body = alternatives(depth);
        if (captures) --open_;
        closed_ = open_ == 0 ? opened_ + 1 : outermost ? before : closed_;
        if (captures) return {join({"(", body.text, ")"}), body.mayBeEmpty};
        if (kind == 1) return {join({"(?>", body.text, ")"}), body.mayBeEmpty};
        if (kind == 2 && !unicode_)
            return {join({random_.pick(Strings{"(?i:", "(?s:", "(?-i:", "(?m:"}), body.text, ")"}),
                    body.mayBeEmpty};
        return {join({"(?:", body.text, ")"}), body.mayBeEmpty};
    }

    Piece conditional(int depth) {
        const std::string number = std::to_string(1 + random_.below(closed_));
        const std::string yes = sequence(depth).text;
        if (random_.oneIn(2)) return {join({"(?(", number, ")", yes, ")"}), true};
        return {join({"(?(", number, ")", yes, "|", sequence(depth).text, ")"}), true};
    }

    Random& random_;
    bool unicode_;
    uint32_t opened_ = 0; // capturing groups besides the leading one
    uint32_t open_ = 0;   // of them, those that are open now
    uint32_t closed_ = 1; // groups 1 .. closed_ are closed and may be referred to
};

struct CodeDeleter {
    void operator()(pcre2_code* code) const { pcre2_code_free(code); }
};
struct MatchDataDeleter {
    void operator()(pcre2_match_data* data) const { pcre2_match_data_free(data); }
};

/// The spans by PCRE2: empty when there is no match. False when PCRE2 refuses the pattern or gives up.
inline bool byPeer(const Trial& trial, bool unicode, int32_t groupCount, std::vector<Span>& spans) {
    // The plain meaning is compared: the peer's shortcut for [ab]{1,3}(?>|x)[^b] loses matches.
    uint32_t options = PCRE2_NO_AUTO_POSSESS | (unicode ? PCRE2_UTF : 0);
    for (const char letter : trial.options)
        options |= letter == 'i' ? PCRE2_CASELESS : letter == 'm' ? PCRE2_MULTILINE : PCRE2_DOTALL;
    int error = 0;
    PCRE2_SIZE offset = 0;
    const std::unique_ptr<pcre2_code, CodeDeleter> code(
        pcre2_compile(reinterpret_cast<PCRE2_SPTR>(trial.pattern.data()), trial.pattern.size(), options,
                      &error, &offset, nullptr));
    if (!code) return false;
    const std::unique_ptr<pcre2_match_data, MatchDataDeleter> data(
        pcre2_match_data_create_from_pattern(code.get(), nullptr));
    const int count = pcre2_match(code.get(), reinterpret_cast<PCRE2_SPTR>(trial.subject.data()),
                                  trial.subject.size(), 0, 0, data.get(), nullptr);
    if (count == PCRE2_ERROR_NOMATCH) return true;
    if (count < 0) return false;
    const PCRE2_SIZE* const ends = pcre2_get_ovector_pointer(data.get());
    for (int32_t i = 0; i < groupCount; ++i) {
        const bool set = i < count && ends[2 * i] != PCRE2_UNSET;
        spans.push_back(
            set ? Span{static_cast<int32_t>(ends[2 * i]), static_cast<int32_t>(ends[2 * i + 1] - ends[2 * i])}
                : Span{});
    }
    return true;
}

} // namespace tav::reference
