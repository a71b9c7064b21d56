// SPDX-License-Identifier: MIT
#include "veltra/qt/qt_events.h"

#include "veltra/platform/clock.h"
#include "veltra/qt/qt_types.h"
#include "veltra/ui/window.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPointingDevice>
#include <QStyleHints>
#include <QTouchEvent>
#include <QWheelEvent>
#include <algorithm>
#include <utility>

namespace veltra {

namespace {

constexpr float kNotch = 120.0F;        // of QWheelEvent::angleDelta()
constexpr float kPixelsANotch = 20.0F;  // of devices that tell pixels alone
constexpr double kFreeWay = 100.0;      // points that a locked pointer may go from its place

struct Modifier {
    Qt::KeyboardModifier qt;
    Qt::Key key;
    ModifierFlag flag;
};

constexpr Modifier kModifiers[] = {
    {Qt::ShiftModifier, Qt::Key_Shift, kShiftKeyMask},
    {Qt::ControlModifier, Qt::Key_Control, kControlKeyMask},
    {Qt::AltModifier, Qt::Key_Alt, kAlternateKeyMask},
    {Qt::MetaModifier, Qt::Key_Meta, kCommandKeyMask},
    {Qt::KeypadModifier, Qt::Key_unknown, kNumericPadKeyMask},
};

struct NamedKey {
    Qt::Key key;
    char16_t character;
};

constexpr NamedKey kNamedKeys[] = {
    {Qt::Key_Tab, kTabCharacter},
    {Qt::Key_Backtab, kBackTabCharacter},
    {Qt::Key_Return, kReturnCharacter},
    {Qt::Key_Enter, kEnterCharacter},
    {Qt::Key_Escape, kEscapeCharacter},
    {Qt::Key_Backspace, kDeleteCharacter},
    {Qt::Key_Delete, kForwardDeleteCharacter},
    {Qt::Key_Up, kUpArrowCharacter},
    {Qt::Key_Down, kDownArrowCharacter},
    {Qt::Key_Left, kLeftArrowCharacter},
    {Qt::Key_Right, kRightArrowCharacter},
    {Qt::Key_Home, kHomeCharacter},
    {Qt::Key_End, kEndCharacter},
    {Qt::Key_PageUp, kPageUpCharacter},
    {Qt::Key_PageDown, kPageDownCharacter},
    {Qt::Key_Help, kHelpCharacter},
};

char16_t namedCharacter(int key) {
    if (key >= Qt::Key_F1 && key <= Qt::Key_F35) {
        return static_cast<char16_t>(kF1Character + (key - Qt::Key_F1));
    }
    const auto* const found =
        std::find_if(std::begin(kNamedKeys), std::end(kNamedKeys),
                     [key](const NamedKey& named) { return named.key == key; });
    return found != std::end(kNamedKeys) ? found->character : u'\0';
}

ModifierFlags flags(Qt::KeyboardModifiers modifiers) {
    ModifierFlags result;
    for (const Modifier& modifier : kModifiers) {
        if (modifiers.testFlag(modifier.qt)) result |= modifier.flag;
    }
    return result;
}

// What the key writes with Shift alone.
QString plainText(const QKeyEvent& event) {
    constexpr int kFirstUnprintable = 0x01000000;  // where Qt's keys without text begin
    const auto others = Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier;
    if (!(event.modifiers() & others)) return event.text();
    if (event.key() < 0x20 || event.key() >= kFirstUnprintable) return {};
    const auto character = static_cast<char32_t>(event.key());
    const QString upper = QString::fromUcs4(&character, 1);
    return event.modifiers().testFlag(Qt::ShiftModifier) ? upper : upper.toLower();
}

ScrollPhase phaseOf(Qt::ScrollPhase phase) {
    switch (phase) {
        case Qt::NoScrollPhase:
            break;
        case Qt::ScrollBegin:
            return ScrollPhase::Began;
        case Qt::ScrollUpdate:
            return ScrollPhase::Changed;
        case Qt::ScrollEnd:
            return ScrollPhase::Ended;
        case Qt::ScrollMomentum:
            return ScrollPhase::Momentum;
    }
    return ScrollPhase::None;
}

Event made(EventType type, Qt::KeyboardModifiers modifiers) {
    Event event;
    event.type = type;
    event.modifierFlags = flags(modifiers);
    event.timestamp = Clocks::current().monotonic().moment();
    return event;
}

Point upwards(const QPointF& position, float height) {
    return {static_cast<float>(position.x()), height - static_cast<float>(position.y())};
}

}  // namespace

// Presses that follow one another quickly in one place count on; Qt's word for a double click is
// taken over.
void QtEvents::countPress(const QMouseEvent& event, Press& press) {
    static std::int32_t s_lastEventNumber = 0;
    const QStyleHints& hints = *QGuiApplication::styleHints();
    const QPointF way = event.position() - m_press;
    const bool follows = m_pressButton == static_cast<int>(event.button()) &&
                         event.timestamp() - m_pressTime <
                             static_cast<std::uint64_t>(hints.mouseDoubleClickInterval()) &&
                         way.manhattanLength() <= hints.mouseDoubleClickDistance();
    const bool isDouble = event.type() == QEvent::MouseButtonDblClick;
    press.clickCount = std::max(follows ? press.clickCount + 1 : 1, isDouble ? 2 : 1);
    m_press = event.position();
    m_pressTime = event.timestamp();
    m_pressButton = static_cast<int>(event.button());
    press.eventNumber = ++s_lastEventNumber;
}

void QtEvents::lock(QPointF place) {
    m_lock = Lock{place, place};
}

// Put back seldom, so that the way back is too long to be mistaken for a movement.
bool QtEvents::needsWarp() {
    if (!m_lock || m_lock->isReturning) return false;
    m_lock->isReturning = (m_lock->last - m_lock->place).manhattanLength() > kFreeWay;
    return m_lock->isReturning;
}

QPointF QtEvents::positionOf(const QMouseEvent& event) {
    if (!m_lock) return event.position();
    const QPointF before = std::exchange(m_lock->last, event.position());
    const auto distance = [&event](QPointF from) {
        return (event.position() - from).manhattanLength();
    };
    if (m_lock->isReturning && distance(m_lock->place) < distance(before)) {
        m_lock->isReturning = false;
        return m_last;
    }
    return m_last + event.position() - before;
}

std::optional<Event> QtEvents::mouse(const QMouseEvent& event, float height) {
    const QPointF position = positionOf(event);
    const QPointF way = position - m_last;
    if (m_lock && event.type() == QEvent::MouseMove && way.isNull()) return std::nullopt;
    const bool isMove = event.type() == QEvent::MouseMove;
    const bool isLeft =
        isMove ? event.buttons().testFlag(Qt::LeftButton) : event.button() == Qt::LeftButton;
    Press& press = isLeft ? m_left : m_right;
    EventType type = EventType::MouseMoved;
    if (isMove) {
        if (isLeft) {
            type = EventType::LeftMouseDragged;
        } else if (event.buttons().testFlag(Qt::RightButton)) {
            type = EventType::RightMouseDragged;
        } else if (event.buttons() != Qt::NoButton) {
            return std::nullopt;
        }
    } else {
        if (!isLeft && event.button() != Qt::RightButton) return std::nullopt;
        if (event.type() == QEvent::MouseButtonRelease) {
            type = isLeft ? EventType::LeftMouseUp : EventType::RightMouseUp;
        } else {
            type = isLeft ? EventType::LeftMouseDown : EventType::RightMouseDown;
            countPress(event, press);
        }
    }
    m_last = position;
    Event result = made(type, event.modifiers());
    result.locationInWindow = upwards(position, height);
    if (type == EventType::MouseMoved) return result;
    result.eventNumber = press.eventNumber;
    result.clickCount = press.clickCount;
    if (isMove) {
        result.deltaX = static_cast<float>(way.x());
        result.deltaY = static_cast<float>(-way.y());
    }
    return result;
}

Event QtEvents::exit(float height) const {
    Event result = made(EventType::MouseExited, QGuiApplication::keyboardModifiers());
    result.locationInWindow = upwards(m_last, height);
    return result;
}

Event QtEvents::wheel(const QWheelEvent& event, float height) const {
    Event result = made(EventType::ScrollWheel, event.modifiers());
    result.locationInWindow = upwards(event.position(), height);
    const bool hasAngle = !event.angleDelta().isNull();
    const QPoint turned = hasAngle ? event.angleDelta() : event.pixelDelta();
    const float unit = hasAngle ? kNotch : kPixelsANotch;
    result.deltaX = static_cast<float>(turned.x()) / unit;
    result.deltaY = static_cast<float>(turned.y()) / unit;
    // With Alt held, Qt turns vertical movement into horizontal on some systems.
    if (event.modifiers().testFlag(Qt::AltModifier) && turned.y() == 0) {
        std::swap(result.deltaX, result.deltaY);
    }
    result.hasPreciseScrollingDeltas = !event.pixelDelta().isNull();
    result.scrollPhase = phaseOf(event.phase());
    return result;
}

Event QtEvents::touch(const QTouchEvent& event, const QEventPoint& point, QPointF place,
                      float height) {
    EventType type = EventType::TouchMoved;
    if (point.state() == QEventPoint::Pressed) type = EventType::TouchBegan;
    if (point.state() == QEventPoint::Released) type = EventType::TouchEnded;
    Event result = made(type, event.modifiers());
    result.locationInWindow = upwards(place, height);
    // Devices number their fingers each on its own.
    const auto device = static_cast<std::uint64_t>(event.device()->systemId()) & 0x7FFFFFFFU;
    result.finger =
        static_cast<std::int64_t>(device << 32U | static_cast<std::uint32_t>(point.id()));
    return result;
}

std::optional<Event> QtEvents::key(const QKeyEvent& event) {
    const bool isPress = event.type() != QEvent::KeyRelease;
    if (!isPress && event.isAutoRepeat()) return std::nullopt;
    Event result = made(isPress ? EventType::KeyDown : EventType::KeyUp, event.modifiers());
    result.keyCode = static_cast<std::uint16_t>(event.nativeScanCode());
    result.isRepeat = event.isAutoRepeat();
    for (const Modifier& modifier : kModifiers) {
        if (modifier.key != event.key()) continue;
        // Systems disagree whether the flags are those before or after the change.
        result.type = EventType::FlagsChanged;
        result.modifierFlags = isPress ? result.modifierFlags | modifier.flag
                                       : result.modifierFlags & ~ModifierFlags(modifier.flag);
        return result;
    }
    if (const char16_t named = namedCharacter(event.key())) {
        result.characters = named;
        result.charactersIgnoringModifiers = named;
        if (named >= kUpArrowCharacter) result.modifierFlags |= kFunctionKeyMask;
        return result;
    }
    result.characters = event.text().toStdU16String();
    result.charactersIgnoringModifiers = plainText(event).toStdU16String();
    return result;
}

}  // namespace veltra
