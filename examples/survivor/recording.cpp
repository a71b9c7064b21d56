// SPDX-License-Identifier: MIT
#include "recording.h"

#include "../console/audio_file.h"
#include "veltra/memory/low_memory_notification_center.h"

#include <algorithm>
#include <vector>

namespace veltra::survivor {

Recording loadRecording(const std::string& path, std::string& problem) {
    const auto file = console::AudioFile::open(path, problem);
    if (file == nullptr) return {};

    const auto fileChannels = static_cast<std::size_t>(file->format().channels);
    Recording recording;
    recording.channels = std::min<std::size_t>(fileChannels, 2);
    recording.frames = static_cast<std::size_t>(file->format().frames);
    LowMemoryNotificationCenter::CheckPoint(recording.bytes());
    recording.samples = takeBlock<float>(recording.channels * recording.frames);
    if (recording.samples == nullptr) {
        problem = "memory is out";
        return {};
    }

    std::vector<float> chunk(fileChannels * console::kChunkFrames);
    std::vector<float*> places;
    for (std::size_t channel = 0; channel < fileChannels; ++channel)
        places.push_back(chunk.data() + channel * console::kChunkFrames);
    std::size_t done = 0;
    while (done < recording.frames) {
        const std::size_t wanted = std::min(recording.frames - done, console::kChunkFrames);
        const std::size_t got = file->read(places.data(), wanted);
        if (got == 0) break;
        for (std::size_t channel = 0; channel < recording.channels; ++channel)
            std::copy_n(places[channel], got,
                        recording.samples.get() + channel * recording.frames + done);
        done += got;
    }
    std::fill(recording.samples.get() + done, recording.samples.get() + recording.frames, 0.0F);
    return recording;
}

}  // namespace veltra::survivor
