// SPDX-License-Identifier: MIT
// Plays the user of the new control, without a screen.
#include "step_row.h"
#include "veltra/ui/application.h"
#include "veltra/ui/window.h"

#include <cstdio>
#include <initializer_list>
#include <string>

using namespace veltra;

namespace {

struct Sequencer : Anchored {
    void patternChanged(StepRow& /*row*/) { ++changes; }
    int changes = 0;
};

void send(Window& window, EventType type, Point point, char16_t key = 0) {
    Event event;
    event.type = type;
    event.locationInWindow = point;
    event.clickCount = 1;
    if (key != 0) event.characters = event.charactersIgnoringModifiers = std::u16string(1, key);
    event.window = &window;
    Application::current().postEvent(std::move(event));
}

std::string textOf(const StepPattern& pattern) {
    std::string text;
    for (int step = 0; step < pattern.count(); ++step)
        text += pattern.isOn(step) ? 'x' : '.';
    return text;
}

bool isAs(const StepRow& row, const char* what, const char* expected) {
    const std::string text = textOf(row.pattern());
    std::printf("%-8s %s\n", what, text.c_str());
    return text == expected;
}

}  // namespace

int main() {
    Window window(Rect{{}, {320, 40}});
    window.setContentView(std::make_unique<View>());
    auto& row =
        window.contentView()->addSubview(std::make_unique<StepRow>(Rect{{8, 8}, {304, 24}}));
    Sequencer sequencer;
    row.setTarget(&sequencer);
    row.setAction(action<&Sequencer::patternChanged>());
    const auto middle = [&row](int step) {
        return row.convertPointToView(row.rectOfStep(step).center(), nullptr);
    };

    send(window, EventType::LeftMouseDown, middle(0));
    send(window, EventType::LeftMouseDragged, middle(1));
    send(window, EventType::LeftMouseDragged, middle(2));
    send(window, EventType::LeftMouseUp, middle(2));
    bool isRight = isAs(row, "painted", "xxx.............");

    window.makeFirstResponder(&row);
    for (const char16_t key : {kRightArrowCharacter, kRightArrowCharacter, char16_t{u' '}})
        send(window, EventType::KeyDown, {}, key);
    isRight = isAs(row, "by keys", "xxx.x...........") && isRight;

    AccessibilityElement& reader = *row.accessibilityChildren()[1];
    isRight = reader.performAccessibilityAction(AccessibilityAction::Press) &&
              !reader.accessibilityIsChecked() && isRight;
    isRight = isAs(row, "by reader", "x.x.x...........") && isRight;
    return isRight && sequencer.changes == 5 ? 0 : 1;
}
