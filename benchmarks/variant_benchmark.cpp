// SPDX-License-Identifier: MIT
// Every variant of every kernel that this machine runs beside the plain one.
#include "benchmarks/ratios.h"
#include "veltra/processor/byte_order.h"
#include "veltra/processor/checksum.h"
#include "veltra/processor/kernels.h"
#include "veltra/processor/sample_conversion.h"
#include "veltra/processor/utf8_text.h"

#include <cstdio>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include <benchmark/benchmark.h>

namespace {

constexpr std::size_t kSamples = 4096;

struct Buffers {
    alignas(64) unsigned char stream[8 * kSamples];
    alignas(64) float left[kSamples];
    alignas(64) float right[kSamples];
    char ascii[kSamples + 1];
    char mixed[kSamples + 1];
};

Buffers& buffers() {
    static Buffers made = [] {
        Buffers fresh{};
        std::uint32_t random = 1;
        const auto next = [&] { return random = random * 1664525U + 1013904223U; };
        for (unsigned char& byte : fresh.stream)
            byte = static_cast<unsigned char>(next() >> 24);
        for (std::size_t i = 0; i < kSamples; ++i) {
            fresh.left[i] = static_cast<float>(static_cast<std::int32_t>(next())) * 0x1p-31F;
            fresh.right[i] = static_cast<float>(static_cast<std::int32_t>(next())) * 0x1p-31F;
            fresh.ascii[i] = fresh.mixed[i] = static_cast<char>('a' + (next() >> 24) % 26);
        }
        for (std::size_t i = 0; i + 2 < kSamples; i += 2 + (next() >> 28))
            std::memcpy(&fresh.mixed[i], "\xC3\xA9", 2);
        return fresh;
    }();
    return made;
}

class Variants : public RatioList {
public:
    // `run` works on what the variant in force is; `limit` is that of every variant but plain.
    template <class Run>
    void addAll(const char* familyName, const std::string& what, double limit, Run run) {
        const std::vector<const char*> names = addEach(familyName, what, run);
        for (std::size_t i = 1; i < names.size(); ++i)
            compare(names[i], names[0], limit);
    }

    // Each against the one that it goes before.
    template <class Run>
    void addSteps(const char* familyName, const std::string& what, Run run) {
        const std::vector<const char*> names = addEach(familyName, what, run);
        for (std::size_t i = 1; i < names.size(); ++i)
            compare(names[i], names[i - 1], 1);
    }

private:
    // The last of the family, plain, first.
    template <class Run>
    std::vector<const char*> addEach(const char* familyName, const std::string& what, Run run) {
        veltra::KernelFamily& family = *veltra::KernelFamily::find(familyName);
        std::vector<const char*> names;
        for (std::size_t i = family.variantCount(); i-- > 0;) {
            if (!family.runs(i)) continue;
            const char* const variant = family.variantName(i);
            names.push_back(add(what + ' ' + variant, [=, &family](benchmark::State& state) {
                family.use(variant);
                for (auto _ : state) {
                    run(buffers());
                    benchmark::ClobberMemory();
                }
                family.useBest();
            }));
        }
        return names;
    }
};

void addSamples(Variants& list) {
    for (const std::int32_t format : {1, 2, 3, 4}) {
        for (const bool swapped : {false, true}) {
            for (const bool isStereo : {false, true}) {
                const std::string what =
                    std::to_string(8 * format) + (swapped ? "le" : "be") + (isStereo ? " two" : "");
                const auto right = [=](Buffers& b) { return isStereo ? b.right : nullptr; };
                // The compiler makes vectors of the plain loops that need no exchange of bytes.
                const double toFloat = swapped && (isStereo || format > 2) ? 0.95 : 0.65;
                if (format < 4 || !isStereo) {
                    list.addAll("samples", what + ">f32", toFloat, [=](Buffers& b) {
                        veltra::GetConvertNToFloat(format, swapped)(b.left, b.stream, kSamples,
                                                                    right(b));
                    });
                }
                list.addAll("samples", "f32>" + what, 0.5, [=](Buffers& b) {
                    veltra::GetConvertFloatToN(format, swapped)(b.stream, b.left, kSamples,
                                                                right(b));
                });
            }
        }
    }
}

}  // namespace

int main(int argc, char** argv) {
    Variants list;
    addSamples(list);
    for (const std::int32_t bits : {8, 16, 24, 32}) {
        const std::size_t bytes = static_cast<std::size_t>(bits) / 8;
        list.addAll("swaps", "swap" + std::to_string(bits), bits > 16 ? 0.5 : 1, [=](Buffers& b) {
            veltra::ProcessSwapIntel(b.stream, static_cast<std::uint32_t>(kSamples / bytes), 0,
                                     bits);
        });
    }
    // As malloc gives them: every other store of a wide register crosses a line, or all do.
    for (const bool swapped : {false, true}) {
        list.addSteps("samples", swapped ? "24le two>f32 at 16" : "24be two>f32 at 16",
                      [=](Buffers& b) {
                          veltra::GetConvertNToFloat(3, swapped)(b.left + 4, b.stream + 16,
                                                                 kSamples - 4, b.right + 4);
                      });
    }
    list.addAll("utf8", "is ascii", 0.5,
                [](Buffers& b) { benchmark::DoNotOptimize(veltra::utf8_is_ascii(b.ascii, 0)); });
    list.addAll("utf8", "check ascii", 0.5,
                [](Buffers& b) { benchmark::DoNotOptimize(veltra::utf8_check(b.ascii)); });
    list.addAll("utf8", "check mixed", 0.5,
                [](Buffers& b) { benchmark::DoNotOptimize(veltra::utf8_check(b.mixed)); });
    list.addAll("crc16", "crc16", 0.5,
                [](Buffers& b) { benchmark::DoNotOptimize(veltra::QKCRC16(b.ascii)); });
    list.addAll("crc32", "crc32", 0.5, [](Buffers& b) {
        benchmark::DoNotOptimize(veltra::QKCRC32(0, b.stream, kSamples));
    });
    return list.run(argc, argv);
}
