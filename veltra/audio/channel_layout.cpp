// SPDX-License-Identifier: MIT
#include "veltra/audio/channel_layout.h"

#include "veltra/audio/detail/channel_tables.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace veltra {

namespace detail {

namespace {

using Format = SurroundFormat;
using enum ChannelID;

constexpr std::size_t kFormats = 8;
constexpr std::size_t kChannels = 11;

constexpr const char* kChannelNames[] = {"L",  "R", "Lm",  "Rm", "Ls", "Rs",
                                         "Cs", "C", "LFE", "Lc", "Rc"};
static_assert(std::size(kChannelNames) == kChannels);

// clang-format off
constexpr float kN = kNoDirection;
constexpr float kAngles[kFormats][kChannels] = {
    //  L      R     Lm     Rm      Ls      Rs     Cs   C  LFE     Lc     Rc
    {   0,     0,     0,     0,      0,      0,     0,  0,   0,     0,     0},
    { -30,    30,     0,     0,      0,      0,     0,  0,   0,     0,     0},
    { -45,    45,     0,     0,   -135,    135,     0,  0,   0,     0,     0},
    { -30,    30,     0,     0,      0,      0,   180,  0,   0,     0,     0},
    { -30,    30,     0,     0,   -110,    110,     0,  0,  kN,     0,     0},
    { -30,    30,     0,     0,   -110,    110,   180,  0,  kN,     0,     0},
    { -30,    30,   -70,    70,   -110,    110,     0,  0,  kN,     0,     0},
    { -45,    45,     0,     0,   -135,    135,     0,  0,  kN, -22.5F, 22.5F},
};

// Searched from the top. The second own order of formats 5 and 6 heads the tags without LFE; a
// search for the own order deliberately ends before it.
constexpr LayoutRecord kLayouts[] = {
    {Format::Mono,             LayoutTag::FormatsOwn,   {Left}},
    {Format::Mono,             LayoutTag::Mono,         {Left}},
    {Format::Stereo,           LayoutTag::FormatsOwn,   {Left, Right}},
    {Format::Stereo,           LayoutTag::Stereo,       {Left, Right}},
    {Format::Quadraphonic,     LayoutTag::FormatsOwn,   {Left, Right, LeftSurround, RightSurround}},
    {Format::Quadraphonic,     LayoutTag::Quadraphonic, {Left, Right, LeftSurround, RightSurround}},
    {Format::Lcrs,             LayoutTag::FormatsOwn,   {Left, Right, CentreSurround, Centre}},
    {Format::Lcrs,             LayoutTag::Mpeg40A,      {Left, Right, Centre, CentreSurround}},
    {Format::Lcrs,             LayoutTag::Mpeg40B,      {Centre, Left, Right, CentreSurround}},
    {Format::Surround51,       LayoutTag::FormatsOwn,   {Left, Right, LeftSurround, RightSurround, Centre, Lfe}},
    {Format::Surround51,       LayoutTag::Mpeg51A,      {Left, Right, Centre, Lfe, LeftSurround, RightSurround}},
    {Format::Surround51,       LayoutTag::Mpeg51B,      {Left, Right, LeftSurround, RightSurround, Centre, Lfe}},
    {Format::Surround51,       LayoutTag::Mpeg51C,      {Left, Centre, Right, LeftSurround, RightSurround, Lfe}},
    {Format::Surround51,       LayoutTag::Mpeg51D,      {Centre, Left, Right, LeftSurround, RightSurround, Lfe}},
    {Format::Surround51,       LayoutTag::FormatsOwn,   {Left, Right, LeftSurround, RightSurround, Centre}},
    {Format::Surround51,       LayoutTag::Mpeg50A,      {Left, Right, Centre, LeftSurround, RightSurround}},
    {Format::Surround51,       LayoutTag::Mpeg50B,      {Left, Right, LeftSurround, RightSurround, Centre}},
    {Format::Surround51,       LayoutTag::Mpeg50C,      {Left, Centre, Right, LeftSurround, RightSurround}},
    {Format::Surround51,       LayoutTag::Mpeg50D,      {Centre, Left, Right, LeftSurround, RightSurround}},
    {Format::Surround61,       LayoutTag::FormatsOwn,   {Left, Right, LeftSurround, RightSurround, CentreSurround, Centre, Lfe}},
    {Format::Surround61,       LayoutTag::Mpeg61A,      {Left, Right, Centre, Lfe, LeftSurround, RightSurround, CentreSurround}},
    {Format::Surround61,       LayoutTag::Aac61,        {Centre, Left, Right, LeftSurround, RightSurround, CentreSurround, Lfe}},
    {Format::Surround61,       LayoutTag::FormatsOwn,   {Left, Right, LeftSurround, RightSurround, CentreSurround, Centre}},
    {Format::Surround61,       LayoutTag::AudioUnit60,  {Left, Right, LeftSurround, RightSurround, Centre, CentreSurround}},
    {Format::Surround61,       LayoutTag::Aac60,        {Centre, Left, Right, LeftSurround, RightSurround, CentreSurround}},
    {Format::Surround71Mid,    LayoutTag::FormatsOwn,   {Left, Right, LeftMid, RightMid, LeftSurround, RightSurround, Centre, Lfe}},
    {Format::Surround71Centre, LayoutTag::FormatsOwn,   {Left, Right, LeftSurround, RightSurround, Centre, Lfe, LeftCentre, RightCentre}},
    {Format::Surround71Centre, LayoutTag::Mpeg71A,      {Left, Right, Centre, Lfe, LeftSurround, RightSurround, LeftCentre, RightCentre}},
    {Format::Surround71Centre, LayoutTag::Mpeg71B,      {Centre, LeftCentre, RightCentre, Left, Right, LeftSurround, RightSurround, Lfe}},
    {Format::Surround71Centre, LayoutTag::Default71,    {Left, Right, LeftSurround, RightSurround, Centre, Lfe, LeftCentre, RightCentre}},
};
static_assert(std::size(kLayouts) == 30);

struct Labelled {
    ChannelID channel;
    ChannelLabel label;
};
struct LabelRecord {
    Format format;
    std::size_t count;
    std::array<Labelled, 8> pairs;
};
using Label = ChannelLabel;
constexpr Labelled kL{Left, Label::Left}, kR{Right, Label::Right};
constexpr Labelled kLs{LeftSurround, Label::LeftSurround}, kRs{RightSurround, Label::RightSurround};
constexpr Labelled kCs{CentreSurround, Label::CentreSurround};
constexpr Labelled kC{Centre, Label::Centre}, kLfe{Lfe, Label::Lfe};
constexpr Labelled kLc{LeftCentre, Label::LeftCentre}, kRc{RightCentre, Label::RightCentre};
consteval Labelled unlabelled(ChannelID channel) { return {channel, Label::UseCoordinates}; }

constexpr LabelRecord kLabels[kFormats] = {
    {Format::Mono,             1, {{{Left, Label::Mono}}}},
    {Format::Stereo,           2, {{kL, kR}}},
    {Format::Quadraphonic,     4, {{kL, kR, kLs, kRs}}},
    {Format::Lcrs,             4, {{kL, kR, kCs, kC}}},
    {Format::Surround51,       6, {{kL, kR, kLs, kRs, kC, kLfe}}},
    {Format::Surround61,       7, {{kL, kR, kLs, kRs, kCs, kC, kLfe}}},
    {Format::Surround71Mid,    8, {{unlabelled(Left), unlabelled(Right), unlabelled(LeftMid),
                                    unlabelled(RightMid), unlabelled(LeftSurround),
                                    unlabelled(RightSurround), unlabelled(Centre),
                                    unlabelled(Lfe)}}},
    {Format::Surround71Centre, 8, {{kL, kR, kLs, kRs, kC, kLfe, kLc, kRc}}},
};
// clang-format on

// Bit n: the format has the channel whose number is n.
constexpr std::array<std::uint32_t, kFormats> kMasks = [] {
    std::array<std::uint32_t, kFormats> masks{};
    for (std::size_t row = 0; row < kFormats; ++row) {
        for (std::size_t index = 0; index < kLabels[row].count; ++index)
            masks[row] |= 1U << static_cast<unsigned>(kLabels[row].pairs[index].channel);
    }
    return masks;
}();

// 0 for format 1; kFormats or more for a format that there is not.
std::size_t rowOf(Format format) noexcept {
    return static_cast<std::size_t>(static_cast<std::uint32_t>(format) - 1U);
}

std::size_t columnOf(ChannelID channel) noexcept {
    return static_cast<std::size_t>(channel);
}

}  // namespace

std::uint32_t channelMask(Format format) noexcept {
    return rowOf(format) < kFormats ? kMasks[rowOf(format)] : 0;
}

const char* channelName(ChannelID channel) noexcept {
    return columnOf(channel) < kChannels ? kChannelNames[columnOf(channel)] : "";
}

float defaultAngle(Format format, ChannelID channel) noexcept {
    const bool known = rowOf(format) < kFormats && columnOf(channel) < kChannels;
    return known ? kAngles[rowOf(format)][columnOf(channel)] : 0.0F;
}

ChannelLabel channelLabel(Format format, ChannelID channel) noexcept {
    if (rowOf(format) >= kFormats) return ChannelLabel::UseCoordinates;
    const LabelRecord& record = kLabels[rowOf(format)];
    for (const auto& [id, label] : std::span(record.pairs).first(record.count)) {
        if (id == channel) return label;
    }
    return ChannelLabel::UseCoordinates;
}

const LayoutRecord* findLayout(LayoutTag tag) noexcept {
    constexpr auto kByBitmap = static_cast<LayoutTag>(0x10000);
    if (tag == LayoutTag::FormatsOwn || tag == kByBitmap) return nullptr;
    for (const LayoutRecord& layout : kLayouts) {
        if (layout.tag == tag) return &layout;
    }
    return nullptr;
}

const LayoutRecord* findLayout(Format format, LayoutTag tag) noexcept {
    for (const LayoutRecord& layout : kLayouts) {
        if (layout.format == format && layout.tag == tag) return &layout;
    }
    return nullptr;
}

namespace {

constexpr std::uint32_t kRowLength = 8;
float settableAngles[10 * kRowLength];

float* settableAngle(std::uint32_t format, std::uint32_t channel) noexcept {
    const std::uint64_t index = std::uint64_t{format} * kRowLength + channel;
    return index < std::size(settableAngles) ? &settableAngles[index] : nullptr;
}

void copyMapping(const ChannelMapping& mapping, std::uint32_t* destination) noexcept {
    if (destination == nullptr) return;
    std::transform(mapping.begin(), mapping.end(), destination,
                   [](ChannelID channel) { return static_cast<std::uint32_t>(channel); });
}

}  // namespace

}  // namespace detail

uint32_t GetChannelIDBitMask(uint32_t format) noexcept {
    return detail::channelMask(static_cast<SurroundFormat>(format));
}

const char* GetChannelLabel(uint32_t channelID) noexcept {
    return detail::channelName(static_cast<ChannelID>(channelID));
}

float GetAngleForChannel(uint32_t format, uint32_t channelID) noexcept {
    return detail::defaultAngle(static_cast<SurroundFormat>(format),
                                static_cast<ChannelID>(channelID));
}

float AngleForChannel(uint32_t format, uint32_t channelID) noexcept {
    const float* const angle = detail::settableAngle(format, channelID);
    return angle != nullptr ? *angle : 0.0F;
}

void SetAngleForChannel(uint32_t format, uint32_t channelID, float angle) noexcept {
    float* const place = detail::settableAngle(format, channelID);
    if (place != nullptr) *place = angle;
}

float* AngleForChannelTab(uint32_t format) noexcept {
    return detail::settableAngle(format, 0);
}

uint32_t FindFormatForAudioChannelLayoutTag(uint32_t layoutTag, uint32_t* mapping) noexcept {
    const detail::LayoutRecord* const layout =
        detail::findLayout(static_cast<LayoutTag>(layoutTag));
    if (layout == nullptr) return 0;
    detail::copyMapping(layout->mapping, mapping);
    return static_cast<std::uint32_t>(layout->format);
}

bool GetMappingForFormatAndAudioChannelLayoutTag(uint32_t format, uint32_t layoutTag,
                                                 uint32_t* mapping) noexcept {
    const detail::LayoutRecord* const layout =
        detail::findLayout(static_cast<SurroundFormat>(format), static_cast<LayoutTag>(layoutTag));
    if (layout == nullptr) return false;
    detail::copyMapping(layout->mapping, mapping);
    return true;
}

uint32_t GetLabelForChannelID(uint32_t format, uint32_t channelID) noexcept {
    return static_cast<std::uint32_t>(detail::channelLabel(static_cast<SurroundFormat>(format),
                                                           static_cast<ChannelID>(channelID)));
}

}  // namespace veltra
