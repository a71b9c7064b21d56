// SPDX-License-Identifier: MIT
#include "transport.h"

#include "veltra/base/testing/prelude.h"

namespace veltra::console {
namespace {

BarBeatTick placeOf(std::int64_t position, std::int32_t rate) {
    return placeInMusic(position, rate, {});
}

TEST(Transport, TheConsolesCalculatorIsTheBuiltInOneAt44100) {
    for (std::int64_t sample = -100'000; sample < 2'000'000'000; sample += 99'991) {
        const auto position = static_cast<std::int32_t>(sample);
        const CMusicalContext builtIn(position, 44100);
        const CMusicalContext own(position, 44100, calculateAtRate);
        ASSERT_EQ(own.m_positionInTicks, builtIn.m_positionInTicks) << position;
        ASSERT_EQ(own.m_positionInBarInTicks, builtIn.m_positionInBarInTicks) << position;
        ASSERT_EQ(own.m_samplesToNextTick, builtIn.m_samplesToNextTick) << position;
    }
}

TEST(Transport, ABarTakesTwoSecondsAtEveryRateAndHalfABeatIs7680Ticks) {
    for (const std::int32_t rate : {8000, 22050, 44100, 48000, 96000, 192000}) {
        for (const std::int64_t bar : {1, 2, 17, 1000}) {
            const std::int64_t start = (bar - 1) * 2 * rate;
            EXPECT_EQ(toText(placeOf(start, rate)), std::to_string(bar) + ".1.00000");
            EXPECT_EQ(toText(placeOf(start + rate / 2, rate)), std::to_string(bar) + ".2.00000");
            EXPECT_EQ(toText(placeOf(start + rate * 3 / 2, rate)),
                      std::to_string(bar) + ".4.00000");
        }
    }
    for (const std::int32_t rate : {8000, 768'000})  // a day
        EXPECT_EQ(toText(placeOf(std::int64_t{86'400} * rate, rate)), "43201.1.00000");
    EXPECT_EQ(toText(placeOf(12000, 48000)), "1.1.07680");
    EXPECT_EQ(toText(placeOf(12000 - 1, 48000)), "1.1.07679");
}

TEST(Transport, TempoAndMeterCountBeatsAndStayInTheirRanges) {
    const struct {
        double tempo;
        int beats, unit;
        const char* atThreeSeconds;
        Metre expected;
    } rows[] = {{60, 3, 4, "2.1.00000", {60'000, 3, 4}},
                {90, 6, 8, "1.5.07680", {90'000, 6, 8}},
                {0, 0, 0, "2.1.00000", {20'000, 1, 1}},
                {1e9, 99, 63, "1.50.14592", {999'000, 64, 32}}};
    for (const auto& row : rows) {
        Metre metre;
        metre.setTempo(row.tempo);
        metre.setTempo(std::nan(""));
        metre.setMeter(row.beats, row.unit);
        EXPECT_EQ(metre.packed(), row.expected.packed());
        EXPECT_EQ(Metre::unpacked(metre.packed()).packed(), row.expected.packed());
        EXPECT_EQ(toText(placeInMusic(3 * 44100, 44100, metre)), row.atThreeSeconds) << row.tempo;
        const CMusicalContext music = musicalContext(0, 48000, metre);
        EXPECT_EQ(music.m_meterDenominator, row.expected.beatUnit);
    }
}

}  // namespace
}  // namespace veltra::console
