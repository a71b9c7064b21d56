// SPDX-License-Identifier: MIT
#include "veltra/diagnostics/exception_report.h"

#include "veltra/diagnostics/backtracing_exception.h"
#include "veltra/diagnostics/log.h"
#include "veltra/diagnostics/report_sections.h"
#include "veltra/diagnostics/testing/ended_child.h"
#include "veltra/diagnostics/testing/log_fakes.h"
#include "veltra/platform/alert.h"
#include "veltra/platform/application_facts.h"
#include "veltra/platform/symbol_names.h"
#include "veltra/platform/symboliser.h"
#include "veltra/platform/termination.h"

#include <array>
#include <functional>
#include <thread>

#include <gmock/gmock.h>

namespace veltra {
namespace {

using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::StartsWith;

// Answers by program.
struct Answering final : AlertPresenter, Symboliser {
    Answering() {
        AlertPresenter::install(this);
        Symboliser::install(this);
    }
    ~Answering() override {
        AlertPresenter::install(nullptr);
        Symboliser::install(nullptr);
        installTerminator(nullptr);
    }
    AlertAnswer present(const Alert& alert) noexcept override {
        ++asked;
        text = std::string(alert.header) + "|" + std::string(alert.message) + "|" +
               std::string(alert.defaultButton) + "|" + std::string(alert.alternateButton) + "|" +
               std::string(alert.otherButton);
        isCritical = alert.style == AlertStyle::Critical;
        if (whileAsked) whileAsked();
        return answer;
    }
    std::string symbolise(std::span<const std::uintptr_t> addresses) noexcept override {
        symbolised.assign(addresses.begin(), addresses.end());
        return names;
    }

    AlertAnswer answer = AlertAnswer::TimedOut;
    std::function<void()> whileAsked;
    std::string names;
    std::string text;
    bool isCritical = false;
    std::vector<std::uintptr_t> symbolised;
    static inline int asked = 0;
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
    const ReportSection section{"section of this test",
                                [](char* text, std::size_t) noexcept { *text = '!'; }};
    addReportSection(section);
    QKLogCString(kLogInfo, false, "tag", "the line before");
    world.forget();
    QKDisplayExceptionReport(failure("0x10  nonsense  0xff"));
    removeReportSection(section);

    ASSERT_EQ(world.lines.size(), 4u);
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
    EXPECT_EQ(answering.text,
              "prog has encountered an unexpected error.|Name: re%@ason\n\nA stack "
              "trace has been written to the log.|Stop|Resume|"
              "Crash with crash report");
    EXPECT_TRUE(answering.isCritical);

    world.forget();
    QKDisplayExceptionReport(Exception("N", "r"));
    ASSERT_EQ(world.lines.size(), 3u);
    EXPECT_EQ(world.lines[1], banner + "No stack trace available.\n");
    QKDisplayExceptionReport(failure("nonsense"));
    ASSERT_EQ(world.lines.size(), 6u);
    EXPECT_EQ(world.lines[4], banner + "No stack trace available.\n");

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
    Answering::asked = 0;
    answering.whileAsked = [] {
        QKDisplayExceptionReport(failure());
        std::thread([] { QKDisplayExceptionReport(failure()); }).join();
    };
    QKDisplayExceptionReport(failure());
    EXPECT_EQ(Answering::asked, 1);
    for (const AlertAnswer answer : {AlertAnswer::Alternate, AlertAnswer::TimedOut}) {
        answering.answer = answer;
        QKDisplayExceptionReport(failure());
    }
    EXPECT_EQ(Answering::asked, 3);

    static int ended;
    ended = 0;
    answering.whileAsked = nullptr;
    answering.answer = AlertAnswer::Default;
    installTerminator([]() noexcept {
        if (++ended < 3) QKDisplayExceptionReport(failure());
    });
    QKDisplayExceptionReport(failure());
    EXPECT_EQ(ended, 3);
    EXPECT_EQ(Answering::asked, 6);
}

TEST(ExceptionReport, EndsTheProcessAsTheUserWants) {
    const auto ended = [](AlertAnswer answer) {
        return testing::endedChild([answer] {
            Answering answering;
            answering.answer = answer;
            QKDisplayExceptionReport(failure());
        });
    };
    EXPECT_TRUE(ended(AlertAnswer::Default).wasKilledBy(SIGTERM));
    EXPECT_TRUE(ended(AlertAnswer::Alternate).hasExited(0));
    const testing::EndedChild crashed = ended(AlertAnswer::Other);
#if defined(VELTRA_SANITIZED)
    EXPECT_FALSE(crashed.hasExited(0));
#else
    EXPECT_TRUE(crashed.wasKilledBy(SIGSEGV));
#endif
    EXPECT_THAT(crashed.log, HasSubstr("****\n\nName: re%@ason\n"));
}

TEST(ExceptionReport, IsInTheLogWhenTheHostIsKilledMeanwhile) {
    std::array<int, 2> ends{};
    ASSERT_EQ(::pipe(ends.data()), 0);
    const testing::EndedChild killed = testing::endedChild(
        [&ends] {
            Answering answering;
            answering.names = "names of the stack";
            answering.whileAsked = [&ends] {
                if (::write(ends[1], "x", 1) == 1) ::pause();
            };
            QKDisplayExceptionReport(failure("0x10"));
        },
        [&ends](pid_t child) {
            char stands = 0;
            EXPECT_EQ(::read(ends[0], &stands, 1), 1);
            ::kill(child, SIGKILL);
        });
    EXPECT_TRUE(killed.wasKilledBy(SIGKILL));
    EXPECT_THAT(killed.log, AllOf(HasSubstr("unexpected error."), HasSubstr("names of the stack")));
    ::close(ends[0]);
    ::close(ends[1]);
}

[[gnu::noinline]] void raisesForTheReport() {
    raiseException("Raised", "here");
}

TEST(ExceptionReport, NamesFunctionsAndLinesOfARealStack) {
    if (std::system("eu-addr2line --version >/dev/null 2>&1") != 0)  // NOLINT: one thread
        GTEST_SKIP() << "needs eu-addr2line";
    prepareSymbolNames();  // here: a child reads none of its own
    const testing::EndedChild reported = testing::endedChild([] {
        struct Nobody final : AlertPresenter {
            AlertAnswer present(const Alert&) noexcept override { return AlertAnswer::TimedOut; }
        } nobody;
        AlertPresenter::install(&nobody);
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
