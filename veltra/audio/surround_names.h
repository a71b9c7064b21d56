// SPDX-License-Identifier: MIT
// Names for the numbers of channel_layout.h, and an account of what happens to the channels between
// two orders of the same format:
//
//     auto remap = remapChannels(SurroundFormat::Surround51, LayoutTag::Mpeg51A,
//                                LayoutTag::Mpeg51C);
//     remap->words      "5.1, MPEG 5.1 A to MPEG 5.1 C: L from 1, C from 3, R from 2, ..."
//     remap->sources    {0, 2, 1, ...}
//
// Thread: any; pure functions. Realtime-safe: yes, but remapChannels.
#pragma once

#include "veltra/audio/channel_layout.h"
#include "veltra/export.h"

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace veltra {

enum class SurroundFormat : std::uint32_t {
    Unknown = 0,
    Mono = 1,
    Stereo = 2,
    Quadraphonic = 3,
    Lcrs = 4,
    Surround51 = 5,
    Surround61 = 6,
    Surround71Mid = 7,     // with left and right mid
    Surround71Centre = 8,  // with centre left and centre right
};

enum class ChannelID : std::uint32_t {
    Left = 0,
    Right = 1,
    LeftMid = 2,
    RightMid = 3,
    LeftSurround = 4,
    RightSurround = 5,
    CentreSurround = 6,
    Centre = 7,
    Lfe = 8,
    LeftCentre = 9,
    RightCentre = 10,
};

// The number of a layout in the upper 16 bits, its count of channels in the lower 16.
enum class LayoutTag : std::uint32_t {
    FormatsOwn = 0,
    Mono = (100U << 16U) | 1U,
    Stereo = (101U << 16U) | 2U,
    Quadraphonic = (108U << 16U) | 4U,
    Mpeg40A = (115U << 16U) | 4U,
    Mpeg40B = (116U << 16U) | 4U,
    Mpeg50A = (117U << 16U) | 5U,
    Mpeg50B = (118U << 16U) | 5U,
    Mpeg50C = (119U << 16U) | 5U,
    Mpeg50D = (120U << 16U) | 5U,
    Mpeg51A = (121U << 16U) | 6U,
    Mpeg51B = (122U << 16U) | 6U,
    Mpeg51C = (123U << 16U) | 6U,
    Mpeg51D = (124U << 16U) | 6U,
    Mpeg61A = (125U << 16U) | 7U,
    Mpeg71A = (126U << 16U) | 8U,
    Mpeg71B = (127U << 16U) | 8U,
    Default71 = (129U << 16U) | 8U,  // format 8's own order
    AudioUnit60 = (139U << 16U) | 6U,
    Aac60 = (141U << 16U) | 6U,
    Aac61 = (142U << 16U) | 7U,
};

enum class ChannelLabel : std::uint32_t {
    Left = 1,
    Right = 2,
    Centre = 3,
    Lfe = 4,
    LeftSurround = 5,
    RightSurround = 6,
    LeftCentre = 7,
    RightCentre = 8,
    CentreSurround = 9,
    Mono = 42,
    UseCoordinates = 100,
};

// What GetAngleForChannel returns for a channel without a direction.
inline constexpr float kNoDirection = 1000.0F;

// The channel at each position of a layout, in the layout's order. Positions that it does not have
// hold ChannelID::Left, which is 0.
using ChannelMapping = std::array<ChannelID, 8>;

// "5.1" and the like; "unknown" for a value that has no name.
VELTRA_EXPORT const char* nameOf(SurroundFormat format) noexcept;

// "MPEG 5.1 A" and the like; "own order" for FormatsOwn, "unknown" for a value that has no name.
VELTRA_EXPORT const char* nameOf(LayoutTag tag) noexcept;

// The channels of a format in the order of a tag; empty when the tag is not one of the format's.
// The span lives as long as the program.
VELTRA_EXPORT std::span<const ChannelID> channelOrder(
    SurroundFormat format, LayoutTag tag = LayoutTag::FormatsOwn) noexcept;

struct ChannelRemap {
    // For each position of the new order the position in the old one that its channel comes from;
    // nothing when the old one lacks the channel.
    std::vector<std::optional<std::uint32_t>> sources;

    // The same for a person to read, positions counted from 1. A channel that the old order lacks
    // is "silent", one that the new order lacks is "dropped".
    std::string words;
};

// How the channels of a format move from one order to another; nothing when one of the tags is not
// one of the format's. Throws std::bad_alloc when memory is out.
VELTRA_EXPORT std::optional<ChannelRemap> remapChannels(SurroundFormat format, LayoutTag from,
                                                        LayoutTag to);

// channel_layout.h with names in place of numbers.
inline std::uint32_t GetChannelIDBitMask(SurroundFormat format) noexcept {
    return GetChannelIDBitMask(static_cast<std::uint32_t>(format));
}
inline const char* GetChannelLabel(ChannelID channel) noexcept {
    return GetChannelLabel(static_cast<std::uint32_t>(channel));
}
inline float GetAngleForChannel(SurroundFormat format, ChannelID channel) noexcept {
    return GetAngleForChannel(static_cast<std::uint32_t>(format),
                              static_cast<std::uint32_t>(channel));
}
inline SurroundFormat FindFormatForAudioChannelLayoutTag(LayoutTag tag) noexcept {
    return static_cast<SurroundFormat>(
        FindFormatForAudioChannelLayoutTag(static_cast<std::uint32_t>(tag), nullptr));
}
inline ChannelLabel GetLabelForChannelID(SurroundFormat format, ChannelID channel) noexcept {
    return static_cast<ChannelLabel>(GetLabelForChannelID(static_cast<std::uint32_t>(format),
                                                          static_cast<std::uint32_t>(channel)));
}

}  // namespace veltra
