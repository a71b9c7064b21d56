// SPDX-License-Identifier: MIT
#include "message_bar.h"

#include "../text.h"
#include "icons.h"
#include "veltra/ui/drawing.h"
#include "veltra/ui/window.h"

#include <cmath>

namespace veltra::console {

namespace {

constexpr float kRadius = 8.0F;
constexpr float kMargin = 12.0F;
constexpr float kTextLeft = 40.0F;
constexpr float kCloseSize = 24.0F;
constexpr float kButtonHeight = 28.0F;

}  // namespace

MessageBar::MessageBar(ConsoleDelegate& delegate)
    : m_delegate(delegate),
      m_text(addSubview(std::make_unique<Label>(themeFont(12.0F, FontWeight::Medium), &Theme::text,
                                                TextAlignment::Left, TextTruncation::End))),
      m_showAll(addSubview(std::make_unique<ConsoleButton>(Rect{}, "Show all"))),
      m_undo(addSubview(std::make_unique<ConsoleButton>(Rect{}, "Undo"))),
      m_close(addSubview(std::make_unique<ConsoleButton>(Rect{}, ""))) {
    const auto setUp = [this](ConsoleButton& button, Action action) {
        button.setFont(themeFont(12.0F, FontWeight::Medium));
        button.setTarget(this);
        button.setAction(action);
    };
    setUp(m_showAll, action<&MessageBar::showAllWasPressed>());
    setUp(m_undo, action<&MessageBar::undoWasPressed>());
    setUp(m_close, action<&MessageBar::closeWasPressed>());
    m_undo.setHelp("Bring it back", u'z', kControlKeyMask);
    m_close.buttonCell().setStyle(ButtonCell::Style::Bare);
    m_close.buttonCell().setIcon(drawCloseIcon);
    m_close.buttonCell().setAccessibilityName("Dismiss");
    show();
}

void MessageBar::layOut() {
    const float height = bounds().size.height;
    float right = bounds().size.width - kMargin;
    const auto place = [&](ConsoleButton& button, Size size) {
        if (button.isHidden()) return;
        right -= size.width;
        button.setFrame({{right, std::round((height - size.height) * 0.5F)}, size});
        right -= kMargin;
    };
    const auto widthOf = [](ConsoleButton& button) {
        button.sizeToFit();
        return std::ceil(button.frame().size.width);
    };
    place(m_close, {kCloseSize, kCloseSize});
    place(m_showAll, {widthOf(m_showAll), kButtonHeight});
    place(m_undo, {widthOf(m_undo), kButtonHeight});
    const float left = m_removed ? kMargin + 4.0F : kTextLeft;
    m_text.setFrame({{left, 0.0F}, {std::max(right - left, 0.0F), height}});
}

void MessageBar::add(const std::string& message) {
    m_messages.push_back(printable(message));
    m_removed.reset();
    show();
}

void MessageBar::offerUndo(const std::string& what) {
    m_removed = "Removed " + printable(what);
    show();
}

void MessageBar::withdrawUndo() {
    m_removed.reset();
    show();
}

bool MessageBar::close() {
    if (isHidden()) return false;
    if (m_removed) {
        m_removed.reset();
    } else {
        m_messages.clear();
    }
    show();
    return true;
}

bool MessageBar::takeKeyboard() {
    return !isHidden() && window() != nullptr && window()->giveKeyboardTo(m_close);
}

void MessageBar::closeWasPressed() {
    close();
}

void MessageBar::showAllWasPressed() {
    m_delegate.allMessagesWerePressed(m_messages);
}

void MessageBar::undoWasPressed() {
    m_delegate.undoWasPressed();
}

void MessageBar::show() {
    setHidden(m_messages.empty() && !m_removed);
    if (isHidden()) return;
    const std::string text = m_removed ? *m_removed : m_messages.back();
    m_text.setText(text);
    m_text.setFullText(text);
    m_undo.setHidden(!m_removed);
    m_showAll.setHidden(m_removed || m_messages.size() < 2);
    m_showAll.setStringValue(formatted("Show all (%zu)", m_messages.size()));
    layOut();
    setNeedsDisplay();
}

void MessageBar::drawRect(Canvas& canvas, const Rect& /*dirty*/) {
    const Theme& colors = theme(effectiveAppearance());
    if (m_removed) return drawPlate(canvas, bounds(), kRadius, colors.card, colors.edge);
    fillRounded(canvas, bounds(), kRadius, colors.alertSoft);
    drawWarningIcon(canvas, {14.0F, bounds().size.height * 0.5F - 8.0F}, colors.alert);
}

}  // namespace veltra::console
