#include "bench/unicode_texts.h"

#include "bench/unicode_peers.h"

#include <array>
#include <random>

namespace tav::bench {

class TextMaker {
public:
    uint32_t between(uint32_t first, uint32_t last) {
        return first + static_cast<uint32_t>(random_()) % (last - first + 1);
    }
    bool oneIn(uint32_t n) { return between(1, n) == 1; }

    void byte(uint32_t value) { text.push_back(static_cast<uint8_t>(value)); }

    void character(uint32_t value) {
        const uint32_t length = value < 0x80 ? 1 : value < 0x800 ? 2 : value < 0x10000 ? 3 : 4;
        constexpr uint32_t marks[] = {0, 0, 0xC0, 0xE0, 0xF0};
        byte(marks[length] | value >> (6 * (length - 1)));
        for (uint32_t left = length - 1; left > 0; --left)
            byte(0x80 | (value >> (6 * (left - 1)) & 0x3F));
    }

    void word(uint32_t first, uint32_t last, uint32_t longest) {
        for (uint32_t left = between(1, longest); left > 0; --left)
            character(between(first, last));
        character(oneIn(8) ? ',' : ' ');
    }

    Bytes text;

private:
    std::mt19937 random_{1};
};

namespace {

void ascii(TextMaker& maker) {
    if (maker.oneIn(6)) maker.character(maker.between('A', 'Z'));
    maker.word('a', 'z', 10);
}

void latin(TextMaker& maker) {
    for (uint32_t left = maker.between(1, 10); left > 0; --left)
        maker.character(maker.oneIn(10) ? maker.between(0xC0, 0xFF) : maker.between('a', 'z'));
    maker.character(' ');
}

void russian(TextMaker& maker) {
    if (maker.oneIn(6)) maker.character(maker.between(0x410, 0x42F));
    maker.word(0x430, 0x44F, 10);
}

void greek(TextMaker& maker) {
    maker.word(0x391, 0x3C9, 10);
}

void chinese(TextMaker& maker) {
    for (uint32_t left = maker.between(3, 20); left > 0; --left)
        maker.character(maker.between(0x4E00, 0x9FA5));
    maker.character(maker.oneIn(4) ? 0x3002 : 0xFF0C);
}

void chineseWithDigits(TextMaker& maker) {
    chinese(maker);
    if (maker.oneIn(2)) maker.word('0', '9', 4);
}

void emoji(TextMaker& maker) {
    for (uint32_t left = maker.between(1, 30); left > 0; --left)
        maker.character(maker.between(0x1F300, 0x1F64F));
    maker.character(' ');
}

void chat(TextMaker& maker) {
    for (uint32_t left = maker.between(2, 8); left > 0; --left)
        ascii(maker);
    for (uint32_t left = maker.between(1, 3); left > 0; --left)
        maker.character(maker.between(0x1F300, 0x1F64F));
}

void mixedWords(TextMaker& maker) {
    constexpr std::array<void (*)(TextMaker&), 5> words = {ascii, latin, russian, chinese, emoji};
    words[maker.between(0, words.size() - 1)](maker);
}

void anyCharacter(TextMaker& maker) {
    constexpr uint32_t bounds[] = {0x20, 0x80, 0x800, 0x10000, 0x110000};
    uint32_t value;
    do {
        const uint32_t length = maker.between(1, 4);
        value = maker.between(bounds[length - 1], bounds[length] - 1);
    } while (value >= 0xD800 && value <= 0xDFFF);
    maker.character(value);
}

void asciiAndTwoBytesInTurn(TextMaker& maker) {
    maker.character('a');
    maker.character(maker.between(0x430, 0x44F));
}

void asciiAndThreeBytesInTurn(TextMaker& maker) {
    maker.character('a');
    maker.character(maker.between(0x4E00, 0x9FA5));
}

void asciiAndFourBytesInTurn(TextMaker& maker) {
    maker.character('a');
    maker.character(maker.between(0x1F300, 0x1F64F));
}

void threeAndFourBytesInTurn(TextMaker& maker) {
    maker.character(maker.between(0x4E00, 0x9FA5));
    maker.character(maker.between(0x1F300, 0x1F64F));
}

/// Runs of each length, as long as vector code likes to see before it believes in them.
void runsThatEnd(TextMaker& maker) {
    constexpr uint32_t firsts[] = {'a', 0x430, 0x4E00, 0x1F300};
    const uint32_t first = firsts[maker.between(0, 3)];
    for (uint32_t left = maker.between(4, 12); left > 0; --left)
        maker.character(first + maker.between(0, 25));
}

/// Fails a block of sixteen bytes only at its last.
void almostAscii(TextMaker& maker) {
    for (int i = 0; i < 15; ++i)
        maker.character('a');
    maker.byte(0xFF);
}

void latin1Bytes(TextMaker& maker) {
    maker.byte(maker.oneIn(10) ? maker.between(0xC0, 0xFF) : maker.between('a', 'z'));
}

void randomBytes(TextMaker& maker) {
    maker.byte(maker.between(0, 255));
}

void cutCharacters(TextMaker& maker) {
    chinese(maker);
    if (maker.oneIn(2)) maker.text.pop_back();
}

} // namespace

const std::vector<Kind>& textKinds() {
    static const std::vector<Kind> kinds = {
        {"ascii", ascii, Nature::OneScript},
        {"latin", latin, Nature::OneScript},
        {"russian", russian, Nature::OneScript},
        {"greek", greek, Nature::OneScript},
        {"chinese", chinese, Nature::OneScript},
        {"chinese-digits", chineseWithDigits, Nature::Mixed},
        {"emoji", emoji, Nature::OneScript},
        {"chat", chat, Nature::Mixed},
        {"mixed-words", mixedWords, Nature::Mixed},
        {"any-character", anyCharacter, Nature::Adverse},
        {"1-2-in-turn", asciiAndTwoBytesInTurn, Nature::Adverse},
        {"1-3-in-turn", asciiAndThreeBytesInTurn, Nature::Adverse},
        {"1-4-in-turn", asciiAndFourBytesInTurn, Nature::Adverse},
        {"3-4-in-turn", threeAndFourBytesInTurn, Nature::Adverse},
        {"runs-that-end", runsThatEnd, Nature::Adverse},
        {"almost-ascii", almostAscii, Nature::Malformed},
        {"latin-1-bytes", latin1Bytes, Nature::Malformed},
        {"random-bytes", randomBytes, Nature::Malformed},
        {"cut-characters", cutCharacters, Nature::Malformed},
    };
    return kinds;
}

Bytes makeText(const Kind& kind, std::size_t size) {
    TextMaker maker;
    while (maker.text.size() < size)
        kind.make(maker);
    return maker.text;
}

std::vector<Bytes> makeStrings(const Kind& kind, std::size_t characters, std::size_t total) {
    const Bytes text = makeText(kind, total);
    std::vector<Bytes> strings;
    std::size_t at = 0;
    while (at < text.size()) {
        const std::size_t start = at;
        for (std::size_t i = 0; i < characters && at < text.size(); ++i) {
            ++at;
            while (at < text.size() && (text[at] & 0xC0) == 0x80)
                ++at;
        }
        strings.emplace_back(text.begin() + static_cast<std::ptrdiff_t>(start),
                             text.begin() + static_cast<std::ptrdiff_t>(at));
    }
    if (strings.size() > 1) strings.pop_back(); // likely too short
    return strings;
}

Units toUnits(const Bytes& text) {
    Units units(text.size());
    units.resize(plainToUnits(text.data(), text.size(), units.data(), units.size()));
    return units;
}

} // namespace tav::bench
