// SPDX-License-Identifier: MIT
// What channel_layout.h exports to C, for the library's own units.
#pragma once

#include "veltra/audio/surround_names.h"

namespace veltra::detail {

struct LayoutRecord {
    SurroundFormat format;
    LayoutTag tag;
    ChannelMapping mapping;
};

std::uint32_t channelMask(SurroundFormat format) noexcept;
const char* channelName(ChannelID channel) noexcept;
float defaultAngle(SurroundFormat format, ChannelID channel) noexcept;
ChannelLabel channelLabel(SurroundFormat format, ChannelID channel) noexcept;

// Null when there is none.
const LayoutRecord* findLayout(LayoutTag tag) noexcept;
const LayoutRecord* findLayout(SurroundFormat format, LayoutTag tag) noexcept;

}  // namespace veltra::detail
