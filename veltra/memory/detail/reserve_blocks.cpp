// SPDX-License-Identifier: MIT
#include "veltra/memory/detail/reserve_blocks.h"

#include <cstdint>
#include <new>

namespace veltra::detail {

namespace {

bool freeTaken(const ZoneEntries& zone, std::atomic<void*>& block) noexcept {
    void* taken = block.exchange(nullptr, std::memory_order_relaxed);
    if (taken == nullptr) return false;
    zone.free(taken);
    return true;
}

struct Fragment {
    Fragment* older;
};

// A fragment of less than a pointer's size is mostly had in a block that holds a pointer all the
// same. Where it is not, it is asked for as large.
void* takeFragment(const ZoneEntries& zone, std::size_t size) noexcept {
    void* block = zone.allocate(size);
    if (block == nullptr || size >= sizeof(Fragment) || zone.size(block) >= sizeof(Fragment))
        return block;
    zone.free(block);
    return zone.allocate(sizeof(Fragment));
}

// `count` blocks, each of which points to the one taken before it: no list has to be kept for them.
bool areAvailable(const ZoneEntries& zone, std::uint64_t count, std::size_t size) noexcept {
    Fragment* newest = nullptr;
    std::uint64_t taken = 0;
    for (; taken < count; ++taken) {
        void* block = takeFragment(zone, size);
        if (block == nullptr) break;
        newest = new (block) Fragment{newest};
    }
    while (newest != nullptr) {
        Fragment* older = newest->older;
        zone.free(newest);
        newest = older;
    }
    return taken == count;
}

}  // namespace

bool ReserveBlocks::takePieces(const ZoneEntries& zone, std::size_t count,
                               std::size_t size) noexcept {
    for (std::size_t index = 0; index < count; ++index) {
        void* piece = zone.allocate(size);
        m_pieces[index].store(piece, kRelaxed);
        if (piece != nullptr) continue;
        while (index > 0)
            freeTaken(zone, m_pieces[--index]);
        return false;
    }
    return true;
}

bool ReserveBlocks::takeMain(const ZoneEntries& zone, ReserveMode mode, std::size_t size) noexcept {
    const std::size_t most = mode == ReserveMode::InPieces ? kMostPieces : 1;
    for (std::size_t count = 1; !hasMain() && count <= most; count *= 2)
        takePieces(zone, count, size / count);
    return hasMain();
}

void ReserveBlocks::takeFinal(const ZoneEntries& zone, std::size_t size) noexcept {
    m_final.store(zone.allocate(size), kRelaxed);
}

bool ReserveBlocks::releaseMain(const ZoneEntries& zone) noexcept {
    bool isReleased = false;
    for (std::atomic<void*>& piece : m_pieces)
        isReleased |= freeTaken(zone, piece);
    return isReleased;
}

bool ReserveBlocks::releaseFinal(const ZoneEntries& zone) noexcept {
    return freeTaken(zone, m_final);
}

bool isAvailableInFragments(const ZoneEntries& zone, std::size_t total,
                            std::size_t minimum) noexcept {
    constexpr int kMostAttempts = 32;
    std::size_t fragment = total;
    std::uint64_t count = 1;
    for (int attempt = 0; attempt < kMostAttempts && fragment >= minimum; ++attempt) {
        if (areAvailable(zone, count, fragment)) return true;
        fragment /= 2;
        count *= 2;
    }
    return false;
}

}  // namespace veltra::detail
