// SPDX-License-Identifier: MIT
#include "options.h"

#include <charconv>
#include <string_view>

namespace veltra::console {

const char* const kHelpText =
    R"(Usage: veltra-console [--headless | --terminal] [--report -|FILE] [--device auto|null] FILE...
       veltra-console --picture FILE.png [--scale N] [--size WxH] [--theme light|dark]
                      FILE...
       veltra-console --version | --machine | --demo-exception | --help

Plays audio files, all at once, and tells what is in them: in a window where there is a display,
else in the terminal. In the window files can be left out, and come and go while others play.

  --headless      read and measure only, as fast as possible; the report goes to standard output
                  unless --report says otherwise
  --terminal      no window
  --picture FILE  draw the window at the loudest moment into a PNG file, without a display
  --scale N       of the picture: pixels a point, 1 to 4 (1)
  --size WxH      of the picture, in points, such as 1180x720 (as its files want it)
  --theme NAME    of the picture: light or dark (light)
  --report FILE   write the report to FILE when all has ended; - is standard output
  --device auto   play on the default audio device, or in silence when there is none (the default)
  --device null   play in silence, at the pace of real time
  --progress      tell on standard error how far the files are read; --picture does so by itself
                  on a terminal
  --version       print the version of this program and that of the system
  --machine       print what bug reports want to know of this machine
  --demo-exception
                  raise an exception, to see its report in the log and the question that follows
  --help          print this text
  --              what follows are files, also when it begins with a dash

A file that this program has not made is never overwritten.

Ctrl-C ends early, with the report of what was read so far.

In the window Ctrl-O adds files, Escape stops reading their waveforms, F1 tells the versions, and
Ctrl-Shift-E is --demo-exception. The menu of the right button has them all.

The report has a block for each file, in the order of the command line: the file's name, then the
lines below, names in columns 3 to 14 and values from column 15; a blank line between blocks.

  format      container and encoding of the samples
  byte order  big-endian, little-endian, or none (single bytes, compressed)
  rate        frames a second
  channels    number of channels
  layout      only with more than two: the surround format, and the channels in the file's order
  length      seconds and frames that were read
  peak        largest magnitude, 1.0 is full scale, and the same in dBFS
  rms         root of the mean square of all samples of all channels, and the same in dBFS
              (relative to 1.0: a sine at full scale has -3.01)
  full scale  number of samples whose magnitude is that of the format's largest value or more, but
              for formats finer than 16 bits that of 16 bits (32767/32768)
  loudest     only with more than two channels: the loudest one of each second, "L 0-1, R 2 s"
  end         bar.beat.tick where the file ends: 120 beats a minute, 4 beats to the bar, 15360
              ticks to the beat; bars and beats count from 1
  underruns   blocks of audio for which the disk was too slow, and the frames that were missing
  note        only when there is something to say: the file breaks off, samples that are no
              numbers, ended early

A file that cannot be read has one line instead: error, and the reason. All measurements are of the
file's own samples, before any change of sample rate.

Exit status: 0 all files were read to their end (or to Ctrl-C), 1 one was not or the report or the
picture could not be written, 2 the command line makes no sense or would overwrite something.
)";

namespace {

std::optional<float> parseScale(std::string_view text) {
    float value = 0.0F;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    if (!(value >= 1.0F && value <= 4.0F)) return std::nullopt;
    return value;
}

// Width and height, from that of the smallest window to that of the largest.
std::optional<std::pair<float, float>> parseSize(std::string_view text) {
    const auto within = [](std::string_view number, int least, int most) -> std::optional<float> {
        int value = 0;
        const char* const last = number.data() + number.size();
        const auto [end, error] = std::from_chars(number.data(), last, value);
        if (error != std::errc() || end != last || value < least || value > most)
            return std::nullopt;
        return static_cast<float>(value);
    };
    const std::size_t by = text.find('x');
    if (by == std::string_view::npos) return std::nullopt;
    const auto width = within(text.substr(0, by), 460, 7680);
    const auto height = within(text.substr(by + 1), 320, 4320);
    if (!width || !height) return std::nullopt;
    return std::pair(*width, *height);
}

// Files when the option asks for none of the others.
Request requestOf(std::string_view name) {
    if (name == "--help") return Request::Help;
    if (name == "--version") return Request::Version;
    if (name == "--machine") return Request::Machine;
    if (name == "--demo-exception") return Request::Exception;
    return Request::Files;
}

}  // namespace

std::optional<Options> parseOptions(std::span<const char* const> arguments, std::string& error) {
    Options options;
    bool onlyFiles = false;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string_view argument = arguments[i];
        if (onlyFiles || argument.empty() || argument.front() != '-') {
            options.files.emplace_back(argument);
            continue;
        }
        const std::size_t equals = argument.find('=');
        const std::string_view name = argument.substr(0, equals);
        const bool takesValue = name == "--report" || name == "--device" || name == "--picture" ||
                                name == "--scale" || name == "--size" || name == "--theme";
        std::string_view value;
        if (takesValue && equals != std::string_view::npos) {
            value = argument.substr(equals + 1);
        } else if (takesValue && i + 1 < arguments.size()) {
            value = arguments[++i];
        } else if (takesValue || equals != std::string_view::npos) {
            error = std::string(name).append(takesValue ? " needs a value" : " takes no value");
            return std::nullopt;
        }

        if (name == "--") {
            onlyFiles = true;
        } else if (const Request request = requestOf(name); request != Request::Files) {
            options.request = request;
        } else if (name == "--progress") {
            options.progress = true;
        } else if (name == "--headless") {
            options.headless = true;
        } else if (name == "--terminal") {
            options.terminal = true;
        } else if (name == "--picture" && !value.empty()) {
            options.picture = value;
        } else if (name == "--scale" && parseScale(value)) {
            options.scale = *parseScale(value);
        } else if (const auto size = parseSize(value); name == "--size" && size) {
            options.width = size->first;
            options.height = size->second;
        } else if (name == "--theme" && (value == "light" || value == "dark")) {
            options.theme = value == "dark" ? Appearance::Dark : Appearance::Light;
        } else if (name == "--report" && !value.empty()) {
            options.report = value;
        } else if (name == "--device" && (value == "auto" || value == "null")) {
            options.device = value == "null" ? Device::Null : Device::Auto;
        } else {
            error = takesValue ? std::string(name).append(" cannot be '").append(value).append("'")
                               : std::string("unknown option ").append(argument);
            return std::nullopt;
        }
    }
    const bool needsFiles = options.headless || options.terminal || !options.picture.empty();
    if (options.files.empty() && options.request == Request::Files && needsFiles) {
        error = "no files are named";
        return std::nullopt;
    }
    if (!options.picture.empty() &&
        (options.headless || options.terminal || !options.report.empty())) {
        error =
            "--picture draws and does nothing else; leave out --headless, --terminal and --report";
        return std::nullopt;
    }
    if (options.headless && options.terminal) {
        error = "--headless plays nothing; leave out --terminal";
        return std::nullopt;
    }
    if (options.headless && options.report.empty()) options.report.assign(1, '-');
    return options;
}

}  // namespace veltra::console
