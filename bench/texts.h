// The texts that the benchmarks search, made up from word lists by a fixed random sequence: the same bytes on
// every machine and in every run.
#pragma once

#include "bench/engine.h"

#include <cstddef>
#include <string>

namespace tav::bench {

enum class Text {
    Prose,    ///< sentences in lines of about 70 characters, with names, numbers and quotations
    Log,      ///< a web server's log, one request per line, with dates, addresses and URIs
    Settings, ///< lines of the form key = value, with comments
    Utf8,     ///< prose in several scripts
};

/// The text as one subject; a zero byte stands behind it, as behind every subject of the benchmarks.
const std::string& text(Text);

/// The same text cut into its lines, the line feeds left out.
const Subjects& lines(Text);

/// Short strings such as a program checks one by one: dates, numbers, words, addresses.
const Subjects& shortStrings();

/// Replaces the prose by the content of a file.
void useProse(std::string content);

} // namespace tav::bench
