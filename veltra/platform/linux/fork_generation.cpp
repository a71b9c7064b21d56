// SPDX-License-Identifier: MIT
#include "veltra/platform/fork_generation.h"

#include <atomic>
#include <new>

#include <sys/mman.h>
#include <unistd.h>

namespace veltra {

namespace {

using Word = std::atomic<std::uint32_t>;

// A page with the number of this process, 0 until somebody asks.
struct Page {
    Word* word = nullptr;
    // The kernel hands the page to each child filled with zeros. Where it cannot, numbers begin
    // with the id of their process, which costs a question to the system each time.
    bool isClearedInChildren = false;
};

// Of a number that begins with the id of a process: ids have 22 bits at most.
constexpr unsigned kCountBits = 10;

// The last number given away, inherited by children so that theirs are new.
constinit Word lastGiven{0};

Page makePage() noexcept {
    const auto size = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
    void* const page =
        ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (page == MAP_FAILED) return {};
    // Emulators may accept any advice and follow none: a yes counts where nonsense gets a no.
    constexpr int kNonsense = -1;
    const bool isCleared =
        ::madvise(page, size, kNonsense) != 0 && ::madvise(page, size, MADV_WIPEONFORK) == 0;
    return {new (page) Word(0), isCleared};
}

}  // namespace

std::uint32_t forkGeneration() noexcept {
    static const Page page = makePage();
    if (page.word == nullptr) return 0;
    // Relaxed throughout: the number publishes nothing.
    std::uint32_t number = page.word->load(std::memory_order_relaxed);
    const bool hasId = !page.isClearedInChildren;
    const auto id = hasId ? static_cast<std::uint32_t>(::getpid()) : 0;
    if (hasId ? number >> kCountBits == id : number != 0) return number;
    std::uint32_t next = lastGiven.fetch_add(1, std::memory_order_relaxed) + 1;
    if (hasId) next = id << kCountBits | next % (1U << kCountBits);
    // Threads that come here together agree on the number that is there first.
    const bool isFirst =
        page.word->compare_exchange_strong(number, next, std::memory_order_relaxed);
    return isFirst ? next : number;
}

}  // namespace veltra
