// SPDX-License-Identifier: MIT
// Fingers that come down on a widget while others are on it. Qt tells the widget of their press,
// and some of its versions nothing more: the rest is taken from what the widget's window is told,
// before the widget is told of anything.
//
// Thread: main. Realtime-safe: no.
#pragma once

#include <QObject>
#include <functional>
#include <vector>

class QEventPoint;
class QTouchEvent;
class QWidget;

namespace veltra {

class LateFingers final : public QObject {
public:
    using Moved = std::function<bool(const QTouchEvent&, const QEventPoint&)>;

    // `moved` is called with each movement and the end of a finger, and returns whether nobody else
    // shall hear of it; `cancelled` is called when all are lost. Both may destroy this object.
    LateFingers(QWidget& widget, Moved moved, std::function<void()> cancelled);
    ~LateFingers() override;

    void add(int id);
    bool has(int id) const;
    bool isEmpty() const { return m_ids.empty(); }
    void forget();

protected:
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    void remove(int id);
    bool follow(QTouchEvent& event);

    QWidget& m_widget;
    const Moved m_moved;
    const std::function<void()> m_cancelled;
    std::vector<int> m_ids;
};

}  // namespace veltra
