// SPDX-License-Identifier: MIT
// The command line.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace veltra::survivor {

struct Options {
    std::size_t roomMebibytes = 320;
    bool isPressureAlone = false;
    std::string document = "survivor-document";
    std::vector<std::string> files;  // empty: those of the package sonic-pi-samples
};

// Nothing when the arguments make no sense.
std::optional<Options> parseOptions(std::span<const char* const> arguments);

extern const char* const kHelpText;

}  // namespace veltra::survivor
