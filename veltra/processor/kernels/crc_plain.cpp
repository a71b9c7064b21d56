// SPDX-License-Identifier: MIT
#include "veltra/processor/detail/crc_polynomial.h"
#include "veltra/processor/kernels/crc_kernels.h"

namespace veltra::kernels {

namespace {

using detail::Crc16;
using detail::Crc32;
using detail::kMirrored;

constexpr std::size_t kSlice = 16;

// The bytes of the register in the order in which they meet those of the message.
template <class Crc>
constexpr unsigned byteOf(std::uint32_t value, int index) noexcept {
    const int shift = kMirrored<Crc> ? 8 * index : Crc::kDegree - 8 - 8 * index;
    return value >> shift & 0xFFU;
}

template <class Crc>
constexpr std::uint32_t withoutFirstByte(std::uint32_t value) noexcept {
    return kMirrored<Crc> ? value >> 8 : value << 8 & 0xFFFFU;
}

// row[k][b]: what the byte b leaves in the register when k bytes of zero follow it.
template <class Crc>
struct SlicingTable {
    typename Crc::Register row[kSlice][256];
};

template <class Crc>
consteval SlicingTable<Crc> makeTable() {
    using Register = typename Crc::Register;
    SlicingTable<Crc> table{};
    auto& row = table.row;
    for (int bit = 0; bit < 8; ++bit) {
        const std::uint32_t power = detail::powerOfX<Crc>(Crc::kDegree + bit);
        row[0][kMirrored<Crc> ? 0x80 >> bit : 1 << bit] =
            static_cast<Register>(kMirrored<Crc> ? detail::mirrored(power) : power);
    }
    for (unsigned value = 1; value < 256; ++value) {
        const unsigned lowest = value & (~value + 1U);
        row[0][value] = row[0][lowest] ^ row[0][value ^ lowest];
    }
    for (std::size_t slice = 1; slice < kSlice; ++slice) {
        for (unsigned value = 0; value < 256; ++value) {
            const std::uint32_t before = row[slice - 1][value];
            row[slice][value] = static_cast<Register>(row[0][byteOf<Crc>(before, 0)] ^
                                                      withoutFirstByte<Crc>(before));
        }
    }
    return table;
}

template <class Crc>
alignas(64) constexpr SlicingTable<Crc> kTable = makeTable<Crc>();

template <class Crc>
std::uint32_t slice(std::uint32_t value, const unsigned char* bytes, std::size_t length) noexcept {
    constexpr int kRegisterBytes = Crc::kDegree / 8;
    const auto& row = kTable<Crc>.row;
    for (; length >= kSlice; bytes += kSlice, length -= kSlice) {
        std::uint32_t next = 0;
        for (int index = 0; index < kRegisterBytes; ++index) {
            next ^= row[kSlice - 1 - static_cast<std::size_t>(index)]
                       [bytes[index] ^ byteOf<Crc>(value, index)];
        }
        for (std::size_t index = kRegisterBytes; index < kSlice; ++index) {
            next ^= row[kSlice - 1 - index][bytes[index]];
        }
        value = next;
    }
    for (; length > 0; ++bytes, --length) {
        value = row[0][*bytes ^ byteOf<Crc>(value, 0)] ^ withoutFirstByte<Crc>(value);
    }
    return value;
}

}  // namespace

std::uint32_t crc16Plain(std::uint32_t previous, const unsigned char* bytes,
                         std::size_t length) noexcept {
    return slice<Crc16>(previous, bytes, length);
}

std::uint32_t crc32Plain(std::uint32_t previous, const unsigned char* bytes,
                         std::size_t length) noexcept {
    return ~slice<Crc32>(~previous, bytes, length);
}

}  // namespace veltra::kernels
