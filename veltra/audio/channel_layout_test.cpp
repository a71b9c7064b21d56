// SPDX-License-Identifier: MIT
#include "veltra/audio/channel_layout.h"

#include "veltra/audio/surround_names.h"
#include "veltra/base/testing/prelude.h"

namespace veltra {
namespace {

using Mapping = std::array<std::uint32_t, 8>;

constexpr Mapping kUntouched = {77, 77, 77, 77, 77, 77, 77, 77};

TEST(ChannelLayout, EveryLayoutOrdersItsFormatsChannelsAndIsFoundByItsTag) {
    constexpr std::uint32_t kLfe = 1U << 8U;
    int own = 0, tagged = 0;
    for (std::uint32_t place = 0; place < 12 * 300 * 12; ++place) {
        const std::uint32_t format = place / 3600, tag = (place / 12 % 300) << 16U | place % 12;
        Mapping mapping = kUntouched, byTag = kUntouched;
        if (!GetMappingForFormatAndAudioChannelLayoutTag(format, tag, mapping.data())) {
            EXPECT_EQ(mapping, kUntouched);
            continue;
        }
        const std::uint32_t mask = GetChannelIDBitMask(format);
        const auto count = tag == 0 ? std::popcount(mask) : static_cast<int>(tag & 0xFFFFU);
        std::uint32_t held = 0;
        for (int position = 0; position < count; ++position)
            held |= 1U << mapping[static_cast<std::size_t>(position)];
        EXPECT_EQ(std::popcount(held), count);
        EXPECT_TRUE(held == mask || (tag != 0 && held == (mask & ~kLfe))) << format << " " << tag;
        EXPECT_EQ(std::count(mapping.begin() + count, mapping.end(), 0U), 8 - count);
        ++(tag == 0 ? own : tagged);
        EXPECT_EQ(FindFormatForAudioChannelLayoutTag(tag, byTag.data()), tag == 0 ? 0 : format);
        EXPECT_EQ(byTag, tag == 0 ? kUntouched : mapping);
        const bool isAscending = std::is_sorted(mapping.begin(), mapping.begin() + count);
        EXPECT_TRUE(tag != 0 || isAscending);
    }
    EXPECT_TRUE(own == 8 && tagged == 20);
    EXPECT_EQ(FindFormatForAudioChannelLayoutTag(0x10000, nullptr), 0U);
}

// The number of each tag, and the order that its published name stands for.
TEST(ChannelLayout, TagsHaveTheirPublishedNumbersAndOrders) {
    std::istringstream all(
        "100 L,101 L R,108 L R Ls Rs,115 L R C Cs,116 C L R Cs,117 L R C Ls Rs,"
        "118 L R Ls Rs C,119 L C R Ls Rs,120 C L R Ls Rs,121 L R C LFE Ls Rs,"
        "122 L R Ls Rs C LFE,123 L C R Ls Rs LFE,124 C L R Ls Rs LFE,125 L R C LFE Ls Rs Cs,"
        "126 L R C LFE Ls Rs Lc Rc,127 C Lc Rc L R Ls Rs LFE,129 L R Ls Rs C LFE Lc Rc,"
        "139 L R Ls Rs C Cs,141 C L R Ls Rs Cs,142 C L R Ls Rs Cs LFE");
    for (std::string published; std::getline(all, published, ',');) {
        const auto count = std::count(published.begin(), published.end(), ' ');
        const auto tag = static_cast<LayoutTag>(std::stoul(published) << 16U | std::size_t(count));
        std::string found = published.substr(0, 3);
        for (const ChannelID channel : channelOrder(FindFormatForAudioChannelLayoutTag(tag), tag))
            found += std::string(" ") + GetChannelLabel(channel);
        EXPECT_EQ(found, published);
        EXPECT_STRNE(nameOf(tag), "unknown");
    }
    EXPECT_STREQ(GetChannelLabel(11), "");
    EXPECT_STREQ(GetChannelLabel(0xFFFFFFFF), "");
}

TEST(ChannelLayout, LabelsAndAnglesBelongToChannelsThatTheFormatHolds) {
    constexpr std::uint32_t kPublished[] = {1, 2, 100, 100, 5, 6, 9, 3, 4, 7, 8};
    const std::map<std::pair<std::uint32_t, std::uint32_t>, float> left = {
        {{2, 0}, -30},  {{3, 0}, -45}, {{3, 4}, -135}, {{4, 0}, -30},   {{5, 0}, -30},
        {{5, 4}, -110}, {{6, 0}, -30}, {{6, 4}, -110}, {{7, 0}, -30},   {{7, 2}, -70},
        {{7, 4}, -110}, {{8, 0}, -45}, {{8, 4}, -135}, {{8, 9}, -22.5F}};
    for (std::uint32_t format = 0; format < 12; ++format) {
        const std::uint32_t mask = GetChannelIDBitMask(format);
        const auto named = static_cast<SurroundFormat>(format);
        EXPECT_EQ(mask != 0, format >= 1 && format <= 8);
        EXPECT_EQ(GetChannelIDBitMask(named), mask);
        for (std::uint32_t channel = 0; channel < 14; ++channel) {
            const bool isHeld = (mask >> channel & 1U) != 0;
            const std::uint32_t label = isHeld && format != 7 ? kPublished[channel] : 100;
            EXPECT_EQ(GetLabelForChannelID(format, channel), mask == 1 && isHeld ? 42 : label);
            float angle = isHeld && channel == 8 ? kNoDirection : 0.0F;
            if (isHeld && channel == 6) angle = 180.0F;
            const auto own = left.find({format, channel});
            const auto mirrored = left.find({format, channel - 1});
            if (own != left.end()) angle = own->second;
            if (mirrored != left.end()) angle = -mirrored->second;
            EXPECT_EQ(GetAngleForChannel(format, channel), angle) << format << " " << channel;
            const auto id = static_cast<ChannelID>(channel);
            EXPECT_EQ(GetAngleForChannel(named, id), angle);
            EXPECT_EQ(GetLabelForChannelID(named, id),
                      ChannelLabel(GetLabelForChannelID(format, channel)));
        }
    }
}

TEST(ChannelLayout, TheSettableTableIsFlatAndIgnoresWhatLiesBeyondIt) {
    SetAngleForChannel(8, 3, -12.5F);
    EXPECT_TRUE(AngleForChannel(8, 3) == -12.5F && AngleForChannel(7, 11) == -12.5F);
    EXPECT_EQ(AngleForChannelTab(8) + 3, AngleForChannelTab(0) + 67);
    AngleForChannelTab(8)[3] = 0;
    SetAngleForChannel(10, 0, 1.0F);
    SetAngleForChannel(0x20000000, 0, 1.0F);
    for (std::uint32_t place = 0; place < 90; ++place)
        EXPECT_EQ(AngleForChannel(0, place), 0.0F);
    EXPECT_EQ(AngleForChannelTab(10), nullptr);
}

TEST(SurroundNames, ARemapSaysWhereEveryChannelComesFrom) {
    using Format = SurroundFormat;
    const auto remap = remapChannels(Format::Surround51, LayoutTag::Mpeg51A, LayoutTag::Mpeg51C);
    const std::vector<std::optional<std::uint32_t>> sources = {0, 2, 1, 4, 5, 3};
    EXPECT_EQ(remap->sources, sources);
    EXPECT_EQ(remap->words,
              "5.1, MPEG 5.1 A to MPEG 5.1 C: L from 1, C from 3, R from 2, "
              "Ls from 5, Rs from 6, LFE from 4");

    const auto widened = remapChannels(Format::Surround61, LayoutTag::Aac60, LayoutTag::FormatsOwn);
    EXPECT_EQ(widened->sources.back(), std::nullopt);
    EXPECT_EQ(widened->words,
              "6.1, AAC 6.0 to own order: L from 2, R from 3, Ls from 4, "
              "Rs from 5, Cs from 6, C from 1, LFE silent");
    const auto narrowed = remapChannels(Format::Surround51, LayoutTag::Mpeg51B, LayoutTag::Mpeg50B);
    EXPECT_TRUE(narrowed->words.ends_with("C from 5, LFE dropped"));
    EXPECT_FALSE(remapChannels(Format::Stereo, LayoutTag::Mono, LayoutTag::Stereo).has_value());
    EXPECT_FALSE(remapChannels(Format::Stereo, LayoutTag::Stereo, LayoutTag::Mono).has_value());
    EXPECT_STREQ(nameOf(static_cast<Format>(99)), "unknown");
    EXPECT_STREQ(nameOf(static_cast<LayoutTag>(99)), "unknown");
}

}  // namespace
}  // namespace veltra
