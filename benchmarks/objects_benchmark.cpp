// SPDX-License-Identifier: MIT
// Counted objects beside what the language has for the same jobs: a function-local static behind a
// call, a table behind a mutex, std::shared_ptr in a program with threads.
#include "benchmarks/objects_peer.h"
#include "benchmarks/ratios.h"
#include "veltra/infrastructure/flyweight.h"
#include "veltra/infrastructure/singleton.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <thread>
#include <unordered_map>

#include <benchmark/benchmark.h>

namespace {

using veltra::Class;
using veltra::ClassEntry;
using veltra::Object;
using veltra::PlainClass;
using veltra::QKFlyweight;
using veltra::QKSingleton;
using veltra::SlotClass;

class Note : public QKFlyweight {
public:
    static PlainClass s_class;
    Class& classObject() const noexcept override { return s_class; }
};
constinit PlainClass Note::s_class("BenchmarkNote", &QKFlyweight::s_class,
                                   veltra::makeObject<Note>);

constexpr std::uint32_t kNotes = 128;

void sharedInstance(benchmark::State& state) {
    for (auto _ : state)
        benchmark::DoNotOptimize(sharedMixer());
}

void localStatic(benchmark::State& state) {
    for (auto _ : state)
        benchmark::DoNotOptimize(staticMixer());
}

void flyweightHit(benchmark::State& state) {
    for (std::uint32_t note = 0; note < kNotes; ++note)
        veltra::flyweight<Note>(note)->release();
    std::uint32_t note = 0;
    for (auto _ : state) {
        Note* const found = veltra::flyweight<Note>(note++ % kNotes);
        benchmark::DoNotOptimize(found);
        found->release();
    }
}

void tableHit(benchmark::State& state) {
    static std::mutex lock;
    static std::unordered_map<std::uint32_t, std::shared_ptr<std::uint64_t>> table;
    for (std::uint32_t note = 0; note < kNotes; ++note)
        table[note] = std::make_shared<std::uint64_t>(note);
    std::uint32_t note = 0;
    for (auto _ : state) {
        std::shared_ptr<std::uint64_t> found;
        {
            const std::scoped_lock guard(lock);
            found = table.find(note++ % kNotes)->second;
        }
        benchmark::DoNotOptimize(found);
    }
}

void retainAndRelease(benchmark::State& state) {
    Object* const object = veltra::flyweight<Note>(1);
    for (auto _ : state) {
        object->retain();
        benchmark::ClobberMemory();
        object->release();
    }
    object->release();
}

void copyAndReset(benchmark::State& state) {
    const auto object = std::make_shared<std::uint64_t>(1);
    for (auto _ : state) {
        std::shared_ptr<std::uint64_t> copy = object;
        benchmark::DoNotOptimize(copy);
        copy.reset();
    }
}

constexpr Ratio kRatios[] = {
    {"sharedInstance : local static", "sharedInstance", "localStatic", 1.2},
    {"flyweight hit : table of shared_ptr", "flyweightHit", "tableHit", 2.5},
    {"retain + release : shared_ptr", "retainAndRelease", "copyAndReset", 1.2},
};

}  // namespace

BENCHMARK(sharedInstance);
BENCHMARK(localStatic);
BENCHMARK(flyweightHit);
BENCHMARK(tableHit);
BENCHMARK(retainAndRelease);
BENCHMARK(copyAndReset);

int main(int argc, char** argv) {
    // With a second thread alive the C library and shared_ptr count atomically, as in every host.
    std::atomic<bool> isOver{false};
    std::thread second([&isOver] { isOver.wait(false); });
    const int status = runRatios(argc, argv, kRatios);
    isOver = true;
    isOver.notify_all();
    second.join();
    return status;
}
