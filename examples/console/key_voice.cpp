// SPDX-License-Identifier: MIT
#include "key_voice.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace veltra::console {

namespace {

constexpr int kOctave = 12;
constexpr int kA3 = 69;
constexpr double kA3Frequency = 440.0;
constexpr double kReleaseSeconds = 0.08;
constexpr float kToneLevel = 0.2F;  // so that a full chord stays below full scale

// Of the partials, from the fundamental up.
constexpr std::array<double, 8> kStrengths{1.0, 0.42, 0.22, 0.13, 0.07, 0.045, 0.025, 0.015};
constexpr double kHalfStrengthPitch = 24.0;  // notes up that die away twice as fast
constexpr double kSecondsOfMiddleC = 6.0;    // until it has fallen by 60 dB
constexpr double kBrightness = 0.3;          // how much a soft strike takes from each partial
// Shares of the rate between which partials are left out.
constexpr double kDull = 0.35;
constexpr double kMute = 0.45;

// The curve through four frames, in the middle part; at 0 it is `from[0]`, exactly.
float between(const float* from, float share) noexcept {
    const float slope0 = 0.5F * (from[1] - from[-1]);
    const float slope1 = 0.5F * (from[2] - from[0]);
    const float step = from[0] - from[1];
    const float cubic = slope0 + slope1 + 2.0F * step;
    const float square = -3.0F * step - 2.0F * slope0 - slope1;
    return ((cubic * share + square) * share + slope0) * share + from[0];
}

}  // namespace

void KeyTone::start(int note, float strike, double rate) noexcept {
    const double pitch = kA3Frequency * std::exp2(static_cast<double>(note - kA3) / kOctave);
    const double seconds =
        kSecondsOfMiddleC * std::exp2(static_cast<double>(kMiddleC - note) / kHalfStrengthPitch);
    for (std::size_t i = 0; i < kPartials; ++i) {
        const auto above = static_cast<double>(i);
        const double share = pitch * (above + 1.0) / rate;
        const double inRange = std::clamp((kMute - share) / (kMute - kDull), 0.0, 1.0);
        const double bright = std::pow(static_cast<double>(strike), kBrightness * above);
        const double shrink = std::pow(0.001, (1.0 + 0.6 * above) / (seconds * rate));
        m_x[i] = kStrengths[i] * inRange * bright * static_cast<double>(kToneLevel * strike);
        m_y[i] = 0.0;
        m_turnX[i] = shrink * std::cos(2.0 * std::numbers::pi * share);
        m_turnY[i] = shrink * std::sin(2.0 * std::numbers::pi * share);
    }
    constexpr double kFarDown = 100.0 / 60.0;
    m_framesLeft = static_cast<std::uint64_t>(std::ceil(kFarDown * seconds * rate));
}

float KeyTone::next() noexcept {
    double sum = 0.0;
    for (std::size_t i = 0; i < kPartials; ++i)
        sum += m_y[i];
    for (std::size_t i = 0; i < kPartials; ++i) {
        const double x = m_x[i] * m_turnX[i] - m_y[i] * m_turnY[i];
        m_y[i] = m_x[i] * m_turnY[i] + m_y[i] * m_turnX[i];
        m_x[i] = x;
    }
    --m_framesLeft;
    return static_cast<float>(sum);
}

void KeyPlayback::start(const KeySound& sound, int note, float gain, double rate) noexcept {
    const double speed =
        std::exp2(static_cast<double>(note - kMiddleC) / kOctave) * sound.rate() / rate;
    const auto last = static_cast<long>(sound.levels().size()) - 1;
    const long level = std::clamp(std::lround(std::log2(speed)), 0L, last);
    m_level = &sound.levels()[static_cast<std::size_t>(level)];
    m_step = std::ldexp(speed, -static_cast<int>(level));
    m_position = 0.0;
    m_gain = gain;
}

std::array<float, 2> KeyPlayback::next() noexcept {
    const auto frame = static_cast<std::size_t>(m_position);
    const auto share = static_cast<float>(m_position - static_cast<double>(frame));
    const std::size_t place = frame + KeySound::Level::kBefore;
    const float left = m_gain * between(&m_level->channels.front()[place], share);
    const float right = m_level->channels.size() == 1
                            ? left
                            : m_gain * between(&m_level->channels.back()[place], share);
    m_position += m_step;
    return {left, right};
}

void KeyVoice::start(const KeySound* sound, int note, int velocity, double rate) noexcept {
    const float share = static_cast<float>(velocity) / 127.0F;
    const float strike = share * share;
    m_state = State::Held;
    m_note = note;
    m_isTone = sound == nullptr;
    m_gain = Glide(Glide::framesAt(rate), 0.0F);
    m_gain.moveTo(1.0F);
    if (m_isTone) {
        m_tone.start(note, strike, rate);
    } else {
        m_playback.start(*sound, note, strike, rate);
    }
}

void KeyVoice::release(double rate) noexcept {
    m_state = State::Released;
    m_releaseFrames = static_cast<std::size_t>(std::lround(rate * kReleaseSeconds));
    if (!m_gain.moves()) dieAway();  // else once it has begun
}

void KeyVoice::dieAway() noexcept {
    m_gain = Glide(m_releaseFrames, m_gain.value());
    m_gain.moveTo(0.0F);
}

void KeyVoice::fade(double rate) noexcept {
    m_state = State::Fading;
    m_gain = Glide(Glide::framesAt(rate), m_gain.value());
    m_gain.moveTo(0.0F);
}

bool KeyVoice::isOver() const noexcept {
    return m_gain.standsAt(0.0F) || (m_isTone ? m_tone.isOver() : m_playback.isOver());
}

std::array<float, 2> KeyVoice::next() noexcept {
    const float gain = m_gain.value();
    m_gain.advance(1);
    if (m_state == State::Released && m_gain.standsAt(1.0F)) dieAway();
    if (!m_isTone) {
        const std::array<float, 2> both = m_playback.next();
        return {gain * both[0], gain * both[1]};
    }
    const float sample = gain * m_tone.next();
    return {sample, sample};
}

void KeyVoice::render(float* const* outputs, std::uint32_t outputCount,
                      std::uint32_t frames) noexcept {
    for (std::uint32_t i = 0; i < frames; ++i) {
        if (isOver()) {
            m_state = State::Free;
            return;
        }
        const std::array<float, 2> both = next();
        if (outputCount == 2) {
            outputs[0][i] += both[0];
            outputs[1][i] += both[1];
        } else if (outputCount == 1) {
            outputs[0][i] += 0.5F * (both[0] + both[1]);
        }
    }
    if (isOver()) m_state = State::Free;
}

}  // namespace veltra::console
