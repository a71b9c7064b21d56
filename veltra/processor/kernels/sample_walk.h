// SPDX-License-Identifier: MIT
// The walk over a stream in blocks of vectors that the vector variants of the sample converters
// share. Each includes it in a file that is built with its own flags, so everything here is a
// template of the variant's own `Vector`, which has internal linkage, and nothing of the standard
// library is instantiated: no other file may end up with code that only some processors can run.
//
// A block is read whole before any of it is written, and blocks run backwards where the stream
// widens, so that a conversion in place never writes over what it has yet to read. Nothing outside
// the buffers is read or written.
//
// A variant supplies its `Vector`, which the concept below describes.
#pragma once

#include "veltra/processor/detail/bytes.h"
#include "veltra/processor/kernels/sample_kernels.h"
#include "veltra/processor/kernels/vector_memory.h"

namespace veltra::kernels {

using detail::ByteOrder;

template <std::size_t size, ByteOrder order>
struct IntegerLayout {
    static constexpr std::size_t kSize = size;
    static constexpr ByteOrder kOrder = order;
    static constexpr bool kIsFloat = false;
    static constexpr bool kIsUnsigned = size == 1 && order == ByteOrder::Little;
    static constexpr bool kSplits = size < 4;

    // Where in memory the byte of a word lies that holds the sample in its top bytes; -1 for the
    // bytes below it and for the lowest of all four, which is dropped.
    static constexpr int memoryByte(int wordByte) {
        const int significance = wordByte - (4 - static_cast<int>(size));
        if (significance < 0 || wordByte == 0) return -1;
        return order == ByteOrder::Big ? static_cast<int>(size) - 1 - significance : significance;
    }

    // And back: which byte of the word belongs there.
    static constexpr int wordByte(int memoryByte) {
        return order == ByteOrder::Big ? 3 - memoryByte : 4 - static_cast<int>(size) + memoryByte;
    }
};

// Words of the host that are moved, never changed.
struct FloatLayout {
    static constexpr std::size_t kSize = 4;
    static constexpr ByteOrder kOrder = detail::kHostOrder;
    static constexpr bool kIsFloat = true;
    static constexpr bool kIsUnsigned = false;
    static constexpr bool kSplits = true;
    static constexpr int memoryByte(int wordByte) { return wordByte; }
    static constexpr int wordByte(int memoryByte) { return memoryByte; }
};

// Vectors with an arithmetic of their own for long runs.
template <class Vector>
concept HasLong = requires {
    typename Vector::Long::Environment;
};

// Vectors that read and write kGroup registers of words together, where a step has as many.
template <class Vector, class Sample = IntegerLayout<3, ByteOrder::Big>>
concept HasGroups = requires(const unsigned char* from,
                             typename Vector::Register (&words)[Vector::kGroup]) {
    // Of samples of 3 bytes.
    { Vector::template spreadGroup<Sample>(from, words) } -> std::same_as<void>;
    // The first register of a group's bytes.
    { Vector::template packedGroup<Sample, 1, 0>(words) } -> RegisterOf<Vector>;
};

// Registers (Register) of kLanes words of 32 bits. `Sample` stands for any.
template <class Vector, class Sample = IntegerLayout<2, ByteOrder::Big>>
concept SampleVector = requires(typename Vector::Register r, typename Vector::Register& to,
                                typename Vector::Register (&words)[Vector::kBlocks]) {
    requires MovesBytes<Vector, 4 * Vector::kLanes>;
    // Blocks that are in the works at a time, of one channel.
    requires Vector::kBlocks % 2 == 0;
    // So many samples and more are the vector Long's, in the Environment that it needs; 0: none.
    requires Vector::kLongRun == 0 || HasLong<Vector>;
    requires Vector::kGroup == 0 || HasGroups<Vector>;

    // The samples of the second of two channels, out of what load<Sample::kSize * 2 * kLanes> gave,
    // moved to the top of the words, zeros below them. Of 32 bits the lowest byte is cleared.
    { Vector::template spread<Sample, 2, 1>(r) } -> RegisterOf<Vector>;
    // The words of two registers that have even and odd places.
    { Vector::split(r, r, to, to) } -> std::same_as<void>;
    // words * 2^-31; the lowest byte of each word is 0.
    { Vector::floatsOf(r) } -> RegisterOf<Vector>;
    // The top bit of every byte inverted.
    { Vector::flipped(r) } -> RegisterOf<Vector>;
    // Turns floats to words as FloatToN defines them, as far as they matter for samples of 2 bytes.
    { Vector::template fractionsOf<2>(words) } -> std::same_as<void>;
    // How many registers a block of a stream takes, and the first of them, out of a register of
    // words a channel.
    requires Vector::template kFrameRegisters<Sample, 2> > 0;
    { Vector::template packed<Sample, 2, 0>(words) } -> RegisterOf<Vector>;
};

// Vectors that also have a quicker fractionsOf, which may return false where samples lie outside
// the range from -1.0 to 1.0.
template <class Vector, class Sample>
concept HasFractionsWithin = !Sample::kIsFloat && requires(typename Vector::Register(&words)[1]) {
    { Vector::template fractionsWithin<Sample::kSize>(words) } -> std::same_as<bool>;
};

// Vectors whose fractionsOf for long runs is wrong for what its environment tells.
template <class Vector, class Sample>
concept IsWatched = Sample::kSize <= 2 &&
                    requires(const typename Vector::Long::Environment& environment) {
    { environment.takeInvalid() } -> std::same_as<bool>;
};

// Runs steps over frames: step.whole<n>(frame) for n blocks, step.part(frame, frames) for less than
// one.
template <SampleVector Vector, bool backwards, std::size_t blocks, class Step>
[[gnu::always_inline]] inline void walk(std::size_t frames, const Step& step) {
    constexpr std::size_t kGroup = blocks * Vector::kLanes;
    const std::size_t rest = frames % Vector::kLanes;
    std::size_t frame = backwards ? frames - rest : 0;
    if constexpr (backwards) {
        if (rest > 0) step.part(frame, rest);
        while (frame % kGroup > 0)
            step.template whole<1>(frame -= Vector::kLanes);
        while (frame > 0)
            step.template whole<blocks>(frame -= kGroup);
    } else {
        for (; frames - frame >= kGroup; frame += kGroup)
            step.template whole<blocks>(frame);
        for (; frames - frame >= Vector::kLanes; frame += Vector::kLanes)
            step.template whole<1>(frame);
        if (rest > 0) step.part(frame, rest);
    }
}

template <SampleVector Vector, std::size_t bytes, bool isPart>
[[gnu::always_inline]] inline typename Vector::Register loadSome(const unsigned char* from,
                                                                 std::size_t count) {
    if constexpr (isPart)
        if (count < bytes) return Vector::template loadFirst<bytes>(from, count);
    return Vector::template load<bytes>(from);
}

template <SampleVector Vector, std::size_t bytes, bool isPart>
[[gnu::always_inline]] inline void storeSome(unsigned char* to, typename Vector::Register value,
                                             std::size_t count) {
    if constexpr (isPart)
        if (count < bytes) return Vector::template storeFirst<bytes>(to, value, count);
    Vector::template store<bytes>(to, value);
}

static constexpr std::size_t beyond(std::size_t count, std::size_t start) {
    return count > start ? count - start : 0;
}

template <SampleVector Vector, class Sample, std::size_t channels>
struct Decoder {
    using Register = typename Vector::Register;
    static constexpr std::size_t kFrameSize = Sample::kSize * channels;
    static constexpr std::size_t kBlocks = Vector::kBlocks / channels;

    unsigned char* destinations[channels];
    const unsigned char* source;

    template <std::size_t blocks>
    [[gnu::always_inline]] void whole(std::size_t frame) const {
        run<blocks, false>(frame, Vector::kLanes);
    }
    void part(std::size_t frame, std::size_t frames) const { run<1, true>(frame, frames); }

private:
    template <std::size_t blocks, bool isPart>
    [[gnu::always_inline]] void run(std::size_t frame, std::size_t frames) const {
        Register samples[blocks][channels];
        if constexpr (Sample::kSize == 3 && Vector::kGroup == blocks * channels) {
            readGroup<blocks>(source + kFrameSize * frame, samples);
        } else {
            for (std::size_t block = 0; block < blocks; ++block) {
                read<isPart>(source + kFrameSize * (frame + block * Vector::kLanes), frames,
                             samples[block]);
            }
        }
        for (std::size_t block = 0; block < blocks; ++block) {
            for (std::size_t channel = 0; channel < channels; ++channel) {
                storeSome<Vector, 4 * Vector::kLanes, isPart>(
                    destinations[channel] + 4 * (frame + block * Vector::kLanes),
                    samples[block][channel], 4 * frames);
            }
        }
    }

    template <std::size_t blocks>
    [[gnu::always_inline]] static void readGroup(const unsigned char* from,
                                                 Register (&samples)[blocks][channels]) {
        Register words[blocks * channels];
        Vector::template spreadGroup<Sample>(from, words);
        for (std::size_t block = 0; block < blocks; ++block) {
            Register* const own = words + block * channels;
            if constexpr (channels == 2) Vector::split(own[0], own[1], own[0], own[1]);
            for (std::size_t channel = 0; channel < channels; ++channel)
                samples[block][channel] = Vector::floatsOf(own[channel]);
        }
    }

    template <bool isPart>
    [[gnu::always_inline]] static void read(const unsigned char* from, std::size_t frames,
                                            Register (&samples)[channels]) {
        constexpr std::size_t kBytes = Sample::kSize * Vector::kLanes;
        if constexpr (kFrameSize <= 4) {
            Register bytes = loadSome<Vector, channels * kBytes, isPart>(from, kFrameSize * frames);
            if constexpr (Sample::kIsUnsigned) bytes = Vector::flipped(bytes);
            samples[0] = Vector::template spread<Sample, channels, 0>(bytes);
            if constexpr (channels == 2)
                samples[1] = Vector::template spread<Sample, channels, 1>(bytes);
        } else {
            const std::size_t count = kFrameSize * frames;
            const Register first = loadSome<Vector, kBytes, isPart>(from, count);
            const Register second =
                !isPart || count > kBytes
                    ? loadSome<Vector, kBytes, isPart>(from + kBytes, beyond(count, kBytes))
                    : first;
            Vector::split(Vector::template spread<Sample, 1, 0>(first),
                          Vector::template spread<Sample, 1, 0>(second), samples[0], samples[1]);
        }
        if constexpr (!Sample::kIsFloat) {
            for (Register& sample : samples)
                sample = Vector::floatsOf(sample);
        }
    }
};

template <SampleVector Vector, class Sample, std::size_t channels>
struct Encoder {
    using Register = typename Vector::Register;
    static constexpr std::size_t kFrameSize = Sample::kSize * channels;
    static constexpr std::size_t kBlocks = Vector::kBlocks / channels;

    unsigned char* destination;
    const unsigned char* sources[channels];

    template <std::size_t blocks>
    [[gnu::always_inline]] void whole(std::size_t frame) const {
        run<blocks, false>(frame, Vector::kLanes);
    }
    void part(std::size_t frame, std::size_t frames) const { run<1, true>(frame, frames); }

private:
    template <std::size_t blocks, bool isPart>
    [[gnu::always_inline]] void run(std::size_t frame, std::size_t frames) const {
        Register words[blocks * channels];
        const auto read = [&]() __attribute__((always_inline)) {
            for (std::size_t block = 0; block < blocks; ++block) {
                for (std::size_t channel = 0; channel < channels; ++channel) {
                    words[block * channels + channel] =
                        loadSome<Vector, 4 * Vector::kLanes, isPart>(
                            sources[channel] + 4 * (frame + block * Vector::kLanes), 4 * frames);
                }
            }
        };
        read();
        if constexpr (HasFractionsWithin<Vector, Sample>) {
            if (!Vector::template fractionsWithin<Sample::kSize>(words)) [[unlikely]] {
                // From memory, or the compiler would keep the samples in registers it is short of.
                __asm__ volatile("" : : : "memory");
                read();
                Vector::template fractionsOf<Sample::kSize>(words);
            }
        } else if constexpr (!Sample::kIsFloat) {
            Vector::template fractionsOf<Sample::kSize>(words);
        }
        if constexpr (!isPart && Vector::kGroup == blocks * channels) {
            return writeGroup<0>(destination + kFrameSize * frame, words);
        }
        for (std::size_t block = 0; block < blocks; ++block) {
            unsigned char* const to = destination + kFrameSize * (frame + block * Vector::kLanes);
            write<isPart, 0>(to, words + block * channels, kFrameSize * frames);
        }
    }

    template <std::size_t index, std::size_t count>
    [[gnu::always_inline]] static void writeGroup(unsigned char* to,
                                                  const Register (&words)[count]) {
        constexpr std::size_t kBytes = 4 * Vector::kLanes;
        Register bytes = Vector::template packedGroup<Sample, channels, index>(words);
        if constexpr (Sample::kIsUnsigned) bytes = Vector::flipped(bytes);
        Vector::template store<kBytes>(to + index * kBytes, bytes);
        if constexpr (index + 1 < Sample::kSize) writeGroup<index + 1>(to, words);
    }

    template <bool isPart, std::size_t index>
    [[gnu::always_inline]] static void write(unsigned char* to, const Register* words,
                                             std::size_t count) {
        constexpr std::size_t kRegisters = Vector::template kFrameRegisters<Sample, channels>;
        constexpr std::size_t kBytes = kFrameSize * Vector::kLanes / kRegisters;
        Register bytes = Vector::template packed<Sample, channels, index>(words);
        if constexpr (Sample::kIsUnsigned) bytes = Vector::flipped(bytes);
        storeSome<Vector, kBytes, isPart>(to, bytes, count);
        if constexpr (index + 1 < kRegisters) {
            if (!isPart || count > kBytes)
                write<isPart, index + 1>(to + kBytes, words, beyond(count, kBytes));
        }
    }
};

template <SampleVector Vector, class Sample>
static void toFloat(float* destination, const void* source, std::size_t count,
                    float* secondDestination) noexcept {
    const bool inPlace = destination == source;
    if (destination == nullptr || source == nullptr || (Sample::kIsFloat && inPlace)) return;
    auto* const to = reinterpret_cast<unsigned char*>(destination);
    auto* const secondTo = reinterpret_cast<unsigned char*>(secondDestination);
    const auto* const from = static_cast<const unsigned char*>(source);
    if (Sample::kSplits && secondTo != nullptr && !(Sample::kSize == 3 && inPlace)) {
        const Decoder<Vector, Sample, 2> decoder{{to, secondTo}, from};
        walk<Vector, decoder.kFrameSize <= 4, decoder.kBlocks>(count, decoder);
    } else {
        const Decoder<Vector, Sample, 1> decoder{{to}, from};
        walk<Vector, true, decoder.kBlocks>(count, decoder);
    }
}

template <SampleVector Vector, class Sample>
[[gnu::always_inline]] inline void encode(unsigned char* to, const unsigned char* from,
                                          const unsigned char* secondFrom, std::size_t count) {
    if (secondFrom != nullptr) {
        const Encoder<Vector, Sample, 2> encoder{to, {from, secondFrom}};
        walk<Vector, (encoder.kFrameSize > 4), encoder.kBlocks>(count, encoder);
    } else {
        const Encoder<Vector, Sample, 1> encoder{to, {from}};
        walk<Vector, false, encoder.kBlocks>(count, encoder);
    }
}

// Piece by piece, with fewer steps; a piece that had samples outside of the range from -1.0 to 1.0
// is made again. One that lies over its own source could not be.
template <SampleVector Vector, class Sample>
[[gnu::always_inline]] inline void encodePieces(unsigned char* to, const unsigned char* from,
                                                const unsigned char* secondFrom,
                                                std::size_t count) {
    constexpr std::size_t kPiece = 2048;
    const std::size_t frameSize = Sample::kSize * (secondFrom != nullptr ? 2 : 1);
    const typename Vector::Long::Environment environment;
    for (std::size_t start = 0; start < count; start += kPiece) {
        const std::size_t frames = count - start < kPiece ? count - start : kPiece;
        unsigned char* const pieceTo = to + frameSize * start;
        const unsigned char* const piece = from + 4 * start;
        const unsigned char* const second =
            secondFrom != nullptr ? secondFrom + 4 * start : nullptr;
        const bool isOverSource = to == from && frameSize * (start + frames) > 4 * start;
        if (!isOverSource) encode<typename Vector::Long, Sample>(pieceTo, piece, second, frames);
        if (isOverSource || environment.takeInvalid())
            encode<Vector, Sample>(pieceTo, piece, second, frames);
    }
}

template <SampleVector Vector, class Sample>
static void fromFloat(void* destination, const float* source, std::size_t count,
                      const float* secondSource) noexcept {
    if (destination == nullptr || source == nullptr) return;
    if (Sample::kIsFloat && destination == source) return;
    auto* const to = static_cast<unsigned char*>(destination);
    const auto* const from = reinterpret_cast<const unsigned char*>(source);
    const auto* const secondFrom = reinterpret_cast<const unsigned char*>(secondSource);
    if constexpr (!Sample::kIsFloat && Vector::kLongRun > 0) {
        if (count >= Vector::kLongRun) {
            if constexpr (IsWatched<Vector, Sample>)
                return encodePieces<Vector, Sample>(to, from, secondFrom, count);
            [[maybe_unused]] const typename Vector::Long::Environment environment;
            return encode<typename Vector::Long, Sample>(to, from, secondFrom, count);
        }
    }
    encode<Vector, Sample>(to, from, secondFrom, count);
}

template <SampleVector Vector, class Sample>
constexpr SampleConverters kOf{toFloat<Vector, Sample>, fromFloat<Vector, Sample>};

template <SampleVector Vector>
constexpr SampleKernels makeSampleKernels() {
    constexpr ByteOrder kBig = ByteOrder::Big;
    constexpr ByteOrder kLittle = ByteOrder::Little;
    return {{{kOf<Vector, IntegerLayout<1, kBig>>, kOf<Vector, IntegerLayout<1, kLittle>>},
             {kOf<Vector, IntegerLayout<2, kBig>>, kOf<Vector, IntegerLayout<2, kLittle>>},
             {kOf<Vector, IntegerLayout<3, kBig>>, kOf<Vector, IntegerLayout<3, kLittle>>},
             {kOf<Vector, IntegerLayout<4, kBig>>, kOf<Vector, IntegerLayout<4, kLittle>>}},
            kOf<Vector, FloatLayout>};
}

}  // namespace veltra::kernels
