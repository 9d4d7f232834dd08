// tavch for C++17: string views in, values out, on top of tavch.h alone. Nothing to build and nothing to link
// but the library. No function throws by itself, and none needs exceptions or run-time type information.
//
//     tav::Pattern date("(\\d{4})-(\\d\\d)-(\\d\\d)");
//     if (!date) std::cerr << date.error().name() << " at byte " << date.error().offset;
//     if (auto found = date.find(text)) year = found[1];
//     for (auto match : date.matches(text)) std::cout << match[0] << "\n";
//     std::string german = *date.replaceAll(text, "$3.$2.$1");
//
// Lengths: the library counts in 32 bits. A pattern or subject that is longer is refused with
// tavStsNegativeLength; the plain string functions require that their arguments have less than 2^31 elements.
//
// Threads: a Pattern is searched by one thread at a time, which is why searching is not const; a Template may
// be shared. Everything else has no state.
#ifndef TAVCH_HPP
#define TAVCH_HPP

#include "tavch.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace tav {

// -----------------------------------------------------------------------------------------------------------
// Statuses and errors

/// A status as the C header spells it, and what it says.
struct StatusText {
    tavStatus status;
    std::string_view name;
    std::string_view text;
};

/// Every status, in the order of the header.
inline constexpr StatusText statusTexts[] = {
    {tavStsFieldTruncated, "tavStsFieldTruncated", "a field was cut to the capacity given for it"},
    {tavStsSplitUnfinished, "tavStsSplitUnfinished", "all slots are filled and text remains"},
    {tavStsResultsTruncated, "tavStsResultsTruncated", "fewer result slots than the pattern has results"},
    {tavStsNoError, "tavStsNoError", "no error"},
    {tavStsNotFound, "tavStsNotFound", "the identifier is not in the set"},
    {tavStsBadArgument, "tavStsBadArgument", "an argument has a forbidden value"},
    {tavStsBadCount, "tavStsBadCount", "a count is below 1"},
    {tavStsOutOfRange, "tavStsOutOfRange", "an argument is outside its allowed values"},
    {tavStsNullPointer, "tavStsNullPointer", "a required pointer is null, or there is no memory"},
    {tavStsSetFull, "tavStsSetFull", "the set has no free entry"},
    {tavStsNegativeLength, "tavStsNegativeLength", "a length is negative or too large"},
    {tavStsBadEscape, "tavStsBadEscape", "bad escape: an unknown property, or \\x{ without }"},
    {tavStsBadClass, "tavStsBadClass", "bad character class"},
    {tavStsBadGroupReference, "tavStsBadGroupReference", "reference to a group that does not exist"},
    {tavStsPatternSyntax, "tavStsPatternSyntax", "wrong group structure or syntax"},
    {tavStsRepeatLimit, "tavStsRepeatLimit", "bad quantifier, or a negative match limit"},
    {tavStsBadContext, "tavStsBadContext", "not a compiled pattern"},
    {tavStsBadOption, "tavStsBadOption", "unknown option letter"},
};

/// What a status is called and what it says; an unknown one is called "unknown".
constexpr StatusText statusText(tavStatus status) noexcept {
    for (const StatusText& known : statusTexts)
        if (known.status == status) return known;
    return {status, "unknown", "unknown status"};
}

/// Why something failed, and where in the pattern or template.
struct Error {
    tavStatus status = tavStsNoError;
    std::int32_t offset = 0; ///< bytes

    /// True when there is an error; warnings are none.
    constexpr explicit operator bool() const noexcept { return status < 0; }
    constexpr std::string_view name() const noexcept { return statusText(status).name; }
    constexpr std::string_view text() const noexcept { return statusText(status).text; }
};

/// A value, or why there is none.
template <class T>
class Result {
public:
    // Implicit, so that a function may return either.
    Result(T&& value) noexcept(std::is_nothrow_move_constructible_v<T>) // NOLINT(google-explicit-constructor)
        : value_(std::move(value)) {}
    Result(Error error) noexcept : error_(error) {} // NOLINT(google-explicit-constructor)

    explicit operator bool() const noexcept { return !error_; }
    const Error& error() const noexcept { return error_; }

    /// The value; an empty one after an error.
    T& operator*() & noexcept { return value_; }
    const T& operator*() const& noexcept { return value_; }
    /// By value, so that a loop over the value of a temporary result has something to stand on.
    T operator*() && noexcept(std::is_nothrow_move_constructible_v<T>) { return std::move(value_); }
    T* operator->() noexcept { return &value_; }
    const T* operator->() const noexcept { return &value_; }

private:
    T value_{};
    Error error_;
};

inline constexpr std::size_t npos = static_cast<std::size_t>(-1);

namespace detail {

inline constexpr std::size_t maxLength = INT32_MAX;

/// What an object says of itself after its value was moved elsewhere.
inline constexpr Error movedFrom = {tavStsBadContext, 0};

template <class T>
constexpr std::int32_t length(const T& text) noexcept {
    return static_cast<std::int32_t>(text.size());
}

/// An empty view may have no address; the library wants one.
inline const std::uint8_t* elements(std::string_view text) noexcept {
    return reinterpret_cast<const std::uint8_t*>(text.data() ? text.data() : "");
}
inline const std::uint16_t* elements(std::u16string_view text) noexcept {
    return reinterpret_cast<const std::uint16_t*>(text.data() ? text.data() : u"");
}
inline std::uint8_t* elements(std::string& text) noexcept {
    return reinterpret_cast<std::uint8_t*>(text.data());
}
inline std::uint16_t* elements(std::u16string& text) noexcept {
    return reinterpret_cast<std::uint16_t*>(text.data());
}
inline std::uint8_t element(char c) noexcept {
    return static_cast<std::uint8_t>(c);
}
inline std::uint16_t element(char16_t c) noexcept {
    return static_cast<std::uint16_t>(c);
}

constexpr std::size_t position(std::int32_t index) noexcept {
    return index < 0 ? npos : static_cast<std::size_t>(index);
}

} // namespace detail

// -----------------------------------------------------------------------------------------------------------
// Matches

/// What every kind of match can tell; Derived gives entries(), stored() and subjectStart().
template <class Derived>
class MatchBase {
public:
    /// Number of results that are stored: the whole match and its groups; 0 without a match.
    std::size_t size() const noexcept { return static_cast<std::size_t>(self().stored()); }
    bool matched() const noexcept { return self().stored() > 0; }
    explicit operator bool() const noexcept { return matched(); }

    /// Has the group taken part? 0 is the whole match.
    bool matched(std::size_t group) const noexcept {
        return group < size() && self().entries()[group].length >= 0;
    }

    /// The text of a group, 0 the whole match; empty for one that took no part.
    std::string_view operator[](std::size_t group) const noexcept {
        if (!matched(group)) return {};
        const tavRegExpFindResult& entry = self().entries()[group];
        return {reinterpret_cast<const char*>(entry.start), static_cast<std::size_t>(entry.length)};
    }
    std::string_view text() const noexcept { return (*this)[0]; }

    /// Where a group begins and ends in the subject, in bytes; npos for one that took no part.
    std::size_t position(std::size_t group = 0) const noexcept {
        if (!matched(group)) return npos;
        return static_cast<std::size_t>(self().entries()[group].start - self().subjectStart());
    }
    std::size_t end(std::size_t group = 0) const noexcept {
        return matched(group) ? position(group) + (*this)[group].size() : npos;
    }

private:
    const Derived& self() const noexcept { return static_cast<const Derived&>(*this); }
};

/// A match with room for the whole match and Capacity - 1 groups. The subject must outlive it.
template <std::size_t Capacity = 10>
class BasicMatch : public MatchBase<BasicMatch<Capacity>> {
    static_assert(Capacity > 0 && Capacity <= 1000, "a pattern has at most 1000 results");

public:
    /// Not finding anything is no error. tavStsResultsTruncated: the pattern has more groups than Capacity.
    tavStatus status() const noexcept { return status_; }

    const tavRegExpFindResult* entries() const noexcept { return entries_; }
    std::int32_t stored() const noexcept { return stored_; }
    const std::uint8_t* subjectStart() const noexcept { return subjectStart_; }

private:
    friend class Pattern;
    // The entries are written by the search.
    // cppcheck-suppress uninitMemberVarPrivate
    BasicMatch() noexcept {}

    tavRegExpFindResult entries_[Capacity];
    std::int32_t stored_ = 0;
    tavStatus status_ = tavStsNoError;
    const std::uint8_t* subjectStart_ = nullptr;
};

using Match = BasicMatch<>;

/// One match of several; valid as long as the range that it belongs to.
class MatchView : public MatchBase<MatchView> {
public:
    MatchView(const tavRegExpFindResult* entries, std::int32_t stored,
              const std::uint8_t* subjectStart) noexcept
        : entries_(entries), stored_(stored), subjectStart_(subjectStart) {}

    const tavRegExpFindResult* entries() const noexcept { return entries_; }
    std::int32_t stored() const noexcept { return stored_; }
    const std::uint8_t* subjectStart() const noexcept { return subjectStart_; }

private:
    const tavRegExpFindResult* entries_;
    std::int32_t stored_;
    const std::uint8_t* subjectStart_;
};

/// All matches of a pattern in a subject, which must outlive them.
class Matches {
public:
    class Iterator {
    public:
        using iterator_category = std::input_iterator_tag;
        using value_type = MatchView;
        using difference_type = std::ptrdiff_t;
        using pointer = void;
        using reference = MatchView;

        Iterator(const Matches& matches, std::size_t index) noexcept : matches_(&matches), index_(index) {}
        MatchView operator*() const noexcept { return (*matches_)[index_]; }
        Iterator& operator++() noexcept {
            index_++;
            return *this;
        }
        Iterator operator++(int) noexcept {
            Iterator before = *this;
            index_++;
            return before;
        }
        bool operator==(const Iterator& other) const noexcept { return index_ == other.index_; }
        bool operator!=(const Iterator& other) const noexcept { return index_ != other.index_; }

    private:
        const Matches* matches_;
        std::size_t index_;
    };

    std::size_t size() const noexcept { return count_; }
    bool empty() const noexcept { return count_ == 0; }
    MatchView operator[](std::size_t index) const noexcept {
        return {entries_.get() + index * static_cast<std::size_t>(perMatch_), perMatch_, subjectStart_};
    }
    Iterator begin() const noexcept { return {*this, 0}; }
    Iterator end() const noexcept { return {*this, count_}; }
    const Error& error() const noexcept { return error_; }

    Matches(Matches&& other) noexcept
        : entries_(std::move(other.entries_)), capacity_(std::exchange(other.capacity_, 0)),
          count_(std::exchange(other.count_, 0)), perMatch_(other.perMatch_),
          subjectStart_(other.subjectStart_), error_(other.error_) {}
    Matches& operator=(Matches&& other) noexcept {
        entries_ = std::move(other.entries_);
        capacity_ = std::exchange(other.capacity_, 0);
        count_ = std::exchange(other.count_, 0);
        perMatch_ = other.perMatch_;
        subjectStart_ = other.subjectStart_;
        error_ = other.error_;
        return *this;
    }

private:
    friend class Pattern;
    Matches() = default;

    std::unique_ptr<tavRegExpFindResult[]> entries_;
    std::size_t capacity_ = 0; ///< in entries
    std::size_t count_ = 0;    ///< in matches
    std::int32_t perMatch_ = 1;
    const std::uint8_t* subjectStart_ = nullptr;
    Error error_;
};

// -----------------------------------------------------------------------------------------------------------
// Templates

/// A replacement template, cut into items once: "$&" is the whole match, "$1" the first group. See tavch.h
/// for what is peculiar about "\" and numbers of several digits. It owns its text and may be shared by
/// threads.
class Template {
public:
    explicit Template(std::string_view text) noexcept {
        // A zero byte would end the template early.
        if (const std::size_t zero = text.find('\0'); zero != npos) {
            error_ = {tavStsBadArgument, zero <= detail::maxLength ? static_cast<std::int32_t>(zero) : 0};
            return;
        }
        constexpr std::size_t longest = (detail::maxLength - 16) / 16;
        if (text.size() > longest) {
            error_ = {tavStsNegativeLength, 0};
            return;
        }
        const std::size_t words = 2 + 2 * text.size();
        block_.reset(new (std::nothrow) std::uint64_t[words + text.size() / 8 + 1]);
        if (!block_) {
            error_ = {tavStsNullPointer, 0};
            return;
        }
        char* const copy = reinterpret_cast<char*>(block_.get() + words);
        if (!text.empty()) std::memcpy(copy, text.data(), text.size());
        copy[text.size()] = '\0';
        error_.status = tavsRegExpReplaceInit(copy, items());
        if (error_) error_.offset = faultIn(text);
    }

    Template(Template&& other) noexcept
        : block_(std::move(other.block_)), error_(std::exchange(other.error_, detail::movedFrom)) {}
    Template& operator=(Template&& other) noexcept {
        block_ = std::move(other.block_);
        error_ = std::exchange(other.error_, detail::movedFrom);
        return *this;
    }

    explicit operator bool() const noexcept { return !error_; }
    const Error& error() const noexcept { return error_; }
    const tavRegExpReplaceContext* context() const noexcept {
        return reinterpret_cast<const tavRegExpReplaceContext*>(block_.get());
    }

private:
    tavRegExpReplaceContext* items() noexcept {
        return reinterpret_cast<tavRegExpReplaceContext*>(block_.get());
    }

    /// Where the first "$" stands that is no reference.
    static std::int32_t faultIn(std::string_view text) noexcept {
        for (std::size_t dollar = text.find('$'); dollar != npos; dollar = text.find('$', dollar + 1)) {
            std::size_t i = dollar + 1;
            std::uint32_t number = 0;
            if (i < text.size() && text[i] == '&') continue;
            for (; i < text.size() && text[i] >= '0' && text[i] <= '9'; i++)
                number = 11 * number + static_cast<std::uint32_t>(text[i] - '0');
            if (number == 0) return static_cast<std::int32_t>(dollar);
        }
        return 0;
    }

    std::unique_ptr<std::uint64_t[]> block_;
    Error error_;
};

// -----------------------------------------------------------------------------------------------------------
// Patterns

/// Memory for a pattern of up to MaxPattern bytes, for callers who allocate nothing. It must outlive the
/// pattern that is compiled into it, and stay where it is.
template <std::size_t MaxPattern>
class PatternRoom {
    static_assert(MaxPattern < (detail::maxLength - 48056) / 25, "a block has less than 2^31 bytes");

    friend class Pattern;
    alignas(8) unsigned char block_[24 * MaxPattern + 48056 + MaxPattern + 1];
};

/// A compiled pattern. It owns the memory of its program, or uses a PatternRoom; moving is cheap.
class Pattern {
public:
    /// Compiles; `*this` is false when that fails, and error() says why and where. The option letters are
    /// those of tavsRegExpInit; "g" is accepted and means nothing here: find looks for one match, matches for
    /// all.
    explicit Pattern(std::string_view pattern, std::string_view options = {}) noexcept {
        constexpr std::size_t longest = (detail::maxLength - 48056) / 25;
        if (pattern.size() > longest) {
            error_ = {tavStsNegativeLength, 0};
            return;
        }
        const std::size_t size = 24 * pattern.size() + 48056;
        owned_.reset(new (std::nothrow) std::uint64_t[(size + pattern.size()) / 8 + 1]);
        if (!owned_) {
            error_ = {tavStsNullPointer, 0};
            return;
        }
        compile(pattern, options, owned_.get(), reinterpret_cast<char*>(owned_.get()) + size);
    }

    template <std::size_t MaxPattern>
    Pattern(std::string_view pattern, std::string_view options, PatternRoom<MaxPattern>& room) noexcept {
        if (pattern.size() > MaxPattern) {
            error_ = {tavStsNegativeLength, 0};
            return;
        }
        compile(pattern, options, room.block_,
                reinterpret_cast<char*>(room.block_) + 24 * MaxPattern + 48056);
    }

    Pattern(Pattern&& other) noexcept
        : owned_(std::move(other.owned_)), context_(std::exchange(other.context_, nullptr)),
          error_(std::exchange(other.error_, detail::movedFrom)) {}
    Pattern& operator=(Pattern&& other) noexcept {
        owned_ = std::move(other.owned_);
        context_ = std::exchange(other.context_, nullptr);
        error_ = std::exchange(other.error_, detail::movedFrom);
        return *this;
    }

    explicit operator bool() const noexcept { return context_ != nullptr; }
    const Error& error() const noexcept { return error_; }

    /// The C library's view of the pattern; null when it is not compiled.
    tavRegExpContext* context() noexcept { return context_; }

    /// Number of results of a match: the whole match and the capturing groups.
    std::size_t resultCount() const noexcept {
        return context_ ? static_cast<std::size_t>(context_->groupCount) : 0;
    }

    /// The depth budget of searches, 0 or more; a path that needs more is not found.
    Error setMatchLimit(std::int32_t limit) noexcept { return {tavsRegExpSetMatchLimit(limit, context_), 0}; }
    /// Whether start positions move on by whole UTF-8 characters, as after compilation, or by bytes.
    Error setWholeCharacters(bool whole) noexcept {
        return {tavsRegExpSetFormat(whole ? 1 : 0, context_), 0};
    }

    /// The first match. With "\b" or "\B" in the pattern, the byte behind the subject must be readable; that
    /// of a std::string and of a literal is.
    template <std::size_t Capacity = 10>
    BasicMatch<Capacity> find(std::string_view subject) noexcept {
        BasicMatch<Capacity> match;
        match.subjectStart_ = detail::elements(subject);
        if (const tavStatus bad = refuse(subject); bad != tavStsNoError) {
            match.status_ = bad;
            return match;
        }
        std::int32_t count = Capacity;
        match.status_ =
            tavsRegExpFind_8u(match.subjectStart_, detail::length(subject), context_, match.entries_, &count);
        match.stored_ = match.status_ < 0 ? 0 : count;
        return match;
    }

    bool matchesIn(std::string_view subject) noexcept { return find<1>(subject).matched(); }

    /// All matches from left to right, found at once. Memory for them is allocated.
    Matches matches(std::string_view subject) noexcept {
        Matches found;
        found.subjectStart_ = detail::elements(subject);
        found.error_.status = refuse(subject);
        if (found.error_) return found;
        found.perMatch_ = context_->groupCount;
        for (std::size_t room = 16; grow(found, room); room *= 4) {
            auto count = static_cast<std::int32_t>(found.capacity_);
            found.error_.status = findAll(subject, found.entries_.get(), &count);
            if (found.error_) return found;
            found.count_ = static_cast<std::size_t>(count / found.perMatch_);
            // Full results may hide further matches.
            if (static_cast<std::size_t>(count) < found.capacity_) break;
        }
        return found;
    }

    /// The subject with its first match, or every match, replaced.
    Result<std::string> replaceFirst(std::string_view subject, const Template& by) {
        return replaceUpTo(1, subject, by);
    }
    Result<std::string> replaceAll(std::string_view subject, const Template& by) {
        return replaceUpTo(npos, subject, by);
    }
    Result<std::string> replaceFirst(std::string_view subject, std::string_view by) {
        return replaceUpTo(1, subject, Template(by));
    }
    Result<std::string> replaceAll(std::string_view subject, std::string_view by) {
        return replaceUpTo(npos, subject, Template(by));
    }

private:
    static constexpr std::uint32_t globalBit = 16;

    /// Sets the option "g" for the length of a call.
    class Global {
    public:
        explicit Global(tavRegExpContext* context) noexcept : context_(context) {
            context->options |= globalBit;
        }
        ~Global() { context_->options &= ~globalBit; }
        Global(const Global&) = delete;
        Global& operator=(const Global&) = delete;

    private:
        tavRegExpContext* context_;
    };

    /// The library takes zero-terminated text, once.
    void compile(std::string_view pattern, std::string_view options, void* block, char* text) noexcept {
        if (const std::size_t zero = pattern.find('\0'); zero != npos) {
            error_ = {tavStsBadArgument, static_cast<std::int32_t>(zero)};
            return;
        }
        if (!pattern.empty()) std::memcpy(text, pattern.data(), pattern.size());
        text[pattern.size()] = '\0';
        char letters[8] = {}; // each of the five once, and the first that is none of them
        std::size_t count = 0;
        for (const char letter : options) {
            if (std::string_view(letters, count).find(letter) != npos) continue;
            letters[count++] = letter != '\0' ? letter : '?';
            if (std::string_view("gimsx").find(letter) == npos) break;
        }
        auto* const context = static_cast<tavRegExpContext*>(block);
        error_.status = tavsRegExpInit(text, letters, context, &error_.offset);
        if (error_) {
            owned_.reset();
            return;
        }
        context_ = context;
        context_->options &= ~globalBit;
    }

    tavStatus refuse(std::string_view subject) const noexcept {
        if (!context_) return error_ ? error_.status : tavStatus{tavStsBadContext};
        return subject.size() > detail::maxLength ? tavStsNegativeLength : tavStsNoError;
    }

    /// Makes room for a number of matches; false, with an error, when there is no memory for them.
    static bool grow(Matches& found, std::size_t matches) noexcept {
        const std::size_t entries = matches * static_cast<std::size_t>(found.perMatch_);
        if (entries <= detail::maxLength) {
            found.entries_.reset(new (std::nothrow) tavRegExpFindResult[entries]);
            found.capacity_ = entries;
            if (found.entries_) return true;
        }
        found.entries_.reset();
        found.count_ = 0;
        found.error_ = {tavStsNullPointer, 0};
        return false;
    }

    /// All matches, with all their entries. The global search leaves the whole match out where there are
    /// groups; a replacement stores it, and one of nothing into a single byte does little but search.
    tavStatus findAll(std::string_view subject, tavRegExpFindResult* entries, std::int32_t* count) noexcept {
        if (subject.empty()) return tavsRegExpFind_8u(detail::elements(subject), 0, context_, entries, count);
        const Global global(context_);
        if (context_->groupCount == 1)
            return tavsRegExpFind_8u(detail::elements(subject), detail::length(subject), context_, entries,
                                     count);
        constexpr tavRegExpReplaceContext nothing = {0, nullptr};
        std::int32_t used = detail::length(subject), written = 1;
        std::uint8_t byte;
        return tavsRegExpReplace_8u(detail::elements(subject), &used, &byte, &written, entries, count,
                                    context_, &nothing);
    }

    Result<std::string> replaceUpTo(std::size_t limit, std::string_view subject, const Template& by) {
        if (by.error()) return by.error();
        if (const tavStatus bad = refuse(subject); bad != tavStsNoError) return Error{bad, 0};
        Matches found;
        found.perMatch_ = context_->groupCount;
        if (subject.empty()) return replaceInEmpty(by);
        std::string out;
        std::size_t capacity = std::min(subject.size() + subject.size() / 4 + 64, detail::maxLength);
        for (std::size_t room = std::min<std::size_t>(limit, 16);;) {
            if (found.capacity_ == 0 && !grow(found, room)) return found.error_;
            out.resize(capacity);
            std::int32_t used = detail::length(subject), written = static_cast<std::int32_t>(capacity);
            auto count = static_cast<std::int32_t>(found.capacity_);
            tavStatus status;
            {
                const Global global(context_);
                status = tavsRegExpReplace_8u(detail::elements(subject), &used, detail::elements(out),
                                              &written, found.entries_.get(), &count, context_, by.context());
            }
            if (status < 0) return Error{status, 0};
            if (limit > room && static_cast<std::size_t>(count) == found.capacity_) {
                room *= 4;
                found.capacity_ = 0;
                continue;
            }
            if (used == detail::length(subject)) {
                out.resize(static_cast<std::size_t>(written));
                return out;
            }
            const std::size_t exact = replacedLength(subject, found, count, by);
            if (exact >= detail::maxLength) return Error{tavStsNegativeLength, 0};
            capacity = std::max(exact, capacity) + 1;
        }
    }

    /// A replacement takes no empty text. A match in it is empty, and so is every group: the literals remain.
    Result<std::string> replaceInEmpty(const Template& by) {
        std::string out;
        if (!matchesIn({})) return out;
        for (std::int32_t i = 0; i < by.context()->itemCount; i++) {
            const tavRegExpReplaceItem& item = by.context()->items[i];
            if (item.kind == tavReplaceLiteral) out.append(item.text, item.value);
        }
        return out;
    }

    /// An upper bound of the length of a text whose matches are known.
    static std::size_t replacedLength(std::string_view subject, const Matches& found, std::int32_t count,
                                      const Template& by) noexcept {
        std::size_t total = subject.size();
        const tavRegExpReplaceContext& context = *by.context();
        for (std::int32_t match = 0; match + found.perMatch_ <= count; match += found.perMatch_) {
            for (std::int32_t i = 0; i < context.itemCount; i++) {
                const tavRegExpReplaceItem& item = context.items[i];
                if (item.kind == tavReplaceLiteral) {
                    total += item.value;
                } else if (item.value < static_cast<std::uint32_t>(found.perMatch_)) {
                    const std::int32_t length =
                        found.entries_[static_cast<std::size_t>(match) + item.value].length;
                    if (length > 0) total += static_cast<std::size_t>(length);
                }
            }
        }
        return total;
    }

    std::unique_ptr<std::uint64_t[]> owned_; ///< null for a pattern in a PatternRoom
    tavRegExpContext* context_ = nullptr;
    Error error_;
};

// -----------------------------------------------------------------------------------------------------------
// Sets of patterns

/// Patterns under identifiers, searched for together. The patterns must outlive their membership.
class PatternSet {
public:
    /// One pattern that matched.
    struct Hit {
        std::uint32_t id;
        MatchView match;
    };

    /// Room for a number of patterns, and for the whole match and some of its groups of each.
    explicit PatternSet(std::uint32_t capacity, std::int32_t resultsPerPattern = 1)
        : perPattern_(std::max(resultsPerPattern, 1)) {
        std::int32_t size = 0;
        error_.status = tavsRegExpMultiGetSize(capacity, &size);
        if (error_) return;
        block_.resize((static_cast<std::size_t>(size) + 7) / 8);
        error_.status = tavsRegExpMultiInit(context(), capacity);
        results_.resize(capacity);
        finds_.resize(capacity * static_cast<std::size_t>(perPattern_));
    }

    // Not copied: the set's block points into itself.
    PatternSet(PatternSet&& other) noexcept
        : perPattern_(other.perPattern_), block_(std::move(other.block_)),
          results_(std::move(other.results_)), finds_(std::move(other.finds_)),
          error_(std::exchange(other.error_, detail::movedFrom)) {}
    PatternSet& operator=(PatternSet&& other) noexcept {
        perPattern_ = other.perPattern_;
        block_ = std::move(other.block_);
        results_ = std::move(other.results_);
        finds_ = std::move(other.finds_);
        error_ = std::exchange(other.error_, detail::movedFrom);
        return *this;
    }

    explicit operator bool() const noexcept { return !error_; }
    const Error& error() const noexcept { return error_; }
    tavRegExpMultiContext* context() noexcept {
        return reinterpret_cast<tavRegExpMultiContext*>(block_.data());
    }

    /// Identifiers are any numbers but 0; one may stand for several patterns.
    Error add(Pattern& pattern, std::uint32_t id) noexcept {
        return {error_ ? error_.status : tavsRegExpMultiAdd(pattern.context(), id, context()), 0};
    }
    Error remove(std::uint32_t id) noexcept {
        return {error_ ? error_.status : tavsRegExpMultiDelete(id, context()), 0};
    }
    Error replace(Pattern& pattern, std::uint32_t id) noexcept {
        return {error_ ? error_.status : tavsRegExpMultiModify(pattern.context(), id, context()), 0};
    }

    /// The patterns that match, in the order of their slots; no pattern matches an empty text here. The
    /// matches are valid until the next call.
    Result<std::vector<Hit>> find(std::string_view text) {
        if (error_) return error_;
        if (text.size() > detail::maxLength) return Error{tavStsNegativeLength, 0};
        std::vector<Hit> hits;
        if (text.empty()) return hits;
        for (std::size_t i = 0; i < results_.size(); i++) {
            results_[i].searched = 0;
            results_[i].numFind = perPattern_;
            results_[i].finds = finds_.data() + i * static_cast<std::size_t>(perPattern_);
        }
        const tavStatus status =
            tavsRegExpMultiFind_8u(detail::elements(text), detail::length(text), results_.data(), context());
        if (status < 0) return Error{status, 0};
        for (const tavRegExpMultiFindResult& result : results_) {
            if (!result.searched) continue;
            if (result.status < 0) return Error{result.status, 0};
            if (result.numFind > 0)
                hits.push_back({result.id, {result.finds, result.numFind, detail::elements(text)}});
        }
        return hits;
    }

private:
    std::int32_t perPattern_;
    std::vector<std::uint64_t> block_;
    std::vector<tavRegExpMultiFindResult> results_;
    std::vector<tavRegExpFindResult> finds_;
    Error error_;
};

// -----------------------------------------------------------------------------------------------------------
// Strings. Each function exists for both widths; searches give a position or npos.

#define TAVCH_BOTH_WIDTHS(MACRO)                                                                             \
    MACRO(std::string_view, std::string, char, 8u)                                                           \
    MACRO(std::u16string_view, std::u16string, char16_t, 16u)

#define TAVCH_STRINGS(View, String, Char, S)                                                                 \
    /* Order by elements, then by length: below, equal to or above 0. */                                     \
    inline int compare(View a, View b) noexcept {                                                            \
        std::int32_t order = 0;                                                                              \
        tavsCompare_##S(detail::elements(a), detail::elements(b),                                            \
                        static_cast<std::int32_t>(std::min(a.size(), b.size())), &order);                    \
        return order != 0 ? order : (a.size() > b.size()) - (a.size() < b.size());                           \
    }                                                                                                        \
    /* The same without regard to the case of the letters A to Z. */                                         \
    inline int compareIgnoreCaseLatin(View a, View b) noexcept {                                             \
        std::int32_t order = 0;                                                                              \
        tavsCompareIgnoreCaseLatin_##S(detail::elements(a), detail::elements(b),                             \
                                       static_cast<std::int32_t>(std::min(a.size(), b.size())), &order);     \
        return order != 0 ? order : (a.size() > b.size()) - (a.size() < b.size());                           \
    }                                                                                                        \
    inline bool equal(View a, View b) noexcept {                                                             \
        std::uint32_t same = 0;                                                                              \
        if (a.size() != b.size()) return false;                                                              \
        tavsEqual_##S(detail::elements(a), detail::elements(b), detail::length(a), &same);                   \
        return same != 0;                                                                                    \
    }                                                                                                        \
    /* An empty string occurs nowhere. */                                                                    \
    inline std::size_t find(View text, View sought) noexcept {                                               \
        std::int32_t at = -1;                                                                                \
        tavsFind_##S(detail::elements(text), detail::length(text), detail::elements(sought),                 \
                     detail::length(sought), &at);                                                           \
        return detail::position(at);                                                                         \
    }                                                                                                        \
    inline std::size_t findLast(View text, View sought) noexcept {                                           \
        std::int32_t at = -1;                                                                                \
        tavsFindRev_##S(detail::elements(text), detail::length(text), detail::elements(sought),              \
                        detail::length(sought), &at);                                                        \
        return detail::position(at);                                                                         \
    }                                                                                                        \
    inline std::size_t find(View text, Char sought) noexcept {                                               \
        std::int32_t at = -1;                                                                                \
        tavsFindC_##S(detail::elements(text), detail::length(text), detail::element(sought), &at);           \
        return detail::position(at);                                                                         \
    }                                                                                                        \
    inline std::size_t findLast(View text, Char sought) noexcept {                                           \
        std::int32_t at = -1;                                                                                \
        tavsFindRevC_##S(detail::elements(text), detail::length(text), detail::element(sought), &at);        \
        return detail::position(at);                                                                         \
    }                                                                                                        \
    /* The first, or the last, element that is in a set. */                                                  \
    inline std::size_t findAny(View text, View set) noexcept {                                               \
        std::int32_t at = -1;                                                                                \
        tavsFindCAny_##S(detail::elements(text), detail::length(text), detail::elements(set),                \
                         detail::length(set), &at);                                                          \
        return detail::position(at);                                                                         \
    }                                                                                                        \
    inline std::size_t findLastAny(View text, View set) noexcept {                                           \
        std::int32_t at = -1;                                                                                \
        tavsFindRevCAny_##S(detail::elements(text), detail::length(text), detail::elements(set),             \
                            detail::length(set), &at);                                                       \
        return detail::position(at);                                                                         \
    }                                                                                                        \
    /* Inserts at a position of at most text.size(); a greater one appends. */                               \
    inline String insert(View text, std::size_t at, View inserted) {                                         \
        String out(text);                                                                                    \
        out.resize(text.size() + inserted.size());                                                           \
        std::int32_t length = detail::length(text);                                                          \
        tavsInsert_##S##_I(detail::elements(inserted), detail::length(inserted), detail::elements(out),      \
                           &length, static_cast<std::int32_t>(std::min(at, text.size())));                   \
        return out;                                                                                          \
    }                                                                                                        \
    /* The text without a run of its elements, of which those beyond its end do not count. */                \
    inline String remove(View text, std::size_t at, std::size_t count) {                                     \
        at = std::min(at, text.size());                                                                      \
        count = std::min(count, text.size() - at);                                                           \
        String out(text.size() - count, Char());                                                             \
        tavsRemove_##S(detail::elements(text), detail::length(text), detail::elements(out),                  \
                       static_cast<std::int32_t>(at), static_cast<std::int32_t>(count));                     \
        return out;                                                                                          \
    }                                                                                                        \
    inline String replace(View text, Char from, Char to) {                                                   \
        String out(text.size(), Char());                                                                     \
        tavsReplaceC_##S(detail::elements(text), detail::elements(out), detail::length(text),                \
                         detail::element(from), detail::element(to));                                        \
        return out;                                                                                          \
    }                                                                                                        \
    /* Strips the elements of a set from both ends, or from one. */                                          \
    inline String trim(View text, View set) {                                                                \
        String out(text.size(), Char());                                                                     \
        std::int32_t length = 0;                                                                             \
        tavsTrimCAny_##S(detail::elements(text), detail::length(text), detail::elements(set),                \
                         detail::length(set), detail::elements(out), &length);                               \
        out.resize(static_cast<std::size_t>(length));                                                        \
        return out;                                                                                          \
    }                                                                                                        \
    inline String trimStart(View text, View set) {                                                           \
        String out(text.size(), Char());                                                                     \
        std::int32_t length = 0;                                                                             \
        tavsTrimStartCAny_##S(detail::elements(text), detail::length(text), detail::elements(set),           \
                              detail::length(set), detail::elements(out), &length);                          \
        out.resize(static_cast<std::size_t>(length));                                                        \
        return out;                                                                                          \
    }                                                                                                        \
    inline String trimEnd(View text, View set) {                                                             \
        String out(text.size(), Char());                                                                     \
        std::int32_t length = 0;                                                                             \
        tavsTrimEndCAny_##S(detail::elements(text), detail::length(text), detail::elements(set),             \
                            detail::length(set), detail::elements(out), &length);                            \
        out.resize(static_cast<std::size_t>(length));                                                        \
        return out;                                                                                          \
    }                                                                                                        \
    /* The fields between separators, as views of the text; none behind a separator at the very end. */      \
    inline std::vector<View> split(View text, Char separator) {                                              \
        std::vector<View> fields;                                                                            \
        while (!text.empty()) {                                                                              \
            const std::size_t at = find(text, separator);                                                    \
            fields.push_back(text.substr(0, at));                                                            \
            text.remove_prefix(at == npos ? text.size() : at + 1);                                           \
        }                                                                                                    \
        return fields;                                                                                       \
    }                                                                                                        \
    inline String join(const std::vector<View>& fields, Char separator) {                                    \
        std::vector<decltype(detail::elements(View()))> starts;                                              \
        std::vector<std::int32_t> lengths;                                                                   \
        std::size_t total = fields.empty() ? 0 : fields.size() - 1;                                          \
        for (const View field : fields) {                                                                    \
            starts.push_back(detail::elements(field));                                                       \
            lengths.push_back(detail::length(field));                                                        \
            total += field.size();                                                                           \
        }                                                                                                    \
        String out(total, Char());                                                                           \
        if (!fields.empty())                                                                                 \
            tavsConcatC_##S##_D2L(starts.data(), lengths.data(), detail::length(fields),                     \
                                  detail::element(separator), detail::elements(out));                        \
        return out;                                                                                          \
    }                                                                                                        \
    inline String concat(View a, View b) {                                                                   \
        String out(a.size() + b.size(), Char());                                                             \
        tavsConcat_##S(detail::elements(a), detail::length(a), detail::elements(b), detail::length(b),       \
                       detail::elements(out));                                                               \
        return out;                                                                                          \
    }                                                                                                        \
    /* Three hashes: h = h << 1 ^ e from 0; h = h * 31 + e from 0; h = h * 33 ^ e from 5381, up to a zero.   \
     */                                                                                                      \
    inline std::uint32_t hash(View text) noexcept {                                                          \
        std::uint32_t value = 0;                                                                             \
        tavsHash_##S##32u(detail::elements(text), detail::length(text), &value);                             \
        return value;                                                                                        \
    }                                                                                                        \
    inline std::uint32_t hashTimes31(View text) noexcept {                                                   \
        std::uint32_t value = 0;                                                                             \
        tavsHashSJ2_##S##32u(detail::elements(text), detail::length(text), &value);                          \
        return value;                                                                                        \
    }                                                                                                        \
    inline std::uint32_t hashTimes33(View text) noexcept {                                                   \
        std::uint32_t value = 0;                                                                             \
        tavsHashMSCS_##S##32u(detail::elements(text), detail::length(text), &value);                         \
        return value;                                                                                        \
    }                                                                                                        \
    /* The case of the letters A to Z; every other element stays. */                                         \
    inline String lowercaseLatin(View text) {                                                                \
        String out(text.size(), Char());                                                                     \
        tavsLowercaseLatin_##S(detail::elements(text), detail::elements(out), detail::length(text));         \
        return out;                                                                                          \
    }                                                                                                        \
    inline String uppercaseLatin(View text) {                                                                \
        String out(text.size(), Char());                                                                     \
        tavsUppercaseLatin_##S(detail::elements(text), detail::elements(out), detail::length(text));         \
        return out;                                                                                          \
    }

TAVCH_BOTH_WIDTHS(TAVCH_STRINGS)
#undef TAVCH_STRINGS
#undef TAVCH_BOTH_WIDTHS

/// The simple case mappings of all letters, unit by unit.
inline std::u16string lowercase(std::u16string_view text) {
    std::u16string out(text.size(), u'\0');
    tavsLowercase_16u(detail::elements(text), detail::elements(out), detail::length(text));
    return out;
}
inline std::u16string uppercase(std::u16string_view text) {
    std::u16string out(text.size(), u'\0');
    tavsUppercase_16u(detail::elements(text), detail::elements(out), detail::length(text));
    return out;
}
inline int compareIgnoreCase(std::u16string_view a, std::u16string_view b) noexcept {
    std::int32_t order = 0;
    tavsCompareIgnoreCase_16u(detail::elements(a), detail::elements(b),
                              static_cast<std::int32_t>(std::min(a.size(), b.size())), &order);
    return order != 0 ? order : (a.size() > b.size()) - (a.size() < b.size());
}

/// Conversions take any text; what is malformed passes through by the rules in tavch.h.
inline std::u16string toUtf16(std::string_view text) {
    std::u16string out(text.size(), u'\0');
    auto bytes = static_cast<std::uint32_t>(text.size()), units = bytes;
    tavsConvertUTF_8u16u(detail::elements(text), &bytes, detail::elements(out), &units, 0);
    out.resize(units);
    return out;
}
inline std::string toUtf8(std::u16string_view text) {
    std::string out(3 * text.size(), '\0');
    auto units = static_cast<std::uint32_t>(text.size()), bytes = 3 * units;
    tavsConvertUTF_16u8u(detail::elements(text), &units, detail::elements(out), &bytes, 0);
    out.resize(bytes);
    return out;
}

} // namespace tav

#endif // TAVCH_HPP
