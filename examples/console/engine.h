// SPDX-License-Identifier: MIT
// The console's engine: strips in a callback list, a transport, and the meters to look at them. It
// knows no terminal and no window; a front end of either kind drives it.
//
// The life of a strip. add() puts it into the list while the audio thread runs. When it has played
// everything, or remove() is called, the entry is removed from the list; the strip itself is
// destroyed by a later collect(), when no block that may still call it is in progress. That is
// known by counting: processBlock() counts up `started` before and `finished` after it walks the
// list. A walk that began before Remove returned has a number up to `started` as it stands then,
// and blocks do not overlap; so once `finished` has reached that number the strip is unreachable.
// Both the push inside Remove and the count of `started` are sequentially consistent: either the
// new walk sees the removal, or we see the walk.
#pragma once

#include "peak_hold.h"
#include "reader_thread.h"
#include "strip.h"
#include "transport.h"
#include "veltra/audio/add_remove_iterate_list.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace veltra::console {

using StripId = std::uint32_t;  // never used twice in one engine

// What is known of a strip that is gone.
struct StripResult {
    StripId id = 0;
    std::string path;
    FileFormat format;
    Measurement measurement;
    std::vector<std::optional<std::size_t>> loudestChannels;  // see LoudestChannels::seconds()
    std::uint64_t framesRead = 0;
    std::uint64_t underruns = 0;
    std::uint64_t missedFrames = 0;
    BarBeatTick end;        // of what was read, at the file's own rate
    bool complete = false;  // false: removed before its end
    std::string problem;    // one line for the user, or empty
};

// What can be shown of a strip while it plays.
struct StripMeter {
    StripId id = 0;
    std::string path;
    float peak = 0.0F;         // the largest of `peaks`
    std::vector<float> peaks;  // since the last look, of each channel as it is mixed
    std::uint64_t underruns = 0;
    bool muted = false;
    std::uint64_t framesPlayed = 0;  // in the file's own frames; see Strip::framesPlayed()
    std::uint64_t framesTotal = 0;   // 0: unknown
};

// The largest magnitude of each output. Those beyond the second are folded: even ones count with
// the first, odd ones with the second. Of an output that is not there it is 0.
using OutputPeaks = std::array<float, 2>;

class Engine {
public:
    enum class Feeding {
        ByThread,           // for a real-time output: a thread of the engine reads ahead
        ByCaller,           // offline, to measure: the caller feeds before each block
        ByCallerResampled,  // offline, to hear or see the files together: the caller feeds, too
    };

    // `rate` is the output's, in frames a second, and files of other rates are resampled to it.
    // With ByCaller every file plays at its own rate, and `rate` is only the transport's.
    // `aheadFrames` is how far reading runs ahead of playing, at least kChunkFrames.
    Engine(Feeding feeding, std::int32_t rate, std::size_t aheadFrames);
    Engine(Feeding feeding, std::int32_t rate)
        : Engine(feeding, rate, feeding == Feeding::ByThread ? kAheadFrames : kChunkFrames) {}

    Engine(const Engine&) = delete;
    Engine& operator=(const Engine&) = delete;

    // No block may be in progress, and none may come any more.
    ~Engine();

    // Thread: main.
    StripId add(std::unique_ptr<AudioFile> file);
    void remove(StripId id);
    void removeAll();

    // Takes strips that have ended out of the list, destroys those that nobody uses any more, and
    // answers what is known of the destroyed ones. Call it every now and then. Thread: main.
    std::vector<StripResult> collect();

    // Of a strip that collect() has not told of yet, else null. Thread: main.
    const FileFormat* format(StripId id) const noexcept;

    // Strips that play or wait for their end. Thread: main.
    std::size_t stripCount() const noexcept { return m_strips.size(); }

    // Whether every strip has played to its end, also when there is none. Thread: main.
    bool isDrained() const noexcept;

    // A strip that is not there is no error. Thread: main.
    void setMuted(StripId id, bool muted) noexcept;

    // Of the strips that play or wait for their end, in the order in which they were added. Takes
    // the peaks. Thread: main.
    std::vector<StripMeter> meters();

    // Of the whole mix, since the last call. Thread: main.
    OutputPeaks takeOutputPeaks() noexcept;

    // Fills the rings so that blocks of `frames` in all (at most `aheadFrames`) can be rendered.
    // Not with Feeding::ByThread. Thread: that of processBlock.
    void feed(std::uint32_t frames);

    // Renders the next block: clears `outputs`, lets every strip add itself, moves the transport.
    // With no outputs the strips go on all the same, unheard.
    // Thread: audio, one at a time. Realtime-safe: yes.
    void processBlock(float* const* outputs, std::uint32_t outputCount,
                      std::uint32_t frames) noexcept;

    // The transport, in samples and in musical time. Thread: any. Realtime-safe: yes.
    std::int64_t position() const noexcept { return m_position.load(std::memory_order_relaxed); }
    BarBeatTick musicalPosition() const {
        return barBeatTick(m_ticks.load(std::memory_order_relaxed));
    }

private:
    // 0.7 seconds at 48 kHz. Offline one chunk does, and stays in the cache.
    static constexpr std::size_t kAheadFrames = 32768;

    struct Entry {
        StripId id;
        std::unique_ptr<Strip> strip;
        bool isUnwanted = false;    // to be removed as soon as there is memory for the request
        bool removed = false;       // from the list and from the reader
        std::uint64_t lastUse = 0;  // the block that has to be finished before it dies
    };

    void takeOut(Entry& entry);
    static StripResult resultOf(const Entry& entry);

    const Feeding m_feeding;
    const std::int32_t m_rate;
    const std::size_t m_aheadFrames;
    CAddRemoveIterateList m_list;

    // Main thread only (offline: the one thread).
    std::vector<Entry> m_strips;
    StripId m_lastId = 0;
    ReaderThread m_reader;

    std::atomic<std::uint64_t> m_started{0};   // blocks; audio thread counts, main thread reads
    std::atomic<std::uint64_t> m_finished{0};  // blocks; audio thread counts, main thread reads
    std::atomic<std::int64_t> m_position{0};   // audio thread moves, any thread reads
    std::atomic<std::int32_t> m_ticks{0};      // as the position, of the last block's beginning
    std::array<PeakHold, std::tuple_size_v<OutputPeaks>> m_outputPeaks;  // audio raises, main takes
};

}  // namespace veltra::console
