// SPDX-License-Identifier: MIT
// The callback list: what a request costs, what a pass costs for each entry and for many removals;
// and lists of transients (transient_benchmark.cpp).
//
// A request is held against the least that a lock-free list of heap nodes can do (new, one
// compare-and-swap, the pair of atomic additions that counts the call), a pass against a vector.
#include "benchmarks/ratios.h"
#include "benchmarks/transient_benchmark.h"
#include "benchmarks/vector_walk.h"
#include "veltra/audio/add_remove_iterate_list.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <optional>
#include <random>
#include <utility>
#include <vector>

#include <benchmark/benchmark.h>
#include <concurrentqueue/concurrentqueue.h>
#include <sigc++/sigc++.h>

namespace {

using List = veltra::CAddRemoveIterateList;

constexpr std::size_t kRequests = 1024;  // in one timed iteration; their disposal is not timed

struct Meter {
    float peak = 0;
    std::uint32_t calls = 0;
};

// About the least that a host's callback does: the peak of 16 samples.
void meter(void* context, std::uint32_t, void* data) {
    const auto* samples = static_cast<const float*>(data);
    float peak = 0;
    for (int i = 0; i < 16; ++i)
        peak = std::max(peak, std::abs(samples[i]));
    static_cast<Meter*>(context)->peak = peak;
}

// The least there is, which shows the walk bare.
void count(void* context, std::uint32_t, void*) {
    ++static_cast<Meter*>(context)->calls;
}

float block[16] = {0.5F, -0.25F};
Meter counter;

// The floor: what each request must at least do.
class Floor {
public:
    ~Floor() {
        for (Node* node = m_top.load(std::memory_order_relaxed); node != nullptr;) {
            Node* next = node->next;
            delete node;
            node = next;
        }
    }

    [[gnu::noinline]] void push(void* context, List::Callback callback) {
        m_calls.fetch_add(1, std::memory_order_seq_cst);
        Node* node = new Node{m_top.load(std::memory_order_relaxed), context, callback};
        while (!m_top.compare_exchange_weak(node->next, node, std::memory_order_seq_cst)) {
        }
        m_calls.fetch_sub(1, std::memory_order_seq_cst);
    }

private:
    struct Node {
        Node* next;
        void* context;
        List::Callback callback;
    };
    static_assert(sizeof(Node) == sizeof(List::SEntry));
    std::atomic<Node*> m_top{nullptr};
    std::atomic<std::int32_t> m_calls{0};
};

struct PairQueue {
    moodycamel::ConcurrentQueue<Pair> queue;
    void push(void* context, List::Callback callback) { queue.enqueue({context, callback}); }
};

struct PairVector {
    std::vector<Pair> pairs;
    void push(void* context, List::Callback callback) { pairs.push_back({context, callback}); }
};

struct Ours {
    List list;
    void push(void* context, List::Callback callback) { list.Add(context, callback); }
};

template <typename Sink>
void request(benchmark::State& state) {
    std::optional<Sink> sink(std::in_place);
    while (state.KeepRunningBatch(kRequests)) {
        for (std::size_t i = 0; i < kRequests; ++i)
            sink->push(&counter, count);
        state.PauseTiming();
        sink.emplace();
        state.ResumeTiming();
    }
}
BENCHMARK(request<Ours>)->Name("add/list");
BENCHMARK(request<Floor>)->Name("add/new+cas+count");
BENCHMARK(request<PairQueue>)->Name("add/moodycamel");
BENCHMARK(request<PairVector>)->Name("add/vector");

// Each entry has a meter of its own, so that the calls do not wait for one another.
std::vector<Meter> meters(benchmark::State& state) {
    return std::vector<Meter>(static_cast<std::size_t>(state.range(0)));
}

template <List::Callback callback>
void iterateList(benchmark::State& state) {
    auto contexts = meters(state);
    List list;
    for (Meter& context : contexts)
        list.Add(&context, callback);
    for (auto _ : state)
        list.Iterate(1, block);
}
BENCHMARK(iterateList<meter>)->Name("iterate/list")->Arg(16)->Arg(1024);
BENCHMARK(iterateList<count>)->Name("iterate/bare list")->Arg(1024);

template <List::Callback callback>
void iterateVector(benchmark::State& state) {
    auto contexts = meters(state);
    std::vector<Pair> pairs;
    pairs.reserve(contexts.size());
    for (Meter& context : contexts)
        pairs.push_back({&context, callback});
    for (auto _ : state) {
        walkVector(pairs, 1, block);
    }
}
BENCHMARK(iterateVector<meter>)->Name("iterate/vector")->Arg(16)->Arg(1024);
BENCHMARK(iterateVector<count>)->Name("iterate/bare vector")->Arg(1024);

template <List::Callback callback>
void iterateSignal(benchmark::State& state) {
    auto contexts = meters(state);
    sigc::signal<void(std::uint32_t, void*)> signal;
    for (Meter& context : contexts) {
        signal.connect(
            [&context](std::uint32_t message, void* data) { callback(&context, message, data); });
    }
    for (auto _ : state)
        signal.emit(1, block);
}
BENCHMARK(iterateSignal<meter>)->Name("iterate/sigc++")->Arg(16)->Arg(1024);
BENCHMARK(iterateSignal<count>)->Name("iterate/bare sigc++")->Arg(1024);

constexpr std::size_t kEntries = 1000;  // and as many removals, queued before one pass
enum class Removals { OldestFirst, NewestFirst, Shuffled, Unknown };

template <Removals removals>
void removeAll(benchmark::State& state) {
    std::vector<Meter> contexts(2 * kEntries);
    std::vector<Meter*> removed;
    for (std::size_t i = 0; i < kEntries; ++i)
        removed.push_back(&contexts[removals == Removals::Unknown ? kEntries + i : i]);
    if (removals == Removals::NewestFirst) std::reverse(removed.begin(), removed.end());
    if (removals == Removals::Shuffled)
        std::shuffle(removed.begin(), removed.end(), std::minstd_rand(1));
    std::optional<List> list;
    for (auto _ : state) {
        state.PauseTiming();
        list.emplace();
        for (std::size_t i = 0; i < kEntries; ++i)
            list->Add(&contexts[i], count);
        list->Iterate(1, block);
        for (Meter* const context : removed)
            list->Remove(context);
        state.ResumeTiming();
        list->Iterate(1, block);
    }
}
BENCHMARK(removeAll<Removals::OldestFirst>)->Name("remove/oldest first");
BENCHMARK(removeAll<Removals::NewestFirst>)->Name("remove/newest first");
BENCHMARK(removeAll<Removals::Shuffled>)->Name("remove/shuffled");
BENCHMARK(removeAll<Removals::Unknown>)->Name("remove/unknown");

// What that must at least do: one walk, and freeing the nodes of entries and removals.
void walkAndFree(benchmark::State& state) {
    struct Node {
        Node* next;
        void* context;
        List::Callback callback;
    };
    for (auto _ : state) {
        state.PauseTiming();
        Node *entries = nullptr, *removals = nullptr;
        for (std::size_t i = 0; i < kEntries; ++i)
            entries = new Node{entries, &counter, count};
        for (std::size_t i = 0; i < kEntries; ++i)
            removals = new Node{removals, &counter, count};
        state.ResumeTiming();
        std::size_t found = 0;
        for (const Node* node = entries; node != nullptr; node = node->next)
            found += node->context == &counter ? 1 : 0;
        benchmark::DoNotOptimize(found);
        for (Node* node : {entries, removals}) {
            while (node != nullptr)
                delete std::exchange(node, node->next);
        }
    }
}
BENCHMARK(walkAndFree)->Name("remove/walk + free");

constexpr Ratio kRatios[] = {
    {"remove 1000, oldest first : walk + free", "remove/oldest first", "remove/walk + free", 5},
    {"remove 1000, newest first : walk + free", "remove/newest first", "remove/walk + free", 5},
    {"remove 1000, shuffled : walk + free", "remove/shuffled", "remove/walk + free", 5},
    {"remove 1000, unknown : walk + free", "remove/unknown", "remove/walk + free", 5},
    {"Add : new + swap + count", "add/list", "add/new+cas+count", 1.15},
    {"Add : moodycamel", "add/list", "add/moodycamel", 0},
    {"Add : vector", "add/list", "add/vector", 0},
    {"Iterate 1024 : vector", "iterate/list/1024", "iterate/vector/1024", 1.2},
    {"Iterate 1024 : sigc++", "iterate/list/1024", "iterate/sigc++/1024", 0},
    {"Iterate 16 : vector", "iterate/list/16", "iterate/vector/16", 0},
    {"Iterate 16 : sigc++", "iterate/list/16", "iterate/sigc++/16", 0},
    {"Iterate 1024, bare : vector", "iterate/bare list/1024", "iterate/bare vector/1024", 1.2},
    {"Iterate 1024, bare : sigc++", "iterate/bare list/1024", "iterate/bare sigc++/1024", 0},
};

}  // namespace

int main(int argc, char** argv) {
    std::vector<Ratio> ratios(std::begin(kRatios), std::end(kRatios));
    const std::vector<Ratio> sorting = registerTransientBenchmarks();
    ratios.insert(ratios.end(), sorting.begin(), sorting.end());
    return runRatios(argc, argv, ratios);
}
