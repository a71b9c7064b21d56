// SPDX-License-Identifier: MIT
#include "veltra/processor/kernels/float_environment.h"
#include "veltra/processor/kernels/sample_kernels.h"

#include <immintrin.h>

namespace veltra::kernels {

namespace {

constexpr std::size_t kLanes = 4;
constexpr std::size_t kBlock = 2 * kLanes;

void narrowLanes(unsigned char* to, const unsigned char* from) noexcept {
    const auto* doubles = reinterpret_cast<const double*>(from);
    const __m128 low = _mm_cvtpd_ps(_mm_loadu_pd(doubles));
    const __m128 high = _mm_cvtpd_ps(_mm_loadu_pd(doubles + 2));
    _mm_storeu_ps(reinterpret_cast<float*>(to), _mm_movelh_ps(low, high));
}

void narrow(float* destination, const void* source, std::size_t count,
            float* /*secondDestination*/) noexcept {
    if (destination == nullptr || source == nullptr) return;
    const DefaultArithmetic arithmetic;
    auto* to = reinterpret_cast<unsigned char*>(destination);
    const auto* from = static_cast<const unsigned char*>(source);
    for (; count >= kBlock; count -= kBlock, to += 4 * kBlock, from += 8 * kBlock) {
        narrowLanes(to, from);
        narrowLanes(to + 4 * kLanes, from + 8 * kLanes);
    }
    for (; count > 0; --count) {
        const __m128i one = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(from));
        const __m128 rounded = _mm_cvtpd_ps(_mm_castsi128_pd(one));
        const int bits = _mm_cvtsi128_si32(_mm_castps_si128(rounded));
        __builtin_memcpy(to, &bits, sizeof bits);
        to += 4;
        from += 8;
    }
}

// From the end, so that a conversion in place reads before it writes.
void widen(void* destination, const float* source, std::size_t count,
           const float* /*secondSource*/) noexcept {
    if (destination == nullptr || source == nullptr) return;
    const DefaultArithmetic arithmetic;
    auto* to = static_cast<unsigned char*>(destination) + 8 * count;
    const auto* from = reinterpret_cast<const unsigned char*>(source) + 4 * count;
    for (; count % kLanes > 0; --count) {
        int bits = 0;
        __builtin_memcpy(&bits, from -= 4, sizeof bits);
        const __m128d wide = _mm_cvtps_pd(_mm_castsi128_ps(_mm_cvtsi32_si128(bits)));
        _mm_storel_epi64(reinterpret_cast<__m128i*>(to -= 8), _mm_castpd_si128(wide));
    }
    for (; count > 0; count -= kLanes) {
        const __m128 floats = _mm_loadu_ps(reinterpret_cast<const float*>(from -= 16));
        to -= 32;
        _mm_storeu_pd(reinterpret_cast<double*>(to + 16),
                      _mm_cvtps_pd(_mm_movehl_ps(floats, floats)));
        _mm_storeu_pd(reinterpret_cast<double*>(to), _mm_cvtps_pd(floats));
    }
}

}  // namespace

constexpr SampleConverters kFloat64Sse2{narrow, widen};

}  // namespace veltra::kernels
