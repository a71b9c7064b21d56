// SPDX-License-Identifier: MIT
// The one line that moves while music plays, when standard output is a terminal.
#pragma once

#include "engine.h"

#include <span>
#include <string>

namespace veltra::console {

class StatusLine {
public:
    StatusLine();
    ~StatusLine() { clear(); }

    bool isShown() const noexcept { return m_isTerminal; }
    void show(const BarBeatTick& place, std::span<const StripMeter> meters);
    // Before anything else is printed.
    void clear();

private:
    const bool m_isTerminal;
    bool m_isDirty = false;
};

// The line's text, cut at `columns`: the place in the music, and for each strip its name, a bar of
// its peak, and its underruns when there were any.
std::string statusText(const BarBeatTick& place, std::span<const StripMeter> meters,
                       std::size_t columns);

}  // namespace veltra::console
