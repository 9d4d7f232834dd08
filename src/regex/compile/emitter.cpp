#include "regex/compile/emitter.h"

#include "regex/compile/building.h"

#include <algorithm>
#include <cassert>
#include <cstdlib>
#include <cstring>

namespace tav::regex::compiler {

namespace {

constexpr int32_t noIndex = -1;

constexpr int32_t addBounds(int32_t a, int32_t b) {
    return static_cast<int32_t>(std::min(int64_t{a} + b, int64_t{unboundedRepeat}));
}

/// Brackets whose body is matched on its own carry a negative id.
constexpr bool isIsolated(uint32_t op) {
    return isLookaround(op) || op == OP_ATOMIC;
}

} // namespace

Instruction& Emitter::append(const Instruction& instruction) {
    assert(count_ < capacity_);
    return program_[count_++] = instruction;
}

void Emitter::optionSetting(uint32_t options) {
    options_ = options;
    append({OP_OPTIONS, static_cast<int32_t>(options), 0, 0, nullptr});
}

// Items

void Emitter::literalRun(const uint8_t* end, int32_t length) {
    if (length == 1) {
        append({OP_CHAR, end[-1], 0, 0, &plainLiteral});
    } else {
        append({OP_STRING, 0, length, 0, end});
    }
    trackEmitted();
}

void Emitter::escapedCharacter(uint8_t byte) {
    append({OP_CHAR, byte, 0, 0, nullptr});
    trackEmitted();
}

/// Collapses runs of one type into a repeat. The instruction before decides, not the text: "[\d]\d" is one.
void Emitter::type(int letter) {
    if (count_ > 0) {
        Instruction& before = last();
        if (hasNote(before, ownRepeat) && program_[count_ - 2].a == letter) {
            before.a = before.b = addBounds(before.a, 1);
            return;
        }
        if (before.op == OP_TYPE && before.a == letter && !hasNote(before, classMember)) {
            append({OP_GREEDY, 2, 2, 0, &ownRepeat});
            return;
        }
    }
    append({OP_TYPE, letter, 0, 0, nullptr});
}

// The required final literal

void Emitter::trackEmitted() {
    if (depth_ > 0 || tracked_ == topLevelAlternation) return;
    tracked_ = count_ - 1;
    last().c = static_cast<int32_t>(options_);
}

/// Deliberate: every quantifier that does not make its character the tracked literal resets the tracker to
/// noFinalLiteral, from topLevelAlternation too, so in "a|b*c" the "c" is required. Existing patterns rely on
/// the program being exactly this.
void Emitter::trackQuantified(const Quantifier& quantifier) {
    const bool required = hasNote(last(), plainLiteral) && depth_ == 0 && quantifier.minimum >= 1;
    if (required && tracked_ != topLevelAlternation) {
        trackEmitted();
    } else {
        tracked_ = noFinalLiteral;
    }
}

// Quantifiers

void Emitter::quantifier(const Quantifier& quantifier) {
    refuseQuantifiedCondition();
    if (last().op == OP_STRING) splitLastCharacter();
    trackQuantified(quantifier);
    Instruction& before = last();
    if (hasNote(before, ownRepeat)) return mergeIntoRepeat(before, quantifier);
    if (before.op == OP_GROUP_END) {
        if (isLookaround(program_[lastClosed_].op)) {
            // Deliberate: an optional lookaround is removed, any other repetition changes nothing.
            if (quantifier.minimum == 0) count_ = lastClosed_;
            return;
        }
        if (before.c == 1) before.c = -1;
    }
    append({quantifier.lazy ? OP_LAZY : OP_GREEDY, quantifier.minimum, quantifier.maximum, 0, nullptr});
}

/// A quantifier applies to the last character of a run only.
void Emitter::splitLastCharacter() {
    Instruction& run = last();
    const auto* const end = static_cast<const uint8_t*>(run.text);
    const int32_t options = run.c;
    if (run.b == 2) {
        run = {OP_CHAR, end[-2], 0, options, &plainLiteral};
    } else {
        run.b -= 1;
        run.text = end - 1;
    }
    append({OP_CHAR, end[-1], 0, options, &plainLiteral});
}

/// The written quantifier takes the last of the collapsed items; the others stay before it.
void Emitter::mergeIntoRepeat(Instruction& repeat, const Quantifier& quantifier) {
    repeat = {quantifier.lazy ? OP_LAZY : OP_GREEDY, addBounds(repeat.a - 1, quantifier.minimum),
              addBounds(repeat.b - 1, quantifier.maximum), 0, nullptr};
}

void Emitter::refuseQuantifiedCondition() {
    if (depth_ > 0 && frames_[depth_ - 1].conditionEnd == count_) refuseCondition();
}

// Brackets

void Emitter::alternation() {
    const auto options = static_cast<int32_t>(options_);
    if (depth_ == 0) {
        tracked_ = topLevelAlternation;
        append({OP_ALT_END, 0, options, 0, nullptr});
        return;
    }
    Frame& frame = frames_[depth_ - 1];
    append({OP_ALT_END, 0, options, frame.lastAlternation, nullptr});
    frame.lastAlternation = count_ - 1;
    if (frame.alternations < 2) ++frame.alternations;
}

/// Until it closes, an opener's `b` holds its ordinal.
bool Emitter::open(Opcode op, uint32_t options) {
    if (ordinal_ == bracketLimit - 1 || depth_ == bracketLimit - 1) return false;
    frames_[depth_++] = {count_, noIndex, noIndex, static_cast<uint8_t>(options_), 0, false};
    append({op, 0, ++ordinal_, 0, nullptr});
    if (op == OP_CAPTURE) last().c = ++captures_;
    if (op == OP_GROUP_OPTS) last().c = static_cast<int32_t>(options);
    options_ = options;
    return true;
}

void Emitter::condition(int32_t group) {
    backReference(group);
    frames_[depth_ - 1].conditionEnd = count_;
}

bool Emitter::close(bool quantifierFollows) {
    const Frame frame = frames_[--depth_];
    options_ = frame.options;
    const uint32_t op = program_[frame.opener].op;
    const bool measured = op == OP_GROUP || op == OP_CAPTURE;
    const BodyMeasure body = measured ? measureBody(frame.opener + 1) : notSimple;
    if (op == OP_GROUP && dissolves(body, quantifierFollows)) {
        dissolve(frame.opener, body);
        return true;
    }
    endBracket(frame, body);
    if (isLookaround(op)) noteConditionOf(frame.opener);
    if (isLookbehind(op)) return closeLookbehind(frame.opener);
    return op != OP_COND || acceptsConditional(frame);
}

void Emitter::endBracket(const Frame& frame, const BodyMeasure& body) {
    Instruction& opener = program_[frame.opener];
    const int32_t id = isIsolated(opener.op) ? -opener.b : opener.b;
    const bool repeatsOneItem = body.simple && body.length == 1 && isQuantifier(last().op);
    opener.a = id;
    opener.b = count_ - frame.opener - 1;
    append({OP_GROUP_END, id, static_cast<int32_t>(frame.options), repeatsOneItem ? 1 : 0, nullptr});
    nameAlternations(frame, id);
    lastClosed_ = frame.opener;
}

/// The length of a body made of single items, literals, classes and greedy repeats; any other is not simple.
/// Slots left by dissolved groups answer for their bodies, so no instruction is visited twice.
Emitter::BodyMeasure Emitter::measureBody(int32_t from) const {
    BodyMeasure body = {true, 0, 0};
    for (int32_t i = from; i < count_; ++i, ++body.instructions) {
        const Instruction& instruction = program_[i];
        switch (instruction.op) {
        case OP_CHAR:
        case OP_TYPE:
        case OP_UCHAR:
        case OP_UPROP:
        case OP_URANGE:
        case OP_ULIST:
        case OP_EXTSEQ:
            body.length += 1;
            break;
        case OP_STRING:
            body.length += instruction.b;
            break;
        case OP_SET:
            body.length += 1;
            body.instructions += instruction.b;
            i += instruction.b;
            break;
        case OP_GREEDY:
            break;
        case vacantSlot:
            body.length += instruction.a;
            body.instructions += instruction.c - 1;
            i += instruction.b;
            break;
        default:
            return notSimple;
        }
    }
    return body;
}

bool Emitter::dissolves(const BodyMeasure& body, bool quantifierFollows) {
    if (!body.simple) return false;
    const bool single = body.length == 1 && body.instructions == 1;
    return single || (body.length > 1 && !quantifierFollows);
}

void Emitter::dissolve(int32_t opener, const BodyMeasure& body) {
    program_[opener] = {vacantSlot, body.length, count_ - opener - 1, body.instructions, nullptr};
    --ordinal_;
}

void Emitter::nameAlternations(const Frame& frame, int32_t id) {
    for (int32_t i = frame.lastAlternation; i != noIndex;) {
        Instruction& marker = program_[i];
        i = marker.c;
        marker.a = id;
        marker.c = 0;
    }
}

bool Emitter::closeLookbehind(int32_t opener) {
    const int32_t length = fixedBodyLength(program_, opener);
    program_[opener].c = length;
    return length != noFixedLength;
}

/// A lookaround that stands first in a conditional is its condition.
void Emitter::noteConditionOf(int32_t lookaround) {
    if (depth_ == 0) return;
    Frame& outer = frames_[depth_ - 1];
    const bool first = program_[outer.opener].op == OP_COND && lookaround == outer.opener + 1;
    if (first) outer.conditionEnd = count_;
}

bool Emitter::acceptsConditional(const Frame& frame) const {
    return !frame.refused && frame.conditionEnd != noIndex && frame.alternations < 2;
}

// Classes

void Emitter::openClass(bool negated) {
    openClass_ = count_;
    append({OP_SET, negated ? -1 : 0, 0, 0, nullptr});
}

void Emitter::member(const Instruction& item) {
    append(item);
    if (item.op != OP_ULIST) last().text = &classMember;
}

void Emitter::extendToRange(uint32_t high) {
    Instruction& low = last();
    low.op = OP_RANGE;
    low.b = static_cast<int32_t>(high);
}

bool Emitter::closeClass() {
    Instruction& set = program_[openClass_];
    set.b = count_ - openClass_ - 1;
    if (set.b == 0) return false;
    if (set.b > 1 || set.a != 0) return true;
    Instruction only = last();
    const bool character = only.op == OP_CHAR || only.op == OP_UCHAR;
    // Deliberate: "^" alone is refused although it could stand for itself.
    if (character && only.a == '^') return false;
    if (character || only.op == OP_TYPE) {
        only.text = nullptr;
        set = only;
        --count_;
    }
    return true;
}

// The end

void Emitter::finish() {
    closeGaps();
    moveLiterals();
}

/// Drops vacant slots and notes, and sets the body lengths that vacant slots had stretched.
void Emitter::closeGaps() {
    int32_t openers[bracketLimit];
    int32_t next = 0;
    for (int32_t i = 0; i < count_; ++i) {
        if (program_[i].op == vacantSlot) continue;
        if (i == tracked_) tracked_ = next;
        Instruction& instruction = program_[next] = program_[i];
        if (instruction.op != OP_STRING && instruction.op != OP_ULIST) instruction.text = nullptr;
        if (isBracket(instruction.op)) {
            openers[std::abs(instruction.a)] = next;
        } else if (instruction.op == OP_GROUP_END) {
            const int32_t opener = openers[std::abs(instruction.a)];
            program_[opener].b = next - opener - 1;
        }
        ++next;
    }
    count_ = next;
}

void Emitter::moveLiterals() {
    auto* pool = reinterpret_cast<uint8_t*>(program_ + count_);
    for (int32_t i = 0; i < count_; ++i) {
        Instruction& instruction = program_[i];
        if (instruction.op != OP_STRING) continue;
        const auto length = static_cast<std::size_t>(instruction.b);
        // NOLINTNEXTLINE(clang-analyzer-core.NonNullParamChecker): a string instruction always has its text
        std::memcpy(pool, static_cast<const uint8_t*>(instruction.text) - length, length);
        instruction.text = pool;
        pool += length;
    }
}

} // namespace tav::regex::compiler
