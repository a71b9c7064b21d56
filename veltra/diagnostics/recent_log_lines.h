// SPDX-License-Identifier: MIT
// The last log lines, kept in memory for reports of failures. They are there even where nobody
// keeps the log, or when the process has no time left to look for it.
#pragma once

#include "veltra/c_linkage.h"

#include <stddef.h>

VELTRA_C_BEGIN

// `line` is the line as it stands on standard error, or would: banner and message, without the line
// feed at the end and with blanks for other line feeds. It is UTF-8 if the logged text was. It has
// `length` bytes, 246 at most, and no terminator; longer lines are cut, never inside a character.
// It is valid during the call only.
typedef void (*VLLogLineVisitor)(void* context, const char* line, size_t length);

// Calls `visit` for each of the last 64 log lines, oldest first. A line that another thread is
// writing at that moment is left out. Does nothing when `visit` is null.
// Thread: any, also in a signal handler: allocates nothing and takes no lock. Realtime-safe: yes.
VELTRA_EXPORT void VLVisitRecentLogLines(VLLogLineVisitor visit, void* context) VELTRA_NOEXCEPT;

VELTRA_C_END
