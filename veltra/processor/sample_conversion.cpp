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
#ifdef VELTRA_KERNEL_SAMPLE_NEON
    {"neon", runsOnNeon, &kernels::kSamplesNeon},
#endif
#ifdef VELTRA_KERNEL_SAMPLE_AVX512
    {"avx512vbmi", hasAvx512, &kernels::kSamplesAvx512},
#endif
#ifdef VELTRA_KERNEL_SAMPLE_AVX2
    {"avx2", runsOnAvx2, &kernels::kSamplesAvx2},
#endif
#ifdef VELTRA_KERNEL_SAMPLE_SSE41
    {"sse41",
     [](const ProcessorFeatures& features) noexcept { return features.ssse3 && features.sse41; },
     &kernels::kSamplesSse41},
#endif
    {"plain", runsEverywhere, &kernels::kSamplesPlain},
};

constexpr KernelVariant<const kernels::SampleConverters*> kFloat64Variants[] = {
#ifdef VELTRA_KERNEL_FLOAT64_NEON
    {"neon", runsOnNeon, &kernels::kFloat64Neon},
#endif
#ifdef VELTRA_KERNEL_FLOAT64_SSE2
    {"sse2", runsOnSse2, &kernels::kFloat64Sse2},
#endif
    {"plain", runsEverywhere, &kernels::kFloat64Plain},
};

}  // namespace

constinit KernelChoice<const kernels::SampleKernels*> sampleKernels{"samples", kVariants};
constinit KernelChoice<const kernels::SampleConverters*> float64Kernels{"float64",
                                                                        kFloat64Variants};

}  // namespace detail

namespace {

kernels::SampleConverters convertersOf(std::int32_t format, bool swapped) noexcept {
    const kernels::SampleKernels& kernels = *detail::sampleKernels.current();
    if (format >= kVLSampleInt8 && format <= kVLSampleInt32)
        return kernels.integers[format - kVLSampleInt8][swapped ? 1 : 0];
    if (format == kVLSampleFloat32) return kernels.float32;
    if (format == kVLSampleFloat64 && !swapped) return *detail::float64Kernels.current();
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
