// SPDX-License-Identifier: MIT
// What a file says about itself.
#pragma once

#include "channel_plan.h"
#include "measurement.h"

#include <cstdint>
#include <string>

#include <sndfile.h>

namespace veltra::console {

enum class ByteOrder { None, Big, Little };  // None: single bytes, or compressed

// One sample of uncompressed data as it lies in the file.
struct SampleLayout {
    std::int32_t converterFormat = 0;  // code for GetConvertNToFloat(); 0: compressed
    std::uint32_t bytes = 0;           // of one sample of one channel
    bool swapped = false;              // in the framework's terms: little-endian, 8 bits unsigned
    bool foreignFloat = false;         // floats of the byte order that is not this machine's
};

struct FileFormat {
    std::string container;  // "WAV", "AIFF-C", "FLAC", ...
    std::string encoding;   // "24-bit integer", "Vorbis", ...
    int bits = 32;          // precision of a sample; 32 where the encoding has no fixed one
    float fullScale = fullScaleMagnitude(32);  // from which a sample counts as at full scale
    ByteOrder byteOrder = ByteOrder::None;
    SampleLayout layout;
    int rate = 0;  // frames a second
    int channels = 0;
    ChannelPlan plan;                // what they are
    std::uint64_t frames = 0;        // as many as the file announces and libsndfile finds
    bool lengthUnknown = false;      // `frames` says nothing
    bool endIsMissing = false;       // a stream without its end mark
    std::uint64_t missingBytes = 0;  // of sample data that the header announces
    bool openLength = false;         // the header does not tell how many there are
};

// Reads the description of an open file. `path` is looked at once more, for what the header
// announces.
FileFormat describe(SNDFILE* file, const SF_INFO& info, const std::string& path);

}  // namespace veltra::console
