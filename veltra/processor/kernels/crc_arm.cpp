// SPDX-License-Identifier: MIT
// The CRC-32 by the instruction for it. Each waits for the one before, so that three runs go side
// by side; a table then moves what the first ones gave behind the others.
#include "veltra/processor/detail/bytes.h"
#include "veltra/processor/detail/crc_polynomial.h"
#include "veltra/processor/kernels/crc_kernels.h"

#include <arm_acle.h>

namespace veltra::kernels {

namespace {

constexpr std::size_t kRun = 1024;

// row[k][b]: what the byte b at place k of the register becomes when a run of zeros follows.
struct MovingTable {
    std::uint32_t row[4][256];
};

consteval MovingTable makeMovingTable() {
    MovingTable table{};
    std::uint32_t power = detail::powerOfX<detail::Crc32>(8 * static_cast<int>(kRun));
    for (unsigned bit = 32; bit-- > 0; power = detail::timesX<detail::Crc32>(power))
        table.row[bit / 8][1U << bit % 8] = detail::mirrored(power);
    for (auto& row : table.row) {
        for (unsigned value = 1; value < 256; ++value) {
            const unsigned lowest = value & (~value + 1U);
            row[value] = row[lowest] ^ row[value ^ lowest];
        }
    }
    return table;
}

constexpr MovingTable kMoveByRun = makeMovingTable();

std::uint32_t movedByRun(std::uint32_t state) noexcept {
    const auto& row = kMoveByRun.row;
    return row[0][state & 0xFFU] ^ row[1][state >> 8 & 0xFFU] ^ row[2][state >> 16 & 0xFFU] ^
           row[3][state >> 24];
}

std::uint32_t withWord(std::uint32_t state, const unsigned char* bytes) noexcept {
    return __crc32d(state, detail::load<std::uint64_t>(bytes));
}

}  // namespace

std::uint32_t crc32Arm(std::uint32_t previous, const unsigned char* bytes,
                       std::size_t length) noexcept {
    std::uint32_t state = ~previous;
    for (; length >= 3 * kRun; bytes += 3 * kRun, length -= 3 * kRun) {
        std::uint32_t second = 0;
        std::uint32_t third = 0;
        for (std::size_t at = 0; at < kRun; at += 8) {
            state = withWord(state, bytes + at);
            second = withWord(second, bytes + kRun + at);
            third = withWord(third, bytes + 2 * kRun + at);
        }
        state = movedByRun(movedByRun(state) ^ second) ^ third;
    }
    for (; length >= 8; bytes += 8, length -= 8)
        state = withWord(state, bytes);
    for (; length > 0; ++bytes, --length)
        state = __crc32b(state, *bytes);
    return ~state;
}

}  // namespace veltra::kernels
