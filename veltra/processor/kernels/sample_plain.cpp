// SPDX-License-Identifier: MIT
// The sample converters in plain C++. They run on every processor, and they are the judge of every
// faster variant.
#include "veltra/processor/detail/bytes.h"
#include "veltra/processor/kernels/sample_kernels.h"

#include <array>
#include <cstring>

namespace veltra::kernels {

namespace {

using detail::ByteOrder;
using detail::load;
using detail::store;

constexpr std::size_t kFloatSize = sizeof(float);
constexpr std::uint32_t kSignBit = 0x8000'0000U;
constexpr std::uint32_t kFullScale = 0x7FFF'FF00U;  // what 1.0 and more become, of 32 bits
constexpr std::uint32_t kExponentBias = 127;
constexpr int kMantissaBits = 23;

// The float value / 2^23, value being from -2^23 to 2^23 - 1. Both steps are exact in every
// rounding mode: 24 bits fit a mantissa, and the factor is a power of two. The sign is taken from
// the integer: where a processor converts by subtracting, 0 becomes -0 when rounding downwards.
std::uint32_t floatOfFraction(std::int32_t value) noexcept {
    const auto bits = std::bit_cast<std::uint32_t>(static_cast<float>(value) * 0x1p-23F);
    return bits & (~kSignBit | static_cast<std::uint32_t>(value));
}

// x * 2^31 truncated, clipped; works on the bits, so that no rounding mode or denormal setting of
// the calling thread can change a file.
std::uint32_t fractionOfFloat(std::uint32_t bits) noexcept {
    const std::uint32_t biased = bits >> kMantissaBits & 0xFFU;
    const std::uint32_t shift = kExponentBias - biased;  // huge when biased is above the bias
    std::uint32_t magnitude = (bits << 8 | kSignBit) >> (shift & 31U);
    magnitude = shift < 32 ? magnitude : 0;
    magnitude = biased >= kExponentBias ? kFullScale : magnitude;
    return (bits & kSignBit) != 0 ? 0U - magnitude : magnitude;
}

constexpr int kDroppedBits = 52 - kMantissaBits;  // of a double's mantissa, by a float's
constexpr std::uint64_t kBiasDifference = 1023 - kExponentBias;

constexpr std::uint64_t doubleExponent(std::uint64_t biased) noexcept {
    return biased << 52;
}

// To nearest, ties to even.
constexpr std::uint64_t rounded(std::uint64_t mantissa, std::uint64_t dropped) noexcept {
    const std::uint64_t half = std::uint64_t{1} << (dropped - 1);
    return (mantissa + half - 1 + (mantissa >> dropped & 1U)) >> dropped;
}

// The float next to a double, ties to even, and the double of a float. On the bits, too.
// What is infinite, not a number, denormal or 0 goes another way than ordinary values.
[[gnu::noinline]] std::uint32_t narrowedRare(std::uint32_t sign, std::uint64_t magnitude) noexcept {
    constexpr std::uint32_t kInfinity = 0x7F80'0000U;
    constexpr std::uint32_t kQuietNaN = 0x7FC0'0000U;
    constexpr std::uint32_t kMantissa = 0x007F'FFFFU;

    if (magnitude > doubleExponent(0x7FF))
        return sign | kQuietNaN |
               (static_cast<std::uint32_t>(magnitude >> kDroppedBits) & kMantissa);
    if (magnitude >= doubleExponent(kBiasDifference + 1)) return sign | kInfinity;
    const std::uint64_t dropped = kDroppedBits + kBiasDifference + 1 - (magnitude >> 52);
    if (dropped > 53) return sign;
    const std::uint64_t mantissa = (magnitude & (doubleExponent(1) - 1)) | doubleExponent(1);
    return sign | static_cast<std::uint32_t>(rounded(mantissa, dropped));
}

std::uint32_t narrowed(std::uint64_t bits) noexcept {
    const std::uint32_t sign = static_cast<std::uint32_t>(bits >> 32) & kSignBit;
    const std::uint64_t magnitude = bits & ~(std::uint64_t{kSignBit} << 32);
    if (magnitude - doubleExponent(kBiasDifference + 1) >= doubleExponent(0xFE))
        return narrowedRare(sign, magnitude);
    const std::uint64_t mantissa = magnitude - doubleExponent(kBiasDifference);
    return sign | static_cast<std::uint32_t>(rounded(mantissa, kDroppedBits));
}

[[gnu::noinline]] std::uint64_t widenedRare(std::uint64_t sign, std::uint64_t magnitude) noexcept {
    constexpr std::uint64_t kQuiet = std::uint64_t{1} << 51;
    constexpr std::uint64_t kDenormal = 1023 - 149 - 1;  // of the lowest bit, which counts twice

    if (magnitude == 0) return sign;
    if (magnitude >> kMantissaBits != 0) {
        const std::uint64_t wide = magnitude << kDroppedBits;
        return sign | doubleExponent(0x7FF) | wide | (wide != doubleExponent(0xFF) ? kQuiet : 0);
    }
    const auto top = 63U - static_cast<unsigned>(std::countl_zero(magnitude));
    return sign | (doubleExponent(kDenormal + top) + (magnitude << (52 - top)));
}

std::uint64_t widened(std::uint32_t bits) noexcept {
    constexpr std::uint32_t kLeast = 1U << kMantissaBits;  // that is not denormal
    const std::uint64_t sign = std::uint64_t{bits & kSignBit} << 32;
    const std::uint32_t magnitude = bits & ~kSignBit;
    if (magnitude - kLeast >= 0xFE * kLeast) return widenedRare(sign, magnitude);
    return sign | ((std::uint64_t{magnitude} << kDroppedBits) + doubleExponent(kBiasDifference));
}

// A sample format: its size, what its bytes say as the bits of a float, and whether there is a
// two-channel form to floats (kSplits) and from floats (kInterleaves). Integers pass through a word
// that holds the sample in its top bits.
template <std::size_t size, bool isFloat, bool splits, bool interleaves>
struct SampleTraits {
    static constexpr std::size_t kSize = size;
    static constexpr bool kIsFloat = isFloat;  // nothing but copied
    static constexpr bool kSplits = splits;
    static constexpr bool kInterleaves = interleaves;
};

template <class Word, ByteOrder order>
struct WordSample : SampleTraits<sizeof(Word), false, sizeof(Word) < 4, true> {
    static constexpr int kShift = 32 - 8 * static_cast<int>(sizeof(Word));
    // Little-endian bytes are unsigned.
    static constexpr std::uint32_t kOffset =
        sizeof(Word) == 1 && order == ByteOrder::Little ? kSignBit : 0;

    static std::uint32_t decode(const unsigned char* bytes) noexcept {
        const std::uint32_t word = std::uint32_t{load<Word, order>(bytes)} << kShift ^ kOffset;
        return floatOfFraction(static_cast<std::int32_t>(word) >> 8);
    }

    static void encode(unsigned char* bytes, std::uint32_t bits) noexcept {
        store<Word, order>(bytes, static_cast<Word>((fractionOfFloat(bits) ^ kOffset) >> kShift));
    }
};

template <ByteOrder order>
struct Integer24Sample : SampleTraits<3, false, true, true> {
    static constexpr std::size_t kHigh = order == ByteOrder::Big ? 0 : 2;
    static constexpr std::size_t kLow = 2 - kHigh;

    static std::uint32_t decode(const unsigned char* bytes) noexcept {
        const std::uint32_t word = std::uint32_t{bytes[kHigh]} << 24 |
                                   std::uint32_t{bytes[1]} << 16 | std::uint32_t{bytes[kLow]} << 8;
        return floatOfFraction(static_cast<std::int32_t>(word) >> 8);
    }

    // The same where a byte follows the sample: one load instead of three.
    static std::uint32_t decodeFollowed(const unsigned char* bytes) noexcept {
        const auto four = load<std::uint32_t, order>(bytes);
        const std::uint32_t word = order == ByteOrder::Big ? four : four << 8;
        return floatOfFraction(static_cast<std::int32_t>(word) >> 8);
    }

    static void encode(unsigned char* bytes, std::uint32_t bits) noexcept {
        const std::uint32_t word = fractionOfFloat(bits);
        bytes[kHigh] = static_cast<unsigned char>(word >> 24);
        bytes[1] = static_cast<unsigned char>(word >> 16);
        bytes[kLow] = static_cast<unsigned char>(word >> 8);
    }
};

struct Float32Sample : SampleTraits<sizeof(float), true, true, true> {
    static std::uint32_t decode(const unsigned char* bytes) noexcept {
        return load<std::uint32_t>(bytes);
    }

    static void encode(unsigned char* bytes, std::uint32_t bits) noexcept { store(bytes, bits); }
};

struct Float64Sample : SampleTraits<sizeof(double), false, false, false> {
    static std::uint32_t decode(const unsigned char* bytes) noexcept {
        return narrowed(load<std::uint64_t>(bytes));
    }

    static void encode(unsigned char* bytes, std::uint32_t bits) noexcept {
        store(bytes, widened(bits));
    }
};

bool apart(const unsigned char* first, std::size_t firstSize, const unsigned char* second,
           std::size_t secondSize) noexcept {
    const auto firstStart = reinterpret_cast<std::uintptr_t>(first);
    const auto secondStart = reinterpret_cast<std::uintptr_t>(second);
    return firstStart + firstSize <= secondStart || secondStart + secondSize <= firstStart;
}

// Runs the frames of a conversion. In place it must not write over what it has yet to read, so it
// runs backwards when it widens; buffers that lie apart are faster forwards.
template <bool widens, class Step>
void eachFrame(std::size_t count, bool buffersApart, Step step) noexcept {
    if (widens && !buffersApart) {
        for (std::size_t index = count; index-- > 0;) {
            step(index);
        }
    } else {
        for (std::size_t index = 0; index < count; ++index) {
            step(index);
        }
    }
}

template <class Sample>
std::uint32_t decodeFollowed(const unsigned char* bytes) noexcept {
    if constexpr (Sample::kSize == 3)
        return Sample::decodeFollowed(bytes);
    else
        return Sample::decode(bytes);
}

// Decodes most of a stream whose buffers lie apart, and answers how many frames: all but the last
// few. A block is read whole before it is written, so that the compiler may use vectors without
// having to prove that the buffers lie apart.
template <class Sample, std::size_t channels>
std::size_t decodeBlocks(const std::array<unsigned char*, channels>& destinations,
                         const unsigned char* source, std::size_t count) noexcept {
    constexpr std::size_t kFrames = 4;
    std::size_t index = 0;
    for (; index + kFrames < count; index += kFrames) {
        std::array<std::array<std::uint32_t, kFrames>, channels> block;
        for (std::size_t frame = 0; frame < kFrames; ++frame) {
            for (std::size_t channel = 0; channel < channels; ++channel) {
                const std::size_t sample = channels * (index + frame) + channel;
                block[channel][frame] = decodeFollowed<Sample>(source + Sample::kSize * sample);
            }
        }
        for (std::size_t channel = 0; channel < channels; ++channel) {
            std::memcpy(destinations[channel] + kFloatSize * index, block[channel].data(),
                        sizeof block[channel]);
        }
    }
    return index;
}

template <class Sample>
void decodeOne(unsigned char* destination, const unsigned char* source,
               std::size_t count) noexcept {
    const bool buffersApart = apart(destination, kFloatSize * count, source, Sample::kSize * count);
    const std::size_t done =
        buffersApart ? decodeBlocks<Sample, 1>({destination}, source, count) : 0;
    destination += kFloatSize * done;
    source += Sample::kSize * done;
    eachFrame<Sample::kSize <= kFloatSize>(count - done, buffersApart, [=](std::size_t index) {
        store(destination + kFloatSize * index, Sample::decode(source + Sample::kSize * index));
    });
}

// A frame is read whole before any of it is written.
template <class Sample>
void decodeTwo(unsigned char* first, unsigned char* second, const unsigned char* source,
               std::size_t count) noexcept {
    constexpr std::size_t kFrameSize = 2 * Sample::kSize;
    const bool buffersApart = apart(first, kFloatSize * count, source, kFrameSize * count) &&
                              apart(second, kFloatSize * count, source, kFrameSize * count);
    const std::size_t done =
        buffersApart ? decodeBlocks<Sample, 2>({first, second}, source, count) : 0;
    first += kFloatSize * done;
    second += kFloatSize * done;
    source += kFrameSize * done;
    eachFrame<kFrameSize <= kFloatSize>(count - done, buffersApart, [=](std::size_t index) {
        const unsigned char* frame = source + kFrameSize * index;
        const std::uint32_t firstBits = Sample::decode(frame);
        const std::uint32_t secondBits = Sample::decode(frame + Sample::kSize);
        store(first + kFloatSize * index, firstBits);
        store(second + kFloatSize * index, secondBits);
    });
}

template <class Sample>
void encodeOne(unsigned char* destination, const unsigned char* source,
               std::size_t count) noexcept {
    const bool buffersApart = apart(destination, Sample::kSize * count, source, kFloatSize * count);
    eachFrame<(Sample::kSize > kFloatSize)>(count, buffersApart, [=](std::size_t index) {
        Sample::encode(destination + Sample::kSize * index,
                       load<std::uint32_t>(source + kFloatSize * index));
    });
}

template <class Sample>
void encodeTwo(unsigned char* destination, const unsigned char* first, const unsigned char* second,
               std::size_t count) noexcept {
    constexpr std::size_t kFrameSize = 2 * Sample::kSize;
    const bool buffersApart = apart(destination, kFrameSize * count, first, kFloatSize * count) &&
                              apart(destination, kFrameSize * count, second, kFloatSize * count);
    eachFrame<(kFrameSize > kFloatSize)>(count, buffersApart, [=](std::size_t index) {
        unsigned char* frame = destination + kFrameSize * index;
        const auto firstBits = load<std::uint32_t>(first + kFloatSize * index);
        const auto secondBits = load<std::uint32_t>(second + kFloatSize * index);
        Sample::encode(frame, firstBits);
        Sample::encode(frame + Sample::kSize, secondBits);
    });
}

const unsigned char* bytesOf(const void* buffer) noexcept {
    return static_cast<const unsigned char*>(buffer);
}

unsigned char* bytesOf(void* buffer) noexcept {
    return static_cast<unsigned char*>(buffer);
}

template <class Sample>
void toFloat(float* destination, const void* source, std::size_t count,
             float* secondDestination) noexcept {
    const bool inPlace = destination == source;
    if (destination == nullptr || source == nullptr) return;
    if (Sample::kIsFloat && inPlace) return;
    if (!Sample::kSplits || secondDestination == nullptr || (Sample::kSize == 3 && inPlace)) {
        decodeOne<Sample>(bytesOf(destination), bytesOf(source), count);
    } else {
        decodeTwo<Sample>(bytesOf(destination), bytesOf(secondDestination), bytesOf(source), count);
    }
}

template <class Sample>
void fromFloat(void* destination, const float* source, std::size_t count,
               const float* secondSource) noexcept {
    if (destination == nullptr || source == nullptr) return;
    if (Sample::kIsFloat && destination == source) return;
    if (!Sample::kInterleaves || secondSource == nullptr) {
        encodeOne<Sample>(bytesOf(destination), bytesOf(source), count);
    } else {
        encodeTwo<Sample>(bytesOf(destination), bytesOf(source), bytesOf(secondSource), count);
    }
}

template <class Sample>
constexpr SampleConverters kOf{toFloat<Sample>, fromFloat<Sample>};

template <class Word>
constexpr SampleConverters kBig = kOf<WordSample<Word, ByteOrder::Big>>;
template <class Word>
constexpr SampleConverters kLittle = kOf<WordSample<Word, ByteOrder::Little>>;

}  // namespace

constexpr SampleKernels kSamplesPlain{
    {{kBig<std::uint8_t>, kLittle<std::uint8_t>},
     {kBig<std::uint16_t>, kLittle<std::uint16_t>},
     {kOf<Integer24Sample<ByteOrder::Big>>, kOf<Integer24Sample<ByteOrder::Little>>},
     {kBig<std::uint32_t>, kLittle<std::uint32_t>}},
    kOf<Float32Sample>};

constexpr SampleConverters kFloat64Plain = kOf<Float64Sample>;

}  // namespace veltra::kernels
