// SPDX-License-Identifier: MIT
// The place of one Window in a QWidget: paints the widget, translates its events, and takes the
// window's wishes to it. An embedded view and a window of the system both work with one.
//
// Thread: main. Realtime-safe: no.
#pragma once

#include "veltra/qt/late_fingers.h"
#include "veltra/qt/qt_events.h"
#include "veltra/ui/port.h"
#include "veltra/ui/window.h"

#include <QEventPoint>
#include <QRect>
#include <functional>
#include <optional>
#include <vector>

class QEvent;
class QFocusEvent;
class QHelpEvent;
class QKeyEvent;
class QMouseEvent;
class QPaintEvent;
class QTouchEvent;
class QWheelEvent;
class QWidget;

namespace veltra {

class QtUiPort;

class QtSurface : public WindowPort {
public:
    // Moves the keyboard on in the widget's focus chain; false when it leads nowhere else.
    using MoveFocus = std::function<bool(bool forward)>;

    // Without widget() (not owned) nothing appears: that is what remains of a window when Qt's
    // application has ended, and the port with it.
    QtSurface(QtUiPort& port, QWidget& widget, MoveFocus moveFocus);
    ~QtSurface() override;

    // Not owned; may be under construction. Set once, before the widget hears anything.
    void setWindow(Window& window) noexcept { m_window = &window; }
    Window& window() const noexcept { return *m_window; }
    // Paints the window's background colour under the views.
    void fillsGround() noexcept { m_fillsGround = true; }
    QWidget* widget() const noexcept { return m_widget; }
    // The application ends, the widget with it.
    virtual void abandonWidget();

    // Called with each event of the widget, before the widget. True: it needs no more handling. The
    // widget, and the surface with it, may be gone.
    bool handle(QEvent& event);

    // The widget was moved or resized.
    void place();
    // The colours to be used may be others.
    void updateAppearance();

    void invalidate(const Rect& surfaceRect) override;
    void displayIfNeeded() override;
    bool passKeyboard(bool forward) override;
    void setCursor(Cursor cursor) override;
    float scale() const override;
    bool lockPointer(bool isLocked) override;

protected:
    QtUiPort* port() const noexcept { return m_port; }

private:
    bool unlockPointer();
    bool input(QEvent& event);
    bool mouse(QMouseEvent& event);
    bool touch(QTouchEvent& event);
    bool touchOnView(const QTouchEvent& event, const QEventPoint& point);
    void touchAsPointer(const QTouchEvent& event, const QEventPoint& point);
    void takePointerFromToolkit(const QTouchEvent& event);
    View* viewAt(Point inWindow) const;
    void takeFocusFor(const View* view);
    bool post(Event event, QEvent& source);
    void paint(const QPaintEvent& event);
    void tellWidget();
    void renewOpacity();
    void focusIn(const QFocusEvent& event);
    void focusOut(const QFocusEvent& event);
    bool showToolTip(const QHelpEvent& event);
    void noteScale();
    void forgetButton();
    void cancelTracking();

    QtUiPort* m_port;  // null when there is no widget
    Window* m_window = nullptr;
    QWidget* m_widget;
    const MoveFocus m_moveFocus;
    QtEvents m_events;
    std::vector<QRect> m_invalid;  // of that the widget knows the first
    bool m_tells = false;          // an event is on its way, at which it is told of all
    std::vector<Rect> m_dirty;     // kept for its memory
    float m_scale = 0.0F;
    bool m_fillsGround = false;
    bool m_isPainting = false;
    bool m_isLeftDown = false;
    LateFingers m_lateFingers;
    LateFingers m_fingersLeft;                   // to the toolkit: the first of them
    std::optional<int> m_fingerLeft;             // the same, also when it has just been released
    std::optional<QEventPoint> m_fingerLeftEnd;  // how it was
    bool m_ownsTouches = false;                  // else what no view takes is left to the toolkit
    std::optional<int> m_fingerAsPointer;        // that acts as the left button
    Cursor m_cursor = Cursor::Arrow;
    QPoint m_lockedAt;                          // on screen
    std::optional<Appearance> m_ownAppearance;  // where the widget's palette is not the system's
};

}  // namespace veltra
