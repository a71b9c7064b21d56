// SPDX-License-Identifier: MIT
// A text for whoever looks at the remains of a crash: the song that was open, the plug-in that was
// being loaded. It costs nothing until then.
//
// The text stands in memory under a name that debuggers find, also in a core file of a stripped
// program:
//
//   gdb -batch -ex 'printf "%s\n", *(char**)&___crashreporter_info__' PROGRAM CORE
#pragma once

#include "veltra/base/string_object.h"
#include "veltra/c_linkage.h"

#ifdef __cplusplus
#include <atomic>
#endif

VELTRA_C_BEGIN

// NOLINTBEGIN(bugprone-reserved-identifier): the name is what debuggers look for
#ifdef __cplusplus
// The text as UTF-8 with a NUL at its end, owned by the framework; null until one is set. Meant for
// debuggers. What a program reads here may be freed by the next VLSetCrashReporterInfo().
extern VELTRA_EXPORT std::atomic<char*> ___crashreporter_info__;
#else
extern VELTRA_EXPORT char* _Atomic ___crashreporter_info__;
#endif
// NOLINTEND(bugprone-reserved-identifier)

// Replaces the text with a copy of `text` and frees the old one; null removes it. Readers see the
// text up to its first NUL. When memory is out, the old text stays.
// Thread: any; the last of several calls wins. Realtime-safe: no.
VELTRA_EXPORT void VLSetCrashReporterInfo(const VLString* text) VELTRA_NOEXCEPT;

VELTRA_C_END
