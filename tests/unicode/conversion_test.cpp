// tavsConvertUTF_8u16u and tavsConvertUTF_16u8u: literal expectations, then agreement with a slow reference
// on every short sequence, on random mixtures at every capacity, between guard pages, and with iconv.
#include "tavch.h"

#include "base/guarded_buffer.h"
#include "unicode/conversion_reference.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <initializer_list>
#include <iostream>
#include <random>
#include <vector>

#if defined(__linux__)
#include <iconv.h>
#endif

using tavtest::Converted;
using tavtest::GuardedBuffer;

namespace {

using Bytes = std::vector<uint8_t>;
using Units = std::vector<uint16_t>;

tavStatus convert(const uint8_t* src, uint32_t* srcLen, uint16_t* dst, uint32_t* dstLen, int32_t bigEndian) {
    return tavsConvertUTF_8u16u(src, srcLen, dst, dstLen, bigEndian);
}

tavStatus convert(const uint16_t* src, uint32_t* srcLen, uint8_t* dst, uint32_t* dstLen, int32_t bigEndian) {
    return tavsConvertUTF_16u8u(src, srcLen, dst, dstLen, bigEndian);
}

Converted<uint16_t> reference(const Bytes& source, std::size_t capacity, bool bigEndian) {
    return tavtest::referenceUtf8To16(source, capacity, bigEndian);
}

Converted<uint8_t> reference(const Units& source, std::size_t capacity, bool bigEndian) {
    return tavtest::referenceUtf16To8(source, capacity, bigEndian);
}

template <class Out, class In>
Converted<Out> converted(const std::vector<In>& source, std::size_t capacity, int32_t bigEndian = 0) {
    std::vector<Out> output(capacity + 1);
    std::vector<In> readable = source;
    readable.push_back(0); // a pointer for the empty source
    auto srcLen = static_cast<uint32_t>(source.size());
    auto dstLen = static_cast<uint32_t>(capacity);
    EXPECT_EQ(convert(readable.data(), &srcLen, output.data(), &dstLen, bigEndian), tavStsNoError);
    output.resize(dstLen);
    return {srcLen, output};
}

Units toUnits(const Bytes& source, int32_t bigEndian = 0) {
    const auto result = converted<uint16_t>(source, source.size(), bigEndian);
    EXPECT_EQ(result.consumed, source.size());
    return result.output;
}

Bytes toBytes(const Units& source, int32_t bigEndian = 0) {
    const auto result = converted<uint8_t>(source, source.size() * 3, bigEndian);
    EXPECT_EQ(result.consumed, source.size());
    return result.output;
}

// ------------------------------------------------------------------------------------- literal expectations

TEST(Utf8To16, TellingSequences) {
    const struct {
        const char* what;
        Bytes bytes;
        Units units;
    } cases[] = {
        {"ASCII", {0x41, 0x00, 0x7F}, {0x41, 0x00, 0x7F}},
        {"two bytes", {0xC3, 0xA9}, {0xE9}},
        {"two bytes, smallest and largest", {0xC2, 0x80, 0xDF, 0xBF}, {0x80, 0x7FF}},
        {"three bytes, smallest and largest", {0xE0, 0xA0, 0x80, 0xEF, 0xBF, 0xBF}, {0x800, 0xFFFF}},
        {"four bytes", {0xF0, 0x9F, 0x98, 0x80}, {0xD83D, 0xDE00}},
        {"four bytes, smallest and U+10FFFF",
         {0xF0, 0x90, 0x80, 0x80, 0xF4, 0x8F, 0xBF, 0xBF},
         {0xD800, 0xDC00, 0xDBFF, 0xDFFF}},
        {"overlong NUL", {0xC0, 0x80}, {0xC0, 0x80}},
        {"overlong two bytes", {0xC1, 0xBF}, {0xC1, 0xBF}},
        {"overlong three bytes", {0xE0, 0x9F, 0xBF}, {0xE0, 0x9F, 0xBF}},
        {"overlong four bytes", {0xF0, 0x8F, 0xBF, 0xBF}, {0xF0, 0x8F, 0xBF, 0xBF}},
        {"overlong five bytes", {0xF8, 0x87, 0xBF, 0xBF, 0xBF}, {0xF8, 0x87, 0xBF, 0xBF, 0xBF}},
        {"overlong six bytes", {0xFC, 0x83, 0xBF, 0xBF, 0xBF, 0xBF}, {0xFC, 0x83, 0xBF, 0xBF, 0xBF, 0xBF}},
        {"interrupted at the second byte", {0xE2, 0x28, 0xA1}, {0xE2, 0x28, 0xA1}},
        {"interrupted at the third byte", {0xE2, 0x82, 0x28}, {0xE2, 0x82, 0x28}},
        {"a character inside an interrupted one", {0xE2, 0xC3, 0xA9}, {0xE2, 0xE9}},
        {"continuation bytes alone", {0x80, 0xBF}, {0x80, 0xBF}},
        {"bytes that announce nothing", {0xFE, 0xFF, 0xFE, 0x80}, {0xFE, 0xFF, 0xFE, 0x80}},
        {"FE before six continuation bytes",
         {0xFE, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80},
         {0xFE, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80}},
        {"a surrogate becomes a single unit", {0xED, 0xA0, 0x80}, {0xD800}},
        {"a pair in three-byte forms becomes two units",
         {0xED, 0xA0, 0xBD, 0xED, 0xB8, 0x80},
         {0xD83D, 0xDE00}},
        {"U+110000 wraps to the first pair", {0xF4, 0x90, 0x80, 0x80}, {0xD800, 0xDC00}},
        {"0x1FFFFF", {0xF7, 0xBF, 0xBF, 0xBF}, {0xDBBF, 0xDFFF}},
        {"five bytes, smallest", {0xF8, 0x88, 0x80, 0x80, 0x80}, {0xDBC0, 0xDC00}},
        {"six bytes, largest", {0xFD, 0xBF, 0xBF, 0xBF, 0xBF, 0xBF}, {0xDBBF, 0xDFFF}},
        {"cut off after the lead", {0x41, 0xC3}, {0x41, 0xC3}},
        {"cut off after two of three", {0xE2, 0x82}, {0xE2, 0x82}},
        {"cut off after three of four", {0xF0, 0x9F, 0x98}, {0xF0, 0x9F, 0x98}},
        {"cut off after five of six", {0xFC, 0x84, 0x80, 0x80, 0x80}, {0xFC, 0x84, 0x80, 0x80, 0x80}},
    };
    for (const auto& [what, bytes, units] : cases)
        EXPECT_EQ(toUnits(bytes), units) << what;
}

TEST(Utf8To16, BigEndianSwapsSingleUnitsAndOnlyReordersPairsDeliberately) {
    for (const int32_t bigEndian : {1, -1, 0x100}) {
        EXPECT_EQ(toUnits({0x41}, bigEndian), Units{0x4100});
        EXPECT_EQ(toUnits({0xE2, 0x82, 0xAC}, bigEndian), Units{0xAC20});
        EXPECT_EQ(toUnits({0xF0, 0x9F, 0x98, 0x80}, bigEndian), (Units{0xDE00, 0xD83D}));
        EXPECT_EQ(toUnits({0xED, 0xA0, 0x80}, bigEndian), Units{0x00D8});
        EXPECT_EQ(toUnits({0xC0}, bigEndian), Units{0xC000});
    }
}

TEST(Utf16To8, TellingUnits) {
    const struct {
        const char* what;
        Units units;
        Bytes bytes;
    } cases[] = {
        {"ASCII", {0x41, 0x00, 0x7F}, {0x41, 0x00, 0x7F}},
        {"bounds of two bytes", {0x80, 0x7FF}, {0xC2, 0x80, 0xDF, 0xBF}},
        {"bounds of three bytes", {0x800, 0xFFFF}, {0xE0, 0xA0, 0x80, 0xEF, 0xBF, 0xBF}},
        {"a pair", {0xD83D, 0xDE00}, {0xF0, 0x9F, 0x98, 0x80}},
        {"the last pair", {0xDBFF, 0xDFFF}, {0xF4, 0x8F, 0xBF, 0xBF}},
        {"a high surrogate at the end", {0xD800}, {0xED, 0xA0, 0x80}},
        {"a high surrogate before a letter", {0xD800, 0x41}, {0xED, 0xA0, 0x80, 0x41}},
        {"a high surrogate before a pair",
         {0xD800, 0xD83D, 0xDE00},
         {0xED, 0xA0, 0x80, 0xF0, 0x9F, 0x98, 0x80}},
        {"a low surrogate alone", {0xDC00, 0x41}, {0xED, 0xB0, 0x80, 0x41}},
        {"a pair in the wrong order", {0xDE00, 0xD83D}, {0xED, 0xB8, 0x80, 0xED, 0xA0, 0xBD}},
        {"around the surrogates", {0xD7FF, 0xE000}, {0xED, 0x9F, 0xBF, 0xEE, 0x80, 0x80}},
    };
    for (const auto& [what, units, bytes] : cases)
        EXPECT_EQ(toBytes(units), bytes) << what;
}

TEST(Utf16To8, BigEndianSwapsEveryUnitFirst) {
    for (const int32_t bigEndian : {1, -1, 0x100}) {
        EXPECT_EQ(toBytes({0x4100}, bigEndian), Bytes{0x41});
        EXPECT_EQ(toBytes({0x3DD8, 0x00DE}, bigEndian), (Bytes{0xF0, 0x9F, 0x98, 0x80}));
        EXPECT_EQ(toBytes({0x00D8}, bigEndian), (Bytes{0xED, 0xA0, 0x80}));
    }
}

TEST(Utf16To8, StopsBeforeACharacterThatDoesNotFit) {
    const auto result = converted<uint8_t>(Units{0xE9, 0x20AC}, 2);
    EXPECT_EQ(result.consumed, 1u);
    EXPECT_EQ(result.output, (Bytes{0xC3, 0xA9}));
}

TEST(Utf8To16, APairThatDoesNotFitIsNeitherWrittenNorConsumed) {
    const auto result = converted<uint16_t>(Bytes{0x41, 0xF0, 0x9F, 0x98, 0x80, 0x42}, 2);
    EXPECT_EQ(result.consumed, 1u);
    EXPECT_EQ(result.output, Units{0x41});
}

// ------------------------------------------------------------------------------------------------ arguments

template <class In, class Out>
void expectNullPointersAreRefused() {
    In source[] = {0x41};
    Out destination[] = {0x55};
    uint32_t srcLen = 1, dstLen = 1;
    EXPECT_EQ(convert(static_cast<In*>(nullptr), &srcLen, destination, &dstLen, 0), tavStsNullPointer);
    EXPECT_EQ(convert(source, nullptr, destination, &dstLen, 0), tavStsNullPointer);
    EXPECT_EQ(convert(source, &srcLen, static_cast<Out*>(nullptr), &dstLen, 0), tavStsNullPointer);
    EXPECT_EQ(convert(source, &srcLen, destination, nullptr, 0), tavStsNullPointer);
    srcLen = 0; // not looked at before all pointers
    EXPECT_EQ(convert(source, &srcLen, destination, nullptr, 0), tavStsNullPointer);
    EXPECT_EQ(dstLen, 1u);
    EXPECT_EQ(destination[0], 0x55);
}

TEST(UtfConversion, NullPointersAreRefusedAndNothingChanges) {
    expectNullPointersAreRefused<uint8_t, uint16_t>();
    expectNullPointersAreRefused<uint16_t, uint8_t>();
}

template <class In, class Out>
void expectEmptySourceZeroesBothCounts() {
    In source[] = {0x41};
    Out destination[] = {0x55};
    uint32_t srcLen = 0, dstLen = 1;
    EXPECT_EQ(convert(source, &srcLen, destination, &dstLen, 0), tavStsNoError);
    EXPECT_EQ(srcLen, 0u);
    EXPECT_EQ(dstLen, 0u);
    EXPECT_EQ(destination[0], 0x55);
}

TEST(UtfConversion, AnEmptySourceZeroesBothCounts) {
    expectEmptySourceZeroesBothCounts<uint8_t, uint16_t>();
    expectEmptySourceZeroesBothCounts<uint16_t, uint8_t>();
}

TEST(UtfConversion, ACapacityOfZeroZeroesBothCounts) {
    EXPECT_EQ(converted<uint16_t>(Bytes{0x41, 0x42}, 0).consumed, 0u);
    EXPECT_EQ(converted<uint8_t>(Units{0x41, 0x42}, 0).consumed, 0u);
}

TEST(UtfConversion, CountsBeyondTheSignedRangeAreCapacities) {
    const uint8_t source[] = {0x41};
    uint16_t destination[4] = {};
    uint32_t srcLen = 1, dstLen = 0xFFFFFFFF;
    EXPECT_EQ(convert(source, &srcLen, destination, &dstLen, 0), tavStsNoError);
    EXPECT_EQ(srcLen, 1u);
    EXPECT_EQ(dstLen, 1u);
}

// ------------------------------------------------------------------------------- agreement, short sequences

template <class In>
void expectAgreement(const std::vector<In>& source, int32_t bigEndian = 0) {
    using Out = std::conditional_t<sizeof(In) == 1, uint16_t, uint8_t>;
    const std::size_t capacity = source.size() * 3;
    const auto expected = reference(source, capacity, bigEndian != 0);
    const auto actual = converted<Out>(source, capacity, bigEndian);
    ASSERT_EQ(actual.consumed, expected.consumed);
    if (actual.output == expected.output) return;
    const auto [left, right] = std::mismatch(actual.output.begin(), actual.output.end(),
                                             expected.output.begin(), expected.output.end());
    FAIL() << "outputs differ at element " << left - actual.output.begin();
}

TEST(Utf8To16, EverySequenceOfTwoBytesAloneAgreesWithTheReference) {
    for (int first = 0; first < 0x100; ++first)
        for (int second = 0; second < 0x100; ++second)
            expectAgreement(Bytes{static_cast<uint8_t>(first), static_cast<uint8_t>(second)});
}

// Address sanitizer makes the long sweeps slow; there they take one first byte or plane in seven.
#if defined(__SANITIZE_ADDRESS__)
constexpr int sweepStep = 7;
#else
constexpr int sweepStep = 1;
#endif

TEST(Utf8To16, EverySequenceOfThreeBytesAgreesWithTheReference) {
    Bytes all;
    for (int first = 0x80; first < 0x100; first += sweepStep) {
        all.clear();
        for (int rest = 0; rest < 0x10000; ++rest)
            all.insert(all.end(), {static_cast<uint8_t>(first), static_cast<uint8_t>(rest >> 8),
                                   static_cast<uint8_t>(rest), static_cast<uint8_t>('x')});
        expectAgreement(all);
    }
}

const uint8_t tellingBytes[] = {0x00, 0x7F, 0x80, 0x83, 0x84, 0x87, 0x88, 0x8F, 0x90, 0x9F, 0xA0, 0xBF, 0xC0,
                                0xC1, 0xC2, 0xDF, 0xE0, 0xE1, 0xEF, 0xF0, 0xF4, 0xF7, 0xF8, 0xFC, 0xFE, 0xFF};

TEST(Utf8To16, TellingSequencesOfFourBytesAloneAndBetweenTextAgreeWithTheReference) {
    for (const uint8_t a : tellingBytes)
        for (const uint8_t b : tellingBytes)
            for (const uint8_t c : tellingBytes) {
                Bytes text;
                for (const uint8_t d : tellingBytes) {
                    text.insert(text.end(), {a, b, c, d, 'x'});
                    expectAgreement(Bytes{a, b, c, d});
                }
                expectAgreement(text);
            }
}

/// Every value that has a form of up to four bytes, and telling ones of five and six, each in its form.
Bytes formOf(uint32_t value) {
    const int k = tavtest::continuationsOf(static_cast<int32_t>(value));
    const uint8_t marks[] = {0x00, 0xC0, 0xE0, 0xF0, 0xF8, 0xFC};
    Bytes form = {static_cast<uint8_t>(marks[k] | value >> (6 * k))};
    for (int i = k - 1; i >= 0; --i)
        form.push_back(static_cast<uint8_t>(0x80 | (value >> (6 * i) & 0x3F)));
    return form;
}

Bytes formsOf(uint32_t first, uint32_t last) {
    Bytes text;
    for (uint32_t value = first; value <= last; ++value) {
        const Bytes form = formOf(value);
        text.insert(text.end(), form.begin(), form.end());
    }
    return text;
}

TEST(Utf8To16, EveryFormOfUpToFourBytesAgreesWithTheReference) {
    for (uint32_t first = 0; first < 0x200000; first += 0x10000 * sweepStep)
        for (const int32_t bigEndian : {0, 1})
            expectAgreement(formsOf(first, first + 0xFFFF), bigEndian);
}

TEST(Utf8To16, FormsOfFiveAndSixBytesAgreeWithTheReference) {
    for (uint32_t bit = 21; bit < 31; ++bit)
        for (const uint32_t around : {0u, 1u, 2u})
            expectAgreement(formOf((1u << bit) - 1 + around));
    expectAgreement(formsOf(0x7FFFFF00, 0x7FFFFFFF));
}

TEST(UtfConversion, AllScalarValuesSurviveTheRoundTrip) {
    for (uint32_t first = 0; first < 0x110000; first += 0x800) {
        if (first == 0xD800) continue; // a high and a low surrogate side by side become one pair
        const Bytes text = formsOf(first, first + 0x7FF);
        EXPECT_EQ(toBytes(toUnits(text)), text) << std::hex << first;
    }
}

TEST(UtfConversion, AllSurrogatesInThreeByteFormsSurviveTheRoundTripAlone) {
    for (uint32_t surrogate = 0xD800; surrogate <= 0xDFFF; ++surrogate)
        EXPECT_EQ(toBytes(toUnits(formOf(surrogate))), formOf(surrogate)) << std::hex << surrogate;
}

TEST(Utf16To8, EveryUnitInEverySurroundingAgreesWithTheReference) {
    Units alone, inText;
    for (uint32_t unit = 0; unit < 0x10000; ++unit) {
        const auto u = static_cast<uint16_t>(unit);
        alone.push_back(u);
        inText.insert(inText.end(), {u, 'a', 'b', u, 0x431, u, u, 0x4E00, u, 0xD83D, 0xDE00, u, u});
    }
    for (const int32_t bigEndian : {0, 1}) {
        expectAgreement(alone, bigEndian);
        expectAgreement(inText, bigEndian);
    }
}

TEST(Utf16To8, EveryPairAndEveryWrongPairAgreesWithTheReference) {
    Units text;
    for (uint32_t high = 0xD7F0; high < 0xE010; high += 3)
        for (uint32_t low = 0xD7F0; low < 0xE010; low += 5)
            text.insert(text.end(), {static_cast<uint16_t>(high), static_cast<uint16_t>(low)});
    expectAgreement(text);
    Units pairs;
    for (uint32_t value = 0; value < 0x100000; ++value)
        pairs.insert(pairs.end(), {static_cast<uint16_t>(0xD800 | value >> 10),
                                   static_cast<uint16_t>(0xDC00 | (value & 0x3FF))});
    expectAgreement(pairs);
}

// ------------------------------------------------------------------------------- agreement, random mixtures

constexpr uint32_t seed = 20090401;

class Random {
public:
    explicit Random(uint32_t from) : engine_(from) {}
    uint32_t operator()() { return static_cast<uint32_t>(engine_()); }

private:
    std::mt19937 engine_;
};

template <class In>
struct Mixture;

/// Pieces of each kind come in runs, so that every vector path starts, goes on and ends somewhere.
template <>
struct Mixture<uint8_t> {
    static constexpr int kinds = 9;
    static void append(Bytes& text, int kind, Random& random) {
        const auto between = [&](uint32_t first, uint32_t last) {
            return first + random() % (last - first + 1);
        };
        const auto add = [&](const Bytes& more) { text.insert(text.end(), more.begin(), more.end()); };
        switch (kind) {
        case 0:
            return add(formOf(between(0, 0x7F)));
        case 1:
            return add(formOf(between(0x80, 0x7FF)));
        case 2:
            return add(formOf(between(0x800, 0xFFFF)));
        case 3:
            return add(formOf(between(0x10000, 0x10FFFF)));
        case 4:
            return add(formOf(between(0x110000, 0x7FFFFFFF)));
        case 5:
            return add(Bytes{static_cast<uint8_t>(between(0x80, 0xFF))});
        case 6:
            return add(
                Bytes{static_cast<uint8_t>(between(0xC0, 0xFF)), static_cast<uint8_t>(between(0x80, 0xBF))});
        case 7:
            return add(Bytes{0xE0, static_cast<uint8_t>(between(0x80, 0xBF)),
                             static_cast<uint8_t>(between(0x80, 0xBF))});
        default:
            return add(formOf(between(0, 1) ? between(0x20, 0x7E) : between(0x410, 0x44F)));
        }
    }
};

template <>
struct Mixture<uint16_t> {
    static constexpr int kinds = 7;
    static void append(Units& text, int kind, Random& random) {
        const auto between = [&](uint32_t first, uint32_t last) {
            return static_cast<uint16_t>(first + random() % (last - first + 1));
        };
        switch (kind) {
        case 0:
            return text.push_back(between(0, 0x7F));
        case 1:
            return text.push_back(between(0x80, 0x7FF));
        case 2:
            return text.push_back(between(0x800, 0xFFFF));
        case 3:
            text.push_back(between(0xD800, 0xDBFF));
            return text.push_back(between(0xDC00, 0xDFFF));
        case 4:
            return text.push_back(between(0xD800, 0xDFFF));
        case 5:
            return text.push_back(between(0x70, 0x90));
        default:
            return text.push_back(between(0x7F0, 0x810));
        }
    }
};

template <class In>
std::vector<In> mixture(Random& random, std::size_t length) {
    std::vector<In> text;
    while (text.size() < length) {
        const int kind = static_cast<int>(random() % Mixture<In>::kinds);
        for (uint32_t run = 1 + random() % (random() % 4 == 0 ? 40 : 3); run > 0; --run)
            Mixture<In>::append(text, kind, random);
    }
    text.resize(length);
    return text;
}

constexpr std::size_t capacityLimit = 700;

/// One conversion between guard pages, with the destination's whole capacity watched: what lies behind the
/// reported count must stay as it was.
template <class In, class Out>
void expectGuardedAgreement(GuardedBuffer<In>& sources, GuardedBuffer<Out>& destinations,
                            const std::vector<In>& source, std::size_t capacity, bool atTail,
                            int32_t bigEndian) {
    constexpr auto canary = static_cast<Out>(0xA5A5);
    const In* src = atTail ? sources.copyToTail(source.data(), source.size())
                           : sources.copyToHead(source.data(), source.size());
    Out* dst = atTail ? destinations.tail(capacity) : destinations.head();
    std::fill_n(dst, capacity, canary);
    auto srcLen = static_cast<uint32_t>(source.size());
    auto dstLen = static_cast<uint32_t>(capacity);
    ASSERT_EQ(convert(src, &srcLen, dst, &dstLen, bigEndian), tavStsNoError);
    const auto expected = reference(source, capacity, bigEndian != 0);
    ASSERT_EQ(srcLen, expected.consumed);
    ASSERT_EQ(std::vector<Out>(dst, dst + dstLen), expected.output);
    ASSERT_TRUE(std::all_of(dst + dstLen, dst + capacity, [](Out element) { return element == canary; }));
}

template <class In, class Out>
void expectMixturesAgree() {
    Random random(seed);
    GuardedBuffer<In> sources(capacityLimit);
    GuardedBuffer<Out> destinations(capacityLimit);
    for (std::size_t length = 0; length <= 150; ++length) {
        for (int round = 0; round < 12; ++round) {
            const auto source = mixture<In>(random, length);
            const std::size_t whole = reference(source, capacityLimit, false).output.size();
            for (std::size_t capacity = whole > 24 ? whole - 24 : 0; capacity <= whole + 40; ++capacity) {
                const bool atTail = (capacity + static_cast<std::size_t>(round)) % 2 == 0;
                expectGuardedAgreement(sources, destinations, source, capacity, atTail, round / 2 % 2);
                if (testing::Test::HasFatalFailure()) {
                    std::cerr << "seed " << seed << ", length " << length << ", capacity " << capacity
                              << "\n";
                    return;
                }
            }
        }
    }
}

TEST(Utf8To16, MixturesAgreeWithTheReferenceBetweenGuardPagesAtEveryCapacity) {
    expectMixturesAgree<uint8_t, uint16_t>();
}

TEST(Utf16To8, MixturesAgreeWithTheReferenceBetweenGuardPagesAtEveryCapacity) {
    expectMixturesAgree<uint16_t, uint8_t>();
}

/// Two kinds of piece in turn, in runs of one to nine: what decides between the paths changes at every place
/// of a block. The ends of all lengths fall at every place of a character.
template <class In, class Out>
void expectPiecesInTurnAgree() {
    Random random(seed + 4);
    GuardedBuffer<In> sources(capacityLimit);
    GuardedBuffer<Out> destinations(capacityLimit);
    for (int first = 0; first < Mixture<In>::kinds; ++first)
        for (int second = 0; second < Mixture<In>::kinds; ++second)
            for (const int run : {1, 2, 3, 9}) {
                std::vector<In> text;
                while (text.size() < 130) {
                    for (int i = 0; i < run; ++i)
                        Mixture<In>::append(text, first, random);
                    Mixture<In>::append(text, second, random);
                }
                for (std::size_t length = 0; length <= 130; ++length) {
                    const std::vector<In> source(text.begin(),
                                                 text.begin() + static_cast<std::ptrdiff_t>(length));
                    const std::size_t whole = reference(source, capacityLimit, false).output.size();
                    for (const std::size_t more : {0u, 100u}) {
                        expectGuardedAgreement(sources, destinations, source, whole + more, more == 0,
                                               run / 2 % 2);
                        if (testing::Test::HasFatalFailure()) {
                            std::cerr << "seed " << seed + 4 << ", kinds " << first << " and " << second
                                      << ", run " << run << ", length " << length << "\n";
                            return;
                        }
                    }
                }
            }
}

TEST(Utf8To16, TwoKindsOfPieceInTurnAgreeWithTheReferenceAtEveryLength) {
    expectPiecesInTurnAgree<uint8_t, uint16_t>();
}

TEST(Utf16To8, TwoKindsOfPieceInTurnAgreeWithTheReferenceAtEveryLength) {
    expectPiecesInTurnAgree<uint16_t, uint8_t>();
}

/// Sixteen elements of telling bytes stand at every place relative to the blocks, between ASCII and between
/// other text: what a block ends with and what begins behind it are all combinations.
TEST(Utf8To16, TellingBytesAtEveryPlaceOfABlockAgreeWithTheReference) {
    Random random(seed + 5);
    for (unsigned round = 0; round < 4000; ++round) {
        Bytes text(round % 33, round % 2 == 0 ? 'a' : 0x80);
        for (int i = 0; i < 24; ++i)
            text.push_back(tellingBytes[random() % std::size(tellingBytes)]);
        text.resize(text.size() + round / 33 % 40, 'z');
        expectAgreement(text, static_cast<int32_t>(round % 2));
        if (HasFatalFailure()) FAIL() << "seed " << seed + 5 << ", round " << round;
    }
}

template <class In, class Out>
void expectEveryCapacityFromZeroAgrees() {
    Random random(seed + 1);
    GuardedBuffer<In> sources(capacityLimit);
    GuardedBuffer<Out> destinations(capacityLimit);
    for (int kind = 0; kind < Mixture<In>::kinds; ++kind)
        for (const std::size_t length : {1u, 15u, 16u, 17u, 31u, 48u, 64u, 100u}) {
            std::vector<In> source;
            while (source.size() < length)
                Mixture<In>::append(source, kind, random);
            source.resize(length); // may cut the last character off
            for (std::size_t capacity = 0; capacity <= length * 3 + 2; ++capacity) {
                expectGuardedAgreement(sources, destinations, source, capacity, capacity % 2 == 0, 0);
                if (testing::Test::HasFatalFailure()) {
                    std::cerr << "seed " << seed + 1 << ", kind " << kind << ", length " << length
                              << ", capacity " << capacity << "\n";
                    return;
                }
            }
        }
}

TEST(UtfConversion, EveryCapacityFromZeroOnAgreesForEveryKindOfText) {
    expectEveryCapacityFromZeroAgrees<uint8_t, uint16_t>();
    expectEveryCapacityFromZeroAgrees<uint16_t, uint8_t>();
}

template <class In>
void expectLongMixturesAgree(int rounds) {
    Random random(seed + 2);
    for (int round = 0; round < rounds; ++round) {
        expectAgreement(mixture<In>(random, 3000), round % 2);
        if (testing::Test::HasFatalFailure()) {
            std::cerr << "seed " << seed + 2 << ", round " << round << "\n";
            return;
        }
    }
}

TEST(UtfConversion, LongMixturesAgreeWithTheReference) {
    expectLongMixturesAgree<uint8_t>(100);
    expectLongMixturesAgree<uint16_t>(100);
}

// ------------------------------------------------------------------------------------------------- resuming

template <class In, class Out>
void expectResumingGivesTheSameText() {
    Random random(seed + 3);
    for (int round = 0; round < 100; ++round) {
        const auto source = mixture<In>(random, 300);
        std::vector<Out> whole = converted<Out>(source, 1000).output, pieces;
        std::size_t at = 0;
        while (at < source.size()) {
            const std::size_t capacity = 4 + random() % 60; // a character of any length fits
            const std::vector<In> rest(source.begin() + static_cast<std::ptrdiff_t>(at), source.end());
            const auto piece = converted<Out>(rest, capacity);
            ASSERT_GT(piece.consumed, 0u);
            pieces.insert(pieces.end(), piece.output.begin(), piece.output.end());
            at += piece.consumed;
        }
        ASSERT_EQ(pieces, whole) << "seed " << seed + 3 << ", round " << round;
    }
}

TEST(UtfConversion, ResumingAfterAFullDestinationGivesTheTextOfOneCall) {
    expectResumingGivesTheSameText<uint8_t, uint16_t>();
    expectResumingGivesTheSameText<uint16_t, uint8_t>();
}

// ---------------------------------------------------------------------------------------------------- iconv

#if defined(__linux__)
template <class Out, class In>
std::vector<Out> byIconv(const char* to, const char* from, const std::vector<In>& source) {
    const iconv_t converter = iconv_open(to, from);
    if (converter == reinterpret_cast<iconv_t>(-1)) return {};
    std::vector<Out> output(source.size() * 4 + 4);
    auto* in = const_cast<char*>(reinterpret_cast<const char*>(source.data()));
    auto* out = reinterpret_cast<char*>(output.data());
    std::size_t inLeft = source.size() * sizeof(In), outLeft = output.size() * sizeof(Out);
    EXPECT_NE(iconv(converter, &in, &inLeft, &out, &outLeft), static_cast<std::size_t>(-1));
    iconv_close(converter);
    output.resize(output.size() - outLeft / sizeof(Out));
    return output;
}

TEST(UtfConversion, AgreesWithIconvOnAllScalarValues) {
    Bytes text = formsOf(0, 0xD7FF);
    const Bytes rest = formsOf(0xE000, 0x10FFFF);
    text.insert(text.end(), rest.begin(), rest.end());
    const auto units = byIconv<uint16_t>("UTF-16LE", "UTF-8", text);
    if (units.empty()) GTEST_SKIP() << "iconv does not know these encodings";
    EXPECT_EQ(toUnits(text), units);
    EXPECT_EQ(toBytes(units), byIconv<uint8_t>("UTF-8", "UTF-16LE", units));
    EXPECT_EQ(toBytes(units), text);
}
#endif

} // namespace
