// SPDX-License-Identifier: MIT
// The one way in which the framework and its hosts log.
//
// Every message becomes one record of the system's structured log and, where a person reads the
// process's standard error, one line there. Logging never ends or blocks the process: whatever
// standard error is, full, closed or without a reader, at worst the line is cut or lost. Lost lines
// and records are counted; the next one that gets through is preceded by one that says how many
// ("veltra: lines cut or lost here: 3", "log records lost here: 3").
//
// Levels are those of syslog: 0 emergency, 1 alert, 2 critical, 3 error, 4 warning, 5 notice,
// 6 information, 7 debug. The tag names the part of the program that speaks; it is also the
// record's facility.
//
// A banner is the date, time, program, process and thread in front of the line:
//     2024-01-31 09:05:07.042 prog[123:a0b] tag: message
//
// Standard error gets the line in three cases:
//   - It is a regular file.
//   - It is anything else that is open, and no service manager started the process or reads the
//     stream.
//   - The environment variable CFLOG_FORCE_STDERR is set (to anything), and the process has no
//     raised rights.
//
// Messages are formatted as printf does it, with these differences:
//   - Numbers have a decimal point and no grouping, and "%m" is English, in every locale.
//   - Wide text ("%ls", "%lc", "%S", "%C", "%lS", "%lC") becomes UTF-8 in every locale; its
//     precision never splits a character.
//   - "%hs" is "%s" and "%hc" is "%c" (with one h or two), as ported code writes them; "%D", "%U"
//     and "%O" are "%d", "%u" and "%o".
//   - "%n" takes its argument and writes nothing through it.
//   - From the first conversion that is not understood, the rest of the format is copied as it
//     stands; likewise from the first whose position leaves one before it unused ("%2$s" without
//     "%1$s"). Formats hold at most 128 arguments.
//   - A message is cut at 1 MiB, or earlier when memory is out, and then ends in
//     " [the rest was cut off]".
//
// The functions keep errno.
#pragma once

#include "veltra/base/string_object.h"
#include "veltra/c_linkage.h"

#include <stdarg.h>
#include <stdbool.h>
#include <stdint.h>

VELTRA_C_BEGIN

// How urgent a line is, in the words of the system log: the lower, the more urgent.
enum LogLevel {
    kLogEmergency = 0,
    kLogAlert = 1,
    kLogCritical = 2,
    kLogError = 3,
    kLogWarning = 4,
    kLogNotice = 5,
    kLogInfo = 6,
    kLogDebug = 7
};

// Whether lines should have a banner: true unless the environment variable
// VELTRA_TRACE_WITHOUT_BANNER is set (to anything, even nothing). What callers pass as
// `withBanner`.
// Thread: any. Realtime-safe: no.
VELTRA_EXPORT bool QKLogWithSyslogBanner(void) VELTRA_NOEXCEPT;

// Logs a message made of `format` and the arguments. `tag` or `format` may be null: without a
// format the tag is the message; without both, or with a level above 7, nothing happens. A line
// feed is added on standard error unless the message ends in one, or in a backspace: that is
// deliberate, so that a progress display can continue on the same line.
// Thread: any but audio. Realtime-safe: no.
VELTRA_EXPORT void QKLogCString(uint32_t level, bool withBanner, const char* tag,
                                const char* format, ...) VELTRA_NOEXCEPT VELTRA_PRINTF(4, 5);

// The same for wrappers; `arguments` is used up as by vprintf.
// Thread: any but audio. Realtime-safe: no.
VELTRA_EXPORT void QKLogCStringV(uint32_t level, bool withBanner, const char* tag,
                                 const char* format, va_list arguments) VELTRA_NOEXCEPT
    VELTRA_PRINTF(4, 0);

// The same with a string object as format, which may also hold "%@": it takes a string object
// (const VLString*, or null for "(null)"; no reference is kept, width and precision do
// nothing).
//
// The text that comes out is deliberately read a second time, without arguments: "%%" becomes
// "%", everything else stays. Callers that log a "%" double it, in arguments too.
// Thread: any but audio. Realtime-safe: no.
VELTRA_EXPORT void QKLog(uint32_t level, bool withBanner, const char* tag, const VLString* format,
                         ...) VELTRA_NOEXCEPT;

// The same for wrappers; `arguments` is used up as by vprintf.
// Thread: any but audio. Realtime-safe: no.
VELTRA_EXPORT void QKLogV(uint32_t level, bool withBanner, const char* tag, const VLString* format,
                          va_list arguments) VELTRA_NOEXCEPT;

VELTRA_C_END
