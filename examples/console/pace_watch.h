// SPDX-License-Identifier: MIT
// Whether an output still takes audio at the pace of real time: the only sign that a device gives
// which is gone or hangs.
#pragma once

#include "veltra/base/time.h"

#include <cstdint>
#include <optional>

namespace veltra::console {

enum class Pace { Steady, Stands, RunsAway };

// Compares frames with the monotonic clock, and forgives what a device does in honest work: it
// fills its buffers at the start, its clock is not ours, it hiccups. Needs looks at least every
// half second; when one comes late, as after a sleep of the whole process, it counts from there.
class PaceWatch {
public:
    PaceWatch(std::int32_t rate, std::uint32_t blockFrames) noexcept
        : m_rate(rate), m_block(static_cast<double>(blockFrames) / rate) {}

    // `frames` were rendered by now since the start, a block at a time. What is not steady is told
    // within two seconds, or one and a half and the time of a block.
    Pace look(Moment now, std::uint64_t frames) noexcept;

private:
    struct Mark {
        Moment time;
        std::uint64_t frames;
    };

    std::int32_t m_rate;
    double m_block;                // seconds
    bool m_hasStarted = false;     // and been steady for a second
    std::optional<Mark> m_anchor;  // what is compared with
    Moment m_lastLook;
};

}  // namespace veltra::console
