// SPDX-License-Identifier: MIT
#include "instrument.h"

#include "engine.h"
#include "key_sound_reader.h"
#include "note_clock.h"
#include "test_recordings.h"
#include "veltra/base/testing/prelude.h"

#include <numbers>
#include <numeric>

namespace veltra::console {
namespace {

using namespace testing;

constexpr double kRate = 44100.0;
constexpr std::size_t kAttack = 221;  // 5 ms
constexpr std::size_t kRelease = 3528;

// A file of one channel, as a sound.
std::shared_ptr<const KeySound> soundOf(const std::string& file, std::int32_t rate,
                                        std::size_t frames,
                                        const std::function<double(double)>& sample) {
    std::string problem;
    const auto written = MixFile::create(folder() + file, rate, MixFormat::Float, problem);
    std::vector<float> samples(frames);
    for (std::size_t i = 0; i < frames; ++i)
        samples[i] = static_cast<float>(sample(static_cast<double>(i) / rate));
    EXPECT_TRUE(written->write(samples.data(), samples.data(), frames));
    EXPECT_EQ(written->finish(), "");
    const std::atomic<bool> never{false};
    return KeySound::read(*mustOpen(folder() + file), never);
}

std::shared_ptr<const KeySound> constant() {
    return soundOf("constant.wav", 44100, 100'000, [](double) { return 1.0; });
}

std::shared_ptr<const KeySound> sine(double pitch, std::int32_t rate = 44100) {
    return soundOf("sine.wav", rate, 200'000,
                   [=](double time) { return std::sin(2.0 * std::numbers::pi * pitch * time); });
}

TEST(KeySound, IsSilentWhereAFileHoldsNoNumbers) {
    const auto sound = soundOf("nan.wav", 44100, 1000, [](double time) {
        return time < 0.01 ? 0.5 : time < 0.015 ? std::nan("") : -INFINITY;
    });
    for (const KeySound::Level& level : sound->levels())
        EXPECT_TRUE(std::isfinite(
            std::accumulate(level.channels[0].begin(), level.channels[0].end(), 0.0F)));
    EXPECT_EQ(sound->levels()[0].channels[0][500], 0.0F);
}

// Both outputs, which are alike for these sounds. What is told at a frame, counted from here, is
// told before the block that holds it.
using Told = std::multimap<std::uint64_t, std::function<void(Instrument&, std::uint64_t)>>;

std::vector<float> play(Instrument& instrument, std::size_t frames, const Told& told = {},
                        std::size_t blockFrames = 1000) {
    std::vector<float> left(frames), right(frames);
    const std::uint64_t begin = instrument.frames();
    auto next = told.begin();
    for (std::size_t at = 0; at < frames;) {
        const std::size_t block = std::min(blockFrames, frames - at);
        for (; next != told.end() && next->first < at + block; ++next)
            next->second(instrument, begin + next->first);
        const std::array<float*, 2> outputs{&left[at], &right[at]};
        instrument.render(outputs.data(), 2, static_cast<std::uint32_t>(block));
        at += block;
    }
    EXPECT_EQ(left, right);
    return left;
}

auto pressed(int note, int velocity = 127) {
    return [=](Instrument& keys, std::uint64_t frame) { keys.press(frame, note, velocity); };
}
auto released(int note) {
    return [=](Instrument& keys, std::uint64_t frame) { keys.release(frame, note); };
}
auto pedal(bool isDown) {
    return [=](Instrument& keys, std::uint64_t frame) { keys.setSustained(frame, isDown); };
}

double largest(std::span<const float> samples, std::size_t from = 0) {
    double result = 0.0;
    for (const float sample : samples.subspan(from))
        result = std::max(result, std::abs(static_cast<double>(sample)));
    return result;
}

// The amplitude of one frequency.
double amplitudeAt(double pitch, std::span<const float> samples) {
    double x = 0.0, y = 0.0;
    for (std::size_t i = 0; i < samples.size(); ++i) {
        const double angle = 2.0 * std::numbers::pi * pitch * static_cast<double>(i) / kRate;
        const double window = 1.0 - std::cos(2.0 * std::numbers::pi * static_cast<double>(i) /
                                             static_cast<double>(samples.size()));
        x += window * static_cast<double>(samples[i]) * std::cos(angle);
        y += window * static_cast<double>(samples[i]) * std::sin(angle);
    }
    return 2.0 * std::hypot(x, y) / static_cast<double>(samples.size());
}

TEST(Instrument, ANoteBeginsAtItsFrameWhateverTheBlocks) {
    for (const bool isTone : {true, false}) {
        const auto sound = isTone ? nullptr : sine(500.0);
        const auto made = [&](const Told& told, std::size_t block) {
            Instrument keys(kRate);
            keys.setSound(sound);
            return play(keys, 30'000, told, block);
        };
        const std::vector<float> first = made({{0, pressed(61, 90)}, {6000, released(61)}}, 30'000);
        EXPECT_GT(largest(std::span(first).first(200)), 0.01);
        EXPECT_EQ(largest(std::span(first).subspan(6000 + kRelease)), 0.0);
        Told many{{1, pressed(40)}, {500, pedal(true)}, {777, released(40)}, {9000, pedal(false)}};
        for (int i = 0; i < 30; ++i)
            many.emplace(37 * i * i, pressed(45 + i % 20, 60 + i));
        const std::vector<float> reference = made(many, 30'000);
        for (const std::size_t block : {1U, 7U, 64U, 441U, 1000U, 4096U}) {
            EXPECT_EQ(made(many, block), reference) << block;
            for (const std::size_t place : {1U, 63U, 64U, 999U, 5000U}) {
                const auto later =
                    made({{place, pressed(61, 90)}, {place + 6000, released(61)}}, block);
                EXPECT_EQ(largest(std::span(later).first(place)), 0.0);
                EXPECT_TRUE(std::equal(later.begin() + static_cast<long>(place), later.end(),
                                       first.begin()))
                    << block << ' ' << place;
            }
        }
    }
}

// A sound that is 1 throughout makes the sum of all gains be heard.
TEST(Instrument, SixteenNotesSoundAndTheOldestMakesRoomWithoutAClick) {
    Instrument keys(kRate);
    keys.setSound(constant());
    Told told;
    for (int i = 0; i < 20; ++i)
        told.emplace(1000 * i, pressed(46 + 7 * i % 20));
    told.emplace(15'950, released(53));  // the second one: goes before the first
    told.emplace(25'000, released(46));  // has made room by now
    told.emplace(26'000, pressed(52));   // sounds: begins anew
    const std::vector<float> gains = play(keys, 30'000, told);
    for (std::size_t i = 1; i < gains.size(); ++i)
        ASSERT_LT(std::abs(gains[i] - gains[i - 1]), 1.1F / kAttack) << i;
    EXPECT_EQ(gains[7999], 8.0F);
    EXPECT_EQ(gains[16'300], 16.0F);
    for (const std::size_t place : {19'999U, 24'999U, 25'999U, 29'999U})
        EXPECT_NEAR(gains[place], 16.0F, 1e-5F) << place;
    EXPECT_NEAR(gains[26'000 + kAttack / 2], 16.0F, 0.1F);

    keys.silence();
    EXPECT_EQ(largest(play(keys, 1000), kAttack + 1), 0.0);
}

TEST(Instrument, TapsPedalAndLostEventsLeaveNoNoteHanging) {
    Instrument keys(kRate);
    keys.setSound(constant());
    const auto all = [](Instrument& each, std::uint64_t frame) { each.releaseAll(frame); };
    const std::vector<float> gains = play(keys, 60'000,
                                          {{0, pressed(60)},  // a tap is heard
                                           {1, released(60)},
                                           {10'000, pedal(true)},
                                           {10'100, pressed(62)},
                                           {11'000, released(62)},
                                           {12'000, pressed(64)},
                                           {20'000, pedal(false)},
                                           {30'000, pedal(true)},
                                           {30'000, released(64)},
                                           {40'000, all},
                                           {50'000, pressed(-1)},
                                           {50'000, pressed(128)}});
    EXPECT_EQ(gains[kAttack], 1.0F);
    EXPECT_EQ(largest(std::span(gains).subspan(kAttack + kRelease, 6000)), 0.0);
    const std::map<std::size_t, float> expected{{11'999, 1.0F}, {19'999, 2.0F}, {25'000, 1.0F},
                                                {39'999, 1.0F}, {45'000, 0.0F}, {59'999, 0.0F}};
    for (const auto& [frame, gain] : expected)
        EXPECT_EQ(gains[frame], gain) << frame;

    keys.setSustained(0, false);
    keys.press(0, 60, 127);
    EXPECT_EQ(play(keys, 1000).back(), 1.0F);
    for (int i = 0; i < 300; ++i)
        keys.press(0, 61, 127);
    keys.release(0, 60);
    EXPECT_EQ(largest(play(keys, 4000), 3900), 0.0);
    keys.press(0, 60, 127);
    EXPECT_EQ(play(keys, 1000).back(), 1.0F);
}

TEST(Instrument, TonesAndFilesHaveTheirPitchAndNothingFoldedBack) {
    struct Case {
        double file;  // its pitch; 0: the tone
        std::int32_t rate;
        int note;
        double pitch;
        double amplitude;
    };
    // With the tone, 0.2 of which a little has died away; 0: nothing at all is heard.
    for (const Case& each :
         {Case{0.0, 44100, 60, 261.626, 0.19}, Case{0.0, 44100, 69, 440.0, 0.19},
          Case{0.0, 44100, 127, 12543.85, 0.07}, Case{441.0, 44100, 60, 441.0, 1.0},
          Case{441.0, 44100, 72, 882.0, 1.0}, Case{441.0, 44100, 48, 220.5, 1.0},
          Case{441.0, 48000, 67, 660.75, 1.0}, Case{6000.0, 44100, 65, 8009.2, 1.0},
          Case{13'000.0, 44100, 73, 0.0, 0.0}, Case{9000.0, 96000, 84, 0.0, 0.0}}) {
        Instrument keys(kRate);
        if (each.file > 0.0) keys.setSound(sine(each.file, each.rate));
        const auto samples = play(keys, 12'000, {{0, pressed(each.note)}});
        const auto heard = std::span(samples).subspan(1000, 10'000);
        if (each.pitch > 0.0) {
            EXPECT_NEAR(amplitudeAt(each.pitch, heard), each.amplitude, 0.04) << each.pitch;
        }
        EXPECT_LT(largest(heard), each.amplitude > 0.0 ? 1.1 : 0.02) << each.file;
        // The second partial of the highest note would come back here.
        if (each.note == 127) {
            EXPECT_LT(amplitudeAt(44100.0 - 2.0 * each.pitch, heard), 1e-4);
        }
    }
    Instrument keys(kRate);
    const auto soft = play(keys, 9000, {{0, pressed(60, 50)}});
    EXPECT_LT(amplitudeAt(261.626, std::span(soft).subspan(500)), 0.05);
    EXPECT_GT(largest(std::span(soft).first(2000)), largest(std::span(soft).last(2000)) * 1.02);
    // Middle C plays the samples of the file.
    keys.silence();
    play(keys, 1000);
    keys.setSound(sine(1000.0));
    const auto file = play(keys, 5000, {{0, pressed(60)}});
    for (std::size_t i = kAttack; i < file.size(); ++i)
        ASSERT_EQ(file[i], static_cast<float>(std::sin(2.0 * std::numbers::pi * 1000.0 *
                                                       (static_cast<double>(i) / kRate))));
}

TEST(Instrument, SoundsAreFreedOnceNothingPlaysThem) {
    Instrument keys(kRate);
    keys.setSound(constant());
    keys.setSound(constant());  // the first was never taken
    EXPECT_EQ(keys.soundCount(), 1U);
    keys.press(0, 60, 100);
    play(keys, 100);
    keys.setSound(nullptr);
    play(keys, 100);
    keys.collect();
    EXPECT_EQ(keys.soundCount(), 1U);  // the note goes on
    keys.releaseAll(0);
    play(keys, kRelease + 1000);
    keys.collect();
    EXPECT_EQ(keys.soundCount(), 0U);

    KeySoundReader reader;
    const auto take = [&] {
        std::optional<KeySoundReader::Result> result;
        while (!(result = reader.take()))
            std::this_thread::yield();
        return std::move(*result);
    };
    reader.request("/nowhere.wav");
    EXPECT_TRUE(take().problem.starts_with("/nowhere.wav: "));
    reader.request(folder() + "constant.wav");
    EXPECT_EQ(take().sound->levels().front().frames, 100'000U);
    EXPECT_FALSE(reader.isReading());
}

TEST(Instrument, IsHeardWhileTheTransportStandsAndThroughTheOutputsGain) {
    Engine engine(Engine::Feeding::ByThread, 44100, Engine::AtEnd::Stays);
    engine.instrument().setSound(constant());
    engine.instrument().press(700, 60, 127);
    engine.setOutputGain(0.5F);
    std::array<float, 1000> left{}, right{};
    const std::array<float*, 2> outputs{left.data(), right.data()};
    for (int block = 0; block < 2; ++block)
        engine.processBlock(outputs.data(), 2, 1000);
    EXPECT_EQ(left[999], 0.5F);
    EXPECT_EQ(right[999], 0.5F);
    EXPECT_EQ(engine.position(), 0);
    EXPECT_EQ(engine.takeOutputLevels().peaks[0], 0.5F);
    engine.processBlock(outputs.data(), 1, 1000);  // the mean of both
    EXPECT_EQ(left[0], 0.5F);
    engine.processBlock(nullptr, 0, 1000);
    EXPECT_EQ(engine.instrument().frames(), 4000U);
}

// Blocks of 512 come unevenly, as from a sound server; notes told 7 ms apart are 7 ms apart.
TEST(NoteClock, KeepsTheRhythmOfThePlayer) {
    NoteClock clock(48000.0);
    const auto momentAt = [](double time) { return Moment() + seconds(time); };
    std::uint64_t rendered = 0;
    double before = 0.0;
    for (int step = 1; step < 4000; ++step) {  // 28 s
        const double time = step * 0.007;
        const double late = step % 5 * 0.0004;
        while (static_cast<double>(rendered + 512) / 47990.0 < time - late)
            rendered += 512;
        const std::uint64_t frame = clock.frameAt(momentAt(time), rendered);
        EXPECT_GE(frame, rendered);
        EXPECT_LE(frame, rendered + 1300);
        const double here = static_cast<double>(frame);
        if (step > 500) {
            EXPECT_NEAR(here - before, 336.0, 32.0) << step;
        }
        before = here;
    }
    // A device that stood still, and one that made up for it.
    EXPECT_LE(clock.frameAt(momentAt(40.0), rendered), rendered + 4800);
    EXPECT_LE(clock.frameAt(momentAt(40.1), rendered + 512), rendered + 512 + 4800);
    EXPECT_EQ(clock.frameAt(momentAt(41.0), rendered + 480'000), rendered + 480'000);
}

}  // namespace
}  // namespace veltra::console
