// SPDX-License-Identifier: MIT
#include "channel_plan.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <optional>

#include <sndfile.h>

namespace veltra::console {

namespace {

// The published layouts that this program looks among, by number.
constexpr std::uint32_t kFirstLayout = 100;
constexpr std::uint32_t kLastLayout = 142;

constexpr std::uint32_t bit(ChannelID channel) noexcept {
    return 1U << static_cast<std::uint32_t>(channel);
}

struct Speaker {
    int position;
    ChannelID channel;
};

// Ambisonic and height channels have no place in the formats.
// clang-format off
constexpr std::array<Speaker, 15> kSpeakers{{
    {SF_CHANNEL_MAP_MONO,                  ChannelID::Left},
    {SF_CHANNEL_MAP_LEFT,                  ChannelID::Left},
    {SF_CHANNEL_MAP_RIGHT,                 ChannelID::Right},
    {SF_CHANNEL_MAP_CENTER,                ChannelID::Centre},
    {SF_CHANNEL_MAP_FRONT_LEFT,            ChannelID::Left},
    {SF_CHANNEL_MAP_FRONT_RIGHT,           ChannelID::Right},
    {SF_CHANNEL_MAP_FRONT_CENTER,          ChannelID::Centre},
    {SF_CHANNEL_MAP_REAR_CENTER,           ChannelID::CentreSurround},
    {SF_CHANNEL_MAP_REAR_LEFT,             ChannelID::LeftSurround},
    {SF_CHANNEL_MAP_REAR_RIGHT,            ChannelID::RightSurround},
    {SF_CHANNEL_MAP_LFE,                   ChannelID::Lfe},
    {SF_CHANNEL_MAP_FRONT_LEFT_OF_CENTER,  ChannelID::LeftCentre},
    {SF_CHANNEL_MAP_FRONT_RIGHT_OF_CENTER, ChannelID::RightCentre},
    {SF_CHANNEL_MAP_SIDE_LEFT,             ChannelID::LeftMid},
    {SF_CHANNEL_MAP_SIDE_RIGHT,            ChannelID::RightMid},
}};
// clang-format on

// What WAV and FLAC mean by a count of channels without positions; empty where they differ.
std::span<const ChannelID> customaryOrder(std::size_t channels) {
    constexpr auto A50 = LayoutTag::Mpeg50A;
    constexpr auto A51 = LayoutTag::Mpeg51A;
    switch (channels) {
        case 1:
            return channelOrder(SurroundFormat::Mono);
        case 2:
            return channelOrder(SurroundFormat::Stereo);
        case 4:
            return channelOrder(SurroundFormat::Quadraphonic);
        case 5:
            return channelOrder(SurroundFormat::Surround51, A50);
        case 6:
            return channelOrder(SurroundFormat::Surround51, A51);
        default:
            return {};
    }
}

std::optional<ChannelID> channelAt(int position) {
    for (const Speaker& speaker : kSpeakers) {
        if (speaker.position == position) return speaker.channel;
    }
    return std::nullopt;
}

std::uint32_t maskOf(std::span<const ChannelID> order) {
    std::uint32_t mask = 0;
    for (const ChannelID channel : order)
        mask |= bit(channel);
    return mask;
}

// The format that holds exactly these channels, the LFE apart, which 5.1 and 6.1 may lack.
SurroundFormat formatOf(std::span<const ChannelID> order) {
    const std::uint32_t mask = maskOf(order);
    for (std::uint32_t number = 1; number <= 8; ++number) {
        const auto format = static_cast<SurroundFormat>(number);
        const std::uint32_t whole = GetChannelIDBitMask(format);
        const bool isWhole = mask == whole;
        const bool lacksLfe = (mask | bit(ChannelID::Lfe)) == whole;
        if (isWhole || lacksLfe) return format;
    }
    return SurroundFormat::Unknown;
}

}  // namespace

ChannelPlan channelPlan(std::span<const int> positions) {
    ChannelPlan plan;
    if (std::all_of(positions.begin(), positions.end(), [](int each) { return each == 0; })) {
        const auto order = customaryOrder(positions.size());
        plan.order.assign(order.begin(), order.end());
    } else {
        for (const int position : positions) {
            const auto channel = channelAt(position);
            if (channel) plan.order.push_back(*channel);
        }
    }
    // A single channel is mono wherever it stands. Sides without a rear are the surrounds.
    if (positions.size() == 1) plan.order = {ChannelID::Left};
    if ((maskOf(plan.order) & bit(ChannelID::LeftSurround)) == 0) {
        std::replace(plan.order.begin(), plan.order.end(), ChannelID::LeftMid,
                     ChannelID::LeftSurround);
        std::replace(plan.order.begin(), plan.order.end(), ChannelID::RightMid,
                     ChannelID::RightSurround);
    }
    const std::size_t distinct = static_cast<std::size_t>(std::popcount(maskOf(plan.order)));
    if (distinct == positions.size()) plan.format = formatOf(plan.order);
    if (plan.format == SurroundFormat::Unknown) plan.order.clear();
    return plan;
}

std::string ChannelPlan::channelName(std::size_t position) const {
    if (position >= order.size()) return std::to_string(position + 1);
    return format == SurroundFormat::Mono ? "M" : GetChannelLabel(order[position]);
}

std::string ChannelPlan::name(int channels) const {
    if (channels == 1) return "mono";
    if (channels == 2) return "stereo";
    if (format == SurroundFormat::Unknown) return std::to_string(channels) + " channels";
    const auto whole = static_cast<std::size_t>(std::popcount(GetChannelIDBitMask(format)));
    return nameOf(format) + std::string(order.size() < whole ? " without LFE" : "");
}

std::string ChannelPlan::orderName() const {
    // The number of a layout stands above its count of channels.
    const auto count = static_cast<std::uint32_t>(order.size());
    for (std::uint32_t number = kFirstLayout; number <= kLastLayout; ++number) {
        const auto tag = static_cast<LayoutTag>((number << 16U) | count);
        const auto published = channelOrder(format, tag);
        if (!order.empty() &&
            std::equal(published.begin(), published.end(), order.begin(), order.end())) {
            return nameOf(tag);
        }
    }
    return {};
}

}  // namespace veltra::console
