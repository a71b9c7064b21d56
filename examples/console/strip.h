// SPDX-License-Identifier: MIT
// One file on its way to the output: read, measured, resampled if need be, and held ready in a ring
// for the audio thread.
//
// Two threads meet here, and only in the ring and in the atomic members. The feeding thread calls
// feed(): it alone touches the disk. The audio thread calls render() through the callback list: it
// copies and adds, nothing else. The main thread looks at both from outside.
#pragma once

#include "audio_file.h"
#include "block.h"
#include "file_progress.h"
#include "loudest_channels.h"
#include "measurement.h"
#include "mixing.h"
#include "peak_hold.h"
#include "resampler.h"
#include "ring.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace veltra::console {

// NOLINTNEXTLINE(clang-analyzer-optin.performance.Padding): the ring is in the order of its use
class Strip {
public:
    // `outputRate` is the rate at which blocks are asked for; 0, or the file's own rate: no
    // resampling. A file slower or faster by more than 256 times is played as it is. `ringFrames`
    // is how far reading runs ahead of playing, at least kChunkFrames.
    Strip(std::unique_ptr<AudioFile> file, double outputRate, std::size_t ringFrames);

    // From now on the progress service is told how far the file is read, and its wish to stop ends
    // the reading. For files that are read as fast as possible; others show their meters.
    // Thread: the feeding one, which then also destroys the strip.
    void showProgress() { m_progress.emplace(*m_file); }

    // Reads, measures and converts one chunk. Answers false when there is nothing to do: the ring
    // is full, or the file has ended.
    // Thread: the feeding one. Realtime-safe: no.
    bool feed();

    // Whether a block of `frames` can be rendered without waiting for feed().
    // Thread: the feeding one.
    bool isReadyFor(std::size_t frames) const noexcept;

    // The strip's entry in the callback list: `strip` is a Strip, `data` a Block.
    // Thread: audio. Realtime-safe: yes.
    static void render(void* strip, std::uint32_t message, void* data) noexcept;

    // The file has ended and everything was played. Thread: any.
    bool isDrained() const noexcept {
        return m_drained.load(std::memory_order_acquire);  // with mix()
    }

    // For each channel of the file, the largest magnitude mixed since the last call; what is muted
    // or rendered without outputs is not mixed. Thread: main.
    std::vector<float> takePeaks();

    // Fades out or in over 5 ms, linearly; whoever is muted before the first frame starts silent. A
    // muted strip goes on playing. Thread: main.
    void setMuted(bool muted) noexcept {
        m_muted.store(muted, std::memory_order_relaxed);  // with mix(): the flag is all there is
    }
    bool isMuted() const noexcept { return m_muted.load(std::memory_order_relaxed); }

    // Frames of the file that were rendered. When resampled, frames of output times the ratio of
    // the rates, rounded down: within one frame of the place in the file. Thread: any.
    std::uint64_t framesPlayed() const noexcept;
    // 0 when the file does not say. Thread: any.
    std::uint64_t framesTotal() const noexcept {
        return format().lengthUnknown ? 0 : format().frames;
    }

    // Frames that were due and not there. Thread: any.
    std::uint64_t missedFrames() const noexcept {
        return m_missedFrames.load(std::memory_order_relaxed);
    }
    // Blocks in which that happened. Thread: any.
    std::uint64_t underruns() const noexcept { return m_underruns.load(std::memory_order_relaxed); }

    // What never changes. Thread: any.
    const std::string& path() const noexcept { return m_file->path(); }
    const FileFormat& format() const noexcept { return m_file->format(); }

    // For when neither feed() nor render() can be running any more.
    const AudioFile& file() const noexcept { return *m_file; }
    bool wasStopped() const noexcept { return m_stopped; }  // see showProgress()
    const Measurement& measurement() const noexcept { return m_measurement; }
    const LoudestChannels& loudestChannels() const noexcept { return m_loudest; }

private:
    std::size_t readAndMeasure(std::size_t frames);
    bool feedDirectly();
    bool feedResampled();
    void mix(const Block& block) noexcept;
    std::size_t mixPiece(const Block& block, std::size_t done, std::size_t frames,
                         std::size_t target) noexcept;

    const std::unique_ptr<AudioFile> m_file;  // feeding thread
    Ring m_ring;                              // written by the feeding, read by the audio thread

    // Audio thread only. The gain is m_open / m_rampFrames.
    const std::size_t m_rampFrames;  // 5 ms, at least one frame
    std::size_t m_open;

    // Feeding thread only, but for m_speed.
    const std::unique_ptr<Resampler> m_resampler;
    const double m_speed;  // frames of the file for each frame of output
    const float m_fullScale;
    Measurement m_measurement;
    LoudestChannels m_loudest;
    std::vector<float*> m_places;             // where the next chunk goes, a channel each
    std::vector<std::vector<float>> m_chunk;  // input of the resampler, a channel each
    std::vector<const float*> m_chunkPlaces;  // what is left of it
    std::size_t m_chunkFrames = 0;
    std::size_t m_chunkUsed = 0;
    bool m_fileEnded = false;
    bool m_stopped = false;
    std::optional<FileProgress> m_progress;

    std::atomic<bool> m_inputEnded{false};         // set by the feeding, read by the audio thread
    std::atomic<bool> m_drained{false};            // set by the audio, read by the main thread
    std::atomic<bool> m_muted{false};              // set by the main, read by the audio thread
    std::atomic<std::uint64_t> m_missedFrames{0};  // audio thread counts
    std::atomic<std::uint64_t> m_underruns{0};     // audio thread counts
    std::vector<PeakHold> m_peaks;                 // audio thread raises, main thread takes

    static_assert(std::atomic<bool>::is_always_lock_free);
};

}  // namespace veltra::console
