#include "regex/compile/dump.h"

#include <sstream>

namespace tavtest {

namespace {

using namespace tav::regex;

const char* nameOf(uint32_t op) {
    switch (op) {
#define TAV_OPCODE(name, code)                                                                               \
    case name:                                                                                               \
        return &#name[3];
        TAV_OPCODES(TAV_OPCODE)
#undef TAV_OPCODE
    default:
        return "UNKNOWN";
    }
}

/// Collects the text of one program.
class Dump {
public:
    void instruction(const Instruction& i) {
        out_ << nameOf(i.op);
        operands(i);
    }
    void separator() { out_ << " | "; }
    std::string text() const { return out_.str(); }

private:
    void number(const char* label, int32_t value) { out_ << ' ' << label << '=' << value; }

    void ifSet(const char* label, int32_t value) {
        if (value != 0) number(label, value);
    }

    void negated(int32_t operand) {
        if (operand == -1) {
            out_ << " not";
        } else {
            ifSet("?", operand);
        }
    }

    void hexadecimal(int32_t value) { out_ << std::hex << std::uppercase << value << std::dec; }

    static bool printable(int32_t value) { return value >= 0x20 && value <= 0x7E; }

    /// A printable ASCII byte as 'a', any other value as its hexadecimal digits.
    void character(int32_t value) {
        if (printable(value)) {
            out_ << '\'' << static_cast<char>(value) << '\'';
        } else {
            hexadecimal(value);
        }
    }

    void bytes(const Instruction& string) {
        out_ << " \"";
        for (int32_t i = 0; i < string.b; ++i) {
            const int32_t byte = static_cast<const uint8_t*>(string.text)[i];
            if (printable(byte)) {
                out_ << static_cast<char>(byte);
            } else {
                out_ << "\\x";
                hexadecimal(byte);
            }
        }
        out_ << '"';
    }

    void bounds(const Instruction& quantifier) {
        out_ << ' ' << quantifier.a << "..";
        if (quantifier.b == unboundedRepeat) {
            out_ << "inf";
        } else {
            out_ << quantifier.b;
        }
    }

    void letter(int32_t operand) {
        if (operand == anchorLineStart) {
            out_ << " line-start";
        } else {
            out_ << ' ' << static_cast<char>(operand);
        }
    }

    void range(int32_t low, int32_t high) {
        hexadecimal(low);
        out_ << '-';
        hexadecimal(high);
    }

    void operands(const Instruction& i) {
        switch (i.op) {
        case OP_CHAR:
            out_ << ' ';
            character(i.a);
            return ifSet("o", i.c);
        case OP_STRING:
            bytes(i);
            return ifSet("o", i.c);
        case OP_BACKREF:
            out_ << ' ' << i.a;
            return;
        case OP_SET:
            negated(i.a);
            out_ << ' ' << i.b;
            return;
        case OP_TYPE:
            letter(i.a);
            return negated(i.c);
        case OP_ASSERT:
            return letter(i.a);
        case OP_ALT_END:
            number("id", i.a);
            return ifSet("o", i.b);
        case OP_RANGE:
            out_ << ' ';
            character(i.a);
            out_ << '-';
            character(i.b);
            return negated(i.c);
        case OP_LAZY:
        case OP_GREEDY:
            return bounds(i);
        case OP_GROUP_END:
            number("id", i.a);
            ifSet("o", i.b);
            return ifSet("c", i.c);
        case OP_OPTIONS:
            return number("o", i.a);
        case OP_UCHAR:
            out_ << ' ';
            return hexadecimal(i.a);
        case OP_UPROP:
            negated(i.b);
            out_ << ' ';
            return hexadecimal(i.a);
        case OP_URANGE:
            negated(i.c);
            out_ << ' ';
            return range(i.a, i.b);
        case OP_ULIST: {
            const auto* const pairs = static_cast<const int32_t*>(i.text);
            negated(i.b);
            out_ << ' ' << i.c << " from ";
            return range(pairs[0], pairs[1]);
        }
        default:
            if (isBracket(i.op)) bracket(i);
        }
    }

    void bracket(const Instruction& i) {
        number("id", i.a);
        number("body", i.b);
        if (isLookbehind(i.op)) number("chars", i.c);
        if (i.op == OP_CAPTURE) number("slot", i.c);
        if (i.op == OP_GROUP_OPTS) number("o", i.c);
    }

    std::ostringstream out_;
};

} // namespace

std::string dumpInstruction(const Instruction& instruction) {
    Dump dump;
    dump.instruction(instruction);
    return dump.text();
}

std::string dumpProgram(const tavRegExpContext& context) {
    Dump dump;
    for (int32_t i = 0; i < context.codeLength; ++i) {
        if (i > 0) dump.separator();
        dump.instruction(programOf(context)[i]);
    }
    return dump.text();
}

} // namespace tavtest
