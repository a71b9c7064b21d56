// SPDX-License-Identifier: MIT
// What a window shows of the console at one moment. It is made of a player that runs in real time,
// or of a rehearsal for a picture.
#pragma once

#include "engine.h"
#include "fold.h"
#include "overview.h"
#include "progress_board.h"

#include <array>
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
    std::vector<float> squares;                // mean squares since the last look, as meter.peaks
    double gainDecibels = 0.0;                 // kSilentDecibels or less: silent
    double pan = 0.0;                          // -1 left to 1 right; 0 leaves the file as it is
    bool muted = false;                        // by its own button
    bool soloed = false;                       // if any strip is, the others are not heard
    bool heard = true;                         // what comes of both
    bool ended = false;                        // the transport is beyond its end
    std::shared_ptr<const Overview> overview;  // grows while the file is read; null before that
};

struct ConsoleState {
    std::vector<StripState> strips;  // in the order in which they are shown

    // The transport. Each strip lies at its beginning.
    bool playing = false;
    std::int64_t position = 0;  // frames at `rate`
    double seconds = 0.0;       // the same
    BarBeatTick place;          // the same
    double tempo = 120.0;       // beats a minute
    int beatsPerBar = 4;
    int beatUnit = 4;  // 4: a beat is a quarter
    bool looping = false;
    std::int64_t loopBegin = 0;  // frames at `rate`
    std::int64_t loopEnd = 0;    // the first frame that is not played

    // The whole mix.
    std::array<float, 2> outputPeaks{};    // largest magnitudes since the last look
    std::array<float, 2> outputSquares{};  // mean squares since the last look
    double outputGainDecibels = 0.0;       // kSilentDecibels or less: silent
    double outputBalance = 0.0;            // -1 left to 1 right
    bool dimmed = false;                   // 20 dB down
    bool mono = false;

    // The device, or what plays in its place.
    std::string outputName;
    std::int32_t rate = 0;          // frames a second; 0: nothing has been played yet
    std::uint32_t blockFrames = 0;  // 0: unknown
    std::uint64_t deviceUnderruns = 0;

    std::vector<ProgressLine> reading;  // waveforms that are being made
};

}  // namespace veltra::console
