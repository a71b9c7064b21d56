// SPDX-License-Identifier: MIT
// A host's last words: the destructor of an object that was made before anything of the library
// runs when all that was made later is gone, and may still call everything.
#include "veltra/base/exception.h"
#include "veltra/base/testing/prelude.h"
#include "veltra/diagnostics/assertion.h"
#include "veltra/diagnostics/log.h"
#include "veltra/platform/allocation_zone.h"
#include "veltra/platform/bundle_information.h"
#include "veltra/platform/clock.h"
#include "veltra/platform/compression.h"
#include "veltra/platform/file_system.h"
#include "veltra/platform/keyboard_layout.h"
#include "veltra/platform/local_time.h"
#include "veltra/platform/localization.h"
#include "veltra/platform/memory_system.h"
#include "veltra/platform/notification_center.h"
#include "veltra/platform/optical_drives.h"
#include "veltra/platform/preferences.h"
#include "veltra/platform/process.h"
#include "veltra/platform/processor_features.h"
#include "veltra/platform/run_loop.h"
#include "veltra/platform/standard_error.h"
#include "veltra/platform/symboliser.h"
#include "veltra/platform/system_log.h"
#include "veltra/platform/system_queries.h"
#include "veltra/platform/testing/fake_user.h"
#include "veltra/platform/text_services.h"
#include "veltra/platform/volumes.h"
#include "veltra/ui/application.h"
#include "veltra/ui/port.h"
#include "veltra/ui/tool_tip.h"

#include <unistd.h>

namespace veltra {
namespace {

bool hasRaised() {
    try {
        raiseException("late", "on purpose");
    } catch (const Exception& raised) {
        return raised.name() == "late";
    }
}

// Every service once, through whoever is in force.
bool isServed() {
    const WallTime now = Clocks::current().wall();
    StandardError& stream = StandardError::current();
    stream.write(stream.inspect(), {"late: ", "a line", "\n"});
    SystemLog::current().send(LogRecord{});
    QKLogCString(7, false, nullptr, "late: %d", 1);
    const VLString* name = VLStringCreateWithCString("late");
    NotificationCenter::local().post(name, nullptr);
    VLStringRelease(name);
    TextServices::current().toUpper(u"late");
    KeyboardLayout::current().translate(0);
    UiPort::current().appearance();
    ProcessorFeatures::current();
    MemorySystem::current().addressSpaceLimits();
    OpticalDrives::current().list();
    void* block = AllocationZone::current().entries().allocate(1);
    AllocationZone::current().entries().free(block);
    const auto isAsked = [] {
        testing::FakeUser user;
        user.answer = AlertAnswer::Default;  // go on
        return dbgASSERT(0, "late", "here", nullptr) == 0 && user.asked == 1;
    };
    const std::array facts{
        isAsked(),
        hasRaised(),
        block != nullptr,
        !Clocks::current().monotonic().hasFailed(),
        LocalTime::current().civilTime(now).has_value(),
        Process::current().processId() == ::getpid(),
        AlertPresenter::current().present({}) == AlertAnswer::TimedOut,
        Preferences::current().value("late").isNull(),
        Preferences::current().setValue("late", 1) && Preferences::current().setValue("late", {}),
        localizedString("late") == "late",
        BundleInformation::current().text("late").empty(),
        Compression::current().largestCompressedSize(0) > 0 ||
            !Compression::current().makeInflater(),
        FileSystem::current().homeFolder("no such user").empty(),
        Symboliser::current().symbolise({}).empty(),
        SystemQueries::current().number(SystemKey::ProcessorCount).value_or(1) > 0,
        Volumes::current().volumeOfPath("/no such item") == std::nullopt,
        Application::current().currentEvent() == nullptr,
        &ToolTipWindow::shared() == &ToolTipWindow::shared(),
        RunLoop::current() == nullptr || RunLoop::current()->schedule({}) != nullptr,
    };
    for (std::size_t fact = 0; fact < facts.size(); ++fact)
        if (!facts[fact]) std::fprintf(stderr, "fact %zu does not hold\n", fact);
    return std::find(facts.begin(), facts.end(), false) == facts.end();
}

constexpr int kServed = 7;

// Made before main(), so destroyed after whatever the tests have made.
struct Host {
    ~Host() {
        if (isLeaving) ::_exit(isServed() ? kServed : 1);
    }
    bool isLeaving = false;
} host;

TEST(LateCallsDeathTest, AllServicesServeWhileTheProcessEndsAlsoForTheFirstTime) {
    ::testing::GTEST_FLAG(death_test_style) =
        "threadsafe";  // a new process each, with nothing made yet
    for (const bool isFirstTime : {false, true}) {
        const auto leave = [&] {
            host.isLeaving = isFirstTime || isServed();
            std::exit(0);
        };
        EXPECT_EXIT(leave(), ::testing::ExitedWithCode(kServed), "late: a line") << isFirstTime;
    }
}

}  // namespace
}  // namespace veltra
