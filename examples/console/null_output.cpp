// SPDX-License-Identifier: MIT
#include "audio_output.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <thread>
#include <vector>

#include <time.h>

namespace veltra::console {

namespace {

constexpr std::uint32_t kOutputs = 2;
constexpr std::int64_t kSecond = 1'000'000'000;

class NullOutput final : public AudioOutput {
public:
    NullOutput(std::int32_t rate, std::uint32_t blockFrames)
        : m_rate(rate), m_blockFrames(blockFrames) {}
    ~NullOutput() override { stop(); }

    std::string name() const override { return "no device"; }
    std::int32_t rate() const override { return m_rate; }
    std::uint32_t blockFrames() const override { return m_blockFrames; }
    bool isRunning() const override { return m_thread.joinable(); }

    bool start(Callback callback, void* context) override {
        if (m_thread.joinable()) return true;
        m_stopping.store(false, std::memory_order_relaxed);
        m_thread = std::thread([this, callback, context] { run(callback, context); });
        return true;
    }

    void stop() override {
        m_stopping.store(true, std::memory_order_relaxed);
        if (m_thread.joinable()) m_thread.join();
    }

private:
    // Deadlines are absolute and computed from the count of blocks, so that neither the time a
    // block takes nor rounding adds up. Who has been late by more than a block begins to count
    // anew: nobody wants to have the time made up for that the machine has slept.
    void run(Callback callback, void* context) const {
        std::vector<float> samples(std::size_t{kOutputs} * m_blockFrames);
        const std::array<float*, kOutputs> outputs{samples.data(), samples.data() + m_blockFrames};
        const std::int64_t blockTime = kSecond * m_blockFrames / m_rate;
        std::int64_t start = now();
        std::int64_t frames = 0;
        while (!m_stopping.load(std::memory_order_relaxed) &&
               callback(context, outputs.data(), kOutputs, m_blockFrames)) {
            frames += m_blockFrames;
            const std::int64_t deadline =
                start + frames / m_rate * kSecond + frames % m_rate * kSecond / m_rate;
            if (now() - deadline > blockTime) {
                start = now();
                frames = 0;
            } else {
                sleepUntil(deadline);
            }
        }
    }

    // Nanoseconds of the monotonic clock.
    static std::int64_t now() {
        timespec time{};
        clock_gettime(CLOCK_MONOTONIC, &time);
        return time.tv_sec * kSecond + time.tv_nsec;
    }

    static void sleepUntil(std::int64_t moment) {
        timespec deadline{};
        deadline.tv_sec = static_cast<time_t>(moment / kSecond);
        deadline.tv_nsec = static_cast<long>(moment % kSecond);
        while (clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &deadline, nullptr) == EINTR) {
        }
    }

    const std::int32_t m_rate;
    const std::uint32_t m_blockFrames;
    std::atomic<bool> m_stopping{false};  // set by the main, read by the audio thread
    std::thread m_thread;
};

}  // namespace

std::unique_ptr<AudioOutput> openNullOutput(std::int32_t rate, std::uint32_t blockFrames) {
    return std::make_unique<NullOutput>(rate, blockFrames);
}

}  // namespace veltra::console
