// SPDX-License-Identifier: MIT
// From sample positions to bars, beats and ticks.
#pragma once

#include "veltra/audio/musical_context.h"

#include <cstdint>
#include <string>

namespace veltra::console {

// A place in the music as people count it: the first bar is 1, its first beat is 1, ticks begin
// at 0.
struct BarBeatTick {
    std::int64_t bar = 1;
    std::int32_t beat = 1;
    std::int32_t tick = 0;  // 0 to CMusicalContext::kTicksPerBeat - 1
};

// How the music counts: by tempo and meter, the same from the beginning to the end. A beat is the
// meter's unit, and the tempo counts those: 6/8 at 120 has 120 eighths a minute.
struct Metre {
    std::int32_t tempo = 120000;  // thousandths of a beat a minute
    std::int32_t beatsPerBar = 4;
    std::int32_t beatUnit = 4;

    // 20 to 999 beats a minute; 1 to 64 beats; a unit of 1, 2, 4, up to 64. What is beyond becomes
    // the nearest of these, a unit between them the one below; NaN changes nothing.
    void setTempo(double beatsPerMinute) noexcept;
    void setMeter(int beats, int unit) noexcept;

    // In one word, so that another thread sees all of it or nothing.
    std::uint64_t packed() const noexcept;
    static Metre unpacked(std::uint64_t packed) noexcept;
};

// The console's own calculator for CMusicalContext: `rate`, the context's second number, is the
// true sample rate in frames a second, and tempo and meter are the context's fields. At 44,100 and
// 120 it computes what the built-in one does, which knows nothing else.
// Thread: any. Realtime-safe: yes.
void calculateAtRate(std::int32_t samplePosition, std::int32_t rate, CMusicalContext& context);

// Musical time `position` samples after the start at `rate` samples a second. A context counts in
// 32 bits: from sample 2,147,483,647 on (12 hours at 48 kHz) it stands still, its ticks from 19
// hours on at 120.
// Thread: any. Realtime-safe: yes.
CMusicalContext musicalContext(std::int64_t position, std::int32_t rate, const Metre& metre);

// The place at that position, however far. Thread: any. Realtime-safe: yes.
BarBeatTick placeInMusic(std::int64_t position, std::int32_t rate, const Metre& metre);

// "12.3.00480".
std::string toText(const BarBeatTick& place);

}  // namespace veltra::console
