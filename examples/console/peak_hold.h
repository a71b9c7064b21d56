// SPDX-License-Identifier: MIT
// The largest magnitude since somebody last looked, handed from the audio thread to the main
// thread.
//
// One thread raises (audio), one takes (main). The invariant: whatever was raised is covered by a
// value that is still held or that exactly one take answers. take() swaps the value for 0 in one
// step. raise() may look and then store, because it is the only one to store more than 0: if a take
// comes in between, the value held was taken, 0 is in its place, and the new magnitude belongs
// there all the more. What must never be stored is the larger of the two: that may have been taken,
// and would be shown twice. All orders are relaxed: the number is all that is handed over, and one
// atomic has one order of changes for all threads. Both sides are wait-free.
#pragma once

#include <atomic>

namespace veltra::console {

class PeakHold {
public:
    // A NaN is ignored. Thread: audio. Realtime-safe: yes.
    void raise(float magnitude) noexcept {
        if (magnitude > m_peak.load(std::memory_order_relaxed)) {
            m_peak.store(magnitude, std::memory_order_relaxed);  // with take()
        }
    }

    // 0 when nothing was raised since the last call. Thread: main. Realtime-safe: yes.
    float take() noexcept {
        return m_peak.exchange(0.0F, std::memory_order_relaxed);  // with raise()
    }

private:
    std::atomic<float> m_peak{0.0F};

    static_assert(std::atomic<float>::is_always_lock_free);
};

}  // namespace veltra::console
