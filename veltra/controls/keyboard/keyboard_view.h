// SPDX-License-Identifier: MIT
// A keyboard to play on: with the pointer, with fingers, and with the keys of the computer. It
// shows the notes that its user plays and those that the host says are played.
//
//   auto keyboard = std::make_unique<KeyboardView>(Rect{{}, {868, 210}});
//   keyboard->setKeyRange(picker.keyRange());
//   keyboard->setDelegate(this);             // told of each note
//   keyboard->setNotePressed(64, true);      // as one that comes in
//
// Thread: main, for everything in here. Realtime-safe: no.
#pragma once

#include "veltra/controls/keyboard/keyboard_geometry.h"
#include "veltra/export.h"
#include "veltra/platform/run_loop_timer.h"
#include "veltra/ui/view.h"

#include <bitset>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace veltra {

class KeyboardView;

// Is told what is played. It derives from Anchored, too, and may delete the keyboard.
class VELTRA_EXPORT KeyboardViewDelegate {
public:
    virtual ~KeyboardViewDelegate();

    // `velocity` is from 1 to 127. Each note that was pressed is released, whatever happens to the
    // view meanwhile, and only then pressed again.
    virtual void keyboardViewDidPressNote(KeyboardView& /*sender*/, std::int32_t /*note*/,
                                          std::int32_t /*velocity*/) {}
    virtual void keyboardViewDidReleaseNote(KeyboardView& /*sender*/, std::int32_t /*note*/) {}
};

class VELTRA_EXPORT KeyboardView : public View {
public:
    // Two octaves and a C, from C2 to C4.
    explicit KeyboardView(const Rect& frame);
    ~KeyboardView() override;

    // Not retained; an object that is no KeyboardViewDelegate is told nothing. Before another one
    // comes, the one there is hears of the release of what is being played.
    Anchored* delegate() const noexcept { return m_delegate.get(); }
    void setDelegate(Anchored* delegate) {
        if (delegate == m_delegate.get()) return;
        const WeakPointer<KeyboardView> self(this);
        const WeakPointer<Anchored> next(delegate);
        releaseAll();
        if (self) m_delegate = next;
    }

    // The white keys that are shown, counted from that of the first note as by DfOctavePickerView.
    // Kept within the notes there are, and at least one key long. Releases what is being played.
    KeyRange keyRange() const noexcept { return m_geometry.range; }
    void setKeyRange(KeyRange range);
    // The note of white key 0, at first 0. What is no note counts as 0.
    std::int32_t firstNote() const noexcept { return m_geometry.firstNote; }
    void setFirstNote(std::int32_t note);
    // The number in the name of middle C, at first 3.
    std::int32_t octaveOfMiddleC() const noexcept { return m_octaveOfMiddleC; }
    void setOctaveOfMiddleC(std::int32_t octave);

    // Shows a note as played by the host; what is no note is passed over. The delegate is not told.
    void setNotePressed(std::int32_t note, bool isPressed);
    // Takes back all of those.
    void clearPressedNotes();
    // Whether the host or the user plays it.
    bool isNotePressed(std::int32_t note) const noexcept;

    // What a finger does: `finger` is any number of the caller's that is not below 0, one for each
    // that is down. Moving from key to key releases one note and presses the next. The pointer of
    // the mouse and the keys of the computer are fingers of their own. The fingers on a touch
    // screen come in by themselves, where the toolkit tells of them.
    void fingerDown(std::int64_t finger, Point point);
    void fingerMoved(std::int64_t finger, Point point);
    void fingerUp(std::int64_t finger);
    // All fingers, the pointer and the keys let go.
    void releaseAll();

    // A disabled keyboard goes on showing the notes of the host, and plays none.
    bool isEnabled() const noexcept { return m_isEnabled; }
    void setEnabled(bool isEnabled);

    // The key that the keys of the computer act on: Space plays it, Left and Right lead to the next
    // one, Page Up and Page Down by an octave, Home and End to the outermost.
    std::int32_t focusedNote() const noexcept;

    void mouseDown(const Event& event) override;
    void mouseDragged(const Event& event) override;
    void mouseUp(const Event& event) override;
    void mouseMoved(const Event& event) override;
    void mouseExited(const Event& event) override;
    // Each finger plays on its own; its key is let go when it ends, is cancelled, or the keyboard
    // is hidden or leaves its window.
    bool acceptsTouches() const override { return true; }
    void touchBegan(const Event& event) override;
    void touchMoved(const Event& event) override;
    void touchEnded(const Event& event) override;
    void touchCancelled(const Event& event) override;
    void keyDown(const Event& event) override;
    void keyUp(const Event& event) override;
    bool wantsKey(const Event& event) const override;
    bool acceptsFirstResponder() const override { return m_isEnabled; }
    bool resignFirstResponder() override;
    void windowStateDidChange() override;
    void viewWillMoveToWindow(Window* window) override;
    bool isFlipped() const override { return true; }
    void drawRect(Canvas& canvas, const Rect& dirty) override;
    std::optional<FocusShape> focusShape() const override;

    // A slider along the keys named "keyboard" whose words are the focused note, "C3" or "C3
    // pressed"; Press plays it for a moment ("keyboard" and "pressed" are keys of
    // localizedString()).
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

protected:
    void frameDidChange() override;

private:
    struct Held {
        std::int64_t finger;
        std::int32_t note;  // -1: between keys
    };

    void changeGeometry(const KeyboardGeometry& geometry);
    void fingerBegins(std::int64_t finger, const Event& event);
    Held* held(std::int64_t finger) noexcept;
    bool isPlayed(std::int32_t note) const noexcept;
    void play(std::int64_t finger, std::int32_t note, std::int32_t velocity);
    void letGo(std::int64_t finger);
    void moveTo(std::int64_t finger, std::int32_t note, std::int32_t velocity);
    void tellPressed(std::int32_t note, std::int32_t velocity);
    void tellReleased(std::int32_t note);
    void redrawNote(std::int32_t note);
    void focusNote(std::int64_t note);
    std::optional<std::int64_t> noteAfterKey(const Event& event) const;
    void setHovered(std::int32_t note);
    void pressIsOver();

    KeyboardGeometry m_geometry;
    std::int32_t m_octaveOfMiddleC = 3;
    WeakPointer<Anchored> m_delegate;  // not retained
    std::vector<Held> m_held;          // in the order of their presses
    std::bitset<128> m_shown;          // by the host
    std::int32_t m_focused = -1;
    std::int32_t m_hovered = -1;
    bool m_isEnabled = true;
    std::shared_ptr<RunLoopTimer> m_timer;  // of Press
};

}  // namespace veltra
