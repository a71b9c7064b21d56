#include "veltra/qt/alert_dialog.h"

#include <QAbstractTextDocumentLayout>
#include <QAccessible>
#include <QApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QShowEvent>
#include <QStyle>
#include <QTextBlock>
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

// Labels take "&" as the mark of a shortcut; here it is a character like any other.
QString withoutShortcut(QString label) {
    return label.replace(QLatin1Char('&'), QStringLiteral("&&"));
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
    upper->addWidget(makeIcon(), 0, Qt::AlignTop);
    upper->addWidget(makeTexts(texts), 1);
    auto* whole = new QVBoxLayout(this);
    whole->setContentsMargins(kMargin, kMargin, kMargin, kMargin - 4);
    whole->setSpacing(kMargin);
    whole->addLayout(upper);
    whole->addWidget(makeButtonRow(texts));
    whole->setSizeConstraint(QLayout::SetFixedSize);
    fitMessage();

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

QWidget* AlertDialog::makeIcon() {
    auto* icon = new QLabel;
    const QIcon warning = style()->standardIcon(QStyle::SP_MessageBoxWarning, nullptr, this);
    icon->setPixmap(warning.pixmap(QSize(kIconSize, kIconSize), devicePixelRatioF()));
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
    m_message->setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
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
    chosen->setFocus();

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
    setTabOrder(chosen, alternate);
    setTabOrder(alternate, other);
    setTabOrder(other, m_message);
    return row;
}

QPushButton* AlertDialog::addButton(const QString& label, AlertAnswer answer) {
    auto* button = new QPushButton(withoutShortcut(label), this);
    button->setAccessibleName(label);
    button->setAutoDefault(true);
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
    m_message->setFixedWidth(metrics.averageCharWidth() * kTextColumns);
    QTextDocument* document = m_message->document();
    document->setTextWidth(m_message->width());
    int lines = 0;
    for (QTextBlock block = document->begin(); block.isValid(); block = block.next()) {
        document->documentLayout()->blockBoundingRect(block);  // lays the block out
        lines += block.layout()->lineCount();
    }
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
