// SPDX-License-Identifier: MIT
#include "veltra/processor/sample_conversion.h"

#include "veltra/processor/detail/sample_kernels.h"

namespace veltra {

namespace detail {

namespace {

#ifdef VELTRA_KERNEL_SAMPLE_AVX512
bool hasAvx512(const ProcessorFeatures& features) noexcept {
    return features.avx512f && features.avx512bw && features.avx512dq && features.avx512vl &&
           features.avx512vbmi && features.bmi2;
}
#endif

constexpr KernelVariant<const kernels::SampleKernels*> kVariants[] = {
#ifdef VELTRA_KERNEL_SAMPLE_AVX512
    {"avx512vbmi", hasAvx512, &kernels::kSamplesAvx512},
#endif
#ifdef VELTRA_KERNEL_SAMPLE_AVX2
    {"avx2", runsOnAvx2, &kernels::kSamplesAvx2},
#endif
    {"plain", runsEverywhere, &kernels::kSamplesPlain},
};

}  // namespace

constinit KernelChoice<const kernels::SampleKernels*> sampleKernels{"samples", kVariants};

}  // namespace detail

namespace {

kernels::SampleConverters convertersOf(std::int32_t format, bool swapped) noexcept {
    const kernels::SampleKernels& kernels = *detail::sampleKernels.current();
    if (format >= kSampleInt8 && format <= kSampleInt32)
        return kernels.integers[format - kSampleInt8][swapped ? 1 : 0];
    if (format == kSampleFloat32) return kernels.float32;
    if (format == kSampleFloat64 && !swapped) return kernels::kFloat64Plain;
    return {[](float*, const void*, std::size_t, float*) noexcept {},
            [](void*, const float*, std::size_t, const float*) noexcept {}};
}

}  // namespace

ConvertNToFloatProc GetConvertNToFloat(int32_t format, bool swapped) noexcept {
    return convertersOf(format, swapped).toFloat;
}

ConvertFloatToNProc GetConvertFloatToN(int32_t format, bool swapped) noexcept {
    return convertersOf(format, swapped).fromFloat;
}

}  // namespace veltra
