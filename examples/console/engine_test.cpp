// SPDX-License-Identifier: MIT
#include "engine.h"

#include "audio_output.h"
#include "block.h"
#include "test_recordings.h"
#include "veltra/base/testing/prelude.h"

namespace veltra::console {
namespace {

using namespace testing;

TEST(Engine, OfflineTheMixIsTheSumOfItsFilesAndEachIsMeasuredWhole) {
    SKIP_WITHOUT_RECORDINGS();
    const std::string stereo = recording("loop_tabla", "-b 24", "stereo.aiff");
    const std::string mono = recording("guit_em9", "-b 16", "mono.wav", "remix 1");
    Planar expected = readAll(stereo);
    const Planar single = readAll(mono);
    const std::size_t frames = std::max(expected[0].size(), single[0].size());
    for (auto& channel : expected) {
        channel.resize(frames);
        for (std::size_t i = 0; i < single[0].size(); ++i)
            channel[i] += single[0][i];
    }

    Engine engine(Engine::Feeding::ByCaller, 44100);
    engine.add(mustOpen(stereo));
    engine.add(mustOpen(mono));
    std::vector<StripResult> results;
    Planar mix(2, std::vector<float>(frames + 5000));
    for (std::size_t at = 0; engine.stripCount() > 0; at += 1000) {
        const std::array<float*, 2> outputs{&mix[0].at(at), &mix[1].at(at)};
        engine.feed(1000);
        engine.processBlock(outputs.data(), 2, 1000);
        for (StripResult& result : engine.collect())
            results.push_back(std::move(result));
    }
    for (auto& channel : mix)
        channel.resize(frames);
    EXPECT_EQ(mix, expected);
    ASSERT_EQ(results.size(), 2U);
    for (const StripResult& result : results) {
        EXPECT_TRUE(result.complete);
        EXPECT_EQ(result.underruns, 0U);
        EXPECT_EQ(result.framesRead, result.format.frames);
        EXPECT_EQ(result.measurement.samples,
                  result.framesRead * static_cast<std::uint64_t>(result.format.channels));
    }
}

TEST(Engine, ResamplingKeepsPitchAndLevelAndLeavesTheMeasurementAlone) {
    Strip strip(mustOpen(synthetic("sine.wav", 44100, "1 sine 1000 gain -6")), 48000, 65536);
    while (strip.feed()) {
    }
    std::vector<float> samples(65536);
    float* const output = samples.data();
    const CMusicalContext music(0, 0);
    Block block{&output, 1, 65536, 0, music};
    Strip::render(&strip, kRenderMessage, &block);
    EXPECT_TRUE(strip.isDrained());
    int crossings = 0;
    for (std::size_t f = 1; f < samples.size(); ++f) {
        if (samples[f - 1] < 0.0F && samples[f] >= 0.0F) ++crossings;
    }
    EXPECT_NEAR(crossings, 1000, 2);
    EXPECT_NEAR(decibels(measure(output, 48000, 1.0F).rms()), -9.01, 0.02);
    EXPECT_NEAR(decibels(strip.measurement().rms()), -9.01, 0.001);
    EXPECT_EQ(strip.measurement().samples, 44100U);
}

TEST(Engine, MutingFadesOverFiveMillisecondsAndPeaksAreThoseOfTheMix) {
    constexpr int kRamp = 221;  // 5 ms, to the next frame
    constexpr std::array kChannels{0.125F, 0.25F, 0.5F, 0.375F, 0.75F, 0.5F};  // all along
    const auto path = synthetic("six.wav", 44100,
                                "4000s sin 9 vol 0 dcshift 0.5 remix 1v.25 1v.5 1 1v.75 1v1.5 1");
    Engine engine(Engine::Feeding::ByCaller, 44100);
    const StripId id = engine.add(mustOpen(path));
    engine.setMuted(engine.add(mustOpen(path)), true);  // never makes a sound
    std::array<float, 500> left{}, right{};
    const std::array<float*, 2> outputs{left.data(), right.data()};
    int open = kRamp;
    // The third turns round on the way, the fifth is silent throughout.
    for (const int block : {500, -100, 50, -500, -300, 500}) {
        const auto frames = static_cast<std::uint32_t>(std::abs(block));
        engine.setMuted(id, block < 0);
        engine.feed(frames);
        engine.processBlock(outputs.data(), 2, frames);
        float highest = 0.0F;
        for (std::uint32_t f = 0; f < frames; ++f) {
            open = std::clamp(open + (block < 0 ? -1 : 1), 0, kRamp);
            const float gain = static_cast<float>(open) / kRamp;
            ASSERT_NEAR(right[f], gain * 9 / 8, open % kRamp == 0 ? 0.0F : 1e-6F) << f;
            highest = std::max(highest, gain);
        }
        const StripMeter meter = engine.meters()[0];
        for (std::size_t c = 0; c < kChannels.size(); ++c)
            EXPECT_EQ(meter.peaks.at(c), kChannels[c] * highest);
        EXPECT_NEAR(engine.takeOutputPeaks()[0], highest * 11 / 8, 1e-6F);
        EXPECT_EQ(meter.framesPlayed, static_cast<std::uint64_t>(engine.position()));
    }
}

TEST(Engine, NoPeakIsTakenTwiceAndNoneIsLostBehindASmallerOne) {
    PeakHold hold;
    std::atomic<bool> done{false};
    std::thread audio([&] {
        for (int i = 1; i < 200'000; ++i)  // up by odd ones, down by even ones
            hold.raise(static_cast<float>(std::min(2 * i - 1, 400'000 - 2 * i)));
        done.store(true, std::memory_order_release);
    });
    std::vector<float> taken;
    while (!done.load(std::memory_order_acquire)) {
        if (const float peak = hold.take(); peak > 0.0F) taken.push_back(peak);
    }
    audio.join();
    taken.push_back(hold.take());
    std::sort(taken.begin(), taken.end());
    EXPECT_EQ(std::adjacent_find(taken.begin(), taken.end()), taken.end());
    EXPECT_EQ(taken.back(), 199'999.0F);
}

// The output runs all the while; some strips come to their end, the others are taken out before.
TEST(Engine, StripsComeAndGoWhileTheOutputRuns) {
    SKIP_WITHOUT_RECORDINGS();
    const std::string path = recording("loop_tabla", "-b 16", "short.wav", "trim 2 0.1");
    Engine engine(Engine::Feeding::ByThread, 96000);
    const auto output = openNullOutput(96000);
    ASSERT_TRUE(output->start(
        [](void* context, float* const* outputs, std::uint32_t count,
           std::uint32_t frames) noexcept {
            static_cast<Engine*>(context)->processBlock(outputs, count, frames);
        },
        &engine));

    constexpr std::size_t kStrips = 24;
    std::vector<bool> wasTakenOut(kStrips + 1);
    std::vector<StripResult> results;
    const auto collect = [&] {
        for (StripResult& result : engine.collect())
            results.push_back(std::move(result));
    };
    for (std::size_t i = 1; i <= kStrips; ++i) {
        const StripId id = engine.add(mustOpen(path));
        wasTakenOut[id] = i % 3 == 0;
        if (wasTakenOut[id]) engine.remove(id);
        engine.setMuted(id, i % 2 == 0);
        engine.meters();
        collect();
    }
    while (engine.stripCount() > 0) {
        collect();
        std::this_thread::yield();
    }
    output->stop();
    ASSERT_EQ(results.size(), kStrips);
    for (const StripResult& result : results) {
        EXPECT_EQ(result.complete, !wasTakenOut[result.id]) << result.id;
        EXPECT_TRUE(!result.complete || result.framesRead == 4410) << result.framesRead;
    }
    EXPECT_GT(engine.position(), 0);

    engine.add(mustOpen(path));  // nobody plays it any more, so it can go at once
    engine.removeAll();
    EXPECT_EQ(engine.collect().size(), 1U);
}

}  // namespace
}  // namespace veltra::console
