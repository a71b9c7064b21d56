// SPDX-License-Identifier: MIT
// The loudest channel of each second of a file, by energy.
#pragma once

#include <algorithm>
#include <cstddef>
#include <optional>
#include <vector>

namespace veltra::console {

// Thread: one at a time.
class LoudestChannels {
public:
    LoudestChannels(std::size_t channels, int rate)
        : m_energies(channels), m_rate(static_cast<std::size_t>(rate)) {}

    // Frames until the second ends; what is added must not reach beyond.
    std::size_t framesLeft() const noexcept { return m_rate - m_frames; }

    void add(std::size_t channel, double energy) noexcept { m_energies[channel] += energy; }

    // Once every channel of `frames` frames has been added.
    void advance(std::size_t frames) {
        m_frames += frames;
        if (m_frames == m_rate) endSecond();
    }

    // The loudest channel of each second, the first of equals; nothing where all are silent. A
    // second that has only begun counts.
    std::vector<std::optional<std::size_t>> seconds() const {
        LoudestChannels ended = *this;
        if (m_frames > 0) ended.endSecond();
        return ended.m_seconds;
    }

private:
    void endSecond() {
        const auto loudest = std::max_element(m_energies.begin(), m_energies.end());
        const auto channel = static_cast<std::size_t>(loudest - m_energies.begin());
        m_seconds.push_back(*loudest > 0.0 ? std::optional(channel) : std::nullopt);
        std::fill(m_energies.begin(), m_energies.end(), 0.0);
        m_frames = 0;
    }

    std::vector<double> m_energies;  // of the second that is under way
    std::size_t m_rate;
    std::size_t m_frames = 0;
    std::vector<std::optional<std::size_t>> m_seconds;
};

}  // namespace veltra::console
