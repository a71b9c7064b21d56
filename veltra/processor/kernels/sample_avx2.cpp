#include "veltra/processor/kernels/avx2_memory.h"
#include "veltra/processor/kernels/sample_walk.h"

namespace veltra::kernels {

namespace {

using Places = Avx2Memory::Places;

template <class Sample, int channels, int channel>
constexpr Places spreadPlaces() {
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
constexpr Places packPlaces() {
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

    template <class Sample, int channels, int channel>
    static Register spread(Register bytes) {
        if constexpr (Sample::kSize == 4 && Sample::kOrder == detail::kHostOrder) return bytes;
        return shuffled(bytes, kSpread<Sample, channels, channel>);
    }

    static void split(Register low, Register high, Register& even, Register& odd) {
        const __m256 lowWords = _mm256_castsi256_ps(low);
        const __m256 highWords = _mm256_castsi256_ps(high);
        even = inOrder(_mm256_shuffle_ps(lowWords, highWords, 0x88));
        odd = inOrder(_mm256_shuffle_ps(lowWords, highWords, 0xDD));
    }

    static Register floatsOf(Register words) {
        const Register kept = _mm256_and_si256(words, _mm256_set1_epi32(-256));
        return _mm256_castps_si256(
            _mm256_mul_ps(_mm256_cvtepi32_ps(kept), _mm256_set1_ps(0x1p-31F)));
    }

    // All exact: the factor is a power of two. What lies at or beyond 1.0 becomes the least
    // integer, which nothing else does; few blocks have such samples.
    template <std::size_t bytes, std::size_t count>
    [[gnu::always_inline]] static void fractionsOf(Register (&samples)[count]) {
        const Register outside = _mm256_set1_epi32(INT32_MIN);
        Register words[count];
        Register least = _mm256_setzero_si256();
        for (std::size_t i = 0; i < count; ++i) {
            words[i] = _mm256_cvttps_epi32(
                _mm256_mul_ps(_mm256_castsi256_ps(samples[i]), _mm256_set1_ps(0x1p31F)));
            least = _mm256_min_epi32(least, words[i]);
        }
        if (_mm256_movemask_epi8(_mm256_cmpeq_epi32(least, outside)) != 0) {
            for (std::size_t i = 0; i < count; ++i) {
                const Register sign = _mm256_srai_epi32(samples[i], 31);
                const Register fullScale =
                    _mm256_sub_epi32(_mm256_xor_si256(sign, _mm256_set1_epi32(0x7FFF'FF00)), sign);
                words[i] =
                    _mm256_blendv_epi8(words[i], fullScale, _mm256_cmpeq_epi32(words[i], outside));
            }
        }
        for (std::size_t i = 0; i < count; ++i)
            samples[i] = words[i];
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
