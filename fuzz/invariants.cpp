// What holds for every search: it writes nothing but the work area of its block, finds the same in a block
// that held other garbage and a second time, and reports spans inside the subject. Settings, pattern,
// subject.
#include "search_input.h"

namespace {

using namespace tavfuzz;

struct Found {
    tavStatus status = 0;
    int32_t count = 0;
    std::vector<tavRegExpFindResult> entries;

    bool operator==(const Found& other) const {
        if (status != other.status || count != other.count) return false;
        for (std::size_t i = 0; i < entries.size(); ++i) {
            if (entries[i].start != other.entries[i].start || entries[i].length != other.entries[i].length)
                return false;
        }
        return true;
    }
};

Found find(tavRegExpContext& block, Exact<uint8_t>& memory, int32_t slots) {
    Found found;
    found.count = slots;
    Exact<tavRegExpFindResult> results(static_cast<std::size_t>(slots), 0, {nullptr, -7});
    found.status = tavsRegExpFind_8u(memory.get(), memory.length() - 1, &block, results.get(), &found.count);
    TAV_REQUIRE(found.status >= 0 && found.count >= 0 && found.count <= slots);
    found.entries = results.all();
    return found;
}

void requireInside(const Found& found, Exact<uint8_t>& memory) {
    const uint8_t* const end = memory.get() + memory.length() - 1;
    for (std::size_t i = 0; i < found.entries.size(); ++i) {
        const auto& entry = found.entries[i];
        if (i >= static_cast<std::size_t>(found.count)) {
            TAV_REQUIRE(entry.start == nullptr && entry.length == -7);
        } else if (entry.start == nullptr) {
            TAV_REQUIRE(entry.length == -1);
        } else {
            TAV_REQUIRE(entry.length >= 0 && entry.start >= memory.get() &&
                        entry.start + entry.length <= end);
        }
    }
}

std::vector<uint8_t> withoutWorkArea(CompiledPattern& pattern) {
    constexpr std::size_t header = offsetof(tavRegExpContext, workArea);
    const std::size_t behind = 24 * pattern.length() + 48056 - sizeof(tavRegExpContext);
    std::vector<uint8_t> rest(header + behind);
    std::memcpy(rest.data(), pattern.bytes(), header);
    std::memcpy(rest.data() + header, pattern.bytes() + sizeof(tavRegExpContext), behind);
    return rest;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    const SearchInput search = readSearch(input);
    const tav::reference::Trial& trial = search.trial;
    CompiledPattern one(trial.pattern, trial.options);
    CompiledPattern other(trial.pattern, trial.options, 0);
    if (!one.compiled()) return 0;

    // What takes the reference too many steps may take the library exponential time.
    tav::reference::SearchSettings settings;
    const bool global = (one.context().options & tav::regex::optionGlobal) != 0;
    const int32_t slots = trial.slots > 0 ? trial.slots : one.context().groupCount + (global ? 40 : 0);
    settings.capacity = slots;
    settings.global = global;
    settings.stepLimit = 20000;
    std::vector<uint8_t> text(trial.subject.begin(), trial.subject.end());
    text.push_back(static_cast<uint8_t>(trial.behind));
    Exact<uint8_t> memory(text);
    one.context().matchLimit = trial.limit;
    one.context().format = trial.format;
    if (tav::reference::search(tav::reference::programIn(one.context()), {memory.get(), memory.length() - 1},
                               settings)
            .gaveUp)
        return 0;

    const std::vector<uint8_t> before = withoutWorkArea(one);
    const Found found = find(one.context(), memory, slots);
    requireInside(found, memory);
    TAV_REQUIRE(memory.all() == text);
    TAV_REQUIRE(withoutWorkArea(one) == before);
    TAV_REQUIRE(find(one.context(), memory, slots) == found);
    other.context().matchLimit = trial.limit;
    other.context().format = trial.format;
    TAV_REQUIRE(find(other.context(), memory, slots) == found);
    one.requireSound();
    return 0;
}
