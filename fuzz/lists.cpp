// Splitting into a list and joining a list: settings line (separator, number of slots, capacity of each slot
// in turn), text.
#include "input.h"
#include "strings/api.h"

#include <algorithm>

namespace {

using namespace tavfuzz;
using tavtest::Api;

template <class E>
using Text = std::vector<E>;

/// All fields of a text: none behind a separator at the very end.
template <class E>
std::vector<Text<E>> fieldsOf(const Text<E>& text, E separator) {
    std::vector<Text<E>> fields;
    for (auto from = text.begin(); from != text.end();) {
        const auto to = std::find(from, text.end(), separator);
        fields.emplace_back(from, to);
        from = to == text.end() ? to : to + 1;
    }
    return fields;
}

template <class E>
struct List {
    std::vector<Exact<E>> buffers;
    std::vector<E*> pointers;
    std::vector<int32_t> lengths;

    void add(Exact<E> buffer) {
        lengths.push_back(buffer.length());
        buffers.push_back(std::move(buffer));
        pointers.push_back(buffers.back().get());
    }
};

template <class E>
void checkSplit(const Text<E>& text, E separator, Settings settings) {
    const std::vector<Text<E>> fields = fieldsOf(text, separator);
    List<E> slots;
    const uint32_t slotCount = 1 + settings.below(20);
    for (uint32_t i = 0; i < slotCount; ++i)
        slots.add(Exact<E>(settings.below(64)));
    const std::vector<int32_t> capacities = slots.lengths;
    Exact<E> src(text);
    auto count = static_cast<int32_t>(slotCount);
    const tavStatus status = Api<E>::split(src.get(), src.length(), separator, slots.pointers.data(),
                                           slots.lengths.data(), &count);
    const std::size_t written = std::min<std::size_t>(fields.size(), slotCount);
    TAV_REQUIRE(count == static_cast<int32_t>(written));
    bool cut = false;
    for (std::size_t i = 0; i < written; ++i) {
        const std::size_t length = std::min(fields[i].size(), static_cast<std::size_t>(capacities[i]));
        cut = cut || length < fields[i].size();
        TAV_REQUIRE(slots.lengths[i] == static_cast<int32_t>(length));
        TAV_REQUIRE(slots.buffers[i].taken(length) ==
                    Text<E>(fields[i].begin(), fields[i].begin() + static_cast<std::ptrdiff_t>(length)));
    }
    const tavStatus expected = fields.size() > slotCount ? tavStsSplitUnfinished
                               : cut                     ? tavStsFieldTruncated
                                                         : tavStsNoError;
    TAV_REQUIRE(status == expected);
}

template <class E>
void checkJoin(const Text<E>& text, E separator) {
    const std::vector<Text<E>> fields = fieldsOf(text, separator);
    if (fields.empty()) return;
    List<E> list;
    Text<E> plain;
    for (const Text<E>& field : fields) {
        list.add(Exact<E>(field));
        plain = joined(plain, field);
    }
    const auto count = static_cast<int32_t>(fields.size());
    Exact<E> dst(plain.size());
    TAV_REQUIRE(Api<E>::concatList(list.pointers.data(), list.lengths.data(), count, dst.get()) ==
                tavStsNoError);
    TAV_REQUIRE(dst.all() == plain);
    Text<E> whole = text;
    if (whole.back() == separator) whole.pop_back();
    Exact<E> again(whole.size());
    TAV_REQUIRE(Api<E>::concatListWithDelimiter(list.pointers.data(), list.lengths.data(), count, separator,
                                                again.get()) == tavStsNoError);
    TAV_REQUIRE(again.all() == whole);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    const std::string line = input.line();
    const Settings settings(line.empty() ? line : line.substr(1));
    const std::string text = input.rest();
    forBothWidths([&](auto e) {
        using E = decltype(e);
        const E separator = line.empty() ? E{','} : static_cast<E>(static_cast<uint8_t>(line[0]));
        checkSplit(elements<E>(text, false), separator, settings);
        checkJoin(elements<E>(text, false), separator);
    });
    return 0;
}
