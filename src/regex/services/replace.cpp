// The search runs first and as a whole; then the source and the items of the template are copied side by side
// into the destination. All room is measured in 64 bits, and a copy fits only when it leaves a byte free.
//
// The two modes measure differently, and callers rely on both: the replacement of the first match holds its
// items against the whole capacity and copies the tail unseen when the template is empty (the header says how
// much room that takes); the replacement of all matches never leaves the capacity.
#include "regex/services/replace.h"

#include "base/arguments.h"
#include "regex/match/program.h"
#include "regex/match/search.h"

#include <algorithm>
#include <cstring>

namespace tav::regex {

namespace {

struct Text {
    const uint8_t* begin;
    int64_t length;
};

struct Job {
    Text source;
    uint8_t* dst;
    int64_t capacity;
    const tavRegExpReplaceContext& items;
};

/// What the caller is told: bytes of the source used, bytes of the destination written.
struct Progress {
    int64_t consumed;
    int64_t written;
};

/// One match: the whole, then its groups.
struct Match {
    const tavRegExpFindResult* entries;
    int32_t count;

    const uint8_t* begin() const { return entries[0].start; }
    const uint8_t* end() const { return entries[0].start + entries[0].length; }
};

constexpr int64_t doesNotFit = -1;

void copy(uint8_t* to, const uint8_t* from, int64_t length) {
    if (length > 0) std::memcpy(to, from, static_cast<std::size_t>(length));
}

/// What an item stands for; length 0 or less: nothing.
Text textOf(const tavRegExpReplaceItem& item, const Match& match) {
    if (item.kind == tavReplaceLiteral)
        return {reinterpret_cast<const uint8_t*>(item.text), static_cast<int64_t>(item.value)};
    if (item.value >= static_cast<uint32_t>(match.count)) return {nullptr, 0};
    const tavRegExpFindResult& group = match.entries[item.value];
    return {group.start, group.length};
}

/// Writes the template's items at `to` while all of them stay below `room`. The number of bytes written, or
/// doesNotFit; what was written before an item that does not fit stays.
int64_t expand(const tavRegExpReplaceContext& items, const Match& match, uint8_t* to, int64_t room) {
    int64_t written = 0;
    for (int32_t i = 0; i < items.itemCount; ++i) {
        const Text text = textOf(items.items[i], match);
        if (text.length <= 0) continue;
        if (room <= written + text.length) return doesNotFit;
        copy(to + written, text.begin, text.length);
        written += text.length;
    }
    return written;
}

Progress copyUnchanged(const Job& job) {
    const int64_t length = std::min(job.source.length, job.capacity);
    copy(job.dst, job.source.begin, length);
    return {length, length};
}

Progress replaceFirst(const Job& job, const Match& match) {
    const int64_t prefix = match.begin() - job.source.begin;
    const int64_t matchEnd = match.end() - job.source.begin;
    const int64_t tail = job.source.length - matchEnd;
    if (prefix >= job.capacity) return {0, 0};
    copy(job.dst, job.source.begin, prefix);
    uint8_t* const to = job.dst + prefix;
    if (job.items.itemCount == 0) {
        // Deliberately neither measured nor counted: callers that delete a match know the length themselves.
        copy(to, match.end(), tail);
        return {job.source.length, prefix};
    }
    // Deliberately against the whole capacity, as if the prefix took no room.
    const int64_t written = expand(job.items, match, to, job.capacity);
    if (written == doesNotFit) return {prefix, prefix};
    if (tail >= job.capacity - prefix - written) return {matchEnd, prefix + written};
    copy(to + written, match.end(), tail);
    return {job.source.length, prefix + written + tail};
}

Progress replaceAll(const Job& job, const tavRegExpFindResult* entries, int32_t matches, int32_t perMatch) {
    const uint8_t* const end = job.source.begin + job.source.length;
    const uint8_t* position = job.source.begin;
    int64_t written = 0;
    for (int32_t i = 0; i < matches; ++i) {
        const Match match = {entries + int64_t{i} * perMatch, perMatch};
        // The match after an empty one may reach over the start of the next: there is nothing between them.
        const int64_t gap = std::max<int64_t>(match.begin() - position, 0);
        if (gap >= job.capacity - written) return {position - job.source.begin, written};
        copy(job.dst + written, position, gap);
        written += gap;
        const int64_t expanded = expand(job.items, match, job.dst + written, job.capacity - written);
        if (expanded == doesNotFit) return {match.begin() - job.source.begin, written};
        written += expanded;
        position = match.end();
    }
    const int64_t tail = end - position;
    if (tail >= job.capacity - written) return {position - job.source.begin, written};
    copy(job.dst + written, position, tail);
    return {job.source.length, written + tail};
}

} // namespace

tavStatus replace(const uint8_t* src, int32_t* srcLen, uint8_t* dst, int32_t* dstLen,
                  tavRegExpFindResult* results, int32_t* numResults, tavRegExpContext* pattern,
                  const tavRegExpReplaceContext* context) {
    if (anyNull(src, srcLen, pattern, dst, context, dstLen, numResults, results)) return tavStsNullPointer;
    if (*srcLen < 1 || *dstLen < 1) return tavStsBadCount;

    const tavStatus status = search(src, *srcLen, pattern, results, numResults, GlobalEntries::all);
    const Job job = {{src, *srcLen}, dst, *dstLen, *context};
    Progress progress;
    if (status < 0 || *numResults < 1) {
        progress = copyUnchanged(job);
    } else if (pattern->options & optionGlobal) {
        const int32_t perMatch = pattern->groupCount;
        progress = replaceAll(job, results, *numResults / perMatch, perMatch);
    } else {
        progress = replaceFirst(job, {results, *numResults});
    }
    *srcLen = static_cast<int32_t>(progress.consumed);
    *dstLen = static_cast<int32_t>(progress.written);
    return status;
}

} // namespace tav::regex
