// SPDX-License-Identifier: MIT
// A lock for sections of a few microseconds that may, rarely, last longer: a thread that meets it
// held spins for a moment, then sleeps until it is released.
//
// The C library has an adaptive mutex too, but not on every system, and a forked child may not make
// one free that a thread of its parent held: setting it up anew while it counts as locked is
// undefined. This lock is one word that needs no set-up before the first thread and no clearing up
// at the end, and reset() is a store.
//
// One word: 0 free, 1 held, 2 held and somebody may be asleep. Only the holder leaves 1 or 2, and
// it leaves by an exchange with 0; whoever goes to sleep has first put 2 there, so the release that
// follows wakes a sleeper. A woken thread takes the lock with 2: others may still be asleep, and at
// worst one wake-up is spent on nobody.
#pragma once

#include "veltra/export.h"

#include <atomic>

namespace veltra {

class AdaptiveLock {
public:
    // Waits until the lock is free, and takes it. A thread that holds it already waits for ever.
    // Thread: any. Realtime-safe: no, it may sleep.
    void lock() noexcept {
        for (int turn = 0; turn < kTurns; ++turn) {
            int free = 0;
            if (m_state.load(std::memory_order_relaxed) == free &&
                m_state.compare_exchange_weak(free, 1, std::memory_order_acquire,  // with unlock()
                                              std::memory_order_relaxed))
                return;
        }
        while (m_state.exchange(2, std::memory_order_acquire) != 0)  // with unlock()
            m_state.wait(2, std::memory_order_relaxed);
    }

    // Gives the lock back and wakes one thread that sleeps for it, if any does.
    // Thread: the one that holds it. Realtime-safe: no, waking is a system call.
    void unlock() noexcept {
        if (m_state.exchange(0, std::memory_order_release) == 2)  // with lock()
            m_state.notify_one();
    }

    // In a forked child, before it has a second thread: the holder may not exist here.
    void reset() noexcept { m_state.store(0, std::memory_order_relaxed); }

private:
    static constexpr int kTurns = 100;
    std::atomic<int> m_state{0};
};

}  // namespace veltra
