// SPDX-License-Identifier: MIT
// A device that does what its world says, also what no device should do.
#pragma once

#include "../audio_output.h"

#include <array>
#include <atomic>
#include <chrono>
#include <thread>

namespace veltra::console::testing {

struct World {
    std::atomic<int> speed{1};  // blocks in the time of one; 0: stands still, -1: ends by itself
    std::atomic<bool> isThere{true};
    std::atomic<bool> starts{true};
    std::atomic<bool> hangs{false};  // in stop()
    std::atomic<int> rate{48000};
};

class FakeOutput : public AudioOutput {
public:
    FakeOutput(std::shared_ptr<const World> world, std::string name, std::int32_t rate,
               std::uint32_t blockFrames)
        : m_world(std::move(world)), m_name(std::move(name)), m_rate(rate), m_block(blockFrames) {}
    ~FakeOutput() override { stop(); }
    std::string name() const override { return m_name; }
    std::int32_t rate() const override { return m_rate; }
    std::uint32_t blockFrames() const override { return m_block; }
    std::uint64_t underruns() const override { return 3; }
    bool isRunning() const override { return m_isRunning; }
    bool start(Callback callback, void* context) override {
        if (!m_world->starts) return false;
        m_isRunning = true;
        m_thread = std::jthread([=, this](const std::stop_token& stop) {
            std::vector<float> samples(std::size_t{2} * m_block);
            const std::array<float*, 2> outputs{samples.data(), samples.data() + m_block};
            bool isWanted = true;
            while (isWanted && !stop.stop_requested() && m_world->speed >= 0) {
                for (int i = 0; i < m_world->speed && isWanted; ++i)
                    isWanted = callback(context, outputs.data(), 2, m_block);
                std::this_thread::sleep_for(std::chrono::duration<double>(m_block) / m_rate);
            }
            m_isRunning = false;
        });
        return true;
    }
    void stop() override {
        while (m_world->hangs)
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        m_thread = {};
    }

private:
    const std::shared_ptr<const World> m_world;
    const std::string m_name;
    const std::int32_t m_rate;
    const std::uint32_t m_block;
    std::atomic<bool> m_isRunning{false};
    std::jthread m_thread;
};

}  // namespace veltra::console::testing
