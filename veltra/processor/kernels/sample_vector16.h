// SPDX-License-Identifier: MIT
// A vector for sample_walk.h out of registers of 16 bytes that can be shuffled: what such
// instruction sets have in common. Each supplies its `Words`, which the concept below describes,
// with internal linkage.
#pragma once

#include "veltra/processor/kernels/sample_walk.h"

namespace veltra::kernels {

// Registers of four words of 32 bits, the first in the lowest bytes.
template <class Words>
concept SampleWords16 = Memory16<Words> &&
    requires(typename Words::Register one, typename Words::Register other,
             typename Words::Register& to, typename Words::Register (&words)[2]) {
    // The bytes of one from the fourth on, and the first four of the other behind them.
    { Words::template joined<4>(one, other) } -> RegisterOf<Words>;
    // Words of both in turns, out of their lower and upper halves.
    { Words::lowPairs(one, other) } -> RegisterOf<Words>;
    { Words::highPairs(one, other) } -> RegisterOf<Words>;
    // The upper 16 bits of words: first those of one, then those of the other (1), or of both
    // in turns (2).
    { Words::template tops<1>(one, other) } -> RegisterOf<Words>;
    { Words::template tops<2>(one, other) } -> RegisterOf<Words>;
    // The upper bytes of words of 16 bits, first those of one, then those of the other.
    { Words::topBytes(one, other) } -> RegisterOf<Words>;
    // The lowest byte of every word cleared.
    { Words::withoutLowBytes(one) } -> RegisterOf<Words>;
    // As SampleVector has them.
    { Words::split(one, other, to, to) } -> std::same_as<void>;
    { Words::floatsOf(one) } -> RegisterOf<Words>;
    { Words::template fractionsOf<2>(words) } -> std::same_as<void>;
};

// The samples begin `start` bytes into the register.
template <class Sample, int channels, int channel, int start>
consteval Places16 spreadPlaces16() {
    Places16 places;
    for (int byte = 0; byte < 16; ++byte) {
        const int memory = Sample::memoryByte(byte % 4);
        const int sample = byte / 4 * channels + channel;
        const int from = start + sample * static_cast<int>(Sample::kSize) + memory;
        places.from[byte] = memory < 0 ? Places16::kZero : static_cast<unsigned char>(from);
    }
    return places;
}

// The bytes of samples side by side, those from the word `split` on at the end of the register.
template <class Sample, int split>
consteval Places16 packPlaces16() {
    constexpr int kSize = static_cast<int>(Sample::kSize);
    Places16 places;
    for (unsigned char& from : places.from)
        from = Places16::kZero;
    for (int byte = 0; byte < 4 * kSize; ++byte) {
        const int from = byte / kSize * 4 + Sample::wordByte(byte % kSize);
        places.from[byte < 4 * split ? byte : byte + 16 - 4 * kSize] =
            static_cast<unsigned char>(from);
    }
    return places;
}

template <class Sample, int channels, int channel, int start>
inline constexpr Places16 kSpread16 = spreadPlaces16<Sample, channels, channel, start>();
template <class Sample, int split>
inline constexpr Places16 kPack16 = packPlaces16<Sample, split>();

template <SampleWords16 Words>
struct SampleVector16 : Words {
    using Register = typename Words::Register;
    static constexpr std::size_t kLanes = 4;
    static constexpr std::size_t kBlocks = 4;
    static constexpr std::size_t kLongRun = 0;
    static constexpr std::size_t kGroup = 4;

    template <class Sample, int channels, int channel, int start = 0>
    static Register spread(Register bytes) {
        if constexpr (Sample::kIsFloat)
            return bytes;
        else if constexpr (kIsNative<Sample>)
            return Words::withoutLowBytes(bytes);
        else
            return Words::shuffled(bytes, kSpread16<Sample, channels, channel, start>);
    }

    // Whole loads, none of them beyond the group: the last samples are the end of their load.
    template <class Sample>
    static void spreadGroup(const unsigned char* from, Register (&words)[kGroup]) {
        words[0] = spread<Sample, 1, 0>(Words::template load<16>(from));
        words[1] = spread<Sample, 1, 0>(Words::template load<16>(from + 12));
        words[2] = spread<Sample, 1, 0>(Words::template load<16>(from + 24));
        words[3] = spread<Sample, 1, 0, 4>(Words::template load<16>(from + 32));
    }

    // Two channels are interleaved as words first.
    template <class Sample, int channels>
    static constexpr std::size_t kFrameRegisters = channels;

    template <class Sample, int channels, int index>
    static Register packed(const Register* words) {
        return ordered<Sample, 4>(interleaved<channels, index>(words));
    }

    template <class Sample, int channels, int index>
    static Register packedGroup(const Register (&words)[kGroup]) {
        if constexpr (Sample::kSize == 1) {
            return Words::topBytes(Words::template tops<channels>(words[0], words[1]),
                                   Words::template tops<channels>(words[2], words[3]));
        } else if constexpr (Sample::kSize == 2) {
            const Register tops =
                Words::template tops<channels>(words[2 * index], words[2 * index + 1]);
            if constexpr (Sample::kOrder == detail::kHostOrder)
                return tops;
            else
                return Words::shuffled(tops, kSwapped16);
        } else if constexpr (Sample::kSize == 3) {
            return Words::template joined<4 * (index + 1)>(
                ordered<Sample, index>(interleaved<channels, index>(words)),
                ordered<Sample, index + 1>(interleaved<channels, index + 1>(words)));
        } else {
            return ordered<Sample, 4>(interleaved<channels, index>(words));
        }
    }

private:
    static_assert(detail::kHostOrder == ByteOrder::Little);

    static constexpr Places16 kSwapped16{{1, 0, 3, 2, 5, 4, 7, 6, 9, 8, 11, 10, 13, 12, 15, 14}};

    template <class Sample>
    static constexpr bool kIsNative = Sample::kSize == 4 && Sample::kOrder == detail::kHostOrder;

    template <class Sample, int split>
    static Register ordered(Register words) {
        if constexpr (kIsNative<Sample>)
            return words;
        else
            return Words::shuffled(words, kPack16<Sample, split>);
    }

    // Register `index` of the words of a stream.
    template <int channels, int index>
    static Register interleaved(const Register* words) {
        if constexpr (channels == 1)
            return words[index];
        else if constexpr (index % 2 == 0)
            return Words::lowPairs(words[index], words[index + 1]);
        else
            return Words::highPairs(words[index - 1], words[index]);
    }
};

}  // namespace veltra::kernels
