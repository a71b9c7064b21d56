// SPDX-License-Identifier: MIT
#include "veltra/diagnostics/report_sections.h"

#include "veltra/base/testing/prelude.h"

namespace veltra {
namespace {

constexpr ReportSection kSections[] = {
    {"test b", [](char* text, std::size_t) noexcept { *text = '2'; }},
    {"test a", [](char* text, std::size_t) noexcept { *text = '1'; }},
    {"test c", [](char* /*text*/, std::size_t /*capacity*/) noexcept {}},
    {"test d",
     [](char* text, std::size_t capacity) noexcept {
         for (std::size_t place = 0; place < capacity; ++place)
             text[place] = "\xC3\xA9"[place % 2];
     }},
};

struct Added {
    Added() {
        for (const ReportSection& section : kSections)
            EXPECT_TRUE(addReportSection(section));
    }
    ~Added() {
        for (const ReportSection& section : kSections)
            removeReportSection(section);
    }
};

TEST(ReportSections, AreWrittenByNameAndCutWhereTheTextEnds) {
    const std::string before = reportSections();
    {
        const Added added;
        const Added twice;
        std::string expected = "test a: 1\ntest b: 2\ntest d: ";
        for (int character = 0; character < 511; ++character)
            expected += "\xC3\xA9";
        expected += '\n';
        const std::string all = reportSections();
        EXPECT_NE(all.find(expected), std::string::npos) << all;
        EXPECT_EQ(all.size(), before.size() + expected.size());
        for (std::size_t capacity = 0; capacity <= all.size() + 2; ++capacity) {
            std::vector<char> text(capacity + 1, '#');
            const std::size_t size = writeReportSections(text.data(), capacity);
            const std::size_t fitting = std::min(all.size(), capacity - (capacity > 0 ? 1 : 0));
            const bool isInside = fitting < all.size() && all[fitting] == '\xA9';
            ASSERT_EQ(size, fitting - (isInside ? 1 : 0));
            ASSERT_EQ(all.compare(0, size, text.data(), size), 0);
            ASSERT_TRUE(text[capacity] == '#' && (capacity == 0 || text[size] == '\0'));
        }
    }
    EXPECT_EQ(reportSections(), before);
}

TEST(ReportSections, EndAtTheirLimitAndComeAndGoOnEveryThread) {
    std::vector<ReportSection> many(kMostReportSections + 1, kSections[0]);
    EXPECT_GT(std::count_if(many.begin(), many.end(), addReportSection), 0);
    EXPECT_FALSE(addReportSection(many.back()));
    std::for_each(many.begin(), many.end(), removeReportSection);

    testing::onThreads(std::size(kSections), [](int thread) {
        const ReportSection& section = kSections[thread];
        for (int round = 0; round < 200; ++round) {
            EXPECT_TRUE(addReportSection(section));
            const bool isListed = reportSections().find(section.name) != std::string::npos;
            EXPECT_EQ(isListed, thread != 2);
            removeReportSection(section);
        }
    });
    EXPECT_EQ(reportSections().find("test"), std::string::npos);
}

}  // namespace
}  // namespace veltra
