// SPDX-License-Identifier: MIT
// An audio file that is open for reading: what it says about itself, and its frames as planar
// floats.
#pragma once

#include "file_format.h"
#include "frame_reader.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace veltra::console {

// Thread: one at a time; usually the thread that opens hands it to the thread that reads.
// Realtime-safe: no, everything here may wait for the disk.
class AudioFile {
public:
    // Null when `path` cannot be read as audio: `problem` is then one line for the user, the file's
    // name and what to do about it included.
    static std::unique_ptr<AudioFile> open(const std::string& path, std::string& problem);

    // Of what `reader` reads, which takes the format as it says.
    AudioFile(std::string path, FileFormat format, std::unique_ptr<FrameReader> reader);

    const std::string& path() const noexcept { return m_path; }
    const FileFormat& format() const noexcept { return m_format; }

    // Reads up to `frames` frames: channel c goes to channels[c]. Answers how many there were;
    // fewer than asked means that the file has ended.
    std::size_t read(float* const* channels, std::size_t frames);

    // Goes to a frame, so that it is the next to be read; where the format has no short way, the
    // frames before it are read once more. Answers false when the file ends before it.
    bool seek(std::uint64_t frame);

    std::uint64_t position() const noexcept { return m_position; }      // of the next frame
    std::uint64_t framesRead() const noexcept { return m_framesRead; }  // up to the last one

    // Why the file breaks off before the end that it announces and what to do about it, else empty.
    // Known for certain once the file has ended.
    std::string problem() const;

private:
    bool readUpTo(std::uint64_t frame);

    std::string m_path;
    FileFormat m_format;
    std::unique_ptr<FrameReader> m_reader;
    std::uint64_t m_position = 0;
    std::uint64_t m_framesRead = 0;
    bool m_ended = false;   // nothing more at this place
    bool m_sawEnd = false;  // by reading, not only by going there
};

}  // namespace veltra::console
