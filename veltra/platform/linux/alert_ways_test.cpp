// SPDX-License-Identifier: MIT
#include "veltra/platform/linux/alert_ways.h"

#include "veltra/base/testing/prelude.h"
#include "veltra/platform/testing/child_process.h"
#include "veltra/platform/testing/manual_run_loop.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/ioctl.h>

namespace veltra {
namespace {

using namespace ::testing;

constexpr Nanoseconds kMinute = seconds(60.0);
testing::ManualClocks* s_clocks = nullptr;
std::vector<Nanoseconds> s_timeouts;  // that the ways were given

template <int Seconds>
std::optional<AlertAnswer> failsAfter(const Alert& alert) noexcept {
    s_timeouts.push_back(alert.timeout);
    s_clocks->now += seconds(Seconds);
    return std::nullopt;
}

std::optional<AlertAnswer> answersOther(const Alert& alert) noexcept {
    s_timeouts.push_back(alert.timeout);
    return AlertAnswer::Other;
}

TEST(AlertWays, TheFirstOneThatIsOpenAnswersWithinWhatIsLeftOfTheTime) {
    testing::ManualClocks clocks;
    s_clocks = &clocks;
    const auto ask = [&](auto... ways) {
        s_timeouts.clear();
        const std::array<AlertWay, sizeof...(ways)> inTurn{ways...};
        return askInTurn({"", "", "", "", "", kMinute}, inTurn);
    };
    EXPECT_EQ(ask(answersOther, failsAfter<0>), AlertAnswer::Other);
    EXPECT_THAT(s_timeouts, ElementsAre(kMinute));
    EXPECT_EQ(ask(failsAfter<0>, failsAfter<25>, answersOther), AlertAnswer::Other);
    EXPECT_THAT(s_timeouts, ElementsAre(kMinute, kMinute, seconds(35.0)));
    EXPECT_EQ(ask(failsAfter<60>, answersOther), AlertAnswer::TimedOut);
    EXPECT_THAT(s_timeouts, ElementsAre(kMinute));
    EXPECT_EQ(ask(failsAfter<1>, failsAfter<1>), AlertAnswer::TimedOut);
    EXPECT_EQ(ask(), AlertAnswer::TimedOut);
}

struct Scene {
    std::string typed = {};        // once the question is there
    std::string typedBefore = {};  // before it
    double timeout = 20.0;
    std::string_view otherButton = "Stop";
    std::optional<AlertAnswer> answer = AlertAnswer::TimedOut;
    bool isInBackground = false;
};

// What the terminal shows where the scene is played: in a session of its own.
std::string play(const Scene& scene) {
    const int master = ::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    ::grantpt(master);
    ::unlockpt(master);
    const std::string name = ::ptsname(master);  // NOLINT(concurrency-mt-unsafe): one thread
    const int keepsOpen = ::open(name.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    EXPECT_GE(::write(master, scene.typedBefore.data(), scene.typedBefore.size()), 0);
    const auto isAnsweredRight = [&scene] {
        ::setpgid(0, 0);
        return scene.answer ==
               askOnTerminal({std::string(505, '=').append("Header, cut"),
                              "evil \x1b[2J\t\u00E4\n<\u202E\u0085\u2066\u200E\u200F\xFF>\n",
                              "Resume", "Debugger", scene.otherButton, seconds(scene.timeout)});
    };
    const testing::Child child([&] {
        ::setsid();
        ::ioctl(::open(name.c_str(), O_RDWR), TIOCSCTTY, 0);
        return scene.isInBackground ? testing::holdsInChild(isAnsweredRight) : isAnsweredRight();
    });
    std::thread session([&] {
        EXPECT_TRUE(child.holds()) << scene.typed;
        EXPECT_EQ(::write(keepsOpen, "\a", 1), 1);  // the end
    });
    std::string text;
    for (char read = 0; ::read(master, &read, 1) == 1 && read != '\a';) {
        text += read;
        if (text.ends_with("for 1")) {
            EXPECT_GE(::write(master, scene.typed.data(), scene.typed.size()), 0);
        }
    }
    session.join();
    ::close(keepsOpen);
    ::close(master);
    return text;
}

TEST(TerminalAlert, TypedLinesAreAnswers) {
    for (const Scene& scene :
         {Scene{.typed = "1\n", .answer = AlertAnswer::Default},
          Scene{.typed = "2\n", .answer = AlertAnswer::Alternate},
          Scene{.typed = " 3\t\n", .answer = AlertAnswer::Other},
          Scene{.typed = "\n", .answer = AlertAnswer::Default},
          Scene{.typed = "4\n22\nno\n3\n", .timeout = 0.2, .otherButton = ""},
          Scene{.typed = std::string(100, '2').append("\n2\n"), .answer = AlertAnswer::Alternate},
          Scene{.typed = "2\n", .typedBefore = "3\n", .answer = AlertAnswer::Alternate},
          Scene{.timeout = 0.2}, Scene{.typed = "\x04"}})  // end of file
        play(scene);
}

TEST(TerminalAlert, QuestionShowsItsPartsAndObeysNothingInThem) {
    EXPECT_THAT(play({.typed = "4\n\n", .answer = AlertAnswer::Default}),
                AllOf(HasSubstr("=Header,\r"), HasSubstr("evil ^[[2J \u00E4\r"),
                      HasSubstr("\n<" + std::string(6, '?') + ">\r"), HasSubstr("1  Resume"),
                      HasSubstr("2  Debugger"), HasSubstr("3  Stop"), HasSubstr("(within 20 s)"),
                      HasSubstr("Please type"), Not(HasSubstr("\x1b"))));
    EXPECT_THAT(
        play({.typed = "\n", .timeout = 7200.0, .otherButton = "", .answer = AlertAnswer::Default}),
        AllOf(Not(HasSubstr("3  ")), Not(HasSubstr("within"))));
}

TEST(TerminalAlert, BackgroundProcessesLeaveTheTerminalAlone) {
    EXPECT_EQ(play({.answer = std::nullopt, .isInBackground = true}), "");
}

// A clock that asks a second question in the middle of the first.
class AskingClocks final : public Clocks {
public:
    ClockReading monotonic() const noexcept override {
        if (++readings == 2)  // the first one set the deadline
            second = askOnTerminal({"Second", "?", "a", "b", "c", milliseconds(200)});
        return real.monotonic();
    }
    WallTime wall() const noexcept override { return {}; }
    const Clocks& real = Clocks::current();
    mutable int readings = 0;
    mutable std::optional<AlertAnswer> second = AlertAnswer::TimedOut;
};

TEST(TerminalAlert, ASecondQuestionLeavesATakenTerminalAlone) {
    const auto clocks = std::make_unique<AskingClocks>();
    Clocks::install(clocks.get());
    EXPECT_THAT(play({.typed = "2\n", .answer = AlertAnswer::Alternate}), Not(HasSubstr("Second")));
    Clocks::install(nullptr);
}

}  // namespace
}  // namespace veltra
