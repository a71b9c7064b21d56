// SPDX-License-Identifier: MIT
// The arithmetic behind the checksums, done by the compiler: polynomials over one bit, where
// addition is exclusive or, and remainders of powers of x.
//
// The functions have internal linkage: a file that is built for one processor variant must not
// lend its copy to the others.
#pragma once

#include <cstdint>

namespace veltra::detail {

// How the bits of a message and of a remainder are numbered. MostSignificantFirst: a byte's top bit
// is the first of the message, and bit i of a word is the coefficient of x^i.
// LeastSignificantFirst: the mirror image, in which the lowest bit stands for the highest power.
enum class BitOrder { MostSignificantFirst, LeastSignificantFirst };

// CRC-16/AUG-CCITT and the CRC-32 of zlib. `polynomial` is without its highest term, most
// significant bit first in both.
struct Crc16 {
    using Register = std::uint16_t;
    static constexpr int kDegree = 16;
    static constexpr std::uint32_t kPolynomial = 0x1021;
    static constexpr BitOrder kOrder = BitOrder::MostSignificantFirst;
};

// The same CRC for kernels that reverse the bits of each byte as they load it.
struct MirroredCrc16 : Crc16 {
    static constexpr BitOrder kOrder = BitOrder::LeastSignificantFirst;
};

struct Crc32 {
    using Register = std::uint32_t;
    static constexpr int kDegree = 32;
    static constexpr std::uint32_t kPolynomial = 0x04C11DB7;
    static constexpr BitOrder kOrder = BitOrder::LeastSignificantFirst;
};

template <class Crc>
inline constexpr bool kMirrored = Crc::kOrder == BitOrder::LeastSignificantFirst;

static constexpr std::uint32_t mirrored(std::uint32_t value) {
    std::uint32_t result = 0;
    for (int bit = 0; bit < 32; ++bit) {
        result = result << 1 | (value >> bit & 1U);
    }
    return result;
}

// value * x and value / x modulo the polynomial, whose constant term is 1, so that x has an
// inverse.
template <class Crc>
static constexpr std::uint32_t timesX(std::uint32_t value) {
    const std::uint32_t top = 1U << (Crc::kDegree - 1);
    const std::uint32_t shifted = (value & (top - 1)) << 1;
    return (value & top) != 0 ? shifted ^ Crc::kPolynomial : shifted;
}

template <class Crc>
static constexpr std::uint32_t overX(std::uint32_t value) {
    const std::uint32_t top = 1U << (Crc::kDegree - 1);
    return (value & 1U) != 0 ? (value ^ Crc::kPolynomial) >> 1 | top : value >> 1;
}

// x^exponent modulo the polynomial; the exponent may be negative.
template <class Crc>
static constexpr std::uint32_t powerOfX(int exponent) {
    std::uint32_t value = 1;
    for (; exponent > 0; --exponent) {
        value = timesX<Crc>(value);
    }
    for (; exponent < 0; ++exponent) {
        value = overX<Crc>(value);
    }
    return value;
}

}  // namespace veltra::detail
