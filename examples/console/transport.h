// SPDX-License-Identifier: MIT
// From sample positions to bars, beats and ticks: four beats to the bar at 120 beats a minute.
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

// The console's own calculator for CMusicalContext: `rate`, the context's second number, is the
// true sample rate in frames a second, and the tempo is the context's field. At 44,100 it computes
// what the built-in one does, which knows no other rate.
// Thread: any. Realtime-safe: yes.
void calculateAtRate(std::int32_t samplePosition, std::int32_t rate, CMusicalContext& context);

// Musical time `position` samples after the start at `rate` samples a second. A context counts in
// 32 bits: from sample 2,147,483,647 on (12 hours at 48 kHz) it stands still.
// Thread: any. Realtime-safe: yes.
CMusicalContext musicalContext(std::int64_t position, std::int32_t rate);

// The place `ticks` after the start. Thread: any. Realtime-safe: yes.
BarBeatTick barBeatTick(std::int32_t ticks);

// "12.3.00480".
std::string toText(const BarBeatTick& place);

}  // namespace veltra::console
