// Survival: whatever the pattern, nothing is read or written outside, a program that was accepted is well
// formed, machine stack stays within bounds and time grows no faster than the pattern. Pattern, options and
// block end at forbidden pages.
#include "regex/compile/pattern.h"
#include "regex/compile/well_formed.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

#if !defined(_WIN32) && !defined(__SANITIZE_ADDRESS__)
#include <pthread.h>
#endif

namespace {

using namespace tav::regex;
using tavtest::Pattern;
using tavtest::repeated;

bool isPatternError(tavStatus status) {
    return status <= tavStsBadEscape && status >= tavStsRepeatLimit;
}

/// Compiles in guarded memory; returns whether the pattern was accepted.
bool survives(const std::string& text, const char* options = "") {
    Pattern pattern(text, options);
    if (pattern.compiled()) {
        EXPECT_EQ(tavtest::faultOf(pattern.context(), text.size()), "")
            << testing::PrintToString(text) << " /" << options;
        EXPECT_EQ(pattern.context().matchLimit, 10000);
        EXPECT_EQ(pattern.context().format, 1);
        EXPECT_TRUE(pattern.workAreaUntouched()) << testing::PrintToString(text);
    } else {
        EXPECT_TRUE(isPatternError(pattern.status())) << testing::PrintToString(text);
        EXPECT_GE(pattern.errOffset(), 0) << testing::PrintToString(text);
        EXPECT_LE(pattern.errOffset(), static_cast<int32_t>(text.size())) << testing::PrintToString(text);
        if (pattern.context().tag == contextTag) {
            EXPECT_EQ(pattern.context().codeLength, 0) << testing::PrintToString(text);
        }
    }
    return pattern.compiled();
}

const std::vector<std::string>& trickyPatterns() {
    static const std::vector<std::string> patterns = {
        "(?:.*)+|(a(?i-x)b|c){2,3}?(?#com[ment)\\Qquo(te\\E*",
        "(?<=(ab){2}|[c-e]\\d\\x{100}.)(?<!\\p{Lu})(?=a|b)+(?!c)*x",
        "(a)(b)(?(12)c|d)(?(?=e)f|g)(?(?<!h)i)\\1\\2\\12\\123\\89",
        "[]a-z[:alpha:][:^word:]\\d\\Qx-y]\\E\\x{1F600}\\p{^Greek}\\cA\\012\xE2\x82\xAC-\xF0\x9F\x98\x80-]",
        "[^]\\]\\-[:x]+?[[.][[=][^^][\\^a]{65535}",
        "(?x) a b # comment (\n (?-x: c) \\# [ #] {2} d e + # end",
        "...*?\\d\\d\\d+\\w\\w{2,3}\\W\\W\\W(?:a)(?:ab)(?:..)(?:(?:(?:x)))*(?:abc)*",
        "\\a\\e\\f\\n\\r\\t\\v\\0\\01\\cA\\c[\\x4\\x41\\x{41}\\C\\X\\b\\B\\A\\Z\\z\\G\\pL\\PL\\p{Lu}\\P{"
        "Latin}\\p{InArrows}\\p{Any}\\E\\y\\",
        "((((((((((a))))))))))(?>b(?>c)*)?(?s-i:d(?m)e|f)|g|",
        "a{,3}b{}c{,}d{2}e{2,}f{2,3}g{x}h{1,2,3}i{",
        "\xC3\xA9*[\xC3\xA9][\xFF\x80]\xFF+[\xFC\x84\x80\x80\x80\x80-\xFD\xBF\xBF\xBF\xBF\xBF]",
        "(?<=a{65535})(?<=(?:a{65535}){32767})(?=(?=(?=a)*)*)*b",
    };
    return patterns;
}

TEST(Robustness, TheTrickyPatternsCompile) {
    for (const std::string& text : trickyPatterns())
        EXPECT_TRUE(survives(text)) << text;
}

TEST(Robustness, EveryPrefixAndSuffixOfTrickyPatterns) {
    for (const std::string& text : trickyPatterns()) {
        for (std::size_t length = 0; length <= text.size(); ++length) {
            for (const char* options : {"", "x"}) {
                survives(text.substr(0, length), options);
                survives(text.substr(length), options);
            }
        }
    }
}

TEST(Robustness, EveryByteValueInEveryPlace) {
    for (const std::string text : {"a.b", "[a-b]", "(?i:a)", "\\x41", "a{1,2}", "(?(1)a)", "\\p{L}",
                                   "[[:a:]]", "\\c?a", "[\\Qa\\E]"}) {
        for (std::size_t place = 0; place <= text.size(); ++place) {
            for (int byte = 1; byte < 256; ++byte) {
                std::string inserted = text;
                inserted.insert(place, 1, static_cast<char>(byte));
                survives(inserted);
                if (place == text.size()) continue;
                std::string replaced = text;
                replaced[place] = static_cast<char>(byte);
                survives(replaced);
            }
        }
    }
}

TEST(Robustness, AllShortPatternsOverTheMetacharacters) {
    const std::string alphabet = "a.*?|()[]\\{}^-:=!<>#Q1";
    int accepted = 0;
    for (const char a : alphabet) {
        for (const char b : alphabet) {
            for (const char c : alphabet)
                accepted += survives({a, b, c});
        }
    }
    EXPECT_GT(accepted, 1000);
}

TEST(Robustness, RandomPatterns) {
    const char* const fragments[] = {
        "a",      "b",      ".",    "..",       "*",         "+",        "?",     "??",     "{2}",     "{,3}",
        "{1,",    "}",      "|",    "(",        ")",         "(?:",      "(?=",   "(?!",    "(?<=",    "(?<!",
        "(?>",    "(?i)",   "(?x)", "(?-x)",    "(?i-s:",    "(?#",      "(?#c)", "(?(1)",  "(?(?=a)", "(?(",
        "[",      "]",      "[^",   "-",        "[:alpha:]", "[:",       ":]",    "[.",     ".]",      "\\d",
        "\\d\\d", "\\w",    "\\Q",  "\\E",      "\\1",       "\\12",     "\\89",  "\\x{",   "\\x{41}", "\\x4",
        "\\c",    "\\p{L}", "\\p{", "\\PL",     "\\b",       "^",        "$",     "\\C",    "\\X",     "\\",
        " ",      "#",      "\n",   "\xC3\xA9", "\xFF",      "\xE2\x82", "abc",   "{65536}"};
    const unsigned seed = 20261120;
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    std::uniform_int_distribution<std::size_t> pick(0, std::size(fragments) - 1);
    std::uniform_int_distribution<int> length(1, 14);
    int accepted = 0;
    for (int round = 0; round < 40000; ++round) {
        std::string text;
        for (int i = length(random); i > 0; --i)
            text += fragments[pick(random)];
        accepted += survives(text, (round & 1) != 0 ? "" : "xs");
        if (testing::Test::HasFailure()) break;
    }
    EXPECT_GT(accepted, 1000);
}

TEST(Robustness, RandomBytes) {
    const unsigned seed = 20261121;
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    std::uniform_int_distribution<int> byte(1, 255);
    std::uniform_int_distribution<int> length(0, 40);
    for (int round = 0; round < 20000 && !testing::Test::HasFailure(); ++round) {
        std::string text;
        for (int i = length(random); i > 0; --i)
            text += static_cast<char>(byte(random));
        survives(text);
    }
}

TEST(Robustness, ProgramsThatFillEverySlot) {
    EXPECT_EQ(Pattern(".*").context().codeLength, 3) << "one more instruction than bytes";
    for (const char* text : {".*", ".+", ".*|||", ".*()()()", ".*^$^$", ".*a*b*c*", "(a)*b?()|"})
        EXPECT_TRUE(survives(text)) << text;
}

TEST(Robustness, DeepAndNumerousGroups) {
    for (const char* opener : {"(", "(?:", "(?=", "(?<=", "(?<!", "(?>", "(?i:"}) {
        for (const std::size_t depth : {998u, 999u, 1000u, 1001u, 5000u}) {
            const bool fits = depth <= 999;
            EXPECT_EQ(survives(repeated(depth, opener) + "a" + repeated(depth, ")")), fits)
                << opener << depth;
            EXPECT_EQ(survives(repeated(depth, std::string(opener) + "|)")), fits) << opener << depth;
        }
    }
    EXPECT_TRUE(survives(repeated(499, "(?(?=a)") + "b" + repeated(499, ")")));
    EXPECT_TRUE(survives(repeated(998, "(?(1)") + "b" + repeated(998, ")")));
    EXPECT_TRUE(survives("(?<=" + repeated(998, "(") + "a" + repeated(998, ")") + ")"));
    EXPECT_TRUE(survives("(?<=" + repeated(998, "(a|") + "b" + repeated(998, ")") + ")"));
    EXPECT_FALSE(survives("(?<=" + repeated(998, "(a|") + "bc" + repeated(998, ")") + ")"));
}

// Machine stack: measured where a thread's stack can be handed in and sanitizers do not widen the frames.

#if !defined(_WIN32) && !defined(__SANITIZE_ADDRESS__)

/// Compiles on a thread whose stack was filled with a pattern beforehand and counts what was overwritten.
std::size_t stackUseOf(const std::string& text) {
    constexpr std::size_t size = 512 * 1024;
    constexpr uint8_t filler = 0xA7;
    static std::vector<uint8_t> memory(size + 4096);
    auto* const base =
        reinterpret_cast<uint8_t*>((reinterpret_cast<uintptr_t>(memory.data()) + 4095) & ~uintptr_t{4095});
    std::fill_n(base, size, filler);
    struct Job {
        const char* pattern;
        std::vector<uint64_t> block;
    } job{text.c_str(), std::vector<uint64_t>((24 * text.size() + 48056) / 8)};
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstack(&attributes, base, size);
    pthread_t thread;
    pthread_create(
        &thread, &attributes,
        [](void* argument) -> void* {
            auto* const own = static_cast<Job*>(argument);
            int32_t errOffset = 0;
            (void)tavsRegExpInit(own->pattern, nullptr,
                                 reinterpret_cast<tavRegExpContext*>(own->block.data()), &errOffset);
            return nullptr;
        },
        &job);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
    const auto* const lowest = std::find_if(base, base + size, [](uint8_t byte) { return byte != filler; });
    return static_cast<std::size_t>(base + size - lowest);
}

TEST(Robustness, TheCompilerUsesLessThan64KiBOfStack) {
    const std::size_t thread = stackUseOf("");
    for (const std::string& text : {std::string("a"), repeated(999, "(") + "a" + repeated(999, ")"),
                                    repeated(999, "(?<=") + "a" + repeated(999, ")"),
                                    "(?<=" + repeated(998, "(") + "a" + repeated(998, ")") + ")",
                                    "(?<=" + repeated(998, "(?:a(?i)") + repeated(998, ")") + ")",
                                    "[" + repeated(10000, "[:alpha:]") + "]", repeated(5000, "(?:ab)")}) {
        const std::size_t use = stackUseOf(text);
        EXPECT_LT(use, 64u * 1024) << text.substr(0, 20) << " (an empty pattern takes " << thread << ")";
    }
}

#endif

// Time

void expectCompiles(const std::string& text, bool accepted = true) {
    std::vector<uint64_t> block((24 * text.size() + 48056) / 8);
    int32_t errOffset = 0;
    const tavStatus status =
        tavsRegExpInit(text.c_str(), nullptr, reinterpret_cast<tavRegExpContext*>(block.data()), &errOffset);
    EXPECT_EQ(status == tavStsNoError, accepted)
        << text.substr(0, 40) << " " << status << " at " << errOffset;
}

/// Quadratic work would take minutes at these lengths and run into the time limit of a test.
TEST(Robustness, CompileTimeGrowsWithThePatternsLengthOnly) {
    constexpr std::size_t n = 500000;
    expectCompiles(repeated(n, "a"));
    expectCompiles(repeated(n, "a|"));
    expectCompiles(repeated(n, "."));
    expectCompiles(repeated(n, "(?:ab)"));
    expectCompiles(repeated(n, "a.(?:b)"));
    expectCompiles("(" + repeated(n, "a|") + ")");
    expectCompiles("(" + repeated(n, "a.(?:bc)") + ")");
    expectCompiles(repeated(998, "(?:") + repeated(n, "a.") + repeated(998, ")"));
    expectCompiles(repeated(499, "(?:a") + repeated(n, "a.") + repeated(499, "b)"));
    expectCompiles(repeated(900, "(a") + repeated(n, "b.") + repeated(900, "c)"));
    expectCompiles(repeated(900, "(?<=") + repeated(n, "b.") + repeated(900, ")"));
    expectCompiles(repeated(900, "(?<=a(?:b") + repeated(n, "b.") + repeated(900, "))"), false);
    expectCompiles(repeated(450, "(?<=a(?:b") + repeated(n, "b.") + repeated(450, "))"));
    expectCompiles(repeated(900, "(?=") + repeated(n, "b.") + repeated(900, ")+"));
    expectCompiles(repeated(900, "(|") + repeated(n, "b.") + repeated(900, "|)"));
}

TEST(Robustness, UnclosedPiecesAreSearchedForOnce) {
    constexpr std::size_t n = 500000;
    expectCompiles("[" + repeated(n, "[:x") + "]");
    expectCompiles(repeated(n, "[[:a]"));
    expectCompiles(repeated(n, "[[.a]"));
    expectCompiles(repeated(n, "{1"));
    expectCompiles(repeated(n, "{"));
    expectCompiles("a{" + repeated(n, "1"));
    expectCompiles(repeated(n, "{1,2"));
    expectCompiles("\\Q" + repeated(n, "\\Q"));
    expectCompiles(repeated(n, "\\Q\\E"));
    expectCompiles(repeated(n, "(?#a)"));
    expectCompiles(repeated(n, "(?:a)(?#)"));
    expectCompiles(repeated(n, "\\E"));
}

} // namespace
