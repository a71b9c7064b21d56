// SPDX-License-Identifier: MIT
// The console as a window drives it: files come and go while the others play, and stay in view when
// they have ended.
#pragma once

#include "console_state.h"
#include "live_output.h"
#include "overview_reader.h"
#include "progress_board.h"
#include "report.h"

#include <memory>
#include <string>
#include <vector>

namespace veltra::console {

// Thread: main.
class Player {
public:
    explicit Player(Device device) : m_device(device) {}
    Player(const Player&) = delete;
    Player& operator=(const Player&) = delete;
    ~Player();

    // Opens the file and lets it play from its beginning. Answers an empty text, or why not and
    // what to do, in one line. The first file chooses the rate of the output.
    std::string add(const std::string& path);

    // Keys that are not there are passed over.
    void remove(StripKey key);
    void setMuted(StripKey key, bool muted);
    // From its beginning again, once it has ended. Answers as add() does.
    std::string playAgain(StripKey key);

    // Ends the reading of waveforms. A file that is added again is read again.
    void stopReading() noexcept { m_progress.cancelAll(); }

    // Looks after strips and the device. Call it every now and then. Answers what went wrong since.
    std::vector<std::string> tick();

    // The present state; takes the peaks.
    const ConsoleState& look();

    // Stops, and answers an entry for each file that was tried, in that order.
    std::vector<ReportEntry> finish();

private:
    struct Playing {
        StripId id;
        StripKey key;
        std::size_t entry;  // in the report
    };

    std::unique_ptr<AudioFile> open(const std::string& path, std::string& problem);
    StripId play(StripKey key, std::unique_ptr<AudioFile> file);
    void keepResult(StripResult&& result, std::vector<std::string>& problems);
    StripState* find(StripKey key);

    const Device m_device;
    std::unique_ptr<Engine> m_engine;      // from the first file on
    std::unique_ptr<LiveOutput> m_output;  // after the engine: stops before the engine goes
    ProgressBoard m_progress;              // before the overviews: their reader tells it
    OverviewReader m_overviews;
    ConsoleState m_state;
    std::vector<Playing> m_playing;
    std::vector<ReportEntry> m_entries;
    std::vector<std::string> m_problems;  // to be told with the next tick
    StripKey m_lastKey = 0;
};

}  // namespace veltra::console
