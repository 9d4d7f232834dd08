// Every case of tests/data, through the exported functions and through the reference engine.
#include "reference/hand_made.h"
#include "reference/pattern_cases.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace {

using namespace tav::reference;

std::string show(const std::vector<Span>& spans) {
    std::string text;
    for (const Span& span : spans) {
        if (span.length < 0)
            text.append("(-)");
        else
            text.append("(")
                .append(std::to_string(span.start))
                .append(",")
                .append(std::to_string(span.start + span.length))
                .append(")");
    }
    return text.empty() ? "none" : text;
}

/// A subject in memory of its own, with the one byte behind it that may be read.
class SubjectMemory {
public:
    SubjectMemory(const std::string& text, char behind) : bytes_(text.begin(), text.end()) {
        bytes_.push_back(static_cast<uint8_t>(behind));
        bytes_.shrink_to_fit();
    }
    Subject subject() const { return {bytes_.data(), static_cast<int32_t>(bytes_.size()) - 1}; }

private:
    std::vector<uint8_t> bytes_;
};

class PatternCaseSection : public testing::Test {
public:
    explicit PatternCaseSection(const Section& section) : section_(section) {}

    void TestBody() override {
        for (const PatternCase& one : section_.cases) {
            SCOPED_TRACE(one.file + ":" + std::to_string(one.line) + "  " + one.source);
            check(one);
        }
    }

private:
    void check(const PatternCase& one) {
        int32_t size = 0;
        ASSERT_EQ(tavsRegExpGetSize(one.pattern.c_str(), &size), tavStsNoError);
        const Block block = makeBlock(static_cast<std::size_t>(size));
        int32_t errorOffset = -1;
        const tavStatus compiled =
            tavsRegExpInit(one.pattern.c_str(), one.options.c_str(), block.get(), &errorOffset);
        ASSERT_EQ(compiled, one.refused ? one.status : tavStsNoError);
        if (one.refused) {
            if (one.errorOffset >= 0) {
                EXPECT_EQ(errorOffset, one.errorOffset);
            }
            return;
        }
        tavsRegExpSetMatchLimit(one.limit.value_or(block->matchLimit), block.get());
        tavsRegExpSetFormat(one.format.value_or(block->format), block.get());
        const SubjectMemory memory(one.subject, one.behind);
        const bool global = (block->options & tav::regex::optionGlobal) != 0;
        const int32_t slots = one.slots.value_or(global ? 100 : block->groupCount);
        const tavStatus status = one.truncated ? tavStsResultsTruncated : one.status;
        checkLibrary(one, *block, memory.subject(), slots, status);
        if (status >= 0) checkReference(one, *block, memory.subject(), slots, status);
    }

    void checkLibrary(const PatternCase& one, tavRegExpContext& block, Subject subject, int32_t slots,
                      tavStatus status) {
        std::vector<tavRegExpFindResult> results(static_cast<std::size_t>(slots) + 1);
        int32_t found = slots;
        ASSERT_EQ(tavsRegExpFind_8u(subject.bytes, subject.length, &block, results.data(), &found), status);
        if (status < 0) return;
        std::vector<Span> spans;
        for (int32_t i = 0; i < found; ++i) {
            const tavRegExpFindResult& result = results[static_cast<std::size_t>(i)];
            const bool set = result.start != nullptr;
            spans.push_back({set ? static_cast<int32_t>(result.start - subject.bytes) : -1, result.length});
        }
        EXPECT_EQ(show(spans), show(one.spans)) << "by the library";
    }

    void checkReference(const PatternCase& one, const tavRegExpContext& block, Subject subject, int32_t slots,
                        tavStatus status) {
        SearchSettings settings;
        settings.capacity = slots;
        settings.global = (block.options & tav::regex::optionGlobal) != 0;
        SearchResult result;
        withLargeStack([&] { result = search(programIn(block), subject, settings); });
        EXPECT_EQ(result.status, status) << "by the reference";
        EXPECT_EQ(show(result.entries), show(one.spans)) << "by the reference";
    }

    const Section& section_;
};

/// "a lazy repeat skips" -> "ALazyRepeatSkips".
std::string nameOf(const std::string& title) {
    std::string name;
    bool upper = true;
    for (const char c : title) {
        const bool letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
        if (letter) name += upper && c >= 'a' ? static_cast<char>(c - 'a' + 'A') : c;
        upper = !letter;
    }
    return name;
}

std::vector<Section>& allSections() {
    static std::vector<Section> sections = readPatternCases();
    return sections;
}

const bool registered = [] {
    for (const Section& section : allSections())
        testing::RegisterTest("PatternCases", nameOf(section.title).c_str(), nullptr, nullptr, __FILE__,
                              __LINE__,
                              [&section]() -> testing::Test* { return new PatternCaseSection(section); });
    return true;
}();

TEST(PatternCaseData, HoldsHundredsOfCasesAndNoSectionTwice) {
    std::size_t count = 0;
    std::set<std::string> names;
    for (const Section& section : allSections()) {
        EXPECT_TRUE(names.insert(nameOf(section.title)).second) << section.title;
        EXPECT_FALSE(section.cases.empty()) << section.title;
        count += section.cases.size();
    }
    EXPECT_TRUE(registered);
    EXPECT_GE(count, 300u);
}

} // namespace
