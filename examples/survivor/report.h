// SPDX-License-Identifier: MIT
// What happened, in order. Noting is allowed at any moment, also in the middle of an allocation
// that fails: it allocates nothing and writes nothing. The lines come out when the host says so.
#pragma once

#include "samples.h"

#include <array>
#include <cstdint>

namespace veltra::survivor {

enum class Event : std::uint8_t {
    CenterLevel,    // level: of the center; copies were dropped
    Saving,         // level: 1 when the document was saved; takes were unloaded
    ReserveLevel,   // level: of the memory reserve
    HostDrop,       // copies were dropped between two blocks of audio
    HandlerRetry,   // copies were dropped, so the allocation is tried again
    HandlerGaveUp,  // nothing was left to drop
};

class Report {
public:
    // Equal events in a row are one line.
    void note(Event event, int level = 0, Dropped dropped = {}) noexcept;

    // The lines noted since the last time, under the name of the act that has ended. `result` is
    // a printf format.
    void endAct(const char* name, const char* result, ...) noexcept
        __attribute__((format(printf, 3, 4)));

private:
    struct Note {
        Event event;
        int level;
        Dropped dropped;
        std::size_t times;
    };
    static constexpr std::size_t kMostNotes = 256;

    static void print(const Note& note) noexcept;

    std::array<Note, kMostNotes> m_notes{};
    std::size_t m_count = 0;
    std::size_t m_lost = 0;
};

}  // namespace veltra::survivor
