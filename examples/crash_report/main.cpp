// SPDX-License-Identifier: MIT
// What a host sets up at start so that failures can be understood later; then an exception that
// nobody expected. With the argument "--ask" the report asks the user; else it goes on.
#include "veltra/base/exception.h"
#include "veltra/base/string_object.h"
#include "veltra/diagnostics/backtracing_exception.h"
#include "veltra/diagnostics/crash_reporter_info.h"
#include "veltra/diagnostics/exception_report.h"
#include "veltra/diagnostics/log.h"
#include "veltra/diagnostics/report_sections.h"
#include "veltra/diagnostics/terminate_report.h"
#include "veltra/platform/alert.h"
#include "veltra/platform/termination.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

std::atomic<int> tracks{48};

void describeSession(char* text, std::size_t capacity) noexcept {
    std::snprintf(text, capacity, "%d tracks", tracks.load());
}

constexpr veltra::ReportSection kSession{"session", describeSession};

std::atomic<bool> isEnding{false};

void leaveTheEventLoop() noexcept {
    isEnding = true;
}

void setUp() {
    veltra::VLBacktracingException::install();
    veltra::VLInstallTerminateHandler();
    veltra::installTerminator(leaveTheEventLoop);
    veltra::addReportSection(kSession);
}

void tellWhatIsOpen(const char* song) {
    const veltra::VLString* text = veltra::VLStringCreateWithCString(song);
    veltra::VLSetCrashReporterInfo(text);
    veltra::VLStringRelease(text);
}

[[gnu::noinline]] void openDevice() {
    veltra::raiseException("DeviceException", "the device went away");
}

// What a host calls for each event.
void handleEvent(void (*handler)()) {
    try {
        handler();
    } catch (const veltra::Exception& exception) {
        veltra::QKDisplayExceptionReport(exception);
    }
}

// Stands in for the user.
class Resuming final : public veltra::AlertPresenter {
public:
    veltra::AlertAnswer present(const veltra::Alert& alert) noexcept override {
        isAsked = alert.style == veltra::AlertStyle::Critical;
        return veltra::AlertAnswer::Alternate;
    }
    bool isAsked = false;
};

int significantExceptions = 0;

void countException(veltra::VLBacktracingException& /*exception*/) {
    ++significantExceptions;
}

}  // namespace

int main(int argc, char** argv) {
    const bool asks = argc > 1 && std::strcmp(argv[1], "--ask") == 0;
    Resuming resuming;
    if (!asks) veltra::AlertPresenter::install(&resuming);
    setUp();
    veltra::VLBacktracingException::setSignificantRaiseHandler(countException);

    tellWhatIsOpen("Symphony in C.song");
    handleEvent(openDevice);
    std::printf("%d exception, %s\n", significantExceptions, isEnding ? "ending" : "going on");

    const bool isTold = std::strcmp(veltra::___crashreporter_info__, "Symphony in C.song") == 0;
    const bool isRight = isTold && significantExceptions == 1 && (asks || resuming.isAsked);
    return isRight ? EXIT_SUCCESS : EXIT_FAILURE;
}
