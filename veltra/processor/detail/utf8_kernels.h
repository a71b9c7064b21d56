// The walks over UTF-8 bytes that exist in one variant per instruction set, and the choice among
// them. A variant is built in its own file with its own flags; the plain one is the oracle of all.
#pragma once

#include <atomic>
#include <cstddef>
#include <span>
#include <string_view>

namespace veltra {

struct Utf8Kernels {
    const char* name;

    // Length of the leading run of ASCII bytes: stops at a NUL or a byte at or above 0x80.
    std::size_t (*asciiLength)(const char* text) noexcept;

    // The same, stopping after `limit` bytes too. What lies behind the byte that stops it need
    // not exist, whatever the limit.
    std::size_t (*asciiLengthWithin)(const char* text, std::size_t limit) noexcept;

    // What utf8_check answers; `text` is not null.
    bool (*check)(const char* text) noexcept;
};

// The variants that this processor can run, best first; the last one is the plain one. The order
// never changes while the process runs.
// Thread: any. Realtime-safe: yes.
std::span<const Utf8Kernels* const> utf8KernelVariants() noexcept;

// Null until the first use. Relaxed everywhere: what is pointed to is constant.
extern std::atomic<const Utf8Kernels*> chosenUtf8Kernels;

// Chooses the best variant unless a choice was made meanwhile; answers the one in force.
const Utf8Kernels& chooseBestUtf8Kernels() noexcept;

// The variant in force: the best one unless another was chosen.
// Thread: any. Realtime-safe: yes.
inline const Utf8Kernels& utf8Kernels() noexcept {
    const Utf8Kernels* const kernels = chosenUtf8Kernels.load(std::memory_order_relaxed);
    return kernels != nullptr ? *kernels : chooseBestUtf8Kernels();
}

// Puts the variant called `name` in force, the best one for an empty name. False, and nothing
// changes, when this processor has none of that name.
// Thread: any. Realtime-safe: yes.
bool chooseUtf8Kernels(std::string_view name) noexcept;

}  // namespace veltra
