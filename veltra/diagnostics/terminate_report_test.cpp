// SPDX-License-Identifier: MIT
#include "veltra/diagnostics/terminate_report.h"

#include "veltra/base/exception.h"
#include "veltra/base/testing/prelude.h"
#include "veltra/diagnostics/testing/ended_child.h"
#include "veltra/platform/symboliser.h"

#include <stdexcept>

#include <gmock/gmock.h>

extern "C" void veltraCallFromCWithoutTables(void (*function)(void*), void* context);

namespace veltra {
namespace {

using ::testing::AllOf;
using testing::EndedChild;
using ::testing::HasSubstr;

struct Blunt final : Symboliser {  // fails while it reports
    std::string symbolise(std::span<const std::uintptr_t>) noexcept override { std::terminate(); }
};

[[gnu::noinline]] void throwsForTheReport() {
    throw std::runtime_error("half");
}

#ifdef __arm__
constexpr const char* kThrower = "";  // the walk ends in the runtime, at std::terminate()
#else
constexpr const char* kThrower = "throwsForTheReport";
#endif

// Forks while it reports.
struct Forking final : Symboliser {
    std::string symbolise(std::span<const std::uintptr_t>) noexcept override {
        Symboliser::install(nullptr);
        EndedChild other;
        std::thread([&other] { other = testing::endedChild(throwsForTheReport); }).join();
        const EndedChild own = testing::endedChild([] { std::terminate(); });
        const auto says = [](const EndedChild& child, const char* text) {
            return child.wasKilledBy(SIGABRT) && child.log.find(text) != child.log.npos;
        };
        const bool isAsItShould = says(other, "Not caught: std::runtime_error: half\n") &&
                                  says(own, "") && !says(own, "****");
        return isAsItShould ? "children reported" : "children did not report";
    }
};

TEST(TerminateReport, TellsWhatNobodyCaughtAndGoesOnAsBefore) {
    const std::tuple<void (*)(), const char*, const char*> cases[] = {
        {[] { raiseException("Name", "reason"); }, "Not caught: Name: reason\n", ""},
        {throwsForTheReport, "Not caught: std::runtime_error: half\n", ""},
        // clang unwinds up to a noexcept first, but not to a thread's start
        {[] { std::thread(throwsForTheReport).join(); }, "std::runtime_error: half\n", kThrower},
        {[] { throw 7; }, "Not caught: int\n", ""},
        {[] { std::terminate(); }, "Terminated without an exception of C++.\n", ""},
        {[] { veltraCallFromCWithoutTables([](void*) { throwsForTheReport(); }, nullptr); },
         "std::runtime_error: half\n", ""},
        {[] {
             new std::thread(throwsForTheReport);  // as no destructor is to end it
             throwsForTheReport();
         },
         "std::runtime_error: half\n", ""},
        {[] {  // handlers that call each other
             static const std::terminate_handler ours = std::set_terminate([] { ours(); });
             VLInstallTerminateHandler();
             throwsForTheReport();
         },
         "std::runtime_error: half\n", ""},
        {[] {
             static Forking forking;
             Symboliser::install(&forking);
             throwsForTheReport();
         },
         "std::runtime_error: half\n", "children reported"},
    };
    for (const auto& [fail, text, inStack] : cases) {
        const EndedChild ended = testing::endedChild([fail = fail]() noexcept {
            VLInstallTerminateHandler();
            VLInstallTerminateHandler();
            fail();
        });
        EXPECT_TRUE(ended.wasKilledBy(SIGABRT)) << text;
        EXPECT_THAT(ended.log, AllOf(HasSubstr("unexpected error. ****\n\n"), HasSubstr(text),
                                     HasSubstr(inStack)));
    }
}

TEST(TerminateReport, LeavesTheEndToTheHandlerBefore) {
    for (const bool isBlunt : {false, true}) {
        const EndedChild ended = testing::endedChild([isBlunt]() noexcept {
            Blunt blunt;
            if (isBlunt) Symboliser::install(&blunt);
            std::set_terminate([] { ::_exit(5); });
            VLInstallTerminateHandler();
            throwsForTheReport();
        });
        EXPECT_TRUE(ended.hasExited(5));
        EXPECT_THAT(ended.log, HasSubstr("half"));
    }
}

}  // namespace
}  // namespace veltra
