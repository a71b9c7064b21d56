// SPDX-License-Identifier: MIT
#include "veltra/qt/qt_tool_tip.h"

#include "veltra/qt/painter_canvas.h"
#include "veltra/qt/qt_types.h"
#include "veltra/ui/value_tip.h"

#include <QGuiApplication>
#include <QLabel>
#include <QPainter>
#include <QScreen>
#include <QToolTip>
#include <algorithm>
#include <cmath>
#include <optional>

namespace veltra {

namespace {
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

    // Shows a value; nothing: the text of a place where the pointer rests.
    void setTip(std::optional<ValueTip> tip) { m_tip = tip; }

    void setAppearance(Appearance appearance) {
        m_appearance = appearance;
        m_ground = toQt(systemColor(SystemColor::ControlBackground, appearance));
        m_border = toQt(systemColor(SystemColor::Separator, appearance));
        QPalette colors = palette();
        colors.setColor(QPalette::WindowText, toQt(systemColor(SystemColor::Label, appearance)));
        setPalette(colors);
    }

protected:
    void paintEvent(QPaintEvent* event) override {
        if (m_tip) {
            QPainter painter(this);
            PainterCanvas port(painter);
            Canvas canvas(port);
            m_tip->draw(canvas, text().toStdString(), m_appearance);
            return;
        }
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
    std::optional<ValueTip> m_tip;
    Appearance m_appearance = Appearance::Light;
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
    return *label;
}

QRect QtToolTip::roomAt(QPoint point) {
    const QScreen* screen = QGuiApplication::screenAt(point);
    if (screen == nullptr) screen = QGuiApplication::primaryScreen();
    return screen != nullptr ? screen->availableGeometry() : QRect();
}

void QtToolTip::follow(QWidget& widget, Appearance appearance, const std::string& text,
                       const Rect& around, ToolTipSide side) {
    if (!widget.isVisible()) return;
    Label& label = prepare(widget, appearance, text);
    m_rests = false;
    const QPoint corner = widget.mapToGlobal(QPoint(0, 0));
    const QRect room = roomAt(widget.mapToGlobal(toQt(around.center())).toPoint());
    const Point offset{static_cast<float>(corner.x()), static_cast<float>(corner.y())};
    const Rect onScreen{
        {static_cast<float>(room.x()) - offset.x, static_cast<float>(room.y()) - offset.y},
        {static_cast<float>(room.width()), static_cast<float>(room.height())}};
    const ValueTip tip = ValueTip::placed(text, around, onScreen, side);
    const QPoint place(static_cast<int>(std::floor(tip.reach.minX())),
                       static_cast<int>(std::floor(tip.reach.minY())));
    label.setTip(tip.movedBy({-static_cast<float>(place.x()), -static_cast<float>(place.y())}));
    label.setGeometry(
        QRect(corner + place, QSize(static_cast<int>(std::ceil(tip.reach.size.width)) + 1,
                                    static_cast<int>(std::ceil(tip.reach.size.height)) + 1)));
    label.show();
    label.raise();
    label.update();
}

// Centred below the pointer, above it where the screen ends, and never beyond its sides.
void QtToolTip::rest(QWidget& widget, Appearance appearance, const std::string& text,
                     QPoint onScreen, QRect area) {
    if (m_label && m_label->isVisible() && !m_rests) return;  // a value is being changed
    Label& label = prepare(widget, appearance, text);
    m_rests = true;
    m_area = area;
    label.setTip(std::nullopt);
    label.resize(label.sizeHint());
    const QRect room = roomAt(onScreen);
    const int rightmost = room.right() + 1 - label.width();
    const int x = std::max(std::min(onScreen.x() - label.width() / 2, rightmost), room.left());
    const int above = onScreen.y() - kPointerGap - label.height();
    const int below = onScreen.y() + kPointerGap;
    const bool isBelowFree = below + label.height() <= room.bottom() + 1;
    label.move(x, isBelowFree || above < room.top() ? below : above);
    label.show();
    label.raise();
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
