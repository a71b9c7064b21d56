// SPDX-License-Identifier: MIT
#include "veltra/processor/kernels/crc_pclmul.h"

#include "veltra/processor/kernels/crc_kernels.h"
#include "veltra/processor/kernels/crc_wide.h"

namespace veltra::kernels {

std::uint32_t crc16Pclmul(std::uint32_t previous, const unsigned char* bytes,
                          std::size_t length) noexcept {
    return update<detail::Crc16, OneBlock<Pclmul>>(previous, bytes, length);
}

std::uint32_t crc32Pclmul(std::uint32_t previous, const unsigned char* bytes,
                          std::size_t length) noexcept {
    return ~update<detail::Crc32, OneBlock<Pclmul>>(~previous, bytes, length);
}

}  // namespace veltra::kernels
