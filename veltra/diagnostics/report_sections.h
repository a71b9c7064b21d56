// SPDX-License-Identifier: MIT
// Lines that the parts of a program add to reports about it: crash reports and hardwareReport().
// The framework's rooms add theirs when they are loaded; a host adds what its support wants to
// know:
//
//   void writeSession(char* text, std::size_t capacity) noexcept {
//       std::snprintf(text, capacity, "%d tracks, %d plug-ins", tracks.load(), plugIns.load());
//   }
//   constexpr veltra::ReportSection kSession{"session", writeSession};
//   veltra::addReportSection(kSession);             // "session: 48 tracks, 12 plug-ins"
//
// A report may be written in the worst moment of a process: on any thread, with locks of the
// program held, when memory is out, in a child made by fork(). Nothing here allocates or locks, and
// no writer may.
#pragma once

#include "veltra/export.h"

#include <cstddef>
#include <string>

namespace veltra {

struct ReportSection {
    const char* name;  // a few words in small letters

    // Writes one line, cut to `capacity` bytes with its NUL; `capacity` is at least 1 and `text`
    // begins empty. A section that has nothing to say leaves it so, and gets no line.
    void (*write)(char* text, std::size_t capacity) noexcept;
};

// How many sections there can be at a time, the framework's own included.
inline constexpr std::size_t kMostReportSections = 32;

// Adds a section, which must stay alive until it is removed. Once is enough; again does no harm.
// Returns false when there is no place left.
// Thread: any. Realtime-safe: yes.
VELTRA_EXPORT bool addReportSection(const ReportSection& section) noexcept;

// Takes it away again, as a module must that is unloaded. A report that is being written at this
// moment may still call the writer: nobody may write one meanwhile.
// Thread: any. Realtime-safe: yes.
VELTRA_EXPORT void removeReportSection(const ReportSection& section) noexcept;

// Writes a line "NAME: TEXT" and a line end for each section, sorted by name, and a NUL. Returns
// how many bytes that were without the NUL: at most `capacity` - 1, what does not fit is cut,
// never inside a UTF-8 character. With `capacity` 0 nothing is written.
// Thread: any. Realtime-safe: no, the writers read what they like.
VELTRA_EXPORT std::size_t writeReportSections(char* text, std::size_t capacity) noexcept;

// The same text, whole but for lines of more than 1,023 bytes. Throws std::bad_alloc.
// Thread: any. Realtime-safe: no.
VELTRA_EXPORT std::string reportSections();

}  // namespace veltra
