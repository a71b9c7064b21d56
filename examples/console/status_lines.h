// SPDX-License-Identifier: MIT
// The lines that move while music plays, when standard output is a terminal.
#pragma once

#include "engine.h"

#include <cstddef>
#include <map>
#include <span>
#include <string>
#include <vector>

namespace veltra::console {

// A strip as the terminal shows it.
struct StripLine {
    std::string name;                   // of the file
    std::vector<std::string> channels;  // their names
    std::vector<float> peaks;           // since the last look, a channel each
    float highest = 0.0F;               // since the start
    std::uint64_t underruns = 0;
};

struct TerminalLook {
    std::size_t columns = 80;
    std::size_t rows = 24;
    bool hasColor = false;
};

// The time, and of how many seconds (0: unknown), then a line for each strip: its name, the peaks
// of its channels, of more than two those of the loudest one, its highest peak in decibels, whether
// it has clipped, and its underruns when there were any. The bars have the scale of the window's
// meters. Strips for which there are no rows are counted.
std::vector<std::string> statusLines(double seconds, double total,
                                     std::span<const StripLine> strips, const TerminalLook& look);

class StatusLines {
public:
    StatusLines();
    ~StatusLines() { clear(); }

    // Takes the levels of the engine, which plays at `rate`. Does nothing where standard output
    // goes to a file, a pipe or a terminal that cannot move its cursor.
    void show(Engine& engine, std::int32_t rate);
    // Before anything else is printed.
    void clear();

private:
    const bool m_isTerminal;
    const bool m_hasColor;
    bool m_isDirty = false;
    double m_total = 0.0;                // seconds, of the longest file so far
    std::map<StripId, float> m_highest;  // of each strip so far
};

}  // namespace veltra::console
