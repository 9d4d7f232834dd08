#include "regex/match/alternatives.h"

#include "regex/match/first_bytes.h"

#include <cstring>

namespace tav::regex {

namespace {

class AlternativeTables {
public:
    explicit AlternativeTables(Plan& plan) : plan_(plan) {}

    /// Gives `node` the first bytes of the alternative that begins at `pc`, unless it may begin with nothing.
    void describe(Node& node, int32_t pc) {
        if (count_ == 8 * plan_.alternativeTableCount) return;
        const First first = firstBytesFrom(plan_, pc);
        if (first.canBeEmpty || first.bytes.complement().isEmpty()) return;
        ClassTable& table = plan_.alternatives[count_ / 8];
        if (count_ % 8 == 0) std::memset(table, 0, sizeof table);
        node.follows = static_cast<int16_t>(count_ / 8);
        node.mask = static_cast<uint8_t>(1u << (count_ % 8));
        first.bytes.writeTo(table, node.mask);
        ++count_;
    }

    void describeMarkers(int32_t marker) {
        for (; marker != noNode; marker = plan_.nodes[marker].link)
            describe(plan_.nodes[marker], marker + 1);
    }

private:
    Plan& plan_;
    int32_t count_ = 0; // alternatives described
};

} // namespace

void findAlternatives(Plan& plan) {
    AlternativeTables tables(plan);
    tables.describeMarkers(plan.firstAlternative);
    if (plan.firstAlternative != noNode) tables.describe(plan.firstNode, 0);
    for (int32_t pc = 0; pc < plan.program.length; ++pc) {
        Node& node = plan.nodes[pc];
        if (plan.program.code[pc].op == OP_COND) continue;
        const bool branches = node.kind == Kind::group && node.link != noNode;
        if (!branches && node.kind != Kind::loop) continue;
        tables.describe(node, pc + 1);
        tables.describeMarkers(node.link);
    }
}

} // namespace tav::regex
