// SPDX-License-Identifier: MIT
#include "veltra/processor/detail/utf8_kernels.h"

#include "veltra/processor/kernels/utf8_variants.h"

namespace veltra::detail {

namespace {

#ifdef VELTRA_KERNEL_UTF8_AVX2
bool hasAvx2(const ProcessorFeatures& features) noexcept {
    return features.avx2 && features.bmi && features.bmi2;
}
#endif
#ifdef VELTRA_KERNEL_UTF8_AVX512
bool hasAvx512(const ProcessorFeatures& features) noexcept {
    return features.avx512f && features.avx512bw && features.bmi && features.bmi2;
}
#endif

constexpr KernelVariant<const Utf8Kernels*> kVariants[] = {
#ifdef VELTRA_KERNEL_UTF8_AVX512
    {"avx512", hasAvx512, &kUtf8Avx512},
#endif
#ifdef VELTRA_KERNEL_UTF8_AVX2
    {"avx2", hasAvx2, &kUtf8Avx2},
#endif
    {"plain", runsEverywhere, &kUtf8Plain},
};

}  // namespace

constinit KernelChoice<const Utf8Kernels*> utf8KernelChoice{"utf8", kVariants};

}  // namespace veltra::detail
