// SPDX-License-Identifier: MIT
// CRCs with eight registers at a time, of 128 bits or of several blocks of 128 each. Everything
// here has internal linkage and is compiled with the flags of the file that includes it.
#pragma once

#include "veltra/processor/kernels/crc_fold.h"

namespace veltra::kernels {

// Registers of one block or more.
template <class Wide, class Crc = detail::Crc32>
concept WideRegister = requires(const unsigned char* bytes, typename Wide::Math::Block block,
                                typename Wide::Register wide) {
    requires CarrylessMath<typename Wide::Math>;
    { Wide::template load<Crc>(bytes) } -> std::same_as<typename Wide::Register>;
    // The block in front, zeros behind it.
    { Wide::widened(block) } -> std::same_as<typename Wide::Register>;
    // Moved `distance` bytes further back, and added to what stands there.
    { Wide::template fold<Crc, 32>(wide, wide) } -> std::same_as<typename Wide::Register>;
    // The one block that stands for all.
    { Wide::template narrowed<Crc>(wide) } -> BlockOf<typename Wide::Math>;
};

template <CarrylessMath MathOfBlock>
struct OneBlock {
    using Math = MathOfBlock;
    using Register = typename Math::Block;

    template <class Crc>
    static Register load(const unsigned char* bytes) noexcept {
        return Math::template inOrder<Crc>(Math::load(bytes));
    }
    static Register widened(Register block) noexcept { return block; }
    template <class Crc, int distance>
    static Register fold(Register block, Register later) noexcept {
        return multiply<Crc, Math>(block, Math::load(&kMoveBy<Crc, distance>)) ^ later;
    }
    template <class Crc>
    static Register narrowed(Register block) noexcept {
        return block;
    }
};

// Up to fifteen bytes, filled up with zeros. The message may lie at the end of the last page.
template <CarrylessMath Math>
static inline typename Math::Block loadFew(const unsigned char* bytes, std::size_t count) noexcept {
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
    return Math::ofWords(low, high);
}

// Eight registers over the whole of a message that fills them at least once; `before` is added to
// its start. Moves `bytes` and `length` to what is left, less than eight registers.
template <class Crc, WideRegister Wide>
static inline typename Wide::Math::Block foldEight(typename Wide::Math::Block before,
                                                   const unsigned char*& bytes,
                                                   std::size_t& length) noexcept {
    using Register = typename Wide::Register;
    constexpr std::ptrdiff_t kSize = sizeof(Register);
    constexpr std::size_t kStep = 8 * sizeof(Register);
    // GCC makes a copy through memory of a loop.
    Register block[8] = {
        Wide::template load<Crc>(bytes),
        Wide::template load<Crc>(bytes + kSize),
        Wide::template load<Crc>(bytes + 2 * kSize),
        Wide::template load<Crc>(bytes + 3 * kSize),
        Wide::template load<Crc>(bytes + 4 * kSize),
        Wide::template load<Crc>(bytes + 5 * kSize),
        Wide::template load<Crc>(bytes + 6 * kSize),
        Wide::template load<Crc>(bytes + 7 * kSize),
    };
    block[0] ^= Wide::widened(before);
    for (bytes += kStep, length -= kStep; length >= kStep; bytes += kStep, length -= kStep) {
        for (int index = 0; index < 8; ++index) {
            const Register later = Wide::template load<Crc>(bytes + kSize * index);
            block[index] = Wide::template fold<Crc, 8 * kSize>(block[index], later);
        }
    }
    for (int index = 0; index < 4; ++index) {
        block[index + 4] = Wide::template fold<Crc, 4 * kSize>(block[index], block[index + 4]);
    }
    block[6] = Wide::template fold<Crc, 2 * kSize>(block[4], block[6]);
    block[7] = Wide::template fold<Crc, 2 * kSize>(block[5], block[7]);
    return Wide::template narrowed<Crc>(Wide::template fold<Crc, kSize>(block[6], block[7]));
}

template <class Crc, WideRegister Wide>
static inline std::uint32_t update(std::uint32_t state, const unsigned char* bytes,
                                   std::size_t length) noexcept {
    using Math = typename Wide::Math;
    using Block = typename Math::Block;
    alignas(16) static constexpr unsigned char kKeepLast[32] = {
        0,    0,    0,    0,    0,    0,    0,    0,    0,    0,    0,
        0,    0,    0,    0,    0,    0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF,
        0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF};

    Block before = asBytes<Crc, Math>(state);
    if (length < 16) {
        const Block block = loadFew<Math>(bytes, length) ^ before;
        return remainder<Crc, Math>(
            multiplyToEnd<Crc, Math>(Math::template inOrder<Crc>(block), length));
    }
    before = Math::template inOrder<Crc>(before);
    Block last;
    if (length >= 8 * sizeof(typename Wide::Register)) {
        last = foldEight<Crc, Wide>(before, bytes, length);
    } else {
        last = OneBlock<Math>::template load<Crc>(bytes) ^ before;
        bytes += 16;
        length -= 16;
    }
    for (; length >= 16; bytes += 16, length -= 16) {
        last =
            OneBlock<Math>::template fold<Crc, 16>(last, OneBlock<Math>::template load<Crc>(bytes));
    }
    Block sum = multiplyToEnd<Crc, Math>(last, 16 + length);
    if (length > 0) {  // the sixteen bytes that end the message, without those that were added
        const Block block = Math::load(bytes + length - 16) & Math::load(kKeepLast + length);
        sum ^= multiplyToEnd<Crc, Math>(Math::template inOrder<Crc>(block), 16);
    }
    return remainder<Crc, Math>(sum);
}

}  // namespace veltra::kernels
