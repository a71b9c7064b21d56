// SPDX-License-Identifier: MIT
// Every vector variant beside the plain one, in buffers of every small length and alignment that
// end or begin at a page nobody may touch.
#include "veltra/base/testing/prelude.h"
#include "veltra/processor/detail/sample_kernels.h"
#include "veltra/processor/detail/swap_kernels.h"
#include "veltra/processor/testing/guarded_memory.h"

namespace veltra {
namespace {

constexpr std::size_t kEach = 200;  // every count up to here, and some of long runs
constexpr std::size_t kLonger[] = {255, 256, 257, 1003, 4099};
constexpr std::size_t kLongest = 4099;
constexpr std::size_t kLargest = 8 * kLongest;

using Noise = std::vector<unsigned char>;

// The same as floats between -1.0 and 1.0, but one, far from the start.
Noise quietened(Noise noise) {
    for (std::size_t i = 0; i + 4 <= noise.size(); i += 4) {
        std::uint32_t word = 0;
        std::memcpy(&word, &noise[i], sizeof word);
        word &= (word & 0x3F80'0000U) == 0x3F80'0000U ? ~0x6000'0000U : ~0x4000'0000U;
        if (i == 4 * 3'700) word = 0x3F80'0000U;
        std::memcpy(&noise[i], &word, sizeof word);
    }
    return noise;
}

// Three buffers with the same contents in each arena.
class Arena {
public:
    void fill(const Noise& noise, Place place, std::size_t gap, std::size_t size,
              std::size_t phase) {
        for (std::size_t i = 0; i < 3; ++i) {
            m_buffers[i] = m_memory[i].at(place, size, gap);
            std::memcpy(m_buffers[i], &noise[i * kLargest + phase], size);
        }
    }
    unsigned char* bytes(std::size_t i) { return m_buffers[i]; }
    float* floats(std::size_t i) { return static_cast<float*>(static_cast<void*>(bytes(i))); }

private:
    GuardedMemory m_memory[3];
    unsigned char* m_buffers[3];
};

// `run` is given a kernel table, an arena and a count of groups of at most `size` bytes.
template <class Kernels, class Run>
void expectAgreement(detail::KernelChoice<const Kernels*>& family, std::size_t size, Run run) {
    std::mt19937 random(1);
    Noise noise(3 * kLargest + 64);
    std::generate(noise.begin(), noise.end(), random);
    const Noise noises[] = {noise, quietened(noise)};
    Arena expected, actual;
    const std::size_t plain = family.variantCount() - 1;
    for (std::size_t variant = 0; variant < plain; ++variant) {
        for (std::size_t i = 0; i < (kEach + 1 + std::size(kLonger)) * 65 && family.runs(variant);
             ++i) {
            const std::size_t count = i / 65 <= kEach ? i / 65 : kLonger[i / 65 - kEach - 1];
            const std::size_t gap = i % 65 % 64;
            const Place place = i % 65 == 64 ? Place::Start : Place::End;
            for (Arena* arena : {&expected, &actual})
                arena->fill(noises[i % 2], place, gap, size * count, i / 2 % 16 * 4);
            run(*family.at(plain), expected, count);
            run(*family.at(variant), actual, count);
            for (const std::size_t buffer : {0U, 1U, 2U})
                ASSERT_EQ(std::memcmp(expected.bytes(buffer), actual.bytes(buffer), size * count),
                          0)
                    << family.variantName(variant) << " count " << count << " gap " << gap;
        }
    }
}

TEST(VectorKernels, ConvertersEqualThePlainOnesInEveryShapeAndStayInsideTheirBuffers) {
    for (const std::size_t format : {1U, 2U, 3U, 4U, 5U}) {
        for (std::size_t shape = 0; shape < 16; ++shape) {
            const bool swapped = shape % 2 != 0, stereo = shape / 2 % 2 != 0;
            const bool inPlace = shape / 4 % 2 != 0, toFloat = shape < 8;
            SCOPED_TRACE(::testing::Message() << "format " << format << " shape " << shape);
            const std::size_t size =
                std::max<std::size_t>(4, std::min<std::size_t>(format, 4) * (stereo ? 2 : 1));
            expectAgreement(detail::sampleKernels, size,
                            [=](const auto& kernels, Arena& arena, std::size_t count) {
                                const auto& converters = format < 5
                                                             ? kernels.integers[format - 1][swapped]
                                                             : kernels.float32;
                                unsigned char* const stream = arena.bytes(inPlace ? 0 : 2);
                                float* const other = stereo ? arena.floats(1) : nullptr;
                                toFloat
                                    ? converters.toFloat(arena.floats(0), stream, count, other)
                                    : converters.fromFloat(stream, arena.floats(0), count, other);
                            });
        }
    }
}

TEST(VectorKernels, SwapsEqualThePlainOnesInPlaceAndBetweenBuffers) {
    using kernels::SwapKernels;
    const struct {
        kernels::SwapKernel SwapKernels::*swap;
        std::size_t size;
    } rows[] = {{&SwapKernels::words16, 2},
                {&SwapKernels::words32, 4},
                {&SwapKernels::words64, 8},
                {&SwapKernels::samples24, 3},
                {&SwapKernels::signs8, 1}};
    for (const auto& row : rows) {
        expectAgreement(detail::swapKernels, row.size,
                        [&](const auto& kernels, Arena& arena, std::size_t count) {
                            (kernels.*row.swap)(arena.bytes(0), arena.bytes(0), count);
                            (kernels.*row.swap)(arena.bytes(1), arena.bytes(2), count);
                        });
    }
}

}  // namespace
}  // namespace veltra
