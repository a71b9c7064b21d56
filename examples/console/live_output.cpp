// SPDX-License-Identifier: MIT
#include "live_output.h"

#include "background.h"
#include "veltra/platform/clock.h"

#include <algorithm>
#include <chrono>
#include <thread>
#include <utility>

namespace veltra::console {

namespace {

constexpr double kSecondsBetweenAttempts = 2.0;
constexpr std::chrono::milliseconds kPatience{300};  // with a device that ends

Moment now() {
    return Clocks::current().monotonic().moment();
}

}  // namespace

// Whether the output comes to take audio at about the right pace. One that is suspended can be
// opened, too, and fills its buffers; others need a while to begin.
bool LiveOutput::provesItself(const Playing& playing) {
    constexpr double kLook = 0.5;  // seconds
    constexpr int kLooks = 8;
    std::uint64_t before = 0;
    for (int look = 0; look < kLooks && playing.output->isRunning(); ++look) {
        std::this_thread::sleep_for(std::chrono::duration<double>(kLook));
        const std::uint64_t frames = playing.valve->frames();
        const double played = static_cast<double>(frames - before) / playing.output->rate();
        before = frames;
        if (look > 0 && played > kLook / 2 && played < kLook * 2) return true;
    }
    return false;
}

LiveOutput::LiveOutput(Device device, std::int32_t rate, News& notice, Opener opener)
    : m_device(std::move(device)),
      m_open(std::move(opener)),
      m_rate(m_device.rate > 0 ? m_device.rate : rate),
      m_pace(m_rate, 0) {
    if (m_device.id != Device::Null.id) m_playing.output = m_open(m_device, rate, notice.text);
    m_playsDevice = m_playing.output != nullptr;
    if (!m_playsDevice) {
        notice.isProblem = m_isLost =
            m_device.id != Device::Auto.id && m_device.id != Device::Null.id;
        const std::uint32_t block = m_device.blockFrames;
        m_playing.output = openNullOutput(m_rate, block > 0 ? block : kUsualBlockFrames);
    }
    m_rate = m_playing.output->rate();
    if (m_device.rate > 0 && m_rate != m_device.rate) {
        notice.text = name() + ": the audio device cannot play at " +
                      std::to_string(m_device.rate) + " Hz; playing at " + std::to_string(m_rate) +
                      " Hz";
    }
}

std::uint64_t LiveOutput::underruns() const {
    return m_underrunsBefore + (m_playing.output ? m_playing.output->underruns() : 0);
}

// Starts the output, which gets silence for the time being.
LiveOutput::Playing LiveOutput::begin(Output output, Engine& engine) {
    Playing playing;
    playing.output = std::move(output);
    playing.valve =
        std::make_unique<Valve>(engine, playing.output->rate(), playing.output->blockFrames());
    playing.isRunning = playing.output->start(&Valve::render, playing.valve.get());
    return playing;
}

// The engine may be an output's only when the one before is gone.
bool LiveOutput::play(Playing playing) {
    m_playing = std::move(playing);
    m_pace = PaceWatch(m_rate, blockFrames());
    if (m_playing.isRunning) m_playing.valve->open();
    return m_playing.isRunning;
}

std::string LiveOutput::start(Engine& engine) {
    m_engine = &engine;
    if (play(begin(std::move(m_playing.output), engine))) return {};
    std::string problem = name() + ": the audio device does not start; playing to no device";
    letGo();
    playWithoutDevice();
    return problem;
}

void LiveOutput::playWithoutDevice() {
    play(begin(openNullOutput(m_rate), *m_engine));
    m_playsDevice = false;
    m_isLost = true;
    m_nextAttempt = now() + seconds(kSecondsBetweenAttempts);
}

// Takes the engine from the output that plays, and ends that. False, and it plays on, when its
// thread hangs in the middle of a block. One that ends in order may need a few blocks' time for it.
bool LiveOutput::letGo(double blocks) {
    if (m_playing.isRunning && !m_playing.valve->shut()) return false;
    const std::chrono::duration<double> more(blocks * blockFrames() / m_rate);
    m_underrunsBefore += m_playing.output->underruns();
    auto ended = inBackground([playing = std::exchange(m_playing, {})]() mutable {
        playing.output->stop();
        playing.output.reset();  // before its valve
    });
    ended.wait_for(kPatience + more);
    return true;
}

LiveOutput::News LiveOutput::keepRunning() {
    if (!m_playing.valve) return {};
    if (m_attempt.valid()) return takeBack();
    if (m_isLost && now() >= m_nextAttempt) tryToReturn();
    const bool isRunning = m_playing.output->isRunning();
    const Pace pace = m_pace.look(now(), m_playing.valve->frames());
    if (isRunning && pace == Pace::Steady) return {};
    const std::string before = name();
    if (!letGo()) return {};
    playWithoutDevice();
    const std::string what = !isRunning             ? "has stopped"
                             : pace == Pace::Stands ? "stands still"
                                                    : "runs away";
    return {before + ": the audio device " + what + "; playing to no device", true};
}

void LiveOutput::tryToReturn() {
    m_attempt = inBackground([open = m_open, device = m_device, rate = m_rate, engine = m_engine] {
        std::string ignored;
        Output output = open(device, rate, ignored);
        if (!output || output->rate() != rate) return Playing();
        Playing playing = begin(std::move(output), *engine);
        return playing.isRunning && provesItself(playing) ? std::move(playing) : Playing();
    });
}

// Looks whether the attempt has ended, and how.
LiveOutput::News LiveOutput::takeBack() {
    if (!isReady(m_attempt)) return {};
    Playing playing = m_attempt.get();
    m_nextAttempt = now() + seconds(kSecondsBetweenAttempts);
    if (!playing.output || !letGo()) return {};
    play(std::move(playing));
    m_playsDevice = true;
    m_isLost = false;
    return {name() + ": the audio device is back", false};
}

// Not running, with the reason in `problem`, when the device cannot be had; without an output when
// it did not even open.
LiveOutput::Playing LiveOutput::beginOn(const Device& device, std::string& problem) {
    Output output;
    if (device.id == Device::Null.id) {
        output =
            openNullOutput(m_rate, device.blockFrames > 0 ? device.blockFrames : kUsualBlockFrames);
    } else {
        output = m_open(device, m_rate, problem);
    }
    if (!output) return {};
    if (output->rate() != m_rate) {
        problem = output->name() + ": the audio device cannot play at " + std::to_string(m_rate) +
                  " Hz; choose another rate";
        return {nullptr, std::move(output), false};
    }
    Playing playing = begin(std::move(output), *m_engine);
    if (!playing.isRunning)
        problem = playing.output->name() + ": the audio device does not start; choose another";
    return playing;
}

// Both play for a moment, so that the old one goes on where the new one does not start. But many
// devices play one stream only: with other settings such a one opens when the old stream has gone,
// and until then another may answer to what it is called by.
std::string LiveOutput::change(const Device& device) {
    std::string problem;
    Playing playing = beginOn(device, problem);
    if (m_playsDevice && device.id == m_device.id && playing.output &&
        playing.output->name() != name()) {
        inBackground([other = std::exchange(playing, {})]() mutable {
            other.output.reset();  // before its valve
        }).wait_for(kPatience);
    }
    const bool maybeSame =
        device.id == m_device.id || device.id == Device::Auto.id || m_device.id == Device::Auto.id;
    const bool isInTheWay = playing.output == nullptr && maybeSame && m_playsDevice;
    if (!playing.isRunning && !isInTheWay) return problem;
    constexpr double kBuffered = 4.0;  // blocks that a device plays before it ends
    if (!letGo(isInTheWay ? kBuffered : 0.0)) return name() + ": the audio device hangs; try again";
    if (isInTheWay) playing = beginOn(device, problem);
    if (!playing.isRunning) {
        playing = {};
        std::string ignored;
        playing = beginOn(m_device, ignored);
        if (playing.isRunning) {
            play(std::move(playing));
        } else {
            playWithoutDevice();
        }
        return problem;
    }
    m_device = device;
    m_playsDevice = device.id != Device::Null.id;
    m_isLost = false;
    m_attempt = {};
    play(std::move(playing));
    return {};
}

void LiveOutput::stop() {
    if (!m_playing.valve) return;
    // Twice the fade, or the block that is in progress and the one in which the fade lies.
    const auto fade = std::max<std::uint64_t>(2 * Glide::framesAt(m_rate), 2 * blockFrames());
    m_engine->setPlaying(false);
    m_engine->instrument().silence();
    const std::uint64_t until = m_playing.valve->frames() + fade;
    constexpr std::chrono::milliseconds kPause{2};
    const int mostPauses = 60 + static_cast<int>(fade * 500 / static_cast<std::uint64_t>(m_rate));
    for (int pauses = 0; m_playing.valve->frames() < until && pauses < mostPauses; ++pauses)
        std::this_thread::sleep_for(kPause);
    letGo();
}

}  // namespace veltra::console
