// SPDX-License-Identifier: MIT
// Where files can be dropped: the whole of an empty console, or the room beside few strips.
#pragma once

#include "console_button.h"
#include "console_delegate.h"

namespace veltra::console {

// Thread: main.
class DropView final : public View {
public:
    // `delegate` must outlive the view.
    explicit DropView(ConsoleDelegate& delegate);

    // In an empty console it says what can be dropped, else only that something can be.
    void setIsWhole(bool isWhole);
    // Files are over the window.
    void setDropTarget(bool isDropTarget);
    bool takeKeyboard();

    bool isFlipped() const override { return true; }
    void drawRect(Canvas& canvas, const Rect& dirty) override;
    void mouseUp(const Event& event) override;
    void mouseDown(const Event& /*event*/) override {}
    Cursor cursorAt(Point point) const override;
    AccessibilityRole accessibilityRole() const override { return AccessibilityRole::Group; }
    std::string accessibilityName() const override { return "Drop audio files here"; }

protected:
    void frameDidChange() override;

private:
    void addWasPressed();
    void drawInvitation(Canvas& canvas) const;
    float top() const;

    ConsoleDelegate& m_delegate;
    ConsoleButton& m_add;
    bool m_isWhole = true;
    bool m_isDropTarget = false;
};

}  // namespace veltra::console
