// SPDX-License-Identifier: MIT
#include "veltra/diagnostics/exception_report.h"

#include "veltra/diagnostics/backtracing_exception.h"
#include "veltra/diagnostics/detail/backtrace_text.h"
#include "veltra/diagnostics/detail/failure_report.h"
#include "veltra/platform/alert.h"
#include "veltra/platform/fork_generation.h"
#include "veltra/platform/termination.h"

#include <atomic>
#include <csignal>
#include <cstdint>

namespace veltra {

namespace {

constexpr Nanoseconds kPatience = seconds(86'400.0);

constexpr std::uint32_t kNone = UINT32_MAX;  // no process has so many ancestors

// The fork generation of the process whose report is on screen, or kNone. A forked child inherits
// that of its parent, whose report is none of the child's.
constinit std::atomic<std::uint32_t> onScreen{kNone};

std::string_view stackOf(const Exception& exception) noexcept {
    const auto& userInfo = exception.userInfo();
    if (userInfo == nullptr) return {};
    const auto found = userInfo->find(kStackTraceKey);
    return found != userInfo->end() ? found->second.asString() : std::string_view();
}

AlertAnswer reportAndAsk(const Exception& exception) noexcept {
    const detail::FailureReport report;
    detail::Calls calls;
    calls.parse(stackOf(exception));
    report.log(exception.what(), calls.addresses());
    LocalTextBuffer<1024> message;
    message.append(exception.what());
    message.append("\n\nA stack trace has been written to the log.");
    return presentAlert({.header = report.title(),
                         .message = message.view(),
                         .defaultButton = "Stop",
                         .alternateButton = "Resume",
                         .otherButton = "Crash with crash report",
                         .timeout = kPatience,
                         .style = AlertStyle::Critical});
}

// Deliberate: the user has asked for it.
__attribute__((noinline, no_sanitize("undefined"))) void crash() noexcept {
    constexpr int kMark = 4711;  // to be recognised in a crash report
    std::uintptr_t nowhere = 0;
    asm volatile("" : "+r"(nowhere));  // else compilers leave out a store to what they know is null
    *reinterpret_cast<volatile int*>(nowhere) = kMark;  // NOLINT(performance-no-int-to-ptr)
    std::raise(SIGTRAP);                                // where there is memory at 0
}

}  // namespace

extern "C" void QKDisplayExceptionReport(const Exception& exception) noexcept {
    const std::uint32_t ours = forkGeneration();
    if (onScreen.exchange(ours, std::memory_order_acquire) == ours) return;  // with the store
    const AlertAnswer answer = reportAndAsk(exception);
    onScreen.store(kNone, std::memory_order_release);  // before the button acts: it may return
    if (answer == AlertAnswer::Default) askToTerminate();
    if (answer == AlertAnswer::Other) crash();
}

}  // namespace veltra
