// The main pass over a pattern: reads its text construct by construct and has the emitter build the program.
#pragma once

#include "regex/compile/class_items.h"
#include "regex/compile/emitter.h"
#include "regex/compile/escapes.h"
#include "regex/compile/outcome.h"
#include "regex/compile/pattern_text.h"

namespace tav::regex::compiler {

class Parser {
public:
    /// `groupCount` is the pre-scan's: back-references below it are valid, also to groups that open later.
    Parser(const PatternText& text, Emitter& emitter, int32_t groupCount)
        : text_(text), emitter_(emitter), groupCount_(groupCount) {}

    Outcome parse();

private:
    bool startsWithAnythingRepeated() const;
    Outcome parseConstruct();

    bool isPlain(Offset offset) const;
    Outcome parseLiteralRun();
    Outcome parseClass();
    Outcome parseQuantifier();
    Outcome parseAlternation();

    Outcome parseGroup();
    Outcome parseLookbehind(Offset open);
    Outcome parseConditional(Offset open);
    Outcome parseNumericCondition();
    Outcome parseOptionLetters(Offset open);
    Outcome openGroup(Opcode op, Offset open, Offset body);
    Outcome closeGroup();

    Outcome parseEscape();
    Outcome parseReference();
    Outcome parseHexadecimal();
    Outcome parseProperty(bool negated);
    Outcome parseQuote();

    /// An item is complete: a quantifier may follow.
    Outcome completed() {
        repeatable_ = true;
        return {};
    }

    const PatternText& text_;
    Emitter& emitter_;
    int32_t groupCount_;
    Offset at_ = 0;
    /// False at the start and after an opener, "|", an option setting or a quantifier.
    bool repeatable_ = false;
    ClassItems classItems_;
};

} // namespace tav::regex::compiler
