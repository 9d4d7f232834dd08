// Random templates, patterns, sources and capacities: the library beside a plain twin of the replacement,
// which takes its matches from the reference engine and writes into a string. Compared is everything that the
// caller can see, every byte of the destination included; the destination ends where a forbidden page begins,
// with just the room that the header asks for.
#include "reference/reference_engine.h"
#include "regex/services/plain_replacement.h"
#include "regex/services/support.h"

#include <algorithm>
#include <random>

using namespace tavtest;
using tav::reference::Span;

namespace {

constexpr char filler = '~';

class Generator {
public:
    explicit Generator(uint32_t seed) : random_(seed) {}

    uint32_t below(uint32_t limit) { return static_cast<uint32_t>(random_() % limit); }

    template <std::size_t N>
    std::string of(const char* const (&list)[N]) {
        return list[below(N)];
    }

    std::string pattern(int depth) {
        std::string all;
        const uint32_t parts = 1 + below(3);
        for (uint32_t i = 0; i < parts; i++)
            all += atom(depth) + (below(3) == 0 ? of(quantifiers) : "");
        if (below(4) == 0) {
            all += '|';
            if (below(3) != 0) all += pattern(depth - 1);
        }
        return all;
    }

    std::string templateText() {
        std::string all;
        const uint32_t parts = below(6);
        for (uint32_t i = 0; i < parts; i++)
            all += of(templateParts);
        return all;
    }

    std::string source() {
        std::string all;
        const uint32_t parts = 1 + below(below(4) == 0 ? 24 : 8);
        for (uint32_t i = 0; i < parts; i++)
            all += of(sourceParts);
        return all;
    }

    std::string options() { return std::string(below(2) ? "g" : "").append(of(optionLetters)); }

private:
    std::string atom(int depth) {
        if (depth <= 0 || below(2)) return of(atoms);
        return of(openers).append(pattern(depth - 1)).append(")");
    }

    static constexpr const char* atoms[] = {"a",    "b", "c",   "ab",  ".",   "[ab]",     "[^a]",
                                            "\\w",  "^", "$",   "\\b", "\\B", "\xC3\xA4", "a",
                                            "\\\\", "b", "\\1", "x",   "\\C", "[^\\n]"};
    static constexpr const char* quantifiers[] = {"*", "+", "?", "*?", "+?", "??", "{0,2}", "{2}", "{1,2}?"};
    static constexpr const char* openers[] = {"(", "(", "(", "(?:", "(?=", "(?!", "(?>", "(?<=a|", "(?i:"};
    static constexpr const char* templateParts[] = {"a",    "xyz", "$&",         "$1",         "$2",
                                                    "$3",   "\\",  "-",          "$12",        "$10",
                                                    "\\$1", "<",   "0123456789", "$1111111111"};
    static constexpr const char* sourceParts[] = {"a",  "b",        "c",    "ab", "aab", "x",
                                                  "\n", "\xC3\xA4", "\xC3", "A",  "\\"};
    static constexpr const char* optionLetters[] = {"", "", "i", "m", "s"};

    std::mt19937 random_;
};

/// One random request: what the search finds, by the reference.
tav::reference::SearchResult referenceSearch(tavRegExpContext& context, const std::string& source,
                                             int32_t numResults) {
    tav::reference::SearchSettings settings;
    settings.capacity = numResults;
    settings.global = (context.options & 0x10) != 0;
    settings.storeAllEntries = true;
    settings.stepLimit = 20000;
    return tav::reference::search(tav::reference::programIn(context), {bytesOf(source), lengthOf(source)},
                                  settings);
}

struct Tally {
    int compared = 0;
    int replaced = 0;
    int incomplete = 0;
};

void compareOnce(Generator& generator, CompiledPattern& pattern, Tally& tally) {
    Request request;
    request.source = generator.source();
    const std::string templateText = generator.templateText();
    request.plain = readTemplate(templateText);
    CompiledTemplate compiled(templateText);
    ASSERT_EQ(compiled.status(), request.plain.malformed ? tavStsBadGroupReference : tavStsNoError);
    if (request.plain.malformed) return;
    ASSERT_EQ(static_cast<std::size_t>(compiled->itemCount), request.plain.pieces.size());

    const bool global = (pattern->options & 0x10) != 0;
    const int32_t perMatch = pattern->groupCount;
    const auto numResults = static_cast<int32_t>(1 + generator.below(generator.below(3) ? 80 : 4));
    const auto found = referenceSearch(*pattern.get(), request.source, numResults);
    if (found.gaveUp) return;
    if (found.status >= 0 && global) {
        for (std::size_t i = 0; i + static_cast<std::size_t>(perMatch) <= found.entries.size();
             i += static_cast<std::size_t>(perMatch))
            request.matches.emplace_back(found.entries.begin() + static_cast<std::ptrdiff_t>(i),
                                         found.entries.begin() + static_cast<std::ptrdiff_t>(i) + perMatch);
    } else if (found.status >= 0 && !found.entries.empty()) {
        request.matches.push_back(found.entries);
    }

    // Every capacity around the boundaries: from 1 up, each on its own.
    const auto capacities = static_cast<int64_t>(request.source.size() + 24);
    for (int64_t capacity = 1; capacity <= capacities; capacity += 1 + generator.below(3)) {
        request.capacity = capacity;
        const bool none = found.status < 0 || found.entries.empty();
        Outcome expected = none ? plainCopy(request) : global ? plainAll(request) : plainFirst(request);
        const std::size_t room = documentedRoom(request, global);
        ASSERT_LE(expected.image.size(), room);
        expected.image.resize(room, filler);

        static GuardedBuffer<uint8_t> pages(4096);
        uint8_t* const dst = pages.tail(room);
        std::memset(dst, filler, room);
        std::vector<tavRegExpFindResult> results(static_cast<std::size_t>(numResults));
        int32_t srcLen = lengthOf(request.source);
        auto dstLen = static_cast<int32_t>(capacity);
        int32_t count = numResults;
        const tavStatus status = tavsRegExpReplace_8u(bytesOf(request.source), &srcLen, dst, &dstLen,
                                                      results.data(), &count, pattern.get(), compiled.get());
        const std::string what = "template " + templateText + ", source " + request.source + ", capacity " +
                                 std::to_string(capacity) + ", results " + std::to_string(numResults);
        ASSERT_EQ(status, found.status) << what;
        ASSERT_EQ(count, found.numFind) << what;
        ASSERT_EQ(srcLen, expected.consumed) << what;
        ASSERT_EQ(dstLen, expected.written) << what;
        ASSERT_EQ(std::string(reinterpret_cast<const char*>(dst), room), expected.image) << what;
        for (std::size_t i = 0; i < found.entries.size(); i++) {
            const Span span = found.entries[i];
            ASSERT_EQ(results[i].length, span.length) << what;
            ASSERT_EQ(results[i].start, span.length < 0 ? nullptr : bytesOf(request.source) + span.start);
        }
        tally.compared++;
        tally.replaced += !request.matches.empty();
        tally.incomplete += srcLen < lengthOf(request.source);
    }
}

void compareMany(uint32_t seed, int patterns, Tally& tally) {
    Generator generator(seed);
    for (int i = 0; i < patterns && !::testing::Test::HasFatalFailure(); i++) {
        const std::string text = generator.pattern(2);
        const std::string options = generator.options();
        SCOPED_TRACE("seed " + std::to_string(seed) + ", pattern " + text + ", options " + options);
        std::vector<uint64_t> probe((24 * text.size() + 48056) / 8);
        int32_t errOffset = 0;
        if (tavsRegExpInit(text.c_str(), options.c_str(), reinterpret_cast<tavRegExpContext*>(probe.data()),
                           &errOffset) < 0)
            continue;
        CompiledPattern pattern(text, options);
        if (generator.below(6) == 0) pattern->matchLimit = static_cast<int32_t>(generator.below(12));
        if (generator.below(40) == 0 && pattern->lastLiteral < 0) pattern->matchLimit = -1;
        if (generator.below(4) == 0) pattern->format = 0;
        for (int round = 0; round < 3; round++)
            compareOnce(generator, pattern, tally);
    }
}

} // namespace

TEST(Replace, RandomRequestsAgreeWithAPlainTwin) {
    const uint32_t seed = testSeed();
    Tally tally;
    tav::reference::withLargeStack([&] { compareMany(seed, 1500, tally); });
    if (HasFailure()) return;
    EXPECT_GT(tally.compared, 20000);
    EXPECT_GT(tally.replaced, tally.compared / 4) << "seed " << seed;
    EXPECT_GT(tally.incomplete, tally.compared / 10) << "seed " << seed;
}
