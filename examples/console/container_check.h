// SPDX-License-Identifier: MIT
// A look at a file's own chunks, for what libsndfile mends without a word: it shortens a truncated
// file to what is there.
#pragma once

#include <cstdint>
#include <string>

namespace veltra::console {

struct ContainerCheck {
    bool compressedAiff = false;     // FORM type "AIFC", the form that also holds floats
    std::uint64_t missingBytes = 0;  // sample data that the header announces and the file lacks
};

// Looks at RIFF and RIFX (WAV), FORM (AIFF, AIFF-C) and AU headers; other files answer {}. A size
// that a streaming writer left open (zero, or close to 2 or 4 GiB) announces nothing.
ContainerCheck checkContainer(const std::string& path);

}  // namespace veltra::console
