// SPDX-License-Identifier: MIT
// A run loop for hosts without an event loop of their own, and the one each thread has until it
// sets another.
#pragma once

#include "veltra/export.h"
#include "veltra/platform/run_loop.h"

#include <atomic>
#include <optional>

namespace veltra {

// Thread: the loop's, unless said otherwise. Realtime-safe: no.
class VELTRA_EXPORT PollRunLoop final : public RunLoop {
public:
    // Works also when the process is out of file descriptors; stop() then takes up to 50 ms.
    PollRunLoop() noexcept;
    ~PollRunLoop() override;

    // Waits for timers and runs them until stop(), or until an action deletes the loop.
    void run();

    // Like run(), for at most `longest` (not above 0: runs what is due and ends). Returns whether
    // it ended by stop(). Ends at once when the clock cannot be read.
    bool runFor(Nanoseconds longest);

    // One round: waits for the next deadline, a stop() or a signal, but at most `longest`, then
    // runs what is due. Returns whether it met a stop(), and then runs nothing.
    bool runOnce(Nanoseconds longest);

    // Ends the innermost run() or runFor(), or makes the next one end at once; several calls before
    // that count as one. Thread: any. Realtime-safe: no (a system call).
    void stop() noexcept;

    // Made when first asked for; -1 when that fails.
    int descriptor() noexcept override;

protected:
    void deadlineChanged(std::optional<Moment> deadline) noexcept override;

private:
    enum class Round { Done, Stopped };

    Round round(Nanoseconds longest);
    bool takeStop() noexcept;
    void wait(Nanoseconds longest) const noexcept;

    std::atomic<bool> m_isStopAsked{false};  // any thread
    const int m_stopDescriptor;              // any thread writes, the loop reads; -1: none
    int m_timerDescriptor = -1;
};

}  // namespace veltra
