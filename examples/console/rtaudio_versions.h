// SPDX-License-Identifier: MIT
// What RtAudio 5 and RtAudio 6 do differently: 5 numbers its devices and throws, 6 gives them ids
// and returns its errors. Both are silent here: neither writes to standard error.
#pragma once

#include <memory>
#include <numeric>
#include <string>
#include <vector>

#include <rtaudio/RtAudio.h>

namespace veltra::console {

// What a stream plays; the frames of a block come back as the device has them.
struct RtStream {
    RtAudio::StreamParameters output;
    unsigned rate;
    unsigned frames;
    RtAudioCallback render;
    void* userData;
    RtAudio::StreamOptions options;
};

#ifdef RTAUDIO_VERSION_MAJOR  // since 6

inline std::unique_ptr<RtAudio> connectTo(RtAudio::Api system) {
    auto rtAudio = std::make_unique<RtAudio>(system, [](RtAudioErrorType, const std::string&) {});
    rtAudio->showWarnings(false);
    return rtAudio;
}

inline std::vector<unsigned> deviceIds(RtAudio& rtAudio) {
    return rtAudio.getDeviceIds();
}

inline bool canPlay(const RtAudio::DeviceInfo& device) {
    return device.outputChannels > 0;
}

inline bool openStream(RtAudio& rtAudio, RtStream& stream) {
    return rtAudio.openStream(&stream.output, nullptr, RTAUDIO_FLOAT32, stream.rate, &stream.frames,
                              stream.render, stream.userData, &stream.options) <= RTAUDIO_WARNING;
}

inline bool startStream(RtAudio& rtAudio) {
    return rtAudio.startStream() <= RTAUDIO_WARNING;
}

#else

inline std::unique_ptr<RtAudio> connectTo(RtAudio::Api system) {
    auto rtAudio = std::make_unique<RtAudio>(system);
    rtAudio->showWarnings(false);
    return rtAudio;
}

inline std::vector<unsigned> deviceIds(RtAudio& rtAudio) {
    std::vector<unsigned> numbers(rtAudio.getDeviceCount());
    std::iota(numbers.begin(), numbers.end(), 0U);
    return numbers;
}

inline bool canPlay(const RtAudio::DeviceInfo& device) {
    return device.probed && device.outputChannels > 0;
}

inline bool openStream(RtAudio& rtAudio, RtStream& stream) {
    rtAudio.openStream(&stream.output, nullptr, RTAUDIO_FLOAT32, stream.rate, &stream.frames,
                       stream.render, stream.userData, &stream.options,
                       [](RtAudioError::Type, const std::string&) {});
    return true;
}

inline bool startStream(RtAudio& rtAudio) {
    rtAudio.startStream();
    return true;
}

#endif

}  // namespace veltra::console
