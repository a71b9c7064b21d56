// What the leak guard adds to a pair of malloc and free. It stays in a process for good, so it has
// a program of its own. The references call the C library's functions past the library's; a scope
// is opened at the bottom of a stack of as many frames as the name says, and the pair made at its
// top.
#include "benchmarks/ratios.h"
#include "veltra/memory/leak_guard.h"
#include "veltra/platform/allocation_zone.h"
#include "veltra/platform/preferences.h"

#include <cstdio>
#include <cstdlib>
#include <thread>

#include <benchmark/benchmark.h>
#include <dlfcn.h>
#include <execinfo.h>
#include <unwind.h>

namespace {

struct GuardOn final : veltra::Preferences {
    veltra::PropertyValue value(std::string_view key) const noexcept override {
        return key == "LeakGuardEnabled" ? veltra::PropertyValue(true) : veltra::PropertyValue();
    }
    bool setValue(std::string_view /*key*/,
                  const veltra::PropertyValue& /*value*/) noexcept override {
        return false;
    }
    std::error_code synchronise() noexcept override { return {}; }
    std::error_code reload() noexcept override { return {}; }
};

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

void unwinderWalk() {
    int frames = 0;
    _Unwind_Backtrace(
        [](_Unwind_Context* context, void* argument) {
            benchmark::DoNotOptimize(_Unwind_GetIP(context));
            ++*static_cast<int*>(argument);
            return _URC_NO_REASON;
        },
        &frames);
    benchmark::DoNotOptimize(frames);
}

void libraryWalk() {
    void* addresses[16];
    benchmark::DoNotOptimize(::backtrace(addresses, 16));
}

template <void (*body)()>
[[gnu::noinline]] void runAbove(int frames, benchmark::State& state) {
    if (frames > 1) {
        runAbove<body>(frames - 1, state);
        benchmark::ClobberMemory();  // keeps the call a call
        return;
    }
    for (auto _ : state)
        body();
}

template <void (*body)()>
void atDepth(benchmark::State& state) {
    runAbove<body>(static_cast<int>(state.range(0)), state);
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

BENCHMARK(atDepth<plainPair>)->Name("plain")->Arg(1);
BENCHMARK(atDepth<guardedPair>)->Name("guard, no scope")->Arg(1);
BENCHMARK(scopeElsewhere)->Name("guard, scope on another thread")->Arg(1);
BENCHMARK(inScope)->Name("guard, in scope")->Arg(10)->Arg(40);
BENCHMARK(atDepth<unwinderWalk>)->Name("walk by libgcc")->Arg(10)->Arg(40);
BENCHMARK(atDepth<libraryWalk>)->Name("walk by backtrace, 16 frames")->Arg(40);

constexpr Ratio kRatios[] = {
    {"no scope : plain", "guard, no scope/1", "plain/1", 3},
    {"scope elsewhere : plain", "guard, scope on another thread/1", "plain/1", 3},
    {"10 frames : libgcc's walk", "guard, in scope/10", "walk by libgcc/10", 0},
    {"40 frames : libgcc's walk", "guard, in scope/40", "walk by libgcc/40", 0},
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
