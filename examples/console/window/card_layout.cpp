// SPDX-License-Identifier: MIT
#include "card_layout.h"

#include <algorithm>
#include <cmath>

namespace veltra::console {

namespace {

constexpr float kMargin = 12.0F;
constexpr float kGap = 4.0F;
constexpr float kFieldHeight = 20.0F;
constexpr float kSwitchHeight = 24.0F;
constexpr float kFaderWidth = 64.0F;  // with its marks
constexpr float kCapWidth = 36.0F;    // without, but for that at 0 dB
constexpr float kCapHeight = 36.0F;
constexpr float kScaleWidth = 28.0F;
constexpr float kPanTextWidth = 36.0F;
constexpr float kGlassEnds = 24.0F;  // clip lights and what lies around them
constexpr float kBarTop = 20.0F;     // below the upper edge of the glass
constexpr float kLeastForFader = 116.0F;
constexpr float kLeastForGain = 128.0F;
constexpr float kGrownFrom = 140.0F;  // width of a card
constexpr float kMostBar = 16.0F;
constexpr float kLeastBar = 2.0F;
constexpr float kLeastGap = 1.0F;

float widthOfBars(const CardLayout& layout, float count) {
    return 2.0F * CardLayout::kGlass + count * layout.bar + (count - 1.0F) * layout.barGap;
}

float naturalBar(float card, int bars) {
    if (bars > 2) return card >= 204.0F ? 12.0F : 7.0F;
    const float grown = std::floor(std::max(card - kGrownFrom, 0.0F) / 10.0F);
    return std::min((bars == 1 ? 10.0F : 9.0F) + grown, kMostBar);
}

float pictureHeight(CardKind kind, float card) {
    if (kind == CardKind::Mid) return 28.0F;
    return card >= 960.0F ? 96.0F : card >= 800.0F ? 72.0F : 44.0F;
}

}  // namespace

CardKind cardKind(float height) noexcept {
    return height >= 520.0F   ? CardKind::Full
           : height >= 400.0F ? CardKind::Mid
           : height >= 300.0F ? CardKind::Low
                              : CardKind::Mini;
}

float CardLayout::widthFor(int bars, bool hasFader) noexcept {
    CardLayout narrowest;
    narrowest.bar = kLeastBar;
    narrowest.barGap = kLeastGap;
    const float width = 2.0F * kMargin + (hasFader ? kCapWidth : 0.0F) + kScaleWidth +
                        widthOfBars(narrowest, static_cast<float>(bars));
    return std::ceil(width / kGrid) * kGrid;
}

CardLayout CardLayout::make(Size card, int bars, float bar) {
    CardLayout layout;
    layout.kind = cardKind(card.height);
    const bool isTall = layout.isTall();
    const float width = card.width - 2.0F * kMargin;
    const float right = card.width - kMargin;
    const auto row = [width](float y, float height) { return Rect{{kMargin, y}, {width, height}}; };
    const float half = (width - kGap) * 0.5F;
    const auto setSwitches = [&](float y) {
        layout.switches[0] = {{kMargin, y}, {half, kSwitchHeight}};
        layout.switches[1] = {{kMargin + half + kGap, y}, {half, kSwitchHeight}};
    };

    layout.name = row(12.0F, 16.0F);
    layout.more = {{right - 14.0F, 12.0F}, {16.0F, 16.0F}};
    float y = 36.0F;
    if (layout.kind != CardKind::Mini) {
        layout.format = row(30.0F, 14.0F);
        y = isTall ? 50.0F : 52.0F;
    }
    if (isTall) {
        const float picture = pictureHeight(layout.kind, card.height);
        const bool hasAxis = layout.kind == CardKind::Full;
        layout.picture = row(y, picture + (hasAxis ? kAxis : 0.0F));
        y += picture + (hasAxis ? 22.0F : 10.0F);
        setSwitches(y);
        y += 32.0F;
        // Wider and higher than the slider that is seen: its halo has room.
        layout.pan = {{kMargin - 4.0F, y - 4.0F}, {width - kPanTextWidth + 8.0F, 28.0F}};
        layout.panText = {{right - kPanTextWidth, y}, {kPanTextWidth, kFieldHeight}};
        y += 32.0F;
    }

    // Across: gain and fader at the left, the meter at the right.
    const auto count = static_cast<float>(bars);
    const bool hasFader = isTall || card.width >= std::max(kLeastForFader, widthFor(bars, true));
    const float faderWidth = isTall ? kFaderWidth : hasFader ? kCapWidth : 0.0F;
    layout.bar = bar > 0.0F ? bar : naturalBar(card.width, bars);
    const float room = width - faderWidth - kScaleWidth;
    if (widthOfBars(layout, count) > room) {
        const float forBars = room - 2.0F * kGlass - (count - 1.0F) * layout.barGap;
        layout.bar = std::max(std::floor(forBars / count), kLeastBar);
        if (widthOfBars(layout, count) > room) layout.barGap = kLeastGap;
    }
    const float glass = std::min(widthOfBars(layout, count), width - kScaleWidth);
    const float group = isTall ? std::min(width, 108.0F + glass) : width;
    const float left = kMargin + std::floor((width - group) / 8.0F) * 4.0F;
    const float meterLeft = isTall ? left + group - glass : right - glass;
    const float gain = isTall ? 56.0F : card.width >= kLeastForGain ? 40.0F : 0.0F;
    if (gain > 0.0F) layout.gain = {{left, y}, {gain, kFieldHeight}};
    const float peakLeft = gain > 0.0F ? left + gain + 8.0F : left;
    layout.peak = {{peakLeft, y}, {meterLeft + glass - peakLeft, kFieldHeight}};
    y += 28.0F;

    const float foot = isTall ? 22.0F : 36.0F;
    const float leds = std::floor((card.height - foot - kNames - y - kGlassEnds) / kPitch);
    const float glassHeight = kGlassEnds + kPitch * std::max(leds, 1.0F);
    layout.meter = {{meterLeft, y}, {glass, glassHeight + kNames}};
    layout.scale = {{meterLeft - kScaleWidth, y}, {kScaleWidth, glassHeight + 4.0F}};
    if (hasFader) {
        // Its travel is that of the levels: the cap reaches half of itself beyond.
        const float travel = glassHeight - kGlassEnds;
        layout.fader = {{left, y + kBarTop - kCapHeight * 0.5F}, {faderWidth, travel + kCapHeight}};
    }
    if (isTall) {
        layout.footer = row(card.height - foot - 2.0F, 14.0F);
    } else {
        setSwitches(card.height - foot);
    }
    return layout;
}

}  // namespace veltra::console
