// SPDX-License-Identifier: MIT
// Two level meters side by side, left and right. A click puts out both clip lights and sends the
// action.
//
// Upright meters stand beside each other, lying ones above each other with the left channel on top.
// Looks drawn by code lie on glass, which keeps to the far end of the view; a LevelMeterScaleView
// beside it shows the scale.
//
// Thread: main, for everything in here. Realtime-safe: no.
#pragma once

#include "veltra/controls/level_meters/level_meter_cell.h"
#include "veltra/ui/cell_factory.h"
#include "veltra/ui/control.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace veltra {

class VELTRA_EXPORT DfStereoLevelMeterView : public Control {
public:
    // `cells` makes both cells; what it makes must be a QkLevelMeterCell, else it is one of those.
    explicit DfStereoLevelMeterView(const Rect& frame = {}, const CellFactory& cells = cellClass());
    ~DfStereoLevelMeterView() override;

    // The class of its cells unless another is given: QkLevelMeterCell.
    static CellFactory cellClass();
    QkLevelMeterCell& cellL() noexcept { return *m_cellL; }
    QkLevelMeterCell& cellR() noexcept { return *m_cellR; }

    // The selectors of QkLevelMeterCell for one or both cells, left before right.
    void setLevelL(float levelL, float levelR, bool forceDisplayIfNeeded = false);
    float levelL() const noexcept { return m_cellL->level(); }
    float levelR() const noexcept { return m_cellR->level(); }
    void setPeakL(bool isOn);
    void setPeakR(bool isOn);
    void setRmsL(std::optional<float> rmsL, std::optional<float> rmsR);
    void setMuted(bool isMuted);
    void setLEDCount(std::uint32_t count);
    void setLEDPitch(float points);
    void setLevelScale(LevelMeterLevels scale);
    void setFallBackStep(float step);
    void setFallBackStepTime(double seconds);
    void setMaxLevelHoldTime(double seconds);
    void setOnStateLEDInset(float inset);
    void setImageIDs(std::int32_t levelMeterImageID, std::int32_t peakLEDImageID);

    // Nothing, as at first: lying where the view is wider than high.
    void setOrientation(std::optional<LevelMeterOrientation> orientation);
    LevelMeterOrientation orientation() const noexcept;

    // Between the cells, in points. At first 2; below 0 counts as 0.
    std::int32_t padding() const noexcept { return m_padding; }
    void setPadding(std::int32_t padding);

    // What appears when the pointer rests on the bars and on the clip lights; empty: nothing.
    void setToolTips(const std::string& levelText, const std::string& peakText);

    // A click on a disabled view is swallowed.
    void mouseDown(const Event& event) override;
    void mouseDragged(const Event& /*event*/) override {}
    void mouseUp(const Event& /*event*/) override {}
    void drawRect(Canvas& canvas, const Rect& dirty) override;
    Rect opaqueRect() const override;
    void appearanceDidChange() override { layOut(); }
    void viewDidMoveToWindow() override;

    // A group of two level indicators, "left stereo" and "right stereo" (keys of
    // localizedString()); setAccessibilityName() names the group. While it is enabled, Press does
    // what a click does.
    AccessibilityRole accessibilityRole() const override { return AccessibilityRole::Group; }
    std::vector<AccessibilityElement*> accessibilityChildren() const override;
    std::vector<AccessibilityAction> accessibilityActions() const override;
    bool performAccessibilityAction(AccessibilityAction action) override;

protected:
    void frameDidChange() override { layOut(); }

private:
    // The cells' frames, of equal sizes in device pixels, inside of the edge of glass. Each cell
    // has its cellHeight(), less where the bounds are too low; lying ones keep to the middle.
    void getCellFrames(Rect& left, Rect& right) const;
    void layOut();
    void placeCells();
    float glassEdge() const;
    bool needsGlass() const;
    void clearPeaksAndSendAction();

    const std::unique_ptr<QkLevelMeterCell> m_cellL;
    const std::unique_ptr<QkLevelMeterCell> m_cellR;
    std::int32_t m_ImageIDLevel = kLevelMeterImageLED;
    std::int32_t m_ImageIDPeak = kLevelMeterImageLED;
    std::int32_t m_ToolTipTagLevelL = 0;  // 0: none
    std::int32_t m_ToolTipTagLevelR = 0;
    std::int32_t m_ToolTipTagPeakL = 0;
    std::int32_t m_ToolTipTagPeakR = 0;
    std::int32_t m_padding = 2;
    std::string m_levelText;
    std::string m_peakText;
    std::optional<LevelMeterOrientation> m_orientation;
};

}  // namespace veltra
