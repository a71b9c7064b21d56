// SPDX-License-Identifier: MIT
// The multipliers of the kernels that compute a CRC by carry-less multiplication.
//
// A message is a polynomial; its CRC is (message * x^degree) modulo the CRC's polynomial P. A word
// of 64 bits that stands D bits before the end may be replaced by its product with (x^D modulo P):
// the words of a message are multiplied by one such remainder each, in any order, and what they add
// up to has the message's CRC. That leaves 96 bits, of which one exact division takes the
// remainder.
#pragma once

#include "veltra/processor/detail/crc_polynomial.h"

#include <cstdint>

namespace veltra::detail {

// Two 64-bit multipliers: for the first eight bytes of a block of sixteen and for the second.
struct alignas(16) Multipliers {
    std::uint64_t first;
    std::uint64_t second;
};

// Moves a block of sixteen bytes `bytes` further back in the message.
//
// Mirrored, the product of two words a and c stands for a * c * x^33 when c is in the lower half of
// its word, which the exponent makes up for.
template <class Crc>
static consteval Multipliers moveBy(int bytes) {
    constexpr int kShift = kMirrored<Crc> ? 33 : 0;
    const std::uint32_t first = powerOfX<Crc>(8 * bytes + 64 - kShift);
    const std::uint32_t second = powerOfX<Crc>(8 * bytes - kShift);
    return kMirrored<Crc> ? Multipliers{mirrored(first), mirrored(second)}
                          : Multipliers{first, second};
}

// The multipliers of the words of a block of up to 64 bytes that begins n bytes before the end of
// the message (0 to kFarthest). A block may reach beyond the end, when zeros stand there: powers of
// x are also divided by.
//
// 32 bits each; what they multiply to has 96 bits, the remainder's in the last 32. Mirrored, the
// product is one bit short of that, which the exponent makes up for.
struct EndTable {
    static constexpr int kFarthest = 319;
    static constexpr int kWords = kFarthest / 8 + 1;
    static constexpr int kLength = kWords + 8;
    std::uint32_t row[8][kLength];  // n modulo 8, then backwards by whole words
};

template <class Crc>
static consteval EndTable makeEndTable() {
    constexpr int kShift = kMirrored<Crc> ? 1 : 0;
    EndTable table{};
    for (int odd = 0; odd < 8; ++odd) {
        std::uint32_t power = powerOfX<Crc>(8 * odd + 64 * -8 + Crc::kDegree - kShift);
        for (int index = EndTable::kLength - 1; index >= 0; --index) {
            const std::uint32_t scaled = power << (32 - Crc::kDegree);
            table.row[odd][index] = kMirrored<Crc> ? mirrored(scaled) : scaled;
            for (int bit = 0; bit < 64; ++bit) {
                power = timesX<Crc>(power);
            }
        }
    }
    return table;
}

// Exact division of 96 bits by P * x^(32 - degree).
struct Division {
    std::uint64_t polynomial;  // with its highest term
    std::uint64_t reciprocal;  // mirrored: its inverse modulo x^64; else x^64 divided by it
    std::uint64_t fold;        // x^64 modulo it, for the order that is not mirrored
};

template <class Crc>
static consteval Division makeDivision() {
    const std::uint32_t scaled = Crc::kPolynomial << (32 - Crc::kDegree);
    Division division{};
    if constexpr (kMirrored<Crc>) {
        division.polynomial = std::uint64_t{mirrored(scaled)} << 1 | 1U;
        std::uint64_t rest = 1;
        for (int bit = 0; bit < 64; ++bit) {
            if ((rest >> bit & 1U) == 0) continue;
            rest ^= division.polynomial << bit;
            division.reciprocal |= std::uint64_t{1} << bit;
        }
    } else {
        division.polynomial = std::uint64_t{1} << 32 | scaled;
        division.reciprocal = std::uint64_t{1} << 32;
        std::uint64_t rest = std::uint64_t{scaled} << 32;
        for (int bit = 31; bit >= 0; --bit) {
            if ((rest >> (bit + 32) & 1U) == 0) continue;
            rest ^= division.polynomial << bit;
            division.reciprocal |= std::uint64_t{1} << bit;
        }
        division.fold = powerOfX<Crc>(64 - (32 - Crc::kDegree)) << (32 - Crc::kDegree);
    }
    return division;
}

}  // namespace veltra::detail
