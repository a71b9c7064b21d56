// SPDX-License-Identifier: MIT
#include "transport.h"

#include "veltra/base/testing/prelude.h"

namespace veltra::console {
namespace {

BarBeatTick placeOf(std::int64_t position, std::int32_t rate) {
    return barBeatTick(musicalContext(position, rate).m_positionInTicks);
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
    EXPECT_EQ(toText(placeOf(12000, 48000)), "1.1.07680");
    EXPECT_EQ(toText(placeOf(12000 - 1, 48000)), "1.1.07679");
}

}  // namespace
}  // namespace veltra::console
