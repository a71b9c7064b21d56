// SPDX-License-Identifier: MIT
#include "veltra/audio/musical_context.h"

#include "veltra/audio/musical_context_c.h"
#include "veltra/base/testing/prelude.h"

namespace veltra {
namespace {

TEST(MusicalContext, BuiltInCalculatorIsExactAndTheSameOnEveryHost) {
    std::uint64_t digest = 14695981039346656037U;  // FNV-1a over the fields, whatever the host
    int faults = 0;
    const auto visit = [&](std::int64_t sample) {
        const CMusicalContext context(static_cast<std::int32_t>(sample), 0);
        for (const std::int32_t field : {context.m_positionInTicks, context.m_positionInBarInTicks,
                                         context.m_samplesToNextTick}) {
            digest = (digest ^ static_cast<std::uint32_t>(field)) * 1099511628211U;
        }
        // A tick is 735/512 samples: the exact answers in whole numbers.
        constexpr std::int64_t kTick = 735, kBar = kTick * 61440;
        const std::int64_t scaled = sample * 512;
        const bool ticksRight = context.m_positionInTicks == (2 * scaled + kTick) / (2 * kTick);

        std::int64_t fromTick = ((scaled % kTick) + kTick) % kTick;
        if (fromTick > kTick / 2) fromTick -= kTick;
        const bool nextRight = context.m_samplesToNextTick == (kTick - fromTick) / 512;

        // On a tick rounding may lose one, and the middle of the bar has either sign.
        std::int64_t fromBar = scaled % kBar;
        if (std::abs(fromBar) > kBar / 2) fromBar -= fromBar > 0 ? kBar : -kBar;
        const std::int64_t inBar = context.m_positionInBarInTicks;
        const std::int64_t lost = std::abs(fromBar / kTick) - std::abs(inBar);
        const bool barRight =
            inBar == fromBar / kTick || (fromBar % kTick == 0 && (lost == 0 || lost == 1));
        if (!ticksRight || !nextRight || !barRight) ++faults;
    };
    constexpr std::int64_t kLowest = std::numeric_limits<std::int32_t>::min();
    for (std::int64_t i = 0; i < 1'000'000; ++i)
        visit(kLowest + i * 4294);
    for (std::int64_t sample = -735LL * 2'900'000; sample < 735LL * 2'900'000;
         sample += 735LL * 16) {
        visit(sample);  // where truncation hangs on the last bit
    }
    visit(std::numeric_limits<std::int32_t>::max());
    EXPECT_EQ(faults, 0);
    EXPECT_EQ(digest, 12715827710057121611U);
}

TEST(MusicalContext, GivenCalculatorComesBeforeTheDefaultBeforeTheBuiltIn) {
    const auto given = [](std::int32_t sample, std::int32_t second, CMusicalContext& context) {
        EXPECT_EQ(context.m_tempo, 120000);
        EXPECT_EQ(context.m_meterNumerator * 10 + context.m_meterDenominator, 44);
        EXPECT_EQ(context.m_positionInTicks | context.m_positionInBarInTicks |
                      context.m_samplesToNextTick | context.m_reserved[0] | context.m_reserved[3],
                  0);
        EXPECT_EQ(context.m_last, 0U);
        context.m_positionInTicks = sample - second;
    };
    CMusicalContext::s_funcDefaultCalculator =
        [](std::int32_t, std::int32_t, CMusicalContext& context) { context.m_tempo = 90000; };
    EXPECT_EQ(CMusicalContext(50, 8, given).m_positionInTicks, 42);
    EXPECT_EQ(CMusicalContext(22050, 0).m_tempo, 90000);
    CMusicalContext::s_funcDefaultCalculator = nullptr;
    const CMusicalContext context(132300, 99);
    EXPECT_TRUE(context.m_samplePosition == 132300 && context.m_second == 99);
    EXPECT_EQ(context.m_positionInTicks, 92160);
    EXPECT_TRUE(context.m_positionInBarInTicks == -30720 && context.m_samplesToNextTick == 1);
}

TEST(MusicalContext, IsTheSameRecordInC) {
    const auto ofC = VLMusicalContextMake(-132301, 99, nullptr);
    const CMusicalContext context(-132301, 99);
    EXPECT_EQ(std::memcmp(&ofC, &context, sizeof context), 0);

    const auto addUp = [](std::int32_t sample, std::int32_t second, VLMusicalContext* made) {
        EXPECT_TRUE(made->tempo == 120000 && made->positionInTicks == 0 && made->last == 0);
        made->reserved[3] = sample + second;
    };
    EXPECT_EQ(VLMusicalContextMake(40, 2, addUp).reserved[3], 42);
    VLMusicalContextSetCalculator(addUp);
    EXPECT_EQ(CMusicalContext(40, 3).m_reserved[3], 43);
    EXPECT_EQ(VLMusicalContextMake(40, 4, nullptr).reserved[3], 44);
    VLMusicalContextSetCalculator(nullptr);
    EXPECT_EQ(VLMusicalContextMake(22050, 0, nullptr).positionInTicks, kVLTicksPerBeat);
}

}  // namespace
}  // namespace veltra
