// SPDX-License-Identifier: MIT
// What a host does to the leak guard, on whatever table of entries it allocates from.
#pragma once

#include "veltra/memory/leak_guard.h"
#include "veltra/memory/testing/fake_preferences.h"
#include "veltra/memory/testing/zone_stress.h"

#include <atomic>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace veltra::testing {

// The guard starts once in a process and stays: each test runs in a child.
template <typename Body>
void guarded(AllocationZone* zone, Body body) {
    EXPECT_TRUE(holdsInChild([&] {
        FakePreferences preferences;
        preferences.stored = PropertyValue::Dictionary{{"LeakGuardEnabled", 1}};
        AllocationZone::install(zone);
        body(preferences);
        return !::testing::Test::HasFailure();
    }));
}

// Eight threads take, resize and give back blocks inside and outside of scopes; children are forked
// in between. No block is lost, none is spoilt, and no child hangs.
inline void allocateAmongThreadsAndForks(const ZoneEntries& heap) {
    std::atomic<bool> stop{false};
    std::atomic<int> spoilt{0};
    std::vector<std::jthread> threads;
    for (unsigned seed = 1; seed <= 8; ++seed)
        threads.emplace_back([&, seed] {
            StressedBlocks blocks(heap, seed);
            while (!stop) {
                spoilt += !blocks.turn(20);
                const QKLeakGuard guard;
                spoilt += !blocks.turn(20);
                if (blocks.random() % 16 == 0) QKResetLeakGuardHistory(false);
            }
        });
    for (int i = 0; i < 30; ++i)
        EXPECT_TRUE(holdsInChild([&] {
            QKResetLeakGuardHistory(false);
            const QKLeakGuard guard;
            void* const block = heap.reallocate(heap.allocate(700), 800);
            const bool holds = QKResetLeakGuardHistory(false) == 800;
            heap.free(block);
            return holds;
        }));
    stop = true;
    threads.clear();
    EXPECT_EQ(spoilt, 0);
    EXPECT_EQ(QKResetLeakGuardHistory(false), 0);
}

}  // namespace veltra::testing
