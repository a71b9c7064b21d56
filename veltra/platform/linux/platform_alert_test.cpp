#include "veltra/platform/clock.h"
#include "veltra/platform/linux/alert_ways.h"

#include <array>
#include <vector>

#include <gmock/gmock.h>

namespace veltra {
namespace {

using ::testing::ElementsAre;

std::uint64_t now = 0;
std::vector<double> timeouts;  // that the ways were given

class HandClock final : public Clocks {
public:
    ClockReading monotonic() const noexcept override { return {now, 0}; }
    WallTime wall() const noexcept override { return {}; }
};

template <std::uint64_t Seconds>
std::optional<AlertAnswer> failsAfter(const Alert& alert) noexcept {
    timeouts.push_back(alert.timeoutSeconds);
    now += Seconds * 1'000'000'000;
    return std::nullopt;
}

std::optional<AlertAnswer> answersOther(const Alert& alert) noexcept {
    timeouts.push_back(alert.timeoutSeconds);
    return AlertAnswer::Other;
}

TEST(AlertWays, TheFirstOneThatIsOpenAnswersWithinWhatIsLeftOfTheTime) {
    const HandClock clock;
    const Clocks* before = Clocks::install(&clock);
    const Alert alert{"", "", "", "", "", 60.0};
    const auto ask = [&](auto... ways) {
        timeouts.clear();
        return askInTurn(alert, std::array<AlertWay, sizeof...(ways)>{ways...});
    };

    EXPECT_EQ(ask(answersOther, failsAfter<0>), AlertAnswer::Other);
    EXPECT_THAT(timeouts, ElementsAre(60.0));
    EXPECT_EQ(ask(failsAfter<0>, failsAfter<25>, answersOther), AlertAnswer::Other);
    EXPECT_THAT(timeouts, ElementsAre(60.0, 60.0, 35.0));
    EXPECT_EQ(ask(failsAfter<60>, answersOther), AlertAnswer::TimedOut);
    EXPECT_THAT(timeouts, ElementsAre(60.0));
    EXPECT_EQ(ask(failsAfter<1>, failsAfter<1>), AlertAnswer::TimedOut);
    EXPECT_EQ(ask(), AlertAnswer::TimedOut);
    Clocks::install(before);
}

}  // namespace
}  // namespace veltra
