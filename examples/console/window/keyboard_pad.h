// SPDX-License-Identifier: MIT
// The keys of the keyboard window: played with the pointer, with fingers, and with the keys of the
// computer that lie alike.
#pragma once

#include "keyboard_delegate.h"
#include "keyboard_tools.h"
#include "label.h"
#include "veltra/controls/keyboard/keyboard_view.h"
#include "veltra/controls/keyboard/octave_picker_view.h"

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace veltra::console {

// A keyboard with words on its keys. The ring around a key shows only while arrows lead from key to
// key.
class LabelledKeyboard final : public KeyboardView {
public:
    using KeyboardView::KeyboardView;
    ~LabelledKeyboard() override;

    // One for each key from `lowest` on.
    void setLabels(int lowest, std::vector<std::string> labels);
    // A key of the computer that plays `note` goes down or up; a screen reader says so.
    void showPlayed(int note, bool isDown);

    bool becomeFirstResponder() override;
    void keyDown(const Event& event) override;
    std::optional<FocusShape> focusShape() const override;
    void drawRect(Canvas& canvas, const Rect& dirty) override;

private:
    int m_lowest = 0;
    std::vector<std::string> m_labels;
    bool m_isLed = true;  // by arrows
};

// All of the window but the strip, which is told of the octaves and asked for the velocity.
// Thread: main.
class KeyboardPad final : public View, public KeyboardViewDelegate {
public:
    static constexpr std::uint32_t kWhiteKeys = 22;  // three octaves and a C

    // `delegate` must outlive the view, and so must the strip.
    KeyboardPad(const Rect& frame, KeyboardDelegate& delegate, KeyboardTools& tools);
    ~KeyboardPad() override;

    // The white key at the left, from 0 for the lowest C.
    void showKeysFrom(std::uint32_t first);
    std::uint32_t firstKey() const;
    // What the first of the computer's keys plays: the second C that is shown.
    int lowestPlayed() const;
    // Nothing is held any more, also not by the pedal.
    void letGo();
    KeyboardView& keys() noexcept { return m_keys; }

    void keyDown(const Event& event) override;
    void keyUp(const Event& event) override;
    void windowStateDidChange() override;
    void viewDidMoveToWindow() override { showLabels(); }
    void drawRect(Canvas& canvas, const Rect& dirty) override;

private:
    void rangeWasPicked();
    void showLabels();
    void begin(int note, int velocity);
    void end(int note);
    void keyboardViewDidPressNote(KeyboardView& sender, std::int32_t note,
                                  std::int32_t velocity) override;
    void keyboardViewDidReleaseNote(KeyboardView& sender, std::int32_t note) override;

    KeyboardDelegate& m_delegate;
    KeyboardTools& m_tools;
    LabelledKeyboard& m_keys;
    Label& m_hint;
    bool m_hadKeys = false;               // the window had the computer's keys
    std::map<std::uint16_t, int> m_down;  // the note of each of those that is down
    std::map<int, int> m_holders;         // of each note: how many keys and fingers hold it
};

}  // namespace veltra::console
