// SPDX-License-Identifier: MIT
// Keeps an engine playing: on the device that was asked for while it works, else to no device until
// it works again.
#pragma once

#include "audio_output.h"
#include "engine.h"
#include "pace_watch.h"
#include "valve.h"

#include <functional>
#include <future>
#include <memory>
#include <string>

namespace veltra::console {

// Thread: main. Everything that goes wrong is told in one line, on which playing goes on. Nothing
// here waits for a device that hangs for more than half a second and four of its blocks; its thread
// stays behind.
class LiveOutput {
public:
    // As openDeviceOutput(); called on other threads, too.
    using Opener = std::function<std::unique_ptr<AudioOutput>(
        const Device& device, std::int32_t rate, std::string& problem)>;

    // What happened by itself, or otherwise than it was asked for.
    struct News {
        std::string text;  // one line, or empty
        bool isProblem = false;
    };

    // Opens the output, at the device's wanted rate, else preferably at `rate`; nothing plays yet.
    // `notice` tells why there is no device, a problem if it was asked for by name, or that it does
    // not play at the wanted rate.
    LiveOutput(Device device, std::int32_t rate, News& notice, Opener opener = openDeviceOutput);
    LiveOutput(const LiveOutput&) = delete;
    LiveOutput& operator=(const LiveOutput&) = delete;
    ~LiveOutput() { stop(); }

    std::int32_t rate() const { return m_rate; }  // stays the same
    std::string name() const { return m_playing.output ? m_playing.output->name() : std::string(); }
    std::uint32_t blockFrames() const {
        return m_playing.output ? m_playing.output->blockFrames() : 0;
    }
    std::uint64_t underruns() const;  // of all devices so far

    // Plays the engine, which must live until stop(). Answers an empty text or a problem.
    std::string start(Engine& engine);

    // Notices within two seconds when the device has gone away, stands still or runs away, and goes
    // on without one; then tries every two seconds to have it back. Call it ten times a second.
    News keepRunning();

    // Goes on with another device, or with other settings, at the same rate. Answers an empty text,
    // or why everything stays as it is.
    std::string change(const Device& device);

    // The transport stops with its fade, then the output.
    void stop();

private:
    using Output = std::unique_ptr<AudioOutput>;
    struct Playing {
        std::unique_ptr<Valve> valve;  // outlives the output
        Output output;
        bool isRunning = false;
    };

    static Playing begin(Output output, Engine& engine);
    Playing beginOn(const Device& device, std::string& problem);
    static bool provesItself(const Playing& playing);
    bool play(Playing playing);
    void playWithoutDevice();
    bool letGo(double blocks = 0.0);
    void tryToReturn();
    News takeBack();

    Device m_device;
    const Opener m_open;
    Playing m_playing;
    std::int32_t m_rate;
    Engine* m_engine = nullptr;
    PaceWatch m_pace;
    bool m_playsDevice = false;  // and not the null output
    bool m_isLost = false;       // the device that is wanted is not there, but may come
    Moment m_nextAttempt;
    std::future<Playing> m_attempt;  // to have it back
    std::uint64_t m_underrunsBefore = 0;
};

}  // namespace veltra::console
