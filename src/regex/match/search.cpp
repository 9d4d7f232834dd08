#include "regex/match/search.h"

#include "base/arguments.h"
#include "regex/match/class_runs.h"
#include "regex/match/literal_matches.h"
#include "regex/match/required.h"
#include "regex/match/results.h"
#include "regex/match/starts.h"
#include "strings/find.h"

namespace tav::regex {

namespace {

template <class Nodes>
class Search {
public:
    Search(const Plan& plan, const Subject& subject, const tavRegExpContext& context)
        : plan_(plan), subject_(subject), starts_(plan, subject_, context.format == 1),
          machine_(plan, subject_, context.matchLimit), matchLimit_(context.matchLimit) {}

    bool first(Results& results) {
        if (!attempt(subject_.begin, subject_.end, false)) return false;
        store(results, 0);
        return true;
    }

    void all(Results& results, int32_t firstSlot) {
        const uint8_t* p = subject_.begin;
        while (p <= subject_.end && !results.isFull() && attempt(p, subject_.end, false)) {
            store(results, firstSlot);
            const uint8_t* const start = start_;
            if (matchEnd_ != start) {
                p = matchEnd_;
                continue;
            }
            // Behind an empty match a match of what the next byte begins is tried, deliberately with just
            // that byte in sight, and whatever it takes, the search goes on at the byte behind the empty
            // match.
            if (!results.isFull() && start < subject_.end && attempt(start, start + 1, true))
                store(results, firstSlot);
            p = start + 1;
        }
    }

private:
    /// Tries the start positions from `p` on.
    bool attempt(const uint8_t* p, const uint8_t* end, bool notEmpty) {
        for (p = starts_.from(p, end); p != nullptr; p = starts_.after(p, machine_.failedUpTo(), end)) {
            const Outcome outcome = machine_.match(p, end, notEmpty);
            if (outcome == Outcome::failed) continue;
            if (outcome == Outcome::tired) return attemptRemembering(p, end, notEmpty);
            start_ = p;
            matchEnd_ = machine_.matchEnd();
            return true;
        }
        return false;
    }

    /// The same with a memory of what has failed: what the first attempt has done so far is done again.
    [[gnu::noinline]] bool attemptRemembering(const uint8_t* p, const uint8_t* end, bool notEmpty) {
        // What has failed in sight of one end says nothing of another; nor where empty matches do not count.
        if (end != memoryEnd_) memory_ = &FailedStates::create(plan_, end - p + 1, matchLimit_);
        memoryEnd_ = notEmpty ? nullptr : end;
        Machine<Remembering<Nodes>> machine(plan_, subject_, matchLimit_);
        machine.rememberIn(*memory_);
        for (; p != nullptr; p = starts_.after(p, machine.failedUpTo(), end)) {
            Outcome outcome = machine.match(p, end, notEmpty);
            if (outcome == Outcome::tired) {
                machine.learn(p, end);
                outcome = machine.match(p, end, notEmpty);
            }
            if (outcome != Outcome::matched) continue;
            start_ = p;
            matchEnd_ = machine.matchEnd();
            return true;
        }
        return false;
    }

    void store(Results& results, int32_t firstSlot) const {
        if (firstSlot == 0) results.add(start_, static_cast<int32_t>(matchEnd_ - start_));
        for (int32_t slot = 1; slot < plan_.program.groupCount; ++slot) {
            const Capture& group = plan_.captures[slot];
            results.add(group.length < 0 ? nullptr : subject_.begin + group.start, group.length);
        }
    }

    const Plan& plan_;
    const Subject& subject_;
    Starts starts_;
    Machine<Nodes> machine_;
    int32_t matchLimit_;
    const uint8_t* start_ = nullptr;
    const uint8_t* matchEnd_ = nullptr;
    FailedStates* memory_ = nullptr;
    const uint8_t* memoryEnd_ = nullptr;
};

tavStatus statusFor(int32_t stored, int32_t wanted) {
    return stored > 0 && stored < wanted ? tavStsResultsTruncated : tavStsNoError;
}

template <class Nodes>
[[gnu::always_inline]] inline tavStatus
searchWith(const Plan& plan, const Subject& subject, const tavRegExpContext& context,
           tavRegExpFindResult* finds, int32_t* numFind, GlobalEntries globalEntries) {
    Search<Nodes> search(plan, subject, context);
    const int32_t groups = context.groupCount;
    Results results(finds, *numFind);
    if (context.options & optionGlobal) {
        const int32_t firstSlot = globalEntries == GlobalEntries::groups && groups > 1 ? 1 : 0;
        constexpr int32_t levelsOfRun = 2;
        if (plan.isClassRun && context.matchLimit >= levelsOfRun) {
            storeClassRuns(plan, subject, results);
        } else {
            search.all(results, firstSlot);
        }
        *numFind = results.count();
        return statusFor(results.count(), groups - firstSlot);
    }
    const bool found = search.first(results);
    if (!found && context.matchLimit < 0) return tavStsRepeatLimit;
    *numFind = results.count();
    return statusFor(results.count(), groups);
}

/// How much of the subject the search may use; -1 when something that every match needs does not occur.
///
/// The end behind the last required literal need not be known where nothing in the program can tell it: what
/// lies behind cannot become part of a match anyhow. So repeated searches through one text stay linear.
int32_t usablePart(const Plan& plan, const tavRegExpContext& context, const RequiredLiteral& literal,
                   const uint8_t* subject, int32_t length) {
    const bool mayInfer = plan.state == PlanState::ready && context.matchLimit >= 0;
    if (literal.isPresent()) {
        if (mayInfer && !plan.seesEnd) return length;
        const int32_t at = lastOccurrence(literal, subject, length);
        return at < 0 ? -1 : at + literal.length;
    }
    if (!mayInfer || plan.requiredByte < 0) return length;
    return indexOf(subject, length, static_cast<uint8_t>(plan.requiredByte)) < 0 ? -1 : length;
}

/// The answer of a search that needs no attempt to know that it fails.
tavStatus nothingFound(const tavRegExpContext& context, int32_t* numFind) {
    if (context.matchLimit < 0 && !(context.options & optionGlobal)) return tavStsRepeatLimit;
    *numFind = 0;
    return tavStsNoError;
}

/// The answer of a search for a literal alone.
void listLiterals(const RequiredLiteral& literal, const tavRegExpContext& context, const uint8_t* subject,
                  int32_t length, tavRegExpFindResult* finds, int32_t* numFind) {
    Results results(finds, context.options & optionGlobal ? *numFind : 1);
    storeLiterals(literal, subject, length, results);
    *numFind = results.count();
}

[[gnu::noinline]] tavStatus searchUnplanned(const Plan& plan, const Subject& subject,
                                            const tavRegExpContext& context, tavRegExpFindResult* finds,
                                            int32_t* numFind, GlobalEntries globalEntries) {
    if (plan.state == PlanState::malformed) return nothingFound(context, numFind);
    return searchWith<DirectNodes>(plan, subject, context, finds, numFind, globalEntries);
}

} // namespace

tavStatus search(const uint8_t* pSrc, int32_t srcLen, tavRegExpContext* pRegExpState,
                 tavRegExpFindResult* pFind, int32_t* pNumFind, GlobalEntries globalEntries) {
    if (anyNull(pSrc, pRegExpState, pFind, pNumFind)) return tavStsNullPointer;
    if (srcLen < 0) return tavStsNegativeLength;
    if (*pNumFind < 1) return tavStsBadCount;
    tavRegExpContext& context = *pRegExpState;
    if (context.tag != contextTag) return tavStsBadContext;

    const RequiredLiteral literal = requiredLiteral(context);
    if (literal.isPresent()) {
        if (isLiteralAlone(context, literal)) {
            listLiterals(literal, context, pSrc, srcLen, pFind, pNumFind);
            return tavStsNoError;
        }
        if (!literal.caseless && firstOccurrence(literal, pSrc, srcLen) < 0)
            return nothingFound(context, pNumFind);
    }
    const Plan& plan = planFor(context);
    const int32_t usable = usablePart(plan, context, literal, pSrc, srcLen);
    if (usable < 0) return nothingFound(context, pNumFind);
    const Subject subject = {pSrc, pSrc + usable, pSrc + srcLen};
    if (plan.state != PlanState::ready)
        return searchUnplanned(plan, subject, context, pFind, pNumFind, globalEntries);
    return searchWith<PlannedNodes>(plan, subject, context, pFind, pNumFind, globalEntries);
}

tavStatus find(const uint8_t* pSrc, int32_t srcLen, tavRegExpContext* pRegExpState,
               tavRegExpFindResult* pFind, int32_t* pNumFind) {
    return search(pSrc, srcLen, pRegExpState, pFind, pNumFind, GlobalEntries::groups);
}

} // namespace tav::regex
