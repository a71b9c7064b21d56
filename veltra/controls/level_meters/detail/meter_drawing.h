// SPDX-License-Identifier: MIT
// Puts a meter together from its pictures.
#pragma once

#include "veltra/controls/level_meters/detail/meter_layout.h"
#include "veltra/controls/level_meters/level_meter_look.h"

#include <memory>
#include <optional>
#include <utility>

namespace veltra {
class Canvas;
class UiPort;
}  // namespace veltra

namespace veltra::detail {

struct MeterLooks {
    std::shared_ptr<const LevelMeterLook> bar;
    std::shared_ptr<const LevelMeterLook> light;

    friend bool operator==(const MeterLooks&, const MeterLooks&) = default;
};

struct MeterState {
    float level;
    float maximum;  // 0: none
    bool isClipped;
    float inset;               // of the lit part, points
    std::optional<float> rms;  // up to where the level shown is lit in full
};

class MeterDrawing {
public:
    // Lays out and gets the pictures, unless those at hand fit. `request` leaves the sizes open.
    void fit(const MeterLooks& looks, Size frame, const LevelMeterPictureRequest& request);

    const MeterLayout& layout() const noexcept { return m_layout; }
    const LevelMeterPicture& bar() const noexcept { return m_bar; }
    const LevelMeterPicture& light() const noexcept { return m_light; }

    // Where levels from 0 to 1 are shown by a meter in `frame`.
    Rect rectOfLevels(const Rect& frame, bool isFlipped) const;
    // All that such a meter draws on.
    Rect rectOfMeter(const Rect& frame, bool isFlipped) const;

    // What draw() covers without a gap.
    Rect opaqueRect(const Rect& frame, bool isFlipped) const;

    // `place` begins and ends on borders between device pixels.
    void draw(Canvas& canvas, const Rect& place, const MeterState& state) const;

private:
    std::int32_t litLeds(float level) const;
    std::int32_t endOf(float part) const;
    std::int32_t endOfLeds(std::int32_t count) const;
    std::int32_t litEnd(float level) const;
    LevelMeterSpan maximumLine(float maximum) const;
    LevelMeterPicture sharedColumn() const;
    std::shared_ptr<const Image> columnPicture(const Image& bar) const;
    void drawPart(Canvas& canvas, const Rect& place, const Image* image, const MeterArea& whole,
                  const MeterArea& part, float alpha = 1.0F) const;
    MeterArea column() const;
    void drawUnlit(Canvas& canvas, const Rect& place) const;

    const UiPort* m_port = nullptr;  // whose images they are
    MeterLooks m_looks;
    std::pair<std::int32_t, std::int32_t> m_pixels;  // of the frame
    LevelMeterPictureRequest m_request;
    MeterLayout m_layout;
    std::int32_t m_glass = 0;  // its edge, device pixels
    LevelMeterPicture m_bar;
    LevelMeterPicture m_light;
    LevelMeterPicture m_column;  // the meter with the bar unlit and lit; null: put together
};

}  // namespace veltra::detail
