// SPDX-License-Identifier: MIT
// The two ways from a file to planar floats: the framework's own sample conversion for plain
// sample data, libsndfile's decoders for the rest.
#pragma once

#include "file_format.h"
#include "sound_handle.h"

#include <cstddef>
#include <cstdint>
#include <memory>

namespace veltra::console {

// Frames that are converted at a time: small enough that the floats stay in the processor's nearest
// cache until they are measured.
inline constexpr std::size_t kChunkFrames = 8192;

class FrameReader {
public:
    FrameReader() = default;
    FrameReader(const FrameReader&) = delete;
    FrameReader& operator=(const FrameReader&) = delete;
    virtual ~FrameReader() = default;

    // Reads up to `frames` frames (at most kChunkFrames); channel c goes to channels[c]. Answers
    // how many there were: fewer than asked means the end, or a decoder that gave up.
    virtual std::size_t read(float* const* channels, std::size_t frames) = 0;

    // Goes to a frame, so that it is the next to be read. Answers false when the file cannot be
    // entered there; what is read after that is undefined.
    virtual bool seek(std::uint64_t frame) = 0;
};

std::unique_ptr<FrameReader> makePcmReader(SoundHandle file, const FileFormat& format);
std::unique_ptr<FrameReader> makeDecodedReader(SoundHandle file, const FileFormat& format);

// Spreads `frames` interleaved frames over their channels.
void deinterleave(float* const* channels, const float* interleaved, std::size_t channelCount,
                  std::size_t frames) noexcept;

}  // namespace veltra::console
