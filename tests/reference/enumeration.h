// All small patterns over every construct, on all short subjects.
#pragma once

#include "reference/comparison.h"

#include <cstdint>
#include <string>
#include <vector>

namespace tav::reference {

/// A family of patterns: every expression of up to `size` atoms and operators over these.
struct Family {
    const char* name;
    std::vector<std::string> atoms;
    std::vector<std::string> repeats;  // written behind an expression, grouped where it must be
    std::vector<std::string> brackets; // with "X" where the expression goes
    int size;
    std::vector<std::string> optionSets;
    std::vector<std::string> letters; // subjects are all words of up to `longest` letters
    int longest;
    int everySize; // expressions of the largest size: only every so-manieth is taken
};

const std::vector<Family>& families();

/// The patterns of a family, smaller ones first.
std::vector<std::string> patternsOf(const Family& family);

/// All words over the family's letters.
std::vector<std::string> subjectsOf(const Family& family);

struct EnumerationCount {
    int64_t patterns = 0;
    int64_t refused = 0;
};

/// Compares every `stride`-th pattern of every family (from `offset`) on all its subjects.
EnumerationCount compareEnumerated(Comparison& comparison, int stride, int offset);

} // namespace tav::reference
