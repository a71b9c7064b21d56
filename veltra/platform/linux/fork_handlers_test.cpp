// SPDX-License-Identifier: MIT
#include "veltra/platform/fork_handlers.h"

#include "veltra/platform/fork_safe_lock.h"
#include "veltra/platform/testing/child_process.h"

#include <array>
#include <atomic>
#include <mutex>
#include <thread>

#include <gtest/gtest.h>
#include <pthread.h>

namespace veltra {
namespace {

constinit AdaptiveLock s_reset;
constinit ForkSafeLock s_held;
constinit std::array<int, 2> s_halves{};  // needs s_held
constinit std::atomic<int> s_calls{0};

void callIn() noexcept {
    const std::lock_guard guard(s_held);
    s_calls.fetch_add(1, std::memory_order_relaxed);
}

// Before the first lock is added, so that these run while the fork holds it.
const int s_isCalledIn = ::pthread_atfork(callIn, callIn, callIn);

TEST(ForkHandlers, ChildrenFindLocksFreeAndStateWholeAndCountTheirForks) {
    ASSERT_EQ(s_isCalledIn, 0);
    for (int again = 0; again < 2; ++again) {
        addForkHandler({s_reset, ForkPolicy::ResetInChild});
        s_held.holdAcrossForks();
    }
    std::atomic<bool> isEnding{false};
    std::thread busy([&] {
        while (!isEnding.load(std::memory_order_relaxed)) {
            const std::lock_guard guard(s_reset);
            const std::lock_guard whole(s_held);
            ++s_halves[0];
            std::this_thread::yield();
            ++s_halves[1];
        }
    });
    const std::uint32_t generation = forkGeneration();
    EXPECT_GT(generation, 0U);
    for (int fork = 0; fork < 50; ++fork) {
        const int before = s_calls.load(std::memory_order_relaxed);
        EXPECT_TRUE(testing::holdsInChild([&] {
            const std::lock_guard guard(s_reset);
            const std::lock_guard whole(s_held);
            return s_halves[0] == s_halves[1] && forkGeneration() == generation + 1 &&
                   s_calls.load(std::memory_order_relaxed) == before + 2;
        }));
    }
    isEnding.store(true, std::memory_order_relaxed);
    busy.join();
    EXPECT_EQ(s_halves[0], s_halves[1]);
    EXPECT_EQ(forkGeneration(), generation);
}

TEST(ForkHandlersDeathTest, TooManyLocksEndTheProcessWithAMessage) {
    static std::array<AdaptiveLock, 17> locks;
    for (const ForkPolicy policy : {ForkPolicy::ResetInChild, ForkPolicy::HoldAcross}) {
        const auto addAll = [&] {
            for (AdaptiveLock& lock : locks)
                addForkHandler({lock, policy});
        };
        EXPECT_DEATH(addAll(), "too many locks");
    }
}

}  // namespace
}  // namespace veltra
