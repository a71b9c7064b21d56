// SPDX-License-Identifier: MIT
// Checksums beside the fastest libraries that compute the same, or, for the 16-bit one, a CRC of
// another polynomial that takes the same work.
//
// Calls do not wait for one another's results, as in a program that checks many blocks. The text of
// the 16-bit CRC ends with a zero that ours must find first; its references are given the length.
#include "benchmarks/processor_benchmark.h"
#include "veltra/processor/checksum.h"
#include "veltra/processor/kernels.h"

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include <benchmark/benchmark.h>
#include <boost/crc.hpp>
#include <isa-l/crc.h>
#include <libdeflate.h>

namespace {

using Crc32 = std::uint32_t (*)(unsigned char* bytes, std::size_t length);
using Crc16 = std::uint32_t (*)(const char* text, std::size_t length);

// Without a zero, for the text.
std::vector<unsigned char> message(std::size_t length) {
    std::vector<unsigned char> bytes(length + 1);
    std::uint32_t state = 1;
    for (std::size_t i = 0; i < length; ++i) {
        state = state * 1664525U + 1013904223U;
        bytes[i] = static_cast<unsigned char>(state >> 24 | 1U);
    }
    return bytes;
}

std::uint32_t ours32(unsigned char* bytes, std::size_t length) {
    return veltra::QKCRC32(0, bytes, length);
}

std::uint32_t isal32(unsigned char* bytes, std::size_t length) {
    return crc32_gzip_refl(0, bytes, length);
}

std::uint32_t deflate32(unsigned char* bytes, std::size_t length) {
    return libdeflate_crc32(0, bytes, length);
}

std::uint32_t ours16(const char* text, std::size_t /*length*/) {
    return veltra::QKCRC16(text);
}

std::uint32_t isal16(const char* text, std::size_t length) {
    return crc16_t10dif(0x1D0F, reinterpret_cast<const unsigned char*>(text), length);
}

std::uint32_t boost16(const char* text, std::size_t length) {
    boost::crc_optimal<16, 0x1021, 0x1D0F, 0, false, false> crc;
    crc.process_bytes(text, length);
    return crc.checksum();
}

template <Crc32 crc>
void run32(benchmark::State& state) {
    const auto length = static_cast<std::size_t>(state.range(0));
    std::vector<unsigned char> bytes = message(length);
    for (auto _ : state)
        benchmark::DoNotOptimize(crc(bytes.data(), length));
}

template <Crc16 crc>
void run16(benchmark::State& state) {
    const auto length = static_cast<std::size_t>(state.range(0));
    const std::vector<unsigned char> bytes = message(length);
    for (auto _ : state)
        benchmark::DoNotOptimize(crc(reinterpret_cast<const char*>(bytes.data()), length));
}

// Ours with one variant in force, whether or not it is the best here.
void variant(benchmark::State& state, std::string_view family, std::string_view name) {
    veltra::KernelFamily* const kernels = veltra::KernelFamily::find(family);
    if (!kernels->use(name)) return state.SkipWithError(kNotHere);
    if (family == "crc32") {
        run32<ours32>(state);
    } else {
        run16<ours16>(state);
    }
    kernels->useBest();
}

void sizes32(benchmark::internal::Benchmark* benchmark) {
    for (const std::int64_t size : {16, 64, 256, 4 << 10, 1 << 20, 64 << 20})
        benchmark->Arg(size);
}
BENCHMARK(run32<ours32>)->Name("crc32/ours")->Apply(sizes32);
BENCHMARK(run32<isal32>)->Name("crc32/isal")->Apply(sizes32);
BENCHMARK(run32<deflate32>)->Name("crc32/libdeflate")->Apply(sizes32);
BENCHMARK(run16<ours16>)->Name("crc16/ours")->Arg(16)->Arg(256)->Arg(4096);
BENCHMARK(run16<isal16>)->Name("crc16/isal t10dif")->Arg(16)->Arg(256)->Arg(4096);
BENCHMARK(run16<boost16>)->Name("crc16/boost")->Arg(4096);

void sizesOfVariants(benchmark::internal::Benchmark* benchmark) {
    benchmark->Arg(16)->Arg(256)->Arg(4096);
}
BENCHMARK_CAPTURE(variant, crc32, "crc32", "vpclmulqdq-avx512")
    ->Name("crc32/vpclmulqdq-avx512")
    ->Apply(sizesOfVariants);
BENCHMARK_CAPTURE(variant, crc32, "crc32", "vpclmulqdq-avx2")
    ->Name("crc32/vpclmulqdq-avx2")
    ->Apply(sizesOfVariants);
BENCHMARK_CAPTURE(variant, crc32, "crc32", "pclmulqdq")
    ->Name("crc32/pclmulqdq")
    ->Apply(sizesOfVariants);
BENCHMARK_CAPTURE(variant, crc32, "crc32", "plain")->Name("crc32/plain")->Apply(sizesOfVariants);
BENCHMARK_CAPTURE(variant, crc16, "crc16", "vpclmulqdq-avx512")
    ->Name("crc16/vpclmulqdq-avx512")
    ->Apply(sizesOfVariants);
BENCHMARK_CAPTURE(variant, crc16, "crc16", "vpclmulqdq-avx2")
    ->Name("crc16/vpclmulqdq-avx2")
    ->Apply(sizesOfVariants);
BENCHMARK_CAPTURE(variant, crc16, "crc16", "pclmulqdq")
    ->Name("crc16/pclmulqdq")
    ->Apply(sizesOfVariants);
BENCHMARK_CAPTURE(variant, crc16, "crc16", "plain")->Name("crc16/plain")->Apply(sizesOfVariants);

// Times are only compared of results that agree.
bool resultsAgree() {
    std::vector<unsigned char> bytes = message(4096);
    const char* const text = reinterpret_cast<const char*>(bytes.data());
    const std::uint32_t crc = ours32(bytes.data(), 4096);
    return crc == isal32(bytes.data(), 4096) && crc == deflate32(bytes.data(), 4096) &&
           ours16(text, 4096) == boost16(text, 4096);
}

constexpr Ratio kRatios[] = {
    {"CRC-32 16 B : isal", "crc32/ours/16", "crc32/isal/16", 1.05},
    {"CRC-32 16 B : libdeflate", "crc32/ours/16", "crc32/libdeflate/16", 1.05},
    {"CRC-32 64 B : isal", "crc32/ours/64", "crc32/isal/64", 1.05},
    {"CRC-32 64 B : libdeflate", "crc32/ours/64", "crc32/libdeflate/64", 1.05},
    {"CRC-32 256 B : isal", "crc32/ours/256", "crc32/isal/256", 1.05},
    {"CRC-32 256 B : libdeflate", "crc32/ours/256", "crc32/libdeflate/256", 1.05},
    {"CRC-32 4 KiB : isal", "crc32/ours/4096", "crc32/isal/4096", 1.05},
    {"CRC-32 4 KiB : libdeflate", "crc32/ours/4096", "crc32/libdeflate/4096", 1.05},
    {"CRC-32 1 MiB : isal", "crc32/ours/1048576", "crc32/isal/1048576", 1.05},
    {"CRC-32 1 MiB : libdeflate", "crc32/ours/1048576", "crc32/libdeflate/1048576", 1.05},
    {"CRC-32 64 MiB : isal", "crc32/ours/67108864", "crc32/isal/67108864", 1.05},
    {"CRC-32 64 MiB : libdeflate", "crc32/ours/67108864", "crc32/libdeflate/67108864", 1.05},
    {"CRC-16 4 KiB : boost", "crc16/ours/4096", "crc16/boost/4096", 0.02},
    {"CRC-16 4 KiB : isal t10dif", "crc16/ours/4096", "crc16/isal t10dif/4096", 1.4},
    {"CRC-16 256 B : isal t10dif", "crc16/ours/256", "crc16/isal t10dif/256", 0},
    {"CRC-16 16 B : isal t10dif", "crc16/ours/16", "crc16/isal t10dif/16", 0},
};

}  // namespace

bool addChecksums(RatioList& list) {
    list.append(kRatios);
    return resultsAgree();
}
