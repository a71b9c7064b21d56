// SPDX-License-Identifier: MIT
// The tool tip: one small window that lets the pointer through, in the colours of the window that
// it belongs to. Either a control moves it while a value changes, or it shows where the pointer
// rests.
//
// Thread: main. Realtime-safe: no.
#pragma once

#include "veltra/ui/appearance.h"
#include "veltra/ui/tool_tip.h"

#include <QPointer>
#include <QRect>
#include <string>

class QPoint;
class QWidget;

namespace veltra {

class QtToolTip {
public:
    QtToolTip() = default;
    QtToolTip(const QtToolTip&) = delete;
    QtToolTip& operator=(const QtToolTip&) = delete;
    ~QtToolTip();

    // Beside a rectangle of the widget, in its coordinates.
    void follow(QWidget& widget, Appearance appearance, const std::string& text, const Rect& around,
                ToolTipSide side);
    // At the resting pointer, until it leaves `area` of the widget.
    void rest(QWidget& widget, Appearance appearance, const std::string& text, QPoint onScreen,
              QRect area);

    // The pointer has moved, or something else was done that ends the tip of a resting pointer.
    void pointerMoved(const QWidget& widget, QPoint position);
    void interrupt();

    void close();
    // Closes it if it belongs to the widget.
    void close(const QWidget& widget);

private:
    class Label;
    Label& prepare(QWidget& widget, Appearance appearance, const std::string& text);
    static QRect roomAt(QPoint point);

    QPointer<Label> m_label;
    QPointer<QWidget> m_owner;
    QRect m_area;
    bool m_rests = false;
};

}  // namespace veltra
