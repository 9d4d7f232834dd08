// Reads the pattern cases of tests/data, whose form the README there describes.
#pragma once

#include "reference/reference_engine.h"

#include <optional>
#include <string>
#include <vector>

namespace tav::reference {

struct PatternCase {
    std::string file;
    int line = 0;
    std::string source; // the line itself
    std::string pattern;
    std::string options;
    std::string subject;
    std::optional<int32_t> limit;
    std::optional<int32_t> format;
    std::optional<int32_t> slots;
    char behind = '\0';
    std::vector<Span> spans;          // what the search stores
    bool truncated = false;           // ... with the warning
    tavStatus status = tavStsNoError; // of the search or, with `refused`, of the compilation
    bool refused = false;
    int32_t errorOffset = -1; // -1: any
};

struct Section {
    std::string title;
    std::vector<PatternCase> cases;
};

/// All sections of all files, in order. A line that cannot be read ends the program with a message.
std::vector<Section> readPatternCases();

} // namespace tav::reference
