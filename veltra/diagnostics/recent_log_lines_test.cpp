// SPDX-License-Identifier: MIT
#include "veltra/diagnostics/recent_log_lines.h"

#include "veltra/base/testing/prelude.h"
#include "veltra/diagnostics/log.h"
#include "veltra/diagnostics/log_ring.h"
#include "veltra/diagnostics/testing/log_fakes.h"

#include <gmock/gmock.h>

namespace veltra {
namespace {

using ::testing::ElementsAre;

std::vector<std::string> linesOf(const LogRing& ring) {
    std::vector<std::string> lines;
    LogRing::Copy copy;
    for (std::size_t number = ring.first(); number != ring.end(); ++number)
        lines.emplace_back(ring.read(number, copy));
    return lines;
}

TEST(RecentLogLines, AreWholeLinesInTheirOrderCutBetweenCharacters) {
    LogRing ring;
    EXPECT_TRUE(linesOf(ring).empty());
    ring.add("banner ", "message\n");
    ring.add("", "two\nlines\n\n");
    ring.add("", "");
    EXPECT_THAT(linesOf(ring), ElementsAre("banner message", "two lines ", ""));

    const std::string most(LogRing::kLongestLine, 'x');
    for (const std::size_t length : {std::size_t{0}, std::size_t{2}, most.size()})
        for (const char* rest : {"", "\xC3\xA9", "\xC3\xA9y", "\xE2\x99\xAA"})
            for (std::size_t less = 0; less < 4; ++less) {
                const std::string whole = most.substr(less) + rest;
                std::string expected = whole.substr(0, LogRing::kLongestLine);
                if (whole.size() > expected.size() && rest[0] != '\0' && less > 0 &&
                    less < std::string(rest).find('y') && less < std::string(rest).size())
                    expected.resize(most.size() - less);
                ring.add(whole.substr(0, length), whole.substr(std::min(length, whole.size())));
                EXPECT_EQ(linesOf(ring).back(), expected) << length << rest << less;
            }
    for (int i = 0; i < 100; ++i)
        ring.add("", std::to_string(i));
    EXPECT_TRUE(linesOf(ring).size() == 64 && linesOf(ring).front() == "36");
}

// Each line holds one letter only; a torn one would hold several.
TEST(RecentLogLines, AreNeverTorn) {
    const auto ring = std::make_unique<LogRing>();
    std::vector<std::jthread> writers;
    for (std::size_t t = 0; t < 4; ++t)
        writers.emplace_back([&ring, t](const std::stop_token& isEnough) {
            for (std::size_t i = 0; !isEnough.stop_requested(); ++i)
                ring->add("", std::string(1 + i % 300, static_cast<char>('a' + (i + t) % 26)));
        });
    LogRing::Copy copy;
    for (long found = 0; found < 50'000 || ring->end() < 80'000;)
        for (std::size_t number = ring->first(); number != ring->end(); ++number) {
            const std::string_view line = ring->read(number, copy);
            if (line.empty()) continue;
            ++found;
            ASSERT_EQ(line.find_first_not_of(line[0]), line.npos);
        }
    writers.clear();
    for (const std::string& line : linesOf(*ring))
        EXPECT_EQ(line.find_first_not_of(line.empty() ? 'x' : line[0]), line.npos);
}

TEST(RecentLogLines, AreWhatWasLoggedWhoeverReadsTheLog) {
    LogWorld world;
    world.kind = LogWorld::Kind::Unusable;
    QKLogCString(kLogError, true, "tag", "message %d\n", 1);
    QKLogCString(kLogDebug, false, "tag alone", nullptr);
    QKLogCString(kLogDebug + 1, false, "not", "logged");
    EXPECT_TRUE(world.lines.empty());
    std::vector<std::string> lines;
    VLVisitRecentLogLines(
        [](void* context, const char* line, size_t length) {
            static_cast<std::vector<std::string>*>(context)->emplace_back(line, length);
        },
        &lines);
    ASSERT_GE(lines.size(), 2u);
    EXPECT_EQ(lines[lines.size() - 2], "2024-01-31 09:05:07.042 prog[123:a0b] tag: message 1");
    EXPECT_EQ(lines.back(), "tag alone");
    VLVisitRecentLogLines(nullptr, nullptr);
}

}  // namespace
}  // namespace veltra
