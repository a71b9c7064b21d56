// SPDX-License-Identifier: MIT
#include "message_bar.h"

#include "../text.h"
#include "veltra/ui/canvas.h"

namespace veltra::console {

namespace {
constexpr float kMargin = 12.0F;
constexpr float kButtonWidth = 84.0F;
}  // namespace

MessageBar::MessageBar(const Rect& frame)
    : View(frame),
      m_text(
          addSubview(std::make_unique<Label>(Rect{}, Font::systemFont(13.0F), SystemColor::Alert))),
      m_next(addSubview(std::make_unique<Button>(Rect{}, "Dismiss"))) {
    m_next.setTarget(this);
    m_next.setAction(action<&MessageBar::nextWasPressed>());
    frameDidChange();
    show();
}

void MessageBar::frameDidChange() {
    const float textWidth = bounds().size.width - kButtonWidth - 3.0F * kMargin;
    m_text.setFrame({{kMargin, 0.0F}, {textWidth, kHeight}});
    m_next.setFrame({{textWidth + 2.0F * kMargin, 6.0F}, {kButtonWidth, 24.0F}});
}

void MessageBar::add(const std::string& message) {
    m_messages.push_back(printable(message));
    show();
}

void MessageBar::nextWasPressed() {
    m_messages.erase(m_messages.begin());
    show();
}

void MessageBar::show() {
    setHidden(m_messages.empty());
    if (m_messages.empty()) return;
    const std::size_t more = m_messages.size() - 1;
    m_text.setText(m_messages.front() + (more > 0 ? formatted(" (%zu more)", more) : ""));
    m_text.setFullText(m_messages.front());
}

void MessageBar::drawRect(Canvas& canvas, const Rect& /*dirty*/) {
    const Color ground = systemColor(SystemColor::ControlBackground);
    canvas.fillRect(bounds(), ground.mixedWith(systemColor(SystemColor::Alert), 0.12F));
    canvas.fillRect({{}, {4.0F, bounds().size.height}}, systemColor(SystemColor::Alert));
}

}  // namespace veltra::console
