// SPDX-License-Identifier: MIT
#include "options.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <string_view>

namespace veltra::survivor {

namespace {

constexpr std::size_t kLeastRoom = 160;
constexpr std::size_t kMostRoom = 8192;

bool parseRoom(std::string_view text, std::size_t& room) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), room);
    return error == std::errc() && end == text.data() + text.size() && room >= kLeastRoom &&
           room <= kMostRoom;
}

std::vector<std::string> packagedFiles() {
    std::vector<std::string> files;
    std::error_code missing;
    for (const auto& entry :
         std::filesystem::directory_iterator("/usr/share/sonic-pi/samples", missing)) {
        if (entry.path().extension() == ".flac") files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    return files;
}

}  // namespace

const char* const kHelpText =
    R"(Usage: survivor [--room MIB] [--pressure] [--document FOLDER] [FILE...]

Loads audio files, plays and records until memory is out, several times, and survives.

  --room MIB         memory beyond what the program has at its start, 160 to 8192 (320)
  --pressure         without a limit of the address space, as far as the host hears of pressure
  --document FOLDER  where the takes are saved (survivor-document)

Without files those of the Debian package sonic-pi-samples are loaded. Exit status: 0 the document
is saved and intact, 1 it is not, 2 the command line makes no sense or there is nothing to load.
)";

std::optional<Options> parseOptions(std::span<const char* const> arguments) {
    Options options;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string_view argument = arguments[i];
        const bool hasValue = i + 1 < arguments.size();
        if (argument == "--room" && hasValue) {
            if (!parseRoom(arguments[++i], options.roomMebibytes)) return std::nullopt;
        } else if (argument == "--document" && hasValue) {
            options.document = arguments[++i];
        } else if (argument == "--pressure") {
            options.isPressureAlone = true;
        } else if (argument.starts_with("-")) {
            return std::nullopt;
        } else {
            options.files.emplace_back(argument);
        }
    }
    if (options.files.empty()) options.files = packagedFiles();
    if (options.files.empty() || options.document.empty()) return std::nullopt;
    return options;
}

}  // namespace veltra::survivor
