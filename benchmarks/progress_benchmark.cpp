// SPDX-License-Identifier: MIT
// What the progress service adds to a host's callback: called by one thread and by four at once,
// posted, and asked whether to stop. The callback returns at once, so that all of the cost shows.
#include "benchmarks/ratios.h"
#include "veltra/infrastructure/progress_indicator.h"

#include <atomic>
#include <cstdint>

#include <benchmark/benchmark.h>

namespace {

using namespace veltra;

std::int32_t showValue(void* /*handle*/, double value) {
    benchmark::DoNotOptimize(value);
    return 1;
}

// Found at run time, as by any client of a table of callbacks.
std::atomic<std::int32_t (*)(void*, double)> bareCallback{showValue};

VLProgressIndicator* shown() {
    static VLProgressIndicator* const indicator = [] {
        const VLProgressIndicatorService service{
            [](const VLString*, const void*) -> void* { return nullptr; }, [](void*) {}, showValue,
            nullptr};
        VLProvideProgressIndicatorService(&service);
        return VLAcquireProgressIndicator(nullptr, kVLProgressIndicatorEmptyID);
    }();
    return indicator;
}

void setValue(benchmark::State& state) {
    VLProgressIndicator* const indicator = shown();
    double value = 0.0;
    for (auto _ : state)
        benchmark::DoNotOptimize(VLSetProgressIndicatorValue(indicator, value += 1e-6));
}

void callback(benchmark::State& state) {
    double value = 0.0;
    for (auto _ : state)
        benchmark::DoNotOptimize(
            bareCallback.load(std::memory_order_relaxed)(nullptr, value += 1e-6));
}

void postValue(benchmark::State& state) {
    VLProgressIndicator* const indicator = shown();
    double value = 0.0;
    for (auto _ : state)
        VLPostProgressIndicatorValue(indicator, value += 1e-6);
}

void isCancelled(benchmark::State& state) {
    const VLProgressIndicator* const indicator = shown();
    for (auto _ : state)
        benchmark::DoNotOptimize(VLProgressIndicatorIsCancelled(indicator));
}

// A thousand nanoseconds are a million calls a second, the least that four threads must reach.
void thousandNanoseconds(benchmark::State& state) {
    for (auto _ : state)
        state.SetIterationTime(1e-6);
}

constexpr Ratio kRatios[] = {
    {"set value, 1 thread : bare callback", "setValue/1", "callback/1", 3.0},
    {"set value, 4 threads : bare callback", "setValue/4", "callback/4", 3.0},
    {"set value, 4 threads : a million a second", "setValue/4", "thousandNanoseconds", 1.0},
    {"post value, 1 thread : bare callback", "postValue/1", "callback/1", 1.5},
    {"post value, 4 threads : bare callback", "postValue/4", "callback/4", 1.5},
    {"is cancelled : bare callback", "isCancelled", "callback/1", 1.5},
};

// Named by how many threads call at once; a time is that of one call of whichever thread.
void onOneAndOnFour(const char* name, void (*function)(benchmark::State&)) {
    for (const int threads : {1, 4})
        benchmark::RegisterBenchmark(name, function)->Arg(threads)->Threads(threads)->UseRealTime();
}

}  // namespace

BENCHMARK(isCancelled);
BENCHMARK(thousandNanoseconds)->UseManualTime()->Iterations(1000);

int main(int argc, char** argv) {
    onOneAndOnFour("setValue", setValue);
    onOneAndOnFour("callback", callback);
    onOneAndOnFour("postValue", postValue);
    return runRatios(argc, argv, kRatios);
}
