// SPDX-License-Identifier: MIT
#include "status_lines.h"

#include "text.h"
#include "times.h"
#include "veltra/base/utf8.h"
#include "veltra/controls/level_meters/decibel_scale.h"
#include "veltra/controls/level_meters/level_meter_look.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include <sys/ioctl.h>
#include <unistd.h>

namespace veltra::console {

namespace {

constexpr std::size_t kLevelColumns = 11;  // " -12.3 dB "
constexpr std::size_t kRemarkColumns = 8;  // "clipped "
constexpr std::size_t kLabelColumns = 4;   // "LFE", "1024"
constexpr std::size_t kLeastBar = 4;

// Those of the zones that the meters of the window have: green, amber, red.
constexpr std::array<std::string_view, 3> kZoneColors{"\033[32m", "\033[33m", "\033[31m"};
constexpr std::string_view kPlain = "\033[0m";

std::string variable(const char* name) {
    const char* const value = std::getenv(name);  // NOLINT(concurrency-mt-unsafe): one thread
    return value != nullptr ? value : "";
}

// In exactly so many columns, of a character each: what is too long loses its middle.
std::string fitted(const std::string& text, std::size_t columns) {
    std::vector<std::string> characters;
    for (const char byte : text) {
        if (!continuesCharacter(byte) || characters.empty()) characters.emplace_back();
        characters.back() += byte;
    }
    std::string result;
    const std::size_t count = characters.size();
    const std::size_t tail = count > columns && columns > 2 ? (columns - 2) / 2 : 0;
    const std::size_t dots = tail > 0 ? 2 : 0;
    for (std::size_t i = 0; i < columns - tail - dots; ++i)
        result += i < count ? characters[i] : " ";
    result.append(dots, '.');
    for (std::size_t i = count - tail; i < count; ++i)
        result += characters[i];
    return result;
}

// Lit up to the level, in the colours of the part that is lit.
std::string bar(float peak, std::size_t width, bool hasColor) {
    const auto steps = static_cast<double>(width);
    const auto at = [steps](double position) {
        return static_cast<std::size_t>(std::clamp(std::ceil(position * steps), 0.0, steps));
    };
    const std::size_t lit = at(static_cast<double>(meterPositionForAmplitude(peak)));
    std::string text = std::string(lit, '#') + std::string(width - lit, '.');
    if (!hasColor) return text;
    text.insert(lit, kPlain);
    // The last one first: the places in front of it stay.
    static const std::vector<LevelMeterZone> kZones = defaultLevelMeterZones();
    for (std::size_t zone = kZoneColors.size(); zone-- > 0;) {
        const float begin = meterPositionForDecibels(kZones[zone].decibels);
        const std::size_t column = at(static_cast<double>(begin));
        if (zone == 0 || lit > column) text.insert(column, kZoneColors[zone]);
    }
    return text;
}

// "-12.3 dB" in as many columns as the lowest needs.
std::string decibelText(float peak) {
    const double level = decibelsForAmplitude(peak);
    return (level > -100.0 ? formatted("%6.1f", level) : "  -inf") + " dB";
}

std::string stripText(const StripLine& strip, const TerminalLook& look) {
    const std::size_t nameColumns = std::clamp<std::size_t>(look.columns / 4, 8, 32);
    std::string text = fitted(strip.name, nameColumns) + ' ' + decibelText(strip.highest);

    // The channels that have a bar; all bars are of one length.
    const bool isSurround = strip.peaks.size() > 2;
    std::size_t first = 0, end = strip.peaks.size();
    if (isSurround) {
        const auto loudest = std::max_element(strip.peaks.begin(), strip.peaks.end());
        first = static_cast<std::size_t>(loudest - strip.peaks.begin());
        end = first + 1;
    }
    const std::size_t others = nameColumns + kLevelColumns + kRemarkColumns;
    const std::size_t each = look.columns > others ? (look.columns - others) / 2 : 0;
    const std::size_t label = isSurround ? kLabelColumns : 1;
    for (std::size_t channel = first; channel < end && each >= kLeastBar + kLabelColumns + 2;
         ++channel) {
        const std::string name = channel < strip.channels.size() ? strip.channels[channel] : "";
        text += (channel == first ? "  " : " ") + fitted(name, label) + ' ' +
                bar(strip.peaks[channel], each - kLabelColumns - 2, look.hasColor);
    }

    std::string remarks = strip.highest > 1.0F ? " clipped" : "";
    if (strip.underruns > 0) remarks += " gaps: " + std::to_string(strip.underruns);
    if (remarks.empty() || !look.hasColor) return text + remarks;
    return text.append(kZoneColors.back()).append(remarks).append(kPlain);
}

winsize terminalSize() {
    winsize size{};
    if (::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0) size.ws_col = 80;
    if (size.ws_row == 0) size.ws_row = 24;
    return size;
}

void print(const std::string& text) {
    std::fputs(text.c_str(), stdout);
    std::fflush(stdout);
}

}  // namespace

std::vector<std::string> statusLines(double seconds, double total,
                                     std::span<const StripLine> strips, const TerminalLook& look) {
    std::vector<std::string> lines{preciseTime(seconds)};
    if (total > 0.0) lines[0] += " / " + preciseTime(total);
    // The last row is the cursor's.
    const std::size_t room = std::max<std::size_t>(look.rows, 4) - 2;
    const std::size_t shown = strips.size() <= room ? strips.size() : room - 1;
    for (const StripLine& strip : strips.first(shown))
        lines.push_back(stripText(strip, look));
    if (shown < strips.size()) {
        float highest = 0.0F;
        for (const StripLine& strip : strips.subspan(shown))
            highest = std::max(highest, strip.highest);
        lines.push_back(formatted("and %zu more", strips.size() - shown) + decibelText(highest));
    }
    return lines;
}

StatusLines::StatusLines()
    : m_isTerminal(::isatty(STDOUT_FILENO) == 1 && !variable("TERM").empty() &&
                   variable("TERM") != "dumb"),
      m_hasColor(m_isTerminal && variable("NO_COLOR").empty()) {}

void StatusLines::show(Engine& engine, std::int32_t rate) {
    if (!m_isTerminal) return;
    std::vector<StripLine> strips;
    for (StripMeter& meter : engine.meters()) {
        const FileFormat& format = *engine.format(meter.id);
        const double length = static_cast<double>(meter.framesTotal) / std::max(format.rate, 1);
        m_total = std::max(m_total, length);
        float& highest = m_highest[meter.id];
        highest = std::max(highest, meter.peak);
        StripLine strip;
        strip.name = printable(meter.path.substr(meter.path.find_last_of('/') + 1));
        for (std::size_t channel = 0; channel < meter.peaks.size(); ++channel)
            strip.channels.push_back(format.channels == 1 ? "M" : format.plan.channelName(channel));
        strip.peaks = std::move(meter.peaks);
        strip.highest = highest;
        strip.underruns = meter.underruns;
        strips.push_back(std::move(strip));
    }
    const winsize size = terminalSize();
    const double seconds = static_cast<double>(engine.position()) / rate;
    // Lines that are too long are cut, not wrapped: the way back up is one row a line.
    std::string text = "\033[?7l";
    const auto lines =
        statusLines(seconds, m_total, strips, {size.ws_col, size.ws_row, m_hasColor});
    for (const std::string& line : lines)
        text += (&line == lines.data() ? "" : "\r\n") + line + "\033[K";
    text += "\033[J\033[?7h\r";
    if (lines.size() > 1) text += formatted("\033[%zuA", lines.size() - 1);
    print(text);
    m_isDirty = true;
}

void StatusLines::clear() {
    if (m_isDirty) print("\r\033[J");
    m_isDirty = false;
}

}  // namespace veltra::console
