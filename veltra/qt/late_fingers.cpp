// SPDX-License-Identifier: MIT
#include "veltra/qt/late_fingers.h"

#include <QCoreApplication>
#include <QPointer>
#include <QTouchEvent>
#include <QWidget>
#include <QWindow>
#include <algorithm>
#include <utility>

namespace veltra {

LateFingers::LateFingers(QWidget& widget, Moved moved, std::function<void()> cancelled)
    : m_widget(widget), m_moved(std::move(moved)), m_cancelled(std::move(cancelled)) {}

LateFingers::~LateFingers() = default;

void LateFingers::add(int id) {
    if (isEmpty()) QCoreApplication::instance()->installEventFilter(this);
    if (!has(id)) m_ids.push_back(id);
}

bool LateFingers::has(int id) const {
    return std::find(m_ids.begin(), m_ids.end(), id) != m_ids.end();
}

void LateFingers::remove(int id) {
    m_ids.erase(std::remove(m_ids.begin(), m_ids.end(), id), m_ids.end());
    QCoreApplication* const application = QCoreApplication::instance();
    if (isEmpty() && application != nullptr) application->removeEventFilter(this);
}

void LateFingers::forget() {
    while (!isEmpty())
        remove(m_ids.back());
}

bool LateFingers::eventFilter(QObject* object, QEvent* event) {
    if (object != m_widget.window()->windowHandle()) return false;
    switch (event->type()) {
        case QEvent::TouchUpdate:
        case QEvent::TouchEnd:
            return follow(static_cast<QTouchEvent&>(*event));
        case QEvent::TouchCancel:
            m_cancelled();
            return false;
        default:
            return false;
    }
}

// True, and nobody else hears of it, when the event is about late fingers alone.
bool LateFingers::follow(QTouchEvent& event) {
    const QPointer<LateFingers> self(this);
    bool isAll = true;
    for (const QEventPoint& point : event.points()) {
        if (point.state() == QEventPoint::Stationary) continue;
        if (!self || !has(point.id())) {
            isAll = false;
            continue;
        }
        if (point.state() == QEventPoint::Released) remove(point.id());
        if (!m_moved(event, point)) isAll = false;
    }
    if (isAll) event.accept();
    return isAll;
}

}  // namespace veltra
