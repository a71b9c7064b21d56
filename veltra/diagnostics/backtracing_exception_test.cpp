// SPDX-License-Identifier: MIT
#include "veltra/diagnostics/backtracing_exception.h"

#include "veltra/base/testing/prelude.h"
#include "veltra/diagnostics/testing/log_fakes.h"
#include "veltra/platform/testing/child_process.h"

#include <gmock/gmock.h>

extern "C" {
// Calls `function`; of C, once with tables for unwinding and once without.
void veltraCallFromC(void (*function)(void*), void* context);
void veltraCallFromCWithoutTables(void (*function)(void*), void* context);
}

// With functions named in the symbol table.
#if defined(VELTRA_BACKTRACE)
#define NEEDS_NAMES()
#else
#define NEEDS_NAMES() GTEST_SKIP() << "needs libbacktrace"
#endif

namespace veltra {
namespace tracing {

using namespace ::testing;
using Backtracing = VLBacktracingException;

// Makes the compiler keep the caller's frame and call.
[[gnu::always_inline]] inline std::string keepFrame(std::string text) {
    asm volatile("" ::: "memory");
    return text;
}

[[gnu::noinline]] std::string innermost(int skip) {
    return keepFrame(Backtracing::backtraceSkippingFrames(skip));
}

[[gnu::always_inline]] inline std::string inlined(int skip) {
    return innermost(skip);
}

[[gnu::noinline]] std::string outer(int skip) {
    return keepFrame(inlined(skip));
}

[[gnu::noinline]] std::string current() {
    return keepFrame(Backtracing::currentBacktrace());
}

[[gnu::noinline]] void logs(int skip) {
    skip < 0 ? Backtracing::logBacktraceWithMessage("why")
             : Backtracing::logBacktraceSkippingFrames(skip, std::nullopt);
    keepFrame("");
}

[[gnu::noinline]] void raises(const char* name) {
    raiseException(name, "reason");
}

[[gnu::noinline]] std::string deep(int depth) {
    return keepFrame(depth > 0 ? deep(depth - 1) : innermost(0));
}

void raiseHere(void* name) {
    raises(static_cast<const char*>(name));
}

std::string firstLines(const std::string& text, int count) {
    std::size_t end = 0;
    while (count-- > 0 && end != std::string::npos)
        end = text.find('\n', end + 1);
    return text.substr(0, end);
}

class Installed : public Test {
protected:
    Installed() { Backtracing::install(); }
    ~Installed() override {
        Backtracing::setSignificantRaiseHandler(nullptr);
        installExceptionFactory(nullptr);
    }
    LogWorld m_world;
};

constexpr const char* kInnermost = "\tveltra::tracing::innermost[abi:cxx11](int)";
constexpr const char* kOuter = "\tveltra::tracing::outer[abi:cxx11](int)";

TEST_F(Installed, SkipsAsManyFramesAsItIsTold) {
    NEEDS_NAMES();
    const std::string both = std::string(kInnermost) + "\n" + kOuter;
    EXPECT_EQ(firstLines(outer(0), 2), both);
    EXPECT_EQ(firstLines(outer(-7), 2), both);
    EXPECT_EQ(firstLines(outer(1), 1), kOuter);
    EXPECT_THAT(outer(2), Not(HasSubstr("::outer")));
    EXPECT_THAT(outer(0), EndsWith("\n\tmain\n"));
    EXPECT_EQ(outer(100'000) + outer(INT32_MAX), "");
    EXPECT_EQ(firstLines(current(), 1), "\tveltra::tracing::current[abi:cxx11]()");

    for (const int skip : {0, 1, -1}) {
        m_world.forget();
        logs(skip);
        ASSERT_EQ(m_world.lines.size(), skip < 0 ? 2u : 1u);
        EXPECT_EQ(firstLines(m_world.lines.back(), 1), "\tveltra::tracing::logs(int)") << skip;
        EXPECT_THAT(m_world.lines.back(), EndsWith("\tmain\n"));
        if (skip < 0) {
            EXPECT_THAT(m_world.lines[0], EndsWith("why\n"));
        }
    }
    m_world.forget();
    logs(2);
    EXPECT_THAT(m_world.line(), Not(HasSubstr("::logs")));
}

TEST_F(Installed, ReachesThroughThreadsCAndDeepRecursion) {
    NEEDS_NAMES();
    std::string text;
    std::thread([&] { text = outer(0); }).join();
    EXPECT_THAT(text, AllOf(StartsWith(kInnermost), HasSubstr(kOuter), Not(HasSubstr("main"))));

    const auto collect = [](void* context) { *static_cast<std::string*>(context) = outer(0); };
    veltraCallFromC(collect, &text);
    EXPECT_THAT(text, AllOf(HasSubstr("\tveltraCallFromC\n"), EndsWith("\tmain\n")));
    // Nobody can see what is above, and nothing breaks.
    veltraCallFromCWithoutTables(collect, &text);
    EXPECT_THAT(text, AllOf(StartsWith(kInnermost), HasSubstr(kOuter)));

    const std::string cut = deep(1000);
    EXPECT_THAT(cut, AllOf(StartsWith(kInnermost), EndsWith("\n\t...more...\n")));
    EXPECT_EQ(std::count(cut.begin(), cut.end(), '\n'), 151);
    EXPECT_EQ(std::count(text.begin(), text.end(), '\t'),
              std::count(text.begin(), text.end(), '\n'));
}

int significant;

TEST_F(Installed, ReportsTheFirstRaiseOfAnExceptionOnly) {
    significant = 0;
    Backtracing::setSignificantRaiseHandler([](Backtracing& exception) {
        significant += exception.name() == "Name" && !exception.backtrace()->empty() ? 1 : 100;
    });
    std::string first;
    try {
        try {
            veltraCallFromC(raiseHere, const_cast<char*>("Name"));
        } catch (Exception& caught) {
            first = dynamic_cast<Backtracing&>(caught).backtrace().value();
            caught.raise();
        }
    } catch (const Backtracing& thrown) {
        Backtracing caught = thrown;  // shares the user info
        EXPECT_EQ(caught.backtrace(), first);
        EXPECT_THAT((*caught.userInfo())[std::string(kStackTraceKey)].asString(),
                    AllOf(StartsWith("0x"), HasSubstr("  0x")));
        EXPECT_THROW(caught.raise(), Backtracing);
    }
    EXPECT_EQ(significant, 1);
#if defined(VELTRA_BACKTRACE)
    EXPECT_THAT(first, StartsWith("\tveltra::tracing::raises(char const*)\n"));
    EXPECT_THAT(first, HasSubstr("\tveltraCallFromC\n"));
#endif
    EXPECT_EQ(m_world.line(),
              "2024-01-31 09:05:07.042 prog[123:a0b] *** NSEXCEPTION RAISED ***\n"
              "\tName: reason\n" +
                  first);
    ASSERT_EQ(m_world.records.size(), 2u);
    EXPECT_EQ(m_world.records[1].fields[LogRecord::Message].second,
              "*** NSEXCEPTION RAISED *** Name");
    EXPECT_EQ(m_world.records[1].fields[LogRecord::Level].second, "5");

    m_world.forget();
    Backtracing::setSignificantRaiseHandler(nullptr);
    Backtracing unreported("Name", "reason");
    EXPECT_THROW(unreported.raiseWithoutReporting(), Backtracing);
    EXPECT_EQ(unreported.backtrace(), "");
    EXPECT_THAT(m_world.records, IsEmpty());
    EXPECT_THROW(unreported.raise(), Backtracing);
    EXPECT_EQ(m_world.lines.size(), 1u);
}

TEST_F(Installed, NeverReportsHarmlessExceptions) {
    const std::string_view harmful[] = {"ws", "W", "AWs", "", "NSPortSendExceptions"};
    for (const char* name : {"Ws", "WsTimeout", "NSPortTimeoutException", "ws", "W", "AWs",
                             "NSInvalidSendPortException", "NSPortSendException", "",
                             "NSAccessibilityException", "NSPortSendExceptions"}) {
        const bool isHarmless = std::count(std::begin(harmful), std::end(harmful), name) == 0;
        m_world.forget();
        const auto given = std::make_shared<Exception::UserInfo>();
        (*given)["key"] = 7;
        try {
            raiseException(name, "reason", given);
        } catch (const Backtracing& caught) {
            EXPECT_EQ(caught.userInfo() == given, isHarmless) << name;
            EXPECT_EQ(caught.backtrace().has_value(), !isHarmless) << name;
            EXPECT_EQ((*caught.userInfo())["key"], 7) << name;
        }
        EXPECT_EQ(given->size(), 1u);
        EXPECT_EQ(m_world.records.empty(), isHarmless) << name;
    }
    EXPECT_EQ(Backtracing("Ws", "").backtrace(), std::nullopt);
    EXPECT_EQ(Backtracing("Ws", "").userInfo(), nullptr);
    // A user info that was in another exception is reported anew.
    const auto used = std::make_shared<Exception::UserInfo>();
    (*used)[std::string(kBacktraceKey)] = "old";
    EXPECT_EQ(Backtracing("N", "", used).backtrace(), "");
}

TEST(StrippedProgram, HasAddressesInItsBacktraces) {
    EXPECT_THAT(veltra::testing::outputOf(VELTRA_STRIPPED_PROGRAM),
                AllOf(StartsWith("\t0x"), EndsWith("\n"), Not(HasSubstr("veltra"))));
}

TEST(StrippedProgram, HasNamesWhereItsDebugInformationLiesBesideIt) {
    NEEDS_NAMES();
    EXPECT_THAT(veltra::testing::outputOf(VELTRA_SEPARATED_PROGRAM), StartsWith("\tmain\n"));
}

}  // namespace tracing
}  // namespace veltra
