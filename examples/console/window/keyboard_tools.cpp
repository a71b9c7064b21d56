// SPDX-License-Identifier: MIT
#include "keyboard_tools.h"

#include <algorithm>
#include <cmath>

namespace veltra::console {

namespace {

constexpr float kMargin = 16.0F;
constexpr float kGap = 8.0F;
constexpr float kPart = 12.0F;        // between what belongs to different things
constexpr float kButtonRoom = 52.0F;  // of the window's button, at the right
constexpr float kToggleHeight = 22.0F;
constexpr float kNarrowest = 40.0F;  // of the file's name
constexpr int kLeast = 1;
constexpr int kMost = 127;
constexpr int kUsual = 100;

}  // namespace

class KeyboardTools::Limits final : public DfNumberEditorControlDelegate {
public:
    std::optional<std::int64_t> calculateValueFromCellValues(
        DfNumberEditorControl& /*control*/, std::span<const std::int32_t> values) override {
        return std::clamp(values.front(), kLeast, kMost);
    }
};

KeyboardTools::KeyboardTools(const Rect& frame, KeyboardDelegate& delegate)
    : KeyboardToolbarView(frame),
      m_delegate(delegate),
      m_limits(std::make_unique<Limits>()),
      m_velocityLabel(addSubview(std::make_unique<Label>(themeFont(11.0F), &Theme::label))),
      m_velocity(
          addSubview(std::make_unique<NumberDisplay>(Rect{}, NumberEditorLook::Field, 12.0F))),
      m_sustain(addSubview(std::make_unique<Button>(Rect{}, "Sustain", ButtonCell::Kind::Toggle))),
      m_file(addSubview(std::make_unique<Button>(Rect{}, "File", ButtonCell::Kind::Toggle))),
      m_name(addSubview(std::make_unique<Label>(themeFont(11.0F), &Theme::caption))),
      m_picker(addSubview(std::make_unique<DfOctavePickerView>(
          Rect{{}, DfOctavePickerView::naturalSize(false)}, false))) {
    m_velocityLabel.setText("Velocity");
    DfNumberEditorControl& editor = m_velocity.editor();
    editor.setEditorCellCount(1);
    editor.setPlaceHolderStringOfEditorCellAtIndex("000", 0);
    editor.setMaxEditStringLenOfEditorCellAtIndex(3, 0);
    editor.setAccessibilityName("velocity of the computer's keys");
    editor.setDelegate(m_limits.get());
    editor.setLocksPointer(true);
    editor.setUsesClipboard(true);
    setVelocity(kUsual);
    for (Button* const button : {&m_sustain, &m_file}) {
        button->setFont(themeFont(11.0F, FontWeight::Medium));
        button->setTarget(this);
    }
    m_sustain.setAction(action<&KeyboardTools::sustainWasPressed>());
    m_file.setAction(action<&KeyboardTools::fileWasPressed>());
    m_file.buttonCell().setAccessibilityName("Play a file at pitch");
    m_picker.setClickRaster(7);
    layOut();
}

KeyboardTools::~KeyboardTools() {
    cutAnchor();
}

int KeyboardTools::velocity() const {
    return static_cast<int>(m_velocity.editor().value());
}

void KeyboardTools::setVelocity(int velocity) {
    m_velocity.editor().setValue(std::clamp(velocity, kLeast, kMost));
}

void KeyboardTools::showFile(const std::string& text, bool isAvailable) {
    m_file.setOn(!text.empty());
    m_file.setEnabled(isAvailable || !text.empty());
    m_name.setText(text);
}

// The view is not flipped; all parts lie in the middle of its height.
void KeyboardTools::layOut() {
    const float height = bounds().size.height;
    float x = kMargin;
    const auto next = [&](View& view, Size size, float gap) {
        view.setFrame({{x, (height - size.height) / 2.0F}, size});
        x += size.width + gap;
    };
    next(m_velocityLabel, {46.0F, 14.0F}, kGap);
    next(m_velocity, {std::ceil(m_velocity.sizeThatFits().width), 20.0F}, kPart);
    next(m_sustain, {64.0F, kToggleHeight}, kPart);
    next(m_file, {44.0F, kToggleHeight}, kGap);
    const Size picker = DfOctavePickerView::naturalSize(false);
    const float left = bounds().size.width - kButtonRoom - picker.width;
    const float room = left - kPart - x;
    m_name.setHidden(room < kNarrowest);
    next(m_name, {std::max(room, 0.0F), 14.0F}, kPart);
    m_picker.setFrame({{std::max(left, x), (height - picker.height) / 2.0F}, picker});
    setNeedsDisplay();
}

void KeyboardTools::sustainWasPressed() {
    m_delegate.sustainWasSwitched(m_sustain.isOn());
}

void KeyboardTools::fileWasPressed() {
    m_delegate.fileWasSwitched(m_file.isOn());
}

}  // namespace veltra::console
