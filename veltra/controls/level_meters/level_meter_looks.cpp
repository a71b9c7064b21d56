// SPDX-License-Identifier: MIT
#include "veltra/controls/level_meters/level_meter_looks.h"

#include "veltra/base/immortal.h"

#include <map>
#include <utility>

namespace veltra {

namespace {

using Looks = std::map<std::int32_t, std::shared_ptr<const LevelMeterLook>>;

LevelMeterStyle barStyle() {
    LevelMeterStyle style;
    style.isContinuous = true;
    return style;
}

LevelMeterStyle slimStyle() {
    LevelMeterStyle style = barStyle();
    style.thickness = 6.0F;
    style.glass = 2.0F;
    style.lightLength = 4.0F;
    style.lightGap = 8.0F;  // room for the unit beside the clip light
    return style;
}

const Looks& builtIn() {
    static const Immortal<Looks> looks(
        Looks{{kLevelMeterImageLED, drawnLevelMeterLook(LevelMeterStyle{})},
              {kLevelMeterImageBar, drawnLevelMeterLook(barStyle())},
              {kLevelMeterImageSlim, drawnLevelMeterLook(slimStyle())}});
    return *looks;
}

Looks& registered() {
    static const Immortal<Looks> looks;
    return *looks;
}

}  // namespace

void registerLevelMeterLook(std::int32_t imageID, std::shared_ptr<const LevelMeterLook> look) {
    if (look) {
        registered()[imageID] = std::move(look);
    } else {
        registered().erase(imageID);
    }
}

std::shared_ptr<const LevelMeterLook> levelMeterLook(std::int32_t imageID) {
    for (const Looks* looks : {&std::as_const(registered()), &builtIn()}) {
        const auto found = looks->find(imageID);
        if (found != looks->end()) return found->second;
    }
    return imageID != kLevelMeterImageLED ? levelMeterLook(kLevelMeterImageLED) : nullptr;
}

}  // namespace veltra
