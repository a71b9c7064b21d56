// SPDX-License-Identifier: MIT
#include "veltra/qt/qt_ui_port.h"

#include "veltra/qt/qt_port.h"
#include "veltra/qt/testing/on_qt.h"

#include <QClipboard>
#include <QTimer>

namespace veltra::testing {
namespace {

TEST_F(OnQt, APullEndsWhenTheReleaseCannotComeAnyMore) {
    const auto lose = [this](QEvent::Type type) {
        QEvent lost(type);
        QApplication::sendEvent(widget, &lost);
    };
    constexpr QPoint kElsewhere{30, 30};
    const std::function<void()> ends[] = {[&] { widget->hide(); },
                                          [&] { delete widget.data(); },
                                          [&] { lose(QEvent::WindowDeactivate); },
                                          [&] { lose(QEvent::UngrabMouse); },
                                          [&] { drag(kElsewhere, Qt::NoButton); },
                                          [] { QCoreApplication::quit(); }};
    host(std::make_unique<Probe>(Rect{{}, {50, 50}}));
    for (const auto& end : ends) {
        if (!widget) {
            widget = new ViewWidget;
            widget->setContentView(std::make_unique<Probe>(Rect{{}, {50, 50}}));
        }
        widget->show();
        auto& pulling = static_cast<Probe&>(*widget->contentView());
        Event last;
        last.clickCount = -1;
        pulling.react = [&](const Event& event) {
            if (event.type != EventType::LeftMouseDown) return;
            QTimer::singleShot(0, &application, end);
            last = Application::current().nextEvent(EventType::LeftMouseUp,
                                                    RunLoopMode::EventTracking);
        };
        QTimer::singleShot(0, &application, [this] {
            QTest::mousePress(widget, Qt::LeftButton, {}, {5, 5});
            QCoreApplication::exit();
        });
        QCoreApplication::exec();
        EXPECT_EQ(last.type, EventType::LeftMouseUp);
        EXPECT_EQ(last.clickCount, 0) << &end - ends;
    }
}

TEST_F(OnQt, AppearanceFollowsThePaletteAroundUnlessSet) {
    auto& probe = host(std::make_unique<Probe>(Rect{{}, {50, 50}}));
    EXPECT_EQ(probe.effectiveAppearance(), Appearance::Light);
    outside.setPalette(QPalette(QColor(0x30, 0x30, 0x30)));
    EXPECT_EQ(probe.effectiveAppearance(), Appearance::Dark);
    setQtAppearance(Appearance::Light);
    EXPECT_EQ(probe.effectiveAppearance(), Appearance::Light);
    setQtAppearance(Appearance::Dark);
    EXPECT_EQ(UiPort::current().appearance(), Appearance::Dark) << "also in no window";
    setQtAppearance(std::nullopt);
    EXPECT_EQ(probe.effectiveAppearance(), Appearance::Dark);
}

TEST_F(OnQt, TheClipboardCarriesText) {
    host(std::make_unique<Probe>(Rect{{}, {50, 50}}));
    UiPort::current().setClipboardText("\u22127 dB");
    EXPECT_EQ(QGuiApplication::clipboard()->text().toStdString(), "\u22127 dB");
    QGuiApplication::clipboard()->setText("8");
    EXPECT_EQ(UiPort::current().clipboardText(), "8");
}

}  // namespace
}  // namespace veltra::testing
