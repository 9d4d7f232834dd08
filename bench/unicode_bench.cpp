// Conversion and case mapping beside ICU, iconv and a plain loop, by kind of text. Texts are random within
// their kind and long enough (256 KiB of source) that branch predictors cannot learn them by heart.
// Throughput is in bytes of source. A peer that refuses the malformed text is not run on it.
#include "tavch.h"

#include "unicode/utf8.h"

#include <benchmark/benchmark.h>
#include <iconv.h>
#include <unicode/uchar.h>
#include <unicode/ustring.h>

#include <array>
#include <functional>
#include <random>
#include <string>
#include <vector>

namespace {

using Bytes = std::vector<uint8_t>;
using Units = std::vector<uint16_t>;

// --------------------------------------------------------------------------------------------------- texts

class TextMaker {
public:
    uint32_t between(uint32_t first, uint32_t last) {
        return first + static_cast<uint32_t>(random_()) % (last - first + 1);
    }
    bool oneIn(uint32_t n) { return between(1, n) == 1; }

    void character(uint32_t value) {
        const int32_t length = tav::unicode::utf8Length(value);
        constexpr uint8_t marks[] = {0, 0, 0xC0, 0xE0, 0xF0};
        text.push_back(static_cast<uint8_t>(marks[length] | value >> (6 * (length - 1))));
        for (int32_t i = length - 2; i >= 0; --i)
            text.push_back(static_cast<uint8_t>(0x80 | (value >> (6 * i) & 0x3F)));
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

void ascii(TextMaker& maker) {
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

void everyWord(TextMaker& maker) {
    constexpr std::array<void (*)(TextMaker&), 5> kinds = {ascii, latin, russian, chinese, emoji};
    kinds[maker.between(0, kinds.size() - 1)](maker);
}

void everyCharacter(TextMaker& maker) {
    constexpr uint32_t bounds[] = {0x20, 0x7F, 0x7FF, 0xD7FF, 0x10FFFF};
    const uint32_t length = maker.between(1, 4);
    maker.character(length == 4 ? maker.between(0x10000, 0x10FFFF)
                                : maker.between(bounds[length - 1] + 1, bounds[length]));
}

void asciiAndThreeBytesInTurn(TextMaker& maker) {
    maker.character('a');
    maker.character(maker.between(0x4E00, 0x9FA5));
}

void asciiAndFourBytesInTurn(TextMaker& maker) {
    maker.character('a');
    maker.character(maker.between(0x1F300, 0x1F64F));
}

/// Fails every vector path only at its last byte.
void almostAscii(TextMaker& maker) {
    for (int i = 0; i < 15; ++i)
        maker.character('a');
    maker.text.push_back(0xFF);
}

void randomBytes(TextMaker& maker) {
    maker.text.push_back(static_cast<uint8_t>(maker.between(0, 255)));
}

struct Kind {
    const char* name;
    void (*make)(TextMaker&);
    bool wellFormed;
};

constexpr Kind kinds[] = {
    {"ascii", ascii, true},
    {"latin", latin, true},
    {"russian", russian, true},
    {"greek", greek, true},
    {"chinese", chinese, true},
    {"chineseWithDigits", chineseWithDigits, true},
    {"emoji", emoji, true},
    {"chat", chat, true},
    {"everyWord", everyWord, true},
    {"everyCharacter", everyCharacter, true},
    {"ascii+3", asciiAndThreeBytesInTurn, true},
    {"ascii+4", asciiAndFourBytesInTurn, true},
    {"almostAscii", almostAscii, false},
    {"randomBytes", randomBytes, false},
};

Bytes makeText(const Kind& kind, std::size_t size) {
    TextMaker maker;
    while (maker.text.size() < size)
        kind.make(maker);
    return maker.text;
}

Units byTavch(const Bytes& text) {
    Units units(text.size());
    auto srcLen = static_cast<uint32_t>(text.size()), dstLen = srcLen;
    tavsConvertUTF_8u16u(text.data(), &srcLen, units.data(), &dstLen, 0);
    units.resize(dstLen);
    return units;
}

// ---------------------------------------------------------------------------------------- UTF-8 to UTF-16

using ToUnits = void (*)(const Bytes&, Units&);
using ToBytes = void (*)(const Units&, Bytes&);

void tavchToUnits(const Bytes& text, Units& out) {
    auto srcLen = static_cast<uint32_t>(text.size());
    auto dstLen = static_cast<uint32_t>(out.size());
    tavsConvertUTF_8u16u(text.data(), &srcLen, out.data(), &dstLen, 0);
}

void plainToUnits(const Bytes& text, Units& out) {
    const uint8_t* p = text.data();
    const uint8_t* const end = p + text.size();
    uint16_t* to = out.data();
    uint16_t* const toEnd = to + out.size();
    while (p != end && to != toEnd) {
        const auto sequence = tav::unicode::decodeUtf8(p, end);
        p += sequence.length;
        if (sequence.value <= 0xFFFF) {
            *to++ = static_cast<uint16_t>(sequence.value);
            continue;
        }
        if (toEnd - to < 2) break;
        const uint32_t v = sequence.value - 0x10000;
        *to++ = static_cast<uint16_t>(0xD800 | (v >> 10 & 0x3FF));
        *to++ = static_cast<uint16_t>(0xDC00 | (v & 0x3FF));
    }
}

void icuToUnits(const Bytes& text, Units& out) {
    int32_t written;
    UErrorCode error = U_ZERO_ERROR;
    u_strFromUTF8WithSub(reinterpret_cast<UChar*>(out.data()), static_cast<int32_t>(out.size()), &written,
                         reinterpret_cast<const char*>(text.data()), static_cast<int32_t>(text.size()),
                         0xFFFD, nullptr, &error);
}

template <class In, class Out>
void runIconv(const char* to, const char* from, const std::vector<In>& text, std::vector<Out>& out) {
    static const iconv_t converter = iconv_open(to, from);
    auto* in = const_cast<char*>(reinterpret_cast<const char*>(text.data()));
    auto* destination = reinterpret_cast<char*>(out.data());
    std::size_t inLeft = text.size() * sizeof(In), outLeft = out.size() * sizeof(Out);
    iconv(converter, &in, &inLeft, &destination, &outLeft);
}

void iconvToUnits(const Bytes& text, Units& out) {
    runIconv("UTF-16LE", "UTF-8", text, out);
}

// ---------------------------------------------------------------------------------------- UTF-16 to UTF-8

void tavchToBytes(const Units& text, Bytes& out) {
    auto srcLen = static_cast<uint32_t>(text.size());
    auto dstLen = static_cast<uint32_t>(out.size());
    tavsConvertUTF_16u8u(text.data(), &srcLen, out.data(), &dstLen, 0);
}

void plainToBytes(const Units& text, Bytes& out) {
    const uint16_t* p = text.data();
    const uint16_t* const end = p + text.size();
    uint8_t* to = out.data();
    uint8_t* const toEnd = to + out.size();
    while (p != end) {
        uint32_t value = *p;
        int units = 1;
        if ((value & 0xFC00) == 0xD800 && end - p > 1 && (p[1] & 0xFC00) == 0xDC00) {
            value = ((value & 0x3FF) << 10 | (p[1] & 0x3FFu)) + 0x10000;
            units = 2;
        }
        if (toEnd - to < tav::unicode::utf8Length(value)) break;
        if (value < 0x80) {
            *to++ = static_cast<uint8_t>(value);
        } else if (value < 0x800) {
            *to++ = static_cast<uint8_t>(0xC0 | value >> 6);
            *to++ = static_cast<uint8_t>(0x80 | (value & 0x3F));
        } else if (value < 0x10000) {
            *to++ = static_cast<uint8_t>(0xE0 | value >> 12);
            *to++ = static_cast<uint8_t>(0x80 | (value >> 6 & 0x3F));
            *to++ = static_cast<uint8_t>(0x80 | (value & 0x3F));
        } else {
            *to++ = static_cast<uint8_t>(0xF0 | value >> 18);
            *to++ = static_cast<uint8_t>(0x80 | (value >> 12 & 0x3F));
            *to++ = static_cast<uint8_t>(0x80 | (value >> 6 & 0x3F));
            *to++ = static_cast<uint8_t>(0x80 | (value & 0x3F));
        }
        p += units;
    }
}

void icuToBytes(const Units& text, Bytes& out) {
    int32_t written;
    UErrorCode error = U_ZERO_ERROR;
    u_strToUTF8WithSub(reinterpret_cast<char*>(out.data()), static_cast<int32_t>(out.size()), &written,
                       reinterpret_cast<const UChar*>(text.data()), static_cast<int32_t>(text.size()), 0xFFFD,
                       nullptr, &error);
}

void iconvToBytes(const Units& text, Bytes& out) {
    runIconv("UTF-8", "UTF-16LE", text, out);
}

// -------------------------------------------------------------------------------------------- case mapping

using Map = void (*)(const Units&, Units&);

void tavchLower(const Units& text, Units& out) {
    tavsLowercase_16u(text.data(), out.data(), static_cast<int32_t>(text.size()));
}

void tavchUpper(const Units& text, Units& out) {
    tavsUppercase_16u(text.data(), out.data(), static_cast<int32_t>(text.size()));
}

/// What a user would write: one table of all units, or (plain) one of blocks, filled from the library's
/// answers.
const Units& lowerOfAll() {
    static const Units all = [] {
        Units units(0x10000);
        for (std::size_t i = 0; i < units.size(); ++i)
            units[i] = static_cast<uint16_t>(i);
        tavsLowercase_16u_I(units.data(), 0x10000);
        return units;
    }();
    return all;
}

void directTableLower(const Units& text, Units& out) {
    const Units& table = lowerOfAll();
    for (std::size_t i = 0; i < text.size(); ++i)
        out[i] = table[text[i]];
}

/// The library's definition: blocks of 64 deltas, found through a first stage.
struct TwoStages {
    std::array<uint16_t, 1024> stage1{};
    std::vector<uint8_t> stage2;
    std::vector<int16_t> deltas{0};

    TwoStages() {
        std::vector<std::vector<uint8_t>> blocks;
        for (std::size_t block = 0; block < stage1.size(); ++block) {
            std::vector<uint8_t> content;
            for (std::size_t i = 0; i < 64; ++i) {
                const auto unit = static_cast<uint16_t>(block * 64 + i);
                const auto delta = static_cast<int16_t>(lowerOfAll()[unit] - unit);
                std::size_t index = 0;
                while (index < deltas.size() && deltas[index] != delta)
                    ++index;
                if (index == deltas.size()) deltas.push_back(delta);
                content.push_back(static_cast<uint8_t>(index));
            }
            std::size_t number = 0;
            while (number < blocks.size() && blocks[number] != content)
                ++number;
            if (number == blocks.size()) {
                blocks.push_back(content);
                stage2.insert(stage2.end(), content.begin(), content.end());
            }
            stage1[block] = static_cast<uint16_t>(number * 64);
        }
    }
};

void plainLower(const Units& text, Units& out) {
    static const TwoStages table;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const uint16_t unit = text[i];
        out[i] =
            static_cast<uint16_t>(unit + table.deltas[table.stage2[table.stage1[unit >> 6] | (unit & 63u)]]);
    }
}

void icuUnitLower(const Units& text, Units& out) {
    for (std::size_t i = 0; i < text.size(); ++i)
        out[i] = static_cast<uint16_t>(u_tolower(text[i]));
}

void icuStringLower(const Units& text, Units& out) {
    UErrorCode error = U_ZERO_ERROR;
    u_strToLower(reinterpret_cast<UChar*>(out.data()), static_cast<int32_t>(out.size()),
                 reinterpret_cast<const UChar*>(text.data()), static_cast<int32_t>(text.size()), "", &error);
}

int32_t tavchCompare(const Units& left, const Units& right) {
    int32_t result;
    tavsCompareIgnoreCase_16u(left.data(), right.data(), static_cast<int32_t>(left.size()), &result);
    return result;
}

int32_t plainCompare(const Units& left, const Units& right) {
    const Units& table = lowerOfAll();
    for (std::size_t i = 0; i < left.size(); ++i)
        if (const int32_t difference = table[left[i]] - table[right[i]]; difference != 0) return difference;
    return 0;
}

int32_t icuCompare(const Units& left, const Units& right) {
    return u_memcasecmp(reinterpret_cast<const UChar*>(left.data()),
                        reinterpret_cast<const UChar*>(right.data()), static_cast<int32_t>(left.size()),
                        U_FOLD_CASE_DEFAULT);
}

// ------------------------------------------------------------------------------------------------- the runs

template <class In, class Out>
void run(benchmark::State& state, const std::vector<In>& text, std::size_t capacity,
         void (*function)(const std::vector<In>&, std::vector<Out>&)) {
    std::vector<Out> out(capacity);
    for (auto _ : state) {
        function(text, out);
        benchmark::DoNotOptimize(out.data());
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(text.size() * sizeof(In)));
}

void runCompare(benchmark::State& state, const Units& left, const Units& right,
                int32_t (*function)(const Units&, const Units&)) {
    for (auto _ : state)
        benchmark::DoNotOptimize(function(left, right));
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(left.size() * sizeof(uint16_t)));
}

void add(const std::string& name, const std::function<void(benchmark::State&)>& body) {
    benchmark::RegisterBenchmark(name.c_str(), body);
}

template <class Function>
struct Peer {
    const char* name;
    Function function;
    bool refusesMalformed;
};

constexpr Peer<ToUnits> toUnitsPeers[] = {{"tavch", tavchToUnits, false},
                                          {"plain", plainToUnits, false},
                                          {"icu", icuToUnits, false},
                                          {"iconv", iconvToUnits, true}};
constexpr Peer<ToBytes> toBytesPeers[] = {{"tavch", tavchToBytes, false},
                                          {"plain", plainToBytes, false},
                                          {"icu", icuToBytes, false},
                                          {"iconv", iconvToBytes, true}};
constexpr Peer<Map> lowerPeers[] = {{"tavch", tavchLower, false},
                                    {"plain", plainLower, false},
                                    {"directTable", directTableLower, false},
                                    {"icuUnits", icuUnitLower, false},
                                    {"icuString", icuStringLower, false}};

void registerConversions(const Kind& kind, std::size_t size, const std::string& suffix) {
    const Bytes bytes = makeText(kind, size);
    const Units units = byTavch(bytes);
    for (const auto& peer : toUnitsPeers)
        if (kind.wellFormed || !peer.refusesMalformed)
            add("8to16/" + suffix + "/" + peer.name,
                [=](benchmark::State& state) { run(state, bytes, bytes.size() + 1, peer.function); });
    for (const auto& peer : toBytesPeers)
        if (kind.wellFormed || !peer.refusesMalformed)
            add("16to8/" + suffix + "/" + peer.name,
                [=](benchmark::State& state) { run(state, units, units.size() * 3 + 8, peer.function); });
}

void registerCase(const Kind& kind, std::size_t size, const std::string& suffix) {
    const Units units = byTavch(makeText(kind, size));
    for (const auto& peer : lowerPeers)
        add("lower/" + suffix + "/" + peer.name,
            [=](benchmark::State& state) { run(state, units, units.size() * 2, peer.function); });
    add("upper/" + suffix + "/tavch",
        [=](benchmark::State& state) { run(state, units, units.size(), tavchUpper); });
    Units upper(units.size());
    tavchUpper(units, upper);
    Units lower(units.size());
    tavchLower(upper, lower);
    const struct {
        const char* name;
        int32_t (*function)(const Units&, const Units&);
    } comparers[] = {{"tavch", tavchCompare}, {"directTable", plainCompare}, {"icu", icuCompare}};
    for (const auto& comparer : comparers) {
        add("compareEqual/" + suffix + "/" + comparer.name,
            [=](benchmark::State& state) { runCompare(state, lower, Units(lower), comparer.function); });
        add("compareOtherCase/" + suffix + "/" + comparer.name,
            [=](benchmark::State& state) { runCompare(state, lower, upper, comparer.function); });
    }
}

} // namespace

int main(int argc, char** argv) {
    constexpr std::size_t longText = 256 * 1024;
    for (const Kind& kind : kinds) {
        registerConversions(kind, longText, kind.name);
        registerCase(kind, longText, kind.name);
    }
    for (const std::size_t size : {8, 24, 64, 256})
        for (const Kind& kind : {kinds[0], kinds[2], kinds[4]}) {
            registerConversions(kind, size, std::string(kind.name) + "-" + std::to_string(size));
            registerCase(kind, size, std::string(kind.name) + "-" + std::to_string(size));
        }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
