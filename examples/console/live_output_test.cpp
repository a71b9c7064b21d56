// SPDX-License-Identifier: MIT
#include "live_output.h"

#include "player.h"
#include "test_recordings.h"
#include "testing/fake_output.h"
#include "veltra/base/testing/prelude.h"

#include <gmock/gmock.h>

namespace veltra::console {
namespace {

using namespace testing;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using Seconds = std::chrono::duration<double>;

TEST(PaceWatch, ForgivesHonestWorkAndTellsTheRestWithinTwoSeconds) {
    struct Row {
        const char* what;
        std::function<double(double)> played;  // seconds of audio by then
        Pace expected;
        double by;           // seconds
        double block = 0.0;  // seconds
    };
    const auto after3 = [](double time) { return std::max(time - 3.0, 0.0); };
    const std::initializer_list<Row> rows{
        {"steady", [](double time) { return time; }, Pace::Steady, 60},
        {"a clock a thousandth too fast", [](double time) { return 1.001 * time; }, Pace::Steady,
         60},
        {"fills its buffers", [](double time) { return time + 0.25; }, Pace::Steady, 60},
        {"late start", [](double time) { return std::max(time - 1.4, 0.0); }, Pace::Steady, 60},
        {"hiccups each ten seconds",
         [](double time) {
             return time - 0.7 * std::floor(time / 10) - std::min(std::fmod(time, 10.0), 0.7);
         },
         Pace::Steady, 60},
        {"never starts", [](double) { return 0.0; }, Pace::Stands, 2},
        {"stops", [](double time) { return std::min(time, 3.0); }, Pace::Stands, 5},
        {"at half speed", [&](double time) { return time - after3(time) * 0.7; }, Pace::Stands, 5},
        {"does not wait", [&](double time) { return time + 100 * after3(time); }, Pace::RunsAway,
         5},
        {"long blocks", [](double time) { return 8 * std::ceil(time / 8); }, Pace::Steady, 60, 8},
        {"a long block", [](double) { return 8.0; }, Pace::Stands, 9.6, 8},
        {"a long block later", [](double time) { return time < 0.05 ? 0.0 : 8.0; }, Pace::Stands,
         17.6, 8},
        {"twice as fast", [&](double time) { return time + after3(time); }, Pace::RunsAway, 5}};
    for (const Row& row : rows) {
        PaceWatch watch(48000, static_cast<std::uint32_t>(row.block * 48000.0));
        Pace pace = Pace::Steady;
        double time = 0.0;
        for (; time < 60.0 && pace == Pace::Steady; time += 0.1)
            pace = watch.look(Moment(seconds(time)),
                              static_cast<std::uint64_t>(row.played(time) * 48000.0));
        EXPECT_EQ(pace, row.expected) << row.what;
        EXPECT_LE(time, row.by + 0.11) << row.what;
    }
    PaceWatch watch(48000, 0);  // the whole process slept
    for (const double time : {0.0, 0.1, 0.2, 9.0, 9.1, 9.2, 30.0, 30.1})
        EXPECT_EQ(watch.look(Moment(seconds(time)), 0), Pace::Steady);
}

// As a front end does it, until there are news; how long that took.
Seconds newsOf(LiveOutput& output, LiveOutput::News& news) {
    const auto begin = std::chrono::steady_clock::now();
    do {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        news = output.keepRunning();
    } while (news.text.empty() && std::chrono::steady_clock::now() - begin < Seconds(20));
    return std::chrono::steady_clock::now() - begin;
}

TEST(LiveOutput, LeavesADeviceThatFailsWithinTwoSecondsAndTakesItBack) {
    const struct {
        int speed;
        bool hangs;
        const char* what;
    } rows[] = {{0, true, "stands still"}, {1000, false, "runs away"}, {-1, false, "has stopped"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        const auto world = std::make_shared<World>();
        const auto open = [world](const Device&, std::int32_t, std::string& problem) {
            if (!world->isThere) problem = "no";
            return world->isThere ? std::make_unique<FakeOutput>(world, "fake", world->rate, 480)
                                  : nullptr;
        };
        LiveOutput::News news;
        LiveOutput output(Device::Auto, 44100, news, open);
        EXPECT_THAT(news.text, IsEmpty());
        ASSERT_EQ(output.rate(), 48000);
        Engine engine(Engine::Feeding::ByThread, 48000);
        EXPECT_THAT(output.start(engine), IsEmpty());
        engine.setPlaying(true);
        std::this_thread::sleep_for(Seconds(0.2));
        EXPECT_GT(engine.position(), 0);

        world->isThere = false;
        world->hangs = row.hangs;
        world->speed = row.speed;
        EXPECT_LT(newsOf(output, news), Seconds(2.0));
        EXPECT_TRUE(news.isProblem);
        EXPECT_THAT(news.text, HasSubstr(row.what));
        EXPECT_EQ(output.name(), "no device");
        EXPECT_EQ(output.underruns(), 3U);
        EXPECT_LT(engine.position(), 4 * 48000);  // did not run away with it
        const std::int64_t before = engine.position();
        std::this_thread::sleep_for(Seconds(0.3));
        EXPECT_NEAR(static_cast<double>(engine.position() - before), 14'400, 9'000);

        world->hangs = false;
        world->speed = 0;  // there again, but not ready: it is not taken
        world->isThere = true;
        std::this_thread::sleep_for(Seconds(0.5));
        EXPECT_THAT(output.keepRunning().text, IsEmpty());
        world->speed = 1;
        EXPECT_LT(newsOf(output, news), Seconds(5.0));
        EXPECT_FALSE(news.isProblem);
        EXPECT_EQ(output.name(), "fake");

        world->rate = 44100;
        EXPECT_THAT(output.change(Device::Auto), HasSubstr("cannot play at 48000"));
        EXPECT_THAT(output.change(Device::Null), IsEmpty());
        world->rate = 48000;
        EXPECT_THAT(output.change(Device::Auto), IsEmpty());
        world->hangs = true;  // the program must end all the same
        const auto begin = std::chrono::steady_clock::now();
        output.stop();
        EXPECT_LT(std::chrono::steady_clock::now() - begin, Seconds(1.0));
        world->hangs = false;
    }
}

TEST(Valve, LetsABlockThroughThatIsLongerThanASecond) {
    Engine engine(Engine::Feeding::ByCaller, 1000);
    Valve valve(engine, 1000, 8192);
    valve.open();
    std::vector<float> samples(8192);
    float* const outputs[] = {samples.data()};
    EXPECT_TRUE(Valve::render(&valve, outputs, 1, 8192));
    EXPECT_EQ(engine.position(), 8192);
}

TEST(LiveOutput, TellsOfAnotherRateLeavesWhatDoesNotStartAndWaitsForTheFadeOfALongBlock) {
    const auto world = std::make_shared<World>();
    const auto open = [world](const Device&, std::int32_t rate, std::string&) {
        return std::make_unique<FakeOutput>(world, "fake", rate, 8192);  // at no other rate
    };
    LiveOutput::News news;
    LiveOutput output({"fake", 96'000, 0}, 48'000, news, open);
    EXPECT_THAT(news.text, HasSubstr("cannot play at 96000 Hz; playing at 48000 Hz"));
    EXPECT_FALSE(news.isProblem);
    ASSERT_EQ(output.rate(), 48'000);
    Engine engine(Engine::Feeding::ByThread, 48'000);
    world->starts = false;
    EXPECT_THAT(output.start(engine), HasSubstr("does not start"));
    world->starts = true;
    newsOf(output, news);
    EXPECT_EQ(output.name(), "fake");
    world->starts = false;
    EXPECT_THAT(output.change(Device::Auto), HasSubstr("does not start"));
    EXPECT_EQ(output.name(), "fake");

    engine.setPlaying(true);
    while (engine.position() == 0)  // to stop right after a block
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    output.stop();
    EXPECT_EQ(engine.position() % 8192, 240);
}

TEST(LiveOutput, LetsGoOfADeviceThatPlaysOneStreamBeforeItsSettingsChange) {
    static std::atomic<int> streams;
    struct Sole final : FakeOutput {
        using FakeOutput::FakeOutput;
        ~Sole() override { --streams; }
    };
    const auto open = [](const Device& device, std::int32_t rate,
                         std::string& problem) -> std::unique_ptr<AudioOutput> {
        const std::uint32_t block = device.blockFrames;
        if (streams > 0 && block == 300)  // answers to the same name
            return std::make_unique<FakeOutput>(std::make_shared<World>(), "hdmi", rate, block);
        if (streams > 0 || block > 1000) return problem = "busy", nullptr;
        ++streams;
        return std::make_unique<Sole>(std::make_shared<World>(), "card", rate, device.blockFrames);
    };
    LiveOutput::News news;
    LiveOutput output({"card", 0, 256}, 48'000, news, open);
    Engine engine(Engine::Feeding::ByThread, output.rate());
    EXPECT_THAT(output.start(engine), IsEmpty());
    EXPECT_THAT(output.change({"auto", 0, 256}), IsEmpty());
    EXPECT_THAT(output.change({"card", 0, 512}), IsEmpty());
    EXPECT_EQ(output.blockFrames(), 512U);
    EXPECT_THAT(output.change({"other", 0, 256}), "busy");
    EXPECT_THAT(output.change({"card", 0, 2048}), "busy");
    EXPECT_TRUE(output.name() == "card" && output.blockFrames() == 512U && streams == 1);
    EXPECT_THAT(output.change({"card", 0, 300}), IsEmpty());
    EXPECT_TRUE(output.name() == "card" && output.blockFrames() == 300U && streams == 1);
}

TEST(LiveOutput, KeepsToNoDeviceWhereThereIsNone) {
    int attempts = 0;
    LiveOutput::News news;
    LiveOutput output({"auto", 0, 64}, 48'000, news,
                      [&](const Device&, std::int32_t, std::string& problem) {
                          ++attempts;
                          problem = "there is none";
                          return nullptr;
                      });
    Engine engine(Engine::Feeding::ByThread, output.rate());
    EXPECT_THAT(output.start(engine), IsEmpty());
    EXPECT_THAT(output.change({"auto", 0, 128}), "there is none");
    EXPECT_EQ(output.blockFrames(), 64U);
    EXPECT_EQ(attempts, 2);
}

TEST(Player, KeepsStripsAndTheirEntriesApartWhenTheRateChanges) {
    const auto world = std::make_shared<World>();
    Player::SoundSystems systems;
    systems.open = [world](const Device& device, std::int32_t rate, std::string&) {
        return std::make_unique<FakeOutput>(world, "fake", device.rate > 0 ? device.rate : rate,
                                            480);
    };
    const std::string gone = synthetic("gone.wav", 44100, "1 sin 300");
    const std::string there = synthetic("there.wav", 44100, "1 sin 300");
    Player player(Device::Auto, systems);
    player.keys();
    EXPECT_THAT(player.chooseDevice("auto", 0, 0), IsEmpty());
    EXPECT_THAT(player.add(gone), IsEmpty());
    EXPECT_THAT(player.add(there), IsEmpty());
    EXPECT_EQ(player.look().rate, 44100);  // of the first file, still
    const std::string elsewhere = folder() + "elsewhere.wav";
    std::filesystem::rename(gone, elsewhere);
    EXPECT_THAT(player.chooseDevice("auto", 24'000, 0), IsEmpty());
    EXPECT_THAT(player.tick(), ElementsAre(HasSubstr("no such file")));
    player.setMuted(player.state().strips[0].key, true);
    EXPECT_TRUE(player.look().strips[1].heard);
    EXPECT_EQ(player.state().deviceUnderruns, 12U);  // three of each of four outputs
    std::filesystem::rename(elsewhere, gone);
    EXPECT_THAT(player.chooseDevice("auto", 32'000, 0), IsEmpty());
    EXPECT_THAT(player.tick(), IsEmpty());
    const auto entries = player.finish();
    ASSERT_EQ(entries.size(), 3U);
    EXPECT_EQ(entries[1].result->path, there);
    EXPECT_EQ(entries[2].result->path, gone);
    EXPECT_EQ(entries[2].deviceUnderruns, 15U);
}

// As the window drives it, in real time.
TEST(Player, PlaysStopsAtTheEndTakesBackARemovalAndChangesItsRate) {
    const std::string brief = synthetic("brief.wav", 48000, "0.4 sin 300 gain -6");
    const std::string longer = synthetic("longer.wav", 48000, "3 sin 300 gain -6 remix 1 1");
    Player player(Device::Null);
    EXPECT_FALSE(player.undoRemove());
    player.setTempo(90.0);
    EXPECT_THAT(player.add(brief), IsEmpty());
    EXPECT_THAT(player.add(longer), IsEmpty());
    EXPECT_THAT(player.add("/nowhere.wav"), HasSubstr("no such file"));
    const ConsoleState& state = player.look();
    const auto waitFor = [&player](auto condition) {
        for (int i = 0; i < 400; ++i) {
            player.tick();
            player.look();
            if (condition()) return true;
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
        return false;
    };
    EXPECT_TRUE(
        waitFor([&] { return state.playing && state.strips[0].ended && !state.strips[1].ended; }));
    const StripKey first = state.strips[0].key, second = state.strips[1].key;
    player.setGain(second, -12.0);
    player.setPan(second, -1.0);
    player.setSoloed(second, true);
    const auto isOnTheLeft = [&] {
        return state.outputPeaks[0] > 0.1F && state.outputPeaks[1] == 0.0F;
    };
    EXPECT_TRUE(waitFor([&] { return !state.strips[0].heard && isOnTheLeft(); }));
    player.move(second, 0);
    EXPECT_EQ(player.look().strips[1].key, first);
    player.remove(second);
    EXPECT_TRUE(waitFor([&] { return !state.playing; }));
    EXPECT_TRUE(player.undoRemove());
    player.locate(0);
    player.setLoop(true, 0, 24'000);
    player.setPlaying(true);
    EXPECT_TRUE(waitFor([&] { return state.position > 12'000; }));
    EXPECT_THAT(player.chooseDevice("null", 24'000, 256), IsEmpty());
    EXPECT_TRUE(waitFor([&] { return state.position > 9'000; }));
    EXPECT_EQ(state.rate, 24'000);
    EXPECT_EQ(state.blockFrames, 256U);
    EXPECT_EQ(state.loopEnd, 12'000);
    EXPECT_EQ(state.tempo, 90.0);
    EXPECT_EQ(state.strips[0].key, second);
    EXPECT_EQ(state.strips[0].gainDecibels, -12.0);
    EXPECT_FALSE(state.strips[1].heard);
    EXPECT_TRUE(waitFor(isOnTheLeft));
    const auto entries = player.finish();
    ASSERT_EQ(entries.size(), 4U);
    EXPECT_TRUE(entries[0].result->complete);
    EXPECT_FALSE(entries[2].error.empty());
}

}  // namespace
}  // namespace veltra::console
