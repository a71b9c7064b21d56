// SPDX-License-Identifier: MIT
// What a level meter looks like: a look makes the four images that a meter is put together from,
// the bar and the clip light, each unlit and lit. There are looks drawn by code, sharp at every
// scale, in light and dark windows, and looks made of ready images.
//
// Thread: main, unless a function says otherwise. Realtime-safe: no.
#pragma once

#include "veltra/export.h"
#include "veltra/ui/appearance.h"
#include "veltra/ui/color.h"
#include "veltra/ui/image.h"
#include "veltra/ui/theme.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace veltra {

// Vertical meters rise from the bottom to the top, horizontal ones from left to right; the clip
// light is at the far end.
enum class LevelMeterOrientation : std::uint8_t { Vertical, Horizontal };

// What the levels of a meter are.
enum class LevelMeterLevels : std::uint8_t {
    Amplitude,  // linear, 1 at full scale
    Decibels,   // positions of decibel_scale.h
};

// Where that many decibels are shown, from 0 to 1; 0 for NaN. Thread: any. Realtime-safe: yes.
VELTRA_EXPORT float meterPositionOfDecibels(double decibels, LevelMeterLevels levels) noexcept;

// In points. "Length" runs with the level, "thickness" across.
struct LevelMeterMeasures {
    float length = 0.0F;       // of the bar; 0: as long as there is room
    float thickness = 0.0F;    // of the bar and the clip light, without the glass
    float lightLength = 0.0F;  // of the clip light; 0: it has none
    float lightGap = 0.0F;     // between the bar and the clip light
    float glass = 0.0F;        // the edge of glass that a view leaves around its meters
};

// The bar, or the clip light, of one meter.
struct LevelMeterPictureRequest {
    std::int32_t length = 0;                                              // device pixels
    std::int32_t thickness = 0;                                           // device pixels
    float scale = 1.0F;                                                   // device pixels a point
    LevelMeterOrientation orientation = LevelMeterOrientation::Vertical;  // which way `length` runs
    Appearance appearance = Appearance::Light;  // of the window that it is for
    std::uint32_t ledCount = 0;                 // 0: a continuous bar, unless there is a pitch
    std::int32_t ledPitch = 0;  // device pixels from LED to LED; 0: the count decides
    LevelMeterLevels levels = LevelMeterLevels::Amplitude;  // decides where the zones lie
    bool isMuted = false;                                   // the signal is not heard

    // Whether one picture serves both.
    friend bool operator==(const LevelMeterPictureRequest&,
                           const LevelMeterPictureRequest&) = default;
};

// A part of a bar, in device pixels from the low end.
struct LevelMeterSpan {
    std::int32_t low = 0;   // the first pixel
    std::int32_t high = 0;  // the one after the last
};

// Both images have the same size; null where they cannot be drawn, and then nothing is.
struct LevelMeterPicture {
    std::shared_ptr<const Image> off;  // nothing lit
    std::shared_ptr<const Image> on;   // all lit
    // Of a bar: the part that levels from 0 to 1 light, in device pixels from the low end. With
    // LEDs it holds ledCount of them, all of one length; a gap belongs to the LED above it.
    std::int32_t start = 0;
    std::int32_t end = 0;
    std::uint32_t ledCount = 0;
    std::int32_t rows = 0;  // by which zones are placed, those of the LEDs; 0: there are none
    // What lies between the bar and the clip light. Where it is not clear, the images are opaque:
    // what a lit part covers is not drawn unlit.
    Color ground = kClear;
    std::vector<LevelMeterSpan> gaps = {};  // without LEDs: dark parts, beside which a held maximum
                                            // is shown; in rising order
};

// The base of all looks. Meters share one; it lives as long as any of them shows it.
class VELTRA_EXPORT LevelMeterLook {
public:
    LevelMeterLook() = default;
    LevelMeterLook(const LevelMeterLook&) = delete;
    LevelMeterLook& operator=(const LevelMeterLook&) = delete;
    virtual ~LevelMeterLook();

    // The sizes of a meter that lies or stands. The same at every call.
    virtual LevelMeterMeasures measures(LevelMeterOrientation orientation) const = 0;

    // How much of the room for a bar, request.length, the bar fills without a rest. What is left
    // over stays empty at the low end: bars of one row have their clip lights side by side.
    virtual std::int32_t fittingLength(const LevelMeterPictureRequest& request) const {
        return request.length;
    }

    // Called when no picture of such a request is at hand. The answer is kept and shared by all
    // meters with an equal request, so it must depend on the request alone.
    virtual LevelMeterPicture bar(const LevelMeterPictureRequest& request) const = 0;
    virtual LevelMeterPicture light(const LevelMeterPictureRequest& request) const = 0;
};

// Colours from a level on. Where that lies on the bar depends on what the levels are.
struct LevelMeterZone {
    double decibels;      // minus infinity for the lowest zone
    SignalColors colors;  // lit and unlit
};

// Green, amber from -12 dB, red from -3 dB. They differ in lightness as well as in hue: amber is
// the lightest, red the darkest, and the green has some blue in it, so that they can be told apart
// with any kind of colour vision.
VELTRA_EXPORT std::vector<LevelMeterZone> defaultLevelMeterZones();

// What the looks drawn by code leave open. Sizes in points.
struct LevelMeterStyle {
    std::vector<LevelMeterZone> zones = defaultLevelMeterZones();  // in rising order, not empty
    bool isContinuous = false;                                     // also where LEDs are asked for
    float thickness = 9.0F;    // of the bar and of the clip light
    float glass = 4.0F;        // the edge that a view leaves around its meters
    float lightLength = 8.0F;  // of the clip light; 0: it has none
    float lightGap = 8.0F;     // between the bar and the clip light
};

// LEDs or a continuous bar on glass, in the colours of the theme. A double gap parts the zones;
// what is muted is grey and thin; the clip light has a white core: nothing is told by colour alone.
// The images are opaque.
VELTRA_EXPORT std::shared_ptr<const LevelMeterLook> drawnLevelMeterLook(LevelMeterStyle style);

// Ready images, drawn in their own size. The lit part of the bar runs over the whole image. Null
// stands for an image that is not drawn.
VELTRA_EXPORT std::shared_ptr<const LevelMeterLook> levelMeterLookOfImages(
    std::shared_ptr<const Image> levelMeterOff, std::shared_ptr<const Image> levelMeterOn,
    std::shared_ptr<const Image> peakLedOff, std::shared_ptr<const Image> peakLedOn);

}  // namespace veltra
