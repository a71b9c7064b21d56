// SPDX-License-Identifier: MIT
// Transposed copies of the recordings, kept so that a key pressed again sounds at once. Every copy
// can be made again, so every copy can be dropped.
#pragma once

#include "recording.h"

#include <array>
#include <vector>

namespace veltra::survivor {

class CopyCache {
public:
    static constexpr std::size_t kKeys = 12;

    explicit CopyCache(std::size_t recordingCount) : m_copies(recordingCount * kKeys) {}

    // Recording number `index`, `key` semitones up; asks for room and makes it when it is not
    // there. Null when memory is out. Valid until the next call.
    const Recording* copy(const Recording& original, std::size_t index, std::size_t key) noexcept;

    // Drops those not used for longest, until half of the bytes are gone.
    Dropped dropOlderHalf() noexcept;
    Dropped dropAll() noexcept;

private:
    struct Copy {
        Recording recording;
        std::size_t lastUse = 0;
    };

    Dropped drop(Copy& copy) noexcept;
    Copy* oldest() noexcept;

    std::vector<Copy> m_copies;  // as many as there can ever be: dropping allocates nothing
    std::size_t m_uses = 0;
    std::size_t m_bytes = 0;
};

}  // namespace veltra::survivor
