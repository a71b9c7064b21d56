// SPDX-License-Identifier: MIT
// A report about what nobody caught, before it ends the process.
#pragma once

#include "veltra/c_linkage.h"

VELTRA_C_BEGIN

// Lets a process that ends by std::terminate() (an exception that nobody catches or that leaves a
// noexcept function) log a report first, as QKDisplayExceptionReport() does, but without asking
// anybody. Then it goes on as before: the terminate handler that was installed until now runs,
// usually abort(). The framework never installs this by itself; a host may, at start, after its own
// handler. Calling it again does no harm. A forked child reports on its own.
//
// The stack in the report, and in a core file, is that of the throw, as far as no object on the way
// had to be destroyed.
// Thread: any. Realtime-safe: no.
VELTRA_EXPORT void VLInstallTerminateHandler(void) VELTRA_NOEXCEPT;

VELTRA_C_END
