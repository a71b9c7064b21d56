// SPDX-License-Identifier: MIT
// Eight threads on a zone, while somebody wraps and unwraps it and forks. What goes wrong is a
// crash, a hang, a sanitizer's report, or a damaged block.
#pragma once

#include "veltra/base/testing/in_force.h"
#include "veltra/memory/memory_reserve.h"
#include "veltra/platform/allocation_zone.h"
#include "veltra/platform/standard_error.h"
#include "veltra/platform/testing/child_process.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <random>
#include <thread>
#include <vector>

namespace veltra::testing {

class SilentStandardError final : public InForce<StandardError> {
public:
    Status inspect() const noexcept override { return {}; }
    bool isManaged(const Status&) const noexcept override { return false; }
    void write(const Status&, const Pieces&) noexcept override {}
};

// Every seventh request of such a size fails, on any thread; only the stress makes such requests.
inline bool isRefused(std::size_t size) noexcept {
    static std::atomic<unsigned> turn{0};
    const bool isRefusing =
        size > 1024 && size % 32 == 31 && turn.fetch_add(1, std::memory_order_relaxed) % 7 == 0;
    if (isRefusing) errno = ENOMEM;
    return isRefusing;
}

// Blocks of random size and alignment, each full of the letter of its size.
class StressedBlocks {
public:
    StressedBlocks(const ZoneEntries& calls, unsigned seed) : random(seed), m_calls(calls) {}
    ~StressedBlocks() {
        for (auto& [block, size] : m_blocks)
            m_calls.free(block);
    }
    // Takes, grows, shrinks and frees. Answers whether all blocks that it met were whole.
    bool turn(int steps) {
        bool isWhole = true;
        while (steps-- > 0) {
            auto& [block, size] = m_blocks[random() % m_blocks.size()];
            const std::size_t wanted = random() % (random() % 50 == 0 ? 300'000 : 5000) + 1;
            const std::size_t alignment = std::size_t{16} << random() % 8;
            const auto kind = random() % 4;
            for (std::size_t i = 0; i < size; ++i)
                isWhole &= block[i] == static_cast<char>(size);
            void* taken = kind == 0   ? m_calls.allocate(wanted)
                          : kind == 1 ? m_calls.allocateZeroed(wanted, 1)
                          : kind == 2 ? m_calls.allocateAligned(alignment, wanted)
                                      : m_calls.reallocate(block, wanted);
            if (kind == 2) isWhole &= reinterpret_cast<std::uintptr_t>(taken) % alignment == 0;
            if (taken == nullptr) continue;
            for (std::size_t i = 0; i < wanted && (kind == 1 || (kind == 3 && i < size)); ++i)
                isWhole &=
                    static_cast<char*>(taken)[i] == (kind == 1 ? '\0' : static_cast<char>(size));
            if (kind != 3) m_calls.free(block);
            block = static_cast<char*>(std::memset(taken, static_cast<char>(wanted), wanted));
            size = wanted;
        }
        return isWhole;
    }
    std::minstd_rand random;

private:
    const ZoneEntries m_calls;
    std::array<std::pair<char*, std::size_t>, 64> m_blocks{};
};

// The reserve comes and goes over `zone`, which refuses some requests; `calls` is how the threads
// reach it. Answers how many threads and children saw damage.
inline int stressReserve(AllocationZone& zone, const ZoneEntries& calls) {
    const SilentStandardError silence;
    static ZoneEntries below;
    below = zone.entries();
    zone.allocate = [](std::size_t size) noexcept {
        return isRefused(size) ? nullptr : below.allocate(size);
    };
    for (const int index : {0, 1, 2})
        QKMemoryReserveSetOption(index, index == 0 ? 0 : 1);
    std::atomic<bool> isOver{false};
    std::atomic<int> failures{0};
    std::vector<std::jthread> threads;
    for (unsigned seed = 1; seed <= 8; ++seed)
        threads.emplace_back([&, seed] {
            for (StressedBlocks blocks(calls, seed); !isOver;)
                failures += !blocks.turn(20);
        });
    const auto stressHere = [&calls] { return StressedBlocks(calls, 9).turn(500); };
    for (int round = 0; round < 20; ++round) {
        std::free(QKMemoryReserveEnter(nullptr, nullptr));
        failures += !holdsInChild(stressHere);
        QKMemoryReserveExit();
    }
    isOver = true;
    threads.clear();
    zone.allocate = below.allocate;
    return failures;
}

}  // namespace veltra::testing
