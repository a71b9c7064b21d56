// SPDX-License-Identifier: MIT
// Musical time at one sample position: tempo, and the position in ticks as a calculator sees it.
//
// A host that follows its own transport passes its calculator, or sets it once for the process; the
// built-in one assumes 120 beats a minute, 44,100 samples a second and four beats to the bar. For
// C: musical_context_c.h.
#pragma once

#include "veltra/export.h"

#include <cstdint>
#include <type_traits>

namespace veltra {

class VELTRA_EXPORT CMusicalContext {
public:
    // Ticks to the beat.
    static constexpr std::int32_t kTicksPerBeat = 15360;

    // Fills in the musical position of `context`, whose fields hold their defaults, from the two
    // numbers that its constructor was given. Called on the thread that constructs.
    //
    // The numbers are 32 bits wide on every host, not `long`: results are the same everywhere, and
    // the tick of every such sample position fits its field. A host whose counter is wider must
    // bring it into that range itself: the call narrows it without a word, 3,000,000,000 samples to
    // -1,294,967,296. 32 bits hold 13 hours at 44,100 samples a second.
    using Calculator = void (*)(std::int32_t samplePosition, std::int32_t second,
                                CMusicalContext& context);

    // Sets the defaults below, then calls the calculator: the given one, else
    // s_funcDefaultCalculator, else the built-in one. The built-in one always counts 120 beats a
    // minute, whatever the field says. It computes in double precision, the same bits on every
    // host:
    //   m_positionInBarInTicks: from the nearest bar line, -30720 to 30720, so negative in the
    //     second half of a bar; truncated towards zero.
    //   m_positionInTicks: the position plus half a tick, truncated towards zero. From 0 up this
    //     is the nearest tick. Before 0 it is the nearest plus one, but never above 0; deliberate:
    //     stored positions rely on it.
    //   m_samplesToNextTick: a tick's length in samples (1.4355) less the signed distance from the
    //     nearest tick, truncated: 0 to 2.
    // Thread: any. Realtime-safe: yes, if the calculator is (the built-in one is).
    CMusicalContext(std::int32_t samplePosition, std::int32_t second,
                    Calculator calculator = nullptr);

    // The process's calculator for contexts that are given none; null for the built-in one. Not
    // synchronised: set it while no other thread makes a context.
    static Calculator s_funcDefaultCalculator;

    std::int32_t m_samplePosition;  // samples; before 0 too
    std::int32_t m_second;          // the host's own number; only stored
    std::int32_t m_tempo = 120000;  // thousandths of a beat per minute

    // The meter, 4/4; only stored: the built-in calculator always counts four beats to the bar.
    std::int32_t m_meterNumerator = 4;
    std::int32_t m_meterDenominator = 4;

    // The musical position that the calculator fills in: ticks from sample 0, ticks from a bar
    // line, and samples to the next tick.
    std::int32_t m_positionInTicks = 0;
    std::int32_t m_positionInBarInTicks = 0;
    std::int32_t m_samplesToNextTick = 0;

    // The host's own; only stored.
    std::int32_t m_reserved[4] = {};
    std::uint32_t m_last = 0;
};

static_assert(sizeof(CMusicalContext) == 52 && std::is_standard_layout_v<CMusicalContext>);

}  // namespace veltra
