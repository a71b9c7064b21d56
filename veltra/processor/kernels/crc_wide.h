// SPDX-License-Identifier: MIT
// CRCs with registers of 128 or 256 bits, eight of them at a time. Everything here has internal
// linkage and is compiled with the flags of the file that includes it.
#pragma once

#include "veltra/processor/kernels/crc_fold.h"

namespace veltra::kernels {

// Up to fifteen bytes, filled up with zeros. The message may lie at the end of the last page.
static inline __m128i loadFew(const unsigned char* bytes, std::size_t count) noexcept {
    std::uint64_t low = 0;
    std::uint64_t high = 0;
    if (count >= 8) {
        std::memcpy(&low, bytes, 8);
        std::memcpy(&high, bytes + count - 8, 8);
        high = count > 8 ? high >> 8 * (16 - count) : 0;
    } else if (count >= 4) {
        std::uint32_t start = 0;
        std::uint32_t end = 0;
        std::memcpy(&start, bytes, 4);
        std::memcpy(&end, bytes + count - 4, 4);
        low = start | std::uint64_t{end} << 8 * (count - 4);
    } else if (count > 0) {
        low = bytes[0] | std::uint64_t{bytes[count / 2]} << 8 * (count / 2) |
              std::uint64_t{bytes[count - 1]} << 8 * (count - 1);
    }
    return _mm_set_epi64x(static_cast<long long>(high), static_cast<long long>(low));
}

template <class Crc, int distance>
static inline __m128i fold(__m128i block, __m128i later) noexcept {
    return _mm_xor_si128(multiply<Crc>(block, loadBytes(&kMoveBy<Crc, distance>)), later);
}

// `kind` only tells the width.
template <class Crc>
static inline __m128i load(const unsigned char* bytes, __m128i /*kind*/) noexcept {
    return inOrder<Crc>(loadBytes(bytes));
}

static inline __m128i widened(__m128i block, __m128i /*kind*/) noexcept {
    return block;
}

// The one block of sixteen bytes that stands for all of `block`.
template <class Crc>
static inline __m128i narrowed(__m128i block) noexcept {
    return block;
}

#ifdef __AVX2__
template <class Crc, int distance>
static inline __m256i fold(__m256i block, __m256i later) noexcept {
    const __m256i multipliers = _mm256_broadcastsi128_si256(loadBytes(&kMoveBy<Crc, distance>));
    const __m256i product =
        _mm256_xor_si256(_mm256_clmulepi64_epi128(block, multipliers, kFirstWords<Crc>),
                         _mm256_clmulepi64_epi128(block, multipliers, kSecondWords<Crc>));
    return _mm256_xor_si256(product, later);
}

template <class Crc>
static inline __m256i load(const unsigned char* bytes, __m256i /*kind*/) noexcept {
    const __m256i block = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(bytes));
    if constexpr (detail::kMirrored<Crc>) return block;
    const __m128i reverse = _mm_set_epi8(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15);
    return _mm256_shuffle_epi8(block, _mm256_broadcastsi128_si256(reverse));
}

static inline __m256i widened(__m128i block, __m256i /*kind*/) noexcept {
    return _mm256_zextsi128_si256(block);
}

template <class Crc>
static inline __m128i narrowed(__m256i block) noexcept {
    return fold<Crc, 16>(_mm256_castsi256_si128(block), _mm256_extracti128_si256(block, 1));
}
#endif

// Eight registers of type Block over the whole of a message that fills them at least once; `before`
// is added to its start. Moves `bytes` and `length` to what is left, less than eight registers.
template <class Crc, class Block>
static inline __m128i foldEight(__m128i before, const unsigned char*& bytes,
                                std::size_t& length) noexcept {
    constexpr std::ptrdiff_t kSize = sizeof(Block);
    constexpr std::size_t kStep = 8 * sizeof(Block);
    const Block kind{};
    // GCC makes a copy through memory of a loop.
    Block block[8] = {
        load<Crc>(bytes, kind),
        load<Crc>(bytes + kSize, kind),
        load<Crc>(bytes + 2 * kSize, kind),
        load<Crc>(bytes + 3 * kSize, kind),
        load<Crc>(bytes + 4 * kSize, kind),
        load<Crc>(bytes + 5 * kSize, kind),
        load<Crc>(bytes + 6 * kSize, kind),
        load<Crc>(bytes + 7 * kSize, kind),
    };
    block[0] ^= widened(before, kind);
    for (bytes += kStep, length -= kStep; length >= kStep; bytes += kStep, length -= kStep) {
        for (int index = 0; index < 8; ++index) {
            const Block later = load<Crc>(bytes + kSize * index, kind);
            block[index] = fold<Crc, 8 * kSize>(block[index], later);
        }
    }
    for (int index = 0; index < 4; ++index) {
        block[index + 4] = fold<Crc, 4 * kSize>(block[index], block[index + 4]);
    }
    block[6] = fold<Crc, 2 * kSize>(block[4], block[6]);
    block[7] = fold<Crc, 2 * kSize>(block[5], block[7]);
    return narrowed<Crc>(fold<Crc, kSize>(block[6], block[7]));
}

template <class Crc, class Block>
static inline std::uint32_t update(std::uint32_t state, const unsigned char* bytes,
                                   std::size_t length) noexcept {
    alignas(16) static constexpr unsigned char kKeepLast[32] = {
        0,    0,    0,    0,    0,    0,    0,    0,    0,    0,    0,
        0,    0,    0,    0,    0,    0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF,
        0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF};

    __m128i before = asBytes<Crc>(state);
    if (length < 16) {
        const __m128i block = _mm_xor_si128(loadFew(bytes, length), before);
        return remainder<Crc>(multiplyToEnd<Crc>(inOrder<Crc>(block), length));
    }
    before = inOrder<Crc>(before);
    __m128i last;
    if (length >= 8 * sizeof(Block)) {
        last = foldEight<Crc, Block>(before, bytes, length);
    } else {
        last = _mm_xor_si128(load<Crc>(bytes, __m128i{}), before);
        bytes += 16;
        length -= 16;
    }
    for (; length >= 16; bytes += 16, length -= 16) {
        last = fold<Crc, 16>(last, load<Crc>(bytes, __m128i{}));
    }
    __m128i sum = multiplyToEnd<Crc>(last, 16 + length);
    if (length > 0) {  // the sixteen bytes that end the message, without those that were added
        const __m128i block =
            _mm_and_si128(loadBytes(bytes + length - 16), loadBytes(kKeepLast + length));
        sum = _mm_xor_si128(sum, multiplyToEnd<Crc>(inOrder<Crc>(block), 16));
    }
    return remainder<Crc>(sum);
}

}  // namespace veltra::kernels
