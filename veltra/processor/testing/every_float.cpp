// SPDX-License-Identifier: MIT
// Converts every one of the 2^32 patterns of a float to each integer format, and every 32-bit
// sample to floats, with each variant that runs here, and compares the bytes with the plain ones.
//
//     cmake --build build/clang --target every_float && build/clang/veltra/processor/every_float
#include "veltra/processor/detail/sample_kernels.h"

#include <cstdint>
#include <cstdio>
#include <vector>

namespace {

using veltra::detail::sampleKernels;

constexpr std::size_t kBatch = 4096;

// In runs of so many samples: short ones take other ways.
std::vector<unsigned char> converted(std::size_t variant, std::size_t format, bool swapped,
                                     bool toFloat, std::size_t run,
                                     const std::vector<std::uint32_t>& from) {
    const auto& converters = sampleKernels.at(variant)->integers[format - 1][swapped ? 1 : 0];
    std::vector<unsigned char> to(4 * kBatch);
    for (std::size_t at = 0; at < kBatch; at += run) {
        const void* const source = &from[at];
        void* const destination = &to[at * (toFloat ? sizeof(float) : format)];
        if (toFloat)
            converters.toFloat(static_cast<float*>(destination), source, run, nullptr);
        else
            converters.fromFloat(destination, static_cast<const float*>(source), run, nullptr);
    }
    return to;
}

// How many batches differ in any variant.
std::uint32_t differences(std::size_t format, bool swapped, bool toFloat) {
    const std::size_t plain = sampleKernels.variantCount() - 1;
    std::vector<std::uint32_t> patterns(kBatch);
    std::uint32_t count = 0, pattern = 0;
    do {
        for (std::uint32_t& next : patterns)
            next = pattern++;
        const auto expected = converted(plain, format, swapped, toFloat, kBatch, patterns);
        for (std::size_t variant = 0; variant < plain; ++variant)
            for (const std::size_t run : {kBatch, std::size_t{128}})
                if (sampleKernels.runs(variant) &&
                    converted(variant, format, swapped, toFloat, run, patterns) != expected &&
                    count++ == 0)
                    std::printf("%s differs before %08x\n", sampleKernels.variantName(variant),
                                pattern);
    } while (pattern != 0);
    std::printf("%zu bits %s %s floats: %u batches differ\n", 8 * format,
                swapped ? "swapped" : "native", toFloat ? "to" : "from", count);
    return count;
}

}  // namespace

int main() {
    std::uint32_t total = 0;
    for (const bool swapped : {false, true}) {
        for (const std::size_t format : {1U, 2U, 3U, 4U})
            total += differences(format, swapped, false);
        total += differences(4, swapped, true);
    }
    return total == 0 ? 0 : 1;
}
