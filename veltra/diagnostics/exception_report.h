// SPDX-License-Identifier: MIT
// Telling the user that something went wrong, and letting the user decide how to go on.
#pragma once

#include "veltra/base/exception.h"
#include "veltra/export.h"

namespace veltra {

extern "C" {

// Reports an exception that the host did not expect, where it is caught last: in its event loop,
// say.
//
// First the report is logged, at level 3: name of the application, text of the exception (what()),
// versions of application and system, then the stack that the exception carries under
// kStackTraceKey (see backtracing_exception.h), with function and line for each address, or "No
// stack trace available."; then the sections of report_sections.h, such as memory level and kernels
// in force, and the last 64 log lines. Names and lines come from eu-addr2line of the package
// elfutils; where that is missing, names alone from this process.
//
// Then a critical alert asks how to go on:
//     "Stop"                      asks the application to end (see termination.h), and returns
//     "Resume", also when nobody can be asked or nobody answers for a day, returns
//     "Crash with crash report"   crashes the process here, with a core file where the system
//                                 writes them. Deliberately kept: the state of the process is the
//                                 best report there is.
//
// One report at a time: while one stands, calls return at once, on any thread. A process that was
// forked meanwhile reports on its own.
// Thread: any but audio: it waits for a human being. Realtime-safe: no.
VELTRA_EXPORT void QKDisplayExceptionReport(const Exception& exception) noexcept;
}

}  // namespace veltra
