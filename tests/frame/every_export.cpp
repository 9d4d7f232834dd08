#include "frame/every_export.h"

#include "strings/api.h"

#include <array>

namespace tavtest {

uint64_t hashOf(std::string_view bytes) {
    uint64_t hash = 0xCBF29CE484222325u;
    for (const char c : bytes)
        hash = (hash ^ static_cast<uint8_t>(c)) * 0x100000001B3u;
    return hash;
}

tavRegExpContext* compiled(Call& call, const std::string& pattern, const char* options) {
    auto* const context = reinterpret_cast<tavRegExpContext*>(call.block(24 * pattern.size() + 48056));
    int32_t* const errOffset = call.array(1, int32_t{-1});
    call.expect(tavsRegExpInit(call.text(pattern), call.text(options), context, errOffset));
    return context;
}

namespace {

// ---- Texts

/// Letters of both cases in no order that a period would hide.
template <class E>
std::vector<E> letters(std::size_t count, std::size_t from = 0) {
    std::vector<E> all;
    for (std::size_t i = from; i < from + count; ++i)
        all.push_back(static_cast<E>((i * i % 11 < 6 ? 'a' : 'A') + static_cast<int>(i * 7 % 26)));
    return all;
}

std::string patternOf(std::size_t length) {
    static constexpr std::string_view pieces = "a.b*[cd]?(e|f)+\\d\\x41(?:gh){2,3}(?i)j$";
    std::string pattern;
    while (pattern.size() + pieces.size() <= length)
        pattern += pieces;
    return pattern + std::string(length - pattern.size(), 'z');
}

// ---- Rows for one element width

template <class E, class Result>
tavStatus compareInto(tavStatus (*function)(const E*, const E*, int32_t, Result*), Call& call, const E* a,
                      const E* b) {
    return function(a, b, call.length(), call.out(1, Result{77}));
}

template <class E>
void addComparisons(Table& table, std::array<std::string_view, 3> names) {
    const auto row = [](auto function) {
        return [function](Call& call) {
            auto second = letters<E>(call.size());
            if (call.size() > 0) second.back() = '!';
            const E* const a = call.in(letters<E>(call.size()));
            call.expect(compareInto(function, call, a, call.in(second)));
        };
    };
    table[names[0]] = row(Api<E>::compare);
    table[names[1]] = row(Api<E>::compareIgnoreCaseLatin);
    table[names[2]] = row(Api<E>::equal);
}

/// Searches that go the whole way: what they look for stands nowhere, or at the far end.
template <class E>
void addSearches(Table& table, std::array<std::string_view, 8> names) {
    using Strings = tavStatus (*)(const E*, int32_t, const E*, int32_t, int32_t*);
    const auto strings = [](Strings function) {
        return [function](Call& call) {
            for (const std::size_t needle : {std::size_t{1}, std::size_t{5}, std::size_t{20}, call.size()}) {
                for (const bool present : {false, true}) {
                    Call inner = call;
                    std::vector<E> sought = letters<E>(needle, call.size() - std::min(needle, call.size()));
                    if (!present && !sought.empty()) sought.back() = '!';
                    int32_t* const index = inner.out(1, int32_t{77});
                    inner.expect(function(inner.in(letters<E>(call.size())), call.length(), inner.in(sought),
                                          static_cast<int32_t>(needle), index));
                    call.value(*index);
                }
            }
        };
    };
    using Element = tavStatus (*)(const E*, int32_t, E, int32_t*);
    const auto element = [](Element function) {
        return [function](Call& call) {
            const E* const text = call.in(letters<E>(call.size()));
            int32_t* const index = call.out(1, int32_t{77});
            call.expect(function(text, call.length(), '!', index));
            call.value(*index);
            call.expect(
                function(text, call.length(), call.size() > 0 ? text[call.size() / 2] : E{'a'}, index));
        };
    };
    table[names[0]] = strings(Api<E>::find);
    table[names[1]] = strings(Api<E>::findRev);
    table[names[2]] = strings(Api<E>::findCAny);
    table[names[3]] = strings(Api<E>::findRevCAny);
    table[names[4]] = element(Api<E>::findC);
    table[names[5]] = element(Api<E>::findRevC);
    table[names[6]] = [](Call& call) {
        for (const std::size_t needle : {std::size_t{0}, std::size_t{1}, std::size_t{5}, call.size()}) {
            Call inner = call;
            std::vector<E> text = letters<E>(call.size());
            std::vector<E> sought = letters<E>(needle, 3);
            text.push_back(0);
            sought.push_back(0);
            int32_t* const index = inner.out(1, int32_t{77});
            inner.expect(Api<E>::findZ(inner.in(text), inner.in(sought), index));
            call.value(*index);
        }
    };
    table[names[7]] = [](Call& call) {
        std::vector<E> text = letters<E>(call.size());
        text.push_back(0);
        const E* const place = call.in(text);
        int32_t* const index = call.out(1, int32_t{77});
        for (const E value : {E{'!'}, E{0}, text[0]}) {
            call.expect(Api<E>::findCZ(place, value, index));
            call.value(*index);
        }
    };
}

template <class E>
void addEdits(Table& table, std::array<std::string_view, 9> names) {
    table[names[0]] = [](Call& call) {
        const std::size_t at = call.size() / 3;
        for (const std::size_t added : {std::size_t{1}, std::size_t{17}, call.size()}) {
            if (added == 0) continue;
            Call inner = call;
            E* const dst = inner.out(call.size() + added, E{'~'});
            inner.expect(Api<E>::insert(inner.in(letters<E>(call.size())), call.length(),
                                        inner.in(letters<E>(added, 50)), static_cast<int32_t>(added), dst,
                                        static_cast<int32_t>(at)));
            call.value(static_cast<int64_t>(hashOf(inner.results())));
        }
    };
    table[names[1]] = [](Call& call) {
        std::vector<E> text = letters<E>(call.size());
        text.resize(call.size() + 17);
        E* const place = call.inOut(text);
        int32_t* const length = call.out(1, call.length());
        call.expect(Api<E>::insertInPlace(call.in(letters<E>(17, 50)), 17, place, length, call.length() / 3));
    };
    table[names[2]] = [](Call& call) {
        const int32_t removed = call.length() / 3;
        E* const dst = call.out(call.size() - static_cast<std::size_t>(removed), E{'~'});
        call.expect(
            Api<E>::remove(call.in(letters<E>(call.size())), call.length(), dst, call.length() / 4, removed));
    };
    table[names[3]] = [](Call& call) {
        E* const place = call.inOut(letters<E>(call.size()));
        int32_t* const length = call.out(1, call.length());
        call.expect(Api<E>::removeInPlace(place, length, call.length() / 4, call.length() / 3));
    };
    table[names[4]] = [](Call& call) {
        E* const dst = call.out(call.size() + 9, E{'~'});
        call.expect(Api<E>::concat(call.in(letters<E>(call.size())), call.length(),
                                   call.in(letters<E>(9, 60)), 9, dst));
    };
    table[names[5]] = [](Call& call) {
        const E* const all[] = {call.in(letters<E>(call.size())), call.in(letters<E>(5, 9))};
        const E* const* const list = call.in(std::vector<const E*>(all, all + 2));
        E* const dst = call.out(call.size() + 5, E{'~'});
        call.expect(Api<E>::concatList(list, call.in(std::vector<int32_t>{call.length(), 5}), 2, dst));
    };
    table[names[6]] = [](Call& call) {
        const E* const all[] = {call.in(letters<E>(call.size())), call.in(letters<E>(5, 9))};
        const E* const* const list = call.in(std::vector<const E*>(all, all + 2));
        E* const dst = call.out(call.size() + 6, E{'~'});
        call.expect(Api<E>::concatListWithDelimiter(list, call.in(std::vector<int32_t>{call.length(), 5}), 2,
                                                    ',', dst));
    };
    table[names[7]] = [](Call& call) {
        std::vector<E> text = letters<E>(call.size());
        const std::size_t half = call.size() / 2;
        if (half > 0) text[half] = ',';
        E* const first = call.out(half, E{'~'});
        E* const second = call.out(call.size() > half ? call.size() - half - (half > 0) : 0, E{'~'});
        E* const all[] = {half > 0 ? first : second, second};
        E* const* const slots = call.in(std::vector<E*>(all, all + 2));
        int32_t* const lengths =
            call.inOut(std::vector<int32_t>{half > 0 ? static_cast<int32_t>(half) : call.length(),
                                            call.length() - static_cast<int32_t>(half)});
        lengths[1] -= half > 0;
        int32_t* const count = call.out(1, int32_t{2});
        call.expect(Api<E>::split(call.in(text), call.length(), ',', slots, lengths, count));
        call.value(*count);
    };
    table[names[8]] = [](Call& call) {
        E* const dst = call.out(call.size(), E{'~'});
        call.expect(Api<E>::replace(call.in(letters<E>(call.size())), dst, call.length(), 'a', '#'));
    };
}

template <class E>
void addTrims(Table& table, std::array<std::string_view, 5> names) {
    using TrimAny = tavStatus (*)(const E*, int32_t, const E*, int32_t, E*, int32_t*);
    // Odd elements up to the middle, behind it, everywhere; sets of few and of many members.
    const auto any = [](TrimAny function) {
        return [function](Call& call) {
            for (const std::size_t members : {1u, 3u, 40u}) {
                for (const std::size_t kept : {std::size_t{0}, call.size() / 2, call.size()}) {
                    Call inner = call;
                    std::vector<E> set(members, E{'_'});
                    for (std::size_t i = 0; i < members; ++i)
                        set[i] = static_cast<E>('!' + i);
                    set.back() = ' ';
                    std::vector<E> text(call.size(), E{' '});
                    const std::size_t from = (call.size() - kept) / 2;
                    for (std::size_t i = from; i < from + kept; ++i)
                        text[i] = static_cast<E>('a' + i % 26);
                    // Only one side is trimmed by two of the three: room for the other side's blanks.
                    E* const dst = inner.out(call.size(), E{'~'});
                    int32_t* const length = inner.out(1, int32_t{-1});
                    inner.expect(function(inner.in(text), call.length(), inner.in(set),
                                          static_cast<int32_t>(members), dst, length));
                    call.value(*length);
                    call.value(static_cast<int64_t>(hashOf(inner.results())));
                }
            }
        };
    };
    table[names[0]] = any(Api<E>::trimAny);
    table[names[1]] = any(Api<E>::trimStartAny);
    table[names[2]] = any(Api<E>::trimEndAny);
    const auto blanks = [](std::size_t count) {
        std::vector<E> text(count, E{' '});
        for (std::size_t i = count / 3; i < count - count / 3; ++i)
            text[i] = 'x';
        return text;
    };
    table[names[3]] = [blanks](Call& call) {
        const std::size_t kept = call.size() - 2 * (call.size() / 3);
        E* const dst = call.out(kept, E{'~'});
        int32_t* const length = call.out(1, int32_t{-1});
        call.expect(Api<E>::trim(call.in(blanks(call.size())), call.length(), ' ', dst, length));
    };
    table[names[4]] = [blanks](Call& call) {
        E* const place = call.inOut(blanks(call.size()));
        int32_t* const length = call.out(1, call.length());
        call.expect(Api<E>::trimInPlace(place, length, ' '));
    };
}

template <class E>
void addHashesAndLatinCase(Table& table, std::array<std::string_view, 7> names) {
    using Hash = tavStatus (*)(const E*, int32_t, uint32_t*);
    const auto hash = [](Hash function) {
        return [function](Call& call) {
            const E* const text = call.in(letters<E>(call.size()));
            call.expect(function(text, call.length(), call.out(1, uint32_t{77})));
        };
    };
    using Copy = tavStatus (*)(const E*, E*, int32_t);
    const auto copy = [](Copy function) {
        return [function](Call& call) {
            const E* const text = call.in(letters<E>(call.size()));
            call.expect(function(text, call.out(call.size(), E{'~'}), call.length()));
        };
    };
    using InPlace = tavStatus (*)(E*, int32_t);
    const auto inPlace = [](InPlace function) {
        return [function](Call& call) {
            call.expect(function(call.inOut(letters<E>(call.size())), call.length()));
        };
    };
    table[names[0]] = hash(Api<E>::hash);
    table[names[1]] = hash(Api<E>::hashSJ2);
    table[names[2]] = hash(Api<E>::hashMSCS);
    table[names[3]] = copy(Api<E>::lowercaseLatin);
    table[names[4]] = inPlace(Api<E>::lowercaseLatinInPlace);
    table[names[5]] = copy(Api<E>::uppercaseLatin);
    table[names[6]] = inPlace(Api<E>::uppercaseLatinInPlace);
}

// ---- Unicode

/// Characters of every length, so that every vector loop is left and entered.
std::string manyScripts(std::size_t bytes) {
    std::string text;
    static const char* const pieces[] = {
        "plain letters up to here", "\xC3\xA9\xD0\xB6", "\xE2\x82\xAC", "\xF0\x9F\x98\x80",
        "\xE6\xBC\xA2\xE5\xAD\x97", "\xED\xA0\x80",     "\xC1"};
    for (std::size_t i = 0; text.size() < bytes; ++i)
        text += pieces[i % std::size(pieces)];
    return text.substr(0, bytes);
}

std::vector<uint16_t> wideText(std::size_t units) {
    std::vector<uint16_t> text;
    static const uint16_t pieces[] = {'A', 'z', 0xE9, 0x416, 0x20AC, 0xD83D, 0xDE00, 0xD800, 0x3A3, 0x1F88};
    for (std::size_t i = 0; i < units; ++i)
        text.push_back(i % 50 < 24 ? static_cast<uint16_t>('A' + i % 60) : pieces[i % std::size(pieces)]);
    return text;
}

void addUnicode(Table& table) {
    table["tavsConvertUTF_8u16u"] = [](Call& call) {
        const std::string text = manyScripts(call.size());
        for (const std::size_t capacity : {call.size(), call.size() / 2}) {
            Call inner = call;
            const uint8_t* const src = inner.in(std::vector<uint8_t>(text.begin(), text.end()));
            uint32_t* const read = inner.out(1, static_cast<uint32_t>(call.size()));
            uint16_t* const dst = inner.out(capacity, uint16_t{'~'});
            uint32_t* const written = inner.out(1, static_cast<uint32_t>(capacity));
            inner.expect(tavsConvertUTF_8u16u(src, read, dst, written, 0));
            call.value(static_cast<int64_t>(hashOf(inner.results())));
        }
    };
    table["tavsConvertUTF_16u8u"] = [](Call& call) {
        for (const std::size_t capacity : {3 * call.size(), call.size()}) {
            for (const int32_t bigEndian : {0, 1}) {
                Call inner = call;
                const uint16_t* const src = inner.in(wideText(call.size()));
                uint32_t* const read = inner.out(1, static_cast<uint32_t>(call.size()));
                uint8_t* const dst = inner.out(capacity, uint8_t{'~'});
                uint32_t* const written = inner.out(1, static_cast<uint32_t>(capacity));
                inner.expect(tavsConvertUTF_16u8u(src, read, dst, written, bigEndian));
                call.value(static_cast<int64_t>(hashOf(inner.results())));
            }
        }
    };
    const auto copy = [](auto function) {
        return [function](Call& call) {
            const uint16_t* const text = call.in(wideText(call.size()));
            call.expect(function(text, call.out(call.size(), uint16_t{'~'}), call.length()));
        };
    };
    const auto inPlace = [](auto function) {
        return [function](Call& call) {
            call.expect(function(call.inOut(wideText(call.size())), call.length()));
        };
    };
    table["tavsLowercase_16u"] = copy(tavsLowercase_16u);
    table["tavsUppercase_16u"] = copy(tavsUppercase_16u);
    table["tavsLowercase_16u_I"] = inPlace(tavsLowercase_16u_I);
    table["tavsUppercase_16u_I"] = inPlace(tavsUppercase_16u_I);
    table["tavsCompareIgnoreCase_16u"] = [](Call& call) {
        const uint16_t* const a = call.in(wideText(call.size()));
        std::vector<uint16_t> other = wideText(call.size());
        for (uint16_t& unit : other) {
            if (unit == 0x416) unit = 0x436;
        }
        call.expect(tavsCompareIgnoreCase_16u(a, call.in(other), call.length(), call.out(1, int32_t{77})));
    };
}

// ---- Patterns

const char searched[] = "([a-z]+)([A-Z]\\x{e9}?)|!";

void addPatterns(Table& table) {
    table["tavsRegExpGetSize"] = [](Call& call) {
        const char* const pattern = call.text(patternOf(call.size()));
        call.expect(tavsRegExpGetSize(pattern, call.out(1, int32_t{0})));
    };
    table["tavsRegExpInit"] = [](Call& call) {
        const tavRegExpContext* const context = compiled(call, patternOf(call.size()), "gi");
        call.value(context->codeLength);
        call.value(context->groupCount);
        call.value(context->lastLiteral);
    };
    table["tavsRegExpInitAlloc"] = [](Call& call) {
        tavRegExpContext** const state = call.array<tavRegExpContext*>(1, nullptr);
        const char* const pattern = call.text(patternOf(call.size()));
        call.expect(tavsRegExpInitAlloc(pattern, call.text("s"), state, call.out(1, int32_t{-1})));
        call.value((*state)->codeLength);
        call.expect(tavsRegExpFree(*state));
    };
    table["tavsRegExpFree"] = [](Call& call) { call.expect(tavsRegExpFree(nullptr)); };
    table["tavsRegExpMultiFree"] = [](Call& call) { call.expect(tavsRegExpMultiFree(nullptr)); };
    table["tavsRegExpSetMatchLimit"] = [](Call& call) {
        tavRegExpContext* const context = compiled(call, "", "");
        call.expect(tavsRegExpSetMatchLimit(call.length(), context));
        call.value(context->matchLimit);
    };
    table["tavsRegExpSetFormat"] = [](Call& call) {
        tavRegExpContext* const context = compiled(call, "", "");
        call.expect(tavsRegExpSetFormat(call.length() % 2, context));
        call.value(context->format);
    };
    table["tavsRegExpFind_8u"] = [](Call& call) {
        tavRegExpContext* const context = compiled(call, searched, call.size() % 2 == 0 ? "g" : "");
        const uint8_t* const subject = call.in(letters<uint8_t>(call.size()));
        tavRegExpFindResult* const found = call.array(7, tavRegExpFindResult{nullptr, -9});
        int32_t* const count = call.out(1, int32_t{7});
        call.expect(tavsRegExpFind_8u(subject, call.length(), context, found, count));
        for (int32_t i = 0; i < *count; ++i) {
            call.value(found[i].start != nullptr ? found[i].start - subject : -1);
            call.value(found[i].length);
        }
    };
}

// ---- Services

tavRegExpReplaceContext* cutTemplate(Call& call, const std::string& text) {
    auto* const context = reinterpret_cast<tavRegExpReplaceContext*>(call.block(16 * text.size() + 16));
    call.expect(tavsRegExpReplaceInit(call.text(text), context));
    return context;
}

std::string templateOf(std::size_t length) {
    std::string text;
    while (text.size() < length)
        text += "a\\$&b$1$22-";
    text.resize(length);
    if (length > 0 && text.back() == '$') text.back() = 'x';
    return text;
}

tavRegExpMultiContext* filledSet(Call& call, std::size_t capacity, tavRegExpContext* pattern) {
    auto* const set = reinterpret_cast<tavRegExpMultiContext*>(call.block((24 + 12 * capacity + 7) / 8 * 8));
    call.expect(tavsRegExpMultiInit(set, static_cast<uint32_t>(capacity)));
    for (std::size_t i = 0; i + 1 < capacity; ++i)
        call.expect(tavsRegExpMultiAdd(pattern, static_cast<uint32_t>(i + 1), set));
    return set;
}

void addServices(Table& table) {
    table["tavsRegExpReplaceGetSize"] = [](Call& call) {
        const char* const text = call.text(templateOf(call.size()));
        call.expect(tavsRegExpReplaceGetSize(text, call.out(1, int32_t{0})));
    };
    table["tavsRegExpReplaceInit"] = [](Call& call) {
        call.value(cutTemplate(call, templateOf(call.size()))->itemCount);
    };
    table["tavsRegExpReplace_8u"] = [](Call& call) {
        if (call.size() == 0) return;
        for (const int32_t capacity : {2 * call.length() + 40, call.length(), 1}) {
            Call inner = call;
            tavRegExpContext* const context = compiled(inner, searched, "g");
            tavRegExpReplaceContext* const replacement = cutTemplate(inner, "<$1>");
            tavRegExpFindResult* const found = inner.array(60, tavRegExpFindResult{nullptr, -9});
            int32_t* const count = inner.out(1, int32_t{60});
            int32_t* const read = inner.out(1, call.length());
            int32_t* const written = inner.out(1, capacity);
            uint8_t* const dst = inner.out(static_cast<std::size_t>(capacity), uint8_t{'~'});
            inner.expect(tavsRegExpReplace_8u(inner.in(letters<uint8_t>(call.size())), read, dst, written,
                                              found, count, context, replacement));
            call.value(static_cast<int64_t>(hashOf(inner.results())));
        }
    };
    table["tavsRegExpMultiGetSize"] = [](Call& call) {
        call.expect(tavsRegExpMultiGetSize(static_cast<uint32_t>(call.size() + 1), call.out(1, int32_t{0})));
    };
    table["tavsRegExpMultiInit"] = [](Call& call) {
        const std::size_t capacity = call.size() / 2 * 2 + 2;
        auto* const set = reinterpret_cast<tavRegExpMultiContext*>(call.block(24 + 12 * capacity));
        call.expect(tavsRegExpMultiInit(set, static_cast<uint32_t>(capacity)));
        call.value(set->capacity);
    };
    table["tavsRegExpMultiInitAlloc"] = [](Call& call) {
        tavRegExpMultiContext** const set = call.array<tavRegExpMultiContext*>(1, nullptr);
        call.expect(tavsRegExpMultiInitAlloc(set, static_cast<uint32_t>(call.size() + 1)));
        call.value((*set)->capacity);
        call.expect(tavsRegExpMultiFree(*set));
    };
    const auto changes = [](Call& call) {
        const std::size_t capacity = call.size() / 2 * 2 + 2;
        tavRegExpContext* const pattern = compiled(call, "a", "");
        tavRegExpMultiContext* const set = filledSet(call, capacity, pattern);
        const auto last = static_cast<uint32_t>(capacity);
        call.expect(tavsRegExpMultiAdd(pattern, last, set));
        call.expect(tavsRegExpMultiAdd(pattern, last + 1, set), tavStsSetFull);
        call.expect(tavsRegExpMultiModify(pattern, last, set));
        call.expect(tavsRegExpMultiDelete(last, set));
        call.expect(tavsRegExpMultiDelete(last, set), tavStsNotFound);
    };
    table["tavsRegExpMultiAdd"] = changes;
    table["tavsRegExpMultiModify"] = changes;
    table["tavsRegExpMultiDelete"] = changes;
    table["tavsRegExpMultiFind_8u"] = [](Call& call) {
        if (call.size() == 0) return;
        constexpr std::size_t capacity = 4;
        tavRegExpMultiContext* const set = filledSet(call, capacity, compiled(call, searched, ""));
        std::vector<tavRegExpMultiFindResult> wanted;
        for (std::size_t i = 0; i < capacity; ++i)
            wanted.push_back({0, 0, 1, -1, call.array(1, tavRegExpFindResult{nullptr, -9})});
        tavRegExpMultiFindResult* const results = call.in(wanted);
        call.expect(
            tavsRegExpMultiFind_8u(call.in(letters<uint8_t>(call.size())), call.length(), results, set));
        for (std::size_t i = 0; i < capacity; ++i) {
            call.value(results[i].searched);
            call.value(results[i].numFind);
            call.value(results[i].finds[0].length);
        }
    };
}

} // namespace

Table everyExport() {
    Table table;
#define TAV_ROWS(E, S)                                                                                       \
    addComparisons<E>(table, {"tavsCompare_" #S, "tavsCompareIgnoreCaseLatin_" #S, "tavsEqual_" #S});        \
    addSearches<E>(table, {"tavsFind_" #S, "tavsFindRev_" #S, "tavsFindCAny_" #S, "tavsFindRevCAny_" #S,     \
                           "tavsFindC_" #S, "tavsFindRevC_" #S, "tavsFind_Z_" #S, "tavsFindC_Z_" #S});       \
    addEdits<E>(table, {"tavsInsert_" #S, "tavsInsert_" #S "_I", "tavsRemove_" #S, "tavsRemove_" #S "_I",    \
                        "tavsConcat_" #S, "tavsConcat_" #S "_D2L", "tavsConcatC_" #S "_D2L",                 \
                        "tavsSplitC_" #S "_D2L", "tavsReplaceC_" #S});                                       \
    addTrims<E>(table, {"tavsTrimCAny_" #S, "tavsTrimStartCAny_" #S, "tavsTrimEndCAny_" #S, "tavsTrimC_" #S, \
                        "tavsTrimC_" #S "_I"});                                                              \
    addHashesAndLatinCase<E>(table,                                                                          \
                             {"tavsHash_" #S "32u", "tavsHashSJ2_" #S "32u", "tavsHashMSCS_" #S "32u",       \
                              "tavsLowercaseLatin_" #S, "tavsLowercaseLatin_" #S "_I",                       \
                              "tavsUppercaseLatin_" #S, "tavsUppercaseLatin_" #S "_I"});
    TAV_ROWS(uint8_t, 8u)
    TAV_ROWS(uint16_t, 16u)
#undef TAV_ROWS
    addUnicode(table);
    addPatterns(table);
    addServices(table);
    table["tavchGetLibVersion"] = [](Call& call) { call.value(tavchGetLibVersion()->versionMajor); };
    return table;
}

} // namespace tavtest
