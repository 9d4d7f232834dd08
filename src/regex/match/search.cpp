#include "regex/match/search.h"

#include "base/arguments.h"
#include "regex/match/class_runs.h"
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
          machine_(plan, subject_, context.matchLimit) {}

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
            if (machine_.matchEnd() != start) {
                p = machine_.matchEnd();
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
            if (machine_.match(p, end, notEmpty) != Outcome::matched) continue;
            start_ = p;
            return true;
        }
        return false;
    }

    void store(Results& results, int32_t firstSlot) const {
        if (firstSlot == 0) results.add(start_, static_cast<int32_t>(machine_.matchEnd() - start_));
        for (int32_t slot = 1; slot < plan_.program.groupCount; ++slot) {
            const Capture& group = plan_.captures[slot];
            results.add(group.length < 0 ? nullptr : subject_.begin + group.start, group.length);
        }
    }

    const Plan& plan_;
    Subject subject_;
    Starts starts_;
    Machine<Nodes> machine_;
    const uint8_t* start_ = nullptr;
};

tavStatus statusFor(int32_t stored, int32_t wanted) {
    return stored > 0 && stored < wanted ? tavStsResultsTruncated : tavStsNoError;
}

template <class Nodes>
tavStatus searchWith(const Plan& plan, const Subject& subject, const tavRegExpContext& context,
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

/// How much of the subject the search may use, -1 when a required literal is missing. Where nothing in the
/// program can tell the end of the usable part, it need not be looked for: what lies behind the last required
/// literal cannot become part of a match anyhow. So repeated searches through one text stay linear.
int32_t usablePart(const Plan& plan, const tavRegExpContext& context, const uint8_t* subject,
                   int32_t length) {
    const bool single = (context.options & optionGlobal) == 0;
    if (!single || plan.state != PlanState::ready || plan.seesEnd || context.matchLimit < 0)
        return usableLength(context, subject, length);
    if (plan.requiredByte < 0) return length;
    return indexOf(subject, length, static_cast<uint8_t>(plan.requiredByte)) < 0 ? -1 : length;
}

} // namespace

tavStatus search(const uint8_t* pSrc, int32_t srcLen, tavRegExpContext* pRegExpState,
                 tavRegExpFindResult* pFind, int32_t* pNumFind, GlobalEntries globalEntries) {
    if (anyNull(pSrc, pRegExpState, pFind, pNumFind)) return tavStsNullPointer;
    if (srcLen < 0) return tavStsNegativeLength;
    if (*pNumFind < 1) return tavStsBadCount;
    tavRegExpContext& context = *pRegExpState;
    if (context.tag != contextTag) return tavStsBadContext;

    const Plan& plan = planFor(context);
    const int32_t usable = usablePart(plan, context, pSrc, srcLen);
    if (usable < 0) {
        *pNumFind = 0;
        return tavStsNoError;
    }
    const Subject subject = {pSrc, pSrc + usable, pSrc + srcLen};
    switch (plan.state) {
    case PlanState::ready:
        return searchWith<PlannedNodes>(plan, subject, context, pFind, pNumFind, globalEntries);
    case PlanState::direct:
        return searchWith<DirectNodes>(plan, subject, context, pFind, pNumFind, globalEntries);
    case PlanState::malformed:
        break;
    }
    *pNumFind = 0;
    return tavStsNoError;
}

tavStatus find(const uint8_t* pSrc, int32_t srcLen, tavRegExpContext* pRegExpState,
               tavRegExpFindResult* pFind, int32_t* pNumFind) {
    return search(pSrc, srcLen, pRegExpState, pFind, pNumFind, GlobalEntries::groups);
}

} // namespace tav::regex
