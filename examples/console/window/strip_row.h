// SPDX-License-Identifier: MIT
// The strips side by side, in one line or in several. As many as fit stand there whole, beginning
// with any of them; the others wait beyond the sides.
#pragma once

#include "drop_view.h"
#include "strip_view.h"
#include "veltra/infrastructure/timer.h"

#include <span>
#include <vector>

namespace veltra::console {

// Thread: main.
class StripRow final : public View {
public:
    static constexpr float kGap = 8.0F;

    // `delegate` must outlive the view.
    explicit StripRow(ConsoleDelegate& delegate);

    // Whether all of them fit into `width` in cards of this kind, in so many lines.
    static bool doFit(std::span<const StripState> strips, float width, CardKind kind, int lines);

    void update(const ConsoleState& state);
    const std::vector<StripView*>& strips() const noexcept { return m_strips; }
    void setMeterKind(MeterKind kind);  // also of strips that come later
    // The strips are as narrow as this kind of card allows, whatever the height.
    void setNarrowest(CardKind kind);
    // One at first, at least one.
    void setLines(int lines);

    // Which are in sight.
    int first() const noexcept { return m_first; }
    int inSight() const noexcept { return m_inSight; }
    void scrollTo(int first);
    // The same, in a movement that takes the time of setScrollTime(). Several lines do not move.
    void glideTo(int first);
    // Seconds; 0, as at first: nothing moves.
    void setScrollTime(double seconds) { m_scrollTime = seconds; }
    void setDropTarget(bool isDropTarget) { m_drop.setDropTarget(isDropTarget); }
    // That which has the keyboard; null: none of them.
    StripView* focused() const;
    bool takeKeyboard();
    // The strip under the pointer; null: none.
    void setHovered(const StripView* strip);

    bool isFlipped() const override { return true; }
    void drawRect(Canvas& canvas, const Rect& dirty) override;
    bool scrollRectToVisible(const Rect& rect) override;
    void scrollWheel(const Event& event) override;
    void mouseDown(const Event& event) override;
    void mouseDragged(const Event& event) override;
    void mouseUp(const Event& event) override;
    void mouseMoved(const Event& event) override;
    // Sideways to the same control of the next strip.
    void keyDown(const Event& event) override;

    AccessibilityRole accessibilityRole() const override { return AccessibilityRole::Group; }
    std::string accessibilityName() const override { return "Strips"; }

protected:
    void frameDidChange() override { layOut(); }

private:
    bool match(const ConsoleState& state);
    void orderViews();
    void layOut();
    void place();
    float placeLine(int begin, int end, float top, float height);
    float leastWidth(int index) const;
    int countOfLine(int first) const;
    int countFrom(int first) const;
    int lastFirst() const;
    int firstToSee(int index) const;
    int indexAt(Point point) const;
    void glideOn();

    ConsoleDelegate& m_delegate;
    DropView& m_drop;  // in the room that the strips leave
    std::vector<StripView*> m_strips;
    MeterKind m_meterKind = MeterKind::Peak;
    CardKind m_narrowest = CardKind::Full;
    int m_lines = 1;
    int m_first = 0;
    int m_inSight = 0;
    double m_scrollTime = 0.0;
    float m_shift = 0.0F;      // points that the strips stand beside their places,
    float m_shiftFrom = 0.0F;  // and did when the movement began
    Moment m_glideBegan;
    QkTimer m_glideTimer;
    float m_wheel = 0.0F;    // parts of a notch
    StripKey m_hovered = 0;  // 0: none
    StripKey m_dragged = 0;  // that is being moved; 0: none
    Point m_dragFrom;        // where the press was
    int m_dropPlace = -1;    // before which it would come; -1: it stays
};

}  // namespace veltra::console
