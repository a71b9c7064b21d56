// SPDX-License-Identifier: MIT
// The strip of the keyboard window: how hard the keys of the computer strike, the pedal, the sound,
// and which octaves are shown.
#pragma once

#include "keyboard_delegate.h"
#include "label.h"
#include "veltra/controls/keyboard/keyboard_toolbar_view.h"
#include "veltra/controls/keyboard/octave_picker_view.h"
#include "veltra/controls/number_editor/number_display.h"
#include "veltra/ui/button.h"

#include <memory>
#include <string>

namespace veltra::console {

// Thread: main.
class KeyboardTools final : public KeyboardToolbarView {
public:
    // `delegate` must outlive the view.
    KeyboardTools(const Rect& frame, KeyboardDelegate& delegate);
    ~KeyboardTools() override;

    int velocity() const;
    void setVelocity(int velocity);  // kept within 1 and 127
    DfOctavePickerView& picker() noexcept { return m_picker; }

    // The file that is played, and what is shown of it; with an empty text a tone is.
    void showFile(const std::string& text, bool isAvailable);

protected:
    void frameDidChange() override { layOut(); }

private:
    class Limits;

    void layOut();
    void sustainWasPressed();
    void fileWasPressed();

    KeyboardDelegate& m_delegate;
    const std::unique_ptr<Limits> m_limits;
    Label& m_velocityLabel;
    NumberDisplay& m_velocity;
    Button& m_sustain;
    Button& m_file;
    Label& m_name;
    DfOctavePickerView& m_picker;
};

}  // namespace veltra::console
