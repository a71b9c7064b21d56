// SPDX-License-Identifier: MIT
// The console as a window drives it: files come and go while the others play, and stay in view when
// they have ended.
#pragma once

#include "console_state.h"
#include "keys.h"
#include "live_output.h"
#include "overview_reader.h"
#include "progress_board.h"
#include "report.h"

#include <functional>
#include <future>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace veltra::console {

// Thread: main.
class Player {
public:
    // Who opens and lists devices: called on other threads, too.
    struct SoundSystems {
        LiveOutput::Opener open = openDeviceOutput;
        std::function<std::vector<DeviceInfo>()> list = listDevices;
    };

    explicit Player(Device device) : Player(std::move(device), SoundSystems()) {}
    Player(Device device, SoundSystems systems)
        : m_device(std::move(device)), m_systems(std::move(systems)) {}
    Player(const Player&) = delete;
    Player& operator=(const Player&) = delete;
    ~Player();

    // Opens the file. It lies at the beginning of the transport's time: while that moves, the file
    // joins at the place where the others are; beyond its end it is silent. Answers an empty text,
    // or why not and what to do, in one line. The first file chooses the rate of the output, unless
    // chooseDevice() did, and with the next tick the transport starts.
    std::string add(const std::string& path);

    // Keys that are not there are passed over. What is heard changes without a click.
    void remove(StripKey key);
    // Brings back what was removed last, to its place, with all its settings. Answers false when
    // there is nothing to bring back. A file that cannot be opened any more is told by tick().
    bool undoRemove();
    void move(StripKey key, int place);           // to be the place-th, from 0
    void setGain(StripKey key, double decibels);  // kSilentDecibels to 24
    void setPan(StripKey key, double pan);        // -1 to 1
    void setMuted(StripKey key, bool muted);
    void setSoloed(StripKey key, bool soloed);

    // The transport. It stops by itself at the end of the longest file, unless it loops; when it is
    // started there, it begins at 0 again.
    void setPlaying(bool playing);
    void locate(std::int64_t frame);  // at ConsoleState::rate; below 0 counts as 0
    // Having reached `end`, goes on at `begin`. A loop shorter than 10 ms is none.
    void setLoop(bool on, std::int64_t begin, std::int64_t end);
    void setTempo(double beatsPerMinute);          // 20 to 999
    void setMeter(int beatsPerBar, int beatUnit);  // 1 to 64; 1, 2, 4, ..., 64

    // The whole mix.
    void setOutputGain(double decibels);
    void setOutputBalance(double balance);
    void setDimmed(bool dimmed);
    void setMono(bool mono);

    // What is played on the keyboard. Opens the output if there is none yet.
    Keys& keys();

    // Whether peaks are true ones; see Engine.
    void setMeasuresTruePeaks(bool measures);

    // Asks the sound systems which devices there are, on another thread: it may take a second, or
    // for ever. A question that has not been answered is not asked once more.
    void askForDevices();
    // What they answered, once; nothing while they think, or when they were not asked.
    std::optional<std::vector<DeviceInfo>> takeDevices();
    // `id` is a device's, "auto" or "null"; 0 leaves rate or block to the device and the first
    // file. Playing goes on there. Answers an empty text or a problem.
    std::string chooseDevice(const std::string& id, std::int32_t rate, std::uint32_t blockFrames);

    // Ends the reading of waveforms. A file that is added again is read again.
    void stopReading() noexcept { m_progress.cancelAll(); }

    // Looks after strips and the device. Call it every now and then. Answers what went wrong since.
    std::vector<std::string> tick();

    // The present state; takes the peaks, so that only who draws the meters may ask.
    const ConsoleState& look();
    // What look() found last, and what was added, removed and set on strips since.
    const ConsoleState& state() const noexcept { return m_state; }

    // Stops, and answers an entry for each file that was tried, in that order.
    std::vector<ReportEntry> finish();

private:
    struct Playing {
        StripId id;
        StripKey key;
        std::size_t entry;  // in the report
    };
    struct Removed {
        StripState strip;
        std::size_t place;
    };

    std::unique_ptr<AudioFile> open(const std::string& path, std::string& problem);
    void makeEngine(std::int32_t rate);
    void play(StripState& strip, std::unique_ptr<AudioFile> file, std::size_t entry);
    void applySettings(const StripState& strip);
    void changeRate(std::int32_t rate);
    void keepResult(StripResult&& result, std::vector<std::string>& problems);
    void collect(std::vector<std::string>& problems);
    StripState* find(StripKey key);

    Device m_device;
    const SoundSystems m_systems;
    std::future<std::vector<DeviceInfo>> m_devices;  // the answer that is waited for
    std::unique_ptr<Engine> m_engine;                // from the first file on
    std::unique_ptr<LiveOutput> m_output;  // after the engine: stops before the engine goes
    std::uint64_t m_underrunsBefore = 0;   // of the outputs before that
    Keys m_keys;
    bool m_isForKeysAlone = false;  // the first file may still choose the rate
    ProgressBoard m_progress;       // before the overviews: their reader tells it
    OverviewReader m_overviews;
    ConsoleState m_state;
    bool m_measuresTruePeaks = false;
    bool m_startsSoon = false;       // with the next tick
    std::vector<Removed> m_removed;  // the last one at the end
    std::vector<Playing> m_playing;
    std::vector<ReportEntry> m_entries;
    std::vector<std::string> m_problems;  // to be told with the next tick
    StripKey m_lastKey = 0;
};

}  // namespace veltra::console
