// SPDX-License-Identifier: MIT
// Voices that come and go while an audio thread plays them: CAddRemoveIterateList.
//
// The audio thread only ever calls Iterate. The main thread adds and removes voices at any time and
// destroys a removed voice once no block that may still call it is in progress.
#include "veltra/audio/add_remove_iterate_list.h"
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

void waitForBlocks(const std::atomic<int>& finished, int count) {
    const int until = finished.load(std::memory_order_acquire) + count;
    while (finished.load(std::memory_order_acquire) < until)
        std::this_thread::yield();
}

}  // namespace

int main() {
    veltra::CAddRemoveIterateList voices;
    std::atomic<bool> isPlaying{true};
    std::atomic<int> finished{0};

    std::thread audio([&] {
        while (isPlaying.load(std::memory_order_relaxed)) {
            Block block;
            voices.Iterate(0, &block);
            finished.fetch_add(1, std::memory_order_release);
        }
    });

    auto low = std::make_unique<Voice>(220.0);
    auto high = std::make_unique<Voice>(440.0);
    voices.Add(low.get(), &Voice::render);
    voices.Add(high.get(), &Voice::render);
    waitForBlocks(finished, 100);

    voices.Remove(high.get());
    waitForBlocks(finished, 2);  // the block in progress, and one that began after Remove returned
    const int played = high->blocks.load(std::memory_order_relaxed);
    high.reset();

    waitForBlocks(finished, 100);
    isPlaying = false;
    audio.join();

    const int samples = low->blocks.load() * static_cast<int>(kBlockFrames);
    const veltra::CMusicalContext end(samples, 0);
    std::printf("the high voice played %d blocks, the low one %d: until tick %d\n", played,
                low->blocks.load(), end.m_positionInTicks);
    return played > 0 && low->blocks.load() > played ? 0 : 1;
}
