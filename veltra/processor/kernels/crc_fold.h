// SPDX-License-Identifier: MIT
// The steps that the carry-less kernels share, 128 bits wide. Everything here has internal linkage
// and is compiled with the flags of the file that includes it, which brings the multiplication of
// its processor along (crc_pclmul.h, crc_pmull.cpp): `Math`, which the concept below describes.
#pragma once

#include "veltra/processor/detail/crc_constants.h"

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace veltra::kernels {

template <class Value, class Math>
concept BlockOf = std::same_as<Value, typename Math::Block>;

// Blocks of 128 bits, the first byte of memory in the lowest.
template <class Math, class Crc = detail::Crc32>
concept CarrylessMath = requires(typename Math::Block block, typename Math::Block other,
                                 const std::uint32_t* words) {
    { block ^ other } -> std::convertible_to<typename Math::Block>;
    { Math::load(words) } -> BlockOf<Math>;
    { Math::ofWords(std::uint64_t{}, std::uint64_t{}) } -> BlockOf<Math>;
    // Two words of 32 bits, zeros behind each.
    { Math::widened(words) } -> BlockOf<Math>;
    // The bits of a message in the order in which this CRC is computed.
    { Math::template inOrder<Crc>(block) } -> BlockOf<Math>;
    // A half of the first block times one of the second: 0x01 stands for the upper of the first,
    // 0x10 for the upper of the second.
    { Math::template product<0x11>(block, block) } -> BlockOf<Math>;
    // Each half shifted down by 32 bits; the word of 32 bits at that place.
    { Math::shiftedDown(block) } -> BlockOf<Math>;
    { Math::template word<2>(block) } -> std::same_as<std::uint32_t>;
};

// Which halves are multiplied: the first eight bytes of a block are its lower half, or, after their
// order was reversed, its upper half; multipliers keep theirs in the lower.
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
template <class Crc, CarrylessMath Math>
static inline typename Math::Block asBytes(std::uint32_t state) noexcept {
    if constexpr (!detail::kMirrored<Crc>) state = (state >> 8 & 0xFFU) | (state & 0xFFU) << 8;
    return Math::ofWords(state, 0);
}

// Both words of a block, each times its multiplier.
template <class Crc, CarrylessMath Math>
static inline typename Math::Block multiply(typename Math::Block block,
                                            typename Math::Block multipliers) noexcept {
    const auto first = Math::template product<kFirstWords<Crc>>(block, multipliers);
    return first ^ Math::template product<kSecondWords<Crc>>(block, multipliers);
}

// A block of sixteen bytes, the first of which stands n bytes before the end of the message.
template <class Crc, CarrylessMath Math>
static inline typename Math::Block multiplyToEnd(typename Math::Block block,
                                                 std::size_t n) noexcept {
    return multiply<Crc, Math>(block, Math::widened(endMultipliers<Crc>(n)));
}

// The remainder of 96 bits, as the state of the CRC.
template <class Crc, CarrylessMath Math>
static inline std::uint32_t remainder(typename Math::Block sum) noexcept {
    using Block = typename Math::Block;
    constexpr auto& division = kDivision<Crc>;
    const Block divisor = Math::ofWords(division.reciprocal, division.polynomial);
    if constexpr (detail::kMirrored<Crc>) {
        const Block quotient = Math::template product<0x00>(sum, divisor);
        const Block product = Math::template product<0x10>(quotient, divisor);
        return Math::template word<2>(sum ^ product);
    } else {
        const Block fold = Math::ofWords(division.fold, 0);
        const Block rest = Math::template product<0x01>(sum, fold) ^ sum;
        const Block quotient = Math::template product<0x00>(Math::shiftedDown(rest), divisor);
        const Block product = Math::template product<0x10>(Math::shiftedDown(quotient), divisor);
        return Math::template word<0>(rest ^ product) >> (32 - Crc::kDegree);
    }
}

}  // namespace veltra::kernels
