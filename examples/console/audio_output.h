// SPDX-License-Identifier: MIT
// Where blocks of audio go: a device, or nowhere at the pace of one.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace veltra::console {

// A device there is.
struct DeviceInfo {
    std::string id;                   // what --device and chooseDevice() take
    std::string name;                 // for people
    std::vector<std::int32_t> rates;  // frames a second
    bool isDefault = false;
};

// A device that is wanted.
struct Device {
    static const Device Auto;  // the default device, or none when there is no device
    static const Device Null;  // none: silence at the pace of real time

    std::string id = "auto";  // also "null", the id or name of a device, or a part of its name
    std::int32_t rate = 0;    // frames a second; 0: whatever suits
    std::uint32_t blockFrames = 0;  // 0: 512, or what the device likes
};

inline const Device Device::Auto{};
inline const Device Device::Null{"null", 0, 0};

inline constexpr std::uint32_t kUsualBlockFrames = 512;

class AudioOutput {
public:
    // Called on the output's audio thread for each block: fill `frames` frames of each output.
    // False: no more is wanted, and the output may end.
    using Callback = bool (*)(void* context, float* const* outputs, std::uint32_t outputCount,
                              std::uint32_t frames) noexcept;

    AudioOutput() = default;
    AudioOutput(const AudioOutput&) = delete;
    AudioOutput& operator=(const AudioOutput&) = delete;
    virtual ~AudioOutput() = default;  // stops

    virtual std::string name() const = 0;
    virtual std::int32_t rate() const = 0;  // frames a second
    virtual std::uint32_t blockFrames() const = 0;

    // Answers false when the output cannot run.
    virtual bool start(Callback callback, void* context) = 0;
    // What was rendered is played. When it returns, no callback is in progress, and none comes any
    // more. A device that hangs may keep it for ever.
    virtual void stop() = 0;
    // False when the output knows that it has ended by itself. A device that is gone may go on
    // without knowing: see PaceWatch.
    virtual bool isRunning() const = 0;

    // How often the device got a block too late. Thread: any.
    virtual std::uint64_t underruns() const { return 0; }
};

// Two channels to nowhere, in real time by the monotonic clock. Having been late by more than a
// block, as after a sleep of the machine, it goes on from there.
std::unique_ptr<AudioOutput> openNullOutput(std::int32_t rate,
                                            std::uint32_t blockFrames = kUsualBlockFrames);

// The device that is wanted, at its rate, else at `rate`, else at the device's own. Null when there
// is none, or when the part of the console that knows devices is not installed; `problem` then says
// so in a line.
std::unique_ptr<AudioOutput> openDeviceOutput(const Device& device, std::int32_t rate,
                                              std::string& problem);

// All devices of all sound systems. May take a second.
std::vector<DeviceInfo> listDevices();

// The functions of that part, a module of its own: it pulls in the libraries of three sound
// systems, and only who wants to hear something should pay for loading them. The first answers null
// when there is no such usable device; what it answers is owned by the caller.
inline constexpr char kOpenDeviceSymbol[] = "veltraConsoleOpenDevice";
inline constexpr char kListDevicesSymbol[] = "veltraConsoleListDevices";
using OpenDeviceFunction = AudioOutput* (*)(const Device& device, std::int32_t rate);
using ListDevicesFunction = void (*)(std::vector<DeviceInfo>& devices);

}  // namespace veltra::console
