#include "regex/match/plan.h"

#include "base/vector.h"
#include "regex/match/analysis.h"
#include "regex/match/classes.h"
#include "regex/match/failed_states.h"
#include "regex/match/structure.h"

#include <algorithm>
#include <cstring>

namespace tav::regex {

namespace {

constexpr std::size_t leastSpare = 4096; // kept from nodes and tables for the memory of failed states
constexpr uint32_t matcherOptions = optionDotAll | optionMultiLine | optionCaseless;

/// Hands out the work area from its start; what does not fit is refused as a whole.
class Area {
public:
    explicit Area(tavRegExpContext& context) : base_(reinterpret_cast<uint8_t*>(context.workArea)) {}

    template <class T>
    T* take(std::size_t count) {
        const std::size_t at = (used_ + alignof(T) - 1) & ~(alignof(T) - 1);
        if (at > size || count > (size - at) / sizeof(T)) return nullptr;
        used_ = at + count * sizeof(T);
        return reinterpret_cast<T*>(base_ + at);
    }

    std::size_t left() const { return size - used_; }
    std::size_t used() const { return used_; }
    void backTo(std::size_t used) { used_ = used; }

private:
    static constexpr std::size_t size = sizeof(tavRegExpContext::workArea);
    uint8_t* base_;
    std::size_t used_ = 0;
};

/// The bytes of a program and the literals behind it; nothing when a literal lies elsewhere, where no copy
/// would tell that it has changed.
struct ProgramSize {
    bool isKnown;
    std::size_t bytes;
};

ProgramSize sizeOf(const Program& program) {
    const uint8_t* const begin = reinterpret_cast<const uint8_t*>(program.code);
    const uint8_t* end = reinterpret_cast<const uint8_t*>(program.code + program.length);
    for (int32_t pc = 0; pc < program.length; ++pc) {
        const Instruction& at = program.code[pc];
        if (at.op != OP_STRING || at.b <= 0) continue;
        if (at.text != end) return {false, 0};
        end += at.b;
    }
    return {true, static_cast<std::size_t>(end - begin)};
}

bool headerHolds(const tavRegExpContext& context) {
    return context.codeLength >= 0 && context.groupCount >= 1 && context.groupCount <= bracketLimit + 1;
}

bool optionsNeverChange(const Program& program) {
    for (int32_t pc = 0; pc < program.length; ++pc)
        if ((optionsBehind(program.code[pc], program.options) ^ program.options) & matcherOptions)
            return false;
    return true;
}

bool hasOperation(const Program& program, uint32_t op) {
    for (int32_t pc = 0; pc < program.length; ++pc)
        if (program.code[pc].op == op) return true;
    return false;
}

/// The mode that an assertion at the program's start decides.
StartMode startModeOf(const Program& program, bool alternatives) {
    if (alternatives || program.length == 0 || program.code[0].op != OP_ASSERT) return StartMode::every;
    const bool optional = program.length > 1 && isQuantifier(program.code[1].op) && program.code[1].a == 0;
    switch (program.code[0].a) {
    case '^':
        if (program.options & optionMultiLine) return StartMode::lines;
        [[fallthrough]];
    case 'A':
    case 'G':
        return optional ? StartMode::every : StartMode::only;
    default:
        return StartMode::every;
    }
}

/// Decodes every instruction; the class tables take what is left of the area.
void decodeAll(Plan& plan, Area& area) {
    const Program& program = plan.program;
    auto tables = static_cast<int32_t>((area.left() - leastSpare) / ClassBuilder::bytesPerTable);
    if (tables > ClassBuilder::maximum / 8) tables = ClassBuilder::maximum / 8;
    plan.ascii = area.take<ClassTable>(static_cast<std::size_t>(tables));
    plan.members = area.take<ByteSet>(static_cast<std::size_t>(tables) * 8);
    ClassBuilder classes(program, plan.ascii, plan.members, tables * 8);

    uint32_t options = program.options;
    int32_t members = 0; // members of a class reach up to here
    for (int32_t pc = 0; pc < program.length; ++pc) {
        Node& node = plan.nodes[pc];
        node = Node{};
        if (pc < members) continue;
        const Instruction& at = program.code[pc];
        const bool condition = pc > 0 && pc > members && program.code[pc - 1].op == OP_COND;
        node = decode(program, pc,
                      {options, openerOf(program, plan.brackets, plan.bracketCount, pc), condition});
        if (node.item == Item::tested) classes.classify(pc, options, node);
        options = optionsBehind(at, options);
        if (at.op == OP_SET) members = pc + at.b + 1;
    }
    plan.nodes[program.length] = decode(program, program.length, {options, noNode, false});
    plan.classCount = classes.count();
}

/// As many of the wanted tables as there is room for beside the least spare part.
template <class T>
T* takeTables(Area& area, int32_t wanted, int32_t& count) {
    const std::size_t left = area.left() > leastSpare ? area.left() - leastSpare : 0;
    count = std::min(wanted, static_cast<int32_t>(left / (sizeof(T) + alignof(T))));
    return area.take<T>(static_cast<std::size_t>(count));
}

/// The tables that make the matcher faster; it does without those that find no room.
void takeFurtherTables(Plan& plan, Area& area) {
    constexpr int32_t mostAlternativeTables = 16, mostWidePages = 8;
    plan.runTests = takeTables<RunTest>(area, plan.classCount, plan.runTestCount);
    plan.alternatives = takeTables<ClassTable>(area, mostAlternativeTables, plan.alternativeTableCount);
    plan.widePages = takeTables<WidePages>(area, mostWidePages, plan.widePagesCount);
    plan.firstNode = Node{};
}

/// What the memory of failed states depends on.
void prepareMemory(Plan& plan) {
    const Program& program = plan.program;
    plan.choices = 0;
    plan.levelsOnlyHelp = true;
    for (int32_t pc = 0; pc < program.length; ++pc) {
        const uint32_t op = program.code[pc].op;
        if (isQuantifier(op) || op == OP_ALT_END) ++plan.choices;
        if (op == OP_NLOOKAHEAD || op == OP_NLOOKBEHIND || op == OP_ATOMIC || op == OP_COND)
            plan.levelsOnlyHelp = false;
    }
    plan.remembersFailures = uses(plan, shortcutFailedStates) && plan.choices > 1 && !plan.hasBackReferences;
    constexpr int32_t usualPatience = 64;
    plan.patience = usualPatience;
}

void leaveToMemory(Plan& plan, Area& area) {
    uint64_t* const words = area.take<uint64_t>(0);
    plan.spareSize = words == nullptr ? 0 : area.left() / sizeof(uint64_t) * sizeof(uint64_t);
    plan.spare = reinterpret_cast<uint8_t*>(words);
    plan.remembersFailures = plan.remembersFailures && FailedStates::fits(plan);
}

void build(Plan& plan, tavRegExpContext& context, uint32_t shortcuts) {
    plan.signature = 0;
    plan.shortcuts = shortcuts;
    plan.context = &context;
    plan.program = programFrom(context);
    plan.lastLiteral = context.lastLiteral;
    plan.state = PlanState::malformed;
    plan.mode = StartMode::every;
    plan.start = StartFilter::none;
    if (!headerHolds(context)) return;

    Area area(context);
    area.take<Plan>(1);
    plan.bracketCount = countBrackets(plan.program);
    plan.brackets = area.take<Bracket>(static_cast<std::size_t>(plan.bracketCount));
    plan.captures = area.take<Capture>(static_cast<std::size_t>(context.groupCount));
    if (!structureHolds(plan.program, plan.brackets, plan.bracketCount)) return;

    plan.firstAlternative = nextAlternative(plan.program, 0, plan.program.length, 0);
    plan.mode = startModeOf(plan.program, plan.firstAlternative != noNode);
    plan.uniformOptions = optionsNeverChange(plan.program);
    plan.hasBackReferences = hasOperation(plan.program, OP_BACKREF);
    plan.seesEnd = true;
    plan.capturesStay = false;
    plan.isClassRun = false;
    plan.requiredByte = -1;
    plan.state = PlanState::direct;
    prepareMemory(plan);
    const std::size_t usedByDirect = area.used();
    const auto length = static_cast<std::size_t>(context.codeLength);
    const ProgramSize size = sizeOf(plan.program);
    plan.copySize = size.bytes;
    plan.copy = area.take<uint8_t>(size.bytes);
    plan.nodes = area.take<Node>(length + 1);
    if (plan.copy == nullptr || plan.nodes == nullptr || area.left() < leastSpare) {
        area.backTo(usedByDirect);
        leaveToMemory(plan, area);
        return;
    }

    std::memcpy(plan.copy, plan.program.code, size.bytes);
    decodeAll(plan, area);
    takeFurtherTables(plan, area);
    leaveToMemory(plan, area);
    analyse(plan);
    plan.state = PlanState::ready;
    if (size.isKnown) plan.signature = planSignature;
}

} // namespace

const Plan& makePlan(tavRegExpContext& context) {
    return planWith(context, everyShortcut);
}

Plan& planWith(tavRegExpContext& context, uint32_t shortcuts) {
    Plan& plan = *reinterpret_cast<Plan*>(context.workArea);
    build(plan, context, shortcuts);
    return plan;
}

} // namespace tav::regex
