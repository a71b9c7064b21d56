// SPDX-License-Identifier: MIT
// What went wrong, in a line, until the user has read it.
#pragma once

#include "label.h"
#include "veltra/ui/button.h"

#include <string>
#include <vector>

namespace veltra::console {

// Hidden without messages. Thread: main.
class MessageBar final : public View {
public:
    static constexpr float kHeight = 36.0F;

    explicit MessageBar(const Rect& frame);

    // Several are shown one after the other, the oldest first.
    void add(const std::string& message);

    bool isFlipped() const override { return true; }
    void drawRect(Canvas& canvas, const Rect& dirty) override;
    AccessibilityRole accessibilityRole() const override { return AccessibilityRole::Group; }
    std::string accessibilityName() const override { return "Messages"; }

protected:
    void frameDidChange() override;

private:
    void nextWasPressed();
    void show();

    Label& m_text;
    Button& m_next;
    std::vector<std::string> m_messages;
};

}  // namespace veltra::console
