// SPDX-License-Identifier: MIT
#include "overview.h"

#include "engine.h"
#include "overview_reader.h"
#include "progress_board.h"
#include "test_recordings.h"
#include "veltra/base/testing/prelude.h"

namespace veltra::console {
namespace {

using namespace testing;

// Tones that begin at once and die away, one after the other, over a quiet hum.
std::vector<float> tones(int rate, const std::vector<double>& hertz, double secondsApart) {
    const auto apart = std::max(static_cast<std::size_t>(secondsApart * rate), std::size_t{1});
    std::vector<float> samples((hertz.size() + 1) * apart);
    for (std::size_t i = 0; i < samples.size(); ++i) {
        const double turns = 50.0 * static_cast<double>(i) / rate;
        samples[i] = static_cast<float>(0.001 * std::sin(2.0 * std::numbers::pi * turns));
        if (i < apart) continue;
        const double time = static_cast<double>(i % apart) / rate;
        const double phase = 2.0 * std::numbers::pi * hertz[i / apart - 1] * time;
        const double wave = std::sin(phase) + 0.5 * std::sin(2.0 * phase);
        samples[i] += static_cast<float>(0.4 * std::exp(-8.0 * time) * wave);
    }
    return samples;
}

TEST(OnsetDetector, FindsWhereTonesBeginAndTheirPitch) {
    const std::vector<double> hertz{110.0, 261.63, 440.0, 987.77, 61.74};
    for (const int rate : {8000, 44100, 96000}) {
        const std::vector<float> samples = tones(rate, hertz, 0.6);
        OnsetDetector whole(rate), inPieces(rate);
        whole.push(samples);
        for (std::size_t at = 0; at < samples.size(); at += 777)
            inPieces.push(
                std::span(samples).subspan(at, std::min(samples.size() - at, std::size_t{777})));
        ASSERT_EQ(whole.onsets().size(), hertz.size()) << rate;
        EXPECT_TRUE(whole.onsets().AreUniqueAndSortedByPos());
        for (std::size_t i = 0; i < hertz.size(); ++i) {
            const CTransient& onset = whole.onsets()[i];
            const double seconds = static_cast<double>(onset.pos) / rate;
            EXPECT_NEAR(seconds, 0.6 * static_cast<double>(i + 1), 0.01);
            EXPECT_NEAR(static_cast<double>(onset.FreqHz) / hertz[i], 1.0,
                        rate > 8000 ? 0.005 : 0.02)
                << hertz[i];
            EXPECT_TRUE(inPieces.onsets()[i].pos == onset.pos);  // packed: no reference binds
            EXPECT_EQ(inPieces.onsets()[i].FreqHz, onset.FreqHz);
        }
    }
}

TEST(Overview, HoldsTheExtremesOfEveryStretchOfTheFile) {
    for (const char* seconds : {"0.05", "0.9", "5"}) {
        const std::string path =
            synthetic("shape.wav", 44100, std::string(seconds) + " pinknoise fade q 0 0 0.01");
        const Planar samples = readAll(path);
        std::vector<std::shared_ptr<const Overview>> growing;
        const auto overview =
            readOverview(*mustOpen(path), false, [&](auto soFar) { growing.push_back(soFar); });
        EXPECT_EQ(growing.size(), samples[0].size() / (16 * kChunkFrames));
        for (const auto& soFar : growing) {
            EXPECT_FALSE(soFar->isComplete);
            EXPECT_LT(soFar->columns.size(), soFar->wholeColumns());
            const std::uint64_t whole = soFar->wholeColumns() * soFar->columnFrames;
            EXPECT_LE(whole - overview->frames, soFar->columnFrames);
            EXPECT_LE(soFar->columns[0].high, overview->columns[0].high);
        }
        ASSERT_TRUE(overview->isComplete);
        ASSERT_EQ(overview->frames, samples[0].size());
        ASSERT_LT(overview->columns.size(), 1024U);
        for (std::size_t i = 0; i < overview->columns.size(); ++i) {
            const std::size_t begin = i * overview->columnFrames;
            const std::size_t end = std::min(begin + overview->columnFrames, samples[0].size());
            const auto stretch = std::span(samples[0]).subspan(begin, end - begin);
            const auto [low, high] = std::minmax_element(stretch.begin(), stretch.end());
            EXPECT_EQ(overview->columns[i].low, std::min(*low, 0.0F));
            EXPECT_EQ(overview->columns[i].high, std::max(*high, 0.0F));
        }
        EXPECT_GE(overview->columns.size() * overview->columnFrames, overview->frames);
    }
}

TEST(OverviewReader, ReadsInTheBackgroundAndEndsEarlyWhenItGoes) {
    const std::string path = synthetic("brief.wav", 44100, "0.5 pinknoise");
    OverviewReader reader;
    reader.request(folder() + "missing.wav");
    reader.request(path);
    std::shared_ptr<const Overview> overview;
    while (overview == nullptr) {
        std::this_thread::yield();
        overview = reader.find(path);
    }
    EXPECT_EQ(overview->frames, 22050U);
    EXPECT_EQ(reader.find(folder() + "missing.wav"), nullptr);
    reader.request(synthetic("long.wav", 44100, "60 pinknoise"));
}

// Each way in which a file is read as fast as possible.
TEST(ProgressBoard, IsToldOfEveryFileThatIsReadAndStopsIt) {
    const std::string path = synthetic("told.wav", 44100, "2 pinknoise");
    const auto scan = [&path] { return readOverview(*mustOpen(path), false) != nullptr; };
    const auto measureIt = [&path] {
        Engine engine(Engine::Feeding::ByCaller, 44100);
        engine.add(mustOpen(path));
        for (;;) {
            engine.feed(kChunkFrames);
            engine.processBlock(nullptr, 0, kChunkFrames);
            const auto results = engine.collect();
            if (results.empty()) continue;
            EXPECT_EQ(results[0].complete, results[0].framesRead == 88200);
            return results[0].complete;
        }
    };
    for (const std::function<bool()>& read : {std::function<bool()>(scan), {measureIt}}) {
        std::vector<double> values;
        const ProgressBoard::Listener note = [&values](const auto& lines, auto changed, bool over) {
            EXPECT_EQ(lines.at(changed).title, "told.wav");
            values.push_back(over ? 2.0 : lines[changed].value);
        };
        {
            const ProgressBoard board(note);
            EXPECT_TRUE(read());
            EXPECT_TRUE(board.lines().empty());
        }
        ASSERT_GE(values.size(), 3U);
        EXPECT_EQ(values.front(), -1.0);
        EXPECT_EQ(values[values.size() - 2], 1.0);
        EXPECT_TRUE(std::is_sorted(values.begin(), values.end()));
        {
            std::atomic<bool> isOver{false};
            ProgressBoard board;
            std::thread user([&] {
                while (!isOver)
                    board.cancelAll();
            });
            while (read()) {  // until the user is fast enough
            }
            isOver = true;
            user.join();
        }
        EXPECT_TRUE(read());  // nobody shows it any more
    }
}

}  // namespace
}  // namespace veltra::console
