// SPDX-License-Identifier: MIT
#include "veltra/processor/kernels/avx2_memory.h"
#include "veltra/processor/kernels/sample_walk.h"

namespace veltra::kernels {

namespace {

using Places = Avx2Memory::Places;

template <class Sample, int channels, int channel>
consteval Places spreadPlaces() {
    constexpr int kSize = static_cast<int>(Sample::kSize);
    Places places;
    for (int byte = 0; byte < 32; ++byte) {
        const int memory = Sample::memoryByte(byte % 4);
        const int start = byte < 16 ? 0 : Avx2Memory::upperStart(8 * channels * kSize);
        const int from = (byte / 4 * channels + channel) * kSize + memory - start;
        places.from[byte] = static_cast<unsigned char>(memory < 0 ? 0x80 : from);
    }
    return places;
}

template <class Sample>
consteval Places packPlaces() {
    constexpr int kSize = static_cast<int>(Sample::kSize);
    Places places;
    for (int byte = 0; byte < 32; ++byte) {
        const int inHalf = byte % 16;
        const int from = inHalf / kSize * 4 + Sample::wordByte(inHalf % kSize);
        places.from[byte] = static_cast<unsigned char>(inHalf < 4 * kSize ? from : 0x80);
    }
    return places;
}

template <class Sample, int channels, int channel>
constexpr Places kSpread = spreadPlaces<Sample, channels, channel>();
template <class Sample>
constexpr Places kPack = packPlaces<Sample>();

struct Avx2 : Avx2Memory {
    static constexpr std::size_t kLanes = 8;
    static constexpr std::size_t kBlocks = 4;
    static constexpr std::size_t kLongRun = 0;
    static constexpr std::size_t kGroup = 0;

    template <class Sample, int channels, int channel>
    static Register spread(Register bytes) {
        if constexpr (Sample::kIsFloat)
            return bytes;
        else if constexpr (Sample::kSize == 4 && Sample::kOrder == detail::kHostOrder)
            return _mm256_and_si256(bytes, _mm256_set1_epi32(-256));
        else
            return shuffled(bytes, kSpread<Sample, channels, channel>);
    }

    static void split(Register low, Register high, Register& even, Register& odd) {
        const __m256 lowWords = _mm256_castsi256_ps(low);
        const __m256 highWords = _mm256_castsi256_ps(high);
        even = inOrder(_mm256_shuffle_ps(lowWords, highWords, 0x88));
        odd = inOrder(_mm256_shuffle_ps(lowWords, highWords, 0xDD));
    }

    static Register floatsOf(Register words) {
        return _mm256_castps_si256(
            _mm256_mul_ps(_mm256_cvtepi32_ps(words), _mm256_set1_ps(0x1p-31F)));
    }

    // Clipped as integers, to which a denormal is like any other, then multiplied by 2^31 in the
    // exponent. The clipping leaves one step below 1.0; where it did anything and the lowest bytes
    // count, full scale is a step lower still.
    template <std::size_t bytes, std::size_t count>
    [[gnu::always_inline]] static void fractionsOf(Register (&samples)[count]) {
        for (Register& sample : samples) {
            const Register clipped =
                _mm256_min_epu32(_mm256_min_epi32(sample, _mm256_set1_epi32(0x3F7F'FFFF)),
                                 _mm256_set1_epi32(static_cast<int>(0xBF7F'FFFFU)));
            Register scaled = _mm256_add_epi32(clipped, _mm256_set1_epi32(31 << 23));
            if constexpr (bytes > 2)
                scaled = _mm256_add_epi32(scaled, _mm256_cmpgt_epi32(sample, clipped));
            sample = _mm256_cvttps_epi32(_mm256_castsi256_ps(scaled));
        }
    }

    // Two channels are interleaved as words first.
    template <class Sample, int channels>
    static constexpr std::size_t kFrameRegisters = channels;

    template <class Sample, int channels, int index>
    static Register packed(const Register* words) {
        Register samples = words[0];
        if constexpr (channels == 2) {
            const Register low = _mm256_unpacklo_epi32(words[0], words[1]);
            const Register high = _mm256_unpackhi_epi32(words[0], words[1]);
            samples = _mm256_permute2x128_si256(low, high, index == 0 ? 0x20 : 0x31);
        }
        if constexpr (Sample::kSize < 4 || Sample::kOrder != detail::kHostOrder)
            samples = shuffled(samples, kPack<Sample>);
        return joined<4 * Sample::kSize>(samples);
    }

private:
    static Register inOrder(__m256 words) {
        return _mm256_permute4x64_epi64(_mm256_castps_si256(words), 0xD8);
    }
};

}  // namespace

constexpr SampleKernels kSamplesAvx2 = makeSampleKernels<Avx2>();

}  // namespace veltra::kernels
