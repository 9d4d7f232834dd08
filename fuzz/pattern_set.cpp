// Sets of patterns, beside a plain list: a line of steps (a: add, d: delete, m: modify, each with a digit for
// the pattern and one for the identifier, f: find), one line per pattern up to an empty line, the subject.
#include "pattern.h"
#include "reference/reference_engine.h"

#include <optional>

namespace {

using namespace tavfuzz;

constexpr uint32_t capacity = 4;
constexpr std::size_t mostPatterns = 6;

struct Slot {
    std::size_t pattern = 0;
    uint32_t id = 0; // 0: free
};

class Sets {
public:
    Sets(std::vector<std::string> patterns, const std::string& subject) : subject_(zeroTerminated(subject)) {
        for (const std::string& text : patterns) {
            auto compiled = std::make_unique<CompiledPattern>(text, "");
            auto twin = std::make_unique<CompiledPattern>(text, "");
            if (!compiled->compiled() || isCostly(compiled->context())) continue;
            patterns_.push_back(std::move(compiled));
            twins_.push_back(std::move(twin));
        }
        int32_t size = 0;
        TAV_REQUIRE(tavsRegExpMultiGetSize(capacity, &size) == tavStsNoError && size == 24 + 12 * capacity);
        block_.emplace(static_cast<std::size_t>(size) / 8);
        TAV_REQUIRE(tavsRegExpMultiInit(set(), capacity) == tavStsNoError);
    }

    void step(char kind, uint32_t patternNumber, uint32_t id) {
        if (patterns_.empty()) return;
        const std::size_t pattern = patternNumber % patterns_.size();
        tavRegExpContext* const context = &patterns_[pattern]->context();
        Slot* const free = slotOf(0);
        Slot* const known = id == 0 ? nullptr : slotOf(id);
        if (kind == 'a') {
            const tavStatus expected = id == 0           ? tavStsBadArgument
                                       : free == nullptr ? tavStsSetFull
                                                         : tavStsNoError;
            TAV_REQUIRE(tavsRegExpMultiAdd(context, id, set()) == expected);
            if (expected == tavStsNoError) *free = {pattern, id};
        } else if (kind == 'd') {
            TAV_REQUIRE(tavsRegExpMultiDelete(id, set()) == answer(id, known));
            if (known != nullptr) *known = {};
        } else if (kind == 'm') {
            TAV_REQUIRE(tavsRegExpMultiModify(context, id, set()) == answer(id, known));
            if (known != nullptr) known->pattern = pattern;
        } else if (kind == 'f') {
            find(1 + patternNumber % 3);
        }
    }

private:
    using Results = Exact<tavRegExpFindResult>;

    static std::vector<uint8_t> zeroTerminated(const std::string& text) {
        return std::vector<uint8_t>(text.c_str(), text.c_str() + text.size() + 1);
    }

    static tavStatus answer(uint32_t id, const Slot* known) {
        return id == 0 ? tavStsBadArgument : known == nullptr ? tavStsNotFound : tavStsNoError;
    }

    bool isCostly(tavRegExpContext& context) {
        context.matchLimit = 1500;
        tav::reference::SearchSettings settings;
        settings.stepLimit = 20000;
        return tav::reference::search(tav::reference::programIn(context), {subject_.get(), length()},
                                      settings)
            .gaveUp;
    }

    int32_t length() const { return subject_.length() - 1; }

    tavRegExpMultiContext* set() { return reinterpret_cast<tavRegExpMultiContext*>(block_->get()); }

    Slot* slotOf(uint32_t id) {
        const auto at = std::find_if(slots_, slots_ + capacity, [&](const Slot& s) { return s.id == id; });
        return at == slots_ + capacity ? nullptr : at;
    }

    void find(uint32_t room) {
        std::vector<Results> finds;
        Exact<tavRegExpMultiFindResult> results(capacity, 0, {});
        for (uint32_t i = 0; i < capacity; ++i) {
            finds.emplace_back(room, 0, tavRegExpFindResult{nullptr, -7});
            results.get()[i] = {-3, 99, static_cast<int32_t>(room), -55, finds.back().get()};
        }
        const tavStatus status = tavsRegExpMultiFind_8u(subject_.get(), length(), results.get(), set());
        TAV_REQUIRE(status == (length() < 1 ? tavStsBadCount : tavStsNoError));
        for (uint32_t i = 0; i < capacity; ++i)
            requireSame(results.get()[i], slots_[i], room, status != tavStsNoError);
    }

    void requireSame(const tavRegExpMultiFindResult& result, const Slot& slot, uint32_t room, bool refused) {
        if (refused || slot.id == 0) {
            TAV_REQUIRE(result.searched == -3 && result.id == 99 && result.status == -55);
            TAV_REQUIRE(result.numFind == static_cast<int32_t>(room) && result.finds[0].length == -7);
            return;
        }
        tavRegExpContext& twin = twins_[slot.pattern]->context();
        twin.matchLimit = 1500;
        Results wanted(room, 0, {nullptr, -7});
        auto count = static_cast<int32_t>(room);
        const tavStatus status = tavsRegExpFind_8u(subject_.get(), length(), &twin, wanted.get(), &count);
        TAV_REQUIRE(result.searched == 1 && result.id == slot.id);
        TAV_REQUIRE(result.status == status && result.numFind == count);
        for (uint32_t i = 0; i < room; ++i) {
            TAV_REQUIRE(result.finds[i].start == wanted.get()[i].start);
            TAV_REQUIRE(result.finds[i].length == wanted.get()[i].length);
        }
    }

    Exact<uint8_t> subject_;
    std::vector<std::unique_ptr<CompiledPattern>> patterns_;
    std::vector<std::unique_ptr<CompiledPattern>> twins_;
    std::optional<Exact<uint64_t>> block_;
    Slot slots_[capacity];
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    const std::string steps = input.line();
    std::vector<std::string> patterns;
    for (std::string line = input.line(); !line.empty() && patterns.size() < mostPatterns;
         line = input.line())
        patterns.push_back(line.c_str());
    Sets sets(std::move(patterns), input.rest());
    const auto digit = [&](std::size_t i) {
        return i < steps.size() ? static_cast<uint32_t>(steps[i] - '0') & 7 : 0;
    };
    for (std::size_t i = 0; i < std::min<std::size_t>(steps.size(), 60); i += 3)
        sets.step(steps[i], digit(i + 1), digit(i + 2));
    return 0;
}
