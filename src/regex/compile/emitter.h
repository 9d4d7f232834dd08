// Appends instructions to the program, patches brackets when they close, and simplifies as it goes: equal
// types in a row become a repeat, plain groups dissolve, classes of one member become that member. It knows
// the options in force and the open brackets, but not the pattern's text: of a literal it holds a pointer to
// its bytes.
//
// Every step that appends an instruction stands for at least one byte of the pattern (the leading line-start
// anchor for the terminating zero), so a block of one slot per byte and one more cannot overflow.
#pragma once

#include "regex/compile/analyses.h"
#include "regex/compile/quantifier.h"
#include "regex/match/program.h"

namespace tav::regex::compiler {

class Emitter {
public:
    Emitter(Instruction* program, int32_t capacity, uint32_t options)
        : program_(program), capacity_(capacity), options_(options) {}

    // Options and brackets in force.
    uint32_t options() const { return options_; }
    uint32_t outerOptions() const { return frames_[depth_ - 1].options; }
    int32_t depth() const { return depth_; }

    /// Changes the options to the end of the innermost group without an instruction.
    void setOptions(uint32_t options) { options_ = options; }
    /// The same with an instruction, for options that the matcher reads.
    void optionSetting(uint32_t options);

    // Items. Literal runs and escaped characters can be the pattern's required final literal.
    void literalRun(const uint8_t* end, int32_t length);
    void escapedCharacter(uint8_t byte);
    void item(const Instruction& item) { append(item); }
    void type(int letter);
    void assertion(int32_t kind) { append({OP_ASSERT, kind, 0, 0, nullptr}); }
    void backReference(int32_t group) { append({OP_BACKREF, group, 0, 0, nullptr}); }

    void quantifier(const Quantifier& quantifier);
    void alternation();

    // Brackets.
    /// Opens a bracket of kind `op` with `options` inside; false when there are too many of them.
    bool open(Opcode op, uint32_t options);
    bool open(Opcode op) { return open(op, options_); }
    /// The condition of the conditional just opened: is `group` set?
    void condition(int32_t group);
    /// The conditional just opened has no valid condition; close() will say so.
    void refuseCondition() { frames_[depth_ - 1].refused = true; }
    /// Closes the innermost bracket; false when its content is not allowed (a lookbehind without a fixed
    /// length, a bad conditional).
    bool close(bool quantifierFollows);

    // Classes.
    void openClass(bool negated);
    void member(const Instruction& item);
    /// The member before becomes the low end of a range.
    void extendToRange(uint32_t high);
    /// False when the class is empty or holds "^" alone.
    bool closeClass();

    /// Makes the program final: closes gaps, copies the literals behind the last instruction.
    void finish();
    int32_t length() const { return count_; }
    /// The tracker of the required final literal: an index, noFinalLiteral or topLevelAlternation.
    int32_t trackedLiteral() const { return tracked_; }

private:
    struct Frame {
        int32_t opener;
        int32_t lastAlternation; // chained through `c` to the earlier ones
        int32_t conditionEnd;    // the index behind a conditional's condition, once it is complete
        uint8_t options;         // in force before the bracket
        uint8_t alternations;    // saturates: only "more than one" matters
        bool refused;
    };

    struct BodyMeasure {
        bool simple;
        int32_t length;
        int32_t instructions;
    };
    static constexpr BodyMeasure notSimple = {false, 0, 0};

    Instruction& append(const Instruction& instruction);
    Instruction& last() { return program_[count_ - 1]; }
    void trackEmitted();
    void trackQuantified(const Quantifier& quantifier);
    void splitLastCharacter();
    void mergeIntoRepeat(Instruction& repeat, const Quantifier& quantifier);
    void refuseQuantifiedCondition();

    BodyMeasure measureBody(int32_t from) const;
    static bool dissolves(const BodyMeasure& body, bool quantifierFollows);
    void dissolve(int32_t opener, const BodyMeasure& body);
    void endBracket(const Frame& frame, const BodyMeasure& body);
    void nameAlternations(const Frame& frame, int32_t id);
    bool closeLookbehind(int32_t opener);
    bool acceptsConditional(const Frame& frame) const;
    void noteConditionOf(int32_t lookaround);

    void closeGaps();
    void moveLiterals();

    Instruction* program_;
    [[maybe_unused]] int32_t capacity_; // asserted in debug builds
    int32_t count_ = 0;
    uint32_t options_;
    int32_t depth_ = 0;
    int32_t ordinal_ = 0;  // of the latest bracket, dissolved ones not counted
    int32_t captures_ = 0; // capturing groups so far
    int32_t tracked_ = noFinalLiteral;
    int32_t lastClosed_ = 0; // the opener of the bracket that was closed last
    int32_t openClass_ = 0;  // the OP_SET being filled
    Frame frames_[bracketLimit];
};

} // namespace tav::regex::compiler
