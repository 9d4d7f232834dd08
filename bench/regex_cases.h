// What is measured: patterns by group, each with its text and kind of work. Only patterns that all engines
// which know their constructs read alike: equal tallies are checked before anything is timed.
#pragma once

#include "bench/engine.h"
#include "bench/texts.h"

namespace tav::bench {

enum class Source { Whole, Lines, Short };

struct Case {
    const char* group;
    const char* name;
    const char* pattern;
    const char* options;
    Text text;
    Source source;
    Work work;
};

inline constexpr Case cases[] = {
    // Literals: the length of the run and how often it occurs decide.
    {"literal", "rare", "Montgomery", "", Text::Prose, Source::Whole, Work::All},
    {"literal", "frequent", "the", "", Text::Prose, Source::Whole, Work::All},
    {"literal", "one-byte", "q", "", Text::Prose, Source::Whole, Work::All},
    {"literal", "long", "articles/2026/spring HTTP", "", Text::Log, Source::Whole, Work::All},
    {"literal", "per-line", "lantern", "", Text::Prose, Source::Lines, Work::First},

    {"caseless", "rare", "montgomery", "i", Text::Prose, Source::Whole, Work::All},
    {"caseless", "frequent", "THE", "i", Text::Prose, Source::Whole, Work::All},
    {"caseless", "per-line", "LANTERN", "i", Text::Prose, Source::Lines, Work::First},
    {"caseless", "class", "q[a-z]+", "i", Text::Prose, Source::Whole, Work::All},

    {"words", "four-names", "Alice|Robert|Catherine|Dimitri", "", Text::Prose, Source::Whole, Work::All},
    {"words", "twelve-words",
     "window|quarter|captain|exchange|jealous|quiet|question|lazily|oxygen|jumped|harbour|whisper", "",
     Text::Prose, Source::Whole, Work::All},
    {"words", "caseless", "alice|robert|catherine|dimitri", "i", Text::Prose, Source::Whole, Work::All},
    {"words", "common-prefix", "th(?:e|at|is|ere|ese|ey|ough)", "", Text::Prose, Source::Whole, Work::All},
    {"words", "bounded", "\\b(?:and|or|not|but)\\b", "", Text::Prose, Source::Whole, Work::All},
    {"words", "name-and-word", "(?:Alice|Harold|Isabella) [a-z]+", "", Text::Prose, Source::Whole, Work::All},

    {"runs", "lower", "[a-z]+", "", Text::Prose, Source::Whole, Work::All},
    {"runs", "word", "\\w+", "", Text::Prose, Source::Whole, Work::All},
    {"runs", "digits", "\\d+", "", Text::Prose, Source::Whole, Work::All},
    {"runs", "capitalised", "[A-Z][a-z]+", "", Text::Prose, Source::Whole, Work::All},
    {"runs", "not-space", "[^\\s]+", "", Text::Log, Source::Whole, Work::All},
    {"runs", "long-words", "[a-z]{8,}", "", Text::Prose, Source::Whole, Work::All},
    {"runs", "word-ending", "\\w+ing\\b", "", Text::Prose, Source::Whole, Work::All},
    {"runs", "trailing-space", "[ \\t]+$", "m", Text::Settings, Source::Whole, Work::All},

    {"captures", "two-words", "(\\w+)\\s+(\\w+)", "", Text::Prose, Source::Lines, Work::Captures},
    {"captures", "key-value", "^\\s*([\\w.]+)\\s*=\\s*(.*?)\\s*$", "", Text::Settings, Source::Lines,
     Work::Captures},
    {"captures", "log-line", "^(\\S+) (\\S+) (\\S+) \\[([^\\]]+)\\] \"(\\w+) (\\S+) [^\"]*\" (\\d+) (\\d+)",
     "", Text::Log, Source::Lines, Work::Captures},
    {"captures", "repeated-group", "(?:(\\w+)[ ,.]+)+", "", Text::Prose, Source::Lines, Work::Captures},
    {"captures", "optional", "(GET|POST) (/\\w+)(/\\w+)?(/\\w+)?", "", Text::Log, Source::Lines,
     Work::Captures},

    {"dots", "greedy-to-literal", ".*whisper", "", Text::Prose, Source::Whole, Work::All},
    {"dots", "greedy-between", "Alice.*of", "", Text::Prose, Source::Whole, Work::All},
    {"dots", "lazy-between", "Alice.*?the", "s", Text::Prose, Source::Whole, Work::All},
    {"dots", "lazy-quoted", "\".*?\"", "", Text::Log, Source::Whole, Work::All},
    {"dots", "class-quoted", "\"[^\"]*\"", "", Text::Log, Source::Whole, Work::All},
    {"dots", "line", ".+", "", Text::Prose, Source::Whole, Work::All},
    {"dots", "bounded", "Robert.{0,30}with", "", Text::Prose, Source::Whole, Work::All},

    {"no-match", "literal", "zyxwvut", "", Text::Prose, Source::Whole, Work::All},
    {"no-match", "run-before", "[a-z]+zyx", "", Text::Prose, Source::Whole, Work::All},
    {"no-match", "no-literal", "[a-q][^u-z]{13}[0-9]{9}", "", Text::Prose, Source::Whole, Work::All},
    {"no-match", "alternatives", "(?:foo|bar|qux)\\d+!", "", Text::Prose, Source::Whole, Work::All},
    {"no-match", "lines", "^(\\w+) (\\d+) (\\w+)#$", "", Text::Prose, Source::Lines, Work::First},

    {"short", "date", "^\\d{4}-\\d\\d-\\d\\d$", "", Text::Prose, Source::Short, Work::First},
    {"short", "number", "^[0-9]+$", "", Text::Prose, Source::Short, Work::First},
    {"short", "literal", "lantern", "", Text::Prose, Source::Short, Work::First},
    {"short", "mail-groups", "^([\\w.]+)@([\\w.]+)$", "", Text::Prose, Source::Short, Work::Captures},
    {"short", "words", "Alice|Robert|Catherine", "", Text::Prose, Source::Short, Work::First},
    {"short", "word", "\\w+", "", Text::Prose, Source::Short, Work::First},

    {"real", "date", "\\d{4}-\\d{2}-\\d{2}", "", Text::Prose, Source::Whole, Work::All},
    {"real", "mail", "[\\w.+-]+@[\\w.-]+\\.[a-z]{2,}", "", Text::Prose, Source::Whole, Work::All},
    {"real", "uri", "https?://[^\\s/\"]+/[^\\s\"]*", "", Text::Log, Source::Whole, Work::All},
    {"real", "address", "\\b(?:\\d{1,3}\\.){3}\\d{1,3}\\b", "", Text::Log, Source::Whole, Work::All},
    {"real", "price", "\\$\\d+", "", Text::Prose, Source::Whole, Work::All},

    {"look", "ahead", "\\w+(?=,)", "", Text::Prose, Source::Whole, Work::All},
    {"look", "behind", "(?<=\\$)\\d+", "", Text::Prose, Source::Whole, Work::All},
    {"look", "not-ahead", "\\bth(?!e\\b)\\w+", "", Text::Prose, Source::Whole, Work::All},
    {"look", "back-reference", "\\b(\\w+) \\1\\b", "", Text::Prose, Source::Lines, Work::Captures},
    {"look", "atomic", "(?>\\w+)\\.", "", Text::Prose, Source::Whole, Work::All},

    {"utf8", "literal", "\xD0\x9C\xD0\xBE\xD1\x81\xD0\xBA\xD0\xB2\xD0\xB0", "", Text::Utf8, Source::Whole,
     Work::All},
    {"utf8", "script", "\\p{Greek}+", "", Text::Utf8, Source::Whole, Work::All},
    {"utf8", "category", "\\p{Lu}\\p{Ll}+", "", Text::Utf8, Source::Whole, Work::All},
    {"utf8", "class", "[\xD0\xB0-\xD1\x8F]+", "", Text::Utf8, Source::Whole, Work::All},
    {"utf8", "dot", ".{20}", "", Text::Utf8, Source::Whole, Work::All},
    {"utf8", "words", "\\w+", "", Text::Utf8, Source::Whole, Work::All},

    {"replace", "literal", "the", "", Text::Prose, Source::Whole, Work::Replace},
    {"replace", "rare", "Montgomery", "", Text::Prose, Source::Whole, Work::Replace},
    {"replace", "words", "\\w+", "", Text::Prose, Source::Whole, Work::Replace},
    {"replace", "groups", "(\\w+)@([\\w.]+)", "", Text::Prose, Source::Whole, Work::Replace},
    {"replace", "lines", "\\d+", "", Text::Log, Source::Lines, Work::Replace},
    {"replace", "short", "[aeiou]", "", Text::Prose, Source::Short, Work::Replace},
    {"replace", "no-match", "zyxwvut", "", Text::Prose, Source::Lines, Work::Replace},

    {"set", "five-log-lines", "\"POST \n 404 \\d+\n/api/v\\d+/\n^10\\.\nq=lantern", "", Text::Log,
     Source::Lines, Work::Set},
    {"set", "twenty-words",
     "Alice\nRobert\nCatherine\nDimitri\nwindow\nquarter\ncaptain\nexchange\njealous\nquiet\nquestion\nlazily"
     "\n"
     "oxygen\njumped\nharbour\nwhisper\nlantern\nmountain\nvillage\nevening",
     "", Text::Prose, Source::Lines, Work::Set},
    {"set", "twenty-words-whole",
     "Alice\nRobert\nCatherine\nDimitri\nwindow\nquarter\ncaptain\nexchange\njealous\nquiet\nquestion\nlazily"
     "\n"
     "oxygen\njumped\nharbour\nwhisper\nlantern\nmountain\nvillage\nevening",
     "", Text::Prose, Source::Whole, Work::Set},
    {"set", "forms",
     "^\\d+$\n^\\d{4}-\\d\\d-\\d\\d$\n^[\\w.]+@[\\w.]+$\n^(?:\\d{1,3}\\.){3}\\d{1,3}$\n^\\w+ \\w+", "",
     Text::Prose, Source::Short, Work::Set},
    {"set", "absent",
     "Exception: \\w+\nsegfault at \\d+\npanic\\n?\nOutOfMemory\ntimeout after \\d+ ms\nrefused\nTraceback\n"
     "deadlock\ncorrupt(?:ed)?\ndenied for user",
     "", Text::Log, Source::Lines, Work::Set},

    {"compile", "literal", "lantern", "", Text::Prose, Source::Short, Work::Compile},
    {"compile", "date", "^(\\d{4})-(\\d\\d)-(\\d\\d)$", "", Text::Prose, Source::Short, Work::Compile},
    {"compile", "words", "Alice|Robert|Catherine|Dimitri|[a-z]+ing", "", Text::Prose, Source::Short,
     Work::Compile},
};

} // namespace tav::bench
