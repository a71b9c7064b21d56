// SPDX-License-Identifier: MIT
#include "veltra/platform/fork_generation.h"

#include <atomic>
#include <new>

#include <pthread.h>
#include <sys/mman.h>
#include <unistd.h>

namespace veltra {

namespace {

using Word = std::atomic<std::uint32_t>;

// The number of this process, 0 until somebody asks; 0 again in every child: the kernel hands the
// page to children filled with zeros, or, where it does not know how to, a fork handler clears it.
constinit Word* word = nullptr;

// The last number given away, inherited by children so that theirs are new.
constinit Word lastGiven{0};

Word* findWord() noexcept {
    const auto size = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
    void* const page =
        ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (page == MAP_FAILED) return nullptr;
    word = new (page) Word(0);
    if (::madvise(page, size, MADV_WIPEONFORK) == 0) return word;
    const auto clear = [] { word->store(0, std::memory_order_relaxed); };
    return ::pthread_atfork(nullptr, nullptr, clear) == 0 ? word : nullptr;
}

}  // namespace

std::uint32_t forkGeneration() noexcept {
    static Word* const known = findWord();
    if (known == nullptr) return 0;
    // Relaxed throughout: the number publishes nothing.
    std::uint32_t generation = known->load(std::memory_order_relaxed);
    if (generation != 0) return generation;
    // Threads that come here together agree on the number that is there first.
    const std::uint32_t next = lastGiven.fetch_add(1, std::memory_order_relaxed) + 1;
    const bool isFirst =
        known->compare_exchange_strong(generation, next, std::memory_order_relaxed);
    return isFirst ? next : generation;
}

}  // namespace veltra
