// SPDX-License-Identifier: MIT
#include "veltra/diagnostics/terminate_report.h"

#include "veltra/base/exception.h"
#include "veltra/base/object_file.h"
#include "veltra/diagnostics/detail/backtrace_text.h"
#include "veltra/diagnostics/detail/failure_report.h"
#include "veltra/platform/exception_type.h"
#include "veltra/platform/fork_handlers.h"
#include "veltra/platform/symbol_names.h"

#include <atomic>
#include <cstdlib>
#include <exception>

namespace veltra {

namespace {

constinit std::atomic<std::terminate_handler> handlerBefore{nullptr};

// Whether this thread is done with the report. Its address names the thread.
VELTRA_NEVER_ALLOCATED constinit thread_local bool goesOn = false;

constinit std::atomic<const void*> reporter{nullptr};  // the thread that writes the report
constinit std::atomic<bool> isWritten{false};

// A forked child has not the thread that wrote its parent's report, and must not wait for it.
void startAnew() noexcept {
    if (reporter.load(std::memory_order_relaxed) == &goesOn) return;  // its report has failed
    reporter.store(nullptr, std::memory_order_relaxed);
    isWritten.store(false, std::memory_order_relaxed);
}

// A foreign exception (of another language, or the cancellation of a thread) counts as none: it
// must not be looked at.
void appendCurrentException(TextBuffer& text) noexcept {
    if (std::current_exception() == nullptr) {
        text.append("Terminated without an exception of C++.");
        return;
    }
    text.append("Not caught: ");
    try {
        throw;
    } catch (const Exception& exception) {
        text.append(exception.what());
    } catch (const std::exception& exception) {
        text.append(currentExceptionType().data());
        text.append(": ");
        text.append(exception.what());
    } catch (...) {
        text.append(currentExceptionType().data());
    }
}

[[gnu::noinline]] void writeReport() noexcept {
    const detail::FailureReport report;
    detail::Calls calls;
    calls.capture(1);
    LocalTextBuffer<512> text;
    appendCurrentException(text);
    report.log(text.view(), calls.addresses());
}

// Several threads may come here. The first reports; others wait for it, because whoever is done
// ends the process. A failure of the report itself ends it at once.
[[noreturn]] void reportAndGoOn() noexcept {
    if (goesOn) std::abort();  // the handler before has led back here
    const void* other = nullptr;
    if (reporter.compare_exchange_strong(other, &goesOn, std::memory_order_relaxed)) {
        writeReport();
        isWritten.store(true, std::memory_order_release);  // with wait()
        isWritten.notify_all();
    } else if (other != &goesOn) {
        isWritten.wait(false, std::memory_order_acquire);  // with store()
    }
    goesOn = true;
    const std::terminate_handler before = handlerBefore.load(std::memory_order_acquire);
    if (before != nullptr) before();
    std::abort();
}

}  // namespace

extern "C" void VLInstallTerminateHandler() noexcept {
    prepareSymbolNames();
    addChildHandler(startAnew);
    const std::terminate_handler before = std::set_terminate(reportAndGoOn);
    if (before != reportAndGoOn)
        handlerBefore.store(before, std::memory_order_release);  // with reportAndGoOn()
}

}  // namespace veltra
