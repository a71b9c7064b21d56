// SPDX-License-Identifier: MIT
#include "veltra/audio/surround_names.h"

#include "veltra/audio/detail/channel_tables.h"

#include <algorithm>
#include <bit>

namespace veltra {

namespace {

struct TagName {
    LayoutTag tag;
    const char* name;
};

constexpr const char* kFormatNames[] = {
    "unknown", "mono", "stereo", "quadraphonic", "LCRS", "5.1", "6.1", "7.1 mid", "7.1 centre",
};

constexpr TagName kTagNames[] = {
    {LayoutTag::FormatsOwn, "own order"},
    {LayoutTag::Mono, "mono"},
    {LayoutTag::Stereo, "stereo"},
    {LayoutTag::Quadraphonic, "quadraphonic"},
    {LayoutTag::Mpeg40A, "MPEG 4.0 A"},
    {LayoutTag::Mpeg40B, "MPEG 4.0 B"},
    {LayoutTag::Mpeg50A, "MPEG 5.0 A"},
    {LayoutTag::Mpeg50B, "MPEG 5.0 B"},
    {LayoutTag::Mpeg50C, "MPEG 5.0 C"},
    {LayoutTag::Mpeg50D, "MPEG 5.0 D"},
    {LayoutTag::Mpeg51A, "MPEG 5.1 A"},
    {LayoutTag::Mpeg51B, "MPEG 5.1 B"},
    {LayoutTag::Mpeg51C, "MPEG 5.1 C"},
    {LayoutTag::Mpeg51D, "MPEG 5.1 D"},
    {LayoutTag::Mpeg61A, "MPEG 6.1 A"},
    {LayoutTag::Mpeg71A, "MPEG 7.1 A"},
    {LayoutTag::Mpeg71B, "MPEG 7.1 B"},
    {LayoutTag::Default71, "default 7.1"},
    {LayoutTag::AudioUnit60, "AudioUnit 6.0"},
    {LayoutTag::Aac60, "AAC 6.0"},
    {LayoutTag::Aac61, "AAC 6.1"},
};

std::optional<std::uint32_t> positionOf(ChannelID channel,
                                        std::span<const ChannelID> order) noexcept {
    const auto found = std::find(order.begin(), order.end(), channel);
    if (found == order.end()) return std::nullopt;
    return static_cast<std::uint32_t>(found - order.begin());
}

}  // namespace

const char* nameOf(SurroundFormat format) noexcept {
    const auto index = static_cast<std::size_t>(format);
    return kFormatNames[index < std::size(kFormatNames) ? index : 0];
}

const char* nameOf(LayoutTag tag) noexcept {
    for (const TagName& known : kTagNames) {
        if (known.tag == tag) return known.name;
    }
    return "unknown";
}

std::span<const ChannelID> channelOrder(SurroundFormat format, LayoutTag tag) noexcept {
    const detail::LayoutRecord* const layout = detail::findLayout(format, tag);
    if (layout == nullptr) return {};
    const std::size_t count =
        tag == LayoutTag::FormatsOwn
            ? static_cast<std::size_t>(std::popcount(detail::channelMask(format)))
            : static_cast<std::uint32_t>(tag) & 0xFFFFU;
    return std::span(layout->mapping).first(count);
}

std::optional<ChannelRemap> remapChannels(SurroundFormat format, LayoutTag from, LayoutTag to) {
    const auto oldOrder = channelOrder(format, from), newOrder = channelOrder(format, to);
    if (oldOrder.empty() || newOrder.empty()) return std::nullopt;

    ChannelRemap remap;
    remap.words = std::string(nameOf(format)) + ", " + nameOf(from) + " to " + nameOf(to);
    const char* separator = ": ";
    for (const ChannelID channel : newOrder) {
        const auto source = remap.sources.emplace_back(positionOf(channel, oldOrder));
        remap.words += separator + std::string(detail::channelName(channel));
        remap.words += source.has_value() ? " from " + std::to_string(*source + 1) : " silent";
        separator = ", ";
    }
    for (const ChannelID channel : oldOrder) {
        if (!positionOf(channel, newOrder).has_value())
            remap.words += separator + std::string(detail::channelName(channel)) + " dropped";
    }
    return remap;
}

}  // namespace veltra
