// SPDX-License-Identifier: MIT
// Asking the application to end, from code that does not know what kind of application it is.
#pragma once

#include "veltra/export.h"

namespace veltra {

// A function that has the application end.
using Terminator = void (*)() noexcept;

// Lets `terminator` end the application when somebody asks for it: a host with an event loop of its
// own leaves it. It is called on any thread, and may return before the application has ended. Null
// goes back to the framework's own way. Returns what was installed before, null for none. The user
// interface on Qt installs one that ends Qt's event loop, unless there is one already.
// Thread: any. Realtime-safe: yes.
VELTRA_EXPORT Terminator installTerminator(Terminator terminator) noexcept;

// Calls the installed terminator. Without one the process gets the signal SIGTERM, which a program
// may handle, and which else ends it.
// Thread: any but audio. Realtime-safe: no.
VELTRA_EXPORT void askToTerminate() noexcept;

}  // namespace veltra
