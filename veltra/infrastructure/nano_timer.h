// SPDX-License-Identifier: MIT
// A nanosecond stopwatch for measuring code: adds up the intervals between start() and stop(),
// takes off what measuring itself costs, and prints the average with a fitting unit.
//
//   const std::unique_ptr<QKNanoTimer> timer = QKNanoTimer::timer();
//   for (const Block& block : blocks) {
//       timer->start();
//       process(block);
//       timer->stop();
//   }
//   std::puts(timer->description().c_str());    // "12.5us"
#pragma once

#include "veltra/export.h"

#include <cstdint>
#include <memory>
#include <string>

namespace veltra {

// All arithmetic is unsigned and 64 bits wide, deliberately also where it wraps: a reading of 0
// after a clock error makes one wild interval, never a crash.
//
// Thread: any, one at a time for each timer. Realtime-safe: as each function says, and only as long
// as the clock can be read: a clock error is printed to standard error, which is a system call.
class VELTRA_EXPORT QKNanoTimer {
public:
    // A calibrated timer, idle and with empty sums, owned by the caller. Null when memory is out,
    // or when there is no clock; then it also prints "host_get_clock_service : <error number>:
    // <text>". Realtime-safe: no.
    static std::unique_ptr<QKNanoTimer> timer() noexcept;

    // The clock's reading in nanoseconds. When it cannot be read, 0, and it prints
    // "clock_get_time : <error number>: <text>". Realtime-safe: yes.
    std::uint64_t _getclock() const noexcept;

    // Begins an interval; ignored while one runs. Realtime-safe: yes.
    void start() noexcept;

    // Ends the interval, adds it to the sum and counts it; ignored when none runs. The cost of a
    // start/stop pair is taken off; an interval that was shorter adds 0 and still counts.
    // Realtime-safe: yes.
    void stop() noexcept;

    // Forgets a running interval, the sum and the count; the correction stays. Realtime-safe: yes.
    void reset() noexcept;

    // Sets the count that the sum is divided by, for instance to the rounds of a loop that was
    // measured as one interval; ignored while an interval runs. Realtime-safe: yes.
    void setLoopcounter(std::int32_t count) noexcept;

    // While an interval runs: how long it has run, deliberately without the correction, as nothing
    // has been stopped yet. Otherwise: the average interval, 0 when the count is 0. A negative
    // count is taken as the large unsigned number with the same bits. Realtime-safe: yes.
    std::uint64_t nanoseconds() const noexcept;

    // nanoseconds() as text: "499ns", "0.5us", "0.5ms", "0.6s (600.0ms)", with a decimal point in
    // every locale. The unit is chosen before rounding: 499999 ns are "500.0us". Realtime-safe: no.
    std::string description() const;

private:
    QKNanoTimer() noexcept = default;

    bool init() noexcept;

    std::uint64_t startTime = 0;           // nanoseconds, at the last start
    std::uint64_t endTime = 0;             // nanoseconds, at the last stop, corrected
    std::uint64_t sumTime = 0;             // nanoseconds, all intervals since reset
    std::uint64_t internalCorrection = 0;  // nanoseconds, cost of one start/stop pair
    std::int32_t loopCounter = 0;          // intervals since reset
    bool isRunning = false;                // between start and stop
    std::uint32_t myHost = 0;              // whose clock: 0, the machine that this runs on
    std::uint32_t clk_realtime = 0;  // which clock of it: 0, the one that Clocks calls monotonic
};

}  // namespace veltra
