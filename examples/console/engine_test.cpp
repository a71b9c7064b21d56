#include "engine.h"

#include "audio_output.h"
#include "block.h"
#include "test_recordings.h"

#include <array>
#include <cmath>

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
    Planar mix(2);
    std::vector<float> left(1000);
    std::vector<float> right(1000);
    const std::array<float*, 2> outputs{left.data(), right.data()};
    while (engine.stripCount() > 0) {
        engine.feed(1000);
        engine.processBlock(outputs.data(), 2, 1000);
        mix[0].insert(mix[0].end(), left.begin(), left.end());
        mix[1].insert(mix[1].end(), right.begin(), right.end());
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
    const std::string path = folder() + "sine.wav";
    ASSERT_EQ(shell("sox -V1 -n -r 44100 -c 1 -b 24 " + path + " synth 1 sine 1000 gain -6"), 0);
    Strip strip(mustOpen(path), 48000, 65536);
    while (strip.feed()) {
    }
    std::vector<float> samples(65536);
    float* const output = samples.data();
    Block block{&output, 1, 65536, 0};
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
