// SPDX-License-Identifier: MIT
// What the user did: one press, movement, turn of the wheel, key or touch.
//
// Thread: main, as everything of veltra/ui.
#pragma once

#include "veltra/base/flags.h"
#include "veltra/base/modifier_flags.h"
#include "veltra/base/time.h"
#include "veltra/base/weak_anchor.h"
#include "veltra/ui/geometry.h"

#include <cstdint>
#include <string>

namespace veltra {

class Window;

// What happened.
enum class EventType : std::uint16_t {
    LeftMouseDown = 1,
    LeftMouseUp = 1 << 1,
    LeftMouseDragged = 1 << 2,
    RightMouseDown = 1 << 3,
    RightMouseUp = 1 << 4,
    RightMouseDragged = 1 << 5,
    MouseMoved = 1 << 6,   // with no button held
    MouseExited = 1 << 7,  // the pointer has left the window
    ScrollWheel = 1 << 8,
    KeyDown = 1 << 9,
    KeyUp = 1 << 10,
    FlagsChanged = 1 << 11,  // a modifier key alone
    TouchBegan = 1 << 12,
    TouchMoved = 1 << 13,
    TouchEnded = 1 << 14,
    TouchCancelled = 1 << 15,  // the finger is or may be gone, and no end will be told
};

// Types join to a mask by `|`.
template <>
inline constexpr bool isFlag<EventType> = true;

// A set of types of events; ~EventMask() has all of them.
using EventMask = Flags<EventType>;

// Key characters that are not text.
inline constexpr char16_t kEnterCharacter = 0x03;  // of the numeric pad
inline constexpr char16_t kTabCharacter = 0x09;
inline constexpr char16_t kReturnCharacter = 0x0D;
inline constexpr char16_t kBackTabCharacter = 0x19;
inline constexpr char16_t kEscapeCharacter = 0x1B;
inline constexpr char16_t kDeleteCharacter = 0x7F;  // erases to the left
inline constexpr char16_t kUpArrowCharacter = 0xF700;
inline constexpr char16_t kDownArrowCharacter = 0xF701;
inline constexpr char16_t kLeftArrowCharacter = 0xF702;
inline constexpr char16_t kRightArrowCharacter = 0xF703;
inline constexpr char16_t kF1Character = 0xF704;  // F2 and so on follow
inline constexpr char16_t kForwardDeleteCharacter = 0xF728;
inline constexpr char16_t kHomeCharacter = 0xF729;
inline constexpr char16_t kEndCharacter = 0xF72B;
inline constexpr char16_t kPageUpCharacter = 0xF72C;
inline constexpr char16_t kPageDownCharacter = 0xF72D;
inline constexpr char16_t kHelpCharacter = 0xF746;

// The course of a gesture on a pad or a fine wheel. A plain wheel has none.
enum class ScrollPhase : std::uint8_t { None, Began, Changed, Ended, Momentum };

// One event. What is not said to belong to its type is not set.
struct Event {
    EventType type = EventType::MouseMoved;  // decides which of the rest is set
    ModifierFlags modifierFlags;             // that were held when it happened
    Moment timestamp;  // when the system says it happened, by the monotonic clock

    // Where the pointer or the finger is, in the window's coordinates: the origin is its lower left
    // corner.
    Point locationInWindow;

    // Buttons: 1 for a click, 2 for a double click and so on; 0 for a synthetic release.
    std::int32_t clickCount = 0;
    // Buttons: the number of the press that began it, also in the drags and the release that
    // follow.
    std::int32_t eventNumber = 0;

    // Presses: the window was not the active one before this press.
    bool isFirstMouse = false;

    // Drags: movement of the pointer since the event before, in the window's coordinates: the place
    // minus the movement is where the pointer was. View::locationOf() and View::movementOf() have
    // both in the coordinates of a view.
    // Wheel: notches, positive away from the user and to the left, in every view; fractions for
    // fine wheels and pads.
    float deltaX = 0.0F;
    float deltaY = 0.0F;

    // Wheel: the deltas are fine ones that add up, as of a pad; a gesture is in the given phase.
    bool hasPreciseScrollingDeltas = false;
    ScrollPhase scrollPhase = ScrollPhase::None;

    // Keys. Empty where the key makes no text, as a dead key does.
    std::u16string characters;
    std::u16string charactersIgnoringModifiers;  // all but Shift
    std::uint16_t keyCode = 0;                   // of the hardware
    bool isRepeat = false;

    // Touches: which finger. Never below 0, and the same from its beginning to its end.
    std::int64_t finger = 0;

    WeakPointer<Window> window;  // null when it is gone

    // The first key character of a key that is pressed without Control, Alternate or Command, as
    // controls use it; 0 for any other.
    char16_t plainKey() const noexcept {
        constexpr ModifierFlags kOthers = kControlKeyMask | kAlternateKeyMask | kCommandKeyMask;
        if (!(modifierFlags & kOthers).isEmpty() || charactersIgnoringModifiers.empty())
            return u'\0';
        return charactersIgnoringModifiers.front();
    }

    // Whether the key presses a button that has the keyboard: Space, Return or Enter.
    bool isPressKey() const noexcept {
        const char16_t key = plainKey();
        return key == u' ' || key == kReturnCharacter || key == kEnterCharacter;
    }
};

}  // namespace veltra
