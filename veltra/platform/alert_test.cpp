// SPDX-License-Identifier: MIT
#include "veltra/platform/alert.h"

#include "veltra/base/testing/prelude.h"
#include "veltra/platform/testing/cancelled_thread.h"
#include "veltra/platform/testing/fake_user.h"

namespace veltra {
namespace {

TEST(Alert, InstalledPresenterGetsTheQuestionAndAnswersThatWereNotOfferedCountAsTimedOut) {
    using Case = std::tuple<std::string, std::string, AlertAnswer, AlertAnswer>;
    testing::FakeUser user;
    for (const auto& [alternate, other, given, taken] :
         {Case{"b", "c", AlertAnswer::Default, AlertAnswer::Default},
          Case{"b", "", AlertAnswer::Alternate, AlertAnswer::Alternate},
          Case{"b", "c", AlertAnswer::Other, AlertAnswer::Other},
          Case{"b", "", AlertAnswer::Other, AlertAnswer::TimedOut},
          Case{"", "c", AlertAnswer::Alternate, AlertAnswer::TimedOut},
          Case{"b", "c", static_cast<AlertAnswer>(-1), AlertAnswer::TimedOut},
          Case{"b", "c", static_cast<AlertAnswer>(4), AlertAnswer::TimedOut}}) {
        user.answer = given;
        EXPECT_EQ(presentAlert({"h", "m", "a", alternate, other, seconds(1.5)}), taken);
        EXPECT_EQ(user.text, "h|m|a|" + alternate + "|" + other);
        EXPECT_EQ(user.timeout, seconds(1.5));
    }
    presentAlert({"h", "m", "", "", "", seconds(1.5)});
    EXPECT_EQ(user.text, "h|m|OK||");
    user.whileAsked = ::pthread_testcancel;  // as waiting is one
    EXPECT_TRUE(testing::isCancelledOnlyAfter([] {
        presentAlert({"h", "m", "", "", "", seconds(1.5)});
    }));
}

}  // namespace
}  // namespace veltra
