// Reads one character class, from its "[" to its "]", and has the emitter build it.
#pragma once

#include "regex/compile/class_items.h"
#include "regex/compile/emitter.h"
#include "regex/compile/outcome.h"
#include "regex/compile/posix_classes.h"

namespace tav::regex::compiler {

class ClassParser {
public:
    /// `items` remembers its searches from one class of the pattern to the next.
    ClassParser(const PatternText& text, Emitter& emitter, ClassItems& items, Offset open)
        : text_(text), emitter_(emitter), items_(items), at_(open) {}

    /// Reads the class; end() is then the offset behind its "]".
    Outcome parse();
    Offset end() const { return at_; }

private:
    /// What a "-" makes of the member before it.
    enum class Before : uint8_t { nothingToExtend, character, openRange };

    void openBracket();
    Outcome parseMember();
    Outcome parseItem();
    Outcome parseEscape();
    Outcome parseQuote();
    Outcome parsePlain();
    Outcome close();

    Outcome addCharacter(const Instruction& item, Offset offset);
    void addOther(const Instruction& item);
    void addPosix(const PosixClass& posixClass, bool negated);
    void keepOpenDash();

    const PatternText& text_;
    Emitter& emitter_;
    ClassItems& items_;
    Offset at_;
    Before before_ = Before::nothingToExtend;
    uint32_t low_ = 0; // of the open range
};

} // namespace tav::regex::compiler
