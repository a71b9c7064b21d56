// SPDX-License-Identifier: MIT
#include "veltra/audio/musical_context_c.h"

#include "veltra/audio/musical_context.h"

#include <bit>
#include <cstddef>
#include <type_traits>

namespace veltra {

namespace {

static_assert(sizeof(VLMusicalContext) == sizeof(CMusicalContext));
static_assert(std::is_trivially_copyable_v<CMusicalContext>);
static_assert(int{kVLTicksPerBeat} == CMusicalContext::kTicksPerBeat);
static_assert(offsetof(VLMusicalContext, positionInTicks) ==
                  offsetof(CMusicalContext, m_positionInTicks) &&
              offsetof(VLMusicalContext, samplesToNextTick) ==
                  offsetof(CMusicalContext, m_samplesToNextTick) &&
              offsetof(VLMusicalContext, last) == offsetof(CMusicalContext, m_last));

VLMusicalContextCalculator processCalculator = nullptr;

void runProcessCalculator(std::int32_t samplePosition, std::int32_t second,
                          CMusicalContext& context) {
    auto filled = std::bit_cast<VLMusicalContext>(context);
    processCalculator(samplePosition, second, &filled);
    context = std::bit_cast<CMusicalContext>(filled);
}

void leaveDefaults(std::int32_t, std::int32_t, CMusicalContext&) {}

}  // namespace

VLMusicalContext VLMusicalContextMake(int32_t samplePosition, int32_t second,
                                      VLMusicalContextCalculator calculator) noexcept {
    const CMusicalContext made(samplePosition, second,
                               calculator != nullptr ? leaveDefaults : nullptr);
    auto context = std::bit_cast<VLMusicalContext>(made);
    if (calculator != nullptr) calculator(samplePosition, second, &context);
    return context;
}

void VLMusicalContextSetCalculator(VLMusicalContextCalculator calculator) noexcept {
    processCalculator = calculator;
    CMusicalContext::s_funcDefaultCalculator =
        calculator != nullptr ? runProcessCalculator : nullptr;
}

}  // namespace veltra
