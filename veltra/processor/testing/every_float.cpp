// SPDX-License-Identifier: MIT
// Converts every one of the 2^32 patterns of a float to each integer format, and every 32-bit
// sample to floats, with each variant that runs here, and compares the bytes with the plain ones.
//
//     cmake --build build/clang --target every_float && build/clang/veltra/processor/every_float
#include "veltra/processor/detail/sample_kernels.h"

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <vector>

namespace {

using veltra::detail::sampleKernels;

constexpr std::size_t kBatch = 4096;

struct Form {
    std::size_t format;
    bool swapped;
    bool toFloat;
};

// In runs of so many samples: short ones take other ways.
void convert(std::size_t variant, const Form& form, std::size_t run,
             const std::vector<std::uint32_t>& from, std::vector<unsigned char>& to) {
    const veltra::kernels::SampleConverters& converters =
        sampleKernels.at(variant)->integers[form.format - 1][form.swapped ? 1 : 0];
    for (std::size_t at = 0; at < kBatch; at += run) {
        const void* const source = &from[at];
        void* const destination = &to[at * (form.toFloat ? sizeof(float) : form.format)];
        if (form.toFloat)
            converters.toFloat(static_cast<float*>(destination), source, run, nullptr);
        else
            converters.fromFloat(destination, static_cast<const float*>(source), run, nullptr);
    }
}

// How many batches differ in any variant.
std::uint32_t differences(const Form& form) {
    const std::size_t plain = sampleKernels.variantCount() - 1;
    std::vector<std::uint32_t> patterns(kBatch);
    std::vector<unsigned char> expected(4 * kBatch), actual(4 * kBatch);
    std::uint32_t count = 0;
    std::uint32_t pattern = 0;
    do {
        for (std::uint32_t& next : patterns)
            next = pattern++;
        convert(plain, form, kBatch, patterns, expected);
        for (std::size_t variant = 0; variant < plain; ++variant) {
            if (!sampleKernels.runs(variant)) continue;
            for (const std::size_t run : {kBatch, std::size_t{128}}) {
                convert(variant, form, run, patterns, actual);
                if (expected != actual && count++ == 0)
                    std::printf("%s differs before %08x\n", sampleKernels.variantName(variant),
                                pattern);
            }
        }
    } while (pattern != 0);
    return count;
}

}  // namespace

int main() {
    std::uint32_t total = 0;
    for (const Form& form : {Form{1, false, false},
                             {1, true, false},
                             {2, false, false},
                             {2, true, false},
                             {3, false, false},
                             {3, true, false},
                             {4, false, false},
                             {4, true, false},
                             {4, false, true},
                             {4, true, true}}) {
        const auto start = std::chrono::steady_clock::now();
        const std::uint32_t count = differences(form);
        const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
        std::printf("%zu bits %s %s floats: %u batches differ, %.1f s\n", 8 * form.format,
                    form.swapped ? "swapped" : "native", form.toFloat ? "to" : "from", count,
                    time.count());
        std::fflush(stdout);
        total += count;
    }
    return total == 0 ? 0 : 1;
}
