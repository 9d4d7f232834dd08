// Survival: whatever the pattern, nothing is read or written outside, a program that was accepted is well
// formed, machine stack and time stay within bounds. Pattern, options and block end at forbidden pages.
#include "regex/compile/pattern.h"
#include "unicode/properties.h"

#include <gtest/gtest.h>

#include <chrono>
#include <random>
#include <vector>

#if !defined(_WIN32) && !defined(__SANITIZE_ADDRESS__)
#include <pthread.h>
#endif

namespace {

using namespace tav::regex;
using tavtest::Pattern;
using tavtest::repeated;

/// Walks an accepted program and asserts everything that the matcher takes for granted.
class WellFormed {
public:
    WellFormed(Pattern& pattern, std::size_t patternLength)
        : context_(pattern.context()), program_(programOf(context_)),
          slots_(static_cast<int64_t>(patternLength) + 1),
          end_(reinterpret_cast<const uint8_t*>(program_ + slots_)) {}

    testing::AssertionResult check() {
        if (context_.tag != contextTag) return bad("tag", 0);
        if (context_.codeLength < 0 || context_.codeLength > slots_)
            return bad("codeLength", context_.codeLength);
        if (context_.groupCount < 1 || context_.groupCount > bracketLimit)
            return bad("groupCount", context_.groupCount);
        if (context_.matchLimit != 10000 || context_.format != 1) return bad("defaults", 0);
        pool_ = reinterpret_cast<const uint8_t*>(program_ + context_.codeLength);
        if (!sequence(0, context_.codeLength, 0)) return bad(what_, at_);
        if (!literalsInOrder()) return bad("literal pool", at_);
        if (!summaries()) return bad(what_, context_.lastLiteral);
        return testing::AssertionSuccess();
    }

private:
    testing::AssertionResult bad(const char* what, int32_t where) const {
        return testing::AssertionFailure() << what << " at " << where;
    }

    bool fail(const char* what, int32_t at) {
        what_ = what;
        at_ = at;
        return false;
    }

    /// The instructions of one body, [from, to), of the bracket `id`. Nested bodies are visited through a
    /// list.
    bool sequence(int32_t from, int32_t to, int32_t id) {
        bodies_ = {{from, to, id}};
        while (!bodies_.empty()) {
            const Body body = bodies_.back();
            bodies_.pop_back();
            for (int32_t i = body.from; i < body.to;) {
                const int32_t next = item(i, body);
                if (next < 0) return false;
                i = next;
            }
        }
        return true;
    }

    struct Body {
        int32_t from;
        int32_t to;
        int32_t id;
    };

    /// The index behind the item at `i` and its quantifier, or -1.
    int32_t item(int32_t i, const Body& body) {
        const Instruction& instruction = program_[i];
        int32_t next = i + 1;
        if (!operands(i, false)) return -1;
        if (instruction.op == OP_SET) {
            next += instruction.b;
            if (instruction.b < 1 || next > body.to) return fail("class", i), -1;
            for (int32_t k = i + 1; k < next; ++k) {
                if (!operands(k, true)) return -1;
            }
        } else if (isBracket(instruction.op)) {
            next += instruction.b + 1;
            if (instruction.b < 0 || next > body.to) return fail("body length", i), -1;
            if (!bracket(i, next - 1)) return -1;
            bodies_.push_back({i + 1, next - 1, instruction.a});
        } else if (instruction.op == OP_ALT_END) {
            if (instruction.a != body.id) return fail("alternation id", i), -1;
            return next;
        } else if (isQuantifier(instruction.op) || instruction.op == OP_GROUP_END ||
                   instruction.op == OP_RANGE) {
            return fail("stray instruction", i), -1;
        }
        const bool repeatable =
            instruction.op != OP_STRING && instruction.op != OP_OPTIONS && !isLookaround(instruction.op);
        if (next < body.to && isQuantifier(program_[next].op)) {
            const Instruction& quantifier = program_[next];
            const bool bounds =
                quantifier.a >= 0 && quantifier.a <= quantifier.b && quantifier.b <= unboundedRepeat;
            if (!repeatable || !bounds || quantifier.c != 0 || quantifier.text != nullptr) {
                return fail("quantifier", next), -1;
            }
            ++next;
        }
        return next;
    }

    bool bracket(int32_t open, int32_t close) {
        const Instruction& opener = program_[open];
        const Instruction& end = program_[close];
        const bool negative = isLookaround(opener.op) || opener.op == OP_ATOMIC;
        const int32_t id = negative ? -opener.a : opener.a;
        if (id < 1 || id >= bracketLimit || ids_[static_cast<std::size_t>(id)])
            return fail("bracket id", open);
        ids_[static_cast<std::size_t>(id)] = true;
        if (end.op != OP_GROUP_END || end.a != opener.a || (end.b & ~31) != 0)
            return fail("bracket end", close);
        if (end.c < -1 || end.c > 1) return fail("repeat mark", close);
        if (opener.op == OP_COND && opener.b < 1) return fail("condition", open);
        return true;
    }

    bool operands(int32_t at, bool member) {
        const Instruction& i = program_[at];
        if (i.op < firstOpcode || i.op > lastOpcode) return fail("opcode", at);
        if (i.op != OP_STRING && i.op != OP_ULIST && i.text != nullptr) return fail("text", at);
        switch (i.op) {
        case OP_CHAR:
            return (i.a >= 0 && i.a <= 255 && i.b == 0 &&
                    (member ? i.c == 0 || i.c == -1 : (i.c & ~31) == 0)) ||
                   fail("char", at);
        case OP_STRING:
            return (!member && i.b >= 2 && i.a == 0 && inPool(i)) || fail("string", at);
        case OP_BACKREF:
            return (!member && i.a >= 1 && i.a < 1200) || fail("reference", at);
        case OP_TYPE:
            return (i.a > 0 && i.a < 128 &&
                    std::string(member ? "dDsSwW" : ".dDsSwW").find(static_cast<char>(i.a)) !=
                        std::string::npos) ||
                   fail("type", at);
        case OP_RANGE:
            return (member && static_cast<uint32_t>(i.a) <= static_cast<uint32_t>(i.b)) || fail("range", at);
        case OP_ULIST:
            return (i.c > 0 && inTables(i)) || fail("list", at);
        case OP_UCHAR:
        case OP_UPROP:
        case OP_URANGE:
            return true;
        case OP_ASSERT:
            return (!member && (i.a == anchorLineStart ||
                                std::string("^$ABGZbz").find(static_cast<char>(i.a)) != std::string::npos)) ||
                   fail("assertion", at);
        case OP_CAPTURE:
            return (!member && i.c >= 1 && i.c < context_.groupCount) || fail("slot", at);
        default:
            return !member || fail("member", at);
        }
    }

    bool inPool(const Instruction& string) const {
        const auto* const text = static_cast<const uint8_t*>(string.text);
        return text >= pool_ && text + string.b <= end_;
    }

    /// The literals lie one behind the other, in program order, directly behind the program.
    bool literalsInOrder() {
        const uint8_t* expected = pool_;
        for (int32_t i = 0; i < context_.codeLength; ++i) {
            if (program_[i].op != OP_STRING) continue;
            if (program_[i].text != expected) return fail("literal pool", i);
            expected += program_[i].b;
        }
        return true;
    }

    bool isLiteral(int32_t i) const { return program_[i].op == OP_CHAR || program_[i].op == OP_STRING; }

    /// The required final literal and the search hint, read off the program once more.
    bool summaries() {
        const int32_t length = context_.codeLength;
        const int32_t last = context_.lastLiteral;
        if (last < -2 || last >= length) return fail("lastLiteral", 0);
        if (last >= 0 && !isLiteral(last)) return fail("lastLiteral", 0);
        for (int32_t i = std::max(last, 0) + 1; last >= 0 && i < length; ++i) {
            if (!isQuantifier(program_[i].op)) return fail("lastLiteral", 0);
        }
        int32_t alternations = 0;
        bool alternating = length % 2 == 1;
        for (int32_t i = 0; i < length; ++i) {
            const bool alternation = program_[i].op == OP_ALT_END;
            alternations += alternation;
            alternating = alternating && (i % 2 == 1 ? alternation : isLiteral(i));
        }
        const bool optional = length > 1 && program_[1].op == OP_GREEDY && program_[1].a <= 0;
        const bool starts = length > 0 && isLiteral(0) && alternations == 0 && last != -2 && !optional;
        const int32_t hint = starts ? 1 : alternating && length >= 3 ? 2 : 0;
        return context_.searchHint == hint || fail("searchHint", 0);
    }

    static bool inTables(const Instruction& list) {
        const auto* const pairs = static_cast<const int32_t*>(list.text);
        for (int32_t i = 0; i < list.c; ++i) {
            if (pairs[2 * i] > pairs[2 * i + 1] || pairs[2 * i + 1] > 0x10FFFF) return false;
        }
        return true;
    }

    const tavRegExpContext& context_;
    const Instruction* program_;
    int64_t slots_;
    const uint8_t* end_;
    const uint8_t* pool_ = nullptr;
    std::vector<Body> bodies_;
    bool ids_[bracketLimit] = {};
    const char* what_ = "";
    int32_t at_ = 0;
};

bool isPatternError(tavStatus status) {
    return status <= tavStsBadEscape && status >= tavStsRepeatLimit;
}

/// Compiles in guarded memory; returns whether the pattern was accepted.
bool survives(const std::string& text, const char* options = "") {
    Pattern pattern(text, options);
    if (pattern.compiled()) {
        EXPECT_TRUE(WellFormed(pattern, text.size()).check())
            << testing::PrintToString(text) << " /" << options;
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
    const auto seed = static_cast<unsigned>(std::chrono::steady_clock::now().time_since_epoch().count());
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
    const auto seed = static_cast<unsigned>(std::chrono::steady_clock::now().time_since_epoch().count());
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

double secondsFor(const std::string& text, bool accepted = true) {
    std::vector<uint64_t> block((24 * text.size() + 48056) / 8);
    int32_t errOffset = 0;
    const auto start = std::chrono::steady_clock::now();
    const tavStatus status =
        tavsRegExpInit(text.c_str(), nullptr, reinterpret_cast<tavRegExpContext*>(block.data()), &errOffset);
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
    EXPECT_EQ(status == tavStsNoError, accepted)
        << text.substr(0, 40) << " " << status << " at " << errOffset;
    return elapsed.count();
}

/// Quadratic behaviour would take minutes at these lengths; the bound leaves room for slow machines.
TEST(Robustness, CompileTimeGrowsWithThePatternsLengthOnly) {
    constexpr std::size_t n = 200000;
    constexpr double bound = 2.0;
    EXPECT_LT(secondsFor(repeated(n, "a")), bound);
    EXPECT_LT(secondsFor(repeated(n, "a|")), bound);
    EXPECT_LT(secondsFor(repeated(n, ".")), bound);
    EXPECT_LT(secondsFor(repeated(n, "(?:ab)")), bound);
    EXPECT_LT(secondsFor(repeated(n, "a.(?:b)")), bound);
    EXPECT_LT(secondsFor("(" + repeated(n, "a|") + ")"), bound);
    EXPECT_LT(secondsFor("(" + repeated(n, "a.(?:bc)") + ")"), bound);
    EXPECT_LT(secondsFor(repeated(998, "(?:") + repeated(n, "a.") + repeated(998, ")")), bound);
    EXPECT_LT(secondsFor(repeated(499, "(?:a") + repeated(n, "a.") + repeated(499, "b)")), bound);
    EXPECT_LT(secondsFor(repeated(900, "(a") + repeated(n, "b.") + repeated(900, "c)")), bound);
    EXPECT_LT(secondsFor(repeated(900, "(?<=") + repeated(n, "b.") + repeated(900, ")")), bound);
    EXPECT_LT(secondsFor(repeated(900, "(?<=a(?:b") + repeated(n, "b.") + repeated(900, "))"), false), bound);
    EXPECT_LT(secondsFor(repeated(450, "(?<=a(?:b") + repeated(n, "b.") + repeated(450, "))")), bound);
    EXPECT_LT(secondsFor(repeated(900, "(?=") + repeated(n, "b.") + repeated(900, ")+")), bound);
    EXPECT_LT(secondsFor(repeated(900, "(|") + repeated(n, "b.") + repeated(900, "|)")), bound);
}

TEST(Robustness, UnclosedPiecesAreSearchedForOnce) {
    constexpr std::size_t n = 200000;
    constexpr double bound = 2.0;
    EXPECT_LT(secondsFor("[" + repeated(n, "[:x") + "]"), bound);
    EXPECT_LT(secondsFor(repeated(n, "[[:a]")), bound);
    EXPECT_LT(secondsFor(repeated(n, "[[.a]")), bound);
    EXPECT_LT(secondsFor(repeated(n, "{1")), bound);
    EXPECT_LT(secondsFor(repeated(n, "{")), bound);
    EXPECT_LT(secondsFor("a{" + repeated(n, "1")), bound);
    EXPECT_LT(secondsFor(repeated(n, "{1,2")), bound);
    EXPECT_LT(secondsFor("\\Q" + repeated(n, "\\Q")), bound);
    EXPECT_LT(secondsFor(repeated(n, "\\Q\\E")), bound);
    EXPECT_LT(secondsFor(repeated(n, "(?#a)")), bound);
    EXPECT_LT(secondsFor(repeated(n, "(?:a)(?#)")), bound);
    EXPECT_LT(secondsFor(repeated(n, "\\E")), bound);
}

} // namespace
