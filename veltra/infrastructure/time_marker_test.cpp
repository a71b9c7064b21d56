// SPDX-License-Identifier: MIT
#include "veltra/infrastructure/time_marker.h"

#include "veltra/base/testing/prelude.h"
#include "veltra/platform/testing/manual_run_loop.h"

namespace veltra {
namespace {

TEST(QkTimeMarker, TellsSecondsAcrossMicrosecondBordersAndTheYear2038) {
    testing::ManualClocks clocks;
    const std::tuple<WallTime, WallTime, float> cases[] = {
        // Below a microsecond; the difference is a float first; around 2038 and 2106.
        {{100, 0}, {100, 999}, 0.0F},
        {{100, 0}, {100, 1999}, 0.000001F},
        {{100, 750'000'000}, {102, 250'000'000}, 1.5F},
        {{100, 500'000'000}, {99, 0}, -1.5F},
        {{0, 0}, {16'777'217, 900'000'000}, 16'777'216.0F},
        {{0x7FFFFFFF, 0}, {0x80000001, 500'000'000}, 2.5F},
        {{0xFFFFFFFF, 0}, {0x100000001, 0}, 2.0F}};
    for (const auto& [mark, now, seconds] : cases) {
        clocks.wallTime = mark;
        QkTimeMarker marker;
        clocks.wallTime = now;
        EXPECT_EQ(marker.secondsSinceMarker(), seconds);
        marker.setMarker();
        EXPECT_EQ(marker.secondsSinceMarker(), 0.0F);
    }
}

}  // namespace
}  // namespace veltra
