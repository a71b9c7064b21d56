// SPDX-License-Identifier: MIT
#include "veltra/processor/detail/bytes.h"
#include "veltra/processor/kernels/swap_kernels.h"

namespace veltra::kernels {

namespace {

void exchangeOuterBytes(unsigned char* destination, const unsigned char* source,
                        std::size_t count) noexcept {
    for (std::size_t at = 0; at < 3 * count; at += 3) {
        const unsigned char first = source[at];
        const unsigned char last = source[at + 2];
        destination[at] = last;
        destination[at + 1] = source[at + 1];
        destination[at + 2] = first;
    }
}

void invertTopBits(unsigned char* destination, const unsigned char* source,
                   std::size_t count) noexcept {
    for (std::size_t at = 0; at < count; ++at)
        destination[at] = source[at] ^ 0x80U;
}

}  // namespace

constexpr SwapKernels kSwapPlain{
    detail::reverseWords<std::uint16_t>, detail::reverseWords<std::uint32_t>,
    detail::reverseWords<std::uint64_t>, exchangeOuterBytes, invertTopBits};

}  // namespace veltra::kernels
