// SPDX-License-Identifier: MIT
#include "console_view.h"

#include "veltra/audio/key_code_converter.h"
#include "veltra/ui/canvas.h"

#include <algorithm>
#include <array>

namespace veltra::console {

namespace {

constexpr float kMargin = 16.0F;
constexpr float kGap = 10.0F;
constexpr float kHeaderHeight = 64.0F;
constexpr float kOutputWidth = 104.0F;
constexpr float kWindowHeight = 500.0F;
constexpr float kLeastStripsWidth = 414.0F;
constexpr float kMostStripsWidth = 1104.0F;
constexpr float kAddWidth = 104.0F;
constexpr float kScrollStep = 60.0F;

class FlippedBox final : public View {
public:
    using View::View;
    bool isFlipped() const override { return true; }
};

}  // namespace

ConsoleView::ConsoleView(const Rect& frame, ConsoleDelegate& delegate)
    : View(frame),
      m_delegate(delegate),
      m_transport(addSubview(
          std::make_unique<TransportView>(Rect{{kMargin, 10.0F}, TransportView::kSize}))),
      m_outputName(addSubview(std::make_unique<Label>(
          Rect{}, Font::systemFont(12.0F), SystemColor::SecondaryLabel, TextAlignment::Right))),
      m_add(addSubview(std::make_unique<Button>(Rect{}, "Add files\u2026"))),
      m_reading(addSubview(std::make_unique<ReadingLine>(Rect{}))),
      m_box(addSubview(std::make_unique<FlippedBox>(Rect{}))),
      m_hint(addSubview(std::make_unique<Label>(
          Rect{}, Font::systemFont(15.0F), SystemColor::SecondaryLabel, TextAlignment::Center))),
      m_output(
          addSubview(std::make_unique<MeterBridge>(Rect{}, 2, channelPlan(std::array<int, 2>{})))),
      m_messages(addSubview(std::make_unique<MessageBar>(Rect{}))) {
    m_add.setTarget(this);
    m_add.setAction(action<&ConsoleView::addWasPressed>());
    const auto shortcut =
        QKKeyCodeConverter::humandReadableStringForKeyChar(u'o', QKKeyCodeConverter::kControl);
    m_add.toolTips().addToolTipRect({{}, {kAddWidth, 100.0F}},
                                    "Add audio files (" + shortcut.value_or("") + ")");
    m_hint.setText("Drop audio files here, or choose Add files\u2026");
    m_output.setName("Output");
    layOut();
}

Size ConsoleView::sizeForStrips(std::span<const StripState> strips) {
    float width = 0.0F;
    for (const StripState& strip : strips)
        width += StripView::widthFor(strip.format) + kGap;
    return {2.0F * kMargin + std::clamp(width, kLeastStripsWidth, kMostStripsWidth) + kGap +
                kOutputWidth,
            kWindowHeight};
}

Rect ConsoleView::stripsRect() const {
    return {{kMargin, kHeaderHeight},
            {bounds().size.width - 2.0F * kMargin - 2.0F * kGap - kOutputWidth,
             bounds().size.height - kHeaderHeight - kMargin - m_messageHeight}};
}

void ConsoleView::frameDidChange() {
    layOut();
}

void ConsoleView::layOut() {
    const float right = bounds().size.width - kMargin;
    m_add.setFrame({{right - kAddWidth, 20.0F}, {kAddWidth, 24.0F}});
    const float nameLeft = m_transport.frame().maxX() + kGap;
    m_outputName.setFrame(
        {{nameLeft, 20.0F}, {std::max(right - kAddWidth - kGap - nameLeft, 0.0F), 24.0F}});
    const Rect strips = stripsRect();
    m_reading.setFrame({{kMargin, kHeaderHeight - 2.0F * ReadingLine::kHeight},
                        {right - kMargin, ReadingLine::kHeight}});
    m_box.setFrame(strips);
    m_hint.setFrame(strips);
    m_output.setFrame({{right - kOutputWidth + kGap, strips.minY() + 50.0F},
                       {kOutputWidth - 2.0F * kGap, strips.size.height - 60.0F}});
    m_messages.setFrame({{0.0F, bounds().size.height - MessageBar::kHeight},
                         {bounds().size.width, MessageBar::kHeight}});
    float needed = -kGap;
    for (const StripView* const strip : m_strips)
        needed += strip->frame().size.width + kGap;
    m_scrolled = std::clamp(m_scrolled, 0.0F, std::max(needed - strips.size.width, 0.0F));
    float left = -m_scrolled;
    for (StripView* const strip : m_strips) {
        strip->setFrame({{left, 0.0F}, {strip->frame().size.width, strips.size.height}});
        left += strip->frame().size.width + kGap;
    }
}

void ConsoleView::matchStrips(const ConsoleState& state) {
    const auto isGone = [&state](StripView* view) {
        return std::none_of(state.strips.begin(), state.strips.end(),
                            [view](const auto& strip) { return strip.key == view->key(); });
    };
    const std::size_t before = m_strips.size();
    for (StripView* const view : m_strips) {
        if (isGone(view)) view->setHidden(true);
    }
    std::erase_if(m_strips, [&isGone](StripView* view) {
        if (!isGone(view)) return false;
        view->removeFromSuperview();
        return true;
    });
    bool isChanged = before != m_strips.size();
    for (std::size_t i = m_strips.size(); i < state.strips.size(); ++i) {
        const float width = StripView::widthFor(state.strips[i].format);
        const Rect frame{{}, {width, m_box.bounds().size.height}};
        m_strips.push_back(
            &m_box.addSubview(std::make_unique<StripView>(frame, state.strips[i], m_delegate)));
        isChanged = true;
    }
    if (isChanged) layOut();
    m_hint.setHidden(!m_strips.empty());
}

void ConsoleView::makeRoomForMessages() {
    const float height = m_messages.isHidden() ? 0.0F : MessageBar::kHeight;
    if (height == m_messageHeight) return;
    m_messageHeight = height;
    layOut();
    setNeedsDisplay();
}

void ConsoleView::update(const ConsoleState& state) {
    makeRoomForMessages();
    matchStrips(state);
    for (std::size_t i = 0; i < m_strips.size(); ++i)
        m_strips[i]->update(state.strips[i]);
    m_output.setPeaks(state.outputPeaks);
    m_transport.update(state.place, state.seconds);
    m_outputName.setText(state.outputName);
    m_reading.update(state.reading);
}

void ConsoleView::addMessage(const std::string& message) {
    m_messages.add(message);
    makeRoomForMessages();
}

void ConsoleView::setDropTarget(bool isDropTarget) {
    if (isDropTarget == m_isDropTarget) return;
    m_isDropTarget = isDropTarget;
    setNeedsDisplay();
}

void ConsoleView::scrollWheel(const Event& event) {
    m_scrolled -= (event.deltaX != 0.0F ? event.deltaX : event.deltaY) * kScrollStep;
    layOut();
}

void ConsoleView::drawRect(Canvas& canvas, const Rect& dirty) {
    canvas.fillRect(dirty, systemColor(SystemColor::WindowBackground));
    const Rect strips = stripsRect();
    const StyledText output{"Output", Font::systemFont(13.0F, FontWeight::Bold),
                            systemColor(SystemColor::Label), TextAlignment::Center};
    canvas.drawText(output, {{m_output.frame().minX(), strips.minY() + 9.0F},
                             {m_output.frame().size.width, 18.0F}});
    const float line = 1.0F / canvas.scale();
    canvas.fillRect({{strips.maxX() + kGap, strips.minY()}, {line, strips.size.height}},
                    systemColor(SystemColor::Separator));
    if (m_isDropTarget) {
        canvas.strokePath(Path::roundedRect(strips.inset(-4.0F, -4.0F), 10.0F),
                          systemColor(SystemColor::Accent), 2.0F);
    }
}

void ConsoleView::addWasPressed() {
    m_delegate.addFilesWasPressed();
}

}  // namespace veltra::console
