// SPDX-License-Identifier: MIT
// The console's engine: strips in a callback list, a transport, and the meters to look at them. It
// knows no terminal and no window; a front end of either kind drives it.
//
// The life of a strip. add() puts it into the list while the audio thread runs. remove() lets it
// fade out; then, or when it has played everything, a collect() takes it out of the list, and a
// later one destroys it, when the list's ticket says that no block can call it any more and no
// thread reads its file. Blocks free nothing: what the list is done with goes with collect(), too.
#pragma once

#include "channel_level.h"
#include "glide.h"
#include "instrument.h"
#include "playhead.h"
#include "reader_pool.h"
#include "strip.h"
#include "transport.h"
#include "veltra/audio/callback_list.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <bit>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
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
    float peak = 0.0F;           // the largest of `peaks`
    std::vector<float> peaks;    // since the last look, of each channel as it is mixed
    std::vector<float> squares;  // mean squares of the same samples
    std::uint64_t underruns = 0;
    bool muted = false;
    bool ended = false;              // nothing of it lies ahead
    std::uint64_t framesPlayed = 0;  // in the file's own frames; see Strip::framesPlayed()
    std::uint64_t framesTotal = 0;   // 0: unknown
};

// Of the first two outputs, as they are heard. Of an output that is not there, and when nothing was
// played since the last look, 0.
struct OutputLevels {
    std::array<float, 2> peaks{};
    std::array<float, 2> squares{};  // mean squares of the same samples
};

class Engine {
public:
    enum class Feeding {
        ByThread,           // for a real-time output: threads of the engine read ahead
        ByCaller,           // offline, to measure: the caller feeds before each block
        ByCallerResampled,  // offline, to hear or see the files together: the caller feeds, too
    };

    // What becomes of a strip that has played to its end.
    enum class AtEnd {
        Leaves,  // collect() takes it out; the transport goes on
        Stays,   // for transports that may come back; this one stops when all have ended
    };

    // `rate` is the output's, in frames a second, and files of other rates are resampled to it.
    // With ByCaller every file plays at its own rate, and `rate` is only the transport's.
    // `aheadFrames` is how far reading runs ahead of playing, at least kChunkFrames.
    // With ByThread the transport stands at 0 until setPlaying(); offline it moves at once.
    Engine(Feeding feeding, std::int32_t rate, std::size_t aheadFrames, AtEnd atEnd);
    Engine(Feeding feeding, std::int32_t rate, AtEnd atEnd = AtEnd::Leaves)
        : Engine(feeding, rate, aheadFrames(feeding, rate), atEnd) {}

    Engine(const Engine&) = delete;
    Engine& operator=(const Engine&) = delete;

    // No block may be in progress, and none may come any more.
    ~Engine();

    // The file lies at the transport's beginning: added later, it joins in time with the others,
    // beyond its end it is silent. With ByCaller it lies where the transport is: each is read
    // whole. Thread: main.
    StripId add(std::unique_ptr<AudioFile> file);

    // Fades out, and is gone with a later collect(). Thread: main.
    void remove(StripId id);
    // At once. No block may be in progress; waits up to half a second for one that reads a file.
    // Thread: main.
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

    // What is heard of each strip; a strip that is not there is no error. While any strip is
    // soloed, only soloed ones are heard, and of these only those that are not muted. `gain` is an
    // amplitude, see amplitude(); `pan` as in panWeights(). Thread: main.
    void setGain(StripId id, float gain) noexcept;
    void setPan(StripId id, float pan) noexcept;
    void setMuted(StripId id, bool muted) noexcept;
    void setSoloed(StripId id, bool soloed) noexcept;
    bool isHeard(StripId id) const noexcept;

    // The whole mix. Dimmed is 20 dB down; mono is the mean of both outputs, on both. Thread: main.
    void setOutputGain(float gain) noexcept {
        m_outputGain.store(gain, std::memory_order_relaxed);  // these four with mixDown()
    }
    void setOutputBalance(float balance) noexcept {
        m_balance.store(balance, std::memory_order_relaxed);
    }
    void setDimmed(bool dimmed) noexcept { m_dimmed.store(dimmed, std::memory_order_relaxed); }
    void setMono(bool mono) noexcept { m_mono.store(mono, std::memory_order_relaxed); }

    // The transport; see Playhead. Started where all strips have ended, it begins at 0, or at the
    // beginning of the loop. A change of the loop is a locate to where it is. Thread: main.
    void setPlaying(bool plays);
    bool isPlaying() const noexcept { return m_playhead.isPlaying(); }
    void locate(std::int64_t frame);
    // Frames `begin` to before `end`. One shorter than 10 ms is none.
    void setLoop(bool loops, std::int64_t begin, std::int64_t end);
    const Route& route() const noexcept { return m_playhead.route(); }
    void setTempo(double beatsPerMinute) noexcept;  // see Metre for the ranges
    void setMeter(int beatsPerBar, int beatUnit) noexcept;
    Metre metre() const noexcept { return Metre::unpacked(m_metre); }

    // What is played on the keyboard, whether the transport moves or not. Thread: main.
    Instrument& instrument() noexcept { return m_instrument; }

    // Whether the peaks of all meters are true ones, of what lies between the samples, too. At
    // first not: each sample then takes some forty instructions more. Thread: main.
    void setMeasuresTruePeaks(bool measures) noexcept {
        m_measuresTruePeaks.store(measures, std::memory_order_relaxed);  // with processBlock()
    }

    // Of the strips that play or wait for their end, in the order in which they were added. Takes
    // the levels. Thread: main.
    std::vector<StripMeter> meters();

    // Of the whole mix, since the last call. Thread: main.
    OutputLevels takeOutputLevels() noexcept;

    // Fills the rings so that blocks of `frames` in all (at most `aheadFrames`) can be rendered.
    // Not with Feeding::ByThread. Thread: that of processBlock.
    void feed(std::uint32_t frames);

    // Renders the next block: clears `outputs`, lets every strip add itself, moves the transport.
    // What is mixed comes to the first two outputs; of one output alone it is their mean. With no
    // outputs the strips go on all the same, unheard.
    // Thread: audio, one at a time. Realtime-safe: yes.
    void processBlock(float* const* outputs, std::uint32_t outputCount,
                      std::uint32_t frames) noexcept;

    // The transport's place, in frames and in musical time; where it will be, when it was told to
    // go elsewhere just now. Thread: main.
    std::int64_t position() const noexcept { return m_playhead.position(); }
    BarBeatTick musicalPosition() const;

private:
    // 0.7 seconds at 48 kHz, and hardly less at any other rate that a device has; a file's header
    // may name any. Offline one chunk does, and stays in the cache.
    static constexpr std::size_t aheadFrames(Feeding feeding, std::int32_t rate) {
        const auto thousands = static_cast<std::size_t>(std::clamp(rate, 48000, 768000)) / 1000;
        return feeding != Feeding::ByThread ? kChunkFrames : std::bit_ceil(32768 * thousands / 48);
    }

    struct Entry {
        StripId id;
        std::unique_ptr<Strip> strip;
        float gain = 1.0F;
        bool isMuted = false;
        bool isSoloed = false;
        bool isHeard = true;                          // what comes of both, and of the others
        bool isUnwanted = false;                      // to be removed as soon as it is silent
        std::optional<CallbackList::Ticket> removal;  // once it is out of the list
    };

    const Entry* find(StripId id) const noexcept;
    Entry* find(StripId id) noexcept {
        return const_cast<Entry*>(std::as_const(*this).find(id));  // NOLINT: of an own member
    }
    void applyGains() noexcept;
    bool isAtEnd() const noexcept;
    void travel(const Route& route);
    void takeOut(Entry& entry);
    StripResult resultOf(const Entry& entry) const;
    std::uint32_t roll(float* const* outputs, std::uint32_t outputCount, std::uint32_t done,
                       std::uint32_t frames) noexcept;
    void mixDown(float* const* outputs, std::uint32_t outputCount, std::uint32_t frames) noexcept;

    const Feeding m_feeding;
    const AtEnd m_atEnd;
    const std::int32_t m_rate;
    const std::size_t m_aheadFrames;
    CallbackList m_list;

    // Main thread only (offline: the one thread).
    std::vector<Entry> m_strips;
    StripId m_lastId = 0;
    ReaderPool m_readers;

    Playhead m_playhead;      // main and audio thread
    Instrument m_instrument;  // main and audio thread

    // Audio thread only.
    std::array<Glide, 2> m_outputGains;  // with balance and dim
    Glide m_monoShare;                   // 0: stereo, 1: mono

    std::atomic<std::uint64_t> m_metre;  // main thread sets, audio thread reads, like these:
    std::atomic<float> m_outputGain{1.0F};
    std::atomic<float> m_balance{0.0F};
    std::atomic<bool> m_dimmed{false};
    std::atomic<bool> m_mono{false};
    std::atomic<bool> m_measuresTruePeaks{false};
    std::array<ChannelLevel, 2> m_outputLevels;  // audio thread adds, main thread takes
};

}  // namespace veltra::console
