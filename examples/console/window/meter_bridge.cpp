#include "meter_bridge.h"

#include "../text.h"
#include "veltra/controls/level_meters/decibel_scale.h"
#include "veltra/platform/ui/canvas.h"
#include "veltra/platform/ui/window.h"

#include <algorithm>
#include <cmath>

namespace veltra::console {

namespace {

constexpr float kScaleWidth = 24.0F;
constexpr float kScaleGap = 5.0F;
constexpr float kThickness = 14.0F;
constexpr float kGap = 2.0F;
constexpr float kLedPitch = 5.0F;  // points from one LED to the next
constexpr int kDecibels[] = {0, -6, -12, -18, -24, -30, -40, -50, -60};

}  // namespace

MeterBridge::MeterBridge(const Rect& frame, int channels) : View(frame) {
    if (channels == 2) {
        m_stereo = &addSubview(std::make_unique<DfStereoLevelMeterView>());
        m_stereo->cellL().setLevelScale(QkLevelMeterCell::LevelScale::Decibels);
        m_stereo->cellR().setLevelScale(QkLevelMeterCell::LevelScale::Decibels);
        m_stereo->setToolTips("Peak level in dBFS", "Has clipped; click to reset");
    } else {
        for (int channel = 1; channel <= channels; ++channel) {
            auto cell = std::make_unique<QkLevelMeterCell>();
            cell->setOrientation(LevelMeterOrientation::Vertical);
            cell->setLevelScale(QkLevelMeterCell::LevelScale::Decibels);
            cell->setAccessibilityDescription(formatted("channel %d", channel));
            m_cells.push_back(std::move(cell));
        }
    }
    layOut();
}

// In the middle, where that leaves room for the scale.
Rect MeterBridge::metersRect() const {
    const float count = m_stereo != nullptr ? 2.0F : static_cast<float>(m_cells.size());
    const float scale = kScaleWidth + kScaleGap;
    const float room = bounds().size.width - scale;
    const float most = std::min(kThickness, (room + kGap) / count - kGap);
    const float width = count * (std::max(most, 2.0F) + kGap) - kGap;
    const float left = std::max((bounds().size.width - width) * 0.5F, scale);
    return {{left, 0.0F}, {width, bounds().size.height}};
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
    const float count = static_cast<float>(m_cells.size());
    const float width = (meters.size.width + kGap) / count - kGap;
    for (std::size_t i = 0; i < m_cells.size(); ++i) {
        const float left = meters.minX() + static_cast<float>(i) * (width + kGap);
        m_frames.push_back({{left, 0.0F}, {width, meters.size.height}});
        m_cells[i]->calculateInternalsFromCellFrame(m_frames.back(), *this);
        m_cells[i]->setLEDCount(fittingLedCount());
    }
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
    for (const int decibels : kDecibels) {
        const float y = bar.maxY() - bar.size.height * meterPositionForDecibels(decibels);
        text.string = std::to_string(decibels);
        canvas.drawText(text, {{right - kScaleWidth, y - 6.0F}, {kScaleWidth - 3.0F, 12.0F}});
        const Rect tick{{right, y - 0.5F}, {3.0F, 1.0F}};
        canvas.fillRect(canvas.alignedToDevice(tick), systemColor(SystemColor::Grid));
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
