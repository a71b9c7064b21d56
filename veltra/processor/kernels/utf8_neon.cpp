// SPDX-License-Identifier: MIT
#include "veltra/processor/kernels/utf8_block_walk.h"

#include <arm_neon.h>

namespace veltra::kernels {

namespace {

class NeonBlock {
public:
    explicit NeonBlock(const char* aligned) noexcept
        : m_parts{load(aligned), load(aligned + kPart), load(aligned + 2 * kPart),
                  load(aligned + 3 * kPart)} {}

    std::uint64_t stops() const noexcept {
        return maskOf([](int8x16_t part) { return vcltq_s8(part, vdupq_n_s8(1)); });
    }
    std::uint64_t nuls() const noexcept {
        return maskOf([](int8x16_t part) { return vceqq_s8(part, vdupq_n_s8(0)); });
    }
    std::uint64_t nonAscii() const noexcept {
        return maskOf([](int8x16_t part) { return vcltq_s8(part, vdupq_n_s8(0)); });
    }
    template <int byte>
    std::uint64_t atLeast() const noexcept {
        return maskOf(
            [](int8x16_t part) { return vcgeq_u8(vreinterpretq_u8_s8(part), vdupq_n_u8(byte)); });
    }

    static bool anyStops4(const char* aligned) noexcept {
        int8x16_t least = load(aligned);
        for (std::size_t offset = kPart; offset < kGroup; offset += kPart)
            least = vminq_s8(least, load(aligned + offset));
        return vminvq_s8(least) <= 0;
    }

private:
    static constexpr std::size_t kPart = kBlock / 4;

    static int8x16_t load(const char* aligned) noexcept {
        return vld1q_s8(reinterpret_cast<const std::int8_t*>(aligned));
    }

    // One bit of each byte that `marks` makes all ones: neighbours are added until 64 bits are
    // left.
    template <class Marks>
    std::uint64_t maskOf(Marks marks) const noexcept {
        const auto bits = [&](int part) {
            const uint8x16_t places = vreinterpretq_u8_u64(vdupq_n_u64(0x8040'2010'0804'0201U));
            return vandq_u8(marks(m_parts[part]), places);
        };
        const uint8x16_t low = vpaddq_u8(bits(0), bits(1));
        const uint8x16_t sums = vpaddq_u8(low, vpaddq_u8(bits(2), bits(3)));
        return vgetq_lane_u64(vreinterpretq_u64_u8(vpaddq_u8(sums, sums)), 0);
    }

    int8x16_t m_parts[4];
};

}  // namespace

const Utf8Kernels kUtf8Neon{asciiLength<NeonBlock>, asciiLengthWithin<NeonBlock>, check<NeonBlock>};

}  // namespace veltra::kernels
