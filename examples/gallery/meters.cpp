// SPDX-License-Identifier: MIT
#include "sheets.h"
#include "user.h"
#include "veltra/controls/level_meters/decibel_scale.h"
#include "veltra/controls/level_meters/level_meter_scale_view.h"
#include "veltra/controls/level_meters/peak_readout.h"
#include "veltra/controls/level_meters/stereo_level_meter_view.h"
#include "veltra/ui/canvas.h"
#include "veltra/ui/theme.h"

#include <cmath>
#include <limits>
#include <vector>

namespace veltra::gallery {

namespace {

constexpr float kReadoutGap = 4.0F;
constexpr float kNamesHeight = 16.0F;
constexpr double kSilent = -100.0;

struct Shown {
    std::string caption;
    double left = kSilent, right = kSilent;  // decibels
    double heldLeft = kSilent, heldRight = kSilent;
    double peak = kSilent;
    float height = 272.0F;
    std::int32_t look = kLevelMeterImageLED;
    bool isMuted = false;
    std::optional<double> rms = {};
    float pitch = 4.0F;       // from LED to LED, in points
    std::uint32_t count = 0;  // of LEDs, instead of a pitch
    LevelMeterLevels levels = LevelMeterLevels::Decibels;
};

float positionOf(double decibels, LevelMeterLevels levels) {
    return levels == LevelMeterLevels::Decibels
               ? meterPositionForDecibels(decibels)
               : static_cast<float>(std::pow(10.0, decibels / 20.0));
}

void show(QkLevelMeterCell& cell, double decibels, double held, const Shown& shown) {
    cell.setLevelScale(shown.levels);
    cell.setImageIDs(shown.look, shown.look);
    cell.setLEDPitch(shown.pitch);
    if (shown.count > 0) cell.setLEDCount(shown.count);
    cell.setFallBackStepTime(0.0);
    cell.setMaxLevelHoldTime(std::numeric_limits<double>::infinity());
    cell.setLevel(positionOf(held, shown.levels));
    cell.setLevel(positionOf(decibels, shown.levels));
    cell.setMuted(shown.isMuted);
    if (shown.rms) cell.setRms(positionOf(decibels + *shown.rms, shown.levels));
}

void drawNames(Canvas& canvas, const Theme& colors, std::span<const std::string> names,
               const Rect& meters, float pitch) {
    for (std::size_t i = 0; i < names.size(); ++i) {
        const Rect place{{meters.minX() + pitch * static_cast<float>(i), meters.maxY() + 2.0F},
                         {pitch, 14.0F}};
        canvas.drawText(
            {names[i], themeFont(10.0F, FontWeight::Medium), colors.caption, TextAlignment::Center},
            place, TextPlacement::Capitals);
    }
}

// A strip of a mixer: read-out, scale, two meters, their names.
class Strip final : public View {
public:
    explicit Strip(const Shown& shown)
        : m_readout(addSubview(std::make_unique<PeakReadout>(
              Rect{{2.0F, 0.0F}, {LevelMeterScaleView::kWidth + 26.0F, PeakReadout::kHeight}}))),
          m_meter(addSubview(std::make_unique<DfStereoLevelMeterView>(
              Rect{{LevelMeterScaleView::kWidth, PeakReadout::kHeight + kReadoutGap},
                   {shown.look == kLevelMeterImageSlim ? 18.0F : 28.0F, shown.height}}))),
          m_scale(addSubview(std::make_unique<LevelMeterScaleView>(
              Rect{{0.0F, PeakReadout::kHeight},
                   {LevelMeterScaleView::kWidth, shown.height + 2 * kReadoutGap}}))) {
        m_scale.setMeter(&m_meter.cellL());
        m_readout.setDecibels(shown.peak);
        m_readout.setMuted(shown.isMuted);
        show(m_meter.cellL(), shown.left, shown.heldLeft, shown);
        show(m_meter.cellR(), shown.right, shown.heldRight, shown);
    }

    bool isFlipped() const override { return true; }
    void drawRect(Canvas& canvas, const Rect& /*dirty*/) override {
        static const std::string kNames[] = {"L", "R"};
        const Rect left = convertRectFromView(m_meter.cellL().rectOfMeter(), &m_meter);
        const Rect right = convertRectFromView(m_meter.cellR().rectOfMeter(), &m_meter);
        const Rect meters = left.united(right).inset(0.0F, -4.0F);
        drawNames(canvas, theme(effectiveAppearance()), kNames, meters, right.minX() - left.minX());
    }

private:
    PeakReadout& m_readout;
    DfStereoLevelMeterView& m_meter;
    LevelMeterScaleView& m_scale;
};

Specimen strip(const Shown& shown) {
    const Size size{LevelMeterScaleView::kWidth + 28.0F,
                    PeakReadout::kHeight + kReadoutGap + shown.height + kNamesHeight};
    return {shown.caption, size, [=] { return std::make_unique<Strip>(shown); }, {}};
}

// One channel in a view of one's own.
class Mono final : public View {
public:
    explicit Mono(const Shown& shown)
        : m_scale(addSubview(std::make_unique<LevelMeterScaleView>(
              Rect{{}, {LevelMeterScaleView::kWidth, shown.height}}))) {
        m_cell.calculateInternalsFromCellFrame(
            {{LevelMeterScaleView::kWidth + 4.0F, 4.0F}, {10.0F, shown.height - 8.0F}}, *this);
        m_scale.setMeter(&m_cell);
        show(m_cell, shown.left, shown.heldLeft, shown);
    }

    bool isFlipped() const override { return true; }
    void drawRect(Canvas& canvas, const Rect& /*dirty*/) override {
        drawLevelMeterGlass(canvas, m_cell.rectOfMeter(), effectiveAppearance());
        m_cell.drawWithFrame(canvas, m_cell.cellFrame(), *this);
        static const std::string kNames[] = {"M"};
        const Rect meter = m_cell.rectOfMeter().inset(0.0F, -4.0F);
        drawNames(canvas, theme(effectiveAppearance()), kNames, meter, meter.size.width);
    }

private:
    QkLevelMeterCell m_cell;
    LevelMeterScaleView& m_scale;
};

Specimen mono(const Shown& shown) {
    return {shown.caption,
            {LevelMeterScaleView::kWidth + 18.0F, shown.height + kNamesHeight},
            [=] { return std::make_unique<Mono>(shown); },
            {}};
}

// The meters alone: which way the y axis of their view points cannot be seen. They stand between
// pixels at 1.25 and 1.75 pixels a point.
template <bool isDownward>
class Bare final : public DfStereoLevelMeterView {
public:
    explicit Bare(const Shown& shown) : DfStereoLevelMeterView(Rect{{}, {27.0F, shown.height}}) {
        show(cellL(), shown.left, shown.heldLeft, shown);
        show(cellR(), shown.right, shown.heldRight, shown);
    }
    bool isFlipped() const override { return isDownward; }
};

template <bool isDownward>
Specimen bare(const Shown& shown) {
    return {shown.caption,
            {27.0F, shown.height},
            [=] { return std::make_unique<Bare<isDownward>>(shown); },
            {},
            9.0F};
}

class Lying final : public View {
public:
    explicit Lying(const Shown& shown)
        : m_meter(addSubview(
              std::make_unique<DfStereoLevelMeterView>(Rect{{}, {shown.height, 28.0F}}))),
          m_scale(addSubview(std::make_unique<LevelMeterScaleView>(
              Rect{{0.0F, 28.0F}, {shown.height, LevelMeterScaleView::kHeight}}))) {
        m_scale.setMeter(&m_meter.cellL());
        show(m_meter.cellL(), shown.left, shown.heldLeft, shown);
        show(m_meter.cellR(), shown.right, shown.heldRight, shown);
    }
    bool isFlipped() const override { return true; }

private:
    DfStereoLevelMeterView& m_meter;
    LevelMeterScaleView& m_scale;
};

Specimen readout(std::string caption, double decibels,
                 const std::function<void(PeakReadout&)>& set = {},
                 std::function<void(Window&)> drive = {}) {
    return {std::move(caption),
            {54.0F, PeakReadout::kHeight},
            [=] {
                auto made = std::make_unique<PeakReadout>();
                made->setDecibels(decibels);
                if (set) set(*made);
                return made;
            },
            std::move(drive)};
}

}  // namespace

Sheet meterSheet() {
    const auto over = [](Window& window) { hover(window, {20.0F, 16.0F}); };
    const auto disable = [](PeakReadout& made) { made.setEnabled(false); };
    Specimen lying{"lying",
                   {272.0F, 28.0F + LevelMeterScaleView::kHeight},
                   [] {
                       return std::make_unique<Lying>(Shown{"", -7.2, -8.9, -2.1, -4.0});
                   },
                   {}};
    const auto usual = [](std::string caption) {
        return Shown{std::move(caption), -7.2, -8.9, -2.1, -4.0, -2.1};
    };
    const auto withPitch = [&](std::string caption, float pitch) {
        Shown shown = usual(std::move(caption));
        shown.height = 120.0F;
        shown.pitch = pitch;
        return shown;
    };
    Shown amplitudes = usual("amplitudes");
    amplitudes.levels = LevelMeterLevels::Amplitude;
    // Levels at the beginning of an LED and just above it.
    const auto twentyLeds = [](std::string caption) {
        return Shown{.caption = std::move(caption),
                     .left = -20.0,
                     .right = -19.9,
                     .heldLeft = 0.5,
                     .heldRight = -4.0,
                     .height = 131.0F,
                     .count = 20};
    };
    return {
        "meters",
        "Level meters",
        {{strip(usual("LEDs")), strip({"clipped", 1.8, 0.4, 1.8, 0.4, 1.8}),
          strip({.caption = "muted",
                 .left = -16.0,
                 .right = -17.5,
                 .heldLeft = -11.0,
                 .heldRight = -12.0,
                 .peak = -11.0,
                 .isMuted = true}),
          strip({"continuous", -6.2, -8.4, -1.2, -4.0, -1.2, 272.0F, kLevelMeterImageBar}),
          strip({.caption = "RMS and peak",
                 .left = -4.5,
                 .right = -5.5,
                 .heldLeft = -2.1,
                 .heldRight = -4.0,
                 .peak = -2.1,
                 .rms = -9.0}),
          strip({"silent"}), strip(amplitudes)},
         {strip(withPitch("120 high", 4.0F)),
          strip({"72 high", -9.0, -10.9, -2.1, -4.0, -2.1, 72.0F}),
          mono({"one channel", -18.0, kSilent, -18.0, kSilent, kSilent, 144.0F}),
          mono({"72 high", -14.0, kSilent, -14.0, kSilent, kSilent, 72.0F, kLevelMeterImageBar}),
          strip({"slim", -9.0, -10.9, -2.1, -4.0, -2.1, 120.0F, kLevelMeterImageSlim}),
          strip({.caption = "slim, muted",
                 .left = -16.0,
                 .right = -17.5,
                 .height = 120.0F,
                 .look = kLevelMeterImageSlim,
                 .isMuted = true}),
          strip(withPitch("fine LEDs", 2.0F)), strip(withPitch("large LEDs", 8.0F)),
          bare<false>(twentyLeds("20 LEDs")), bare<true>(twentyLeds("y downward"))},
         {lying, readout("peak", -2.1), readout("hover", -2.1, {}, over),
          readout("focused", -2.1, {}, focus), readout("clipped", 1.8),
          readout("disabled", -2.1, disable), readout("silent", PeakReadout::kQuietest),
          readout("quiet", -60.0)}}};
}

}  // namespace veltra::gallery
