#include "regex/match/machine.h"

#include "regex/match/alternatives.h"
#include "regex/match/characters.h"
#include "regex/match/stack_room.h"
#include "regex/match/steps.h"
#include "regex/match/structure.h"
#include "strings/find.h"
#include "unicode/properties.h"

#include <cstring>

#if defined(_WIN32)
#include <malloc.h>
#else
#include <alloca.h>
#endif

namespace tav::regex {

namespace {

/// The sorts of records. The first ones are choices; the others are passed by on the way back.
enum Sort : uint32_t {
    sortAlternative,   // another alternative of the program or of a group
    sortGreedy,        // a greedy repeat that can give back
    sortLazy,          // a lazy repeat that can take more
    sortIteration,     // an iteration of a loop: its alternatives, then going on without it
    sortEnterLazily,   // a lazy loop passed over: enter it after all
    sortIterateLazily, // a lazy loop left: another iteration after all
    sortAtomicDone,    // an iteration of an atomic loop whose body has matched
    sortBody,          // the body of a lookaround or atomic group is being matched
    sortSlot,          // the former value of a result slot
};

constexpr uint32_t sortShift = 28;

/// Where no alternative can begin. Not noNode: -1 stands for the place in front of the program.
constexpr int32_t noAlternative = -2;

constexpr uint32_t what(Sort sort, int32_t pc) {
    return sort << sortShift | static_cast<uint32_t>(pc);
}
constexpr Sort sortOf(const Record& record) {
    return static_cast<Sort>(record.what >> sortShift);
}
constexpr int32_t nodeOf(const Record& record) {
    return static_cast<int32_t>(record.what & ((1u << sortShift) - 1));
}

/// The lower record of an iteration: what it replaced.
struct Replaced {
    int32_t record; // the bracket's record before
    int32_t start;  // the slot before
    int32_t length;
    int32_t count; // number of this iteration, from 1
};

static_assert(sizeof(Replaced) == sizeof(Record));

Replaced& replacedBy(Record* iteration) {
    return reinterpret_cast<Replaced&>(iteration[-1]);
}

uint32_t optionsOf(const Node& node) {
    return (node.has(traitCaseless) ? optionCaseless : 0u) | (node.has(traitDotAll) ? optionDotAll : 0u);
}

bool isAscii(const uint8_t* p, const uint8_t* end) {
    uint64_t all = 0;
    for (; end - p >= 8; p += 8) {
        uint64_t eight;
        std::memcpy(&eight, p, sizeof eight);
        all |= eight;
    }
    for (; p < end; ++p)
        all |= *p;
    return (all & 0x8080808080808080u) == 0;
}

bool isBoundary(const uint8_t* begin, const uint8_t* p) {
    const bool before = p != begin && isWordByte(p[-1]);
    return before != isWordByte(*p); // one byte behind the subject is readable by contract
}

} // namespace

Node DirectNodes::operator[](int32_t pc) const {
    const Program& program = plan_.program;
    if (pc == program.length) return decode(program, pc, {0, noNode, false});
    const bool condition = pc > 0 && program.code[pc - 1].op == OP_COND;
    return decode(program, pc,
                  {optionsAt(pc), openerOf(program, plan_.brackets, plan_.bracketCount, pc), condition});
}

/// The options in force at an instruction are those that the nearest instruction before it sets.
uint32_t DirectNodes::optionsAt(int32_t pc) const {
    constexpr uint32_t unset = ~0u;
    if (plan_.uniformOptions) return plan_.program.options;
    while (--pc >= 0) {
        const uint32_t options = optionsBehind(plan_.program.code[pc], unset);
        if (options != unset) return options;
    }
    return plan_.program.options;
}

template <class Nodes>
void Machine<Nodes>::useStack(Record* memory, std::size_t capacity, std::size_t used) {
    stack_ = memory;
    stackEnd_ = endOf(memory, capacity);
    saved_.top = memory + used;
}

/// Begins with the first alternative at top level that can begin here; false when there is none.
template <class Nodes>
bool Machine<Nodes>::beginAlternatives(Registers& r) const {
    const Ways ways = waysAt(r.p, plan_.firstNode, -1, plan_.firstAlternative);
    if (ways.first == noAlternative) return false;
    if (ways.next != noNode) *++r.top = {what(sortAlternative, 0), offset(r.p), ways.next, matchLimit_};
    r.pc = ways.first + 1;
    return true;
}

/// Goes on with more room for records, taken from the machine stack: once the whole that the default limit
/// can need, then twice as much each time, as far as the limit and the thread's stack allow.
template <class Nodes>
[[gnu::noinline]] Outcome Machine<Nodes>::matchOnLargerStack() {
    Outcome outcome = Outcome::full;
    while (outcome == Outcome::full) {
        const std::size_t capacity = nextCapacity();
        if (capacity == 0) { // no more to be had: the path fails here like one without a level left
            runOutOfLevels(saved_);
            outcome = backtrack(saved_) ? resume() : Outcome::failed;
            continue;
        }
        auto* memory = static_cast<Record*>(alloca(capacity * sizeof(Record)));
        const auto used = static_cast<std::size_t>(saved_.top - stack_);
        std::memcpy(memory, stack_, (used + 1) * sizeof(Record));
        useStack(memory, capacity, used);
        outcome = resume();
    }
    useStack(firstStack_, firstCapacity, 0);
    return outcome;
}

template <class Nodes>
std::size_t Machine<Nodes>::nextCapacity() const {
    constexpr std::size_t forDefaultLimit = 15'000; // 24 bytes for each of 10,000 levels
    constexpr std::size_t reserve = 65'536;         // of the thread's stack, for whatever is called from here
    const std::size_t byLimit = static_cast<std::size_t>(matchLimit_) * 3 / 2 + 16;
    const auto present = static_cast<std::size_t>(stackEnd_ - stack_) + 2;
    std::size_t capacity = 2 * present > forDefaultLimit ? 2 * present : forDefaultLimit;
    // More than the limit accounts for are only captures kept from atomic groups and lookarounds in loops.
    if (present + present / 8 < byLimit && capacity > byLimit) capacity = byLimit;
    if (capacity <= forDefaultLimit) return capacity;
    const std::size_t room = stackRoom();
    if (room < reserve) return 0;
    const std::size_t affordable = (room - reserve) / sizeof(Record);
    if (capacity > affordable) capacity = affordable;
    return capacity > present + present / 8 ? capacity : 0;
}

/// Calls a part of the machine that is not inlined, with a copy: registers whose own address were known
/// elsewhere could not stay in the processor's.
template <class Nodes>
template <class Part>
auto Machine<Nodes>::aside(Registers& r, Part part) {
    Registers copy = r;
    const auto result = part(copy);
    r = copy;
    return result;
}

template <class Nodes>
Outcome Machine<Nodes>::run(const Registers& from) {
    Registers r = from;
    for (;;) {
        countStep();
        Step step = Step::fail;
        if (r.levels > 0) {
            --r.levels;
            step = this->step(r, nodes_[r.pc]);
        } else {
            runOutOfLevels(r);
        }
        if (step == Step::go) continue;
        if (step == Step::done) {
            matchEnd_ = r.p;
            return Outcome::matched;
        }
        if (step == Step::full) {
            ++r.levels;
            saved_ = r;
            return Outcome::full;
        }
        if (!backtrack(r)) return Outcome::failed;
        if (isTired()) return Outcome::tired;
    }
}

template <class Nodes>
auto Machine<Nodes>::step(Registers& r, const Node& node) -> Step {
    if (node.kind > Kind::conditionGroup) __builtin_unreachable();
    switch (node.kind) {
    case Kind::fail:
        return Step::fail;
    case Kind::matchEnd:
        return notEmpty_ && r.p == start_ ? Step::fail : Step::done;
    case Kind::alternativeEnd:
        return Step::done;
    case Kind::byte:
        if (r.p >= end_ || *r.p != node.byte) return Step::fail;
        ++r.p;
        break;
    case Kind::byteCaseless:
        if (r.p >= end_ || (*r.p | 0x20) != node.byte) return Step::fail;
        ++r.p;
        break;
    case Kind::charClass:
        if (r.p >= end_) return Step::fail;
        if (*r.p < 0x80) {
            if ((plan_.ascii[node.index / 8][*r.p] & node.mask) == 0) return Step::fail;
            ++r.p;
            break;
        }
        [[fallthrough]];
    case Kind::item: {
        const uint8_t* next = consume(node, r.pc, r.p);
        if (next == nullptr || !mayEndAt(next, node.next)) return Step::fail;
        r.p = next;
        break;
    }
    case Kind::string:
    case Kind::stringCaseless:
        if (!matchesString(node, r.pc, r.p)) return Step::fail;
        r.p += node.min;
        break;
    case Kind::classRun:
        return classRun(r, node);
    case Kind::takenRun:
        return takenRun(r, node);
    case Kind::takenBytes:
        return takenBytes(r, node);
    case Kind::greedy:
        return greedy(r, node);
    case Kind::lazy:
        return lazy(r, node);
    case Kind::assertion:
        if (!holds(node, r.p)) return Step::fail;
        break;
    case Kind::pass:
        break;
    case Kind::group:
        return enterGroup(r, node);
    case Kind::groupEnd:
        return leaveGroup(r, node);
    case Kind::captureStart:
        captures_[node.slot] = {offset(r.p), 0};
        break;
    case Kind::captureEnd:
        captures_[node.slot].length = offset(r.p) - captures_[node.slot].start;
        break;
    case Kind::loop:
    case Kind::atomicLoop:
        return enterLoop(r, node);
    case Kind::loopEnd:
        return leaveLoop(r, node);
    case Kind::look:
        return aside(r, [&](Registers& copy) { return enterLook(copy, node); });
    case Kind::atomic:
        return enterAtomic(r, node);
    case Kind::bodyEnd:
        return aside(r, [&](Registers& copy) { return leaveBody(copy, node); });
    case Kind::conditionGroup: {
        ++r.levels; // the choice belongs to the conditional's opening
        const bool isSet = node.slot != 0 && captures_[node.slot].length != -1;
        r.pc = isSet ? node.next : node.other;
        return Step::go;
    }
    }
    r.pc = node.next;
    return Step::go;
}

// --- Single items
// -------------------------------------------------------------------------------------------

/// A character may reach beyond the usable end; then nothing but the end of what is being matched may follow.
template <class Nodes>
bool Machine<Nodes>::mayEndAt(const uint8_t* p, int32_t next) const {
    if (p <= end_) return true;
    const auto& node = nodes_[next];
    return node.kind == Kind::matchEnd ||
           (node.kind == Kind::bodyEnd && plan_.program.code[next].op == OP_GROUP_END);
}

template <class Nodes>
bool Machine<Nodes>::matchesString(const Node& node, int32_t pc, const uint8_t* p) const {
    const std::ptrdiff_t left = end_ - p;
    if (left < 1 || left < node.min) return false;
    const auto* text = static_cast<const uint8_t*>(plan_.program.code[pc].text);
    if (node.kind == Kind::string) {
        for (int32_t i = 0; i < node.min; ++i)
            if (p[i] != text[i]) return false;
        return true;
    }
    for (int32_t i = 0; i < node.min; ++i)
        if (foldAscii(p[i]) != foldAscii(text[i])) return false;
    return true;
}

/// The end of one item at `p`, or null when it does not match.
template <class Nodes>
const uint8_t* Machine<Nodes>::consume(const Node& node, int32_t pc, const uint8_t* p) const {
    if (node.item == Item::backReference) return consumeReference(node, p);
    if (p >= end_) return nullptr;
    switch (node.item) {
    case Item::byte:
        return *p == node.byte ? p + 1 : nullptr;
    case Item::byteCaseless:
        return (*p | 0x20) == node.byte ? p + 1 : nullptr;
    case Item::anyByte:
        return p + 1;
    case Item::charClass:
        if (*p < 0x80) return plan_.ascii[node.index / 8][*p] & node.mask ? p + 1 : nullptr;
        return consumeWide(node, pc, p);
    case Item::extended:
        return extendedCharacterEnd(p, end_, limit_);
    default:
        return consumeWide(node, pc, p);
    }
}

/// A character that the tables do not decide.
template <class Nodes>
[[gnu::noinline]] const uint8_t* Machine<Nodes>::consumeWide(const Node& node, int32_t pc,
                                                             const uint8_t* p) const {
    return wideEnd(node, pc, p);
}

template <class Nodes>
const uint8_t* Machine<Nodes>::wideEnd(const Node& node, int32_t pc, const uint8_t* p) const {
    return unicode::takeUtf8(p, limit_, [&](uint32_t value, int32_t length, bool malformed) {
        const bool matches = hasWide(node, pc, {value, length, malformed});
        return matches ? p + length : nullptr;
    });
}

template <class Nodes>
bool Machine<Nodes>::hasWide(const Node& node, int32_t pc, const Utf8Sequence& character) const {
    if (node.item == Item::charClass) {
        if (character.malformed) return plan_.members[node.index].has(static_cast<uint8_t>(character.value));
        if (node.has(traitMultiAll)) return true;
        if (!node.has(traitMultiTest)) return false;
        if (node.slot != 0)
            return plan_.widePages[node.slot - 1].has(character.value,
                                                      [&] { return testsTrue(node, pc, character); });
    }
    return testsTrue(node, pc, character);
}

/// The plain rules, asked for one character.
template <class Nodes>
[[gnu::noinline]] bool Machine<Nodes>::testsTrue(const Node& node, int32_t pc,
                                                 const Utf8Sequence& character) const {
    const Instruction& item = plan_.program.code[pc];
    return item.op == OP_SET ? classMatches(&item, character, optionsOf(node))
                             : itemMatches(item, character, optionsOf(node));
}

template <class Nodes>
[[gnu::noinline]] const uint8_t* Machine<Nodes>::consumeReference(const Node& node, const uint8_t* p) const {
    const Capture& group = captures_[node.slot];
    if (node.slot == 0 || group.length < 0 || group.length > end_ - p) return nullptr;
    const uint8_t* text = begin_ + group.start;
    for (int32_t i = 0; i < group.length; ++i)
        if (!sameByte(p[i], text[i], node.has(traitCaseless))) return nullptr;
    return p + group.length;
}

template <class Nodes>
bool Machine<Nodes>::holds(const Node& node, const uint8_t* p) const {
    const bool atStart = p == begin_;
    const bool behindLineFeed = !atStart && p[-1] == '\n';
    switch (node.byte) {
    case '^':
        return atStart || (node.has(traitMultiLine) && behindLineFeed && p < end_);
    case '$':
        if (node.has(traitMultiLine)) return p == end_ || *p == '\n';
        [[fallthrough]];
    case 'Z':
        return p == end_ || (p + 1 == end_ && *p == '\n');
    case 'z':
        return p == end_;
    case 'A':
    case 'G':
        return atStart;
    case 'b':
        return isBoundary(begin_, p);
    case 'B':
        return !isBoundary(begin_, p);
    case anchorLineStart:
        return atStart || behindLineFeed;
    default:
        return false;
    }
}

// --- Repeats of single items
// --------------------------------------------------------------------------------

/// Takes as many repetitions as there are.
template <class Nodes>
auto Machine<Nodes>::takeRun(const Node& node, int32_t pc, const uint8_t* p) const -> Run {
    const std::ptrdiff_t left = end_ - p;
    const uint8_t* const stop = p + (left < node.max ? left : node.max);
    const uint8_t* q = p;
    switch (node.item) {
    case Item::charClass:
        if (node.has(traitBytewise)) return takeBytes(node, pc, p);
        if (!node.has(traitSingle)) return takeClass(node, pc, p);
        q = runEnd(node, p, stop);
        break;
    case Item::byte:
        while (q < stop && *q == node.byte)
            ++q;
        break;
    case Item::byteCaseless:
        while (q < stop && (*q | 0x20) == node.byte)
            ++q;
        break;
    case Item::anyByte:
        if (stop > q) q = stop;
        break;
    default:
        return takeClass(node, pc, p);
    }
    return {q - p < node.min ? nullptr : p + node.min, q};
}

/// The same for items of several bytes: stretches by the table, the characters between them one by one.
template <class Nodes>
auto Machine<Nodes>::takeClass(const Node& node, int32_t pc, const uint8_t* p) const -> Run {
    Run run{node.min <= 0 ? p : nullptr, p};
    int32_t count = 0;
    const uint8_t* const table = node.item == Item::charClass ? plan_.ascii[node.index / 8] : nullptr;
    while (count < node.max && run.end < end_) {
        if (table != nullptr && *run.end < 0x80) {
            const std::ptrdiff_t left = end_ - run.end;
            const uint8_t* const stop = run.end + (left < node.max - count ? left : node.max - count);
            const uint8_t* q = run.end;
            while (q < stop && (table[*q] & node.mask))
                ++q;
            if (q == run.end) break;
            const auto taken = static_cast<int32_t>(q - run.end);
            if (run.lowest == nullptr && count + taken >= node.min) run.lowest = run.end + (node.min - count);
            count += taken;
            run.end = q;
            continue;
        }
        const uint8_t* q = table != nullptr ? wideEnd(node, pc, run.end) : consume(node, pc, run.end);
        if (q == nullptr) break;
        if (q == run.end) { // an empty group's text: any number of repetitions is the same place
            run.lowest = q;
            break;
        }
        run.end = q;
        if (++count == node.min) run.lowest = q;
    }
    return run;
}

/// Where the repeat that ends at `p` ends with one repetition less.
template <class Nodes>
const uint8_t* Machine<Nodes>::stepBack(const Node& node, const uint8_t* p, const uint8_t* lowest) const {
    if (node.has(traitSingle)) return p - 1;
    if (node.item == Item::backReference) return p - captures_[node.slot].length;
    p = previousCharacter(p, lowest, limit_);
    if (node.item != Item::extended) return p;
    while (p != lowest) {
        const Utf8Sequence character = unicode::decodeUtf8(p, limit_);
        if (character.malformed || !unicode::isCombiningMark(character.value)) break;
        p = previousCharacter(p, lowest, limit_);
    }
    return p;
}

/// The last end of the repeat from `q` back to `lowest` where the byte that must follow stands; `lowest` when
/// there is none. An ASCII byte is a character wherever it stands, so that a long way back is searched.
template <class Nodes>
const uint8_t* Machine<Nodes>::lastFollowed(const Node& node, const uint8_t* q, const uint8_t* lowest) const {
    constexpr std::ptrdiff_t longWay = 32;
    const bool searchable = node.item <= Item::charClass && (node.has(traitSingle) || node.follows < 0x80);
    if (searchable && q - lowest >= longWay) {
        const uint8_t* const behind = q < end_ ? q + 1 : end_;
        const int32_t at =
            lastIndexOf(lowest, static_cast<int32_t>(behind - lowest), static_cast<uint8_t>(node.follows));
        return at < 0 ? lowest : lowest + at;
    }
    while (q != lowest && (q >= end_ || *q != node.follows))
        q = stepBack(node, q, lowest);
    return q;
}

template <class Nodes>
auto Machine<Nodes>::greedy(Registers& r, const Node& node) -> Step {
    if (node.min > 0 && r.p >= end_) return Step::fail;
    return takeRunOf(r, node, takeRun(node, r.pc, r.p));
}

/// The first byte from `p` up to `stop` that is not of the node's class; `stop` when there is none.
template <class Nodes>
const uint8_t* Machine<Nodes>::runEnd(const Node& node, const uint8_t* p, const uint8_t* stop) const {
    if (node.has(traitVector) && lastBlock_ != nullptr)
        return plan_.runTests[node.index].end(p, stop, lastBlock_);
    const uint8_t* const table = plan_.ascii[node.index / 8];
    while (p < stop && (table[*p] & node.mask))
        ++p;
    return p;
}

/// A run of a class whose bytes tell where it ends, though its characters may be longer than a byte.
template <class Nodes>
auto Machine<Nodes>::takeBytes(const Node& node, int32_t pc, const uint8_t* p) const -> Run {
    if (lastBlock_ == nullptr || p >= end_) return takeClass(node, pc, p);
    const uint8_t* const end = plan_.runTests[node.index].end(p, end_, lastBlock_);
    if (end == end_ && end_ != limit_)
        return takeClass(node, pc, p); // the last character may go on behind it
    if (node.min <= 0) return {p, end};
    return {end == p ? nullptr : p + unicode::decodeUtf8(p, limit_).length, end};
}

/// The commonest repeat: of a class whose characters are all one byte long.
template <class Nodes>
auto Machine<Nodes>::classRun(Registers& r, const Node& node) -> Step {
    const std::ptrdiff_t left = end_ - r.p;
    const uint8_t* const stop = node.max < left ? r.p + node.max : end_;
    const uint8_t* const q = runEnd(node, r.p, stop);
    return takeRunOf(r, node, {q - r.p < node.min ? nullptr : r.p + node.min, q});
}

/// The same when there is nothing to come back to.
template <class Nodes>
auto Machine<Nodes>::takenRun(Registers& r, const Node& node) -> Step {
    const std::ptrdiff_t left = end_ - r.p;
    const uint8_t* const stop = node.max < left ? r.p + node.max : end_;
    const uint8_t* const q = runEnd(node, r.p, stop);
    if (node.has(traitLeading)) failedUpTo_ = q;
    if (q - r.p < node.min) return Step::fail;
    r.p = q;
    r.pc = node.next;
    return Step::go;
}

template <class Nodes>
auto Machine<Nodes>::takenBytes(Registers& r, const Node& node) -> Step {
    if (lastBlock_ == nullptr || r.p >= end_) return greedy(r, node);
    const uint8_t* const q = plan_.runTests[node.index].end(r.p, end_, lastBlock_);
    if (q == end_ && end_ != limit_) return greedy(r, node);
    if (node.has(traitLeading)) failedUpTo_ = q;
    if (q == r.p && node.min > 0) return Step::fail;
    r.p = q;
    r.pc = node.next;
    return Step::go;
}

/// Goes on behind a greedy repeat, with a record of where it can give back to.
template <class Nodes>
auto Machine<Nodes>::takeRunOf(Registers& r, const Node& node, const Run& run) -> Step {
    if (node.has(traitLeading)) failedUpTo_ = run.end;
    if (run.lowest == nullptr) return Step::fail;
    const uint8_t* q = run.end;
    if (q != run.lowest && !node.has(traitPossessive)) {
        if (node.follows >= 0) q = lastFollowed(node, q, run.lowest);
        if (q != run.lowest) {
            if (!hasRoom(r, 1)) return Step::full;
            *++r.top = {what(sortGreedy, r.pc), offset(q), offset(run.lowest), r.levels};
        }
        if (hasFailed(r, r.pc, q, r.levels)) return Step::fail;
    }
    if (!mayEndAt(q, node.next)) return Step::fail;
    r.p = q;
    r.pc = node.next;
    return Step::go;
}

template <class Nodes>
bool Machine<Nodes>::giveBack(Registers& r) {
    Record& record = *r.top;
    const int32_t pc = nodeOf(record);
    remember(r, pc, record.at, record.levels);
    if (Nodes::remembers && record.at == record.bound) { // kept to hear of the last failure too
        --r.top;
        return false;
    }
    const auto& node = nodes_[pc];
    const uint8_t* const lowest = begin_ + record.bound;
    const uint8_t* q = stepBack(node, begin_ + record.at, lowest);
    const auto passOver = [&] {
        if (node.follows >= 0) q = lastFollowed(node, q, lowest);
    };
    passOver();
    if constexpr (Nodes::remembers) {
        for (const uint8_t* last = nullptr; q != lowest && q != last; passOver()) {
            last = q;
            q = skipFailed(node, pc, q, lowest);
        }
    }
    r.levels = record.levels;
    record.at = offset(q);
    if (!Nodes::remembers && q == lowest) --r.top;
    r.p = q;
    r.pc = node.next;
    return mayEndAt(q, node.next) && !hasFailed(r, pc, q, r.levels);
}

template <class Nodes>
auto Machine<Nodes>::lazy(Registers& r, const Node& node) -> Step {
    if (node.min > 0 && r.p >= end_) return Step::fail;
    if (!hasRoom(r, 1)) return Step::full;
    const uint8_t* p = r.p;
    for (int32_t count = 0; count < node.min; ++count) {
        const uint8_t* q = consume(node, r.pc, p);
        if (q == nullptr) return Step::fail;
        if (q == p) break; // an empty group's text
        p = q;
    }
    r.p = p;
    return advanceLazily(r, node, r.pc, node.max - node.min);
}

/// Goes on behind the repeat that ends at r.p, or at the first later end where the byte that must follow
/// stands.
template <class Nodes>
auto Machine<Nodes>::advanceLazily(Registers& r, const Node& node, int32_t pc, int32_t left) -> Step {
    const uint8_t* p = r.p;
    while ((node.follows >= 0 && (p >= limit_ || *p != node.follows)) || hasFailed(r, pc, p, r.levels)) {
        if (left == 0 || p >= end_) return Step::fail;
        const uint8_t* q = consume(node, pc, p);
        if (q == nullptr || q == p) return Step::fail;
        p = q;
        --left;
        if constexpr (Nodes::remembers) {
            if (node.follows >= 0) continue;
            const uint8_t* const further = skipFailedAhead(node, pc, p, left);
            left -= static_cast<int32_t>(further - p);
            p = further;
        }
    }
    if (left > 0 && p < end_) *++r.top = {what(sortLazy, pc), offset(p), left, r.levels};
    if (!mayEndAt(p, node.next)) return Step::fail;
    r.p = p;
    r.pc = node.next;
    return Step::go;
}

template <class Nodes>
bool Machine<Nodes>::takeAnother(Registers& r) {
    const Record record = *r.top;
    const int32_t pc = nodeOf(record);
    remember(r, pc, record.at, record.levels);
    --r.top;
    const auto& node = nodes_[pc];
    const uint8_t* p = begin_ + record.at;
    const uint8_t* q = consume(node, pc, p);
    if (q == nullptr || q == p) return false;
    r.p = q;
    r.levels = record.levels;
    return advanceLazily(r, node, pc, record.bound - 1) == Step::go;
}

// --- Groups
// -------------------------------------------------------------------------------------------------

template <class Nodes>
bool Machine<Nodes>::mayBegin(const Node& node, const uint8_t* p) const {
    if constexpr (Nodes::remembers) return true; // the memory tells apart what is left out here
    return p >= end_ || mayBeginWith(plan_, node, *p);
}

/// The first marker from `marker` on whose alternative can begin at `p`.
template <class Nodes>
int32_t Machine<Nodes>::wayFrom(int32_t marker, const uint8_t* p) const {
    while (marker != noNode && !mayBegin(nodes_[marker], p))
        marker = nodes_[marker].link;
    return marker;
}

/// `opener`, at `pc`, stands in front of the first alternative, `marker` in front of the second.
template <class Nodes>
auto Machine<Nodes>::waysAt(const uint8_t* p, const Node& opener, int32_t pc, int32_t marker) const -> Ways {
    if (mayBegin(opener, p)) return {pc, marker};
    const int32_t first = wayFrom(marker, p);
    if (first == noNode) return {noAlternative, noNode};
    return {first, nodes_[first].link};
}

template <class Nodes>
auto Machine<Nodes>::enterGroup(Registers& r, const Node& node) -> Step {
    if (!hasRoom(r, 2)) return Step::full;
    const Ways ways = waysAt(r.p, node, r.pc, node.link);
    if (ways.first == noAlternative) return Step::fail;
    if (node.has(traitCapture)) {
        Capture& slot = captures_[node.slot];
        if (node.has(traitSaveOpen)) *++r.top = {what(sortSlot, node.slot), slot.start, slot.length, 0};
        slot = {offset(r.p), 0};
    }
    if (ways.next != noNode) {
        *++r.top = {what(sortAlternative, r.pc), offset(r.p), ways.next, r.levels};
        if (hasFailed(r, ways.next, r.p, r.levels)) return Step::fail;
    }
    r.pc = ways.first + 1;
    return Step::go;
}

template <class Nodes>
auto Machine<Nodes>::leaveGroup(Registers& r, const Node& node) -> Step {
    if (node.has(traitCapture)) {
        Capture& slot = captures_[node.slot];
        if (node.has(traitSaveEnd)) {
            if (!hasRoom(r, 1)) return Step::full;
            *++r.top = {what(sortSlot, node.slot), slot.start, slot.length, 0};
        }
        slot.length = offset(r.p) - slot.start;
    }
    r.pc = node.next;
    return Step::go;
}

template <class Nodes>
bool Machine<Nodes>::nextAlternative(Registers& r) {
    Record& record = *r.top;
    r.p = begin_ + record.at;
    const int32_t marker = wayFrom(record.bound, r.p);
    if (marker == noNode) {
        --r.top;
        return false;
    }
    remember(r, marker, record.at, record.levels);
    r.pc = marker + 1;
    record.bound = nodes_[marker].link;
    r.levels = record.levels;
    if (record.bound != noNode) return !hasFailed(r, record.bound, r.p, r.levels);
    --r.top;
    return true;
}

// --- Loops
// --------------------------------------------------------------------------------------------------

/// Begins iteration `count` of the loop whose opener is `node`; false when it is known to fail.
template <class Nodes>
bool Machine<Nodes>::beginIteration(Registers& r, const Node& node, int32_t opener, int32_t count,
                                    const Ways& ways) {
    Bracket& loop = bracket(node);
    Capture& slot = captures_[node.slot];
    r.top += 2;
    replacedBy(r.top) = {loop.record, slot.start, slot.length, count};
    *r.top = {what(sortIteration, opener), offset(r.p), ways.next, r.levels};
    loop.record = static_cast<int32_t>(r.top - stack_);
    r.pc = ways.first + 1;
    if (hasFailed(r, opener, r.p, r.levels)) {
        r.top->bound = noNode;
        return false;
    }
    return ways.next == noNode || !hasFailed(r, ways.next, r.p, r.levels);
}

template <class Nodes>
bool Machine<Nodes>::beginIteration(Registers& r, const Node& node, int32_t opener, int32_t count) {
    return beginIteration(r, node, opener, count, Ways{opener, node.link});
}

template <class Nodes>
auto Machine<Nodes>::enterLoop(Registers& r, const Node& node) -> Step {
    if (!hasRoom(r, 2)) return Step::full;
    if (node.max <= 0) {
        r.pc = node.next;
        return Step::go;
    }
    if (node.has(traitLazy) && node.min <= 0) {
        *++r.top = {what(sortEnterLazily, r.pc), offset(r.p), 0, r.levels};
        if (hasFailed(r, closeOf(r.pc), r.p, r.levels)) return Step::fail;
        r.pc = node.next;
        return Step::go;
    }
    const Ways ways = waysAt(r.p, node, r.pc, node.link);
    if (ways.first == noAlternative) {
        if (node.min > 0) return Step::fail;
        r.pc = node.next;
        return Step::go;
    }
    const bool hope = beginIteration(r, node, r.pc, 1, ways);
    if (node.has(traitCapture)) captures_[node.slot] = {offset(r.p), 0};
    return hope ? Step::go : Step::fail;
}

template <class Nodes>
bool Machine<Nodes>::enterLazily(Registers& r) {
    const Record record = *r.top;
    const int32_t opener = nodeOf(record);
    remember(r, closeOf(opener), record.at, record.levels);
    --r.top;
    const auto& node = nodes_[opener];
    r.p = begin_ + record.at;
    r.levels = record.levels;
    const bool hope = beginIteration(r, node, opener, 1);
    if (node.has(traitCapture)) captures_[node.slot] = {record.at, 0};
    return hope;
}

/// The end of an iteration: another one or what follows the loop. An empty iteration ends the repetition,
/// even below the minimum.
template <class Nodes>
auto Machine<Nodes>::leaveLoop(Registers& r, const Node& node) -> Step {
    if (!hasRoom(r, 3)) return Step::full;
    Record* const iteration = stack_ + plan_.brackets[node.index].record;
    return endIteration(r, node, iteration->at, replacedBy(iteration).count);
}

/// Iteration `count`, begun at `began`, is complete.
template <class Nodes>
auto Machine<Nodes>::endIteration(Registers& r, const Node& node, int32_t began, int32_t count) -> Step {
    if (node.has(traitCapture)) {
        Capture& slot = captures_[node.slot];
        if (node.has(traitSaveEnd)) *++r.top = {what(sortSlot, node.slot), slot.start, slot.length, 0};
        slot = {began, offset(r.p) - began};
    }
    const bool isLazy = node.has(traitLazy);
    if (r.p > end_ && (count < node.min || !mayEndAt(r.p, node.next))) return Step::fail;
    const bool more = offset(r.p) != began && count < node.max && r.p <= end_;
    if (more && !(isLazy && count >= node.min)) {
        if (r.levels == 0) {
            runOutOfLevels(r);
            return Step::fail;
        }
        const auto& opener = nodes_[node.other];
        const Ways ways = waysAt(r.p, opener, node.other, opener.link);
        if (ways.first != noAlternative) {
            --r.levels;
            return beginIteration(r, opener, node.other, count + 1, ways) ? Step::go : Step::fail;
        }
        if (count < node.min) return Step::fail;
        r.pc = node.next;
        return Step::go;
    }
    if (more) {
        *++r.top = {what(sortIterateLazily, node.other), offset(r.p), count, r.levels};
        if (hasFailed(r, closeOf(node.other), r.p, r.levels)) return Step::fail;
    }
    r.pc = node.next;
    return Step::go;
}

template <class Nodes>
bool Machine<Nodes>::iterateLazily(Registers& r) {
    const Record record = *r.top;
    const int32_t opener = nodeOf(record);
    remember(r, closeOf(opener), record.at, record.levels);
    --r.top;
    if (record.levels == 0) {
        runOutOfLevels(r);
        return false;
    }
    r.p = begin_ + record.at;
    r.levels = record.levels - 1;
    return beginIteration(r, nodes_[opener], opener, record.bound + 1);
}

/// An iteration has failed: its next alternative, or going on with the iterations before it.
template <class Nodes>
bool Machine<Nodes>::retryIteration(Registers& r) {
    const Record record = *r.top;
    const int32_t marker = wayFrom(record.bound, begin_ + record.at);
    if (marker != noNode) {
        rememberPart(r, marker, record.at, record.levels);
        const int32_t link = nodes_[marker].link;
        r.top->bound = link;
        r.p = begin_ + record.at;
        r.pc = marker + 1;
        r.levels = record.levels;
        return link == noNode || !hasFailed(r, link, r.p, r.levels);
    }
    remember(r, nodeOf(record), record.at, record.levels);
    const int32_t count = replacedBy(r.top).count;
    const auto& node = nodes_[nodeOf(record)];
    undo(r.top);
    if (node.has(traitLazy) || count - 1 < node.min) return false;
    r.p = begin_ + record.at;
    r.pc = node.next;
    r.levels = record.levels + (count > 1 ? 1 : 0); // without the level of the iteration given up
    return true;
}

// --- Lookaround and atomic groups
// ---------------------------------------------------------------------------

/// A condition gives its level back before the branch it has chosen begins.
template <class Nodes>
bool Machine<Nodes>::isCondition(int32_t look) const {
    return look > 0 && plan_.program.code[look - 1].op == OP_COND;
}

template <class Nodes>
auto Machine<Nodes>::enterLook(Registers& r, const Node& node) -> Step {
    if (!hasRoom(r, 2)) return Step::full;
    const uint8_t* p = r.p;
    if (node.has(traitBehind)) {
        for (int32_t count = 0; count < node.min && p != nullptr; ++count)
            p = p == begin_ ? nullptr : previousCharacter(p, begin_, limit_);
        if (p == nullptr) {
            if (node.other == noNode) return Step::fail;
            if (isCondition(r.pc)) ++r.levels;
            r.pc = node.other;
            return Step::go;
        }
    }
    *++r.top = {what(sortBody, r.pc), offset(r.p), 0, r.levels};
    bracket(node).record = static_cast<int32_t>(r.top - stack_);
    if (node.link != noNode) *++r.top = {what(sortAlternative, r.pc), offset(p), node.link, r.levels};
    r.p = p;
    ++r.pc;
    return Step::go;
}

template <class Nodes>
auto Machine<Nodes>::enterAtomic(Registers& r, const Node& node) -> Step {
    if (!hasRoom(r, 2)) return Step::full;
    *++r.top = {what(sortBody, r.pc), offset(r.p), 0, r.levels};
    bracket(node).record = static_cast<int32_t>(r.top - stack_);
    if (node.link != noNode) *++r.top = {what(sortAlternative, r.pc), offset(r.p), node.link, r.levels};
    ++r.pc;
    return Step::go;
}

/// The body has matched: its choices are dropped and its levels given back.
template <class Nodes>
auto Machine<Nodes>::leaveBody(Registers& r, const Node& closing) -> Step {
    if (!hasRoom(r, 3)) return Step::full;
    const auto& node = nodes_[closing.other];
    Record* const mark = stack_ + bracket(node).record;
    if (node.kind == Kind::atomicLoop) return leaveAtomicIteration(r, closing, mark);
    r.levels = mark->levels;
    if (node.kind == Kind::look) r.p = begin_ + mark->at;
    if (node.has(traitLeading)) failedUpTo_ = start_; // it is not this lookahead that fails the attempt
    if (!node.has(traitInner)) {
        r.top = mark - 1;
    } else if (node.has(traitKeep)) {
        keepSlots(r, mark);
    } else {
        dropTo(r, mark - 1);
    }
    if (isCondition(closing.other)) ++r.levels;
    if (node.next == noNode || !mayEndAt(r.p, node.next)) return Step::fail;
    r.pc = node.next;
    return Step::go;
}

/// Nothing can go back into the iteration, so one record is enough to give it up as a whole.
template <class Nodes>
auto Machine<Nodes>::leaveAtomicIteration(Registers& r, const Node& closing, Record* iteration) -> Step {
    const Record complete = *iteration;
    const int32_t count = replacedBy(iteration).count;
    Record* const done = iteration - 1;
    if (closing.has(traitInner)) {
        keepSlots(r, iteration + 1);
        std::memmove(iteration, iteration + 1, static_cast<std::size_t>(r.top - iteration) * sizeof(Record));
        --r.top;
    } else {
        r.top = done;
    }
    *done = {what(sortAtomicDone, closing.other), complete.at, count, complete.levels};
    r.levels = complete.levels;
    return endIteration(r, closing, complete.at, count);
}

/// Gives up the last iteration of an atomic loop.
template <class Nodes>
bool Machine<Nodes>::giveUpIteration(Registers& r) {
    const Record record = *r.top--;
    const auto& node = nodes_[nodeOf(record)];
    if (node.has(traitLazy) || record.bound - 1 < node.min) return false;
    r.p = begin_ + record.at;
    r.pc = node.next;
    r.levels = record.levels + (record.bound > 1 ? 1 : 0);
    return true;
}

template <class Nodes>
bool Machine<Nodes>::bodyFailed(Registers& r) {
    const Record record = *r.top--;
    const auto& node = nodes_[nodeOf(record)];
    if (node.kind != Kind::look || node.other == noNode) return false;
    r.p = begin_ + record.at;
    r.pc = node.other;
    r.levels = record.levels + (isCondition(nodeOf(record)) ? 1 : 0);
    return true;
}

/// Drops the choices from `base` to the top, moving what undoes captures down to `base`. The brackets inside
/// need no undoing: they are done with, and set anew when entered again.
template <class Nodes>
void Machine<Nodes>::keepSlots(Registers& r, Record* base) {
    Record* keep = r.top + 1; // kept records gather at the top, the newest first
    for (Record* record = r.top; record >= base;) {
        const Sort sort = sortOf(*record);
        if (sort == sortSlot) {
            *--keep = *record--;
        } else if (sort == sortIteration) {
            const Replaced replaced = replacedBy(record);
            const auto& node = nodes_[nodeOf(*record)];
            record -= 2;
            if (node.has(traitCapture) && replaced.count == 1)
                *--keep = {what(sortSlot, node.slot), replaced.start, replaced.length, 0};
        } else {
            --record;
        }
    }
    const std::ptrdiff_t count = r.top + 1 - keep;
    std::memmove(base, keep, static_cast<std::size_t>(count) * sizeof(Record));
    r.top = base + count - 1;
}

// --- Failed states
// ------------------------------------------------------------------------------------------

/// More returns than there are choices and positions: some must have been passed again and again. With a
/// memory: it is time to learn.
template <class Nodes>
bool Machine<Nodes>::isTired() {
    if constexpr (Nodes::remembers) return nodes_.outOfLevels && nodes_.failed->mayLearn(offset(start_));
    return --patience_ < 0 && plan_.remembersFailures;
}

/// The state of the choice at `pc`. Its context counts, from the innermost loop outwards, the iterations and
/// the loops that have not consumed anything since their iteration began.
template <class Nodes>
uint64_t Machine<Nodes>::stateOf(int32_t pc, int32_t at) const {
    uint64_t context = 0;
    if constexpr (Nodes::remembers) {
        const FailedStates& failed = *nodes_.failed;
        const FailedStates::Loop* loop = failed.loopAround(pc);
        if (loop == nullptr) return failed.state(pc, 0);
        if (loop->contexts == 0) return FailedStates::noState;
        const uint32_t depth = loop->depth;
        uint32_t empty = 0;
        for (bool still = true; loop != nullptr; loop = failed.outerLoop(*loop)) {
            Record* const iteration = stack_ + plan_.brackets[loop->bracket].record;
            still = still && iteration->at == at;
            empty += still ? 1 : 0;
            if (loop->counted == 0) continue;
            const int32_t count = replacedBy(iteration).count;
            context = context * (static_cast<uint64_t>(loop->counted) + 1) +
                      static_cast<uint64_t>(count < loop->counted ? count : loop->counted);
        }
        context = failed.state(pc, context * (depth + 1) + empty);
    }
    return context;
}

/// The last end of a repeat, from `p` back to `lowest`, behind which nothing is known to fail whatever the
/// levels; `lowest` when there is none. Exact, because going on at the ends passed over would fail.
template <class Nodes>
const uint8_t* Machine<Nodes>::skipFailed(const Node& node, int32_t pc, const uint8_t* p,
                                          const uint8_t* lowest) const {
    if constexpr (Nodes::remembers) {
        const FailedStates& failed = *nodes_.failed;
        if (node.item > Item::tested) return p;
        const FailedStates::Loop* const loop = failed.loopAround(pc);
        const uint8_t* floor = lowest;
        if (loop != nullptr) { // where the iteration began it has consumed nothing: another state
            const uint8_t* const began = begin_ + stack_[plan_.brackets[loop->bracket].record].at;
            if (began >= floor) floor = began + 1;
        }
        if (p < floor) return p;
        const uint64_t state = stateOf(pc, offset(p));
        if (state == FailedStates::noState) return p;
        const uint8_t* const target = begin_ + failed.lastUnknown(state, offset(p), offset(floor));
        if (node.has(traitSingle) || isAscii(target < lowest ? lowest : target, p)) {
            p = target;
        } else {
            while (p > target && p > lowest)
                p = stepBack(node, p, lowest);
        }
        return p < lowest ? lowest : p;
    }
    return p;
}

/// The same forwards for a lazy repeat, as far as it takes characters of one byte; at most `most` of them.
template <class Nodes>
const uint8_t* Machine<Nodes>::skipFailedAhead(const Node& node, int32_t pc, const uint8_t* p,
                                               int32_t most) const {
    if constexpr (Nodes::remembers) {
        if (node.item != Item::anyByte && node.item != Item::byte && node.item != Item::charClass) return p;
        const uint8_t* const stop = most < end_ - p ? p + most : end_;
        const uint64_t state = p < stop ? stateOf(pc, offset(p)) : FailedStates::noState;
        if (state == FailedStates::noState) return p;
        const uint8_t* const target = begin_ + nodes_.failed->firstUnknown(state, offset(p), offset(stop));
        if (node.item == Item::anyByte) return target;
        if (node.item == Item::byte) {
            while (p < target && *p == node.byte)
                ++p;
            return p;
        }
        const uint8_t* const table = plan_.ascii[node.index / 8];
        while (p < target && *p < 0x80 && (table[*p] & node.mask))
            ++p;
    }
    return p;
}

/// Is going on behind the choice at `pc` known to fail?
template <class Nodes>
bool Machine<Nodes>::hasFailed(const Registers& r, int32_t pc, const uint8_t* p, int32_t levels) {
    if constexpr (Nodes::remembers) {
        const int32_t at = offset(p);
        const uint64_t state = stateOf(pc, at);
        if (state == FailedStates::noState) return false;
        const FailedStates::Known known = nodes_.failed->lookUp(state, at, levels);
        if (known == FailedStates::Known::failedByLimit) runOutOfLevels(r);
        return known != FailedStates::Known::nothing;
    }
    return false;
}

/// What the newest choice tried last has failed: the state of `pc`.
template <class Nodes>
void Machine<Nodes>::remember(const Registers& r, int32_t pc, int32_t at, int32_t levels) {
    if constexpr (Nodes::remembers) {
        rememberPart(r, pc, at, levels);
        const std::ptrdiff_t choice = r.top - stack_;
        if (nodes_.touched >= choice) nodes_.touched = choice - 1; // what it tries next begins afresh
    }
}

/// The same when what the choice tries next counts together with this.
template <class Nodes>
void Machine<Nodes>::rememberPart(const Registers& r, int32_t pc, int32_t at, int32_t levels) {
    if constexpr (Nodes::remembers) {
        const bool touched = nodes_.touched >= r.top - stack_;
        const uint64_t state = stateOf(pc, at);
        if (state != FailedStates::noState) nodes_.failed->add(state, at, levels, touched);
    }
}

/// All choices that are left have seen it.
template <class Nodes>
void Machine<Nodes>::runOutOfLevels(const Registers& r) {
    if constexpr (Nodes::remembers) {
        nodes_.touched = r.top - stack_;
        nodes_.outOfLevels = true;
    }
}

template <class Nodes>
[[gnu::noinline]] void Machine<Nodes>::learn(const uint8_t* start, const uint8_t* end) {
    if constexpr (Nodes::remembers) {
        FailedStates& failed = *nodes_.failed;
        failed.learns(offset(start));
        constexpr std::ptrdiff_t farthest = 1 << 22;
        if (end - start > farthest) return;
        for (const uint8_t* p = end; p >= start; --p) {
            for (int32_t loop = failed.loopCount() - 1; loop > 0; --loop) {
                if (!failed.isOutermost(loop)) continue;
                nodes_.touched = 0;
                nodes_.outOfLevels = false;
                const Outcome outcome =
                    run({p, plan_.brackets[failed.bracketOf(loop)].opener, matchLimit_, stack_});
                if (outcome == Outcome::full) matchOnLargerStack();
                if (nodes_.outOfLevels) return;
            }
        }
    }
}

// --- Backtracking
// -------------------------------------------------------------------------------------------

template <class Nodes>
void Machine<Nodes>::restoreSlot(const Record& record) {
    captures_[nodeOf(record)] = {record.at, record.bound};
}

/// Takes the newest record off the stack and undoes what it stands for.
template <class Nodes>
void Machine<Nodes>::undo(Record*& top) {
    const Sort sort = sortOf(*top);
    if (sort == sortSlot) restoreSlot(*top);
    if (sort == sortIteration) {
        const Replaced& replaced = replacedBy(top);
        const auto& node = nodes_[nodeOf(*top)];
        bracket(node).record = replaced.record;
        if (node.has(traitCapture)) captures_[node.slot] = {replaced.start, replaced.length};
        --top;
    }
    --top;
}

template <class Nodes>
void Machine<Nodes>::dropTo(Registers& r, Record* mark) {
    while (r.top > mark)
        undo(r.top);
}

/// Goes back to the newest choice that is left; false when there is none.
template <class Nodes>
bool Machine<Nodes>::backtrack(Registers& r) {
    while (r.top != stack_) {
        countStep();
        bool resumed = false;
        switch (sortOf(*r.top)) {
        case sortAlternative:
            resumed = nextAlternative(r);
            break;
        case sortGreedy:
            resumed = giveBack(r);
            break;
        case sortLazy:
            resumed = takeAnother(r);
            break;
        case sortIteration:
            resumed = retryIteration(r);
            break;
        case sortEnterLazily:
            resumed = enterLazily(r);
            break;
        case sortIterateLazily:
            resumed = iterateLazily(r);
            break;
        case sortAtomicDone:
            resumed = aside(r, [&](Registers& copy) { return giveUpIteration(copy); });
            break;
        case sortBody:
            resumed = aside(r, [&](Registers& copy) { return bodyFailed(copy); });
            break;
        case sortSlot:
            restoreSlot(*r.top--);
            break;
        }
        if (resumed) return true;
    }
    return false;
}

template class Machine<PlannedNodes>;
template class Machine<DirectNodes>;
template class Machine<Remembering<PlannedNodes>>;
template class Machine<Remembering<DirectNodes>>;

} // namespace tav::regex
