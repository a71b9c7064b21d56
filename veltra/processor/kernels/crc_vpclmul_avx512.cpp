// SPDX-License-Identifier: MIT
// CRCs 64 bytes a register. The end of a message needs no loop that waits for itself: every block
// goes straight to the end, with multipliers picked by its distance, and a masked load fills up the
// last one with zeros.
//
// Multiplications and shuffles share one port of many processors. The 16-bit CRC, whose bits come
// the other way round, is therefore computed mirrored: reversing the bits of each byte keeps
// another port busy than reversing the bytes of each block would.
#include "veltra/processor/kernels/crc_fold.h"
#include "veltra/processor/kernels/crc_kernels.h"
#include "veltra/processor/kernels/crc_pclmul.h"

#include <type_traits>

namespace veltra::kernels {

namespace {

template <class Crc>
inline constexpr bool kReversesBits = std::is_same_v<Crc, detail::MirroredCrc16>;

constexpr long long kReverseBits = static_cast<long long>(0x8040201008040201);

template <class Crc>
__m128i inBitOrder(__m128i bytes) noexcept {
    if constexpr (kReversesBits<Crc>)
        return _mm_gf2p8affine_epi64_epi8(bytes, _mm_set1_epi64x(kReverseBits), 0);
    else
        return bytes;
}

template <class Crc>
__m512i inBitOrder(__m512i bytes) noexcept {
    if constexpr (kReversesBits<Crc>)
        return _mm512_gf2p8affine_epi64_epi8(bytes, _mm512_set1_epi64(kReverseBits), 0);
    else
        return bytes;
}

template <class Crc>
__m512i load(const unsigned char* bytes) noexcept {
    return inBitOrder<Crc>(_mm512_loadu_si512(bytes));
}

// One to 64 bytes, filled up with zeros.
template <class Crc>
__m512i loadSome(const unsigned char* bytes, std::size_t count) noexcept {
    return inBitOrder<Crc>(_mm512_maskz_loadu_epi8(~std::uint64_t{0} >> (64 - count), bytes));
}

__m512i add(__m512i a, __m512i b, __m512i c) noexcept {
    return _mm512_ternarylogic_epi64(a, b, c, 0x96);
}

// `block` moved `distance` bytes further back, added to `later`.
template <class Crc, int distance>
__m512i fold(__m512i block, __m512i later) noexcept {
    const __m512i multipliers = _mm512_broadcast_i32x4(Pclmul::load(&kMoveBy<Crc, distance>));
    return add(_mm512_clmulepi64_epi128(block, multipliers, kFirstWords<Crc>),
               _mm512_clmulepi64_epi128(block, multipliers, kSecondWords<Crc>), later);
}

// `block`, which begins n bytes before the end, multiplied to the end and added to `sum`.
template <class Crc>
__m512i foldToEnd(__m512i block, std::size_t n, __m512i sum) noexcept {
    const __m512i multipliers = _mm512_cvtepu32_epi64(
        _mm256_loadu_si256(reinterpret_cast<const __m256i*>(endMultipliers<Crc>(n))));
    return add(_mm512_clmulepi64_epi128(block, multipliers, kFirstWords<Crc>),
               _mm512_clmulepi64_epi128(block, multipliers, kSecondWords<Crc>), sum);
}

template <class Crc>
std::uint32_t remainderOf(__m512i sum) noexcept {
    const __m256i half =
        _mm256_xor_si256(_mm512_castsi512_si256(sum), _mm512_extracti64x4_epi64(sum, 1));
    return remainder<Crc, Pclmul>(
        _mm_xor_si128(_mm256_castsi256_si128(half), _mm256_extracti128_si256(half, 1)));
}

// `before` is added to the first bytes.
template <class Crc>
std::uint32_t update(__m128i before, const unsigned char* bytes, std::size_t length) noexcept {
    if (length <= 16) {
        const __m128i block =
            _mm_maskz_loadu_epi8(static_cast<__mmask16>((1U << length) - 1), bytes);
        return remainder<Crc, Pclmul>(
            multiplyToEnd<Crc, Pclmul>(inBitOrder<Crc>(_mm_xor_si128(block, before)), length));
    }
    __m512i sum = _mm512_setzero_si512();
    const __m512i before512 = inBitOrder<Crc>(_mm512_zextsi128_si512(before));
    if (length <= 64) {
        const __m512i block = _mm512_xor_si512(loadSome<Crc>(bytes, length), before512);
        return remainderOf<Crc>(foldToEnd<Crc>(block, length, sum));
    }

    __m512i a = _mm512_xor_si512(load<Crc>(bytes), before512);
    if (length < 256) {
        sum = foldToEnd<Crc>(a, length, sum);
        bytes += 64;
        length -= 64;
    } else {
        __m512i b = load<Crc>(bytes + 64);
        __m512i c = load<Crc>(bytes + 128);
        __m512i d = load<Crc>(bytes + 192);
        bytes += 256;
        length -= 256;
        if (length >= 256 + 512) {
            __m512i e = load<Crc>(bytes);
            __m512i f = load<Crc>(bytes + 64);
            __m512i g = load<Crc>(bytes + 128);
            __m512i h = load<Crc>(bytes + 192);
            bytes += 256;
            length -= 256;
            for (; length >= 512; bytes += 512, length -= 512) {
                a = fold<Crc, 512>(a, load<Crc>(bytes));
                b = fold<Crc, 512>(b, load<Crc>(bytes + 64));
                c = fold<Crc, 512>(c, load<Crc>(bytes + 128));
                d = fold<Crc, 512>(d, load<Crc>(bytes + 192));
                e = fold<Crc, 512>(e, load<Crc>(bytes + 256));
                f = fold<Crc, 512>(f, load<Crc>(bytes + 320));
                g = fold<Crc, 512>(g, load<Crc>(bytes + 384));
                h = fold<Crc, 512>(h, load<Crc>(bytes + 448));
            }
            a = fold<Crc, 256>(a, e);
            b = fold<Crc, 256>(b, f);
            c = fold<Crc, 256>(c, g);
            d = fold<Crc, 256>(d, h);
        }
        for (; length >= 256; bytes += 256, length -= 256) {
            a = fold<Crc, 256>(a, load<Crc>(bytes));
            b = fold<Crc, 256>(b, load<Crc>(bytes + 64));
            c = fold<Crc, 256>(c, load<Crc>(bytes + 128));
            d = fold<Crc, 256>(d, load<Crc>(bytes + 192));
        }
        a = fold<Crc, 64>(c, fold<Crc, 128>(b, fold<Crc, 192>(a, d)));
        sum = foldToEnd<Crc>(a, length + 64, sum);
    }
    for (; length >= 64; bytes += 64, length -= 64) {
        sum = foldToEnd<Crc>(load<Crc>(bytes), length, sum);
    }
    if (length > 0) sum = foldToEnd<Crc>(loadSome<Crc>(bytes, length), length, sum);
    return remainderOf<Crc>(sum);
}

}  // namespace

std::uint32_t crc16VpclmulAvx512(std::uint32_t previous, const unsigned char* bytes,
                                 std::size_t length) noexcept {
    const __m128i state = _mm_cvtsi32_si128(static_cast<int>(
        update<detail::MirroredCrc16>(asBytes<detail::Crc16, Pclmul>(previous), bytes, length)));
    const auto reversed =
        static_cast<std::uint32_t>(_mm_cvtsi128_si32(inBitOrder<detail::MirroredCrc16>(state)));
    return (reversed & 0xFFU) << 8 | (reversed >> 8 & 0xFFU);
}

std::uint32_t crc32VpclmulAvx512(std::uint32_t previous, const unsigned char* bytes,
                                 std::size_t length) noexcept {
    return ~update<detail::Crc32>(asBytes<detail::Crc32, Pclmul>(~previous), bytes, length);
}

}  // namespace veltra::kernels
