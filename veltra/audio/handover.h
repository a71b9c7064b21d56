// SPDX-License-Identifier: MIT
// The newest state of something that one thread keeps changing, for another thread to look at now
// and then: levels, loudness, positions. Nothing waits, nothing is half written.
//
//     Handover<Statistics> statistics;
//     statistics.change([&](Statistics& all, bool isFresh) {     // audio thread, each block
//         if (isFresh) all = {};                                 // what was there has been taken
//         all.add(block);
//     });
//     if (const auto news = statistics.take()) show(*news);      // main thread, each redraw
//
// Who may do what. One thread changes (audio), one takes (main); either may be any thread, as long
// as its calls do not overlap one another.
//
// How it works. There are two slots, and one atomic number says which of them is on offer, or that
// none is. change() takes the slot on offer back and works on that; when the reader has taken it,
// it works on the other one. Then it offers the slot again. take() takes the slot on offer and
// copies it. So whoever has taken a slot is alone with it, and the slots need no atomics.
//
// Invariant: the slot that the writer works on is not the one that the reader copies from. Either
// the writer took it back itself, by the same exchange as the reader's, so that only one of the two
// got it. Or the reader got the last one that was offered, and the writer uses the other: the
// reader had finished with that before it took the last one, since its calls do not overlap.
//
// Why nothing is lost. A slot on offer either comes back to the writer, which goes on with it
// (isFresh is false), or goes to exactly one take(). While the writer works, nothing is on offer:
// a take() then returns nothing, and a later one returns it all.
//
// Both sides are wait-free: one exchange, and one store by the writer. The exchanges acquire what
// the other side did with the slot, the release store and the exchanges hand it over.
#pragma once

#include "veltra/export.h"

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace veltra {

// Value: copied by take(), so something small.
template <typename Value>
class Handover {
public:
    Handover() = default;
    Handover(const Handover&) = delete;
    Handover& operator=(const Handover&) = delete;

    // Calls `work(value, isFresh)` once and offers the value. Fresh: the one before was taken, or
    // there was none; `value` is then an older one, to be written over.
    // Thread: the writer's. Realtime-safe: yes, if `work` is.
    template <typename Work>
    void change(Work work) {
        const std::uint32_t back = m_offered.exchange(kNone, std::memory_order_acq_rel);  // take()
        const bool isFresh = back == kNone;
        if (isFresh) m_last = 1U - m_last;
        work(m_slots[m_last], isFresh);
        m_offered.store(m_last, std::memory_order_release);  // with take()
    }

    // Nothing when there is none that was not taken before, and while the writer works on it.
    // Thread: the reader's. Realtime-safe: yes, if copying is.
    std::optional<Value> take() {
        const std::uint32_t taken =
            m_offered.exchange(kNone, std::memory_order_acq_rel);  // change()
        if (taken == kNone) return std::nullopt;
        return m_slots[taken];
    }

private:
    static constexpr std::uint32_t kNone = 2;

    std::array<Value, 2> m_slots{};
    std::uint32_t m_last = 1;                     // change() only: the slot that it offered last
    std::atomic<std::uint32_t> m_offered{kNone};  // any of the two threads

    static_assert(std::atomic<std::uint32_t>::is_always_lock_free);
};

}  // namespace veltra
