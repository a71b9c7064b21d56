// SPDX-License-Identifier: MIT
// The memory that the reserve holds: the main reserve in 1 to 16 equal pieces, and a final block.
//
// Taken and released under the lock of their owner. Each pointer is exchanged for null before its
// block is freed, so that a child forked in between frees nothing twice.
#pragma once

#include "veltra/platform/allocation_zone.h"

#include <array>
#include <atomic>
#include <cstddef>

namespace veltra::detail {

// Whether the main reserve may be taken in pieces. The log calls the two Corvid and Marquee.
enum class ReserveMode { Whole, InPieces };

class ReserveBlocks {
public:
    // Thread: any, for both: a hint without the lock.
    bool hasMain() const noexcept { return m_pieces[0].load(kRelaxed) != nullptr; }
    bool hasFinal() const noexcept { return m_final.load(kRelaxed) != nullptr; }

    // Answers hasMain(). Does nothing when it is there.
    bool takeMain(const ZoneEntries& zone, ReserveMode mode, std::size_t size) noexcept;
    void takeFinal(const ZoneEntries& zone, std::size_t size) noexcept;

    // False when there is none.
    bool releaseMain(const ZoneEntries& zone) noexcept;
    bool releaseFinal(const ZoneEntries& zone) noexcept;

private:
    static constexpr std::size_t kMostPieces = 16;
    static constexpr auto kRelaxed = std::memory_order_relaxed;  // the owner's lock orders

    bool takePieces(const ZoneEntries& zone, std::size_t count, std::size_t size) noexcept;

    std::array<std::atomic<void*>, kMostPieces> m_pieces{};
    std::atomic<void*> m_final{nullptr};
};

// Whether `total` bytes are to be had in equal fragments of at least `minimum` bytes. The fragments
// go back at once, the newest first.
// Thread: any. Realtime-safe: no.
bool isAvailableInFragments(const ZoneEntries& zone, std::size_t total,
                            std::size_t minimum) noexcept;

}  // namespace veltra::detail
