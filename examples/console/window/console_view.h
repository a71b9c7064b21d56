// SPDX-License-Identifier: MIT
// All of the window: the transport, the strips side by side, the output, and messages.
#pragma once

#include "console_delegate.h"
#include "drop_view.h"
#include "message_bar.h"
#include "output_view.h"
#include "strip_bridge.h"
#include "strip_row.h"
#include "top_bar.h"

#include <span>

namespace veltra::console {

// Thread: main.
class ConsoleView final : public View {
public:
    // `delegate` must outlive the view.
    ConsoleView(const Rect& frame, ConsoleDelegate& delegate);

    // A size that shows these strips, or as many of them as a screen holds.
    static Size sizeForStrips(std::span<const StripState> strips);

    // Shows the state. Only what differs from the state before is drawn again.
    void update(const ConsoleState& state);
    void addMessage(const std::string& message);
    void offerUndo(const std::string& what);
    void withdrawUndo();
    // Closes the bar at the foot. Returns false when there is none.
    bool closeMessage();
    // Shown while files are dragged over the window.
    void setDropTarget(bool isDropTarget);
    void clearClips();
    // What the meters show, at first peaks. Another kind of peaks begins anew, without clip lights.
    MeterKind meterKind() const noexcept { return m_meterKind; }
    void setMeterKind(MeterKind kind);
    // How long strips move when a key or a click scrolls them; see StripRow.
    void setScrollTime(double seconds) { m_row.setScrollTime(seconds); }
    void setKeyboardShown(bool isShown) { m_bar.setKeyboardShown(isShown); }
    // Gives the keyboard to the next part: transport, strips, output, messages.
    void focusNextPart();

    bool isFlipped() const override { return true; }
    void drawRect(Canvas& canvas, const Rect& dirty) override;
    void mouseMoved(const Event& event) override;

    // What tests measure.
    const StripRow& row() const noexcept { return m_row; }
    StripRow& row() noexcept { return m_row; }
    const OutputView& output() const noexcept { return m_output; }
    const StripBridge& bridge() const noexcept { return m_bridge; }

protected:
    void frameDidChange() override { layOut(); }

private:
    void bridgeWasMoved();
    void layOut();
    void layOutAgain();
    bool isInside(const View& part) const;

    TopBar& m_bar;
    StripRow& m_row;
    DropView& m_empty;
    OutputView& m_output;
    StripBridge& m_bridge;
    MessageBar& m_messages;
    std::vector<StripState> m_known;  // their formats decide on the layout
    bool m_hadMessage = false;
    bool m_isDropTarget = false;
    MeterKind m_meterKind = MeterKind::Peak;
};

}  // namespace veltra::console
