// SPDX-License-Identifier: MIT
// The end of a thread, for who keeps something for it.
//
// A thread-local object with a destructor would do, if the process did not end when there is no
// memory to register the destructor.
#pragma once

namespace veltra {

// Has `function` called on this thread when it ends, once for any number of calls; not on the main
// thread when the process ends by exit(). The same function for the whole process. False when
// memory is out.
// Thread: any. Realtime-safe: no.
bool callAtThreadEnd(void (*function)() noexcept) noexcept;

}  // namespace veltra
