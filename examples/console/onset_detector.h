// SPDX-License-Identifier: MIT
// A simple detector of onsets: where the energy of a signal jumps, how loud what begins there is,
// and which pitch it has.
#pragma once

#include "veltra/audio/transients.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace veltra::console {

// Thread: one at a time. Realtime-safe: no.
class OnsetDetector {
public:
    explicit OnsetDetector(int rate);

    // The next samples of one channel, as many as there are.
    void push(std::span<const float> samples);

    // The onsets so far, by position. `visibleweight` is 0 to 1. `FreqHz` is 0 where there is no
    // clear pitch between 50 and 1000 Hz. `Energy` is the negative amplitude: a list that is
    // thinned keeps its weakest transients, and here these shall be the loudest onsets.
    const CTransients& onsets() const noexcept { return m_onsets; }

private:
    void endHop();
    void findPitch();

    const std::size_t m_hopFrames;    // 10 ms
    const std::size_t m_longestWave;  // frames
    const std::size_t m_shortestWave;
    const double m_rate;
    std::int64_t m_frames = 0;       // pushed so far
    std::vector<float> m_hop;        // what there is of the current hop
    double m_background = -100.0;    // decibels: what an onset has to stand out from
    float m_peakBefore = 0.0F;       // of the hop before
    std::int64_t m_nextOnset = 0;    // none before this frame
    std::int64_t m_pitchFrom = -1;   // the frame from which to listen for a pitch; -1: not now
    std::vector<float> m_pitchWave;  // two of the longest waves, from there on
    CTransients m_onsets;
};

}  // namespace veltra::console
