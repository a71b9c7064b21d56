// SPDX-License-Identifier: MIT
// A whole file at a glance: its waveform in a few hundred columns, and its onsets.
#pragma once

#include "audio_file.h"
#include "onset_detector.h"

#include <atomic>
#include <cstdint>
#include <functional>
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
    std::uint64_t frames = 0;  // of the whole file; 0 while that is not known
    int rate = 0;
    bool isComplete = false;  // the file has been read to its end
    CTransients onsets;       // as OnsetDetector answers them, once it is complete

    // That all of the file would have: those that are known are its beginning.
    std::size_t wholeColumns() const noexcept;
};

// Reads the file to its end, and tells the progress service how far it is. Null when `stop` becomes
// true before that, or who shows the progress asks to stop. On the way, up to a hundred times in a
// file, `growing` gets what is known so far.
// Thread: any.
using GrowingOverview = std::function<void(std::shared_ptr<const Overview>)>;
std::shared_ptr<const Overview> readOverview(AudioFile& file, const std::atomic<bool>& stop,
                                             const GrowingOverview& growing = {});

}  // namespace veltra::console
