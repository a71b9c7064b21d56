// SPDX-License-Identifier: MIT
#include "veltra/platform/fork_handlers.h"

#include "veltra/base/testing/prelude.h"
#include "veltra/platform/fork_generation.h"
#include "veltra/platform/fork_safe_lock.h"
#include "veltra/platform/testing/child_process.h"

#include <mutex>

#include <pthread.h>

namespace veltra {
namespace {

constinit AdaptiveLock resetLock;
constinit ForkSafeLock heldLock;
constinit std::array<int, 2> halves{};  // needs heldLock
constinit std::atomic<int> calls{0};

void callIn() noexcept {
    const std::lock_guard guard(heldLock);
    calls.fetch_add(1);
}

// Before the first lock is added, so that these run while the fork holds it.
const int callInResult = ::pthread_atfork(callIn, callIn, callIn);

TEST(ForkHandlers, ChildrenFindLocksFreeAndStateWholeAndCountTheirForks) {
    ASSERT_EQ(callInResult, 0);
    for (int again = 0; again < 2; ++again) {
        addForkHandler({resetLock, ForkPolicy::ResetInChild});
        heldLock.holdAcrossForks();
    }
    // Each round forks while the other thread is between the halves, and holds the other lock till
    // the child has ended.
    constexpr int kRounds = 20;
    std::atomic<int> entered{0}, ended{0};
    std::thread busy([&] {
        for (int round = 1; round <= kRounds; ++round) {
            const std::lock_guard guard(resetLock);
            {
                const std::lock_guard whole(heldLock);
                ++halves[0];
                entered.store(round);
                for (int turn = 0; turn < 100; ++turn)
                    std::this_thread::yield();
                ++halves[1];
            }
            while (ended.load() != round)
                std::this_thread::yield();
        }
    });
    const std::uint32_t generation = forkGeneration();
    EXPECT_GT(generation, 0U);
    for (int round = 1; round <= kRounds; ++round) {
        while (entered.load() != round)
            std::this_thread::yield();
        const int before = calls.load();
        EXPECT_TRUE(testing::holdsInChild([&] {
            const std::lock_guard guard(resetLock);
            const std::lock_guard whole(heldLock);
            const std::uint32_t own = forkGeneration();
            return halves[0] == halves[1] && own != generation && own == forkGeneration() &&
                   own != 0 && calls.load() == before + 2;
        }));
        ended.store(round);
    }
    busy.join();
    EXPECT_EQ(forkGeneration(), generation);
}

TEST(ForkHandlersDeathTest, TooManyLocksEndTheProcessWithAMessage) {
    static std::array<AdaptiveLock, 17> locks;
    for (const ForkPolicy policy : {ForkPolicy::ResetInChild, ForkPolicy::HoldAcross}) {
        const auto addAll = [&] {
            for (AdaptiveLock& lock : locks)
                addForkHandler({lock, policy});
        };
        EXPECT_DEATH(addAll(), "too many fork handlers");
    }
}

}  // namespace
}  // namespace veltra
