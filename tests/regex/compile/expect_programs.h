// A table of patterns with the programs that they compile to.
#pragma once

#include "regex/compile/dump.h"
#include "regex/compile/pattern.h"

#include <gtest/gtest.h>

#include <initializer_list>

namespace tavtest {

struct ProgramCase {
    std::string pattern;
    const char* program;
    const char* options = "";
};

inline void expectPrograms(std::initializer_list<ProgramCase> cases) {
    for (const ProgramCase& c : cases) {
        Pattern pattern(c.pattern, c.options);
        ASSERT_EQ(pattern.status(), tavStsNoError) << c.pattern << " at " << pattern.errOffset();
        EXPECT_EQ(dumpProgram(pattern.context()), c.program) << c.pattern;
        EXPECT_EQ(pattern.errOffset(), Pattern::noOffset) << c.pattern;
    }
}

} // namespace tavtest
