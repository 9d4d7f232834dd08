#include "reference/reference_engine.h"

#include "unicode/properties.h"

#include <pthread.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace tav::reference {
namespace {

using namespace tav::regex;

/// Work on long runs counts as steps too, so that a limit on them bounds the time.
constexpr int64_t charactersPerStep = 32;

constexpr bool isAsciiLetter(uint32_t c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}
constexpr bool isWordByte(uint32_t c) {
    return isAsciiLetter(c) || (c >= '0' && c <= '9') || c == '_';
}

/// Two bytes (or code points) under the rule for literal bytes; the subject's is `seen`.
constexpr bool sameByte(uint32_t seen, uint32_t wanted, uint32_t options) {
    if ((options & optionCaseless) && isAsciiLetter(seen)) return ((seen ^ wanted) & ~0x20u) == 0;
    return seen == wanted;
}

/// One character of the subject. A malformed byte is a character of its own, `value` its unsigned byte.
struct Character {
    uint32_t value;
    int32_t length;
    bool malformed;
    uint8_t lead;
};

Character decode(const uint8_t* at, const uint8_t* end) {
    const uint8_t lead = *at;
    const Character asByte = {lead, 1, lead >= 0x80, lead};
    if (lead < 0x80) return asByte;
    int32_t length = 0;
    while (length < 8 && (lead & (0x80 >> length)))
        ++length;
    if (length < 2 || length > 6 || end - at < length) return asByte;
    uint32_t value = lead & (0xFFu >> (length + 1));
    for (int32_t i = 1; i < length; ++i) {
        if ((at[i] & 0xC0) != 0x80) return asByte;
        value = (value << 6) | (at[i] & 0x3Fu);
    }
    static constexpr uint32_t smallest[] = {0, 0, 0x80, 0x800, 0x10000, 0x200000, 0x4000000};
    if (value < smallest[length]) return asByte;
    return {value, length, false, lead};
}

/// What every path carries along; passed by value, so that a failing path leaves nothing behind.
struct Path {
    int32_t at;       // position in the subject
    uint32_t options; // option bits in force
    int32_t depth;    // levels in use
};

class Engine;

/// What encloses the instructions being matched: where they end and what happens there.
struct Bracket {
    int32_t id;    // the id that this bracket's OP_ALT_END markers carry
    int32_t close; // index of its end
    bool alone;    // matched for itself: its end is a success even when the path has run past the end
    virtual bool leave(Path path) = 0;

protected:
    Bracket(int32_t id, int32_t close, bool alone) : id(id), close(close), alone(alone) {}
    ~Bracket() = default;
};

/// The whole program, or the body of a lookaround or atomic group: success, and the position is noted.
struct BodyAlone final : Bracket {
    int32_t endedAt = -1;
    int32_t refuseAt = -1; // an end at this position counts as failure: no empty match is wanted
    BodyAlone(int32_t id, int32_t close) : Bracket(id, close, true) {}
    bool leave(Path path) override {
        if (path.at == refuseAt) return false;
        endedAt = path.at;
        return true;
    }
};

/// A repetition: bounds, order, and where the program goes on. Without a quantifier: once.
struct Repetition {
    int32_t min = 1;
    int32_t max = 1;
    bool lazy = false;
    int32_t next = 0;
};

/// One run of a group that may repeat.
struct GroupRun {
    int32_t open;
    int32_t close;
    Repetition repeat;
    uint32_t bodyOptions;
    Bracket& outer;
};

/// One iteration of a group: at its end the group decides what comes next.
struct Iteration final : Bracket {
    Engine& engine;
    GroupRun& group;
    int32_t number; // 1 for the first
    int32_t beganAt;
    Iteration(Engine& engine, GroupRun& group, int32_t id, int32_t number, int32_t beganAt)
        : Bracket(id, group.close, false), engine(engine), group(group), number(number), beganAt(beganAt) {}
    bool leave(Path path) override;
};

class Engine {
public:
    Engine(const Program& program, Subject subject, int64_t stepLimit)
        : program_(program), subject_(subject), stepLimit_(stepLimit),
          slots_(static_cast<std::size_t>(std::max(program.groupCount, 1))) {}

    /// Tries start positions from `start`; nothing at or behind `end` may be consumed by single bytes.
    bool attempt(int32_t start, int32_t end, int startMode, bool notEmpty);

    const std::vector<Span>& slots() const { return slots_; }
    bool gaveUp() const { return steps_ > stepLimit_; }
    int64_t steps() const { return steps_; }
    bool groupEnd(const Iteration& iteration, Path path);

private:
    // The dispatcher and one function per construct. Each returns whether the rest of the program matches.
    bool match(int32_t pc, Path path, Bracket& inside);
    bool single(int32_t pc, int32_t width, Path path, Bracket& inside);
    bool repeatGreedy(int32_t pc, const Repetition& repeat, Path path, Bracket& inside);
    bool repeatLazy(int32_t pc, const Repetition& repeat, Path path, Bracket& inside);
    bool string(int32_t pc, Path path, Bracket& inside);
    bool assertion(int32_t pc, Path path, Bracket& inside);
    bool group(int32_t pc, Path path, Bracket& inside);
    bool iterate(GroupRun& run, int32_t number, Path path);
    bool conditional(int32_t pc, Path path, Bracket& body);
    bool atomic(int32_t pc, Path path, Bracket& inside);
    bool atomicIterations(GroupRun& run, int32_t done, Path path);
    bool lookaround(int32_t pc, Path path, Bracket& inside);

    bool alternatives(int32_t first, Path path, Bracket& body);
    bool lookaroundHolds(int32_t pc, Path path);
    bool assertionHolds(uint8_t kind, Path path) const;
    bool lookbehindStart(int32_t at, int32_t characters, int32_t& start);

    int32_t consume(int32_t pc, int32_t at, uint32_t options) const;
    int32_t consumeBackReference(int32_t slot, int32_t at, uint32_t options) const;
    int32_t consumeExtended(int32_t at) const;
    bool itemTakes(const Instruction& item, const Character& c, uint32_t options) const;
    bool setTakes(int32_t pc, const Character& c, uint32_t options) const;

    Repetition repetitionAt(int32_t pc) const;
    bool enterLevel(Path& path);
    int32_t remaining(const Path& path) const { return end_ - path.at; }
    Character characterAt(int32_t at) const {
        return decode(subject_.bytes + at, subject_.bytes + subject_.length);
    }
    bool isCaptureSlot(int32_t slot) const { return slot > 0 && slot < program_.groupCount; }

    const Program& program_;
    Subject subject_;
    int64_t stepLimit_;
    int64_t steps_ = 0;
    int32_t end_ = 0; // the end of what this attempt may consume
    std::vector<Span> slots_;
};

bool Iteration::leave(Path path) {
    return engine.groupEnd(*this, path);
}

// ---------------------------------------------------------------------------------------------------------
// Attempts

bool Engine::attempt(int32_t start, int32_t end, int startMode, bool notEmpty) {
    end_ = end;
    for (int32_t at = start;;) {
        std::fill(slots_.begin(), slots_.end(), Span{});
        BodyAlone whole(0, program_.codeLength);
        whole.refuseAt = notEmpty ? at : -1;
        if (alternatives(0, {at, program_.options, 0}, whole)) {
            slots_[0] = {at, whole.endedAt - at};
            return true;
        }
        do {
            at += program_.format == 1 && at < end ? characterAt(at).length : 1;
        } while (startMode == 1 && at < end && subject_.bytes[at - 1] != '\n');
        if (startMode == 2 || at > end || gaveUp()) return false;
    }
}

/// The alternatives of a body in turn; each begins with the options that its marker tells.
bool Engine::alternatives(int32_t first, Path path, Bracket& body) {
    for (;;) {
        if (match(first, path, body)) return true;
        while (first < body.close &&
               !(program_.code[first].op == OP_ALT_END && program_.code[first].a == body.id))
            ++first;
        if (first >= body.close) return false;
        path.options = static_cast<uint32_t>(program_.code[first].b);
        ++first;
    }
}

// ---------------------------------------------------------------------------------------------------------
// The dispatcher

/// Takes one level of the budget; a path that has no level left fails.
bool Engine::enterLevel(Path& path) {
    if (++steps_ > stepLimit_ || path.depth >= program_.matchLimit) return false;
    ++path.depth;
    return true;
}

bool Engine::match(int32_t pc, Path path, Bracket& inside) {
    if (!enterLevel(path)) return false;
    if (remaining(path) < 0 && !(inside.alone && pc == inside.close)) return false;
    if (pc == inside.close) return inside.leave(path);
    const Instruction& now = program_.code[pc];
    switch (now.op) {
    case OP_CHAR:
    case OP_BACKREF:
    case OP_TYPE:
    case OP_ANYBYTE:
    case OP_UCHAR:
    case OP_UPROP:
    case OP_URANGE:
    case OP_ULIST:
    case OP_EXTSEQ:
        return single(pc, 1, path, inside);
    case OP_SET:
        return single(pc, 1 + now.b, path, inside);
    case OP_STRING:
        return string(pc, path, inside);
    case OP_ASSERT:
        return assertion(pc, path, inside);
    case OP_OPTIONS:
        path.options = static_cast<uint32_t>(now.a);
        return match(pc + 1, path, inside);
    case OP_ALT_END:
        if (now.a != inside.id) return false;
        // Deliberate: a top-level alternative that ends here may be empty even where no empty match is
        // wanted.
        if (now.a == 0) static_cast<BodyAlone&>(inside).refuseAt = -1;
        return inside.leave(path);
    case OP_GROUP:
    case OP_GROUP_OPTS:
    case OP_CAPTURE:
    case OP_COND:
        return group(pc, path, inside);
    case OP_ATOMIC:
        return atomic(pc, path, inside);
    case OP_LOOKAHEAD:
    case OP_NLOOKAHEAD:
    case OP_LOOKBEHIND:
    case OP_NLOOKBEHIND:
        return lookaround(pc, path, inside);
    default: // OP_RANGE, a quantifier or a group's end out of place, or no operation code at all
        return false;
    }
}

/// The quantifier at `pc`, if there is one there.
Repetition Engine::repetitionAt(int32_t pc) const {
    Repetition repeat;
    repeat.next = pc;
    if (pc >= program_.codeLength || !isQuantifier(program_.code[pc].op)) return repeat;
    const Instruction& quantifier = program_.code[pc];
    return {quantifier.a, quantifier.b, quantifier.op == OP_LAZY, pc + 1};
}

// ---------------------------------------------------------------------------------------------------------
// Items

bool Engine::single(int32_t pc, int32_t width, Path path, Bracket& inside) {
    const Repetition repeat = repetitionAt(pc + width);
    if (repeat.next != pc + width) {
        if (remaining(path) == 0 && repeat.min >= 1) return false;
        return repeat.lazy ? repeatLazy(pc, repeat, path, inside) : repeatGreedy(pc, repeat, path, inside);
    }
    path.at = consume(pc, path.at, path.options);
    return path.at >= 0 && match(repeat.next, path, inside);
}

bool Engine::repeatGreedy(int32_t pc, const Repetition& repeat, Path path, Bracket& inside) {
    std::vector<int32_t> ends = {path.at};
    while (static_cast<int64_t>(ends.size()) <= repeat.max) {
        const int32_t next = consume(pc, ends.back(), path.options);
        if (next < 0) break;
        if (next == ends.back()) { // an empty back-reference: any number of repetitions ends here
            return match(repeat.next, path, inside);
        }
        ends.push_back(next);
    }
    steps_ += static_cast<int64_t>(ends.size()) / charactersPerStep;
    for (int64_t k = static_cast<int64_t>(ends.size()) - 1; k >= repeat.min; --k) {
        path.at = ends[static_cast<std::size_t>(k)];
        if (match(repeat.next, path, inside)) return true;
    }
    return false;
}

bool Engine::repeatLazy(int32_t pc, const Repetition& repeat, Path path, Bracket& inside) {
    // Deliberate: before a literal byte these kinds skip every count that the byte does not follow, even
    // where the literal is optional.
    const uint32_t op = program_.code[pc].op;
    const bool skips = (op == OP_ANYBYTE || op == OP_CHAR || op == OP_BACKREF) &&
                       repeat.next < program_.codeLength && program_.code[repeat.next].op == OP_CHAR &&
                       !(path.options & optionCaseless);
    for (int32_t count = 0;; ++count) {
        if (count > repeat.max) return false;
        if (count >= repeat.min) {
            const bool skipped =
                skips && (path.at >= subject_.length ||
                          subject_.bytes[path.at] != static_cast<uint8_t>(program_.code[repeat.next].a));
            if (!skipped && match(repeat.next, path, inside)) return true;
        }
        const int32_t next = consume(pc, path.at, path.options);
        if (next < 0) return false;
        if (next == path.at) count = std::max(count, repeat.min - 1); // an empty back-reference
        if (next == path.at && count >= repeat.min) return false;
        path.at = next;
    }
}

bool Engine::string(int32_t pc, Path path, Bracket& inside) {
    const Instruction& now = program_.code[pc];
    const uint8_t* text = static_cast<const uint8_t*>(now.text);
    if (remaining(path) == 0 || remaining(path) < now.b) return false;
    for (int32_t i = 0; i < now.b; ++i)
        if (!sameByte(subject_.bytes[path.at + i], text[i], path.options)) return false;
    path.at += now.b;
    return match(pc + 1, path, inside);
}

/// Where the single item at `pc` ends when it takes what stands at `at`; -1 when it does not. A character may
/// reach past the end of this attempt, never past the end of the subject.
int32_t Engine::consume(int32_t pc, int32_t at, uint32_t options) const {
    const Instruction& item = program_.code[pc];
    if (item.op == OP_BACKREF) return consumeBackReference(item.a, at, options);
    if (at >= end_) return -1;
    if (item.op == OP_ANYBYTE) return at + 1;
    if (item.op == OP_CHAR)
        return sameByte(subject_.bytes[at], static_cast<uint8_t>(item.a), options) ? at + 1 : -1;
    if (item.op == OP_EXTSEQ) return consumeExtended(at);
    const Character c = characterAt(at);
    const bool takes = item.op == OP_SET ? setTakes(pc, c, options) : itemTakes(item, c, options);
    return takes ? at + c.length : -1;
}

int32_t Engine::consumeBackReference(int32_t slot, int32_t at, uint32_t options) const {
    if (!isCaptureSlot(slot)) return -1;
    const Span& text = slots_[static_cast<std::size_t>(slot)];
    if (text.length < 0 || text.length > end_ - at) return -1;
    for (int32_t i = 0; i < text.length; ++i)
        if (!sameByte(subject_.bytes[at + i], subject_.bytes[text.start + i], options)) return -1;
    return at + text.length;
}

int32_t Engine::consumeExtended(int32_t at) const {
    Character c = characterAt(at);
    if (c.malformed || !unicode::isListed(c.value) || unicode::isCombiningMark(c.value)) return -1;
    for (at += c.length; at < end_; at += c.length) {
        c = characterAt(at);
        if (c.malformed || !unicode::isCombiningMark(c.value)) break;
    }
    return at;
}

bool typeTakes(uint8_t letter, uint8_t byte, uint32_t options) {
    switch (letter) {
    case '.':
        return byte != '\n' || (options & optionDotAll);
    case 'd':
        return byte >= '0' && byte <= '9';
    case 's':
        return byte == 9 || byte == 10 || byte == 12 || byte == 13 || byte == 32; // 11 deliberately not
    case 'w':
        return isWordByte(byte);
    case 'D':
        return !typeTakes('d', byte, options);
    case 'S':
        return !typeTakes('s', byte, options);
    case 'W':
        return !typeTakes('w', byte, options);
    default:
        return false;
    }
}

bool rangeTakes(uint32_t low, uint32_t high, const Character& c, uint32_t options) {
    const auto inside = [&](uint32_t value) { return low <= value && value <= high; };
    if (inside(c.value)) return true;
    if (!(options & optionCaseless) || c.malformed) return false;
    if (c.value < 0x80) return isAsciiLetter(c.value) && inside(c.value ^ 0x20);
    return inside(unicode::simpleUppercase(c.value)) || inside(unicode::simpleLowercase(c.value));
}

bool codePointTakes(uint32_t wanted, const Character& c, uint32_t options) {
    // A malformed byte stands for the byte read as signed, which only an equal 32-bit value matches.
    const uint32_t value = c.malformed ? c.value | 0xFFFFFF00u : c.value;
    if (value == wanted) return true;
    return (options & optionCaseless) && !c.malformed &&
           unicode::simpleUppercase(value) == unicode::simpleUppercase(wanted);
}

bool listTakes(const Instruction& item, const Character& c) {
    const unicode::CodePointRange* ranges = static_cast<const unicode::CodePointRange*>(item.text);
    for (int32_t i = 0; i < item.c; ++i)
        if (!c.malformed && ranges[i].first <= c.value && c.value <= ranges[i].last) return true;
    return false;
}

/// Does one item that tests a character take it?
bool Engine::itemTakes(const Instruction& item, const Character& c, uint32_t options) const {
    const uint32_t low = static_cast<uint32_t>(item.a);
    const uint32_t high = static_cast<uint32_t>(item.b);
    switch (item.op) {
    case OP_CHAR:
        return sameByte(c.value, item.a & 0xFF, options);
    case OP_TYPE:
        return typeTakes(static_cast<uint8_t>(item.a), c.lead, options);
    case OP_RANGE:
        return rangeTakes(low, high, c, options);
    case OP_UCHAR:
        return codePointTakes(low, c, options);
    case OP_UPROP:
        return !c.malformed && unicode::categoryTest(c.value, low, item.b != 0);
    case OP_URANGE:
        return (!c.malformed && low <= c.value && c.value <= high) != (item.c != 0);
    case OP_ULIST:
        return listTakes(item, c) != (item.b != 0);
    default:
        return false;
    }
}

/// Is this member of a class part of a negated POSIX item?
bool isNegatedPosixMember(const Instruction& member) {
    return member.c == -1 && (member.op == OP_CHAR || member.op == OP_RANGE || member.op == OP_TYPE);
}

bool Engine::setTakes(int32_t pc, const Character& c, uint32_t options) const {
    const Instruction& set = program_.code[pc];
    const auto memberTakes = [&](Instruction member) {
        if (c.malformed && member.op >= OP_UCHAR) return false;
        if (isNegatedPosixMember(member) && member.op == OP_TYPE) member.a |= 0x20;
        return itemTakes(member, c, options);
    };
    bool taken = false;
    const Instruction* const end = &set + 1 + set.b;
    for (const Instruction* member = &set + 1; member < end && !taken;) {
        if (!isNegatedPosixMember(*member)) {
            taken = memberTakes(*member++);
            continue;
        }
        bool any = false; // neighbouring negated members are one complement
        for (; member < end && isNegatedPosixMember(*member); ++member)
            any = any || memberTakes(*member);
        taken = !any;
    }
    return taken != (set.a < 0);
}

// ---------------------------------------------------------------------------------------------------------
// Assertions

bool Engine::assertion(int32_t pc, Path path, Bracket& inside) {
    const Repetition repeat = repetitionAt(pc + 1);
    const bool optional = repeat.next != pc + 1 && repeat.min <= 0;
    if (!optional && !assertionHolds(static_cast<uint8_t>(program_.code[pc].a), path)) return false;
    return match(repeat.next, path, inside);
}

bool Engine::assertionHolds(uint8_t kind, Path path) const {
    const int32_t left = remaining(path);
    const uint8_t* p = subject_.bytes + path.at;
    const bool atStart = path.at == 0;
    const bool afterLineFeed = !atStart && p[-1] == '\n';
    const bool beforeFinalLineFeed = left == 1 && *p == '\n';
    const bool multiLine = (path.options & optionMultiLine) != 0;
    switch (kind) {
    case '^':
        return atStart || (multiLine && afterLineFeed && left > 0);
    case '$':
        return left == 0 || beforeFinalLineFeed || (multiLine && *p == '\n');
    case 'Z':
        return left == 0 || beforeFinalLineFeed;
    case 'z':
        return left == 0;
    case 'A':
    case 'G':
        return atStart;
    case anchorLineStart:
        return atStart || afterLineFeed;
    case 'b':
    case 'B': {
        // Deliberate: the byte behind the subject's end is looked at too.
        const bool differ = isWordByte(atStart ? ' ' : p[-1]) != isWordByte(*p);
        return differ == (kind == 'b');
    }
    default:
        return false;
    }
}

// ---------------------------------------------------------------------------------------------------------
// Groups

bool Engine::group(int32_t pc, Path path, Bracket& inside) {
    const Instruction& open = program_.code[pc];
    const int32_t close = pc + open.b + 1;
    const uint32_t bodyOptions = open.op == OP_GROUP_OPTS ? static_cast<uint32_t>(open.c) : path.options;
    GroupRun run = {pc, close, repetitionAt(close + 1), bodyOptions, inside};
    const Repetition& repeat = run.repeat;
    if (repeat.max == 0 && repeat.min == 0) return match(repeat.next, path, inside);
    if (repeat.lazy && repeat.min == 0 && match(repeat.next, path, inside)) return true;

    const bool captures = open.op == OP_CAPTURE && isCaptureSlot(open.c);
    Span* const slot = captures ? &slots_[static_cast<std::size_t>(open.c)] : nullptr;
    const Span before = slot ? *slot : Span{};
    if (slot) *slot = {path.at, 0};
    if (iterate(run, 1, path)) return true;
    if (slot) *slot = before;
    return !repeat.lazy && repeat.min == 0 && match(repeat.next, path, inside);
}

bool Engine::iterate(GroupRun& run, int32_t number, Path path) {
    path.options = run.bodyOptions;
    Iteration iteration(*this, run, program_.code[run.open].a, number, path.at);
    if (program_.code[run.open].op == OP_COND) return conditional(run.open, path, iteration);
    return alternatives(run.open + 1, path, iteration);
}

bool Engine::groupEnd(const Iteration& iteration, Path path) {
    GroupRun& run = iteration.group;
    const Instruction& open = program_.code[run.open];
    const Repetition& repeat = run.repeat;
    const bool captures = open.op == OP_CAPTURE && isCaptureSlot(open.c);
    Span* const slot = captures ? &slots_[static_cast<std::size_t>(open.c)] : nullptr;
    const Span before = slot ? *slot : Span{};
    if (slot) *slot = {iteration.beganAt, path.at - iteration.beganAt};

    const auto rest = [&] {
        Path after = path;
        after.options = static_cast<uint32_t>(program_.code[run.close].b);
        return match(repeat.next, after, run.outer);
    };
    const auto another = [&] {
        Path again = path;
        return enterLevel(again) && iterate(run, iteration.number + 1, again);
    };
    bool matched;
    if (path.at == iteration.beganAt || iteration.number >= repeat.max)
        matched = rest(); // an empty iteration ends the repetition, also below the minimum
    else if (iteration.number < repeat.min)
        matched = another();
    else
        matched = repeat.lazy ? rest() || another() : another() || rest();
    if (!matched && slot) *slot = before;
    return matched;
}

/// The condition chooses one branch; the other is not tried. Without a second branch: the empty string.
bool Engine::conditional(int32_t pc, Path path, Bracket& body) {
    const Instruction& condition = program_.code[pc + 1];
    const std::vector<Span> before = slots_;
    bool holds = false;
    int32_t branch = pc + 2;
    if (condition.op == OP_BACKREF) {
        holds = isCaptureSlot(condition.a) && slots_[static_cast<std::size_t>(condition.a)].length >= 0;
    } else {
        Path inCondition = path;
        holds = enterLevel(inCondition) && lookaroundHolds(pc + 1, inCondition);
        branch = pc + 1 + condition.b + 2;
    }
    if (!holds) {
        while (branch < body.close &&
               !(program_.code[branch].op == OP_ALT_END && program_.code[branch].a == body.id))
            ++branch;
        if (branch < body.close) path.options = static_cast<uint32_t>(program_.code[branch++].b);
    }
    if (match(branch, path, body)) return true;
    slots_ = before;
    return false;
}

bool Engine::atomic(int32_t pc, Path path, Bracket& inside) {
    const int32_t close = pc + program_.code[pc].b + 1;
    GroupRun run = {pc, close, repetitionAt(close + 1), path.options, inside};
    return atomicIterations(run, 0, path);
}

/// What remains after `done` iterations. An iteration is taken whole or given back whole; the levels that its
/// body needed are free again.
bool Engine::atomicIterations(GroupRun& run, int32_t done, Path path) {
    const Repetition& repeat = run.repeat;
    const auto rest = [&](Path from) { return match(repeat.next, from, run.outer); };
    if (repeat.lazy && done >= repeat.min && rest(path)) return true;
    Path iteration = path;
    const bool hasLevel = done == 0 || enterLevel(iteration);
    if (done < repeat.max && hasLevel) {
        const std::vector<Span> before = slots_;
        BodyAlone body(program_.code[run.open].a, run.close);
        if (alternatives(run.open + 1, iteration, body)) {
            Path after = iteration;
            after.at = body.endedAt;
            if (after.at == path.at ? rest(after) : atomicIterations(run, done + 1, after)) return true;
        }
        slots_ = before;
    }
    return !repeat.lazy && done >= repeat.min && rest(path);
}

bool Engine::lookaround(int32_t pc, Path path, Bracket& inside) {
    const std::vector<Span> before = slots_;
    if (lookaroundHolds(pc, path) && match(pc + program_.code[pc].b + 2, path, inside)) return true;
    slots_ = before;
    return false;
}

/// Captures of a positive lookaround stay set when it holds.
bool Engine::lookaroundHolds(int32_t pc, Path path) {
    const Instruction& open = program_.code[pc];
    const bool negative = open.op == OP_NLOOKAHEAD || open.op == OP_NLOOKBEHIND;
    if (isLookbehind(open.op) && !lookbehindStart(path.at, open.c, path.at)) return negative;
    const std::vector<Span> before = slots_;
    BodyAlone body(open.a, pc + open.b + 1);
    const bool matched = alternatives(pc + 1, path, body);
    if (!matched || negative) slots_ = before;
    return matched != negative;
}

/// The position `characters` before `at`, counted from the subject's start; false when there are too few.
bool Engine::lookbehindStart(int32_t at, int32_t characters, int32_t& start) {
    start = at;
    if (characters <= 0) return true;
    std::vector<int32_t> starts;
    for (int32_t p = 0; p < at; p += characterAt(p).length)
        starts.push_back(p);
    steps_ += at / charactersPerStep;
    if (static_cast<int64_t>(starts.size()) < characters) return false;
    start = starts[starts.size() - static_cast<std::size_t>(characters)];
    return true;
}

// ---------------------------------------------------------------------------------------------------------
// The driver

/// The end of the last occurrence of the required literal; -1 when it does not occur.
int32_t endOfLastLiteral(const Program& program, Subject subject) {
    const Instruction& literal = program.code[program.lastLiteral];
    const uint8_t letter = static_cast<uint8_t>(literal.a);
    const uint8_t* text = literal.op == OP_CHAR ? &letter : static_cast<const uint8_t*>(literal.text);
    const int32_t length = literal.op == OP_CHAR ? 1 : literal.b;
    if (length == 0) return subject.length;
    for (int32_t at = subject.length - length; at >= 0; --at) {
        int32_t same = 0;
        while (same < length &&
               sameByte(subject.bytes[at + same], text[same], static_cast<uint32_t>(literal.c)))
            ++same;
        if (same == length) return at + length;
    }
    return -1;
}

bool hasTopLevelAlternation(const Program& program) {
    for (int32_t pc = 0; pc < program.codeLength; ++pc)
        if (program.code[pc].op == OP_ALT_END && program.code[pc].a == 0) return true;
    return false;
}

/// 0: every start position; 1: line starts; 2: the first position only.
int startModeOf(const Program& program) {
    if (program.codeLength == 0 || program.code[0].op != OP_ASSERT || hasTopLevelAlternation(program))
        return 0;
    int mode = 0;
    if (program.code[0].a == 'A' || program.code[0].a == 'G') mode = 2;
    if (program.code[0].a == '^') mode = program.options & optionMultiLine ? 1 : 2;
    const bool optional =
        program.codeLength > 1 && isQuantifier(program.code[1].op) && program.code[1].a <= 0;
    return mode == 2 && optional ? 0 : mode; // deliberate: line starts stay line starts
}

/// Collects the entries of successive matches in a result array of limited size.
struct Collector {
    std::size_t capacity;
    std::size_t firstSlot;
    std::vector<Span> entries;

    bool full() const { return entries.size() >= capacity; }
    void store(const std::vector<Span>& slots) {
        for (std::size_t i = firstSlot; i < slots.size() && !full(); ++i)
            entries.push_back(slots[i]);
    }
};

void searchGlobal(Engine& engine, int32_t usable, int mode, Collector& out) {
    int32_t at = 0;
    while (at <= usable && !out.full() && engine.attempt(at, usable, mode, false)) {
        out.store(engine.slots());
        const Span whole = engine.slots()[0];
        at = whole.start + whole.length;
        if (whole.length != 0) continue;
        // After an empty match: once more from there for something that is not empty, in a single byte.
        if (!out.full() && whole.start < usable && engine.attempt(at, at + 1, mode, true))
            out.store(engine.slots());
        ++at;
    }
}

} // namespace

Program programIn(const tavRegExpContext& context) {
    return {programOf(context),  context.codeLength, context.options, context.groupCount,
            context.lastLiteral, context.matchLimit, context.format};
}

SearchResult search(const Program& program, Subject subject, const SearchSettings& settings) {
    SearchResult result;
    result.numFind = settings.capacity;
    Engine engine(program, subject, settings.stepLimit);
    const int32_t usable = program.lastLiteral < 0 ? subject.length : endOfLastLiteral(program, subject);
    const int mode = startModeOf(program);
    const bool groupsOnly = settings.global && !settings.storeAllEntries && program.groupCount >= 2;
    const std::size_t perMatch = static_cast<std::size_t>(program.groupCount - (groupsOnly ? 1 : 0));
    Collector out = {static_cast<std::size_t>(settings.capacity), groupsOnly ? 1u : 0u, {}};

    if (settings.global) {
        searchGlobal(engine, usable, mode, out);
    } else if (usable >= 0 && engine.attempt(0, usable, mode, false)) {
        out.store(engine.slots());
    } else if (program.matchLimit < 0) {
        result.status = tavStsRepeatLimit;
        return result;
    }
    result.entries = std::move(out.entries);
    result.numFind = static_cast<int32_t>(result.entries.size());
    if (result.numFind > 0 && result.entries.size() < perMatch) result.status = tavStsResultsTruncated;
    result.gaveUp = engine.gaveUp();
    result.steps = engine.steps();
    return result;
}

void withLargeStack(void (*work)(void*), void* argument) {
    struct Call {
        void (*work)(void*);
        void* argument;
    } call = {work, argument};
    const auto run = [](void* raw) -> void* {
        const Call* call = static_cast<const Call*>(raw);
        call->work(call->argument);
        return nullptr;
    };
    constexpr std::size_t stackSize = std::size_t{512} << 20;
    pthread_attr_t attributes;
    pthread_t thread;
    pthread_attr_init(&attributes);
    if (pthread_attr_setstacksize(&attributes, stackSize) != 0 ||
        pthread_create(&thread, &attributes, run, &call) != 0) {
        std::fputs("no thread with a large stack\n", stderr);
        std::abort();
    }
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
}

} // namespace tav::reference
