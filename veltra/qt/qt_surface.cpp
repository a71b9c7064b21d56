// SPDX-License-Identifier: MIT
#include "veltra/qt/qt_surface.h"

#include "veltra/qt/painter_canvas.h"
#include "veltra/qt/qt_types.h"
#include "veltra/qt/qt_ui_port.h"
#include "veltra/ui/application.h"

#include <QBackingStore>
#include <QCoreApplication>
#include <QCursor>
#include <QGuiApplication>
#include <QHelpEvent>
#include <QPaintEngine>
#include <QPaintEvent>
#include <QPainter>
#include <QPointer>
#include <QTouchEvent>
#include <QWidget>
#include <algorithm>
#include <span>
#include <utility>
#include <vector>

namespace veltra {

namespace {

constexpr std::size_t kMostInvalid = 1000;  // rectangles that wait for the widget to be told

QEvent::Type tellEvent() {
    static const auto type = static_cast<QEvent::Type>(QEvent::registerEventType());
    return type;
}

// The order of the rectangles of a region.
bool isBefore(const QRect& one, const QRect& other) {
    return one.y() != other.y() ? one.y() < other.y() : one.x() < other.x();
}

// To add rectangles to a region one by one costs more than to draw them.
QRegion regionOf(std::span<const QRect> sorted) {
    const auto cannotFollow = [](const QRect& one, const QRect& next) {
        const bool isBeside = one.y() == next.y() && one.height() == next.height();
        return isBeside ? next.left() <= one.right() : next.top() <= one.bottom();
    };
    QRegion region;
    if (std::adjacent_find(sorted.begin(), sorted.end(), cannotFollow) == sorted.end()) {
        region.setRects(sorted.data(), static_cast<int>(sorted.size()));
        return region;
    }
    const std::size_t half = sorted.size() / 2;
    return regionOf(sorted.first(half)) + regionOf(sorted.subspan(half));
}

// Whether the painter works on what the widget shows, rather than on a picture of it.
bool isOnScreen(const QPainter& painter, const QWidget& widget) {
    const QPaintEngine& engine = *painter.paintEngine();
    QBackingStore* const store = widget.backingStore();
    return engine.type() == QPaintEngine::Raster && store != nullptr &&
           engine.paintDevice() == store->paintDevice();
}

Qt::CursorShape shape(Cursor cursor) {
    switch (cursor) {
        case Cursor::Arrow:
            break;
        case Cursor::PointingHand:
            return Qt::PointingHandCursor;
        case Cursor::OpenHand:
            return Qt::OpenHandCursor;
        case Cursor::ClosedHand:
            return Qt::ClosedHandCursor;
        case Cursor::ResizeUpDown:
            return Qt::SizeVerCursor;
        case Cursor::ResizeLeftRight:
            return Qt::SizeHorCursor;
        case Cursor::IBeam:
            return Qt::IBeamCursor;
    }
    return Qt::ArrowCursor;
}

}  // namespace

QtSurface::QtSurface(QtUiPort& port, QWidget& widget, MoveFocus moveFocus)
    : m_port(&port),
      m_widget(&widget),
      m_moveFocus(std::move(moveFocus)),
      m_lateFingers(
          widget,
          [this](const QTouchEvent& event, const QEventPoint& point) {
              if (m_fingerAsPointer == point.id()) {
                  touchAsPointer(event, point);
              } else {
                  touchOnView(event, point);
              }
              return true;
          },
          [this] { cancelTracking(); }),
      m_fingersLeft(
          widget,
          [this](const QTouchEvent&, const QEventPoint& point) {
              if (point.state() == QEventPoint::Released) m_fingerLeftEnd = point;
              return false;
          },
          [this] { cancelTracking(); }) {
    widget.setMouseTracking(true);
    widget.setAttribute(Qt::WA_AcceptTouchEvents);
    port.add(*this);
}

QtSurface::~QtSurface() {
    QtSurface::abandonWidget();
}

void QtSurface::abandonWidget() {
    if (QtUiPort* const port = std::exchange(m_port, nullptr)) port->remove(*this);
    m_lateFingers.forget();
    m_fingersLeft.forget();
    m_widget = nullptr;
}

// What the window asks for.

// The widget is told of the first rectangle, and of the others together: by an event that comes
// before the one at which it draws.
void QtSurface::invalidate(const Rect& surfaceRect) {
    if (m_widget == nullptr || !m_widget->isVisible()) return;  // showing draws it all
    const QRect rect = around(surfaceRect) & m_widget->rect();
    if (rect.isEmpty()) return;
    if (m_invalid.size() >= kMostInvalid) tellWidget();
    if (m_invalid.empty()) m_widget->update(rect);
    m_invalid.push_back(rect);
    if (m_tells) return;
    m_tells = true;
    QCoreApplication::postEvent(m_widget, new QEvent(tellEvent()));
}

// What the views cover Qt need not clear.
void QtSurface::renewOpacity() {
    const View* const content = m_window->contentView();
    const Rect bounds = content != nullptr ? content->bounds() : Rect{};
    const bool isOpaque = !bounds.isEmpty() && !content->isHidden() &&
                          content->opaqueRect().intersection(bounds) == bounds;
    if (isOpaque != m_widget->testAttribute(Qt::WA_OpaquePaintEvent))
        m_widget->setAttribute(Qt::WA_OpaquePaintEvent, isOpaque);
}

void QtSurface::tellWidget() {
    renewOpacity();
    std::sort(m_invalid.begin(), m_invalid.end(), isBefore);
    m_invalid.erase(std::unique(m_invalid.begin(), m_invalid.end()), m_invalid.end());
    m_widget->update(regionOf(m_invalid));
    m_invalid.clear();
}

void QtSurface::displayIfNeeded() {
    if (m_widget == nullptr || m_isPainting || !m_widget->isVisible()) return;
    tellWidget();
    QCoreApplication::sendPostedEvents(m_widget->window(), QEvent::UpdateRequest);
}

bool QtSurface::passKeyboard(bool forward) {
    return m_widget != nullptr && m_moveFocus(forward);
}

void QtSurface::setCursor(Cursor cursor) {
    if (cursor == m_cursor || m_widget == nullptr) return;
    m_cursor = cursor;
    if (!m_events.isLocked()) m_widget->setCursor(shape(cursor));
}

bool QtSurface::lockPointer(bool isLocked) {
    if (!isLocked) return unlockPointer();
    if (m_widget == nullptr || !m_isLeftDown) return false;
    if (QGuiApplication::platformName().startsWith(QStringLiteral("wayland"))) return false;
    m_lockedAt = QCursor::pos();
    m_events.lock(m_widget->mapFromGlobal(QPointF(m_lockedAt)));
    m_widget->setCursor(Qt::BlankCursor);
    return true;
}

bool QtSurface::unlockPointer() {
    if (!m_events.isLocked()) return false;
    m_events.unlock();
    if (m_widget == nullptr) return true;
    QCursor::setPos(m_lockedAt);
    m_widget->setCursor(shape(m_cursor));
    return true;
}

float QtSurface::scale() const {
    return m_widget != nullptr ? static_cast<float>(m_widget->devicePixelRatioF()) : 1.0F;
}

// What the widget hears.

bool QtSurface::handle(QEvent& event) {
    if (m_widget == nullptr) return false;
    const QPointer<QWidget> widget(m_widget);
    switch (event.type()) {
        case QEvent::Paint:
            paint(static_cast<const QPaintEvent&>(event));
            return true;
        case QEvent::FocusIn:
            focusIn(static_cast<const QFocusEvent&>(event));
            break;
        case QEvent::FocusOut:
            focusOut(static_cast<const QFocusEvent&>(event));
            break;
        case QEvent::Resize:
            place();
            break;
        case QEvent::Show:
            renewOpacity();
            m_window->visibilityDidChange(true);
            break;
        case QEvent::Hide:
            m_invalid.clear();
            m_port->toolTip().close(*widget);
            forgetButton();
            m_window->visibilityDidChange(false);
            break;
        case QEvent::WindowActivate:
            m_window->activeStateDidChange(true);
            break;
        case QEvent::WindowDeactivate:
            cancelTracking();
            if (widget) m_window->activeStateDidChange(false);
            break;
        case QEvent::WindowBlocked:
        case QEvent::UngrabMouse:
        case QEvent::TouchCancel:
        case QEvent::EnabledChange:
            cancelTracking();
            break;
        case QEvent::PaletteChange:
        case QEvent::FontChange:
            updateAppearance();
            break;
        case QEvent::ScreenChangeInternal:
            noteScale();
            break;
        case QEvent::ToolTip:
            return showToolTip(static_cast<const QHelpEvent&>(event));
        default:
            if (event.type() != tellEvent()) return input(event);
            m_tells = false;
            tellWidget();
            return true;
    }
    return widget.isNull();
}

bool QtSurface::input(QEvent& event) {
    QtToolTip& toolTip = m_port->toolTip();
    const QPointer<QWidget> widget(m_widget);
    const float height = m_window->contentSize().height;
    if (!m_widget->isEnabled()) return false;
    switch (event.type()) {
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonDblClick:
        case QEvent::MouseButtonRelease:
        case QEvent::MouseMove:
            return mouse(static_cast<QMouseEvent&>(event));
        case QEvent::TouchBegin:
        case QEvent::TouchUpdate:
        case QEvent::TouchEnd:
            return touch(static_cast<QTouchEvent&>(event));
        case QEvent::Leave:
            toolTip.interrupt();
            if (!m_isLeftDown) post(m_events.exit(height), event);
            return widget.isNull();
        case QEvent::Wheel:
            toolTip.interrupt();
            return post(m_events.wheel(static_cast<const QWheelEvent&>(event), height), event);
        case QEvent::ShortcutOverride: {
            const auto key = QtEvents::key(static_cast<const QKeyEvent&>(event));
            if (!key || !m_window->wantsKey(*key)) return false;
            event.accept();  // it comes back as a key, not as a shortcut
            return true;
        }
        case QEvent::KeyPress:
        case QEvent::KeyRelease:
            toolTip.interrupt();
            if (auto key = QtEvents::key(static_cast<const QKeyEvent&>(event))) {
                return post(*std::move(key), event);
            }
            return true;
        default:
            return false;
    }
}

bool QtSurface::mouse(QMouseEvent& event) {
    const QPointer<QWidget> widget(m_widget);
    const bool isMove = event.type() == QEvent::MouseMove;
    if (isMove) {
        m_port->toolTip().pointerMoved(*widget, event.position().toPoint());
    } else {
        m_port->toolTip().interrupt();
    }
    // The release went elsewhere: to a menu, say, that opened under the pointer.
    if (m_isLeftDown && isMove && !event.buttons().testFlag(Qt::LeftButton)) {
        cancelTracking();
        if (!widget) return true;
    }
    auto translated = m_events.mouse(event, m_window->contentSize().height);
    if (!translated) {
        event.setAccepted(m_events.isLocked());
        return true;
    }
    if (m_events.needsWarp()) QCursor::setPos(m_lockedAt);
    if (!isMove) translated->isFirstMouse = !widget->window()->isActiveWindow();
    if (translated->type == EventType::LeftMouseDown) {
        m_isLeftDown = true;
        takeFocusFor(viewAt(translated->locationInWindow));
        if (!widget) return true;
    } else if (translated->type == EventType::LeftMouseUp) {
        m_isLeftDown = false;
        m_fingerLeft.reset();
        unlockPointer();
    }
    return post(*std::move(translated), event);
}

View* QtSurface::viewAt(Point inWindow) const {
    View* const content = m_window->contentView();
    return content != nullptr ? content->hitTest(inWindow) : nullptr;
}

// Only who wants keys takes the keyboard away from others.
void QtSurface::takeFocusFor(const View* view) {
    if (view != nullptr && view->acceptsFirstResponder() && !m_widget->hasFocus())
        m_widget->setFocus(Qt::MouseFocusReason);
}

// Where no view takes the first fingers, the event is left to the toolkit, which offers it to the
// widgets around and makes the pointer of it. Once a view has taken one, the toolkit does not any
// more, not even of the finger that it began with: those on other views act as the pointer here.
bool QtSurface::touch(QTouchEvent& event) {
    const QPointer<QWidget> widget(m_widget);
    const bool isFirst = event.type() == QEvent::TouchBegin && m_lateFingers.isEmpty();
    if (isFirst) m_ownsTouches = false;
    if (isFirst && m_fingerAsPointer) cancelTracking();  // its end was not told
    std::vector<QEventPoint> left;
    for (const QEventPoint& point : event.points()) {
        if (!widget) return true;
        const bool isPress = point.state() == QEventPoint::Pressed;
        const bool isKnown = !isPress && m_lateFingers.has(point.id());
        if (isKnown || point.state() == QEventPoint::Stationary) continue;
        if (!isFirst && isPress && m_ownsTouches) m_lateFingers.add(point.id());
        if (m_fingerAsPointer == point.id() || !touchOnView(event, point)) {
            left.push_back(point);
        } else if (isFirst) {
            m_ownsTouches = true;
        }
    }
    if (widget && isFirst && m_ownsTouches) takePointerFromToolkit(event);
    for (const QEventPoint& point : left) {
        if (!widget) return true;
        if (m_ownsTouches) {
            touchAsPointer(event, point);
        } else if (isFirst && m_fingersLeft.isEmpty()) {
            m_fingersLeft.add(point.id());
            m_fingerLeft = point.id();
            m_fingerLeftEnd.reset();
        }
    }
    if (widget) event.setAccepted(m_ownsTouches);
    return true;
}

// False: no view wants it.
bool QtSurface::touchOnView(const QTouchEvent& event, const QEventPoint& point) {
    const QPointer<QWidget> widget(m_widget);
    Event touch = QtEvents::touch(event, point, m_widget->mapFromGlobal(point.globalPosition()),
                                  m_window->contentSize().height);
    const bool isPress = touch.type == EventType::TouchBegan;
    const View* const view = isPress ? viewAt(touch.locationInWindow) : nullptr;
    if (view != nullptr && view->acceptsTouches()) takeFocusFor(view);
    if (!widget) return true;
    touch.window = m_window;
    return Application::current().postEvent(std::move(touch));
}

void QtSurface::touchAsPointer(const QTouchEvent& event, const QEventPoint& point) {
    const bool isPress = point.state() == QEventPoint::Pressed;
    const bool isRelease = point.state() == QEventPoint::Released;
    if (isPress && !m_isLeftDown) m_fingerAsPointer = point.id();
    if (m_fingerAsPointer != point.id()) return;
    if (isRelease) m_fingerAsPointer.reset();
    auto type = QEvent::MouseMove;
    if (isPress) type = QEvent::MouseButtonPress;
    if (isRelease) type = QEvent::MouseButtonRelease;
    const bool isMove = type == QEvent::MouseMove;
    QMouseEvent pointer(type, m_widget->mapFromGlobal(point.globalPosition()),
                        point.globalPosition(), isMove ? Qt::NoButton : Qt::LeftButton,
                        isRelease ? Qt::NoButton : Qt::LeftButton, event.modifiers());
    pointer.setTimestamp(event.timestamp());
    mouse(pointer);
}

// Nothing where the finger was none that pressed, or is up already.
void QtSurface::takePointerFromToolkit(const QTouchEvent& event) {
    const std::optional<int> finger = std::exchange(m_fingerLeft, std::nullopt);
    m_fingersLeft.forget();
    if (!finger || !m_isLeftDown) return;
    m_fingerAsPointer = finger;
    if (const auto end = std::exchange(m_fingerLeftEnd, std::nullopt))
        return touchAsPointer(event, *end);
    m_lateFingers.add(*finger);
}

// Hands the event over. What nobody took goes on to the widgets around.
bool QtSurface::post(Event event, QEvent& source) {
    event.window = m_window;
    source.setAccepted(Application::current().postEvent(std::move(event)));  // may delete this
    return true;
}

void QtSurface::forgetButton() {
    m_isLeftDown = false;
    m_lateFingers.forget();
    m_fingersLeft.forget();
    m_fingerLeft.reset();
    m_fingerAsPointer.reset();
    unlockPointer();
}

void QtSurface::cancelTracking() {
    forgetButton();
    m_window->cancelTracking();
}

void QtSurface::paint(const QPaintEvent& event) {
    noteScale();
    std::vector<Rect> dirty = std::exchange(m_dirty, {});
    dirty.clear();
    for (const QRect& rect : event.region())
        dirty.push_back(fromQt(QRectF(rect)));
    QPainter painter(m_widget);
    if (m_fillsGround) {
        const auto ground = systemColor(SystemColor::WindowBackground, m_window->appearance());
        painter.fillRect(event.rect(), toQt(ground));
    }
    const bool isShown = isOnScreen(painter, *m_widget);
    if (isShown) {  // a picture of the widget changes nothing there
        std::erase_if(m_invalid, [&event](const QRect& rect) {
            return (QRegion(rect) - event.region()).isEmpty();
        });
    }
    using Keeper = PainterCanvas::Keeper;
    PainterCanvas canvas(painter, isShown ? Keeper::Canvas : Keeper::Painter);
    m_isPainting = true;
    m_window->display(canvas, dirty);
    m_isPainting = false;
    m_dirty = std::move(dirty);
}

void QtSurface::focusIn(const QFocusEvent& event) {
    const QPointer<QWidget> widget(m_widget);
    if (event.reason() == Qt::PopupFocusReason) return;
    m_window->keyStateDidChange(true);
    if (!widget) return;
    const bool isTab = event.reason() == Qt::TabFocusReason;
    const bool isBacktab = event.reason() == Qt::BacktabFocusReason;
    if (isTab || isBacktab) {
        m_window->keyboardArrives(isTab);
    } else if (event.reason() != Qt::MouseFocusReason && m_window->firstResponder() == nullptr) {
        m_window->keyboardArrives(true);
    }
    if (!widget || !(isTab || isBacktab) || m_window->firstResponder() != nullptr) return;
    // Nobody in here wants keys. Where that is true of all in the focus chain, it ends with who
    // began to look.
    static const QWidget* s_seeker = nullptr;
    if (s_seeker == widget) return;
    const bool isFirst = s_seeker == nullptr;
    if (isFirst) s_seeker = widget;
    m_moveFocus(isTab);
    if (isFirst) s_seeker = nullptr;
}

void QtSurface::focusOut(const QFocusEvent& event) {
    if (event.reason() == Qt::PopupFocusReason) return cancelTracking();
    m_window->keyStateDidChange(false);
}

void QtSurface::place() {
    const QPointF origin = m_widget->mapToGlobal(QPointF(0, 0));
    m_window->frameDidChange(fromQt(QRectF(origin, m_widget->size())));
}

bool QtSurface::showToolTip(const QHelpEvent& event) {
    const Point inWindow{static_cast<float>(event.pos().x()),
                         m_window->contentSize().height - static_cast<float>(event.pos().y())};
    const auto found = m_window->toolTipAt(inWindow);
    if (!found) return false;
    const float top = m_window->contentSize().height - found->rect.maxY();
    const Rect area{{found->rect.minX(), top}, found->rect.size};
    m_port->toolTip().rest(*m_widget, m_window->appearance(), found->text, event.globalPos(),
                           around(area));
    return true;
}

// No event tells reliably that the scale has changed.
void QtSurface::noteScale() {
    const float before = std::exchange(m_scale, scale());
    if (before == 0.0F || before == m_scale) return;
    m_window->appearanceDidChange();
}

void QtSurface::updateAppearance() {
    if (m_widget == nullptr) return;
    const Appearance own = QtUiPort::appearanceOf(m_widget->palette());
    std::optional<Appearance> wanted;
    if (!m_port->isAppearanceSet() && own != m_port->appearance()) wanted = own;
    // Setting one tells the views; an appearance that the host set on the window is left alone.
    if (wanted != m_ownAppearance) {
        m_ownAppearance = wanted;
        m_window->setAppearance(wanted);
    } else {
        m_window->appearanceDidChange();
    }
}

}  // namespace veltra
