// The pre-scan walks the text once. Options matter to it only because "x" decides what is a comment; it knows
// nothing of quantifiers, escapes' meanings or unknown group forms, which the main pass reports.
#include "regex/compile/prescan.h"

#include "regex/compile/class_items.h"
#include "regex/compile/option_letters.h"

namespace tav::regex::compiler {

namespace {

constexpr int32_t maximumDepth = bracketLimit - 1;
constexpr int32_t maximumGroupCount = bracketLimit + 1;

class Prescan {
public:
    Prescan(const PatternText& text, uint32_t options) : text_(text), options_(options) {}

    Outcome run() {
        while (at_ < text_.length()) {
            if (const Outcome outcome = construct(); outcome.failed()) return outcome;
        }
        return depth_ > 0 ? syntaxError(text_.length()) : Outcome{};
    }

    int32_t groupCount() const { return groupCount_; }

private:
    Outcome construct() {
        switch (text_.at(at_)) {
        case '(':
            return openGroup();
        case ')':
            return closeGroup();
        case '[':
            return skipClass();
        case '\\':
            skipEscape();
            return {};
        case '#':
            at_ = (options_ & optionExtended) != 0 ? text_.find('\n', at_) : at_ + 1;
            return {};
        default:
            ++at_;
            return {};
        }
    }

    Outcome openGroup() {
        const Offset open = at_;
        if (const Outcome outcome = push(open); outcome.failed()) return outcome;
        if (text_.at(open + 1) != '?') {
            at_ = open + 1;
            return ++groupCount_ > maximumGroupCount ? syntaxError(open) : Outcome{};
        }
        at_ = open + 2;
        const int form = text_.at(at_);
        if (form == '#') return skipComment();
        if (form == '(') return push(at_++); // a conditional: its condition is a level of its own
        if (form == '-' || inlineOptionBit(form) != 0) applyOptions();
        return {};
    }

    Outcome push(Offset open) {
        if (depth_ == maximumDepth) return syntaxError(open);
        savedOptions_[depth_++] = static_cast<uint8_t>(options_);
        return {};
    }

    Outcome closeGroup() {
        if (depth_ == 0) return syntaxError(at_);
        options_ = savedOptions_[--depth_];
        ++at_;
        return {};
    }

    Outcome skipComment() {
        at_ = text_.find(')', at_);
        return at_ == text_.length() ? syntaxError(at_) : closeGroup();
    }

    /// Reads letters up to the ")" of a setting, whose options outlast it, or to the ":" of a group.
    void applyOptions() {
        InlineOptions inlineOptions(options_);
        while (at_ < text_.length()) {
            const int letter = text_.at(at_++);
            if (letter == ')') --depth_;
            if (letter == ')' || letter == ':') break;
            inlineOptions.apply(letter);
        }
        options_ = inlineOptions.bits();
    }

    void skipEscape() {
        const int letter = text_.at(at_ + 1);
        if (letter == 'Q') {
            at_ = text_.findPair('\\', 'E', at_ + 2);
        } else {
            at_ += letter == 'c' ? 3 : 2;
        }
    }

    Outcome skipClass() {
        ++at_;
        if (text_.at(at_) == '^') ++at_;
        if (text_.at(at_) == ']') ++at_;
        while (at_ < text_.length() && text_.at(at_) != ']') {
            if (ClassItems::opensAt(text_, at_)) {
                skipClassItem();
            } else if (text_.at(at_) == '\\') {
                const bool quote = text_.at(at_ + 1) == 'Q';
                skipEscape();
                if (quote && at_ == text_.length()) return classError(at_);
            } else {
                ++at_;
            }
        }
        ++at_;
        return {};
    }

    void skipClassItem() {
        const Offset close = classItems_.findClose(text_, text_.at(at_ + 1), at_ + 2);
        at_ = close < text_.length() ? close + 2 : at_ + 2;
    }

    const PatternText& text_;
    uint32_t options_;
    Offset at_ = 0;
    int32_t depth_ = 0;
    int32_t groupCount_ = 1;
    ClassItems classItems_;
    uint8_t savedOptions_[maximumDepth];
};

} // namespace

Outcome prescan(const PatternText& text, uint32_t options, int32_t& groupCount) {
    Prescan scan(text, options);
    const Outcome outcome = scan.run();
    groupCount = scan.groupCount();
    return outcome;
}

} // namespace tav::regex::compiler
