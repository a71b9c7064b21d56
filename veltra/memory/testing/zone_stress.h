// Eight threads on a zone whose allocations fail now and then, while somebody wraps and unwraps it
// and forks. What goes wrong is a crash, a hang, a sanitizer's report, or a damaged block.
#pragma once

#include "veltra/platform/allocation_zone.h"
#include "veltra/platform/standard_error.h"
#include "veltra/platform/testing/child_process.h"

#include <array>
#include <cstring>
#include <random>
#include <thread>
#include <vector>

namespace veltra::testing {

class SilentStandardError final : public StandardError {
public:
    SilentStandardError() { install(this); }
    ~SilentStandardError() override { install(nullptr); }
    Status inspect() const noexcept override { return {}; }
    bool isManaged(const Status&) const noexcept override { return false; }
    void write(const Status&, const Pieces&) noexcept override {}
};

// Every seventh request of such a size fails, on any thread; only the stress makes such requests.
inline bool isRefused(std::size_t size) noexcept {
    static std::atomic<unsigned> turn{0};
    return size > 1024 && size % 32 == 31 && turn.fetch_add(1, std::memory_order_relaxed) % 7 == 0;
}

// Takes, grows, shrinks and frees blocks of random size and alignment until told to stop; each is
// full of one letter. Answers whether they all stayed so.
inline bool stressBlocks(const ZoneEntries& calls, unsigned seed, std::atomic<int>& stepsLeft) {
    std::minstd_rand random(seed);
    std::array<std::pair<char*, std::size_t>, 64> blocks{};
    bool isWhole = true;
    while (stepsLeft.load(std::memory_order_relaxed) > 0) {
        stepsLeft.fetch_sub(1, std::memory_order_relaxed);
        auto& [block, size] = blocks[random() % blocks.size()];
        const std::size_t wanted = random() % 5000 + 1, alignment = std::size_t{16} << random() % 8;
        const auto kind = random() % 4;
        for (std::size_t i = 0; i < size; ++i)
            isWhole &= block[i] == 'x';
        void* taken = kind == 0   ? calls.allocate(wanted)
                      : kind == 1 ? calls.allocateZeroed(wanted, 1)
                      : kind == 2 ? calls.allocateAligned(alignment, wanted)
                                  : calls.reallocate(block, wanted);
        if (kind == 2) isWhole &= reinterpret_cast<std::uintptr_t>(taken) % alignment == 0;
        if (taken == nullptr) continue;
        for (std::size_t i = 0; i < wanted && (kind == 1 || (kind == 3 && i < size)); ++i)
            isWhole &= static_cast<char*>(taken)[i] == (kind == 1 ? '\0' : 'x');
        if (kind != 3) calls.free(block);
        block = static_cast<char*>(std::memset(taken, 'x', size = wanted));
    }
    for (auto& [block, size] : blocks)
        calls.free(block);
    return isWhole;
}

// `calls` is how the threads reach the zone. Answers how many threads and children saw damage.
template <typename Wrap, typename Unwrap>
int stressZone(const ZoneEntries& calls, Wrap wrap, Unwrap unwrap) {
    const SilentStandardError silence;
    std::atomic<int> stepsLeft{1'000'000'000}, failures{0};
    std::vector<std::jthread> threads;
    for (unsigned seed = 1; seed <= 8; ++seed)
        threads.emplace_back([&, seed] { failures += !stressBlocks(calls, seed, stepsLeft); });
    const auto stressHere = [&calls] {
        std::atomic<int> few{500};
        return stressBlocks(calls, 9, few);
    };
    for (int round = 0; round < 20; ++round) {
        wrap();
#ifdef VELTRA_SANITIZED  // whose allocator may hang in a child of many threads
        failures += !stressHere();
#else
        failures += !holdsInChild(stressHere);
#endif
        unwrap();
    }
    stepsLeft = 0;
    threads.clear();
    return failures;
}

}  // namespace veltra::testing
