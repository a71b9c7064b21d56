// SPDX-License-Identifier: MIT
#include "veltra/qt/alert_dialog.h"

#include <QAccessible>
#include <QApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QShowEvent>
#include <QTextLayout>
#include <QVBoxLayout>
#include <algorithm>
#include <chrono>

namespace veltra {

namespace {

constexpr int kMargin = 20;
constexpr int kSpacing = 12;
constexpr int kIconSize = 48;
constexpr int kTextColumns = 60;  // of average characters
constexpr int kMostLines = 12;    // more of them scroll

// Seconds; a question that may stand longer does not press anybody.
constexpr qint64 kLongestCountdown = 3600;

constexpr auto kWrapMode = QTextOption::WrapAtWordBoundaryOrAnywhere;

// Labels take "&" as the mark of a shortcut; here it is a character like any other.
QString withoutShortcut(QString label) {
    return label.replace(QLatin1Char('&'), QStringLiteral("&&"));
}

// How many lines `text` takes in a field of that width. The field itself knows only once it is
// shown.
int lineCount(const QString& text, const QFont& font, int width) {
    int count = 0;
    for (const QString& paragraph : text.split(QLatin1Char('\n'))) {
        QTextLayout layout(paragraph, font);
        QTextOption wrapping;
        wrapping.setWrapMode(kWrapMode);
        layout.setTextOption(wrapping);
        layout.beginLayout();
        for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
            line.setLineWidth(width);
        }
        layout.endLayout();
        count += std::max(layout.lineCount(), 1);
    }
    return count;
}

// A triangle, amber or red, in a square of kIconSize; the styles' own icons do not scale
// everywhere.
void drawIcon(QPainter& painter, AlertStyle style) {
    const bool isCritical = style == AlertStyle::Critical;
    const QColor paper = isCritical ? QColor(0xC6, 0x28, 0x28) : QColor(0xF5, 0xB3, 0x01);
    const QPolygonF triangle({{24, 8}, {43, 41}, {5, 41}});
    painter.setBrush(paper);
    painter.setPen(QPen(paper, 7, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));  // rounds corners
    painter.drawPolygon(triangle);
    const QColor ink = isCritical ? QColor(0xFF, 0xFF, 0xFF) : QColor(0x3A, 0x2A, 0x00);
    painter.setPen(QPen(ink, 4.5, Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(QPointF(24, 18), QPointF(24, 29));
    painter.setPen(Qt::NoPen);
    painter.setBrush(ink);
    painter.drawEllipse(QPointF(24, 36.5), 2.7, 2.7);
}

}  // namespace

AlertDialog::AlertDialog(const AlertTexts& texts, int timeoutMilliseconds)
    : m_defaultLabel(texts.defaultButton), m_deadline(timeoutMilliseconds, Qt::PreciseTimer) {
    setWindowTitle(texts.title);
    setWindowFlag(Qt::WindowStaysOnTopHint);
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    setAccessibleName(texts.header);
    setAccessibleDescription(texts.message);

    auto* upper = new QHBoxLayout;
    upper->setSpacing(kMargin);
    upper->addWidget(makeIcon(texts.style), 0, Qt::AlignTop);
    upper->addWidget(makeTexts(texts), 1);
    auto* whole = new QVBoxLayout(this);
    whole->setContentsMargins(kMargin, kMargin, kMargin, kMargin - 4);
    whole->setSpacing(kMargin);
    whole->addLayout(upper);
    whole->addWidget(makeButtonRow(texts));
    whole->setSizeConstraint(QLayout::SetFixedSize);
    fitMessage();
    // The order holds only among widgets that are in their window.
    setTabOrder(m_buttons[0], m_buttons[1]);
    setTabOrder(m_buttons[1], m_buttons[2]);
    setTabOrder(m_buttons[2], m_message);
    m_buttons[0]->setFocus();

    m_timeout.setSingleShot(true);
    m_timeout.setTimerType(Qt::PreciseTimer);
    connect(&m_timeout, &QTimer::timeout, this, [this] {
        m_answer = AlertAnswer::TimedOut;
        reject();
    });
    connect(&m_tick, &QTimer::timeout, this, [this] { showTimeLeft(); });
    m_timeout.start(timeoutMilliseconds);
    m_tick.start(std::chrono::milliseconds(200));
    showTimeLeft();
}

QWidget* AlertDialog::makeIcon(AlertStyle style) {
    auto* icon = new QLabel;
    const qreal scale = devicePixelRatioF();
    QPixmap pixmap(QSize(kIconSize, kIconSize) * scale);
    pixmap.setDevicePixelRatio(scale);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    drawIcon(painter, style);
    painter.end();
    icon->setPixmap(pixmap);
    return icon;
}

QWidget* AlertDialog::makeTexts(const AlertTexts& texts) {
    auto* header = new QLabel(texts.header);
    header->setTextFormat(Qt::PlainText);
    header->setWordWrap(true);
    QFont font = header->font();
    font.setBold(true);
    font.setPointSizeF(font.pointSizeF() * 1.2);
    header->setFont(font);

    // A text field, because a label does not break expressions that have no blanks.
    m_message = new QPlainTextEdit(texts.message);
    m_message->setReadOnly(true);
    m_message->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    m_message->setTabChangesFocus(true);
    m_message->setWordWrapMode(kWrapMode);
    m_message->setFrameShape(QFrame::NoFrame);
    m_message->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_message->viewport()->setAutoFillBackground(false);
    m_message->document()->setDocumentMargin(0);
    m_message->setAccessibleName(texts.header);

    auto* column = new QWidget;
    auto* layout = new QVBoxLayout(column);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(kSpacing);
    layout->addWidget(header);
    layout->addWidget(m_message);
    return column;
}

QWidget* AlertDialog::makeButtonRow(const AlertTexts& texts) {
    m_countdown = new QLabel;
    m_countdown->setTextFormat(Qt::PlainText);
    fadeCountdown();

    QPushButton* chosen = addButton(texts.defaultButton, AlertAnswer::Default);
    QPushButton* alternate = addButton(texts.alternateButton, AlertAnswer::Alternate);
    QPushButton* other = addButton(texts.otherButton, AlertAnswer::Other);
    chosen->setDefault(true);
    m_buttons = {chosen, alternate, other};

    auto* row = new QWidget;
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(kSpacing - 4);
    layout->addWidget(m_countdown);
    layout->addStretch(1);
    layout->addSpacing(kMargin);
    for (QPushButton* button : {other, alternate, chosen}) {
        layout->addWidget(button);
    }
    return row;
}

QPushButton* AlertDialog::addButton(const QString& label, AlertAnswer answer) {
    auto* button = new QPushButton(withoutShortcut(label), this);
    button->setAccessibleName(label);
    button->setAutoDefault(true);
    button->setMinimumWidth(button->sizeHint().width() + kSpacing);
    button->setVisible(!label.isEmpty());
    connect(button, &QPushButton::clicked, this, [this, answer] {
        m_answer = answer;
        accept();
    });
    return button;
}

// As wide as a comfortable line, as high as its lines.
void AlertDialog::fitMessage() {
    const QFontMetrics metrics(m_message->font());
    const int width = metrics.averageCharWidth() * kTextColumns;
    m_message->setFixedWidth(width);
    const int lines = lineCount(m_message->toPlainText(), m_message->font(), width);
    m_message->setVerticalScrollBarPolicy(lines > kMostLines ? Qt::ScrollBarAlwaysOn
                                                             : Qt::ScrollBarAlwaysOff);
    m_message->setFixedHeight(metrics.lineSpacing() * std::clamp(lines, 1, kMostLines) + 2);
}

// Halfway between text and background: there for who looks, in light and dark alike.
void AlertDialog::fadeCountdown() {
    const QColor text = palette().color(QPalette::WindowText);
    const QColor ground = palette().color(QPalette::Window);
    const auto between = [](int a, int b) { return (a * 3 + b * 2) / 5; };
    QPalette faded = palette();
    const QColor mixed(between(text.red(), ground.red()), between(text.green(), ground.green()),
                       between(text.blue(), ground.blue()));
    faded.setColor(QPalette::WindowText, mixed);
    m_countdown->setPalette(faded);
    QPalette clear = palette();
    clear.setColor(QPalette::Base, Qt::transparent);
    clear.setColor(QPalette::Text, text);
    m_message->setPalette(clear);
}

void AlertDialog::showTimeLeft() {
    const qint64 seconds = (m_deadline.remainingTime() + 999) / 1000;
    if (seconds > kLongestCountdown) return;
    m_countdown->setText(QStringLiteral("%1 in %2 s").arg(m_defaultLabel).arg(seconds));
}

void AlertDialog::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    raise();
    activateWindow();
    QApplication::alert(this);
    QAccessibleEvent announcement(this, QAccessible::Alert);
    QAccessible::updateAccessibility(&announcement);
}

void AlertDialog::changeEvent(QEvent* event) {
    QDialog::changeEvent(event);
    if (event->type() == QEvent::PaletteChange && m_countdown != nullptr) fadeCountdown();
}

}  // namespace veltra
