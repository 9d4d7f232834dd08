#include "bench/texts.h"

#include <array>
#include <cstdint>
#include <cstdio>
#include <deque>
#include <initializer_list>
#include <span>

namespace tav::bench {

namespace {

constexpr std::size_t textSize = 256 * 1024;

using Words = std::span<const std::string_view>;

/// A small generator of our own: the standard distributions differ between libraries.
class Random {
public:
    explicit Random(std::uint64_t seed) : state_(seed) {}

    std::uint32_t below(std::uint32_t limit) {
        state_ = state_ * 6364136223846793005U + 1442695040888963407U;
        return static_cast<std::uint32_t>(((state_ >> 33) * limit) >> 31);
    }

    bool oneIn(std::uint32_t n) { return below(n) == 0; }

    std::string_view of(Words all) { return all[below(static_cast<std::uint32_t>(all.size()))]; }

    /// Early words of a list come up more often, as common words do in a language.
    std::string_view word(Words all) {
        const auto size = static_cast<std::uint32_t>(all.size());
        const std::uint32_t a = below(size), b = below(size), c = below(3);
        return all[c == 0 ? a : a * b / size];
    }

private:
    std::uint64_t state_;
};

constexpr std::string_view english[] = {
    "the",     "of",      "and",      "to",       "a",       "in",       "that",    "it",      "was",
    "he",      "for",     "with",     "as",       "his",     "on",       "be",      "at",      "by",
    "had",     "not",     "but",      "from",     "have",    "they",     "which",   "one",     "you",
    "were",    "her",     "all",      "she",      "there",   "would",    "their",   "we",      "him",
    "been",    "has",     "when",     "who",      "will",    "more",     "no",      "if",      "out",
    "so",      "said",    "what",     "up",       "its",     "about",    "into",    "than",    "them",
    "can",     "only",    "other",    "new",      "some",    "could",    "time",    "these",   "two",
    "may",     "then",    "do",       "first",    "any",     "my",       "now",     "such",    "like",
    "our",     "over",    "man",      "me",       "even",    "most",     "made",    "after",   "also",
    "did",     "many",    "before",   "must",     "through", "back",     "years",   "where",   "much",
    "your",    "way",     "well",     "down",     "should",  "because",  "each",    "just",    "those",
    "people",  "too",     "little",   "state",    "good",    "very",     "make",    "world",   "still",
    "own",     "see",     "men",      "work",     "long",    "get",      "here",    "between", "both",
    "life",    "being",   "under",    "never",    "day",     "same",     "another", "know",    "while",
    "last",    "might",   "us",       "great",    "old",     "year",     "off",     "come",    "since",
    "against", "go",      "came",     "right",    "used",    "take",     "three",   "house",   "window",
    "quarter", "captain", "exchange", "jealous",  "quiet",   "question", "lazily",  "oxygen",  "jumped",
    "harbour", "lantern", "whisper",  "mountain", "village", "evening",  "morning", "station", "journey",
};

constexpr std::string_view names[] = {
    "Alice",     "Robert", "Catherine", "Dimitri",  "Eleanor",    "Frederick",
    "Gwendolyn", "Harold", "Isabella",  "Jonathan", "Montgomery", "Katarina",
};

constexpr std::string_view hosts[] = {"example.org", "mail.example.com", "static.example.net",
                                      "news.example.edu"};
constexpr std::string_view paths[] = {"/index.html",        "/articles/2026/spring",
                                      "/images/logo.png",   "/search?q=lantern&page=2",
                                      "/api/v2/items/1048", "/login"};
constexpr std::string_view methods[] = {"GET", "GET", "GET", "POST", "HEAD", "PUT"};

// Words in UTF-8: the comments say which.
constexpr std::string_view scripts[] = {
    "\xCE\xBA\xCE\xB1\xCE\xB9",                                 // Greek "kai"
    "\xCE\xB8\xCE\xAC\xCE\xBB\xCE\xB1\xCF\x83\xCF\x83\xCE\xB1", // Greek "thalassa"
    "\xCE\x91\xCE\xB8\xCE\xAE\xCE\xBD\xCE\xB1",                 // Greek "Athina"
    "\xD1\x80\xD0\xB5\xD0\xBA\xD0\xB0",                         // Cyrillic "reka"
    "\xD0\x9C\xD0\xBE\xD1\x81\xD0\xBA\xD0\xB2\xD0\xB0",         // Cyrillic "Moskva"
    "\xD0\xB7\xD0\xB8\xD0\xBC\xD0\xB0",                         // Cyrillic "zima"
    "caf\xC3\xA9",                                              // Latin with an accent
    "na\xC3\xAFve",                                             // the same
    "\xC3\x85ngstr\xC3\xB6m",                                   // the same, a capital first
    "\xE6\x9D\xB1\xE4\xBA\xAC",                                 // Han "Tokyo"
    "\xE5\xB1\xB1",                                             // Han "mountain"
    "\xE3\x81\xB2\xE3\x82\x89\xE3\x81\x8C\xE3\x81\xAA",         // Hiragana
    "the",
    "river",
    "and",
    "Winter",
};

/// The list's elements are evaluated from left to right, as the operands of "+" need not be.
std::string join(std::initializer_list<std::string> parts) {
    std::string all;
    for (const std::string& part : parts)
        all += part;
    return all;
}

std::string number(Random& random, std::uint32_t limit) {
    return std::to_string(random.below(limit));
}

std::string padded(std::uint32_t value, int width) {
    std::array<char, 16> digits{};
    std::snprintf(digits.data(), digits.size(), "%0*u", width, value);
    return digits.data();
}

std::string word(Random& random) {
    return std::string(random.word(english));
}

std::string oneOf(Random& random, Words all) {
    return std::string(random.of(all));
}

std::string date(Random& random) {
    return join({padded(1990 + random.below(40), 4), "-", padded(1 + random.below(12), 2), "-",
                 padded(1 + random.below(28), 2)});
}

std::string clockTime(Random& random) {
    return join(
        {padded(random.below(24), 2), ":", padded(random.below(60), 2), ":", padded(random.below(60), 2)});
}

std::string address(Random& random) {
    return join(
        {number(random, 256), ".", number(random, 256), ".", number(random, 256), ".", number(random, 256)});
}

std::string mail(Random& random) {
    return join({word(random), ".", word(random), "@", oneOf(random, hosts)});
}

std::string proseWord(Random& random) {
    if (random.oneIn(40)) return oneOf(random, names);
    if (random.oneIn(120)) return join({"$", number(random, 5000)});
    if (random.oneIn(300)) return date(random);
    if (random.oneIn(500)) return mail(random);
    if (random.oneIn(50)) return join({"\"", word(random), " ", word(random), "\""});
    const std::string one = word(random);
    return random.oneIn(60) ? one + " " + one : one;
}

template <class MakeWord>
std::string inSentences(std::uint64_t seed, MakeWord makeWord) {
    Random random(seed);
    std::string all;
    std::size_t lineStart = 0;
    std::uint32_t left = 8;
    while (all.size() < textSize) {
        all += makeWord(random);
        if (--left == 0) {
            all += '.';
            left = 4 + random.below(14);
        } else if (random.oneIn(9)) {
            all += ',';
        }
        const bool endOfLine = all.size() - lineStart > 66;
        all += endOfLine ? '\n' : ' ';
        if (endOfLine) lineStart = all.size();
    }
    all.back() = '\n';
    return all;
}

std::string makeLog() {
    Random random(2);
    std::string all;
    while (all.size() < textSize) {
        all += join({address(random), " - ", random.oneIn(5) ? oneOf(random, names) : "-", " [", date(random),
                     "T", clockTime(random), "Z] \"", oneOf(random, methods), " ", oneOf(random, paths),
                     " HTTP/1.1\" ", random.oneIn(7) ? "404" : "200", " ", number(random, 90000),
                     " \"https://", oneOf(random, hosts), oneOf(random, paths), "\"\n"});
    }
    return all;
}

std::string makeSettings() {
    Random random(3);
    std::string all;
    while (all.size() < textSize) {
        if (random.oneIn(6))
            all += join({"# ", word(random), " ", word(random)});
        else if (random.oneIn(10))
            all += join({"[", word(random), "]"});
        else
            all += join({word(random), ".", word(random), " = ",
                         random.oneIn(2) ? number(random, 100000) : proseWord(random)});
        all += random.oneIn(8) ? "  \n" : "\n";
    }
    return all;
}

struct Corpus {
    std::string content;
    Subjects lines;
};

Subjects cut(std::string_view content) {
    Subjects all;
    while (!content.empty()) {
        const std::size_t end = content.find('\n');
        all.push_back(content.substr(0, end));
        content.remove_prefix(end == std::string_view::npos ? content.size() : end + 1);
    }
    return all;
}

std::string make(Text which) {
    switch (which) {
    case Text::Prose:
        return inSentences(1, proseWord);
    case Text::Log:
        return makeLog();
    case Text::Settings:
        return makeSettings();
    case Text::Utf8:
        return inSentences(4, [](Random& random) { return oneOf(random, scripts); });
    }
    return {};
}

Corpus& corpus(Text which) {
    static std::array<Corpus, 4> all;
    Corpus& chosen = all[static_cast<std::size_t>(which)];
    if (chosen.content.empty()) chosen.content = make(which);
    return chosen;
}

} // namespace

const std::string& text(Text which) {
    return corpus(which).content;
}

const Subjects& lines(Text which) {
    Corpus& chosen = corpus(which);
    if (chosen.lines.empty()) chosen.lines = cut(chosen.content);
    return chosen.lines;
}

const Subjects& shortStrings() {
    static std::deque<std::string> all;
    static Subjects views;
    if (views.empty()) {
        Random random(5);
        for (int i = 0; i < 400; i++) {
            all.push_back(date(random));
            all.push_back(mail(random));
            all.push_back(number(random, 1000000));
            all.push_back(address(random));
            all.push_back(proseWord(random) + " " + proseWord(random) + " " + proseWord(random));
        }
        for (const std::string& one : all)
            views.emplace_back(one);
    }
    return views;
}

void useProse(std::string content) {
    corpus(Text::Prose) = {std::move(content), {}};
}

} // namespace tav::bench
