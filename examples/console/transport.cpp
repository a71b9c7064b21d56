// SPDX-License-Identifier: MIT
#include "transport.h"

#include "text.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>

namespace veltra::console {

namespace {

constexpr std::int32_t kBuiltInRate = 44100;

// `tempo` in thousandths of a beat a minute.
double samplesOfBeat(std::int32_t tempo, std::int32_t rate) {
    return 60000.0 / tempo * rate;
}

// The nearest tick as 32 bits hold it; the division keeps a bad rate from doing harm.
std::int32_t toTicks(double ticks) {
    constexpr double kLimit = std::numeric_limits<std::int32_t>::max();
    return std::isfinite(ticks) ? static_cast<std::int32_t>(std::clamp(ticks, -kLimit, kLimit)) : 0;
}

}  // namespace

void calculateAtRate(std::int32_t samplePosition, std::int32_t rate, CMusicalContext& context) {
    const double samplesPerBeat = samplesOfBeat(context.m_tempo, rate);
    const double samplesPerTick = samplesPerBeat / CMusicalContext::kTicksPerBeat;
    const double barPosition =
        std::remainder(samplePosition / samplesPerBeat, double(context.m_meterNumerator));
    context.m_positionInBarInTicks = toTicks(barPosition * CMusicalContext::kTicksPerBeat);
    context.m_positionInTicks = toTicks(samplePosition / samplesPerTick + 0.5);
    context.m_samplesToNextTick =
        toTicks(samplesPerTick - std::remainder(double(samplePosition), samplesPerTick));
}

void Metre::setTempo(double beatsPerMinute) noexcept {
    if (std::isnan(beatsPerMinute)) return;
    tempo =
        static_cast<std::int32_t>(std::lround(std::clamp(beatsPerMinute, 20.0, 999.0) * 1000.0));
}

void Metre::setMeter(int beats, int unit) noexcept {
    beatsPerBar = std::clamp(beats, 1, 64);
    beatUnit = static_cast<std::int32_t>(
        std::bit_floor(static_cast<std::uint32_t>(std::clamp(unit, 1, 64))));
}

std::uint64_t Metre::packed() const noexcept {
    return static_cast<std::uint64_t>(tempo) << 32U |
           static_cast<std::uint64_t>(beatsPerBar) << 16U | static_cast<std::uint64_t>(beatUnit);
}

Metre Metre::unpacked(std::uint64_t packed) noexcept {
    return {static_cast<std::int32_t>(packed >> 32U),
            static_cast<std::int32_t>(packed >> 16U & 0xFFFFU),
            static_cast<std::int32_t>(packed & 0xFFFFU)};
}

// A context calls its calculator when it is made, with tempo and meter as they are by default;
// other ones need a second call.
CMusicalContext musicalContext(std::int64_t position, std::int32_t rate, const Metre& metre) {
    constexpr std::int64_t kLast = std::numeric_limits<std::int32_t>::max();
    const auto sample = static_cast<std::int32_t>(std::clamp<std::int64_t>(position, 0, kLast));
    CMusicalContext context(sample, rate, rate == kBuiltInRate ? nullptr : calculateAtRate);
    const Metre usual;
    if (metre.tempo == usual.tempo && metre.beatsPerBar == usual.beatsPerBar &&
        metre.beatUnit == usual.beatUnit) {
        return context;
    }
    context.m_tempo = metre.tempo;
    context.m_meterNumerator = metre.beatsPerBar;
    context.m_meterDenominator = metre.beatUnit;
    calculateAtRate(sample, rate, context);
    return context;
}

BarBeatTick placeInMusic(std::int64_t position, std::int32_t rate, const Metre& metre) {
    const double samplesPerTick = samplesOfBeat(metre.tempo, rate) / CMusicalContext::kTicksPerBeat;
    const auto samples = static_cast<double>(std::max<std::int64_t>(position, 0));
    const auto ticks = static_cast<std::int64_t>(samples / samplesPerTick + 0.5);
    const std::int64_t beats = ticks / CMusicalContext::kTicksPerBeat;
    BarBeatTick place;
    place.bar = beats / metre.beatsPerBar + 1;
    place.beat = static_cast<std::int32_t>(beats % metre.beatsPerBar) + 1;
    place.tick = static_cast<std::int32_t>(ticks % CMusicalContext::kTicksPerBeat);
    return place;
}

std::string toText(const BarBeatTick& place) {
    return formatted("%lld.%d.%05d", static_cast<long long>(place.bar), place.beat, place.tick);
}

}  // namespace veltra::console
