// SPDX-License-Identifier: MIT
#include "engine.h"

#include "audio_output.h"
#include "block.h"
#include "test_recordings.h"
#include "veltra/base/testing/prelude.h"

namespace veltra::console {
namespace {

using namespace testing;

StripSetup setupAt(double rate, std::size_t ring, std::size_t reserve = 0) {
    StripSetup setup;
    setup.outputRate = rate;
    setup.ringFrames = ring;
    setup.reserve = reserve;
    return setup;
}

// Renders the frames from `at` on of route 0 into `output`, which stands for both outputs.
void render(Strip& strip, std::span<float> output, std::int64_t at = 0) {
    std::vector<float> other(output.size());
    const std::array<float*, 2> outputs{output.data(), other.data()};
    std::fill(output.begin(), output.end(), 0.0F);
    const CMusicalContext music(0, 0);
    Block block{outputs.data(), 2, static_cast<std::uint32_t>(output.size()), 0, at, at, music};
    Strip::render(&strip, kRenderMessage, &block);
}

TEST(Strip, ResamplingKeepsPitchAndLevelAndLeavesTheMeasurementAlone) {
    const std::string path = synthetic("sine.wav", 44100, "1 sine 1000 gain -6");
    Strip strip(mustOpen(path), setupAt(48000, 65536));
    while (strip.feed()) {
    }
    std::vector<float> samples(65536);
    render(strip, samples);
    EXPECT_TRUE(strip.isDrained());
    int crossings = 0;
    for (std::size_t f = 1; f < samples.size(); ++f) {
        if (samples[f - 1] < 0.0F && samples[f] >= 0.0F) ++crossings;
    }
    EXPECT_NEAR(crossings, 1000, 2);
    EXPECT_NEAR(decibels(measure(samples.data(), 48000, 1.0F).rms()), -9.01, 0.02);
    const Measurement& measured = strip.stream().measurement();
    EXPECT_NEAR(decibels(measured.rms()), -9.01, 0.001);
    EXPECT_EQ(measured.samples, 44100U);

    // From the middle on it makes what it would have come to.
    for (const std::int64_t place : {1, 159, 160, 20'000, 47'990}) {
        FileStream stream(mustOpen(path), 48000);
        stream.locate(place);
        std::vector<float> made;
        std::array<float, 1000> piece{};
        float* const there = piece.data();
        while (!stream.hasEnded() && made.size() < 3000)
            made.insert(made.end(), there, there + stream.make(&there, piece.size()));
        for (std::size_t i = 0; i < made.size(); ++i)
            ASSERT_NEAR(made[i], samples[static_cast<std::size_t>(place) + i], 2e-5F) << place;
    }
}

// What is due and missing is dropped when it comes, and at both edges there is a fade.
TEST(Strip, FallsBehindWithoutAClickAndIsInTimeAgain) {
    constexpr int kRamp = 221;
    const std::string path = counting("late.wav", 30'000);
    Strip strip(mustOpen(path), setupAt(44100, 8192, kRamp));
    std::vector<float> samples;
    for (int block = 0; block < 200; ++block) {
        if (block < 3 || block > 120) strip.feed();
        std::array<float, 100> output{};
        render(strip, output, block * 100);
        samples.insert(samples.end(), output.begin(), output.end());
    }
    // One chunk came at once, and two more when the ring had room for them.
    EXPECT_GT(strip.underruns(), 20U);
    EXPECT_GT(strip.missedFrames(), 2000U);
    for (std::size_t i = 1; i < samples.size(); ++i)
        ASSERT_LT(std::fabs(samples[i] - samples[i - 1]), 1.0F / kRamp + 1e-3F) << i;
    for (const std::size_t i : {0UL, 7000UL, 12'500UL, 19'999UL})
        EXPECT_EQ(samples[i], countAt(i)) << i;
    EXPECT_EQ(samples[11'000], 0.0F);
}

TEST(Engine, GainPanAndMuteTakeFiveMillisecondsAndPeaksAreThoseOfTheMix) {
    constexpr std::array kChannels{0.125F, 0.25F, 0.5F, 0.375F, 0.75F, 0.5F};  // all along
    const double middle = std::sqrt(0.5) * 0.5;
    const double left = 0.125 + middle + 0.75, right = 0.25 + middle + 0.5;  // no LFE
    const auto path = synthetic("six.wav", 44100,
                                "6000s sin 9 vol 0 dcshift 0.5 remix 1v.25 1v.5 1 1v.75 1v1.5 1");
    Engine engine(Engine::Feeding::ByCallerResampled, 44100);
    const StripId id = engine.add(mustOpen(path));
    engine.setMuted(engine.add(mustOpen(path)), true);  // never makes a sound
    std::array<float, 500> first{}, second{};
    const std::array<float*, 2> outputs{first.data(), second.data()};
    struct Line {  // what a gain should be doing: 5 ms, to the next frame
        double from, to;
        int done = 221;
        void moveTo(double value) {
            if (value == to) return;
            from = now();
            to = value;
            done = 0;
        }
        double now() const { return from + (to - from) * std::min(done, 221) / 221; }
    } fader{1, 1}, leftWeight{1, 1}, rightWeight{1, 1};
    const struct {
        std::uint32_t frames;
        double gain, pan;
        bool isMuted;
    } steps[] = {{500, 1, 0, false}, {100, 1, 0, true},     {50, 1, 0, false},
                 {500, 1, 0, true},  {300, 0.5, 0.5, true}, {500, 0.5, 0.5, false},
                 {500, 2, -1, false}};
    for (const auto& step : steps) {
        engine.setGain(id, static_cast<float>(step.gain));
        engine.setPan(id, static_cast<float>(step.pan));
        engine.setMuted(id, step.isMuted);
        fader.moveTo(step.isMuted ? 0 : step.gain);
        const double angle = (step.pan + 1) * std::atan(1.0);
        leftWeight.moveTo(std::sqrt(2) * std::cos(angle));
        rightWeight.moveTo(std::sqrt(2) * std::sin(angle));
        engine.feed(step.frames);
        engine.processBlock(outputs.data(), 2, step.frames);
        double highest = 0.0, loudest = 0.0;
        for (std::uint32_t f = 0; f < step.frames; ++f) {
            for (Line* const line : {&fader, &leftWeight, &rightWeight})
                ++line->done;
            ASSERT_NEAR(first.at(f), fader.now() * leftWeight.now() * left, 2e-6) << f;
            ASSERT_NEAR(second.at(f), fader.now() * rightWeight.now() * right, 2e-6) << f;
            highest = std::max(highest, fader.now());
            loudest = std::max(loudest, fader.now() * leftWeight.now() * left);
        }
        const StripMeter meter = engine.meters()[0];
        for (std::size_t c = 0; c < kChannels.size(); ++c)
            EXPECT_NEAR(meter.peaks.at(c), static_cast<double>(kChannels.at(c)) * highest, 1e-6);
        EXPECT_NEAR(engine.takeOutputLevels().peaks[0], loudest, 3e-6);
        EXPECT_EQ(meter.framesPlayed, static_cast<std::uint64_t>(engine.position()));
    }
}

TEST(Fold, IsOfConstantPowerByAngleAndTheMiddleLeavesAFileAsItIs) {
    const auto plan = channelPlan(std::vector<int>(6));  // L R C LFE Ls Rs
    const float half = std::sqrt(0.5F);
    const Weights expected[] = {{1, 0}, {0, 1}, {half, half}, {0, 0}, {1, 0}, {0, 1}};
    for (std::size_t c = 0; c < plan.order.size(); ++c) {
        EXPECT_FLOAT_EQ(foldWeights(plan, c, 6).left, expected[c].left) << c;
        EXPECT_FLOAT_EQ(foldWeights(plan, c, 6).right, expected[c].right) << c;
    }
    ChannelPlan wide = plan;  // left centre lies between left and centre
    wide.format = SurroundFormat::Surround71Centre;
    wide.order[2] = ChannelID::LeftCentre;
    const Weights between = foldWeights(wide, 2, 6);
    EXPECT_GT(between.left, between.right + 0.4F);
    EXPECT_NEAR(between.left * between.left + between.right * between.right, 1.0F, 1e-6F);
    EXPECT_EQ(foldWeights(plan, 0, 1).right, 1.0F);
    EXPECT_EQ(foldWeights({}, 4, 7).left, 1.0F);
    EXPECT_EQ(foldWeights({}, 5, 7).right, 1.0F);
    EXPECT_EQ(panWeights(0.0).left, 1.0F);
    EXPECT_EQ(panWeights(0.0).right, 1.0F);
    for (double pan = -1.0; pan <= 1.0; pan += 0.125) {
        const Weights weights = panWeights(pan);
        EXPECT_NEAR(weights.left * weights.left + weights.right * weights.right, 2.0F, 1e-6F);
        EXPECT_NEAR(weights.left, panWeights(-pan).right, 1e-7F);
    }
    EXPECT_EQ(panWeights(-3.0).right, 0.0F);
    EXPECT_EQ(panWeights(1.0).left, 0.0F);
    for (const auto& [gain, expectedGain] : {std::pair{0.0, 1.0F},
                                             {-90.0, 0.0F},
                                             {-20.0, 0.1F},
                                             {99.0, 15.848932F},
                                             {std::nan(""), 0.0F}})
        EXPECT_FLOAT_EQ(amplitude(gain), expectedGain);
}

// Offline, in blocks of all sizes: what came out so far.
struct Take {
    Engine engine;
    std::vector<float> left, right;
    std::size_t count = 0;

    explicit Take(std::initializer_list<std::string> paths)
        : engine(Engine::Feeding::ByCallerResampled, 44100, Engine::AtEnd::Stays) {
        for (const std::string& path : paths)
            engine.add(mustOpen(path));
    }
    void play(std::size_t frames) {
        while (frames > 0) {
            constexpr std::array<std::size_t, 4> kSizes{64, 1000, 333, 512};
            const std::size_t size = std::min(frames, kSizes.at(++count % kSizes.size()));
            left.resize(left.size() + size);
            right.resize(left.size());
            const std::size_t at = left.size() - size;
            const std::array<float*, 2> outputs{&left[at], &right[at]};
            engine.feed(static_cast<std::uint32_t>(size));
            engine.processBlock(outputs.data(), 2, static_cast<std::uint32_t>(size));
            frames -= size;
        }
    }
    // That from `at` on there are the frames from `place` on.
    void expectFrom(std::size_t at, std::size_t place, std::size_t frames) const {
        for (std::size_t i = 0; i < frames; ++i)
            ASSERT_EQ(left.at(at + i), countAt(place + i)) << at << " + " << i;
    }
};

TEST(Transport, LoopsToTheFrameLocatesWithAFadeAndStopsAtTheEndOfTheLongest) {
    constexpr std::size_t kRamp = 221;
    const std::string path = counting("count.wav", 30'000);
    Take take{path, synthetic("short.wav", 44100, "100s sin 9 vol 0"),
              synthetic("empty.wav", 44100, "0.1 sin 9 trim 0 0")};
    EXPECT_TRUE(take.engine.isPlaying());
    take.engine.setLoop(true, 1000, 3500);
    take.play(12'000);
    const auto begin = static_cast<std::size_t>(
        std::find(take.left.begin(), take.left.end(), countAt(0)) - take.left.begin());
    take.expectFrom(begin, 0, 3500);
    take.expectFrom(begin + 3500, 1000, 2500);
    take.expectFrom(begin + 6000, 1000, 2500);

    take.left.clear(), take.right.clear();
    const auto before = static_cast<std::size_t>(take.engine.position());
    take.engine.locate(20'000);  // beyond the loop: no more jumps
    EXPECT_EQ(take.engine.position(), 20'000);
    take.play(7'000);
    const auto sounds = [](float sample) { return sample != 0.0F; };
    const auto there = static_cast<std::size_t>(
        std::find_if(take.left.begin() + kRamp, take.left.end(), sounds) - take.left.begin());
    EXPECT_LT(there, 3000U);
    for (std::size_t i = 0; i < kRamp; ++i) {
        const float rising = static_cast<float>(i + 1) / kRamp;
        ASSERT_NEAR(take.left[i], countAt(before + i) * (1.0F - rising), 1e-5F);
        ASSERT_NEAR(take.left[there + i], countAt(20'000 + i) * rising, 1e-5F);
    }
    take.expectFrom(there + kRamp, 20'000 + kRamp, 7'000 - there - kRamp);

    take.engine.setPlaying(false);
    take.play(1000);
    const std::int64_t pause = take.engine.position();
    EXPECT_EQ(take.left.back(), 0.0F);
    take.engine.setPlaying(true);
    take.left.clear();
    take.play(512);
    take.expectFrom(kRamp, static_cast<std::size_t>(pause) + kRamp, 512 - kRamp);

    take.play(9'000);
    EXPECT_FALSE(take.engine.isPlaying());
    EXPECT_EQ(take.engine.position(), 30'000);
    take.engine.setLoop(false, 0, 0);
    take.play(9'000);
    EXPECT_EQ(take.engine.position(), 30'000);
    for (const std::int64_t beyond : {30'000, 40'000}) {  // at the end: from the beginning
        take.engine.locate(beyond);
        take.left.clear();
        take.engine.setPlaying(true);
        take.play(31'000);
        take.expectFrom(0, 0, 30'000);
        EXPECT_EQ(take.engine.position(), 30'000);
    }
    take.engine.add(mustOpen(counting("longer.wav", 40'000)));  // the end is elsewhere now
    take.engine.setPlaying(true);
    take.play(512);
    EXPECT_EQ(take.engine.position(), 30'512);
    take.engine.removeAll();
    EXPECT_TRUE(take.engine.collect()[0].complete);
}

TEST(Transport, WhatIsAddedJoinsInTimeAndWhatIsRemovedLeavesWithoutAClick) {
    const std::string path = counting("join.wav", 30'000);
    Take take{synthetic("still.wav", 44100, "1 sin 9 vol 0")};
    take.play(5000);
    const StripId id = take.engine.add(mustOpen(path));
    take.play(3000);
    take.expectFrom(5000 + 221, 5000 + 221, 2700);
    take.engine.remove(id);
    take.play(1000);
    take.engine.collect();
    take.play(1000);
    EXPECT_EQ(take.engine.stripCount(), 1U);
    EXPECT_EQ(take.left.back(), 0.0F);
    for (std::size_t i = 1; i < take.left.size(); ++i)
        ASSERT_LT(std::fabs(take.left[i] - take.left[i - 1]), 0.003F) << i;
}

TEST(Engine, SoloLeavesTheOthersOutAndMuteWins) {
    const std::string one = synthetic("one.wav", 44100, "3 sin 9 vol 0 dcshift 0.5");
    Take take{one, one, one};  // 0.5, 0.25, 0.125
    take.engine.setGain(2, 0.5F);
    take.engine.setGain(3, 0.25F);
    const struct {
        std::array<bool, 3> soloed, muted;
        float expected;
    } rows[] = {{{}, {true}, 0.375F},
                {{false, true}, {}, 0.25F},
                {{false, true, true}, {false, true}, 0.125F},
                {{true}, {true}, 0.0F},
                {{}, {}, 0.875F}};
    for (const auto& row : rows) {
        for (StripId id = 1; id <= 3; ++id) {
            take.engine.setSoloed(id, row.soloed.at(id - 1));
            take.engine.setMuted(id, row.muted.at(id - 1));
        }
        take.play(512);
        EXPECT_NEAR(take.left.back(), row.expected, 1e-6F);
    }
    // The whole mix. All of it is on both sides; the third, alone on the left, shows mono.
    take.engine.setOutputGain(0.5F);
    take.engine.setDimmed(true);
    take.play(512);
    EXPECT_NEAR(take.right.back(), 0.04375F, 1e-6F);
    take.engine.setDimmed(false);
    take.engine.setOutputBalance(1.0F);
    take.play(512);
    EXPECT_EQ(take.left.back(), 0.0F);
    EXPECT_NEAR(take.right.back(), 0.4375F * std::sqrt(2.0F), 1e-6F);
    take.engine.setOutputBalance(0.0F);
    take.engine.setPan(1, 1.0F);
    take.engine.setMono(true);
    take.play(512);
    EXPECT_NEAR(take.left.back(), (0.375F + 0.25F * std::sqrt(2.0F)) / 2.0F, 1e-6F);
    EXPECT_EQ(take.left.back(), take.right.back());
}

TEST(Engine, PeaksAreTrueOnesWhenAsked) {
    // No sample above 0.7071, and between them 1.
    Take take{synthetic("between.wav", 44100, "1 sine 11025 0 12.5")};
    for (const bool areTrue : {false, true, false}) {
        take.engine.setMeasuresTruePeaks(areTrue);
        take.play(2560);
        take.engine.meters();  // from here on, without what the change brings
        take.engine.takeOutputLevels();
        take.play(2560);
        const float expected = areTrue ? 1.0F : 0.7071F;
        EXPECT_NEAR(take.engine.meters()[0].peak, expected, 0.02F);
        EXPECT_NEAR(take.engine.takeOutputLevels().peaks[1], expected, 0.02F);
    }
}

// What has less than it announces; counts what is read.
struct ShortReader final : FrameReader {
    explicit ShortReader(std::uint64_t frames, std::atomic<std::uint64_t>& count)
        : m_frames(frames), m_count(count) {}
    std::size_t read(float* const* channels, std::size_t frames) override {
        const auto got = std::min<std::size_t>(frames, m_frames - std::min(m_at, m_frames));
        std::fill_n(channels[0], got, 0.1F);
        m_at += got;
        m_count += got;
        return got;
    }
    bool seek(std::uint64_t frame) override {
        m_at = frame;
        return true;
    }

private:
    const std::uint64_t m_frames;
    std::uint64_t m_at = 0;
    std::atomic<std::uint64_t>& m_count;
};

TEST(FileStream, IsNotCompleteBecauseItFoundNothingBehindTheEnd) {
    std::atomic<std::uint64_t> count{0};
    FileFormat format;
    format.rate = 768'000;
    format.channels = 1;
    format.frames = 2'000'000;
    const auto file = [&](std::uint64_t frames) {
        return std::make_unique<AudioFile>("", format,
                                           std::make_unique<ShortReader>(frames, count));
    };
    FileStream stream(file(20'000), 0.0);
    std::array<float, 100> samples{};
    float* const place = samples.data();
    stream.locate(25'000);
    EXPECT_EQ(stream.make(&place, 100), 0U);
    stream.locate(0);
    EXPECT_EQ(stream.make(&place, 100), 100U);
    EXPECT_FALSE(stream.isComplete());

    // And the engine reads as many seconds ahead as at any other rate.
    Engine engine(Engine::Feeding::ByThread, format.rate);
    engine.add(file(2'000'000));
    for (int i = 0; i < 5000 && count < 500'000; ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    EXPECT_GE(count, 500'000U);
}

// As a network drive that does not answer: after some chunks it is silent.
struct HangingReader final : FrameReader {
    explicit HangingReader(std::shared_ptr<std::atomic<bool>> hangs) : m_hangs(std::move(hangs)) {}
    std::size_t read(float* const* channels, std::size_t frames) override {
        for (; m_read >= 2 * kChunkFrames && *m_hangs;)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        std::fill_n(channels[0], frames, 0.1F);
        m_read += frames;
        return frames;
    }
    bool seek(std::uint64_t) override { return true; }

private:
    const std::shared_ptr<std::atomic<bool>> m_hangs;
    std::size_t m_read = 0;
};

TEST(ReaderPool, GoesOnWithTheOthersWhileFilesHang) {
    const std::string path = synthetic("three.wav", 44100, "3 sine 300");
    const auto hangs = std::make_shared<std::atomic<bool>>(true);
    Engine engine(Engine::Feeding::ByThread, 44100, Engine::AtEnd::Stays);
    FileFormat format;
    format.rate = 44100;
    format.channels = 1;
    format.lengthUnknown = true;
    std::vector<StripId> hanging, good;
    for (int i = 0; i < 3; ++i) {
        hanging.push_back(engine.add(
            std::make_unique<AudioFile>("hangs", format, std::make_unique<HangingReader>(hangs))));
        good.push_back(engine.add(mustOpen(path)));
    }
    engine.setPlaying(true);
    std::vector<float> samples(512);
    float* const outputs[] = {samples.data()};
    const auto hasEnded = [&](const StripMeter& meter) {
        return std::find(good.begin(), good.end(), meter.id) == good.end() || meter.ended;
    };
    // Played slower than it is read; only a pool that starves the others never gets there.
    for (int blocks = 0; blocks < 20'000; ++blocks) {
        engine.processBlock(outputs, 1, 256);
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
        const auto meters = engine.meters();
        if (std::all_of(meters.begin(), meters.end(), hasEnded)) break;
    }
    for (const auto* const ids : {&good, &hanging})
        for (const StripId id : *ids)
            engine.remove(id);
    std::vector<StripId> gone;
    const auto collect = [&](std::size_t count) {
        for (int i = 0; i < 5000 && gone.size() < count; ++i) {
            engine.processBlock(outputs, 1, 256);
            for (const StripResult& result : engine.collect()) {
                EXPECT_TRUE(result.complete || result.path == "hangs");
                gone.push_back(result.id);
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    };
    collect(3);
    EXPECT_EQ(gone, good);  // whose files hang are still held
    *hangs = false;
    collect(6);
    EXPECT_EQ(gone.size(), 6U);
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
            return true;
        },
        &engine));
    engine.setPlaying(true);

    constexpr std::size_t kStrips = 24;
    std::vector<StripResult> results;
    const auto collect = [&] {
        for (StripResult& result : engine.collect())
            results.push_back(std::move(result));
    };
    for (std::size_t i = 1; i <= kStrips; ++i) {
        const StripId id = engine.add(mustOpen(path));
        if (i % 3 == 0) engine.remove(id);
        if (i % 5 == 0) engine.locate(static_cast<std::int64_t>(i));
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
        EXPECT_LE(result.framesRead, 4410U);
        EXPECT_TRUE(!result.complete || result.framesRead == 4410) << result.framesRead;
    }
    EXPECT_GT(engine.position(), 0);

    engine.add(mustOpen(path));  // nobody plays it any more, so it can go at once
    engine.removeAll();
    EXPECT_EQ(engine.collect().size(), 1U);
}

}  // namespace
}  // namespace veltra::console
