// SPDX-License-Identifier: MIT
#include "terminal_progress.h"

#include "text.h"
#include "veltra/base/utf8.h"

#include <cstdio>
#include <utility>

#include <sys/ioctl.h>
#include <unistd.h>

namespace veltra::console {

namespace {

std::size_t terminalColumns() {
    winsize size{};
    const bool known = ::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    return known ? size.ws_col : 80;
}

}  // namespace

std::string progressText(const std::vector<ProgressLine>& lines, std::size_t columns) {
    std::string text;
    for (const ProgressLine& line : lines) {
        if (!text.empty()) text += "  ";
        text += line.title;
        if (line.value >= 0.0) text += formatted(" %d %%", static_cast<int>(line.value * 100.0));
    }
    std::size_t end = 0;
    for (std::size_t used = 0; end < text.size(); ++end) {
        if (continuesCharacter(text[end])) continue;
        used += static_cast<unsigned char>(text[end]) < 0xE1 ? 1 : 2;  // from U+1000 on maybe wide
        if (used > columns) break;
    }
    return text.substr(0, end);
}

bool TerminalProgress::isTerminal() noexcept {
    return ::isatty(STDERR_FILENO) == 1;
}

TerminalProgress::TerminalProgress()
    : m_isTerminal(isTerminal()), m_board([this](const auto& lines, auto changed, bool isOver) {
          show(lines, changed, isOver);
      }) {}

void TerminalProgress::show(const std::vector<ProgressLine>& lines, std::size_t changed,
                            bool isOver) {
    if (m_isTerminal) {
        const std::string text =
            isOver && lines.size() == 1 ? "" : progressText(lines, terminalColumns() - 1);
        std::fprintf(stderr, "%s\033[K\r", text.c_str());
        return;
    }
    const ProgressLine& line = lines[changed];
    if (isOver) {
        m_tenths.erase(line.number);
        return;
    }
    const int tenths = static_cast<int>(line.value * 10.0);
    if (line.value < 0.0 || std::exchange(m_tenths[line.number], tenths) == tenths) return;
    std::fprintf(stderr, "%s %d %%\n", line.title.c_str(), tenths * 10);
}

void TerminalProgress::clear() {
    if (m_isTerminal) std::fputs("\033[K", stderr);
}

}  // namespace veltra::console
