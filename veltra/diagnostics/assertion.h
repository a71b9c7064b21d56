// SPDX-License-Identifier: MIT
// Assertions that ask the user how to go on.
#pragma once

#include "veltra/c_linkage.h"

#include <stdint.h>

VELTRA_C_BEGIN

// Judges an assertion. When `condition` is 0, logs "ASSERT(<expression>) in <location> failed."
// at level 3 with the tag "dbgASSERT", then shows an alert for at most 60 seconds:
//     "Resume", also when time runs out    returns 0
//     "Debugger"                           returns 1: the caller breaks into the debugger
//     "Stop"                               ends the process with exit status 1
// Call sites that fail often pass a counter of their own in `showCounter`, null otherwise. A
// positive counter says how many more alerts to show and is counted down, -1 shows them always,
// any other value neither logs nor shows anything. With a counter the third button is "Don't
// show again": it sets the counter to 0 and returns 0.
//
// Texts are bytes to this function: what is not ASCII is logged as it stands, and shown if it is
// UTF-8. The line may have 4095 bytes; what is longer is cut, never inside a UTF-8 character.
// A "%%" in them is logged as "%".
// Thread: main. Realtime-safe: no.
VELTRA_EXPORT int dbgASSERT(int condition, const char* expression, const char* location,
                            int32_t* showCounter) VELTRA_NOEXCEPT;

// Returns 1 when the last assertion has failed, even one that showed nothing, and nobody has asked
// since; else 0. Asking clears the flag.
// Thread: main. Realtime-safe: yes.
VELTRA_EXPORT int dbgAssertionFailed(void) VELTRA_NOEXCEPT;

VELTRA_C_END
