// SPDX-License-Identifier: MIT
// The command line.
#pragma once

#include "audio_output.h"
#include "mix_file.h"
#include "veltra/ui/appearance.h"

#include <optional>
#include <span>
#include <string>
#include <vector>

namespace veltra::console {

// What is asked for; all but files is answered at once.
enum class Request { Files, Help, Version, Machine, Devices, Exception };

struct Options {
    Request request = Request::Files;  // of several, the last
    bool headless = false;
    bool terminal = false;  // no window, even where there is a display
    bool progress = false;  // also where nobody expects it
    Device device;
    std::string bounce;  // a WAV file to mix into; empty: none
    MixFormat bits = MixFormat::Float;
    std::string picture;  // a PNG file to draw; empty: none
    float scale = 1.0F;   // of the picture, pixels a point
    float width = 0.0F;   // of the picture, in points; 0: as its files want it
    float height = 0.0F;
    Appearance theme = Appearance::Light;
    std::string report;  // "-": standard output; empty: none
    std::vector<std::string> files;
};

// Nothing when the arguments (without the program's name) make no sense; `error` is then one line
// for the user.
std::optional<Options> parseOptions(std::span<const char* const> arguments, std::string& error);

// What --help prints.
extern const char* const kHelpText;

}  // namespace veltra::console
