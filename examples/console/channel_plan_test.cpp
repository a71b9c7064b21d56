// SPDX-License-Identifier: MIT
#include "channel_plan.h"

#include "veltra/base/testing/prelude.h"

#include <sndfile.h>

namespace veltra::console {
namespace {

TEST(ChannelPlan, NamesTheChannelsInTheFilesOwnOrder) {
    constexpr int kL = SF_CHANNEL_MAP_LEFT, kR = SF_CHANNEL_MAP_RIGHT;
    constexpr int kC = SF_CHANNEL_MAP_CENTER, kLfe = SF_CHANNEL_MAP_LFE;
    constexpr int kLs = SF_CHANNEL_MAP_REAR_LEFT, kRs = SF_CHANNEL_MAP_REAR_RIGHT;
    constexpr int kSl = SF_CHANNEL_MAP_SIDE_LEFT, kSr = SF_CHANNEL_MAP_SIDE_RIGHT;
    constexpr int kCs = SF_CHANNEL_MAP_REAR_CENTER, kTop = SF_CHANNEL_MAP_TOP_CENTER;
    const std::tuple<std::vector<int>, const char*, const char*, const char*> rows[] = {
        {{kC}, "mono", "mono", "M"},
        {{kL, kR}, "stereo", "stereo", "L R"},
        {{kL, kR, kLs, kRs, kC, kLfe}, "5.1", "MPEG 5.1 B", "L R Ls Rs C LFE"},
        {{kL, kR, kC, kLfe, kSl, kSr}, "5.1", "MPEG 5.1 A", "L R C LFE Ls Rs"},
        {{0, 0, 0, 0, 0, 0}, "5.1", "MPEG 5.1 A", "L R C LFE Ls Rs"},
        {{kC, kL, kR, kLs, kRs}, "5.1 without LFE", "MPEG 5.0 D", "C L R Ls Rs"},
        {{kL, kR, kC, kLfe, kLs, kRs, kSl, kSr}, "7.1 mid", "", "L R C LFE Ls Rs Lm Rm"},
        {{kC, kL, kR, kCs}, "LCRS", "MPEG 4.0 B", "C L R Cs"},
        {{kL, kR, kTop}, "3 channels", "", "1 2 3"},
        {{kL, kL, kC, kLfe, kLs, kRs}, "6 channels", "", "1 2 3 4 5 6"},
        {{0, 0, 0}, "3 channels", "", "1 2 3"},
    };
    for (const auto& [positions, name, order, channels] : rows) {
        const ChannelPlan plan = channelPlan(positions);
        EXPECT_EQ(plan.name(static_cast<int>(positions.size())), name);
        EXPECT_EQ(plan.orderName(), order);
        std::string found;
        for (std::size_t i = 0; i < positions.size(); ++i)
            found += (i == 0 ? "" : " ") + plan.channelName(i);
        EXPECT_EQ(found, channels);
    }
}

}  // namespace
}  // namespace veltra::console
