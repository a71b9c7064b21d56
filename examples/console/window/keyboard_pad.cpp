// SPDX-License-Identifier: MIT
#include "keyboard_pad.h"

#include "../key_voice.h"
#include "key_map.h"
#include "veltra/controls/keyboard/white_keys.h"
#include "veltra/ui/drawing.h"
#include "veltra/ui/window.h"

#include <algorithm>

namespace veltra::console {

namespace {

constexpr float kMargin = 16.0F;
constexpr float kHead = 34.0F;        // above the keys
constexpr float kButtonRoom = 52.0F;  // of the window's button, in the head
constexpr float kLabelHeight = 14.0F;
constexpr float kWhiteUp = 56.0F;  // from the foot of a key to the middle of what stands on it
constexpr float kBlackUp = 22.0F;
constexpr int kOctave = 12;
constexpr int kWhiteKeysOfOctave = 7;
constexpr auto kOthers = ModifierFlags(kControlKeyMask) | kAlternateKeyMask | kCommandKeyMask;

}  // namespace

LabelledKeyboard::~LabelledKeyboard() {
    cutAnchor();
}

void LabelledKeyboard::setLabels(int lowest, std::vector<std::string> labels) {
    if (lowest == m_lowest && labels == m_labels) return;
    m_lowest = lowest;
    m_labels = std::move(labels);
    setNeedsDisplay();
}

void LabelledKeyboard::showPlayed(int note, bool isDown) {
    m_isLed = false;
    setNotePressed(note, isDown);
    if (isDown) setAccessibilityNumber(note);
}

bool LabelledKeyboard::becomeFirstResponder() {
    m_isLed = true;
    return KeyboardView::becomeFirstResponder();
}

void LabelledKeyboard::keyDown(const Event& event) {
    if (wantsKey(event)) m_isLed = true;
    KeyboardView::keyDown(event);
}

std::optional<View::FocusShape> LabelledKeyboard::focusShape() const {
    return m_isLed ? KeyboardView::focusShape() : std::nullopt;
}

void LabelledKeyboard::drawRect(Canvas& canvas, const Rect& dirty) {
    KeyboardView::drawRect(canvas, dirty);
    const KeyboardGeometry geometry{bounds().size, keyRange(), firstNote()};
    // The keys are light and dark in both appearances alike.
    const Color onWhite = theme(Appearance::Light).caption;
    const Color onBlack = theme(Appearance::Dark).label;
    const Color onPressed = theme(effectiveAppearance()).onAccent;
    int note = m_lowest;
    for (const std::string& label : m_labels) {
        const bool isBlack = VLIsBlackKey(note);
        const Rect key = geometry.rectOfNote(note);
        const Color ink = isNotePressed(note) ? onPressed : isBlack ? onBlack : onWhite;
        ++note;
        if (key.isEmpty() || !needsToDrawRect(key)) continue;
        const float middle = key.maxY() - (isBlack ? kBlackUp : kWhiteUp);
        canvas.drawText(
            {label, themeFont(11.0F), ink, TextAlignment::Center},
            {{key.minX(), middle - kLabelHeight / 2.0F}, {key.size.width, kLabelHeight}},
            TextPlacement::Capitals);
    }
}

KeyboardPad::KeyboardPad(const Rect& frame, KeyboardDelegate& delegate, KeyboardTools& tools)
    : View(frame),
      m_delegate(delegate),
      m_tools(tools),
      m_keys(addSubview(std::make_unique<LabelledKeyboard>(
          Rect{{kMargin, kMargin},
               {frame.size.width - 2.0F * kMargin, frame.size.height - kMargin - kHead}}))),
      m_hint(addSubview(std::make_unique<Label>(themeFont(11.0F), &Theme::caption,
                                                TextAlignment::Left, TextTruncation::End))) {
    m_keys.setAutoresizingMask(AutoresizingMask(kViewWidthSizable) | kViewHeightSizable);
    m_keys.setDelegate(this);
    m_hint.setFrame({{kMargin, frame.size.height - kHead + 10.0F},
                     {frame.size.width - 2.0F * kMargin - kButtonRoom, kLabelHeight}});
    m_hint.setAutoresizingMask(AutoresizingMask(kViewWidthSizable) | kViewMinYMargin);
    m_tools.picker().setTarget(this);
    m_tools.picker().setAction(action<&KeyboardPad::rangeWasPicked>());
    showKeysFrom(4 * kWhiteKeysOfOctave);
}

KeyboardPad::~KeyboardPad() {
    cutAnchor();
}

void KeyboardPad::showKeysFrom(std::uint32_t first) {
    const auto most = m_tools.picker().totalNumWhiteKeys() - kWhiteKeys;
    m_tools.picker().setKeyRange({std::min(first, most), kWhiteKeys});
    rangeWasPicked();
}

std::uint32_t KeyboardPad::firstKey() const {
    return m_keys.keyRange().location;
}

int KeyboardPad::lowestPlayed() const {
    const int first = VLNoteForWhiteKey(static_cast<int>(firstKey()) + kWhiteKeysOfOctave, 0);
    return (first + kOctave - 1) / kOctave * kOctave;
}

void KeyboardPad::rangeWasPicked() {
    m_keys.setKeyRange(m_tools.picker().keyRange());
    showLabels();
}

void KeyboardPad::showLabels() {
    m_keys.setLabels(lowestPlayed(), labelsOfPositionKeys());
    const OctaveKeyLabels octaves = labelsOfOctaveKeys();
    m_hint.setText(octaves.down.empty()
                       ? std::string()
                       : octaves.down + " and " + octaves.up + ": an octave down and up");
}

// A note sounds while anything holds it.

void KeyboardPad::begin(int note, int velocity) {
    if (++m_holders[note] == 1) m_delegate.noteWasPressed(note, velocity);
}

void KeyboardPad::end(int note) {
    const auto holders = m_holders.find(note);
    if (holders == m_holders.end() || --holders->second > 0) return;
    m_holders.erase(holders);
    m_delegate.noteWasReleased(note);
}

void KeyboardPad::keyboardViewDidPressNote(KeyboardView& /*sender*/, std::int32_t note,
                                           std::int32_t velocity) {
    begin(note, velocity);
}

void KeyboardPad::keyboardViewDidReleaseNote(KeyboardView& /*sender*/, std::int32_t note) {
    end(note);
}

void KeyboardPad::letGo() {
    m_keys.releaseAll();
    m_keys.clearPressedNotes();
    for (const auto& [key, note] : std::exchange(m_down, {}))
        end(note);
    m_delegate.allNotesWereReleased();
}

void KeyboardPad::keyDown(const Event& event) {
    const bool isPlain = (event.modifierFlags & kOthers).isEmpty();
    if (event.plainKey() == kEscapeCharacter) return m_delegate.keyboardWasClosed();
    const int octave = octaveOfKey(event.keyCode);
    const auto semitone = semitoneOfKey(event.keyCode);
    if (!isPlain || (octave == 0 && !semitone)) return View::keyDown(event);
    if (event.isRepeat) return;
    if (octave != 0) {
        const auto first = static_cast<int>(firstKey()) + octave * kWhiteKeysOfOctave;
        return showKeysFrom(static_cast<std::uint32_t>(std::max(first, 0)));
    }
    const int note = lowestPlayed() + *semitone;
    if (note >= kNotes || !m_down.try_emplace(event.keyCode, note).second) return;
    m_keys.showPlayed(note, true);
    begin(note, m_tools.velocity());
}

void KeyboardPad::keyUp(const Event& event) {
    const auto key = m_down.find(event.keyCode);
    if (key == m_down.end()) return View::keyUp(event);
    const int note = key->second;
    m_down.erase(key);
    const bool isHeld = std::any_of(m_down.begin(), m_down.end(),
                                    [note](const auto& each) { return each.second == note; });
    m_keys.showPlayed(note, isHeld);
    end(note);
}

// A key that comes up elsewhere is never heard of.
void KeyboardPad::windowStateDidChange() {
    const bool hasKeys = window() != nullptr && window()->isKeyWindow();
    if (hasKeys) showLabels();  // the layout may be another one by now
    if (std::exchange(m_hadKeys, hasKeys) && !hasKeys) letGo();
}

void KeyboardPad::drawRect(Canvas& canvas, const Rect& dirty) {
    canvas.fillRect(dirty, theme(effectiveAppearance()).window);
}

}  // namespace veltra::console
