// The simple case mappings of Unicode 2.0: those of 2.1.9 as the test data has them, with the twelve in which
// 2.0 differs. Read apart from the library's table.
#pragma once

#include "unicode/data/unicode_2_1_9.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace tavtest {

class CaseReference {
public:
    CaseReference() : toUpper_(0x10000), toLower_(0x10000) {
        read(unicode_2_1_9::toUpper, toUpper_);
        read(unicode_2_1_9::toLower, toLower_);
        toLower_[0x018E] = 0x0258;
        for (const std::size_t unit : {0x019Fu, 0x01A6u})
            toLower_[unit] = 0;
        toUpper_[0x0258] = 0x018E;
        for (const std::size_t unit :
             {0x01DDu, 0x0275u, 0x0280u, 0x0345u, 0x03C2u, 0x03F2u, 0x1E9Bu, 0x1FBEu})
            toUpper_[unit] = 0;
    }

    bool hasUpper(std::size_t unit) const { return toUpper_[unit] != 0; }
    bool hasLower(std::size_t unit) const { return toLower_[unit] != 0; }
    uint16_t upper(uint16_t unit) const { return hasUpper(unit) ? toUpper_[unit] : unit; }
    uint16_t lower(uint16_t unit) const { return hasLower(unit) ? toLower_[unit] : unit; }

private:
    template <std::size_t count>
    static void read(const MappingRun (&runs)[count], std::vector<uint16_t>& mapping) {
        for (const MappingRun& run : runs)
            for (uint32_t unit = run.first; unit <= run.last; unit += run.step)
                mapping[unit] = static_cast<uint16_t>(unit + static_cast<uint32_t>(run.difference));
    }

    std::vector<uint16_t> toUpper_, toLower_; // 0: no mapping
};

inline const CaseReference& caseReference() {
    static const CaseReference reference;
    return reference;
}

} // namespace tavtest
