// The byte tables of a program's classes: what each item accepts, asked once for all 256 bytes.
#pragma once

#include "regex/match/plan.h"

#include <cstddef>

namespace tav::regex {

class ClassBuilder {
public:
    static constexpr int32_t maximum = 128;

    /// Builds into `ascii` and `members`, which have room for `capacity` classes.
    ClassBuilder(const Program& program, ClassTable* ascii, ByteSet* members, int32_t capacity)
        : program_(program), ascii_(ascii), members_(members), capacity_(capacity) {}

    /// Bytes of the work area per eight classes.
    static constexpr std::size_t bytesPerTable = sizeof(ClassTable) + 8 * sizeof(ByteSet);

    /// Gives the node of the item at `pc` its class; leaves it as it is when there is no room.
    void classify(int32_t pc, uint32_t options, Node& node);

    int32_t count() const { return count_; }

private:
    struct Source {
        int32_t pc;
        uint32_t options;
        std::size_t size;
    };

    int32_t classOf(int32_t pc, uint32_t options);
    void fill(int32_t number, const Instruction& item, uint32_t options);

    const Program& program_;
    ClassTable* ascii_;
    ByteSet* members_;
    int32_t capacity_;
    int32_t count_ = 0;
    Source sources_[maximum];
};

} // namespace tav::regex
