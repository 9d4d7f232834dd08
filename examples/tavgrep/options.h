// The command line of tavgrep.
#pragma once

#include <string>
#include <vector>

namespace tavgrep {

struct Options {
    std::vector<std::string> patterns; ///< in the order given, never empty
    std::string patternOptions;        ///< letters for the pattern compiler, of "imsx"
    std::vector<std::string> files;    ///< "-" is the standard input; never empty
    bool lineNumbers = false;
    bool onlyMatches = false;
    bool countOnly = false;
    bool invert = false;
    bool groups = false;
    bool ids = false;
    bool replace = false;
    std::string replacement; ///< the template
    bool color = false;
    bool showNames = false; ///< more than one file was named
};

enum class Request { Search, Help, Version, Mistake };

/// Reads the arguments (without the program's name). A mistake is described in `mistake`.
Request readArguments(const std::vector<std::string>& arguments, Options& options, std::string& mistake);

extern const char* const usageText;

} // namespace tavgrep
