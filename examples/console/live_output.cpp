// SPDX-License-Identifier: MIT
#include "live_output.h"

#include "veltra/platform/clock.h"

#include <algorithm>
#include <atomic>
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

// On a thread of its own, which stays behind when the work takes too long.
template <typename Work>
std::future<std::invoke_result_t<Work>> inBackground(Work work) {
    std::packaged_task<std::invoke_result_t<Work>()> task(std::move(work));
    auto result = task.get_future();
    std::thread(std::move(task)).detach();
    return result;
}

}  // namespace

namespace {

// Whether the output takes audio at all: one that is suspended can be opened, too.
bool provesItself(AudioOutput& output) {
    std::atomic<std::uint64_t> frames{0};
    const auto count = [](void* context, float* const* outputs, std::uint32_t outputCount,
                          std::uint32_t blockFrames) noexcept {
        for (std::uint32_t out = 0; out < outputCount; ++out)
            std::fill_n(outputs[out], blockFrames, 0.0F);
        static_cast<std::atomic<std::uint64_t>*>(context)->fetch_add(blockFrames);
        return true;
    };
    if (!output.start(count, &frames)) return false;
    const std::uint64_t enough = std::uint64_t{2} * static_cast<std::uint64_t>(output.rate()) / 5U;
    constexpr std::chrono::milliseconds kPause{20};
    for (int pauses = 0; frames.load() < enough && pauses < 100; ++pauses)
        std::this_thread::sleep_for(kPause);
    const bool isGood = frames.load() >= enough && output.isRunning();
    output.stop();
    return isGood;
}

}  // namespace

LiveOutput::LiveOutput(Device device, std::int32_t rate, std::string& notice, Opener opener)
    : m_device(std::move(device)),
      m_open(std::move(opener)),
      m_rate(m_device.rate > 0 ? m_device.rate : rate),
      m_pace(m_rate) {
    if (m_device.id != Device::Null.id) m_output = m_open(m_device, m_rate, notice);
    if (!m_output) {
        m_isLost = m_device.id != Device::Auto.id && m_device.id != Device::Null.id;
        const std::uint32_t block = m_device.blockFrames;
        m_output = openNullOutput(m_rate, block > 0 ? block : kUsualBlockFrames);
    }
    m_rate = m_output->rate();
    m_pace = PaceWatch(m_rate);
}

std::uint64_t LiveOutput::underruns() const {
    return m_underrunsBefore + (m_output ? m_output->underruns() : 0);
}

bool LiveOutput::play(Output output) {
    m_output = std::move(output);
    m_valve = std::make_shared<Valve>(*m_engine);
    m_pace = PaceWatch(m_rate);
    return m_output->start(&Valve::render, m_valve.get());
}

std::string LiveOutput::start(Engine& engine) {
    m_engine = &engine;
    if (play(std::move(m_output))) return {};
    std::string problem =
        m_output->name() + ": the audio device does not start; playing to no device";
    letGo();
    play(openNullOutput(m_rate));
    return problem;
}

// Takes the engine from the output that plays, and ends that. False, and it plays on, when its
// thread hangs in the middle of a block.
bool LiveOutput::letGo() {
    if (!m_valve->shut()) return false;
    m_underrunsBefore += m_output->underruns();
    auto ended = inBackground([output = std::shared_ptr<AudioOutput>(std::move(m_output)),
                               valve = std::move(m_valve)]() mutable {
        output->stop();
        output.reset();
        valve.reset();
    });
    ended.wait_for(kPatience);
    return true;
}

LiveOutput::News LiveOutput::keepRunning() {
    if (!m_valve) return {};
    if (m_attempt.valid()) return takeBack();
    if (m_isLost && now() >= m_nextAttempt) tryToReturn();
    const bool isRunning = m_output->isRunning();
    const Pace pace = m_pace.look(now(), m_valve->frames());
    if (isRunning && pace == Pace::Steady) return {};
    const std::string name = m_output->name();
    if (!letGo()) return {};
    play(openNullOutput(m_rate));
    m_isLost = true;
    m_nextAttempt = now() + seconds(kSecondsBetweenAttempts);
    const std::string what = !isRunning             ? "has stopped"
                             : pace == Pace::Stands ? "stands still"
                                                    : "runs away";
    return {name + ": the audio device " + what + "; playing to no device", true};
}

void LiveOutput::tryToReturn() {
    m_attempt = inBackground([open = m_open, device = m_device, rate = m_rate] {
        std::string ignored;
        Output output = open(device, rate, ignored);
        return output && output->rate() == rate && provesItself(*output) ? std::move(output)
                                                                         : Output();
    });
}

// Looks whether the attempt has ended, and how.
LiveOutput::News LiveOutput::takeBack() {
    if (m_attempt.wait_for(std::chrono::seconds(0)) != std::future_status::ready) return {};
    Output output = m_attempt.get();
    m_nextAttempt = now() + seconds(kSecondsBetweenAttempts);
    if (!output || !letGo()) return {};
    const std::string name = output->name();
    if (play(std::move(output))) {
        m_isLost = false;
        return {name + ": the audio device is back", false};
    }
    letGo();
    play(openNullOutput(m_rate));
    return {};
}

std::string LiveOutput::change(const Device& device) {
    std::string problem;
    Output output;
    if (device.id == Device::Null.id) {
        output =
            openNullOutput(m_rate, device.blockFrames > 0 ? device.blockFrames : kUsualBlockFrames);
    } else {
        output = m_open(device, m_rate, problem);
    }
    if (!output) return problem;
    if (output->rate() != m_rate)
        return output->name() + ": the audio device cannot play at " + std::to_string(m_rate) +
               " Hz; choose another rate";
    if (!letGo()) return m_output->name() + ": the audio device hangs; try again";
    m_device = device;
    m_isLost = false;
    m_attempt = {};
    return play(std::move(output)) ? std::string() : start(*m_engine);
}

void LiveOutput::stop() {
    if (!m_valve) return;
    // Twice the fade, and the blocks in which it lies.
    const auto fade = static_cast<std::uint64_t>(2 * Glide::framesAt(m_rate)) +
                      std::uint64_t{2} * m_output->blockFrames();
    m_engine->setPlaying(false);
    const std::uint64_t until = m_valve->frames() + fade;
    constexpr std::chrono::milliseconds kPause{2};
    constexpr int kMostPauses = 60;
    for (int pauses = 0; m_valve->frames() < until && pauses < kMostPauses; ++pauses)
        std::this_thread::sleep_for(kPause);
    letGo();
}

}  // namespace veltra::console
