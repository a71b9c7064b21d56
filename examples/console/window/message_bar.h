// SPDX-License-Identifier: MIT
// What went wrong, or what can be undone, in a line at the foot of the window.
#pragma once

#include "console_button.h"
#include "console_delegate.h"
#include "label.h"

#include <optional>
#include <string>
#include <vector>

namespace veltra::console {

// Hidden while there is nothing to tell. The newest message is shown, with the count of all; it
// stays until it is closed. Thread: main.
class MessageBar final : public View {
public:
    static constexpr float kHeight = 40.0F;

    // `delegate` must outlive the view.
    explicit MessageBar(ConsoleDelegate& delegate);

    void add(const std::string& message);
    // In place of messages, which are shown again when it is closed.
    void offerUndo(const std::string& what);
    void withdrawUndo();
    // As its button does. Returns false when there is nothing to close.
    bool close();
    bool takeKeyboard();

    bool isFlipped() const override { return true; }
    void drawRect(Canvas& canvas, const Rect& dirty) override;
    AccessibilityRole accessibilityRole() const override { return AccessibilityRole::Group; }
    std::string accessibilityName() const override { return "Messages"; }

protected:
    void frameDidChange() override { layOut(); }

private:
    void closeWasPressed();
    void showAllWasPressed();
    void undoWasPressed();
    void show();
    void layOut();

    ConsoleDelegate& m_delegate;
    Label& m_text;
    ConsoleButton& m_showAll;
    ConsoleButton& m_undo;
    ConsoleButton& m_close;
    std::vector<std::string> m_messages;
    std::optional<std::string> m_removed;
};

}  // namespace veltra::console
