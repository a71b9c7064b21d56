// SPDX-License-Identifier: MIT
#include "veltra/processor/checksum.h"

#include "veltra/processor/detail/checksum_kernels.h"
#include "veltra/processor/detail/self_check.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace veltra {

namespace detail {

namespace {

#ifdef VELTRA_KERNEL_CRC_PCLMUL
bool hasPclmul(const ProcessorFeatures& features) noexcept {
    return features.pclmulqdq && features.ssse3 && features.sse41;
}
#endif
#ifdef VELTRA_KERNEL_CRC_VPCLMUL_AVX2
bool hasVpclmulAvx2(const ProcessorFeatures& features) noexcept {
    return features.vpclmulqdq && features.avx2 && features.pclmulqdq;
}
#endif
#ifdef VELTRA_KERNEL_CRC_VPCLMUL_AVX512
bool hasVpclmulAvx512(const ProcessorFeatures& features) noexcept {
    return features.vpclmulqdq && features.pclmulqdq && features.gfni && features.avx512f &&
           features.avx512bw && features.avx512vl;
}
#endif

struct Rung {
    const char* name;
    bool (*runs)(const ProcessorFeatures& features) noexcept;
    kernels::CrcKernel crc16;
    kernels::CrcKernel crc32;
    bool hasCrc16 = true;
};

constexpr Rung kRungs[] = {
#ifdef VELTRA_KERNEL_CRC_PMULL
    {"pmull", [](const ProcessorFeatures& features) noexcept { return features.pmull; },
     kernels::crc16Pmull, kernels::crc32Pmull},
#endif
#ifdef VELTRA_KERNEL_CRC_ARM
    {"crc", [](const ProcessorFeatures& features) noexcept { return features.crc32; }, nullptr,
     kernels::crc32Arm, false},
#endif
#ifdef VELTRA_KERNEL_CRC_VPCLMUL_AVX512
    {"vpclmulqdq-avx512", hasVpclmulAvx512, kernels::crc16VpclmulAvx512,
     kernels::crc32VpclmulAvx512},
#endif
#ifdef VELTRA_KERNEL_CRC_VPCLMUL_AVX2
    {"vpclmulqdq-avx2", hasVpclmulAvx2, kernels::crc16VpclmulAvx2, kernels::crc32VpclmulAvx2},
#endif
#ifdef VELTRA_KERNEL_CRC_PCLMUL
    {"pclmulqdq", hasPclmul, kernels::crc16Pclmul, kernels::crc32Pclmul},
#endif
    {"plain", runsEverywhere, kernels::crc16Plain, kernels::crc32Plain},
};

template <std::size_t count>
struct Variants {
    KernelVariant<kernels::CrcKernel> rows[count];
};

template <kernels::CrcKernel Rung::*kernel>
consteval auto variantsOf() noexcept {
    constexpr auto has = [](const Rung& rung) { return kernel != &Rung::crc16 || rung.hasCrc16; };
    Variants<std::count_if(std::begin(kRungs), std::end(kRungs), has)> variants{};
    std::size_t next = 0;
    for (const Rung& rung : kRungs)
        if (has(rung)) variants.rows[next++] = {rung.name, rung.runs, rung.*kernel};
    return variants;
}

bool agree(kernels::CrcKernel one, kernels::CrcKernel other) noexcept {
    constexpr std::size_t kLengths[] = {1, 15, 100, 300, 1000, kNoise.size() - 1};
    return std::all_of(std::begin(kLengths), std::end(kLengths), [=](std::size_t length) {
        return one(0x1D0F, kNoise.data(), length) == other(0x1D0F, kNoise.data(), length);
    });
}

constexpr auto kCrc16Variants = variantsOf<&Rung::crc16>();
constexpr auto kCrc32Variants = variantsOf<&Rung::crc32>();

}  // namespace

constinit KernelChoice<kernels::CrcKernel> crc16Kernels{"crc16", kCrc16Variants.rows, agree};
constinit KernelChoice<kernels::CrcKernel> crc32Kernels{"crc32", kCrc32Variants.rows, agree};

}  // namespace detail

uint32_t QKCRC16(const char* text) noexcept {
    constexpr std::uint32_t kInitial = 0x1D0F;
    constexpr std::size_t kLongest = 65536;

    if (text == nullptr) return kInitial;
    const void* const end = std::memchr(text, 0, kLongest);
    const std::size_t length =
        end != nullptr ? static_cast<std::size_t>(static_cast<const char*>(end) - text) : kLongest;
    return detail::crc16Kernels.current()(kInitial, reinterpret_cast<const unsigned char*>(text),
                                          length);
}

uint32_t QKCRC32(uint32_t previous, const void* buffer, size_t length) noexcept {
    if (buffer == nullptr) return 0;
    return detail::crc32Kernels.current()(previous, static_cast<const unsigned char*>(buffer),
                                          length);
}

}  // namespace veltra
