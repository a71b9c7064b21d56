// SPDX-License-Identifier: MIT
// What a window shows of the console at one moment. It is made of a player that runs in real time,
// or of a rehearsal for a picture.
#pragma once

#include "engine.h"
#include "overview.h"
#include "progress_board.h"

#include <cstdint>
#include <string>
#include <vector>

namespace veltra::console {

using StripKey = int;  // of a strip in the window; stays the same when its file plays again

struct StripState {
    StripKey key = 0;
    std::string path;
    FileFormat format;
    StripMeter meter;                          // as the engine answered last
    bool ended = false;                        // has played to its end
    std::shared_ptr<const Overview> overview;  // null until the file has been read
};

struct ConsoleState {
    std::vector<StripState> strips;  // in the order in which they were added
    OutputPeaks outputPeaks{};
    BarBeatTick place;
    double seconds = 0.0;               // since the transport started
    std::string outputName;             // of the device
    std::vector<ProgressLine> reading;  // waveforms that are being made
};

}  // namespace veltra::console
