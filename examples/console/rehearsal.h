// SPDX-License-Identifier: MIT
// Files played offline, all together from the start, in steps as long as a picture of a film: for
// front ends that draw what the engine does without waiting for real time. Two rehearsals of the
// same files go alike to the last bit.
#pragma once

#include "engine.h"

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace veltra::console {

// Thread: one at a time, which is the engine's main and audio thread at once. Realtime-safe: no.
class Rehearsal {
public:
    static constexpr std::int64_t kStepsPerSecond = 60;

    struct Problem {
        std::string path;
        std::string text;  // one line for the user
    };

    // Opens the files and adds them to the engine, in this order. The first that can be opened
    // gives the rate of the transport; all others are resampled to it.
    explicit Rehearsal(std::span<const std::string> paths);

    // The files that could not be opened.
    const std::vector<Problem>& problems() const noexcept { return m_problems; }

    // Plays the next step. Answers false, and does nothing, when every file has been played; the
    // last step may reach beyond the end. Strips that have ended stay in the engine until the
    // caller collects them.
    bool step();

    std::int64_t stepsDone() const noexcept { return m_stepsDone; }
    // How many it will be about, by what the files announce; 0 when one of them does not say.
    std::int64_t stepsExpected() const noexcept { return m_stepsExpected; }

    // For meters, muting, positions and collect(). Not for feed() and processBlock(); what is added
    // plays from the next step on.
    Engine& engine() noexcept { return m_engine; }
    std::int32_t rate() const noexcept { return m_rate; }  // the transport's, in frames a second

    // The sum of the squares of the last step's output, both channels together.
    double stepEnergy() const noexcept { return m_stepEnergy; }

private:
    struct Opened {
        std::vector<std::unique_ptr<AudioFile>> files;
        std::vector<Problem> problems;
    };

    static Opened open(std::span<const std::string> paths);
    static std::int64_t stepsOf(const Opened& opened);
    explicit Rehearsal(Opened opened);
    void play(std::uint32_t frames);

    const std::vector<Problem> m_problems;
    const std::int32_t m_rate;
    const std::int64_t m_stepsExpected;
    Engine m_engine;
    std::array<std::vector<float>, 2> m_output;  // a piece of a step
    std::int64_t m_stepsDone = 0;
    double m_stepEnergy = 0.0;
};

// Called once for every second of audio, with Rehearsal's stepsDone() and stepsExpected(). False
// ends the search.
using RehearsalProgress = std::function<bool(std::int64_t done, std::int64_t expected)>;

// Rehearses the files to the end and answers stepsDone() as it stands after the loudest step, so at
// least 1. Loudness is the mean square of the mix over 1/10 second, about what the ear takes for
// one sound: a click of a single sample is no loud moment, however high its peak. In the loudest
// tenth it is the step with the most energy, where the meters stand highest. Of equals the first.
// Nothing when no file can be opened, or when `progress`, which may be empty, says stop.
std::optional<std::int64_t> loudestStep(std::span<const std::string> paths,
                                        const RehearsalProgress& progress = {});

}  // namespace veltra::console
