// SPDX-License-Identifier: MIT
#include "transport.h"

#include "text.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace veltra::console {

namespace {

constexpr std::int32_t kBuiltInRate = 44100;

// The nearest tick as 32 bits hold it; the division keeps a bad rate from doing harm.
std::int32_t toTicks(double ticks) {
    constexpr double kLimit = std::numeric_limits<std::int32_t>::max();
    return std::isfinite(ticks) ? static_cast<std::int32_t>(std::clamp(ticks, -kLimit, kLimit)) : 0;
}

}  // namespace

void calculateAtRate(std::int32_t samplePosition, std::int32_t rate, CMusicalContext& context) {
    const double samplesPerBeat = 60000.0 / context.m_tempo * rate;
    const double samplesPerTick = samplesPerBeat / CMusicalContext::kTicksPerBeat;
    const double barPosition =
        std::remainder(samplePosition / samplesPerBeat, double(context.m_meterNumerator));
    context.m_positionInBarInTicks = toTicks(barPosition * CMusicalContext::kTicksPerBeat);
    context.m_positionInTicks = toTicks(samplePosition / samplesPerTick + 0.5);
    context.m_samplesToNextTick =
        toTicks(samplesPerTick - std::remainder(double(samplePosition), samplesPerTick));
}

CMusicalContext musicalContext(std::int64_t position, std::int32_t rate) {
    constexpr std::int64_t kLast = std::numeric_limits<std::int32_t>::max();
    const auto sample = static_cast<std::int32_t>(std::clamp<std::int64_t>(position, 0, kLast));
    return {sample, rate, rate == kBuiltInRate ? nullptr : calculateAtRate};
}

BarBeatTick barBeatTick(std::int32_t ticks) {
    constexpr std::int32_t kBeatsPerBar = 4;
    const std::int32_t beats = ticks / CMusicalContext::kTicksPerBeat;
    BarBeatTick place;
    place.bar = beats / kBeatsPerBar + 1;
    place.beat = beats % kBeatsPerBar + 1;
    place.tick = ticks % CMusicalContext::kTicksPerBeat;
    return place;
}

std::string toText(const BarBeatTick& place) {
    return formatted("%lld.%d.%05d", static_cast<long long>(place.bar), place.beat, place.tick);
}

}  // namespace veltra::console
