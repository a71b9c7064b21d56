// SPDX-License-Identifier: MIT
#include "rehearsal.h"

#include "test_recordings.h"
#include "veltra/base/testing/prelude.h"

#include <gmock/gmock.h>

namespace veltra::console {
namespace {

using namespace testing;

TEST(Rehearsal, PlaysFilesOfAllRatesTogetherAndFindsTheLoudestTenthNotTheHighestPeak) {
    const std::array<std::string, 4> paths{
        synthetic("a.wav", 22050, "0.1 sin 440 gain -10 pad 0.5 0.91"), "missing",
        synthetic("b.wav", 48000, "0.1 sin 440 gain -8 pad 1.2 1.21"),
        synthetic("click.wav", 44100, "0.004 sin 500 pad 0.2")};
    Rehearsal rehearsal(paths);
    EXPECT_EQ(rehearsal.problems().at(0).path, "missing");
    std::vector<std::int64_t> ends;
    while (rehearsal.step()) {
        const std::int64_t position = rehearsal.stepsDone() * 22050 / 60;
        EXPECT_EQ(rehearsal.engine().position(), position);
        for (const StripMeter& meter : rehearsal.engine().meters()) {
            const int rate = rehearsal.engine().format(meter.id)->rate;
            const auto due = static_cast<double>(position * rate) / 22050;
            EXPECT_NEAR(static_cast<double>(meter.framesPlayed),
                        std::min(due, static_cast<double>(meter.framesTotal)), 3);
        }
        for (const StripResult& result : rehearsal.engine().collect())
            ends.push_back(rehearsal.stepsDone() * (result.underruns == 0 ? 1 : -1));
    }
    EXPECT_THAT(ends, ::testing::ElementsAre(13, 91, rehearsal.stepsExpected()));
    EXPECT_NEAR(static_cast<double>(loudestStep(paths).value_or(0)), 75.5, 3);
    EXPECT_EQ(loudestStep(paths, [](auto done, auto) { return done < 120; }), std::nullopt);
    EXPECT_EQ(loudestStep(std::array{synthetic("c.wav", 8000, "1 sin 440 vol 0")}), 1);
}

}  // namespace
}  // namespace veltra::console
