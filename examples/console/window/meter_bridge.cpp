// SPDX-License-Identifier: MIT
#include "meter_bridge.h"

#include "../text.h"
#include "veltra/controls/level_meters/decibel_scale.h"
#include "veltra/ui/canvas.h"
#include "veltra/ui/window.h"

#include <algorithm>
#include <cmath>

namespace veltra::console {

namespace {

constexpr float kScaleWidth = 24.0F;
constexpr float kScaleGap = 5.0F;
constexpr float kNamesHeight = 14.0F;
constexpr float kThickness = 14.0F;
constexpr float kGap = 2.0F;
constexpr float kLedPitch = 5.0F;    // points from one LED to the next
constexpr float kScaleStep = 10.0F;  // points between labels at least
constexpr int kDecibels[] = {-60, -50, -40, -30, -24, -18, -12, -6, 0};

}  // namespace

MeterBridge::MeterBridge(const Rect& frame, int channels, const ChannelPlan& plan) : View(frame) {
    for (int channel = 0; channel < channels; ++channel)
        m_channelNames.push_back(plan.channelName(static_cast<std::size_t>(channel)));
    if (channels == 2) {
        m_stereo = &addSubview(std::make_unique<DfStereoLevelMeterView>());
        m_stereo->cellL().setLevelScale(QkLevelMeterCell::LevelScale::Decibels);
        m_stereo->cellR().setLevelScale(QkLevelMeterCell::LevelScale::Decibels);
        m_stereo->setToolTips("Peak level in dBFS", "Has clipped; click to reset");
    } else {
        for (const std::string& name : m_channelNames) {
            auto cell = std::make_unique<QkLevelMeterCell>();
            cell->setOrientation(LevelMeterOrientation::Vertical);
            cell->setLevelScale(QkLevelMeterCell::LevelScale::Decibels);
            cell->setAccessibilityDescription("channel " + name);
            m_cells.push_back(std::move(cell));
        }
    }
    layOut();
}

// In the middle, where that leaves room for the scale.
Rect MeterBridge::metersRect() const {
    const float count = static_cast<float>(m_channelNames.size());
    const float scale = kScaleWidth + kScaleGap;
    const float room = bounds().size.width - scale;
    const float most = std::min(kThickness, (room + kGap) / count - kGap);
    const float width = count * (std::max(most, 2.0F) + kGap) - kGap;
    const float left = std::max((bounds().size.width - width) * 0.5F, scale);
    return {{left, 0.0F}, {width, bounds().size.height - kNamesHeight}};
}

// From the left edge of a meter to the next one's.
float MeterBridge::meterPitch() const {
    return (metersRect().size.width + kGap) / static_cast<float>(m_channelNames.size());
}

void MeterBridge::layOut() {
    const Rect meters = metersRect();
    if (m_stereo != nullptr) {
        m_stereo->setOrientation(LevelMeterOrientation::Vertical);
        m_stereo->setFrame(meters);
        m_stereo->setLEDCount(fittingLedCount());
        return;
    }
    m_frames.clear();
    for (std::size_t i = 0; i < m_cells.size(); ++i) {
        const float left = meters.minX() + static_cast<float>(i) * meterPitch();
        m_frames.push_back({{left, 0.0F}, {meterPitch() - kGap, meters.size.height}});
        m_cells[i]->calculateInternalsFromCellFrame(m_frames.back(), *this);
    }
    const std::uint32_t count = fittingLedCount();  // before the first cell fits its bar to it
    for (const auto& cell : m_cells)
        cell->setLEDCount(count);
}

// LEDs are whole pixels long: as many as fill the bar without leaving room at its ends.
std::uint32_t MeterBridge::fittingLedCount() const {
    const float scale = window() != nullptr ? window()->scale() : 1.0F;
    const float pixels = (barRect().size.height - 4.0F) * scale;
    return static_cast<std::uint32_t>(std::max(pixels / std::round(kLedPitch * scale), 1.0F));
}

// Of the first channel; the others are level with it.
Rect MeterBridge::barRect() const {
    if (m_stereo != nullptr) {
        return m_stereo->convertRectToView(m_stereo->cellL().levelMeterRect(), this);
    }
    return m_cells.empty() ? metersRect() : m_cells.front()->levelMeterRect();
}

void MeterBridge::setPeaks(std::span<const float> peaks) {
    const auto position = [peaks](std::size_t channel) {
        return channel < peaks.size() ? meterPositionForAmplitude(peaks[channel]) : 0.0F;
    };
    if (m_stereo != nullptr) m_stereo->setLevelL(position(0), position(1));
    for (std::size_t i = 0; i < m_cells.size(); ++i)
        m_cells[i]->setLevel(position(i));
}

void MeterBridge::drawRect(Canvas& canvas, const Rect& /*dirty*/) {
    const Rect meters = metersRect();
    if (needsToDrawRect({{}, {meters.minX(), meters.size.height}})) drawScale(canvas);
    if (needsToDrawRect({{0.0F, meters.maxY()}, {bounds().size.width, kNamesHeight}}))
        drawNames(canvas);
    for (std::size_t i = 0; i < m_cells.size(); ++i) {
        if (needsToDrawRect(m_frames[i])) m_cells[i]->drawWithFrame(canvas, m_frames[i], *this);
    }
}

void MeterBridge::drawScale(Canvas& canvas) const {
    const Rect meters = metersRect();
    const Rect bar = barRect();
    const float right = meters.minX() - kScaleGap;
    StyledText text{{},
                    Font{{}, 9.0F, FontWeight::Regular, true},
                    systemColor(SystemColor::SecondaryLabel),
                    TextAlignment::Right};
    float below = bar.maxY() + kScaleStep;  // the label of which the next one stays clear
    for (const int decibels : kDecibels) {
        const float y = bar.maxY() - bar.size.height * meterPositionForDecibels(decibels);
        if (below - y < kScaleStep) continue;
        below = y;
        text.string = std::to_string(decibels);
        canvas.drawText(text, {{right - kScaleWidth, y - 6.0F}, {kScaleWidth - 3.0F, 12.0F}});
        const Rect tick{{right, y - 0.5F}, {3.0F, 1.0F}};
        canvas.fillRect(canvas.alignedToDevice(tick), systemColor(SystemColor::Grid));
    }
}

void MeterBridge::drawNames(Canvas& canvas) const {
    const Rect meters = metersRect();
    StyledText text{{},
                    Font::systemFont(9.0F),
                    systemColor(SystemColor::SecondaryLabel),
                    TextAlignment::Center};
    for (std::size_t i = 0; i < m_channelNames.size(); ++i) {
        const float middle = meters.minX() + (static_cast<float>(i) + 0.5F) * meterPitch();
        text.string = m_channelNames[i];
        canvas.drawText(text, {{middle - 16.0F, meters.maxY() + 1.0F}, {31.0F, 12.0F}});
    }
}

void MeterBridge::mouseDown(const Event& /*event*/) {
    for (const auto& cell : m_cells)
        cell->setPeak(false);
}

std::vector<AccessibilityElement*> MeterBridge::accessibilityChildren() const {
    std::vector<AccessibilityElement*> children = View::accessibilityChildren();
    for (const auto& cell : m_cells)
        children.push_back(cell.get());
    return children;
}

}  // namespace veltra::console
