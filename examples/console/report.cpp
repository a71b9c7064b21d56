// SPDX-License-Identifier: MIT
#include "report.h"

#include "text.h"

#include <cmath>

namespace veltra::console {

namespace {

std::string line(const char* name, const std::string& value) {
    return formatted("  %-12s", name) + value + "\n";
}

std::string level(double amplitude) {
    const std::string linear = formatted(amplitude < 1e6 ? "%-11.9f " : "%-11.6g ", amplitude);
    if (amplitude <= 0.0) return linear + "-inf dBFS";
    return linear + formatted("%.2f dBFS", decibels(amplitude));
}

const char* byteOrderName(ByteOrder order) {
    switch (order) {
        case ByteOrder::Big:
            return "big-endian";
        case ByteOrder::Little:
            return "little-endian";
        case ByteOrder::None:
            break;
    }
    return "none";
}

// "5.1, MPEG 5.1 A: L R C LFE Ls Rs"
std::string layout(const FileFormat& format) {
    if (format.plan.order.empty()) return "unknown, channels go by number";
    const std::string order = format.plan.orderName();
    std::string text = format.plan.name(format.channels) + (order.empty() ? "" : ", ") + order;
    for (std::size_t i = 0; i < format.plan.order.size(); ++i)
        text += (i == 0 ? ": " : " ") + format.plan.channelName(i);
    return text;
}

// "L 0-1, R 2, LFE 3 s": who is loudest in which seconds.
std::string loudest(const StripResult& result) {
    const auto& seconds = result.loudestChannels;
    std::string text;
    for (std::size_t begin = 0, end = 0; begin < seconds.size(); begin = end) {
        while (end < seconds.size() && seconds[end] == seconds[begin])
            ++end;
        if (!text.empty()) text += ", ";
        text += seconds[begin] ? result.format.plan.channelName(*seconds[begin]) : "none";
        text += ' ' + std::to_string(begin);
        if (end - begin > 1) text += '-' + std::to_string(end - 1);
    }
    return text.empty() ? "none" : text + " s";
}

std::string block(const StripResult& result, std::uint64_t deviceUnderruns) {
    const FileFormat& format = result.format;
    const Measurement& measured = result.measurement;
    const auto frames = static_cast<unsigned long long>(result.framesRead);
    const double seconds = static_cast<double>(result.framesRead) / format.rate;
    std::string text;
    text += line("format", format.container + ", " + format.encoding);
    text += line("byte order", byteOrderName(format.byteOrder));
    text += line("rate", formatted("%d Hz", format.rate));
    text += line("channels", formatted("%d", format.channels));
    if (format.channels > 2) text += line("layout", layout(format));
    text += line("length", formatted("%.6f s  %llu frames", seconds, frames));
    text += line("peak", level(static_cast<double>(measured.peak)));
    text += line("rms", level(measured.rms()));
    text += line("full scale",
                 formatted("%llu samples", static_cast<unsigned long long>(measured.fullScale)));
    if (format.channels > 2) text += line("loudest", loudest(result));
    const Metre metre;
    text += line(
        "end", toText(result.end) + formatted("  at %g beats a minute, %d/%d", metre.tempo / 1000.0,
                                              metre.beatsPerBar, metre.beatUnit));
    text += line("underruns", formatted("%llu blocks  %llu frames",
                                        static_cast<unsigned long long>(result.underruns),
                                        static_cast<unsigned long long>(result.missedFrames)));
    if (deviceUnderruns > 0) {
        text += line("device",
                     formatted("%llu underruns", static_cast<unsigned long long>(deviceUnderruns)));
    }
    if (!result.complete) text += line("note", "ended early, before the end of the file");
    if (!result.problem.empty()) text += line("note", result.problem);
    if (format.openLength)
        text += line("note", "its header leaves the length open; all that is there was read");
    if (measured.notFinite > 0) {
        text += line("note", formatted("%llu samples are no numbers and count as silence",
                                       static_cast<unsigned long long>(measured.notFinite)));
    }
    return text;
}

}  // namespace

std::string makeReport(std::span<const ReportEntry> entries) {
    std::string text;
    for (const ReportEntry& entry : entries) {
        if (!text.empty()) text += "\n";
        text += printable(entry.path) + "\n";
        if (entry.result) {
            text += block(*entry.result, entry.deviceUnderruns);
        } else {
            text += line("error", entry.error.empty() ? "not read, ended early" : entry.error);
        }
    }
    return text;
}

}  // namespace veltra::console
