// The bytes that matching can consume first from some place in a decoded program.
#pragma once

#include "regex/match/byte_set.h"
#include "regex/match/plan.h"

namespace tav::regex {

/// Adds the bytes that the node's item can begin with.
void addItem(const Plan& plan, const Node& node, ByteSet& bytes);

/// What can be consumed first where a byte is left, and whether matching can end without consuming anything.
/// Never too little: where the ways from the place are too many to follow, everything.
struct First {
    ByteSet bytes;
    bool canBeEmpty = false;

    void giveUp() {
        bytes.addAll();
        canBeEmpty = true;
    }
};

First firstBytesFrom(const Plan& plan, int32_t pc);

} // namespace tav::regex
