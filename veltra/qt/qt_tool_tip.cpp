// SPDX-License-Identifier: MIT
#include "veltra/qt/qt_tool_tip.h"

#include "veltra/qt/qt_types.h"

#include <QGuiApplication>
#include <QLabel>
#include <QPainter>
#include <QScreen>
#include <QToolTip>
#include <algorithm>

namespace veltra {

namespace {
constexpr int kGap = 14;         // points between a knob's centre and the tip
constexpr int kPointerGap = 20;  // below the resting pointer
constexpr int kRadius = 4;
}  // namespace

class QtToolTip::Label final : public QLabel {
public:
    explicit Label(QWidget* parent)
        : QLabel(parent, Qt::ToolTip | Qt::WindowTransparentForInput |
                             Qt::WindowDoesNotAcceptFocus | Qt::FramelessWindowHint) {
        setAttribute(Qt::WA_ShowWithoutActivating);
        setAttribute(Qt::WA_TransparentForMouseEvents);
        setAttribute(Qt::WA_TranslucentBackground);
        setTextFormat(Qt::PlainText);
        setFont(QToolTip::font());
        setContentsMargins(7, 3, 7, 3);
    }

    void setAppearance(Appearance appearance) {
        m_ground = toQt(systemColor(SystemColor::ControlBackground, appearance));
        m_border = toQt(systemColor(SystemColor::Separator, appearance));
        QPalette colors = palette();
        colors.setColor(QPalette::WindowText, toQt(systemColor(SystemColor::Label, appearance)));
        setPalette(colors);
    }

protected:
    void paintEvent(QPaintEvent* event) override {
        {
            QPainter painter(this);
            painter.setRenderHint(QPainter::Antialiasing);
            painter.setPen(m_border);
            painter.setBrush(m_ground);
            painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), kRadius,
                                    kRadius);
        }
        QLabel::paintEvent(event);
    }

private:
    QColor m_ground;
    QColor m_border;
};

QtToolTip::~QtToolTip() {
    delete m_label.data();
}

QtToolTip::Label& QtToolTip::prepare(QWidget& widget, Appearance appearance,
                                     const std::string& text) {
    QWidget* const parent = widget.window();
    Label* label = m_label;
    if (label != nullptr && label->parentWidget() != parent) {
        delete label;
        label = nullptr;
    }
    if (label == nullptr) m_label = label = new Label(parent);
    m_owner = &widget;
    label->setAppearance(appearance);
    label->setText(toQt(text));
    label->resize(label->sizeHint());
    return *label;
}

// Centred above the point or below it, on the other side where the screen ends, and never beyond
// its sides.
void QtToolTip::place(Label& label, QPoint point, Side side, int gap) {
    const QScreen* screen = QGuiApplication::screenAt(point);
    if (screen == nullptr) screen = QGuiApplication::primaryScreen();
    if (screen == nullptr) return;
    const QRect room = screen->availableGeometry();
    const int rightmost = room.right() + 1 - label.width();
    const int x = std::max(std::min(point.x() - label.width() / 2, rightmost), room.left());
    const int above = point.y() - gap - label.height();
    const int below = point.y() + gap;
    const bool isAboveFree = above >= room.top();
    const bool isBelowFree = below + label.height() <= room.bottom() + 1;
    const bool isAbove = side == Side::Above ? isAboveFree : !isBelowFree && isAboveFree;
    label.move(x, isAbove ? above : below);
    label.show();
    label.raise();
}

void QtToolTip::follow(QWidget& widget, Appearance appearance, const std::string& text,
                       QPointF position) {
    if (!widget.isVisible()) return;
    Label& label = prepare(widget, appearance, text);
    m_rests = false;
    place(label, widget.mapToGlobal(position).toPoint(), Side::Above, kGap);
}

void QtToolTip::rest(QWidget& widget, Appearance appearance, const std::string& text,
                     QPoint onScreen, QRect area) {
    if (m_label && m_label->isVisible() && !m_rests) return;  // a value is being changed
    Label& label = prepare(widget, appearance, text);
    m_rests = true;
    m_area = area;
    place(label, onScreen, Side::Below, kPointerGap);
}

void QtToolTip::pointerMoved(const QWidget& widget, QPoint position) {
    if (m_rests && (m_owner != &widget || !m_area.contains(position))) close();
}

void QtToolTip::interrupt() {
    if (m_rests) close();
}

void QtToolTip::close() {
    m_rests = false;
    if (m_label) m_label->hide();
}

void QtToolTip::close(const QWidget& widget) {
    if (m_owner == &widget) close();
}

}  // namespace veltra
