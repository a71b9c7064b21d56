// SPDX-License-Identifier: MIT
// The level of one channel, from the audio thread to a meter: of its samples, or of what lies
// between them, too.
#pragma once

#include "veltra/audio/level_tap.h"
#include "veltra/audio/true_peak.h"

#include <cstddef>

namespace veltra::console {

class ChannelLevel {
public:
    // Thread: audio. Realtime-safe: yes.
    void add(const float* samples, std::size_t frames, bool measuresTruePeak) noexcept {
        LevelReading level = LevelTap::measure(samples, frames);
        if (measuresTruePeak) {
            level.peak = m_truePeak.add(samples, frames);
        } else {
            m_truePeak.reset();
        }
        m_tap.add(level);
    }
    // The next sample does not follow the last one. Thread: audio. Realtime-safe: yes.
    void interrupt() noexcept { m_truePeak.reset(); }

    // All since the last call. Thread: main.
    LevelReading take() noexcept { return m_tap.take(); }

private:
    LevelTap m_tap;
    TruePeak m_truePeak;  // audio thread only
};

}  // namespace veltra::console
