// SPDX-License-Identifier: MIT
#include "veltra/audio/add_remove_iterate_list.h"

#include "veltra/base/testing/prelude.h"

namespace veltra {
namespace {

using List = CAddRemoveIterateList;

constexpr std::uint32_t kProducers = 8, kEntries = 100'000;  // of each producer
constexpr std::uint32_t kLive = 16;                          // at most, of each producer

using Entry = std::atomic<std::uint32_t>;  // the last pass that may call it; 0 while all may

struct Passes {
    std::vector<Entry> entries = std::vector<Entry>(std::size_t{kProducers} * kEntries);
    std::atomic<std::uint32_t> begun{0};
    struct Run {
        std::uint32_t first = 0, next = 0;
    };
    std::array<Run, kProducers> runs;  // what the latest pass called, of each producer
    int faults = 0;
};

void checkEntry(void* context, std::uint32_t pass, void* data) {
    const auto* entry = static_cast<Entry*>(context);
    auto& passes = *static_cast<Passes*>(data);
    const auto place = static_cast<std::uint32_t>(entry - passes.entries.data());
    const std::uint32_t index = place % kEntries, lastPass = *entry;
    auto& [first, next] = passes.runs[place / kEntries];
    if (next == 0) first = index;
    if (next != 0 && next != index) ++passes.faults;
    if (lastPass != 0 && lastPass < pass) ++passes.faults;
    next = index + 1;
}

// Every producer adds its entries in order, and from the 16th on removes one before it adds one. So
// every pass must call a run of them without a gap, 16 or 15 long, that ends where the producer is.
TEST(AddRemoveIterateList, ManyProducersLoseNothingAndNothingRemovedIsCalled) {
    List list;
    Passes passes;
    std::array<std::atomic<std::uint32_t>, kProducers> added{};
    std::atomic<std::uint32_t> running{kProducers};
    const auto produce = [&](std::uint32_t producer) {
        Entry* const own = &passes.entries[std::size_t{producer} * kEntries];
        for (std::uint32_t i = 0; i < kEntries; ++i) {
            if (i % 256 == 0) {  // or the passes come too seldom to see much
                const std::uint32_t seen = passes.begun;
                while (passes.begun == seen)
                    std::this_thread::yield();
            }
            if (i >= kLive) {
                list.Remove(&own[i - kLive]);
                own[i - kLive] = passes.begun.load();
            }
            list.Add(&own[i], checkEntry);
            ++added[producer];
        }
        --running;
    };
    const auto iterate = [&] {
        std::array<std::uint32_t, kProducers> before;
        std::copy(added.begin(), added.end(), before.begin());
        passes.runs = {};
        list.Iterate(++passes.begun, &passes);
        for (std::uint32_t i = 0; i < kProducers; ++i) {
            const auto [first, next] = passes.runs[i];
            if (next < before[i] || next > added[i] + 1) ++passes.faults;
            const std::uint32_t gone = next < kLive ? 0 : next - kLive;
            if (first != gone && (next < kLive || first != gone + 1)) ++passes.faults;
        }
    };
    std::vector<std::jthread> producers;
    for (std::uint32_t i = 0; i < kProducers; ++i)
        producers.emplace_back(produce, i);
    while (running > 0)
        iterate();
    producers.clear();
    iterate();
    for (const auto& run : passes.runs)
        EXPECT_EQ(run.first, kEntries - kLive);
    EXPECT_EQ(passes.faults, 0);
}

// Which a call for each would fill.
TEST(AddRemoveIterateList, AMillionRequestsAreAppliedOnTheStackOfAThread) {
    List list;
    std::uint32_t called = 0;
    char contexts[2];
    for (int i = 0; i < 1'000'000; ++i)
        list.Add(&contexts[i % 2],
                 [](void*, std::uint32_t, void* data) { ++*static_cast<std::uint32_t*>(data); });
    list.Remove(&contexts[0]);
    testing::onThreads(1, [&](int) { list.Iterate(0, &called); });
    EXPECT_EQ(called, 500'000U);
}

}  // namespace
}  // namespace veltra
