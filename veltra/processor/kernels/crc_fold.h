// SPDX-License-Identifier: MIT
// The steps that the carry-less kernels share, 128 bits wide. Everything here has internal linkage
// and is compiled with the flags of the file that includes it.
#pragma once

#include "veltra/processor/detail/crc_constants.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

#include <immintrin.h>

namespace veltra::kernels {

// Which halves _mm_clmulepi64_si128 multiplies: the first eight bytes of a block are its lower
// half, or, after their order was reversed, its upper half; multipliers keep theirs in the lower.
template <class Crc>
inline constexpr int kFirstWords = detail::kMirrored<Crc> ? 0x00 : 0x01;
template <class Crc>
inline constexpr int kSecondWords = detail::kMirrored<Crc> ? 0x11 : 0x10;

template <class Crc>
alignas(64) inline constexpr detail::EndTable kEndTable = detail::makeEndTable<Crc>();
template <class Crc>
inline constexpr detail::Division kDivision = detail::makeDivision<Crc>();
template <class Crc, int bytes>
inline constexpr detail::Multipliers kMoveBy = detail::moveBy<Crc>(bytes);

// The multipliers of a block that begins n bytes before the end of the message.
template <class Crc>
static inline const std::uint32_t* endMultipliers(std::size_t n) noexcept {
    return kEndTable<Crc>.row[n % 8] + (detail::EndTable::kWords - n / 8);
}

// The state of the CRC as the first bytes of the message that it is added to.
template <class Crc>
static inline __m128i asBytes(std::uint32_t state) noexcept {
    if constexpr (!detail::kMirrored<Crc>) state = (state >> 8 & 0xFFU) | (state & 0xFFU) << 8;
    return _mm_cvtsi32_si128(static_cast<int>(state));
}

template <class Crc>
static inline __m128i inOrder(__m128i bytes) noexcept {
    if constexpr (detail::kMirrored<Crc>) return bytes;
    const __m128i reverse = _mm_set_epi8(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15);
    return _mm_shuffle_epi8(bytes, reverse);
}

static inline __m128i loadBytes(const void* bytes) noexcept {
    return _mm_loadu_si128(static_cast<const __m128i*>(bytes));
}

// Both words of a block, each times its multiplier.
template <class Crc>
static inline __m128i multiply(__m128i block, __m128i multipliers) noexcept {
    return _mm_xor_si128(_mm_clmulepi64_si128(block, multipliers, kFirstWords<Crc>),
                         _mm_clmulepi64_si128(block, multipliers, kSecondWords<Crc>));
}

// A block of sixteen bytes, the first of which stands n bytes before the end of the message.
template <class Crc>
static inline __m128i multiplyToEnd(__m128i block, std::size_t n) noexcept {
    const __m128i packed =
        _mm_loadl_epi64(reinterpret_cast<const __m128i*>(endMultipliers<Crc>(n)));
    return multiply<Crc>(block, _mm_cvtepu32_epi64(packed));
}

// The remainder of 96 bits, as the state of the CRC.
template <class Crc>
static inline std::uint32_t remainder(__m128i sum) noexcept {
    constexpr auto& division = kDivision<Crc>;
    const __m128i divisor = _mm_set_epi64x(static_cast<long long>(division.polynomial),
                                           static_cast<long long>(division.reciprocal));
    if constexpr (detail::kMirrored<Crc>) {
        const __m128i quotient = _mm_clmulepi64_si128(sum, divisor, 0x00);
        const __m128i product = _mm_clmulepi64_si128(quotient, divisor, 0x10);
        return static_cast<std::uint32_t>(_mm_extract_epi32(_mm_xor_si128(sum, product), 2));
    } else {
        const __m128i fold = _mm_cvtsi32_si128(static_cast<int>(division.fold));
        const __m128i rest = _mm_xor_si128(_mm_clmulepi64_si128(sum, fold, 0x01), sum);
        const __m128i quotient = _mm_clmulepi64_si128(_mm_srli_epi64(rest, 32), divisor, 0x00);
        const __m128i product = _mm_clmulepi64_si128(_mm_srli_epi64(quotient, 32), divisor, 0x10);
        const __m128i result = _mm_xor_si128(rest, product);
        return static_cast<std::uint32_t>(_mm_cvtsi128_si32(result)) >> (32 - Crc::kDegree);
    }
}

}  // namespace veltra::kernels
