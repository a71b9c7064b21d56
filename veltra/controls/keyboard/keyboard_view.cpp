// SPDX-License-Identifier: MIT
#include "veltra/controls/keyboard/keyboard_view.h"

#include "veltra/controls/keyboard/detail/keyboard_drawing.h"
#include "veltra/controls/keyboard/note_name.h"
#include "veltra/controls/keyboard/white_keys.h"
#include "veltra/platform/localization.h"
#include "veltra/platform/run_loop.h"
#include "veltra/ui/window.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace veltra {

namespace {

constexpr std::int32_t kMiddleC = 60;
constexpr std::int32_t kOctave = 12;
constexpr std::int32_t kKeyVelocity = 100;  // of notes that no place tells how hard to strike
constexpr std::int64_t kFar = 1000;         // farther than any note from any other

// Fingers that are none.
constexpr std::int64_t kPointer = -1;
constexpr std::int64_t kSpaceKey = -2;
constexpr std::int64_t kPress = -3;  // of a screen reader
constexpr Nanoseconds kPressTime = milliseconds(500);

constexpr bool isNote(std::int64_t note) noexcept {
    return note >= 0 && note < 128;
}

bool isSpace(const Event& event) noexcept {
    return !event.charactersIgnoringModifiers.empty() &&
           event.charactersIgnoringModifiers.front() == u' ';
}

}  // namespace

KeyboardViewDelegate::~KeyboardViewDelegate() = default;

KeyboardView::KeyboardView(const Rect& frame) : View(frame), m_geometry{frame.size, {28, 15}, 0} {}

KeyboardView::~KeyboardView() {
    releaseAll();  // it may never have been in a window
    cutAnchor();
    if (m_timer) m_timer->invalidate();
}

// What is shown.

void KeyboardView::changeGeometry(const KeyboardGeometry& geometry) {
    KeyboardGeometry wanted = geometry;
    const auto count = static_cast<std::uint32_t>(VLWhiteKeyCount(geometry.firstNote));
    wanted.range = OctaveRow{1.0F, count}.kept(geometry.range);
    if (wanted == m_geometry) return;
    const WeakPointer<KeyboardView> self(this);
    releaseAll();
    if (!self) return;
    wanted.size = bounds().size;  // whoever was told may have resized it
    m_geometry = wanted;
    m_hovered = -1;
    setNeedsDisplay();
    postAccessibilityNotification(AccessibilityNotification::ValueChanged);
}

void KeyboardView::setKeyRange(KeyRange range) {
    changeGeometry({m_geometry.size, range, m_geometry.firstNote});
}

void KeyboardView::setFirstNote(std::int32_t note) {
    changeGeometry({m_geometry.size, m_geometry.range, isNote(note) ? note : 0});
}

void KeyboardView::frameDidChange() {
    m_geometry.size = bounds().size;
}

void KeyboardView::setOctaveOfMiddleC(std::int32_t octave) {
    m_octaveOfMiddleC = octave;
    setNeedsDisplay();
}

void KeyboardView::setNotePressed(std::int32_t note, bool isPressed) {
    if (!isNote(note) || m_shown[static_cast<std::size_t>(note)] == isPressed) return;
    m_shown[static_cast<std::size_t>(note)] = isPressed;
    redrawNote(note);
}

void KeyboardView::clearPressedNotes() {
    for (std::int32_t note = 0; note < 128; ++note)
        setNotePressed(note, false);
}

bool KeyboardView::isNotePressed(std::int32_t note) const noexcept {
    return isNote(note) && (m_shown[static_cast<std::size_t>(note)] || isPlayed(note));
}

void KeyboardView::redrawNote(std::int32_t note) {
    setNeedsDisplayInRect(m_geometry.rectOfNote(note).inset(-1.0F, 0.0F));
}

void KeyboardView::setEnabled(bool isEnabled) {
    if (isEnabled == m_isEnabled) return;
    m_isEnabled = isEnabled;
    m_hovered = -1;
    const WeakPointer<KeyboardView> self(this);
    releaseAll();
    if (!self) return;
    setNeedsDisplay();
    postAccessibilityNotification(AccessibilityNotification::StateChanged);
}

// What is played.

KeyboardView::Held* KeyboardView::held(std::int64_t finger) noexcept {
    const auto found = std::find_if(m_held.begin(), m_held.end(),
                                    [=](const Held& each) { return each.finger == finger; });
    return found != m_held.end() ? &*found : nullptr;
}

bool KeyboardView::isPlayed(std::int32_t note) const noexcept {
    return std::any_of(m_held.begin(), m_held.end(),
                       [=](const Held& each) { return each.note == note; });
}

void KeyboardView::play(std::int64_t finger, std::int32_t note, std::int32_t velocity) {
    if (!m_isEnabled) return;
    if (held(finger) == nullptr) m_held.push_back({finger, -1});
    moveTo(finger, note, velocity);
}

void KeyboardView::moveTo(std::int64_t finger, std::int32_t note, std::int32_t velocity) {
    Held* entry = held(finger);
    if (entry == nullptr || entry->note == note) return;
    const WeakPointer<KeyboardView> self(this);
    const std::int32_t before = std::exchange(entry->note, -1);
    tellReleased(before);
    if (!self) return;
    entry = held(finger);  // whoever was told may have let go, or have moved it on
    if (entry == nullptr || entry->note >= 0 || note < 0) return;
    const bool isNew = !isPlayed(note);
    entry->note = note;
    if (isNew) tellPressed(note, velocity);
}

void KeyboardView::letGo(std::int64_t finger) {
    const Held* const entry = held(finger);
    if (entry == nullptr) return;
    const std::int32_t note = entry->note;
    m_held.erase(m_held.begin() + (entry - m_held.data()));
    tellReleased(note);
}

void KeyboardView::releaseAll() {
    const WeakPointer<KeyboardView> self(this);
    while (self && !m_held.empty())
        letGo(m_held.back().finger);
}

void KeyboardView::tellPressed(std::int32_t note, std::int32_t velocity) {
    redrawNote(note);
    if (auto* const delegate = dynamic_cast<KeyboardViewDelegate*>(m_delegate.get()))
        delegate->keyboardViewDidPressNote(*this, note, velocity);
}

// Nothing while another finger holds it.
void KeyboardView::tellReleased(std::int32_t note) {
    if (note < 0 || isPlayed(note)) return;
    redrawNote(note);
    if (auto* const delegate = dynamic_cast<KeyboardViewDelegate*>(m_delegate.get()))
        delegate->keyboardViewDidReleaseNote(*this, note);
}

void KeyboardView::fingerDown(std::int64_t finger, Point point) {
    const std::int32_t note = m_geometry.noteAt(point);
    play(finger, note, m_geometry.velocityAt(note, point));
}

void KeyboardView::fingerMoved(std::int64_t finger, Point point) {
    const std::int32_t note = m_geometry.noteAt(point);
    moveTo(finger, note, m_geometry.velocityAt(note, point));
}

void KeyboardView::fingerUp(std::int64_t finger) {
    letGo(finger);
}

// The key that is struck has the keys of the computer, too.
void KeyboardView::fingerBegins(std::int64_t finger, const Event& event) {
    const Point point = locationOf(event);
    const std::int32_t note = m_geometry.noteAt(point);
    if (m_isEnabled && note >= 0) m_focused = note;
    fingerDown(finger, point);
}

void KeyboardView::touchBegan(const Event& event) {
    fingerBegins(event.finger, event);
}

void KeyboardView::touchMoved(const Event& event) {
    fingerMoved(event.finger, locationOf(event));
}

void KeyboardView::touchEnded(const Event& event) {
    fingerUp(event.finger);
}

void KeyboardView::touchCancelled(const Event& event) {
    fingerUp(event.finger);
}

void KeyboardView::mouseDown(const Event& event) {
    fingerBegins(kPointer, event);
}

void KeyboardView::mouseDragged(const Event& event) {
    fingerMoved(kPointer, locationOf(event));
}

void KeyboardView::mouseUp(const Event& /*event*/) {
    letGo(kPointer);
}

void KeyboardView::mouseMoved(const Event& event) {
    setHovered(m_isEnabled ? m_geometry.noteAt(locationOf(event)) : -1);
}

void KeyboardView::mouseExited(const Event& /*event*/) {
    setHovered(-1);
}

void KeyboardView::setHovered(std::int32_t note) {
    if (note == m_hovered) return;
    redrawNote(m_hovered);
    m_hovered = note;
    redrawNote(m_hovered);
}

// Notes do not hang where their end cannot be heard of any more.

bool KeyboardView::resignFirstResponder() {
    letGo(kSpaceKey);
    return true;
}

void KeyboardView::windowStateDidChange() {
    if (window() != nullptr && !window()->isKeyWindow()) letGo(kSpaceKey);
}

void KeyboardView::viewWillMoveToWindow(Window* /*window*/) {
    m_hovered = -1;
    releaseAll();
}

// Keys of the computer.

std::int32_t KeyboardView::focusedNote() const noexcept {
    const std::int32_t lowest = m_geometry.lowestNote();
    const std::int32_t highest = m_geometry.highestNote();
    const auto isShown = [&](std::int32_t note) { return note >= lowest && note <= highest; };
    if (isShown(m_focused)) return m_focused;
    return isShown(kMiddleC) ? kMiddleC : lowest;
}

void KeyboardView::focusNote(std::int64_t note) {
    m_focused = static_cast<std::int32_t>(
        std::clamp<std::int64_t>(note, m_geometry.lowestNote(), m_geometry.highestNote()));
    postAccessibilityNotification(AccessibilityNotification::ValueChanged);
}

std::optional<std::int64_t> KeyboardView::noteAfterKey(const Event& event) const {
    switch (event.plainKey()) {
        case kLeftArrowCharacter:
            return focusedNote() - 1;
        case kRightArrowCharacter:
            return focusedNote() + 1;
        case kPageDownCharacter:
            return focusedNote() - kOctave;
        case kPageUpCharacter:
            return focusedNote() + kOctave;
        case kHomeCharacter:
            return -kFar;
        case kEndCharacter:
            return kFar;
        default:
            return std::nullopt;
    }
}

bool KeyboardView::wantsKey(const Event& event) const {
    return m_isEnabled && (event.plainKey() == u' ' || noteAfterKey(event).has_value());
}

void KeyboardView::keyDown(const Event& event) {
    if (!wantsKey(event)) return View::keyDown(event);
    if (const auto note = noteAfterKey(event)) return focusNote(*note);
    if (!event.isRepeat) play(kSpaceKey, focusedNote(), kKeyVelocity);
}

void KeyboardView::keyUp(const Event& event) {
    if (!isSpace(event) || held(kSpaceKey) == nullptr) return View::keyUp(event);
    if (!event.isRepeat) letGo(kSpaceKey);
}

// Drawing.

std::optional<View::FocusShape> KeyboardView::focusShape() const {
    return FocusShape{m_geometry.rectOfNote(focusedNote()).inset(2.0F, 2.0F), 4.0F};
}

void KeyboardView::drawRect(Canvas& canvas, const Rect& /*dirty*/) {
    const detail::KeyboardDrawing drawing(canvas, effectiveAppearance());
    drawing.drawBed(bounds());
    const auto drawKeys = [&](bool isBlack) {
        for (std::int32_t note = m_geometry.lowestNote(); note <= m_geometry.highestNote();
             ++note) {
            const Rect key = m_geometry.rectOfNote(note);
            if (VLIsBlackKey(note) != isBlack || !needsToDrawRect(key.inset(-1.0F, 0.0F))) continue;
            detail::KeyPicture picture{isNotePressed(note), note == m_hovered, m_isEnabled,
                                       note == kMiddleC};
            if (isBlack) {
                drawing.drawBlackKey(key, picture);
                continue;
            }
            if (note % kOctave == 0) picture.label = noteName(note, m_octaveOfMiddleC);
            drawing.drawWhiteKey(key, picture);
        }
    };
    drawKeys(false);
    drawKeys(true);
    drawing.drawEdge(bounds());
}

// Accessibility.

std::string KeyboardView::accessibilityName() const {
    const std::string name = View::accessibilityName();
    return name.empty() ? localizedString("keyboard") : name;
}

std::optional<AccessibilityNumber> KeyboardView::accessibilityNumber() const {
    return AccessibilityNumber{static_cast<double>(focusedNote()),
                               static_cast<double>(m_geometry.lowestNote()),
                               static_cast<double>(m_geometry.highestNote()), 1.0};
}

std::string KeyboardView::accessibilityValueText() const {
    const std::string name = noteName(focusedNote(), m_octaveOfMiddleC);
    return isNotePressed(focusedNote()) ? name + " " + localizedString("pressed") : name;
}

bool KeyboardView::setAccessibilityNumber(double value) {
    if (!m_isEnabled || std::isnan(value)) return false;
    focusNote(static_cast<std::int64_t>(std::clamp(std::round(value), -1.0, 128.0)));
    return true;
}

std::vector<AccessibilityAction> KeyboardView::accessibilityActions() const {
    if (!m_isEnabled) return {};
    return {AccessibilityAction::Increment, AccessibilityAction::Decrement,
            AccessibilityAction::Press};
}

bool KeyboardView::performAccessibilityAction(AccessibilityAction action) {
    if (!m_isEnabled) return false;
    if (action != AccessibilityAction::Press) {
        focusNote(focusedNote() + (action == AccessibilityAction::Increment ? 1 : -1));
        return true;
    }
    const WeakPointer<KeyboardView> self(this);
    letGo(kPress);
    if (!self) return true;
    if (m_timer) m_timer->invalidate();
    RunLoop* const loop = RunLoop::current();
    m_timer = nullptr;
    if (loop != nullptr) {
        m_timer = loop->schedule({.interval = kPressTime,
                                  .target = this,
                                  .action = veltra::action<&KeyboardView::pressIsOver>(),
                                  .modes = kAllRunLoopModes});
    }
    play(kPress, focusedNote(), kKeyVelocity);
    if (self && !m_timer) letGo(kPress);  // nothing else would end it
    return true;
}

void KeyboardView::pressIsOver() {
    letGo(kPress);
}

}  // namespace veltra
