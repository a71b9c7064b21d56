// SPDX-License-Identifier: MIT
// Tells code that keeps something for each thread when a thread ends.
//
// A thread-local object with a destructor would be simpler, but the process ends when there is no
// memory to register that destructor.
#pragma once

#include <cstdint>

namespace veltra {

// One for each function, made once and kept for good:
//
//   static const ThreadEnd end(endOwnLoop);
//   if (!end.callOnThisThread()) ...
//
// Thread: any. Realtime-safe: no.
class ThreadEnd {
public:
    explicit ThreadEnd(void (*function)() noexcept) noexcept;
    ThreadEnd(const ThreadEnd&) = delete;
    ThreadEnd& operator=(const ThreadEnd&) = delete;

    // Calls the function on this thread when the thread ends: once, however often it is asked for,
    // and not when the process ends by exit(). False when memory, or the system's room for such
    // functions, is out.
    bool callOnThisThread() const noexcept;

private:
    void (*m_function)() noexcept;
    std::uintptr_t m_key = 0;
    bool m_isMade = false;
};

}  // namespace veltra
