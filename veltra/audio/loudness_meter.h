// SPDX-License-Identifier: MIT
// Loudness and true peak of a programme while it plays, as broadcasters measure them (ITU-R
// BS.1770, EBU R 128): the audio thread adds, the main thread reads.
//
//     LoudnessMeter meter(48000, 2);
//     meter.add(interleaved, frames);                                  // audio thread
//     readout.setDecibels(meter.read().integrated);                    // main thread
//
// Built without libebur128 (VELTRA_EBUR128), there is no measurement: isAvailable() is false, and
// all values stay minus infinity.
#pragma once

#include "veltra/audio/handover.h"
#include "veltra/export.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <span>
#include <vector>

namespace veltra {

// What a channel counts for.
enum class LoudnessChannel : std::uint8_t {
    Front,     // any loudspeaker but those at the sides
    Surround,  // one at the sides: 1.5 dB more
    Unused,    // low-frequency effects: not at all
};

// Minus infinity where nothing is known yet, and for silence.
struct LoudnessReading {
    double momentary = -std::numeric_limits<double>::infinity();   // LUFS, of the last 0.4 s
    double shortTerm = -std::numeric_limits<double>::infinity();   // LUFS, of the last 3 s
    double integrated = -std::numeric_limits<double>::infinity();  // LUFS, since the start, gated
    double truePeak = -std::numeric_limits<double>::infinity();    // dBTP, highest since the start
};

class VELTRA_EXPORT LoudnessMeter {
public:
    // The channels of the usual orders: up to 3 in front; 4 are L R Ls Rs, 5 are L R C Ls Rs, 6 are
    // L R C LFE Ls Rs, and what comes after these counts as in front.
    LoudnessMeter(std::uint32_t sampleRate, std::size_t channels);
    // A role for each channel.
    LoudnessMeter(std::uint32_t sampleRate, std::span<const LoudnessChannel> channels);
    LoudnessMeter(const LoudnessMeter&) = delete;
    LoudnessMeter& operator=(const LoudnessMeter&) = delete;
    ~LoudnessMeter();

    // False without the library, without memory, and for no or more than 64 channels or a sample
    // rate outside of 16 to 2,822,400.
    // Thread: any. Realtime-safe: yes.
    bool isAvailable() const noexcept { return m_isAvailable; }

    // Measures `frames` frames of interleaved samples. Samples that are not finite count as 0.
    // Null counts as no samples. A call that completes 0.1 s of signal costs more than the others.
    // Thread: audio, one at a time. Realtime-safe: yes.
    void add(const float* samples, std::size_t frames) noexcept;

    // The newest values: loudness changes each 0.1 s of signal, the true peak with each block.
    // Frees what a reset() has left.
    // Thread: main. Realtime-safe: no.
    LoudnessReading read() noexcept;

    // Begins again: from now on read() knows only what is added after the next block has begun.
    // Returns false, and goes on as before, when memory is out.
    // Thread: main. Realtime-safe: no, it allocates.
    bool reset() noexcept;

private:
    struct Analysis;
    struct Offer {
        LoudnessReading reading;
        std::uint32_t generation = 0;
    };

    std::unique_ptr<Analysis> makeAnalysis() const noexcept;
    void giveBack(Analysis* analysis) noexcept;
    void collect() noexcept;

    const std::uint32_t m_sampleRate;
    const std::vector<LoudnessChannel> m_channels;
    std::uint32_t m_generation = 0;        // main only: counts resets
    std::unique_ptr<Analysis> m_analysis;  // add() only
    const bool m_isAvailable;
    std::atomic<Analysis*> m_next{nullptr};   // reset() offers, add() takes
    std::atomic<Analysis*> m_spent{nullptr};  // the head of a list: add() puts in, main frees
    Handover<Offer> m_offers;
    Offer m_last;  // read() only

    static_assert(std::atomic<Analysis*>::is_always_lock_free);
};

}  // namespace veltra
