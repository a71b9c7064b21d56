// SPDX-License-Identifier: MIT
#include "veltra/processor/kernels/utf8_block_walk.h"

#include <immintrin.h>

namespace veltra::kernels {

namespace {

class Avx2Block {
public:
    explicit Avx2Block(const char* aligned) noexcept
        : m_low(load(aligned)), m_high(load(aligned + kHalf)) {}

    std::uint64_t stops() const noexcept {
        const __m256i one = _mm256_set1_epi8(1);
        return joined(_mm256_cmpgt_epi8(one, m_low), _mm256_cmpgt_epi8(one, m_high));
    }
    std::uint64_t nuls() const noexcept {
        const __m256i zero = _mm256_setzero_si256();
        return joined(_mm256_cmpeq_epi8(m_low, zero), _mm256_cmpeq_epi8(m_high, zero));
    }
    std::uint64_t nonAscii() const noexcept { return joined(m_low, m_high); }
    template <int byte>
    std::uint64_t atLeast() const noexcept {
        const __m256i below = _mm256_set1_epi8(static_cast<char>(byte - 1));
        return joined(_mm256_cmpgt_epi8(m_low, below), _mm256_cmpgt_epi8(m_high, below));
    }

    static bool anyStops4(const char* aligned) noexcept {
        __m256i least = load(aligned);
        for (std::size_t offset = kHalf; offset < kGroup; offset += kHalf)
            least = _mm256_min_epi8(least, load(aligned + offset));
        return _mm256_movemask_epi8(_mm256_cmpgt_epi8(_mm256_set1_epi8(1), least)) != 0;
    }

private:
    static constexpr std::size_t kHalf = kBlock / 2;

    static __m256i load(const char* aligned) noexcept {
        return _mm256_load_si256(reinterpret_cast<const __m256i*>(aligned));
    }
    static std::uint64_t joined(__m256i low, __m256i high) noexcept {
        return static_cast<std::uint32_t>(_mm256_movemask_epi8(low)) |
               std::uint64_t{static_cast<std::uint32_t>(_mm256_movemask_epi8(high))} << 32;
    }

    __m256i m_low;
    __m256i m_high;
};

}  // namespace

const Utf8Kernels kUtf8Avx2{asciiLength<Avx2Block>, asciiLengthWithin<Avx2Block>, check<Avx2Block>};

}  // namespace veltra::kernels
