// SPDX-License-Identifier: MIT
#include "rehearsal.h"

#include <algorithm>
#include <numeric>

namespace veltra::console {

namespace {

constexpr std::int32_t kRateOfNothing = 44100;
constexpr std::size_t kWindowSteps = Rehearsal::kStepsPerSecond / 10;

}  // namespace

Rehearsal::Rehearsal(std::span<const std::string> paths) : Rehearsal(open(paths)) {}

Rehearsal::Opened Rehearsal::open(std::span<const std::string> paths) {
    Opened opened;
    for (const std::string& path : paths) {
        std::string problem;
        if (auto file = AudioFile::open(path, problem)) {
            opened.files.push_back(std::move(file));
        } else {
            opened.problems.push_back({path, std::move(problem)});
        }
    }
    return opened;
}

std::int64_t Rehearsal::stepsOf(const Opened& opened) {
    double seconds = 0.0;
    for (const auto& file : opened.files) {
        const FileFormat& format = file->format();
        if (format.lengthUnknown) return 0;
        seconds = std::max(seconds, static_cast<double>(format.frames) / format.rate);
    }
    return opened.files.empty() ? 0 : static_cast<std::int64_t>(seconds * kStepsPerSecond) + 1;
}

Rehearsal::Rehearsal(Opened opened)
    : m_problems(std::move(opened.problems)),
      m_rate(opened.files.empty() ? kRateOfNothing : opened.files.front()->format().rate),
      m_stepsExpected(stepsOf(opened)),
      m_engine(Engine::Feeding::ByCallerResampled, m_rate) {
    for (auto& file : opened.files)
        m_engine.add(std::move(file));
    for (auto& channel : m_output)
        channel.resize(kChunkFrames);
}

// Steps begin at the frame nearest below their time, so that rounding never adds up. A step of a
// rate beyond half a million is more than the rings hold, and goes in pieces.
bool Rehearsal::step() {
    if (m_engine.isDrained()) return false;
    m_stepEnergy = 0.0;
    ++m_stepsDone;
    std::int64_t left = m_stepsDone * m_rate / kStepsPerSecond - m_engine.position();
    while (left > 0) {
        const std::int64_t piece = std::min<std::int64_t>(left, kChunkFrames);
        play(static_cast<std::uint32_t>(piece));
        left -= piece;
    }
    return true;
}

void Rehearsal::play(std::uint32_t frames) {
    const std::array<float*, 2> outputs{m_output[0].data(), m_output[1].data()};
    m_engine.feed(frames);
    m_engine.processBlock(outputs.data(), outputs.size(), frames);
    for (float* samples : outputs)
        m_stepEnergy += measure(samples, frames, 1.0F).sumOfSquares;
}

std::optional<std::int64_t> loudestStep(std::span<const std::string> paths,
                                        const RehearsalProgress& progress) {
    Rehearsal rehearsal(paths);
    std::optional<std::int64_t> loudest;
    double most = -1.0;
    std::array<double, kWindowSteps> window{};  // the last steps, the latest at the end
    while (rehearsal.step()) {
        const std::int64_t done = rehearsal.stepsDone();
        std::rotate(window.begin(), window.begin() + 1, window.end());
        window.back() = rehearsal.stepEnergy();
        const double energy = std::accumulate(window.begin(), window.end(), 0.0);
        if (energy > most) {
            most = energy;
            // Before the first step there was silence, which must not win against more of it.
            const auto best = std::max_element(window.begin(), window.end());
            loudest = std::max<std::int64_t>(1, done - (window.end() - 1 - best));
        }
        if (progress && done % Rehearsal::kStepsPerSecond == 0 &&
            !progress(done, rehearsal.stepsExpected())) {
            return std::nullopt;
        }
    }
    return loudest;
}

}  // namespace veltra::console
