// The shortcuts that a plan may take: each leaves out work that cannot change a result. Searches use all of
// them; the tests switch them off one by one and expect the same answers.
#pragma once

#include <cstdint>

namespace tav::regex {

enum Shortcut : uint32_t {
    shortcutStartFilters = 1 << 0,    // start positions that cannot begin a match are not tried
    shortcutClassRuns = 1 << 1,       // patterns that are or begin with a run of one class
    shortcutFollows = 1 << 2,         // a repeat ends only where the byte behind it stands
    shortcutPossessive = 1 << 3,      // a repeat whose characters cannot follow it gives nothing back
    shortcutLeadingRun = 1 << 4,      // what failed behind a leading run fails behind the rest of it
    shortcutWholeSubject = 1 << 5,    // the end behind the last required literal is left unknown
    shortcutRequiredByte = 1 << 6,    // a subject without a byte that every match holds is not searched
    shortcutKeptCaptures = 1 << 7,    // captures that no path reads before setting them are not restored
    shortcutVectorRuns = 1 << 8,      // the ends of runs are found sixteen bytes at a time
    shortcutPlainNodes = 1 << 9,      // nodes for the simplest cases of groups and repeats
    shortcutLiteralMatches = 1 << 10, // the occurrences of a literal that is the whole pattern are listed
    shortcutFailedStates = 1 << 11,   // what has failed once at a position is not tried there again
    shortcutAlternatives = 1 << 12,   // alternatives that cannot begin with the byte are not tried
    shortcutWidePages = 1 << 13,      // what a class says of characters beyond ASCII is remembered
    shortcutInnerLiteral = 1 << 14,   // a run up to a literal begins where the literal is found
};

inline constexpr uint32_t everyShortcut = (1 << 15) - 1;

} // namespace tav::regex
