// SPDX-License-Identifier: MIT
#include "onset_detector.h"

#include <algorithm>
#include <cmath>

namespace veltra::console {

namespace {

constexpr double kHopsPerSecond = 100.0;
constexpr double kLowestHertz = 50.0;
constexpr double kHighestHertz = 1000.0;
constexpr double kRise = 9.0;            // decibels above the background
constexpr double kQuietest = -50.0;      // decibels of an onset at least
constexpr double kFall = 1.0;            // decibels by which the background sinks in a hop
constexpr double kAttackSeconds = 0.02;  // noisy, without a pitch of its own
constexpr double kClarity = 0.8;         // of a pitch; a pure tone has 1

std::size_t framesIn(double seconds, int rate) {
    return static_cast<std::size_t>(std::max(std::lround(seconds * rate), 1L));
}

// How alike the wave is to itself `lag` frames later, over `window` frames: 1 for the same, 0 for
// nothing in common.
double likeness(const std::vector<float>& wave, std::size_t lag, std::size_t window) {
    double product = 0.0;
    double energy = 0.0;
    for (std::size_t i = 0; i < window; ++i) {
        const double a = static_cast<double>(wave[i]);
        const double b = static_cast<double>(wave[i + lag]);
        product += a * b;
        energy += a * a + b * b;
    }
    return energy > 0.0 ? 2.0 * product / energy : 0.0;
}

// Where a parabola through three neighbours has its peak, relative to the middle one.
double peakOffset(double before, double peak, double after) {
    const double bend = before - 2.0 * peak + after;
    return bend < 0.0 ? 0.5 * (before - after) / bend : 0.0;
}

}  // namespace

OnsetDetector::OnsetDetector(int rate)
    : m_hopFrames(framesIn(1.0 / kHopsPerSecond, rate)),
      m_longestWave(framesIn(1.0 / kLowestHertz, rate)),
      m_shortestWave(std::max<std::size_t>(framesIn(1.0 / kHighestHertz, rate), 2)),
      m_rate(rate) {
    m_hop.reserve(m_hopFrames);
    m_pitchWave.reserve(2 * m_longestWave);
}

void OnsetDetector::push(std::span<const float> samples) {
    for (const float sample : samples) {
        m_hop.push_back(sample);
        if (m_pitchFrom >= 0 && m_frames >= m_pitchFrom) {
            m_pitchWave.push_back(sample);
            if (m_pitchWave.size() == 2 * m_longestWave) findPitch();
        }
        ++m_frames;
        if (m_hop.size() == m_hopFrames) endHop();
    }
}

void OnsetDetector::endHop() {
    double squares = 0.0;
    float peak = 0.0F;
    for (const float sample : m_hop) {
        squares += static_cast<double>(sample) * static_cast<double>(sample);
        peak = std::max(peak, std::fabs(sample));
    }
    const double amplitude = std::sqrt(squares / static_cast<double>(m_hop.size()));
    const double decibels = 20.0 * std::log10(std::max(amplitude, 1e-5));
    const std::int64_t begin = m_frames - static_cast<std::int64_t>(m_hop.size());
    if (decibels > kQuietest && decibels > m_background + kRise && begin >= m_nextOnset) {
        // It begins with the first sample that rises above what was there.
        const auto first = std::find_if(m_hop.begin(), m_hop.end(), [this, peak](float sample) {
            return std::fabs(sample) > std::min(m_peakBefore, 0.5F * peak);
        });
        CTransient onset;
        onset.pos = begin + (first - m_hop.begin());
        onset.Energy = static_cast<float>(-amplitude);
        onset.visibleweight = static_cast<float>(std::min(1.0 - decibels / kQuietest, 1.0));
        m_onsets.push_back(onset);
        m_pitchFrom = m_frames + static_cast<std::int64_t>(kAttackSeconds * m_rate);
        m_pitchWave.clear();
        m_nextOnset = m_pitchFrom + static_cast<std::int64_t>(2 * m_longestWave);
    }
    m_background = std::max(decibels, m_background - kFall);
    m_peakBefore = peak;
    m_hop.clear();
}

// The wave is as long as the shortest lag at which it is nearly as much like itself as anywhere.
void OnsetDetector::findPitch() {
    m_pitchFrom = -1;
    std::vector<double> likenesses;
    for (std::size_t lag = m_shortestWave - 1; lag <= m_longestWave; ++lag)
        likenesses.push_back(likeness(m_pitchWave, lag, m_longestWave));
    const double best = *std::max_element(likenesses.begin(), likenesses.end());
    if (best < kClarity) return;
    for (std::size_t i = 1; i + 1 < likenesses.size(); ++i) {
        const double here = likenesses[i];
        const bool isPeak = here > likenesses[i - 1] && here >= likenesses[i + 1];
        if (!isPeak || here < 0.95 * best) continue;
        const double lag = static_cast<double>(m_shortestWave - 1 + i) +
                           peakOffset(likenesses[i - 1], here, likenesses[i + 1]);
        m_onsets.back().FreqHz = static_cast<float>(m_rate / lag);
        return;
    }
}

}  // namespace veltra::console
