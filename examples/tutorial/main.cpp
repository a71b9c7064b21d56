// SPDX-License-Identifier: MIT
// A host in miniature: a file, its samples, a voice in a callback list, and a meter in the
// terminal.
//
//     tutorial [FILE.wav]       (16 bits, two channels, a header of 44 bytes; else a sound of its
//     own)
#include "veltra/audio/callback_list.h"
#include "veltra/audio/level_tap.h"
#include "veltra/controls/level_meters/decibel_scale.h"
#include "veltra/controls/level_meters/level_ballistics.h"
#include "veltra/platform/clock.h"
#include "veltra/processor/sample_conversion.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

namespace {

constexpr std::size_t kHeaderBytes = 44, kFrameBytes = 4, kBlockFrames = 256;
using Block = std::array<float, kBlockFrames>;

std::vector<char> readFile(const char* path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<char> makeSound() {  // half a second that decays
    std::vector<char> file(kHeaderBytes);
    for (int i = 0; i < 22050; ++i) {
        const double sample = 30000.0 * std::sin(i * 0.05) * std::exp(-i / 4000.0);
        const auto word = static_cast<unsigned>(static_cast<int>(sample)) & 0xFFFFU;
        for (int channel = 0; channel < 2; ++channel) {
            file.push_back(static_cast<char>(word & 0xFFU));
            file.push_back(static_cast<char>(word >> 8U));
        }
    }
    return file;
}

struct Voice {
    std::vector<float> left, right;
    std::size_t next = 0;  // audio thread only
    std::atomic<bool> isDone{false};

    static void render(void* context, std::uint32_t /*message*/, void* data) {
        auto& voice = *static_cast<Voice*>(context);
        const std::size_t count = std::min(kBlockFrames, voice.left.size() - voice.next);
        for (std::size_t i = 0; i < count; ++i, ++voice.next)
            (*static_cast<Block*>(data))[i] +=
                (voice.left[voice.next] + voice.right[voice.next]) / 2;
        if (count == 0) voice.isDone = true;
    }
};

}  // namespace

int main(int argc, char** argv) {
    // 1. The file.
    const std::vector<char> file = argc > 1 ? readFile(argv[1]) : makeSound();
    if (file.size() <= kHeaderBytes) {
        std::puts("no such file, or no samples in it");
        return 1;
    }

    // 2. Its samples as floats: 16 bits, little-endian, two channels.
    const std::size_t frames = (file.size() - kHeaderBytes) / kFrameBytes;
    Voice voice{std::vector<float>(frames), std::vector<float>(frames)};
    const auto convert = veltra::GetConvertNToFloat(veltra::kSampleInt16, true);
    convert(voice.left.data(), file.data() + kHeaderBytes, frames, voice.right.data());

    // 3. The audio thread calls the voices of a list and never waits for anybody.
    veltra::CallbackList voices;
    veltra::LevelTap tap;
    std::atomic<bool> isRunning{true};
    std::thread audio([&] {  // stands for the callback of an audio device
        while (isRunning) {
            Block block{};
            voices.iterate(0, &block);
            tap.add(block.data(), block.size());
            std::this_thread::sleep_for(std::chrono::microseconds(5805));
        }
    });
    voice.isDone = !voices.add(&voice, &Voice::render);  // memory was out

    // 4. The main thread shows the level: up at once, down at a steady rate.
    veltra::LevelBallistics meter;
    float highest = 0.0F;
    while (!voice.isDone) {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        const veltra::LevelReading level = tap.take();
        if (level.frames == 0) continue;
        const veltra::Moment now = veltra::Clocks::current().monotonic().moment();
        meter.setLevel(veltra::meterPositionForAmplitude(level.peak), false, now);
        highest = std::max(highest, meter.displayLevel());
        const auto bar = static_cast<std::size_t>(40.0F * std::max(meter.displayLevel(), 0.0F));
        std::printf("%-44s %5.1f dB\n", std::string(bar, '#').c_str(),
                    veltra::decibelsForAmplitude(level.peak));
    }

    // 5. A voice goes when its ticket says that no callback is under way in it.
    const auto gone = voices.remove(&voice);
    while (gone.has_value() && !gone->isSafe())
        std::this_thread::yield();
    isRunning = false;
    audio.join();
    return highest > 0.0F || argc > 1 ? 0 : 1;  // a file may be silent
}
