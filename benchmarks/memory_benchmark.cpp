// SPDX-License-Identifier: MIT
// What the allocation zone and the services on it add to malloc and free. The reference is the C
// library's own pair: in a program that does not link the library, or called past the zone.
#include "benchmarks/ratios.h"
#include "veltra/memory/memory_reserve.h"
#include "veltra/platform/allocation_zone.h"
#include "veltra/platform/standard_error.h"

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include <benchmark/benchmark.h>
#include <dlfcn.h>

namespace {

struct Pair {
    void* (*allocate)(std::size_t);
    void (*release)(void*);
};

Pair zonePair() {
    return {::malloc, ::free};
}

Pair libraryPair() {
    void* library = ::dlopen("libc.so.6", RTLD_NOW);
    return {reinterpret_cast<void* (*)(std::size_t)>(::dlsym(library, "malloc")),
            reinterpret_cast<void (*)(void*)>(::dlsym(library, "free"))};
}

void pairOf64(benchmark::State& state, Pair pair) {
    for (auto _ : state) {
        void* block = pair.allocate(64);
        benchmark::DoNotOptimize(block);
        pair.release(block);
    }
}

// Blocks of 16 to 4096 bytes, 64 of them alive at a time; one iteration replaces one.
void mix(benchmark::State& state, Pair pair) {
    std::array<std::uint16_t, 1024> sizes;
    std::uint32_t random = 1;
    for (std::uint16_t& size : sizes) {
        random = random * 1664525U + 1013904223U;
        size = static_cast<std::uint16_t>(16 + (random >> 16) % 4081);
    }
    std::array<void*, 64> blocks{};
    std::size_t turn = 0;
    for (auto _ : state) {
        void*& block = blocks[turn % blocks.size()];
        pair.release(block);
        block = pair.allocate(sizes[turn % sizes.size()]);
        benchmark::DoNotOptimize(block);
        ++turn;
    }
    for (void* block : blocks)
        pair.release(block);
}

using Measure = void (*)(benchmark::State&, Pair);

template <Measure measure>
void library(benchmark::State& state) {
    measure(state, libraryPair());
}

template <Measure measure>
void linked(benchmark::State& state) {
    measure(state, zonePair());
}

template <Measure measure>
void reserve(benchmark::State& state) {
    std::free(veltra::QKMemoryReserveEnter(nullptr, nullptr));
    measure(state, zonePair());
    veltra::QKMemoryReserveExit();
}

// Pairs in a program of its own.
void program(benchmark::State& state, const char* path) {
    for (auto _ : state) {
        double nanoseconds = 0.0;
        std::FILE* const output = ::popen(path, "r");
        const bool isRead = output != nullptr && std::fscanf(output, "%lf", &nanoseconds) == 1;
        if (output != nullptr) ::pclose(output);
        if (!isRead) return state.SkipWithError("the program does not answer");
        state.SetIterationTime(nanoseconds * 1e-9);
    }
}

BENCHMARK_CAPTURE(program, plain, PLAIN_PAIR)->Name("plain64")->UseManualTime()->Iterations(1);
BENCHMARK_CAPTURE(program, linked, LINKED_PAIR)->Name("linked64")->UseManualTime()->Iterations(1);
BENCHMARK(library<pairOf64>)->Name("library64");
BENCHMARK(reserve<pairOf64>)->Name("reserve64");
BENCHMARK(library<mix>)->Name("libraryMix");
BENCHMARK(linked<mix>)->Name("linkedMix");
BENCHMARK(reserve<mix>)->Name("reserveMix");

constexpr Ratio kRatios[] = {
    {"64 B, linked / not linked, 1.5 ns more", "linked64", "plain64", 1.0, 1.5},
    {"16-4096 B, linked / C library", "linkedMix", "libraryMix", 1.05},
    {"64 B, reserve entered / C library", "reserve64", "library64", 1.8},
    {"16-4096 B, reserve entered / C library", "reserveMix", "libraryMix", 1.1},
};

// Entering and taking the reserve says so; here that is noise.
class Silence final : public veltra::StandardError {
public:
    Status inspect() const noexcept override { return {}; }
    bool isManaged(const Status&) const noexcept override { return false; }
    void write(const Status&, const Pieces&) noexcept override {}
};

}  // namespace

int main(int argc, char** argv) {
    if (veltra::AllocationZone::coverage() != veltra::AllocationZone::kFull) {
        std::puts("allocations do not pass through the zone: nothing to measure");
        return 2;
    }
    Silence silence;
    veltra::StandardError::install(&silence);
    const int status = runRatios(argc, argv, kRatios);
    veltra::StandardError::install(nullptr);
    return status;
}
