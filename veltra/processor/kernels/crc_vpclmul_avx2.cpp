// SPDX-License-Identifier: MIT
#include "veltra/processor/kernels/crc_kernels.h"
#include "veltra/processor/kernels/crc_pclmul.h"
#include "veltra/processor/kernels/crc_wide.h"

namespace veltra::kernels {

namespace {

struct TwoBlocks {
    using Math = Pclmul;
    using Register = __m256i;

    template <class Crc>
    static Register load(const unsigned char* bytes) noexcept {
        const Register blocks = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(bytes));
        const __m128i reverse = _mm_set_epi8(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15);
        if constexpr (detail::kMirrored<Crc>)
            return blocks;
        else
            return _mm256_shuffle_epi8(blocks, _mm256_broadcastsi128_si256(reverse));
    }
    static Register widened(__m128i block) noexcept { return _mm256_zextsi128_si256(block); }
    template <class Crc, int distance>
    static Register fold(Register blocks, Register later) noexcept {
        const Register multipliers =
            _mm256_broadcastsi128_si256(Pclmul::load(&kMoveBy<Crc, distance>));
        return _mm256_clmulepi64_epi128(blocks, multipliers, kFirstWords<Crc>) ^
               _mm256_clmulepi64_epi128(blocks, multipliers, kSecondWords<Crc>) ^ later;
    }
    template <class Crc>
    static __m128i narrowed(Register blocks) noexcept {
        return OneBlock<Pclmul>::fold<Crc, 16>(_mm256_castsi256_si128(blocks),
                                               _mm256_extracti128_si256(blocks, 1));
    }
};

}  // namespace

std::uint32_t crc16VpclmulAvx2(std::uint32_t previous, const unsigned char* bytes,
                               std::size_t length) noexcept {
    return update<detail::Crc16, TwoBlocks>(previous, bytes, length);
}

std::uint32_t crc32VpclmulAvx2(std::uint32_t previous, const unsigned char* bytes,
                               std::size_t length) noexcept {
    return ~update<detail::Crc32, TwoBlocks>(~previous, bytes, length);
}

}  // namespace veltra::kernels
