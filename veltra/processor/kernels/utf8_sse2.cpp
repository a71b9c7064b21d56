// SPDX-License-Identifier: MIT
#include "veltra/processor/kernels/utf8_block_walk.h"

#include <immintrin.h>

namespace veltra::kernels {

namespace {

class Sse2Block {
public:
    explicit Sse2Block(const char* aligned) noexcept
        : m_parts{load(aligned), load(aligned + kPart), load(aligned + 2 * kPart),
                  load(aligned + 3 * kPart)} {}

    std::uint64_t stops() const noexcept {
        return maskOf([](__m128i part) { return _mm_cmplt_epi8(part, _mm_set1_epi8(1)); });
    }
    std::uint64_t nuls() const noexcept {
        return maskOf([](__m128i part) { return _mm_cmpeq_epi8(part, _mm_setzero_si128()); });
    }
    std::uint64_t nonAscii() const noexcept {
        return maskOf([](__m128i part) { return part; });
    }
    template <int byte>
    std::uint64_t atLeast() const noexcept {
        constexpr auto kBelow = static_cast<char>(byte - 1);
        return maskOf([](__m128i part) { return _mm_cmpgt_epi8(part, _mm_set1_epi8(kBelow)); });
    }

    static bool anyStops4(const char* aligned) noexcept {
        __m128i all = load(aligned);  // the top bit of any byte
        __m128i least = all;          // a NUL among the bytes of one place
        for (std::size_t offset = kPart; offset < kGroup; offset += kPart) {
            const __m128i part = load(aligned + offset);
            all = _mm_or_si128(all, part);
            least = _mm_min_epu8(least, part);
        }
        return _mm_movemask_epi8(_mm_or_si128(all, _mm_cmpeq_epi8(least, _mm_setzero_si128()))) !=
               0;
    }

private:
    static constexpr std::size_t kPart = kBlock / 4;

    static __m128i load(const char* aligned) noexcept {
        return _mm_load_si128(reinterpret_cast<const __m128i*>(aligned));
    }

    // The top bits of what `marks` makes of each part.
    template <class Marks>
    std::uint64_t maskOf(Marks marks) const noexcept {
        const auto bits = [&](int part) {
            const int mask = _mm_movemask_epi8(marks(m_parts[part]));
            return std::uint64_t{static_cast<std::uint32_t>(mask)} << 16 * part;
        };
        return bits(0) | bits(1) | bits(2) | bits(3);
    }

    __m128i m_parts[4];
};

}  // namespace

const Utf8Kernels kUtf8Sse2{asciiLength<Sse2Block>, asciiLengthWithin<Sse2Block>, check<Sse2Block>};

}  // namespace veltra::kernels
