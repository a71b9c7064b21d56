// SPDX-License-Identifier: MIT
#include "veltra/qt/qt_window.h"

#include "veltra/qt/qt_port.h"
#include "veltra/qt/testing/on_qt.h"
#include "veltra/ui/panel.h"

#include <QWindow>

namespace veltra {
namespace {

using testing::kPatience;
using testing::Probe;

TEST(QtPort, WindowsOutliveTheApplication) {
    struct Closing final : Panel {
        using Panel::Panel;
        void didClose() override { wasClosed = true; }
        bool wasClosed = false;
    };
    std::unique_ptr<Closing> window;
    EXPECT_FALSE(installQtPort());
    for (int round = 0; round < 2; ++round) {
        int count = 1;
        char name[] = "test";
        char* arguments[] = {name, nullptr};
        QApplication application(count, arguments);
        ASSERT_TRUE(installQtPort());
        window = std::make_unique<Closing>(Rect{{100, 100}, {200, 80}});
        window->setContentView(std::make_unique<Probe>(Rect{}));
        window->setMinSize({150, 60});
        window->makeKeyAndOrderFront();
        QWidget* const top = QApplication::topLevelWidgets().constFirst();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(top, kPatience));
        EXPECT_TRUE(window->isVisible());
        window->setFrame({{120, 90}, {10, 300}});
        EXPECT_EQ(top->size(), QSize(150, 300));
        EXPECT_EQ(window->contentView()->frame().size, (Size{150, 300}));
        top->close();
        EXPECT_TRUE(window->wasClosed);
        EXPECT_FALSE(window->isVisible());
        window->orderFront();
    }
    EXPECT_FALSE(window->isVisible());
    window->contentView()->setNeedsDisplay();
    window->makeKeyAndOrderFront();
    window->setFrame({{0, 0}, {300, 300}});
}

TEST(QtPort, LimitsHoldFromTheNextSizeOn) {
    int count = 1;
    char name[] = "test";
    char* arguments[] = {name, nullptr};
    const QApplication application(count, arguments);
    ASSERT_TRUE(installQtPort());
    Window window(Rect{{100, 100}, {200, 100}});
    window.setContentView(std::make_unique<Probe>(Rect{}));
    window.makeKeyAndOrderFront();
    QWidget* const top = QApplication::topLevelWidgets().constFirst();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(top, kPatience));
    const struct {
        Size minimum, maximum;
        QSize kept;       // by the limits alone
        QSize wish, got;  // by the next change
    } rows[] = {{{230, 50}, {900, 900}, {200, 100}, {210, 100}, {230, 100}},
                {{0, 0}, {170, 900}, {230, 100}, {200, 100}, {170, 100}},
                {{0, 0}, {900, 900}, {170, 100}, {300, 300}, {300, 300}}};
    for (const auto& row : rows) {
        window.setMinSize(row.minimum);
        window.setMaxSize(row.maximum);
        QCoreApplication::processEvents();
        EXPECT_EQ(top->size(), row.kept);
        EXPECT_EQ(window.contentView()->frame().size.width, row.kept.width());
        top->resize(row.wish);  // as the user does
        QCoreApplication::processEvents();
        EXPECT_EQ(top->size(), row.got);
        EXPECT_EQ(window.frame().size.width, row.got.width());
    }
}

TEST(QtPort, OnlyWindowsThatWorkWhenModalHearOfClicksBesideAModalOne) {
    int count = 1;
    char name[] = "test";
    char* arguments[] = {name, nullptr};
    const QApplication application(count, arguments);
    ASSERT_TRUE(installQtPort());
    for (const bool works : {false, true}) {
        Window window(Rect{{100, 100}, {200, 100}});
        window.setWorksWhenModal(works);
        auto made = std::make_unique<Probe>(Rect{});
        Probe& probe = *made;
        window.setContentView(std::move(made));
        window.makeKeyAndOrderFront();
        QWidget* const top = QApplication::topLevelWidgets().constFirst();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(top, kPatience));
        QWidget modal;
        modal.setWindowModality(Qt::ApplicationModal);
        modal.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&modal, kPatience));
        QTest::mouseClick(top->windowHandle(), Qt::LeftButton, {}, {5, 5});
        QCoreApplication::processEvents();
        EXPECT_EQ(probe.events.empty(), !works);
    }
}

}  // namespace
}  // namespace veltra
