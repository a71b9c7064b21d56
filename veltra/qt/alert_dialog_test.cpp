// SPDX-License-Identifier: MIT
#include "veltra/qt/alert_dialog.h"

#include "veltra/qt/testing/on_qt.h"

#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>

namespace veltra::testing {
namespace {

constexpr int kLong = 10'000'000;  // milliseconds

struct ShownAlert : AlertDialog {
    explicit ShownAlert(const QString& message, int time = kLong, const QString& others = "")
        : AlertDialog({"title", "header", message, "Go & on", others, others}, time) {
        show();
    }
    // From left to right: the default is the last.
    const QList<QPushButton*> buttons = findChildren<QPushButton*>();
};

TEST_F(OnQt, AlertsAnswerWhatIsPressedAndOtherwiseTheDefault) {
    const std::tuple<int, Qt::Key, AlertAnswer> rows[] = {
        {2, Qt::Key_Space, AlertAnswer::Default},
        {1, Qt::Key_Space, AlertAnswer::Alternate},
        {0, Qt::Key_Space, AlertAnswer::Other},
        {1, Qt::Key_Escape, AlertAnswer::Default}};
    for (const auto& [index, key, answer] : rows) {
        const ShownAlert dialog("message", kLong, "other");
        QTest::keyClick(dialog.buttons.at(index), key);
        EXPECT_FALSE(dialog.isVisible());
        EXPECT_EQ(dialog.answer(), answer) << index << ' ' << key;
    }
    const ShownAlert dialog("message", 1);
    EXPECT_EQ(dialog.buttons[2]->text(), "Go && on") << "no mark of a shortcut";
    EXPECT_FALSE(dialog.buttons[0]->isVisible() || dialog.buttons[1]->isVisible());
    EXPECT_TRUE(comesTrue([&dialog] { return !dialog.isVisible(); }));
    EXPECT_EQ(dialog.answer(), AlertAnswer::TimedOut);
}

TEST_F(OnQt, AlertsAreAsHighAsTheirMessageUpToItsLimitAndCountDownNearTheEnd) {
    const auto heightOf = [](const QString& message) {
        return ShownAlert(message).findChild<QPlainTextEdit*>()->height();
    };
    const int one = heightOf("line");
    const int two = heightOf("line\nline");
    EXPECT_EQ(heightOf(QString(90, 'x')), two) << "it has no blanks";
    EXPECT_EQ(heightOf(QString("line\n").repeated(100)), one + 11 * (two - one));
    for (const int time : {59'999, kLong}) {
        const ShownAlert dialog("message", time);
        QString texts;
        for (const QLabel* label : dialog.findChildren<QLabel*>())
            texts += label->text();
        EXPECT_EQ(texts, time == kLong ? "header" : "headerGo & on in 60 s");
    }
}

}  // namespace
}  // namespace veltra::testing
