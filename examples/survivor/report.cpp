// SPDX-License-Identifier: MIT
#include "report.h"

#include <cstdarg>
#include <cstdio>

namespace veltra::survivor {

namespace {

double mebibytes(std::size_t bytes) noexcept {
    return static_cast<double>(bytes) / 1'048'576.0;
}

}  // namespace

void Report::note(Event event, int level, Dropped dropped) noexcept {
    if (m_count > 0 && m_notes[m_count - 1].event == event && m_notes[m_count - 1].level == level) {
        Note& last = m_notes[m_count - 1];
        last.dropped.count += dropped.count;
        last.dropped.bytes += dropped.bytes;
        ++last.times;
    } else if (m_count < kMostNotes) {
        m_notes[m_count++] = {event, level, dropped, 1};
    } else {
        ++m_lost;
    }
}

void Report::print(const Note& note) noexcept {
    const double dropped = mebibytes(note.dropped.bytes);
    std::printf("    ");
    switch (note.event) {
        case Event::CenterLevel:
            std::printf("center level %d: dropped %zu copies, %.1f MiB", note.level,
                        note.dropped.count, dropped);
            break;
        case Event::Saving:
            std::printf("%s: unloaded %zu takes, %.1f MiB",
                        note.level == 1 ? "document saved" : "document NOT saved",
                        note.dropped.count, dropped);
            break;
        case Event::ReserveLevel:
            std::printf("reserve level %d", note.level);
            break;
        case Event::HostDrop:
            std::printf("host: dropped %zu copies, %.1f MiB", note.dropped.count, dropped);
            break;
        case Event::HandlerRetry:
            std::printf("handler: dropped %zu copies, %.1f MiB, retry", note.dropped.count,
                        dropped);
            break;
        case Event::HandlerGaveUp:
            std::printf("handler: nothing left to drop, null");
            break;
    }
    if (note.times > 1) std::printf(" (%zu times)", note.times);
    std::printf("\n");
}

void Report::endAct(const char* name, const char* result, ...) noexcept {
    std::printf("%s\n", name);
    for (std::size_t index = 0; index < m_count; ++index)
        print(m_notes[index]);
    if (m_lost > 0) std::printf("    %zu more events\n", m_lost);
    m_count = m_lost = 0;
    std::printf("    ");
    va_list arguments;
    va_start(arguments, result);
    // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized): va_start() is just above
    std::vprintf(result, arguments);
    va_end(arguments);
    std::printf("\n");
    std::fflush(stdout);
}

}  // namespace veltra::survivor
