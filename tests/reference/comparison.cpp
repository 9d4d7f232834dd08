#include "reference/comparison.h"

#include "regex/match/failed_states.h"
#include "regex/match/plan.h"

#include <bit>
#include <cstdio>

namespace tav::reference {
namespace {

constexpr int maximumReports = 20;   // different smallest forms
constexpr int maximumShrinks = 1000; // shrinking takes its time

/// The subject alone in its memory, so that a sanitizer sees every byte read outside.
std::vector<uint8_t> memoryOf(const Trial& trial) {
    std::vector<uint8_t> bytes;
    bytes.reserve(trial.subject.size() + 1);
    bytes.assign(trial.subject.begin(), trial.subject.end());
    bytes.push_back(static_cast<uint8_t>(trial.behind));
    return bytes;
}

bool isGlobal(const tavRegExpContext& block) {
    return (block.options & regex::optionGlobal) != 0;
}

int32_t slotsFor(const tavRegExpContext& block, const Trial& trial) {
    if (trial.slots > 0) return trial.slots;
    return isGlobal(block) ? 3 * block.groupCount + 20 : block.groupCount;
}

SearchResult byReference(const tavRegExpContext& block, Subject subject, int32_t slots, int64_t stepLimit,
                         bool allEntries) {
    SearchSettings settings;
    settings.capacity = slots;
    settings.global = isGlobal(block);
    settings.storeAllEntries = allEntries;
    settings.stepLimit = stepLimit;
    return search(programIn(block), subject, settings);
}

void takeEntries(SearchResult& result, const std::vector<tavRegExpFindResult>& found, Subject subject) {
    if (result.status < 0) return;
    for (int32_t i = 0; i < result.numFind; ++i) {
        const tavRegExpFindResult& entry = found[static_cast<std::size_t>(i)];
        const bool set = entry.start != nullptr;
        result.entries.push_back(
            {set ? static_cast<int32_t>(entry.start - subject.bytes) : -1, entry.length});
    }
}

/// Changes the plan that the next searches of this block will find.
void prepare(tavRegExpContext& block, Way way) {
    if (way.shortcuts == regex::everyShortcut && !way.remembering) return;
    regex::Plan& plan = regex::planWith(block, way.shortcuts);
    if (way.remembering) plan.patience = INT32_MIN;
    if (way.cramped && plan.remembersFailures) {
        plan.spareSize = plan.spareSize / 64 * 8;
        while (!regex::FailedStates::fits(plan))
            plan.spareSize += 8;
    }
    if (way.direct && plan.state == regex::PlanState::ready) plan.state = regex::PlanState::direct;
}

SearchResult byLibrary(tavRegExpContext& block, Subject subject, int32_t slots) {
    std::vector<tavRegExpFindResult> found(static_cast<std::size_t>(slots));
    SearchResult result;
    result.numFind = slots;
    result.status = tavsRegExpFind_8u(subject.bytes, subject.length, &block, found.data(), &result.numFind);
    takeEntries(result, found, subject);
    return result;
}

/// The search inside a replacement, which stores the whole match before the groups in global mode too.
SearchResult byReplacement(tavRegExpContext& block, Subject subject, int32_t slots) {
    alignas(8) uint8_t memory[64];
    tavRegExpReplaceContext* const empty = reinterpret_cast<tavRegExpReplaceContext*>(memory);
    tavsRegExpReplaceInit(nullptr, empty);
    std::vector<tavRegExpFindResult> found(static_cast<std::size_t>(slots));
    std::vector<uint8_t> out(static_cast<std::size_t>(subject.length) + 16);
    int32_t used = subject.length;
    int32_t written = static_cast<int32_t>(out.size());
    SearchResult result;
    result.numFind = slots;
    result.status = tavsRegExpReplace_8u(subject.bytes, &used, out.data(), &written, found.data(),
                                         &result.numFind, &block, empty);
    takeEntries(result, found, subject);
    return result;
}

bool agree(const SearchResult& a, const SearchResult& b) {
    return a.status == b.status && a.numFind == b.numFind && a.entries == b.entries;
}

void appendHex(std::string& text, char lead, const char* prefix, char c) {
    char hex[8];
    std::snprintf(hex, sizeof hex, "%c%s%02x", lead, prefix, static_cast<unsigned>(static_cast<uint8_t>(c)));
    text += hex;
}

std::string quoted(const std::string& subject) {
    std::string text = "'";
    for (const char c : subject) {
        if (c == '\n')
            text += "\\n";
        else if (c == '\'' || c == '\\')
            (text += '\\') += c;
        else if (c < ' ' || c > '~')
            appendHex(text, '\\', "x", c);
        else
            text += c;
    }
    return text += '\'';
}

std::string show(const SearchResult& result) {
    std::string text;
    if (result.status < 0) return text.append("status ").append(std::to_string(result.status));
    for (const Span& span : result.entries) {
        if (span.length < 0) {
            text += span.start < 0 ? "(-)" : "(bad unset)";
            continue;
        }
        text.append("(").append(std::to_string(span.start)).append(",");
        text.append(std::to_string(span.start + span.length)).append(")");
    }
    if (text.empty()) text = "none";
    if (result.status == tavStsResultsTruncated) text += " truncated";
    return text;
}

/// The changed plan must be the one that the search used.
bool wentThatWay(tavRegExpContext& block, Way way) {
    return !way.direct || regex::planFor(block).state != regex::PlanState::ready;
}

/// Both engines on one trial: the first question on which they differ, or the last one asked.
struct Answers {
    SearchResult expected;
    SearchResult got;
    const char* question = "";
    bool same = true;
};

Answers ask(tavRegExpContext& block, const Trial& trial, int64_t stepLimit, Way way) {
    block.matchLimit = trial.limit;
    block.format = trial.format;
    const std::vector<uint8_t> memory = memoryOf(trial);
    const Subject subject = {memory.data(), static_cast<int32_t>(trial.subject.size())};
    const int32_t slots = slotsFor(block, trial);
    Answers answers;
    answers.expected = byReference(block, subject, slots, stepLimit, false);
    if (answers.expected.gaveUp) return answers;
    prepare(block, way);
    answers.got = byLibrary(block, subject, slots);
    answers.same = agree(answers.expected, answers.got) && wentThatWay(block, way);
    if (!answers.same || !isGlobal(block) || trial.subject.empty()) return answers;
    answers.question = "  (all entries, by a replacement)";
    answers.expected = byReference(block, subject, slots, stepLimit, true);
    if (answers.expected.gaveUp) return answers;
    answers.got = byReplacement(block, subject, slots);
    answers.same = agree(answers.expected, answers.got);
    return answers;
}

bool differs(const Trial& trial, int64_t stepLimit, Way way) {
    const Compiled compiled = compile(trial.pattern, trial.options);
    return compiled && !ask(*compiled.block, trial, stepLimit, way).same;
}

/// Removes bytes from one text of the trial as long as the difference stays.
bool shrinkText(Trial& trial, std::string Trial::*text, int64_t stepLimit, Way way) {
    bool any = false;
    for (std::size_t width = (trial.*text).size(); width > 0; --width) {
        for (std::size_t at = 0; at + width <= (trial.*text).size();) {
            Trial smaller = trial;
            (smaller.*text).erase(at, width);
            if (differs(smaller, stepLimit, way)) {
                trial = smaller;
                any = true;
            } else {
                ++at;
            }
        }
    }
    return any;
}

Trial shrink(Trial trial, int64_t stepLimit, Way way) {
    const auto attempt = [&](auto change) {
        Trial simpler = trial;
        change(simpler);
        if (differs(simpler, stepLimit, way)) trial = simpler;
    };
    attempt([](Trial& t) { t.limit = 10000; });
    attempt([](Trial& t) { t.slots = 0; });
    attempt([](Trial& t) { t.format = 1; });
    attempt([](Trial& t) { t.behind = '\0'; });
    for (bool again = true; again;) {
        again = shrinkText(trial, &Trial::subject, stepLimit, way);
        again = shrinkText(trial, &Trial::options, stepLimit, way) || again;
        again = shrinkText(trial, &Trial::pattern, stepLimit, way) || again;
    }
    return trial;
}

} // namespace

std::string Way::name() const {
    if (remembering)
        return cramped                             ? "RememberingLittle"
               : direct                            ? "RememberingDirectly"
               : shortcuts == regex::everyShortcut ? "Remembering"
                                                   : "RememberingAlone";
    if (direct) return "Directly";
    if (shortcuts == regex::everyShortcut) return "AsUsual";
    if (shortcuts == 0) return "WithoutShortcuts";
    const bool alone = std::has_single_bit(shortcuts);
    const uint32_t one = alone ? shortcuts : regex::everyShortcut & ~shortcuts;
    return (alone ? "WithShortcut" : "WithoutShortcut") + std::to_string(std::countr_zero(one));
}

Compiled compile(const std::string& pattern, const std::string& options) {
    int32_t size = 0;
    tavsRegExpGetSize(pattern.c_str(), &size);
    Compiled result = {makeBlock(static_cast<std::size_t>(size))};
    int32_t offset = 0;
    if (tavsRegExpInit(pattern.c_str(), options.c_str(), result.block.get(), &offset) != tavStsNoError)
        result.block.reset();
    return result;
}

std::string describe(const Trial& trial) {
    constexpr std::size_t longestPattern = 2000;
    std::string text = "/";
    for (const char c : trial.pattern.substr(0, longestPattern)) {
        if (c < ' ' || c > '~' || c == '%')
            appendHex(text, '%', "", c);
        else
            text += c;
    }
    text.append("/").append(trial.options).append("  ");
    constexpr std::size_t longest = 60;
    text.append(quoted(trial.subject.substr(0, longest)));
    if (trial.subject.size() > longest)
        text.append("... (").append(std::to_string(trial.subject.size())).append(" bytes)");
    text.append(" ");
    if (trial.limit != 10000) text.append(" limit=").append(std::to_string(trial.limit));
    if (trial.format != 1) text.append(" format=").append(std::to_string(trial.format));
    if (trial.slots != 0) text.append(" slots=").append(std::to_string(trial.slots));
    if (trial.behind != '\0') text.append(" behind=").append(1, trial.behind);
    return text;
}

Verdict Comparison::compare(tavRegExpContext& block, const Trial& trial) {
    const Answers answers = ask(block, trial, stepLimit, way);
    if (answers.expected.gaveUp) {
        ++skipped;
        return Verdict::skipped;
    }
    ++pairs;
    matches += answers.expected.numFind > 0;
    if (answers.same) return Verdict::same;
    if (++differences <= maximumShrinks && reported_.size() < maximumReports) remember(trial);
    return Verdict::different;
}

Verdict Comparison::compare(const Trial& trial) {
    const Compiled compiled = compile(trial.pattern, trial.options);
    return compiled ? compare(*compiled.block, trial) : Verdict::skipped;
}

void Comparison::remember(const Trial& trial) {
    const Trial smallest = shrinks && differs(trial, stepLimit, way) ? shrink(trial, stepLimit, way) : trial;
    const Compiled compiled = compile(smallest.pattern, smallest.options);
    if (!compiled || !reported_.insert(describe(smallest)).second) return;
    const Answers answers = ask(*compiled.block, smallest, stepLimit, way);
    report.append(describe(smallest)).append(" => ").append(show(answers.expected)).append(answers.question);
    report.append("\n    the library says ").append(way.name()).append(": ").append(show(answers.got));
    report.append("\n    found with: ").append(describe(trial)).append("\n");
}

} // namespace tav::reference
