// Random patterns over every construct, and random subjects that they have a chance to match.
#pragma once

#include "reference/comparison.h"

#include <string>

namespace tav::reference {

/// The letters that patterns and subjects of one trial share.
struct Alphabet {
    std::vector<std::string> patternPieces; // what a literal in a pattern may be
    std::vector<std::string> subjectPieces; // what a subject is made of
};

/// One of a few alphabets: two letters, letters with line feeds, multi-byte characters, malformed bytes ...
const Alphabet& randomAlphabet(Random& random);

/// A pattern with about `size` pieces; nearly all compile.
std::string randomPattern(Random& random, const Alphabet& alphabet, int size);

/// None or some of the option letters.
std::string randomOptions(Random& random);

std::string randomSubject(Random& random, const Alphabet& alphabet, int maximumPieces);

/// One random pattern on a few random subjects, with random settings; 0 when the pattern was refused, else 1.
int randomTrials(Random& random, Comparison& comparison);

/// Repeats of repeats over two letters, on subjects that they fail on in many ways: what a search remembers
/// of its failures is asked for again and again. Half of the limits are small.
int nestedTrials(Random& random, Comparison& comparison);

/// A repeated random pattern on a subject of thousands of repetitions, with limits around the default: the
/// budget must end a match at the same place, whatever a path has to remember.
int deepTrials(Random& random, Comparison& comparison);

/// A pattern of hundreds to thousands of instructions, more than the library makes a plan for.
int longTrials(Random& random, Comparison& comparison);

} // namespace tav::reference
