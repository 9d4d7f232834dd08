#include "regex/match/structure.h"

namespace tav::regex {

namespace {

bool validId(int32_t id) {
    return id != 0 && id > -bracketLimit && id < bracketLimit;
}

int32_t magnitude(int32_t id) {
    return id < 0 ? -id : id;
}

class StructureCheck {
public:
    StructureCheck(const Program& program, Bracket* brackets) : program_(program), brackets_(brackets) {}

    bool passes() {
        for (int32_t pc = 0; pc < program_.length;) {
            const Instruction& at = program_.code[pc];
            if (!accept(pc, at)) return false;
            pc = isBracket(at.op) ? pc + 1 : behind(program_, pc);
        }
        return open_ == 0;
    }

private:
    bool accept(int32_t pc, const Instruction& at) {
        if (isBracket(at.op)) return enter(pc, at);
        switch (at.op) {
        case OP_GROUP_END:
            return leave(pc, at);
        case OP_ALT_END:
            return at.a == openId() && pc != close_;
        case OP_SET:
            return at.b >= 0 && at.b < close_ - pc;
        case OP_STRING:
            return at.b >= 0;
        default:
            return true;
        }
    }

    int32_t openId() const { return open_ == 0 ? 0 : program_.code[brackets_[open_].opener].a; }

    bool enter(int32_t pc, const Instruction& at) {
        if (!validId(at.a) || at.b < 0 || at.b >= close_ - pc - 1) return false;
        if (at.op == OP_CAPTURE && (at.c < 1 || at.c >= program_.groupCount)) return false;
        if (at.op == OP_COND && !hasCondition(pc, at)) return false;
        const int32_t id = magnitude(at.a);
        if (brackets_[id].opener != noNode) return false;
        brackets_[id] = {pc, open_, 0};
        open_ = id;
        close_ = pc + at.b + 1;
        return true;
    }

    bool hasCondition(int32_t pc, const Instruction& conditional) const {
        const uint32_t op = program_.code[pc + 1].op;
        return conditional.b >= 1 && (op == OP_BACKREF || isLookaround(op));
    }

    bool leave(int32_t pc, const Instruction& at) {
        if (open_ == 0 || pc != close_) return true; // it closes nothing: reached, it fails
        if (at.a != openId()) return false;
        open_ = brackets_[open_].outer;
        close_ = program_.length;
        if (open_ != 0) close_ = brackets_[open_].opener + program_.code[brackets_[open_].opener].b + 1;
        return true;
    }

    const Program& program_;
    Bracket* brackets_;
    int32_t open_ = 0;                // id of the innermost open bracket
    int32_t close_ = program_.length; // its closing position
};

} // namespace

int32_t countBrackets(const Program& program) {
    int32_t highest = 0;
    for (int32_t pc = 0; pc < program.length; ++pc) {
        const Instruction& at = program.code[pc];
        if (isBracket(at.op) && validId(at.a) && magnitude(at.a) > highest) highest = magnitude(at.a);
    }
    return highest + 1;
}

int32_t openerOf(const Program& program, const Bracket* brackets, int32_t bracketCount, int32_t pc) {
    const Instruction& at = program.code[pc];
    if ((at.op != OP_GROUP_END && at.op != OP_ALT_END) || !validId(at.a)) return noNode;
    if (magnitude(at.a) >= bracketCount) return noNode;
    const int32_t opener = brackets[magnitude(at.a)].opener;
    const bool closes = opener != noNode && opener + program.code[opener].b + 1 == pc;
    return closes || at.op == OP_ALT_END ? opener : noNode;
}

bool structureHolds(const Program& program, Bracket* brackets, int32_t bracketCount) {
    for (int32_t id = 0; id < bracketCount; ++id)
        brackets[id] = {noNode, 0, 0};
    return StructureCheck(program, brackets).passes();
}

} // namespace tav::regex
