// SPDX-License-Identifier: MIT
// One file on its way to the output: read along the transport's route, held ready in a ring, and
// mixed by the audio thread.
//
// Three threads meet here, and only in the ring and in the atomic members. The feeding thread calls
// feed(): it alone touches the disk. The audio thread calls render() through the callback list: it
// copies and adds, nothing else. The main thread sets what is wanted and looks from outside.
//
// How they keep together. Feeder and audio thread follow numbered routes. When there is a new
// route, the feeder writes in m_start from which frame of the ring on the frames belong to it, then
// goes on writing; when the transport takes that route, the audio thread drops the frames before.
// Both count the frames of the route. So a strip that is late knows by how much, and drops as many
// frames unheard when they come: it is in time again.
//
// m_start and m_end hold a frame of the ring and the number of a route in one word, so that nobody
// sees one without the other. The audio thread looks at the ring first, then at m_start: as long as
// that is of its own route, all frames that it saw are, too, because m_start is written before the
// first frame of the next one. Else it plays no further than it had seen before.
#pragma once

#include "block.h"
#include "channel_level.h"
#include "file_stream.h"
#include "fold.h"
#include "glide.h"
#include "ring.h"
#include "route.h"
#include "veltra/audio/handover.h"

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace veltra::console {

// How a strip begins.
struct StripSetup {
    double outputRate = 0.0;                // see FileStream
    std::size_t ringFrames = kChunkFrames;  // how far reading runs ahead, at least kChunkFrames
    // Frames that are held back, so that a strip whose feeder is late can still fade out: those of
    // a glide for outputs that do not wait, else 0.
    std::size_t reserve = 0;
    Route route;
    std::int64_t rolled = 0;  // the frame of the route with which it begins
    std::int64_t offset = 0;  // the place of the file's beginning on the transport
};

// NOLINTNEXTLINE(clang-analyzer-optin.performance.Padding): the ring is in the order of its use
class Strip {
public:
    Strip(std::unique_ptr<AudioFile> file, const StripSetup& setup);

    // See FileStream. Thread: the feeding one, which then also destroys the strip.
    void showProgress() { m_stream.showProgress(); }

    // Reads, measures and converts one chunk. Answers false when there is nothing to do: the ring
    // is full, or the file has ended.
    // Thread: the feeding one. Realtime-safe: no.
    bool feed();

    // Whether a block of `frames` can be rendered without waiting for feed().
    // Thread: the feeding one, which is also the audio thread.
    bool isReadyFor(std::size_t frames) const noexcept;

    // The strip's entry in the callback list: `strip` is a Strip, `data` what the message says.
    // Thread: audio. Realtime-safe: yes.
    static void render(void* strip, std::uint32_t message, void* data) noexcept;

    // Everything of the file that lies on the route was played. Thread: any.
    bool isDrained() const noexcept {
        return m_drained.load(std::memory_order_acquire);  // with mix()
    }

    // From now on the feeder reads for this route. Thread: main.
    void follow(const Route& route);

    // What is heard, and where; see panWeights(). A change glides over 5 ms, but for those made
    // before the first frame. What is not heard goes on playing. Thread: main.
    void setGain(float gain) noexcept { m_gain.store(gain, std::memory_order_relaxed); }
    void setPan(float pan) noexcept { m_pan.store(pan, std::memory_order_relaxed); }

    // Fades out for good; isSilent() is true when that is done. Thread: main.
    void leave() noexcept { m_leaves.store(true, std::memory_order_relaxed); }
    bool isSilent() const noexcept { return m_silent.load(std::memory_order_relaxed); }

    // For each channel of the file, what was mixed since the last call, gain included, pan not;
    // what is not heard, or rendered without outputs, is not mixed. Peaks are true ones where the
    // block says so. Thread: main.
    std::vector<LevelReading> takeLevels();

    // The place in the file up to which it was rendered, in its own frames; when it is resampled,
    // within one frame. Thread: any.
    std::uint64_t framesPlayed() const noexcept;
    // 0 when the file does not say. Thread: any.
    std::uint64_t framesTotal() const noexcept {
        return format().lengthUnknown ? 0 : format().frames;
    }

    // Whether the file says that it ends at or before that output frame. Thread: any.
    bool endsBefore(std::int64_t frame) const noexcept {
        return !format().lengthUnknown &&
               static_cast<double>(frame - m_offset) * m_stream.speed() >=
                   static_cast<double>(framesTotal());
    }

    // Frames that were due and not there. Thread: any.
    std::uint64_t missedFrames() const noexcept {
        return m_missedFrames.load(std::memory_order_relaxed);
    }
    // Blocks in which that happened. Thread: any.
    std::uint64_t underruns() const noexcept { return m_underruns.load(std::memory_order_relaxed); }

    // What never changes. Thread: any.
    const std::string& path() const noexcept { return m_stream.file().path(); }
    const FileFormat& format() const noexcept { return m_stream.file().format(); }

    // For when neither feed() nor render() can be running any more.
    const FileStream& stream() const noexcept { return m_stream; }

private:
    // A frame of the ring, counted from the beginning of time, and the number of a route.
    static constexpr std::uint64_t mark(std::uint64_t frame, std::uint16_t route) noexcept {
        return frame << 16U | route;
    }
    static std::uint16_t routeOf(std::uint64_t mark) noexcept {
        return static_cast<std::uint16_t>(mark & 0xFFFFU);
    }

    void mix(Block& block) noexcept;
    void prepare(Preparation& preparation) noexcept;
    void adopt(std::uint16_t route) noexcept;
    bool hasInputEnded() const noexcept;
    std::size_t framesReady() noexcept;
    void takePan() noexcept;
    void mixFrames(const Block& block, std::size_t done, std::size_t frames) noexcept;
    void mixPiece(const Block& block, std::size_t done, std::size_t frames) noexcept;
    void add(float* mix, const float* samples, std::size_t frames, const Weights& fold,
             std::size_t output) const noexcept;

    // Feeding thread only, but for what never changes.
    FileStream m_stream;
    Route m_route;
    std::int64_t m_place;  // on the transport, of the next frame
    const std::int64_t m_offset;
    bool m_inputEnded = false;
    std::vector<float*> m_places;

    Ring m_ring;  // written by the feeding, read by the audio thread

    // Audio thread only.
    const std::size_t m_reserve;
    std::vector<Weights> m_fold;  // a channel each
    std::uint16_t m_played;       // the number of the route
    std::uint64_t m_first = 0;    // the frame of the ring with which it begins,
    std::int64_t m_firstRolled;   // and that frame counted on the route
    std::uint64_t m_seen = 0;     // frames of the ring that are known to belong to it
    bool m_isFresh = true;        // nothing of the route was played yet
    bool m_beginsMidway;          // in the middle of the file, while the others play
    float m_panNow = 0.0F;        // the one that is glided to
    Glide m_fader;
    std::array<Glide, 2> m_weights;  // of the outputs, by the pan

    std::atomic<std::uint16_t> m_wanted;           // the number of the newest; main thread sets
    Handover<Route> m_routes;                      // main thread to feeding thread
    std::atomic<std::uint64_t> m_start;            // see above: feeding thread to audio thread
    std::atomic<std::uint64_t> m_end{0};           // behind the last frame; the same
    std::atomic<bool> m_drained{false};            // audio thread to any
    std::atomic<float> m_gain{1.0F};               // main thread to audio thread
    std::atomic<float> m_pan{0.0F};                // the same
    std::atomic<bool> m_leaves{false};             // the same
    std::atomic<bool> m_silent{false};             // audio thread to main thread
    std::atomic<std::int64_t> m_playedTo{0};       // output frames in the file; to any
    std::atomic<std::uint64_t> m_missedFrames{0};  // audio thread counts
    std::atomic<std::uint64_t> m_underruns{0};     // audio thread counts
    std::vector<ChannelLevel> m_levels;            // audio thread to main thread

    static_assert(std::atomic<std::uint64_t>::is_always_lock_free);
};

}  // namespace veltra::console
