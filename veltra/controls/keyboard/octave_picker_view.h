// SPDX-License-Identifier: MIT
// A keyboard in miniature with a range of its white keys marked: the part that an on-screen
// keyboard shows. A click or a drag moves the range, and the target is told.
//
//   auto picker = std::make_unique<DfOctavePickerView>(
//       Rect{{16, 16}, DfOctavePickerView::naturalSize(true)});
//   picker->setTarget(this);
//   picker->setAction(action<&Host::rangeChanged>());
//
// A host can bring pictures of its own: the images of the names below that findImage()
// (veltra/ui/image_registry.h) finds. What has no image is drawn as the framework does.
//
//   octave-control-bg, octave-glyphKeys               ground and keys of the large size
//   octave-control-bg-short, octave-glyphKeys-short   the same of the short size
//   octave-L_edge, octave-fill, octave-R_edge         the range: both ends and what lies between
//
// Thread: main, for everything in here. Realtime-safe: no.
#pragma once

#include "veltra/base/action.h"
#include "veltra/controls/keyboard/octave_range.h"
#include "veltra/export.h"
#include "veltra/ui/image.h"
#include "veltra/ui/tool_tip.h"
#include "veltra/ui/view.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace veltra {

class VELTRA_EXPORT DfOctavePickerView : public View, public ToolTipSource {
public:
    // The large one has 75 white keys, as many as there are notes, and names under them; the short
    // one has 74 narrower keys and no names. Ten keys are marked, from key 10 on.
    explicit DfOctavePickerView(const Rect& frame, bool isLarge = true);
    ~DfOctavePickerView() override;

    // The size that the framework's drawing is made for. A higher frame has longer keys.
    static Size naturalSize(bool isLarge) noexcept;

    // Where the range is: from the left side of its first key to the right side of its last one,
    // over the full height. The place of every click and drag is compared with it.
    Rect rangeRect() const noexcept;

    // Setting a range sends no action. It is kept on the keys, and at least one key long.
    void setKeyRange(KeyRange range);
    KeyRange keyRange() const noexcept { return m_keyRange; }

    // Moves the range to where the event wants it, in steps of `raster` keys, and sends the action
    // to the target when both are set, also when the range is where it was. May delete the view.
    void setKeyRangeForMouseEvent(const Event& event, std::int32_t raster);

    // Not retained. The sender of the action is this view.
    Anchored* target() const noexcept { return m_target.get(); }
    void setTarget(Anchored* target) noexcept { m_target = target; }
    Action action() const noexcept { return m_action; }
    void setAction(Action action) noexcept { m_action = action; }

    // The step, in keys, of a click beside the range, at first an octave of 7, and of a drag, at
    // first 1. 1 and below: every key.
    std::int32_t clickRaster() const noexcept { return m_clickRaster; }
    void setClickRaster(std::int32_t raster) noexcept { m_clickRaster = raster; }
    std::int32_t dragRaster() const noexcept { return m_dragRaster; }
    void setDragRaster(std::int32_t raster) noexcept { m_dragRaster = raster; }

    // How many white keys there are: 75 or 74.
    std::uint32_t totalNumWhiteKeys() const noexcept { return m_totalNumWhiteKeys; }

    // The note of key 0, at first 0; see VLNoteForWhiteKey(). It decides where black keys stand and
    // what names say. What is no note counts as 0.
    std::int32_t firstNote() const noexcept { return m_firstNote; }
    void setFirstNote(std::int32_t note);
    // The number in the name of middle C, at first 3.
    std::int32_t octaveOfMiddleC() const noexcept { return m_octaveOfMiddleC; }
    void setOctaveOfMiddleC(std::int32_t octave);

    // Whether both ends of the range can be dragged, which changes its length, and Shift with the
    // left and right arrows moves its end. Off at first: the length never changes.
    bool allowsResizing() const noexcept { return m_allowsResizing; }
    void setAllowsResizing(bool allows) noexcept { m_allowsResizing = allows; }

    // A disabled view swallows presses and takes no keys.
    bool isEnabled() const noexcept { return m_isEnabled; }
    void setEnabled(bool isEnabled);

    // A press on the range grabs it where it is. One beside it moves the range there by the click
    // raster, and grabs it if it comes to lie under the pointer.
    void mouseDown(const Event& event) override;
    void mouseDragged(const Event& event) override;
    // Puts away the value tip; the range stays where the last drag has left it.
    void mouseUp(const Event& event) override;
    void mouseMoved(const Event& event) override;
    void mouseExited(const Event& event) override;

    // Left and right by one key, Page Up and Page Down by an octave, Home and End to the ends.
    // Escape during a drag puts the range back. Each sends the action.
    void keyDown(const Event& event) override;
    bool wantsKey(const Event& event) const override;

    // A click works at once, also in a window that is not active, and never moves the window.
    bool acceptsFirstResponder() const override { return m_isEnabled; }
    bool acceptsFirstMouse(const Event* /*event*/) const override { return true; }
    bool mouseDownCanMoveWindow() const override { return false; }
    Cursor cursorAt(Point point) const override;

    void drawRect(Canvas& canvas, const Rect& dirty) override;
    std::optional<FocusShape> focusShape() const override;
    void viewDidMoveToWindow() override;
    void appearanceDidChange() override;

    // The range in names of notes, "C1 – E2", as the value tip shows it.
    std::string stringForTag(std::int32_t tag) override;

    // A slider named "key range" whose number is the first key; its words are "C1 to E2" ("key
    // range" and "to" are keys of localizedString()).
    AccessibilityRole accessibilityRole() const override { return AccessibilityRole::Slider; }
    std::string accessibilityName() const override;
    AccessibilityOrientation accessibilityOrientation() const override {
        return AccessibilityOrientation::Horizontal;
    }
    std::optional<AccessibilityNumber> accessibilityNumber() const override;
    std::string accessibilityValueText() const override;
    bool accessibilityIsEnabled() const override { return m_isEnabled; }
    bool setAccessibilityNumber(double value) override;
    std::vector<AccessibilityAction> accessibilityActions() const override;
    bool performAccessibilityAction(AccessibilityAction action) override;

private:
    enum class Side : std::uint8_t { None, Left, Right };

    void loadImages();
    OctaveRow row() const noexcept { return {m_totalKeysWidth, m_totalNumWhiteKeys}; }
    bool isOnRange(Point point) const noexcept;
    Side sideAt(Point point) const noexcept;
    bool isDragging() const noexcept { return m_mouseDownOffset >= 0.0F || m_side != Side::None; }
    void drawingDidChange() { setNeedsDisplayInRect(rectToRedraw()); }
    Rect rectToRedraw() const noexcept;
    Point placeOfTip() const noexcept;
    void endDrag();
    void dragSide(float x);
    void changeAndSendAction(KeyRange range);
    void setHovered(bool isHovered);
    KeyRange movedBy(std::int64_t keys) const noexcept;
    std::optional<KeyRange> rangeAfterKey(const Event& event) const;
    std::string nameOfKey(std::uint32_t key) const;

    std::shared_ptr<const Image> m_bgImage;
    std::shared_ptr<const Image> m_glyphKeysImage;
    std::shared_ptr<const Image> m_rangeLeftEdgeImage;
    std::shared_ptr<const Image> m_rangeFillImage;
    std::shared_ptr<const Image> m_rangeRightEdgeImage;
    KeyRange m_keyRange{10, 10};
    float m_totalKeysWidth = 0.0F;
    WeakPointer<Anchored> m_target;  // not retained
    Action m_action;
    float m_mouseDownOffset = -1.0F;  // where in the range it was grabbed; below 0: no dragging
    std::int32_t m_clickRaster = 7;
    std::int32_t m_dragRaster = 1;
    std::uint32_t m_totalNumWhiteKeys;

    const bool m_isLarge;
    std::int32_t m_firstNote = 0;
    std::int32_t m_octaveOfMiddleC = 3;
    bool m_allowsResizing = false;
    bool m_isEnabled = true;
    bool m_isHovered = false;
    Side m_side = Side::None;   // that is being dragged
    float m_sideOffset = 0.0F;  // of the pointer from it
    KeyRange m_rangeBefore;     // the press that is under way
};

}  // namespace veltra
