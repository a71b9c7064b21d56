// SPDX-License-Identifier: MIT
// Tells code that keeps something for each thread when a thread ends.
//
// A thread-local object with a destructor would be simpler, but the process ends when there is no
// memory to register that destructor.
#pragma once

namespace veltra {

// Calls `function` on this thread when the thread ends: once, however often it is asked for, and
// not when the process ends by exit(). The whole process has one such function. False when memory
// is out. Thread: any. Realtime-safe: no.
bool callAtThreadEnd(void (*function)() noexcept) noexcept;

}  // namespace veltra
