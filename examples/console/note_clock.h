// SPDX-License-Identifier: MIT
// Which frame is due now: what was rendered grows a block at a time, the time of who plays does
// not. Notes that are told to begin at that frame come in the rhythm in which they were played,
// as long as blocks are shorter than kMostAhead.
#pragma once

#include "veltra/base/time.h"

#include <algorithm>
#include <cstdint>
#include <limits>

namespace veltra::console {

// Thread: one at a time.
class NoteClock {
public:
    explicit NoteClock(double rate) noexcept : m_rate(rate) {}

    // `rendered` is how many frames were rendered at `now`, which is not before that of the last
    // call. Returns a frame from `rendered` on, at most kMostAhead seconds later. The more often it
    // is asked, the better it knows.
    std::uint64_t frameAt(Moment now, std::uint64_t rendered) noexcept {
        const double time = (now - Moment()).seconds() * m_rate;
        const auto done = static_cast<double>(rendered);
        // The frames run as far ahead of the time as right after a block; and slowly back, since
        // the clock of the device may be the slower one.
        m_ahead = std::max(m_ahead - kMostDrift * (time - m_time), done - time);
        m_time = time;
        if (time + m_ahead - done > kMostAhead * m_rate) m_ahead = done - time;  // it stood still
        return rendered + static_cast<std::uint64_t>(time + m_ahead - done);
    }

    static constexpr double kMostAhead = 0.1;

private:
    static constexpr double kMostDrift = 0.001;

    double m_rate;
    double m_time = 0.0;                                        // of the last call, in frames
    double m_ahead = -std::numeric_limits<double>::infinity();  // of it
};

}  // namespace veltra::console
