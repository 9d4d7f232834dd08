#include "regex/compile/well_formed.h"

#include "unicode/property_tables.h"

#include <algorithm>
#include <vector>

namespace tavtest {
namespace {

using namespace tav::regex;
namespace tables = tav::unicode::tables;

/// Walks an accepted program.
class WellFormed {
public:
    WellFormed(const tavRegExpContext& context, std::size_t patternLength)
        : context_(context), program_(programOf(context_)), slots_(static_cast<int64_t>(patternLength) + 1),
          end_(reinterpret_cast<const uint8_t*>(program_ + slots_)) {}

    bool check() {
        if (context_.tag != contextTag) return fail("tag", 0);
        if (context_.codeLength < 0 || context_.codeLength > slots_)
            return fail("codeLength", context_.codeLength);
        if (context_.groupCount < 1 || context_.groupCount > bracketLimit)
            return fail("groupCount", context_.groupCount);
        pool_ = reinterpret_cast<const uint8_t*>(program_ + context_.codeLength);
        return sequence(0, context_.codeLength, 0) && literalsInOrder() && summaries();
    }

    std::string fault() const { return std::string(what_) + " at " + std::to_string(at_); }

private:
    bool fail(const char* what, int32_t at) {
        what_ = what;
        at_ = at;
        return false;
    }

    /// The instructions of one body, [from, to), of the bracket `id`. Nested bodies are visited through a
    /// list.
    bool sequence(int32_t from, int32_t to, int32_t id) {
        bodies_ = {{from, to, id}};
        while (!bodies_.empty()) {
            const Body body = bodies_.back();
            bodies_.pop_back();
            for (int32_t i = body.from; i < body.to;) {
                const int32_t next = item(i, body);
                if (next < 0) return false;
                i = next;
            }
        }
        return true;
    }

    struct Body {
        int32_t from;
        int32_t to;
        int32_t id;
    };

    /// The index behind the item at `i` and its quantifier, or -1.
    int32_t item(int32_t i, const Body& body) {
        const Instruction& instruction = program_[i];
        int32_t next = i + 1;
        if (!operands(i, false)) return -1;
        if (instruction.op == OP_SET) {
            next += instruction.b;
            if (instruction.b < 1 || next > body.to) return fail("class", i), -1;
            for (int32_t k = i + 1; k < next; ++k) {
                if (!operands(k, true)) return -1;
            }
        } else if (isBracket(instruction.op)) {
            next += instruction.b + 1;
            if (instruction.b < 0 || next > body.to) return fail("body length", i), -1;
            if (!bracket(i, next - 1)) return -1;
            bodies_.push_back({i + 1, next - 1, instruction.a});
        } else if (instruction.op == OP_ALT_END) {
            if (instruction.a != body.id) return fail("alternation id", i), -1;
            return next;
        } else if (isQuantifier(instruction.op) || instruction.op == OP_GROUP_END ||
                   instruction.op == OP_RANGE) {
            return fail("stray instruction", i), -1;
        }
        const bool repeatable =
            instruction.op != OP_STRING && instruction.op != OP_OPTIONS && !isLookaround(instruction.op);
        if (next < body.to && isQuantifier(program_[next].op)) {
            const Instruction& quantifier = program_[next];
            const bool bounds =
                quantifier.a >= 0 && quantifier.a <= quantifier.b && quantifier.b <= unboundedRepeat;
            if (!repeatable || !bounds || quantifier.c != 0 || quantifier.text != nullptr) {
                return fail("quantifier", next), -1;
            }
            ++next;
        }
        return next;
    }

    bool bracket(int32_t open, int32_t close) {
        const Instruction& opener = program_[open];
        const Instruction& end = program_[close];
        const bool negative = isLookaround(opener.op) || opener.op == OP_ATOMIC;
        const int32_t id = negative ? -opener.a : opener.a;
        if (id < 1 || id >= bracketLimit || ids_[static_cast<std::size_t>(id)])
            return fail("bracket id", open);
        ids_[static_cast<std::size_t>(id)] = true;
        if (end.op != OP_GROUP_END || end.a != opener.a || (end.b & ~31) != 0)
            return fail("bracket end", close);
        if (end.c < -1 || end.c > 1) return fail("repeat mark", close);
        if (opener.op == OP_COND && opener.b < 1) return fail("condition", open);
        if (opener.op == OP_CAPTURE) {
            if (opener.c < 1 || opener.c >= context_.groupCount) return fail("slot", open);
            if (usedSlots_[static_cast<std::size_t>(opener.c)]) return fail("slot of two groups", open);
            usedSlots_[static_cast<std::size_t>(opener.c)] = true;
        }
        return true;
    }

    bool operands(int32_t at, bool member) {
        const Instruction& i = program_[at];
        if (i.op < firstOpcode || i.op > lastOpcode) return fail("opcode", at);
        if (i.op != OP_STRING && i.op != OP_ULIST && i.text != nullptr) return fail("text", at);
        switch (i.op) {
        case OP_CHAR:
            return (i.a >= 0 && i.a <= 255 && i.b == 0 &&
                    (member ? i.c == 0 || i.c == -1 : (i.c & ~31) == 0)) ||
                   fail("char", at);
        case OP_STRING:
            return (!member && i.b >= 2 && i.a == 0 && inPool(i)) || fail("string", at);
        case OP_BACKREF:
            return (!member && i.a >= 1 && i.a < 1200) || fail("reference", at);
        case OP_TYPE:
            return (i.a > 0 && i.a < 128 &&
                    std::string(member ? "dDsSwW" : ".dDsSwW").find(static_cast<char>(i.a)) !=
                        std::string::npos) ||
                   fail("type", at);
        case OP_RANGE:
            return (member && static_cast<uint32_t>(i.a) <= static_cast<uint32_t>(i.b)) || fail("range", at);
        case OP_ULIST:
            return (i.c > 0 && inTables(i)) || fail("list", at);
        case OP_UCHAR:
        case OP_UPROP:
        case OP_URANGE:
            return true;
        case OP_ASSERT:
            return (!member && (i.a == anchorLineStart ||
                                std::string("^$ABGZbz").find(static_cast<char>(i.a)) != std::string::npos)) ||
                   fail("assertion", at);
        default:
            return !member || fail("member", at);
        }
    }

    bool inPool(const Instruction& string) const {
        const auto* const text = static_cast<const uint8_t*>(string.text);
        return text >= pool_ && text + string.b <= end_;
    }

    /// The literals lie one behind the other, in program order, directly behind the program.
    bool literalsInOrder() {
        const uint8_t* expected = pool_;
        for (int32_t i = 0; i < context_.codeLength; ++i) {
            if (program_[i].op != OP_STRING) continue;
            if (program_[i].text != expected) return fail("literal pool", i);
            expected += program_[i].b;
        }
        return true;
    }

    bool isLiteral(int32_t i) const { return program_[i].op == OP_CHAR || program_[i].op == OP_STRING; }

    /// The required final literal and the search hint, read off the program once more.
    bool summaries() {
        const int32_t length = context_.codeLength;
        const int32_t last = context_.lastLiteral;
        if (last < -2 || last >= length) return fail("lastLiteral", 0);
        if (last >= 0 && !isLiteral(last)) return fail("lastLiteral", 0);
        for (int32_t i = std::max(last, 0) + 1; last >= 0 && i < length; ++i) {
            if (!isQuantifier(program_[i].op)) return fail("lastLiteral", 0);
        }
        int32_t alternations = 0;
        bool alternating = length % 2 == 1;
        for (int32_t i = 0; i < length; ++i) {
            const bool alternation = program_[i].op == OP_ALT_END;
            alternations += alternation;
            alternating = alternating && (i % 2 == 1 ? alternation : isLiteral(i));
        }
        const bool optional = length > 1 && program_[1].op == OP_GREEDY && program_[1].a <= 0;
        const bool starts = length > 0 && isLiteral(0) && alternations == 0 && last != -2 && !optional;
        const int32_t hint = starts ? 1 : alternating && length >= 3 ? 2 : 0;
        return context_.searchHint == hint || fail("searchHint", 0);
    }

    /// A script's whole list, or the one range of a block.
    static bool inTables(const Instruction& list) {
        const auto* const ranges = static_cast<const tav::unicode::CodePointRange*>(list.text);
        for (const tables::NamedRanges& script : tables::scripts) {
            if (ranges == script.list.ranges && list.c == script.list.count) return true;
        }
        for (const tables::NamedRange& block : tables::blocks) {
            if (ranges == &block.range && list.c == 1) return true;
        }
        return false;
    }

    const tavRegExpContext& context_;
    const Instruction* program_;
    int64_t slots_;
    const uint8_t* end_;
    const uint8_t* pool_ = nullptr;
    std::vector<Body> bodies_;
    bool ids_[bracketLimit] = {};
    bool usedSlots_[bracketLimit] = {};
    const char* what_ = "";
    int32_t at_ = 0;
};

} // namespace

std::string faultOf(const tavRegExpContext& context, std::size_t patternLength) {
    WellFormed program(context, patternLength);
    return program.check() ? "" : program.fault();
}

} // namespace tavtest
