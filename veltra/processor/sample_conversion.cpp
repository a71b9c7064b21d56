// SPDX-License-Identifier: MIT
#include "veltra/processor/sample_conversion.h"

#include "veltra/processor/detail/sample_kernels.h"
#include "veltra/processor/detail/self_check.h"

#include <cstring>
#include <string_view>

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

constexpr std::size_t kFrames = 333;  // a long run with a rest

// What the converters of one variant make of noise, in one channel and in two.
struct Converted {
    explicit Converted(const kernels::SampleConverters& converters) noexcept {
        // Floats of which most lie within full scale, and some of every pattern.
        float source[2 * kFrames];
        kernels::kSamplesPlain.integers[3][0].toFloat(source, kNoise.data(), 2 * kFrames, nullptr);
        std::memcpy(source + kFrames, kNoise.data(), kFrames);
        std::size_t next = 0;
        for (float* const other : {static_cast<float*>(nullptr), right}) {
            converters.toFloat(left[next], kNoise.data(), kFrames, other);
            converters.fromFloat(streams[next], source, kFrames,
                                 other != nullptr ? source + kFrames : nullptr);
            ++next;
        }
    }

    float left[2][kFrames] = {};
    float right[kFrames] = {};
    unsigned char streams[2][8 * kFrames] = {};
};

bool agree(const kernels::SampleConverters* one, const kernels::SampleConverters* other) noexcept {
    const auto bytes = [](const Converted& made) {
        return std::string_view(reinterpret_cast<const char*>(&made), sizeof made);
    };
    return bytes(Converted(*one)) == bytes(Converted(*other));
}

bool allAgree(const kernels::SampleKernels* one, const kernels::SampleKernels* other) noexcept {
    for (std::size_t index = 0; index < 8; ++index) {
        if (!agree(&one->integers[index / 2][index % 2], &other->integers[index / 2][index % 2]))
            return false;
    }
    return agree(&one->float32, &other->float32);
}

}  // namespace

constinit KernelChoice<const kernels::SampleKernels*> sampleKernels{"samples", kVariants, allAgree};
constinit KernelChoice<const kernels::SampleConverters*> float64Kernels{"float64", kFloat64Variants,
                                                                        agree};

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
