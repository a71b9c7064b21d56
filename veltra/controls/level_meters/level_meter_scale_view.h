// SPDX-License-Identifier: MIT
// The scale beside a level meter, in decibels: ticks that lie in the gaps between its LEDs, and as
// many labels as there is room for.
//
//   auto& scale = strip.addSubview(std::make_unique<LevelMeterScaleView>(left));
//   scale.setMeter(&meter.cellL());
//
// It stands at the left of an upright meter, its right edge at the edge of the glass, and below a
// lying one. Only its place across the meter is its own: along it, it follows the meter's levels.
// It should reach 12 points beyond them, where "dB" stands, and 8 below, for the last label.
//
// Thread: main, for everything in here. Realtime-safe: no.
#pragma once

#include "veltra/controls/level_meters/level_meter_cell.h"
#include "veltra/ui/view.h"

namespace veltra {

class VELTRA_EXPORT LevelMeterScaleView : public View {
public:
    static constexpr float kWidth = 28.0F;   // that it needs beside an upright meter
    static constexpr float kHeight = 24.0F;  // and below a lying one

    using View::View;
    ~LevelMeterScaleView() override;

    // A cell in a view of the same window; not retained. Null, as at first: nothing is drawn. A
    // cell tells one scale when its levels move.
    QkLevelMeterCell* meter() const noexcept { return m_meter.get(); }
    void setMeter(QkLevelMeterCell* meter);

    bool isFlipped() const override { return true; }
    void drawRect(Canvas& canvas, const Rect& dirty) override;

private:
    WeakPointer<QkLevelMeterCell> m_meter;
};

}  // namespace veltra
