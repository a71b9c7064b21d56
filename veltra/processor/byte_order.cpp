// SPDX-License-Identifier: MIT
#include "veltra/processor/byte_order.h"

#include "veltra/processor/detail/bytes.h"
#include "veltra/processor/detail/self_check.h"
#include "veltra/processor/detail/swap_kernels.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace veltra {

namespace detail {

namespace {

#ifdef VELTRA_KERNEL_SWAP_AVX512
bool hasAvx512(const ProcessorFeatures& features) noexcept {
    return features.avx512f && features.avx512bw && features.avx512vl && features.avx512vbmi &&
           features.bmi2;
}
#endif

constexpr KernelVariant<const kernels::SwapKernels*> kVariants[] = {
#ifdef VELTRA_KERNEL_SWAP_NEON
    {"neon", runsOnNeon, &kernels::kSwapNeon},
#endif
#ifdef VELTRA_KERNEL_SWAP_AVX512
    {"avx512vbmi", hasAvx512, &kernels::kSwapAvx512},
#endif
#ifdef VELTRA_KERNEL_SWAP_AVX2
    {"avx2", runsOnAvx2, &kernels::kSwapAvx2},
#endif
#ifdef VELTRA_KERNEL_SWAP_SSSE3
    {"ssse3", [](const ProcessorFeatures& features) noexcept { return features.ssse3; },
     &kernels::kSwapSsse3},
#endif
    {"plain", runsEverywhere, &kernels::kSwapPlain},
};

// In place, and with a rest behind every block.
bool agree(const kernels::SwapKernels* one, const kernels::SwapKernels* other) noexcept {
    const struct {
        kernels::SwapKernel kernels::SwapKernels::*swap;
        std::size_t size;
    } rows[] = {{&kernels::SwapKernels::words16, 2},
                {&kernels::SwapKernels::words32, 4},
                {&kernels::SwapKernels::words64, 8},
                {&kernels::SwapKernels::samples24, 3},
                {&kernels::SwapKernels::signs8, 1}};
    return std::all_of(std::begin(rows), std::end(rows), [=](const auto& row) {
        auto results = std::array{kNoise, kNoise};
        const std::size_t count = kNoise.size() / row.size - 1;
        (one->*row.swap)(results[0].data(), results[0].data(), count);
        (other->*row.swap)(results[1].data(), results[1].data(), count);
        return results[0] == results[1];
    });
}

}  // namespace

constinit KernelChoice<const kernels::SwapKernels*> swapKernels{"swaps", kVariants, agree};

}  // namespace detail

namespace {

// The groups that a counted form works on: none when count - 1, taken as signed, is negative.
constexpr std::size_t effectiveCount(std::uint32_t count) noexcept {
    return static_cast<std::int32_t>(count - 1) < 0 ? 0 : count;
}

static_assert(effectiveCount(0) == 0 && effectiveCount(1) == 1);
static_assert(effectiveCount(0x8000'0000U) == 0x8000'0000U && effectiveCount(0x8000'0001U) == 0);

const kernels::SwapKernels& swaps() noexcept {
    return *detail::swapKernels.current();
}

void swapCounted(kernels::SwapKernel swap, void* destination, const void* source,
                 std::size_t count) noexcept {
    if (destination == nullptr || source == nullptr) return;
    swap(static_cast<unsigned char*>(destination), static_cast<const unsigned char*>(source),
         count);
}

void swapOne(void* value) noexcept {
    if (value != nullptr) detail::reverse<std::uint32_t>(static_cast<unsigned char*>(value));
}

}  // namespace

void PSwapLongLong(void* buffer, uint32_t count) noexcept {
    swapCounted(swaps().words64, buffer, buffer, effectiveCount(count));
}

void PSwapLong(void* buffer, uint32_t count) noexcept {
    swapCounted(swaps().words32, buffer, buffer, effectiveCount(count));
}

void PSwapWord(void* buffer, uint32_t count) noexcept {
    swapCounted(swaps().words16, buffer, buffer, effectiveCount(count));
}

void PSwapCopyLong(void* destination, const void* source, uint32_t count) noexcept {
    swapCounted(swaps().words32, destination, source, effectiveCount(count));
}

void SwapInt32(void* value) noexcept {
    swapOne(value);
}

void SwapLong(void* value) noexcept {
    swapOne(value);
}

bool ProcessSwapIntel(void* buffer, uint32_t sampleCount, uint32_t /*ignored*/,
                      int32_t bitsPerSample) noexcept {
    const kernels::SwapKernels& kernels = swaps();
    switch (bitsPerSample) {
        case 32:
            swapCounted(kernels.words32, buffer, buffer, sampleCount);
            break;
        case 24:
            swapCounted(kernels.samples24, buffer, buffer, sampleCount);
            break;
        case 8:
            swapCounted(kernels.signs8, buffer, buffer, sampleCount);
            break;
        default:
            swapCounted(kernels.words16, buffer, buffer, sampleCount);
            break;
    }
    return true;
}

}  // namespace veltra
