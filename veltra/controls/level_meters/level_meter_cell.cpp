// SPDX-License-Identifier: MIT
#include "veltra/controls/level_meters/level_meter_cell.h"

#include "veltra/controls/level_meters/decibel_scale.h"
#include "veltra/controls/level_meters/detail/meter_drawing.h"
#include "veltra/controls/level_meters/detail/spoken_level.h"
#include "veltra/platform/clock.h"
#include "veltra/platform/localization.h"
#include "veltra/ui/canvas.h"
#include "veltra/ui/drawing.h"
#include "veltra/ui/view.h"
#include "veltra/ui/window.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace veltra {

namespace {

constexpr float kNaturalLength = 173.0F;                // points
constexpr Nanoseconds kShortestTick = milliseconds(5);  // a display shows no more
constexpr Nanoseconds kTimerSlack = microseconds(1);    // timers count whole nanoseconds
constexpr Nanoseconds kTellPause = milliseconds(500);
constexpr double kQuietest = -99.95;    // decibels; below is silence
constexpr double kLeastNumber = -70.0;  // decibels, for a screen reader
constexpr float kWorthTelling = 0.01F;

// No time passes while the clock cannot be read.
Moment timeNow() noexcept {
    return Clocks::current().monotonic().moment();
}

std::string decibelText(double decibels) {
    return detail::spokenLevel(decibels, kQuietest, "dB");
}

bool isFlipped(const View* view) {
    return view != nullptr && view->isFlipped();
}

float scaleOf(const View* view) {
    const Window* const window = view != nullptr ? view->window() : nullptr;
    return window != nullptr ? window->scale() : 1.0F;
}

// Empty without a drawing.
template <typename Part>
auto partOf(const detail::MeterDrawing* drawn, Part part) {
    return drawn != nullptr ? part(*drawn) : decltype(part(*drawn))();
}

}  // namespace

struct QkLevelMeterCell::Drawing : detail::MeterDrawing {};

QkLevelMeterCell::QkLevelMeterCell()
    : m_timer(1.0, this, veltra::action<&QkLevelMeterCell::timerAction>(), nullptr, false),
      m_maxtimer(1.0, this, veltra::action<&QkLevelMeterCell::maxtimerAction>(), nullptr, false),
      m_drawing(std::make_unique<Drawing>()) {}

QkLevelMeterCell::~QkLevelMeterCell() {
    cutAnchor();
}

void QkLevelMeterCell::setLevel(float level, bool forceDisplayIfNeeded) {
    const Moment now = timeNow();
    const bool wasPeak = peak();
    if (m_ballistics.setLevel(level, forceDisplayIfNeeded, now)) setNeedsDisplay();
    armTimers(now);
    tellLevel(now, peak() != wasPeak);
}

void QkLevelMeterCell::setPeak(bool isOn) {
    const bool changes = isOn != peak();
    m_ballistics.setPeak(isOn);
    setNeedsDisplay();
    if (changes) tellLevel(timeNow(), true);
}

void QkLevelMeterCell::setFallBackStep(float step) {
    m_ballistics.setFallBackStep(step);
    restartTimers();
}

void QkLevelMeterCell::setFallBackStepTime(double seconds) {
    m_ballistics.setFallBackStepTime(seconds);
    restartTimers();
}

void QkLevelMeterCell::setMaxLevelHoldTime(double seconds) {
    m_ballistics.setMaxLevelHoldTime(seconds);
    restartTimers();
}

// A timer that runs is left alone: when it fires too early, because a level has come meanwhile, it
// is started again for the rest. That spares each setLevel() a trip to the run loop.
void QkLevelMeterCell::armTimers(Moment now) {
    const auto arm = [](QkTimer& timer, std::optional<Nanoseconds> time) {
        if (!time) {
            timer.stop();
        } else if (!timer.isValid()) {
            timer.startWithTimeInterval(time->seconds());
        }
    };
    auto toTick = m_ballistics.timeToTick(now);
    if (toTick && fallBackStepTime() < kShortestTick.seconds())
        toTick = kShortestTick;  // several steps each
    arm(m_timer, toTick);
    arm(m_maxtimer, m_ballistics.timeToHoldEnd(now));
}

void QkLevelMeterCell::restartTimers() {
    m_timer.stop();
    m_maxtimer.stop();
    armTimers(timeNow());
}

void QkLevelMeterCell::timerAction(QkTimer* timer) {
    const Moment now = timeNow();
    const bool isEarly =
        timer != nullptr && m_ballistics.timeToTick(now).value_or(Nanoseconds()) > kTimerSlack;
    if (!isEarly) {
        m_ballistics.tick(now);
        setNeedsDisplay();
    }
    armTimers(now);
    if (!isEarly) tellLevel(now, false);
}

void QkLevelMeterCell::maxtimerAction(QkTimer* timer) {
    const Moment now = timeNow();
    const bool isEarly =
        timer != nullptr && m_ballistics.timeToHoldEnd(now).value_or(Nanoseconds()) > kTimerSlack;
    if (!isEarly) {
        m_ballistics.dropMaximum();
        setNeedsDisplay();
    }
    armTimers(now);
}

template <typename T>
void QkLevelMeterCell::change(T& member, T value) {
    if (member == value) return;
    member = value;
    setNeedsDisplay();
    redrawScale();
}

void QkLevelMeterCell::redrawScale() {
    if (m_scaleView) m_scaleView->setNeedsDisplay();
}

// Views tell nobody where they move to: a meter that is drawn where it was not before sees to it.
void QkLevelMeterCell::tellScaleView(const View& view) {
    if (!m_scaleView) return;
    const Rect levels = m_scaleView->convertRectFromView(rectOfLevels(), &view);
    if (std::exchange(m_levelsInScaleView, levels) != levels) redrawScale();
}

void QkLevelMeterCell::calculateInternalsFromCellFrame(const Rect& frame, View& controlView) {
    const bool moves = frame != cellFrame() || &controlView != this->controlView();
    ActionCell::calculateInternalsFromCellFrame(frame, controlView);
    if (moves) redrawScale();
}

void QkLevelMeterCell::setRms(std::optional<float> level) {
    if (level && !(*level > 0.0F)) level = 0.0F;
    if (level == m_rms) return;
    m_rms = level;
    setNeedsDisplay();
}

void QkLevelMeterCell::setMuted(bool isMuted) {
    change(m_isMuted, isMuted);
}

std::uint32_t QkLevelMeterCell::LEDCount() const {
    const Drawing* const drawn = m_LED_pitch > 0.0F ? drawingOfFrame() : nullptr;
    return drawn != nullptr ? drawn->bar().ledCount : m_LED_count;
}

void QkLevelMeterCell::setLEDCount(std::uint32_t count) {
    change(m_LED_pitch, 0.0F);
    change(m_LED_count, count);
}

void QkLevelMeterCell::setLEDPitch(float points) {
    change(m_LED_pitch, points > 0.0F ? points : 0.0F);
}

void QkLevelMeterCell::setLevelScale(LevelScale scale) {
    change(m_levelScale, scale);
}

void QkLevelMeterCell::setOnStateLEDInset(float inset) {
    change(m_onStateLEDInset, inset > 0.0F ? inset : 0.0F);
}

void QkLevelMeterCell::setImageIDs(std::int32_t levelMeterImageID, std::int32_t peakLEDImageID) {
    change(m_levelMeterImageID, levelMeterImageID);
    change(m_peakLEDImageID, peakLEDImageID);
}

void QkLevelMeterCell::setOrientation(std::optional<LevelMeterOrientation> orientation) {
    change(m_orientation, orientation);
}

LevelMeterOrientation QkLevelMeterCell::orientation() const noexcept {
    const Size size = cellFrame().size;
    return m_orientation.value_or(size.width > size.height ? LevelMeterOrientation::Horizontal
                                                           : LevelMeterOrientation::Vertical);
}

float QkLevelMeterCell::cellHeight() const {
    const LevelMeterMeasures bar = levelMeterLook(m_levelMeterImageID)->measures(orientation());
    if (orientation() == LevelMeterOrientation::Horizontal) return bar.thickness;
    if (bar.length > 0.0F) {
        const LevelMeterMeasures light = levelMeterLook(m_peakLEDImageID)->measures(orientation());
        return bar.length + (light.lightLength > 0.0F ? light.lightGap + light.lightLength : 0.0F);
    }
    return controlView() != nullptr ? controlView()->bounds().size.height - 2.0F * bar.glass
                                    : kNaturalLength;
}

Size QkLevelMeterCell::cellSizeForBounds(const Rect& bounds) const {
    const LevelMeterMeasures bar = levelMeterLook(m_levelMeterImageID)->measures(orientation());
    const float width = orientation() == LevelMeterOrientation::Vertical ? bar.thickness
                        : bar.length > 0.0F                              ? bar.length
                                                                         : kNaturalLength;
    return {std::min(width, bounds.size.width), std::min(cellHeight(), bounds.size.height)};
}

const QkLevelMeterCell::Drawing& QkLevelMeterCell::drawing(Size frame, float scale,
                                                           Appearance appearance) const {
    m_drawing->fit({levelMeterLook(m_levelMeterImageID), levelMeterLook(m_peakLEDImageID)}, frame,
                   request(scale, appearance));
    return *m_drawing;
}

LevelMeterPictureRequest QkLevelMeterCell::request(float scale, Appearance appearance) const {
    return {.scale = scale,
            .orientation = orientation(),
            .appearance = appearance,
            .ledCount = m_LED_count,
            .ledPitch = detail::devicePixels(m_LED_pitch, scale),
            .levels = m_levelScale,
            .isMuted = m_isMuted};
}

const QkLevelMeterCell::Drawing* QkLevelMeterCell::drawingOfFrame() const {
    if (cellFrame().isEmpty()) return nullptr;
    const View* const view = controlView();
    return &drawing(cellFrame().size, scaleOf(view),
                    view != nullptr ? view->effectiveAppearance() : Appearance::Light);
}

Rect QkLevelMeterCell::rectOfPart(bool isLight) const {
    const auto layout = detail::MeterLayout::make(
        cellFrame().size, *levelMeterLook(m_levelMeterImageID), *levelMeterLook(m_peakLEDImageID),
        request(scaleOf(controlView()), Appearance::Light));
    return layout.inView(isLight ? layout.light : layout.bar, cellFrame(),
                         isFlipped(controlView()));
}

Rect QkLevelMeterCell::levelMeterRect() const {
    return rectOfPart(false);
}

Rect QkLevelMeterCell::peakLEDRect() const {
    return rectOfPart(true);
}

Rect QkLevelMeterCell::rectOfLevels() const {
    return partOf(drawingOfFrame(), [this](const detail::MeterDrawing& drawn) {
        return drawn.rectOfLevels(cellFrame(), isFlipped(controlView()));
    });
}

Rect QkLevelMeterCell::rectOfMeter() const {
    return partOf(drawingOfFrame(), [this](const detail::MeterDrawing& drawn) {
        return drawn.rectOfMeter(cellFrame(), isFlipped(controlView()));
    });
}

Rect QkLevelMeterCell::opaqueRect() const {
    return partOf(drawingOfFrame(), [this](const detail::MeterDrawing& drawn) {
        return drawn.opaqueRect(cellFrame(), isFlipped(controlView()));
    });
}

LevelMeterScale QkLevelMeterCell::scale() const {
    const Drawing* const drawn = drawingOfFrame();
    const bool isUpright = orientation() == LevelMeterOrientation::Vertical;
    const Size size = rectOfLevels().size;
    return LevelMeterScale(
        isUpright ? size.height : size.width, drawn != nullptr ? drawn->bar().rows : 0,
        drawn != nullptr ? drawn->layout().scale : 1.0F, m_levelScale,
        isUpright ? LevelMeterScale::kUprightDistance : LevelMeterScale::kLyingDistance);
}

std::shared_ptr<const Image> QkLevelMeterCell::levelMeterOffImage() const {
    return partOf(drawingOfFrame(),
                  [](const detail::MeterDrawing& drawn) { return drawn.bar().off; });
}

std::shared_ptr<const Image> QkLevelMeterCell::levelMeterOnImage() const {
    return partOf(drawingOfFrame(),
                  [](const detail::MeterDrawing& drawn) { return drawn.bar().on; });
}

std::shared_ptr<const Image> QkLevelMeterCell::peakLedOffImage() const {
    return partOf(drawingOfFrame(),
                  [](const detail::MeterDrawing& drawn) { return drawn.light().off; });
}

std::shared_ptr<const Image> QkLevelMeterCell::peakLedOnImage() const {
    return partOf(drawingOfFrame(),
                  [](const detail::MeterDrawing& drawn) { return drawn.light().on; });
}

void QkLevelMeterCell::drawInteriorWithFrame(Canvas& canvas, const Rect& frame, View& view) {
    const Rect place = canvas.alignedToDevice(frame);
    drawing(place.size, canvas.scale(), view.effectiveAppearance())
        .draw(canvas, place, {displayLevel(), maxDisplayLevel(), peak(), m_onStateLEDInset, m_rms});
    tellScaleView(view);
}

void QkLevelMeterCell::tellLevel(Moment now, bool isUrgent) {
    const bool isDue = !m_toldDate || now < *m_toldDate || now - *m_toldDate >= kTellPause;
    const bool differs = std::fabs(displayLevel() - m_toldLevel) > kWorthTelling;
    if (!isUrgent && !(isDue && differs)) return;
    m_toldLevel = displayLevel();
    m_toldDate = now;
    postAccessibilityNotification(AccessibilityNotification::ValueChanged);
}

AccessibilityElement* QkLevelMeterCell::accessibilityParent() const {
    AccessibilityElement* const parent = m_accessibilityParent.get();
    return parent != nullptr ? parent : ActionCell::accessibilityParent();
}

AccessibilityRole QkLevelMeterCell::accessibilityRole() const {
    return AccessibilityRole::LevelIndicator;
}

std::string QkLevelMeterCell::accessibilityName() const {
    const std::string name = ActionCell::accessibilityName();
    return name.empty() ? localizedString(m_accessibilityDescription) : name;
}

AccessibilityOrientation QkLevelMeterCell::accessibilityOrientation() const {
    return orientation() == LevelMeterOrientation::Horizontal ? AccessibilityOrientation::Horizontal
                                                              : AccessibilityOrientation::Vertical;
}

std::optional<AccessibilityNumber> QkLevelMeterCell::accessibilityNumber() const {
    return AccessibilityNumber{std::clamp(decibels(), kLeastNumber, 0.0), kLeastNumber, 0.0, 0.0};
}

double QkLevelMeterCell::decibels() const {
    return decibelsOf(displayLevel());
}

double QkLevelMeterCell::decibelsOf(float level) const {
    return m_levelScale == LevelScale::Amplitude ? decibelsForAmplitude(level)
                                                 : decibelsForMeterPosition(level);
}

std::string QkLevelMeterCell::accessibilityValueText() const {
    std::string text = decibelText(decibels());
    if (m_rms)
        text += ", " + localizedString("RMS") + ' ' +
                decibelText(decibelsOf(std::min(*m_rms, displayLevel())));
    if (m_isMuted) text += ", " + localizedString("muted");
    if (peak()) text += ", " + localizedString("clipped");
    return text;
}

void drawLevelMeterGlass(Canvas& canvas, const Rect& meters, Appearance appearance, float edge) {
    constexpr float kRadius = 4.0F;
    fillRounded(canvas, meters.inset(-edge, -edge), kRadius, theme(appearance).glass);
}

}  // namespace veltra
