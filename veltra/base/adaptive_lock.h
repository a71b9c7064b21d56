// SPDX-License-Identifier: MIT
// A lock for sections of a few microseconds that may, rarely, last longer: a thread that finds it
// taken spins for a moment, then sleeps until it is released.
//
// One word: 0 free, 1 held, 2 held and a thread may be asleep. Only the holder ends 1 or 2, by an
// exchange with 0. A thread that goes to sleep has put 2 there first, so the release that
// follows wakes a sleeper. A woken thread takes the lock with 2: others may still be asleep, and at
// worst one wake-up finds nobody.
#pragma once

#include <atomic>

namespace veltra {

class AdaptiveLock {
public:
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
