#include "veltra/diagnostics/assertion.h"

#include "veltra/diagnostics/log_fakes.h"
#include "veltra/platform/alert.h"
#include "veltra/platform/testing/environment.h"

#include <cstdlib>
#include <optional>
#include <string>

#include <gtest/gtest.h>

namespace veltra {
namespace {

class Presenter final : public AlertPresenter {
public:
    explicit Presenter(const LogWorld& world) : m_world(world) { install(this); }
    ~Presenter() override { install(nullptr); }

    AlertAnswer present(const Alert& alert) noexcept override {
        ++count;
        header = alert.header;
        message = alert.message;
        buttons = std::string(alert.defaultButton) + "|" + std::string(alert.alternateButton) +
                  "|" + std::string(alert.otherButton);
        timeout = alert.timeoutSeconds;
        recordsBefore = m_world.records.size();
        return answer;
    }

    AlertAnswer answer = AlertAnswer::Default;
    int count = 0;
    std::string header, message, buttons;
    double timeout = 0;
    std::size_t recordsBefore = 0;

private:
    const LogWorld& m_world;
};

TEST(Assertion, IsLoggedThenShown) {
    setEnvironment("VELTRA_TRACE_WITHOUT_BANNER", nullptr);
    LogWorld world;
    Presenter presenter(world);
    EXPECT_EQ(dbgASSERT(0, "a %% b < 1", "f()", nullptr), 0);
    EXPECT_EQ(world.line(),
              "2024-01-31 09:05:07.042 prog[123:a0b] dbgASSERT: "
              "ASSERT(a % b < 1) in f() failed.\n");
    EXPECT_EQ(world.records[0].fields[LogRecord::Level].second, "3");
    EXPECT_EQ(presenter.recordsBefore, 1U);
    EXPECT_EQ(presenter.header, "Assertion failed");
    EXPECT_EQ(presenter.message, "ASSERT(a %% b < 1) in f() failed.\n");
    EXPECT_EQ(presenter.buttons, "Resume|Debugger|Stop");
    EXPECT_EQ(presenter.timeout, 60.0);

    const std::string expression(5000, 'x');
    dbgASSERT(0, expression.c_str(), "f()", nullptr);
    EXPECT_EQ(presenter.message, "ASSERT(" + std::string(4095 - 7, 'x'));
    EXPECT_EQ(world.lines.back().back(), '\n');
    dbgASSERT(0, nullptr, "caf\x8E", nullptr);
    EXPECT_EQ(presenter.message, "ASSERT((null)) in caf\x8E failed.\n");
}

TEST(Assertion, CountersAndAnswers) {
    struct Row {
        std::optional<std::int32_t> counter;
        AlertAnswer answer;
        int result;
        std::int32_t counterAfter;
        int alerts;
    };
    constexpr auto kLeast = std::numeric_limits<std::int32_t>::min();
    const Row rows[] = {
        {std::nullopt, AlertAnswer::Default, 0, 0, 1},
        {std::nullopt, AlertAnswer::Alternate, 1, 0, 1},
        {std::nullopt, AlertAnswer::TimedOut, 0, 0, 1},
        {3, AlertAnswer::Default, 0, 2, 1},
        {3, AlertAnswer::Alternate, 1, 2, 1},
        {3, AlertAnswer::Other, 0, 0, 1},
        {1, AlertAnswer::TimedOut, 0, 0, 1},
        {-1, AlertAnswer::Default, 0, -1, 1},
        {-1, AlertAnswer::Alternate, 1, -1, 1},
        {-1, AlertAnswer::Other, 0, 0, 1},
        {0, AlertAnswer::Alternate, 0, 0, 0},
        {-2, AlertAnswer::Alternate, 0, -2, 0},
        {kLeast, AlertAnswer::Other, 0, kLeast, 0},
    };
    for (const Row& row : rows) {
        LogWorld world;
        Presenter presenter(world);
        presenter.answer = row.answer;
        std::int32_t counter = row.counter.value_or(0);
        EXPECT_EQ(dbgASSERT(0, "x", "f()", row.counter ? &counter : nullptr), row.result);
        EXPECT_EQ(counter, row.counterAfter);
        EXPECT_EQ(presenter.count, row.alerts);
        EXPECT_EQ(world.records.size(), static_cast<std::size_t>(row.alerts));
        if (row.counter && row.alerts > 0) {
            EXPECT_EQ(presenter.buttons, "Resume|Debugger|Don't show again");
        }
        EXPECT_EQ(dbgAssertionFailed(), 1);
        EXPECT_EQ(dbgAssertionFailed(), 0);

        counter = row.counter.value_or(0);
        dbgASSERT(0, "x", "f()", row.counter ? &counter : nullptr);
        const std::int32_t before = counter;
        EXPECT_EQ(dbgASSERT(-1, "x", "f()", &counter), 0);
        EXPECT_EQ(counter, before);
        EXPECT_EQ(dbgAssertionFailed(), 0) << "an assertion that holds clears the flag";
    }
}

TEST(AssertionDeathTest, StopEndsTheProcessWithStatusOne) {
    LogWorld world;
    Presenter presenter(world);
    presenter.answer = AlertAnswer::Other;
    EXPECT_EXIT(dbgASSERT(0, "x", "f()", nullptr), ::testing::ExitedWithCode(1), "");
}

}  // namespace
}  // namespace veltra
