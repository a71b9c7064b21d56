// SPDX-License-Identifier: MIT
// Which channel of a surround format each channel of a file is.
#pragma once

#include "veltra/audio/surround_names.h"

#include <cstddef>
#include <span>
#include <string>
#include <vector>

namespace veltra::console {

struct ChannelPlan {
    SurroundFormat format = SurroundFormat::Unknown;
    std::vector<ChannelID> order;  // in the file's own order; empty where the format is not known

    // "L", "LFE", ..., or the number, counted from 1, of a channel without a name.
    std::string channelName(std::size_t position) const;

    // "mono", "stereo", "5.1", "5.1 without LFE", or "6 channels".
    std::string name(int channels) const;

    // The published order that the file's is, "MPEG 5.1 A" for one; empty when it is none of them.
    std::string orderName() const;
};

// `positions` are libsndfile's, one for each channel as the file declares them. A file that
// declares none gets those of its count of channels that WAV and FLAC agree upon; then give as many
// zeros.
ChannelPlan channelPlan(std::span<const int> positions);

}  // namespace veltra::console
