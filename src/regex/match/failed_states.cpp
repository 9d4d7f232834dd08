#include "regex/match/failed_states.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <new>

namespace tav::regex {

namespace {

/// Hands out the spare part of the work area.
class Spare {
public:
    explicit Spare(const Plan& plan) : next_(plan.spare), left_(plan.spareSize) {}

    template <class T>
    T* take(std::size_t count) {
        const std::size_t size = (count * sizeof(T) + 7) & ~std::size_t{7};
        if (size > left_) return nullptr;
        uint8_t* const memory = next_;
        next_ += size;
        left_ -= size;
        return reinterpret_cast<T*>(memory);
    }

    std::size_t left() const { return left_; }

private:
    uint8_t* next_;
    std::size_t left_;
};

bool isLoop(Kind kind) {
    return kind == Kind::loop || kind == Kind::atomicLoop;
}

/// Is what the bracket holds matched alone, so that nothing around it can tell how?
bool isBody(Kind kind) {
    return kind == Kind::look || kind == Kind::atomic || kind == Kind::atomicLoop;
}

/// The opening of a bracket, without a plan's nodes.
Node openingAt(const Plan& plan, int32_t pc) {
    return decode(plan.program, pc, {plan.program.options, noNode, false});
}

/// Iterations behind this one differ from it in nothing that can still be told. Every iteration has cost a
/// level, so there are no more than the limit allows.
int32_t countedUpTo(const Node& loop, int32_t matchLimit) {
    if (loop.max < unboundedRepeat) return std::min(loop.max, matchLimit);
    return loop.min > 1 ? std::min(loop.min, matchLimit) : 0; // inside "+" the minimum is always reached
}

} // namespace

bool FailedStates::fits(const Plan& plan) {
    Spare spare(plan);
    return spare.take<FailedStates>(1) != nullptr &&
           spare.take<uint16_t>(static_cast<std::size_t>(plan.program.length) + 1) != nullptr &&
           spare.take<Loop>(static_cast<std::size_t>(plan.bracketCount) + 1) != nullptr &&
           spare.take<Line>(fewestLines) != nullptr;
}

FailedStates& FailedStates::create(const Plan& plan, int64_t positions, int32_t matchLimit) {
    auto* const memory = new (plan.spare) FailedStates;
    memory->prepare(plan, positions, matchLimit);
    return *memory;
}

void FailedStates::prepare(const Plan& plan, int64_t positions, int32_t matchLimit) {
    const auto length = static_cast<std::size_t>(plan.program.length);
    levelsOnlyHelp_ = plan.levelsOnlyHelp;
    matchLimit_ = matchLimit;
    while (matchLimit >> levelShift_ >= UINT16_MAX)
        ++levelShift_;
    contextBits_ = keyBits - static_cast<int>(std::bit_width(length + 1));

    Spare spare(plan);
    spare.take<FailedStates>(1);
    around_ = spare.take<uint16_t>(length + 1);
    loops_ = spare.take<Loop>(static_cast<std::size_t>(plan.bracketCount) + 1);
    findLoops(plan);

    const std::size_t lines = spare.left() / sizeof(Line);
    lines_ = spare.take<Line>(lines);
    capacity_ = static_cast<uint32_t>(lines - probes);
    // Twice the lines that every choice and position would take: chains of probes stay short.
    const int64_t perChoice = positions / (levelsOnlyHelp_ ? 64 : 4) + 1;
    const int64_t wanted = 8 + 4 * perChoice * (plan.choices + 1);
    clear(static_cast<uint32_t>(std::min<int64_t>(wanted, capacity_)));
}

void FailedStates::clear(uint32_t homes) {
    homes_ = homes;
    std::memset(static_cast<void*>(lines_), 0, (homes + probes) * sizeof(Line));
}

/// Numbers the loops and tells for every instruction the innermost one around it. What is matched alone
/// depends on no loop outside.
void FailedStates::findLoops(const Plan& plan) {
    uint16_t current = 0;
    loops_[0] = {plan.program.length, 0, 0, 0, 0, 0, 1};
    loopCount_ = 1;
    int32_t members = 0; // members of a class reach up to here
    for (int32_t pc = 0; pc <= plan.program.length; ++pc) {
        while (current != 0 && pc == loops_[current].close)
            current = loops_[current].parent;
        if (pc >= members && pc < plan.program.length) {
            const Instruction& at = plan.program.code[pc];
            if (at.op == OP_SET) members = pc + at.b + 1;
            if (isBracket(at.op)) enter(plan, pc, current);
        }
        around_[pc] = loops_[current].depth == 0 ? uint16_t{0} : current;
    }
}

void FailedStates::enter(const Plan& plan, int32_t pc, uint16_t& current) {
    const Instruction& at = plan.program.code[pc];
    const Node node = openingAt(plan, pc);
    if (!isLoop(node.kind) && !isBody(node.kind)) return;
    const Loop& outer = loops_[current];
    Loop& loop = loops_[loopCount_];
    loop = {pc + at.b + 1, static_cast<uint16_t>(std::abs(at.a)), 0, current, 0, 0, 1};
    if (!isBody(node.kind)) {
        loop.outer = outer.depth == 0 ? uint16_t{0} : current;
        loop.depth = static_cast<uint16_t>(outer.depth + 1);
        loop.counted = countedUpTo(node, std::max(matchLimit_, 0));
        const uint64_t contexts =
            static_cast<uint64_t>(outer.contexts) * (static_cast<uint64_t>(loop.counted) + 1);
        const bool fits = contexts * (loop.depth + 1u) < uint64_t{1} << contextBits_;
        loop.contexts = fits ? static_cast<uint32_t>(contexts) : 0;
    }
    current = loopCount_++;
}

inline FailedStates::Line* FailedStates::home(uint64_t key) const {
    const uint64_t hash = key * 0x9E3779B97F4A7C15u >> 32;
    return lines_ + (hash * homes_ >> 32);
}

inline const FailedStates::Line* FailedStates::find(uint64_t key) const {
    const Line* const first = home(key);
    for (const Line* line = first; line != first + probes; ++line) {
        if (line->key == key) return line;
        if (line->key == 0) return nullptr;
    }
    return nullptr;
}

FailedStates::Line& FailedStates::claim(uint64_t key) {
    Line* const first = home(key);
    for (Line* line = first; line != first + probes; ++line) {
        if (line->key == key) return *line;
        if (line->key != 0) continue;
        line->key = key;
        return *line;
    }
    Line& line = first[victim_++ % probes];
    line.key = key;
    line.failed = 0;
    return line;
}

FailedStates::Known FailedStates::lookUp(uint64_t state, int32_t at, int32_t levels) const {
    if (levelsOnlyHelp_) {
        const Line* const line = find(bitsKey(state, at));
        if (line != nullptr && (line->failed >> (at & 63) & 1) != 0) return Known::failed;
        if (!hasLevels_) return Known::nothing;
    }
    const Line* const line = find(levelsKey(state, at));
    const int32_t known = line == nullptr ? 0 : line->levels[at & 3];
    if (known == 0) return Known::nothing;
    const int64_t bound = static_cast<int64_t>(known) << levelShift_;
    if (levelsOnlyHelp_) return levels <= bound ? Known::failedByLimit : Known::nothing;
    return levels >= bound ? Known::failed : Known::nothing;
}

int32_t FailedStates::lastUnknown(uint64_t state, int32_t at, int32_t floor) const {
    while (at >= floor) {
        const Line* const line = find(bitsKey(state, at));
        if (line == nullptr) return at;
        const uint64_t unknown = ~line->failed << (63 - (at & 63));
        if (unknown != 0) return std::max(at - std::countl_zero(unknown), floor - 1);
        at = (at & ~63) - 1;
    }
    return floor - 1;
}

int32_t FailedStates::firstUnknown(uint64_t state, int32_t at, int32_t ceiling) const {
    while (at < ceiling) {
        const Line* const line = find(bitsKey(state, at));
        if (line == nullptr) return at;
        const uint64_t unknown = ~line->failed >> (at & 63);
        if (unknown != 0) return std::min(at + std::countr_zero(unknown), ceiling);
        at = (at | 63) + 1;
    }
    return ceiling;
}

void FailedStates::add(uint64_t state, int32_t at, int32_t levels, bool touched) {
    if (levelsOnlyHelp_ && !touched) {
        claim(bitsKey(state, at)).failed |= uint64_t{1} << (at & 63);
        return;
    }
    if (levelsOnlyHelp_) {
        if (!hasLevels_) { // from now on lines tell of four positions only
            hasLevels_ = true;
            clear(capacity_);
        }
        uint16_t& known = claim(levelsKey(state, at)).levels[at & 3];
        known = std::max(known, static_cast<uint16_t>(levels >> levelShift_));
        return;
    }
    if (touched) return;
    uint16_t& known = claim(levelsKey(state, at)).levels[at & 3];
    const int64_t units =
        std::max<int64_t>((static_cast<int64_t>(levels) + (int64_t{1} << levelShift_) - 1) >> levelShift_, 1);
    if (known == 0 || units < known) known = static_cast<uint16_t>(units);
}

} // namespace tav::regex
