// Every exported function with every buffer between inaccessible pages: lengths 0 to 130, each buffer ending
// where the rear page begins, beginning where the front page ends, and at every alignment behind that. The
// table in every_export.cpp has a row for each line of the export list. Where a buffer lies must not show in
// the results.
#include "frame/every_export.h"
#include "frame/export_list.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <string>
#include <vector>

namespace {

using namespace tavtest;

constexpr std::size_t longest = 130;

} // namespace

TEST(GuardPages, HoldForEveryExportAtAllLengthsAndAlignments) {
    const Table table = everyExport();
    for (const auto& entry : table) {
        const std::string_view name = entry.first;
        EXPECT_TRUE(std::any_of(std::begin(tav::test::exportList), std::end(tav::test::exportList),
                                [&](const tav::test::Export& one) { return one.name == name; }))
            << name << " is not exported";
    }
    for (const tav::test::Export& one : tav::test::exportList) {
        const auto row = table.find(one.name);
        if (row == table.end()) {
            ADD_FAILURE() << one.name << " has no row in the table";
            continue;
        }
        SCOPED_TRACE(one.name);
        for (std::size_t length = 0; length <= longest; ++length) {
            SCOPED_TRACE(length);
            Call first(length, {true, 0});
            row->second(first);
            const std::string expected = first.results();
            for (std::size_t shift = 0; shift < 16; ++shift) {
                Call call(length, {false, shift});
                row->second(call);
                EXPECT_EQ(call.faults(), 0);
                ASSERT_EQ(call.results(), expected) << "shift " << shift;
            }
        }
    }
}

TEST(GuardPages, OptionsCutOffAtEveryByte) {
    const std::string options = "gimsxxsmig";
    for (std::size_t length = 0; length <= options.size(); ++length) {
        Call call(length, {true, 0});
        const tavRegExpContext* const context = compiled(call, "a b", options.substr(0, length).c_str());
        EXPECT_EQ(context->groupCount, 1);
    }
}

TEST(GuardPages, TemplatesCutOffAtEveryByte) {
    const std::string text = "a$1b$&c\\$2d\\\\$12$99999999999$10\\";
    for (std::size_t length = 0; length <= text.size(); ++length) {
        Call call(length, {true, 0});
        const std::string part = text.substr(0, length);
        int32_t* const size = call.array(1, int32_t{0});
        EXPECT_EQ(tavsRegExpReplaceGetSize(call.text(part), size), tavStsNoError);
        auto* const context =
            reinterpret_cast<tavRegExpReplaceContext*>(call.block(static_cast<std::size_t>(*size)));
        const bool open = !part.empty() && part.back() == '$';
        EXPECT_EQ(tavsRegExpReplaceInit(call.text(part), context),
                  open ? tavStsBadGroupReference : tavStsNoError)
            << part;
    }
}

/// A sequence that the subject's end cuts off must be taken as malformed, whatever bytes stand behind it.
TEST(GuardPages, SubjectsCutInsideEveryKindOfSequence) {
    static const char* const sequences[] = {
        "\xC3\xA9", "\xE2\x82\xAC", "\xF0\x9F\x98\x80", "\xF8\x88\x80\x80\x80", "\xFC\x84\x80\x80\x80\x80",
        "\xCC\x81", "\xE0\xA4\xBE"};
    static const char* const patterns[] = {
        "a.+",         "a(.)(.)?",     "\\X+$",         "[^a]+",    "[\\x{80}-\\x{10ffff}]+|a$",
        "\\x{e9}|$",   "(\\x{20ac})*", "\\p{L}+\\P{L}", "\\C+?$",   "(?i)a\\x{c9}|.$",
        "(?<=.).$",    "(?<!\\X)a",    "(?=.$)..",      "\\w+\\W+", "(?>.+)|a",
        "[b\xC3\xA9]", "(a.?)\\1?",    "\\S+\\s*",      ".{2,}?$",  "(?:[^\\x{e9}]|\\x{1F600})+"};
    for (const char* const pattern : patterns) {
        for (const char* const options : {"", "g", "is"}) {
            for (const char* const sequence : sequences) {
                const std::string whole = std::string("a") + sequence;
                for (std::size_t length = 1; length <= whole.size(); ++length) {
                    for (const int32_t format : {1, 0}) {
                        Call call(length, {true, 0});
                        tavRegExpContext* const context = compiled(call, pattern, options);
                        context->format = format;
                        const auto spans = [&](const uint8_t* subject) {
                            std::array<tavRegExpFindResult, 12> found;
                            int32_t count = static_cast<int32_t>(found.size());
                            EXPECT_EQ(tavsRegExpFind_8u(subject, static_cast<int32_t>(length), context,
                                                        found.data(), &count),
                                      tavStsNoError);
                            std::vector<int64_t> all;
                            for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i) {
                                all.push_back(found[i].start == nullptr ? -1 : found[i].start - subject);
                                all.push_back(found[i].length);
                            }
                            return all;
                        };
                        const std::vector<uint8_t> cut(whole.begin(),
                                                       whole.begin() + static_cast<std::ptrdiff_t>(length));
                        std::vector<uint8_t> continued = cut;
                        continued.insert(continued.end(), {0x80, 0x80, 0x80, 0x80, 0x80, 0x80});
                        EXPECT_EQ(spans(call.in(cut)), spans(continued.data()))
                            << pattern << " /" << options << ", " << length << " bytes of "
                            << testing::PrintToString(whole) << ", format " << format;
                    }
                }
            }
        }
    }
}
