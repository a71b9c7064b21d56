// SPDX-License-Identifier: MIT
// Voices that come and go while an audio thread plays them: CallbackList.
//
// The audio thread only ever iterates. The main thread adds and removes voices at any time, and
// destroys a removed voice when its ticket says that the audio thread is done with it.
#include "veltra/audio/callback_list.h"
#include "veltra/audio/musical_context.h"

#include <array>
#include <atomic>
#include <cmath>
#include <cstdio>
#include <memory>
#include <thread>

namespace {

constexpr std::size_t kBlockFrames = 256;

struct Block {
    std::array<float, kBlockFrames> samples{};
};

struct Voice {
    explicit Voice(double hertz) : step(hertz * 6.283185307179586 / 44100.0) {}

    static void render(void* context, std::uint32_t, void* data) {
        auto& voice = *static_cast<Voice*>(context);
        for (float& sample : static_cast<Block*>(data)->samples) {
            sample += 0.25F * static_cast<float>(std::sin(voice.phase));
            voice.phase += voice.step;
        }
        voice.blocks.fetch_add(1, std::memory_order_relaxed);
    }

    double phase = 0;
    double step;
    std::atomic<int> blocks{0};
};

// A host does not wait: it looks again in a timer.
template <typename Condition>
void waitUntil(Condition condition) {
    while (!condition())
        std::this_thread::yield();
}

}  // namespace

int main() {
    veltra::CallbackList voices;
    std::atomic<bool> isPlaying{true};

    std::thread audio([&] {
        while (isPlaying.load(std::memory_order_relaxed)) {
            Block block;
            voices.iterate(0, &block);
        }
    });

    auto low = std::make_unique<Voice>(220.0);
    auto high = std::make_unique<Voice>(440.0);
    voices.add(low.get(), &Voice::render);
    voices.add(high.get(), &Voice::render);
    waitUntil([&] { return high->blocks >= 100; });

    const auto ticket = voices.remove(high.get());
    if (!ticket.has_value()) return 1;  // memory is out
    waitUntil([&] { return ticket->isSafe(); });
    const int played = high->blocks;
    high.reset();
    voices.collect();  // what the list itself needed for the voice

    waitUntil([&] { return low->blocks >= played + 100; });
    isPlaying = false;
    audio.join();

    const int samples = low->blocks.load() * static_cast<int>(kBlockFrames);
    const veltra::CMusicalContext end(samples, 0);
    std::printf("the high voice played %d blocks, the low one %d: until tick %d\n", played,
                low->blocks.load(), end.m_positionInTicks);
    return played > 0 && low->blocks.load() > played ? 0 : 1;
}
