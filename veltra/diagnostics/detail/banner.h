// SPDX-License-Identifier: MIT
// The date, time, program, process and thread in front of a line, and the same facts for the
// record.
#pragma once

#include "veltra/diagnostics/text_buffer.h"

#include <string_view>

namespace veltra::detail {

class BannerText {
public:
    // Reads the clock and composes the texts; false when the local time cannot be told, and then
    // there is no banner. `tag` may be null; `separator` stands behind it.
    bool compose(const char* tag, std::string_view separator) noexcept;

    std::string_view line() const noexcept { return m_line.view(); }
    std::string_view localTime() const noexcept { return m_line.view().substr(0, m_timeLength); }
    std::string_view thread() const noexcept { return m_thread.view(); }

private:
    LocalTextBuffer<256> m_line;
    LocalTextBuffer<8> m_thread;
    std::size_t m_timeLength = 0;
};

}  // namespace veltra::detail
