// SPDX-License-Identifier: MIT
// What is being read, on standard error: one line that is rewritten on a terminal, elsewhere a line
// for each tenth of each file.
#pragma once

#include "progress_board.h"

#include <map>
#include <string>
#include <vector>

namespace veltra::console {

class TerminalProgress {
public:
    // Whether standard error is a terminal.
    static bool isTerminal() noexcept;

    TerminalProgress();
    TerminalProgress(const TerminalProgress&) = delete;
    TerminalProgress& operator=(const TerminalProgress&) = delete;
    ~TerminalProgress() { clear(); }

    // Before anything else is printed.
    void clear();

private:
    void show(const std::vector<ProgressLine>& lines, std::size_t changed, bool isOver);

    const bool m_isTerminal;
    std::map<std::uint64_t, int> m_tenths;  // that were printed of each line, where lines stay
    ProgressBoard m_board;                  // last: it calls show() from its construction on
};

// "a.wav 40 %  b.wav 12 %", cut at `columns` characters; a name alone where nobody knows.
std::string progressText(const std::vector<ProgressLine>& lines, std::size_t columns);

}  // namespace veltra::console
