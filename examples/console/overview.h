// SPDX-License-Identifier: MIT
// A whole file at a glance: its waveform in a few hundred columns, and its onsets.
#pragma once

#include "audio_file.h"
#include "onset_detector.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <vector>

namespace veltra::console {

struct Overview {
    struct Column {
        float low = 0.0F;
        float high = 0.0F;
    };
    std::vector<Column>
        columns;  // of the mean of all channels; each stands for equally many frames
    std::uint64_t columnFrames = 1;
    std::uint64_t frames = 0;  // of the file
    int rate = 0;
    CTransients onsets;  // as OnsetDetector answers them
};

// Reads the file to its end, and tells the progress service how far it is. Null when `stop` becomes
// true before that, or who shows the progress asks to stop.
// Thread: any.
std::shared_ptr<const Overview> readOverview(AudioFile& file, const std::atomic<bool>& stop);

}  // namespace veltra::console
