// SPDX-License-Identifier: MIT
// The level of one channel, from the audio callback to a meter: three lines for a host.
//
//     tap.add(block, frames);                                          // audio thread
//     if (const LevelReading level = tap.take(); level.frames > 0)     // main thread, each redraw
//         cell.setLevel(meterPositionForAmplitude(level.peak));
//
// Tell the cell once that positions come from decibels, for screen readers:
// cell.setLevelScale(LevelMeterLevels::Decibels).
//
// However seldom the main thread looks, and however many blocks have come meanwhile: each sample is
// in exactly one reading. Peak and mean square of a reading belong to the same samples. For C:
// levels.h.
//
// Levels are linear amplitudes, 1 at full scale. NaN counts as silence, and a magnitude above
// kLargestLevel as that, so that a reading is always finite.
#pragma once

#include "veltra/audio/handover.h"
#include "veltra/export.h"

#include <cstddef>
#include <cstdint>

namespace veltra {

inline constexpr float kLargestLevel = 65536.0F;  // 96 dB above full scale

struct VELTRA_EXPORT LevelReading {
    float peak = 0.0F;         // largest magnitude
    float meanSquare = 0.0F;   // of all samples
    std::uint64_t frames = 0;  // how many samples; 0: none have come, and the rest says nothing

    // The root of the mean square. A sine at full scale has 0.7071.
    // Thread: any. Realtime-safe: yes.
    float rms() const noexcept;
};

class VELTRA_EXPORT LevelTap {
public:
    // Measures `frames` samples of one channel; the next is `stride` floats further on, which is
    // the number of channels where these are interleaved. Null counts as no samples.
    // Thread: audio, one at a time. Realtime-safe: yes, wait-free.
    void add(const float* samples, std::size_t frames, std::size_t stride = 1) noexcept;
    // What was measured elsewhere, taken within the same limits.
    void add(const LevelReading& measured) noexcept;

    // All that was added since the reading before. Without frames when nothing was, or when a block
    // is being added just now: leave the meter alone then, it falls to the level it was given last.
    // Thread: one at a time. Realtime-safe: yes, wait-free.
    LevelReading take() noexcept;

    // The same without a tap.
    // Thread: any. Realtime-safe: yes.
    static LevelReading measure(const float* samples, std::size_t frames,
                                std::size_t stride = 1) noexcept;

private:
    struct Sums {
        double squares = 0.0;
        std::uint64_t frames = 0;
        float peak = 0.0F;

        void add(const LevelReading& measured) noexcept;
    };

    Handover<Sums> m_sums;
};

// Readings smoothed to an RMS level that an eye can follow: an average in which older samples count
// less and less.
//
// Thread: one at a time. Realtime-safe: yes.
class VELTRA_EXPORT RmsAverage {
public:
    // After `seconds` a level that is cut off has fallen to 1 / e of its power, by 4.3 dB. Not
    // above 0, or NaN: each reading counts alone.
    explicit RmsAverage(double sampleRate, double seconds = 0.3) noexcept;

    // Returns the RMS amplitude from now on; one without frames changes nothing.
    float add(const LevelReading& reading) noexcept;
    float rms() const noexcept;
    void reset() noexcept { m_meanSquare = 0.0; }

private:
    double m_framesOfAverage;
    double m_meanSquare = 0.0;
};

}  // namespace veltra
