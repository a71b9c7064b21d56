// SPDX-License-Identifier: MIT
#include "veltra/processor/kernels/utf8_block_walk.h"

#include <immintrin.h>

namespace veltra::kernels {

namespace {

class Avx512Block {
public:
    explicit Avx512Block(const char* aligned) noexcept : m_bytes(load(aligned)) {}

    std::uint64_t stops() const noexcept {
        return general(_mm512_cmplt_epi8_mask(m_bytes, _mm512_set1_epi8(1)));
    }
    std::uint64_t nuls() const noexcept {
        return general(_mm512_testn_epi8_mask(m_bytes, m_bytes));
    }
    std::uint64_t nonAscii() const noexcept { return general(_mm512_movepi8_mask(m_bytes)); }
    template <int byte>
    std::uint64_t atLeast() const noexcept {
        return general(
            _mm512_cmpgt_epi8_mask(m_bytes, _mm512_set1_epi8(static_cast<char>(byte - 1))));
    }

    static bool anyStops4(const char* aligned) noexcept {
        const __m512i least = _mm512_min_epi8(
            _mm512_min_epi8(load(aligned), load(aligned + kBlock)),
            _mm512_min_epi8(load(aligned + 2 * kBlock), load(aligned + 3 * kBlock)));
        return _mm512_cmplt_epi8_mask(least, _mm512_set1_epi8(1)) != 0;
    }

private:
    // Keeps the mask in a general register: compilers like to do the arithmetic in mask registers,
    // which is a quarter slower.
    static std::uint64_t general(std::uint64_t mask) noexcept {
        __asm__("" : "+r"(mask));
        return mask;
    }
    static __m512i load(const char* aligned) noexcept { return _mm512_load_si512(aligned); }

    __m512i m_bytes;
};

}  // namespace

const Utf8Kernels kUtf8Avx512{asciiLength<Avx512Block>, asciiLengthWithin<Avx512Block>,
                              check<Avx512Block>};

}  // namespace veltra::kernels
