// SPDX-License-Identifier: MIT
#include "../requests.h"
#include "../test_recordings.h"
#include "console_widget.h"
#include "testing/pictured.h"
#include "veltra/base/testing/prelude.h"
#include "veltra/platform/testing/fake_user.h"
#include "veltra/qt/qt_port.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QImage>
#include <QMenu>
#include <QMessageBox>
#include <QMimeData>
#include <QTimer>
#include <QUrl>
#include <QtTest>

#include <gmock/gmock.h>

namespace veltra::console::testing {
namespace {

using ::testing::HasSubstr;

void click(ViewWidget& widget, const AccessibilityElement& element) {
    const Point middle = accessibilityFrameInWindow(element).center();
    const auto height = static_cast<float>(widget.height());
    QTest::mouseClick(&widget, Qt::LeftButton, {},
                      QPoint(static_cast<int>(middle.x), static_cast<int>(height - middle.y)));
}

// On a busy machine it may take its time.
template <typename Condition>
bool comesTrue(Condition condition) {
    return QTest::qWaitFor(condition, 60'000);
}

TEST(ConsoleWindow, PlaysMutesReplacesAndComplainsWhileItIsOperated) {
    SKIP_WITHOUT_RECORDINGS();
    const std::string six = synthetic("six.wav", 48000, "120 sine 300 gain -6 remix 1 1 1 1 1 1");
    const std::string brief = synthetic("brief.wav", 48000, "0.05 sine 300");
    Player player(Device::Null);
    ConsoleWidget widget(player, Device::Null);
    widget.addFiles({kSamples + "loop_tabla.flac", "/nowhere.wav"});
    widget.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&widget, 60'000));
    View& root = *widget.contentView();

    QMimeData dropped;
    dropped.setUrls({QUrl::fromLocalFile(QString::fromStdString(six)),
                     QUrl::fromLocalFile(QString::fromStdString(brief))});
    QDragEnterEvent enter(QPoint(50, 50), Qt::CopyAction, &dropped, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&widget, &enter);
    QDropEvent drop(QPointF(50, 50), Qt::CopyAction | Qt::MoveAction, &dropped, Qt::LeftButton,
                    Qt::ShiftModifier);
    EXPECT_EQ(drop.proposedAction(), Qt::MoveAction);
    QApplication::sendEvent(&widget, &drop);
    EXPECT_TRUE(drop.isAccepted() && drop.dropAction() == Qt::CopyAction);
    ASSERT_EQ(player.look().strips.size(), 3U);
    AccessibilityElement* const bridge = find(root, "six.wav meters");
    ASSERT_NE(bridge, nullptr);
    EXPECT_EQ(shownAccessibilityChildren(*bridge).size(), 6U);
    EXPECT_TRUE(comesTrue([&] {
        return find(*bridge, "channel Rs")->accessibilityValueText() == "\u22126.0 dB";
    })) << find(*bridge, "channel Rs")->accessibilityValueText();

    const std::string endless = synthetic("endless.wav", 48000, "300 sine 300");
    widget.addFiles({endless});
    EXPECT_TRUE(comesTrue([&] { return find(root, "Reading endless.wav") != nullptr; }));
    AccessibilityElement* const messages = find(root, "Messages");
    ASSERT_NE(messages, nullptr);
    EXPECT_THAT(shownAccessibilityChildren(*messages).front()->accessibilityName(),
                HasSubstr("/nowhere.wav: "));
    QTest::keyClick(&widget, Qt::Key_Escape);  // closes the message first
    EXPECT_TRUE(comesTrue([&] { return find(root, "Messages") == nullptr; }));
    QTest::keyClick(&widget, Qt::Key_Escape);
    EXPECT_TRUE(comesTrue([&] { return player.look().reading.empty(); }));
    EXPECT_TRUE(comesTrue([&] { return find(root, "Reading endless.wav") == nullptr; }));
    QTest::keyClick(&widget, Qt::Key_F1);
    auto* const about = widget.findChild<QMessageBox*>();
    ASSERT_NE(about, nullptr);
    EXPECT_THAT(about->text().toStdString(), HasSubstr(aboutText()));
    about->close();
    widget.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&widget, 60'000));
    player.remove(player.look().strips[3].key);  // scrolled out of view
    ASSERT_TRUE(comesTrue([&] { return find(root, "Mute endless.wav") == nullptr; }));

    EXPECT_NE(find(root, "Folded to stereo by its channels: L R C Ls Rs; not heard: LFE"), nullptr);
    EXPECT_TRUE(comesTrue([&] { return find(root, "Waveform of six.wav, 1 onset") != nullptr; }));

    click(widget, *find(root, "Mute six.wav"));
    EXPECT_TRUE(comesTrue([&] { return player.look().strips[1].meter.muted; }));
    QTest::keyClick(&widget, Qt::Key_M);
    EXPECT_TRUE(comesTrue([&] { return !player.look().strips[1].meter.muted; }));
    EXPECT_NE(find(root, "D3"), nullptr);  // 300 Hz
    EXPECT_TRUE(comesTrue([&] { return find(root, "Ended") != nullptr; }));
    QTest::keyClick(&widget, Qt::Key_Delete);
    EXPECT_EQ(player.look().strips.size(), 2U);
    EXPECT_NE(find(root, "Removed six"), nullptr);
    EXPECT_EQ(find(root, "Mute six.wav"), nullptr);
    QTest::keyClick(&widget, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(find(root, "Removed six"), nullptr);
    EXPECT_NE(find(root, "Mute six.wav"), nullptr);

    const auto state = [&]() -> const ConsoleState& { return player.look(); };
    ASSERT_TRUE(comesTrue([&] { return state().playing && state().seconds > 0.0; }));
    QTest::keyClick(&widget, Qt::Key_Space);
    EXPECT_TRUE(comesTrue([&] { return !state().playing; }));
    QTest::keyClick(&widget, Qt::Key_Home);
    EXPECT_TRUE(comesTrue([&] { return state().position == 0; }));
    QTest::keyClick(&widget, Qt::Key_L);
    EXPECT_TRUE(comesTrue([&] { return state().looping; }));
    QTest::simulateEvent(&widget, true, Qt::Key_L, {}, QStringLiteral("l"), true);  // it is held
    EXPECT_TRUE(state().looping);
    EXPECT_EQ(state().loopEnd, 120 * state().rate);  // all of the longest file
    EXPECT_NE(find(root, "Waveform of brief.wav, 1 onset"), nullptr);

    const auto entries = player.finish();
    ASSERT_EQ(entries.size(), 6U);  // one was opened again
    EXPECT_FALSE(entries[1].error.empty());
    EXPECT_TRUE(entries[3].result.has_value());
    EXPECT_FALSE(entries[2].result->complete);
}

TEST(ConsoleWindow, OffersOtherSettingsOfTheDeviceThatWasAskedFor) {
    Player::SoundSystems systems;
    systems.open = [](const Device&, std::int32_t, std::string& problem) {
        problem = "missing";
        return std::unique_ptr<AudioOutput>();
    };
    systems.list = [] { return std::vector<DeviceInfo>(); };
    const Device device{"card", 48000, 256};
    Player player(device, systems);
    ConsoleWidget widget(player, device);
    widget.show();
    const QRect screen = widget.screen()->availableGeometry();
    widget.move(0, screen.bottom() - widget.height());
    ConsoleDelegate& delegate = widget;
    // What is ticked in the menu, before `chosen` is chosen there.
    const auto ticked = [&](const QString& chosen) {
        delegate.deviceMenuWasPressed(*widget.contentView());
        QWidget* const menu = QApplication::activePopupWidget();
        EXPECT_TRUE(screen.contains(menu->geometry())) << "as large as it is in the end";
        QString all;
        for (QAction* const entry : menu->findChildren<QAction*>()) {
            if (entry->isChecked()) all += entry->text() + ' ';
            if (entry->text() == chosen) entry->trigger();
        }
        menu->close();
        return all.toStdString();
    };
    EXPECT_EQ(ticked("512 frames"), "256 frames 48000 Hz ");
    EXPECT_EQ(ticked(""), "512 frames 48000 Hz ");
    player.keys();  // from now on a device that is not there is refused
    ticked("1024 frames");
    EXPECT_EQ(ticked(""), "512 frames 48000 Hz ");
}

TEST(ConsoleWindow, ShowsACrashReportFromItsMenu) {
    veltra::testing::FakeUser user;
    user.answer = AlertAnswer::Alternate;
    Player player(Device::Null);
    ConsoleWidget widget(player, Device::Null);
    widget.show();
    QTimer::singleShot(0, &widget, [] {
        auto* const menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        if (menu != nullptr) QTest::keyClick(menu, Qt::Key_C);
    });
    QContextMenuEvent asked(QContextMenuEvent::Keyboard, QPoint(5, 5),
                            widget.mapToGlobal(QPoint(5, 5)));
    QApplication::sendEvent(&widget, &asked);
    EXPECT_THAT(user.text, HasSubstr("raised on purpose"));
}

TEST(ConsolePicture, ShowsTheLoudestMomentAtItsScale) {
    SKIP_WITHOUT_RECORDINGS();
    const std::string loud =
        synthetic("loud.wav", 48000, "2 sine 300 fade q 1.5 2 0.4 gain -1 remix 1 1");
    const std::string picture = folder() + "picture.png";
    const auto draw = [&](const std::string& options) {
        EXPECT_EQ(shell(VELTRA_CONSOLE " --picture " + picture + options + " " + loud), 0);
        return QImage(QString::fromStdString(picture));
    };
    const QImage large = draw(" --scale 2 --theme dark");
    const QImage small = draw("");
    EXPECT_EQ(large.size(), small.size() * 2);
    EXPECT_LT(qGray(large.pixel(2, 2)), 60);
    EXPECT_GT(qGray(small.pixel(2, 2)), 220);
    int red = 0;  // what only the upper zone of a meter near full scale has
    for (int i = 0; i < small.height() * small.width(); ++i) {
        const QColor color = small.pixelColor(i % small.width(), i / small.width());
        red += color.red() > 200 && color.green() < 120 && color.blue() < 120;
    }
    EXPECT_GT(red, 100);
}

}  // namespace
}  // namespace veltra::console::testing

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("XDG_CONFIG_HOME", veltra::console::testing::folder().c_str());  // preferences
    QApplication application(argc, argv);
    veltra::installQtPort();
    return RUN_ALL_TESTS();
}
