// SPDX-License-Identifier: MIT
// A gain that never jumps: it takes 5 ms to a new value, in a straight line.
#pragma once

#include "mixing.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace veltra::console {

// Thread: one at a time. Realtime-safe: yes.
class Glide {
public:
    // Frames that a glide takes at `rate` frames a second, at least one.
    static std::size_t framesAt(double rate) noexcept {
        constexpr double kSeconds = 0.005;
        return std::max<std::size_t>(1, static_cast<std::size_t>(std::lround(rate * kSeconds)));
    }

    Glide(std::size_t frames, float value) noexcept
        : m_length(frames), m_done(frames), m_from(value), m_to(value) {}

    void jumpTo(float value) noexcept {
        m_to = value;
        m_done = m_length;
    }
    // From where it stands now; on its way there it just goes on.
    void moveTo(float value) noexcept {
        if (value == m_to) return;
        m_from = this->value();
        m_to = value;
        m_done = 0;
    }

    bool moves() const noexcept { return m_done < m_length; }
    bool standsAt(float value) const noexcept { return !moves() && m_to == value; }
    std::size_t framesLeft() const noexcept { return m_length - m_done; }
    float value() const noexcept {
        const float share = static_cast<float>(m_done) / static_cast<float>(m_length);
        return moves() ? m_from + (m_to - m_from) * share : m_to;
    }

    // Of the next frames, not more than framesLeft() while it moves; their gains are `scale` times
    // the glide's.
    Ramp ramp(float scale = 1.0F) const noexcept {
        if (!moves()) return {m_to * scale, 0.0F, 0.0F, 1.0F};
        return {m_from * scale, (m_to - m_from) * scale, static_cast<float>(m_done),
                static_cast<float>(m_length)};
    }
    // `frames` as a limit of a piece in which the glide is one straight line.
    std::size_t limit(std::size_t frames) const noexcept {
        return moves() ? std::min(frames, framesLeft()) : frames;
    }
    // Once these have been played: at most framesLeft() while it moves.
    void advance(std::size_t frames) noexcept {
        if (moves()) m_done += frames;
    }

private:
    std::size_t m_length;
    std::size_t m_done;
    float m_from;
    float m_to;
};

}  // namespace veltra::console
