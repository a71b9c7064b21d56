// SPDX-License-Identifier: MIT
// The variants for x86-64 without AVX2 beside libraries that are held to the same instructions.
// What the libraries make of the samples is looked at in converter_benchmark.cpp.
#include "benchmarks/converter_shapes.h"
#include "benchmarks/processor_benchmark.h"
#include "veltra/processor/byte_order.h"
#include "veltra/processor/kernels.h"
#include "veltra/processor/sample_conversion.h"

#include <cstdint>
#include <string>

#include <benchmark/benchmark.h>
#include <volk/volk.h>

extern "C" {
#include <libavutil/cpu.h>
}

namespace {

constexpr std::size_t kFrames = 4096;
constexpr auto kCount = static_cast<unsigned>(kFrames);

struct Buffers {
    alignas(64) unsigned char stream[8 * kFrames];
    alignas(64) float left[kFrames + 272];  // so that the channels lie no whole pages apart
    alignas(64) float right[kFrames];
};

Buffers& buffers() {
    static Buffers made = [] {
        Buffers fresh{};
        std::uint32_t random = 1;
        const auto next = [&] { return random = random * 1664525U + 1013904223U; };
        for (unsigned char& byte : fresh.stream)
            byte = static_cast<unsigned char>(next() >> 24);
        for (std::size_t i = 0; i < kFrames; ++i) {
            fresh.left[i] = static_cast<float>(static_cast<std::int32_t>(next())) * 0x0.FBp-31F;
            fresh.right[i] = static_cast<float>(static_cast<std::int32_t>(next())) * 0x0.FBp-31F;
        }
        return fresh;
    }();
    return made;
}

template <class Type>
Type* stream(Buffers& b) {
    return reinterpret_cast<Type*>(b.stream);
}

using Run = std::function<void(Buffers& buffers)>;

struct Row {
    const char* name;
    Shape shape;
    Run volk;
    double swresample = 1.05;  // the limit beside it
};

// Signed, of the host's byte order, at aligned addresses: the fastest that volk has here.
const Row kRows[] = {
    {"s8>f32",
     {1, true, true, false},
     [](Buffers& b) {
         volk_8i_s32f_convert_32f_manual(b.left, stream<std::int8_t>(b), 0x1p7F, kCount,
                                         "a_sse4_1");
     }},
    {"s16>f32",
     {2, false, true, false},
     [](Buffers& b) {
         volk_16i_s32f_convert_32f_manual(b.left, stream<std::int16_t>(b), 0x1p15F, kCount,
                                          "a_sse4_1");
     }},
    {"s32>f32",
     {4, false, true, false},
     [](Buffers& b) {
         volk_32i_s32f_convert_32f_manual(b.left, stream<std::int32_t>(b), 0x1p31F, kCount,
                                          "a_sse2");
     }},
    {"s8 two>f32",
     {1, true, true, true},
     [](Buffers& b) {
         volk_8ic_s32f_deinterleave_32f_x2_manual(b.left, b.right, stream<lv_8sc_t>(b), 0x1p7F,
                                                  kCount, "a_sse4_1");
     }},
    {"s16 two>f32",
     {2, false, true, true},
     [](Buffers& b) {
         volk_16ic_s32f_deinterleave_32f_x2_manual(b.left, b.right, stream<lv_16sc_t>(b), 0x1p15F,
                                                   kCount, "a_sse");
     }},
    {"f32>s8",
     {1, true, false, false},
     [](Buffers& b) {
         volk_32f_s32f_convert_8i_manual(stream<std::int8_t>(b), b.left, 0x1p7F, kCount, "a_sse2");
     }},
    {"f32>s16",
     {2, false, false, false},
     [](Buffers& b) {
         volk_32f_s32f_convert_16i_manual(stream<std::int16_t>(b), b.left, 0x1p15F, kCount,
                                          "a_sse2");
     },
     1.3},  // rounding as it does takes fewer steps than truncating exactly
    {"f32>s32",
     {4, false, false, false},
     [](Buffers& b) {
         volk_32f_s32f_convert_32i_manual(stream<std::int32_t>(b), b.left, 0x1p31F, kCount,
                                          "a_sse2");
     }},
    {"f32>s16 two",
     {2, false, false, true},
     [](Buffers& b) {
         volk_32f_x2_s32f_interleave_16ic_manual(stream<lv_16sc_t>(b), b.left, b.right, 0x1p15F,
                                                 kCount, "a_sse2");
     },
     1.1},
};

struct SwapRow {
    const char* name;
    Run ours;
    Run volk;
};

constexpr unsigned kBytes = 4 * kCount;

const SwapRow kSwapRows[] = {
    {"swap16", [](Buffers& b) { veltra::PSwapWord(b.stream, kBytes / 2); },
     [](Buffers& b) { volk_16u_byteswap_manual(stream<std::uint16_t>(b), kBytes / 2, "a_sse2"); }},
    {"swap32", [](Buffers& b) { veltra::PSwapLong(b.stream, kBytes / 4); },
     [](Buffers& b) { volk_32u_byteswap_manual(stream<std::uint32_t>(b), kBytes / 4, "a_sse2"); }},
    {"swap64", [](Buffers& b) { veltra::PSwapLongLong(b.stream, kBytes / 8); },
     [](Buffers& b) { volk_64u_byteswap_manual(stream<std::uint64_t>(b), kBytes / 8, "a_ssse3"); }},
};

class Narrow {
public:
    explicit Narrow(RatioList& list) : m_list(list) {}

    // `run` with that variant of its family in force.
    const char* ours(const std::string& name, const char* family, const char* variant,
                     const Run& run) {
        veltra::KernelFamily& kernels = *veltra::KernelFamily::find(family);
        return m_list.add("narrow " + name + ' ' + variant, [=, &kernels](benchmark::State& state) {
            if (!kernels.use(variant)) return state.SkipWithError(kNotHere);
            measure(state, run);
            kernels.useBest();
        });
    }

    void peer(const char* ours, const std::string& name, const char* who, const Run& run,
              double limit = 1.05) {
        const char* const theirs = m_list.add(
            "narrow " + name + ' ' + who, [run](benchmark::State& state) { measure(state, run); });
        m_list.compare(ours, theirs, limit);
    }

private:
    static void measure(benchmark::State& state, const Run& run) {
        for (auto _ : state) {
            run(buffers());
            benchmark::ClobberMemory();
        }
    }

    RatioList& m_list;
};

// Looked up while the variant is in force.
Run converter(const Shape& shape) {
    const auto format = static_cast<std::int32_t>(shape.bytes);
    return [format, shape](Buffers& b) {
        float* const right = shape.isStereo ? b.right : nullptr;
        if (shape.toFloat)
            veltra::GetConvertNToFloat(format, !shape.isBig)(b.left, b.stream, kFrames, right);
        else
            veltra::GetConvertFloatToN(format, !shape.isBig)(b.stream, b.left, kFrames, right);
    };
}

}  // namespace

void addNarrow(RatioList& list) {
    Narrow narrow(list);
    // A context keeps the functions that it chose when it was made.
    ::av_force_cpu_flags(AV_CPU_FLAG_MMX | AV_CPU_FLAG_MMXEXT | AV_CPU_FLAG_SSE | AV_CPU_FLAG_SSE2 |
                         AV_CPU_FLAG_SSE3 | AV_CPU_FLAG_SSSE3 | AV_CPU_FLAG_SSE4 |
                         AV_CPU_FLAG_SSE42);
    for (const Row& row : kRows) {
        const char* const ours = narrow.ours(row.name, "samples", "sse41", converter(row.shape));
        narrow.peer(ours, row.name, "volk", row.volk);
        for (const auto& [name, convert] : peersOf(row.shape, kFrames)) {
            if (name != "swresample") continue;
            narrow.peer(
                ours, row.name, "swresample",
                [convert = convert, isStereo = row.shape.isStereo](Buffers& b) {
                    convert({b.stream, b.left, isStereo ? b.right : nullptr, kFrames});
                },
                row.swresample);
        }
    }
    ::av_force_cpu_flags(-1);
    for (const SwapRow& row : kSwapRows)
        narrow.peer(narrow.ours(row.name, "swaps", "ssse3", row.ours), row.name, "volk", row.volk);
}
