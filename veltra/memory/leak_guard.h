// SPDX-License-Identifier: MIT
// Finds memory that leaks inside a chosen stretch of code, while a program runs.
//
// A scope is opened by a function. What is allocated while that function is on the calling stack,
// by itself or by whatever it calls, is recorded with its size and the addresses of its callers,
// until it is freed. A report tells what is left: here in lines of fixed form, with addresses; in
// leak_report.h with names, and as a statement of a test.
//
//     void Song::load() {
//         QKLeakGuard guard;                  // until load() returns
//         ...
//     }
//     QKLeakGuard::ResetHistory(true);        // after the song was closed
//
// The guard is a tool for debugging. It is off unless the application's preference LeakGuardEnabled
// is true when the guard is first used. Then every block of the process is 88 bytes larger, from
// that moment on until the process ends, and allocations under a scope cost a walk up the stack.
// Freeing or reallocating a recorded block, and allocating on a thread that has scopes open, may
// take the guard's lock: an audio thread that does so may have to wait. To see allocations at all,
// the executable must link the library (veltra/platform/allocation_zone.h); a warning in the log
// tells which ones do not reach the guard.
//
// The addresses mean something while the process lives. With its number PID,
//     eu-addr2line -p PID -f -C -i ADDRESS
// names the function and line of each.
//
// Whether a scope with a group and a key is guarded is up to the user: the preference LeakGuard is
// a dictionary of groups, each a dictionary of keys, and a number other than 0 says yes. A scope
// with neither is always guarded, one with only one of them deliberately never: half a name is a
// mistake of the caller's that must not flood the report. A text counts as far as it begins with a
// number.
//
// Scopes nest, also by recursion. A scope belongs to the function as the compiler built it: when
// that was inlined into its caller, to the caller. Allocations on other threads' stacks are not
// recorded. A block that is reallocated outside every scope is recorded no more.
//
// The mark by which a block is known to be recorded lies in its last bytes. Code that fills a block
// up to what malloc_usable_size() says writes over it, and the block is reported as a leak though
// it was freed.
#pragma once

#include "veltra/base/string_object.h"
#include "veltra/c_linkage.h"

#include <stdbool.h>
#include <stdint.h>

#ifdef __cplusplus

namespace veltra {

class VELTRA_EXPORT QKLeakGuard {
public:
    // Opens a scope of the function that constructs the guard, or of the function that called it.
    // Group and key are only looked at. Without memory for it, nothing is guarded.
    // Thread: any but audio. Realtime-safe: no.
    explicit QKLeakGuard(const VLString* group = nullptr, const VLString* key = nullptr,
                         bool useCallersCaller = false) noexcept;
    QKLeakGuard(const QKLeakGuard&) = delete;
    QKLeakGuard& operator=(const QKLeakGuard&) = delete;

    // Closes the scope; what was recorded stays so until it is freed or the history reset.
    // Thread: any but audio, also another one. Realtime-safe: no.
    ~QKLeakGuard();

    // Forgets all blocks on record and returns how many bytes they were; 0 when the guard is off.
    // With `print` the report goes to standard output: a line and 16 return addresses for each
    // block, the newest first, as many as the preference LeakGuardPrintLimit says (0: all), and the
    // sum of all.
    // Thread: any but audio. Realtime-safe: no.
    static long ResetHistory(bool print) noexcept;

    // From here on `value` (0: not guarded) is in force for `group` and `key` instead of the user's
    // preference, which is not changed. Nothing happens when one is null or memory is out.
    // Thread: any but audio. Realtime-safe: no.
    static void OverridePreference(const VLString* group, const VLString* key,
                                   unsigned int value) noexcept;

private:
    friend struct HeapLeakGuard;
    explicit QKLeakGuard(uintptr_t frame) noexcept : m_frame(frame) {}

    uintptr_t m_frame;  // canonical frame address of the scope; 0: not guarded
};

}  // namespace veltra

#else

typedef struct QKLeakGuard QKLeakGuard;

#endif

VELTRA_C_BEGIN

// Opens a scope of the calling function, which is guarded whatever the preferences say. Null when
// memory is out; otherwise to be closed by QKCloseLeakGuardScope().
//
// Close it before the function returns: a scope whose function is gone matches nothing, until that
// very function is called again at the same depth.
// Thread: any but audio. Realtime-safe: no.
VELTRA_EXPORT QKLeakGuard* QKOpenLeakGuardScope(void) VELTRA_NOEXCEPT;

// The same for a scope that is guarded as the preferences say.
// Thread: any but audio. Realtime-safe: no.
VELTRA_EXPORT QKLeakGuard* QKOpenLeakGuardScopeWithGroupAndKey(const VLString* group,
                                                               const VLString* key) VELTRA_NOEXCEPT;

// Closes and frees what one of the two functions above returned. Does nothing for null.
// Thread: any but audio, also another one. Realtime-safe: no.
VELTRA_EXPORT void QKCloseLeakGuardScope(QKLeakGuard* scope) VELTRA_NOEXCEPT;

// QKLeakGuard::ResetHistory().
VELTRA_EXPORT long QKResetLeakGuardHistory(bool print) VELTRA_NOEXCEPT;

// QKLeakGuard::OverridePreference().
VELTRA_EXPORT void QKOverrideLeakGuardPreference(const VLString* group, const VLString* key,
                                                 unsigned int value) VELTRA_NOEXCEPT;

// Writes a line for each of `count` addresses to standard output, as in the report. Nothing for
// null or a count below 1. `flag` deliberately does nothing: every caller gets the same lines.
// Thread: any but audio. Realtime-safe: no.
VELTRA_EXPORT void QKLeakGuardPrintStack(const uintptr_t* returnAddresses, int count,
                                         bool flag) VELTRA_NOEXCEPT;

VELTRA_C_END
