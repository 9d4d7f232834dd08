#include "regex/services/replace_template.h"

#include "base/arguments.h"

#include <cstddef>
#include <cstring>
#include <limits>

namespace tav::regex {

static_assert(sizeof(tavRegExpReplaceItem) == 16);
static_assert(offsetof(tavRegExpReplaceItem, kind) == 0);
static_assert(offsetof(tavRegExpReplaceItem, value) == 4);
static_assert(offsetof(tavRegExpReplaceItem, text) == 8);
static_assert(sizeof(tavRegExpReplaceContext) == 16, "the items stand directly behind");
static_assert(offsetof(tavRegExpReplaceContext, itemCount) == 0);
static_assert(offsetof(tavRegExpReplaceContext, items) == 8);

namespace {

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

/// Cuts a template into items, at most one per byte.
class TemplateParser {
public:
    TemplateParser(const char* text, tavRegExpReplaceItem* items) : at_(text), run_(text), items_(items) {}

    bool parse() {
        while (*at_ != '\0') {
            if (*at_ == '$') {
                closeRun();
                ++at_;
                if (!takeReference()) return false;
                run_ = at_;
            } else if (*at_ == '\\') {
                // Deliberately no escape: only the backslash itself goes, the next byte keeps its meaning.
                closeRun();
                run_ = ++at_;
            } else {
                ++at_;
            }
        }
        closeRun();
        return true;
    }

    int32_t count() const { return count_; }

private:
    void closeRun() {
        if (at_ != run_) add(tavReplaceLiteral, static_cast<uint32_t>(at_ - run_), run_);
    }

    bool takeReference() {
        if (*at_ == '&') {
            ++at_;
            add(tavReplaceGroup, 0, nullptr);
            return true;
        }
        const uint32_t number = takeNumber();
        if (number == 0) return false;
        add(tavReplaceGroup, number, nullptr);
        return true;
    }

    /// 0 when there are no digits, too.
    uint32_t takeNumber() {
        // Deliberately eleven, and wrapping: templates in use are written for this reading ($12 is group 13).
        constexpr uint32_t multiplier = 11;
        uint32_t number = 0;
        for (; isDigit(*at_); ++at_)
            number = number * multiplier + static_cast<uint32_t>(*at_ - '0');
        return number;
    }

    void add(uint32_t kind, uint32_t value, const char* text) { items_[count_++] = {kind, value, text}; }

    const char* at_;
    const char* run_; // where the pending literal starts
    tavRegExpReplaceItem* items_;
    int32_t count_ = 0;
};

} // namespace

tavStatus replaceGetSize(const char* templateText, int32_t* size) {
    if (const auto bad = Arguments::pointers(size); bad.failed()) return bad.status;
    const std::size_t length = templateText == nullptr ? 0 : std::strlen(templateText);
    const uint64_t bytes = sizeof(tavRegExpReplaceItem) * uint64_t{length} + sizeof(tavRegExpReplaceContext);
    if (bytes > uint64_t{std::numeric_limits<int32_t>::max()}) return tavStsNegativeLength;
    *size = static_cast<int32_t>(bytes);
    return tavStsNoError;
}

tavStatus replaceInit(const char* templateText, tavRegExpReplaceContext* context) {
    if (const auto bad = Arguments::pointers(context); bad.failed()) return bad.status;
    if (templateText == nullptr) {
        *context = {0, nullptr};
        return tavStsNoError;
    }
    context->items = reinterpret_cast<tavRegExpReplaceItem*>(context + 1);
    TemplateParser parser(templateText, context->items);
    if (!parser.parse()) return tavStsBadGroupReference;
    context->itemCount = parser.count();
    return tavStsNoError;
}

} // namespace tav::regex
