// SPDX-License-Identifier: MIT
// One note that sounds: a tone that dies away like a string, or a file at pitch.
#pragma once

#include "glide.h"
#include "key_sound.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace veltra::console {

inline constexpr int kMiddleC = 60;  // C3; plays a file as it is
inline constexpr int kNotes = 128;

// A sum of partials that each turn and shrink by one multiplication a frame. None lies above the
// range of the output.
class KeyTone {
public:
    // `strike` is how hard, above 0 to 1: harder is louder and brighter.
    void start(int note, float strike, double rate) noexcept;
    bool isOver() const noexcept { return m_framesLeft == 0; }
    float next() noexcept;

private:
    static constexpr std::size_t kPartials = 8;

    // Of each partial: where it stands in its circle, and what turns it.
    std::array<double, kPartials> m_x{};
    std::array<double, kPartials> m_y{};
    std::array<double, kPartials> m_turnX{};
    std::array<double, kPartials> m_turnY{};
    std::uint64_t m_framesLeft = 0;
};

// A file between its frames.
class KeyPlayback {
public:
    void start(const KeySound& sound, int note, float gain, double rate) noexcept;
    bool isOver() const noexcept {
        return m_position >= static_cast<double>(m_level->frames);  // after start()
    }
    // Of both outputs.
    std::array<float, 2> next() noexcept;

private:
    const KeySound::Level* m_level = nullptr;  // not owned
    double m_position = 0.0;                   // in its frames
    double m_step = 1.0;
    float m_gain = 1.0F;
};

// What a frame comes to depends on how many came before, never on how they lie in blocks.
// Thread: audio. Realtime-safe: yes.
class KeyVoice {
public:
    enum class State : std::uint8_t {
        Free,
        Held,
        Sustained,  // its key is up, the pedal is down
        Released,   // dies away
        Fading,     // has to make room, as fast as there is no click
    };

    // Held from here on. Null: a tone. `sound` must live until the voice is free.
    void start(const KeySound* sound, int note, int velocity, double rate) noexcept;
    void sustain() noexcept { m_state = State::Sustained; }
    // However brief it was, it begins before it dies away.
    void release(double rate) noexcept;
    void fade(double rate) noexcept;

    // Adds the next frames; with one output their mean, with none they go by unheard. Free when it
    // has come to its end.
    void render(float* const* outputs, std::uint32_t outputCount, std::uint32_t frames) noexcept;

    State state() const noexcept { return m_state; }
    int note() const noexcept { return m_note; }

private:
    bool isOver() const noexcept;
    void dieAway() noexcept;
    std::array<float, 2> next() noexcept;

    State m_state = State::Free;
    bool m_isTone = true;
    int m_note = 0;
    std::size_t m_releaseFrames = 0;
    Glide m_gain{1, 0.0F};
    KeyTone m_tone;
    KeyPlayback m_playback;
};

}  // namespace veltra::console
