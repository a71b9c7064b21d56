// SPDX-License-Identifier: MIT
#include "veltra/platform/alert.h"

#include "veltra/base/testing/prelude.h"

namespace veltra {
namespace {

class AlertTest : public ::testing::Test, AlertPresenter {
protected:
    AlertTest() : m_before(AlertPresenter::install(this)) {}
    ~AlertTest() override { AlertPresenter::install(m_before); }
    AlertAnswer present(const Alert& alert) noexcept override { return seen = alert, given; }

    std::optional<Alert> seen;
    AlertAnswer given = AlertAnswer::Default;
    AlertPresenter* const m_before;
};

TEST_F(AlertTest, InstalledPresenterGetsTheQuestionAndAnswersThatWereNotOfferedCountAsTimedOut) {
    const struct {
        std::string_view alternate, other;
        AlertAnswer given, taken;
    } cases[] = {
        {"b", "c", AlertAnswer::Default, AlertAnswer::Default},
        {"b", "", AlertAnswer::Alternate, AlertAnswer::Alternate},
        {"b", "c", AlertAnswer::Other, AlertAnswer::Other},
        {"b", "", AlertAnswer::Other, AlertAnswer::TimedOut},
        {"", "c", AlertAnswer::Alternate, AlertAnswer::TimedOut},
        {"b", "c", static_cast<AlertAnswer>(-1), AlertAnswer::TimedOut},
        {"b", "c", static_cast<AlertAnswer>(4), AlertAnswer::TimedOut},
    };
    for (const auto& each : cases) {
        given = each.given;
        EXPECT_EQ(presentAlert({"h", "m", "a", each.alternate, each.other, seconds(1.5)}),
                  each.taken);
        EXPECT_EQ(seen->header, "h");
        EXPECT_EQ(seen->message, "m");
        EXPECT_EQ(seen->defaultButton, "a");
        EXPECT_EQ(seen->alternateButton, each.alternate);
        EXPECT_EQ(seen->otherButton, each.other);
        EXPECT_EQ(seen->timeout, seconds(1.5));
    }
    presentAlert({"h", "m", "", "", "", milliseconds(1500)});
    EXPECT_EQ(seen->defaultButton, "OK");
}

}  // namespace
}  // namespace veltra
