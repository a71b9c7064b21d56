// SPDX-License-Identifier: MIT
// A look at a file's own chunks and pages, for what libsndfile mends without a word: it shortens a
// truncated file to what is there.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>

namespace veltra::console {

struct ContainerCheck {
    bool compressedAiff = false;     // FORM type "AIFC", the form that also holds floats
    std::uint64_t missingBytes = 0;  // sample data that the header announces and the file lacks
    bool openLength = false;         // it announces none, or what a streaming writer left there
    bool endIsMissing = false;       // its last page is cut off, or does not end the stream
};

// Looks at RIFF, RIFX and RF64 (WAV), W64, FORM (AIFF, AIFF-C) and AU headers, and at the last page
// of an Ogg file; other files answer {}. A size that a streaming writer left open announces
// nothing: zero, or above nearly 2 GiB (in 64 bits: 8 EiB) where the file ends before.
ContainerCheck checkContainer(const std::string& path);
ContainerCheck checkContainer(std::istream& file);

}  // namespace veltra::console
