// SPDX-License-Identifier: MIT
#include "veltra/qt/alert_dialog.h"

#include "veltra/qt/testing/on_qt.h"

#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>

namespace veltra::testing {
namespace {

constexpr int kLong = 10'000'000;  // milliseconds

std::vector<QPushButton*> shownButtons(const QDialog& dialog) {
    std::vector<QPushButton*> shown;
    for (QPushButton* button : dialog.findChildren<QPushButton*>())
        if (!button->isHidden()) shown.push_back(button);
    return shown;
}

TEST_F(OnQt, AlertsAnswerWhatIsPressedAndOtherwiseTheDefault) {
    const std::tuple<const char*, Qt::Key, AlertAnswer> rows[] = {
        {"Go && on", Qt::Key_Space, AlertAnswer::Default},
        {"Stop", Qt::Key_Space, AlertAnswer::Alternate},
        {"Look", Qt::Key_Space, AlertAnswer::Other},
        {"Stop", Qt::Key_Escape, AlertAnswer::Default}};
    for (const auto& [label, key, answer] : rows) {
        AlertDialog dialog({"title", "header", "message", "Go & on", "Stop", "Look"}, kLong);
        const auto buttons = shownButtons(dialog);
        const auto found = std::find_if(buttons.begin(), buttons.end(),
                                        [text = label](auto* one) { return one->text() == text; });
        ASSERT_NE(found, buttons.end()) << label;
        dialog.show();
        QTest::keyClick(*found, key);
        EXPECT_FALSE(dialog.isVisible());
        EXPECT_EQ(dialog.answer(), answer) << label;
    }
    AlertDialog dialog({"title", "header", "message", "OK", "", ""}, 1);
    EXPECT_EQ(shownButtons(dialog).size(), 1U);
    dialog.show();
    EXPECT_TRUE(comesTrue([&dialog] { return !dialog.isVisible(); }));
    EXPECT_EQ(dialog.answer(), AlertAnswer::TimedOut);
}

TEST_F(OnQt, AlertsAreAsHighAsTheirMessageUpToItsLimitAndCountDownNearTheEnd) {
    const auto heightOf = [](const QString& message) {
        const AlertDialog dialog({"title", "header", message, "OK", "", ""}, kLong);
        return dialog.findChild<QPlainTextEdit*>()->height();
    };
    const int one = heightOf("line");
    const int two = heightOf("line\nline");
    EXPECT_EQ(heightOf(QString(90, 'x')), two) << "it has no blanks";
    EXPECT_EQ(heightOf(QString("line\n").repeated(100)), one + 11 * (two - one));
    for (const int time : {59'500, kLong}) {
        const AlertDialog dialog({"title", "header", "message", "OK", "", ""}, time);
        QString texts;
        for (const QLabel* label : dialog.findChildren<QLabel*>())
            texts += label->text();
        EXPECT_EQ(texts, time == kLong ? "header" : "headerOK in 60 s");
    }
}

}  // namespace
}  // namespace veltra::testing
