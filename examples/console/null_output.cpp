// SPDX-License-Identifier: MIT
#include "audio_output.h"

#include <array>
#include <atomic>
#include <thread>
#include <vector>

#include <time.h>

namespace veltra::console {

namespace {

constexpr std::uint32_t kBlockFrames = 512;
constexpr std::uint32_t kOutputs = 2;
constexpr std::int64_t kSecond = 1'000'000'000;

class NullOutput final : public AudioOutput {
public:
    explicit NullOutput(std::int32_t rate) : m_rate(rate) {}
    ~NullOutput() override { stop(); }

    std::string name() const override { return "no device"; }
    std::int32_t rate() const override { return m_rate; }
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
    // block takes nor rounding adds up.
    void run(Callback callback, void* context) const {
        std::vector<float> samples(std::size_t{kOutputs} * kBlockFrames);
        const std::array<float*, kOutputs> outputs{samples.data(), samples.data() + kBlockFrames};
        timespec start{};
        clock_gettime(CLOCK_MONOTONIC, &start);
        for (std::int64_t block = 1; !m_stopping.load(std::memory_order_relaxed); ++block) {
            callback(context, outputs.data(), kOutputs, kBlockFrames);
            const std::int64_t frames = block * kBlockFrames;
            const std::int64_t nanoseconds = start.tv_nsec + frames % m_rate * kSecond / m_rate;
            timespec deadline{};
            deadline.tv_sec = start.tv_sec + frames / m_rate + nanoseconds / kSecond;
            deadline.tv_nsec = nanoseconds % kSecond;
            while (clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &deadline, nullptr) == EINTR) {
            }
        }
    }

    const std::int32_t m_rate;
    std::atomic<bool> m_stopping{false};  // set by the main, read by the audio thread
    std::thread m_thread;
};

}  // namespace

std::unique_ptr<AudioOutput> openNullOutput(std::int32_t rate) {
    return std::make_unique<NullOutput>(rate);
}

}  // namespace veltra::console
