// SPDX-License-Identifier: MIT
// A host in miniature: a file, its samples, a voice in a callback list, a meter in the terminal.
//
//     tutorial [FILE.wav]      (16 bits, two channels, a header of 44 bytes; else its own sound)
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

using Block = std::array<float, 256>;

struct Voice {
    std::vector<float> left, right;
    std::size_t next = 0;  // audio thread only
    std::atomic<bool> isDone{false};

    static void render(void* context, std::uint32_t /*message*/, void* data) {
        auto& voice = *static_cast<Voice*>(context);
        for (float& sample : *static_cast<Block*>(data)) {
            if (voice.next == voice.left.size()) {
                voice.isDone = true;
                return;
            }
            sample += (voice.left[voice.next] + voice.right[voice.next]) / 2;
            ++voice.next;
        }
    }
};

int main(int argc, char** argv) {
    // 1. A file; without one half a second that decays, of which only the high bytes are set.
    std::vector<char> file(44 + 4 * 22050);
    for (unsigned i = 45; i < file.size(); i += 2)
        file[i] = static_cast<char>(int(100 * std::sin(i / 80.0) * std::exp(i / -16000.0)));
    if (argc > 1) {
        std::ifstream stream(argv[1], std::ios::binary);
        file.assign(std::istreambuf_iterator<char>(stream), {});
    }

    // 2. Its samples as floats: 16 bits, little-endian, two channels.
    const std::size_t frames = file.size() < 44 ? 0 : (file.size() - 44) / 4;
    Voice voice{std::vector<float>(frames), std::vector<float>(frames)};
    const auto convert = veltra::GetConvertNToFloat(veltra::kSampleInt16, true);
    if (frames > 0) convert(voice.left.data(), &file[44], frames, voice.right.data());

    // 3. The audio thread calls the voices of a list and never waits for anybody.
    veltra::CallbackList voices;
    veltra::LevelTap tap;
    std::jthread audio([&](const std::stop_token& end) {  // as an audio device would
        while (!end.stop_requested()) {
            Block block{};
            voices.iterate(0, &block);
            tap.add(block.data(), block.size());
            std::this_thread::sleep_for(std::chrono::microseconds(5805));
        }
    });
    voice.isDone = !voices.add(&voice, &Voice::render);  // memory was out

    // 4. The main thread shows the level: up at once, down at a steady rate.
    veltra::LevelBallistics meter;
    float loudest = 0.0F;
    while (!voice.isDone) {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        const veltra::LevelReading level = tap.take();
        if (level.frames == 0) continue;
        meter.setLevel(veltra::meterPositionForAmplitude(level.peak), false,
                       veltra::Clocks::current().monotonic().moment());
        const std::string bar(static_cast<std::size_t>(40 * meter.displayLevel()), '#');
        std::printf("%-44s %5.1f dB\n", bar.c_str(), veltra::decibelsForAmplitude(level.peak));
        loudest = std::max(loudest, level.peak);
    }

    // 5. A voice goes when its ticket says that no callback is under way in it.
    const auto gone = voices.remove(&voice);
    while (gone.has_value() && !gone->isSafe())
        std::this_thread::yield();
    if (loudest == 0.0F) std::puts("nothing but silence, or no such file");
    return loudest > 0.0F ? 0 : 1;
}
