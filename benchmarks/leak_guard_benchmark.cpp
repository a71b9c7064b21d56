// SPDX-License-Identifier: MIT
// What the leak guard adds to a pair of malloc and free. It stays in a process for good, so it has
// a program of its own. The references call the C library's functions past the library's; a scope
// is opened at the bottom of a stack of as many frames as the name says, and the pair made at its
// top.
#include "benchmarks/leak_guard_on.h"
#include "benchmarks/ratios.h"
#include "veltra/memory/leak_guard.h"
#include "veltra/platform/allocation_zone.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>

#include <benchmark/benchmark.h>
#include <dlfcn.h>
#include <execinfo.h>
#include <unwind.h>

namespace {

template <typename Function>
Function* fromCLibrary(const char* name) {
    static void* const library = ::dlopen("libc.so.6", RTLD_NOW);
    void* const found = library != nullptr ? ::dlsym(library, name) : nullptr;
    if (found == nullptr) std::abort();
    return reinterpret_cast<Function*>(found);
}

void* (*const plainMalloc)(std::size_t) = fromCLibrary<void*(std::size_t)>("malloc");
void (*const plainFree)(void*) = fromCLibrary<void(void*)>("free");

void guardedPair() {
    void* block = std::malloc(64);
    benchmark::DoNotOptimize(block);
    std::free(block);
}

void plainPair() {
    void* block = plainMalloc(64);
    benchmark::DoNotOptimize(block);
    plainFree(block);
}

int mostFrames = 0;

// As many frames as the guard looks at: those above the scope, at least as many as it keeps.
void unwinderWalk() {
    int frames = 0;
    _Unwind_Backtrace(
        [](_Unwind_Context* context, void* argument) {
            benchmark::DoNotOptimize(_Unwind_GetIP(context));
            return ++*static_cast<int*>(argument) < mostFrames ? _URC_NO_REASON : _URC_END_OF_STACK;
        },
        &frames);
    benchmark::DoNotOptimize(frames);
}

void libraryWalk() {
    void* addresses[16];
    benchmark::DoNotOptimize(::backtrace(addresses, 16));
}

template <void (*body)()>
void runAbove(int frames, benchmark::State& state) {
    static void (*volatile frame)(int, benchmark::State&) = runAbove<body>;  // stays a frame
    if (frames > 1) {
        frame(frames - 1, state);
        benchmark::ClobberMemory();  // and the call stays a call
        return;
    }
    for (auto _ : state)
        body();
}

template <void (*body)()>
void atDepth(benchmark::State& state) {
    runAbove<body>(static_cast<int>(state.range(0)), state);
}

void unwinderAtDepth(benchmark::State& state) {
    mostFrames = std::max(16, static_cast<int>(state.range(0)) + 1);
    atDepth<unwinderWalk>(state);
}

void inScope(benchmark::State& state) {
    const veltra::QKLeakGuard guard;
    runAbove<guardedPair>(static_cast<int>(state.range(0)), state);
}

void scopeElsewhere(benchmark::State& state) {
    veltra::QKLeakGuard* scope = nullptr;
    std::thread([&] { scope = veltra::QKOpenLeakGuardScope(); }).join();
    runAbove<guardedPair>(1, state);
    veltra::QKCloseLeakGuardScope(scope);
}

// Runs the same pairs in a process of their own, under a tool. `command` ends before the frames.
void peer(benchmark::State& state, const char* command) {
    const std::string line = command + std::to_string(state.range(0));
    for (auto _ : state) {
        double nanoseconds = 0;
        std::FILE* const output = ::popen(line.c_str(), "r");
        if (output == nullptr) return state.SkipWithError("does not start");
        const int read = std::fscanf(output, "%lf", &nanoseconds);
        if (::pclose(output) != 0 || read != 1) return state.SkipWithError("does not run");
        state.SetIterationTime(nanoseconds * 1e-9);
    }
}

BENCHMARK(atDepth<plainPair>)->Name("plain")->Arg(1);
BENCHMARK(atDepth<guardedPair>)->Name("guard, no scope")->Arg(1);
BENCHMARK(scopeElsewhere)->Name("guard, scope on another thread")->Arg(1);
BENCHMARK(inScope)->Name("guard, in scope")->Arg(10)->Arg(40);
BENCHMARK(unwinderAtDepth)->Name("walk by libgcc")->Arg(10)->Arg(40);
BENCHMARK(atDepth<libraryWalk>)->Name("walk by backtrace, 16 frames")->Arg(40);
BENCHMARK_CAPTURE(peer, guard, GUARDED_PEER " ")
    ->Name("guard, process")
    ->Arg(10)
    ->Arg(40)
    ->UseManualTime()
    ->Iterations(1);
BENCHMARK_CAPTURE(peer, heaptrack,
                  "DUMP_HEAPTRACK_OUTPUT=/dev/null LD_PRELOAD=" HEAPTRACK " " PLAIN_PEER " ")
    ->Name("heaptrack")
    ->Arg(10)
    ->Arg(40)
    ->UseManualTime()
    ->Iterations(1);
BENCHMARK_CAPTURE(peer, LeakSanitizer, LEAK_SANITIZER_PEER " ")
    ->Name("LeakSanitizer")
    ->Arg(10)
    ->Arg(40)
    ->UseManualTime()
    ->Iterations(1);

constexpr Ratio kRatios[] = {
    {"no scope : plain", "guard, no scope/1", "plain/1", 3},
    {"scope elsewhere : plain", "guard, scope on another thread/1", "plain/1", 3},
    {"10 frames : libgcc's walk", "guard, in scope/10", "walk by libgcc/10", 0.5},
    {"40 frames : libgcc's walk", "guard, in scope/40", "walk by libgcc/40", 0.5},
    {"10 frames : heaptrack", "guard, process/10", "heaptrack/10", 0},
    {"40 frames : heaptrack", "guard, process/40", "heaptrack/40", 0},
    {"10 frames : LeakSanitizer", "guard, process/10", "LeakSanitizer/10", 3},
    {"40 frames : LeakSanitizer", "guard, process/40", "LeakSanitizer/40", 3},
};

}  // namespace

int main(int argc, char** argv) {
    if (veltra::AllocationZone::coverage() != veltra::AllocationZone::kFull) {
        std::fputs("malloc does not pass through the library\n", stderr);
        return 2;
    }
    GuardOn preferences;
    veltra::Preferences::install(&preferences);
    veltra::QKLeakGuard::ResetHistory(false);
    return runRatios(argc, argv, kRatios);
}
