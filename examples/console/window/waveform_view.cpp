// SPDX-License-Identifier: MIT
#include "waveform_view.h"

#include "../text.h"
#include "../times.h"
#include "veltra/platform/clock.h"
#include "veltra/ui/drawing.h"
#include "veltra/ui/window.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace veltra::console {

namespace {

constexpr float kRadius = 4.0F;
constexpr float kSides = 2.0F;
constexpr float kOnsetsHeight = 8.0F;  // above the waveform
constexpr float kOnsetBottom = 6.0F;
constexpr float kOnsetRoom = 6.0F;  // points between onsets, on average
constexpr float kAxisHeight = 18.0F;
constexpr float kHead = 3.5F;       // half of the playhead's head
constexpr float kAxisStep = 34.0F;  // points from label to label at least
constexpr float kLoudness = 0.6F;   // power of the amplitude: quiet looks quiet, and can be seen
constexpr float kFullScale = 0.9999F;
constexpr double kStep = 1.0;  // seconds, of the keys

}  // namespace

WaveformView::WaveformView(ConsoleDelegate& delegate, std::string fileName)
    : m_delegate(delegate), m_fileName(std::move(fileName)) {}

Rect WaveformView::field() const {
    const float axis = m_hasAxis ? kAxisHeight : 0.0F;
    return {{}, {bounds().size.width, std::max(bounds().size.height - axis, 0.0F)}};
}

Rect WaveformView::wave() const {
    const Rect field = this->field();
    return {{kSides, kOnsetsHeight + 1.0F},
            {std::max(field.size.width - 2.0F * kSides, 0.0F),
             std::max(field.size.height - kOnsetsHeight - 1.0F - kSides, 0.0F)}};
}

// In whole device pixels.
float WaveformView::xOf(double seconds) const {
    const float scale = window() != nullptr ? window()->scale() : 1.0F;
    const double share = m_length > 0.0 ? std::clamp(seconds / m_length, 0.0, 1.0) : 0.0;
    const Rect wave = this->wave();
    return std::round((wave.minX() + static_cast<float>(share) * wave.size.width) * scale) / scale;
}

double WaveformView::secondsAt(float x) const {
    const Rect wave = this->wave();
    if (!(wave.size.width > 0.0F)) return 0.0;
    const float share = std::clamp((x - wave.minX()) / wave.size.width, 0.0F, 1.0F);
    return static_cast<double>(share) * m_length;
}

float WaveformView::playedX() const {
    return xOf(m_place);
}

void WaveformView::setOverview(std::shared_ptr<const Overview> overview) {
    if (overview == nullptr || overview == m_overview) return;
    m_overview = std::move(overview);
    thinOut();
    setNeedsDisplay();
}

void WaveformView::setReading(std::optional<double> share) {
    const bool moves = share && *share < 0.0 && m_overview == nullptr;
    if (share == m_reading && !moves) return;
    m_reading = share;
    setNeedsDisplay();
}

void WaveformView::setMuted(bool isMuted) {
    if (isMuted == m_isMuted) return;
    m_isMuted = isMuted;
    setNeedsDisplay();
}

void WaveformView::setHasAxis(bool hasAxis) {
    if (hasAxis == m_hasAxis) return;
    m_hasAxis = hasAxis;
    setNeedsDisplay();
}

void WaveformView::frameDidChange() {
    thinOut();
    setNeedsDisplay();
}

void WaveformView::thinOut() {
    m_onsets = m_overview != nullptr ? m_overview->onsets : CTransients();
    m_onsets.ThinOutToSizeAndSortByPos(
        static_cast<unsigned long>(std::max(bounds().size.width / kOnsetRoom, 0.0F)));
}

void WaveformView::invalidateHead(float x) {
    setNeedsDisplayInRect({{x - kHead - 1.0F, 0.0F}, {2.0F * kHead + 2.0F, field().size.height}});
}

void WaveformView::setTimes(double length, double place, double loopBegin, double loopEnd) {
    if (length != m_length || loopBegin != m_loopBegin || loopEnd != m_loopEnd) {
        m_length = length;
        m_loopBegin = loopBegin;
        m_loopEnd = loopEnd;
        setNeedsDisplay();
    }
    const float before = playedX();
    m_place = place;
    const float now = playedX();
    if (now == before) return;
    invalidateHead(before);
    invalidateHead(now);
    setNeedsDisplayInRect(
        {{std::min(before, now), 0.0F}, {std::fabs(now - before), field().size.height}});
}

void WaveformView::drawRect(Canvas& canvas, const Rect& dirty) {
    const Theme& colors = theme(effectiveAppearance());
    fillRounded(canvas, field(), kRadius, colors.field);
    if (m_overview == nullptr && m_reading) {
        drawReading(canvas);
    } else {
        drawLoop(canvas, true);
        drawWave(canvas, dirty);
        drawOnsets(canvas);
    }
    drawLoop(canvas, false);
    drawHeads(canvas);
    if (m_hasAxis && dirty.maxY() > field().maxY()) drawAxis(canvas);
}

Rect WaveformView::opaqueRect() const {
    return field().inset(kRadius, 0.0F);
}

void WaveformView::drawWave(Canvas& canvas, const Rect& dirty) const {
    const Theme& colors = theme(effectiveAppearance());
    const Color played = m_isMuted ? colors.strong : colors.accent;
    const Color ahead = m_isMuted ? colors.wave.mixedWith(colors.field, 0.45F) : colors.wave;
    const Color clipped = m_isMuted ? colors.strong : colors.alert;
    const Rect wave = this->wave();
    const float pixel = 1.0F / canvas.scale();
    const float middle = std::round(wave.center().y * canvas.scale()) * pixel;
    const float border = playedX();
    const std::size_t known = m_overview != nullptr ? m_overview->columns.size() : 0;
    const std::size_t columns = m_overview != nullptr ? m_overview->wholeColumns() : 0;
    const auto first =
        static_cast<int>(std::floor(std::max(dirty.minX(), wave.minX()) * canvas.scale()));
    const float end = std::min(dirty.maxX(), wave.maxX()) * canvas.scale();
    const auto heightOf = [&](float amplitude) {
        const float part = std::pow(std::clamp(amplitude, 0.0F, 1.0F), kLoudness);
        return std::round(part * wave.size.height * 0.5F * canvas.scale()) * pixel;
    };
    for (int device = first; static_cast<float>(device) < end; ++device) {
        const float x = static_cast<float>(device) * pixel;
        // All columns that share this pixel, as its highest and lowest.
        const auto columnAt = [&](float place) {
            const float part = std::clamp((place - wave.minX()) / wave.size.width, 0.0F, 1.0F);
            return static_cast<std::size_t>(part * static_cast<float>(columns));
        };
        Overview::Column column;
        for (std::size_t i = columnAt(x); i < std::max(columnAt(x + pixel), columnAt(x) + 1); ++i) {
            if (i >= known) break;
            column.low = std::min(column.low, m_overview->columns[i].low);
            column.high = std::max(column.high, m_overview->columns[i].high);
        }
        const float top = heightOf(column.high);
        const float bottom = heightOf(-column.low);
        canvas.fillRect({{x, middle - top}, {pixel, std::max(top + bottom, pixel)}},
                        x < border ? played : ahead);
        constexpr float kCap = 2.0F;  // height of the mark of what has clipped
        if (column.high >= kFullScale)
            fillAligned(canvas, {{x, wave.minY()}, {pixel, kCap}}, clipped);
        if (-column.low >= kFullScale)
            fillAligned(canvas, {{x, wave.maxY() - kCap}, {pixel, kCap}}, clipped);
    }
}

// Small marks above the waveform, the stronger the longer.
void WaveformView::drawOnsets(Canvas& canvas) const {
    if (m_overview == nullptr || m_overview->frames == 0) return;
    const Theme& colors = theme(effectiveAppearance());
    const Rect wave = this->wave();
    const float border = playedX();
    for (const CTransient& onset : m_onsets) {
        const auto share = static_cast<float>(static_cast<double>(onset.pos) /
                                              static_cast<double>(m_overview->frames));
        const float height = 2.0F + 3.0F * std::clamp(onset.visibleweight, 0.0F, 1.0F);
        const float x = wave.minX() + share * wave.size.width;
        const Rect mark{{x, kOnsetBottom - height}, {1.0F, height}};
        if (!needsToDrawRect(mark)) continue;
        const Color played = m_isMuted ? colors.strong : colors.accent;
        fillAligned(canvas, mark, x < border ? played : colors.caption);
    }
}

void WaveformView::drawLoop(Canvas& canvas, bool isGround) const {
    if (!(m_loopEnd > m_loopBegin) || !(m_length > 0.0) || m_loopBegin >= m_length) return;
    const Color accent = theme(effectiveAppearance()).accent;
    const float begin = xOf(m_loopBegin);
    const float end = xOf(m_loopEnd);
    const float height = field().size.height;
    if (isGround)
        return canvas.fillRect({{begin, 0.0F}, {end - begin, height}}, accent.withAlpha(0.14F));
    constexpr float kLine = 2.0F;
    constexpr float kHook = 6.0F;
    fillAligned(canvas, {{begin, 0.0F}, {kLine, height}}, accent);
    fillAligned(canvas, {{begin, 0.0F}, {kHook, kLine}}, accent);
    if (m_loopEnd > m_length) return;
    fillAligned(canvas, {{end - kLine, 0.0F}, {kLine, height}}, accent);
    fillAligned(canvas, {{end - kHook, 0.0F}, {kHook, kLine}}, accent);
}

void WaveformView::drawHeads(Canvas& canvas) const {
    if (!(m_length > 0.0)) return;
    const Color ink = theme(effectiveAppearance()).text;
    const float height = field().size.height;
    const float line = deviceWidth(canvas, 1.0F);
    if (m_pointer) {
        fillAligned(canvas, {{*m_pointer, 0.0F}, {line, height}}, ink.withAlpha(0.45F));
    }
    const float x = playedX();
    canvas.fillRect({{x, 0.0F}, {line, height}}, ink);
    const float middle = x + line * 0.5F;
    Path head;
    head.moveTo({middle - kHead, 0.0F});
    head.lineTo({middle + kHead, 0.0F});
    head.lineTo({middle + kHead, 1.5F});
    head.lineTo({middle, 1.5F + kHead});
    head.lineTo({middle - kHead, 1.5F});
    head.close();
    canvas.fillPath(head, ink);
}

void WaveformView::drawAxis(Canvas& canvas) const {
    if (!(m_length > 0.0)) return;
    const Theme& colors = theme(effectiveAppearance());
    const Rect wave = this->wave();
    const float top = field().maxY();
    const Font font = themeFont(10.0F, FontWeight::Medium);
    const float labelsEnd = bounds().size.width - 10.0F;  // where the unit stands
    const double step = axisStep(m_length, wave.size.width, kAxisStep);
    for (int i = 0; i * step <= m_length; ++i) {
        const double seconds = i * step;
        const float x = std::min(xOf(seconds), wave.maxX() - 1.0F);
        fillAligned(canvas, {{x, top + 2.0F}, {1.0F, 3.0F}}, colors.strong);
        const StyledText label{axisText(seconds, step), font, colors.caption};
        const float width = label.size().width;
        const float left = i == 0 ? x - 1.0F : x - width * 0.5F;
        if (left + width > labelsEnd) continue;
        canvas.drawText(label, {{left, top + 5.0F}, {width + 1.0F, 12.0F}},
                        TextPlacement::Capitals);
    }
    canvas.drawText({"s", font, colors.caption, TextAlignment::Right},
                    {{bounds().size.width - 10.0F, top + 5.0F}, {10.0F, 12.0F}},
                    TextPlacement::Capitals);
}

void WaveformView::drawReading(Canvas& canvas) const {
    const Theme& colors = theme(effectiveAppearance());
    const Rect wave = this->wave();
    const Rect bar{{wave.minX() + 6.0F, std::round(field().center().y) - 2.0F},
                   {wave.size.width - 12.0F, 4.0F}};
    fillRounded(canvas, bar, 2.0F, colors.line);
    Rect done = bar;
    if (*m_reading >= 0.0) {
        const auto share = static_cast<float>(std::min(*m_reading, 1.0));
        done.size.width = std::max(bar.size.width * share, 4.0F);
    } else {
        constexpr double kToAndFro = 1.6;  // seconds
        constexpr float kPart = 0.3F;
        const double now = (Clocks::current().monotonic().moment() - Moment()).seconds();
        const auto turn = static_cast<float>(std::remainder(now / kToAndFro, 1.0));
        done.size.width = bar.size.width * kPart;
        done.origin.x += 2.0F * std::fabs(turn) * (bar.size.width - done.size.width);
    }
    fillRounded(canvas, done, 2.0F, colors.accent);
}

// The pointer and the keys.

void WaveformView::choose(const Event& event) {
    if (!(m_length > 0.0)) return;
    const double seconds = secondsAt(locationOf(event).x);
    if (!m_loopAnchor) return m_delegate.placeWasChosen(seconds);
    m_delegate.loopWasChosen(std::min(*m_loopAnchor, seconds), std::max(*m_loopAnchor, seconds));
}

void WaveformView::mouseDown(const Event& event) {
    m_loopAnchor.reset();
    if (event.modifierFlags.contains(kShiftKeyMask)) {
        m_loopAnchor = secondsAt(locationOf(event).x);  // a loop needs a drag
        return;
    }
    choose(event);
}

void WaveformView::mouseDragged(const Event& event) {
    const WeakPointer<View> self(this);
    choose(event);
    if (self) mouseMoved(event);
}

void WaveformView::mouseMoved(const Event& event) {
    View::mouseMoved(event);
    const Point at = locationOf(event);
    if (!(m_length > 0.0) || !mouseInRect(at, field(), true)) return mouseExited(event);
    if (m_pointer) invalidateHead(*m_pointer);
    const Rect wave = this->wave();
    m_pointer = std::clamp(at.x, wave.minX(), wave.maxX());
    invalidateHead(*m_pointer);
    ToolTipWindow::shared().showToolTipWindowForView(
        *this, this, 0, {{*m_pointer, 0.0F}, {1.0F, 1.0F}}, ToolTipSide::Above);
}

void WaveformView::mouseExited(const Event& /*event*/) {
    if (!m_pointer) return;
    invalidateHead(*m_pointer);
    m_pointer.reset();
    if (ToolTipWindow::shared().isOpenFor(*this, this))
        ToolTipWindow::shared().closeToolTipWindow();
}

std::string WaveformView::stringForTag(std::int32_t /*tag*/) {
    return m_pointer ? preciseTime(secondsAt(*m_pointer)) : std::string();
}

bool WaveformView::wantsKey(const Event& event) const {
    const auto& characters = event.charactersIgnoringModifiers;
    const bool isModified = event.modifierFlags.contains(kAlternateKeyMask) ||
                            event.modifierFlags.contains(kControlKeyMask);
    return isModified && !characters.empty() &&
           (characters.front() == kLeftArrowCharacter ||
            characters.front() == kRightArrowCharacter);
}

// With Control to the next onset, with Alternate a second.
void WaveformView::keyDown(const Event& event) {
    if (!wantsKey(event)) return View::keyDown(event);
    const bool isForward = event.charactersIgnoringModifiers.front() == kRightArrowCharacter;
    double place = m_place + (isForward ? kStep : -kStep);
    if (event.modifierFlags.contains(kControlKeyMask) && m_overview != nullptr) {
        constexpr double kHere = 0.02;  // seconds: playing goes on between two presses
        place = isForward ? m_length : 0.0;
        for (const CTransient& onset : m_overview->onsets) {
            const double at = static_cast<double>(onset.pos) / m_overview->rate;
            if (isForward && at > m_place + kHere) place = std::min(place, at);
            if (!isForward && at < m_place - 10.0 * kHere) place = std::max(place, at);
        }
    }
    m_delegate.placeWasChosen(std::clamp(place, 0.0, m_length));
}

std::optional<View::FocusShape> WaveformView::focusShape() const {
    return FocusShape{field(), kRadius};
}

// Accessibility.

std::string WaveformView::accessibilityName() const {
    if (m_reading) return "Reading " + m_fileName;
    if (m_overview == nullptr) return "Waveform of " + m_fileName;
    const std::size_t count = m_overview->onsets.size();
    return "Waveform of " + m_fileName + ", " + std::to_string(count) +
           (count == 1 ? " onset" : " onsets");
}

std::optional<AccessibilityNumber> WaveformView::accessibilityNumber() const {
    return AccessibilityNumber{m_place, 0.0, m_length, kStep};
}

std::string WaveformView::accessibilityValueText() const {
    if (m_reading && *m_reading >= 0.0)
        return formatted("%d %%", static_cast<int>(*m_reading * 100.0));
    return clockTime(m_place) + " of " + clockTime(m_length);
}

bool WaveformView::setAccessibilityNumber(double value) {
    if (!(m_length > 0.0) || std::isnan(value)) return false;
    m_delegate.placeWasChosen(std::clamp(value, 0.0, m_length));
    return true;
}

}  // namespace veltra::console
