// SPDX-License-Identifier: MIT
#include "veltra/controls/keyboard/octave_picker_view.h"

#include "veltra/controls/keyboard/detail/octave_picker_drawing.h"
#include "veltra/controls/keyboard/note_name.h"
#include "veltra/controls/keyboard/white_keys.h"
#include "veltra/platform/localization.h"
#include "veltra/ui/application.h"
#include "veltra/ui/image_registry.h"
#include "veltra/ui/window.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace veltra {

namespace {

struct Variant {
    const char* ground;
    const char* keys;
    std::uint32_t count;
    float keyWidth;
    float height;
};

constexpr Variant kLarge{"octave-control-bg", "octave-glyphKeys", 75, 6.0F, 40.0F};
constexpr Variant kShort{"octave-control-bg-short", "octave-glyphKeys-short", 74, 5.0F, 26.0F};

constexpr std::uint32_t kOctave = 7;
constexpr std::int64_t kAllKeys = std::numeric_limits<std::uint32_t>::max();
constexpr float kSideReach = 3.0F;    // how far beside a side of the range it can be grabbed
constexpr float kRedrawReach = 8.0F;  // how far edges and names reach beyond the range

constexpr const Variant& variant(bool isLarge) noexcept {
    return isLarge ? kLarge : kShort;
}

constexpr float keysWidth(const Variant& variant) noexcept {
    return static_cast<float>(variant.count) * variant.keyWidth;
}

// Over the full height of the view.
void drawStretched(Canvas& canvas, const Image& image, const Rect& destination) {
    if (!destination.isEmpty()) canvas.drawImage(image, {{}, image.size()}, destination);
}

}  // namespace

DfOctavePickerView::DfOctavePickerView(const Rect& frame, bool isLarge)
    : View(frame), m_totalNumWhiteKeys(variant(isLarge).count), m_isLarge(isLarge) {
    loadImages();
}

DfOctavePickerView::~DfOctavePickerView() {
    cutAnchor();
}

Size DfOctavePickerView::naturalSize(bool isLarge) noexcept {
    const Variant& made = variant(isLarge);
    return {keysWidth(made) + 2.0F * OctaveRow::kMargin, made.height};
}

void DfOctavePickerView::loadImages() {
    const float scale = window() != nullptr ? window()->scale() : 1.0F;
    const Variant& made = variant(m_isLarge);
    m_bgImage = findImage(made.ground, scale);
    m_glyphKeysImage = findImage(made.keys, scale);
    m_rangeLeftEdgeImage = findImage("octave-L_edge", scale);
    m_rangeFillImage = findImage("octave-fill", scale);
    m_rangeRightEdgeImage = findImage("octave-R_edge", scale);
    m_totalKeysWidth = m_glyphKeysImage ? m_glyphKeysImage->size().width : 0.0F;
    if (!(m_totalKeysWidth > 0.0F)) m_totalKeysWidth = keysWidth(made);
}

Rect DfOctavePickerView::rangeRect() const noexcept {
    const float left = row().left(m_keyRange);
    return {{left, 0.0F}, {row().right(m_keyRange) - left, bounds().size.height}};
}

Rect DfOctavePickerView::rectToRedraw() const noexcept {
    return rangeRect().inset(-kRedrawReach, 0.0F);
}

void DfOctavePickerView::setKeyRange(KeyRange range) {
    const KeyRange kept = row().kept(range);
    if (kept == m_keyRange) return;
    drawingDidChange();
    m_keyRange = kept;
    drawingDidChange();
    postAccessibilityNotification(AccessibilityNotification::ValueChanged);
}

void DfOctavePickerView::setFirstNote(std::int32_t note) {
    m_firstNote = VLWhiteKeyCount(note) > 0 ? note : 0;
    setNeedsDisplay();
    postAccessibilityNotification(AccessibilityNotification::ValueChanged);
}

void DfOctavePickerView::setOctaveOfMiddleC(std::int32_t octave) {
    m_octaveOfMiddleC = octave;
    setNeedsDisplay();
    postAccessibilityNotification(AccessibilityNotification::ValueChanged);
}

void DfOctavePickerView::setEnabled(bool isEnabled) {
    if (isEnabled == m_isEnabled) return;
    m_isEnabled = isEnabled;
    m_isHovered = false;
    endDrag();
    setNeedsDisplay();
    postAccessibilityNotification(AccessibilityNotification::StateChanged);
}

// The range follows the pointer.

void DfOctavePickerView::changeAndSendAction(KeyRange range) {
    const WeakPointer<DfOctavePickerView> self(this);
    setKeyRange(range);
    if (self && m_target && m_action)
        Application::current().sendAction(m_action, m_target.get(), this);
}

void DfOctavePickerView::setKeyRangeForMouseEvent(const Event& event, std::int32_t raster) {
    const float x = locationOf(event).x;
    // A side that is dragged has no offset of its own here.
    const float offset = std::max(m_mouseDownOffset, 0.0F);
    changeAndSendAction(row().moved(m_keyRange, x, offset, raster));
}

bool DfOctavePickerView::isOnRange(Point point) const noexcept {
    return mouseInRect(point, rangeRect(), isFlipped());
}

// In a narrow range its middle half remains to move it.
DfOctavePickerView::Side DfOctavePickerView::sideAt(Point point) const noexcept {
    const Rect range = rangeRect();
    if (!m_allowsResizing || !mouseInRect(point, bounds(), isFlipped())) return Side::None;
    const float inside = std::min(kSideReach, range.size.width / 4.0F);
    const auto isNear = [&](float from, float to) { return point.x >= from && point.x < to; };
    if (isNear(range.minX() - kSideReach, range.minX() + inside)) return Side::Left;
    if (isNear(range.maxX() - inside, range.maxX() + kSideReach)) return Side::Right;
    return Side::None;
}

void DfOctavePickerView::mouseDown(const Event& event) {
    if (!m_isEnabled) return;
    const Point point = locationOf(event);
    m_rangeBefore = m_keyRange;
    m_mouseDownOffset = -1.0F;
    m_side = sideAt(point);
    if (m_side != Side::None) {
        m_sideOffset =
            point.x - (m_side == Side::Left ? rangeRect().minX() : rangeRect().maxX() + 1.0F);
    } else if (isOnRange(point)) {
        m_mouseDownOffset = point.x - rangeRect().minX();
    } else {
        m_mouseDownOffset = 0.0F;
        const WeakPointer<DfOctavePickerView> self(this);
        setKeyRangeForMouseEvent(event, m_clickRaster);
        if (!self) return;
        const bool isGrabbed = m_mouseDownOffset >= 0.0F && isOnRange(point);  // not ended
        m_mouseDownOffset = isGrabbed ? point.x - rangeRect().minX() : -1.0F;
    }
    m_isHovered = isOnRange(point);
    if (!isDragging()) return;
    drawingDidChange();
    ToolTipWindow::shared().showToolTipWindowForView(*this, this, 0, placeOfTip());
}

void DfOctavePickerView::mouseDragged(const Event& event) {
    if (!isDragging()) return;
    const WeakPointer<DfOctavePickerView> self(this);
    if (m_side != Side::None) {
        dragSide(locationOf(event).x - m_sideOffset);
    } else {
        setKeyRangeForMouseEvent(event, m_dragRaster);
    }
    if (self && isDragging()) ToolTipWindow::shared().updateToolTipPosition(placeOfTip(), *this);
}

void DfOctavePickerView::dragSide(float x) {
    changeAndSendAction(m_side == Side::Left ? row().withLeftAt(m_keyRange, x, m_dragRaster)
                                             : row().withRightAt(m_keyRange, x, m_dragRaster));
}

void DfOctavePickerView::mouseUp(const Event& /*event*/) {
    endDrag();
}

// Above the range.
Point DfOctavePickerView::placeOfTip() const noexcept {
    const Rect range = rangeRect();
    return {range.center().x, isFlipped() ? range.minY() : range.maxY()};
}

void DfOctavePickerView::endDrag() {
    if (!isDragging()) return;
    m_mouseDownOffset = -1.0F;
    m_side = Side::None;
    drawingDidChange();
    ToolTipWindow& tip = ToolTipWindow::shared();
    if (tip.isOpenFor(*this, this)) tip.closeToolTipWindow();
}

void DfOctavePickerView::mouseMoved(const Event& event) {
    setHovered(m_isEnabled && isOnRange(locationOf(event)));
}

void DfOctavePickerView::mouseExited(const Event& /*event*/) {
    setHovered(false);
}

void DfOctavePickerView::setHovered(bool isHovered) {
    if (isHovered == m_isHovered) return;
    m_isHovered = isHovered;
    drawingDidChange();
}

Cursor DfOctavePickerView::cursorAt(Point point) const {
    return m_isEnabled && sideAt(point) != Side::None ? Cursor::ResizeLeftRight : Cursor::Arrow;
}

// Keys.

KeyRange DfOctavePickerView::movedBy(std::int64_t keys) const noexcept {
    const std::int64_t last = m_totalNumWhiteKeys - m_keyRange.length;
    const std::int64_t place = std::clamp<std::int64_t>(m_keyRange.location + keys, 0, last);
    return {static_cast<std::uint32_t>(place), m_keyRange.length};
}

std::optional<KeyRange> DfOctavePickerView::rangeAfterKey(const Event& event) const {
    const bool resizes = m_allowsResizing && event.modifierFlags.contains(kShiftKeyMask);
    switch (event.plainKey()) {
        case kLeftArrowCharacter:
            if (resizes) return KeyRange{m_keyRange.location, m_keyRange.length - 1};
            return movedBy(-1);
        case kRightArrowCharacter:
            if (resizes) {
                const bool isAtEnd = m_keyRange.end() == m_totalNumWhiteKeys;
                return KeyRange{m_keyRange.location, m_keyRange.length + (isAtEnd ? 0 : 1)};
            }
            return movedBy(1);
        case kPageUpCharacter:
            return movedBy(kOctave);
        case kPageDownCharacter:
            return movedBy(-std::int64_t{kOctave});
        case kHomeCharacter:
            return movedBy(-kAllKeys);
        case kEndCharacter:
            return movedBy(kAllKeys);
        case kEscapeCharacter:
            if (isDragging()) return m_rangeBefore;
            return std::nullopt;
        default:
            return std::nullopt;
    }
}

bool DfOctavePickerView::wantsKey(const Event& event) const {
    return m_isEnabled && rangeAfterKey(event).has_value();
}

void DfOctavePickerView::keyDown(const Event& event) {
    const std::optional<KeyRange> range = m_isEnabled ? rangeAfterKey(event) : std::nullopt;
    if (!range) return View::keyDown(event);
    if (event.plainKey() == kEscapeCharacter) endDrag();
    changeAndSendAction(*range);
}

// Drawing.

void DfOctavePickerView::viewDidMoveToWindow() {
    endDrag();
    m_isHovered = false;
    loadImages();
}

void DfOctavePickerView::appearanceDidChange() {
    loadImages();
}

std::optional<View::FocusShape> DfOctavePickerView::focusShape() const {
    return FocusShape{bounds(), detail::kOctavePickerRadius};
}

void DfOctavePickerView::drawRect(Canvas& canvas, const Rect& dirty) {
    using detail::OctavePickerState;
    auto state = m_isHovered ? OctavePickerState::Hovered : OctavePickerState::AtRest;
    if (isDragging()) state = OctavePickerState::Dragged;
    if (!m_isEnabled) state = OctavePickerState::Disabled;
    const Size natural = naturalSize(m_isLarge);
    const Size size = bounds().size;
    const bool hasNames = m_isLarge && size.height >= natural.height;
    const detail::OctavePickerDrawing::Content content{
        bounds(), row(), m_keyRange, m_firstNote, m_octaveOfMiddleC, hasNames, state};
    const detail::OctavePickerDrawing drawing(canvas, content, dirty, effectiveAppearance());

    if (m_bgImage) {
        drawStretched(canvas, *m_bgImage, {{}, {m_bgImage->size().width, size.height}});
    } else {
        drawing.drawGround();
    }
    if (m_glyphKeysImage) {
        const Size keys = m_glyphKeysImage->size();
        canvas.drawImage(*m_glyphKeysImage, {{}, keys},
                         {{OctaveRow::kMargin, (size.height - keys.height) / 2.0F}, keys});
    } else {
        drawing.drawKeys();
        drawing.drawNames();
    }
    if (!m_rangeLeftEdgeImage || !m_rangeFillImage || !m_rangeRightEdgeImage)
        return drawing.drawRange();
    const Rect range = rangeRect();
    const float left = m_rangeLeftEdgeImage->size().width;
    const float right = m_rangeRightEdgeImage->size().width;
    drawStretched(canvas, *m_rangeLeftEdgeImage, {range.origin, {left, size.height}});
    drawStretched(canvas, *m_rangeFillImage,
                  {{range.minX() + left, 0.0F}, {range.size.width - left - right, size.height}});
    drawStretched(canvas, *m_rangeRightEdgeImage,
                  {{range.maxX() - right, 0.0F}, {right, size.height}});
}

// Words.

std::string DfOctavePickerView::nameOfKey(std::uint32_t key) const {
    const auto last = static_cast<std::uint32_t>(VLWhiteKeyCount(m_firstNote) - 1);
    const auto shown = static_cast<std::int32_t>(std::min(key, last));
    return noteName(VLNoteForWhiteKey(shown, m_firstNote), m_octaveOfMiddleC);
}

std::string DfOctavePickerView::stringForTag(std::int32_t /*tag*/) {
    return nameOfKey(m_keyRange.location) + " \u2013 " + nameOfKey(m_keyRange.end() - 1);
}

std::string DfOctavePickerView::accessibilityName() const {
    const std::string name = View::accessibilityName();
    return name.empty() ? localizedString("key range") : name;
}

std::string DfOctavePickerView::accessibilityValueText() const {
    return nameOfKey(m_keyRange.location) + " " + localizedString("to") + " " +
           nameOfKey(m_keyRange.end() - 1);
}

std::optional<AccessibilityNumber> DfOctavePickerView::accessibilityNumber() const {
    return AccessibilityNumber{static_cast<double>(m_keyRange.location), 0.0,
                               static_cast<double>(m_totalNumWhiteKeys - m_keyRange.length), 1.0};
}

bool DfOctavePickerView::setAccessibilityNumber(double value) {
    if (!m_isEnabled || std::isnan(value)) return false;
    const double last = static_cast<double>(m_totalNumWhiteKeys - m_keyRange.length);
    const double place = std::clamp(std::round(value), 0.0, last);
    changeAndSendAction({static_cast<std::uint32_t>(place), m_keyRange.length});
    return true;
}

std::vector<AccessibilityAction> DfOctavePickerView::accessibilityActions() const {
    if (!m_isEnabled) return {};
    return {AccessibilityAction::Increment, AccessibilityAction::Decrement};
}

bool DfOctavePickerView::performAccessibilityAction(AccessibilityAction action) {
    if (!m_isEnabled || action == AccessibilityAction::Press) return false;
    changeAndSendAction(movedBy(action == AccessibilityAction::Increment ? 1 : -1));
    return true;
}

}  // namespace veltra
