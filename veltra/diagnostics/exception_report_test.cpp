// SPDX-License-Identifier: MIT
#include "veltra/diagnostics/exception_report.h"

#include "veltra/base/testing/in_force.h"
#include "veltra/base/testing/prelude.h"
#include "veltra/diagnostics/backtracing_exception.h"
#include "veltra/diagnostics/log.h"
#include "veltra/diagnostics/report_sections.h"
#include "veltra/diagnostics/testing/ended_child.h"
#include "veltra/diagnostics/testing/log_fakes.h"
#include "veltra/platform/application_facts.h"
#include "veltra/platform/symbol_names.h"
#include "veltra/platform/symboliser.h"
#include "veltra/platform/termination.h"
#include "veltra/platform/testing/fake_user.h"

#include <gmock/gmock.h>

namespace veltra {
namespace {

using namespace ::testing;
using testing::EndedChild;

// A user, and names of functions by program.
struct Answering final : testing::InForce<Symboliser> {
    ~Answering() override { installTerminator(nullptr); }
    std::string symbolise(std::span<const std::uintptr_t> addresses) noexcept override {
        symbolised.assign(addresses.begin(), addresses.end());
        return names;
    }
    testing::FakeUser user;
    std::string names;
    std::vector<std::uintptr_t> symbolised;
};

Exception failure(const char* stack = nullptr) {
    const auto userInfo = std::make_shared<Exception::UserInfo>();
    if (stack != nullptr) (*userInfo)[std::string(kStackTraceKey)] = stack;
    return Exception("Name", "re%@ason", userInfo);
}

TEST(ExceptionReport, LogsWhatIsKnownThenAsks) {
    LogWorld world;
    Answering answering;
    answering.names = "0x10\nf() at f.cpp:7\n";
    std::size_t linesWhenAsked = 0;  // a host that is killed meanwhile leaves them
    answering.user.whileAsked = [&] { linesWhenAsked = world.lines.size(); };
    const ReportSection section{"section of this test",
                                [](char* text, std::size_t) noexcept { *text = '!'; }};
    addReportSection(section);
    QKLogCString(kLogInfo, false, "tag", "the line before");
    world.forget();
    QKDisplayExceptionReport(failure("0x10  nonsense  0xff"));
    removeReportSection(section);

    ASSERT_EQ(world.lines.size(), 4u);
    EXPECT_EQ(linesWhenAsked, 4u);
    const std::string banner = "2024-01-31 09:05:07.042 prog[123:a0b] ";
    EXPECT_EQ(world.lines[0], banner +
                                  "**** prog has encountered an unexpected error. ****\n\n"
                                  "Name: re%@ason\n\nprog " +
                                  applicationVersion() + "\n" + systemVersion() + "\n\n");
    EXPECT_EQ(world.lines[1], banner + answering.names);
    EXPECT_THAT(answering.symbolised, ElementsAre(0x10u, 0xFFu));
    EXPECT_THAT(world.lines[2], HasSubstr("section of this test: !\n"));
    EXPECT_THAT(world.lines[3],
                AllOf(StartsWith(banner + "Logged before:\n\t"), EndsWith("\tthe line before\n")));
    for (const LogWorld::Record& record : world.records)
        EXPECT_EQ(record.fields[LogRecord::Level].second, "3");
    EXPECT_EQ(answering.user.text,
              "prog has encountered an unexpected error.|Name: re%@ason\n\nA stack "
              "trace has been written to the log.|Stop|Resume|"
              "Crash with crash report");
    EXPECT_TRUE(answering.user.isCritical);

    for (const Exception& blank : {Exception("N", "r"), failure("nonsense")}) {
        world.forget();
        QKDisplayExceptionReport(blank);
        EXPECT_THAT(world.lines, ElementsAre(_, banner + "No stack trace available.\n", _));
    }
    // Without the program, this process's own names.
    answering.names = "";
    world.forget();
    std::array<char, 64> stack{};
    std::snprintf(stack.data(), stack.size(), "%p  0x1",
                  reinterpret_cast<void*>(&QKDisplayExceptionReport));
    QKDisplayExceptionReport(failure(stack.data()));
    ASSERT_EQ(world.lines.size(), 3u);
    EXPECT_THAT(world.lines[1], EndsWith("0x1  ??\n"));
#if defined(VELTRA_BACKTRACE)
    EXPECT_THAT(world.lines[1], HasSubstr("  QKDisplayExceptionReport\n"));
#endif
}

TEST(ExceptionReport, StandsOnceAndIsGoneBeforeTheButtonActs) {
    LogWorld world;
    Answering answering;
    testing::FakeUser& user = answering.user;
    user.whileAsked = [] {
        QKDisplayExceptionReport(failure());
        std::thread([] { QKDisplayExceptionReport(failure()); }).join();
    };
    for (const AlertAnswer answer : {AlertAnswer::Alternate, AlertAnswer::TimedOut}) {
        user.answer = answer;
        QKDisplayExceptionReport(failure());
    }
    EXPECT_EQ(user.asked, 2);
    static int ended;
    ended = 0;
    user.whileAsked = nullptr;
    user.answer = AlertAnswer::Default;
    installTerminator([]() noexcept {
        if (++ended < 3) QKDisplayExceptionReport(failure());
    });
    QKDisplayExceptionReport(failure());
    EXPECT_TRUE(ended == 3 && user.asked == 5);
}

TEST(ExceptionReport, StandsInItsOwnProcessAlone) {
    LogWorld world;
    Answering answering;
    EndedChild children[2];
    answering.user.whileAsked = [&] {
        if (answering.user.asked > 1) return QKDisplayExceptionReport(failure());  // not again
        const auto reported = [&] {
            QKDisplayExceptionReport(failure());
            QKDisplayExceptionReport(failure());
            ::_exit(answering.user.asked);
        };
        std::thread([&] { children[0] = testing::endedChild(reported); }).join();
        children[1] = testing::endedChild(reported);
    };
    QKDisplayExceptionReport(failure());
    EXPECT_EQ(answering.user.asked, 1);
    for (const EndedChild& child : children)
        EXPECT_TRUE(child.hasExited(3));
}

TEST(ExceptionReport, EndsTheProcessAsTheUserWants) {
    const auto ended = [](AlertAnswer answer) {
        return testing::endedChild([answer] {
            Answering answering;
            answering.user.answer = answer;
            QKDisplayExceptionReport(failure());
        });
    };
    EXPECT_TRUE(ended(AlertAnswer::Default).wasKilledBy(SIGTERM));
    EXPECT_TRUE(ended(AlertAnswer::Alternate).hasExited(0));
    const EndedChild crashed = ended(AlertAnswer::Other);
#if defined(VELTRA_SANITIZED)
    EXPECT_FALSE(crashed.hasExited(0));
#else
    EXPECT_TRUE(crashed.wasKilledBy(SIGSEGV));
#endif
    EXPECT_THAT(crashed.log, HasSubstr("****\n\nName: re%@ason\n"));
}

[[gnu::noinline]] void raisesForTheReport() {
    raiseException("Raised", "here");
}

TEST(ExceptionReport, NamesFunctionsAndLinesOfARealStack) {
    if (std::system("eu-addr2line --version >/dev/null 2>&1") != 0)  // NOLINT: one thread
        GTEST_SKIP() << "needs eu-addr2line";
    prepareSymbolNames();  // here: a child reads none of its own
    const EndedChild reported = testing::endedChild([] {
        const testing::FakeUser nobody;
        VLBacktracingException::install();
        try {
            raisesForTheReport();
        } catch (const Exception& exception) {
            QKDisplayExceptionReport(exception);
        }
    });
    EXPECT_TRUE(reported.hasExited(0));
    EXPECT_THAT(reported.log,
                AllOf(HasSubstr("NSEXCEPTION RAISED"), HasSubstr("raisesForTheReport()\n"),
                      HasSubstr("exception_report_test.cpp:")));
}

}  // namespace
}  // namespace veltra
