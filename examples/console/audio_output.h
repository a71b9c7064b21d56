// SPDX-License-Identifier: MIT
// Where blocks of audio go: a device, or nowhere at the pace of one.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace veltra::console {

struct DeviceInfo {
    std::string id;                   // what --device and chooseDevice() take
    std::string name;                 // for people
    std::vector<std::int32_t> rates;  // frames a second
    bool isDefault = false;
};

class AudioOutput {
public:
    // Called on the output's audio thread for each block: fill `frames` frames of each output.
    using Callback = void (*)(void* context, float* const* outputs, std::uint32_t outputCount,
                              std::uint32_t frames) noexcept;

    AudioOutput() = default;
    AudioOutput(const AudioOutput&) = delete;
    AudioOutput& operator=(const AudioOutput&) = delete;
    virtual ~AudioOutput() = default;  // stops

    virtual std::string name() const = 0;
    virtual std::int32_t rate() const = 0;  // frames a second

    // Answers false when the output cannot run.
    virtual bool start(Callback callback, void* context) = 0;
    // When it returns, no callback is in progress, and none comes any more.
    virtual void stop() = 0;
    // False also when a device has gone away by itself.
    virtual bool isRunning() const = 0;
};

// Two channels to nowhere, in real time by the monotonic clock.
std::unique_ptr<AudioOutput> openNullOutput(std::int32_t rate);

// The default audio device, at `rate` if it can, else at its own. Null when there is none, or when
// the part of the console that knows devices is not installed; `problem` then says so in a line.
std::unique_ptr<AudioOutput> openDeviceOutput(std::int32_t rate, std::string& problem);

// The one function of that part, a module of its own: it pulls in the libraries of three sound
// systems, and only who wants to hear something should pay for loading them. Null when there is
// no usable device. The answer is owned by the caller.
inline constexpr char kOpenDeviceSymbol[] = "veltraConsoleOpenDevice";
using OpenDeviceFunction = AudioOutput* (*)(std::int32_t rate);

}  // namespace veltra::console
