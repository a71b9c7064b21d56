// SPDX-License-Identifier: MIT
// What was logged last, kept in memory for reports of failures: also where nobody keeps the log,
// and when the process has no time left to look for it.
#pragma once

#include "veltra/c_linkage.h"

#include <stddef.h>

VELTRA_C_BEGIN

// `line` is UTF-8 (as far as the logged text was), as it stood on standard error or would have:
// banner and message, without the line feed at the end and with blanks for others. It has `length`
// bytes, 246 at most, and no terminator; what was longer is cut, never inside a character. Good
// during the call only.
typedef void (*VLLogLineVisitor)(void* context, const char* line, size_t length);

// Calls `visit` for each of the last 64 log lines, oldest first. A line that another thread is
// writing at that moment is left out. Does nothing when `visit` is null.
// Thread: any, also in a signal handler: allocates nothing and takes no lock. Realtime-safe: yes.
VELTRA_EXPORT void VLVisitRecentLogLines(VLLogLineVisitor visit, void* context) VELTRA_NOEXCEPT;

VELTRA_C_END
