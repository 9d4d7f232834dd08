// Replacement, beside its plain twin: settings, pattern, template, subject. Every capacity is tried; the
// destination has the room that the header asks for and no byte more.
#include "regex/services/plain_replacement.h"
#include "search_input.h"

namespace {

using namespace tavfuzz;
using tavtest::Outcome;
using tavtest::Request;

void check(tavRegExpContext& pattern, tavRegExpReplaceContext& context, Request& request, int32_t slots,
           const tav::reference::SearchResult& found) {
    const bool global = (pattern.options & tav::regex::optionGlobal) != 0;
    const bool none = found.status < 0 || found.entries.empty();
    Outcome expected = none     ? tavtest::plainCopy(request)
                       : global ? tavtest::plainAll(request)
                                : tavtest::plainFirst(request);
    const std::size_t room = tavtest::documentedRoom(request, global);
    expected.image.resize(room, '~');
    Exact<uint8_t> source(
        std::vector<uint8_t>(request.source.c_str(), request.source.c_str() + request.source.size() + 1));
    Exact<uint8_t> dst(room);
    Exact<tavRegExpFindResult> results(static_cast<std::size_t>(slots), 0, {nullptr, 0});
    int32_t srcLen = source.length() - 1;
    auto dstLen = static_cast<int32_t>(request.capacity);
    int32_t count = slots;
    TAV_REQUIRE(tavsRegExpReplace_8u(source.get(), &srcLen, dst.get(), &dstLen, results.get(), &count,
                                     &pattern, &context) == found.status);
    TAV_REQUIRE(count == found.numFind);
    TAV_REQUIRE(srcLen == expected.consumed);
    TAV_REQUIRE(dstLen == expected.written);
    TAV_REQUIRE(std::memcmp(dst.get(), expected.image.data(), room) == 0);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    const std::string settings = input.line();
    const std::string pattern = input.line();
    const std::string templateText = input.line().c_str();
    const std::string searchText = settings + "\n" + pattern + "\n" + input.rest();
    Input rest(reinterpret_cast<const uint8_t*>(searchText.data()), searchText.size());
    const SearchInput search = readSearch(rest);
    Request request;
    request.source = search.trial.subject.substr(0, 200);
    request.plain = tavtest::readTemplate(templateText);
    CompiledPattern compiled(search.trial.pattern, search.trial.options);
    if (!compiled.compiled() || request.plain.malformed || request.source.empty()) return 0;
    compiled.context().matchLimit = search.trial.limit;
    compiled.context().format = search.trial.format;
    Exact<uint64_t> block(2 * templateText.size() + 2);
    auto* const context = reinterpret_cast<tavRegExpReplaceContext*>(block.get());
    TAV_REQUIRE(tavsRegExpReplaceInit(templateText.c_str(), context) == tavStsNoError);

    tav::reference::SearchSettings reference;
    const int32_t perMatch = compiled.context().groupCount;
    reference.capacity = search.trial.slots > 0 ? search.trial.slots : 3 * perMatch;
    reference.global = (compiled.context().options & tav::regex::optionGlobal) != 0;
    reference.storeAllEntries = true;
    reference.stepLimit = 20000;
    const auto found = tav::reference::search(tav::reference::programIn(compiled.context()),
                                              {reinterpret_cast<const uint8_t*>(request.source.c_str()),
                                               static_cast<int32_t>(request.source.size())},
                                              reference);
    if (found.gaveUp) return 0;
    if (found.status >= 0) {
        const auto width = static_cast<std::ptrdiff_t>(perMatch);
        const auto& entries = found.entries;
        if (!reference.global && !entries.empty()) request.matches.push_back(entries);
        for (auto at = entries.begin(); reference.global && entries.end() - at >= width; at += width)
            request.matches.emplace_back(at, at + width);
    }
    const auto capacities = static_cast<int64_t>(request.source.size() + 24);
    const int64_t step = 1 + capacities / 40;
    for (request.capacity = 1; request.capacity <= capacities; request.capacity += step)
        check(compiled.context(), *context, request, reference.capacity, found);
    return 0;
}
