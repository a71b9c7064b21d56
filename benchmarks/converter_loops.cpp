// SPDX-License-Identifier: MIT
#include "benchmarks/converter_shapes.h"

#include <bit>
#include <cstdint>
#include <cstring>

namespace {

template <std::size_t bytes, bool isBig>
struct Sample {
    static constexpr std::uint32_t kOffset = bytes == 1 && !isBig ? 0x80000000U : 0;
    static constexpr std::size_t place(std::size_t byte) { return isBig ? byte : bytes - 1 - byte; }

    static float decode(const unsigned char* from) {
        std::uint32_t word = 0;
        for (std::size_t byte = 0; byte < bytes; ++byte)
            word |= std::uint32_t{from[place(byte)]} << (24 - 8 * byte);
        return static_cast<float>(static_cast<std::int32_t>(word ^ kOffset) >> 8) * 0x1p-23F;
    }

    static void encode(unsigned char* to, float sample) {
        const auto bits = std::bit_cast<std::uint32_t>(sample);
        const std::uint32_t biased = bits >> 23U & 0xFFU;
        std::uint32_t word = biased > 95 ? (bits << 8U | 0x80000000U) >> ((127 - biased) & 31U) : 0;
        word = biased > 126 ? 0x7FFFFF00U : word;
        word = (bits >> 31U != 0 ? 0 - word : word) ^ kOffset;
        for (std::size_t byte = 0; byte < bytes; ++byte)
            to[place(byte)] = static_cast<unsigned char>(word >> (24 - 8 * byte));
    }
};

template <std::size_t bytes, bool isBig>
void run(const Samples& samples, bool toFloat) {
    using One = Sample<bytes, isBig>;
    unsigned char* __restrict const stream = samples.stream;
    float* __restrict const left = samples.left;
    float* __restrict const right = samples.right;
    const std::size_t frames = samples.frames;
    if (toFloat && right != nullptr) {
        for (std::size_t i = 0; i < frames; ++i) {
            left[i] = One::decode(stream + 2 * bytes * i);
            right[i] = One::decode(stream + 2 * bytes * i + bytes);
        }
    } else if (toFloat) {
        for (std::size_t i = 0; i < frames; ++i)
            left[i] = One::decode(stream + bytes * i);
    } else if (right != nullptr) {
        for (std::size_t i = 0; i < frames; ++i) {
            One::encode(stream + 2 * bytes * i, left[i]);
            One::encode(stream + 2 * bytes * i + bytes, right[i]);
        }
    } else {
        for (std::size_t i = 0; i < frames; ++i)
            One::encode(stream + bytes * i, left[i]);
    }
}

template <class Word>
void swapWords(unsigned char* words, std::size_t size) {
    for (std::size_t at = 0; at + sizeof(Word) <= size; at += sizeof(Word)) {
        Word word;
        std::memcpy(&word, words + at, sizeof word);
        if constexpr (sizeof(Word) == 2) word = __builtin_bswap16(word);
        if constexpr (sizeof(Word) == 4) word = __builtin_bswap32(word);
        if constexpr (sizeof(Word) == 8) word = __builtin_bswap64(word);
        std::memcpy(words + at, &word, sizeof word);
    }
}

}  // namespace

WordSwap swapLoop(std::size_t word) {
    return word == 2   ? swapWords<std::uint16_t>
           : word == 4 ? swapWords<std::uint32_t>
           : word == 8 ? swapWords<std::uint64_t>
                       : nullptr;
}

Conversion exactLoop(const Shape& shape) {
    constexpr void (*kLoops[4][2])(const Samples&, bool) = {{run<1, false>, run<1, true>},
                                                            {run<2, false>, run<2, true>},
                                                            {run<3, false>, run<3, true>},
                                                            {run<4, false>, run<4, true>}};
    return [loop = kLoops[shape.bytes - 1][shape.isBig ? 1 : 0],
            toFloat = shape.toFloat](const Samples& samples) { loop(samples, toFloat); };
}
