// SPDX-License-Identifier: MIT
#include "veltra/processor/kernels/avx512_memory.h"
#include "veltra/processor/kernels/float_environment.h"
#include "veltra/processor/kernels/sample_walk.h"

namespace veltra::kernels {

namespace {

// Where the bytes of a register come from, one after another, and which of them count.
struct alignas(64) Places {
    unsigned char from[64] = {};
    std::uint64_t counts = 0;
};

// The samples begin `start` bytes into the register.
template <class Sample, int channels, int channel, int start>
consteval Places spreadPlaces() {
    Places places;
    for (int byte = 0; byte < 64; ++byte) {
        const int memory = Sample::memoryByte(byte % 4);
        if (memory < 0) continue;
        const int sample = byte / 4 * channels + channel;
        places.from[byte] =
            static_cast<unsigned char>(start + sample * static_cast<int>(Sample::kSize) + memory);
        places.counts |= std::uint64_t{1} << byte;
    }
    return places;
}

// Which bytes of words make 64 bytes of a stream, from `start` on. The words stand in registers of
// 16 frames and a channel, the channels of the same frames side by side.
struct alignas(64) PackPlaces {
    unsigned char from[64] = {};
    std::uint64_t of[4] = {};  // the bytes that each register gives
};

template <class Sample, int channels, int start>
consteval PackPlaces packPlaces() {
    constexpr int kSize = static_cast<int>(Sample::kSize);
    PackPlaces places;
    for (int byte = 0; byte < 64; ++byte) {
        const int sample = (start + byte) / kSize;
        const int frame = sample / channels;
        const int from = frame % 16 * 4 + Sample::wordByte((start + byte) % kSize);
        places.from[byte] = static_cast<unsigned char>(from);
        const int owner = frame / 16 * channels + sample % channels;
        if (owner < 4) places.of[owner] |= std::uint64_t{1} << byte;
    }
    return places;
}

template <class Sample, int channels, int channel, int start = 0>
constexpr Places kSpread = spreadPlaces<Sample, channels, channel, start>();
template <class Sample, int channels, int start>
constexpr PackPlaces kPack = packPlaces<Sample, channels, start>();

template <const PackPlaces& places, int count, int next = 0>
[[gnu::always_inline]] inline __m512i gathered(const __m512i* words, __m512i bytes) {
    if constexpr (next < count) {
        if constexpr (places.of[next] != 0) {
            bytes = _mm512_mask_permutexvar_epi8(bytes, places.of[next],
                                                 _mm512_load_si512(places.from), words[next]);
        }
        return gathered<places, count, next + 1>(words, bytes);
    }
    return bytes;
}

struct Avx512Long;

struct Avx512 : Avx512Memory {
    using Long = Avx512Long;
    static constexpr std::size_t kLongRun = 256;
    static constexpr std::size_t kGroup = 4;
    static constexpr std::size_t kLanes = 16;
    static constexpr std::size_t kBlocks = 4;

    template <class Sample, int channels, int channel, int start = 0>
    static Register spread(Register bytes) {
        constexpr const Places& kPlaces = kSpread<Sample, channels, channel, start>;
        if constexpr (Sample::kIsFloat)
            return bytes;
        else if constexpr (Sample::kSize == 4 && Sample::kOrder == detail::kHostOrder)
            return _mm512_and_si512(bytes, _mm512_set1_epi32(-256));
        else
            return _mm512_maskz_permutexvar_epi8(kPlaces.counts, _mm512_load_si512(kPlaces.from),
                                                 bytes);
    }

    // Whole loads, none of them beyond the group: the last samples are the end of their load.
    template <class Sample>
    static void spreadGroup(const unsigned char* from, Register (&words)[kGroup]) {
        words[0] = spread<Sample, 1, 0>(load<64>(from));
        words[1] = spread<Sample, 1, 0>(load<64>(from + 48));
        words[2] = spread<Sample, 1, 0>(load<64>(from + 96));
        words[3] = spread<Sample, 1, 0, 16>(load<64>(from + 128));
    }

    static void split(Register low, Register high, Register& even, Register& odd) {
        const Register evenPlaces =
            _mm512_set_epi32(30, 28, 26, 24, 22, 20, 18, 16, 14, 12, 10, 8, 6, 4, 2, 0);
        even = _mm512_permutex2var_epi32(low, evenPlaces, high);
        odd =
            _mm512_permutex2var_epi32(low, _mm512_or_si512(evenPlaces, _mm512_set1_epi32(1)), high);
    }

    static Register floatsOf(Register words) {
        return _mm512_castps_si512(
            _mm512_mul_ps(_mm512_cvtepi32_ps(words), _mm512_set1_ps(0x1p-31F)));
    }

    // Clipped as integers, to which a denormal is like any other, then multiplied by 2^31 in the
    // exponent. The clipping leaves one step below 1.0; where it did anything and the lowest bytes
    // count, full scale is a step lower still.
    template <std::size_t bytes, std::size_t count>
    [[gnu::always_inline]] static void fractionsOf(Register (&samples)[count]) {
        for (Register& sample : samples) {
            const Register clipped =
                _mm512_min_epu32(_mm512_min_epi32(sample, _mm512_set1_epi32(0x3F7F'FFFF)),
                                 _mm512_set1_epi32(static_cast<int>(0xBF7F'FFFFU)));
            Register scaled = _mm512_add_epi32(clipped, _mm512_set1_epi32(31 << 23));
            if constexpr (bytes > 2) {
                scaled = _mm512_mask_sub_epi32(scaled, _mm512_cmpneq_epi32_mask(clipped, sample),
                                               scaled, _mm512_set1_epi32(1));
            }
            sample = _mm512_cvttps_epi32(_mm512_castsi512_ps(scaled));
        }
    }

    template <class Sample, int channels>
    static constexpr std::size_t kFrameRegisters = Sample::kSize* channels > 4 ? 2 : 1;

    template <class Sample, int channels, int index>
    static Register packed(const Register* words) {
        constexpr int kBytes = 16 * channels * Sample::kSize / kFrameRegisters<Sample, channels>;
        if constexpr (kMoves<Sample, channels>)
            return words[index];
        else
            return gathered<kPack<Sample, channels, index * kBytes>, channels>(
                words, _mm512_setzero_si512());
    }

    template <class Sample, int channels, int index>
    static Register packedGroup(const Register (&words)[kGroup]) {
        if constexpr (kMoves<Sample, channels>)
            return words[index];
        else
            return gathered<kPack<Sample, channels, index * 64>, kGroup>(words,
                                                                         _mm512_setzero_si512());
    }

private:
    template <class Sample, int channels>
    static constexpr bool kMoves =
        channels == 1 && Sample::kSize == 4 && Sample::kOrder == detail::kHostOrder;
};

// With fewer steps, for which the thread's arithmetic is changed for a while.
struct Avx512Long : Avx512 {
    using Environment = QuietArithmetic;

    template <std::size_t bytes, std::size_t count>
    [[gnu::always_inline]] static void fractionsOf(Register (&samples)[count]) {
        Register words[count];
        for (std::size_t i = 0; i < count; ++i) {
            __m512 scaled = _mm512_mul_ps(_mm512_castsi512_ps(samples[i]), _mm512_set1_ps(0x1p31F));
            if constexpr (bytes <= 2) {
                // The smaller magnitude with the sample's sign, also of a NaN. The largest that is
                // left differs from full scale in its lowest byte alone.
                constexpr int kSmallerMagnitude = 2;
                scaled = _mm512_range_ps(scaled, _mm512_set1_ps(0x1.fffffep30F), kSmallerMagnitude);
            }
            words[i] = _mm512_cvttps_epi32(scaled);
        }
        if constexpr (bytes > 2) clip(samples, words);
        for (std::size_t i = 0; i < count; ++i)
            samples[i] = words[i];
    }

private:
    // What lies at or beyond 1.0 became the least integer, which nothing else does. Few blocks have
    // such samples.
    template <std::size_t count>
    [[gnu::always_inline]] static void clip(const Register (&samples)[count],
                                            Register (&words)[count]) {
        const Register outside = _mm512_set1_epi32(INT32_MIN);
        Register least = words[0];
        for (std::size_t i = 1; i < count; ++i)
            least = _mm512_min_epi32(least, words[i]);
        if (_mm512_cmpeq_epi32_mask(least, outside) == 0) return;
        for (std::size_t i = 0; i < count; ++i) {
            const Register sign = _mm512_srai_epi32(samples[i], 31);
            const Register fullScale = _mm512_xor_si512(sign, _mm512_set1_epi32(0x7FFF'FF00));
            words[i] = _mm512_mask_sub_epi32(words[i], _mm512_cmpeq_epi32_mask(words[i], outside),
                                             fullScale, sign);
        }
    }
};

}  // namespace

constexpr SampleKernels kSamplesAvx512 = makeSampleKernels<Avx512>();

}  // namespace veltra::kernels
