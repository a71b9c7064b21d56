// SPDX-License-Identifier: MIT
#include "veltra/platform/linux/alert_helper.h"

#include "veltra/base/testing/prelude.h"
#include "veltra/platform/linux/alert_helper_search.h"
#include "veltra/platform/linux/alert_ways.h"
#include "veltra/platform/testing/child_process.h"
#include "veltra/platform/testing/temporary_folder.h"

#include <csignal>

#include <gmock/gmock.h>

namespace veltra {
namespace {

using namespace ::testing;
namespace fs = std::filesystem;

const Alert kAlert{
    "-h", "--message=-x\nline\xC3\xA9", "Resume", "Debugger", "-Stop", milliseconds(300)};

class AlertHelperTest : public Test {
protected:
    ~AlertHelperTest() override {
        EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1) << "a child was left behind";
        EXPECT_EQ(errno, ECHILD);
    }

    std::string program(const std::string& relative, const std::string& script) const {
        return testing::putProgram(m_folder.path / relative, script);
    }

    // A helper that answers or ends has all the time that a busy machine takes.
    std::optional<AlertAnswer> ask(const std::string& script, Nanoseconds grace = seconds(60.0),
                                   const Alert& alert = kAlert) const {
        return askHelper(alert, program("helper", script).c_str(), grace);
    }
    std::string written() const { return testing::textOf(m_folder / "written"); }

    testing::TemporaryFolder m_folder;
};

TEST_F(AlertHelperTest, OnlyAProperAnswerInTimeCountsWhateverTheExitStatus) {
    const std::pair<std::optional<AlertAnswer>, std::vector<std::string>> cases[] = {
        {AlertAnswer::Default, {"echo default"}},
        {AlertAnswer::Alternate, {"echo alternate; exit 1"}},
        {AlertAnswer::Other,
         {"printf oth; printf 'er\\n'; kill -9 $$", "printf 'other\\nmore'",
          "echo other; exec sleep 600"}},
        {AlertAnswer::TimedOut, {"echo timeout"}},
        {std::nullopt,
         {"kill -6 $$", "echo", "echo defaults", "printf default", "echo other >&2",
          "echo a line that is longer than any answer", "exec >&-; exec <&-; exec sleep 600"}},
    };
    for (const auto& [answer, scripts] : cases)
        for (const std::string& script : scripts)
            EXPECT_EQ(ask(script), answer) << script;
    EXPECT_EQ(ask("exec sleep 600", milliseconds(100)), AlertAnswer::TimedOut);
    EXPECT_EQ(askHelper(kAlert, (m_folder / "missing").c_str()), std::nullopt);
}

TEST_F(AlertHelperTest, TextsArriveAsTheyAreAndNothingElseOfTheHostDoes) {
    const int leaky = ::dup2(STDERR_FILENO, 77);  // would survive exec
    sigset_t blocked{}, before{};
    ::sigaddset(&blocked, SIGUSR1);
    ::pthread_sigmask(SIG_BLOCK, &blocked, &before);
    const auto handler = std::signal(SIGUSR2, SIG_IGN);
    EXPECT_EQ(ask("cd " + m_folder.path.string() +
                  "; { printf '[%s]' \"$@\"; echo /proc/$$/fd/*; } > written"
                  "; for signal in USR1 USR2"
                  "; do bash -c 'kill -'$signal' $$; echo survives '$signal >> written; done"
                  "; echo alternate"),
              AlertAnswer::Alternate);
    std::signal(SIGUSR2, handler);
    ::pthread_sigmask(SIG_SETMASK, &before, nullptr);

    EXPECT_THAT(written(),
                AllOf(HasSubstr("[--header=-h][--message=--message=-x\nline\xC3\xA9]"
                                "[--default=Resume][--alternate=Debugger][--other=-Stop]"
                                "[--timeout=300][--plain]"),
                      HasSubstr("/fd/1"), Not(HasSubstr("/fd/77")), Not(HasSubstr("survives"))));
    ::close(leaky);
}

TEST_F(AlertHelperTest, ALongTextIsCutBetweenTwoCharacters) {
    std::string notes;
    while (notes.size() < 20'000)
        notes += "\xE2\x99\xAA";
    ask("printf %s \"$3\" > " + (m_folder / "written") + "; echo default", seconds(60),
        {"", notes, "", "", "", milliseconds(300)});
    EXPECT_EQ(written(), "--message=" + notes.substr(0, 16'383));
}

TEST_F(AlertHelperTest, HostsThatIgnoreTheirChildrenOrCloseStandardDescriptorsGetTheAnswerToo) {
    const std::string helper = program("helper", "echo other");
    EXPECT_TRUE(testing::holdsInChild([&] {
        std::signal(SIGCHLD, SIG_IGN);
        for (const int number : {0, 1, 2})
            ::close(number);
        return askHelper(kAlert, helper.c_str(), seconds(30.0)) == AlertAnswer::Other;
    }));
}

TEST_F(AlertHelperTest, IsFoundBesideTheLibraryInstalledAndInABuildTreeWhenItCanBeTrusted) {
    const std::string library = program("usr/lib/machine/libx.so", "");
    EXPECT_EQ(findAlertHelperNear(library.c_str()), "");
    EXPECT_EQ(findAlertHelperNear((m_folder / "usr/none.so").c_str()), "");
    for (const char* place : {"usr/veltra/qt", "usr/lib/qt", "usr/libexec/veltra",
                              "usr/lib/libexec/veltra", "usr/lib/machine"}) {
        const std::string helper = program(std::string(place) + "/veltra-alert", "");
        EXPECT_EQ(fs::canonical(findAlertHelperNear(library.c_str())), helper);
    }
    const std::string nearest = m_folder / "usr/lib/machine/veltra-alert";
    for (const int unfit : {0644, 0757}) {
        fs::permissions(nearest, fs::perms(unfit));
        EXPECT_NE(findAlertHelperNear(library.c_str()), nearest);
    }
    fs::permissions(nearest, fs::perms(0755));
    EXPECT_EQ(findAlertHelperNear(library.c_str()), nearest);
    const bool isStrangers = ::chown(nearest.c_str(), 12345, 0) == 0;  // as root alone
    EXPECT_EQ(findAlertHelperNear(library.c_str()) != nearest, isStrangers);
    fs::remove(nearest);
    fs::create_directory(nearest);
    EXPECT_NE(findAlertHelperNear(library.c_str()), nearest);
}

// NOLINTBEGIN(concurrency-mt-unsafe): there is one thread

// Presses `keys` in the window of the real helper, on a display of its own.
std::optional<AlertAnswer> answerInWindow(const std::string& keys) {
    std::FILE* server = ::popen("echo $$; exec timeout 100 Xvfb -displayfd 1 2>/dev/null", "r");
    pid_t serverId = -1;
    int display = -1;
    EXPECT_EQ(std::fscanf(server, "%d %d", &serverId, &display), 2);
    ::setenv("DISPLAY", (":" + std::to_string(display)).c_str(), 1);
    const std::string press = "exec timeout 60 xdotool search --sync --onlyvisible --name '^" +
                              std::string(program_invocation_short_name) +
                              "$' windowfocus sleep 0.2 key " + keys + " >/dev/null 2>&1";
    std::FILE* user = ::popen(keys.empty() ? "true" : press.c_str(), "w");
    Alert alert = kAlert;
    if (!keys.empty()) alert.timeout = seconds(60.0);
    const auto answer = askInWindow(alert);
    ::pclose(user);
    if (serverId > 0) ::kill(serverId, SIGTERM);
    ::pclose(server);
    ::unsetenv("DISPLAY");
    return answer;
}

TEST_F(AlertHelperTest, RealWindowIsAnsweredByKeysAndByTime) {
    if (std::system("command -v Xvfb >/dev/null && command -v xdotool >/dev/null") != 0 ||
        findAlertHelper().empty())
        GTEST_SKIP() << "needs Xvfb, xdotool and the helper";
    ::unsetenv("WAYLAND_DISPLAY");
    ::unsetenv("DISPLAY");
    // Without a display, with one that is not there, and where nobody sees the window.
    for (const auto& [name, value] : {std::pair("DBUS_SESSION_BUS_ADDRESS", "disabled:"),
                                      {"DISPLAY", ":99999"},
                                      {"QT_QPA_PLATFORM", "offscreen"}}) {
        ::setenv(name, value, 1);
        EXPECT_EQ(askInWindow(kAlert), std::nullopt) << value;
    }
    ::unsetenv("QT_QPA_PLATFORM");
    EXPECT_EQ(answerInWindow("Tab Return"), AlertAnswer::Alternate);
    EXPECT_EQ(answerInWindow("Tab Tab space"), AlertAnswer::Other);
    EXPECT_EQ(answerInWindow("Escape"), AlertAnswer::Default);
    EXPECT_EQ(answerInWindow(""), AlertAnswer::TimedOut);
}

// NOLINTEND(concurrency-mt-unsafe)

}  // namespace
}  // namespace veltra
