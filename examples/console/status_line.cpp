// SPDX-License-Identifier: MIT
#include "status_line.h"

#include "text.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include <sys/ioctl.h>
#include <unistd.h>

namespace veltra::console {

namespace {

// Ten steps of six decibels; a strip at full scale fills the bar.
std::string peakBar(float peak) {
    constexpr int kSteps = 10;
    const double level = peak > 0.0F ? decibels(static_cast<double>(peak)) : -1000.0;
    const int filled = static_cast<int>(std::clamp(std::ceil(level / 6.0) + kSteps, 0.0, 10.0));
    std::string bar(kSteps, ' ');
    std::fill_n(bar.begin(), filled, '#');
    return bar;
}

std::size_t terminalColumns() {
    winsize size{};
    const bool known = ::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    return known ? size.ws_col : 80;
}

void print(const std::string& text) {
    std::fputs(text.c_str(), stdout);
    std::fflush(stdout);
}

}  // namespace

std::string statusText(const BarBeatTick& place, std::span<const StripMeter> meters,
                       std::size_t columns) {
    std::string text = toText(place);
    for (const StripMeter& meter : meters) {
        const std::string name = printable(meter.path.substr(meter.path.find_last_of('/') + 1));
        text += formatted("  %.12s [%s]", name.c_str(), peakBar(meter.peak).c_str());
        if (meter.underruns > 0) text += " !" + std::to_string(meter.underruns);
    }
    return text.substr(0, columns);
}

StatusLine::StatusLine() : m_isTerminal(::isatty(STDOUT_FILENO) == 1) {}

void StatusLine::show(const BarBeatTick& place, std::span<const StripMeter> meters) {
    if (!m_isTerminal) return;
    print(statusText(place, meters, terminalColumns() - 1) + "\033[K\r");
    m_isDirty = true;
}

void StatusLine::clear() {
    if (m_isDirty) print("\033[K");
    m_isDirty = false;
}

}  // namespace veltra::console
