// SPDX-License-Identifier: MIT
// The transport: its buttons, the glass with position, tempo, meter and time, and what concerns the
// whole window.
#pragma once

#include "console_button.h"
#include "console_delegate.h"
#include "label.h"
#include "veltra/controls/number_editor/number_display.h"
#include "veltra/ui/view.h"

#include <memory>

namespace veltra::console {

// Thread: main.
class TopBar final : public View {
public:
    // `delegate` must outlive the view.
    explicit TopBar(ConsoleDelegate& delegate);
    ~TopBar() override;

    // In a window of this size.
    static float heightIn(Size window);

    void update(const ConsoleState& state, int clips);
    void setKeyboardShown(bool isShown) { m_keys.setOn(isShown); }
    bool takeKeyboard();

    // Where clip lights are put out: the view around responds to it.
    void setClipsAction(Anchored* target, Action action);

    bool isFlipped() const override { return true; }
    void drawRect(Canvas& canvas, const Rect& dirty) override;
    AccessibilityRole accessibilityRole() const override { return AccessibilityRole::Group; }
    std::string accessibilityName() const override { return "Transport"; }
    // Where it is in the music, and the time.
    std::string accessibilityValueText() const override;

protected:
    void frameDidChange() override { layOut(); }

private:
    class Groups;
    class Position;
    class Tempo;
    class Meter;

    void setUpPositionGroups();
    void layOut();
    void updateStatus(const ConsoleState& state, int clips);
    void returnWasPressed();
    void playWasPressed();
    void loopWasPressed();
    void addWasPressed();
    void keysWasPressed();
    void positionWasEdited();
    void tempoWasEdited();
    void meterWasEdited();

    ConsoleDelegate& m_delegate;
    const std::unique_ptr<Position> m_positionGroups;
    const std::unique_ptr<Tempo> m_tempoGroups;
    const std::unique_ptr<Meter> m_meterGroups;
    ConsoleButton& m_return;
    ConsoleButton& m_play;
    ConsoleButton& m_loop;
    NumberDisplay& m_position;
    NumberDisplay& m_tempo;
    NumberDisplay& m_meter;
    Label& m_tempoCaption;  // above both of its groups
    Label& m_meterCaption;  // likewise
    ConsoleButton& m_clips;
    ConsoleButton& m_keys;
    ConsoleButton& m_add;
    Label& m_status;
    Label& m_files;
    Rect m_glass;
    Rect m_timeRect;
    std::string m_time;
    bool m_isPrimary = false;  // there are no files yet
    double m_secondsPerTick = 0.0;
};

}  // namespace veltra::console
