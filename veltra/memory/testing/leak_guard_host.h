// What a host does to the leak guard, on whatever table of entries it allocates from.
#pragma once

#include "veltra/memory/leak_guard.h"
#include "veltra/memory/testing/fake_preferences.h"
#include "veltra/platform/allocation_zone.h"
#include "veltra/platform/testing/child_process.h"

#include <atomic>
#include <cstring>
#include <random>
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
    struct Block {
        unsigned char* bytes = nullptr;
        std::size_t size = 0;
    };
    const auto turns = [&](std::minstd_rand& random, std::vector<Block>& blocks) {
        for (int i = 0; i < 20; ++i) {
            Block& one = blocks[random() % blocks.size()];
            const auto mark = static_cast<unsigned char>(one.size);
            if (one.size > 0 && (one.bytes[0] != mark || one.bytes[one.size - 1] != mark)) ++spoilt;
            const std::size_t size = 1 + random() % (random() % 50 == 0 ? 300000 : 3000);
            const unsigned kind = random() % 4;
            if (kind != 0) heap.free(one.bytes);
            void* const taken = kind == 0   ? heap.reallocate(one.bytes, size)
                                : kind == 1 ? heap.allocate(size)
                                : kind == 2 ? heap.allocateZeroed(size, 1)
                                            : heap.allocateAligned(16U << random() % 8, size);
            one = {static_cast<unsigned char*>(taken), size};
            std::memset(taken, static_cast<unsigned char>(size), size);
        }
    };
    std::vector<std::jthread> threads;
    for (unsigned seed = 1; seed <= 8; ++seed)
        threads.emplace_back([&, seed] {
            std::minstd_rand random(seed);
            std::vector<Block> blocks(32);
            while (!stop) {
                turns(random, blocks);
                const QKLeakGuard guard;
                turns(random, blocks);
                if (random() % 16 == 0) QKResetLeakGuardHistory(false);
            }
            for (const Block& block : blocks)
                heap.free(block.bytes);
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
