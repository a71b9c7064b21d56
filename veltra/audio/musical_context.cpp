// SPDX-License-Identifier: MIT
#include "veltra/audio/musical_context.h"

#include <cmath>

namespace veltra {

namespace {

constexpr double kTempo = 120000.0;
constexpr double kSampleRate = 44100.0;
constexpr double kBeatsPerBar = 4.0;
constexpr double kBeatSeconds = 60000.0 / kTempo;
constexpr double kSamplesPerBeat = kBeatSeconds * kSampleRate;
constexpr double kSamplesPerTick = kSamplesPerBeat / CMusicalContext::kTicksPerBeat;

// Equal on every host: 735/512 samples make a tick, exactly, and remainder() is exact. A position
// that is no multiple of 735 lies at least 1/1470 tick from where truncation would jump, a thousand
// times the rounding error. On a multiple of 735 the position in the bar hangs on the last bit: its
// quotient and product must be rounded to double, which `volatile` enforces where registers are
// wider, and no product feeds a sum, so that there is nothing to fuse.
void calculateDefault(std::int32_t samplePosition, std::int32_t, CMusicalContext& context) {
    const double samples = samplePosition;
    const volatile double beats = samples / kSamplesPerBeat;
    const volatile double ticksInBar =
        std::remainder(beats, kBeatsPerBar) * CMusicalContext::kTicksPerBeat;

    context.m_positionInBarInTicks = static_cast<std::int32_t>(ticksInBar);
    // The half that rounds to the nearest tick is the beat's length in seconds; both are 0.5.
    context.m_positionInTicks = static_cast<std::int32_t>(samples / kSamplesPerTick + kBeatSeconds);
    context.m_samplesToNextTick =
        static_cast<std::int32_t>(kSamplesPerTick - std::remainder(samples, kSamplesPerTick));
}

}  // namespace

CMusicalContext::Calculator CMusicalContext::s_funcDefaultCalculator = nullptr;

CMusicalContext::CMusicalContext(std::int32_t samplePosition, std::int32_t second,
                                 Calculator calculator)
    : m_samplePosition(samplePosition), m_second(second) {
    if (calculator == nullptr) calculator = s_funcDefaultCalculator;
    if (calculator == nullptr) calculator = calculateDefault;
    calculator(samplePosition, second, *this);
}

}  // namespace veltra
