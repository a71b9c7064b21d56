// SPDX-License-Identifier: MIT
#include "veltra/diagnostics/assertion.h"

#include "veltra/base/testing/prelude.h"
#include "veltra/diagnostics/testing/log_fakes.h"
#include "veltra/platform/testing/environment.h"
#include "veltra/platform/testing/fake_user.h"

namespace veltra {
namespace {

std::string shown(const std::string& message) {
    return "Assertion failed|" + message + "|Resume|Debugger|Stop";
}

TEST(Assertion, IsLoggedThenShown) {
    setEnvironment("VELTRA_TRACE_WITHOUT_BANNER", nullptr);
    LogWorld world;
    testing::FakeUser user;
    user.answer = AlertAnswer::Default;
    user.whileAsked = [&world] { EXPECT_FALSE(world.records.empty()); };
    EXPECT_EQ(dbgASSERT(0, "a %% b < 1", "f()", nullptr), 0);
    EXPECT_EQ(world.line(),
              "2024-01-31 09:05:07.042 prog[123:a0b] dbgASSERT: "
              "ASSERT(a % b < 1) in f() failed.\n");
    EXPECT_EQ(world.records[0].fields[LogRecord::Level].second, "3");
    EXPECT_EQ(user.text, shown("ASSERT(a %% b < 1) in f() failed.\n"));
    EXPECT_EQ(user.timeout, seconds(60.0));

    const std::string expression(5000, 'x');
    dbgASSERT(0, expression.c_str(), "f()", nullptr);
    EXPECT_EQ(user.text, shown("ASSERT(" + std::string(4095 - 7, 'x')));
    EXPECT_EQ(world.lines.back().back(), '\n');
    const std::string notes = expression.substr(0, 4095 - 7 - 2) + "\xE2\x99\xAA";
    dbgASSERT(0, notes.c_str(), "f()", nullptr);
    EXPECT_EQ(user.text, shown("ASSERT(" + std::string(4095 - 7 - 2, 'x'))) << "half a character";
    dbgASSERT(0, nullptr, "caf\x8E", nullptr);
    EXPECT_EQ(user.text, shown("ASSERT((null)) in caf\x8E failed.\n"));
}

TEST(Assertion, TheCounterDecidesWhetherItIsShownAndTheAnswerWhatFollows) {
    using Answer = AlertAnswer;
    constexpr auto kLeast = std::numeric_limits<std::int32_t>::min();
    constexpr std::int32_t kNone = 7;  // stands for the call without a counter
    for (const Answer answer :
         {Answer::Default, Answer::Alternate, Answer::Other, Answer::TimedOut}) {
        for (const std::int32_t before : {kNone, 3, 1, -1, 0, -2, kLeast}) {
            LogWorld world;
            testing::FakeUser user;
            user.answer = answer;
            std::int32_t counter = before;
            std::int32_t* const given = before == kNone ? nullptr : &counter;
            if (given == nullptr && answer == Answer::Other) {
                EXPECT_EXIT(std::atexit([] { std::fputs("handled", stderr); });
                            dbgASSERT(0, "x", "f()", given), ::testing::ExitedWithCode(1),
                            "handled");
                continue;
            }
            const bool isShown = before > 0 || before == -1;
            const std::int32_t left = before > 0 ? before - 1 : before;
            EXPECT_EQ(dbgASSERT(0, "x", "f()", given), isShown && answer == Answer::Alternate);
            EXPECT_EQ(counter, given == nullptr                     ? before
                               : isShown && answer == Answer::Other ? 0
                                                                    : left);
            EXPECT_EQ(user.asked, isShown ? 1 : 0);
            EXPECT_EQ(world.records.size(), isShown ? 1U : 0U);
            const char* const third = given != nullptr ? "|Don't show again" : "|Stop";
            EXPECT_EQ(user.text.ends_with(third), isShown);
            EXPECT_EQ(dbgAssertionFailed(), 1);
            EXPECT_EQ(dbgAssertionFailed(), 0);
            dbgASSERT(0, "x", "f()", given);
            const std::int32_t after = counter;
            EXPECT_EQ(dbgASSERT(-1, "x", "f()", given), 0);
            EXPECT_EQ(counter, after);
            EXPECT_EQ(dbgAssertionFailed(), 0) << "an assertion that holds clears the flag";
        }
    }
}

}  // namespace
}  // namespace veltra
