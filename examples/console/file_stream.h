// SPDX-License-Identifier: MIT
// A file as the output plays it: at the output's rate, from any place on, and measured on its way.
#pragma once

#include "audio_file.h"
#include "file_progress.h"
#include "loudest_channels.h"
#include "measurement.h"
#include "resampler.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace veltra::console {

// Measured is the first stretch that is read, each frame once: what is read again is not measured
// again, and what lies elsewhere is left out.
//
// Thread: one at a time. Realtime-safe: no, but for what never changes.
class FileStream {
public:
    // `outputRate` in frames a second; 0, or the file's own rate: no resampling. A file slower or
    // faster by more than 256 times is played as it is.
    FileStream(std::unique_ptr<AudioFile> file, double outputRate);

    // From now on the progress service is told how far the file is read, and its wish to stop ends
    // the reading. Thread: the reading one, which then also destroys the stream.
    void showProgress() { m_progress.emplace(*m_file); }

    // The next frame to be made is that `place` output frames after the file's beginning. It is
    // what make() would have come to, to the last bit; of a resampled file nearly so.
    void locate(std::int64_t place);

    // Makes up to `frames` frames (at most kChunkFrames); channel c goes to channels[c]. Answers
    // how many; fewer, or none, do not mean the end.
    std::size_t make(float* const* channels, std::size_t frames);
    bool hasEnded() const noexcept { return m_ended; }
    bool wasStopped() const noexcept { return m_stopped; }  // by who shows the progress

    const Measurement& measurement() const noexcept { return m_measurement; }
    const LoudestChannels& loudestChannels() const noexcept { return m_loudest; }
    std::uint64_t framesMeasured() const noexcept { return m_measuredEnd - m_measuredBegin; }
    // Whether that is all of the file.
    bool isComplete() const noexcept { return m_sawEnd && m_measuredBegin == 0; }

    // These never change. Thread: any.
    const AudioFile& file() const noexcept { return *m_file; }
    double speed() const noexcept { return m_speed; }  // frames of the file a frame of output

private:
    std::size_t read(float* const* channels, std::size_t frames);
    void measureChunk(float* const* channels, std::uint64_t place, std::size_t frames);
    std::size_t resample(float* const* channels, std::size_t frames);

    const std::unique_ptr<AudioFile> m_file;
    const std::int64_t m_outputRate;
    const std::unique_ptr<Resampler> m_resampler;
    const double m_speed;
    const float m_fullScale;

    Measurement m_measurement;
    LoudestChannels m_loudest;
    std::uint64_t m_measuredBegin = 0;  // frames of the file
    std::uint64_t m_measuredEnd = 0;
    bool m_sawEnd = false;  // right behind what was measured

    std::vector<std::vector<float>> m_chunk;  // input of the resampler, a channel each
    std::vector<float*> m_chunkPlaces;
    std::vector<const float*> m_chunkRest;  // what is left of it
    std::size_t m_chunkFrames = 0;
    std::size_t m_chunkUsed = 0;
    std::int64_t m_unwanted = 0;  // made frames that lie before the place that was asked for
    bool m_fileEnded = false;     // what was read is perhaps not made yet
    bool m_ended = false;
    bool m_stopped = false;
    std::optional<FileProgress> m_progress;
};

}  // namespace veltra::console
