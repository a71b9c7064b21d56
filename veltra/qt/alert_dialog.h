// SPDX-License-Identifier: MIT
// The window of an alert: header, message, up to three buttons, and the seconds that are left.
#pragma once

#include "veltra/platform/alert.h"

#include <QDeadlineTimer>
#include <QDialog>
#include <QTimer>
#include <array>

class QLabel;
class QPlainTextEdit;
class QPushButton;

namespace veltra {

struct AlertTexts {
    QString title, header, message, defaultButton, alternateButton, otherButton;
    AlertStyle style = AlertStyle::Warning;
};

class AlertDialog : public QDialog {
public:
    AlertDialog(const AlertTexts& texts, int timeoutMilliseconds);

    AlertAnswer answer() const { return m_answer; }

protected:
    void showEvent(QShowEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    QPushButton* addButton(const QString& label, AlertAnswer answer);
    QWidget* makeIcon(AlertStyle style);
    QWidget* makeTexts(const AlertTexts& texts);
    QWidget* makeButtonRow(const AlertTexts& texts);
    void fitMessage();
    void fadeCountdown();
    void showTimeLeft();

    AlertAnswer m_answer = AlertAnswer::Default;  // what Escape and closing the window mean
    QString m_defaultLabel;
    QPlainTextEdit* m_message = nullptr;
    std::array<QPushButton*, 3> m_buttons{};
    QLabel* m_countdown = nullptr;
    QDeadlineTimer m_deadline;
    QTimer m_timeout;
    QTimer m_tick;
};

}  // namespace veltra
