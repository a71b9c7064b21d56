// SPDX-License-Identifier: MIT
// Exceptions that tell where they were raised.
//
//   VLBacktracingException::install();       // at start: all exceptions of the framework
//
// From then on each exception that the framework raises carries the names of the functions that led
// to it, and is logged with them when it is raised first.
//
// Names come from debug information and symbol tables. A program that is built without -g still has
// all of its own; one that is stripped has addresses instead, and the names that it exports
// (-rdynamic).
#pragma once

#include "veltra/base/exception.h"
#include "veltra/export.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace veltra {

// Keys of the user info. Backtrace: text, a line for each function. Stack: the addresses of the
// calls, "0x..." with two blanks between them, as QKDisplayExceptionReport() reads them.
inline constexpr std::string_view kBacktraceKey = "_Backtrace_";
inline constexpr std::string_view kStackTraceKey = "NSStackTraceKey";

// A backtrace has a line for each function on the stack, innermost first: a tabulator, the name as
// it is written in C++ ("0x..." where nobody knows it), a line feed. It begins after the functions
// that only raise exceptions (raiseException(), members of this class and of Exception; in ported
// code "+[NSException ..." and "-[NSAssertionHandler ..."), and ends with "main" or
// "NSApplicationMain", or after 150 lines with "\t...more...\n".
//
// Thread: any. Realtime-safe: no.
class VELTRA_EXPORT VLBacktracingException : public RaisedAs<VLBacktracingException> {
public:
    // A function that hears of exceptions which are raised for the first time, with the backtrace
    // filled in.
    using SignificantRaiseHandler = void (*)(VLBacktracingException& exception);

    // Makes this the class of all exceptions that the framework raises (see
    // installExceptionFactory()), and reads the debug information. The first call may take a tenth
    // of a second. Call it before the process forks: a child that was not prepared reads none of
    // its own, and names only what is exported.
    static void install() noexcept;

    // An exception that will report its first raise. It has its own copy of `userInfo`, which may
    // be null, with an empty text under kBacktraceKey. Some exceptions are frequent and harmless:
    // those whose name begins with "Ws", and "NSPortTimeoutException",
    // "NSInvalidSendPortException", "NSPortSendException" and "NSAccessibilityException". They
    // share `userInfo` unchanged and never report.
    // Throws std::bad_alloc.
    VLBacktracingException(std::string_view name, std::string_view reason,
                           std::shared_ptr<UserInfo> userInfo = nullptr);

    // The text under kBacktraceKey: empty until the first raise, nothing where there is none.
    // Throws std::bad_alloc.
    std::optional<std::string> backtrace() const;

    // Raises the exception. The first time, when the backtrace is there and empty, it is filled in
    // (and with it the stack, unless the user info has one), logged with name and reason at level
    // 5, and the name alone is sent to the system's log; then the significant-raise handler is
    // called. So an exception that is caught and raised again is reported once. Without memory the
    // backtrace may stay empty; the exception is raised all the same.
    [[noreturn]] void raise() override;

    // Raises the exception without a report.
    [[noreturn]] void raiseWithoutReporting();

    // Sets the function that is called for each exception that is reported, on the raising thread,
    // before the exception is thrown; null for none. If the handler throws, its exception is thrown
    // instead.
    static void setSignificantRaiseHandler(SignificantRaiseHandler handler) noexcept;

    // The backtrace of this moment. With 0 frames to skip it begins with the function that calls
    // this one, with 1 with that function's caller; a negative number counts as 0. Empty when there
    // are no more frames than that. Throws std::bad_alloc.
    static std::string backtraceSkippingFrames(int framesToSkip);

    // The same from the caller on.
    static std::string currentBacktrace();

    // Logs `message`, if there is one, at level 5, and writes the backtrace to standard error. With
    // 0 or 1 frames to skip it begins with the function that calls this one, with 2 with that
    // function's caller, and so on. Without memory the backtrace is cut.
    static void logBacktraceSkippingFrames(int framesToSkip,
                                           std::optional<std::string_view> message) noexcept;

    // The same from the caller on.
    static void logBacktraceWithMessage(std::optional<std::string_view> message) noexcept;
};

}  // namespace veltra
