// SPDX-License-Identifier: MIT
#include "veltra/controls/level_meters/level_meter_look.h"

#include "veltra/controls/level_meters/decibel_scale.h"
#include "veltra/controls/level_meters/detail/drawn_look.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace veltra {

namespace {

class LookOfImages final : public LevelMeterLook {
public:
    LookOfImages(LevelMeterPicture bar, LevelMeterPicture light)
        : m_bar(std::move(bar)), m_light(std::move(light)) {}

    LevelMeterMeasures measures(LevelMeterOrientation orientation) const override {
        const Size bar = sizeOf(m_bar);
        const Size light = sizeOf(m_light);
        if (orientation == LevelMeterOrientation::Horizontal)
            return {bar.width, bar.height, light.width, 0.0F};
        return {bar.height, bar.width, light.height, 0.0F};
    }

    LevelMeterPicture bar(const LevelMeterPictureRequest& request) const override {
        LevelMeterPicture picture = m_bar;
        picture.end = static_cast<std::int32_t>(
            std::lround(measures(request.orientation).length * request.scale));
        const auto pixels = static_cast<std::uint32_t>(std::max(picture.end, 0));
        if (request.ledPitch > 0) {
            picture.ledCount = pixels / static_cast<std::uint32_t>(request.ledPitch);
        } else if (request.ledCount <= pixels) {
            picture.ledCount = request.ledCount;
        }
        picture.rows = static_cast<std::int32_t>(picture.ledCount);
        return picture;
    }

    LevelMeterPicture light(const LevelMeterPictureRequest& /*request*/) const override {
        return m_light;
    }

private:
    static Size sizeOf(const LevelMeterPicture& picture) {
        if (picture.off) return picture.off->size();
        return picture.on ? picture.on->size() : Size{};
    }

    LevelMeterPicture m_bar;
    LevelMeterPicture m_light;
};

}  // namespace

LevelMeterLook::~LevelMeterLook() = default;

std::vector<LevelMeterZone> defaultLevelMeterZones() {
    const Theme& colors = theme(Appearance::Dark);  // signals are the same in both
    return {{-std::numeric_limits<double>::infinity(), colors.green},
            {-12.0, colors.amber},
            {-3.0, colors.red}};
}

float meterPositionOfDecibels(double decibels, LevelMeterLevels levels) noexcept {
    if (levels == LevelMeterLevels::Decibels) {
        return std::min(meterPositionForDecibels(decibels), 1.0F);
    }
    return std::isnan(decibels)
               ? 0.0F
               : static_cast<float>(std::pow(10.0, std::min(decibels, 0.0) / 20.0));
}

std::shared_ptr<const LevelMeterLook> drawnLevelMeterLook(LevelMeterStyle style) {
    return std::make_shared<detail::DrawnLook>(std::move(style));
}

std::shared_ptr<const LevelMeterLook> levelMeterLookOfImages(
    std::shared_ptr<const Image> levelMeterOff, std::shared_ptr<const Image> levelMeterOn,
    std::shared_ptr<const Image> peakLedOff, std::shared_ptr<const Image> peakLedOn) {
    return std::make_shared<LookOfImages>(
        LevelMeterPicture{std::move(levelMeterOff), std::move(levelMeterOn)},
        LevelMeterPicture{std::move(peakLedOff), std::move(peakLedOn)});
}

}  // namespace veltra
