#include "veltra/platform/linux/alert_ways.h"

#include <array>
#include <cstdlib>
#include <string>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace veltra {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;

constexpr int kNotUsed = 9;

struct Seen {
    int answer = -1;
    std::string text;
};

struct Scene {
    std::string typed = {};        // once the question is there
    std::string typedBefore = {};  // before it
    double timeout = 20.0;
    bool isInBackground = false;
    bool hasTwoButtons = false;
};

int answerHere(const Scene& scene) {
    Alert alert{"Header", "evil \x1b[2J\n", "Resume", "Debugger", "Stop", scene.timeout};
    if (scene.hasTwoButtons) alert.otherButton = {};
    const auto answer = askOnTerminal(alert);
    return answer ? static_cast<int>(*answer) : kNotUsed;
}

int waitForStatus(pid_t child) {
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

// In a session of its own, whose controlling terminal is `name`.
[[noreturn]] void runOnTerminal(const char* name, const Scene& scene) {
    ::setsid();
    const int terminal = ::open(name, O_RDWR);
    ::ioctl(terminal, TIOCSCTTY, 0);
    if (!scene.isInBackground) ::_exit(answerHere(scene));
    const pid_t child = ::fork();
    if (child == 0) {
        ::setpgid(0, 0);
        ::_exit(answerHere(scene));
    }
    ::_exit(waitForStatus(child));
}

Seen play(const Scene& scene) {
    const int master = ::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    ::grantpt(master);
    ::unlockpt(master);
    const std::string name = ::ptsname(master);  // NOLINT(concurrency-mt-unsafe): one thread
    const int keepsOpen = ::open(name.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    EXPECT_GE(::write(master, scene.typedBefore.data(), scene.typedBefore.size()), 0);
    const pid_t child = ::fork();
    if (child == 0) runOnTerminal(name.c_str(), scene);

    Seen seen;
    bool hasTyped = false;
    std::array<char, 512> piece{};
    ::fcntl(master, F_SETFL, O_NONBLOCK);
    siginfo_t end{};
    for (bool isOver = false; !isOver;) {
        isOver =
            ::waitid(P_PID, static_cast<id_t>(child), &end, WEXITED | WNOHANG | WNOWAIT) != 0 ||
            end.si_pid == child;
        for (ssize_t count = 0; (count = ::read(master, piece.data(), piece.size())) > 0;) {
            seen.text.append(piece.data(), static_cast<std::size_t>(count));
        }
        if (!hasTyped && seen.text.find("for 1 (") != std::string::npos) {
            hasTyped = true;
            EXPECT_GE(::write(master, scene.typed.data(), scene.typed.size()), 0);
        }
        ::usleep(2000);
    }
    seen.answer = waitForStatus(child);
    ::close(keepsOpen);
    ::close(master);
    return seen;
}

TEST(TerminalAlert, TypedLinesAreAnswers) {
    const struct {
        Scene scene;
        AlertAnswer answer;
    } cases[] = {
        {{.typed = "1\n"}, AlertAnswer::Default},
        {{.typed = "2\n"}, AlertAnswer::Alternate},
        {{.typed = " 3\t\n"}, AlertAnswer::Other},
        {{.typed = "\n"}, AlertAnswer::Default},
        {{.typed = "4\n22\nno\n3\n", .timeout = 0.2, .hasTwoButtons = true}, AlertAnswer::TimedOut},
        {{.typed = std::string(100, '2') + "\n2\n"}, AlertAnswer::Alternate},
        {{.typed = "2\n", .typedBefore = "3\n"}, AlertAnswer::Alternate},
        {{.typed = "", .timeout = 0.2}, AlertAnswer::TimedOut},
        {{.typed = "\x04"}, AlertAnswer::TimedOut},  // end of file
    };
    for (const auto& one : cases) {
        EXPECT_EQ(play(one.scene).answer, static_cast<int>(one.answer)) << one.scene.typed;
    }
}

TEST(TerminalAlert, QuestionShowsItsPartsAndObeysNothingInThem) {
    EXPECT_THAT(play({.typed = "4\n\n"}).text,
                AllOf(HasSubstr("Header"), HasSubstr("evil ^[[2J"), HasSubstr("1  Resume"),
                      HasSubstr("2  Debugger"), HasSubstr("3  Stop"), HasSubstr("(within 20 s)"),
                      HasSubstr("Please type"), Not(HasSubstr("\x1b"))));
    EXPECT_THAT(play({.typed = "\n", .hasTwoButtons = true}).text, Not(HasSubstr("3  ")));
}

TEST(TerminalAlert, BackgroundProcessesLeaveTheTerminalAlone) {
    const Seen seen = play({.isInBackground = true});
    EXPECT_EQ(seen.answer, kNotUsed);
    EXPECT_EQ(seen.text, "");
}

}  // namespace
}  // namespace veltra
