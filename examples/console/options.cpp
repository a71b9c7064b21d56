// SPDX-License-Identifier: MIT
#include "options.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <string_view>

namespace veltra::console {

const char* const kHelpText =
    R"(Usage: veltra-console [OPTION]... [FILE]...
  or:  veltra-console --bounce FILE.wav [OPTION]... FILE...
  or:  veltra-console --picture FILE.png [OPTION]... FILE...
  or:  veltra-console --version | --machine | --list-devices | --demo-exception | --help

Plays audio files, all at once, and tells what is in them: in a window where there is a display,
else in the terminal. In the window files can be left out, and come and go while others play.

Every file lies at the beginning of the time that plays: one that comes later joins in time with
the others, and one that is shorter is silent behind its end. In the window playing stops at the
end of the longest file, unless it loops. Surround sound is folded to stereo by the directions of
its channels, with constant power; its LFE channel is left out of that.

  --headless      read and measure only, as fast as possible; the report goes to standard output
                  unless --report says otherwise
  --terminal      no window, but meters in the terminal; without colours where NO_COLOR is set
  --picture FILE  draw the window at the loudest moment into a PNG file, without a display
  --scale N       of the picture: pixels a point, 1 to 4 (1)
  --size WxH      of the picture, in points, 460x320 to 7680x4320 (as its files want it)
  --theme NAME    of the picture: light or dark (light)
  --bounce FILE   mix all files into a stereo WAV file, faster than real time
  --bits KIND     of that file: float, 16 or 24 (float)
  --report FILE   write the report to FILE when all has ended; - is standard output
  --device NAME   play on this device: an identity of --list-devices, or a part of a device's name;
                  auto is the default device, or silence when there is none (the default), and null
                  is silence, at the pace of real time
  --rate N        frames a second of the device or of the mix, 1000 to 768000 (those of the first
                  file)
  --block N       frames that the device asks for at a time, 16 to 8192 (512)
  --list-devices  print the identities of all devices, a star at the default one of each sound
                  system, and the rates that they can play
  --progress      tell on standard error how far the files are read; --picture does so by itself
                  on a terminal
  -V, --version   print the version of this program and that of the system
  --machine       print what bug reports want to know of this machine
  --demo-exception
                  raise an exception, to see its report in the log and the question that follows
  -h, --help      print this text
  --              what follows are files, also when it begins with a dash

A file that this program has not made is never overwritten.

Ctrl-C ends early, with the report of what was read so far.

Keys of the window: Space plays and stops, Home returns to the start, L loops; Ctrl-O adds files,
Ctrl-Z brings back what was removed, C resets the clip lights, P goes from peaks to RMS levels and
true peaks. F6 leads to the next part of the window, Tab to the next control, Left and Right to the
same control of the next strip. On a strip M mutes, S is solo, Delete removes; arrows and Page keys
move its fader, Alt and arrows its pan and, in the waveform, the place, Ctrl and arrows to the next
onset. A drag with Shift in a waveform makes a loop. Escape closes messages and stops reading
waveforms, F1 tells the versions, Ctrl-Shift-E is --demo-exception. The menu of the right button has
them all.

K opens and closes the keyboard, which plays a tone or the file of the focused strip, at its own
pitch on C3. There the keys in the places of A S D F G H J K L ; ' of an American keyboard are white
keys, those of W E T Y U O P black ones, whatever the layout writes on them; Z and X shift them an
octave down and up. Arrows lead from key to key, Space plays, Escape closes.

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
  end         bar.beat.tick where the file would end at the tempo and meter that follow, as files
              say nothing of theirs: 15360 ticks to the beat; bars and beats count from 1
  underruns   blocks of audio for which the disk was too slow, and the frames that were missing
  device      only when there was any: how often the device got its audio too late, in all the run
  note        only when there is something to say: the file breaks off, its header leaves the
              length open, samples that are no numbers, ended early

A file that cannot be read has one line instead: error, and the reason. All measurements are of the
file's own samples, before any change of sample rate.

Exit status: 0 all files were read to their end (or to Ctrl-C), 1 one could not be read, the report,
the picture or the mix was not written, or, without a window, the device named by --device did not
play or any device failed, 2 the command line makes no sense or would overwrite something.
)";

namespace {

template <typename Number>
std::optional<Number> parseWhole(std::string_view text, Number least, Number most) {
    Number value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return value >= least && value <= most ? std::optional(value) : std::nullopt;
}

std::optional<std::int32_t> parseRate(std::string_view text) {
    return parseWhole<std::int32_t>(text, 1000, 768'000);
}

std::optional<std::uint32_t> parseBlock(std::string_view text) {
    return parseWhole<std::uint32_t>(text, 16, 8192);
}

std::optional<MixFormat> parseBits(std::string_view text) {
    if (text == "float") return MixFormat::Float;
    if (text == "16") return MixFormat::Int16;
    if (text == "24") return MixFormat::Int24;
    return std::nullopt;
}

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
    if (name == "-h" || name == "--help") return Request::Help;
    if (name == "-V" || name == "--version") return Request::Version;
    if (name == "--machine") return Request::Machine;
    if (name == "--list-devices") return Request::Devices;
    if (name == "--demo-exception") return Request::Exception;
    return Request::Files;
}

}  // namespace

std::optional<Options> parseOptions(std::span<const char* const> arguments, std::string& error) {
    Options options;
    std::string_view ofPicture;  // an option that means a picture only, when there is one
    std::string_view ofMix;
    bool onlyFiles = false;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string_view argument = arguments[i];
        if (argument == "-" && !onlyFiles) {
            error = "standard input cannot be read, save it in a file and name that";
            return std::nullopt;
        }
        if (onlyFiles || argument.empty() || argument.front() != '-') {
            options.files.emplace_back(argument);
            continue;
        }
        const std::size_t equals = argument.find('=');
        const std::string_view name = argument.substr(0, equals);
        constexpr std::array<std::string_view, 10> kWithValue{
            "--report", "--device", "--picture", "--scale", "--size",
            "--theme",  "--bounce", "--bits",    "--rate",  "--block"};
        const bool takesValue =
            std::find(kWithValue.begin(), kWithValue.end(), name) != kWithValue.end();
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
            ofPicture = name;
        } else if (const auto size = parseSize(value); name == "--size" && size) {
            options.width = size->first;
            options.height = size->second;
            ofPicture = name;
        } else if (name == "--theme" && (value == "light" || value == "dark")) {
            options.theme = value == "dark" ? Appearance::Dark : Appearance::Light;
            ofPicture = name;
        } else if (name == "--report" && !value.empty()) {
            options.report = value;
        } else if (name == "--device" && !value.empty()) {
            options.device.id = value;
        } else if (name == "--rate" && parseRate(value)) {
            options.device.rate = *parseRate(value);
        } else if (name == "--block" && parseBlock(value)) {
            options.device.blockFrames = *parseBlock(value);
        } else if (name == "--bounce" && !value.empty()) {
            options.bounce = value;
        } else if (name == "--bits" && parseBits(value)) {
            options.bits = *parseBits(value);
            ofMix = name;
        } else {
            error = takesValue ? std::string(name).append(" cannot be '").append(value).append("'")
                               : std::string("unknown option ").append(argument);
            return std::nullopt;
        }
    }
    const bool needsFiles =
        options.headless || options.terminal || !options.picture.empty() || !options.bounce.empty();
    if (options.files.empty() && options.request == Request::Files && needsFiles) {
        error = "no files are named";
        return std::nullopt;
    }
    if (!options.picture.empty() && (options.headless || options.terminal ||
                                     !options.report.empty() || !options.bounce.empty())) {
        error =
            "--picture draws and does nothing else; leave out --headless, --terminal, --bounce and "
            "--report";
        return std::nullopt;
    }
    if (!options.bounce.empty() && (options.headless || options.terminal)) {
        error = "--bounce plays nothing; leave out --headless and --terminal";
        return std::nullopt;
    }
    if (!ofPicture.empty() && options.picture.empty()) {
        error = std::string(ofPicture).append(" is about a picture; add --picture FILE.png");
        return std::nullopt;
    }
    if (!ofMix.empty() && options.bounce.empty()) {
        error = std::string(ofMix).append(" is about a mix; add --bounce FILE.wav");
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
