// SPDX-License-Identifier: MIT
// A run loop for hosts without an event loop of their own, and the one each thread has until it
// sets another.
//
// A loop that a forked child inherits goes on there with descriptors of its own, and leaves those
// of the parent alone: neither process disturbs the other's timers, whatever it runs, stops or
// destroys. (The parent's two numbers stay open in the child until it starts another program.)
#pragma once

#include "veltra/export.h"
#include "veltra/platform/run_loop.h"

#include <atomic>
#include <cstdint>
#include <memory>
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

    // Like run(), for at most `longest`; 0 or a negative time runs what is due and ends. Returns
    // whether it ended by stop(). Ends at once when the clock cannot be read.
    bool runFor(Nanoseconds longest);

    // One round: waits for the next deadline, a stop() or a signal, but at most `longest`, then
    // runs what is due. Returns whether it met a stop(); then it runs nothing.
    bool runOnce(Nanoseconds longest);

    // Ends the innermost run() or runFor(), or makes the next one end at once; several calls before
    // that count as one. The loop's thread may destroy the loop as soon as it has met the stop,
    // even before this call has returned: "stop, then join the thread" needs nothing in between.
    // A thread that calls while another thread's stop may end the loop has to keep the loop alive.
    // Thread: any. Realtime-safe: no (a system call).
    void stop() noexcept;

    // Made when first asked for; -1 when that fails. A forked child asks again and gets its own.
    int descriptor() noexcept override;

protected:
    void deadlineChanged(std::optional<Moment> deadline) noexcept override;

private:
    enum class Round { Done, Stopped };

    friend std::unique_ptr<RunLoop> makePlatformRunLoop() noexcept;
    class Waker;

    static std::shared_ptr<Waker> makeWaker() noexcept;

    Round round(Nanoseconds longest);
    bool takeStop() noexcept;
    void wait(int stopDescriptor, Nanoseconds longest) const;
    bool ownsTimerDescriptor() const noexcept;

    std::atomic<bool> m_isStopAsked{false};  // any thread
    const std::shared_ptr<Waker> m_waker;    // also of each stop() under way; null: memory was out
    int m_timerDescriptor = -1;
    std::uint32_t m_timerGeneration = 0;  // which process made it
};

}  // namespace veltra
