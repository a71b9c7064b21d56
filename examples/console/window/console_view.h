// SPDX-License-Identifier: MIT
// All of the window: the transport, the strips side by side, the output, and messages.
#pragma once

#include "console_delegate.h"
#include "message_bar.h"
#include "reading_line.h"
#include "strip_view.h"
#include "transport_view.h"

#include <span>
#include <vector>

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
    // Shown while files are dragged over the window.
    void setDropTarget(bool isDropTarget);

    bool isFlipped() const override { return true; }
    void drawRect(Canvas& canvas, const Rect& dirty) override;
    void scrollWheel(const Event& event) override;

protected:
    void frameDidChange() override;

private:
    void addWasPressed();
    void layOut();
    void makeRoomForMessages();
    void matchStrips(const ConsoleState& state);
    Rect stripsRect() const;

    ConsoleDelegate& m_delegate;
    TransportView& m_transport;
    Label& m_outputName;
    Button& m_add;
    ReadingLine& m_reading;
    View& m_box;  // what the strips scroll in
    Label& m_hint;
    MeterBridge& m_output;
    MessageBar& m_messages;
    std::vector<StripView*> m_strips;  // subviews of the box
    float m_scrolled = 0.0F;           // points to the right
    float m_messageHeight = 0.0F;
    bool m_isDropTarget = false;
};

}  // namespace veltra::console
