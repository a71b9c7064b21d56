// SPDX-License-Identifier: MIT
#include "console_view.h"

#include "card_layout.h"
#include "veltra/ui/drawing.h"
#include "veltra/ui/window.h"

#include <algorithm>
#include <cmath>

namespace veltra::console {

namespace {

constexpr float kWindowHeight = 720.0F;
constexpr float kLeastWidth = 800.0F;
constexpr float kMostWidth = 1440.0F;
constexpr float kBridgeRoom = StripBridge::kHeight + 8.0F;
constexpr float kTwoLinesFrom = 1400.0F;  // points of height
constexpr float kMessageGap = 12.0F;
constexpr float kMessageRoom = MessageBar::kHeight + kMessageGap;

// What goes around the cards.
struct Margins {
    float side;
    float beforeOutput;
    float output;  // its width
    float foot;
};

Margins marginsFor(CardKind kind) {
    if (kind == CardKind::Mini) return {12.0F, 8.0F, 104.0F, 8.0F};
    if (kind == CardKind::Low) return {16.0F, 12.0F, 128.0F, 16.0F};
    return {16.0F, 16.0F, 168.0F, 16.0F};
}

}  // namespace

ConsoleView::ConsoleView(const Rect& frame, ConsoleDelegate& delegate)
    : View(frame),
      m_bar(addSubview(std::make_unique<TopBar>(delegate))),
      m_row(addSubview(std::make_unique<StripRow>(delegate))),
      m_empty(addSubview(std::make_unique<DropView>(delegate))),
      m_output(addSubview(std::make_unique<OutputView>(delegate))),
      m_bridge(addSubview(std::make_unique<StripBridge>())),
      m_messages(addSubview(std::make_unique<MessageBar>(delegate))) {
    m_bar.setClipsAction(this, action<&ConsoleView::clearClips>());
    m_bridge.setTarget(this);
    m_bridge.setAction(action<&ConsoleView::bridgeWasMoved>());
    layOut();
}

Size ConsoleView::sizeForStrips(std::span<const StripState> strips) {
    const Margins margins = marginsFor(CardKind::Full);
    float width = 2.0F * margins.side + margins.beforeOutput + margins.output - StripRow::kGap;
    for (const StripState& strip : strips) {
        // A little more than the least: bars and waveforms like it.
        width += StripView::leastWidth(strip.format, CardKind::Full) + 8.0F + StripRow::kGap;
    }
    return {std::clamp(width, kLeastWidth, kMostWidth), kWindowHeight};
}

void ConsoleView::layOut() {
    const Size size = bounds().size;
    const float bar = TopBar::heightIn(size);
    m_bar.setFrame({{}, {size.width, bar}});
    const float messages = m_messages.isHidden() ? 0.0F : kMessageRoom;
    const auto kindWith = [&](float taken) {
        const float room = size.height - bar - messages - taken;
        const CardKind kind = cardKind(room - 16.0F);
        return kind == CardKind::Mini ? cardKind(room - 8.0F) : kind;
    };
    const auto areaIn = [&](CardKind kind) {
        const Margins around = marginsFor(kind);
        return size.width - 2.0F * around.side - around.beforeOutput - around.output;
    };
    // Strips that do not fit get the bridge below them. That may leave lower cards, which are
    // narrower: as narrow as they may be only where that does not let all of them fit.
    const CardKind without = kindWith(0.0F);
    const CardKind with = kindWith(kBridgeRoom);
    // A high window has two lines of them before that.
    const bool isOneLine = StripRow::doFit(m_known, areaIn(without), without, 1);
    const int lines = !isOneLine && size.height >= kTwoLinesFrom ? 2 : 1;
    const bool hasBridge = !isOneLine && !StripRow::doFit(m_known, areaIn(without), without, lines);
    const bool isNarrow = hasBridge && !StripRow::doFit(m_known, areaIn(with), with, lines);
    const CardKind narrowest = isNarrow ? with : without;
    const Margins margins = marginsFor(hasBridge ? with : without);

    float foot = size.height - margins.foot;
    if (!m_messages.isHidden()) {
        m_messages.setFrame({{margins.side, foot - MessageBar::kHeight},
                             {size.width - 2.0F * margins.side, MessageBar::kHeight}});
        foot -= kMessageRoom;
    }
    m_bridge.setHidden(!hasBridge);
    if (hasBridge) {
        m_bridge.setFrame({{margins.side, foot - StripBridge::kHeight},
                           {size.width - 2.0F * margins.side, StripBridge::kHeight}});
        foot -= kBridgeRoom;
    }
    const float height = std::max(std::floor((foot - bar) / kGrid) * kGrid, 0.0F);
    const float right = size.width - margins.side;
    const float outputLeft = right - margins.output;
    m_output.setFrame({{outputLeft, bar}, {margins.output, height}});
    const Rect strips{{margins.side, bar},
                      {std::max(outputLeft - margins.beforeOutput - margins.side, 0.0F), height}};
    m_row.setNarrowest(narrowest);
    m_row.setLines(lines);
    m_row.setFrame(strips);
    m_empty.setFrame(strips);
    m_row.setHidden(m_known.empty());
    m_empty.setHidden(!m_known.empty());
    m_bridge.setSight(m_row.first(), m_row.inSight());
}

void ConsoleView::layOutAgain() {
    layOut();
    setNeedsDisplay();
}

void ConsoleView::update(const ConsoleState& state) {
    const bool isSame =
        std::equal(m_known.begin(), m_known.end(), state.strips.begin(), state.strips.end(),
                   [](const StripState& a, const StripState& b) { return a.key == b.key; });
    const bool hasMessage = !m_messages.isHidden();
    if (!isSame || hasMessage != m_hadMessage) {
        m_hadMessage = hasMessage;
        m_known.clear();
        for (const StripState& strip : state.strips) {
            StripState& known = m_known.emplace_back();
            known.key = strip.key;
            known.format = strip.format;
        }
        layOutAgain();
    }
    m_row.update(state);
    m_output.update(state);
    int clips = m_output.hasClipped() ? 1 : 0;
    std::vector<StripBridge::Column> columns;
    for (const StripView* const strip : m_row.strips()) {
        if (strip->hasClipped()) ++clips;
        columns.push_back({static_cast<int>(std::lround(std::min(strip->shownLevel(), 1.0F) *
                                                        static_cast<float>(StripBridge::kSteps))),
                           strip->hasClipped()});
    }
    m_bar.update(state, clips);
    m_bridge.setColumns(std::move(columns));
    m_bridge.setSight(m_row.first(), m_row.inSight());
}

void ConsoleView::addMessage(const std::string& message) {
    m_messages.add(message);
    m_hadMessage = true;
    layOutAgain();
}

void ConsoleView::offerUndo(const std::string& what) {
    m_messages.offerUndo(what);
    m_hadMessage = true;
    layOutAgain();
}

void ConsoleView::withdrawUndo() {
    m_messages.withdrawUndo();
    m_hadMessage = !m_messages.isHidden();
    layOutAgain();
}

bool ConsoleView::closeMessage() {
    const bool isClosed = m_messages.close();
    m_hadMessage = !m_messages.isHidden();
    if (isClosed) layOutAgain();
    return isClosed;
}

void ConsoleView::setDropTarget(bool isDropTarget) {
    if (isDropTarget == m_isDropTarget) return;
    m_isDropTarget = isDropTarget;
    m_empty.setDropTarget(isDropTarget);
    m_row.setDropTarget(isDropTarget);
    setNeedsDisplay();
}

void ConsoleView::clearClips() {
    for (StripView* const strip : m_row.strips())
        strip->clearClips();
    m_output.clearClips();
}

void ConsoleView::setMeterKind(MeterKind kind) {
    const bool isOtherPeak = (kind == MeterKind::TruePeak) != (m_meterKind == MeterKind::TruePeak);
    m_meterKind = kind;
    m_row.setMeterKind(kind);
    m_output.setMeterKind(kind);
    if (isOtherPeak) clearClips();
}

bool ConsoleView::isInside(const View& part) const {
    const auto* view =
        window() != nullptr ? dynamic_cast<View*>(window()->firstResponder()) : nullptr;
    while (view != nullptr && view != &part)
        view = view->superview();
    return view != nullptr;
}

void ConsoleView::focusNextPart() {
    const View* const parts[] = {&m_bar, &m_row, &m_output, &m_messages};
    int present = -1;
    for (int i = 0; i < 4; ++i) {
        if (isInside(*parts[i])) present = i;
    }
    if (isInside(m_empty)) present = 1;
    for (int step = 1; step <= 4; ++step) {
        const int part = (present + step) % 4;
        const bool isTaken = part == 0   ? m_bar.takeKeyboard()
                             : part == 1 ? m_row.takeKeyboard() || m_empty.takeKeyboard()
                             : part == 2 ? m_output.takeKeyboard()
                                         : m_messages.takeKeyboard();
        if (isTaken) return;
    }
}

void ConsoleView::bridgeWasMoved() {
    if (m_bridge.isDragged()) {
        m_row.scrollTo(m_bridge.first());
    } else {
        m_row.glideTo(m_bridge.first());
    }
    m_bridge.setSight(m_row.first(), m_row.inSight());
}

void ConsoleView::mouseMoved(const Event& event) {
    if (!mouseInRect(locationOf(event), m_row.frame(), true)) m_row.setHovered(nullptr);
    View::mouseMoved(event);
}

void ConsoleView::drawRect(Canvas& canvas, const Rect& dirty) {
    const Theme& colors = theme(effectiveAppearance());
    canvas.fillRect(dirty, colors.window);
    if (m_isDropTarget && !m_row.isHidden())
        strokeRounded(canvas, m_row.frame().inset(-4.0F, -4.0F), 12.0F, colors.accent, 2.0F);
}

}  // namespace veltra::console
