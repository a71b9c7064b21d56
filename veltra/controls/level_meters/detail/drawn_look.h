// SPDX-License-Identifier: MIT
// The look that is drawn by code.
#pragma once

#include "veltra/controls/level_meters/level_meter_look.h"

namespace veltra::detail {

class DrawnLook final : public LevelMeterLook {
public:
    explicit DrawnLook(LevelMeterStyle style);

    LevelMeterMeasures measures(LevelMeterOrientation orientation) const override;
    std::int32_t fittingLength(const LevelMeterPictureRequest& request) const override;
    LevelMeterPicture bar(const LevelMeterPictureRequest& request) const override;
    LevelMeterPicture light(const LevelMeterPictureRequest& request) const override;

private:
    struct Rows;

    Rows rowsFor(const LevelMeterPictureRequest& request) const;

    const LevelMeterStyle m_style;
};

}  // namespace veltra::detail
