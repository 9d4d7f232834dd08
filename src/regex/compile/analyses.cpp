#include "regex/compile/analyses.h"

#include "regex/compile/building.h"

#include <algorithm>
#include <limits>

namespace tav::regex::compiler {

namespace {

/// The fixed length of a body, summed up on an explicit stack: groups may nest 999 deep, and the machine's
/// stack is not ours to spend on that. Sums saturate far above every length that is accepted.
class FixedLength {
public:
    FixedLength(const Instruction* program, int32_t opener) : program_(program), at_(opener + 1) {
        levels_[0] = emptyLevel;
    }

    int32_t measure() {
        while (depth_ >= 0) {
            if (!step()) return noFixedLength;
        }
        return result_ <= std::numeric_limits<int32_t>::max() ? static_cast<int32_t>(result_) : noFixedLength;
    }

private:
    static constexpr int64_t saturation = int64_t{1} << 46; // times 65535 still fits
    static constexpr int64_t unknown = -1;

    struct Level {
        int64_t complete; // what precedes the latest atom in this branch
        int64_t atom;     // the latest atom: a quantifier may still multiply it
        int64_t branch;   // the length of the branches before
    };
    static constexpr Level emptyLevel = {0, 0, unknown};

    /// Takes in one instruction (a class or a lookaround as a whole); false when the length is not fixed.
    bool step() {
        const Instruction& instruction = program_[at_++];
        switch (instruction.op) {
        case OP_CHAR:
        case OP_TYPE:
        case OP_ANYBYTE:
        case OP_UCHAR:
        case OP_UPROP:
        case OP_URANGE:
        case OP_ULIST:
        case OP_EXTSEQ:
            return add(1);
        case OP_STRING:
            return add(instruction.b);
        case OP_SET:
            at_ += instruction.b;
            return add(1);
        case OP_ASSERT:
        case OP_OPTIONS:
        case vacantSlot:
            return add(0);
        case OP_LAZY:
        case OP_GREEDY:
            return repeat(instruction);
        case OP_LOOKBEHIND:
        case OP_NLOOKBEHIND:
        case OP_LOOKAHEAD:
        case OP_NLOOKAHEAD:
            at_ += instruction.b + 1;
            return add(0);
        case OP_CAPTURE:
        case OP_GROUP:
        case OP_GROUP_OPTS:
        case OP_ATOMIC:
            levels_[++depth_] = emptyLevel;
            return true;
        case OP_ALT_END:
            return endBranch();
        case OP_GROUP_END:
            return endGroup();
        default:
            return false; // a back-reference or a conditional
        }
    }

    bool add(int64_t length) {
        Level& level = levels_[depth_];
        level.complete = std::min(level.complete + level.atom, saturation);
        level.atom = length;
        return true;
    }

    bool repeat(const Instruction& quantifier) {
        Level& level = levels_[depth_];
        level.atom = std::min(level.atom * quantifier.a, saturation);
        return quantifier.a == quantifier.b;
    }

    bool endBranch() {
        add(0);
        Level& level = levels_[depth_];
        if (level.branch != unknown && level.branch != level.complete) return false;
        level = {0, 0, level.complete};
        return true;
    }

    bool endGroup() {
        if (!endBranch()) return false;
        result_ = levels_[depth_].branch;
        return --depth_ < 0 || add(result_);
    }

    const Instruction* program_;
    int32_t at_;
    int32_t depth_ = 0;
    int64_t result_ = 0;
    Level levels_[bracketLimit];
};

bool isLiteral(uint32_t op) {
    return op == OP_CHAR || op == OP_STRING;
}

bool startsWithLiteral(const Instruction* program, int32_t length) {
    if (length == 0 || !isLiteral(program[0].op)) return false;
    return length == 1 || program[1].op != OP_GREEDY || program[1].a > 0;
}

bool hasAlternation(const Instruction* program, int32_t length) {
    return std::any_of(program, program + length, [](const Instruction& i) { return i.op == OP_ALT_END; });
}

bool isListOfLiterals(const Instruction* program, int32_t length) {
    if (length < 3 || length % 2 == 0) return false;
    for (int32_t i = 0; i < length; ++i) {
        if (i % 2 == 0 ? !isLiteral(program[i].op) : program[i].op != OP_ALT_END) return false;
    }
    return true;
}

} // namespace

int32_t fixedBodyLength(const Instruction* program, int32_t opener) {
    return FixedLength(program, opener).measure();
}

int32_t requiredFinalLiteral(const Instruction* program, int32_t length, int32_t tracked) {
    if (tracked < 0) return tracked;
    const bool last = std::all_of(program + tracked + 1, program + length,
                                  [](const Instruction& i) { return isQuantifier(i.op); });
    return last ? tracked : noFinalLiteral;
}

int32_t searchHint(const Instruction* program, int32_t length, int32_t lastLiteral) {
    const bool startsAlike = lastLiteral != topLevelAlternation && startsWithLiteral(program, length) &&
                             !hasAlternation(program, length);
    if (startsAlike) return 1;
    return isListOfLiterals(program, length) ? 2 : 0;
}

} // namespace tav::regex::compiler
