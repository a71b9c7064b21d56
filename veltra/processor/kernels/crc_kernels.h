// SPDX-License-Identifier: MIT
// The variants of the two checksums, each in a file of its own.
#pragma once

#include <cstddef>
#include <cstdint>

namespace veltra::kernels {

// The CRC of what went before, continued over `length` bytes at `bytes`. Of no bytes it is
// `previous` itself, and then `bytes` is not read.
using CrcKernel = std::uint32_t (*)(std::uint32_t previous, const unsigned char* bytes,
                                    std::size_t length) noexcept;

// plain: slicing tables, sixteen bytes a step, any processor.
std::uint32_t crc16Plain(std::uint32_t previous, const unsigned char* bytes,
                         std::size_t length) noexcept;
std::uint32_t crc32Plain(std::uint32_t previous, const unsigned char* bytes,
                         std::size_t length) noexcept;

// The instruction for it of 64-bit ARM; there is none for the other CRC.
std::uint32_t crc32Arm(std::uint32_t previous, const unsigned char* bytes,
                       std::size_t length) noexcept;

// Carry-less multiplication of 128 bits, on ARM and on x86, and of 256 and 512 bits.
std::uint32_t crc16Pmull(std::uint32_t previous, const unsigned char* bytes,
                         std::size_t length) noexcept;
std::uint32_t crc32Pmull(std::uint32_t previous, const unsigned char* bytes,
                         std::size_t length) noexcept;
std::uint32_t crc16Pclmul(std::uint32_t previous, const unsigned char* bytes,
                          std::size_t length) noexcept;
std::uint32_t crc32Pclmul(std::uint32_t previous, const unsigned char* bytes,
                          std::size_t length) noexcept;
std::uint32_t crc16VpclmulAvx2(std::uint32_t previous, const unsigned char* bytes,
                               std::size_t length) noexcept;
std::uint32_t crc32VpclmulAvx2(std::uint32_t previous, const unsigned char* bytes,
                               std::size_t length) noexcept;
std::uint32_t crc16VpclmulAvx512(std::uint32_t previous, const unsigned char* bytes,
                                 std::size_t length) noexcept;
std::uint32_t crc32VpclmulAvx512(std::uint32_t previous, const unsigned char* bytes,
                                 std::size_t length) noexcept;

}  // namespace veltra::kernels
